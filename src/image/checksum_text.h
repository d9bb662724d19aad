// The sum of a file as the operator sees it.
#pragma once

#include <cstdint>
#include <string>

namespace vkm {

enum class SumTail {
    blanks,  // "H       "
    plain,   // "H"
};

// The last seven hexadecimal digits, zeros in front.
std::string checksum_text(std::int32_t sum, SumTail tail = SumTail::blanks);

}  // namespace vkm
