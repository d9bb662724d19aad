// vkm-isp-target: a simulated target with a user's ISP program, on a pseudo-terminal.
#include <cstdio>
#include <span>
#include <string>
#include <utility>

#include "pseudo_terminal/target_program.h"
#include "vkm_isp_target/isp_arguments.h"
#include "vkm_isp_target/isp_control.h"

namespace vkm::sim {
namespace {

int run(IspArguments arguments) {
    SimulatedIspProgram target(std::move(arguments.config));
    arguments.program.name = "vkm-isp-target";
    TargetProgram program(target.target(), arguments.program);
    IspBench bench{target};
    ProgramWork work;
    work.command = [&](std::string_view command, Instant now) {
        return bench.carry_out(command, now);
    };
    work.turned = [&](Instant) {
        for (const std::string& line : bench.news()) program.tell(line);
    };
    return program.run(work);
}

int start(std::span<const char* const> words) {
    auto [arguments, error] = read_isp_arguments(words);
    if (!error.empty()) {
        std::fprintf(stderr, "vkm-isp-target: %s; --help tells what there is\n", error.c_str());
        return 2;
    }
    if (arguments.help) {
        std::fwrite(isp_usage().data(), 1, isp_usage().size(), stdout);
        return 0;
    }
    return run(std::move(arguments));
}

}  // namespace
}  // namespace vkm::sim

int main(int count, char** words) {
    return vkm::sim::start({words + 1, static_cast<std::size_t>(count - 1)});
}
