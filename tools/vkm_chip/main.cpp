// vkm-chip: a simulated chip on a pseudo-terminal.
#include <cstdio>
#include <span>
#include <string>
#include <string_view>

#include "catalogue/model_table.h"
#include "pseudo_terminal/flash_file.h"
#include "pseudo_terminal/program_start.h"
#include "pseudo_terminal/target_program.h"
#include "simulators/simulated_chip.h"
#include "vkm_chip/chip_arguments.h"
#include "vkm_chip/chip_control.h"
#include "vkm_chip/chip_reports.h"
#include "vkm_chip/line_meter.h"

namespace vkm::sim {
namespace {

bool fill_flash(SimulatedChip& chip, const std::string& path) {
    if (path.empty()) return true;
    const auto bytes = load_flash(path, chip.flash().size());
    if (bytes) chip.load_flash(*bytes);
    return bytes.has_value();
}

void keep_flash(const SimulatedChip& chip, const std::string& path, TargetProgram& program) {
    if (path.empty()) return;
    const bool saved = save_flash(path, chip.flash());
    program.tell((saved ? "saved " : "error can't write ") + path);
}

void list_models() {
    for (const ModelGroup& group : MCU_AP_ISP_range)
        for (const ModelRow& row : group.rows)
            if (&group != &MCU_AP_ISP_range[older_54xx_group])
                std::printf("%.*s\n", static_cast<int>(row.MCU_Name.size()), row.MCU_Name.data());
}

int run(ChipArguments arguments) {
    if (arguments.list_models) {
        list_models();
        return 0;
    }
    arguments.config.powered_at =
        arguments.power_by_hand ? never : now_instant() + arguments.power_after;
    SimulatedChip chip(arguments.config);
    if (!fill_flash(chip, arguments.load_flash)) {
        std::fprintf(stderr, "vkm-chip: %s: can't be read\n", arguments.load_flash.c_str());
        return 1;
    }
    TargetProgram program(chip.target(), arguments.program);
    LineMeter meter;
    ChipBench bench{chip, meter};
    ChipReporter reporter;
    ProgramWork work;
    work.command = [&](std::string_view command, Instant now) {
        return carry_out_command(bench, command, now);
    };
    work.turned = [&](Instant now) {
        for (const std::string& line : reporter.news(chip, now)) program.tell(line);
        if (reporter.take_rest()) keep_flash(chip, arguments.save_flash, program);
    };
    work.host_wrote = [&](Instant now, std::size_t bytes, double baud) {
        meter.host_wrote(now, bytes, baud);
    };
    work.host_was_given = [&](Instant now, std::size_t bytes, double baud) {
        meter.host_was_given(now, bytes, baud);
    };
    const int status = program.run(work);
    if (status == 0) keep_flash(chip, arguments.save_flash, program);
    return status;
}

int start(std::span<const char* const> words) {
    return start_program("vkm-chip", read_arguments(words), usage, run);
}

}  // namespace
}  // namespace vkm::sim

int main(int count, char** words) {
    return vkm::sim::start({words + 1, static_cast<std::size_t>(count - 1)});
}
