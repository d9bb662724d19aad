// A simulated target on a pseudo-terminal, as a program. One thread, which sleeps
// until the host has written, somebody commands, or the line's next byte is due.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "pseudo_terminal/paced_line.h"
#include "pseudo_terminal/printed_lines.h"
#include "pseudo_terminal/pseudo_terminal.h"
#include "simulators/wire.h"

namespace vkm::sim {

// The clock that the program's targets live by.
Instant now_instant();

struct ProgramOptions {
    std::string name;        // before what goes to standard error
    std::string link;        // symbolic link to the terminal; empty: none
    bool quiet = false;      // tells nothing but "ready" and answers to commands
    bool until_eof = false;  // the end of the commands ends the program
    // The rate of the line; 0: that which the host has set, as on a real one.
    double baud = 0;
    // What the host doesn't read waits for it, instead of being lost as in a
    // receiver that overruns.
    bool keeps_unread = false;
};

// What a program does besides; each may be empty.
struct ProgramWork {
    // The answer to a command, "ok ..." or "error ...".
    std::function<std::string(std::string_view command, Instant now)> command;
    // All that was due has happened.
    std::function<void(Instant now)> turned;
    std::function<void(Instant now, std::size_t bytes, double baud)> host_wrote;
    std::function<void(Instant now, std::size_t bytes, double baud)> host_was_given;
};

class TargetProgram {
  public:
    TargetProgram(Target target, ProgramOptions options);
    TargetProgram(const TargetProgram&) = delete;
    TargetProgram& operator=(const TargetProgram&) = delete;
    ~TargetProgram();

    // Until it is told to quit; the exit status.
    int run(ProgramWork work);

    // A line on standard output, unless the program is quiet or nobody reads there.
    void tell(const std::string& text);
    // Bytes that wait for the host to read.
    std::size_t unread() const { return unread_.size(); }

  private:
    bool prepare();
    void turn();
    void give_to_host(std::vector<std::uint8_t> bytes);
    void write_unread();
    void tell_lost_bytes();
    void lose_what_is_on_its_way();
    void sleep_until_next();
    void take_from_host();
    void take_commands();
    std::string carry_out(std::string_view command);
    double line_baud();

    ProgramOptions options_;
    ProgramWork work_;
    PacedLine line_;
    PseudoTerminal terminal_;
    std::deque<std::uint8_t> unread_;
    PrintedLines lines_;
    int signals_ = -1;
    int told_lost_ = 0;
    bool commands_ended_ = false;
    bool quit_ = false;
    std::string command_;  // the beginning of one
};

}  // namespace vkm::sim
