#include "vkm_isp_target/isp_control.h"

#include <cstdio>
#include <utility>

#include "pseudo_terminal/command_line.h"
#include "pseudo_terminal/flash_file.h"
#include "pseudo_terminal/stretch.h"
#include "simulators/bounded_list.h"

namespace vkm::sim {
namespace {

constexpr std::size_t most_faults = 500;

std::string save(IspBench& bench, std::string_view argument) {
    const std::string path(argument);
    if (path.empty() || !save_flash(path, bench.target.flash())) return "error can't write " + path;
    return "ok " + std::to_string(bench.target.flash().size()) + " bytes";
}

std::string tell_counters(IspBench& bench, std::string_view) {
    const IspCounters& counters = bench.target.counters();
    const auto number = [](int value) { return std::to_string(value); };
    return std::string("ok ") + (bench.target.awake() ? "awake" : "asleep") +
           " chips=" + number(counters.chips) + " user_codes=" + number(counters.user_codes) +
           " connects=" + number(counters.connects) + " versions=" + number(counters.versions) +
           " erases=" + number(counters.erases) + " blocks=" + number(counters.blocks) +
           " retried_blocks=" + number(counters.retried_blocks) + " ends=" + number(counters.ends) +
           " leaves=" + number(counters.leaves) + " frames=" + number(counters.frames) +
           " replies=" + number(counters.replies);
}

std::string tell_faults(IspBench& bench, std::string_view) {
    std::string text = "ok";
    for (const std::string& fault : bench.faults) text += " [" + fault + "]";
    bench.faults.clear();
    return text;
}

std::string next(IspBench& bench, std::string_view) {
    bench.target.replace(bench.now);
    return "ok";
}

std::string add_fault(IspBench& bench, std::string_view argument) {
    const auto fault = parse_fault_on<IspFrame>(argument);
    if (!fault) return "error no such fault: " + std::string(argument);
    bench.target.add_fault(*fault);
    return "ok";
}

constexpr Command<IspBench> commands[] = {
    {"flash",
     [](IspBench& bench, std::string_view argument) {
         return tell_stretch(bench.target.flash(), argument);
     }},
    {"save", save},
    {"counters", tell_counters},
    {"faults", tell_faults},
    {"next", next},
    {"fault", add_fault},
    {"no-faults",
     [](IspBench& bench, std::string_view) {
         bench.target.forget_faults();
         return std::string("ok");
     }},
};

std::string frame_text(const PortEntry<IspFrame>& entry) {
    const std::string name(name_of_frame(entry.kind));
    if (entry.kind != IspFrame::block || entry.bytes.size() < 11) return name;
    char text[48];
    std::snprintf(text, sizeof text, "block %02X%02X %d%s", entry.bytes[7], entry.bytes[8],
                  entry.bytes[9] * 256 + entry.bytes[10], entry.bytes[4] == 0xB4 ? " retry" : "");
    return text;
}

}  // namespace

std::string IspBench::carry_out(std::string_view command, Instant at) {
    now = at;
    return run_command(commands, *this, command);
}

std::vector<std::string> IspBench::news() {
    std::vector<std::string> lines;
    for (const PortEntry<IspFrame>& entry : target.take_log())
        if (!entry.answer) lines.push_back(frame_text(entry));
    for (std::string& fault : target.take_faults()) {
        lines.push_back("objection " + fault);
        append_bounded(faults, std::move(fault), most_faults);
    }
    if (awake != target.awake()) {
        awake = target.awake();
        lines.push_back(awake ? "awake" : "asleep");
    }
    return lines;
}

}  // namespace vkm::sim
