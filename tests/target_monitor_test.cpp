// The monitor at work: what it answers to good and to broken dumps, how long it waits,
// and what ends it.
#include <random>

#include "catalogue/model_table.h"
#include "link/isp_link.h"
#include "monitor/monitor_lists.h"
#include "monitor/target_monitor.h"
#include "monitor_bench.h"
#include "session_bench.h"
#include "simulators/transmitter.h"

namespace vkm::test {
namespace {

using SentList = std::vector<Sent>;
using BytesList = std::vector<Bytes>;

const Bytes ram_dump = marked(agent_frame(1, 0, counting(256)));
const Bytes head = slice(ram_dump, 0, 40);
const Bytes tail = slice(ram_dump, 40, ram_dump.size());

bool shows_ram_dump(const MonitorWorld& world) {
    return world.frm.screen.lst_debug2.List[1].Text.ends_with("08 09 0A 0B 0C 0D 0E 0F");
}

bool is_command(const Bytes& bytes) {
    return bytes.size() == 4 && bytes[0] == 0xFE && bytes[1] == 0xAA;
}

// ---- answers -------------------------------------------------------------------

TEST(DebugCommands, AreFourBytes) {
    MonitorWorld world;
    for (const int code : {80, 82, 84, 0, 0x55, 0x56, 0xFF})
        Send_Debug_Command(world.frm, static_cast<std::uint8_t>(code));
    EXPECT_EQ(world.sent_bytes(), (BytesList{{0xFE, 0xAA, 0x50, 0xFA},
                                             {0xFE, 0xAA, 0x52, 0xFC},
                                             {0xFE, 0xAA, 0x54, 0xFE},
                                             {0xFE, 0xAA, 0x00, 0xAA},
                                             {0xFE, 0xAA, 0x55, 0xFF},
                                             {0xFE, 0xAA, 0x56, 0x00},
                                             {0xFE, 0xAA, 0xFF, 0xA9}}));
}

TEST(GoodDump, IsAcknowledgedAtOnceWhateverItsType) {
    for (int type = 0; type < 256; ++type) {
        MonitorWorld world;
        world.arrive(marked(agent_frame(static_cast<std::uint8_t>(type), 0, counting(20))));
        EXPECT_FALSE(world.waits_for_dump());
        world.run_for(5000);
        EXPECT_EQ(world.sent(), (SentList{{0, acknowledge}})) << type;
    }
}

TEST(GoodDump, OfAnyLengthIsAcknowledged) {
    for (const std::size_t length : {4, 5, 6, 7, 8, 14, 15, 16, 17, 18, 255, 256, 257, 1099, 1100})
        for (std::uint8_t type = 0; type < 5; ++type) {
            MonitorWorld world;
            world.arrive(marked(frame_of_length(length, type)));
            world.run_for(5000);
            EXPECT_EQ(world.sent(), (SentList{{0, acknowledge}})) << length;
        }
}

TEST(GoodDump, OfAnUnknownTypeChangesNoList) {
    MonitorWorld world;
    const auto before = world.lists();
    world.arrive(marked(agent_frame(4, 0x1234, Bytes(600, 0xEE))));
    EXPECT_EQ(world.lists(), before);
}

TEST(GoodDump, IsForgottenWhenItIsShown) {
    MonitorWorld world;
    world.arrive(ram_dump);
    EXPECT_EQ(world.frm.link.rx_count, 0);
    EXPECT_EQ(world.frm.link.rx_frame[0], 0);
    EXPECT_EQ(world.frm.link.rx_frame[1], 0);
    EXPECT_FALSE(world.frm.monitor.seen_A5);
    EXPECT_FALSE(world.frm.monitor.seen_5A);
}

TEST(GoodDump, StandsInTheTerminalTooAndCounts) {
    MonitorWorld world;
    world.frm.screen.optReceiveHex[0].Value = 0;
    world.frm.screen.optReceiveHex[1].Value = 1;
    world.arrive(marked(frame_of_length(6)));
    world.run_for(100);
    EXPECT_EQ(world.frm.screen.texReceive.Text, "A5 5A AA 00 06 7E 3C 6A ");
    EXPECT_EQ(world.frm.screen.labReceiveCount.Caption, "接收计数:8");
    // Answers are no bytes of the operator's.
    EXPECT_EQ(world.frm.screen.labSendCount.Caption, "发送计数:0");
    EXPECT_EQ(world.frm.assistant.Send_Count, 0u);
}

TEST(GoodDump, EachOfABatchIsShownAndAcknowledged) {
    MonitorWorld world;
    Bytes batch;
    for (const Bytes& dump : whole_dump()) batch = batch + dump + Bytes{'o', 'k', '\r', '\n'};
    world.arrive(batch);
    EXPECT_EQ(world.sent_bytes(), BytesList(4, acknowledge));
    for (const Control& list : world.lists()) EXPECT_FALSE(list.Selected.empty());
    EXPECT_FALSE(world.waits_for_dump());
}

TEST(GoodDump, WithThePartOfAnotherBehindItIsWaitedFor) {
    MonitorWorld world;
    world.arrive(ram_dump + head);
    EXPECT_TRUE(world.waits_for_dump());
    world.run_for(999);
    world.arrive(tail + ram_dump);
    world.run_for(5000);
    EXPECT_EQ(world.sent(), (SentList{{0, acknowledge}, {999, acknowledge}, {999, acknowledge}}));
}

TEST(GoodDump, IsFoundInBatchesOfAnySize) {
    Bytes stream;
    for (const Bytes& dump : whole_dump(7))
        stream = stream + Bytes{'x', 0xA5, 0x5B, 0xAA, 0x5A} + dump + Bytes{0x5A};
    MonitorWorld at_once;
    at_once.arrive(stream);
    ASSERT_EQ(at_once.sent_bytes(), BytesList(4, acknowledge));
    for (std::size_t size = 1; size < stream.size(); size = size * 5 / 4 + 1) {
        MonitorWorld world;
        for (std::size_t from = 0; from < stream.size(); from += size)
            world.arrive(slice(stream, from, std::min(from + size, stream.size())));
        ASSERT_EQ(world.lists(), at_once.lists()) << size;
        ASSERT_EQ(world.sent_bytes(), BytesList(4, acknowledge)) << size;
    }
}

TEST(GoodDump, SplitInTwoAnywhereIsFound) {
    const Bytes bytes = Bytes{'x'} + marked(agent_frame(1, 0, {0xA5, 0x5A, 0x42})) + Bytes{'y'};
    for (std::size_t split = 0; split <= bytes.size(); ++split) {
        MonitorWorld world;
        if (split > 0) world.arrive(slice(bytes, 0, split));
        world.run_for(999);
        EXPECT_TRUE(world.sent().empty() || split > 22) << split;
        if (split < bytes.size()) world.arrive(slice(bytes, split, bytes.size()));
        EXPECT_EQ(world.sent_bytes(), BytesList{acknowledge}) << split;
        EXPECT_TRUE(world.frm.screen.lst_debug2.List[0].Text.ends_with("99 88 42 00 00 00 00 00"));
    }
}

TEST(GoodDump, WithTheSameValuesAsTheOneBeforeHighlightsNothing) {
    MonitorWorld world;
    for (int stop = 0; stop < 2; ++stop)
        for (const Bytes& dump : whole_dump()) world.arrive(dump);
    for (const Control& list : world.lists()) {
        EXPECT_TRUE(list.Selected.empty()) << list.Name;
        EXPECT_EQ(list.ListIndex, -1);
    }
}

// ---- broken dumps, time ------------------------------------------------------------

TEST(BrokenDump, ChangesNoListAndIsAskedForAgainAfterASecond) {
    for (const Bytes& dump : whole_dump(3)) {
        MonitorWorld world;
        const auto before = world.lists();
        world.arrive(spoiled(dump));
        EXPECT_TRUE(world.sent().empty());
        world.run_for(999);
        EXPECT_TRUE(world.sent().empty());
        world.run_for(2);
        EXPECT_EQ(world.sent(), (SentList{{1000, again}}));
        EXPECT_EQ(world.lists(), before);
        // What is sent again is taken.
        world.arrive(dump);
        EXPECT_EQ(world.sent_bytes(), (BytesList{again, acknowledge}));
        EXPECT_NE(world.lists(), before);
        world.run_for(5000);
        EXPECT_EQ(world.sent().size(), 2u);
    }
}

TEST(BrokenDump, ThatIsTooShortForItsLengthIsAskedForAgainToo) {
    for (const std::uint8_t length : Bytes{1, 2, 3}) {
        MonitorWorld world;
        world.arrive({0xA5, 0x5A, 0xAA, 0x00, length});
        world.run_for(1001);
        EXPECT_EQ(world.sent(), (SentList{{1000, again}})) << int{length};
    }
}

TEST(BrokenDump, IsAskedForThreeTimesASecondApart) {
    for (const Bytes& bytes :
         {head, spoiled(ram_dump), Bytes{0xA5, 0x5A}, Bytes{0xA5, 0x5A, 0xAA},
          Bytes{0xA5, 0x5A, 0xAA, 0x00, 0x00}, Bytes{0xA5, 0x5A, 0xAA, 0xFF, 0xFF, 0x01}}) {
        MonitorWorld world;
        world.arrive(bytes);
        EXPECT_TRUE(world.waits_for_dump());
        world.run_for(4100);
        EXPECT_FALSE(world.waits_for_dump());
        world.run_for(60'000);
        EXPECT_EQ(world.sent(), (SentList{{1000, again}, {2000, again}, {3000, again}}));
    }
}

TEST(BrokenDump, TheFirstRequestDropsWhatHasCome) {
    MonitorWorld world;
    world.arrive(head);
    EXPECT_EQ(world.frm.link.rx_count, 38);
    world.run_for(1001);
    EXPECT_EQ(world.frm.link.rx_count, 0);
    EXPECT_FALSE(world.frm.monitor.seen_A5);
    EXPECT_FALSE(world.frm.monitor.seen_5A);
    // The rest of the dropped one is none.
    world.arrive(tail);
    EXPECT_EQ(world.sent_bytes(), BytesList{again});
    world.arrive(ram_dump);
    EXPECT_EQ(world.sent_bytes(), (BytesList{again, acknowledge}));
}

TEST(BrokenDump, EveryBatchGivesThreeNewRequests) {
    MonitorWorld world;
    world.arrive(head);
    world.arrive_in(2500, head);  // in the midst of the requests for the first
    world.run_for(20'000);
    EXPECT_EQ(
        world.sent(),
        (SentList{{1000, again}, {2000, again}, {3500, again}, {4500, again}, {5500, again}}));
}

TEST(BrokenDump, ABatchThatLeavesTheToolHuntingEndsTheRequests) {
    for (const Bytes& batch : {Bytes{'x'}, Bytes{0xA5}, Bytes{0xA5, 0x5A, 0x00}}) {
        MonitorWorld world;
        world.arrive(head);
        world.arrive_in(1500, batch);
        world.run_for(20'000);
        EXPECT_EQ(world.sent(), (SentList{{1000, again}}));
        EXPECT_FALSE(world.waits_for_dump());
    }
}

TEST(BrokenDump, AByteOtherThanAABehindAWrongSumEndsTheRequests) {
    MonitorWorld world;
    world.arrive(spoiled(ram_dump));
    EXPECT_TRUE(world.waits_for_dump());
    world.arrive({'x'});
    EXPECT_FALSE(world.waits_for_dump());
    world.run_for(20'000);
    EXPECT_TRUE(world.sent().empty());
}

TEST(BrokenDump, TheRestOfItsBatchIsNotSearched) {
    MonitorWorld world;
    const auto before = world.lists();
    world.arrive(spoiled(ram_dump) + ram_dump);
    EXPECT_TRUE(world.sent().empty());
    EXPECT_EQ(world.lists(), before);
    world.run_for(1001);
    EXPECT_EQ(world.sent(), (SentList{{1000, again}}));
}

TEST(BrokenDump, BehindAGoodOneInTheSameBatchIsAskedForAgain) {
    MonitorWorld world;
    world.arrive(ram_dump + spoiled(ram_dump));
    world.run_for(1001);
    EXPECT_EQ(world.sent(), (SentList{{0, acknowledge}, {1000, again}}));
    EXPECT_TRUE(shows_ram_dump(world));
}

TEST(BrokenDump, LongerThanAnyIsDroppedWithoutARequest) {
    for (const std::size_t length : {0, 1101, 65535}) {
        MonitorWorld world;
        Bytes frame(1101, 0x3C);
        frame[0] = 0xAA;
        set_length(frame, length);
        world.arrive(marked(frame));
        EXPECT_FALSE(world.waits_for_dump()) << length;
        world.run_for(5000);
        EXPECT_TRUE(world.sent().empty());
        world.arrive(ram_dump);
        EXPECT_EQ(world.sent_bytes(), BytesList{acknowledge});
    }
}

TEST(Waiting, GoesOnWithEachBatchOfADump) {
    MonitorWorld world;
    const Bytes dump = marked(agent_frame(2, 0, counting(30)));
    for (std::size_t i = 0; i < dump.size(); ++i)
        world.arrive_in(static_cast<std::int64_t>(999 * i), {dump[i]});
    world.run_for(60'000);
    EXPECT_EQ(world.sent(),
              (SentList{{999.0 * static_cast<double>(dump.size() - 1), acknowledge}}));
}

TEST(Waiting, NothingRunsWhileTheToolHunts) {
    MonitorWorld world;
    for (const Bytes& batch : {Bytes{'H', 'i'}, Bytes{0xA5}, Bytes{0x00}, Bytes{0x5A, 0xA5}}) {
        world.arrive(batch);
        EXPECT_FALSE(world.waits_for_dump());
    }
    world.arrive({0x5A});
    EXPECT_TRUE(world.waits_for_dump());
}

// ---- the target's line to the operator alone ----------------------------------------

struct Silent : MonitorWorld {
    Silent() { frm.screen.che_disable_Debug_SFR_232.Value = 1; }
};

TEST(WithoutAnswers, AGoodDumpIsShownAndNotAcknowledged) {
    Silent world;
    world.arrive(ram_dump);
    world.run_for(5000);
    EXPECT_TRUE(shows_ram_dump(world));
    EXPECT_TRUE(world.sent().empty());
}

TEST(WithoutAnswers, ABrokenDumpIsNotAskedForAgain) {
    for (const Bytes& bytes : {head, spoiled(ram_dump)}) {
        Silent world;
        world.arrive(bytes);
        world.run_for(4100);
        EXPECT_FALSE(world.waits_for_dump());
        EXPECT_TRUE(world.sent().empty());
    }
}

TEST(WithoutAnswers, APartIsDroppedAllTheSameAfterASecond) {
    for (const bool in_time : {true, false}) {
        Silent world;
        world.arrive(head);
        world.run_for(in_time ? 999 : 1001);
        world.arrive(tail);
        EXPECT_EQ(shows_ram_dump(world), in_time);
        world.arrive(ram_dump);
        EXPECT_TRUE(shows_ram_dump(world));
        EXPECT_TRUE(world.sent().empty());
    }
}

TEST(WithoutAnswers, TheSilentRequestsCount) {
    Silent world;
    world.arrive(head);
    world.at(2500, [&] { world.frm.screen.che_disable_Debug_SFR_232.Value = 0; });
    world.run_for(20'000);
    EXPECT_EQ(world.sent(), (SentList{{3000, again}}));
}

// ---- over the wire -----------------------------------------------------------------------

// Says what it is told to, and hears the commands.
struct Wire {
    explicit Wire(double rate) : baud(rate), transmitter(rate) {}

    sim::Target target() {
        return {[](Instant, std::uint8_t, double) {}, [this] { return transmitter.due(); },
                [this](Instant now) { transmitter.run(now); },
                [this] { return transmitter.take_output(); }};
    }

    double baud;
    sim::Transmitter transmitter;
};

TEST(Waiting, ALongDumpOnASlowLineIsNotAskedForAgain) {
    for (const std::int64_t latency_ms : {0, 16, 255}) {
        for (const char* rate : {"600", "1200", "115200"}) {
            MonitorWorld world;
            Close_Assistant_Port(world.frm);
            ASSERT_TRUE(choose_text(world.frm.screen.com_Debug_Baud, rate));
            Open_Assistant_Port(world.frm);
            Wire wire(std::stod(rate));
            world.line.connect(wire.target());
            world.line.latency = Milliseconds(latency_ms);
            const Bytes dump = marked(agent_frame(2, 0, counting(1083)));
            ASSERT_EQ(dump.size(), 1102u);
            wire.transmitter.send(world.loop.now(), dump);
            const double wire_ms = 10.0 * 1102 * 1000 / std::stod(rate);
            world.run_for(60'000);
            ASSERT_EQ(world.sent_bytes(), BytesList{acknowledge}) << rate;
            EXPECT_NEAR(world.sent()[0].ms, wire_ms, static_cast<double>(latency_ms) + 2);
            EXPECT_EQ(world.frm.assistant.Receive_Count, 1102u);
        }
    }
}

TEST(Waiting, ADumpThatCameWhileTheToolWasHeldUpIsNotAskedForAgain) {
    for (const int held_up_ms : {900, 1100, 5000}) {
        MonitorWorld world;
        Wire wire(115200);
        world.line.connect(wire.target());
        wire.transmitter.send(world.loop.now(), ram_dump);
        world.run_for(5);
        ASSERT_TRUE(world.waits_for_dump());
        world.loop.let_line_run(world.loop.now() + Milliseconds(held_up_ms));
        world.run_for(10'000);
        EXPECT_EQ(world.sent_bytes(), BytesList{acknowledge}) << held_up_ms;
        EXPECT_TRUE(shows_ram_dump(world));
    }
}

// ---- the port goes ------------------------------------------------------------------------

TEST(ClosedPort, AmidADumpEndsTheWaiting) {
    for (const Bytes& bytes : {head, spoiled(ram_dump), Bytes{0xA5, 0x5A}, Bytes{0xA5}}) {
        MonitorWorld world;
        world.arrive(bytes);
        world.click(world.frm.screen.imgOpen);
        EXPECT_FALSE(world.waits_for_dump());
        EXPECT_EQ(world.frm.link.rx_count, 0);
        world.run_for(5000);
        Open_Assistant_Port(world.frm);
        EXPECT_FALSE(world.frm.monitor.seen_A5);
        EXPECT_FALSE(world.frm.monitor.seen_5A);
        world.arrive(tail);
        world.run_for(5000);
        EXPECT_TRUE(world.sent().empty());
        world.arrive(ram_dump);
        EXPECT_EQ(world.sent_bytes(), BytesList{acknowledge});
    }
}

TEST(ClosedPort, BetweenTwoRequestsEndsThem) {
    MonitorWorld world;
    world.arrive(head);
    world.at(1500, [&] { Close_Assistant_Port(world.frm); });
    world.at(1600, [&] { Open_Assistant_Port(world.frm); });
    world.run_for(10'000);
    EXPECT_EQ(world.sent(), (SentList{{1000, again}}));
}

TEST(ClosedPort, WhatHasComeBeforeItIsTakenAndNothingIsWaitedFor) {
    for (const Bytes& bytes : {ram_dump, head, spoiled(ram_dump)}) {
        MonitorWorld world;
        world.line.input.insert(world.line.input.end(), bytes.begin(), bytes.end());
        Close_Assistant_Port(world.frm);
        EXPECT_EQ(world.sent_bytes(), bytes == ram_dump ? BytesList{acknowledge} : BytesList{});
        EXPECT_EQ(shows_ram_dump(world), bytes == ram_dump);
        EXPECT_FALSE(world.waits_for_dump());
        Open_Assistant_Port(world.frm);
        world.mark_time();
        world.arrive(tail);
        world.run_for(5000);
        EXPECT_TRUE(world.sent().empty());
    }
}

TEST(ClosedPort, AfterTheDeviceHasGoneNothingIsAskedFor) {
    MonitorWorld world;
    world.arrive(head);
    world.at(500, [&] { world.port.unplug(); });
    world.run_for(10'000);
    EXPECT_TRUE(world.sent().empty());
    EXPECT_FALSE(world.waits_for_dump());
    EXPECT_FALSE(world.frm.link.debug_mode);
    world.port.plug(1);
    Open_Assistant_Port(world.frm);
    world.run_for(10'000);
    EXPECT_TRUE(world.sent().empty());
}

struct DownloadWorld : SessionBench {
    DownloadWorld() { load(700); }
    void arrive(const Bytes& bytes) { frm.link.Assistant_Bytes(frm, bytes); }
    int commands_sent() const {
        return static_cast<int>(std::ranges::count_if(
            port.written, [](const Written& written) { return is_command(written.bytes); }));
    }
};

TEST(Download, BeginsWithoutWhatADumpOnItsWayWouldAskFor) {
    for (const Bytes& bytes : {head, spoiled(ram_dump), Bytes{0xA5, 0x5A}}) {
        DownloadWorld bench;
        Open_Assistant_Port(bench.frm);
        bench.arrive(bytes);
        bench.run_for(900);
        comDownload(bench.frm, 0);
        expect_good_chip(bench);
        EXPECT_EQ(bench.commands_sent(), 0);
        EXPECT_FALSE(bench.frm.timers.TimerDebug.Enabled);
    }
}

TEST(Download, LeavesNothingThatADumpBehindItWouldBeginWith) {
    DownloadWorld bench;
    bench.frm.screen.che_AutoOpenPort.Value = 1;
    comDownload(bench.frm, 0);
    ASSERT_TRUE(bench.frm.session.Program_OK) << bench.story();
    ASSERT_TRUE(bench.frm.link.debug_mode);
    EXPECT_EQ(bench.frm.link.rx_count, 0);
    bench.arrive(ram_dump);
    EXPECT_EQ(bench.commands_sent(), 1);
    EXPECT_EQ(bench.port.written.back().bytes, acknowledge);
    bench.run_for(5000);
    EXPECT_EQ(bench.commands_sent(), 1);
}

TEST(Download, OpeningForgetsWhatStandsInTheFrame) {
    MonitorWorld world;
    Close_Assistant_Port(world.frm);
    world.frm.link.rx_count = 500;
    world.frm.link.rx_frame.fill(0xAA);
    world.frm.monitor.seen_A5 = world.frm.monitor.seen_5A = true;
    Open_Assistant_Port(world.frm);
    world.arrive(Bytes(600, 0xAA));
    EXPECT_FALSE(world.waits_for_dump());
    world.arrive(ram_dump);
    EXPECT_EQ(world.sent_bytes(), BytesList{acknowledge});
}

TEST(Download, ItsOwnFramesAreNoDumps) {
    MonitorWorld world;
    Close_Assistant_Port(world.frm);
    const auto before = world.lists();
    ASSERT_TRUE(world.port.open() == 0);
    world.line.input.insert(world.line.input.end(), ram_dump.begin(), ram_dump.end());
    on_port_event(world.frm);
    EXPECT_EQ(world.port.input_count(), 0u);
    world.run_for(5000);
    EXPECT_TRUE(world.sent().empty());
    EXPECT_EQ(world.lists(), before);
    EXPECT_EQ(world.frm.assistant.Receive_Count, 0u);
}

// ---- the operator -----------------------------------------------------------------------

TEST(Continue, LetsTheTargetGoOnAndCountsThree) {
    MonitorWorld world;
    world.click(world.frm.screen.comDebugContinue);
    EXPECT_EQ(world.sent_bytes(), BytesList{go_on});
    EXPECT_EQ(world.frm.assistant.Send_Count, 3u);
    EXPECT_EQ(world.frm.screen.labSendCount.Caption, "发送计数:3");
    // Whether answers are wanted or not.
    world.frm.screen.che_disable_Debug_SFR_232.Value = 1;
    world.click(world.frm.screen.comDebugContinue);
    EXPECT_EQ(world.sent_bytes(), (BytesList{go_on, go_on}));
    EXPECT_EQ(world.frm.screen.labSendCount.Caption, "发送计数:6");
}

TEST(Continue, OpensThePortFirst) {
    MonitorWorld world;
    Close_Assistant_Port(world.frm);
    world.click(world.frm.screen.comDebugContinue);
    EXPECT_TRUE(world.frm.link.debug_mode);
    EXPECT_TRUE(world.frm.screen.imgOpen.Visible);
    EXPECT_EQ(world.sent_bytes(), BytesList{go_on});
    EXPECT_EQ(world.frm.assistant.Send_Count, 3u);
}

TEST(Continue, OnAPortThatWontOpenSaysSoAndCountsNothing) {
    MonitorWorld world;
    Close_Assistant_Port(world.frm);
    world.port.present.clear();
    world.click(world.frm.screen.comDebugContinue);
    EXPECT_EQ(world.boxes().size(), 1u);
    EXPECT_TRUE(world.sent().empty());
    EXPECT_EQ(world.frm.assistant.Send_Count, 0u);
    EXPECT_EQ(world.frm.screen.labSendCount.Caption, "发送计数:0");
}

TEST(Continue, OnAPortThatHasGoneCountsNothing) {
    MonitorWorld world;
    world.port.unplug();
    world.click(world.frm.screen.comDebugContinue);
    EXPECT_TRUE(world.sent().empty());
    EXPECT_EQ(world.frm.assistant.Send_Count, 0u);
}

TEST(Continue, DoesNothingWhileAChipIsProgrammed) {
    DownloadWorld bench;
    for (const int ms : {1, 50, 300, 700})
        bench.at(ms, [&] {
            EXPECT_TRUE(bench.frm.session.Running);
            comDebugContinue(bench.frm);
        });
    comDownload(bench.frm, 0);
    expect_good_chip(bench);
    EXPECT_EQ(bench.commands_sent(), 0);
    EXPECT_EQ(bench.frm.assistant.Send_Count, 0u);
}

TEST(ClearButtons, OfTheMonitorEmptyTheListsAndLeaveTheText) {
    for (const int index : {1, 2}) {
        MonitorWorld world;
        for (const Bytes& dump : whole_dump()) world.arrive(dump);
        world.run_for(100);
        const std::string text = world.frm.screen.texReceive.Text;
        const Control window = world.frm.screen.lst_debug4;
        world.click(world.frm.screen.comDebugClear[static_cast<std::size_t>(index)]);
        EXPECT_EQ(world.frm.screen.texReceive.Text, text);
        EXPECT_FALSE(text.empty());
        const auto lists = world.lists();
        for (const Entry& entry : lists[0].List) EXPECT_EQ(entry.Text.size(), 17u);
        EXPECT_EQ(lists[0].List.size(), 41u);
        for (const std::size_t list : {1, 2})
            for (const Entry& entry : lists[list].List)
                EXPECT_TRUE(entry.Text.ends_with("   00 00 00 00 00 00 00 00"));
        EXPECT_EQ(lists[3], window);
    }
}

TEST(ClearButtons, OfTheTerminalEmptiesTheTextAndLeavesTheLists) {
    MonitorWorld world;
    for (const Bytes& dump : whole_dump()) world.arrive(dump);
    world.run_for(100);
    const auto before = world.lists();
    world.click(world.frm.screen.comDebugClear[0]);
    EXPECT_EQ(world.frm.screen.texReceive.Text, "");
    EXPECT_EQ(world.lists(), before);
}

TEST(ClearButtons, AmidADumpDoNotDisturbIt) {
    MonitorWorld world;
    world.arrive(head);
    world.click(world.frm.screen.comDebugClear[1]);
    world.arrive(tail);
    EXPECT_TRUE(shows_ram_dump(world));
}

// ---- the chosen model --------------------------------------------------------------------

std::size_t registers_shown(const MonitorWorld& world) {
    return world.frm.screen.lst_debug1.List.size();
}

TEST(ChosenModel, DecidesWhichRegistersThereAre) {
    MonitorWorld world;
    for (int group = 0; group < group_count; ++group) {
        if (group == older_54xx_group) continue;
        const ModelGroup& models = MCU_AP_ISP_range[static_cast<std::size_t>(group)];
        for (const ModelRow& row : models.rows) {
            if (row.MCU_Name.empty() || !row.In_Tree) continue;
            ASSERT_TRUE(choose_model(world.frm, model_of_family_2));
            ASSERT_EQ(registers_shown(world), 41u);
            ASSERT_TRUE(choose_model(world.frm, std::string(row.MCU_Name)));
            const int family = models.MCU_Family;
            EXPECT_EQ(registers_shown(world), family == 2   ? 41u
                                              : family == 3 ? 52u
                                              : family == 4 ? 67u
                                                            : 0u)
                << row.MCU_Name;
        }
    }
}

TEST(ChosenModel, BeginsItsRegistersWithoutValues) {
    MonitorWorld world;
    world.arrive(whole_dump()[0]);
    world.frm.screen.lst_debug1.Value = 5;
    ASSERT_FALSE(world.frm.screen.lst_debug1.Selected.empty());
    ASSERT_TRUE(choose_model(world.frm, "VKM26H5404"));
    const Control& list = world.frm.screen.lst_debug1;
    EXPECT_TRUE(list.Selected.empty());
    EXPECT_EQ(list.ListIndex, -1);
    EXPECT_EQ(list.Value, 0);
    for (const Entry& entry : list.List) EXPECT_EQ(entry.Text.size(), 17u);
    world.arrive(whole_dump()[0]);
    EXPECT_EQ(list.Selected.size(), 67u);
}

// ---- anything -------------------------------------------------------------------------------

TEST(AnyBytes, LeaveTheMonitorHearing) {
    std::mt19937 random(20240611);
    const auto below = [&](unsigned n) { return static_cast<unsigned>(random() % n); };
    const Bytes favourites = {0xA5, 0x5A, 0xAA, 0x00, 0x01, 0x02, 0x03, 0x04, 0x10, 0xFF};
    MonitorWorld world;
    std::size_t shown = 0;
    for (int round = 0; round < 3000; ++round) {
        for (unsigned batches = 1 + below(4); batches > 0; --batches) {
            Bytes batch(1 + (below(20) == 0 ? below(3000) : below(40)));
            for (std::uint8_t& byte : batch)
                byte =
                    below(2) == 0 ? favourites[below(10)] : static_cast<std::uint8_t>(below(256));
            if (below(3) == 0)
                batch = batch + marked(agent_frame(static_cast<std::uint8_t>(below(5)),
                                                   below(65536), Bytes(below(1084), 0x42)));
            world.arrive(batch);
            ASSERT_GE(world.frm.link.rx_count, 0);
            ASSERT_LE(world.frm.link.rx_count, 1100);
            for (std::size_t at = 1100; at < world.frm.link.rx_frame.size(); ++at)
                ASSERT_EQ(world.frm.link.rx_frame[at], 0);
            shown += !world.sent().empty();
            world.mark_time();
        }
        // After the last request the next good dump is heard.
        if (below(3) != 0) continue;
        world.run_for(4100);
        ASSERT_FALSE(world.waits_for_dump());
        ASSERT_LE(world.sent().size(), 3u);
        world.mark_time();
        world.arrive(Bytes{0, 0, 0} + ram_dump);
        ASSERT_EQ(world.sent_bytes(), BytesList{acknowledge}) << round;
        world.mark_time();
    }
    EXPECT_GT(shown, 500u);
}

}  // namespace
}  // namespace vkm::test
