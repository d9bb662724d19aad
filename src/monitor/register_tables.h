// The special function registers that the monitor shows, in their order, for each
// family that has such a table.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

namespace vkm {

struct RegisterRow {
    std::string_view address;  // as shown: two hexadecimal digits and H, "E0H"
    std::string_view name;     // at most nine characters
};

// Empty for the other families.
std::span<const RegisterRow> registers_of_family(std::int16_t MCU_Family);

}  // namespace vkm
