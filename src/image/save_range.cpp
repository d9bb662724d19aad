#include "image/save_range.h"

#include "image/image_messages.h"
#include "text/hexadecimal.h"

namespace vkm {
namespace {

constexpr std::int64_t last_saved_address = 0xFFFF;

}  // namespace

SaveRange save_range(std::string_view start_text, std::string_view length_text) {
    return {.start = hex_field(start_text, address_digits),
            .length = hex_field(length_text, length_digits)};
}

std::string_view save_range_problem(const SaveRange& range) {
    if (range.start < 0) return image_text::start_too_small;
    if (range.start > last_saved_address) return image_text::start_too_big;
    if (range.length <= 0) return image_text::length_too_small;
    if (range.start + range.length - 1 > last_saved_address) return image_text::length_too_big;
    return {};
}

}  // namespace vkm
