// One record of an Intel HEX file, which is one line of text.
//
// The reading is lenient: a record's length is that of its line, the length
// field only takes part in the checksum. Every record that is not the end
// record counts as data; there is no extended address, the 16-bit address field
// alone tells.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace vkm {

// A line with more pairs of digits loses the excess, its checksum included.
inline constexpr std::int32_t hex_line_fields = 261;
inline constexpr std::uint8_t end_record = 1;

struct HexLine {
    std::array<std::uint8_t, hex_line_fields> Fields{};  // one per pair of digits
    std::int32_t Last_Data_Field = 0;                    // at 3 or below there are no data
    bool Good = true;  // its checksum holds, or is lost with the excess of a long line
};

// `digits` is the line behind its ":", or the first 522 characters of it;
// `length` is the length of the whole of it.
HexLine read_hex_line(std::string_view digits, std::size_t length);

inline std::uint8_t record_type(const HexLine& line) {
    return line.Fields[3];
}

inline std::int32_t record_address(const HexLine& line) {
    return line.Fields[1] * 256 + line.Fields[2];
}

std::span<const std::uint8_t> record_data(const HexLine& line);

}  // namespace vkm
