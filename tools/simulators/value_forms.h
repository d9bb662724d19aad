// Forms of values in command lines, commands and plans of faults. Each takes the
// whole text or nothing.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace vkm::sim {

std::optional<double> parse_number(std::string_view text, double least, double most);
std::optional<int> parse_whole(std::string_view text, int least, int most);

// Hexadecimal digits, from 0: "7f".
std::optional<unsigned> parse_hex(std::string_view text, unsigned most);

// Two hexadecimal digits a byte, at least one byte: "F108".
std::optional<std::vector<std::uint8_t>> parse_bytes(std::string_view hex);

// Text with \r, \n, \t, \\ and \xHH in it, so that it can stand in one line.
std::optional<std::vector<std::uint8_t>> parse_text(std::string_view text);

// What stands behind the mark; the mark and all behind it leave the text.
std::optional<std::string_view> split_off(std::string_view& text, char mark);

}  // namespace vkm::sim
