// A simulator's program as a child process, and the host at the other side of its
// terminal. All of it takes real time.
#pragma once

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

namespace vkm::test {

using Bytes = std::vector<std::uint8_t>;
using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

// However busy the machine may be.
inline constexpr auto patience = 20s;

// A child process with both its ends.
class Program {
  public:
    Program(const char* path, std::vector<std::string> arguments) {
        int to_child[2];
        int from_child[2];
        EXPECT_EQ(pipe2(to_child, O_CLOEXEC), 0);
        EXPECT_EQ(pipe2(from_child, O_CLOEXEC), 0);
        arguments.insert(arguments.begin(), path);
        std::vector<char*> words;
        for (std::string& word : arguments) words.push_back(word.data());
        words.push_back(nullptr);
        pid_ = fork();
        if (pid_ == 0) {
            dup2(to_child[0], STDIN_FILENO);
            dup2(from_child[1], STDOUT_FILENO);
            execv(words[0], words.data());
            _exit(127);
        }
        close(to_child[0]);
        close(from_child[1]);
        commands_ = to_child[1];
        events_ = from_child[0];
    }
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;
    ~Program() {
        if (pid_ > 0) kill(pid_, SIGKILL);
        if (pid_ > 0) waitpid(pid_, nullptr, 0);
        close(commands_);
        close(events_);
    }

    std::string line() {
        for (const auto end = Clock::now() + patience; Clock::now() < end;) {
            const auto newline = text_.find('\n');
            if (newline != std::string::npos) {
                const std::string line = text_.substr(0, newline);
                text_.erase(0, newline + 1);
                return line;
            }
            pollfd ready{events_, POLLIN, 0};
            if (poll(&ready, 1, 100) <= 0) continue;
            char chunk[512];
            const ssize_t count = read(events_, chunk, sizeof chunk);
            if (count <= 0) break;
            text_.append(chunk, static_cast<std::size_t>(count));
        }
        return "(silence)";
    }

    // Passes over lines up to one that begins so.
    std::string line_with(const std::string& beginning) {
        for (;;) {
            const std::string text = line();
            if (text.starts_with(beginning) || text == "(silence)") return text;
        }
    }

    void command(const std::string& text) {
        const std::string line = text + "\n";
        EXPECT_EQ(write(commands_, line.data(), line.size()), static_cast<ssize_t>(line.size()));
    }
    void end_commands() {
        close(commands_);
        commands_ = -1;
    }
    void signal_it(int number) { kill(pid_, number); }

    int wait_for_end(rusage* usage = nullptr) {
        int status = 0;
        wait4(pid_, &status, 0, usage);
        pid_ = -1;
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

  private:
    pid_t pid_ = -1;
    int commands_ = -1;
    int events_ = -1;
    std::string text_;
};

// The host's side of the terminal.
class Host {
  public:
    explicit Host(const std::string& device)
        : terminal_(open(device.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC)) {
        EXPECT_GE(terminal_, 0) << device;
    }
    Host(const Host&) = delete;
    Host& operator=(const Host&) = delete;
    ~Host() { close(terminal_); }

    void set_rate(speed_t speed) {
        termios settings{};
        EXPECT_EQ(tcgetattr(terminal_, &settings), 0);
        cfsetspeed(&settings, speed);
        EXPECT_EQ(tcsetattr(terminal_, TCSANOW, &settings), 0);
    }

    void send(const Bytes& bytes) {
        EXPECT_EQ(write(terminal_, bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
    }

    // So many bytes, or what came before the time was up; none when the device is gone.
    Bytes hear(std::size_t count, std::chrono::milliseconds at_most = patience) {
        Bytes bytes;
        for (const auto end = Clock::now() + at_most; bytes.size() < count && Clock::now() < end;) {
            pollfd ready{terminal_, POLLIN, 0};
            if (poll(&ready, 1, 10) <= 0) continue;
            std::uint8_t chunk[512];
            const ssize_t got = read(terminal_, chunk, sizeof chunk);
            if (got <= 0) return {};
            bytes.insert(bytes.end(), chunk, chunk + got);
        }
        return bytes;
    }

    bool gone() {
        pollfd ready{terminal_, POLLIN, 0};
        return poll(&ready, 1, 5000) == 1 && (ready.revents & (POLLHUP | POLLERR)) != 0;
    }

  private:
    int terminal_;
};

inline std::string device_of(Program& program) {
    const std::string ready = program.line();
    EXPECT_EQ(ready.substr(0, 6), "ready ");
    return ready.substr(6);
}

}  // namespace vkm::test
