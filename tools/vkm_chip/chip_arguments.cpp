#include "vkm_chip/chip_arguments.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <utility>
#include <vector>

#include "pseudo_terminal/timed_values.h"
#include "simulators/simulated_chip.h"
#include "simulators/value_forms.h"

namespace vkm::sim {
namespace {

using std::chrono::microseconds;
using std::chrono::milliseconds;

constexpr double longest_seconds = 86400;

// Sets a whole number that has to lie in a range.
template <typename Number>
bool set_number(std::string_view text, double least, double most, Number& number) {
    const auto read = parse_number(text, least, most);
    if (read) number = static_cast<Number>(*read);
    return read.has_value();
}

template <typename Duration>
bool set_duration(std::string_view text, double most, Duration& duration) {
    const auto read = parse_number(text, 0, most);
    if (read) duration = Duration{static_cast<typename Duration::rep>(*read)};
    return read.has_value();
}

template <typename Duration>
bool set_seconds(std::string_view text, Duration& duration) {
    const auto read = parse_number(text, 0, longest_seconds);
    if (read) duration = std::chrono::duration_cast<Duration>(std::chrono::duration<double>(*read));
    return read.has_value();
}

bool set_byte(std::string_view text, std::uint8_t& byte) {
    const auto bytes = parse_bytes(text);
    if (!bytes || bytes->size() != 1) return false;
    byte = bytes->front();
    return true;
}

// In the order of the firmware's frames, as many as the chip has.
bool set_options(ChipArguments& arguments, std::string_view text) {
    const auto bytes = parse_bytes(text);
    const SimulatedChip chip(arguments.config);
    const std::span<const int> numbers = chip.option_numbers();
    if (!bytes || bytes->size() != numbers.size()) return false;
    OptionBytes options = chip.options();
    for (std::size_t i = 0; i < numbers.size(); ++i)
        options[static_cast<std::size_t>(numbers[i])] = (*bytes)[i];
    arguments.config.options = options;
    return true;
}

bool set_after_start(ChipArguments& arguments, std::string_view text, bool fresh_chip) {
    arguments.config.after_start.power_cycle = true;
    arguments.config.after_start.fresh_chip = fresh_chip;
    return set_seconds(text, arguments.config.after_start.off_after);
}

void work_without_delay(ChipArguments& arguments) {
    arguments.config.turnaround = microseconds{0};
    arguments.config.block_time = microseconds{0};
    arguments.config.erase_time = milliseconds{0};
    arguments.config.option_time = milliseconds{0};
}

const Option<ChipArguments> options[] = {
    {"--model", "NAME", "the chip, by its name in the catalogue; VKM47H58RK+ if not told",
     [](ChipArguments& a, std::string_view v) {
         a.config.model = v;
         return known_model(v);
     }},
    {"--letter", "L", "letter of its firmware, A to G, instead of the model's usual one",
     [](ChipArguments& a, std::string_view v) {
         if (v.size() != 1 || v[0] < 'A' || v[0] > 'G') return false;
         a.config.letter = v[0];
         return true;
     }},
    {"--version", "3.8", "version of its firmware",
     [](ChipArguments& a, std::string_view v) {
         const auto version = parse_version(v);
         a.config.version = version.value_or(-1);
         return version.has_value();
     }},
    {"--clock", "HZ", "its clock, as 11059200 or 11.0592M, which is the one if not told",
     [](ChipArguments& a, std::string_view v) {
         const auto clock = parse_clock(v);
         a.config.clock_hz = clock.value_or(0);
         return clock.has_value();
     }},
    {"--double-speed", "", "runs at twice that clock by its option (letters A and C)",
     [](ChipArguments& a, std::string_view) {
         a.config.double_speed = true;
         return true;
     }},
    {"--id", "HEX", "reports these ID bytes, up to two, instead of the model's",
     [](ChipArguments& a, std::string_view v) {
         a.config.id = parse_bytes(v);
         return a.config.id && a.config.id->size() <= 2;
     }},
    {"--feature", "HEX",
     "feature byte: bits 1 and 0 the firmware's size, bit 7 noise before answers",
     [](ChipArguments& a, std::string_view v) { return set_byte(v, a.config.feature); }},
    {"--status-length", "N", "length field of its status frame, 24 for the oldest firmware",
     [](ChipArguments& a, std::string_view v) {
         return set_number(v, 6, 65535, a.config.status_length);
     }},
    {"--short-acks", "", "acknowledges blocks without their data sum",
     [](ChipArguments& a, std::string_view) {
         a.config.short_acks = true;
         return true;
     }},
    {"--options", "HEX",
     "its option bytes, in the order of its letter; behind --model and --letter", set_options},
    {"--option-busy", "N", "says busy to so many option writes; -1: to all",
     [](ChipArguments& a, std::string_view v) {
         return set_number(v, -1, 1e6, a.config.option_busy);
     }},
    {"--option-flaw", "HEX", "stores its first option byte with these bits inverted",
     [](ChipArguments& a, std::string_view v) { return set_byte(v, a.config.option_flaw); }},
    {"--erase-time", "MS", "time that an erase takes",
     [](ChipArguments& a, std::string_view v) {
         return set_duration(v, 600'000, a.config.erase_time);
     }},
    {"--block-time", "US", "time that a block takes to be programmed",
     [](ChipArguments& a, std::string_view v) {
         return set_duration(v, 60e6, a.config.block_time);
     }},
    {"--turnaround", "US", "time from the end of a frame to its answer",
     [](ChipArguments& a, std::string_view v) {
         return set_duration(v, 60e6, a.config.turnaround);
     }},
    {"--fast", "", "all these times, and that of an option write, are 0",
     [](ChipArguments& a, std::string_view) {
         work_without_delay(a);
         return true;
     }},
    {"--listen-window", "MS",
     "a programmed chip waits so long for a host after power-up, then runs its program",
     [](ChipArguments& a, std::string_view v) {
         return set_duration(v, 600'000, a.config.listen_window);
     }},
    {"--user-code", "HEX", "its running program jumps into the boot firmware when it hears this",
     [](ChipArguments& a, std::string_view v) {
         const auto code = parse_bytes(v);
         a.config.user_code = code.value_or(std::vector<std::uint8_t>{});
         return code.has_value();
     }},
    {"--user-code-baud", "BAUD", "rate at which the program listens for it, 115200 if not told",
     [](ChipArguments& a, std::string_view v) {
         return set_number(v, 1, 4e6, a.config.user_code_baud);
     }},
    {"--greeting", "TEXT", "what its program says when it starts; \\r, \\n, \\xHH and \\\\ in it",
     [](ChipArguments& a, std::string_view v) {
         const auto text = parse_text(v);
         a.config.greeting = text.value_or(std::vector<std::uint8_t>{});
         return text.has_value();
     }},
    {"--greeting-baud", "BAUD", "rate at which it says that, 115200 if not told",
     [](ChipArguments& a, std::string_view v) {
         return set_number(v, 1, 4e6, a.config.greeting_baud);
     }},
    {"--greeting-after", "MS", "from the program's start to its greeting, 300 if not told",
     [](ChipArguments& a, std::string_view v) {
         return set_duration(v, 600'000, a.config.greeting_after);
     }},
    {"--greeting-every", "MS", "says it again and again",
     [](ChipArguments& a, std::string_view v) {
         return set_duration(v, 600'000, a.config.greeting_every);
     }},
    {"--power-after", "S", "has power only so many seconds after the start",
     [](ChipArguments& a, std::string_view v) { return set_seconds(v, a.power_after); }},
    {"--off", "", "has no power until the command \"on\"",
     [](ChipArguments& a, std::string_view) {
         a.power_by_hand = true;
         return true;
     }},
    {"--power-cycle", "S", "so many seconds after its program has started, power goes off and on",
     [](ChipArguments& a, std::string_view v) { return set_after_start(a, v, false); }},
    {"--fresh-chip-after-done", "S", "the same, with a blank chip in its place",
     [](ChipArguments& a, std::string_view v) { return set_after_start(a, v, true); }},
    {"--fault", "FAULT", "does something wrong, see below; may be told several times",
     [](ChipArguments& a, std::string_view v) {
         return append_told(a.config.faults, parse_fault(v));
     }},
    {"--load-flash", "FILE", "what the flash holds at the start",
     [](ChipArguments& a, std::string_view v) {
         a.load_flash = v;
         return !v.empty();
     }},
    {"--save-flash", "FILE",
     "writes the flash when a program starts, power goes off, and at the end",
     [](ChipArguments& a, std::string_view v) {
         a.save_flash = v;
         return !v.empty();
     }},
    {"--models", "", "lists the models and ends",
     [](ChipArguments& a, std::string_view) {
         a.list_models = true;
         return true;
     }},
};

const OptionGroup<ChipArguments> all_options[] = {{"", options},
                                                  {"", program_option_rows<ChipArguments>}};

constexpr std::string_view help_head =
    "vkm-chip [OPTION]...\n"
    "\n"
    "A simulated chip, with its boot firmware waiting on a pseudo-terminal. It prints\n"
    "\"ready DEVICE\"; give that device to the tool as its serial port. It obeys the\n"
    "baud rate that is set there and answers at the pace of a real line.\n"
    "\n";

constexpr std::string_view help_tail =
    "\n"
    "A fault is KIND@FRAME:NTH*TIMES=VALUE, all but KIND optional: \"lose_reply@block:3\"\n"
    "loses the third block's answer, \"delay@erase=2500\" delays that of the first erase,\n"
    "\"lose_frame@test_baud:1*0\" hears no baud test at all (TIMES 0: all that follow).\n"
    "KIND: lose_frame, lose_reply, damage (VALUE: which byte), delay (ms), twice, cut_off\n"
    "  (bytes kept), noise (hexadecimal bytes), wrong_sum, wrong_data_sum, other_code (code),\n"
    "  wrong_length (length field), power_loss (ms until it returns, 0: never)\n"
    "FRAME: any, status, watchdog, test_baud, set_baud, link_check, erase, block,\n"
    "  status_read, options, trigger, last_command\n"
    "\n"
    "Commands on standard input, one a line:\n"
    "  on, off             power\n"
    "  cycle [MS]          power off, and on again MS later (200)\n"
    "  new                 a blank chip in its place, with power\n"
    "  pull, plug          the cable out, and in again with a new terminal\n"
    "  fault FAULT         one more fault, counted from now on\n"
    "  no-faults           forgets all faults\n"
    "  flash FILE          writes what the flash holds\n"
    "  load FILE           fills the flash\n"
    "  options             prints the option bytes\n"
    "  state               prints the chip's state and counters\n"
    "  measure             prints how well the host has used the line\n"
    "  quit\n"
    "Each is answered with one line, \"ok ...\" or \"error ...\".\n"
    "\n"
    "What happens is told on standard output, one line each: powered, unpowered,\n"
    "connected, rate, erasing, erased, block, option_frame, options, busy, started,\n"
    "objection (what the chip found wrong with a frame), saved, pulled, ready.\n";

}  // namespace

std::string usage() {
    return std::string(help_head) + options_help(all_options) + std::string(help_tail);
}

std::optional<double> parse_clock(std::string_view text) {
    const bool mega = text.ends_with('M');
    if (mega) text.remove_suffix(1);
    const double unit = mega ? 1e6 : 1;
    const auto number = parse_number(text, 1, 200e6);
    if (!number || *number * unit < 100e3 || *number * unit > 200e6) return std::nullopt;
    return *number * unit;
}

std::optional<int> parse_version(std::string_view text) {
    if (text.size() != 3 || text[1] != '.') return std::nullopt;
    const auto digits = parse_bytes(std::string{text[0], text[2]});
    if (!digits) return std::nullopt;
    return digits->front();
}

ArgumentsRead<ChipArguments> read_arguments(std::span<const char* const> words) {
    return read_options(all_options, words);
}

}  // namespace vkm::sim
