// Simulated targets that answer frame by frame, with a fault planned for them.
#pragma once

#include <gtest/gtest.h>

#include <span>
#include <string>
#include <utility>

#include "frame_bytes.h"
#include "simulators/fault_plan.h"

namespace vkm::test {

template <typename Config, typename Frame>
Config config_with_fault(const std::string& text) {
    Config config;
    config.faults = {sim::parse_fault_on<Frame>(text).value()};
    return config;
}

using NamedFrame = std::pair<const char*, Bytes>;

// A fault for the second frame of each name strikes that one alone.
template <typename Bench, typename Config>
void expect_struck_by_name(std::span<const NamedFrame> frames,
                           Config (*with_fault)(const std::string&)) {
    for (const auto& [name, frame] : frames) {
        Bench bench(with_fault(std::string("lose_reply@") + name + ":2"));
        EXPECT_FALSE(bench.ask(frame).empty()) << name;
        EXPECT_TRUE(bench.ask(frame).empty()) << name;
        EXPECT_FALSE(bench.ask(frame).empty()) << name;
    }
}

}  // namespace vkm::test
