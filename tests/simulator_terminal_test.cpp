// What puts a simulated chip on a terminal: the paced line in a time of its own,
// arguments, commands and reports.
#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <fstream>

#include "pseudo_terminal/flash_file.h"
#include "pseudo_terminal/paced_line.h"
#include "simulator_driver.h"
#include "vkm_chip/chip_arguments.h"
#include "vkm_chip/chip_control.h"
#include "vkm_chip/chip_reports.h"

namespace vkm::test {
namespace {

using sim::Instant;

// A target that keeps what it hears, and sends what the test gives it.
struct Recorder {
    struct Entry {
        Instant at;
        std::uint8_t value;
        double baud;
    };
    std::vector<Entry> heard;
    std::vector<sim::WireByte> to_send;

    sim::Target target() {
        return {[this](Instant at, std::uint8_t value, double baud) {
                    heard.push_back({at, value, baud});
                },
                [this] { return to_send.empty() ? sim::never : to_send.front().start; },
                [](Instant) {}, [this] { return std::exchange(to_send, {}); }};
    }

    Bytes bytes() const {
        Bytes bytes;
        for (const Entry& entry : heard) bytes.push_back(entry.value);
        return bytes;
    }
};

constexpr Instant start{1s};

TEST(PacedLine, BringsEachByteAtTheEndOfItsTimeOnTheWire) {
    Recorder chip;
    sim::PacedLine line(chip.target());
    line.host_rate(start, 1200);
    line.host_writes(start, Bytes{1, 2, 3});
    line.run(start + 8332us);
    EXPECT_TRUE(chip.heard.empty());
    line.run(start + 8333us);
    ASSERT_EQ(chip.heard.size(), 1U);
    EXPECT_EQ(chip.heard[0].at, start + 8333us);
    EXPECT_EQ(chip.heard[0].baud, 1200);
    line.run(start + 1s);
    ASSERT_EQ(chip.heard.size(), 3U);
    EXPECT_EQ(chip.heard[1].at, start + 16666us);
    EXPECT_EQ(chip.heard[2].at, start + 25ms);
}

TEST(PacedLine, PutsBytesThatCameLaterBehindThoseOnTheWire) {
    Recorder chip;
    sim::PacedLine line(chip.target());
    line.host_rate(start, 1200);
    line.host_writes(start, Bytes{1, 2});
    line.run(start + 10ms);
    line.host_writes(start + 10ms, Bytes{3});
    line.run(start + 20ms);
    line.host_writes(start + 40ms, Bytes{4});
    line.run(start + 1s);
    ASSERT_EQ(chip.heard.size(), 4U);
    EXPECT_EQ(chip.heard[2].at, start + 25ms);
    EXPECT_EQ(chip.heard[3].at, start + 40ms + 8333us);
}

TEST(PacedLine, TakesTheTimeOfALongFrameToTheMicrosecond) {
    Recorder chip;
    sim::PacedLine line(chip.target());
    line.host_rate(start, 115200);
    line.host_writes(start, Bytes(142, 0x55));
    line.run(start + 1s);
    EXPECT_EQ(chip.heard.back().at, start + 12326us);
}

TEST(PacedLine, WakesForLumpsAndSleepsWhenItIsIdle) {
    Recorder chip;
    sim::PacedLine line(chip.target());
    EXPECT_EQ(line.next(), sim::never);
    line.host_rate(start, 115200);
    line.host_writes(start, Bytes(142, 0x55));
    int wakes = 0;
    for (; line.next() != sim::never; ++wakes) line.run(line.next());
    EXPECT_EQ(chip.heard.size(), 142U);
    EXPECT_LE(wakes, 4);
}

TEST(PacedLine, LosesTheByteOnTheWireWhenTheRateChangesAndSendsTheRestAtTheNewOne) {
    Recorder chip;
    sim::PacedLine line(chip.target());
    line.host_rate(start, 1200);
    line.host_writes(start, Bytes{1, 2, 3, 4, 5, 6, 7, 8});
    line.run(start + 10ms);
    line.host_rate(start + 10ms, 115200);
    line.run(start + 1s);
    // Up to 25 ms after the change they count as gone before it.
    EXPECT_EQ(line.lost_by_rate_change(), 1);
    ASSERT_EQ(chip.heard.size(), 8U);
    EXPECT_EQ(chip.heard[3].baud, 1200);
    EXPECT_EQ(chip.heard[4].baud, 0);
    EXPECT_EQ(chip.heard[5].baud, 115200);
    for (std::size_t i = 1; i < 8; ++i) EXPECT_GT(chip.heard[i].at, chip.heard[i - 1].at);
}

TEST(PacedLine, LosesNothingWhenTheHostWaitsForItsBytes) {
    Recorder chip;
    sim::PacedLine line(chip.target());
    line.host_rate(start, 115200);
    line.host_writes(start, Bytes(100, 1));
    line.host_rate(start + 10ms, 1200);
    line.host_writes(start + 10ms, Bytes{2, 3});
    line.run(start + 1s);
    EXPECT_EQ(line.lost_by_rate_change(), 0);
    EXPECT_EQ(chip.heard.back().at, start + 10ms + 16666us);
}

TEST(PacedLine, HandsTheAnswerOverWhenItsLastByteHasEnded) {
    Recorder chip;
    sim::PacedLine line(chip.target());
    line.host_rate(start, 115200);
    for (std::size_t i = 0; i < 9; ++i)
        chip.to_send.push_back(
            {start + sim::wire_time(i, 115200), static_cast<std::uint8_t>(i), 115200});
    line.run(start);
    EXPECT_TRUE(line.take_for_host().empty());
    EXPECT_EQ(line.next(), start + sim::wire_time(8, 115200) + sim::wire_time(1, 115200));
    line.run(line.next());
    EXPECT_EQ(line.take_for_host(), (Bytes{0, 1, 2, 3, 4, 5, 6, 7, 8}));
    EXPECT_TRUE(line.take_for_host().empty());
}

TEST(PacedLine, HandsSlowAnswersOverByteByByte) {
    Recorder chip;
    sim::PacedLine line(chip.target());
    line.host_rate(start, 1200);
    for (std::size_t i = 0; i < 3; ++i)
        chip.to_send.push_back({start + sim::wire_time(i, 1200), 0x11, 1200});
    line.run(start);
    line.run(start + 10ms);
    EXPECT_EQ(line.take_for_host(), Bytes{0x11});
}

TEST(PacedLine, GarblesAnswersAtARateThatTheHostHasNotSet) {
    Recorder chip;
    sim::PacedLine line(chip.target());
    line.host_rate(start, 1200);
    chip.to_send.push_back({start, 0x55, 115200});
    line.run(start + 1s);
    EXPECT_TRUE(line.take_for_host().empty());
}

TEST(PacedLine, ForgetsWhatIsOnTheWireWhenItIsCut) {
    Recorder chip;
    sim::PacedLine line(chip.target());
    line.host_rate(start, 1200);
    line.host_writes(start, Bytes{1, 2, 3});
    line.cut();
    line.run(start + 1s);
    EXPECT_TRUE(chip.heard.empty());
    EXPECT_EQ(line.next(), sim::never);
}

TEST(PacedLine, CarriesAWholeConversationWithAChip) {
    sim::SimulatedChip chip;
    sim::PacedLine line(chip.target());
    Instant now = start;
    const auto exchange = [&](const Bytes& bytes, double baud) {
        line.host_rate(now, baud);
        line.host_writes(now, bytes);
        while (line.next() != sim::never) {
            now = std::max(now, line.next());
            line.run(now);
        }
        now += 1ms;
        return line.take_for_host();
    };
    EXPECT_EQ(exchange(Bytes(8, 0x7F), 1200).size(), 30U);
    EXPECT_EQ(exchange(short_frame({0x8E, 0xFF, 0xFD, 0x00, 6, 23}), 1200).size(), 0U);
    EXPECT_EQ(exchange(short_frame({0x86, 0xFF}), 115200), short_ack);
}

// ---- arguments ---------------------------------------------------------------------

sim::ArgumentsRead<sim::ChipArguments> read(std::vector<const char*> words) {
    return sim::read_arguments(words);
}

TEST(ChipArguments, MakeTheChip) {
    const auto [arguments, error] = read({"--model",
                                          "VKM26H2052",
                                          "--letter",
                                          "E",
                                          "--version",
                                          "5.1",
                                          "--clock",
                                          "24M",
                                          "--options",
                                          "FDA3F61234",
                                          "--fault",
                                          "lose_reply@block:3",
                                          "--fault",
                                          "twice",
                                          "--power-cycle",
                                          "2.5",
                                          "--erase-time",
                                          "20",
                                          "--link",
                                          "/x/y",
                                          "--short-acks",
                                          "--status-length",
                                          "28",
                                          "--feature",
                                          "83",
                                          "--id",
                                          "F202",
                                          "--option-busy",
                                          "-1",
                                          "--greeting",
                                          "Hi\\r\\n",
                                          "--greeting-baud",
                                          "9600",
                                          "--greeting-after",
                                          "150",
                                          "--greeting-every",
                                          "1000"});
    EXPECT_EQ(error, "");
    EXPECT_EQ(arguments.config.model, "VKM26H2052");
    EXPECT_EQ(arguments.config.letter, 'E');
    EXPECT_EQ(arguments.config.version, 0x51);
    EXPECT_EQ(arguments.config.clock_hz, 24e6);
    EXPECT_EQ(arguments.config.options.value()[3], 0xA3);
    EXPECT_EQ(arguments.config.options.value()[11], 0x34);
    EXPECT_EQ(arguments.config.faults.size(), 2U);
    EXPECT_TRUE(arguments.config.after_start.power_cycle);
    EXPECT_FALSE(arguments.config.after_start.fresh_chip);
    EXPECT_EQ(arguments.config.after_start.off_after, 2500ms);
    EXPECT_EQ(arguments.config.erase_time, 20ms);
    EXPECT_EQ(arguments.program.link, "/x/y");
    EXPECT_TRUE(arguments.config.short_acks);
    EXPECT_EQ(arguments.config.status_length, 28);
    EXPECT_EQ(arguments.config.feature, 0x83);
    EXPECT_EQ(arguments.config.id.value(), (std::vector<std::uint8_t>{0xF2, 0x02}));
    EXPECT_EQ(arguments.config.option_busy, -1);
    EXPECT_EQ(arguments.config.greeting, (Bytes{'H', 'i', 0x0D, 0x0A}));
    EXPECT_EQ(arguments.config.greeting_baud, 9600);
    EXPECT_EQ(arguments.config.greeting_after, 150ms);
    EXPECT_EQ(arguments.config.greeting_every, 1000ms);
}

TEST(ChipArguments, ThatAreOfNoUseAreNamed) {
    EXPECT_EQ(read({"--nonsense"}).error, "there is no option --nonsense");
    EXPECT_EQ(read({"--model"}).error, "--model needs a value");
    EXPECT_EQ(read({"--model", "VKM99"}).error, "--model can't be \"VKM99\"");
    for (const auto& [name, value] :
         std::initializer_list<std::pair<const char*, const char*>>{{"--letter", "H"},
                                                                    {"--letter", ""},
                                                                    {"--version", "38"},
                                                                    {"--version", "3.x"},
                                                                    {"--clock", "0"},
                                                                    {"--clock", "11,5"},
                                                                    {"--clock", "1e99"},
                                                                    {"--clock", "nan"},
                                                                    {"--options", "FFFF"},
                                                                    {"--options", "F"},
                                                                    {"--fault", "x"},
                                                                    {"--id", "F20202"},
                                                                    {"--power-after", "-1"},
                                                                    {"--status-length", "5"},
                                                                    {"--feature", "100"},
                                                                    {"--erase-time", "99999999"},
                                                                    {"--greeting", "\\q"},
                                                                    {"--greeting-baud", "0"},
                                                                    {"--link", ""}})
        EXPECT_NE(read({name, value}).error, "") << name << ' ' << value;
}

TEST(ChipArguments, AreAllInTheHelp) {
    for (const char* name : {"--model", "--letter", "--version", "--clock", "--fault", "--link",
                             "--save-flash", "--fresh-chip-after-done", "--fast", "--help"})
        EXPECT_NE(sim::usage().find(name), std::string_view::npos) << name;
}

// ---- commands and reports ------------------------------------------------------------

struct Bench {
    sim::ChipConfig config;
    ChipDriver driver{config};
    sim::LineMeter meter;
    sim::ChipBench bench{driver.chip, meter};

    std::string command(const std::string& text) {
        return sim::carry_out_command(bench, text, driver.now);
    }
};

TEST(ChipCommands, SteerPowerChipsAndFaults) {
    Bench bench;
    bench.driver.connect();
    EXPECT_EQ(bench.command("off"), "ok");
    EXPECT_EQ(bench.driver.chip.state(), sim::ChipState::off);
    EXPECT_EQ(bench.command("on"), "ok");
    EXPECT_EQ(bench.driver.chip.state(), sim::ChipState::listening);
    bench.driver.chip.load_flash(Bytes{1, 2, 3});
    EXPECT_EQ(bench.command("new"), "ok");
    EXPECT_EQ(bench.driver.chip.flash()[0], 0xFF);
    EXPECT_EQ(bench.command("cycle 50"), "ok");
    bench.driver.advance_to(bench.driver.now + 49ms);
    EXPECT_EQ(bench.driver.chip.state(), sim::ChipState::off);
    bench.driver.advance_to(bench.driver.now + 1ms);
    EXPECT_EQ(bench.driver.chip.state(), sim::ChipState::listening);
    EXPECT_EQ(bench.command("fault lose_reply@status*0"), "ok");
    EXPECT_TRUE(bench.driver.connect().bytes.empty());
    EXPECT_EQ(bench.command("no-faults"), "ok");
    EXPECT_FALSE(bench.driver.connect().bytes.empty());
    EXPECT_EQ(bench.command("options"), "ok 1=FD");
}

TEST(ChipCommands, ThatAreOfNoUseChangeNothing) {
    Bench bench;
    for (const char* text : {"", " ", "jump", "cycle x", "fault y", "flash", "flash /no/such/file",
                             "load /no/such/file", "load /"})
        EXPECT_EQ(bench.command(text).substr(0, 6), "error ") << text;
}

TEST(ChipCommands, WriteAndFillTheFlash) {
    Bench bench;
    const std::string path = testing::TempDir() + "simulated_flash.bin";
    bench.driver.chip.load_flash(Bytes{1, 2, 3});
    EXPECT_EQ(bench.command("flash " + path), "ok 63488 bytes");
    bench.command("new");
    EXPECT_EQ(bench.command("load " + path), "ok 63488 bytes");
    EXPECT_EQ(bench.driver.chip.flash()[1], 2);
    std::ofstream(path, std::ios::app) << std::string(100000, 'x');
    EXPECT_EQ(bench.command("load " + path), "ok 63488 bytes");  // no more than it holds
    std::filesystem::remove(path);
}

TEST(ChipReports, TellTheStoryOfADownload) {
    sim::ChipConfig config;
    config.powered_at = Instant{2s};
    ChipDriver driver(config);
    sim::ChipReporter reporter;
    std::vector<std::string> story;
    const auto listen = [&] {
        for (std::string& line : reporter.news(driver.chip, driver.now)) story.push_back(line);
    };
    driver.advance_to(Instant{2s});
    listen();
    driver.connect();
    listen();
    driver.exchange(short_frame({0x8F, 0xFF, 0xFD, 0x00, 0x06, 40, 129}));
    driver.exchange(short_frame({0x8E, 0xFF, 0xFD, 0x00, 0x06, 23}));
    listen();
    driver.baud = 115200;
    driver.now += 1ms;
    driver.send(short_frame({0x84, 255, 0x33, 0x33, 0x33, 0x33, 0x33, 0x33}), 115200);
    listen();
    EXPECT_EQ(story.back(), "erasing");
    driver.listen();
    driver.exchange(block_frame(0x00, 0x0200, Bytes(128, 0)));
    driver.exchange(block_frame(0x30, 0x0200, Bytes(100, 0)));
    listen();
    driver.exchange(short_frame({0x8D, 0xF5, 0xFF, 0xFD, 0xFF}));
    listen();
    EXPECT_FALSE(reporter.take_rest());
    driver.exchange(short_frame({0x77}));
    driver.exchange(trigger_82);
    listen();
    EXPECT_TRUE(reporter.take_rest());
    EXPECT_FALSE(reporter.take_rest());
    driver.chip.power_off(driver.now);
    listen();
    EXPECT_EQ(story,
              (std::vector<std::string>{
                  "powered", "connected 11059200 Hz 1200 baud", "rate 115200", "erasing",
                  "block 0x0200 128", "block 0x0200 100 retry", "erased",
                  "option_frame 46 B9 6A 00 0A 8D F5 FF FD FF F1 16", "options 1=F5", "started",
                  "objection unknown command: 46 B9 6A 00 06 77 E7 16", "unpowered"}));
}

TEST(LineMeter, TellsTheBlocksShareOfTheLine) {
    using std::chrono::microseconds;
    sim::LineMeter meter;
    const sim::Instant begin{};
    meter.host_wrote(begin, 12, 115200);  // no block yet: doesn't count
    meter.host_was_given(begin, 6, 115200);
    meter.host_wrote(begin + microseconds(1000), 144, 115200);
    meter.host_was_given(begin + microseconds(14600), 9, 115200);
    meter.host_wrote(begin + microseconds(14650), 144, 115200);
    meter.host_was_given(begin + microseconds(28000), 9, 115200);
    meter.host_wrote(begin + microseconds(90000), 12, 115200);  // behind the last block
    EXPECT_EQ(meter.report(), "bulk_us=27000 wire_us=26562 turnarounds=1 median_us=50 p95_us=50");
}

}  // namespace
}  // namespace vkm::test
