#include "simulators/chip_timing.h"

#include <algorithm>
#include <cmath>
#include <span>

namespace vkm::sim {
namespace {

// One unit of a count of pulses: 8 bits at 1200 baud take so many clock cycles,
// and the firmware's loop misses six units of them.
constexpr double hz_per_count = 2061;
constexpr double counts_missed = 6;
constexpr double pulse_baud_of_unit = 1200;

// The same for the sum of the trigger's counts.
constexpr double hz_per_trigger_count = 500.5;
constexpr double trigger_counts_missed = 145;

// Eight counts in a row of a timer that runs on: their sum is right to one unit.
std::array<std::uint16_t, 8> eight_counts(double sum) {
    std::array<std::uint16_t, 8> counts{};
    double before = 0;
    for (std::size_t i = 0; i < counts.size(); ++i) {
        const double until = std::round(sum * static_cast<double>(i + 1) / 8);
        counts[i] = static_cast<std::uint16_t>(std::clamp(until - before, 0.0, 65535.0));
        before = until;
    }
    return counts;
}

struct WaitStep {
    double below_mhz;  // exclusive
    std::uint8_t code;
};

constexpr WaitStep waits_family_1[] = {{5, 131}, {15, 130}, {30, 129}};
constexpr WaitStep waits_family_2[] = {{6, 131}, {11, 130}, {20, 129}};
constexpr WaitStep waits_8bit_timer[] = {{2, 135},  {3, 134},  {4, 133}, {7, 132},
                                         {13, 131}, {21, 130}, {25, 129}};
constexpr std::uint8_t no_wait = 128;

std::span<const WaitStep> wait_steps(int family) {
    if (family == 1) return waits_family_1;
    if (family == 2) return waits_family_2;
    if (has_eight_bit_reload(family)) return waits_8bit_timer;
    return {};
}

}  // namespace

bool has_eight_bit_reload(int family) {
    return family == 3 || family == 4 || family == 6;
}

std::optional<double> rate_of_pair(int family, double clock, std::uint8_t high, std::uint8_t low) {
    if (!has_eight_bit_reload(family)) return clock / 32 / (65536 - (high * 256 + low));
    const int count = 256 - low;
    switch (high) {
        case 0x00:
            return clock / 32 / 12 / count;
        case 0x80:
            return clock / 32 / 6 / count;
        case 0x40:
            return clock / 32 / count;
        case 0xC0:
            return clock / 16 / count;
        default:
            return std::nullopt;
    }
}

double rate_by_counting(double clock, double baud) {
    return clock / std::max(1.0, std::round(clock / baud));
}

std::array<std::uint16_t, 8> counts_of_pulses(double clock, double pulse_baud) {
    const double units = clock * (pulse_baud_of_unit / pulse_baud) / hz_per_count;
    return eight_counts(8 * (units - counts_missed));
}

std::array<std::uint16_t, 8> counts_of_trigger(double clock) {
    return eight_counts(clock / hz_per_trigger_count - trigger_counts_missed);
}

std::uint8_t flash_wait_code(int family, double clock) {
    const double mhz = std::floor(clock / 1e6 + 0.5);
    for (const WaitStep& step : wait_steps(family))
        if (mhz < step.below_mhz) return step.code;
    return no_wait;
}

}  // namespace vkm::sim
