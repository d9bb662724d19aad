#include "options/option_bytes.h"

#include <algorithm>

namespace vkm {
namespace {

constexpr std::size_t code_length = 4;
constexpr std::size_t last_bit = 7;

struct Default_Row {
    std::int16_t family;
    std::size_t byte;
    Option_Default_Byte entry;
};

// OR masks are the bits that the family uses. A byte starts as 255, so it comes
// out as its AND mask whatever they are.
// clang-format off
constexpr Default_Row default_rows[] = {
    // family, byte, value, AND, OR; what isn't listed is 255, 255, 255
    {0, 16, {255, 255, 252}},
    {2,  1, {255, 253,  32}},
    {2, 16, {255, 255, 252}},
    {3,  2, {255, 255, 253}},
    {3,  3, {255, 255,  80}},
    {3,  8, {255, 247, 240}},
    {6,  0, {255, 255,  63}},
    {6,  3, {255, 255, 189}},
    {6,  4, {255, 255,  80}},
    {6,  8, {255, 255, 240}},
};
// clang-format on

constexpr std::size_t first_byte_of_old_families = 8;

// Families that share their rows.
std::int16_t default_family(std::int16_t MCU_Family) {
    switch (MCU_Family) {
        case 1:
            return 0;
        case 4:
            return 3;
        default:
            return MCU_Family;
    }
}

std::optional<std::size_t> digit(char c) {
    if (c < '0' || c > '9') return std::nullopt;
    return static_cast<std::size_t>(c - '0');
}

}  // namespace

std::optional<Option_Bit> option_bit(std::string_view Option_Code) {
    if (Option_Code.size() != code_length) return std::nullopt;
    const auto tens = digit(Option_Code[0]);
    const auto ones = digit(Option_Code[1]);
    const auto bit = digit(Option_Code[2]);
    const auto value = digit(Option_Code[3]);
    if (!tens || !ones || !bit || !value) return std::nullopt;
    const std::size_t byte = *tens * 10 + *ones;
    if (byte >= option_byte_count || *bit > last_bit) return std::nullopt;
    return Option_Bit{byte, *bit, *value > 0 ? 1 : 0};
}

std::string_view bit_state(std::string_view Option_Code, const Option_Words& bytes) {
    const auto place = option_bit(Option_Code);
    if (!place) return {};
    const bool set = (bytes[place->byte] & Bit_Set_Mask[place->bit]) != 0;
    return set == (place->value != 0) ? "1" : "0";
}

std::optional<Option_Default_Byte> option_default(std::int16_t MCU_Family, std::size_t byte) {
    const std::int16_t family = default_family(MCU_Family);
    if (family == 0 && byte < first_byte_of_old_families) return std::nullopt;
    const auto* row =
        std::find_if(std::begin(default_rows), std::end(default_rows),
                     [&](const Default_Row& r) { return r.family == family && r.byte == byte; });
    return row == std::end(default_rows) ? Option_Default_Byte{} : row->entry;
}

std::optional<std::size_t> prescaler_byte(std::int16_t MCU_Family) {
    switch (MCU_Family) {
        case 3:
        case 4:
            return 3;
        case 6:
            return 4;
        default:
            return std::nullopt;
    }
}

std::optional<std::size_t> clock_source_byte(std::int16_t MCU_Family) {
    switch (MCU_Family) {
        case 3:
        case 4:
            return 2;
        case 6:
            return 3;
        default:
            return std::nullopt;
    }
}

std::int16_t prescaler_bits(std::string_view text) {
    constexpr std::string_view prescalers[] = {"2", "4", "8", "16", "32", "64", "128", "256"};
    constexpr std::int16_t bits_of_256 = 7;
    const auto* found = std::ranges::find(prescalers, text);
    return found == std::end(prescalers) ? bits_of_256
                                         : static_cast<std::int16_t>(found - prescalers);
}

int prescaler_of(std::int16_t byte) {
    return 2 << (byte & 7);
}

}  // namespace vkm
