// Whole stops of a target that is linked with the debug agent: from the break point to
// the operator who lets the program go on, over a good line and over bad ones.
#include <algorithm>

#include "monitor_bench.h"
#include "simulators/stopped_target.h"

namespace vkm::test {
namespace {

using sim::DebugCode;
using sim::DumpFault;
using sim::DumpFaultKind;
using sim::Memory;
using sim::StoppedConfig;
using sim::StoppedTarget;

// Every cell has a value of its own, so that one in a wrong place shows.
sim::CpuState busy_state() {
    sim::CpuState state;
    for (unsigned i = 0x80; i < 0x100; ++i)
        state.set(Memory::sfr, i, static_cast<std::uint8_t>(i * 7));
    for (unsigned i = 0; i < 0x100; ++i)
        state.set(Memory::ram, i, static_cast<std::uint8_t>(i * 5 + 1));
    for (unsigned i = 0; i < 0x10000; ++i)
        state.set(Memory::xram, i, static_cast<std::uint8_t>(i * 3 + i / 256 + 1));
    return state;
}

StoppedConfig busy(std::vector<DumpFault> faults = {}) {
    StoppedConfig config;
    config.state = busy_state();
    config.dumps = {sim::registers_dump(), sim::ram_dump(), sim::xram_dump(1024),
                    sim::window_dump(0xFFFF)};
    config.faults = std::move(faults);
    // The bench begins an hour after zero, and its first second is for opening.
    config.started_at = sim::Instant(std::chrono::hours(1) + std::chrono::seconds(1));
    return config;
}

std::string two_digits(unsigned value) {
    char text[4];
    std::snprintf(text, sizeof text, "%02X", value & 0xFF);
    return text;
}

struct StopWorld : MonitorWorld {
    explicit StopWorld(StoppedConfig config = busy(), std::int64_t latency_ms = 0)
        : target(std::move(config)) {
        line.latency = Milliseconds(latency_ms);
        line.connect(target.target());
    }

    void click_continue() { click(frm.screen.comDebugContinue); }

    // From the start, or from an order to go on, all four dumps have come long before.
    void run_to_stop() { run_for(2500); }

    // What stands in each list that the target doesn't have there; `at_start`: a cell
    // that no dump has told yet passes.
    void expect_shown(bool at_start = false) const {
        const Screen& s = frm.screen;
        for (const Entry& row : s.lst_debug1.List) {
            const auto address =
                static_cast<unsigned>(std::stoi(row.Text.substr(0, 2), nullptr, 16));
            if (at_start && row.Text.size() == 17) continue;
            const unsigned value = target.state().get(Memory::sfr, address);
            ASSERT_EQ(row.Text.size(), 25u) << row.Text;
            EXPECT_EQ(row.Text.substr(17, 5), two_digits(value) + "H  ") << row.Text;
            EXPECT_EQ(std::stoul(row.Text.substr(22)), value) << row.Text;
        }
        expect_cells(s.lst_debug2, Memory::ram, 0, at_start);
        expect_cells(s.lst_debug3, Memory::xram, 0, at_start);
        if (!at_start || s.lst_debug4.List[0].Text.starts_with("FE00"))
            expect_cells(s.lst_debug4, Memory::xram, 0xFE00, at_start);
    }

    void expect_cells(const Control& list, Memory memory, unsigned base, bool at_start) const {
        for (const Entry& row : list.List)
            for (std::size_t i = 0; i < 8; ++i, ++base) {
                const std::string shown = row.Text.substr(28 + 3 * i, 2);
                if (at_start && shown == "00") continue;
                EXPECT_EQ(shown, two_digits(target.state().get(memory, base)))
                    << list.Name << ' ' << base;
            }
    }

    std::vector<DebugCode> commands() const {
        std::vector<DebugCode> codes;
        for (const sim::HeardCommand& command : target.commands()) codes.push_back(command.code);
        return codes;
    }

    std::string objections() const {
        std::string text;
        for (const std::string& fault : target.faults()) text += fault + "\n";
        return text;
    }

    StoppedTarget target;
};

using Codes = std::vector<DebugCode>;
constexpr auto ack = DebugCode::acknowledge;

TEST(Stop, FillsTheFourListsWithWhatTheTargetHolds) {
    for (const int latency_ms : {0, 1, 16, 255}) {
        StopWorld world(busy(), latency_ms);
        world.run_to_stop();
        world.expect_shown();
        EXPECT_EQ(world.commands(), (Codes{ack, ack, ack, ack}));
        EXPECT_EQ(world.objections(), "");
        EXPECT_FALSE(world.waits_for_dump());
        for (const Control& list : world.lists())
            EXPECT_EQ(list.Selected.size(), list.List.size()) << list.Name;
    }
}

TEST(Stop, TheSecondHighlightsWhatHasChanged) {
    StoppedConfig config = busy();
    config.changes = {{},
                      {{Memory::sfr, 0xF0, 0x01},
                       {Memory::sfr, 0x81, 0x21},
                       {Memory::ram, 0x00, 0x77},
                       {Memory::ram, 0xFF, 0x00},
                       {Memory::xram, 0x03FF, 0x00},
                       {Memory::xram, 0xFE00, 0x00}}};
    StopWorld world(config);
    world.run_to_stop();
    world.click_continue();
    world.run_to_stop();
    world.expect_shown();
    using Rows = std::vector<std::int32_t>;
    EXPECT_EQ(world.lists()[0].Selected, (Rows{1, 2}));
    EXPECT_EQ(world.lists()[1].Selected, (Rows{0, 31}));
    EXPECT_EQ(world.lists()[2].Selected, (Rows{127}));
    EXPECT_EQ(world.lists()[3].Selected, (Rows{0}));
    // At the third nothing is new.
    world.click_continue();
    world.run_to_stop();
    for (const Control& list : world.lists()) {
        EXPECT_TRUE(list.Selected.empty()) << list.Name;
        EXPECT_EQ(list.ListIndex, -1);
    }
    EXPECT_EQ(world.target.stops(), 3);
    EXPECT_EQ(world.commands(), (Codes{ack, ack, ack, ack, DebugCode::go_on, ack, ack, ack, ack,
                                       DebugCode::go_on, ack, ack, ack, ack}));
    EXPECT_EQ(world.objections(), "");
    EXPECT_EQ(world.frm.screen.labSendCount.Caption, "发送计数:6");
}

TEST(Stop, IsShownAmongWhatTheProgramSays) {
    StoppedConfig config = busy();
    const std::string before = "reached 0x1234\r\n";
    config.text_before = {before.begin(), before.end()};
    config.text_behind = {'>', ' '};
    StopWorld world(config, 16);
    world.run_to_stop();
    world.expect_shown();
    EXPECT_TRUE(world.frm.screen.texReceive.Text.starts_with(before));
    EXPECT_TRUE(world.frm.screen.texReceive.Text.ends_with("> "));
}

TEST(Stop, OfATargetThatWaitsForNoAnswerIsShownWhole) {
    for (const int latency_ms : {0, 16, 255})
        for (const bool answers : {true, false}) {
            StoppedConfig config = busy();
            config.waits_for_ack = false;
            StopWorld world(config, latency_ms);
            world.frm.screen.che_disable_Debug_SFR_232.Value = answers ? 0 : 1;
            world.run_to_stop();
            world.expect_shown();
            EXPECT_EQ(world.commands(), answers ? (Codes{ack, ack, ack, ack}) : Codes{});
            EXPECT_EQ(world.objections(), "");
        }
}

TEST(Stop, WithoutAcknowledgeEndsAtTheFirstDump) {
    StopWorld world;
    world.frm.screen.che_disable_Debug_SFR_232.Value = 1;
    world.run_for(20'000);
    EXPECT_TRUE(world.commands().empty());
    EXPECT_EQ(world.target.dumps().size(), 1u);
    EXPECT_FALSE(world.lists()[0].Selected.empty());
    EXPECT_TRUE(world.lists()[1].Selected.empty());
    world.click_continue();
    world.run_for(100);
    EXPECT_EQ(world.commands(), Codes{DebugCode::go_on});
}

TEST(Stop, ABrokenDumpIsSentAgainAndTakenThen) {
    for (const DumpFaultKind kind : {DumpFaultKind::wrong_sum, DumpFaultKind::cut_off})
        for (int nth = 1; nth <= 4; ++nth)
            for (const int latency_ms : {0, 16}) {
                StopWorld world(busy({{kind, nth, 1, 100, {}}}), latency_ms);
                world.run_for(5000);
                world.expect_shown();
                Codes expected(4, ack);
                expected.insert(expected.begin() + nth - 1, DebugCode::again);
                EXPECT_EQ(world.commands(), expected);
                EXPECT_EQ(world.objections(), "");
                EXPECT_EQ(world.target.dumps().size(), 5u);
                EXPECT_TRUE(world.target.dumps()[static_cast<std::size_t>(nth)].again);
            }
}

TEST(Stop, ADumpIsAskedForAgainASecondBehindItsLastByte) {
    StopWorld world(busy({{DumpFaultKind::cut_off, 1, 1, 60, {}}}));
    world.run_for(4000);
    const auto& dumps = world.target.dumps();
    ASSERT_GE(dumps.size(), 2u);
    ASSERT_FALSE(world.target.commands().empty());
    const double last_byte_ms = 60 * 10 / 115.2;
    const double command_ms = 4 * 10 / 115.2;
    const std::chrono::duration<double, std::milli> took =
        world.target.commands()[0].at - dumps[0].start;
    EXPECT_NEAR(took.count(), last_byte_ms + 1000 + command_ms, 1.5);
}

TEST(Stop, AFrameThatIsSpoiledEachTimeIsAskedForEachTimeAndNeverShown) {
    StopWorld world(busy({{DumpFaultKind::wrong_sum, 1, 6, 0, {}}}));
    const auto before = world.lists();
    world.run_for(6800);
    EXPECT_EQ(world.lists(), before);
    EXPECT_EQ(world.commands(), Codes(5, DebugCode::again));
    world.run_for(3000);
    world.expect_shown();
}

TEST(Stop, TheMarkMayComeInTwoPieces) {
    for (const int pause_ms : {1, 100, 999, 1500, 5000}) {
        StopWorld world(busy({{DumpFaultKind::split_mark, 1, 1, pause_ms, {}}}));
        world.run_for(3000 + pause_ms);
        world.expect_shown();
        EXPECT_EQ(world.commands(), (Codes{ack, ack, ack, ack})) << pause_ms;
    }
}

TEST(Stop, NoiseThatLooksLikeAMarkCostsNoMoreThanADump) {
    const std::vector<std::vector<std::uint8_t>> noises = {{0x00, 0xFF},
                                                           {0xA5},
                                                           {0xA5, 0x5A},
                                                           {0xA5, 0x5A, 0xAA},
                                                           {0xA5, 0x5A, 0xAA, 0x00, 0x40},
                                                           {0xA5, 0xA5},
                                                           {0xA5, 0x5A, 0x00},
                                                           {0xAA, 0x5A, 0x00}};
    for (const auto& noise : noises)
        for (const int latency_ms : {0, 16}) {
            StopWorld world(busy({{DumpFaultKind::noise, 2, 1, 0, noise}}), latency_ms);
            world.run_for(5000);
            world.expect_shown(true);
            world.click_continue();
            world.run_to_stop();
            world.expect_shown();
            EXPECT_EQ(world.objections(), "");
        }
}

TEST(Stop, AnUnknownTypeIsAcknowledgedAndTheRestFollows) {
    for (const int type : {4, 0x55, 0xFF}) {
        StopWorld world(busy({{DumpFaultKind::other_type, 2, 1, type, {}}}));
        world.run_to_stop();
        EXPECT_EQ(world.commands(), (Codes{ack, ack, ack, ack}));
        EXPECT_TRUE(world.lists()[1].Selected.empty());
        EXPECT_FALSE(world.lists()[3].Selected.empty());
        world.expect_shown(true);
    }
}

TEST(Stop, AWrongLengthIsNeverShownAndTheNextStopIsWhole) {
    for (const int length : {0, 1, 2, 3, 4, 15, 16, 17, 18, 144, 146, 1099, 1100, 1101, 65535})
        for (const int latency_ms : {0, 16}) {
            StopWorld world(busy({{DumpFaultKind::other_length, 1, 1, length, {}}}), latency_ms);
            world.run_for(6000);
            world.expect_shown(true);
            world.click_continue();
            world.run_to_stop();
            world.expect_shown();
        }
}

TEST(Stop, WhateverHappensToOneByteNothingWrongIsShownAndASecondStopIsWhole) {
    constexpr int all_bytes = 147 + 275 + 531;
    for (const PortFault fault :
         {PortFault::lose, PortFault::damage, PortFault::twice, PortFault::cut_off})
        for (const int latency_ms : {0, 16}) {
            for (int nth = 1; nth <= all_bytes; nth += nth < 30 ? 1 : 37) {
                SCOPED_TRACE(std::to_string(nth) + " " + std::to_string(static_cast<int>(fault)));
                StoppedConfig config = busy();
                config.dumps = {sim::registers_dump(), sim::ram_dump(), sim::window_dump(0xFFFF)};
                StopWorld world(config, latency_ms);
                world.faults.fault_byte(nth, fault);
                world.run_for(5000);
                ASSERT_EQ(world.faults.struck, 1);
                // A sum doesn't see every byte that came twice.
                if (fault != PortFault::twice) world.expect_shown(true);
                // An A5 that was left alone costs the mark of the stop behind it.
                for (int more = 0; more < 2 && world.target.stopped(); ++more) {
                    world.click_continue();
                    world.run_to_stop();
                }
                EXPECT_FALSE(world.target.awaits_ack());
                for (const std::size_t list : {0, 1, 3}) {
                    const std::string row = world.lists()[list].List[0].Text;
                    EXPECT_TRUE(row.size() == (list == 0 ? 25u : 51u)) << row;
                    EXPECT_EQ(row.find("  00 00"), std::string::npos) << row;
                }
                world.expect_shown(true);
            }
        }
}

TEST(Stop, AnAnswerThatIsLostOrSpoiledHoldsNothingUpForGood) {
    for (const PortFault fault :
         {PortFault::lose, PortFault::damage, PortFault::twice, PortFault::cut_off})
        for (int nth = 1; nth <= 4; ++nth) {
            StopWorld world;
            world.faults.fault_frame(nth, fault);
            world.run_for(5000);
            world.expect_shown(true);
            world.click_continue();
            world.run_to_stop();
            world.expect_shown();
        }
}

TEST(Stop, OfATargetAtAnotherRateIsNeitherShownNorAnswered) {
    StoppedConfig config = busy();
    config.baud = 57600;
    StopWorld world(config);
    const auto before = world.lists();
    world.run_for(8000);
    EXPECT_EQ(world.lists(), before);
    EXPECT_LE(world.target.commands().size(), 3u);
}

}  // namespace
}  // namespace vkm::test
