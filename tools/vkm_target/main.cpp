// vkm-target: a simulated target whose program talks, or stops at break points,
// on a pseudo-terminal.
#include <span>
#include <utility>

#include "pseudo_terminal/program_start.h"
#include "pseudo_terminal/target_program.h"
#include "vkm_target/target_arguments.h"
#include "vkm_target/target_control.h"

namespace vkm::sim {
namespace {

// A line that takes no time: only the terminal's pace counts.
constexpr double unpaced_baud = 1e9;

// Puts a target on its terminal until it is told to quit; the exit status.
template <typename Simulated, typename Bench, typename Config>
int run_target(const TargetArguments& arguments, Config config) {
    config.baud = arguments.unpaced ? unpaced_baud : arguments.baud;
    config.started_at = now_instant();
    Simulated target(std::move(config));
    ProgramOptions options = arguments.program;
    options.baud = arguments.unpaced ? unpaced_baud : 0;
    options.keeps_unread = true;
    TargetProgram program(target.target(), std::move(options));
    Bench bench{target, [&] { return program.unread(); }};
    return program.run(work_at(bench, program));
}

int run(TargetArguments arguments) {
    if (arguments.kind == TargetArguments::Kind::talking)
        return run_target<TalkingTarget, TalkingBench>(arguments, arguments.talking);
    return run_target<StoppedTarget, StoppedBench>(arguments, arguments.stopped);
}

int start(std::span<const char* const> words) {
    return start_program("vkm-target", read_target_arguments(words), target_usage, run);
}

}  // namespace
}  // namespace vkm::sim

int main(int count, char** words) {
    return vkm::sim::start({words + 1, static_cast<std::size_t>(count - 1)});
}
