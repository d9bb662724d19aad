// Which chip a simulated chip is, how fast it works, and what it does wrong.
#pragma once

#include <array>
#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "simulators/fault_plan.h"
#include "simulators/wire.h"

namespace vkm::sim {

// Option bytes by their number, 0 to 16; a chip has some of them only.
using OptionBytes = std::array<std::uint8_t, 17>;

// What happens to the chip once its user program has started, as on a bench
// where one chip after another is put into the socket.
struct AfterStart {
    bool power_cycle = false;
    std::chrono::milliseconds off_after{500};  // from the start of the user program
    std::chrono::milliseconds off_for{200};    // without power
    bool fresh_chip = false;                   // a blank one of the same kind comes in its place
};

struct ChipConfig {
    std::string model = "VKM47H58RK+";  // any name of the catalogue
    char letter = 0;                    // firmware letter A to G; 0: the model's usual one
    int version = -1;                   // version byte, 0x38 is "3.8"; -1: the letter's usual one
    double clock_hz = 11059200;         // of the crystal or oscillator
    bool double_speed = false;  // letters A and C: the option that runs it at twice that clock
    int status_length = 0;      // length field of the status frame, at least 24; 0: usual one
    std::uint8_t feature = 0;   // feature byte of long status frames; bits 1 and 0 tell the size of
                                // the firmware, bit 7 that noise precedes its answers
    std::optional<std::vector<std::uint8_t>> id{};  // ID bytes instead of the model's
    std::optional<OptionBytes> options{};           // instead of those a chip is delivered with
    bool short_acks = false;                        // block answers without the data sum

    std::chrono::microseconds turnaround{300};   // from a frame's end to its answer
    std::chrono::microseconds block_time{1000};  // programming one frame's data
    std::chrono::milliseconds erase_time{300};   // one erase command
    std::chrono::milliseconds option_time{8};    // writing the option bytes
    std::chrono::milliseconds listen_window{0};  // without pulses for so long after power-up, the
                                                 // user program starts; 0: it listens for ever
    // What its running program takes for the order to jump into the boot firmware, and
    // the rate at which it listens for that; empty: it listens for nothing.
    std::vector<std::uint8_t> user_code{};
    double user_code_baud = 115200;
    // What its program says once it runs; empty: nothing.
    std::vector<std::uint8_t> greeting{};
    double greeting_baud = 115200;
    std::chrono::milliseconds greeting_after{300};  // from the start of the program
    std::chrono::milliseconds greeting_every{0};    // then again and again; 0: once
    Instant powered_at{};  // cold until then; `never`: until power_on is called
    AfterStart after_start{};

    int option_busy = 0;           // so many option writes are answered "busy" (81) first; -1: all
    std::uint8_t option_flaw = 0;  // XORed onto the first option byte that is stored
    FaultPlan faults{};
};

}  // namespace vkm::sim
