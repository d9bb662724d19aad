#include "vkm_board/board_arguments.h"

#include "pseudo_terminal/timed_values.h"
#include "simulators/simulated_chip.h"
#include "simulators/value_forms.h"

namespace vkm::sim {
namespace {

using A = BoardArguments;

constexpr int most_wakes = 1'000'000;

// "now", "never", "after MS", "after-wakes N"
bool set_power(A& arguments, std::string_view text) {
    const auto number = split_off(text, ' ');
    arguments.power_by_hand = text == "never" || text == "after-wakes";
    if (text == "now" || text == "never") return !number;
    if (text == "after") return set_milliseconds(number.value_or(""), arguments.power_after);
    const auto wakes = parse_whole(number.value_or(""), 1, most_wakes);
    arguments.config.powered_after_wakes = wakes.value_or(0);
    return text == "after-wakes" && wakes;
}

const Option<BoardArguments> board_options[] = {
    {"--version", "HEX", "version byte of its firmware, 17 if not told",
     [](A& a, std::string_view v) { return set_hex_byte(v, a.config.version); }},
    {"--flag", "HEX", "the flag that it tells with its capacity, 00 if not told",
     [](A& a, std::string_view v) { return set_hex_byte(v, a.config.flag); }},
    {"--capacity", "KB", "the capacity that it tells, 64 if not told",
     [](A& a, std::string_view v) {
         const auto kb = parse_whole(v, 0, 255);
         a.config.capacity_kb = static_cast<std::uint8_t>(kb.value_or(0));
         return kb.has_value();
     }},
    {"--power", "WHEN",
     "now, never (until \"power on\"), \"after MS\" or \"after-wakes N\" bytes AA; now if not told",
     set_power},
    {"--eeprom", "FILE", "what it holds at the start",
     [](A& a, std::string_view v) {
         a.eeprom = v;
         return !v.empty();
     }},
    {"--erase-time", "MS", "time that an erase takes",
     [](A& a, std::string_view v) { return set_milliseconds(v, a.config.erase_time); }},
    {"--block-time", "US", "time that a block takes to be stored",
     [](A& a, std::string_view v) { return set_microseconds(v, a.config.block_time); }},
    {"--turnaround", "US", "time from the end of a frame to its answer",
     [](A& a, std::string_view v) { return set_microseconds(v, a.config.turnaround); }},
    {"--chip", "MODEL", "the chip in its socket; VKM47H58RK+ if not told",
     [](A& a, std::string_view v) {
         a.chip.model = v;
         return known_model(v);
     }},
    {"--fault", "FAULT", "does something wrong, see below; may be told several times",
     [](A& a, std::string_view v) {
         return append_told(a.config.faults, parse_fault_on<BoardFrame>(v));
     }},
};

const OptionGroup<BoardArguments> all_options[] = {{"", board_options},
                                                   {"", program_option_rows<BoardArguments>}};

constexpr std::string_view help_head =
    "vkm-board [OPTION]...\n"
    "\n"
    "A simulated download board on a pseudo-terminal. It prints \"ready DEVICE\"; give that\n"
    "device to the tool as its serial port. It hears and answers at 115200 baud.\n"
    "\n";

constexpr std::string_view help_tail =
    "\n"
    "A fault is KIND@FRAME:NTH*TIMES=VALUE, all but KIND optional: \"lose_reply@block:3\"\n"
    "loses the third block's answer, \"lose_frame@wake:1*0\" never wakes (TIMES 0: all that\n"
    "follow).\n"
    "KIND: lose_frame, lose_reply, damage (VALUE: which byte), delay (ms), twice, cut_off\n"
    "  (bytes kept), noise (hexadecimal bytes), wrong_sum (the CRC), wrong_data_sum (the first\n"
    "  byte of what was read), other_code (code), wrong_length (length field), power_loss\n"
    "  (ms until it returns, 0: never)\n"
    "FRAME: any, wake, link_check, version, capacity, erase, erase_second, block, read\n"
    "\n"
    "Commands on standard input, one a line:\n"
    "  power on, power off\n"
    "  storage FROM COUNT  prints what it holds, both numbers being hexadecimal\n"
    "  save FILE           writes what it holds\n"
    "  ranges              prints the addresses that were written, by stage\n"
    "  counters            prints how many frames of each kind came\n"
    "  faults              prints what it found wrong since the last time\n"
    "  program             programs the chip in its socket\n"
    "  new                 a blank chip comes into the socket\n"
    "  chip-flash FROM COUNT  prints what the chip holds\n"
    "  chip-options        prints its option bytes\n"
    "  fault FAULT         one more fault, counted from now on\n"
    "  no-faults           forgets all faults\n"
    "  pull, plug          the cable out, and in again with a new terminal\n"
    "  quit\n"
    "Each is answered with one line, \"ok ...\" or \"error ...\".\n"
    "\n"
    "What happens is told on standard output, one line each: powered, unpowered, erased,\n"
    "block, objection (what is wrong with what it heard).\n";

}  // namespace

std::string board_usage() {
    return std::string(help_head) + options_help(all_options) + std::string(help_tail);
}

ArgumentsRead<BoardArguments> read_board_arguments(std::span<const char* const> words) {
    return read_options(all_options, words);
}

}  // namespace vkm::sim
