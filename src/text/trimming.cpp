#include "text/trimming.h"

#include <algorithm>

namespace vkm {
namespace {

// A continuation byte (10xxxxxx) never begins a character.
bool begins_character(char c) {
    return (c & 0xC0) != 0x80;
}

}  // namespace

std::string_view trimmed(std::string_view text) {
    const auto first = text.find_first_not_of(" \t");
    if (first == std::string_view::npos) return {};
    const auto last = text.find_last_not_of(" \t");
    return text.substr(first, last - first + 1);
}

std::string upper_case(std::string_view text) {
    std::string upper(text);
    for (char& c : upper)
        if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
    return upper;
}

std::size_t character_count(std::string_view utf8) {
    return static_cast<std::size_t>(std::count_if(utf8.begin(), utf8.end(), begins_character));
}

std::string_view first_characters(std::string_view utf8, std::size_t count) {
    std::size_t end = 0;
    for (; end < utf8.size(); ++end)
        if (begins_character(utf8[end]) && count-- == 0) break;
    return utf8.substr(0, end);
}

std::string_view last_characters(std::string_view utf8, std::size_t count) {
    std::size_t begin = utf8.size();
    while (begin > 0 && count > 0)
        if (begins_character(utf8[--begin])) --count;
    return utf8.substr(begin);
}

}  // namespace vkm
