// The boot firmware of one chip, as a state machine from bytes with times to
// bytes with times.
//
// It is the other side of the link and knows nothing of the tool: a power-up, the
// sync pulses whose length it measures with its clock, the status frame, then one
// command and one answer at a time until it leaves for the user's program. It is
// as strict as a chip: a frame with a wrong sum, length or end mark gets no
// answer, flash bits go from 1 to 0 only, bytes at another rate than its own are
// garbled, and while it works or sends it hears nothing. Whatever it had to
// object to stands in faults(), so that a test can ask for silence there.
//
// It has no threads, no files and no clock of its own: times come with the
// calls, which must be in order of time. The Target that it gives out refers to
// it, so it stays where it is made.
#pragma once

#include <array>
#include <chrono>
#include <cstdint>
#include <deque>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "simulators/fault_plan.h"
#include "simulators/wire.h"

namespace vkm::sim {

// Option bytes by their number, 0 to 16; a chip has some of them only.
using OptionBytes = std::array<std::uint8_t, 17>;

// What happens to the chip once its user program has started, as on a bench
// where one chip after another is put into the socket.
struct AfterStart {
    bool power_cycle = false;
    std::chrono::milliseconds off_after{500};  // from the start of the user program
    std::chrono::milliseconds off_for{200};    // without power
    bool fresh_chip = false;                   // a blank one of the same kind comes in its place
};

struct ChipConfig {
    std::string model = "VKM47H58RK+";  // any name of the catalogue
    char letter = 0;                    // firmware letter A to G; 0: the model's usual one
    int version = -1;                   // version byte, 0x38 is "3.8"; -1: the letter's usual one
    double clock_hz = 11059200;         // of the crystal or oscillator
    bool double_speed = false;  // letters A and C: the option that runs it at twice that clock
    int status_length = 0;      // length field of the status frame, at least 24; 0: usual one
    std::uint8_t feature = 0;   // feature byte of long status frames; bits 1 and 0 tell the size of
                                // the firmware, bit 7 that noise precedes its answers
    std::optional<std::vector<std::uint8_t>> id;  // ID bytes instead of the model's
    std::optional<OptionBytes> options;           // instead of those a chip is delivered with
    bool short_acks = false;                      // block answers without the data sum

    std::chrono::microseconds turnaround{300};   // from a frame's end to its answer
    std::chrono::microseconds block_time{1000};  // programming one frame's data
    std::chrono::milliseconds erase_time{300};   // one erase command
    std::chrono::milliseconds option_time{8};    // writing the option bytes
    std::chrono::milliseconds listen_window{0};  // without pulses for so long after power-up, the
                                                 // user program starts; 0: it listens for ever
    Instant powered_at{};  // cold until then; `never`: until power_on is called
    AfterStart after_start;

    int option_busy = 0;           // so many option writes are answered "busy" (81) first; -1: all
    std::uint8_t option_flaw = 0;  // XORed onto the first option byte that is stored
    FaultPlan faults;
};

enum class ChipState {
    off,        // without power
    listening,  // for sync pulses, or the trigger at 115200 baud
    base,       // connected, at the rate of the pulses
    full_rate,  // connected, at the rate that was set
    running,    // in the user's program: deaf to everything
};

std::string_view name_of(ChipState state);

struct LoggedFrame {
    Instant at;  // end of a frame that was heard; start of an answer's first byte
    bool from_chip = false;
    FrameKind kind = FrameKind::unknown;
    double baud = 0;  // the chip's own rate for it
    std::vector<std::uint8_t> bytes;
};

struct ChipCounters {
    int power_ups = 0;
    int pulses = 0;   // single bytes 7F that were measured or passed over
    int frames = 0;   // good frames, those lost by a fault included
    int replies = 0;  // answers, lost ones not included
    int erases = 0;
    int blocks = 0;          // program frames carried out
    int retried_blocks = 0;  // of these, those that erase their sector first (command 30)
    int option_writes = 0;   // option writes that were stored
    int starts = 0;          // of the user's program
    int chips = 1;           // how many chips have stood here, the present one included
};

// True when a chip of this model can be made.
bool known_model(std::string_view model);

class SimulatedChip {
  public:
    // A model that the catalogue doesn't know is a chip that never gets power;
    // faults() says so.
    explicit SimulatedChip(ChipConfig config = {});
    SimulatedChip(const SimulatedChip&) = delete;
    SimulatedChip& operator=(const SimulatedChip&) = delete;

    // What the line sees of it.
    Target target();

    // ---- what hands do to it ------------------------------------------------
    void power_on(Instant now);
    void power_off(Instant now);
    // Off now, and on again after that time, with a blank chip of the same kind
    // in its place if wanted.
    void power_cycle(Instant now, std::chrono::microseconds off_for, bool fresh_chip = false);
    // Another chip comes into the socket: blank, with the options of a new one,
    // without power until power_on.
    void replace(Instant now);
    // What the flash holds, from address 0; the rest of it stays.
    void load_flash(std::span<const std::uint8_t> bytes);
    void set_options(const OptionBytes& options) { options_ = options; }
    void add_fault(const Fault& fault);
    void clear_faults_plan() { plan_.clear(); }

    // ---- what a test or a person wants to see ---------------------------------
    const ChipConfig& config() const { return config_; }
    ChipState state() const { return state_; }
    std::string_view state_name() const { return name_of(state_); }
    bool started() const { return counters_.starts > 0; }  // since it was made
    std::span<const std::uint8_t> flash() const { return flash_; }
    const OptionBytes& options() const { return options_; }
    // Numbers of the option bytes that this firmware has, in the order of its frames.
    std::span<const int> option_numbers() const;
    char letter() const { return letter_; }
    std::uint8_t version() const { return version_; }
    int family() const { return family_; }
    double clock() const;                  // Hz, of the clock that its timers run from now
    double rate() const { return rate_; }  // baud at which it hears now; 0 without power
    const ChipCounters& counters() const { return counters_; }
    // Objections to what came over the line, oldest first; at most some hundreds.
    const std::vector<std::string>& faults() const { return faults_; }
    // Good frames and answers, oldest first. take_log empties it.
    const std::vector<LoggedFrame>& log() const { return log_; }
    std::vector<LoggedFrame> take_log();
    std::vector<std::string> take_faults();

  private:
    // A command that was carried out: what to answer, how long it took.
    struct Outcome {
        bool answer = false;
        std::vector<std::uint8_t> payload;  // from the reply code on
        std::chrono::microseconds work{0};
        double reply_rate = 0;  // 0: the rate in force
    };
    struct PlannedFault {
        Fault fault;
        int seen = 0;
    };
    struct PowerEvent {
        Instant at;
        bool on = false;
        bool fresh_chip = false;
    };

    // ---- simulated_chip.cpp: power, line, answers ----
    void hear(Instant at, std::uint8_t value, double sent_baud);
    Instant due() const;
    void act(Instant now);
    std::vector<WireByte> take_output();
    void hear_in_sync(Instant at, std::uint8_t value, double sent_baud);
    void hear_pulse(Instant at, std::uint8_t value, double sent_baud);
    void answer_pulses(Instant at, double sent_baud);
    void hear_frame_byte(Instant at, std::uint8_t value);
    bool frame_is_well_formed();
    void frame_heard(Instant at);
    void reply(Instant at, FrameKind kind, const Outcome& outcome,
               const std::vector<Fault>& struck);
    std::vector<Fault> strike(FrameKind kind);
    void schedule(PowerEvent event);
    void start_user_program(Instant at);
    void object(std::string text);
    void log_frame(LoggedFrame frame);

    // ---- chip_commands.cpp: what the firmware does ----
    Outcome carry_out(FrameKind kind, Instant at);
    Outcome do_watchdog();
    Outcome do_baud(bool final_switch);
    Outcome do_link_check();
    Outcome do_erase();
    Outcome do_block();
    Outcome do_status_read();
    Outcome do_options();
    Outcome do_nothing_known();
    Outcome status_payload(std::uint32_t count_sum);
    FrameKind kind_of_frame() const;
    std::uint8_t option_report(int number) const;
    bool options_acceptable(std::span<const std::uint8_t> body);
    void erase_sectors_below(std::uint32_t end);
    void erase_sector_of(std::uint32_t address);
    bool program(std::uint32_t address, std::span<const std::uint8_t> data);

    ChipConfig config_;

    // ---- what was cast into the silicon ----
    bool usable_ = false;  // the catalogue knows the model
    int family_ = 0;
    char letter_ = 'A';
    std::uint8_t version_ = 0;
    std::vector<std::uint8_t> id_;
    std::uint32_t program_end_ = 0;  // one past the program area
    std::uint32_t sector_ = 512;     // bytes

    // ---- what outlives a power cycle ----
    std::vector<std::uint8_t> flash_;
    OptionBytes options_{};

    // ---- the running firmware ----
    ChipState state_ = ChipState::off;
    Instant powered_since_{};
    double clock_ = 0;         // Hz, in force since power-up
    double rate_ = 0;          // baud at which it hears
    bool by_trigger_ = false;  // connected by the trigger at 115200 baud
    int pulses_in_row_ = 0;
    Instant last_byte_{};
    Instant busy_until_{};
    bool objected_to_garbling_ = false;         // once for a row of garbled bytes
    std::vector<std::uint8_t> frame_;           // being received, from its 46
    std::optional<std::uint16_t> tested_pair_;  // the reload pair last tested
    std::int64_t self_erased_sector_ = -1;      // firmware that erases as it writes
    int busy_answers_ = 0;
    std::uint16_t clock_count_ = 0;  // mean of the counts that it measured

    std::deque<WireByte> sending_;          // of answers, not yet given out
    std::vector<WireByte> output_;          // given out at the next take_output
    std::vector<PowerEvent> power_events_;  // in order of time

    std::vector<PlannedFault> plan_;
    ChipCounters counters_;
    std::vector<std::string> faults_;
    std::vector<LoggedFrame> log_;
};

}  // namespace vkm::sim
