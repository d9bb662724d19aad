#include "link/status_frame.h"

#include <algorithm>
#include <array>
#include <limits>

#include "text/hexadecimal.h"
#include "text/numbers.h"

namespace vkm {
namespace {

// Places in the first frame.
constexpr std::size_t length_at = 2;  // low byte; the high one grades nothing
constexpr std::size_t counts_at = 4;
constexpr std::size_t count_words = 8;
constexpr std::size_t version_at = 20;
constexpr std::size_t letter_at = 21;
constexpr std::size_t option_at = 22;
constexpr std::size_t ID_high_at = 23;
constexpr std::size_t ID_low_at = 24;
constexpr std::size_t features_at = 25;
constexpr std::size_t options_at = 26;

// What a frame holds is graded by the low byte of its length.
constexpr int shortest_with_ID = 25;
constexpr int shortest_with_model = 26;
constexpr int shortest_with_features = 28;

constexpr std::uint8_t first_two_byte_code = 224;
constexpr std::uint8_t first_version_with_features = 38;  // the number, so 2.6

// Places in the answer to the status read.
constexpr std::size_t reply_version_at = 11;
constexpr std::size_t reply_letter_at = 12;
constexpr std::size_t reply_option_at = 13;

constexpr std::array<int, 1> words_common = {0};
constexpr std::array<int, 1> words_C = {1};
constexpr std::array<int, 5> words_DEF = {2, 3, 8, 10, 11};
constexpr std::array<int, 6> words_G = {0, 3, 4, 8, 10, 11};

std::uint8_t byte_at(std::span<const std::uint8_t> frame, std::size_t index) {
    return index < frame.size() ? frame[index] : std::uint8_t{0};
}

std::vector<std::uint8_t> bytes_from(std::span<const std::uint8_t> frame, std::size_t from,
                                     std::size_t count) {
    std::vector<std::uint8_t> bytes(count);
    for (std::size_t i = 0; i < count; ++i) bytes[i] = byte_at(frame, from + i);
    return bytes;
}

bool is_one_of(std::uint8_t letter, std::string_view letters) {
    return letters.find(static_cast<char>(letter)) != std::string_view::npos;
}

float as_clock(std::int64_t hertz) {
    constexpr std::int64_t most = std::numeric_limits<std::int32_t>::max();
    return static_cast<float>(std::min(hertz, most));
}

}  // namespace

StatusFrame decode_status_frame(std::span<const std::uint8_t> frame) {
    StatusFrame status;
    for (std::size_t i = 0; i < count_words; ++i)
        status.clock_counts +=
            byte_at(frame, counts_at + 2 * i) * 256 + byte_at(frame, counts_at + 2 * i + 1);
    const int length = byte_at(frame, length_at);
    status.version = byte_at(frame, version_at);

    status.has_ID = length >= shortest_with_ID;
    status.names_a_model = length >= shortest_with_model;
    if (!status.has_ID) return status;
    status.letter = byte_at(frame, letter_at);
    status.option = byte_at(frame, option_at);
    const std::span<const int> words = option_words(status.letter);
    const bool long_form = is_one_of(status.letter, "DEFG");
    status.options = bytes_from(frame, long_form ? options_at : option_at, words.size());

    const std::uint8_t ID_high = byte_at(frame, ID_high_at);
    status.ID_High = hex_text(ID_high, 2);
    if (status.names_a_model) {
        if (ID_high >= first_two_byte_code) status.ID_Low = hex_text(byte_at(frame, ID_low_at), 2);
        status.ID_code = status.ID_High + status.ID_Low;
    }

    status.has_features =
        length >= shortest_with_features && status.version >= first_version_with_features;
    if (status.has_features) {
        constexpr std::array<std::int16_t, 4> flash_info = {1024, 1536, 2048, 2560};
        const std::uint8_t features = byte_at(frame, features_at);
        status.needs_header = (features & 0x80) != 0;
        status.flash_info = flash_info[features & 0x03];
    }
    return status;
}

StatusReply decode_status_reply(std::span<const std::uint8_t> frame) {
    return {byte_at(frame, reply_version_at), byte_at(frame, reply_letter_at),
            byte_at(frame, reply_option_at), bytes_from(frame, reply_option_at, words_G.size())};
}

std::span<const int> option_words(std::uint8_t letter) {
    if (letter == 'C') return words_C;
    if (is_one_of(letter, "DEF")) return words_DEF;
    if (letter == 'G') return words_G;
    return words_common;
}

std::span<const int> option_words_of_family(std::int16_t MCU_Family) {
    switch (MCU_Family) {
        case 2:
            return words_C;
        case 3:
        case 4:
        case 5:
            return words_DEF;
        case 6:
            return words_G;
        default:
            return {};
    }
}

std::string version_text(std::uint8_t version) {
    if (version == 0) return {};
    return hex_text(version, 2).insert(1, ".");
}

std::string letter_text(std::uint8_t letter) {
    const bool printable = letter > 0x20 && letter < 0x7F;
    return printable ? std::string(1, static_cast<char>(letter)) : std::string();
}

float crystal_from_pulses(std::int32_t clock_counts, std::int32_t base_baud) {
    const std::int64_t scale = round_half_even(base_baud / 1200.0);
    const std::int64_t mean =
        round_half_even(static_cast<double>(std::int64_t{clock_counts} * scale) / 8);
    return as_clock((mean + 6) * 2061);
}

float crystal_from_trigger(std::int32_t clock_counts) {
    return static_cast<float>((clock_counts + 145.0) * 500.5);
}

}  // namespace vkm
