#include "simulators/stopped_target.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "simulators/bounded_list.h"
#include "simulators/byte_values.h"

namespace vkm::sim {
namespace {

constexpr std::size_t most_objections = 500;
constexpr std::size_t most_logged = 100'000;
constexpr std::size_t most_heard = 1'000'000;

}  // namespace

StoppedTarget::StoppedTarget(StoppedConfig config)
    : config_(std::move(config)), transmitter_(config_.baud), state_(config_.state) {
    run_on(config_.started_at);
    for (const DumpFault& fault : config_.faults) add_fault(fault);
}

Target StoppedTarget::target() {
    return {
        [this](Instant at, std::uint8_t value, double baud) { hear(at, value, baud); },
        [this] { return due(); },
        [this](Instant now) { act(now); },
        [this] { return transmitter_.take_output(); },
    };
}

std::vector<HeardCommand> StoppedTarget::take_commands() {
    return std::exchange(commands_, {});
}
std::vector<SentDump> StoppedTarget::take_dumps() {
    return std::exchange(dumps_, {});
}
std::vector<std::uint8_t> StoppedTarget::take_heard_by_program() {
    return std::exchange(heard_by_program_, {});
}
std::vector<std::string> StoppedTarget::take_faults() {
    return std::exchange(faults_, {});
}

void StoppedTarget::object(std::string text) {
    append_bounded(faults_, std::move(text), most_objections);
}

Instant StoppedTarget::due() const {
    return std::min(next_stop_, transmitter_.due());
}

void StoppedTarget::act(Instant now) {
    if (next_stop_ <= now) stop_at_break_point(now);
    transmitter_.run(now);
}

// ---- stopping and telling ------------------------------------------------------

bool StoppedTarget::stop(Instant now) {
    if (stopped_) return false;
    stop_at_break_point(now);
    return true;
}

void StoppedTarget::stop_at_break_point(Instant at) {
    next_stop_ = never;
    stopped_ = true;
    receiver_.reset();
    if (static_cast<std::size_t>(stops_) < config_.changes.size())
        for (const MemoryChange& change : config_.changes[static_cast<std::size_t>(stops_)])
            state_.set(change.memory, change.address, change.value);
    ++stops_;
    not_acknowledged_ = 0;
    transmitter_.send(at, config_.text_before);
    if (config_.dumps.empty()) return;
    dump_ = 0;
    send_dump(at, false);
    if (config_.waits_for_ack) return;
    while (dump_ + 1 < config_.dumps.size()) {
        ++dump_;
        send_dump(transmitter_.free_at() + config_.gap, false);
    }
}

void StoppedTarget::send_dump(Instant at, bool again) {
    const Dump& dump = config_.dumps[dump_];
    DumpOnWire on_wire = spoiled_dump(state_, dump, strike());
    const std::span bytes(on_wire.bytes);
    const Instant start = std::max(at, transmitter_.free_at());
    transmitter_.send(start, bytes.first(on_wire.pause_before));
    const Instant rest = on_wire.pause_before > 0 ? transmitter_.free_at() : start;
    transmitter_.send(rest + on_wire.pause, bytes.subspan(on_wire.pause_before));
    busy_until_ = std::max(start, transmitter_.free_at());
    if (dump_ + 1 == config_.dumps.size() && !again)
        transmitter_.send(busy_until_, config_.text_behind);
    awaits_ack_ = config_.waits_for_ack;
    if (!again) ++not_acknowledged_;
    append_bounded(dumps_, {start, stops_, dump.type, again, std::move(on_wire.bytes)},
                   most_logged);
}

// Which of the planned faults strike the next frame.
std::vector<DumpFault> StoppedTarget::strike() {
    std::vector<DumpFault> struck;
    for (auto& [fault, seen] : plan_) {
        ++seen;
        const bool over = fault.times > 0 && seen - fault.nth >= fault.times;
        if (seen >= fault.nth && !over) struck.push_back(fault);
    }
    return struck;
}

// ---- commands ----------------------------------------------------------------------

void StoppedTarget::hear(Instant at, std::uint8_t value, double sent_baud) {
    const auto heard = as_heard(value, sent_baud, config_.baud);
    if (stopped_ && heard != value) {
        object("byte at " + std::to_string(std::lround(sent_baud)) + " baud, the target being at " +
               std::to_string(std::lround(config_.baud)));
        receiver_.reset();
    } else if (stopped_) {
        hear_as_agent(at, value);
    } else if (heard) {
        append_bounded(heard_by_program_, *heard, most_heard);
        if (receiver_.take(*heard) == DebugCommandReceiver::Result::complete)
            object("command " + hex_text(receiver_.what()) + " while the program ran");
    }
}

void StoppedTarget::hear_as_agent(Instant at, std::uint8_t value) {
    const bool at_work = at <= busy_until_;
    // It hears nothing while it sends; acknowledgements of a row come in its midst.
    if (at_work && config_.waits_for_ack) {
        object("byte " + hex_text({&value, 1}) + " while the agent was sending");
        return;
    }
    switch (receiver_.take(value)) {
        case DebugCommandReceiver::Result::none:
            return;
        case DebugCommandReceiver::Result::bad:
            object("no command: " + hex_text(receiver_.what()));
            return;
        case DebugCommandReceiver::Result::complete:
            break;
    }
    const DebugCode code = receiver_.code();
    append_bounded(commands_, {at, code}, most_logged);
    if (at_work && code != DebugCode::acknowledge)
        object("command " + std::string(name_of(code)) + " while the agent was sending");
    else
        obey(at, code);
}

void StoppedTarget::obey(Instant at, DebugCode code) {
    switch (code) {
        case DebugCode::acknowledge:
            take_acknowledge(at);
            break;
        case DebugCode::again:
            send_again(at);
            break;
        case DebugCode::go_on:
            run_on(at);
            break;
    }
}

void StoppedTarget::take_acknowledge(Instant at) {
    if (not_acknowledged_ == 0) {
        object("acknowledgement of nothing");
        return;
    }
    --not_acknowledged_;
    if (!awaits_ack_) return;
    awaits_ack_ = false;
    if (dump_ + 1 == config_.dumps.size()) return;
    ++dump_;
    send_dump(at + config_.turnaround, false);
}

void StoppedTarget::send_again(Instant at) {
    if (not_acknowledged_ == 0) {
        object("a frame is wanted again that was acknowledged");
        return;
    }
    send_dump(at + config_.turnaround, true);
}

void StoppedTarget::run_on(Instant at) {
    stopped_ = false;
    awaits_ack_ = false;
    receiver_.reset();
    const bool another = config_.most_stops < 0 || stops_ < config_.most_stops;
    next_stop_ = another ? at + config_.run_time : never;
}

}  // namespace vkm::sim
