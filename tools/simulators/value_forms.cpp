#include "simulators/value_forms.h"

#include <charconv>

namespace vkm::sim {
namespace {

// Nothing may stand before or behind the number.
template <typename Number, typename... Form>
bool read_whole_text(std::string_view text, Number& number, Form... form) {
    const auto [end, error] =
        std::from_chars(text.data(), text.data() + text.size(), number, form...);
    return error == std::errc{} && end == text.data() + text.size() && !text.empty();
}

}  // namespace

std::optional<double> parse_number(std::string_view text, double least, double most) {
    double number = 0;
    if (!read_whole_text(text, number) || !(number >= least && number <= most)) return std::nullopt;
    return number;
}

std::optional<int> parse_whole(std::string_view text, int least, int most) {
    int number = 0;
    if (!read_whole_text(text, number) || number < least || number > most) return std::nullopt;
    return number;
}

std::optional<unsigned> parse_hex(std::string_view text, unsigned most) {
    unsigned number = 0;
    if (!read_whole_text(text, number, 16) || number > most) return std::nullopt;
    return number;
}

std::optional<std::vector<std::uint8_t>> parse_bytes(std::string_view hex) {
    if (hex.empty() || hex.size() % 2 != 0) return std::nullopt;
    std::vector<std::uint8_t> bytes;
    for (std::size_t i = 0; i < hex.size(); i += 2) {
        std::uint8_t byte = 0;
        if (!read_whole_text(hex.substr(i, 2), byte, 16)) return std::nullopt;
        bytes.push_back(byte);
    }
    return bytes;
}

std::optional<std::vector<std::uint8_t>> parse_text(std::string_view text) {
    constexpr std::string_view marks = "rnt\\";
    constexpr std::string_view meant = "\r\n\t\\";
    std::vector<std::uint8_t> bytes;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\\') {
            bytes.push_back(static_cast<std::uint8_t>(text[i]));
            continue;
        }
        if (++i == text.size()) return std::nullopt;
        if (text[i] == 'x') {
            const auto byte = parse_bytes(text.substr(i + 1, 2));
            if (!byte) return std::nullopt;
            bytes.push_back(byte->front());
            i += 2;
            continue;
        }
        const std::size_t mark = marks.find(text[i]);
        if (mark == std::string_view::npos) return std::nullopt;
        bytes.push_back(static_cast<std::uint8_t>(meant[mark]));
    }
    return bytes;
}

std::optional<std::string_view> split_off(std::string_view& text, char mark) {
    const std::size_t place = text.find(mark);
    if (place == std::string_view::npos) return std::nullopt;
    const std::string_view rest = text.substr(place + 1);
    text = text.substr(0, place);
    return rest;
}

}  // namespace vkm::sim
