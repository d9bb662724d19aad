// What the terminal sends: texts, bytes, keys, and both cycles.
#include "terminal_bench.h"
#include "text/trimming.h"

namespace vkm::test {
namespace {

std::size_t writes(const TerminalHands& hands) {
    return hands.world.port.written.size();
}

// ---- text ------------------------------------------------------------------------------

TEST(SendingText, GoesOutUnchangedAndCountsCharacters) {
    const struct {
        std::string text;
        Bytes bytes;
        int count;
    } cases[] = {
        {"AT", bytes_of("AT"), 2},
        {"  blanks  ", bytes_of("  blanks  "), 10},
        {"a\r\nb\r\n", bytes_of("a\r\nb\r\n"), 6},
        {"12 34", bytes_of("12 34"), 5},
        {"串口", {0xB4, 0xAE, 0xBF, 0xDA}, 2},
        {"a串b", {'a', 0xB4, 0xAE, 'b'}, 3},
        {"\t", bytes_of("\t"), 1},
        {"", {}, 0},
    };
    for (const auto& c : cases) {
        TerminalBench bench;
        bench.send(c.text, false);
        bench.run_for(50);
        EXPECT_EQ(bench.written(), c.bytes) << c.text;
        EXPECT_EQ(bench.peer.heard_bytes(), c.bytes) << c.text;
        EXPECT_EQ(bench.send_count(), "发送计数:" + std::to_string(c.count)) << c.text;
        EXPECT_LE(writes(bench), 1u);
        EXPECT_EQ(bench.s.texSend.Text, c.text);
        expect_shown_open(bench);
    }
}

TEST(SendingText, ThatTheCodePageHasTooComesBackTheSame) {
    sim::TalkingConfig config;
    config.echo = true;
    TerminalBench bench(config);
    bench.send("温度: 25℃ ，电压 3.3V\r\n", false);
    bench.run_for(100);
    EXPECT_EQ(bench.received(), "温度: 25℃ ，电压 3.3V\r\n");
}

TEST(SendingText, AddsUpItsCounts) {
    TerminalBench bench;
    bench.send("abc", false);
    bench.send("12 34 AB CD FF", true);
    EXPECT_EQ(bench.send_count(), "发送计数:8");
    bench.send("串口", false);
    EXPECT_EQ(bench.send_count(), "发送计数:10");
    bench.frm.assistant.Send_Count = 0xFFFFFFFF;
    bench.send("xy", false);
    EXPECT_EQ(bench.send_count(), "发送计数:1");
}

// ---- hexadecimal --------------------------------------------------------------------------

TEST(SendingBytes, AreReadFromTheirDigitsAndGoOutInOneWrite) {
    const struct {
        std::string text;
        Bytes bytes;
    } cases[] = {
        {"12 34 AB CD FF", {0x12, 0x34, 0xAB, 0xCD, 0xFF}},
        {"1234", {0x12, 0x34}},
        {"1 2", {0x01, 0x02}},
        {"  ab cd  ", {0xAB, 0xCD}},
        {"00", {0x00}},
        {"7", {0x07}},
    };
    for (const auto& c : cases) {
        TerminalBench bench;
        bench.send(c.text, true);
        bench.run_for(50);
        EXPECT_EQ(bench.peer.heard_bytes(), c.bytes) << c.text;
        EXPECT_EQ(writes(bench), 1u);
        EXPECT_EQ(bench.send_count(), "发送计数:" + std::to_string(c.bytes.size())) << c.text;
        EXPECT_TRUE(bench.boxes().empty());
        EXPECT_EQ(bench.s.texSend.Text, c.text);
    }
}

TEST(SendingBytes, OfABlankTextIsNothing) {
    for (const std::string text : {"", " ", "      "}) {
        TerminalBench bench;
        bench.send(text, true);
        EXPECT_EQ(writes(bench), 0u);
        EXPECT_EQ(bench.send_count(), "发送计数:0");
        EXPECT_TRUE(bench.boxes().empty());
        expect_shown_open(bench);
    }
}

TEST(SendingBytes, AreAtMost4097) {
    TerminalBench bench;
    std::string text;
    for (int i = 0; i < 5000; ++i) text += "5A ";
    bench.send(text, true);
    EXPECT_EQ(writes(bench), 1u);
    EXPECT_EQ(bench.written().size(), 4097u);
    EXPECT_EQ(bench.send_count(), "发送计数:4097");
}

std::string hex_box_text(const std::string& at, const std::string& character) {
    return "           第 " + at + " 个字符有误: " + character +
           "  (计数包括空格数)\r\n\r\n"
           "请输入 HEX 格式数据: 0-9, A-F, a-f, 每 2 个字符之间隔 1 个空格，\r\n\r\n"
           "                如果自动发送已打开将会被关闭。";
}

void expect_one_hex_box(const TerminalBench& bench, const std::string& at,
                        const std::string& character) {
    ASSERT_EQ(bench.boxes().size(), 1u);
    EXPECT_EQ(bench.boxes()[0].kind, BoxKind::text);
    EXPECT_EQ(bench.boxes()[0].title, hex_box_title);
    EXPECT_EQ(bench.boxes()[0].text, hex_box_text(at, character));
    expect_cycles_stopped(bench);
}

TEST(SendingBytes, WithABadCharacterIsRefusedWithItsPlace) {
    const struct {
        std::string text, at, character;
    } cases[] = {{"1G", "2", "G"},       {"1g", "2", "G"},  {"   1G", "2", "G"},
                 {"12 中 G", "4", "中"}, {"中", "1", "中"}, {"12\r\n", "3", "␍"}};
    for (const auto& c : cases) {
        TerminalBench bench;
        bench.send(c.text, true);
        expect_one_hex_box(bench, c.at, c.character);
        EXPECT_EQ(writes(bench), 0u);
        EXPECT_EQ(bench.send_count(), "发送计数:0");
        EXPECT_EQ(bench.s.texSend.Text, c.text);
        expect_shown_open(bench);
    }
}

TEST(SendingBytes, WithABadCharacterEndsBothCyclesBeforeItsOnlyBox) {
    for (const bool in_list : {false, true}) {
        TerminalBench bench;
        bench.dialogs.stays = Milliseconds(2000);
        bench.s.texSend.Text = in_list ? "12" : "1G";
        bench.send_as_hex(true);
        bench.fill(4, in_list ? "1G" : "34", true);
        bench.start_cycle("100");
        bench.start_spread("110");
        bool looked = false;
        bench.at(1000, [&] {
            looked = bench.dialogs.open_boxes == 1;
            expect_cycles_stopped(bench);
        });
        bench.run_for(5000);
        EXPECT_TRUE(looked);
        expect_one_hex_box(bench, "2", "G");
        EXPECT_EQ(writes(bench), in_list ? 1u : 0u);
    }
}

TEST(SendingBytes, StartsNoJobBehindItsBox) {
    TerminalBench bench;
    bench.dialogs.stays = Milliseconds(500);
    bench.frm.images.File_Loaded = true;
    bench.at(100, [&] { bench.click(bench.s.comDownload[0]); });
    bench.send("1G", true);
    EXPECT_EQ(bench.frm.session.Result, Job_Result::none);
    expect_shown_open(bench);
    EXPECT_FALSE(bench.frm.session.Running);
}

TEST(SendingBytes, WithoutAPortTellsOnlyOfThePort) {
    TerminalBench bench;
    bench.port.present.clear();
    bench.send("1G", true);
    ASSERT_EQ(bench.boxes().size(), 1u);
    EXPECT_EQ(bench.boxes()[0].title, port_box_title);
}

// ---- the port ----------------------------------------------------------------------------

TEST(Sending, OpensTheClosedPortFirst) {
    for (const int way : {0, 1, 2}) {
        TerminalBench bench;
        bench.s.texSend.Text = "x";
        bench.fill(0, "x");
        Control* const buttons[] = {&bench.s.comDebugSend, &bench.s.comSpreadSendCom[0],
                                    &bench.s.comDebugContinue};
        bench.click(*buttons[way]);
        expect_shown_open(bench);
        EXPECT_EQ(writes(bench), 1u);
        bench.click(*buttons[way]);
        EXPECT_EQ(bench.port.openings, 1);
        EXPECT_EQ(writes(bench), 2u);
    }
}

TEST(Sending, ToAPortThatCantBeOpenedSendsAndCountsNothing) {
    TerminalBench bench;
    bench.port.present.clear();
    bench.send("x", false);
    bench.send("12", true);
    bench.fill(5, "x");
    bench.click(bench.s.comSpreadSendCom[5]);
    EXPECT_EQ(bench.boxes().size(), 3u);
    EXPECT_EQ(bench.send_count(), "发送计数:0");
    EXPECT_EQ(writes(bench), 0u);
    expect_shown_closed(bench);
}

TEST(Sending, ClearsOnlyItsText) {
    TerminalBench bench;
    bench.send("abc", false);
    bench.s.texReceive.Text = "received";
    bench.click(bench.s.comClearSend);
    EXPECT_EQ(bench.s.texSend.Text, "");
    EXPECT_EQ(bench.s.texSend.SelStart, 0);
    EXPECT_EQ(bench.received(), "received");
    EXPECT_EQ(bench.send_count(), "发送计数:3");
}

// ---- keys ----------------------------------------------------------------------------------

TEST(TerminalKeys, SendEachItsCharacterAtOnce) {
    TerminalBench bench;
    bench.open();
    int count = 0;
    Bytes expected;
    for (int code = 0; code < 128; ++code) {
        bench.press(std::string(1, static_cast<char>(code)));
        if (code != '\r' && code != '\n') {
            ++count;
            expected.push_back(static_cast<std::uint8_t>(code));
        }
        EXPECT_EQ(bench.send_count(), "发送计数:" + std::to_string(count)) << code;
    }
    bench.run_for(100);
    EXPECT_EQ(bench.peer.heard_bytes(), expected);
    EXPECT_EQ(writes(bench), expected.size());
    EXPECT_EQ(bench.received(), "") << "what is sent is not shown";
}

TEST(TerminalKeys, ThatAreNoAsciiCharacterSendNothing) {
    TerminalBench bench;
    bench.open();
    for (const std::string key : {"", "中", "é", "𝄞", "\r\n", "ab", "\x80", "\xFF"})
        bench.press(key);
    EXPECT_EQ(writes(bench), 0u);
    EXPECT_EQ(bench.frm.assistant.Send_Count, 0u);
}

TEST(TerminalKeys, OfAClosedPortSendNothingAndOpenNothing) {
    TerminalBench bench;
    bench.press("a");
    EXPECT_EQ(bench.port.opens, 0);
    EXPECT_EQ(bench.frm.assistant.Send_Count, 0u);
    bench.open();
    bench.press("b");
    bench.click(bench.s.comOpenCOM);
    bench.press("c");
    EXPECT_EQ(bench.written(), bytes_of("b"));
    EXPECT_EQ(bench.send_count(), "发送计数:1");
}

// ---- the cycle of one text ----------------------------------------------------------------

TEST(AutoSend, SendsTheTextAtEachTickUntilItIsClickedAgain) {
    TerminalBench bench;
    bench.s.texSend.Text = "x";
    EXPECT_EQ(bench.s.texSendCycle.Text, "1000");
    EXPECT_EQ(bench.s.comAutoSend.Caption, auto_caption);
    bench.click(bench.s.comAutoSend);
    EXPECT_EQ(bench.s.comAutoSend.Caption, auto_stop_caption);
    EXPECT_EQ(bench.frm.timers.TimerDebugAutoSend.Interval, 1000);
    EXPECT_EQ(bench.port.opens, 0) << "the first tick opens it";
    const Instant start = bench.loop.now();
    bench.run_for(3500);
    bench.click(bench.s.comAutoSend);
    expect_cycles_stopped(bench);
    bench.run_for(3000);
    ASSERT_EQ(writes(bench), 3u);
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(bench.port.written[static_cast<std::size_t>(i)].at,
                  start + Milliseconds(1000 * (i + 1)));
    EXPECT_EQ(bench.port.openings, 1);
    EXPECT_EQ(bench.send_count(), "发送计数:3");
    expect_shown_open(bench);
}

TEST(AutoSend, FollowsWhatTheOperatorChangesMeanwhile) {
    TerminalBench bench;
    bench.s.texSend.Text = "41";
    bench.start_cycle("100");
    bench.run_for(150);
    bench.send_as_hex(true);
    bench.run_for(100);
    bench.s.texSend.Text = "42";
    bench.run_for(100);
    EXPECT_EQ(bench.written(), (Bytes{'4', '1', 0x41, 0x42}));
}

struct CycleValue {
    const char* typed;
    int interval;  // ms, 0 when it is refused
    const char* then;
};

constexpr CycleValue cycle_values[] = {
    {"1000", 1000, "1000"},
    {"1", 1, "1"},
    {"65535", 65535, "65535"},
    {" 250 ms", 250, " 250 ms"},
    {"1.4", 1, "1.4"},
    {"2.6", 3, "2.6"},
    {"65536", 65535, "65535"},
    {"99999999999", 65535, "65535"},
    {"0", 0, "0"},
    {"0.4", 0, "0.4"},
    {"0.6", 0, "0.6"},
    {"0.999", 0, "0.999"},
    {"-5", 0, "-5"},
    {"", 0, ""},
    {"text", 0, "text"},
    {"中文", 0, "中文"},
};

struct CycleControls {
    Control& field;
    Control& button;
    Timer& timer;
    std::string stop_caption;
    std::string too_short;
};

// One that is refused opens no port.
void expect_taken(TerminalBench& bench, const CycleValue& c, const CycleControls& cycle) {
    SCOPED_TRACE(c.typed);
    cycle.field.Text = c.typed;
    bench.click(cycle.button);
    EXPECT_EQ(cycle.timer.Enabled, c.interval != 0);
    EXPECT_EQ(cycle.field.Text, c.then);
    if (c.interval != 0) {
        EXPECT_EQ(cycle.timer.Interval, c.interval);
        EXPECT_EQ(cycle.button.Caption, cycle.stop_caption);
        EXPECT_TRUE(bench.boxes().empty());
    } else {
        expect_cycles_stopped(bench);
        ASSERT_EQ(bench.boxes().size(), 1u);
        EXPECT_EQ(bench.boxes()[0].text, cycle.too_short);
        EXPECT_EQ(bench.port.opens, 0);
    }
}

TEST(AutoSend, TakesACycleFrom1To65535) {
    for (const CycleValue& c : cycle_values) {
        TerminalBench bench;
        expect_taken(bench, c,
                     {bench.s.texSendCycle, bench.s.comAutoSend,
                      bench.frm.timers.TimerDebugAutoSend, auto_stop_caption, "自动发送周期太小"});
    }
}

TEST(SpreadSend, TakesACycleFrom1To65535) {
    for (const CycleValue& c : cycle_values) {
        TerminalBench bench;
        expect_taken(bench, c,
                     {bench.s.texSpreadSendCycle, bench.s.comSpreadAutoSend,
                      bench.frm.timers.TimerSpreadAutoSend, spread_stop_caption, "间隔时间太短"});
    }
}

TEST(AutoSend, RunsBesideTheCycleOfTheList) {
    TerminalBench bench;
    bench.s.texSend.Text = "a";
    bench.fill(0, "b");
    bench.start_cycle("100");
    bench.start_spread("250");
    bench.run_for(1050);
    EXPECT_EQ(bench.written().size(), 10u + 4u);
    bench.click(bench.s.comAutoSend);
    EXPECT_EQ(bench.s.comSpreadAutoSend.Caption, spread_stop_caption);
    bench.run_for(1000);
    EXPECT_EQ(bench.written().size(), 10u + 8u);
}

TEST(AutoSend, OpensThePortAnewWhenItIsClickedBehindAClose) {
    TerminalBench bench;
    bench.s.texSend.Text = "x";
    bench.start_cycle("100");
    bench.run_for(150);
    bench.click(bench.s.comOpenCOM);
    bench.run_for(500);
    expect_shown_closed(bench);
    bench.click(bench.s.comAutoSend);
    bench.run_for(150);
    expect_shown_open(bench);
    EXPECT_EQ(bench.written(), bytes_of("xx"));
}

TEST(AutoSend, FasterThanTheWireDoesNotPileUpBytes) {
    for (const bool in_list : {false, true}) {
        TerminalBench bench;
        ASSERT_TRUE(choose_text(bench.s.com_Debug_Baud, "600"));
        const std::string text(30, 'x');  // half a second
        bench.s.texSend.Text = text;
        bench.fill(0, text);
        in_list ? bench.start_spread("1") : bench.start_cycle("1");
        std::size_t most = 0;
        for (int i = 0; i < 200; ++i) {
            bench.run_for(100);
            most = std::max(most, bench.port.output_count());
        }
        // A second's worth and what one tick adds to it.
        EXPECT_LE(most, 60u + 30u);
        // And the wire has never been idle.
        EXPECT_GE(bench.peer.heard().size(), 20u * 60u - 5u);
        const double before = bench.elapsed_ms();
        bench.click(bench.s.comOpenCOM);
        EXPECT_LE(bench.elapsed_ms() - before, 1050);
    }
}

// ---- the list ------------------------------------------------------------------------------

struct ListBench : TerminalBench {
    explicit ListBench(const std::vector<std::size_t>& filled) {
        for (const std::size_t element : filled) fill(element, letter(element));
    }
    static std::string letter(std::size_t element) {
        return std::string(1, static_cast<char>('a' + element));
    }
    // Which elements so many ticks send, each by its letter.
    std::string ticks(int count) {
        const std::size_t before = writes(*this);
        start_spread("100");
        run_for(count * 100 + 50);
        if (s.comSpreadAutoSend.Caption == spread_stop_caption) click(s.comSpreadAutoSend);
        std::string sent;
        for (std::size_t i = before; i < port.written.size(); ++i)
            sent.append(port.written[i].bytes.begin(), port.written[i].bytes.end());
        return sent;
    }
};

TEST(SpreadSend, EachButtonSendsItsElement) {
    TerminalBench bench;
    for (std::size_t i = 0; i < 25; ++i) {
        bench.fill(i, i % 2 ? "4" + std::to_string(i % 10) : "串" + std::to_string(i), i % 2 == 1);
        EXPECT_EQ(bench.s.comSpreadSendCom[i].Caption, std::to_string(i));
    }
    std::uint32_t count = 0;
    for (std::size_t i = 0; i < 25; ++i) {
        bench.click(bench.s.comSpreadSendCom[i]);
        const Bytes& sent = bench.port.written.back().bytes;
        ASSERT_EQ(writes(bench), i + 1);
        if (i % 2) {
            EXPECT_EQ(sent, Bytes{static_cast<std::uint8_t>(0x40 + i % 10)});
            count += 1;
        } else {
            Bytes expected = {0xB4, 0xAE};
            for (const char c : std::to_string(i)) expected.push_back(static_cast<std::uint8_t>(c));
            EXPECT_EQ(sent, expected);
            count += static_cast<std::uint32_t>(expected.size()) - 1;
        }
        EXPECT_EQ(bench.frm.assistant.Spread_Index, static_cast<std::int16_t>(i + 1));
        EXPECT_EQ(bench.send_count(), "发送计数:" + std::to_string(count));
    }
}

TEST(SpreadSend, SendsOneFilledElementAtEachTickRoundAndRound) {
    ListBench bench({0, 1, 5, 24});
    EXPECT_EQ(bench.ticks(9), "abfyabfya");
}

TEST(SpreadSend, TicksAtItsInterval) {
    ListBench bench({2});
    const Instant start = bench.loop.now();
    bench.start_spread("250");
    bench.run_for(1100);
    ASSERT_EQ(writes(bench), 4u);
    for (int i = 0; i < 4; ++i)
        EXPECT_EQ(bench.port.written[static_cast<std::size_t>(i)].at,
                  start + Milliseconds(250 * (i + 1)));
}

TEST(SpreadSend, GoesOnBehindTheElementThatWasClicked) {
    ListBench bench({0, 1, 2, 3, 4, 5});
    bench.click(bench.s.comSpreadSendCom[3]);
    EXPECT_EQ(bench.ticks(4), "efab");
    // Also while it runs.
    bench.start_spread("100");
    bench.run_for(150);
    bench.click(bench.s.comSpreadSendCom[0]);
    bench.run_for(100);
    EXPECT_EQ(bench.port.written.back().bytes, bytes_of("b"));
}

TEST(SpreadSend, BeginsAgainBehindTheLastElement) {
    ListBench bench({0, 24});
    bench.click(bench.s.comSpreadSendCom[24]);
    EXPECT_EQ(bench.frm.assistant.Spread_Index, 25);
    EXPECT_EQ(bench.ticks(3), "aya");
}

TEST(SpreadSend, WithASingleFilledElementSendsItAtEachTick) {
    for (const std::size_t only : {0u, 3u, 24u}) {
        ListBench bench({only});
        EXPECT_EQ(bench.ticks(5), std::string(5, static_cast<char>('a' + only)));
    }
}

TEST(SpreadSend, TakesAnIndexOutOfRangeFor0) {
    for (const int index : {-1, -32768, 25, 26, 32767}) {
        ListBench bench({0, 1});
        bench.frm.assistant.Spread_Index = static_cast<std::int16_t>(index);
        EXPECT_EQ(bench.ticks(3), "aba") << index;
    }
}

TEST(SpreadSend, PassesOverBlankElements) {
    ListBench bench({2, 4});
    bench.fill(0, "   ");
    bench.fill(3, " ", true);
    EXPECT_EQ(bench.ticks(4), "cece");
    EXPECT_TRUE(bench.boxes().empty());
}

TEST(SpreadSend, OfABlankListStopsByItself) {
    for (const int index : {0, 7, 25}) {
        ListBench bench({});
        bench.fill(8, "  ");
        bench.frm.assistant.Spread_Index = static_cast<std::int16_t>(index);
        bench.start_cycle("1000");
        bench.start_spread("100");
        bench.run_for(99);
        EXPECT_EQ(bench.s.comSpreadAutoSend.Caption, spread_stop_caption);
        bench.run_for(2);
        EXPECT_EQ(bench.s.comSpreadAutoSend.Caption, spread_caption);
        EXPECT_FALSE(bench.frm.timers.TimerSpreadAutoSend.Enabled);
        EXPECT_EQ(bench.s.comAutoSend.Caption, auto_stop_caption) << "only its own cycle";
        EXPECT_TRUE(bench.boxes().empty());
        EXPECT_EQ(bench.port.opens, 0);
    }
}

TEST(SpreadSend, StopsOnceItsElementsHaveBeenEmptied) {
    ListBench bench({0, 1});
    bench.start_spread("100");
    bench.run_for(150);
    bench.s.texSpreadSend[0].Text.clear();
    bench.s.texSpreadSend[1].Text.clear();
    bench.run_for(150);
    expect_cycles_stopped(bench);
    EXPECT_EQ(bench.written(), bytes_of("a"));
}

TEST(SpreadSend, OfAnEmptyElementByItsButtonStillSetsThePlace) {
    ListBench bench({0, 3, 4});
    bench.click(bench.s.comSpreadSendCom[3]);
    bench.click(bench.s.comSpreadSendCom[1]);
    EXPECT_EQ(bench.written(), bytes_of("d"));
    EXPECT_EQ(bench.ticks(3), "dea");
}

}  // namespace
}  // namespace vkm::test
