#include "session/option_frames.h"

namespace vkm {
namespace {

constexpr std::uint8_t write_options = 0x8D;
constexpr std::int32_t no_clock = -1;

std::uint8_t byte_of(const Option_Words& options, int number) {
    return static_cast<std::uint8_t>(options[static_cast<std::size_t>(number)] & 0xFF);
}

}  // namespace

Frame build_family_0_options(std::uint8_t option) {
    return build_short_command(write_options, {{option}});
}

Frame build_family_2_options(const Option_Words& options, ReloadPair pair) {
    return build_short_command(write_options,
                               {{byte_of(options, 1), pair.high, pair.low, byte_of(options, 8)}});
}

Frame build_options_with_clock(const Option_Words& options, std::span<const int> numbers,
                               std::optional<std::int32_t> clock) {
    Frame body;
    for (const int number : numbers) body.push_back(byte_of(options, number));
    const auto hertz = static_cast<std::uint32_t>(clock.value_or(no_clock));
    for (const int shift : {24, 16, 8, 0})
        body.push_back(static_cast<std::uint8_t>(hertz >> shift));
    return build_short_command(write_options, body);
}

}  // namespace vkm
