// Option bytes: what goes to the chip and what came from it.
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "options/option_row.h"

namespace vkm {

inline constexpr std::size_t option_byte_count = 17;  // byte numbers 0 to 16
inline constexpr int option_group_count = 8;

using Option_Words = std::array<std::int16_t, option_byte_count>;
using Option_States = std::map<std::string, std::string, std::less<>>;  // by option key

struct OptionsState {
    // The schema, filled once; its states and one read-back text change later.
    std::array<std::vector<Option_Row>, option_group_count> MCU_Options;

    // Column 0 the byte as it goes to the chip, 1 AND mask, 2 OR mask, 3 unused.
    std::array<Option_Words, 4> Option_Bytes{};
    // The bytes as read from the chip, by byte number.
    Option_Words Chip_Bytes{};

    // By option key "1", "0" or nothing: whether the chip's bit (Read_State), or
    // the panel's choice (Panel_State), agrees with the key's row of the schema.
    Option_States Read_State;
    Option_States Panel_State;
};

// The state of a key has a value above 0.
inline bool option_on(const Option_States& states, std::string_view key) {
    const auto found = states.find(key);
    return found != states.end() && found->second == "1";
}

}  // namespace vkm
