// vkm-chip: a simulated chip on a pseudo-terminal. One thread, which sleeps until
// the host has written, somebody commands, or the line's next byte is due.
#include <poll.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <string>
#include <string_view>

#include "catalogue/model_table.h"
#include "simulators/simulated_chip.h"
#include "vkm_chip/chip_arguments.h"
#include "vkm_chip/chip_control.h"
#include "vkm_chip/chip_reports.h"
#include "vkm_chip/flash_file.h"
#include "vkm_chip/paced_line.h"
#include "vkm_chip/pseudo_terminal.h"

namespace vkm::sim {
namespace {

constexpr std::size_t longest_command = 4096;

Instant now_instant() {
    return std::chrono::time_point_cast<std::chrono::microseconds>(
        std::chrono::steady_clock::now());
}

// A reader that doesn't read must not hold up the chip: what finds no room is dropped.
void print_line(const std::string& text) {
    const std::string line = text + "\n";
    pollfd out{STDOUT_FILENO, POLLOUT, 0};
    if (poll(&out, 1, 0) != 1 || (out.revents & POLLOUT) == 0) return;
    [[maybe_unused]] const ssize_t written = write(STDOUT_FILENO, line.data(), line.size());
}

// Signals that end the program become readable, so that it ends in order.
int open_end_signals() {
    sigset_t signals;
    sigemptyset(&signals);
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) sigaddset(&signals, number);
    sigprocmask(SIG_BLOCK, &signals, nullptr);
    signal(SIGPIPE, SIG_IGN);
    return signalfd(-1, &signals, SFD_CLOEXEC);
}

class Program {
  public:
    explicit Program(const ChipArguments& arguments)
        : arguments_(arguments),
          chip_(arguments.config),
          line_(chip_.target()),
          bench_{chip_, line_, terminal_, meter_, arguments.link} {}

    int run() {
        if (!prepare()) return 1;
        while (!bench_.quit) {
            turn();
            sleep_until_next();
        }
        save();
        return 0;
    }

  private:
    bool prepare() {
        if (!arguments_.load_flash.empty()) {
            const auto bytes = load_flash(arguments_.load_flash, chip_.flash().size());
            if (!bytes) return complain(arguments_.load_flash + ": can't be read");
            chip_.load_flash(*bytes);
        }
        const std::string error = terminal_.plug(arguments_.link);
        if (!error.empty()) return complain(error);
        // Wake at the microsecond, not when it suits the system.
        prctl(PR_SET_TIMERSLACK, 1);
        signals_ = open_end_signals();
        print_line("ready " + terminal_.device());
        return true;
    }

    static bool complain(const std::string& text) {
        std::fprintf(stderr, "vkm-chip: %s\n", text.c_str());
        return false;
    }

    // All that is due now.
    void turn() {
        if (terminal_.plugged()) line_.host_rate(now_instant(), terminal_.host_rate());
        const Instant now = now_instant();
        line_.run(now);
        if (terminal_.plugged()) give_to_host(line_.take_for_host());
        for (const std::string& text : reporter_.news(chip_, now))
            if (!arguments_.quiet) print_line(text);
        tell_lost_bytes();
        if (reporter_.take_rest()) save();
    }

    void give_to_host(const std::vector<std::uint8_t>& bytes) {
        terminal_.write(bytes);
        meter_.host_was_given(now_instant(), bytes.size(), terminal_.host_rate());
    }

    void tell_lost_bytes() {
        if (line_.lost_by_rate_change() == told_lost_) return;
        told_lost_ = line_.lost_by_rate_change();
        if (!arguments_.quiet) print_line("objection rate changed while a byte was on the wire");
    }

    void sleep_until_next() {
        std::array<pollfd, 3> events{{{signals_, POLLIN, 0},
                                      {commands_ended_ ? -1 : STDIN_FILENO, POLLIN, 0},
                                      {terminal_.descriptor(), POLLIN, 0}}};
        const Instant next = line_.next();
        timespec wait{};
        if (next != never) {
            const auto left = std::max(std::chrono::nanoseconds{0},
                                       std::chrono::nanoseconds{next - now_instant()});
            wait.tv_sec = left.count() / 1'000'000'000;
            wait.tv_nsec = left.count() % 1'000'000'000;
        }
        ppoll(events.data(), events.size(), next == never ? nullptr : &wait, nullptr);
        if (events[2].revents != 0) take_from_host();
        if (events[1].revents != 0) take_commands();
        if (events[0].revents != 0) bench_.quit = true;
    }

    // At once: what lies in the terminal, the host could still take back.
    void take_from_host() {
        const std::vector<std::uint8_t> bytes = terminal_.read();
        const Instant now = now_instant();
        line_.host_rate(now, terminal_.host_rate());
        line_.host_writes(now, bytes);
        meter_.host_wrote(now, bytes.size(), terminal_.host_rate());
    }

    void take_commands() {
        std::array<char, 1024> chunk;
        const ssize_t count = read(STDIN_FILENO, chunk.data(), chunk.size());
        if (count <= 0) {
            commands_ended_ = true;
            if (arguments_.until_eof) bench_.quit = true;
            return;
        }
        command_.append(chunk.data(), static_cast<std::size_t>(count));
        for (std::size_t end = command_.find('\n'); end != std::string::npos;
             end = command_.find('\n')) {
            print_line(carry_out_command(bench_, command_.substr(0, end), now_instant()));
            command_.erase(0, end + 1);
        }
        if (command_.size() > longest_command) command_.clear();
    }

    void save() {
        if (arguments_.save_flash.empty()) return;
        const bool saved = save_flash(arguments_.save_flash, chip_.flash());
        if (!arguments_.quiet)
            print_line((saved ? "saved " : "error can't write ") + arguments_.save_flash);
    }

    ChipArguments arguments_;
    SimulatedChip chip_;
    PacedLine line_;
    PseudoTerminal terminal_;
    LineMeter meter_;
    ChipBench bench_;
    ChipReporter reporter_;
    int signals_ = -1;
    int told_lost_ = 0;
    bool commands_ended_ = false;
    std::string command_;  // the beginning of one
};

void list_models() {
    for (const ModelGroup& group : MCU_AP_ISP_range)
        for (const ModelRow& row : group.rows)
            if (&group != &MCU_AP_ISP_range[older_54xx_group])
                std::printf("%.*s\n", static_cast<int>(row.MCU_Name.size()), row.MCU_Name.data());
}

int start(std::span<const char* const> words) {
    ArgumentsRead read = read_arguments(words);
    if (!read.error.empty()) {
        std::fprintf(stderr, "vkm-chip: %s; --help tells what there is\n", read.error.c_str());
        return 2;
    }
    ChipArguments& arguments = read.arguments;
    if (arguments.help) {
        std::fwrite(usage().data(), 1, usage().size(), stdout);
        return 0;
    }
    if (arguments.list_models) {
        list_models();
        return 0;
    }
    arguments.config.powered_at =
        arguments.power_by_hand ? never : now_instant() + arguments.power_after;
    return Program(arguments).run();
}

}  // namespace
}  // namespace vkm::sim

int main(int count, char** words) {
    return vkm::sim::start({words + 1, static_cast<std::size_t>(count - 1)});
}
