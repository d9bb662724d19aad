#include "pseudo_terminal/target_program.h"

#include <poll.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <utility>

namespace vkm::sim {
namespace {

constexpr std::size_t longest_command = 65536;

// Of a host that never reads.
constexpr std::size_t most_unread = 64 * 1024 * 1024;

// At the end, for a reader of the last lines.
constexpr std::chrono::milliseconds patience_at_end{1000};

// Signals that end the program become readable, so that it ends in order.
int open_end_signals() {
    sigset_t signals;
    sigemptyset(&signals);
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) sigaddset(&signals, number);
    sigprocmask(SIG_BLOCK, &signals, nullptr);
    signal(SIGPIPE, SIG_IGN);
    return signalfd(-1, &signals, SFD_CLOEXEC);
}

}  // namespace

Instant now_instant() {
    return std::chrono::time_point_cast<std::chrono::microseconds>(
        std::chrono::steady_clock::now());
}

TargetProgram::TargetProgram(Target target, ProgramOptions options)
    : options_(std::move(options)), line_(std::move(target)), lines_(STDOUT_FILENO) {}

TargetProgram::~TargetProgram() {
    lines_.finish(patience_at_end);
    if (signals_ >= 0) close(signals_);
}

int TargetProgram::run(ProgramWork work) {
    work_ = std::move(work);
    if (!prepare()) return 1;
    while (!quit_) {
        turn();
        sleep_until_next();
    }
    return 0;
}

bool TargetProgram::prepare() {
    const std::string error = terminal_.plug(options_.link);
    if (!error.empty()) {
        std::fprintf(stderr, "%s: %s\n", options_.name.c_str(), error.c_str());
        return false;
    }
    // Wake at the microsecond, not when it suits the system.
    prctl(PR_SET_TIMERSLACK, 1);
    signals_ = open_end_signals();
    lines_.answer("ready " + terminal_.device());
    return true;
}

void TargetProgram::tell(const std::string& text) {
    if (!options_.quiet) lines_.news(text);
}

double TargetProgram::line_baud() {
    return options_.baud > 0 ? options_.baud : terminal_.host_rate();
}

// ---- the line ---------------------------------------------------------------------

// All that is due now.
void TargetProgram::turn() {
    if (terminal_.plugged()) line_.host_rate(now_instant(), line_baud());
    const Instant now = now_instant();
    line_.run(now);
    if (terminal_.plugged()) give_to_host(line_.take_for_host());
    if (work_.turned) work_.turned(now);
    tell_lost_bytes();
}

void TargetProgram::give_to_host(std::vector<std::uint8_t> bytes) {
    unread_.insert(unread_.end(), bytes.begin(), bytes.end());
    write_unread();
    const std::size_t kept = options_.keeps_unread ? most_unread : 0;
    if (unread_.size() > kept)
        unread_.erase(unread_.begin() + static_cast<std::ptrdiff_t>(kept), unread_.end());
    if (work_.host_was_given) work_.host_was_given(now_instant(), bytes.size(), line_baud());
}

void TargetProgram::write_unread() {
    std::array<std::uint8_t, 4096> chunk;
    while (!unread_.empty()) {
        const std::size_t count = std::min(chunk.size(), unread_.size());
        const auto end = unread_.begin() + static_cast<std::ptrdiff_t>(count);
        std::copy(unread_.begin(), end, chunk.begin());
        const std::size_t written = terminal_.write({chunk.data(), count});
        unread_.erase(unread_.begin(), unread_.begin() + static_cast<std::ptrdiff_t>(written));
        if (written < count) return;
    }
}

void TargetProgram::tell_lost_bytes() {
    if (line_.lost_by_rate_change() == told_lost_) return;
    told_lost_ = line_.lost_by_rate_change();
    tell("objection rate changed while a byte was on the wire");
}

void TargetProgram::sleep_until_next() {
    const auto room = static_cast<short>(unread_.empty() ? 0 : POLLOUT);
    // No command whose answer would only add to what nobody reads.
    const bool hears_commands = !commands_ended_ && !lines_.too_many();
    std::array<pollfd, 4> events{{{signals_, POLLIN, 0},
                                  {hears_commands ? STDIN_FILENO : -1, POLLIN, 0},
                                  {terminal_.descriptor(), static_cast<short>(POLLIN | room), 0},
                                  {lines_.wait() ? STDOUT_FILENO : -1, POLLOUT, 0}}};
    const Instant next = line_.next();
    timespec wait{};
    if (next != never) {
        const auto left =
            std::max(std::chrono::nanoseconds{0}, std::chrono::nanoseconds{next - now_instant()});
        wait.tv_sec = left.count() / 1'000'000'000;
        wait.tv_nsec = left.count() % 1'000'000'000;
    }
    ppoll(events.data(), events.size(), next == never ? nullptr : &wait, nullptr);
    if (events[3].revents != 0) lines_.print();
    if (events[2].revents != 0) take_from_host();
    if (events[1].revents != 0) take_commands();
    if (events[0].revents != 0) quit_ = true;
}

// At once: what lies in the terminal, the host could still take back.
void TargetProgram::take_from_host() {
    const std::vector<std::uint8_t> bytes = terminal_.read();
    const Instant now = now_instant();
    const double baud = line_baud();
    line_.host_rate(now, baud);
    line_.host_writes(now, bytes);
    if (work_.host_wrote) work_.host_wrote(now, bytes.size(), baud);
}

void TargetProgram::lose_what_is_on_its_way() {
    line_.cut();
    unread_.clear();
}

// ---- commands ------------------------------------------------------------------------

void TargetProgram::take_commands() {
    std::array<char, 1024> chunk;
    const ssize_t count = read(STDIN_FILENO, chunk.data(), chunk.size());
    if (count <= 0) {
        commands_ended_ = true;
        if (options_.until_eof) quit_ = true;
        return;
    }
    command_.append(chunk.data(), static_cast<std::size_t>(count));
    for (std::size_t end = command_.find('\n'); end != std::string::npos;
         end = command_.find('\n')) {
        lines_.answer(carry_out(command_.substr(0, end)));
        command_.erase(0, end + 1);
    }
    if (command_.size() > longest_command) command_.clear();
}

// What every such program obeys; the rest is the target's.
std::string TargetProgram::carry_out(std::string_view command) {
    if (command == "quit") {
        quit_ = true;
        return "ok";
    }
    if (command == "pull" || command == "unplug") {
        terminal_.unplug();
        lose_what_is_on_its_way();
        return "ok";
    }
    if (command == "plug") {
        lose_what_is_on_its_way();
        const std::string error = terminal_.plug(options_.link);
        return error.empty() ? "ok " + terminal_.device() : "error " + error;
    }
    return work_.command(command, now_instant());
}

}  // namespace vkm::sim
