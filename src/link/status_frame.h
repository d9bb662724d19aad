// What a chip tells of itself, as values: its first frame after power-up and its
// answer to a status read.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace vkm {

struct StatusFrame {
    std::int32_t clock_counts = 0;  // sum of the eight counts of sync pulses

    // Old firmware ends its frame before the ID; then nothing but the counts is valid.
    bool has_ID = false;
    std::string ID_High;                // two upper-case hexadecimal digits
    std::string ID_Low;                 // the same; empty when the code has one byte
    std::string ID_code;                // what the catalogue is asked for; empty: nothing
    bool names_a_model = false;         // long enough that the model can be checked
    std::uint8_t version = 0;           // two digits: 38 means 3.8
    std::uint8_t letter = 0;            // ASCII
    std::uint8_t option = 0;            // the one option byte of older letters
    std::vector<std::uint8_t> options;  // option bytes, in the order of option_words

    // Newer firmware adds a byte on its boot loader.
    bool has_features = false;
    bool needs_header = false;
    std::int16_t flash_info = 0;  // 1024, 1536, 2048 or 2560
};

// rx_frame from its byte 68 on. Bytes that a short span lacks count as 00.
StatusFrame decode_status_frame(std::span<const std::uint8_t> frame);

// The answer to the status read.
struct StatusReply {
    std::uint8_t version = 0;
    std::uint8_t letter = 0;
    std::uint8_t option = 0;
    std::vector<std::uint8_t> options;  // six bytes: more than any family has
};
// Length field of the shortest answer to the status read, with version and letter.
// What is shorter answers something else.
inline constexpr int shortest_status_reply = 15;

StatusReply decode_status_reply(std::span<const std::uint8_t> frame);

// The byte numbers under which a chip's option bytes are kept, in the order in
// which they stand in its frames: by the firmware letter, by the family (none
// for families that don't report them).
std::span<const int> option_words(std::uint8_t letter);
std::span<const int> option_words_of_family(std::int16_t MCU_Family);

// "3.8" for 38; empty for 00.
std::string version_text(std::uint8_t version);

// The firmware letter as a text; empty for a byte that is no printable ASCII.
std::string letter_text(std::uint8_t letter);

// The chip's clock in Hz from the sum of its counts, at the base baud and when the
// link was made at 115200 baud.
float crystal_from_pulses(std::int32_t clock_counts, std::int32_t base_baud);
float crystal_from_trigger(std::int32_t clock_counts);

}  // namespace vkm
