// A target whose own program takes another program for it over the line: a user's
// ISP program, with frames that start 5A A5, at whatever rate the user chose.
//
// Before a user code has started it, it is deaf to frames. It writes flash of the
// NOR kind. Whatever it had to object to stands in faults(). It has no threads, no
// files and no clock of its own, and stays where it is made.
#pragma once

#include <array>
#include <chrono>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "simulators/command_port.h"
#include "simulators/fault_plan.h"
#include "simulators/nor_flash.h"
#include "simulators/wire.h"

namespace vkm::sim {

// Its exchanges; `block` is a program block, first try or retry.
enum class IspFrame {
    any,
    connect,
    version,
    erase,
    block,
    end,
    unknown,
};

template <>
std::span<const FrameName<IspFrame>> frame_names<IspFrame>();
using IspFault = FaultOn<IspFrame>;

struct IspConfig {
    double baud = 115200;
    std::array<std::uint8_t, 2> code{0x40, 0x05};  // the chip's code of four digits
    std::uint8_t chip_byte = 0;                    // behind it
    std::uint32_t flash_size = 0x8000;
    std::uint32_t sector = 512;
    // What starts it, at this rate; empty: it is awake from the start.
    std::vector<std::uint8_t> user_code{};
    double user_code_baud = 115200;
    std::chrono::microseconds turnaround{300};  // from a frame's end to its answer
    std::chrono::microseconds erase_time{300'000};
    std::chrono::microseconds block_time{1000};
    std::chrono::microseconds leave_after{100'000};  // from the first end of the job
    bool answers_end = false;
    bool silent = false;  // does all that it is told and answers nothing
    std::vector<IspFault> faults{};
};

struct IspCounters {
    int user_codes = 0;
    int connects = 0;
    int versions = 0;
    int erases = 0;
    int blocks = 0;          // written ones
    int retried_blocks = 0;  // of these, those that came as retries
    int ends = 0;            // orders to end the job
    int leaves = 0;          // of the ISP program
    int frames = 0;          // good ones, those lost by a fault included
    int replies = 0;         // lost ones not included
    int chips = 1;           // how many have stood here, the present one included
};

class SimulatedIspProgram {
  public:
    explicit SimulatedIspProgram(IspConfig config = {});
    SimulatedIspProgram(const SimulatedIspProgram&) = delete;
    SimulatedIspProgram& operator=(const SimulatedIspProgram&) = delete;

    Target target();

    // ---- what hands do to it ------------------------------------------------------
    // A fresh one of its kind comes in its place.
    void replace(Instant now);
    void load_flash(std::span<const std::uint8_t> bytes) { flash_.fill(bytes); }
    void add_fault(const IspFault& fault) { port_.plan.add(fault); }
    void forget_faults() { port_.plan.forget(); }

    // ---- what can be seen -----------------------------------------------------------
    const IspConfig& config() const { return config_; }
    bool awake() const { return awake_; }
    std::span<const std::uint8_t> flash() const { return flash_.bytes(); }
    const IspCounters& counters() const { return counters_; }
    // Objections to what came over the line; and frames and answers. Oldest first.
    const std::vector<std::string>& faults() const { return port_.faults(); }
    const std::vector<PortEntry<IspFrame>>& log() const { return port_.entries(); }
    std::vector<std::string> take_faults() { return port_.take_faults(); }
    std::vector<PortEntry<IspFrame>> take_log() { return port_.take_entries(); }

  private:
    using Struck = CommandPort<IspFrame>::Struck;

    void hear(Instant at, std::uint8_t value, double sent_baud);
    Instant due() const;
    void act(Instant now);

    void start();
    void run_leave(Instant now);
    void hear_in_program(std::uint8_t value, double sent_baud);
    void frame_heard(Instant at);
    IspFrame kind_of_frame() const;
    PortOutcome carry_out(IspFrame kind, Instant at);
    PortOutcome ignored(std::string why);
    PortOutcome erase();
    PortOutcome write_block();

    IspConfig config_;
    CommandPort<IspFrame> port_;
    NorFlash flash_;

    bool awake_ = false;
    bool powered_ = true;
    Instant leaves_at_ = never;
    Instant returns_at_ = never;       // of its power
    bool erased_ = false;              // since it was started
    std::vector<std::uint8_t> heard_;  // by the user's program, as many as its code has
    IspCounters counters_;
};

}  // namespace vkm::sim
