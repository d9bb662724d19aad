// Bits of the option bytes, as values.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

#include "options/options_state.h"

namespace vkm {

// Entry n stands for bit n; a ninth entry masks nothing.
inline constexpr std::array<std::uint8_t, 9> Bit_Set_Mask = {1, 2, 4, 8, 16, 32, 64, 128, 0};
inline constexpr std::array<std::uint8_t, 9> Bit_Clear_Mask = {254, 253, 251, 247, 239,
                                                               223, 191, 127, 0};

// Where an option lies and which value its choice has there.
struct Option_Bit {
    std::size_t byte = 0;  // 0 to 16
    std::size_t bit = 0;   // 0 to 7
    int value = 0;         // 0 or 1
    bool operator==(const Option_Bit&) const = default;
};

// "0131" is bit 3 of byte 1, value 1. Nothing for a text that names no bit.
std::optional<Option_Bit> option_bit(std::string_view Option_Code);

// "1" when the bit of these bytes has the choice's value, "0" when it has not,
// and nothing for a code without a bit.
std::string_view bit_state(std::string_view Option_Code, const Option_Words& bytes);

struct Option_Default_Byte {
    std::int16_t value = 255;
    std::int16_t and_mask = 255;
    std::int16_t or_mask = 255;
    bool operator==(const Option_Default_Byte&) const = default;
};

// What a byte starts from. Nothing where the family's table has no entry: bytes 0
// to 7 of families 0 and 1, whose chips take no such bytes.
std::optional<Option_Default_Byte> option_default(std::int16_t MCU_Family, std::size_t byte);

// The byte of the watchdog, with its prescaler in the low three bits; none in the
// families without one.
std::optional<std::size_t> prescaler_byte(std::int16_t MCU_Family);

// The byte whose bit 1 chooses the clock: set, the chip runs on its crystal. None
// in the families that have no choice.
std::optional<std::size_t> clock_source_byte(std::int16_t MCU_Family);

// The three bits of a prescaler as it stands in the list: "2" gives 0, "128" 6,
// and "256" or any other text 7; and the prescaler that a byte holds, 2 to 256.
std::int16_t prescaler_bits(std::string_view text);
int prescaler_of(std::int16_t byte);

}  // namespace vkm
