// Bytes of the code page as text: the drawn tool and the tests' own realisation alike.
#include <gtest/gtest.h>

#include "platform/qt/qt_code_page.h"
#include "support/gbk_code_page.h"

namespace vkm::test {
namespace {

constexpr const char* replaced = "\uFFFD";

template <typename Realisation>
class CodePageTest : public testing::Test {
  protected:
    Realisation code_page;
    std::string shown(std::string_view bytes) { return code_page.to_screen(bytes); }
};

using Realisations = testing::Types<QtCodePage, GbkCodePage>;
TYPED_TEST_SUITE(CodePageTest, Realisations);

TYPED_TEST(CodePageTest, ACharacterThatCameWholeIsShown) {
    EXPECT_EQ(this->shown("\xC4\xE3\xBA\xC3 ok\r\n"), "你好 ok\r\n");
    EXPECT_EQ(this->shown(""), "");
    EXPECT_EQ(this->shown(std::string_view("a\0b", 3)), std::string("a\0b", 3));
}

TYPED_TEST(CodePageTest, BothHalvesOfACharacterThatCameInTwoAreSeen) {
    EXPECT_EQ(this->shown("ab\xC4"), std::string("ab") + replaced);
    EXPECT_EQ(this->shown("\xE3"), replaced);
    EXPECT_EQ(this->shown("\xE3\r\n"), std::string(replaced) + "\r\n");
}

TYPED_TEST(CodePageTest, HalfACharacterLeavesTheNextTextAlone) {
    this->shown("\xC4");
    EXPECT_EQ(this->shown("\xC4\xE3"), "你");
    EXPECT_EQ(this->shown("@"), "@");
}

TYPED_TEST(CodePageTest, TheStartOfALongCharacterIsSeen) {
    EXPECT_TRUE(this->shown("\x81\x30").starts_with(replaced));
    EXPECT_TRUE(this->shown("\x81\x30\x81").starts_with(replaced));
}

TYPED_TEST(CodePageTest, EveryByteAloneIsSeen) {
    for (int byte = 0; byte < 256; ++byte) {
        const std::string bytes(1, static_cast<char>(byte));
        EXPECT_FALSE(this->shown(bytes).empty()) << byte;
        EXPECT_TRUE(this->shown(bytes + "\r\n").ends_with("\r\n")) << byte;
    }
}

TYPED_TEST(CodePageTest, WhatComesBehindGarbageIsSeen) {
    for (const char* garbage : {"\xFF\xFF", "\x80", "\xC4\x20", "\x81\x30\x81\x20", "\xFE\xFE\xFF"})
        EXPECT_TRUE(this->shown(std::string(garbage) + " OK").ends_with(" OK"))
            << static_cast<int>(static_cast<unsigned char>(garbage[0]));
}

}  // namespace
}  // namespace vkm::test
