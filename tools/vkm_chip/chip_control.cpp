#include "vkm_chip/chip_control.h"

#include <utility>

#include "pseudo_terminal/command_line.h"
#include "pseudo_terminal/flash_file.h"
#include "pseudo_terminal/target_commands.h"
#include "simulators/value_forms.h"
#include "vkm_chip/chip_reports.h"

namespace vkm::sim {
namespace {

using std::chrono::milliseconds;

constexpr double usual_cycle_ms = 200;

std::string cycle(ChipBench& bench, std::string_view argument) {
    const auto ms = argument.empty() ? usual_cycle_ms : parse_number(argument, 0, 600'000);
    if (!ms) return "error cycle needs milliseconds";
    bench.chip.power_cycle(bench.now, milliseconds{static_cast<std::int64_t>(*ms)});
    return "ok";
}

std::string fresh_chip(ChipBench& bench, std::string_view) {
    bench.chip.replace(bench.now);
    bench.chip.power_on(bench.now);
    return "ok";
}

std::string fill_flash(ChipBench& bench, std::string_view argument) {
    const auto bytes = load_flash(std::string(argument), bench.chip.flash().size());
    if (!bytes) return "error can't read " + std::string(argument);
    bench.chip.load_flash(*bytes);
    return "ok " + std::to_string(bytes->size()) + " bytes";
}

constexpr Command<ChipBench> commands[] = {
    {"on",
     [](ChipBench& bench, std::string_view) {
         bench.chip.power_on(bench.now);
         return std::string("ok");
     }},
    {"off",
     [](ChipBench& bench, std::string_view) {
         bench.chip.power_off(bench.now);
         return std::string("ok");
     }},
    {"cycle", cycle},
    {"new", fresh_chip},
    {"fault",
     [](ChipBench& bench, std::string_view argument) {
         return plan_fault(bench.chip, parse_fault, argument);
     }},
    {"no-faults", [](ChipBench& bench, std::string_view) { return forget_faults(bench.chip); }},
    {"flash", [](ChipBench& bench,
                 std::string_view argument) { return save_memory(bench.chip.flash(), argument); }},
    {"load", fill_flash},
    {"options",
     [](ChipBench& bench, std::string_view) { return "ok " + options_text(bench.chip); }},
    {"state", [](ChipBench& bench, std::string_view) { return "ok " + state_text(bench.chip); }},
    {"measure", [](ChipBench& bench, std::string_view) { return "ok " + bench.meter.report(); }},
};

}  // namespace

std::string carry_out_command(ChipBench& bench, std::string_view command, Instant now) {
    bench.now = now;
    return run_command(commands, bench, command);
}

}  // namespace vkm::sim
