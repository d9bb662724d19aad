// What every program with a target on a terminal may be told.
#pragma once

#include <array>
#include <string_view>

#include "pseudo_terminal/command_line.h"
#include "pseudo_terminal/target_program.h"

namespace vkm::sim {

struct ProgramArguments {
    ProgramOptions program;
    bool help = false;
};

// Of a program whose arguments are a kind of these.
template <typename Arguments>
inline constexpr std::array<Option<Arguments>, 4> program_option_rows{{
    {"--link", "PATH", "symbolic link to the terminal, removed at the end",
     [](Arguments& a, std::string_view v) {
         a.program.link = v;
         return !v.empty();
     }},
    {"--quiet", "", "tells of nothing but \"ready\" and what is commanded",
     [](Arguments& a, std::string_view) {
         a.program.quiet = true;
         return true;
     }},
    {"--until-eof", "", "ends when standard input does",
     [](Arguments& a, std::string_view) {
         a.program.until_eof = true;
         return true;
     }},
    {"--help", "", "tells all this and ends",
     [](Arguments& a, std::string_view) {
         a.help = true;
         return true;
     }},
}};

}  // namespace vkm::sim
