// The terminal and the sessions take turns on the one port.
#include "terminal_bench.h"

#include "session/read_chip_lock.h"
#include "session/user_code.h"
#include "window/main_window.h"

namespace vkm::test {
namespace {

const std::string marker = "terminal";

struct TurnsBench : SessionBench, TerminalHands {
    explicit TurnsBench(const sim::ChipConfig& config = {})
        : SessionBench(config), TerminalHands(static_cast<VirtualWorld&>(*this)) {
        load(2000);
        s.texSend.Text = marker;
        fill(0, marker);
        frm.screen.txtUserCode.Text = "55 AA";
    }

    void download(std::size_t index = 0) { click(s.comDownload[index]); }

    std::size_t markers() const {
        return static_cast<std::size_t>(std::ranges::count_if(
            port.written, [](const Written& w) { return w.bytes == bytes_of(marker); }));
    }
};

enum class Job { download, series, read_options, user_code };
constexpr Job jobs[] = {Job::download, Job::series, Job::read_options, Job::user_code};

// A series ends in the pause behind its second chip.
void stop_in_second_pause(TurnsBench& bench) {
    if (bench.count() == "2" && bench.log_has("will continue.  2"))
        comStop_Download(bench.frm);
    else
        bench.at(20, [&bench] { stop_in_second_pause(bench); });
}

sim::ChipConfig chip_for(Job job) {
    sim::ChipConfig config;
    config.powered_at = sim::never;
    if (job == Job::series) config.after_start = {.power_cycle = true, .fresh_chip = true};
    return config;
}

void run(TurnsBench& bench, Job job) {
    bench.power_on_in(700);
    switch (job) {
        case Job::download:
            return bench.download();
        case Job::series:
            bench.choose(bench.frm.screen.comDalay_ReDownLoad, "2");
            stop_in_second_pause(bench);
            return bench.download(1);
        case Job::read_options:
            return bench.click(bench.frm.screen.comReadChipLock);
        case Job::user_code:
            return bench.click(bench.frm.screen.comSendUserCode);
    }
}

TEST(AJob, OpensItsOwnPortAloneBehindATerminalOnAnother) {
    for (const Job job : jobs) {
        TurnsBench bench(chip_for(job));
        bench.port.present = {1, 2};
        bench.s.com_Debug_COM.ListIndex = 1;
        bench.click(bench.s.comOpenCOM);
        expect_shown_open(bench);
        bench.port.opened_numbers.clear();
        run(bench, job);
        EXPECT_FALSE(bench.port.opened_numbers.empty());
        EXPECT_TRUE(std::ranges::all_of(bench.port.opened_numbers, [](int n) { return n == 1; }))
            << testing::PrintToString(bench.port.opened_numbers);
    }
}

// What the job wrote, and how long it took.
struct Trace {
    std::vector<Bytes> written;
    int openings = 0;
    double ms = 0;
};

Trace trace_of(TurnsBench& bench, Job job) {
    const std::size_t before = bench.port.written.size();
    const int openings = bench.port.openings;
    const double start = bench.elapsed_ms();
    run(bench, job);
    Trace trace;
    trace.ms = bench.elapsed_ms() - start;
    for (std::size_t i = before; i < bench.port.written.size(); ++i)
        trace.written.push_back(bench.port.written[i].bytes);
    trace.openings = bench.port.openings - openings;
    return trace;
}

Trace plain(Job job) {
    TurnsBench bench(chip_for(job));
    return trace_of(bench, job);
}

void expect_same(const Trace& trace, const Trace& expected) {
    EXPECT_EQ(trace.written, expected.written);
    EXPECT_EQ(trace.openings, expected.openings);
    EXPECT_NEAR(trace.ms, expected.ms, 5);
}

// ---- a session takes the port --------------------------------------------------------

TEST(Turns, EveryJobClosesTheTerminalAndEndsItsCycles) {
    for (const Job job : jobs) {
        SCOPED_TRACE(static_cast<int>(job));
        const Trace expected = plain(job);
        EXPECT_GT(expected.ms, 1000);
        TurnsBench bench(chip_for(job));
        bench.open();
        bench.start_cycle("40");
        bench.start_spread("60");
        bench.run_for(30);
        bench.at(1, [&] {
            EXPECT_EQ(bench.s.comOpenCOM.Caption, open_caption);
            EXPECT_TRUE(bench.s.imgNotOpen.Visible);
            EXPECT_FALSE(bench.s.imgOpen.Visible);
            EXPECT_FALSE(bench.frm.link.debug_mode);
            expect_cycles_stopped(bench);
        });
        expect_same(trace_of(bench, job), expected);
        EXPECT_EQ(bench.markers(), 0u);
        bench.run_for(1000);
        expect_shown_closed(bench);
        expect_cycles_stopped(bench);
        EXPECT_TRUE(bench.boxes().empty());
    }
}

TEST(Turns, WhatTheOperatorClicksInTheTerminalDuringAJobChangesNothing) {
    for (const Job job : jobs) {
        SCOPED_TRACE(static_cast<int>(job));
        const Trace expected = plain(job);
        TurnsBench bench(chip_for(job));
        Screen& s = bench.s;
        s.che_AutoOpenPort.Value = 0;
        bool running = true;
        int clicks = 0;
        for (std::int64_t ms = 1; ms < static_cast<std::int64_t>(expected.ms) - 2; ms += 7)
            bench.at(ms, [&, turn = ms / 7] {
                running = running && bench.frm.session.Running;
                ++clicks;
                Control* const controls[] = {
                    &s.comOpenCOM,   &s.imgNotOpen,          &s.imgOpen,         &s.com_Debug_Baud,
                    &s.comDebugSend, &s.comSpreadSendCom[0], &s.comDebugContinue};
                const auto which = static_cast<std::size_t>(turn % 8);
                which < 7 ? bench.click(*controls[which]) : bench.press("k");
                EXPECT_FALSE(bench.frm.link.debug_mode);
            });
        expect_same(trace_of(bench, job), expected);
        EXPECT_TRUE(running);
        EXPECT_GT(clicks, 100);
        EXPECT_EQ(bench.frm.assistant.Send_Count, 0u);
        EXPECT_TRUE(bench.boxes().empty());
        expect_shown_closed(bench);
    }
}

TEST(Turns, NoCycleBeginsDuringAJob) {
    for (const Job job : jobs) {
        SCOPED_TRACE(static_cast<int>(job));
        const Trace expected = plain(job);
        TurnsBench bench(chip_for(job));
        for (std::int64_t ms = 1; ms < static_cast<std::int64_t>(expected.ms) - 2; ms += 31)
            bench.at(ms, [&] {
                bench.start_cycle("10");
                bench.start_spread("13");
                expect_cycles_stopped(bench);
            });
        expect_same(trace_of(bench, job), expected);
        bench.run_for(500);
        EXPECT_EQ(bench.frm.assistant.Send_Count, 0u);
        EXPECT_EQ(bench.markers(), 0u);
        EXPECT_TRUE(bench.boxes().empty());
        expect_shown_closed(bench);
    }
}

TEST(Turns, TheTerminalOpensNoPortWhileAJobAsksTheOperator) {
    TurnsBench bench;
    bench.frm.images.File_Loaded = false;
    bench.dialogs.stays = Milliseconds(500);
    bench.open();
    int opens = 0;
    bench.at(200, [&] {
        bench.click(bench.s.comOpenCOM);
        bench.click(bench.s.comDebugSend);
        opens = bench.port.openings;
    });
    bench.download();
    EXPECT_EQ(opens, 1);
    EXPECT_EQ(bench.boxes().size(), 1u);
    expect_shown_closed(bench);
}

TEST(Turns, TheDownloadUsesItsOwnPortAndTheTerminalItsOwnAgain) {
    TurnsBench bench;
    bench.port.plug(3);
    bench.port.plug(5);
    Screen& s = bench.s;
    s.com_Debug_COM.ListIndex = 4;
    s.combCommPort.ListIndex = 2;
    ASSERT_TRUE(choose_text(s.com_Debug_Baud, "9600"));
    bench.open();
    EXPECT_EQ(bench.port.port_number(), 5);
    bench.download();
    expect_good_chip(bench);
    EXPECT_EQ(bench.port.port_number(), 3);
    bench.open();
    EXPECT_EQ(bench.port.port_number(), 5);
    EXPECT_EQ(bench.port.settings(), "9600,N,8,1");
    EXPECT_FALSE(s.imgOpen_sys.Visible);
}

TEST(Turns, ADownloadBehindALongTextBeginsWithinASecond) {
    TurnsBench bench({.powered_at = sim::never});
    ASSERT_TRUE(choose_text(bench.s.com_Debug_Baud, "600"));
    bench.send(std::string(5000, 'x'), false);
    bench.power_on_in(1500);
    const double start = bench.elapsed_ms();
    double first = 0;
    for (int ms = 0; ms < 3000; ms += 10)
        bench.at(ms, [&] {
            if (first == 0 && bench.port.written.size() > 1) first = bench.elapsed_ms() - start;
        });
    bench.download();
    expect_good_chip(bench);
    EXPECT_GT(first, 0);
    EXPECT_LT(first, 2500);
}

// ---- the terminal opens behind a download ------------------------------------------------

struct Greeting : TurnsBench {
    explicit Greeting(sim::ChipConfig config) : TurnsBench(std::move(config)) {
        s.che_AutoOpenPort.Value = 1;
    }
};

const Bytes greeting_bytes = {'H', 'e', 'l', 'l', 'o', ' ', 0xB4, 0xAE, 0xBF, 0xDA, '\r', '\n'};
const std::string greeting_text = "Hello 串口\r\n";

TEST(OpeningBehindADownload, ShowsTheProgramsGreetingWhole) {
    for (const char* baud : {"115200", "9600", "1200"}) {
        sim::ChipConfig config;
        config.greeting = greeting_bytes;
        config.greeting_baud = std::stod(baud);
        Greeting bench(config);
        ASSERT_TRUE(choose_text(bench.s.com_Debug_Baud, baud));
        bench.download();
        EXPECT_EQ(bench.frm.session.Result, Job_Result::done) << bench.story();
        expect_shown_open(bench);
        EXPECT_EQ(bench.port.settings(), std::string(baud) + ",N,8,1");
        EXPECT_FALSE(bench.frm.session.Running);
        bench.run_for(1500);
        // At rates at which a character may fall across two ticks only its parts are sure.
        if (std::string(baud) == "1200")
            EXPECT_TRUE(bench.received().starts_with("Hello "));
        else
            EXPECT_EQ(bench.received(), greeting_text) << baud;
        EXPECT_EQ(bench.receive_count(), "接收计数:12");
        EXPECT_TRUE(bench.boxes().empty());
    }
}

TEST(OpeningBehindADownload, TakesTheTerminalsOwnPort) {
    Greeting bench({});
    bench.port.plug(3);
    Screen& s = bench.s;
    s.com_Debug_COM.ListIndex = 2;
    ASSERT_TRUE(choose_text(s.com_Debug_Baud, "4800"));
    ASSERT_TRUE(choose_text(s.com_Debug_ParityCheck, "Odd"));
    bench.download();
    expect_shown_open(bench);
    EXPECT_EQ(bench.port.port_number(), 3);
    EXPECT_EQ(bench.port.settings(), "4800,O,8,1");
    EXPECT_FALSE(s.imgOpen_sys.Visible);
    EXPECT_EQ(bench.count(), "1");
}

TEST(OpeningBehindADownload, ComesOnlyWhenItIsTicked) {
    TurnsBench bench;
    bench.open();
    bench.download();
    expect_good_chip(bench);
    bench.run_for(1000);
    expect_shown_closed(bench);
}

TEST(OpeningBehindADownload, ComesAlsoWhenTheTerminalWasClosedBefore) {
    Greeting bench({});
    bench.download();
    expect_shown_open(bench);
    // And a second download closes it again.
    bench.chip.power_cycle(bench.loop.now(), Milliseconds(100));
    bench.download();
    EXPECT_EQ(bench.count(), "2") << bench.story();
    expect_shown_open(bench);
    EXPECT_EQ(bench.port.closings, bench.port.openings - 1);
}

TEST(OpeningBehindADownload, ComesNotBehindAFailedOne) {
    sim::ChipConfig config;
    config.model = "VKM47H58RK+";
    Greeting bench(config);
    ASSERT_TRUE(bench.select_model("VKM26H2052"));
    bench.load(100);
    bench.download();
    EXPECT_EQ(bench.frm.session.Result, Job_Result::failed) << bench.story();
    bench.run_for(1000);
    expect_shown_closed(bench);
}

TEST(OpeningBehindADownload, ComesNotBehindAStoppedOne) {
    for (const int ms : {100, 600, 1100, 1500}) {
        Greeting bench({.powered_at = sim::never});
        bench.power_on_in(500);
        bench.click_stop_in(ms);
        bench.download();
        ASSERT_EQ(bench.frm.session.Result, Job_Result::stopped) << ms;
        bench.run_for(1000);
        expect_shown_closed(bench);
    }
}

TEST(OpeningBehindADownload, ComesNotBehindASeries) {
    Greeting bench(chip_for(Job::series));
    run(bench, Job::series);
    EXPECT_EQ(bench.count(), "2") << bench.story();
    bench.run_for(1000);
    expect_shown_closed(bench);
}

TEST(OpeningBehindADownload, ComesNotWithoutAFileOrBehindAReading) {
    Greeting bench({});
    bench.frm.images.File_Loaded = false;
    bench.download();
    EXPECT_EQ(bench.boxes().size(), 1u);
    expect_shown_closed(bench);
    bench.click(bench.s.comReadChipLock);
    expect_shown_closed(bench);
}

TEST(OpeningBehindADownload, ComesBehindAUserCodeToo) {
    Greeting bench({.powered_at = sim::never});
    run(bench, Job::user_code);
    EXPECT_EQ(bench.count(), "1") << bench.story();
    expect_shown_open(bench);
}

TEST(OpeningBehindADownload, ThatFailsIsToldAndTheChipIsGood) {
    Greeting bench({});
    bench.s.com_Debug_COM.ListIndex = 8;
    bench.download();
    ASSERT_EQ(bench.boxes().size(), 1u);
    EXPECT_EQ(bench.boxes()[0].title, port_box_title);
    EXPECT_EQ(bench.boxes()[0].text, "COM9: error 2");
    expect_good_chip(bench);
    expect_shown_closed(bench);
}

TEST(OpeningBehindADownload, ComesNotWhenTheWindowIsClosing) {
    TurnsBench plain_bench;
    const double start = plain_bench.elapsed_ms();
    plain_bench.download();
    const auto job_ms = static_cast<std::int64_t>(plain_bench.elapsed_ms() - start);
    for (std::int64_t ms = job_ms - 60; ms < job_ms; ms += 5) {
        Greeting bench({});
        bench.at(ms, [&] { QueryUnload(bench.frm); });
        bench.download();
        EXPECT_FALSE(bench.port.is_open()) << ms;
        EXPECT_FALSE(bench.frm.link.debug_mode) << ms;
    }
}

// ---- what was received before ------------------------------------------------------------

TEST(Turns, ADownloadLosesNothingThatTheTerminalHasReceived) {
    for (const bool hex : {false, true}) {
        TurnsBench bench;
        bench.show_as_hex(hex);
        bench.open();
        Bytes bytes(hex ? 20'000 : Receive_Ring::cells - 1);
        for (std::size_t i = 0; i < bytes.size(); ++i)
            bytes[i] = static_cast<std::uint8_t>(' ' + i % 95);
        Take_Received(bench.frm, bytes);
        EXPECT_EQ(bench.received(), "");
        bench.download();
        expect_good_chip(bench);
        EXPECT_TRUE(bench.received() ==
                    (hex ? shown_as_hex(bytes) : std::string(bytes.begin(), bytes.end())));
        EXPECT_EQ(bench.receive_count(), "接收计数:" + std::to_string(bytes.size()));
    }
}

TEST(Turns, ADownloadThatBeginsRightBehindAHexadecimalTickLosesNothing) {
    static TurnsBench* in_tick;
    sim::ChipConfig config;
    config.greeting = bytes_of("Hi");
    Greeting bench(config);
    in_tick = &bench;
    bench.show_as_hex(true);
    bench.open();
    Take_Received(bench.frm, bytes_of("ABC"));
    bench.frm.timers.TimerDebugDisplay.Tick = [](frmMain& frm) {
        frm.timers.TimerDebugDisplay.Tick = Show_Received;
        in_tick->at(0, [] { in_tick->download(); });
        Show_Received(frm);
    };
    bench.run_for(5000);
    EXPECT_EQ(bench.count(), "1") << bench.story();
    EXPECT_EQ(bench.received(), "41 42 43 48 69 ");
    EXPECT_EQ(bench.receive_count(), "接收计数:5");
    expect_shown_open(bench);
    EXPECT_FALSE(bench.frm.timers.TimerDebugDisplay.Enabled);
}

TEST(Turns, WhatAnswersADownloadIsNeitherShownNorCounted) {
    TurnsBench bench;
    bench.open();
    bench.s.texReceive.Text = "before";
    bench.download();
    expect_good_chip(bench);
    bench.run_for(500);
    EXPECT_EQ(bench.received(), "before");
    EXPECT_EQ(bench.frm.assistant.Receive_Count, 0u);
}

// ---- closing the window --------------------------------------------------------------------

TEST(ClosingTheWindow, WithTheTerminalAndItsCyclesRunningIsQuiet) {
    TurnsBench bench({.powered_at = sim::never});
    Screen& s = bench.s;
    bench.open();
    bench.start_cycle("40");
    bench.start_spread("30");
    bench.run_for(200);
    s.com_Debug_Baud.ListIndex = 5;
    EXPECT_FALSE(QueryUnload(bench.frm));
    expect_shown_closed(bench);
    expect_cycles_stopped(bench);
    const std::size_t written = bench.port.written.size();
    bench.run_for(501);
    EXPECT_TRUE(s.window.Close_Requested);
    EXPECT_TRUE(QueryUnload(bench.frm));
    Unload(bench.frm);
    EXPECT_EQ(bench.port.written.size(), written);
    EXPECT_EQ(bench.port.openings, 1);
    EXPECT_TRUE(bench.boxes().empty());
    EXPECT_EQ(bench.settings.on_disk.at({"Settings", "DebugBaud"}), "5");
    EXPECT_EQ(bench.settings.on_disk.at({"Settings", "texSendCycle"}), "40");
}

TEST(ClosingTheWindow, ClosesATerminalThatWasOpenedBetweenItsTwoPasses) {
    TurnsBench bench({.powered_at = sim::never});
    EXPECT_FALSE(QueryUnload(bench.frm));
    bench.run_for(100);
    bench.open();
    bench.start_cycle("10");
    bench.run_for(401);
    EXPECT_TRUE(bench.s.window.Close_Requested);
    EXPECT_TRUE(QueryUnload(bench.frm));
    Unload(bench.frm);
    EXPECT_FALSE(bench.port.is_open());
    expect_cycles_stopped(bench);
    EXPECT_TRUE(bench.boxes().empty());
}

TEST(ClosingTheWindow, WithALongTextOnItsWayDoesNotStandStill) {
    TurnsBench bench({.powered_at = sim::never});
    ASSERT_TRUE(choose_text(bench.s.com_Debug_Baud, "600"));
    bench.send(std::string(10'000, 'x'), false);
    const double before = bench.elapsed_ms();
    QueryUnload(bench.frm);
    EXPECT_LE(bench.elapsed_ms() - before, 1050);
    EXPECT_FALSE(bench.port.is_open());
}

TEST(ClosingTheWindow, TurnsThePicturesBackWithoutTheAskingToo) {
    TurnsBench bench({.powered_at = sim::never});
    bench.open();
    bench.start_cycle("10");
    Unload(bench.frm);
    expect_shown_closed(bench);
    expect_cycles_stopped(bench);
}

}  // namespace
}  // namespace vkm::test
