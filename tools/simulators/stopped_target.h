// A target whose program stops at break points, where its debug agent dumps the
// state over the line: one frame at a time, each sent again until the host
// acknowledges it, until the host lets the program go on.
//
// The agent is as strict as a simulated chip: whatever it had to object to stands
// in faults(). Like that it has no threads, no files and no clock of its own, and
// stays where it is made.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "simulators/debug_command.h"
#include "simulators/dump_faults.h"
#include "simulators/dump_frame.h"
#include "simulators/transmitter.h"
#include "simulators/wire.h"

namespace vkm::sim {

struct MemoryChange {
    Memory memory = Memory::ram;
    unsigned address = 0;
    std::uint8_t value = 0;
};

struct StoppedConfig {
    double baud = 115200;
    Instant started_at{};
    // From the start, and from each order to go on, to the next break point.
    std::chrono::microseconds run_time{500'000};
    int most_stops = -1;  // then it runs until stop() is called; -1: there is always another one
    CpuState state{};     // at the start
    // What the program changes until its first stop, its second, and so on.
    std::vector<std::vector<MemoryChange>> changes{};

    // Told at each stop, in this order.
    std::vector<Dump> dumps{registers_dump(), ram_dump(), xram_dump(256), window_dump(0)};
    bool waits_for_ack = true;                  // after each frame; false: all go in a row
    std::chrono::microseconds gap{0};           // between two of such a row
    std::chrono::microseconds turnaround{500};  // from a command to the frame that it brings
    // What the program says directly before a stop's first frame and behind its last.
    std::vector<std::uint8_t> text_before{};
    std::vector<std::uint8_t> text_behind{};

    std::vector<DumpFault> faults{};
};

struct HeardCommand {
    Instant at;  // end of its last byte
    DebugCode code = DebugCode::acknowledge;
};

struct SentDump {
    Instant start;                        // of its first byte
    int stop = 0;                         // counted from 1
    DumpType type = DumpType::registers;  // of the dump, whatever the frame says
    bool again = false;                   // asked for by the host
    std::vector<std::uint8_t> bytes;      // as on the wire, with what is wrong with them
};

class StoppedTarget {
  public:
    explicit StoppedTarget(StoppedConfig config = {});
    StoppedTarget(const StoppedTarget&) = delete;
    StoppedTarget& operator=(const StoppedTarget&) = delete;

    Target target();

    // ---- what a test or a person does to it -----------------------------------
    // Stops now; false when it stands already.
    bool stop(Instant now);
    // What it tells at the next stop, or in frames of this one that are still to
    // come. False when there is no such address.
    bool set(Memory memory, unsigned address, std::uint8_t value) {
        return state_.set(memory, address, value);
    }
    // The program says something, behind all that is on its way.
    void say(Instant now, std::span<const std::uint8_t> bytes) { transmitter_.send(now, bytes); }
    void add_fault(const DumpFault& fault) { plan_.push_back({fault, 0}); }
    void forget_faults() { plan_.clear(); }

    // ---- what they want to see --------------------------------------------------
    const StoppedConfig& config() const { return config_; }
    const CpuState& state() const { return state_; }
    bool stopped() const { return stopped_; }
    bool awaits_ack() const { return awaits_ack_; }
    int stops() const { return stops_; }
    std::size_t sent() const { return transmitter_.sent(); }  // bytes

    // Oldest first; of very many the older half is forgotten. The takes empty them.
    const std::vector<HeardCommand>& commands() const { return commands_; }
    const std::vector<SentDump>& dumps() const { return dumps_; }
    // What the program heard, and the agent therefore didn't.
    const std::vector<std::uint8_t>& heard_by_program() const { return heard_by_program_; }
    // Objections to what came over the line.
    const std::vector<std::string>& faults() const { return faults_; }
    std::vector<HeardCommand> take_commands();
    std::vector<SentDump> take_dumps();
    std::vector<std::uint8_t> take_heard_by_program();
    std::vector<std::string> take_faults();

  private:
    struct PlannedFault {
        DumpFault fault;
        int seen = 0;  // frames since it was planned
    };

    void hear(Instant at, std::uint8_t value, double sent_baud);
    Instant due() const;
    void act(Instant now);

    void stop_at_break_point(Instant at);
    void send_dump(Instant at, bool again);
    std::vector<DumpFault> strike();
    void hear_as_agent(Instant at, std::uint8_t value);
    void obey(Instant at, DebugCode code);
    void take_acknowledge(Instant at);
    void send_again(Instant at);
    void run_on(Instant at);
    void object(std::string text);

    StoppedConfig config_;
    Transmitter transmitter_;
    CpuState state_;

    bool stopped_ = false;
    Instant next_stop_ = never;
    int stops_ = 0;
    std::size_t dump_ = 0;                 // number of the dump that was sent last
    bool awaits_ack_ = false;              // of that one
    std::size_t not_acknowledged_ = 0;     // frames of this stop
    Instant busy_until_ = Instant::min();  // until then it sends a frame
    DebugCommandReceiver receiver_;

    std::vector<PlannedFault> plan_;
    std::vector<HeardCommand> commands_;
    std::vector<SentDump> dumps_;
    std::vector<std::uint8_t> heard_by_program_;
    std::vector<std::string> faults_;
};

}  // namespace vkm::sim
