// The program vkm-target on a real pseudo-terminal. These tests take real time,
// some seconds in all, and say so in their names.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <thread>
#include <utility>

#include "simulator_program.h"
#include "simulators/dump_frame.h"
#include "simulators/talking_target.h"
#include "simulators/wire.h"
#include "support/agent_commands.h"

namespace vkm::test {
namespace {

struct TargetProgram : Program {
    explicit TargetProgram(std::vector<std::string> arguments)
        : Program(VKM_TARGET_PROGRAM, std::move(arguments)) {}

    // The answer, passing over what is told meanwhile.
    std::string answer(const std::string& text) {
        command(text);
        for (;;) {
            const std::string found = line();
            if (found.starts_with("ok") || found.starts_with("error") || found == "(silence)")
                return found;
        }
    }
};

std::string text_of(const Bytes& bytes) {
    return {bytes.begin(), bytes.end()};
}

TEST(VkmTargetRealTime, TalksAndTellsWhatItHeard) {
    const std::string link = testing::TempDir() + "vkm_target_com1";
    TargetProgram program({"--talk", "--link", link, "--baud", "57600", "--echo"});
    device_of(program);
    Host host(link);
    host.set_rate(B57600);
    EXPECT_EQ(program.answer("say ready\\r\\n"), "ok 7 bytes");
    EXPECT_EQ(text_of(host.hear(7)), "ready\r\n");
    host.send({0x41, 0x00, 0xFF});
    EXPECT_EQ(host.hear(3), (Bytes{0x41, 0x00, 0xFF}));
    EXPECT_EQ(program.answer("heard"), "ok 41 00 FF");
    EXPECT_EQ(program.answer("say more"), "ok 4 bytes");
    EXPECT_EQ(text_of(host.hear(4)), "more");
    EXPECT_EQ(program.answer("sent"), "ok 14");
    EXPECT_EQ(program.answer("jump"), "error no such command: jump");
    EXPECT_EQ(program.answer("quit"), "ok");
    EXPECT_EQ(program.wait_for_end(), 0);
    EXPECT_FALSE(std::filesystem::exists(std::filesystem::symlink_status(link)));
}

TEST(VkmTargetRealTime, RepeatsWhatItSaysAtThePaceOfTheLineAndIsGarbledAtAnotherRate) {
    const auto before = Clock::now();
    TargetProgram program({"--talk", "--baud", "9600", "--say", "UU", "--every", "100"});
    Host host(device_of(program));
    const auto choose_rate = [&](speed_t speed) {
        host.set_rate(speed);
        program.answer("sent");  // it has seen the rate
        host.hear(1000, 300ms);  // what was on its way
    };
    choose_rate(B9600);
    EXPECT_EQ(text_of(host.hear(10)), "UUUUUUUUUU");
    EXPECT_GE(Clock::now() - before, 400ms);
    choose_rate(B19200);
    EXPECT_EQ(text_of(host.hear(1000, 500ms)).find('U'), std::string::npos);
}

TEST(VkmTargetRealTime, LosesNothingOfAPacedBurstWhileTheHostPauses) {
    TargetProgram program({"--talk", "--baud", "3000000"});
    Host host(device_of(program));
    host.set_rate(B3000000);
    const auto before = Clock::now();
    EXPECT_EQ(program.answer("burst 300000 count"), "ok 300000 bytes");
    std::this_thread::sleep_for(500ms);
    const Bytes bytes = host.hear(300'000);
    EXPECT_GE(Clock::now() - before, sim::wire_time(300'000, 3e6));
    EXPECT_TRUE(bytes == burst_bytes(sim::BurstKind::count, 300'000)) << bytes.size();
    EXPECT_EQ(program.answer("sent"), "ok 300000");
}

TEST(VkmTargetRealTime, SendsAnUnpacedBurstWholeAtAnyRate) {
    TargetProgram program({"--talk", "--unpaced", "--echo"});
    Host host(device_of(program));
    host.set_rate(B1200);
    EXPECT_EQ(program.answer("burst 2000000"), "ok 2000000 bytes");
    const auto before = Clock::now();
    const Bytes bytes = host.hear(2'000'000);
    EXPECT_LT(Clock::now() - before, patience);
    EXPECT_TRUE(bytes == burst_bytes(sim::BurstKind::text, 2'000'000)) << bytes.size();
    host.send({'e'});
    EXPECT_EQ(text_of(host.hear(1)), "e");
}

TEST(VkmTargetRealTime, SleepsWhileNobodyReads) {
    TargetProgram program({"--talk", "--unpaced"});
    device_of(program);
    program.answer("burst 100000");
    std::this_thread::sleep_for(500ms);
    const std::string sent = program.answer("sent");
    EXPECT_LT(std::stoi(sent.substr(3)), 100'000);
    program.command("quit");
    rusage usage{};
    EXPECT_EQ(program.wait_for_end(&usage), 0);
    EXPECT_EQ(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec, 0);
    EXPECT_LT(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec, 250'000);
    EXPECT_LT(usage.ru_nvcsw, 100);
}

TEST(VkmTargetRealTime, AnswersAtAnyLengthWithoutHoldingUpTheLine) {
    TargetProgram program({"--talk", "--unpaced", "--echo"});
    Host host(device_of(program));
    const Bytes heard(50'000, 'U');
    for (std::size_t sent = 0; sent < heard.size(); sent += 1000) {
        host.send(Bytes(1000, 'U'));
        ASSERT_EQ(host.hear(1000).size(), 1000U);
    }
    program.command("heard");
    program.command("heard");
    for (int i = 0; i < 10; ++i) {  // while nobody reads the answer
        host.send({'e'});
        EXPECT_EQ(text_of(host.hear(1, 5000ms)), "e");
        std::this_thread::sleep_for(20ms);
    }
    program.command("sent");
    EXPECT_EQ(program.line().size(), 2 + 3 * heard.size());
    EXPECT_TRUE(program.line().starts_with("ok"));
    EXPECT_EQ(program.line(), "ok 50010");
}

TEST(VkmTargetRealTime, StopsWhenCommandedAndGoesOn) {
    TargetProgram program({"--monitor", "--stops", "0", "--dumps", "registers,xram 16", "--set",
                           "sfr E0 12", "--fault", "wrong_sum:2"});
    Host host(device_of(program));
    host.set_rate(B115200);
    sim::CpuState state;
    state.set(sim::Memory::sfr, 0xE0, 0x12);
    const Bytes registers = dump_frame(state, sim::registers_dump());
    const Bytes xram = dump_frame(state, sim::xram_dump(16));

    const auto hear_frame = [&host](std::size_t size) {
        const Bytes bytes = host.hear(size + 2);
        return bytes.size() == size + 2 ? Bytes(bytes.begin() + 2, bytes.end()) : Bytes{};
    };
    EXPECT_EQ(program.answer("stop"), "ok");
    EXPECT_EQ(hear_frame(registers.size()), registers);
    host.send(acknowledge);
    EXPECT_NE(hear_frame(xram.size()), xram);
    host.send(again);
    EXPECT_EQ(hear_frame(xram.size()), xram);
    host.send(acknowledge);
    host.send(go_on);
    for (const char* event : {"stopped 1", "dump registers stop 1", "command acknowledge",
                              "dump xram stop 1", "command again", "dump xram stop 1 again",
                              "command acknowledge", "command go_on", "running"})
        EXPECT_EQ(program.line_with(event), event);
    EXPECT_EQ(program.answer("commands"), "ok acknowledge again acknowledge go_on");
    EXPECT_EQ(program.answer("state"), "ok running awaits_ack=0 stops=1");
    EXPECT_EQ(program.answer("set sfr E0 13"), "ok");
    state.set(sim::Memory::sfr, 0xE0, 0x13);
    EXPECT_EQ(program.answer("stop"), "ok");
    EXPECT_EQ(hear_frame(registers.size()), dump_frame(state, sim::registers_dump()));
    host.send({'?'});
    EXPECT_EQ(program.line_with("objection"), "objection no command: 3F");
}

TEST(VkmTargetRealTime, PullsItsCableAndPutsItInAgain) {
    const std::string link = testing::TempDir() + "vkm_target_com2";
    TargetProgram program({"--talk", "--unpaced", "--link", link, "--until-eof"});
    Host host(device_of(program));
    program.answer("burst 50000");  // has left it, and finds no room in the terminal
    EXPECT_EQ(program.answer("unplug"), "ok");
    EXPECT_TRUE(host.gone());
    EXPECT_FALSE(std::filesystem::exists(std::filesystem::symlink_status(link)));
    EXPECT_EQ(program.answer("plug").substr(0, 8), "ok /dev/");
    Host again(link);
    EXPECT_EQ(program.answer("say anew"), "ok 4 bytes");
    EXPECT_EQ(text_of(again.hear(4)), "anew");  // the rest of the burst is gone
    program.answer("burst 50000");
    EXPECT_EQ(program.answer("plug").substr(0, 8), "ok /dev/");  // without having been out
    Host third(link);
    EXPECT_EQ(program.answer("say third"), "ok 5 bytes");
    EXPECT_EQ(text_of(third.hear(5)), "third");
    program.end_commands();
    EXPECT_EQ(program.wait_for_end(), 0);
}

TEST(VkmTargetRealTime, RefusesWhatItCannotDo) {
    EXPECT_EQ(TargetProgram({}).wait_for_end(), 2);
    EXPECT_EQ(TargetProgram({"--talk", "--link", "/"}).wait_for_end(), 1);
    TargetProgram help({"--help"});
    EXPECT_NE(help.line_with("vkm-target"), "(silence)");
    EXPECT_EQ(help.wait_for_end(), 0);
}

}  // namespace
}  // namespace vkm::test
