// vkm-board: a simulated download board on a pseudo-terminal.
#include <cstdio>
#include <span>
#include <string>
#include <utility>

#include "pseudo_terminal/flash_file.h"
#include "pseudo_terminal/program_start.h"
#include "pseudo_terminal/target_program.h"
#include "vkm_board/board_arguments.h"
#include "vkm_board/board_control.h"

namespace vkm::sim {
namespace {

int run(BoardArguments arguments) {
    if (!arguments.eeprom.empty()) {
        auto bytes = load_flash(arguments.eeprom, board_storage_size);
        if (!bytes) {
            std::fprintf(stderr, "vkm-board: %s: can't be read\n", arguments.eeprom.c_str());
            return 1;
        }
        arguments.config.storage = *std::move(bytes);
    }
    arguments.config.powered_at =
        arguments.power_by_hand ? never : now_instant() + arguments.power_after;
    arguments.chip.powered_at = never;
    SimulatedBoard board(arguments.config);
    SimulatedChip chip(arguments.chip);
    TargetProgram program(board.target(), arguments.program);
    BoardBench bench{board, chip};
    return program.run(work_at(bench, program));
}

int start(std::span<const char* const> words) {
    return start_program("vkm-board", read_board_arguments(words), board_usage, run);
}

}  // namespace
}  // namespace vkm::sim

int main(int count, char** words) {
    return vkm::sim::start({words + 1, static_cast<std::size_t>(count - 1)});
}
