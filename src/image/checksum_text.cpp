#include "image/checksum_text.h"

#include <cstddef>

#include "text/hexadecimal.h"

namespace vkm {

std::string checksum_text(std::int32_t sum, SumTail tail) {
    constexpr std::size_t shown_digits = 7;
    const std::string digits = hex_text(static_cast<std::uint32_t>(sum), shown_digits);
    return digits.substr(digits.size() - shown_digits) +
           (tail == SumTail::plain ? "H" : "H       ");
}

}  // namespace vkm
