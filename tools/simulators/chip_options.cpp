// The option bytes of a simulated chip: what it reports, takes and refuses.
#include <cmath>

#include "catalogue/model_traits.h"
#include "simulators/byte_values.h"
#include "simulators/simulated_chip.h"

namespace vkm::sim {
namespace {

using Body = std::span<const std::uint8_t>;

constexpr std::uint8_t code_busy = 0x81;

// Letters D, E and F got the option byte of the watchdog after 3.6.
constexpr int watchdog_option = 3;
constexpr std::uint8_t last_without_watchdog_option = 0x36;

// Bits that the silicon needs as they are told here.
constexpr std::uint8_t letter_a_kind = 0x40;
constexpr std::uint8_t letter_a_kind_PCA = 0x20;
constexpr std::uint8_t letter_a_speed = 0x08;
constexpr std::uint8_t letter_c_normal_speed = 0x01;  // option byte 1
constexpr std::uint8_t letter_c_always_0 = 0x02;      // option byte 1
constexpr std::uint8_t letter_def_always_0 = 0x08;    // option byte 8
constexpr std::uint8_t runs_on_crystal = 0x02;        // D, E, F: byte 2; G: byte 3

// The firmware compares the clock that it is told with its own.
constexpr double clock_tolerance = 0.01;

}  // namespace

bool SimulatedChip::lacks_watchdog_option() const {
    return silicon_->letter >= 'D' && silicon_->letter <= 'F' &&
           silicon_->version <= last_without_watchdog_option;
}

void SimulatedChip::append_options(std::vector<std::uint8_t>& payload) const {
    for (const int number : option_numbers()) {
        const bool lacking = number == watchdog_option && lacks_watchdog_option();
        payload.push_back(lacking ? std::uint8_t{0xFF}
                                  : options_[static_cast<std::size_t>(number)]);
    }
}

SimulatedChip::Outcome SimulatedChip::do_options() {
    const Body body = receiver_.body();
    const std::string why = objection_to_options(body);
    if (!why.empty()) return refused(why + ": " + hex_text(receiver_.frame()));
    if (config_.option_busy < 0 || busy_answers_ < config_.option_busy) {
        ++busy_answers_;
        return {true, {code_busy}, {}, std::nullopt};
    }
    store_options(body);
    return acknowledged(config_.option_time);
}

std::string SimulatedChip::objection_to_options(Body body) const {
    switch (silicon_->letter) {
        case 'A': {
            const int kind = body[0] & ~letter_a_speed;
            const int own = has_PCA_option(config_.model) ? letter_a_kind_PCA : letter_a_kind;
            return kind == own ? "" : "option byte of another chip";
        }
        case 'C':
            if ((body[0] & letter_c_always_0) != 0) return "option bit that has to be 0";
            return objection_to_pair((body[0] & letter_c_normal_speed) == 0, body.subspan(1, 2));
        case 'G':
            return objection_to_clock(body[1], body.last(4));
        default:
            if ((body[2] & letter_def_always_0) != 0) return "option bit that has to be 0";
            if (lacks_watchdog_option() && body[1] != 0xFF) return "option byte that it lacks";
            return objection_to_clock(body[0], body.last(4));
    }
}

// On its internal oscillator the chip wants to be told what clock that makes.
std::string SimulatedChip::objection_to_clock(std::uint8_t source, Body clock) const {
    const std::uint32_t told = big_endian(clock);
    if ((source & runs_on_crystal) != 0)
        return told == 0xFFFFFFFF ? "" : "options with a clock that isn't wanted";
    return std::abs(told / clock_ - 1) < clock_tolerance ? "" : "options with a wrong clock";
}

// The reload pair of the line's rate; twice its count for a clock that is to be doubled.
std::string SimulatedChip::objection_to_pair(bool doubled, Body pair) const {
    if (by_trigger_ || !tested_pair_) return "";
    const std::uint32_t in_force = 65536U - *tested_pair_;
    const std::uint32_t wanted = doubled ? 2 * in_force : in_force;
    return 65536 - big_endian(pair) == wanted ? "" : "options with a reload pair of another rate";
}

void SimulatedChip::store_options(Body body) {
    const auto keep = [this](int number, std::uint8_t value) {
        options_[static_cast<std::size_t>(number)] = value;
    };
    const std::span<const int> numbers = option_numbers();
    if (silicon_->letter == 'A') {
        // Burnt double speed stays: only a programmer that erases the chip takes it back.
        const int burnt = options_[0] & letter_a_speed;
        keep(0, static_cast<std::uint8_t>(body[0] | burnt));
    } else if (silicon_->letter == 'C') {
        keep(1, body[0]);
        keep(8, body[3]);
    } else {
        for (std::size_t i = 0; i < numbers.size(); ++i) keep(numbers[i], body[i]);
    }
    options_[static_cast<std::size_t>(numbers[0])] ^= config_.option_flaw;
    ++counters_.option_writes;
}

}  // namespace vkm::sim
