#include "link/baud.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <span>

#include "text/numbers.h"
#include "text/trimming.h"

namespace vkm {
namespace {

// A chip may run up to nearly 4 percent fast, but less slow. The limits
// themselves are out.
constexpr float fast_limit = 4.0F;
constexpr float slow_limit_16_bit = -3.2F;
constexpr float slow_limit_8_bit = -3.0F;

// Counts up to 2 leave a 16-bit timer no time for its interrupt.
constexpr float lowest_refused_16_bit = 2;
constexpr float full_8_bit = 256;

// A way in which a chip's timer can divide the clock.
struct Division {
    double divisor;
    std::int16_t double_baud;
};

constexpr Division division_16_bit = {32, 0};

// In the order in which they are tried. Bit 7 of the code halves the division,
// bit 6 takes the division by 12 away.
constexpr std::array<Division, 4> divisions_8_bit = {
    {{16, 192}, {32, 64}, {32 * 6, 128}, {32 * 12, 0}}};

// What a division makes of a rate. Kept in single precision: the limits are
// applied to the rounded error.
struct Attempt {
    float count = 0;
    float error = 100;  // percent; above 0 the chip is fast
};

Attempt attempt(std::int32_t crystal_frequency, double divisor, std::int32_t baud) {
    const double base = crystal_frequency / divisor;
    Attempt result;
    result.count = static_cast<float>(std::floor(base / baud + 0.5));
    if (result.count > 0) {
        const auto actual = static_cast<float>(base / double{result.count});
        result.error = static_cast<float>((double{actual} - baud) / baud * 100);
    }
    return result;
}

bool fits_16_bit(const Attempt& made) {
    return made.error > slow_limit_16_bit && made.error < fast_limit &&
           made.count > lowest_refused_16_bit &&
           made.count <= std::numeric_limits<std::int16_t>::max();
}

bool fits_8_bit(const Attempt& made) {
    return made.error > slow_limit_8_bit && made.error < fast_limit && made.count > 0 &&
           made.count < full_8_bit;
}

std::int16_t choose(BaudChoice& choice, std::int16_t row, const Attempt& made) {
    choice.MaxNo = row;
    choice.baud = baud_rates[static_cast<std::size_t>(row)];
    choice.errNumb = made.error;
    return static_cast<std::int16_t>(made.count);
}

// Codes by the clock in whole MHz: the first row whose bound lies above it.
struct WaitRow {
    std::int32_t below;
    std::uint8_t code;
};

constexpr std::int32_t any = std::numeric_limits<std::int32_t>::max();
constexpr std::array<WaitRow, 4> waits_1 = {{{5, 131}, {15, 130}, {30, 129}, {any, 128}}};
constexpr std::array<WaitRow, 4> waits_2 = {{{6, 131}, {11, 130}, {20, 129}, {any, 128}}};
constexpr std::array<WaitRow, 8> waits_3_4_6 = {
    {{2, 135}, {3, 134}, {4, 133}, {7, 132}, {13, 131}, {21, 130}, {25, 129}, {any, 128}}};
constexpr std::uint8_t shortest_wait = 128;

std::span<const WaitRow> wait_rows(std::int16_t MCU_Family) {
    if (MCU_Family == 1) return waits_1;
    if (MCU_Family == 2) return waits_2;
    if (has_8_bit_baud_timer(MCU_Family)) return waits_3_4_6;
    return {};
}

// Chips above this clock (Hz) count a delay twice as fast.
constexpr double fast_clock = 6.8e7;
constexpr std::int32_t shortest_test_delay = 40;
constexpr std::int32_t shortest_set_delay = 23;

std::uint8_t delay_code(std::int32_t baud, double frequency, std::int32_t shortest) {
    const std::int32_t delay = std::max(round_half_even(40 - baud * 0.002), shortest);
    const std::int32_t code = frequency > fast_clock ? delay * 2 : delay;
    return static_cast<std::uint8_t>(std::min(code, 255));
}

}  // namespace

std::string port_settings(std::string_view baud) {
    return std::string(trimmed(baud)) + ",n,8,1";
}

bool has_8_bit_baud_timer(std::int16_t MCU_Family) {
    return MCU_Family == 3 || MCU_Family == 4 || MCU_Family == 6;
}

std::int16_t calculate_baud(std::int32_t crystal_frequency, std::int16_t MCU_Family,
                            std::int32_t limit, BaudChoice& choice) {
    constexpr std::int16_t no_fit = -1;
    constexpr auto last_row = static_cast<std::int16_t>(baud_rates.size() - 1);
    choice.MaxNo = std::min(choice.MaxNo, last_row);
    if (choice.MaxNo < 1 || crystal_frequency < 1) return no_fit;

    for (std::int16_t row = choice.MaxNo; row >= 0; --row) {
        const std::int32_t baud = baud_rates[static_cast<std::size_t>(row)];
        if (baud > limit) continue;
        if (!has_8_bit_baud_timer(MCU_Family)) {
            const Attempt made = attempt(crystal_frequency, division_16_bit.divisor, baud);
            if (fits_16_bit(made)) return choose(choice, row, made);
            continue;
        }
        for (const Division& division : divisions_8_bit) {
            const Attempt made = attempt(crystal_frequency, division.divisor, baud);
            if (!fits_8_bit(made)) continue;
            choice.double_baud = division.double_baud;
            return choose(choice, row, made);
        }
    }
    return no_fit;
}

ReloadPair reload_pair(std::int32_t count) {
    const std::int64_t value = std::int64_t{65536} - count;
    return {static_cast<std::uint8_t>((value >> 8) & 0xFF),
            static_cast<std::uint8_t>(value & 0xFF)};
}

ReloadPair reload_pair_of(std::int32_t reload_count, std::int16_t MCU_Family,
                          const BaudChoice& choice) {
    ReloadPair pair = reload_pair(reload_count);
    if (has_8_bit_baud_timer(MCU_Family)) pair.high = static_cast<std::uint8_t>(choice.double_baud);
    return pair;
}

ReloadPairs pairs_of_both_modes(ReloadPair pair, bool double_speed) {
    const std::int32_t count = 65536 - (pair.high * 256 + pair.low);
    if (double_speed) return {reload_pair(round_half_even(count / 2.0)), pair};
    return {pair, reload_pair(count * 2)};
}

std::uint8_t flash_wait_code(std::int16_t MCU_Family, double frequency) {
    const double megahertz = std::floor(frequency / 1e6 + 0.5);
    for (const WaitRow& row : wait_rows(MCU_Family))
        if (megahertz < row.below) return row.code;
    return shortest_wait;
}

std::uint8_t test_delay_code(std::int32_t baud, double frequency) {
    return delay_code(baud, frequency, shortest_test_delay);
}

std::uint8_t test_delay_code_at_115200(double frequency) {
    const double square = frequency * frequency;
    double delay = 2;
    if (frequency < 4e6)
        delay = std::floor(1.8e14 / square + 23);
    else if (frequency < 1.4e7)
        delay = std::floor(5.4e14 / square + 5);
    else if (frequency < 1.8432e7)
        delay = std::floor(8.5e14 / square + 2);
    else if (frequency < 2.05e7)
        delay = 4;
    else if (frequency < 2.22e7)
        delay = 3;
    // The field is a byte; a clock below 0.9 MHz would ask for more.
    return static_cast<std::uint8_t>(std::min(delay, 255.0));
}

std::uint8_t set_delay_code(std::int32_t baud, double frequency) {
    return delay_code(baud, frequency, shortest_set_delay);
}

}  // namespace vkm
