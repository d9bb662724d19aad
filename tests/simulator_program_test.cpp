// The program vkm-chip on a real pseudo-terminal. These tests take real time,
// some seconds in all, and say so in their names.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <thread>

#include "simulator_driver.h"

namespace vkm::test {
namespace {

using Clock = std::chrono::steady_clock;

// However busy the machine may be.
constexpr auto patience = 20s;

// A child process with both its ends.
class Program {
  public:
    explicit Program(std::vector<std::string> arguments) {
        int to_child[2];
        int from_child[2];
        EXPECT_EQ(pipe2(to_child, O_CLOEXEC), 0);
        EXPECT_EQ(pipe2(from_child, O_CLOEXEC), 0);
        arguments.insert(arguments.begin(), VKM_CHIP_PROGRAM);
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

    // A baud frame: sent, given its time on the wire, then the rate is changed.
    Bytes switch_rate(const Bytes& frame, speed_t speed) {
        send(frame);
        std::this_thread::sleep_for(sim::wire_time(frame.size(), 1200) + 5ms);
        set_rate(speed);
        return hear(short_ack.size());
    }

  private:
    int terminal_;
};

std::string device_of(Program& program) {
    const std::string ready = program.line();
    EXPECT_EQ(ready.substr(0, 6), "ready ");
    return ready.substr(6);
}

Bytes file_bytes(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

TEST(VkmChipRealTime, DownloadsAtTheRatesThatTheHostSets) {
    const std::string link = testing::TempDir() + "vkm_chip_com1";
    const std::string flash = testing::TempDir() + "vkm_chip_flash.bin";
    // The first baud frame may reach the program late on a busy machine, so the
    // answer has to come later still: 80 ms and not 40.
    Program program({"--link", link, "--save-flash", flash, "--erase-time", "50"});
    const std::string device = device_of(program);
    EXPECT_EQ(std::filesystem::read_symlink(link), device);
    const auto data = Bytes(128, 0x5A);
    {
        Host host(link);
        host.set_rate(B1200);
        host.send(Bytes(8, 0x7F));
        EXPECT_EQ(host.hear(30).size(), 30U);
        EXPECT_EQ(host.switch_rate(short_frame({0x8F, 0xFF, 0xFD, 0, 6, 80, 129}), B115200),
                  short_ack);
        host.set_rate(B1200);
        EXPECT_EQ(host.switch_rate(short_frame({0x8E, 0xFF, 0xFD, 0, 6, 80}), B115200), short_ack);
    }
    Host host(link);  // closed and opened again, which is no hang-up
    const auto before = Clock::now();
    host.send(short_frame({0x84, 255, 0x33, 0x33, 0x33, 0x33, 0x33, 0x33}));
    EXPECT_EQ(host.hear(8), short_ack);
    EXPECT_GE(Clock::now() - before, 50ms);
    for (std::uint32_t at = 0; at < 1024; at += 128) {
        host.send(block_frame(0x00, at, data));
        EXPECT_EQ(host.hear(9).size(), 9U);
    }
    host.send(trigger_82);
    for (const char* event : {"powered", "connected", "rate", "erasing", "erased", "block 0x0000",
                              "block 0x0380", "started", "saved"})
        EXPECT_NE(program.line_with(event), "(silence)") << event;
    const Bytes saved = file_bytes(flash);
    ASSERT_EQ(saved.size(), 63488U);
    EXPECT_EQ(saved[1023], 0x5A);
    EXPECT_EQ(saved[1024], 0xFF);
    program.command("quit");
    EXPECT_EQ(program.wait_for_end(), 0);
    EXPECT_FALSE(std::filesystem::exists(std::filesystem::symlink_status(link)));
    std::filesystem::remove(flash);
}

TEST(VkmChipRealTime, KeepsThePaceOfTheLine) {
    Program program({"--turnaround", "0"});
    Host host(device_of(program));
    host.set_rate(B1200);
    const auto before = Clock::now();
    host.send(Bytes(8, 0x7F));
    EXPECT_EQ(host.hear(30).size(), 30U);
    EXPECT_GE(Clock::now() - before, sim::wire_time(38, 1200));
}

TEST(VkmChipRealTime, IsDeafWhereTheHostHasAnotherRate) {
    Program program({});
    Host host(device_of(program));
    host.set_rate(B9600);
    host.send(Bytes(16, 0x7F));
    EXPECT_TRUE(host.hear(1, 200ms).empty());
    host.set_rate(B1200);
    host.send(Bytes(8, 0x7F));
    EXPECT_EQ(host.hear(30).size(), 30U);
}

TEST(VkmChipRealTime, PullsItsCableAndPutsItInAgain) {
    const std::string link = testing::TempDir() + "vkm_chip_com2";
    Program program({"--link", link, "--quiet"});
    Host host(device_of(program));
    program.command("pull");
    EXPECT_EQ(program.line(), "ok");
    EXPECT_TRUE(host.gone());
    EXPECT_FALSE(std::filesystem::exists(std::filesystem::symlink_status(link)));
    program.command("plug");
    EXPECT_EQ(program.line().substr(0, 8), "ok /dev/");
    Host again(link);
    again.set_rate(B1200);
    again.send(Bytes(8, 0x7F));
    EXPECT_EQ(again.hear(30).size(), 30U);
}

TEST(VkmChipRealTime, SleepsWhileNothingHappens) {
    Program program({});
    device_of(program);
    std::this_thread::sleep_for(500ms);
    program.command("quit");
    rusage usage{};
    EXPECT_EQ(program.wait_for_end(&usage), 0);
    const auto used = usage.ru_utime.tv_usec + usage.ru_stime.tv_usec;
    EXPECT_EQ(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec, 0);
    EXPECT_LT(used, 250'000);
    EXPECT_LT(usage.ru_nvcsw, 50);
}

TEST(VkmChipRealTime, EndsInOrderAtASignalAndRefusesWhatItCannotDo) {
    const std::string link = testing::TempDir() + "vkm_chip_com3";
    Program program({"--link", link});
    device_of(program);
    program.signal_it(SIGTERM);
    EXPECT_EQ(program.wait_for_end(), 0);
    EXPECT_FALSE(std::filesystem::exists(std::filesystem::symlink_status(link)));

    EXPECT_EQ(Program({"--model", "none"}).wait_for_end(), 2);
    EXPECT_EQ(Program({"--link", "/"}).wait_for_end(), 1);
    EXPECT_EQ(Program({"--load-flash", "/no/such/file"}).wait_for_end(), 1);
    Program help({"--help"});
    EXPECT_NE(help.line_with("vkm-chip"), "(silence)");
    EXPECT_EQ(help.wait_for_end(), 0);
}

}  // namespace
}  // namespace vkm::test
