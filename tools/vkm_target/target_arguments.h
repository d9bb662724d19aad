// The command line of vkm-target.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "pseudo_terminal/program_arguments.h"
#include "simulators/stopped_target.h"
#include "simulators/talking_target.h"

namespace vkm::sim {

struct TargetArguments : ProgramArguments {
    enum class Kind { none, talking, stopped };
    Kind kind = Kind::none;
    double baud = 115200;
    bool unpaced = false;   // as fast as the terminal takes it; only a talking target
    TalkingConfig talking;  // without rate and start
    StoppedConfig stopped;
    BurstKind burst_kind = BurstKind::text;  // of the next burst
};

ArgumentsRead<TargetArguments> read_target_arguments(std::span<const char* const> words);

std::string target_usage();

// Forms of values, which commands use as well. Nothing when the text has another form.
std::optional<BurstKind> parse_burst_kind(std::string_view text);
// "xram 0002 99", memory, address and value, the numbers being hexadecimal.
std::optional<MemoryChange> parse_change(std::string_view text);
// "registers", "ram", "xram 256", "window 1200", the address being hexadecimal.
std::optional<Dump> parse_dump(std::string_view text);
// The first word of that.
std::string_view name_of(DumpType type);

// Bytes at once; more would fill the memory of the computer.
inline constexpr int longest_burst = 32 * 1024 * 1024;

}  // namespace vkm::sim
