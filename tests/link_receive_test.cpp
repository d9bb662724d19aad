// The receive handler's three paths, fed with bytes alone.
#include <gtest/gtest.h>

#include <memory>
#include <random>

#include "link/frames.h"
#include "link/reply_gathering.h"

namespace vkm {
namespace {

using Bytes = std::vector<std::uint8_t>;

// 68, length, payload, check, 16; `opened` puts 46 B9 before it.
Bytes reply(const Bytes& payload, bool crc = false, bool opened = true) {
    const std::size_t length = payload.size() + (crc ? 6 : 5);
    Bytes frame = {0x68, static_cast<std::uint8_t>(length / 256),
                   static_cast<std::uint8_t>(length % 256)};
    frame.insert(frame.end(), payload.begin(), payload.end());
    if (crc) {
        for (const std::uint8_t byte : crc16(Bytes(frame))) frame.push_back(byte);
    } else {
        unsigned sum = 0;
        for (const std::uint8_t byte : frame) sum += byte;
        frame.push_back(static_cast<std::uint8_t>(sum & 0xFF));
    }
    frame.push_back(0x16);
    if (opened) frame.insert(frame.begin(), {0x46, 0xB9});
    return frame;
}

Bytes demo_reply(const Bytes& payload) {
    const std::size_t length = payload.size() + 7;
    Bytes frame = {0x5A, 0xA5, static_cast<std::uint8_t>(length / 256),
                   static_cast<std::uint8_t>(length % 256)};
    frame.insert(frame.end(), payload.begin(), payload.end());
    unsigned sum = 0;
    for (const std::uint8_t byte : frame) sum += byte;
    frame.push_back(static_cast<std::uint8_t>((sum >> 8) & 0xFF));
    frame.push_back(static_cast<std::uint8_t>(sum & 0xFF));
    frame.push_back(0x16);
    return frame;
}

Bytes operator+(Bytes left, const Bytes& right) {
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

class Receive : public ::testing::Test {
  protected:
    Receive() { link.receive_enabled = true; }

    Gathered take(const Bytes& bytes) { return gather_reply(link, bytes); }
    Gathered take_demo(const Bytes& bytes) { return gather_demo_reply(link, bytes); }

    // What every exchange begins with.
    void begin_exchange() {
        link.rx_count = 0;
        link.frame_ok = false;
        link.demo_frame_ok = false;
        link.reply_gap_or_bad = false;
        link.seen_46 = false;
    }

    Bytes stored() const { return {link.rx_frame.begin(), link.rx_frame.begin() + link.rx_count}; }

    bool forgotten() const {
        return link.rx_count == 0 && !link.frame_ok && !link.demo_frame_ok && !link.seen_46 &&
               !link.seen_B9;
    }

    LinkState link;
};

const Bytes ack = {0x80, 0x5C};  // payload of a block answer with its data sum

TEST_F(Receive, AFrameIsStoredFromIts68On) {
    EXPECT_EQ(take(reply(ack)), Gathered::frame);
    EXPECT_TRUE(link.frame_ok);
    EXPECT_EQ(stored(), reply(ack, false, false));
    EXPECT_EQ(link.rx_expected, 7);
    EXPECT_FALSE(link.reply_gap_or_bad);
}

TEST_F(Receive, AFrameSplitAtEveryPositionIsTheSame) {
    for (const bool hunt : {false, true})
        for (const bool crc : {false, true})
            for (std::size_t split = 1; split < reply(ack, crc).size(); ++split) {
                link = {};
                link.receive_enabled = true;
                link.hunt_header = hunt;
                link.use_crc = crc;
                const Bytes frame = reply(ack, crc);
                const auto middle = frame.begin() + static_cast<std::ptrdiff_t>(split);
                EXPECT_EQ(take({frame.begin(), middle}), Gathered::incomplete) << split;
                EXPECT_FALSE(link.frame_ok);
                EXPECT_EQ(take({middle, frame.end()}), Gathered::frame) << split;
                EXPECT_EQ(stored(), reply(ack, crc, false));
            }
}

TEST_F(Receive, AFrameOfSingleBytesIsTheSame) {
    for (const bool hunt : {false, true}) {
        begin_exchange();
        link.hunt_header = hunt;
        for (const std::uint8_t byte : reply(ack)) take({byte});
        EXPECT_TRUE(link.frame_ok) << hunt;
    }
}

TEST_F(Receive, NoiseWithout68IsPassedOver) {
    EXPECT_EQ(take({0x00, 0xFF, 0x46, 0x16, 0x80}), Gathered::incomplete);
    EXPECT_EQ(link.rx_count, 0);
    EXPECT_EQ(take(Bytes{0x12, 0x34} + reply(ack)), Gathered::frame);
    EXPECT_EQ(stored(), reply(ack, false, false));
}

TEST_F(Receive, AFalse68SwallowsWhatItsFalseLengthTells) {
    // 68 00 0B: eleven bytes, so the true frame is in it and the end mark is not
    // where it should be.
    EXPECT_EQ(take(Bytes{0x68, 0x00, 0x0B} + reply(ack)), Gathered::bad_mark);
    EXPECT_TRUE(forgotten());
    EXPECT_EQ(link.rx_frame[0], 0);
    EXPECT_FALSE(link.reply_gap_or_bad);
    // The next answer is taken again.
    EXPECT_EQ(take(reply(ack)), Gathered::frame);
    // A longer one takes in more than one answer.
    begin_exchange();
    EXPECT_EQ(take(Bytes{0x68, 0x00, 0x14} + reply(ack)), Gathered::incomplete);
    EXPECT_EQ(take(reply(ack)), Gathered::bad_mark);
    EXPECT_TRUE(forgotten());
    EXPECT_EQ(take(reply(ack)), Gathered::frame);
}

TEST_F(Receive, HuntPassesOverAFalse68) {
    link.hunt_header = true;
    EXPECT_EQ(take(Bytes{0x68, 0x00, 0x0C, 0x46, 0x68} + reply(ack)), Gathered::frame);
    EXPECT_EQ(stored(), reply(ack, false, false));
    EXPECT_FALSE(link.seen_46);
    EXPECT_FALSE(link.seen_B9);
}

TEST_F(Receive, HuntMissesAFrameBehindASecond46) {
    link.hunt_header = true;
    EXPECT_EQ(take(Bytes{0x46} + reply(ack)), Gathered::incomplete);
    EXPECT_FALSE(link.frame_ok);
    EXPECT_FALSE(link.seen_46);
    EXPECT_FALSE(link.seen_B9);
    EXPECT_EQ(take(reply(ack)), Gathered::frame);
}

TEST_F(Receive, HuntKeepsItsProgressBetweenBatches) {
    link.hunt_header = true;
    take({0x11, 0x46});
    EXPECT_TRUE(link.seen_46);
    EXPECT_FALSE(link.seen_B9);
    take({0xB9});
    EXPECT_TRUE(link.seen_46);
    EXPECT_TRUE(link.seen_B9);
    take({0x01, 0x02});  // no 68 yet
    EXPECT_EQ(link.rx_count, 0);
    EXPECT_EQ(take(reply(ack, false, false)), Gathered::frame);
}

TEST_F(Receive, ALeftoverB9DoesNotStandForTheHunt) {
    link.hunt_header = true;
    link.seen_B9 = true;  // of the exchange before; only seen_46 is cleared between
    EXPECT_EQ(take(reply(ack, false, false)), Gathered::incomplete);
    EXPECT_EQ(link.rx_count, 0);
    EXPECT_EQ(take(reply(ack)), Gathered::frame);
    // Nor does it complete a 46 that noise brings.
    begin_exchange();
    link.seen_B9 = true;
    EXPECT_EQ(take(Bytes{0x46, 0x68, 0x00, 0x0B} + reply(ack)), Gathered::frame);
}

TEST_F(Receive, BytesAreLostWhileReceivingIsOff) {
    link.receive_enabled = false;
    EXPECT_EQ(take(reply(ack)), Gathered::incomplete);
    EXPECT_EQ(link.rx_count, 0);
    EXPECT_FALSE(link.frame_ok);
    link.receive_enabled = true;
    EXPECT_EQ(take(reply(ack)), Gathered::frame);
}

TEST_F(Receive, AWrongSumIsToldByReplyGapOrBad) {
    Bytes frame = reply(ack);
    frame[frame.size() - 2] ^= 0x01;
    EXPECT_EQ(take(frame), Gathered::bad_check);
    EXPECT_TRUE(link.reply_gap_or_bad);
    EXPECT_TRUE(forgotten());
    // The check covers every byte from the 68 on.
    for (std::size_t i = 5; i < frame.size() - 1; ++i) {
        begin_exchange();
        frame = reply(ack);
        frame[i] ^= 0x20;
        EXPECT_EQ(take(frame), Gathered::bad_check) << i;
        EXPECT_FALSE(link.frame_ok);
    }
}

TEST_F(Receive, AWrongEndMarkIsDroppedSilently) {
    Bytes frame = reply(ack);
    frame.back() = 0x17;
    EXPECT_EQ(take(frame), Gathered::bad_mark);
    EXPECT_FALSE(link.reply_gap_or_bad);
    EXPECT_TRUE(forgotten());
    EXPECT_EQ(link.rx_frame[0], 0);
}

TEST_F(Receive, BytesBehindAFrameAreNotLookedAt) {
    EXPECT_EQ(take(reply(ack) + Bytes{0xAA, 0x68, 0x16}), Gathered::frame);
    EXPECT_EQ(link.rx_count, 10);
    EXPECT_EQ(link.rx_expected, 7);
    EXPECT_TRUE(link.frame_ok);
}

TEST_F(Receive, CrcFramesKeepTheirBytesWhenTheCheckFails) {
    link.use_crc = true;
    Bytes frame = reply(ack, true);
    EXPECT_EQ(take(frame), Gathered::frame);
    EXPECT_TRUE(link.frame_ok);
    for (const std::size_t back : {2, 3}) {
        begin_exchange();
        frame = reply(ack, true);
        frame[frame.size() - back] ^= 0x80;
        EXPECT_EQ(take(frame), Gathered::bad_check);
        EXPECT_TRUE(link.reply_gap_or_bad);
        EXPECT_FALSE(link.frame_ok);
        EXPECT_EQ(link.rx_count, 8);
    }
    begin_exchange();
    frame = reply(ack, true);
    frame.back() = 0;
    EXPECT_EQ(take(frame), Gathered::bad_mark);
    EXPECT_EQ(link.rx_count, 0);
}

TEST_F(Receive, ASumFrameIsNoCrcFrame) {
    link.use_crc = true;
    EXPECT_EQ(take(reply({0x80, 0x11, 0x22})), Gathered::bad_check);
}

TEST_F(Receive, LengthsShorterThanTheirOwnFieldEndAsBadFrames) {
    for (const bool crc : {false, true})
        for (std::uint8_t length = 1; length <= 4; ++length) {
            link = {};
            link.receive_enabled = true;
            link.use_crc = crc;
            take({0x68, 0x00, length, 0x16, 0x16, 0x16});
            EXPECT_FALSE(link.frame_ok) << int{length};
            EXPECT_TRUE(forgotten() || (crc && length == 4)) << int{length};
        }
}

TEST_F(Receive, ALengthOfZeroCompletesNoFrameAndLeavesTheLinkHearing) {
    EXPECT_EQ(take({0x68, 0x00, 0x00}), Gathered::bad_mark);
    EXPECT_EQ(link.rx_count, 0);
    EXPECT_FALSE(link.frame_ok);
    EXPECT_EQ(take(reply(ack)), Gathered::frame);
}

TEST_F(Receive, TheLongestFrameThatFitsIsTaken) {
    const Bytes payload(2101 - 5, 0x33);
    EXPECT_EQ(take(reply(payload)), Gathered::frame);
    EXPECT_EQ(link.rx_count, 2101);
    EXPECT_TRUE(link.frame_ok);
    begin_exchange();
    EXPECT_EQ(take(reply(payload) + Bytes(5000, 0x55)), Gathered::frame);
    EXPECT_EQ(link.rx_count, 2101);
}

TEST_F(Receive, ALengthBeyondTheBufferNeverMakesAFrameAndDoesNotMakeDeaf) {
    for (const int length : {2102, 2103, 4096, 32767, 32768, 65535}) {
        const Bytes head = {0x68, static_cast<std::uint8_t>(length / 256),
                            static_cast<std::uint8_t>(length % 256)};
        EXPECT_EQ(take(head + Bytes(3000, 0x16)), Gathered::bad_mark) << length;
        EXPECT_TRUE(forgotten());
        EXPECT_EQ(take(reply(ack)), Gathered::frame) << length;
        begin_exchange();
    }
}

TEST_F(Receive, TheLengthOfTheFrameBeforeDoesNotEndThisOne) {
    take({0x68, 0x00, 0x01});
    EXPECT_TRUE(forgotten());
    EXPECT_EQ(link.rx_expected, 1);
    for (const std::uint8_t byte : reply(ack)) take({byte});
    EXPECT_TRUE(link.frame_ok);
}

TEST_F(Receive, DemoFramesAreStoredFromTheir5AOn) {
    const Bytes frame = demo_reply({0xB3, 0x12, 0x34});
    EXPECT_EQ(take_demo(frame), Gathered::frame);
    EXPECT_TRUE(link.demo_frame_ok);
    EXPECT_FALSE(link.frame_ok);
    EXPECT_EQ(stored(), frame);
}

TEST_F(Receive, ADemoFrameSplitAtEveryPositionIsTheSame) {
    const Bytes frame = demo_reply({0xB3, 0x12, 0x34});
    for (std::size_t split = 1; split < frame.size(); ++split) {
        link = {};
        const auto middle = frame.begin() + static_cast<std::ptrdiff_t>(split);
        EXPECT_EQ(take_demo({frame.begin(), middle}), Gathered::incomplete) << split;
        EXPECT_FALSE(link.demo_frame_ok);
        EXPECT_EQ(take_demo({middle, frame.end()}), Gathered::frame) << split;
        EXPECT_EQ(stored(), frame);
    }
}

TEST_F(Receive, DemoOpeningIsSoughtByteByByte) {
    EXPECT_EQ(take_demo(Bytes{0x00, 0x5A, 0x11, 0xA5} + demo_reply({0x01})), Gathered::frame);
    // A second 5A in place of the A5 misses the frame.
    begin_exchange();
    EXPECT_EQ(take_demo(Bytes{0x5A} + demo_reply({0x01})), Gathered::incomplete);
    EXPECT_EQ(link.rx_count, 0);
    EXPECT_EQ(link.rx_frame[0], 0);
    EXPECT_EQ(take_demo(demo_reply({0x01})), Gathered::frame);
}

TEST_F(Receive, DemoFramesWithWrongSumOrMarkAreForgotten) {
    for (const std::size_t back : {2, 3}) {
        Bytes frame = demo_reply({0xB3, 0x12, 0x34});
        frame[frame.size() - back] ^= 0x01;
        EXPECT_EQ(take_demo(frame), Gathered::bad_check);
        EXPECT_TRUE(forgotten());
        EXPECT_FALSE(link.reply_gap_or_bad);
    }
    Bytes frame = demo_reply({0xB3, 0x12, 0x34});
    frame.back() = 0x15;
    EXPECT_EQ(take_demo(frame), Gathered::bad_mark);
    EXPECT_TRUE(forgotten());
    EXPECT_EQ(link.rx_frame[0], 0);
    EXPECT_EQ(take_demo(demo_reply({0xB3})), Gathered::frame);
}

TEST_F(Receive, DemoLengthsOutOfRangeAreForgotten) {
    for (std::uint8_t length = 1; length < 7; ++length) {
        take_demo({0x5A, 0xA5, 0x00, length, 0x16, 0x16, 0x16, 0x16});
        EXPECT_FALSE(link.demo_frame_ok) << int{length};
        EXPECT_TRUE(forgotten()) << int{length};
    }
    EXPECT_EQ(take_demo({0x5A, 0xA5, 0xFF, 0xFF, 0x16}), Gathered::bad_mark);
    EXPECT_TRUE(forgotten());
    EXPECT_EQ(take_demo(demo_reply({0xB3})), Gathered::frame);
}

TEST_F(Receive, DemoPathTakesBytesThoughReceivingIsOff) {
    link.receive_enabled = false;
    EXPECT_EQ(take_demo(demo_reply({0xB3})), Gathered::frame);
}

// Whatever comes in, nothing beside the buffer changes, and the next exchange works.
TEST_F(Receive, RandomBytesNeverLeaveTheBufferAndNeverMakeTheLinkDeaf) {
    std::mt19937 random(20240607);
    const auto below = [&](unsigned n) { return static_cast<unsigned>(random() % n); };
    // Bytes that mean something are frequent, so that every branch is walked.
    const Bytes favourites = {0x46, 0xB9, 0x68, 0x5A, 0xA5, 0x16, 0x00, 0x01, 0x05, 0x08};
    int frames = 0;
    for (int round = 0; round < 4000; ++round) {
        link.hunt_header = below(2) == 0;
        link.use_crc = below(2) == 0;
        link.receive_enabled = below(8) != 0;
        const bool demo = below(3) == 0;
        for (unsigned batches = below(8); batches > 0; --batches) {
            Bytes bytes(below(20) == 0 ? below(5000) : below(40));
            for (std::uint8_t& byte : bytes)
                byte =
                    below(2) == 0 ? favourites[below(10)] : static_cast<std::uint8_t>(below(256));
            if (below(4) == 0) {
                const Bytes payload(below(30), 0x80);
                bytes = bytes + (demo ? demo_reply(payload) : reply(payload, link.use_crc));
            }
            const Gathered result = demo ? take_demo(bytes) : take(bytes);
            ASSERT_GE(link.rx_count, 0);
            ASSERT_LE(link.rx_count, rx_frame_size);
            ASSERT_TRUE(link.rx_copy == (std::array<std::uint8_t, rx_frame_size>{}));
            ASSERT_FALSE(link.stop_requested);
            ASSERT_TRUE(result != Gathered::bad_mark || forgotten());
            if (result == Gathered::frame) {
                ASSERT_TRUE(demo ? link.demo_frame_ok : link.frame_ok);
                ASSERT_EQ(link.rx_frame[static_cast<std::size_t>(link.rx_expected) - 1], 0x16);
                ++frames;
            }
        }
        begin_exchange();
        link.receive_enabled = true;
        ASSERT_EQ(take(reply(ack, link.use_crc)), Gathered::frame) << round;
        begin_exchange();
        ASSERT_EQ(take_demo(demo_reply(ack)), Gathered::frame) << round;
        begin_exchange();
    }
    EXPECT_GT(frames, 100);
}

}  // namespace
}  // namespace vkm
