// What a chip tells of itself.
#include <gtest/gtest.h>

#include <string>

#include "link/status_frame.h"

namespace vkm {
namespace {

using Bytes = std::vector<std::uint8_t>;

// A frame of this length field with bytes that tell their index apart.
Bytes frame_of(int length, char letter = 'D', int version = 0x38, int ID_high = 0xF1,
               int ID_low = 0x2C, int features = 0x82) {
    Bytes frame(64);
    for (std::size_t i = 0; i < frame.size(); ++i) frame[i] = static_cast<std::uint8_t>(0x60 + i);
    frame[0] = 0x68;
    frame[1] = 0;
    frame[2] = static_cast<std::uint8_t>(length);
    for (std::size_t i = 4; i < 20; i += 2) {
        frame[i] = 5000 / 256;
        frame[i + 1] = 5000 % 256;
    }
    frame[20] = static_cast<std::uint8_t>(version);
    frame[21] = static_cast<std::uint8_t>(letter);
    frame[22] = 0xB4;
    frame[23] = static_cast<std::uint8_t>(ID_high);
    frame[24] = static_cast<std::uint8_t>(ID_low);
    frame[25] = static_cast<std::uint8_t>(features);
    return frame;
}

TEST(StatusFrames, EightCountsAreSummedHighByteFirst) {
    EXPECT_EQ(decode_status_frame(frame_of(24)).clock_counts, 40000);
    Bytes frame = frame_of(24);
    for (std::size_t i = 4; i < 20; ++i) frame[i] = 0xFF;
    EXPECT_EQ(decode_status_frame(frame).clock_counts, 8 * 65535);
}

TEST(StatusFrames, OldFirmwareHasNoID) {
    const StatusFrame status = decode_status_frame(frame_of(24));
    EXPECT_FALSE(status.has_ID);
    EXPECT_FALSE(status.names_a_model);
    EXPECT_FALSE(status.has_features);
    EXPECT_EQ(status.clock_counts, 40000);
}

TEST(StatusFrames, LengthOf25HasAnIDByteButNoName) {
    const StatusFrame status = decode_status_frame(frame_of(25));
    EXPECT_TRUE(status.has_ID);
    EXPECT_FALSE(status.names_a_model);
    EXPECT_EQ(status.ID_High, "F1");
    EXPECT_EQ(status.ID_Low, "");
    EXPECT_EQ(status.ID_code, "");
    EXPECT_EQ(status.letter, 'D');
    EXPECT_EQ(status.version, 0x38);
    EXPECT_EQ(status.option, 0xB4);
}

TEST(StatusFrames, CodeHasTwoBytesFrom224On) {
    StatusFrame status = decode_status_frame(frame_of(26, 'B', 0x38, 223, 0x0A));
    EXPECT_TRUE(status.names_a_model);
    EXPECT_EQ(status.ID_High, "DF");
    EXPECT_EQ(status.ID_Low, "");
    EXPECT_EQ(status.ID_code, "DF");
    status = decode_status_frame(frame_of(26, 'C', 0x38, 224, 0x0A));
    EXPECT_EQ(status.ID_High, "E0");
    EXPECT_EQ(status.ID_Low, "0A");
    EXPECT_EQ(status.ID_code, "E00A");
}

TEST(StatusFrames, OnlyTheLowByteOfTheLengthGrades) {
    Bytes frame = frame_of(24);
    frame[1] = 0x01;
    EXPECT_FALSE(decode_status_frame(frame).has_ID);
}

TEST(StatusFrames, FeatureByteNeedsLengthAbove27AndVersionNumberFrom38On) {
    EXPECT_FALSE(decode_status_frame(frame_of(27)).has_features);
    EXPECT_TRUE(decode_status_frame(frame_of(28)).has_features);
    EXPECT_FALSE(decode_status_frame(frame_of(36, 'D', 0x25)).has_features);
    EXPECT_TRUE(decode_status_frame(frame_of(36, 'D', 0x26)).has_features);
}

TEST(StatusFrames, FeatureByteTellsHeaderAndSizes) {
    const std::int16_t sizes[] = {1024, 1536, 2048, 2560};
    for (int features = 0; features < 256; ++features) {
        const StatusFrame status =
            decode_status_frame(frame_of(36, 'D', 0x38, 0xF1, 0x2C, features));
        EXPECT_EQ(status.needs_header, features >= 128) << features;
        EXPECT_EQ(status.flash_info, sizes[features % 4]) << features;
    }
}

TEST(StatusFrames, OptionBytesByLetter) {
    struct Row {
        char letter;
        std::vector<int> words;
        Bytes bytes;
    };
    const Row rows[] = {
        {'A', {0}, {0xB4}},
        {'B', {0}, {0xB4}},
        {'C', {1}, {0xB4}},
        {'D', {2, 3, 8, 10, 11}, {0x7A, 0x7B, 0x7C, 0x7D, 0x7E}},
        {'E', {2, 3, 8, 10, 11}, {0x7A, 0x7B, 0x7C, 0x7D, 0x7E}},
        {'F', {2, 3, 8, 10, 11}, {0x7A, 0x7B, 0x7C, 0x7D, 0x7E}},
        {'G', {0, 3, 4, 8, 10, 11}, {0x7A, 0x7B, 0x7C, 0x7D, 0x7E, 0x7F}},
        {'H', {0}, {0xB4}},
        {'\0', {0}, {0xB4}},
    };
    for (const Row& row : rows) {
        const auto letter = static_cast<std::uint8_t>(row.letter);
        const auto words = option_words(letter);
        EXPECT_EQ(std::vector<int>(words.begin(), words.end()), row.words) << row.letter;
        EXPECT_EQ(decode_status_frame(frame_of(36, row.letter)).options, row.bytes) << row.letter;
    }
}

TEST(StatusFrames, AShortSpanReadsAsZeros) {
    Bytes frame = frame_of(36);
    for (std::size_t size = 0; size < frame.size(); ++size) {
        const auto part = std::span(frame).first(size);
        EXPECT_LE(decode_status_frame(part).clock_counts, 40000) << size;
        EXPECT_EQ(decode_status_reply(part).options.size(), 6U) << size;
    }
}

TEST(StatusReplies, VersionLetterAndOptionBytes) {
    const StatusReply reply = decode_status_reply(frame_of(30));
    EXPECT_EQ(reply.version, 5000 % 256);  // index 11 is odd among the counts
    EXPECT_EQ(reply.letter, 5000 / 256);
    EXPECT_EQ(reply.option, 5000 % 256);
    Bytes frame = frame_of(30);
    for (std::uint8_t i = 0; i < 8; ++i) frame[11U + i] = i;
    const StatusReply counted = decode_status_reply(frame);
    EXPECT_EQ(counted.version, 0);
    EXPECT_EQ(counted.letter, 1);
    EXPECT_EQ(counted.option, 2);
    EXPECT_EQ(counted.options, (Bytes{2, 3, 4, 5, 6, 7}));
}

TEST(StatusReplies, OptionWordsByFamily) {
    const std::vector<std::vector<int>> words = {
        {}, {}, {1}, {2, 3, 8, 10, 11}, {2, 3, 8, 10, 11}, {2, 3, 8, 10, 11}, {0, 3, 4, 8, 10, 11},
        {}};
    for (std::int16_t family = 0; family < 8; ++family) {
        const auto found = option_words_of_family(family);
        EXPECT_EQ(std::vector<int>(found.begin(), found.end()),
                  words[static_cast<std::size_t>(family)])
            << family;
    }
}

TEST(FirmwareTexts, VersionIsTwoHexadecimalDigitsWithAPoint) {
    EXPECT_EQ(version_text(0x38), "3.8");
    EXPECT_EQ(version_text(0x02), "0.2");
    EXPECT_EQ(version_text(0x50), "5.0");
    EXPECT_EQ(version_text(0xAF), "A.F");
    EXPECT_EQ(version_text(0x00), "");
}

TEST(FirmwareTexts, LetterIsPrintableOrNothing) {
    EXPECT_EQ(letter_text('A'), "A");
    EXPECT_EQ(letter_text('g'), "g");
    EXPECT_EQ(letter_text(0), "");
    EXPECT_EQ(letter_text(' '), "");
    EXPECT_EQ(letter_text(0x7F), "");
    EXPECT_EQ(letter_text(0xC3), "");
}

TEST(ChipClock, FromPulses) {
    EXPECT_EQ(crystal_from_pulses(8 * 5000, 1200), 10317366.0F);
    EXPECT_EQ(crystal_from_pulses(0, 1200), 12366.0F);
    // Eighths go to the nearest, halves to the even number.
    EXPECT_EQ(crystal_from_pulses(3, 1200), 12366.0F);
    EXPECT_EQ(crystal_from_pulses(4, 1200), 12366.0F);
    EXPECT_EQ(crystal_from_pulses(5, 1200), 14427.0F);
    EXPECT_EQ(crystal_from_pulses(12, 1200), 16488.0F);
    EXPECT_EQ(crystal_from_pulses(20, 1200), 16488.0F);
    // A higher base baud scales the counts.
    EXPECT_EQ(crystal_from_pulses(4 * 5000, 2400), 10317366.0F);
}

TEST(ChipClock, AbsurdCountsAreHarmless) {
    EXPECT_EQ(crystal_from_pulses(8 * 65535, 1200), static_cast<float>(65541 * 2061));
    EXPECT_EQ(crystal_from_pulses(8 * 65535, 115200), 2147483647.0F);
    EXPECT_EQ(crystal_from_trigger(8 * 65535), static_cast<float>((8 * 65535 + 145) * 500.5));
}

TEST(ChipClock, FromTrigger) {
    EXPECT_EQ(crystal_from_trigger(0), 72572.5F);
    EXPECT_EQ(crystal_from_trigger(22000), 11083572.5F);
}

}  // namespace
}  // namespace vkm
