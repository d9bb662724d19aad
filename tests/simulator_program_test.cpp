// The program vkm-chip on a real pseudo-terminal. These tests take real time,
// some seconds in all, and say so in their names.
#include "simulator_program.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <thread>

#include "simulator_driver.h"

namespace vkm::test {
namespace {

struct ChipProgram : Program {
    explicit ChipProgram(std::vector<std::string> arguments)
        : Program(VKM_CHIP_PROGRAM, std::move(arguments)) {}
};

// A baud frame: sent, given its time on the wire, then the rate is changed.
Bytes switch_rate(Host& host, const Bytes& frame, speed_t speed) {
    host.send(frame);
    std::this_thread::sleep_for(sim::wire_time(frame.size(), 1200) + 5ms);
    host.set_rate(speed);
    return host.hear(short_ack.size());
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
    ChipProgram program({"--link", link, "--save-flash", flash, "--erase-time", "50"});
    const std::string device = device_of(program);
    EXPECT_EQ(std::filesystem::read_symlink(link), device);
    const auto data = Bytes(128, 0x5A);
    {
        Host host(link);
        host.set_rate(B1200);
        host.send(Bytes(8, 0x7F));
        EXPECT_EQ(host.hear(30).size(), 30U);
        EXPECT_EQ(switch_rate(host, short_frame({0x8F, 0xFF, 0xFD, 0, 6, 80, 129}), B115200),
                  short_ack);
        host.set_rate(B1200);
        EXPECT_EQ(switch_rate(host, short_frame({0x8E, 0xFF, 0xFD, 0, 6, 80}), B115200), short_ack);
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
    program.command("measure");
    EXPECT_NE(program.line_with("ok bulk_us=").find(" turnarounds=7 "), std::string::npos);
    program.command("quit");
    EXPECT_EQ(program.wait_for_end(), 0);
    EXPECT_FALSE(std::filesystem::exists(std::filesystem::symlink_status(link)));
    std::filesystem::remove(flash);
}

TEST(VkmChipRealTime, KeepsThePaceOfTheLine) {
    ChipProgram program({"--turnaround", "0"});
    Host host(device_of(program));
    host.set_rate(B1200);
    const auto before = Clock::now();
    host.send(Bytes(8, 0x7F));
    EXPECT_EQ(host.hear(30).size(), 30U);
    EXPECT_GE(Clock::now() - before, sim::wire_time(38, 1200));
}

TEST(VkmChipRealTime, IsDeafWhereTheHostHasAnotherRate) {
    ChipProgram program({});
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
    ChipProgram program({"--link", link, "--quiet"});
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
    ChipProgram program({});
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
    ChipProgram program({"--link", link});
    device_of(program);
    program.signal_it(SIGTERM);
    EXPECT_EQ(program.wait_for_end(), 0);
    EXPECT_FALSE(std::filesystem::exists(std::filesystem::symlink_status(link)));

    EXPECT_EQ(ChipProgram({"--model", "none"}).wait_for_end(), 2);
    EXPECT_EQ(ChipProgram({"--link", "/"}).wait_for_end(), 1);
    EXPECT_EQ(ChipProgram({"--load-flash", "/no/such/file"}).wait_for_end(), 1);
    ChipProgram help({"--help"});
    EXPECT_NE(help.line_with("vkm-chip"), "(silence)");
    EXPECT_EQ(help.wait_for_end(), 0);
}

}  // namespace
}  // namespace vkm::test
