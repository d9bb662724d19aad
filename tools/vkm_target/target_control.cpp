#include "vkm_target/target_control.h"

#include <utility>

#include "pseudo_terminal/command_line.h"
#include "pseudo_terminal/target_commands.h"
#include "simulators/byte_values.h"
#include "simulators/value_forms.h"
#include "vkm_target/target_arguments.h"

namespace vkm::sim {
namespace {

using Bytes = std::vector<std::uint8_t>;

template <typename Bench>
std::string say_bytes(Bench& bench, const std::optional<Bytes>& bytes) {
    if (!bytes) return "error that is nothing to say";
    bench.target.say(bench.now, *bytes);
    return "ok " + std::to_string(bytes->size()) + " bytes";
}

template <typename Bench>
std::string say_text(Bench& bench, std::string_view argument) {
    return say_bytes(bench, parse_text(argument));
}

template <typename Bench>
std::string say_hex(Bench& bench, std::string_view argument) {
    return say_bytes(bench, parse_bytes(argument));
}

template <typename Bench>
std::string say_burst(Bench& bench, std::string_view argument) {
    const auto kind = parse_burst_kind(split_off(argument, ' ').value_or("text"));
    const auto count = parse_whole(argument, 1, longest_burst);
    if (!kind || !count) return "error burst needs a number of bytes, and text or count";
    return say_bytes(bench, burst_bytes(*kind, static_cast<std::size_t>(*count)));
}

template <typename Bench>
std::string tell_sent(Bench& bench, std::string_view) {
    return "ok " + std::to_string(bench.target.sent() - bench.unread());
}

std::string tell_bytes(const Bytes& bytes) {
    return bytes.empty() ? "ok" : "ok " + hex_text(bytes);
}

std::string tell_heard_by_talker(TalkingBench& bench, std::string_view) {
    Bytes bytes = bench.target.heard_bytes();
    bench.target.take_heard();
    return tell_bytes(bytes);
}

std::string tell_heard_by_program(StoppedBench& bench, std::string_view) {
    return tell_bytes(bench.target.take_heard_by_program());
}

std::string stop(StoppedBench& bench, std::string_view) {
    return bench.target.stop(bench.now) ? "ok" : "error it stands already";
}

std::string set_memory(StoppedBench& bench, std::string_view argument) {
    const auto change = parse_change(argument);
    if (!change) return "error set needs sfr, ram or xram, an address and a value";
    bench.target.set(change->memory, change->address, change->value);
    return "ok";
}

std::string tell_commands(StoppedBench& bench, std::string_view) {
    return "ok" + std::exchange(bench.commands, {});
}

std::string add_fault(StoppedBench& bench, std::string_view argument) {
    return plan_fault(bench.target, parse_dump_fault, argument);
}

std::string drop_faults(StoppedBench& bench, std::string_view) {
    return forget_faults(bench.target);
}

std::string tell_state(StoppedBench& bench, std::string_view) {
    const StoppedTarget& target = bench.target;
    return std::string("ok ") + (target.stopped() ? "stopped" : "running") +
           " awaits_ack=" + (target.awaits_ack() ? "1" : "0") +
           " stops=" + std::to_string(target.stops());
}

constexpr Command<TalkingBench> talking_commands[] = {{"say", say_text},
                                                      {"say-hex", say_hex},
                                                      {"burst", say_burst},
                                                      {"sent", tell_sent},
                                                      {"heard", tell_heard_by_talker}};

constexpr Command<StoppedBench> stopped_commands[] = {{"say", say_text},
                                                      {"say-hex", say_hex},
                                                      {"burst", say_burst},
                                                      {"sent", tell_sent},
                                                      {"heard", tell_heard_by_program},
                                                      {"stop", stop},
                                                      {"set", set_memory},
                                                      {"commands", tell_commands},
                                                      {"fault", add_fault},
                                                      {"no-faults", drop_faults},
                                                      {"state", tell_state}};

}  // namespace

std::string TalkingBench::carry_out(std::string_view command, Instant at) {
    now = at;
    return run_command(talking_commands, *this, command);
}

std::string StoppedBench::carry_out(std::string_view command, Instant at) {
    now = at;
    return run_command(stopped_commands, *this, command);
}

std::vector<std::string> StoppedBench::news() {
    std::vector<std::string> lines;
    for (const HeardCommand& heard : target.take_commands()) {
        commands += " " + std::string(name_of(heard.code));
        lines.push_back("command " + std::string(name_of(heard.code)));
    }
    if (stopped && !target.stopped()) lines.push_back("running");
    if (!stopped && target.stopped()) lines.push_back("stopped " + std::to_string(target.stops()));
    stopped = target.stopped();
    for (const SentDump& dump : target.take_dumps())
        lines.push_back("dump " + std::string(name_of(dump.type)) + " stop " +
                        std::to_string(dump.stop) + (dump.again ? " again" : ""));
    for (std::string& objection : target.take_faults())
        lines.push_back("objection " + std::move(objection));
    return lines;
}

}  // namespace vkm::sim
