// Commands that several targets obey, and the lines that answer them.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "pseudo_terminal/flash_file.h"

namespace vkm::sim {

// "FILE": what a memory holds goes there.
inline std::string save_memory(std::span<const std::uint8_t> memory, std::string_view argument) {
    const std::string path(argument);
    if (path.empty() || !save_flash(path, memory)) return "error can't write " + path;
    return "ok " + std::to_string(memory.size()) + " bytes";
}

// "FAULT", in the form that the target's kind of fault is read from.
template <typename Target, typename Parse>
std::string plan_fault(Target& target, Parse parse, std::string_view argument) {
    const auto fault = parse(argument);
    if (!fault) return "error no such fault: " + std::string(argument);
    target.add_fault(*fault);
    return "ok";
}

template <typename Target>
std::string forget_faults(Target& target) {
    target.forget_faults();
    return "ok";
}

}  // namespace vkm::sim
