// Baud rates as values: the list of them, what a chip can make of its clock, and
// the figures that go with a rate in the frames of the baud exchange.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace vkm {

// The rates that the boot firmware knows, lowest first. 11520 and 12800 belong
// there on purpose.
inline constexpr std::array<std::int32_t, 12> baud_rates = {
    1200, 2400, 4800, 9600, 11520, 12800, 14400, 19200, 28800, 38400, 57600, 115200};

// What calculate_baud is given, and on success what it changes.
struct BaudChoice {
    std::int16_t MaxNo = 100;      // highest row to try; on success the row chosen
    std::int32_t baud = 0;         // nominal baud
    float errNumb = 0;             // its error in percent
    std::int16_t double_baud = 0;  // code of families 3, 4, 6; else left alone
};

// The highest baud not above `limit` that a chip of this family can make of
// this clock (Hz). The result is the reload count of its baud timer, -1 when no
// row fits; then only MaxNo may have changed (it is trimmed to the table).
std::int16_t calculate_baud(std::int32_t crystal_frequency, std::int16_t MCU_Family,
                            std::int32_t limit, BaudChoice& choice);

}  // namespace vkm
