// The programs vkm-board and vkm-isp-target on real pseudo-terminals. These tests take
// real time, some seconds in all, and say so in their names.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <utility>

#include "board_frames.h"
#include "simulator_program.h"

namespace vkm::test {
namespace {

const Bytes board_done = {0x46, 0xB9, 0x68, 0x00, 0x07, 0x80, 0x1F, 0xD4, 0x16};
const Bytes isp_done = {0x5A, 0xA5, 0x00, 0x08, 0x80, 0x01, 0x87, 0x16};

struct Simulator : Program {
    using Program::Program;

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

TEST(VkmBoardRealTime, WakesAndStoresAndTells) {
    const std::string link = testing::TempDir() + "vkm_board_com1";
    const std::string eeprom = testing::TempDir() + "vkm_board_eeprom";
    std::ofstream(eeprom, std::ios::binary) << "AB";
    Simulator program(VKM_BOARD_PROGRAM, {"--link", link, "--power", "after-wakes 3", "--eeprom",
                                          eeprom, "--version", "15", "--erase-time", "20"});
    device_of(program);
    Host host(link);
    host.set_rate(B115200);
    host.send({0xAA, 0xAA, 0xAA});
    EXPECT_EQ(program.line_with("powered"), "powered");
    host.send({0xAA});
    EXPECT_EQ(host.hear(board_done.size()), board_done);
    host.send(board_command(0x0C));
    EXPECT_EQ(host.hear(10), ended_with_crc({0x46, 0xB9, 0x68, 0x00, 0x08, 0x0C, 0x15}));
    EXPECT_EQ(program.answer("storage 0 3"), "ok 41 42 FF");
    host.send(board_command(0x84));
    EXPECT_EQ(host.hear(board_done.size()), board_done);
    host.send(board_block(0x4000, counting(128)));
    EXPECT_EQ(host.hear(board_done.size()), board_done);
    EXPECT_EQ(program.line_with("block"), "block 4000 128");
    EXPECT_EQ(program.answer("storage 407E 2"), "ok 7E 7F");
    EXPECT_EQ(program.answer("ranges"), "ok first 4000-407F second");
    EXPECT_EQ(program.answer("program"),
              "ok failed: the CRC of the parameters is wrong chips_left=4196352");
    EXPECT_EQ(program.answer("power off"), "ok");
    EXPECT_EQ(program.line_with("unpowered"), "unpowered");
    EXPECT_EQ(program.answer("faults"), "ok");
    EXPECT_EQ(program.answer("quit"), "ok");
    EXPECT_EQ(program.wait_for_end(), 0);
    EXPECT_FALSE(std::filesystem::exists(std::filesystem::symlink_status(link)));
    std::filesystem::remove(eeprom);
}

TEST(VkmBoardRealTime, IsDeafAtAnotherRate) {
    Simulator program(VKM_BOARD_PROGRAM, {});
    Host host(device_of(program));
    host.set_rate(B9600);
    host.send(board_command(0x80));
    EXPECT_EQ(program.line_with("objection").substr(0, 9), "objection");
    EXPECT_EQ(program.answer("counters").find("link_checks=1"), std::string::npos);
}

TEST(VkmBoardRealTime, RefusesWhatItCannotDo) {
    EXPECT_EQ(Simulator(VKM_BOARD_PROGRAM, {"--nonsense"}).wait_for_end(), 2);
    EXPECT_EQ(Simulator(VKM_BOARD_PROGRAM, {"--eeprom", "/nowhere/x"}).wait_for_end(), 1);
    Simulator help(VKM_BOARD_PROGRAM, {"--help"});
    EXPECT_NE(help.line_with("vkm-board"), "(silence)");
    EXPECT_EQ(help.wait_for_end(), 0);
}

TEST(VkmIspTargetRealTime, IsStartedAndProgrammedAtItsOwnRate) {
    Simulator program(VKM_ISP_TARGET_PROGRAM,
                      {"--baud", "57600", "--user-code", "1234", "--user-code-baud", "9600",
                       "--erase-time", "20", "--leave-after", "20"});
    Host host(device_of(program));
    host.set_rate(B9600);
    host.send({0x12, 0x34});
    EXPECT_EQ(program.line_with("awake"), "awake");
    host.set_rate(B57600);
    host.send(isp_command(0xB0));
    EXPECT_EQ(host.hear(isp_done.size()), isp_done);
    host.send(isp_command(0xB2));
    EXPECT_EQ(host.hear(isp_done.size()), isp_done);
    host.send(isp_block(0x100, counting(128)));
    EXPECT_EQ(host.hear(10), ended_with_sum({0x5A, 0xA5, 0x00, 0x0A, 0x80, 0x1F, 0xC0}));
    EXPECT_EQ(program.answer("flash 17E 3"), "ok 7E 7F FF");
    host.send(isp_command(0xB1));
    EXPECT_EQ(program.line_with("asleep"), "asleep");
    EXPECT_EQ(program.answer("faults"), "ok");
    EXPECT_EQ(program.answer("next"), "ok");
    EXPECT_EQ(program.answer("flash 17E 1"), "ok FF");
    EXPECT_EQ(program.answer("quit"), "ok");
    EXPECT_EQ(program.wait_for_end(), 0);
}

TEST(VkmIspTargetRealTime, RefusesWhatItCannotDo) {
    EXPECT_EQ(Simulator(VKM_ISP_TARGET_PROGRAM, {"--code", "x"}).wait_for_end(), 2);
    Simulator help(VKM_ISP_TARGET_PROGRAM, {"--help"});
    EXPECT_NE(help.line_with("vkm-isp-target"), "(silence)");
    EXPECT_EQ(help.wait_for_end(), 0);
}

}  // namespace
}  // namespace vkm::test
