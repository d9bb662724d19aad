// What puts the talking and the stopped target on a terminal: arguments,
// commands, what is told, and the terminal itself.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <termios.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "pseudo_terminal/pseudo_terminal.h"
#include "support/agent_commands.h"
#include "target_driver.h"
#include "vkm_target/target_arguments.h"
#include "vkm_target/target_control.h"

namespace vkm::test {
namespace {

using sim::DumpType;
using sim::Memory;
using sim::TargetArguments;

// ---- arguments ---------------------------------------------------------------------

sim::ArgumentsRead<sim::TargetArguments> read(std::vector<const char*> words) {
    return sim::read_target_arguments(words);
}

TEST(TargetArguments, MakeATargetThatTalks) {
    const auto [arguments, error] =
        read({"--talk", "--baud", "9600", "--say", "Hi\\n", "--after", "300", "--say-hex", "D6D0",
              "--every", "50", "--burst-kind", "count", "--burst", "300", "--echo", "--unpaced",
              "--link", "/x/y"});
    EXPECT_EQ(error, "");
    EXPECT_EQ(arguments.kind, TargetArguments::Kind::talking);
    EXPECT_EQ(arguments.baud, 9600);
    ASSERT_EQ(arguments.talking.sayings.size(), 3U);
    EXPECT_EQ(arguments.talking.sayings[0].bytes, (Bytes{'H', 'i', '\n'}));
    EXPECT_EQ(arguments.talking.sayings[0].first, 300ms);
    EXPECT_EQ(arguments.talking.sayings[0].every, 0ms);
    EXPECT_EQ(arguments.talking.sayings[1].bytes, (Bytes{0xD6, 0xD0}));
    EXPECT_EQ(arguments.talking.sayings[1].every, 50ms);
    EXPECT_EQ(arguments.talking.sayings[2].bytes, burst_bytes(sim::BurstKind::count, 300));
    EXPECT_TRUE(arguments.talking.echo);
    EXPECT_TRUE(arguments.unpaced);
    EXPECT_EQ(arguments.program.link, "/x/y");
}

TEST(TargetArguments, MakeATargetThatStops) {
    const auto [arguments, error] = read({"--monitor",
                                          "--stops",
                                          "2",
                                          "--run-time",
                                          "100",
                                          "--dumps",
                                          "ram,xram 12,window 1234,registers",
                                          "--set",
                                          "xram 0002 99",
                                          "--change",
                                          "2 sfr E0 12",
                                          "--change",
                                          "2 ram 7f ff",
                                          "--no-wait",
                                          "--gap",
                                          "7",
                                          "--turnaround",
                                          "900",
                                          "--text",
                                          "a",
                                          "--text-behind",
                                          "b",
                                          "--fault",
                                          "wrong_sum:3"});
    EXPECT_EQ(error, "");
    EXPECT_EQ(arguments.kind, TargetArguments::Kind::stopped);
    const sim::StoppedConfig& config = arguments.stopped;
    EXPECT_EQ(config.most_stops, 2);
    EXPECT_EQ(config.run_time, 100ms);
    ASSERT_EQ(config.dumps.size(), 4U);
    EXPECT_EQ(config.dumps[0].type, DumpType::ram);
    EXPECT_EQ(config.dumps[1].size, 12U);
    EXPECT_EQ(config.dumps[2].address, 0x1234);
    EXPECT_EQ(config.dumps[3].type, DumpType::registers);
    EXPECT_EQ(config.state.get(Memory::xram, 2), 0x99);
    ASSERT_EQ(config.changes.size(), 2U);
    EXPECT_TRUE(config.changes[0].empty());
    ASSERT_EQ(config.changes[1].size(), 2U);
    EXPECT_EQ(config.changes[1][0].memory, Memory::sfr);
    EXPECT_EQ(config.changes[1][0].address, 0xE0U);
    EXPECT_EQ(config.changes[1][1].value, 0xFF);
    EXPECT_FALSE(config.waits_for_ack);
    EXPECT_EQ(config.gap, 7ms);
    EXPECT_EQ(config.turnaround, 900us);
    EXPECT_EQ(config.text_before, Bytes{'a'});
    EXPECT_EQ(config.text_behind, Bytes{'b'});
    ASSERT_EQ(config.faults.size(), 1U);
    EXPECT_EQ(config.faults[0].nth, 3);
}

TEST(TargetArguments, ThatAreOfNoUseAreNamed) {
    EXPECT_EQ(read({}).error, "either --talk or --monitor has to be told");
    EXPECT_EQ(read({"--nonsense"}).error, "there is no option --nonsense");
    EXPECT_EQ(read({"--talk", "--say"}).error, "--say needs a value");
    EXPECT_EQ(read({"--talk", "--every", "5"}).error, "--every can't be \"5\"");
    EXPECT_EQ(read({"--help"}).error, "");
    for (const auto& [name, value] :
         std::initializer_list<std::pair<const char*, const char*>>{{"--baud", "0"},
                                                                    {"--say", "\\q"},
                                                                    {"--say-hex", ""},
                                                                    {"--burst", "0"},
                                                                    {"--burst", "99999999999"},
                                                                    {"--burst-kind", "x"},
                                                                    {"--stops", "-1"},
                                                                    {"--run-time", "x"},
                                                                    {"--dumps", ""},
                                                                    {"--dumps", "ram,"},
                                                                    {"--dumps", "xram"},
                                                                    {"--dumps", "xram 1025"},
                                                                    {"--dumps", "window 10000"},
                                                                    {"--dumps", "ram 3"},
                                                                    {"--set", "sfr 7F 0"},
                                                                    {"--set", "ram 100 0"},
                                                                    {"--set", "xram 10000 0"},
                                                                    {"--set", "xram 0 100"},
                                                                    {"--set", "rom 0 0"},
                                                                    {"--set", "xram 0"},
                                                                    {"--set", "ram"},
                                                                    {"--change", "0 ram 0 0"},
                                                                    {"--change", "ram 0 0"},
                                                                    {"--fault", "x"},
                                                                    {"--text", "\\"},
                                                                    {"--link", ""}})
        EXPECT_EQ(read({name, value}).error, std::string(name) + " can't be \"" + value + '"');
}

TEST(TargetArguments, OfTheOtherKindAreRefused) {
    for (const auto& [name, value] : std::initializer_list<std::pair<const char*, const char*>>{
             {"--say", "x"}, {"--say-hex", "41"}, {"--burst", "3"}, {"--burst-kind", "count"}}) {
        EXPECT_EQ(read({"--talk", name, value}).error, "") << name;
        EXPECT_EQ(read({name, value, "--talk"}).error, "") << name;
        EXPECT_EQ(read({"--monitor", name, value}).error, std::string(name) + " is for --talk");
    }
    for (const char* name : {"--echo", "--unpaced"})
        EXPECT_EQ(read({"--monitor", name}).error, std::string(name) + " is for --talk");
    for (const auto& [name, value] :
         std::initializer_list<std::pair<const char*, const char*>>{{"--stops", "3"},
                                                                    {"--run-time", "3"},
                                                                    {"--dumps", "ram"},
                                                                    {"--set", "ram 0 0"},
                                                                    {"--change", "1 ram 0 0"},
                                                                    {"--gap", "3"},
                                                                    {"--turnaround", "3"},
                                                                    {"--text", "x"},
                                                                    {"--text-behind", "x"},
                                                                    {"--fault", "wrong_sum"}}) {
        EXPECT_EQ(read({"--monitor", name, value}).error, "") << name;
        EXPECT_EQ(read({"--talk", name, value}).error, std::string(name) + " is for --monitor");
    }
    EXPECT_EQ(read({"--talk", "--no-wait"}).error, "--no-wait is for --monitor");
    EXPECT_EQ(read({"--say", "--talk"}).error, "--say is for --talk");  // a value is no option
}

TEST(TargetArguments, MakeATargetOfOneKind) {
    EXPECT_EQ(read({"--talk", "--monitor"}).error, "--monitor can't be told here");
    EXPECT_EQ(read({"--monitor", "--talk"}).error, "--talk can't be told here");
    EXPECT_EQ(read({"--talk", "--talk"}).error, "");
}

TEST(TargetArguments, AreAllInTheHelp) {
    for (const char* name : {"--talk", "--monitor", "--unpaced", "--dumps", "--fault", "--help"})
        EXPECT_NE(sim::target_usage().find(name), std::string_view::npos) << name;
    const auto place = [](const char* text) { return sim::target_usage().find(text); };
    EXPECT_LT(place("\n  --quiet"), place("\nWith --talk:\n"));
    EXPECT_LT(place("\nWith --talk:\n"), place("\n  --say TEXT"));
    EXPECT_LT(place("\n  --unpaced"), place("\nWith --monitor:\n"));
    EXPECT_LT(place("\nWith --monitor:\n"), place("\n  --stops N"));
}

// ---- commands and what is told ----------------------------------------------------------

TEST(TargetCommands, MakeTheTargetSpeakAndTellWhatItHeardAndSent) {
    sim::TalkingTarget target;
    TargetDriver driver(target.target());
    sim::TalkingBench bench{target, [] { return std::size_t{1}; }};
    const auto command = [&](const char* text) { return bench.carry_out(text, driver.now); };
    EXPECT_EQ(command("say a b\\n"), "ok 4 bytes");
    EXPECT_EQ(command("say-hex D6D0"), "ok 2 bytes");
    EXPECT_EQ(command("burst 3 count"), "ok 3 bytes");
    EXPECT_EQ(command("burst 2"), "ok 2 bytes");
    driver.advance(10ms);
    EXPECT_EQ(driver.take_bytes(), (Bytes{'a', ' ', 'b', '\n', 0xD6, 0xD0, 0, 1, 2, '0', '0'}));
    EXPECT_EQ(command("sent"), "ok 10");  // one of them waits for the terminal
    EXPECT_EQ(command("heard"), "ok");
    driver.send({0x01, 0xFF});
    EXPECT_EQ(command("heard"), "ok 01 FF");
    EXPECT_EQ(command("heard"), "ok");
    for (const char* wrong :
         {"", "jump", "say-hex", "say-hex 1", "say \\", "burst", "burst x", "burst 3 x", "stop"})
        EXPECT_EQ(command(wrong).substr(0, 6), "error ") << wrong;
}

TEST(TargetCommands, SteerTheStopsAndTellThem) {
    sim::StoppedConfig config;
    config.most_stops = 0;
    config.dumps = {sim::xram_dump(4), sim::registers_dump()};
    sim::StoppedTarget target(config);
    TargetDriver driver(target.target());
    sim::StoppedBench bench{target, [] { return std::size_t{0}; }};
    const auto command = [&](const char* text) { return bench.carry_out(text, driver.now); };
    EXPECT_EQ(command("state"), "ok running awaits_ack=0 stops=0");
    EXPECT_EQ(command("set xram 0002 99"), "ok");
    driver.send({'h'});
    EXPECT_EQ(command("heard"), "ok 68");
    EXPECT_EQ(command("heard"), "ok");
    EXPECT_EQ(command("fault wrong_sum:2"), "ok");
    EXPECT_EQ(command("fault wrong_sum:1*0"), "ok");
    EXPECT_EQ(command("no-faults"), "ok");
    EXPECT_EQ(command("fault cut_off:2=3"), "ok");
    EXPECT_EQ(command("stop"), "ok");
    driver.advance(100ms);
    EXPECT_EQ(command("stop"), "error it stands already");
    EXPECT_EQ(command("state"), "ok stopped awaits_ack=1 stops=1");
    const Bytes frame = driver.take_bytes();
    ASSERT_EQ(frame.size(), 23U);
    EXPECT_EQ(frame[18 + 2], 0x99);
    driver.send(again);
    driver.advance(100ms);
    EXPECT_EQ(driver.take_bytes().size(), 3U);
    EXPECT_EQ(command("sent"), "ok 26");
    EXPECT_EQ(bench.news(),
              (std::vector<std::string>{"command again", "stopped 1", "dump xram stop 1",
                                        "dump xram stop 1 again"}));
    driver.send(go_on);
    EXPECT_EQ(bench.news(), (std::vector<std::string>{"command go_on", "running"}));
    EXPECT_TRUE(bench.news().empty());
    EXPECT_EQ(command("commands"), "ok again go_on");
    EXPECT_EQ(command("commands"), "ok");
    command("stop");
    driver.send({0x00});
    EXPECT_EQ(bench.news().back(), "objection byte 00 while the agent was sending");
    for (const char* wrong : {"", "jump", "set", "set xram 1", "set rom 1 1", "fault x"})
        EXPECT_EQ(command(wrong).substr(0, 6), "error ") << wrong;
}

// ---- the terminal ----------------------------------------------------------------------

struct OpenTerminal {
    OpenTerminal() {
        EXPECT_EQ(terminal.plug(""), "");
        host = open(terminal.device().c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
        EXPECT_GE(host, 0);
    }
    OpenTerminal(const OpenTerminal&) = delete;
    OpenTerminal& operator=(const OpenTerminal&) = delete;
    ~OpenTerminal() { close(host); }

    void set_rate(speed_t speed) const {
        termios settings{};
        EXPECT_EQ(tcgetattr(host, &settings), 0);
        cfsetspeed(&settings, speed);
        EXPECT_EQ(tcsetattr(host, TCSANOW, &settings), 0);
    }

    sim::PseudoTerminal terminal;
    int host = -1;
};

TEST(PseudoTerminal, KeepsTheRateWhileTheHostHasNone) {
    OpenTerminal bench;
    bench.set_rate(B9600);
    EXPECT_EQ(bench.terminal.host_rate(), 9600);
    bench.set_rate(B0);
    EXPECT_EQ(bench.terminal.host_rate(), 9600);
    bench.set_rate(B1200);
    EXPECT_EQ(bench.terminal.host_rate(), 1200);
}

TEST(PseudoTerminal, TellsHowManyBytesHaveFoundRoom) {
    OpenTerminal bench;
    const Bytes bytes(300'000, 'x');
    const std::size_t taken = bench.terminal.write(bytes);
    EXPECT_GT(taken, 0U);
    EXPECT_LT(taken, bytes.size());
    std::size_t got = 0;
    Bytes chunk(4096);
    while (got < taken) {
        const ssize_t count = ::read(bench.host, chunk.data(), chunk.size());
        ASSERT_GT(count, 0);
        got += static_cast<std::size_t>(count);
    }
    EXPECT_EQ(got, taken);
    EXPECT_EQ(bench.terminal.write(Bytes{1, 2, 3}), 3U);
    bench.terminal.unplug();
    EXPECT_EQ(bench.terminal.write(Bytes{1, 2, 3}), 0U);
}

}  // namespace
}  // namespace vkm::test
