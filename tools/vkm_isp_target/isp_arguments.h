// The command line of vkm-isp-target.
#pragma once

#include <span>
#include <string>
#include <string_view>

#include "pseudo_terminal/program_arguments.h"
#include "simulators/simulated_isp_program.h"

namespace vkm::sim {

struct IspArguments : ProgramArguments {
    IspConfig config;
};

ArgumentsRead<IspArguments> read_isp_arguments(std::span<const char* const> words);

std::string isp_usage();

}  // namespace vkm::sim
