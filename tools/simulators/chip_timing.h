// What a chip's clock makes of the line: the counts that tell the clock, the
// rates that its baud timer can be set to, and the waits that its flash needs.
#pragma once

#include <array>
#include <cstdint>
#include <optional>

namespace vkm::sim {

// Families 3, 4 and 6 have an 8-bit baud timer with a code for its division; all
// others have one of 16 bits.
bool has_eight_bit_reload(int family);

// The rate in baud that a reload pair stands for, with the chip's clock in Hz.
// Nothing when the pair is none that this family's timer knows.
std::optional<double> rate_of_pair(int family, double clock, std::uint8_t high, std::uint8_t low);

// The rate at which a chip sends by counting its own clock cycles, when it was
// asked at this rate.
double rate_by_counting(double clock, double baud);

// Eight counts that the chip takes of the sync bytes, each of the time between
// the falling edges of a 7F, which are eight bits apart; 1200 baud is what the
// unit of the counts is made for.
std::array<std::uint16_t, 8> counts_of_pulses(double clock, double pulse_baud);

// The counts of the trigger at 115200 baud, in a finer unit.
std::array<std::uint16_t, 8> counts_of_trigger(double clock);

// The code of the wait steps that this family's flash needs at this clock: 128
// for none, more for a slower clock.
std::uint8_t flash_wait_code(int family, double clock);

}  // namespace vkm::sim
