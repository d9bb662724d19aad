#include "vkm_isp_target/isp_arguments.h"

#include <algorithm>

#include "pseudo_terminal/timed_values.h"
#include "simulators/value_forms.h"

namespace vkm::sim {
namespace {

using A = IspArguments;

bool set_baud(std::string_view text, double& baud) {
    const auto read = parse_number(text, 1, 4e6);
    if (read) baud = *read;
    return read.has_value();
}

bool set_code(A& arguments, std::string_view text) {
    const auto bytes = parse_bytes(text);
    if (!bytes || bytes->size() != arguments.config.code.size()) return false;
    std::copy(bytes->begin(), bytes->end(), arguments.config.code.begin());
    return true;
}

const Option<IspArguments> isp_options[] = {
    {"--baud", "BAUD", "its rate, 115200 if not told",
     [](A& a, std::string_view v) { return set_baud(v, a.config.baud); }},
    {"--code", "HEX", "the chip's code of four digits, 4005 if not told", set_code},
    {"--chip-byte", "HEX", "the byte behind it in the version, 00 if not told",
     [](A& a, std::string_view v) { return set_hex_byte(v, a.config.chip_byte); }},
    {"--flash-size", "BYTES", "its flash, 32768 if not told",
     [](A& a, std::string_view v) {
         const auto size = parse_whole(v, 1, 1 << 20);
         a.config.flash_size = static_cast<std::uint32_t>(size.value_or(0));
         return size.has_value();
     }},
    {"--user-code", "HEX", "is deaf until it hears this; awake from the start if not told",
     [](A& a, std::string_view v) {
         const auto code = parse_bytes(v);
         a.config.user_code = code.value_or(std::vector<std::uint8_t>{});
         return code.has_value();
     }},
    {"--user-code-baud", "BAUD", "rate at which it listens for that, 115200 if not told",
     [](A& a, std::string_view v) { return set_baud(v, a.config.user_code_baud); }},
    {"--erase-time", "MS", "time that an erase takes",
     [](A& a, std::string_view v) { return set_milliseconds(v, a.config.erase_time); }},
    {"--block-time", "US", "time that a block takes to be programmed",
     [](A& a, std::string_view v) { return set_microseconds(v, a.config.block_time); }},
    {"--answer-delay", "US", "time from the end of a frame to its answer",
     [](A& a, std::string_view v) { return set_microseconds(v, a.config.turnaround); }},
    {"--leave-after", "MS", "time from the first end of the job to leaving, 100 if not told",
     [](A& a, std::string_view v) { return set_milliseconds(v, a.config.leave_after); }},
    {"--answers-end", "", "answers the end of the job",
     [](A& a, std::string_view) {
         a.config.answers_end = true;
         return true;
     }},
    {"--silent", "", "does all that it is told and answers nothing",
     [](A& a, std::string_view) {
         a.config.silent = true;
         return true;
     }},
    {"--fault", "FAULT", "does something wrong, see below; may be told several times",
     [](A& a, std::string_view v) {
         return append_told(a.config.faults, parse_fault_on<IspFrame>(v));
     }},
};

const OptionGroup<IspArguments> all_options[] = {{"", isp_options},
                                                 {"", program_option_rows<IspArguments>}};

constexpr std::string_view help_head =
    "vkm-isp-target [OPTION]...\n"
    "\n"
    "A simulated target with a user's own ISP program, on a pseudo-terminal. It prints\n"
    "\"ready DEVICE\"; give that device to the tool as its serial port. It hears the host\n"
    "only at its own rate, and is heard only there.\n"
    "\n";

constexpr std::string_view help_tail =
    "\n"
    "A fault is KIND@FRAME:NTH*TIMES=VALUE, all but KIND optional: \"lose_reply@block:3\"\n"
    "loses the third block's answer, \"delay@erase=2500\" delays that of the first erase\n"
    "(TIMES 0: all that follow).\n"
    "KIND: lose_frame, lose_reply, damage (VALUE: which byte), delay (ms), twice, cut_off\n"
    "  (bytes kept), noise (hexadecimal bytes), wrong_sum, wrong_data_sum (of a block),\n"
    "  other_code (code), wrong_length (length field), power_loss (ms until it returns, 0:\n"
    "  never)\n"
    "FRAME: any, connect, version, erase, block, end\n"
    "\n"
    "Commands on standard input, one a line:\n"
    "  flash FROM COUNT    prints what its flash holds, both numbers being hexadecimal\n"
    "  save FILE           writes what its flash holds\n"
    "  counters            prints whether it is awake, and how many frames of each kind came\n"
    "  faults              prints what it found wrong since the last time\n"
    "  next                a fresh one comes in its place\n"
    "  fault FAULT         one more fault, counted from now on\n"
    "  no-faults           forgets all faults\n"
    "  pull, plug          the cable out, and in again with a new terminal\n"
    "  quit\n"
    "Each is answered with one line, \"ok ...\" or \"error ...\".\n"
    "\n"
    "What happens is told on standard output, one line each: awake, asleep, connect, version,\n"
    "erase, end, block, objection (what is wrong with what it heard).\n";

}  // namespace

std::string isp_usage() {
    return std::string(help_head) + options_help(all_options) + std::string(help_tail);
}

ArgumentsRead<IspArguments> read_isp_arguments(std::span<const char* const> words) {
    return read_options(all_options, words);
}

}  // namespace vkm::sim
