// A download board: a small programmer with firmware of its own, which is given a
// program and then programs chips without a computer. This is its side of the line
// at 115200 baud; board_programmer.h is what it does with a chip.
//
// Without power it is deaf; lone bytes AA wake it. It keeps what it is given in a
// serial EEPROM of 64 KB, which erases and overwrites. Whatever it had to object to
// stands in faults(). It has no threads, no files and no clock of its own, and stays
// where it is made.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "simulators/command_port.h"
#include "simulators/fault_plan.h"
#include "simulators/wire.h"

namespace vkm::sim {

// The exchanges of the board. `wake` is a lone byte AA.
enum class BoardFrame {
    any,
    wake,
    link_check,
    version,
    capacity,
    erase,
    erase_second,
    block,
    read,
    unknown,
};

template <>
std::span<const FrameName<BoardFrame>> frame_names<BoardFrame>();
using BoardFault = FaultOn<BoardFrame>;

inline constexpr std::uint32_t board_storage_size = 0x10000;

struct BoardConfig {
    std::uint8_t version = 0x17;
    std::uint8_t flag = 0;
    std::uint8_t capacity_kb = 64;
    // When it gets power: then, or once so many wake bytes have come, whichever is first.
    Instant powered_at{};
    int powered_after_wakes = 0;                // 0: wake bytes bring no power
    std::vector<std::uint8_t> storage{};        // what it holds from address 0 on; the rest is FF
    std::chrono::microseconds turnaround{300};  // from a frame's end to its answer
    std::chrono::microseconds block_time{5000};
    std::chrono::microseconds erase_time{300'000};
    std::vector<BoardFault> faults{};
};

struct BoardCounters {
    int power_ups = 0;
    int wakes = 0;  // bytes AA, those without power included
    int link_checks = 0;
    int versions = 0;
    int capacities = 0;
    int erases = 0;
    int second_erases = 0;
    int blocks = 0;  // stored ones
    int retried_sectors = 0;
    int reads = 0;
    int frames = 0;   // good ones, those lost by a fault included
    int replies = 0;  // lost ones not included
};

// Addresses that were written in a row, both included.
struct WrittenRange {
    std::uint32_t first = 0;
    std::uint32_t last = 0;
    bool operator==(const WrittenRange&) const = default;
};

class SimulatedBoard {
  public:
    explicit SimulatedBoard(BoardConfig config = {});
    SimulatedBoard(const SimulatedBoard&) = delete;
    SimulatedBoard& operator=(const SimulatedBoard&) = delete;

    Target target();

    // ---- what hands do to it ----------------------------------------------------
    void power_on(Instant now);
    void power_off(Instant now);
    void add_fault(const BoardFault& fault) { port_.plan.add(fault); }
    void forget_faults() { port_.plan.forget(); }
    // Its own firmware counts the chips that it has programmed there.
    std::vector<std::uint8_t>& storage() { return storage_; }

    // ---- what can be seen ---------------------------------------------------------
    const BoardConfig& config() const { return config_; }
    bool powered() const { return powered_; }
    std::span<const std::uint8_t> storage() const { return storage_; }
    const BoardCounters& counters() const { return counters_; }
    // What was written since the last erase of all, and since one of the second stage
    // behind it; in the order of the blocks.
    const std::vector<WrittenRange>& first_stage() const { return written_[0]; }
    const std::vector<WrittenRange>& second_stage() const { return written_[1]; }
    // Objections to what came over the line; and frames and answers. Oldest first.
    const std::vector<std::string>& faults() const { return port_.faults(); }
    const std::vector<PortEntry<BoardFrame>>& log() const { return port_.entries(); }
    std::vector<std::string> take_faults() { return port_.take_faults(); }
    std::vector<PortEntry<BoardFrame>> take_log() { return port_.take_entries(); }

  private:
    using Struck = CommandPort<BoardFrame>::Struck;

    void hear(Instant at, std::uint8_t value, double sent_baud);
    Instant due() const;
    void act(Instant now);

    void switch_on();
    void switch_off();
    void run_power(Instant now);
    void frame_heard(Instant at);
    void wake(Instant at);
    void answer(Instant at, BoardFrame kind, std::span<const std::uint8_t> logged);
    BoardFrame kind_of_frame() const;
    PortOutcome carry_out(BoardFrame kind);
    PortOutcome ignored(std::string why);
    PortOutcome erase(BoardFrame kind);
    PortOutcome store_block();
    PortOutcome read();
    void note_written(std::uint32_t address, std::size_t count);

    BoardConfig config_;
    CommandPort<BoardFrame> port_;
    std::vector<std::uint8_t> storage_;

    bool powered_ = false;
    Instant powers_at_ = never;
    int wakes_without_power_ = 0;
    bool erased_ = false;  // since it has power
    std::size_t stage_ = 0;
    std::vector<WrittenRange> written_[2];
    BoardCounters counters_;
};

}  // namespace vkm::sim
