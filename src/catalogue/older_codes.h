// ID codes of the early firmware, four digits that stand in no row of the table,
// and what they stand for.
#pragma once

#include <span>
#include <string_view>

namespace vkm {

struct OlderCode {
    std::string_view reported;      // four digits
    std::string_view Chip_Name;     // with both variant letters ("H/W") a name for display only
    std::string_view Chip_ID_High;  // the code of the table row, as the newer firmware reports it
    std::string_view Chip_ID_Low;
};

std::span<const OlderCode> older_codes();

// All fields empty when the code is none of them.
OlderCode find_older_code(std::string_view reported);

}  // namespace vkm
