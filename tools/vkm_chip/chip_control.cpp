#include "vkm_chip/chip_control.h"

#include <algorithm>
#include <utility>

#include "vkm_chip/chip_arguments.h"
#include "vkm_chip/chip_reports.h"
#include "vkm_chip/flash_file.h"

namespace vkm::sim {
namespace {

using std::chrono::milliseconds;

constexpr double usual_cycle_ms = 200;

std::string cycle(ChipBench& bench, std::string_view argument, Instant now) {
    const auto ms = argument.empty() ? usual_cycle_ms : parse_number(argument, 0, 600'000);
    if (!ms) return "error cycle needs milliseconds";
    bench.chip.power_cycle(now, milliseconds{static_cast<std::int64_t>(*ms)});
    return "ok";
}

std::string fresh_chip(ChipBench& bench, std::string_view, Instant now) {
    bench.chip.replace(now);
    bench.chip.power_on(now);
    return "ok";
}

std::string pull(ChipBench& bench, std::string_view, Instant) {
    bench.terminal.unplug();
    bench.line.cut();
    return "ok";
}

std::string plug(ChipBench& bench, std::string_view, Instant) {
    bench.line.cut();
    const std::string error = bench.terminal.plug(bench.link);
    return error.empty() ? "ok " + bench.terminal.device() : "error " + error;
}

std::string add_fault(ChipBench& bench, std::string_view argument, Instant) {
    const auto fault = parse_fault(argument);
    if (!fault) return "error no such fault: " + std::string(argument);
    bench.chip.add_fault(*fault);
    return "ok";
}

std::string write_flash(ChipBench& bench, std::string_view argument, Instant) {
    const std::string path(argument);
    if (path.empty() || !save_flash(path, bench.chip.flash())) return "error can't write " + path;
    return "ok " + std::to_string(bench.chip.flash().size()) + " bytes";
}

std::string fill_flash(ChipBench& bench, std::string_view argument, Instant) {
    const auto bytes = load_flash(std::string(argument), bench.chip.flash().size());
    if (!bytes) return "error can't read " + std::string(argument);
    bench.chip.load_flash(*bytes);
    return "ok " + std::to_string(bytes->size()) + " bytes";
}

struct Command {
    std::string_view name;
    std::string (*run)(ChipBench&, std::string_view argument, Instant now);
};

constexpr Command commands[] = {
    {"on",
     [](ChipBench& bench, std::string_view, Instant now) {
         bench.chip.power_on(now);
         return std::string("ok");
     }},
    {"off",
     [](ChipBench& bench, std::string_view, Instant now) {
         bench.chip.power_off(now);
         return std::string("ok");
     }},
    {"cycle", cycle},
    {"new", fresh_chip},
    {"pull", pull},
    {"plug", plug},
    {"fault", add_fault},
    {"no-faults",
     [](ChipBench& bench, std::string_view, Instant) {
         bench.chip.forget_faults();
         return std::string("ok");
     }},
    {"flash", write_flash},
    {"load", fill_flash},
    {"options",
     [](ChipBench& bench, std::string_view, Instant) { return "ok " + options_text(bench.chip); }},
    {"state",
     [](ChipBench& bench, std::string_view, Instant) { return "ok " + state_text(bench.chip); }},
    {"measure",
     [](ChipBench& bench, std::string_view, Instant) { return "ok " + bench.meter.report(); }},
    {"quit",
     [](ChipBench& bench, std::string_view, Instant) {
         bench.quit = true;
         return std::string("ok");
     }},
};

}  // namespace

std::string carry_out_command(ChipBench& bench, std::string_view command, Instant now) {
    const std::size_t space = std::min(command.find(' '), command.size());
    const std::string_view name = command.substr(0, space);
    const std::string_view argument = command.substr(std::min(space + 1, command.size()));
    for (const Command& row : commands)
        if (row.name == name) return row.run(bench, argument, now);
    return "error no such command: " + std::string(name);
}

}  // namespace vkm::sim
