// Tables held against a file of their canonical text, so that a change of the data
// is reviewed as the difference of that file.
#pragma once

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace vkm::test {

inline std::vector<std::string> lines_of(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) lines.push_back(line);
    return lines;
}

// A wanted change is made in the golden file too: when they differ, the text that
// belongs there is left in the test's temporary folder.
inline void expect_golden(const std::string& name, const std::string& text) {
    std::ifstream file(VKM_GOLDEN_FOLDER "/" + name, std::ios::binary);
    ASSERT_TRUE(file) << name;
    std::stringstream golden;
    golden << file.rdbuf();
    const auto expected = lines_of(golden.str());
    const auto actual = lines_of(text);
    const std::string wanted = ::testing::TempDir() + name;
    if (actual != expected) std::ofstream(wanted, std::ios::binary) << text;
    ASSERT_EQ(actual.size(), expected.size()) << "see " << wanted;
    for (std::size_t i = 0; i < actual.size(); ++i) EXPECT_EQ(actual[i], expected[i]);
}

}  // namespace vkm::test
