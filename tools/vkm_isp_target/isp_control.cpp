#include "vkm_isp_target/isp_control.h"

#include <cstdio>
#include <utility>

#include "pseudo_terminal/command_line.h"
#include "pseudo_terminal/stretch.h"
#include "pseudo_terminal/target_commands.h"

namespace vkm::sim {
namespace {

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

std::string next(IspBench& bench, std::string_view) {
    bench.target.replace(bench.now);
    return "ok";
}

constexpr Command<IspBench> commands[] = {
    {"flash",
     [](IspBench& bench, std::string_view argument) {
         return tell_stretch(bench.target.flash(), argument);
     }},
    {"save", [](IspBench& bench,
                std::string_view argument) { return save_memory(bench.target.flash(), argument); }},
    {"counters", tell_counters},
    {"faults", [](IspBench& bench, std::string_view) { return bench.objections.answer(); }},
    {"next", next},
    {"fault",
     [](IspBench& bench, std::string_view argument) {
         return plan_fault(bench.target, parse_fault_on<IspFrame>, argument);
     }},
    {"no-faults", [](IspBench& bench, std::string_view) { return forget_faults(bench.target); }},
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
    for (std::string& fault : target.take_faults())
        lines.push_back(objections.note(std::move(fault)));
    if (awake != target.awake()) {
        awake = target.awake();
        lines.push_back(awake ? "awake" : "asleep");
    }
    return lines;
}

}  // namespace vkm::sim
