// The piece of the program image that Save File writes.
#pragma once

#include <cstdint>
#include <string_view>

namespace vkm {

struct SaveRange {
    std::int64_t start = 0;
    std::int64_t length = 0;
};

// From the two fields: a start of up to four hexadecimal digits, a length of up to five.
SaveRange save_range(std::string_view start_text, std::string_view length_text);

// What is wrong with it, in both languages; empty when it can be saved. A piece
// ends at 0xFFFF at most, although the image may be longer.
std::string_view save_range_problem(const SaveRange& range);

}  // namespace vkm
