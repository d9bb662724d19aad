#include "link/exchange_frames.h"

#include <algorithm>
#include <array>

#include "text/numbers.h"
#include "text/trimming.h"

namespace vkm {
namespace {

constexpr std::uint8_t status_read = 0x50;
constexpr std::uint8_t watchdog = 0x86;
constexpr std::uint8_t set_baud = 0x8E;
constexpr std::uint8_t test_baud = 0x8F;

// The pair again in another form, so that a damaged one is noticed. The second
// byte holds twice the count, as far as it fits; the two frames differ in how far.
constexpr int most_in_test = 254;
constexpr int most_in_set = 255;

std::uint8_t complement(std::uint8_t high) {
    return static_cast<std::uint8_t>(255 - high);
}

std::uint8_t doubled_count(std::uint8_t low, int most) {
    return static_cast<std::uint8_t>(std::min((256 - low) * 2, most));
}

}  // namespace

Frame build_status_read() {
    return build_short_command(status_read, {});
}

Frame build_WDT_frame(std::uint8_t pin) {
    return build_short_command(watchdog, std::array{pin});
}

std::uint8_t WDT_pin(std::string_view text) {
    constexpr std::size_t pin_characters = 4;
    if (text.size() != pin_characters || character_count(text) != pin_characters) return no_WDT_pin;
    const std::int32_t port = leading_integer(text.substr(1, 1));
    const std::int32_t pin = leading_integer(text.substr(3, 1));
    return static_cast<std::uint8_t>(port * 16 + pin);
}

Frame build_test_frame(ReloadPair pair, std::uint8_t delay_code, std::uint8_t flash_wait_code) {
    return build_short_command(
        test_baud, std::array{pair.high, pair.low, complement(pair.high),
                              doubled_count(pair.low, most_in_test), delay_code, flash_wait_code});
}

Frame build_set_frame(ReloadPair pair, std::uint8_t delay_code) {
    return build_short_command(set_baud,
                               std::array{pair.high, pair.low, complement(pair.high),
                                          doubled_count(pair.low, most_in_set), delay_code});
}

}  // namespace vkm
