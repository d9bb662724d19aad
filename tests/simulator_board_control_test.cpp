// What puts the board and the ISP program on a terminal: arguments, commands, and
// what is told.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "board_frames.h"
#include "board_storage.h"
#include "target_driver.h"
#include "vkm_board/board_arguments.h"
#include "vkm_board/board_control.h"
#include "vkm_isp_target/isp_arguments.h"
#include "vkm_isp_target/isp_control.h"

namespace vkm::test {
namespace {

using Lines = std::vector<std::string>;

sim::ArgumentsRead<sim::BoardArguments> read_board(std::vector<const char*> words) {
    return sim::read_board_arguments(words);
}

sim::ArgumentsRead<sim::IspArguments> read_isp(std::vector<const char*> words) {
    return sim::read_isp_arguments(words);
}

// ---- arguments ---------------------------------------------------------------------

TEST(BoardArguments, MakeABoard) {
    const auto [arguments, error] = read_board(
        {"--version",    "18",   "--flag",       "5a",         "--capacity",   "44",
         "--eeprom",     "/x/e", "--erase-time", "7",          "--block-time", "8",
         "--turnaround", "9",    "--chip",       "VKM26H5052", "--fault",      "lose_reply@wake:2",
         "--link",       "/x/y"});
    EXPECT_EQ(error, "");
    EXPECT_EQ(arguments.config.version, 0x18);
    EXPECT_EQ(arguments.config.flag, 0x5A);
    EXPECT_EQ(arguments.config.capacity_kb, 44);
    EXPECT_EQ(arguments.eeprom, "/x/e");
    EXPECT_EQ(arguments.config.erase_time, 7ms);
    EXPECT_EQ(arguments.config.block_time, 8us);
    EXPECT_EQ(arguments.config.turnaround, 9us);
    EXPECT_EQ(arguments.chip.model, "VKM26H5052");
    ASSERT_EQ(arguments.config.faults.size(), 1U);
    EXPECT_EQ(arguments.config.faults[0].nth, 2);
    EXPECT_EQ(arguments.program.link, "/x/y");
    EXPECT_FALSE(arguments.power_by_hand);
}

TEST(BoardArguments, TellWhenItGetsPower) {
    EXPECT_FALSE(read_board({"--power", "now"}).arguments.power_by_hand);
    EXPECT_TRUE(read_board({"--power", "never"}).arguments.power_by_hand);
    EXPECT_EQ(read_board({"--power", "after 250"}).arguments.power_after, 250ms);
    const auto wakes = read_board({"--power", "after-wakes 20"}).arguments;
    EXPECT_TRUE(wakes.power_by_hand);
    EXPECT_EQ(wakes.config.powered_after_wakes, 20);
}

TEST(BoardArguments, ThatAreOfNoUseAreNamed) {
    using Pair = std::pair<const char*, const char*>;
    for (const auto& [name, value] : {Pair{"--version", "100"},
                                      {"--flag", "x"},
                                      {"--capacity", "256"},
                                      {"--power", "later"},
                                      {"--power", "now 5"},
                                      {"--power", "after"},
                                      {"--power", "after-wakes 0"},
                                      {"--chip", "X"},
                                      {"--fault", "lose_reply@status"},
                                      {"--eeprom", ""},
                                      {"--erase-time", "-1"}})
        EXPECT_NE(read_board({name, value}).error, "") << name << value;
    EXPECT_NE(sim::board_usage().find("after-wakes N"), std::string::npos);
}

TEST(IspArguments, MakeATarget) {
    const auto [arguments, error] =
        read_isp({"--baud",         "19200",    "--code",           "E01C",
                  "--chip-byte",    "5c",       "--flash-size",     "8192",
                  "--user-code",    "1234",     "--user-code-baud", "9600",
                  "--erase-time",   "7",        "--block-time",     "8",
                  "--answer-delay", "9",        "--leave-after",    "10",
                  "--answers-end",  "--silent", "--fault",          "delay@erase=2500"});
    EXPECT_EQ(error, "");
    const sim::IspConfig& config = arguments.config;
    EXPECT_EQ(config.baud, 19200);
    EXPECT_EQ(config.code[0], 0xE0);
    EXPECT_EQ(config.code[1], 0x1C);
    EXPECT_EQ(config.chip_byte, 0x5C);
    EXPECT_EQ(config.flash_size, 8192U);
    EXPECT_EQ(config.user_code, (Bytes{0x12, 0x34}));
    EXPECT_EQ(config.user_code_baud, 9600);
    EXPECT_EQ(config.erase_time, 7ms);
    EXPECT_EQ(config.block_time, 8us);
    EXPECT_EQ(config.turnaround, 9us);
    EXPECT_EQ(config.leave_after, 10ms);
    EXPECT_TRUE(config.answers_end);
    EXPECT_TRUE(config.silent);
    EXPECT_EQ(config.faults.size(), 1U);
}

TEST(IspArguments, ThatAreOfNoUseAreNamed) {
    using Pair = std::pair<const char*, const char*>;
    for (const auto& [name, value] : {Pair{"--baud", "0"},
                                      {"--code", "F1"},
                                      {"--code", "F10"},
                                      {"--flash-size", "0"},
                                      {"--user-code", ""},
                                      {"--fault", "lose_reply@read"},
                                      {"--chip-byte", "123"}})
        EXPECT_NE(read_isp({name, value}).error, "") << name << value;
    EXPECT_NE(sim::isp_usage().find("--answer-delay"), std::string::npos);
}

// ---- commands and what is told ----------------------------------------------------------

struct Board {
    explicit Board(sim::BoardConfig config = {})
        : board(std::move(config)), driver(board.target()) {}
    std::string command(const char* text) { return bench.carry_out(text, driver.now); }
    void send(const Bytes& bytes) {
        driver.send(bytes);
        driver.advance(1s);
    }

    sim::SimulatedBoard board;
    sim::SimulatedChip chip;
    TargetDriver driver;
    sim::BoardBench bench{board, chip};
};

TEST(BoardCommands, ShowWhatWasStored) {
    Board board;
    board.send({0xAA});
    board.send(board_command(0x84));
    board.send(board_block(0x4000, {1, 2, 3}));
    board.send(board_command(0x86));
    board.send(board_block(0x2000, {4}, 0x30));
    EXPECT_EQ(board.command("storage 3ffe 6"), "ok FF FF 01 02 03 FF");
    EXPECT_EQ(board.command("ranges"), "ok first 4000-4002 second 2000-2000");
    EXPECT_EQ(board.command("counters"),
              "ok power_ups=1 wakes=1 link_checks=0 versions=0 capacities=0 erases=1 "
              "second_erases=1 blocks=2 retried_sectors=1 reads=0 frames=4 replies=5");
    EXPECT_EQ(board.bench.news(),
              (Lines{"powered", "erase", "block 4000 3", "erase_second", "block 2000 1 retry"}));
    const std::string path = testing::TempDir() + "vkm_board_storage";
    EXPECT_EQ(board.command(("save " + path).c_str()), "ok 65536 bytes");
    std::ifstream file(path, std::ios::binary);
    const Bytes saved{std::istreambuf_iterator<char>(file), {}};
    ASSERT_EQ(saved.size(), 65536U);
    EXPECT_EQ(saved[0x4001], 2);
    EXPECT_EQ(saved[0x2000], 4);
    std::filesystem::remove(path);
    for (const char* wrong :
         {"", "jump", "power", "power up", "storage", "storage 0", "storage 0 0", "storage FFFF 2",
          "storage g 1", "save", "save /", "fault x", "chip-flash 0 1000000"})
        EXPECT_EQ(board.command(wrong).substr(0, 6), "error ") << wrong;
}

TEST(BoardCommands, TellFaultsOnceEachAndObjectionsAsTheyCome) {
    Board board;
    board.send(board_block(0x4000, {1}));
    EXPECT_EQ(board.bench.news(),
              (Lines{"powered", "block 4000 1", "objection block before an erase: 4000, 1 bytes"}));
    EXPECT_EQ(board.command("faults"), "ok [block before an erase: 4000, 1 bytes]");
    EXPECT_EQ(board.command("faults"), "ok");
}

TEST(BoardCommands, SwitchPowerAndPlanFaults) {
    Board board;
    EXPECT_EQ(board.command("power on"), "ok");
    EXPECT_EQ(board.command("fault lose_reply@link_check:1*0"), "ok");
    board.send(board_command(0x80));
    EXPECT_TRUE(board.driver.take().empty());
    EXPECT_EQ(board.command("no-faults"), "ok");
    board.send(board_command(0x80));
    EXPECT_FALSE(board.driver.take().empty());
    EXPECT_EQ(board.command("power off"), "ok");
    board.send(board_command(0x80));
    EXPECT_TRUE(board.driver.take().empty());
}

TEST(BoardCommands, ProgramTheChipsInTheSocket) {
    BoardStorage storage("VKM47H58RK+", some_code(300));
    storage.put(0x20, 0xF108, 2);
    storage.put(0x31, 0xFD, 1);
    storage.set_limit(2);
    storage.seal();
    sim::BoardConfig config;
    config.storage = storage.bytes;
    Board board(config);
    EXPECT_EQ(board.command("program"), "ok done blocks=3 retries=0 options=1 chips_left=1");
    const Bytes first(storage.bytes.begin() + 0x4000, storage.bytes.begin() + 0x4002);
    char text[16];
    std::snprintf(text, sizeof text, "ok %02X %02X", first[0], first[1]);
    EXPECT_EQ(board.command("chip-flash 0 2"), text);
    EXPECT_EQ(board.command("chip-options"), "ok 1=FD");
    EXPECT_EQ(board.command("new"), "ok");
    EXPECT_EQ(board.command("chip-flash 0 2"), "ok FF FF");
    EXPECT_EQ(board.command("program").substr(0, 7), "ok done");
    EXPECT_EQ(board.command("program"), "ok failed: the production limit is used up chips_left=0");
}

TEST(IspCommands, ShowWhatWasProgrammedAndPutAFreshOneThere) {
    sim::SimulatedIspProgram target;
    TargetDriver driver(target.target());
    sim::IspBench bench{target};
    const auto command = [&](const char* text) { return bench.carry_out(text, driver.now); };
    const auto send = [&](const Bytes& bytes) {
        driver.send(bytes);
        driver.advance(1s);
    };
    send(isp_block(0x10, {1, 2}));
    send(isp_command(0xB2));
    send(isp_block(0x20, {3}, 0xB4));
    EXPECT_EQ(bench.news(), (Lines{"block 0010 2", "erase", "block 0020 1 retry",
                                   "objection block before an erase: 0010, 2 bytes", "awake"}));
    EXPECT_EQ(command("faults"), "ok [block before an erase: 0010, 2 bytes]");
    EXPECT_EQ(command("faults"), "ok");
    EXPECT_EQ(command("flash 1f 3"), "ok FF 03 FF");
    send(isp_command(0xB1));
    EXPECT_EQ(bench.news(), (Lines{"end", "asleep"}));
    EXPECT_EQ(command("counters"),
              "ok asleep chips=1 user_codes=0 connects=0 versions=0 erases=1 blocks=2 "
              "retried_blocks=1 ends=1 leaves=1 frames=4 replies=3");
    EXPECT_EQ(command("next"), "ok");
    EXPECT_EQ(command("flash 20 1"), "ok FF");
    EXPECT_EQ(command("fault lose_reply@connect"), "ok");
    driver.take();
    send(isp_command(0xB0));
    EXPECT_TRUE(driver.take().empty());
    EXPECT_EQ(command("fault lose_reply@connect:1*0"), "ok");
    EXPECT_EQ(command("no-faults"), "ok");
    send(isp_command(0xB0));
    EXPECT_FALSE(driver.take().empty());
    for (const char* wrong : {"", "jump", "flash", "flash 8000 1", "fault x", "save /"})
        EXPECT_EQ(command(wrong).substr(0, 6), "error ") << wrong;
}

}  // namespace
}  // namespace vkm::test
