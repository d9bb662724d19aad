// A stretch of a memory, as commands name and print it.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "simulators/byte_values.h"
#include "simulators/value_forms.h"

namespace vkm::sim {

// "FROM COUNT", both hexadecimal: the line to answer, with the bytes that stand there.
inline std::string tell_stretch(std::span<const std::uint8_t> memory, std::string_view argument) {
    const auto count_text = split_off(argument, ' ');
    const auto first = parse_hex(argument, 0xFFFFFF);
    const auto count = parse_hex(count_text.value_or(""), 0xFFFFFF);
    if (!first || !count || *count == 0 || *first + *count > memory.size())
        return "error that needs a first address and a count, within " +
               std::to_string(memory.size()) + " bytes";
    return "ok " + hex_text(memory.subspan(*first, *count));
}

}  // namespace vkm::sim
