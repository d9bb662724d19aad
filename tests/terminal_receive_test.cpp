// What the terminal receives: counted at once, shown by the tick.
#include "terminal_bench.h"

#include "assistant/assistant_help.h"
#include "text/trimming.h"

namespace vkm::test {
namespace {

const std::string replacement = "\uFFFD";

struct Receiving : TerminalBench {
    explicit Receiving(const sim::TalkingConfig& config = {}) : TerminalBench(config) { open(); }

    // As if the port had handed over a batch.
    void batch(const Bytes& bytes) { Take_Received(frm, bytes); }
    std::int32_t insertion_point() const { return s.texReceive.SelStart; }
    void expect_insertion_point_at_end() const {
        EXPECT_EQ(insertion_point(), static_cast<std::int32_t>(character_count(received())));
        EXPECT_EQ(s.texReceive.SelLength, 0);
    }
};

// ---- the tick ----------------------------------------------------------------------

TEST(TerminalDisplay, ComesWith35MsFromTheFirstByteOfABatch) {
    for (const bool hex : {false, true}) {
        Receiving bench;
        bench.show_as_hex(hex);
        bench.batch(bytes_of("A"));
        EXPECT_EQ(bench.received(), "");
        EXPECT_EQ(bench.receive_count(), "接收计数:0");
        EXPECT_EQ(bench.frm.timers.TimerDebugDisplay.Interval, 35);
        bench.run_for(34);
        EXPECT_EQ(bench.received(), "");
        EXPECT_TRUE(bench.frm.timers.TimerDebugDisplay.Enabled);
        bench.run_for(1);
        EXPECT_EQ(bench.received(), hex ? "41 " : "A");
        EXPECT_EQ(bench.receive_count(), "接收计数:1");
        EXPECT_FALSE(bench.frm.timers.TimerDebugDisplay.Enabled);
    }
}

TEST(TerminalDisplay, IsNotPutOffByWhatComesLater) {
    Receiving bench;
    for (int i = 0; i < 10; ++i)
        bench.at(i * 10, [&bench, i] { bench.batch({static_cast<std::uint8_t>('0' + i)}); });
    bench.run_for(36);
    EXPECT_EQ(bench.received(), "0123");
    bench.run_for(38);
    EXPECT_EQ(bench.received(), "0123");
    bench.run_for(2);
    EXPECT_EQ(bench.received(), "01234567") << "35 ms behind the byte that came at 40 ms";
    bench.run_for(60);
    EXPECT_EQ(bench.received(), "0123456789");
    EXPECT_FALSE(bench.frm.timers.TimerDebugDisplay.Enabled);
}

TEST(TerminalDisplay, TouchesNothingInTheEventItself) {
    Receiving bench;
    bench.s.texReceive.Text = "text";
    bench.s.texReceive.SelStart = 2;
    bench.batch(random_bytes(100));
    EXPECT_EQ(bench.received(), "text");
    EXPECT_EQ(bench.insertion_point(), 2);
    EXPECT_EQ(bench.frm.assistant.Receive_Count, 100u);
    EXPECT_EQ(bench.frm.assistant.ring.waiting(), 100);
}

TEST(TerminalDisplay, StopsItsTimerOverAnEmptyRing) {
    for (const bool hex : {false, true}) {
        Receiving bench;
        bench.show_as_hex(hex);
        bench.s.texReceive.Text = "text";
        restart_timer(bench.frm, bench.frm.timers.TimerDebugDisplay, 35);
        bench.run_for(36);
        EXPECT_FALSE(bench.frm.timers.TimerDebugDisplay.Enabled);
        EXPECT_EQ(bench.received(), "text");
    }
}

TEST(TerminalDisplay, AppendsAtTheEndAndSetsTheInsertionPointBehindIt) {
    for (const bool hex : {false, true}) {
        Receiving bench;
        bench.show_as_hex(hex);
        bench.s.texReceive.Text = "串口: ";
        bench.s.texReceive.SelStart = 1;
        bench.s.texReceive.SelLength = 2;
        bench.say(bytes_of("A"));
        bench.run_for(40);
        EXPECT_EQ(bench.received(), hex ? "串口: 41 " : "串口: A");
        bench.expect_insertion_point_at_end();
    }
}

TEST(TerminalDisplay, ShowsEveryByteAsTwoCapitalDigitsAndABlank) {
    Receiving bench;
    bench.show_as_hex(true);
    Bytes all;
    for (int byte = 0; byte < 256; ++byte) all.push_back(static_cast<std::uint8_t>(byte));
    bench.say(all);
    bench.run_for(200);
    EXPECT_EQ(bench.received(), shown_as_hex(all));
    EXPECT_TRUE(bench.received().starts_with("00 01 02 ") && bench.received().ends_with("FE FF "));
    EXPECT_EQ(bench.receive_count(), "接收计数:256");
    bench.expect_insertion_point_at_end();
}

// ---- GBK ------------------------------------------------------------------------------

const Bytes gbk_text = {0xB4, 0xAE, 0xBF, 0xDA, ' ', 'O', 'K', '\r', '\n'};  // 串口 OK

TEST(TerminalText, IsOfTheSystems8BitCodePage) {
    Receiving bench;
    bench.say(gbk_text);
    bench.run_for(60);
    EXPECT_EQ(bench.received(), "串口 OK\r\n");
    EXPECT_EQ(bench.receive_count(), "接收计数:9") << "bytes, not characters";
    EXPECT_EQ(bench.insertion_point(), 7);
}

TEST(TerminalText, ThatArrivedInPiecesWithinATickShowsWhole) {
    Receiving bench;
    for (std::size_t i = 0; i < gbk_text.size(); ++i)
        bench.at(static_cast<std::int64_t>(i) * 3, [&bench, i] { bench.batch({gbk_text[i]}); });
    bench.run_for(60);
    EXPECT_EQ(bench.received(), "串口 OK\r\n");
}

TEST(TerminalText, ShowsATwoByteCharacterSplitAcrossTwoTicksWrong) {
    Receiving bench;
    bench.batch({'a', 0xB4});
    bench.run_for(36);
    bench.batch({0xAE, 'b'});
    bench.run_for(36);
    EXPECT_EQ(bench.received().find("串"), std::string::npos);
    // Each half is a wrong character of its own, and what stands around it is right.
    EXPECT_TRUE(bench.received().starts_with("a")) << bench.received();
    EXPECT_GE(character_count(bench.received()), 3u);
    bench.batch(bytes_of("next"));
    bench.run_for(36);
    EXPECT_TRUE(bench.received().ends_with("next")) << bench.received();
    EXPECT_EQ(bench.receive_count(), "接收计数:8");
}

TEST(TerminalText, LosesNothingOfABatchWithAZeroInIt) {
    Receiving bench;
    bench.batch({'a', 0, 'b'});
    bench.run_for(36);
    EXPECT_EQ(bench.received(), std::string("a\0b", 3));
}

// ---- the ring ----------------------------------------------------------------------------

TEST(TerminalRing, ThatIsFullDropsTheRestOfTheBatchAndTheCountIsRight) {
    for (const bool hex : {false, true}) {
        Receiving bench;
        bench.show_as_hex(hex);
        const std::size_t room = Receive_Ring::cells - 1;
        Bytes first(room - 10, 'a');
        bench.batch(first);
        bench.batch(bytes_of("0123456789lost"));
        bench.batch(bytes_of("lost"));
        EXPECT_EQ(bench.frm.assistant.Receive_Count, room + 8);
        bench.run_for(40);
        EXPECT_EQ(bench.receive_count(), "接收计数:" + std::to_string(room + 8));
        Bytes expected = first;
        for (const char c : std::string("0123456789"))
            expected.push_back(static_cast<std::uint8_t>(c));
        // The digits of so many bytes don't all fit into the text.
        const std::string text =
            hex ? shown_as_hex(expected) : std::string(expected.begin(), expected.end());
        EXPECT_TRUE(text.ends_with(bench.received()));
        EXPECT_GE(bench.received().size(), hex ? 30720u : text.size());
        bench.batch(bytes_of("!"));
        bench.run_for(40);
        EXPECT_TRUE(bench.received().ends_with(hex ? "39 21 " : "9!"));
    }
}

TEST(TerminalRing, GoesRoundManyTimesWithoutALoss) {
    for (const bool hex : {false, true}) {
        Receiving bench;
        bench.show_as_hex(hex);
        std::size_t total = 0;
        for (int round = 0; round < 21; ++round) {
            bench.s.texReceive.Text.clear();
            const Bytes bytes = random_bytes(9973, static_cast<unsigned>(round));
            Bytes printable = bytes;
            for (std::uint8_t& byte : printable) byte = static_cast<std::uint8_t>(' ' + byte % 95);
            bench.batch(printable);
            total += printable.size();
            bench.run_for(40);
            ASSERT_TRUE(bench.received() == (hex ? shown_as_hex(printable)
                                                 : std::string(printable.begin(), printable.end())))
                << round;
        }
        EXPECT_GT(total, std::size_t{3} * Receive_Ring::cells);
        EXPECT_EQ(bench.receive_count(), "接收计数:" + std::to_string(total));
    }
}

// ---- trimming -------------------------------------------------------------------------------

std::string repeated(std::string_view text, std::size_t times) {
    std::string all;
    for (std::size_t i = 0; i < times; ++i) all += text;
    return all;
}

TEST(TerminalTrimming, LeavesA65000CharacterTextAlone) {
    for (const std::string_view character : {"x", "中", "𝄞"}) {
        Receiving bench;
        const std::string text = repeated(character, 65000);
        bench.s.texReceive.Text = text;
        bench.batch(bytes_of("end"));
        bench.run_for(36);
        EXPECT_TRUE(bench.received() == text + "end") << character;
    }
}

TEST(TerminalTrimming, KeepsTheNewest30720OfALongerText) {
    for (const std::string_view character : {"x", "中", "𝄞"})
        for (const bool hex : {false, true}) {
            Receiving bench;
            bench.show_as_hex(hex);
            const std::string newest = "b" + repeated(character, 30719);
            bench.s.texReceive.Text = "a" + repeated(character, 34280) + newest;
            ASSERT_EQ(character_count(bench.received()), 65001u);
            bench.batch(bytes_of("e"));
            bench.run_for(36);
            EXPECT_TRUE(bench.received() == newest + (hex ? "65 " : "e")) << character;
            bench.expect_insertion_point_at_end();
        }
}

TEST(TerminalTrimming, ComesAtTheTickEvenWithNothingNew) {
    Receiving bench;
    bench.s.texReceive.Text = std::string(70000, 'x');
    restart_timer(bench.frm, bench.frm.timers.TimerDebugDisplay, 35);
    bench.run_for(36);
    EXPECT_EQ(bench.received().size(), 30720u);
    bench.expect_insertion_point_at_end();
}

// ---- a display that lags ----------------------------------------------------------------------

TEST(TerminalDisplay, ShowsTheDigitsOfManyBytesInPieces) {
    Receiving bench;
    bench.show_as_hex(true);
    const Bytes bytes = random_bytes(10'000);
    bench.batch(bytes);
    bench.run_for(35);
    const std::size_t first = bench.received().size();
    EXPECT_GT(first, 0u);
    EXPECT_LT(first, 30'000u);
    EXPECT_EQ(bench.receive_count(), "接收计数:10000");
    bench.run_for(2);
    EXPECT_TRUE(bench.received() == shown_as_hex(bytes));
    EXPECT_FALSE(bench.frm.timers.TimerDebugDisplay.Enabled);
}

TEST(TerminalDisplay, HurriesWhenTheRingFills) {
    for (const bool hex : {false, true}) {
        Receiving bench;
        bench.show_as_hex(hex);
        bench.batch(Bytes(0x4000, 'x'));
        bench.run_for(30);
        EXPECT_EQ(bench.received(), "");
        bench.batch(bytes_of("y"));
        bench.run_for(4);
        EXPECT_EQ(bench.received().size(), 0x4001u * (hex ? 3 : 1));
        EXPECT_TRUE(bench.received().ends_with(hex ? "78 79 " : "xy"));
        EXPECT_FALSE(bench.frm.timers.TimerDebugDisplay.Enabled);
    }
}

// ---- changes midway --------------------------------------------------------------------------

TEST(TerminalDisplay, FollowsAChangeOfModeWithWhatComesLater) {
    Receiving bench;
    bench.say(bytes_of("AB"));
    bench.run_for(60);
    bench.show_as_hex(true);
    bench.say(bytes_of("AB"));
    bench.run_for(60);
    bench.show_as_hex(false);
    bench.say(bytes_of("AB"));
    bench.run_for(60);
    EXPECT_EQ(bench.received(), "AB41 42 AB");
    EXPECT_EQ(bench.receive_count(), "接收计数:6");
}

TEST(TerminalDisplay, ShowsWhatWaitsInTheModeOfItsTick) {
    Receiving bench;
    bench.batch(bytes_of("AB"));
    bench.run_for(20);
    bench.show_as_hex(true);
    bench.run_for(20);
    EXPECT_EQ(bench.received(), "41 42 ");
}

// The hexadecimal tick lets events run between its bytes.
TEST(TerminalDisplay, HandsInNoClickThatCouldKeepItStanding) {
    static Receiving* in_tick;
    static bool clicked, clicked_in_tick;
    Receiving bench;
    in_tick = &bench;
    clicked = clicked_in_tick = false;
    bench.show_as_hex(true);
    bench.batch(bytes_of("AB"));
    bench.frm.timers.TimerDebugDisplay.Tick = [](frmMain& frm) {
        in_tick->at(0, [] { clicked = true; });
        Show_Received(frm);
        clicked_in_tick = clicked;
    };
    bench.run_for(36);
    EXPECT_EQ(bench.received(), "41 42 ");
    EXPECT_FALSE(clicked_in_tick);
    EXPECT_TRUE(clicked);
}

// ---- clearing, help --------------------------------------------------------------------------

TEST(TerminalClearing, EmptiesTheTextAndKeepsTheCounts) {
    Receiving bench;
    bench.say(bytes_of("text"));
    bench.run_for(60);
    bench.click(bench.s.comDebugClear[0]);
    EXPECT_EQ(bench.received(), "");
    EXPECT_EQ(bench.insertion_point(), 0);
    EXPECT_EQ(bench.receive_count(), "接收计数:4");
    bench.say(bytes_of("more"));
    bench.run_for(60);
    EXPECT_EQ(bench.received(), "more");
    EXPECT_EQ(bench.receive_count(), "接收计数:8");
}

TEST(TerminalClearing, TheOtherButtonsOfThatNameLeaveTheTextAlone) {
    Receiving bench;
    bench.say(bytes_of("text"));
    bench.run_for(60);
    bench.click(bench.s.comDebugClear[1]);
    bench.click(bench.s.comDebugClear[2]);
    EXPECT_EQ(bench.received(), "text");
}

TEST(TerminalClearing, SetsBothCountsTo0) {
    Receiving bench;
    bench.say(bytes_of("text"));
    bench.send("abc", false);
    bench.run_for(60);
    EXPECT_EQ(bench.receive_count(), "接收计数:4");
    EXPECT_EQ(bench.send_count(), "发送计数:3");
    bench.click(bench.s.comClearCount);
    EXPECT_EQ(bench.receive_count(), "接收计数:0");
    EXPECT_EQ(bench.send_count(), "发送计数:0");
    EXPECT_EQ(bench.received(), "text");
    bench.say(bytes_of("x"));
    bench.send("y", false);
    bench.run_for(60);
    EXPECT_EQ(bench.receive_count(), "接收计数:1");
    EXPECT_EQ(bench.send_count(), "发送计数:1");
}

TEST(TerminalCount, GoesRoundAt32Bits) {
    Receiving bench;
    bench.frm.assistant.Receive_Count = 0xFFFFFFFE;
    bench.batch(bytes_of("x"));
    bench.run_for(40);
    EXPECT_EQ(bench.receive_count(), "接收计数:4294967295");
    bench.batch(bytes_of("xy"));
    bench.run_for(40);
    EXPECT_EQ(bench.receive_count(), "接收计数:1");
}

TEST(TerminalHelp, TakesThePlaceOfTheReceivedText) {
    Receiving bench;
    bench.say(bytes_of("text"));
    bench.run_for(60);
    bench.click(bench.s.comDebugHelp[0]);
    EXPECT_EQ(bench.received(), assistant_help);
    EXPECT_TRUE(bench.boxes().empty());
    bench.say(bytes_of("more"));
    bench.run_for(60);
    EXPECT_EQ(bench.received(), std::string(assistant_help) + "more");
}

TEST(TerminalHelp, IsPointedToFromTheOtherPage) {
    Receiving bench;
    bench.say(bytes_of("text"));
    bench.run_for(60);
    bench.click(bench.s.comDebugHelp[1]);
    ASSERT_EQ(bench.boxes().size(), 1u);
    EXPECT_EQ(bench.boxes()[0].text, "请点击串口调试助手，再点击串口调试助手中的“使用说明”按钮。");
    EXPECT_EQ(bench.received(), "text");
}

// ---- a fast line ----------------------------------------------------------------------------

// A target that talks for so long without a pause, at the highest rate of the list.
struct FastTerminal : TerminalBench {
    FastTerminal(bool hex, std::size_t seconds, Milliseconds latency)
        : TerminalBench(sim::TalkingConfig{.baud = 256000}),
          count(256000 / 10 * seconds),
          burst(sim::burst_bytes(sim::BurstKind::text, count)),
          expected(hex ? shown_as_hex(burst) : std::string(burst.begin(), burst.end())) {
        line.latency = latency;
        show_as_hex(hex);
        s.com_Debug_Baud.ListIndex = 0;
        click(s.com_Debug_Baud);
        say(burst);
    }

    std::size_t count;
    Bytes burst;
    std::string expected;  // all of it as shown
};

TEST(TerminalDisplay, LosesNothingOfAMinuteAtTheHighestRate) {
    for (const bool hex : {false, true}) {
        SCOPED_TRACE(hex);
        FastTerminal bench(hex, 60, Milliseconds(1));
        // All that was ever shown: each second's text, before it is trimmed away.
        std::size_t shown = 0;
        bool right = true;
        while (shown < bench.expected.size() && bench.elapsed_ms() < 70'000) {
            bench.run_for(200);
            const std::string text = std::exchange(bench.s.texReceive.Text, {});
            right = right && bench.expected.compare(shown, text.size(), text) == 0;
            shown += text.size();
        }
        EXPECT_TRUE(right);
        EXPECT_EQ(shown, bench.expected.size());
        EXPECT_LT(bench.elapsed_ms(), 61'500);
        EXPECT_EQ(bench.receive_count(), "接收计数:" + std::to_string(bench.count));
    }
}

TEST(TerminalDisplay, OfAFastLineHoldsItsNewestText) {
    for (const bool hex : {false, true}) {
        FastTerminal bench(hex, 10, Milliseconds(16));
        std::size_t longest = 0;
        while (bench.elapsed_ms() < 11'500) {
            bench.run_for(20);
            longest = std::max(longest, bench.received().size());
        }
        EXPECT_TRUE(bench.expected.ends_with(bench.received()));
        EXPECT_GE(bench.received().size(), 30720u);
        EXPECT_LE(longest, 65000u + 3 * 2000);
        EXPECT_EQ(bench.receive_count(), "接收计数:" + std::to_string(bench.count));
    }
}

// A tool that was held up (a file dialog of the system, a slow disk) for half a second.
TEST(TerminalDisplay, CatchesUpAfterItWasHeldUp) {
    Receiving bench;
    const Bytes burst = sim::burst_bytes(sim::BurstKind::text, 5000);
    bench.say(burst);
    bench.loop.let_line_run(bench.loop.now() + Milliseconds(500));
    bench.run_for(100);
    EXPECT_EQ(bench.received(), std::string(burst.begin(), burst.end()));
    EXPECT_EQ(bench.receive_count(), "接收计数:5000");
}

}  // namespace
}  // namespace vkm::test
