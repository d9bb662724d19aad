// Baud rates as values: the list of them, what a chip can make of its clock, and
// the figures that go with a rate in the frames of the baud exchange.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace vkm {

// The rates that the boot firmware knows, lowest first. 11520 and 12800 belong
// there on purpose.
inline constexpr std::array<std::int32_t, 12> baud_rates = {
    1200, 2400, 4800, 9600, 11520, 12800, 14400, 19200, 28800, 38400, 57600, 115200};

// "115200" or " 115200 " as the port wants it: "115200,n,8,1".
std::string port_settings(std::string_view baud);

// ---- the choice of a rate ---------------------------------------------------

// What calculate_baud is given, and on success what it changes.
struct BaudChoice {
    std::int16_t MaxNo = 100;      // highest row to try; on success the row chosen
    std::int32_t baud = 0;         // nominal baud
    float errNumb = 0;             // its error in percent
    std::int16_t double_baud = 0;  // code of families 3, 4, 6; else left alone
};

// Families 3, 4 and 6 reload their baud timer with 8 bits, the others with 16.
bool has_8_bit_baud_timer(std::int16_t MCU_Family);

// The highest baud not above `limit` that a chip of this family can make of
// this clock (Hz). The result is the reload count of its baud timer, -1 when no
// row fits; then only MaxNo may have changed (it is trimmed to the table).
std::int16_t calculate_baud(std::int32_t crystal_frequency, std::int16_t MCU_Family,
                            std::int32_t limit, BaudChoice& choice);

// ---- the reload pair --------------------------------------------------------

// The two bytes by which a chip is told its baud.
struct ReloadPair {
    std::uint8_t high = 0;
    std::uint8_t low = 0;
    bool operator==(const ReloadPair&) const = default;
};

// 65536 minus the count, as two bytes.
ReloadPair reload_pair(std::int32_t count);

// What the chip gets for a choice: families with an 8-bit timer have the code of
// the clock division in place of the high byte.
ReloadPair reload_pair_of(std::int32_t reload_count, std::int16_t MCU_Family,
                          const BaudChoice& choice);

struct ReloadPairs {
    ReloadPair present;  // for the clock mode in force
    ReloadPair other;    // for the other one
};

// The pairs for both clock modes, from the pair that the link was set up with.
// The chip has to find the baud again when an option changes its clock mode. At
// double speed the present count is half of the pair's and the pair is the other
// one; otherwise the other count is twice the pair's. Halves round to even.
ReloadPairs pairs_of_both_modes(ReloadPair pair, bool double_speed);

// ---- figures of the exchange frames -------------------------------------------

// Flash wait code for a clock in Hz.
std::uint8_t flash_wait_code(std::int16_t MCU_Family, double frequency);

// Delay code of the test frame.
std::uint8_t test_delay_code(std::int32_t baud, double frequency);

// The same when the link was made at 115200 baud and stays there.
std::uint8_t test_delay_code_at_115200(double frequency);

// Delay code of the set frame.
std::uint8_t set_delay_code(std::int32_t baud, double frequency);

}  // namespace vkm
