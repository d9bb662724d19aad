// The terminal opens and closes the port: with which settings, what is seen of it, and
// what happens when it can't or the device goes.
#include "terminal_bench.h"

namespace vkm::test {
namespace {

TEST(TerminalPort, IsClosedAtTheStart) {
    TerminalBench bench;
    expect_shown_closed(bench);
    EXPECT_EQ(bench.port.opens, 0);
    EXPECT_EQ(bench.receive_count(), "接收计数:0");
    EXPECT_EQ(bench.send_count(), "发送计数:0");
    EXPECT_EQ(bench.s.optReceiveHex[1].Value, 0);
    EXPECT_EQ(bench.s.optHexSend[1].Value, 0);
    EXPECT_EQ(bench.s.che_AutoOpenPort.Value, 0);
}

TEST(TerminalPort, HasItsListsInTheirOrder) {
    TerminalBench bench;
    const auto texts = [](const Control& list) {
        std::string all;
        for (const Entry& entry : list.List) all += entry.Text + ' ';
        return all;
    };
    EXPECT_EQ(texts(bench.s.com_Debug_COM),
              "COM1 COM2 COM3 COM4 COM5 COM6 COM7 COM8 COM9 COM10 COM11 COM12 COM13 COM14 COM15 "
              "COM16 ");
    EXPECT_EQ(texts(bench.s.com_Debug_Baud),
              "256000 128000 115200 57600 38400 28800 19200 14400 12800 11520 9600 4800 2400 1200 "
              "600 ");
    EXPECT_EQ(texts(bench.s.com_Debug_ParityCheck), "Even Odd None ");
}

// The button, either picture, and the choice of a rate.
TEST(TerminalPort, OpensAndClosesByEachOfItsControls) {
    for (const int way : {0, 1, 2}) {
        SCOPED_TRACE(way);
        TerminalBench bench;
        Control* const opener[] = {&bench.s.comOpenCOM, &bench.s.imgNotOpen,
                                   &bench.s.com_Debug_Baud};
        Control* const closer[] = {&bench.s.comOpenCOM, &bench.s.imgOpen, &bench.s.com_Debug_Baud};
        for (const int round : {1, 2}) {
            bench.click(*opener[way]);
            expect_shown_open(bench);
            EXPECT_EQ(bench.port.openings, round);
            bench.run_for(50);
            bench.click(*closer[way]);
            expect_shown_closed(bench);
            EXPECT_EQ(bench.port.closings, round);
        }
        EXPECT_TRUE(bench.boxes().empty());
    }
}

TEST(TerminalPort, StaysAsItIsUnderThePictureOfWhatItIs) {
    TerminalBench bench;
    bench.click(bench.s.imgOpen);
    expect_shown_closed(bench);
    bench.open();
    bench.say(bytes_of("x"));
    bench.click(bench.s.imgNotOpen);
    expect_shown_open(bench);
    EXPECT_EQ(bench.port.opens, 1);
    EXPECT_EQ(bench.port.closings, 0);
    EXPECT_TRUE(bench.boxes().empty());
}

TEST(TerminalPort, IsTheDefaultOneWithoutAChoice) {
    TerminalBench bench;
    bench.open();
    EXPECT_EQ(bench.port.settings_in_force, std::vector<std::string>{"115200,N,8,1"});
    EXPECT_EQ(bench.port.port_number(), 1);
}

TEST(TerminalPort, IsOpenedWithWhatEveryListSays) {
    const char letters[] = {'E', 'O', 'N'};
    const std::string bauds[] = {"256000", "128000", "115200", "57600", "38400",
                                 "28800",  "19200",  "14400",  "12800", "11520",
                                 "9600",   "4800",   "2400",   "1200",  "600"};
    const std::string bits[] = {"8", "7", "6", "5"};
    const std::string stops[] = {"1", "2"};
    TerminalBench bench;
    Screen& s = bench.s;
    ASSERT_EQ(s.com_Debug_Baud.List.size(), std::size(bauds));
    ASSERT_EQ(s.com_Debug_ParityCheck.List.size(), std::size(letters));
    ASSERT_EQ(s.com_Debug_DataBits.List.size(), std::size(bits));
    ASSERT_EQ(s.com_Debug_StopBits.List.size(), std::size(stops));
    const auto expect_settings = [&](const std::string& expected) {
        bench.click(s.comOpenCOM);
        EXPECT_EQ(bench.port.settings(), expected);
        EXPECT_EQ(bench.port.settings_in_force.back(), expected);
        expect_shown_open(bench);
        bench.click(s.comOpenCOM);
    };
    for (std::size_t i = 0; i < std::size(bauds); ++i) {
        s.com_Debug_Baud.ListIndex = static_cast<std::int32_t>(i);
        expect_settings(bauds[i] + ",N,8,1");
    }
    s.com_Debug_Baud.ListIndex = 10;
    for (std::size_t p = 0; p < std::size(letters); ++p)
        for (std::size_t b = 0; b < std::size(bits); ++b)
            for (std::size_t t = 0; t < std::size(stops); ++t) {
                s.com_Debug_ParityCheck.ListIndex = static_cast<std::int32_t>(p);
                s.com_Debug_DataBits.ListIndex = static_cast<std::int32_t>(b);
                s.com_Debug_StopBits.ListIndex = static_cast<std::int32_t>(t);
                expect_settings(std::string("9600,") + letters[p] + ',' + bits[b] + ',' + stops[t]);
            }
    EXPECT_TRUE(bench.boxes().empty());
}

TEST(TerminalPort, TakesOverFromWhoeverHadItBefore) {
    TerminalBench bench;
    bench.frm.link.demo_mode = true;
    bench.open();
    expect_shown_open(bench);
    bench.say(bytes_of("x"));
    bench.run_for(50);
    EXPECT_EQ(bench.received(), "x");
}

TEST(TerminalPort, TrimsWhatItsListsSay) {
    TerminalBench bench;
    bench.s.com_Debug_Baud.List[2].Text = "  115200 ";
    bench.s.com_Debug_ParityCheck.List[2].Text = "  none ";
    bench.s.com_Debug_DataBits.List[0].Text = " 8 ";
    bench.s.com_Debug_StopBits.List[0].Text = " 1 ";
    bench.open();
    EXPECT_EQ(bench.port.settings(), "115200,n,8,1");
}

TEST(TerminalPort, TakesTheNumberOfItsOwnList) {
    TerminalBench bench;
    for (int number = 1; number <= 16; ++number) bench.port.plug(number);
    bench.s.combCommPort.ListIndex = 6;
    for (int number = 16; number >= 1; --number) {
        bench.s.com_Debug_COM.ListIndex = number - 1;
        bench.click(bench.s.comOpenCOM);
        EXPECT_TRUE(bench.port.is_open());
        EXPECT_EQ(bench.port.port_number(), number);
        // The picture beside the download's list follows when that names the same port.
        EXPECT_EQ(bench.s.imgOpen_sys.Visible, number == 7) << number;
        EXPECT_EQ(bench.s.imgNotOpen_sys.Visible, number != 7) << number;
        bench.click(bench.s.comOpenCOM);
        expect_shown_closed(bench);
    }
    EXPECT_EQ(bench.s.combCommPort.ListIndex, 6);
}

TEST(TerminalPort, ClosesAnotherOneThatStandsOpen) {
    TerminalBench bench;
    bench.port.plug(3);
    bench.port.open();  // COM1, by nobody that closed it again
    bench.s.com_Debug_COM.ListIndex = 2;
    bench.click(bench.s.comOpenCOM);
    expect_shown_open(bench);
    EXPECT_EQ(bench.port.port_number(), 3);
    EXPECT_EQ(bench.port.closings, 1);
    EXPECT_TRUE(bench.boxes().empty());
}

TEST(TerminalPort, TurnsTheDownloadsPictureBackWhenItsListHasMovedMeanwhile) {
    TerminalBench bench;
    bench.open();
    EXPECT_TRUE(bench.s.imgOpen_sys.Visible);
    bench.s.com_Debug_COM.ListIndex = 4;
    bench.click(bench.s.comOpenCOM);
    expect_shown_closed(bench);
}

// ---- failures ------------------------------------------------------------------------

void expect_one_port_box(const TerminalBench& bench, const std::string& text) {
    ASSERT_EQ(bench.boxes().size(), 1u);
    EXPECT_EQ(bench.boxes()[0].kind, BoxKind::warning);
    EXPECT_EQ(bench.boxes()[0].title, port_box_title);
    EXPECT_EQ(bench.boxes()[0].text, text);
    expect_shown_closed(bench);
    expect_cycles_stopped(bench);
    EXPECT_FALSE(bench.frm.session.Running);
}

TEST(TerminalPort, ThatIsMissingOrTakenIsToldOnceAndCanBeTriedAgain) {
    for (const int error : {error_missing, error_denied, error_busy, error_refused}) {
        SCOPED_TRACE(error);
        TerminalBench bench;
        bench.port.open_error[1] = error;
        bench.click(bench.s.comOpenCOM);
        bench.run_for(200);
        expect_one_port_box(bench, "COM1: error " + std::to_string(error));
        bench.port.open_error.clear();
        bench.click(bench.s.comOpenCOM);
        expect_shown_open(bench);
        EXPECT_EQ(bench.boxes().size(), 1u);
    }
}

TEST(TerminalPort, WithoutAReasonIsToldAllTheSame) {
    struct SilentPort final : ForwardingPort {
        using ForwardingPort::ForwardingPort;
        std::string reason_text() const override { return {}; }
    };
    VirtualPlatform world;
    SilentPort silent(world.faults);
    frmMain frm({world.loop, world.wall_clock, silent, world.settings, world.dialogs, world.files,
                 world.sounder, world.code_page});
    start_program(frm);
    world.port.present.clear();
    handle_event(frm, {&frm.screen.comOpenCOM, EventKind::Click, 0, {}});
    ASSERT_EQ(world.dialogs.boxes.size(), 1u);
    EXPECT_EQ(world.dialogs.boxes[0].text, "串口不能打开 / The port can't be opened");
}

TEST(TerminalPort, WithSettingsThatTheDeviceRefusesIsTold) {
    TerminalBench bench;
    bench.port.refused_baud.insert(256000);
    bench.s.com_Debug_Baud.ListIndex = 0;
    bench.click(bench.s.com_Debug_Baud);
    bench.run_for(200);
    expect_one_port_box(bench, "COM1: error 22");
    bench.s.com_Debug_Baud.ListIndex = 1;
    bench.click(bench.s.com_Debug_Baud);
    expect_shown_open(bench);
}

TEST(TerminalPort, WithNothingChosenInAListOrAStaleIndexIsTold) {
    for (const std::int32_t index : {-1, 40, 15, std::numeric_limits<std::int32_t>::max(),
                                     std::numeric_limits<std::int32_t>::min()}) {
        for (Control Screen::*list : {&Screen::com_Debug_Baud, &Screen::com_Debug_ParityCheck,
                                      &Screen::com_Debug_DataBits, &Screen::com_Debug_StopBits}) {
            TerminalBench bench;
            (bench.s.*list).ListIndex = index;
            bench.click(bench.s.comOpenCOM);
            bench.run_for(200);
            SCOPED_TRACE((bench.s.*list).Name);
            expect_one_port_box(bench, "COM1: no such settings");
            EXPECT_EQ(bench.port.opens, 0);
        }
    }
}

TEST(TerminalPort, WithANumberThatNoPortHasIsTold) {
    for (const std::int32_t index : {-1, 40, 15, -2, std::numeric_limits<std::int32_t>::max(),
                                     std::numeric_limits<std::int32_t>::min()}) {
        SCOPED_TRACE(index);
        TerminalBench bench;
        bench.s.com_Debug_COM.ListIndex = index;
        bench.start_cycle("100");
        bench.run_for(1000);
        ASSERT_EQ(bench.boxes().size(), 1u);
        EXPECT_EQ(bench.boxes()[0].title, port_box_title);
        expect_shown_closed(bench);
        expect_cycles_stopped(bench);
        bench.s.com_Debug_COM.ListIndex = 0;
        bench.click(bench.s.comOpenCOM);
        expect_shown_open(bench);
    }
}

TEST(TerminalPort, ThatCantBeOpenedEndsBothCyclesBeforeItsBox) {
    TerminalBench bench;
    bench.port.present.clear();
    bench.dialogs.stays = Milliseconds(2000);
    bench.fill(3, "x");
    bench.start_cycle("50");
    bench.start_spread("70");
    bool looked = false;
    bench.at(1000, [&] {
        looked = bench.dialogs.open_boxes == 1;
        expect_cycles_stopped(bench);
    });
    bench.run_for(4000);
    EXPECT_TRUE(looked);
    expect_one_port_box(bench, "COM1: error 2");
    EXPECT_EQ(bench.port.opens, 1);
}

TEST(TerminalPort, StartsNoJobBehindTheBoxOfItsFailure) {
    TerminalBench bench;
    bench.port.present.clear();
    bench.dialogs.stays = Milliseconds(500);
    bench.frm.images.File_Loaded = true;
    bench.at(100, [&] { bench.click(bench.s.comDownload[0]); });
    bench.click(bench.s.comOpenCOM);
    EXPECT_EQ(bench.port.opens, 1);
    EXPECT_EQ(bench.frm.session.Result, Job_Result::none);
}

// ---- closing ------------------------------------------------------------------------------

TEST(TerminalPort, EndsBothCyclesAsItCloses) {
    for (const int way : {0, 1, 2}) {
        TerminalBench bench;
        bench.fill(0, "x");
        bench.open();
        bench.start_cycle("100");
        bench.start_spread("100");
        bench.run_for(350);
        const std::size_t writes = bench.port.written.size();
        EXPECT_EQ(writes, 6u);
        Control* const closer[] = {&bench.s.comOpenCOM, &bench.s.imgOpen, &bench.s.com_Debug_Baud};
        bench.click(*closer[way]);
        expect_shown_closed(bench);
        expect_cycles_stopped(bench);
        bench.run_for(1000);
        EXPECT_EQ(bench.port.written.size(), writes);
        EXPECT_EQ(bench.port.openings, 1);
        EXPECT_TRUE(bench.boxes().empty());
    }
}

TEST(TerminalPort, LetsAShortTextLeaveBeforeItCloses) {
    TerminalBench bench;
    bench.send("0123456789", false);
    bench.click(bench.s.comOpenCOM);
    EXPECT_EQ(bench.peer.heard_bytes(), bytes_of("0123456789"));
    expect_shown_closed(bench);
}

TEST(TerminalPort, DropsALongTextRatherThanStandStill) {
    TerminalBench bench;
    ASSERT_TRUE(choose_text(bench.s.com_Debug_Baud, "600"));
    bench.send(std::string(10'000, 'x'), false);
    bench.run_for(100);
    const double before = bench.elapsed_ms();
    bench.click(bench.s.comOpenCOM);
    EXPECT_LE(bench.elapsed_ms() - before, 1050);
    expect_shown_closed(bench);
}

TEST(TerminalPort, TakesInWhatHasArrivedBeforeItCloses) {
    TerminalBench bench;
    bench.line.latency = Milliseconds(16);
    bench.open();
    // Handed on in the very turn in which the operator clicks.
    const Bytes bytes = bytes_of("last words");
    bench.say(bytes);
    const auto since = bench.loop.now().time_since_epoch();
    const Microseconds turn = Milliseconds(16);
    bench.loop.at(Instant(since - since % turn + turn), [&] { bench.click(bench.s.comOpenCOM); });
    bench.run_for(200);
    expect_shown_closed(bench);
    EXPECT_EQ(bench.received(), "last words");
    EXPECT_EQ(bench.receive_count(), "接收计数:10");
}

TEST(TerminalPort, ShowsWhatItHasReceivedAfterItHasClosed) {
    for (const bool hex : {false, true}) {
        TerminalBench bench;
        bench.show_as_hex(hex);
        bench.open();
        bench.say(bytes_of("AB"));
        bench.run_for(5);
        EXPECT_EQ(bench.received(), "");
        bench.click(bench.s.comOpenCOM);
        bench.run_for(100);
        EXPECT_EQ(bench.received(), hex ? "41 42 " : "AB");
    }
}

TEST(TerminalPort, HearsNothingWhileItIsClosed) {
    TerminalBench bench;
    bench.say(bytes_of("before"));
    bench.run_for(50);
    bench.open();
    bench.say(bytes_of("open"));
    bench.run_for(50);
    bench.click(bench.s.comOpenCOM);
    bench.say(bytes_of("behind"));
    bench.run_for(100);
    EXPECT_EQ(bench.received(), "open");
    EXPECT_EQ(bench.receive_count(), "接收计数:4");
}

// ---- a device that goes ------------------------------------------------------------------

TEST(TerminalPort, WhoseDeviceGoesTurnsBackSilentlyWhenNothingIsBeingSent) {
    for (const bool hex : {false, true}) {
        TerminalBench bench;
        bench.show_as_hex(hex);
        bench.open();
        bench.say(bytes_of("A"));
        bench.at(10, [&] { bench.port.unplug(); });
        bench.run_for(500);
        expect_shown_closed(bench);
        expect_cycles_stopped(bench);
        EXPECT_TRUE(bench.boxes().empty());
        EXPECT_EQ(bench.received(), hex ? "41 " : "A");
        EXPECT_FALSE(bench.frm.session.Running);
    }
}

TEST(TerminalPort, WhoseDeviceGoesUnderACycleIsToldOnce) {
    const struct {
        bool single, spread, hex;
    } modes[] = {{true, false, false}, {true, false, true}, {false, true, false},
                 {false, true, true},  {true, true, false}, {true, true, true}};
    for (const auto& mode : modes) {
        SCOPED_TRACE(testing::Message() << mode.single << mode.spread << mode.hex);
        // At any place between two ticks, at a tick's own time, and with bytes on the wire.
        for (const int moment : {499, 500, 501, 510, 533, 550}) {
            TerminalBench bench;
            bench.s.texSend.Text = "12 34";
            bench.send_as_hex(mode.hex);
            bench.fill(7, "56 78", mode.hex);
            if (mode.single) bench.start_cycle("50");
            if (mode.spread) bench.start_spread("50");
            bench.at(moment, [&] { bench.port.unplug(); });
            bench.run_for(3000);
            expect_one_port_box(bench, "COM1: unplugged");
            EXPECT_EQ(bench.port.opens, 1);
            // Sending again opens anew, once the device is there again.
            bench.port.plug(1);
            bench.send("x", false);
            expect_shown_open(bench);
            EXPECT_EQ(bench.boxes().size(), 1u);
        }
    }
}

TEST(TerminalPort, WhoseDeviceGoesStartsNoJobBehindItsBox) {
    TerminalBench bench;
    bench.dialogs.stays = Milliseconds(500);
    bench.frm.images.File_Loaded = true;
    bench.start_cycle("50");
    bench.at(500, [&] { bench.port.unplug(); });
    bool looked = false;
    bench.at(700, [&] {
        looked = bench.dialogs.open_boxes == 1;
        bench.click(bench.s.comDownload[0]);
    });
    bench.run_for(2000);
    EXPECT_TRUE(looked);
    expect_one_port_box(bench, "COM1: unplugged");
    EXPECT_EQ(bench.frm.session.Result, Job_Result::none);
    EXPECT_EQ(bench.port.opens, 1);
}

TEST(TerminalPort, CountsNothingThatTheVanishedDeviceCantTake) {
    TerminalBench bench;
    bench.open();
    bench.send("abc", false);
    EXPECT_EQ(bench.send_count(), "发送计数:3");
    bench.run_for(20);
    // Before anything has noticed that it is gone.
    bench.port.unplug();
    bench.press("k");
    bench.click(bench.s.comDebugSend);
    bench.click(bench.s.comSpreadSendCom[0]);
    EXPECT_EQ(bench.send_count(), "发送计数:3");
    bench.run_for(20);
    expect_shown_closed(bench);
    bench.press("k");
    EXPECT_EQ(bench.send_count(), "发送计数:3");
}

TEST(TerminalPort, WhoseDeviceGoesCanBeClosedInTheSameMoment) {
    TerminalBench bench;
    bench.open();
    bench.at(10, [&] {
        bench.port.unplug();
        bench.click(bench.s.comOpenCOM);
    });
    bench.run_for(100);
    expect_shown_closed(bench);
    EXPECT_TRUE(bench.boxes().empty());
}

}  // namespace
}  // namespace vkm::test
