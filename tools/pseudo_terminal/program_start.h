// How every program with a target on a terminal comes from its command line to its work.
#pragma once

#include <cstdio>
#include <string>
#include <string_view>
#include <utility>

#include "pseudo_terminal/command_line.h"
#include "pseudo_terminal/target_program.h"

namespace vkm::sim {

// Runs the program unless its command line is wrong or asks for help; the exit status.
template <typename Arguments>
int start_program(const std::string& name, ArgumentsRead<Arguments> read, std::string (*usage)(),
                  int (*run)(Arguments)) {
    auto& [arguments, error] = read;
    if (!error.empty()) {
        std::fprintf(stderr, "%s: %s; --help tells what there is\n", name.c_str(), error.c_str());
        return 2;
    }
    if (arguments.help) {
        const std::string text = usage();
        std::fwrite(text.data(), 1, text.size(), stdout);
        return 0;
    }
    arguments.program.name = name;
    return run(std::move(arguments));
}

// The bench carries out the commands; its news, if it has any, go to standard output.
template <typename Bench>
ProgramWork work_at(Bench& bench, TargetProgram& program) {
    ProgramWork work;
    work.command = [&bench](std::string_view command, Instant now) {
        return bench.carry_out(command, now);
    };
    if constexpr (requires { bench.news(); })
        work.turned = [&bench, &program](Instant) {
            for (const std::string& line : bench.news()) program.tell(line);
        };
    return work;
}

}  // namespace vkm::sim
