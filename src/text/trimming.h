// Blanks at the ends of a text, letter case of ASCII, and characters of UTF-8.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace vkm {

// The text without blanks (space, tab) at its ends.
std::string_view trimmed(std::string_view text);

// A to Z for a to z; every other byte stays, so UTF-8 passes unharmed.
std::string upper_case(std::string_view text);

// How many characters a UTF-8 text has. Lengths and positions that the system
// tells of are in characters, never in bytes.
std::size_t character_count(std::string_view utf8);

// So many characters from the beginning or the end of a UTF-8 text, or all that it has.
std::string_view first_characters(std::string_view utf8, std::size_t count);
std::string_view last_characters(std::string_view utf8, std::size_t count);

}  // namespace vkm
