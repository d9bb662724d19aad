// vkm-board: a simulated download board on a pseudo-terminal.
#include <cstdio>
#include <span>
#include <string>
#include <utility>

#include "pseudo_terminal/flash_file.h"
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
    arguments.program.name = "vkm-board";
    TargetProgram program(board.target(), arguments.program);
    BoardBench bench{board, chip};
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
    auto [arguments, error] = read_board_arguments(words);
    if (!error.empty()) {
        std::fprintf(stderr, "vkm-board: %s; --help tells what there is\n", error.c_str());
        return 2;
    }
    if (arguments.help) {
        std::fwrite(board_usage().data(), 1, board_usage().size(), stdout);
        return 0;
    }
    return run(std::move(arguments));
}

}  // namespace
}  // namespace vkm::sim

int main(int count, char** words) {
    return vkm::sim::start({words + 1, static_cast<std::size_t>(count - 1)});
}
