#include "vkm_board/board_control.h"

#include <algorithm>
#include <cstdio>
#include <utility>

#include "pseudo_terminal/command_line.h"
#include "pseudo_terminal/stretch.h"
#include "pseudo_terminal/target_commands.h"
#include "simulators/board_programmer.h"

namespace vkm::sim {
namespace {

std::string power(BoardBench& bench, std::string_view argument) {
    if (argument == "on")
        bench.board.power_on(bench.now);
    else if (argument == "off")
        bench.board.power_off(bench.now);
    else
        return "error power is on or off";
    return "ok";
}

std::span<const std::uint8_t> stored(const BoardBench& bench) {
    return std::as_const(bench.board).storage();
}

std::string ranges_text(const std::vector<WrittenRange>& ranges) {
    std::string text;
    char range[32];
    for (const auto& [first, last] : ranges) {
        std::snprintf(range, sizeof range, " %04X-%04X", first, last);
        text += range;
    }
    return text;
}

std::string tell_ranges(BoardBench& bench, std::string_view) {
    return "ok first" + ranges_text(bench.board.first_stage()) + " second" +
           ranges_text(bench.board.second_stage());
}

std::string tell_counters(BoardBench& bench, std::string_view) {
    const BoardCounters& counters = bench.board.counters();
    const auto number = [](int value) { return std::to_string(value); };
    return "ok power_ups=" + number(counters.power_ups) + " wakes=" + number(counters.wakes) +
           " link_checks=" + number(counters.link_checks) +
           " versions=" + number(counters.versions) + " capacities=" + number(counters.capacities) +
           " erases=" + number(counters.erases) +
           " second_erases=" + number(counters.second_erases) +
           " blocks=" + number(counters.blocks) +
           " retried_sectors=" + number(counters.retried_sectors) +
           " reads=" + number(counters.reads) + " frames=" + number(counters.frames) +
           " replies=" + number(counters.replies);
}

// At once, whatever time the chip believes to have passed.
std::string program(BoardBench& bench, std::string_view) {
    const Instant start = std::max(bench.now, bench.socket_free);
    const BoardProgramming result = program_chip(bench.board.storage(), bench.chip, start);
    bench.socket_free = result.end;
    const std::string left = " chips_left=" + std::to_string(result.chips_left);
    if (!result.done) return "ok failed: " + result.problem + left;
    return "ok done blocks=" + std::to_string(result.blocks) +
           " retries=" + std::to_string(result.retries) +
           " options=" + (result.options_written ? "1" : "0") + left;
}

std::string fresh_chip(BoardBench& bench, std::string_view) {
    bench.chip.replace(bench.now);
    return "ok";
}

std::string tell_options(BoardBench& bench, std::string_view) {
    std::string text = "ok";
    char entry[16];
    for (const int number : bench.chip.option_numbers()) {
        std::snprintf(entry, sizeof entry, " %d=%02X", number,
                      bench.chip.options()[static_cast<std::size_t>(number)]);
        text += entry;
    }
    return text;
}

constexpr Command<BoardBench> commands[] = {
    {"power", power},
    {"storage", [](BoardBench& bench,
                   std::string_view argument) { return tell_stretch(stored(bench), argument); }},
    {"save", [](BoardBench& bench,
                std::string_view argument) { return save_memory(stored(bench), argument); }},
    {"ranges", tell_ranges},
    {"counters", tell_counters},
    {"faults", [](BoardBench& bench, std::string_view) { return bench.objections.answer(); }},
    {"program", program},
    {"new", fresh_chip},
    {"chip-flash",
     [](BoardBench& bench, std::string_view argument) {
         return tell_stretch(bench.chip.flash(), argument);
     }},
    {"chip-options", tell_options},
    {"fault",
     [](BoardBench& bench, std::string_view argument) {
         return plan_fault(bench.board, parse_fault_on<BoardFrame>, argument);
     }},
    {"no-faults", [](BoardBench& bench, std::string_view) { return forget_faults(bench.board); }},
};

// What is worth a line of a frame that came in.
std::string frame_text(const PortEntry<BoardFrame>& entry) {
    if (entry.answer) return {};
    if (entry.kind == BoardFrame::erase || entry.kind == BoardFrame::erase_second)
        return std::string(name_of_frame(entry.kind));
    if (entry.kind != BoardFrame::block || entry.bytes.size() < 12) return {};
    char text[48];
    std::snprintf(text, sizeof text, "block %02X%02X %d%s", entry.bytes[8], entry.bytes[9],
                  entry.bytes[10] * 256 + entry.bytes[11], entry.bytes[5] == 0x30 ? " retry" : "");
    return text;
}

}  // namespace

std::string BoardBench::carry_out(std::string_view command, Instant at) {
    now = at;
    return run_command(commands, *this, command);
}

std::vector<std::string> BoardBench::news() {
    std::vector<std::string> lines;
    if (powered != board.powered()) {
        powered = board.powered();
        lines.push_back(powered ? "powered" : "unpowered");
    }
    for (const PortEntry<BoardFrame>& entry : board.take_log())
        if (std::string text = frame_text(entry); !text.empty()) lines.push_back(std::move(text));
    for (std::string& fault : board.take_faults())
        lines.push_back(objections.note(std::move(fault)));
    return lines;
}

}  // namespace vkm::sim
