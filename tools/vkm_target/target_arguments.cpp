#include "vkm_target/target_arguments.h"

#include <utility>

#include "pseudo_terminal/timed_values.h"
#include "simulators/value_forms.h"

namespace vkm::sim {
namespace {

using std::chrono::microseconds;

constexpr int most_stops = 1'000'000;

// False when it is to be of both kinds.
bool set_kind(TargetArguments& arguments, TargetArguments::Kind kind) {
    const bool first = arguments.kind == TargetArguments::Kind::none;
    if (first) arguments.kind = kind;
    return arguments.kind == kind;
}

bool add_saying(TargetArguments& arguments, std::optional<std::vector<std::uint8_t>> bytes) {
    if (!bytes) return false;
    arguments.talking.sayings.push_back({*std::move(bytes)});
    return true;
}

std::optional<Memory> parse_memory(std::string_view text) {
    if (text == "sfr") return Memory::sfr;
    if (text == "ram") return Memory::ram;
    if (text == "xram") return Memory::xram;
    return std::nullopt;
}

// The time of the thing that was told last.
bool set_time_of_saying(TargetArguments& arguments, std::string_view text,
                        microseconds Saying::*time) {
    if (arguments.talking.sayings.empty()) return false;
    return set_milliseconds(text, arguments.talking.sayings.back().*time);
}

// "2 xram 0002 99": by the second stop.
bool add_change(TargetArguments& arguments, std::string_view text) {
    const auto change_text = split_off(text, ' ');
    const auto stop = parse_whole(text, 1, most_stops);
    const auto change = parse_change(change_text.value_or(""));
    if (!stop || !change) return false;
    auto& changes = arguments.stopped.changes;
    const auto number = static_cast<std::size_t>(*stop);
    if (changes.size() < number) changes.resize(number);
    changes[number - 1].push_back(*change);
    return true;
}

// "registers,xram 256"
bool set_dumps(TargetArguments& arguments, std::string_view text) {
    arguments.stopped.dumps.clear();
    for (std::optional<std::string_view> rest = text; rest;) {
        std::string_view one = *rest;
        rest = split_off(one, ',');
        const auto dump = parse_dump(one);
        if (!dump) return false;
        arguments.stopped.dumps.push_back(*dump);
    }
    return true;
}

bool set_text(std::string_view text, std::vector<std::uint8_t>& bytes) {
    const auto read = parse_text(text);
    if (read) bytes = *read;
    return read.has_value();
}

using A = TargetArguments;

const Option<TargetArguments> kind_options[] = {
    {"--talk", "", "a target that talks as a user's program does",
     [](A& a, std::string_view) { return set_kind(a, A::Kind::talking); }},
    {"--monitor", "", "a target that stops at break points and dumps its state",
     [](A& a, std::string_view) { return set_kind(a, A::Kind::stopped); }},
    {"--baud", "BAUD", "its rate, 115200 if not told",
     [](A& a, std::string_view v) {
         const auto baud = parse_number(v, 1, 4e6);
         a.baud = baud.value_or(0);
         return baud.has_value();
     }},
};

const Option<TargetArguments> talking_options[] = {
    {"--say", "TEXT", "says this; \\r, \\n, \\xHH and \\\\ in it; may be told several times",
     [](A& a, std::string_view v) { return add_saying(a, parse_text(v)); }},
    {"--say-hex", "HEX", "the same, as hexadecimal bytes",
     [](A& a, std::string_view v) { return add_saying(a, parse_bytes(v)); }},
    {"--burst", "N", "says so many bytes without a pause",
     [](A& a, std::string_view v) {
         const auto count = parse_whole(v, 1, longest_burst);
         if (!count) return false;
         return add_saying(a, burst_bytes(a.burst_kind, static_cast<std::size_t>(*count)));
     }},
    {"--burst-kind", "KIND", "before --burst: text, numbered lines, or count, 00 to FF",
     [](A& a, std::string_view v) {
         const auto kind = parse_burst_kind(v);
         a.burst_kind = kind.value_or(BurstKind::text);
         return kind.has_value();
     }},
    {"--after", "MS", "behind one of these: from the start until it says that",
     [](A& a, std::string_view v) { return set_time_of_saying(a, v, &Saying::first); }},
    {"--every", "MS", "behind one of these: says that again and again",
     [](A& a, std::string_view v) { return set_time_of_saying(a, v, &Saying::every); }},
    {"--echo", "", "says again each byte that it hears",
     [](A& a, std::string_view) {
         a.talking.echo = true;
         return true;
     }},
    {"--unpaced", "", "as fast as the terminal takes it, whatever rate the host has set",
     [](A& a, std::string_view) {
         a.unpaced = true;
         return true;
     }},
};

const Option<TargetArguments> stopped_options[] = {
    {"--stops", "N", "break points, 0: it stops when commanded only; without end if not told",
     [](A& a, std::string_view v) {
         const auto stops = parse_whole(v, 0, most_stops);
         a.stopped.most_stops = stops.value_or(0);
         return stops.has_value();
     }},
    {"--run-time", "MS", "from the start, and from each order to go on, to a stop; 500",
     [](A& a, std::string_view v) { return set_milliseconds(v, a.stopped.run_time); }},
    {"--dumps", "DUMPS", "what it tells: \"registers,ram,xram 256,window 0000\" if not told",
     set_dumps},
    {"--set", "CHANGE", "what a memory holds at the start: \"xram 0002 99\", sfr, ram or xram",
     [](A& a, std::string_view v) {
         const auto change = parse_change(v);
         return change && a.stopped.state.set(change->memory, change->address, change->value);
     }},
    {"--change", "N CHANGE", "the same by its stop number N: \"2 sfr E0 12\"", add_change},
    {"--no-wait", "", "tells all in a row and waits for no acknowledgement",
     [](A& a, std::string_view) {
         a.stopped.waits_for_ack = false;
         return true;
     }},
    {"--gap", "MS", "between two frames of such a row",
     [](A& a, std::string_view v) { return set_milliseconds(v, a.stopped.gap); }},
    {"--turnaround", "US", "from a command to the frame that it brings",
     [](A& a, std::string_view v) { return set_microseconds(v, a.stopped.turnaround); }},
    {"--text", "TEXT", "said directly before the first frame of a stop",
     [](A& a, std::string_view v) { return set_text(v, a.stopped.text_before); }},
    {"--text-behind", "TEXT", "said directly behind the last",
     [](A& a, std::string_view v) { return set_text(v, a.stopped.text_behind); }},
    {"--fault", "FAULT", "does something wrong, see below; may be told several times",
     [](A& a, std::string_view v) { return append_told(a.stopped.faults, parse_dump_fault(v)); }},
};

const OptionGroup<TargetArguments> all_options[] = {{"", kind_options},
                                                    {"", program_option_rows<TargetArguments>},
                                                    {"--talk", talking_options},
                                                    {"--monitor", stopped_options}};

constexpr std::string_view help_head =
    "vkm-target --talk|--monitor [OPTION]...\n"
    "\n"
    "A simulated target whose program runs, on a pseudo-terminal. It prints \"ready DEVICE\";\n"
    "give that device to the tool as its serial port. It hears the host only at its own\n"
    "rate, and is heard only there.\n"
    "\n";

constexpr std::string_view help_tail =
    "\n"
    "A fault is KIND:NTH*TIMES=VALUE, all but KIND optional: \"wrong_sum:3\" spoils the third\n"
    "frame, counted with those that are sent again, \"cut_off*0=9\" cuts all of them off.\n"
    "KIND: wrong_sum, cut_off (bytes that come, the mark's included), split_mark (ms between\n"
    "  its bytes), other_length (length field), other_type (type), other_size (bytes of\n"
    "  memory), noise (hexadecimal bytes before the mark)\n"
    "\n"
    "Commands on standard input, one a line:\n"
    "  say TEXT            says this, with \\r, \\n, \\xHH and \\\\ in it\n"
    "  say-hex HEX         says these bytes\n"
    "  burst N [KIND]      says so many bytes without a pause\n"
    "  heard               prints what its program has heard since the last time\n"
    "  sent                prints how many bytes the terminal has taken\n"
    "  unplug, plug        the cable out, and in again with a new terminal\n"
    "  quit\n"
    "and of --monitor\n"
    "  stop                stops now\n"
    "  set CHANGE          changes a memory\n"
    "  commands            prints the commands that came since the last time\n"
    "  fault FAULT         one more fault, counted from now on\n"
    "  no-faults           forgets all faults\n"
    "  state               prints whether it stands, and its counters\n"
    "Each is answered with one line, \"ok ...\" or \"error ...\".\n"
    "\n"
    "What happens with --monitor is told on standard output, one line each: stopped, dump,\n"
    "command, running, objection (what is wrong with what it heard).\n";

}  // namespace

std::string target_usage() {
    return std::string(help_head) + options_help(all_options) + std::string(help_tail);
}

std::optional<BurstKind> parse_burst_kind(std::string_view text) {
    if (text == "text") return BurstKind::text;
    if (text == "count") return BurstKind::count;
    return std::nullopt;
}

std::optional<MemoryChange> parse_change(std::string_view text) {
    const auto numbers = split_off(text, ' ');
    const auto memory = parse_memory(text);
    std::string_view address_text = numbers.value_or("");
    const auto value_text = split_off(address_text, ' ');
    const auto address = parse_hex(address_text, 0xFFFF);
    const auto value = parse_hex(value_text.value_or(""), 0xFF);
    if (!memory || !address || !value) return std::nullopt;
    const MemoryChange change{*memory, *address, static_cast<std::uint8_t>(*value)};
    if (!CpuState().set(change.memory, change.address, change.value)) return std::nullopt;
    return change;
}

std::string_view name_of(DumpType type) {
    constexpr std::string_view names[] = {"registers", "ram", "xram", "window"};
    return names[static_cast<std::size_t>(type)];
}

std::optional<Dump> parse_dump(std::string_view text) {
    const auto number = split_off(text, ' ');
    if (text == name_of(DumpType::registers) && !number) return registers_dump();
    if (text == name_of(DumpType::ram) && !number) return ram_dump();
    if (text == name_of(DumpType::xram)) {
        const auto size = parse_whole(number.value_or(""), 0, 1024);
        if (size) return xram_dump(static_cast<std::size_t>(*size));
    }
    if (text == name_of(DumpType::window)) {
        const auto address = parse_hex(number.value_or(""), 0xFFFF);
        if (address) return window_dump(static_cast<std::uint16_t>(*address));
    }
    return std::nullopt;
}

ArgumentsRead<TargetArguments> read_target_arguments(std::span<const char* const> words) {
    ArgumentsRead<TargetArguments> read = read_options(all_options, words);
    if (!read.error.empty() || read.arguments.help) return read;
    if (read.arguments.kind == TargetArguments::Kind::none)
        read.error = "either --talk or --monitor has to be told";
    return read;
}

}  // namespace vkm::sim
