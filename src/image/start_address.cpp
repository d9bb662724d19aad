#include "image/start_address.h"

#include <algorithm>

#include "text/hexadecimal.h"
#include "text/trimming.h"

namespace vkm {

std::int32_t start_address(std::string_view text) {
    constexpr std::int32_t highest = 0xFFFFFF;
    std::int32_t value = 0;
    for (char c : trimmed(text)) {
        const int digit = hex_digit(c);
        if (digit < 0) break;
        value = std::min(value * 16 + digit, highest);
    }
    const bool reads_as_negative = value > 0x7FFF && value <= 0xFFFF;
    return reads_as_negative ? value - 0x10000 : value;
}

std::int32_t placement_start(std::int32_t Start_Add) {
    return std::max(Start_Add < 0 ? Start_Add + 0x10000 : Start_Add, 0);
}

bool start_in_range(std::int32_t Start_Add, const MCU_Record& mcu, bool program_image) {
    return Start_Add <= (program_image ? mcu.Data_End : mcu.Data_End - mcu.Data_Start);
}

}  // namespace vkm
