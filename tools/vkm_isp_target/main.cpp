// vkm-isp-target: a simulated target with a user's ISP program, on a pseudo-terminal.
#include <span>
#include <utility>

#include "pseudo_terminal/program_start.h"
#include "pseudo_terminal/target_program.h"
#include "vkm_isp_target/isp_arguments.h"
#include "vkm_isp_target/isp_control.h"

namespace vkm::sim {
namespace {

int run(IspArguments arguments) {
    SimulatedIspProgram target(std::move(arguments.config));
    TargetProgram program(target.target(), arguments.program);
    IspBench bench{target};
    return program.run(work_at(bench, program));
}

int start(std::span<const char* const> words) {
    return start_program("vkm-isp-target", read_isp_arguments(words), isp_usage, run);
}

}  // namespace
}  // namespace vkm::sim

int main(int count, char** words) {
    return vkm::sim::start({words + 1, static_cast<std::size_t>(count - 1)});
}
