// The user code that sends a running target into its boot firmware: its bytes, the
// line it goes out on, and the download behind it.
#include "project_bench.h"

#include "session/user_code.h"
#include "window/main_window.h"

namespace vkm::test {
namespace {

TEST(UserCodeBytes, AreThePairsOfCharacters) {
    const struct {
        const char* text;
        Bytes bytes;
    } cases[] = {
        {"", {}},
        {"   ", {}},
        {"55", {0x55}},
        {"55AAff0c", {0x55, 0xAA, 0xFF, 0x0C}},
        {"55 AA", {0x55, 0xAA}},
        {"  55,AA;", {0x55, 0xAA, 0x00}},  // ";" stands behind the digits
        {"55,AA-01.02/03", {0x55, 0xAA, 0x01, 0x02, 0x03}},
        {"5", {0x05}},
        {"55A", {0x55, 0x0A}},
        {"1 2 3", {0x01, 0x02, 0x03}},
        {"1,23", {0x01, 0x23}},
        {"0x55", {0x00, 0x55}},
        {"0x550xAA", {0x00, 0x55, 0x00, 0xAA}},
        {"5G", {0x05}},
        {"G5", {0x00}},
        {"GG55", {0x00, 0x55}},
        {"\t55\t", {0x55}},
        // A letter of any language is one character.
        {"55中AA", {0x55, 0x00, 0x0A}},
        {"中文55", {0x00, 0x55}},
        {"５５", {0x00}},
    };
    for (const auto& c : cases) EXPECT_EQ(user_code_bytes(c.text), c.bytes) << c.text;
}

struct CodeBench : SessionBench {
    explicit CodeBench(const sim::ChipConfig& config = {}) : SessionBench(config) {
        load(900);
        frm.screen.txtUserCode.Text = "55 AA 01";
    }
    void click_send() { handle_event(frm, {&frm.screen.comSendUserCode, EventKind::Click, 0, {}}); }
};

const Bytes code = {0x55, 0xAA, 0x01};

std::int64_t us_between(Instant from, Instant to) {
    return std::chrono::duration_cast<std::chrono::microseconds>(to - from).count();
}

TEST(UserCode, GoesOutFirstAndThenTheChipIsDownloaded) {
    // The chip's program hears the code and jumps.
    CodeBench bench({.powered_at = sim::never});
    bench.power_on_in(5);
    bench.click_send();
    expect_good_chip(bench);
    ASSERT_FALSE(bench.port.written.empty());
    EXPECT_EQ(bench.port.written[0].bytes, code);
    for (std::size_t i = 1; i < bench.port.written.size(); ++i)
        EXPECT_NE(bench.port.written[i].bytes, code);
    EXPECT_TRUE(bench.flash_holds(bench.image)) << bench.story();
}

TEST(UserCode, IsSentWithTheSettingsThatTheOperatorChose) {
    const struct {
        const char *baud, *parity, *bits, *stop, *settings;
    } cases[] = {{"115200", "None", "8", "1", "115200,N,8,1"},
                 {"9600", "Even", "7", "2", "9600,E,7,2"},
                 {"256000", "Odd", "5", "1", "256000,O,5,1"},
                 {"600", "None", "6", "2", "600,N,6,2"}};
    for (const auto& c : cases) {
        CodeBench bench({.powered_at = sim::never});
        Screen& s = bench.frm.screen;
        ASSERT_TRUE(bench.choose(s.cobUserCodeBaud, c.baud));
        ASSERT_TRUE(bench.choose(s.cobUserCodeParity, c.parity));
        ASSERT_TRUE(bench.choose(s.cobUserCodeDataBits, c.bits));
        ASSERT_TRUE(bench.choose(s.cobUserCodeStopBits, c.stop));
        bench.click_stop_in(3000);
        bench.click_send();
        ASSERT_GT(bench.port.written.size(), 1u);
        EXPECT_EQ(bench.port.written[0].settings, c.settings);
        EXPECT_NE(bench.port.written[1].settings, c.settings);
        EXPECT_TRUE(bench.boxes().empty());
    }
}

// From the call to the first byte of a plain download.
std::int64_t us_to_first_pulse() {
    CodeBench bench({.powered_at = sim::never});
    const Instant start = bench.loop.now();
    bench.click_stop_in(3000);
    comDownload(bench.frm, 0);
    return us_between(start, bench.port.written.at(0).at);
}

TEST(UserCode, HasLeftTheWire20MsBeforeTheDownloadBegins) {
    const std::int64_t own = us_to_first_pulse();
    for (const char* baud : {"115200", "9600", "600"}) {
        CodeBench bench({.powered_at = sim::never});
        ASSERT_TRUE(bench.choose(bench.frm.screen.cobUserCodeBaud, baud));
        const Instant start = bench.loop.now();
        bench.click_stop_in(3000);
        bench.click_send();
        ASSERT_GT(bench.port.written.size(), 1u);
        EXPECT_EQ(bench.port.written[0].at, start);
        const std::int64_t wire = 3 * 10 * 1'000'000 / std::stol(baud);
        const std::int64_t between = us_between(start, bench.port.written[1].at) - own;
        EXPECT_GE(between, wire + 20'000) << baud;
        EXPECT_LE(between, wire + 23'000) << baud;
        EXPECT_EQ(bench.port.written[1].unsent, 0u);
    }
}

// A driver that never lets go of the last byte, as far as one can see.
class StuckPort final : public ForwardingPort {
  public:
    using ForwardingPort::ForwardingPort;
    std::size_t output_count() const override { return is_open() ? 1 : 0; }
};

struct StuckBench : VirtualPlatform {
    StuckBench() {
        loop.tell = [this] { return frm.screen.textMsg.Text; };
        start_program(frm);
        choose_model(frm, "VKM47H58RK");
        frm.images.File_Loaded = true;
        frm.screen.txtUserCode.Text = "55 AA 01";
        choose_text(frm.screen.cobUserCodeBaud, "600");
        wait_ms(frm, 600);
    }

    StuckPort stuck{faults};
    frmMain frm{{loop, wall_clock, stuck, settings, dialogs, files, sounder, code_page}};
};

TEST(UserCode, WaitsHalfASecondLongerThanItNeedsForAnOutputThatNeverEmpties) {
    StuckBench bench;
    const Instant start = bench.loop.now();
    bench.loop.after(Milliseconds(5000), [&] { comStop_Download(bench.frm); });
    bench.loop.after(Milliseconds(60'000), [] { FAIL() << "it waits for ever"; });
    handle_event(bench.frm, {&bench.frm.screen.comSendUserCode, EventKind::Click, 0, {}});
    ASSERT_GT(bench.port.written.size(), 1u);
    // For nothing before the code, and for its three bytes behind it.
    EXPECT_EQ(bench.port.written[0].bytes, code);
    const std::int64_t before = us_between(start, bench.port.written[0].at);
    EXPECT_GE(before, 500'000);
    EXPECT_LE(before, 502'000);
    const std::int64_t between =
        us_between(bench.port.written[0].at, bench.port.written[1].at) - us_to_first_pulse();
    EXPECT_GE(between, 50'000 + 500'000 + 20'000);
    EXPECT_LE(between, 50'000 + 500'000 + 24'000);
    EXPECT_EQ(bench.frm.session.Result, Job_Result::stopped);
    EXPECT_FALSE(bench.frm.session.Running);
}

TEST(UserCode, ThatIsEmptyIsADownloadAlone) {
    CodeBench bench;
    bench.frm.screen.txtUserCode.Text = "  ";
    bench.click_send();
    expect_good_chip(bench);
}

TEST(UserCode, GoesToTheChosenPortAndClosesTheAssistantsFirst) {
    static bool closed_before_open;
    CodeBench bench({.powered_at = sim::never});
    closed_before_open = false;
    bench.frm.session.Close_Assistant_Port = [](frmMain& frm) {
        closed_before_open = closed_before_open || !frm.platform.port.is_open();
    };
    bench.port.plug(3);
    bench.frm.screen.combCommPort.ListIndex = 2;
    bench.click_stop_in(500);
    bench.click_send();
    EXPECT_TRUE(closed_before_open);
    EXPECT_EQ(bench.port.port_number(), 3);
    EXPECT_EQ(bench.port.written.at(0).bytes, code);
}

TEST(UserCode, NeedsAFile) {
    for (const bool english : {false, true}) {
        CodeBench bench;
        bench.frm.screen.Show_English = english;
        bench.frm.images.File_Loaded = false;
        bench.click_send();
        ASSERT_EQ(bench.boxes().size(), 1u);
        EXPECT_EQ(bench.boxes()[0].text,
                  english ? "Please open file." : "Please open file./请打开文件。");
        EXPECT_EQ(bench.boxes()[0].title, "");
        EXPECT_EQ(bench.port.opens, 0);
        EXPECT_FALSE(bench.frm.session.Running);
        EXPECT_EQ(bench.frm.session.UI_State, 0);
    }
}

TEST(UserCode, IsNotSentToAPortThatCantBeOpened) {
    for (const bool english : {false, true}) {
        CodeBench bench;
        bench.frm.screen.Show_English = english;
        bench.frm.screen.textMsg.Text.clear();
        bench.port.open_error[1] = error_busy;
        bench.click_send();
        EXPECT_TRUE(ends_with(
            bench.log(), english ? "Open COM port failure!\r\n"
                                   "The COM port opened by another Program or no the COM port."
                                 : "Open COM port failure! / 打开串口失败!\r\n"
                                   "The COM port opened by another Program or no the COM port.\r\n"
                                   "Chinese:串口已被其它程序打开或该串口不存在。"))
            << bench.log();
        EXPECT_EQ(bench.sounder.beeps(), 3);
        EXPECT_EQ(bench.port.opens, 1);
        EXPECT_TRUE(bench.boxes().empty());
        EXPECT_FALSE(bench.frm.session.Running);
        EXPECT_EQ(bench.frm.session.UI_State, 0);
    }
}

TEST(UserCode, WithSettingsThatThePortRefusesIsToldInABox) {
    for (const bool english : {false, true}) {
        CodeBench bench;
        bench.frm.screen.Show_English = english;
        bench.frm.screen.cobUserCodeParity.ListIndex = -1;
        bench.click_send();
        ASSERT_EQ(bench.boxes().size(), 1u);
        EXPECT_EQ(bench.boxes()[0].title, "  调试用串口     ");
        EXPECT_TRUE(ends_with(bench.boxes()[0].text, "115200,,8,1")) << bench.boxes()[0].text;
        EXPECT_EQ(bench.boxes()[0].text.find("串口不支持") == std::string::npos, english);
        EXPECT_EQ(bench.port.opens, 0);
        EXPECT_FALSE(bench.frm.session.Running);
    }
}

TEST(UserCode, IsNotSentWhileAJobRuns) {
    CodeBench bench({.powered_at = sim::never});
    for (const int ms : {100, 400, 900}) bench.at(ms, [&] { bench.click_send(); });
    bench.click_stop_in(1500);
    comDownload(bench.frm, 0);
    for (const Written& written : bench.port.written) EXPECT_NE(written.bytes, code);
    EXPECT_TRUE(bench.boxes().empty());
}

TEST(UserCode, IsTheOnlyJobWhileItIsOnTheWire) {
    CodeBench bench({.powered_at = sim::never});
    ASSERT_TRUE(bench.choose(bench.frm.screen.cobUserCodeBaud, "600"));
    bench.frm.screen.txtUserCode.Text = std::string(200, '5');
    bench.at(100, [&] { comDownload(bench.frm, 0); });
    bench.at(200, [&] { bench.click_send(); });
    bench.click_stop_in(4000);
    bench.click_send();
    EXPECT_EQ(bench.port.written.at(0).bytes.size(), 100u);
    EXPECT_GE(us_between(bench.port.written[0].at, bench.port.written.at(1).at), 1'666'000);
}

TEST(UserCode, IsFollowedByNothingWhenTheWindowWasClosed) {
    CodeBench bench({.powered_at = sim::never});
    ASSERT_TRUE(bench.choose(bench.frm.screen.cobUserCodeBaud, "600"));
    bench.at(20, [&] { QueryUnload(bench.frm); });
    bench.click_send();
    EXPECT_EQ(bench.port.openings, 1);
    EXPECT_EQ(bench.port.written.size(), 1u);
}

TEST(UserCode, EndsWhenThePortGoes) {
    CodeBench bench({.powered_at = sim::never});
    ASSERT_TRUE(bench.choose(bench.frm.screen.cobUserCodeBaud, "600"));
    bench.at(20, [&] { bench.port.unplug(); });
    bench.click_stop_in(3000);
    bench.click_send();
    expect_session_over(bench);
}

}  // namespace
}  // namespace vkm::test
