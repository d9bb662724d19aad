// vkm-target: a simulated target whose program talks, or stops at break points,
// on a pseudo-terminal.
#include <cstdio>
#include <span>
#include <string>
#include <utility>

#include "pseudo_terminal/target_program.h"
#include "vkm_target/target_arguments.h"
#include "vkm_target/target_control.h"

namespace vkm::sim {
namespace {

// A line that takes no time: only the terminal's pace counts.
constexpr double unpaced_baud = 1e9;

// Puts a target on its terminal until it is told to quit; the exit status.
template <typename Simulated, typename Bench, typename Config>
int run(const TargetArguments& arguments, Config config) {
    config.baud = arguments.unpaced ? unpaced_baud : arguments.baud;
    config.started_at = now_instant();
    Simulated target(std::move(config));
    ProgramOptions options = arguments.program;
    options.name = "vkm-target";
    options.baud = arguments.unpaced ? unpaced_baud : 0;
    options.keeps_unread = true;
    TargetProgram program(target.target(), std::move(options));
    Bench bench{target, [&] { return program.unread(); }};
    ProgramWork work;
    work.command = [&](std::string_view command, Instant now) {
        return bench.carry_out(command, now);
    };
    if constexpr (requires { bench.news(); })
        work.turned = [&](Instant) {
            for (const std::string& line : bench.news()) program.tell(line);
        };
    return program.run(work);
}

int start(std::span<const char* const> words) {
    const auto [arguments, error] = read_target_arguments(words);
    if (!error.empty()) {
        std::fprintf(stderr, "vkm-target: %s; --help tells what there is\n", error.c_str());
        return 2;
    }
    if (arguments.help) {
        std::fwrite(target_usage().data(), 1, target_usage().size(), stdout);
        return 0;
    }
    if (arguments.kind == TargetArguments::Kind::talking)
        return run<TalkingTarget, TalkingBench>(arguments, arguments.talking);
    return run<StoppedTarget, StoppedBench>(arguments, arguments.stopped);
}

}  // namespace
}  // namespace vkm::sim

int main(int count, char** words) {
    return vkm::sim::start({words + 1, static_cast<std::size_t>(count - 1)});
}
