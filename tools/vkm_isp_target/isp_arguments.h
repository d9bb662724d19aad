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

struct IspArgumentsRead {
    IspArguments arguments;
    std::string error;  // empty when all is well
};

IspArgumentsRead read_isp_arguments(std::span<const char* const> words);

std::string_view isp_usage();

}  // namespace vkm::sim
