#include "image/image_buffer.h"

#include <algorithm>

#include "text/trimming.h"

namespace vkm {
namespace {

// The part of an area that lies inside the array.
template <class Byte>
std::span<Byte> inside(std::span<Byte> bytes, std::int64_t low, std::int64_t high) {
    low = std::max<std::int64_t>(low, 0);
    high = std::min(high, static_cast<std::int64_t>(bytes.size()) - 1);
    if (high < low) return {};
    return bytes.subspan(static_cast<std::size_t>(low), static_cast<std::size_t>(high - low + 1));
}

}  // namespace

bool is_program_image(const Image_Buffer& buffer) {
    return upper_case(buffer.Buffer_Name) == "AP_FILE";
}

bool holds_data(std::span<const std::uint8_t> bytes, std::int64_t low, std::int64_t high) {
    return std::ranges::any_of(inside(bytes, low, high), [](std::uint8_t b) { return b != 0; });
}

void clear_area(std::span<std::uint8_t> bytes, std::int64_t low, std::int64_t high) {
    std::ranges::fill(inside(bytes, low, high), std::uint8_t{0});
}

}  // namespace vkm
