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

#include "simulators/chip_config.h"
#include "simulators/chip_silicon.h"
#include "simulators/fault_plan.h"
#include "simulators/fault_strikes.h"
#include "simulators/frames.h"
#include "simulators/nor_flash.h"
#include "simulators/wire.h"

namespace vkm::sim {

enum class ChipState {
    off,        // without power
    listening,  // for sync pulses, or the trigger at 115200 baud
    base,       // connected, at the rate of the pulses
    full_rate,  // connected, at the rate that was set
    running,    // in the user's program: deaf to everything but a user code
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
    int user_codes = 0;      // that it obeyed
    int greetings = 0;       // begun by the program
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
    void add_fault(const Fault& fault) { plan_.add(fault); }
    void forget_faults() { plan_.forget(); }

    // ---- what a test or a person wants to see ---------------------------------
    const ChipConfig& config() const { return config_; }
    ChipState state() const { return state_; }
    std::string_view state_name() const { return name_of(state_); }
    bool started() const { return counters_.starts > 0; }  // since it was made
    std::span<const std::uint8_t> flash() const { return flash_.bytes(); }
    const OptionBytes& options() const { return options_; }
    // Numbers of the option bytes that this firmware has, in the order of its frames.
    std::span<const int> option_numbers() const;
    char letter() const { return silicon_ ? silicon_->letter : '?'; }
    std::uint8_t version() const { return silicon_ ? silicon_->version : std::uint8_t{0}; }
    int family() const { return silicon_ ? silicon_->family : -1; }
    double clock() const;                  // Hz, what its timers run from
    double rate() const { return rate_; }  // baud at which it hears now; 0 without power
    const ChipCounters& counters() const { return counters_; }
    // Objections to what came over the line, oldest first; at most some hundreds.
    const std::vector<std::string>& faults() const { return faults_; }
    // Good frames and answers, oldest first. take_log empties it.
    const std::vector<LoggedFrame>& log() const { return log_; }
    std::vector<LoggedFrame> take_log();
    std::vector<std::string> take_faults();

  private:
    // What a command came to.
    struct Outcome {
        bool answered = true;
        std::vector<std::uint8_t> payload;  // of the answer, from the reply code on
        std::chrono::microseconds work{0};  // before the answer
        std::optional<double> rate;         // of the answer, if not the one in force
    };
    struct PowerEvent {
        Instant at;
        bool on = false;
        bool fresh_chip = false;
    };

    // ---- simulated_chip.cpp: power, and the bytes of the line ----
    void hear(Instant at, std::uint8_t value, double sent_baud);
    Instant due() const;
    void act(Instant now);
    std::vector<WireByte> take_output();

    void switch_on(Instant at);
    void switch_off();
    void run_power_events(Instant now);
    void enter_firmware(Instant at);
    void start_user_program(Instant at);
    void greet(Instant now);
    void hear_in_program(Instant at, std::uint8_t value, double sent_baud);

    void hear_in_sync(Instant at, std::uint8_t value, double sent_baud);
    void hear_pulse(Instant at, std::uint8_t value, double pulse_baud);
    void connect(Instant at, bool by_trigger, double baud);
    void hear_frame_byte(Instant at, std::uint8_t value);
    void object(std::string text);
    void log_frame(LoggedFrame frame);

    // ---- chip_answers.cpp: answers, and what goes wrong with them ----
    bool struck_dead(Instant at, const std::vector<Fault>& struck);
    void answer(Instant at, FrameKind kind, Outcome outcome, const std::vector<Fault>& struck);
    bool precedes_answers_with_noise(FrameKind kind) const;

    // ---- chip_commands.cpp: what the firmware does ----
    FrameKind kind_of_frame() const;
    void frame_heard(Instant at);
    void trigger_heard(Instant at);
    bool long_enough(FrameKind kind);
    bool has_preamble();
    Outcome acknowledged(std::chrono::microseconds work = {}) const;
    Outcome refused(std::string why);  // answered with a code of its own
    Outcome ignored(std::string why);  // not answered
    Outcome carry_out(FrameKind kind, Instant at);
    Outcome status() const;
    Outcome do_watchdog();
    Outcome do_baud(FrameKind kind);
    void check_waits(FrameKind kind, std::span<const std::uint8_t> body);
    Outcome do_link_check();
    Outcome do_erase();
    std::string objection_to_erase() const;
    std::uint32_t erase_end() const;
    Outcome do_block();
    bool write_to_flash(std::uint32_t address, std::span<const std::uint8_t> data);
    void erase_on_entering(std::uint32_t sector);
    Outcome do_status_read();
    Outcome do_leave(FrameKind kind, Instant at);

    // ---- chip_options.cpp: the option bytes ----
    Outcome do_options();
    std::string objection_to_options(std::span<const std::uint8_t> body) const;
    std::string objection_to_clock(std::uint8_t source, std::span<const std::uint8_t> clock) const;
    std::string objection_to_pair(bool doubled, std::span<const std::uint8_t> pair) const;
    void store_options(std::span<const std::uint8_t> body);
    void append_options(std::vector<std::uint8_t>& payload) const;
    bool lacks_watchdog_option() const;

    ChipConfig config_;
    std::optional<Silicon> silicon_;  // none: the catalogue doesn't know the model

    // ---- what outlives a power cycle ----
    NorFlash flash_;
    OptionBytes options_{};

    // ---- the running firmware ----
    ChipState state_ = ChipState::off;
    double clock_ = 0;               // Hz, in force since power-up
    double rate_ = 0;                // baud at which it hears
    bool by_trigger_ = false;        // connected by the trigger at 115200 baud
    Instant listens_until_ = never;  // for pulses; then the user program starts
    int pulses_in_row_ = 0;
    std::array<std::uint16_t, 8> clock_counts_{};
    FrameReceiver receiver_{chip_request};
    Instant last_byte_{};
    Instant busy_until_{};                         // until then it hears nothing
    bool objected_ = false;                        // to the present row of garbled or missed bytes
    std::optional<std::uint16_t> tested_pair_;     // the reload pair last tested
    std::optional<std::uint32_t> written_sector_;  // number, for firmware that erases as it writes
    int busy_answers_ = 0;
    Instant greets_at_ = never;                   // the running program does
    std::vector<std::uint8_t> heard_in_program_;  // the last bytes, as many as the user code has

    std::deque<WireByte> sending_;         // of answers, not yet given out
    std::vector<WireByte> output_;         // given out at the next take_output
    std::deque<PowerEvent> power_events_;  // in order of time

    FaultSchedule<FrameKind> plan_;
    ChipCounters counters_;
    std::vector<std::string> faults_;
    std::vector<LoggedFrame> log_;
};

}  // namespace vkm::sim
