#include "platform/port_settings.h"

#include <array>
#include <charconv>

#include "text/trimming.h"

namespace vkm {
namespace {

constexpr std::int32_t highest_baud = 4'000'000;  // what the fastest adapters are sold for

using Fields = std::array<std::string_view, 4>;

std::optional<Fields> four_fields(std::string_view text) {
    Fields fields;
    for (std::size_t i = 0; i < fields.size(); ++i) {
        const auto comma = text.find(',');
        const bool last = i + 1 == fields.size();
        if ((comma == std::string_view::npos) != last) return {};
        fields[i] = trimmed(text.substr(0, comma));
        if (!last) text.remove_prefix(comma + 1);
    }
    return fields;
}

std::optional<std::int32_t> whole_number(std::string_view text) {
    std::int32_t value = 0;
    const char* end = text.data() + text.size();
    const auto read = std::from_chars(text.data(), end, value);
    if (read.ec != std::errc() || read.ptr != end) return {};
    return value;
}

std::optional<char> parity_of(std::string_view text) {
    if (text == "n" || text == "N") return 'n';
    if (text == "e" || text == "E") return 'e';
    if (text == "o" || text == "O") return 'o';
    return {};
}

std::optional<double> stop_bits_of(std::string_view text) {
    if (text == "1") return 1.0;
    if (text == "1.5") return 1.5;
    if (text == "2") return 2.0;
    return {};
}

}  // namespace

std::optional<PortSettings> parse_port_settings(std::string_view text) {
    const auto fields = four_fields(text);
    if (!fields) return {};
    const auto baud = whole_number((*fields)[0]);
    const auto parity = parity_of((*fields)[1]);
    const auto data_bits = whole_number((*fields)[2]);
    const auto stop_bits = stop_bits_of((*fields)[3]);
    if (!baud || *baud < 1 || *baud > highest_baud) return {};
    if (!parity || !stop_bits) return {};
    if (!data_bits || *data_bits < 5 || *data_bits > 8) return {};
    return PortSettings{*baud, *parity, *data_bits, *stop_bits};
}

}  // namespace vkm
