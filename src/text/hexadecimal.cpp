#include "text/hexadecimal.h"

#include "text/trimming.h"

namespace vkm {

int hex_digit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    return -1;
}

std::uint32_t hex_field(std::string_view text, std::size_t digits) {
    text = trimmed(text);
    if (text.size() > digits) text.remove_prefix(text.size() - digits);
    std::uint32_t value = 0;
    for (char c : text) {
        const int digit = hex_digit(c);
        if (digit < 0) break;
        value = value * 16 + static_cast<std::uint32_t>(digit);
    }
    return value;
}

std::string hex_text(std::uint64_t value, std::size_t digits) {
    std::string text;
    do {
        text.insert(text.begin(), "0123456789ABCDEF"[value % 16]);
        value /= 16;
    } while (value != 0);
    if (text.size() < digits) text.insert(0, digits - text.size(), '0');
    return text;
}

}  // namespace vkm
