// The hunt for an agent's frames in a stream of bytes, whatever its batches.
#include <gtest/gtest.h>

#include <string_view>

#include "monitor/monitor_frame.h"
#include "monitor_frames.h"

namespace vkm::test {
namespace {

using enum Gathered_Dump;

// RAM of five cells, every byte written out.
const Bytes worked_frame = {0xAA, 0x00, 0x16, 0x01, 0x00, 0x00, 0x00, 0x01, 0x02, 0x03, 0x04,
                            0x05, 0x06, 0x07, 0x08, 0x09, 0x10, 0x20, 0x30, 0x40, 0x50, 0xDE};

Bytes text(std::string_view characters) {
    return {characters.begin(), characters.end()};
}

class Hunt : public testing::Test {
  protected:
    // One call; what it left of the batch is in `rest`.
    Gathered_Dump take(const Bytes& bytes) {
        std::span<const std::uint8_t> left = bytes;
        const Gathered_Dump result = gather_dump(link, monitor, left);
        rest.assign(left.begin(), left.end());
        return result;
    }

    // A batch as the monitor works through it: the good frames in it, the last result.
    Gathered_Dump take_all(const Bytes& bytes) {
        std::span<const std::uint8_t> left = bytes;
        Gathered_Dump last = hunting;
        while (!left.empty()) {
            last = gather_dump(link, monitor, left);
            if (last != whole) continue;
            found.push_back(stored());
            forget_dump(link, monitor);
        }
        return last;
    }

    Bytes stored() const { return {link.rx_frame.begin(), link.rx_frame.begin() + link.rx_count}; }

    void begin_anew() {
        link = {};
        monitor = {};
        found.clear();
    }

    bool forgotten() const { return link.rx_count == 0 && !monitor.seen_A5 && !monitor.seen_5A; }

    LinkState link;
    MonitorState monitor;
    Bytes rest;
    std::vector<Bytes> found;
};

TEST_F(Hunt, AFrameBehindTheMarkIsStoredFromItsAAOn) {
    EXPECT_EQ(take(marked(worked_frame)), whole);
    EXPECT_EQ(stored(), worked_frame);
    EXPECT_TRUE(rest.empty());
}

TEST_F(Hunt, ForgettingClearsTheMarkTheCountAndTheFirstTwoBytes) {
    take(marked(worked_frame));
    forget_dump(link, monitor);
    EXPECT_TRUE(forgotten());
    EXPECT_EQ(link.rx_frame[0], 0);
    EXPECT_EQ(link.rx_frame[1], 0);
    EXPECT_EQ(link.rx_frame[2], 0x16);
}

TEST_F(Hunt, AFrameSplitInThreeAnywhereIsTheSame) {
    const Bytes bytes = marked(worked_frame);
    for (std::size_t i = 1; i < bytes.size(); ++i)
        for (std::size_t j = i + 1; j <= bytes.size(); ++j) {
            begin_anew();
            const Gathered_Dump before_the_end = i < 2 ? hunting : incomplete;
            ASSERT_EQ(take_all(slice(bytes, 0, i)), before_the_end) << i;
            take_all(slice(bytes, i, j));
            take_all(slice(bytes, j, bytes.size()));
            ASSERT_EQ(found, std::vector<Bytes>{worked_frame}) << i << ' ' << j;
        }
}

TEST_F(Hunt, AFrameOfSingleBytesIsTheSame) {
    for (int times = 0; times < 2; ++times)
        for (const std::uint8_t byte : marked(worked_frame)) take_all({byte});
    EXPECT_EQ(found, (std::vector<Bytes>{worked_frame, worked_frame}));
}

TEST_F(Hunt, TheMarkIsFoundBetweenAnythingElse) {
    take_all(text("Stop at 0x1234\r\n") + Bytes{0x00, 0xFF, 0x5A, 0xAA} + marked(worked_frame) +
             text("behind") + marked(worked_frame) + text("."));
    EXPECT_EQ(found.size(), 2u);
}

TEST_F(Hunt, WhatFollowsAGoodFrameInItsBatchIsLeftToTheNextCall) {
    EXPECT_EQ(take(marked(worked_frame) + Bytes{1, 2, 3}), whole);
    EXPECT_EQ(rest, (Bytes{1, 2, 3}));
    forget_dump(link, monitor);
    EXPECT_EQ(
        take_all(marked(worked_frame) + marked(frame_of_length(30)) + Bytes{0xA5, 0x5A, 0xAA}),
        incomplete);
    EXPECT_EQ(found, (std::vector<Bytes>{worked_frame, frame_of_length(30)}));
    EXPECT_EQ(link.rx_count, 1);
}

TEST_F(Hunt, AByteThatDoesNotGoOnWithTheMarkIsNotLookedAtAgain) {
    for (const Bytes& before : {Bytes{0xA5}, Bytes{0xA5, 0x5A}, Bytes{0xA5, 0x00, 0xA5}}) {
        begin_anew();
        EXPECT_EQ(take_all(before + marked(worked_frame)), hunting);
        EXPECT_TRUE(found.empty());
        EXPECT_TRUE(forgotten());
        take_all(marked(worked_frame));
        EXPECT_EQ(found.size(), 1u);
    }
    // Behind any other byte the mark begins anew.
    for (const Bytes& before :
         {Bytes{0xA5, 0x5B}, Bytes{0xA5, 0x5A, 0x5A}, Bytes{0xA5, 0xA5}, Bytes{0xA5, 0x5A, 0xA5}}) {
        begin_anew();
        take_all(before + marked(worked_frame));
        EXPECT_EQ(found.size(), 1u);
    }
}

TEST_F(Hunt, OnlyAAMayStandBehindTheMark) {
    for (int byte = 0; byte < 256; ++byte) {
        begin_anew();
        Bytes frame = worked_frame;
        frame[0] = static_cast<std::uint8_t>(byte);
        renew_sum(frame);
        take_all(marked(frame));
        EXPECT_EQ(found.size(), byte == 0xAA ? 1u : 0u) << byte;
        EXPECT_FALSE(monitor.seen_5A) << byte;
        EXPECT_EQ(link.rx_count, 0) << byte;
    }
}

TEST_F(Hunt, TheMarkSurvivesSilenceAndEmptyBatches) {
    take_all({0xA5});
    EXPECT_TRUE(monitor.seen_A5);
    EXPECT_FALSE(monitor.seen_5A);
    EXPECT_EQ(take({}), hunting);
    EXPECT_EQ(take_all({0x5A}), incomplete);
    EXPECT_TRUE(monitor.seen_5A);
    EXPECT_EQ(take({}), incomplete);
    take_all(worked_frame);
    EXPECT_EQ(found.size(), 1u);
}

TEST_F(Hunt, AMarkInsideAFrameIsPayload) {
    const Bytes frame =
        agent_frame(2, 0, marked(worked_frame) + Bytes{0xA5, 0xA5, 0x5A, 0xAA, 0x00, 0x04});
    take_all(marked(frame));
    EXPECT_EQ(found, std::vector<Bytes>{frame});
    begin_anew();
    for (const std::uint8_t byte : marked(frame)) take_all({byte});
    EXPECT_EQ(found, std::vector<Bytes>{frame});
}

TEST_F(Hunt, LengthsBelowFourAreNoFrames) {
    for (const std::uint8_t length : Bytes{1, 2, 3}) {
        begin_anew();
        EXPECT_EQ(take(Bytes{0xA5, 0x5A, 0xAA, 0x00}), incomplete);
        EXPECT_EQ(take({length}), wrong_sum) << int{length};
        EXPECT_TRUE(rest.empty());
        EXPECT_EQ(link.rx_count, 0);
    }
}

TEST_F(Hunt, EveryLengthFromFourToTheLongestIsAFrame) {
    for (std::size_t length = 4; length <= 1100; ++length) {
        take_all(marked(frame_of_length(length)));
        ASSERT_EQ(found.size(), length - 3);
        ASSERT_EQ(found.back(), frame_of_length(length));
        ASSERT_TRUE(forgotten());
    }
}

TEST_F(Hunt, AFrameThatGrowsBeyondTheLongestIsDropped) {
    for (const std::size_t length : {0, 1101, 1102, 2101, 65535}) {
        begin_anew();
        Bytes bytes(1100, 0x3C);
        bytes[0] = 0xAA;
        set_length(bytes, length);
        EXPECT_EQ(take_all(marked(bytes)), incomplete) << length;
        EXPECT_EQ(link.rx_count, 1100);
        EXPECT_EQ(link.rx_frame[1100], 0);
        EXPECT_EQ(take_all({0x3C}), hunting) << length;
        EXPECT_TRUE(forgotten());
        EXPECT_EQ(link.rx_frame[1100], 0);
        // The byte that was one too many begins no mark, the next one does.
        begin_anew();
        take_all(marked(bytes) + Bytes{0xA5} + marked(worked_frame));
        EXPECT_EQ(found.size(), 1u) << length;
    }
}

TEST_F(Hunt, AWrongSumDropsTheFrameAndKeepsTheMark) {
    EXPECT_EQ(take(marked(spoiled(worked_frame))), wrong_sum);
    EXPECT_EQ(link.rx_count, 0);
    EXPECT_TRUE(monitor.seen_5A);
    // So that a frame without a mark would be taken.
    EXPECT_EQ(take_all(worked_frame), whole);
    EXPECT_EQ(found.size(), 1u);
}

TEST_F(Hunt, TheMarkKeptBehindAWrongSumTakesAMarkForNoFrame) {
    take_all(marked(spoiled(worked_frame)));
    EXPECT_EQ(take_all(marked(worked_frame)), hunting);
    EXPECT_TRUE(found.empty());
    take_all(marked(worked_frame));
    EXPECT_EQ(found.size(), 1u);
}

TEST_F(Hunt, TheRestOfABatchBehindAWrongSumIsDropped) {
    EXPECT_EQ(take(marked(spoiled(worked_frame)) + Bytes{0x41} + marked(worked_frame)), wrong_sum);
    EXPECT_TRUE(rest.empty());
    EXPECT_TRUE(monitor.seen_5A);
    EXPECT_EQ(link.rx_count, 0);
}

TEST_F(Hunt, TheSumCoversEveryByteOfTheFrame) {
    const Bytes frame = worked_frame;
    for (std::size_t i = 3; i < frame.size(); ++i)
        for (int bit = 0; bit < 8; ++bit) {
            begin_anew();
            Bytes broken = frame;
            broken[i] ^= static_cast<std::uint8_t>(1 << bit);
            ASSERT_EQ(take(marked(broken)), wrong_sum) << i << ' ' << bit;
        }
}

}  // namespace
}  // namespace vkm::test
