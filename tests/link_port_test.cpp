// The link's operations on the port: opening and closing, clearing, sending,
// and waiting for an answer, in virtual time.
#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "link/frames.h"
#include "link/handshake.h"
#include "link/isp_link.h"
#include "link/reply_gathering.h"
#include "support/virtual_world.h"
#include "waiting/waiting.h"

namespace vkm::test {
namespace {

using Bytes = std::vector<std::uint8_t>;
using std::chrono::microseconds;
using std::chrono::milliseconds;

// A target that answers whole frames as the test tells it to.
struct ScriptedTarget {
    std::function<Bytes(const Bytes& frame)> answer;
    microseconds turnaround = milliseconds(1);
    std::vector<Bytes> heard;

    sim::Target target() {
        return {[this](Instant at, std::uint8_t value, double baud) { hear(at, value, baud); },
                [] { return sim::never; }, [](Instant) {},
                [this] { return std::exchange(output_, {}); }};
    }

  private:
    void hear(Instant at, std::uint8_t value, double baud) {
        frame_.push_back(value);
        while (!frame_.empty() && frame_.front() == 0xFE) frame_.erase(frame_.begin());
        if (frame_.size() < 5) return;
        const bool demo = frame_[0] == 0x5A;
        const std::size_t length =
            demo ? frame_[2] * 256U + frame_[3] : frame_[3] * 256U + frame_[4] + 2;
        if (frame_.size() < length) return;
        heard.push_back(std::exchange(frame_, {}));
        if (!answer) return;
        const Bytes reply = answer(heard.back());
        for (std::size_t i = 0; i < reply.size(); ++i)
            output_.push_back({at + turnaround + sim::wire_time(i, baud), reply[i], baud});
    }

    Bytes frame_;
    std::vector<sim::WireByte> output_;
};

Bytes reply(const Bytes& payload) {
    const std::size_t length = payload.size() + 5;
    Bytes frame = {0x68, 0x00, static_cast<std::uint8_t>(length)};
    frame.insert(frame.end(), payload.begin(), payload.end());
    frame.push_back(sum8(frame));
    frame.push_back(0x16);
    frame.insert(frame.begin(), {0x46, 0xB9});
    return frame;
}

class LinkPort : public ::testing::Test, protected VirtualWorld {
  protected:
    LinkPort() {
        line.connect(target.target());
        frm.link.Receive_Event = on_port_event;
        frm.timers.Timer1.Tick = Timer1_Tick;
        frm.timers.Timer2.Tick = Timer2_Tick;
        frm.link.receive_enabled = true;
        frm.link.crystal_frequency = 24e6F;
        for (std::size_t i = 0; i < image.size(); ++i) image[i] = static_cast<std::uint8_t>(i);
    }

    void open_at(std::string_view baud) {
        ASSERT_TRUE(set_port_baud(frm, baud));
        ASSERT_EQ(open_port(frm), 0);
    }

    // Virtual time that a call takes, in ms.
    double time_of(const std::function<void()>& call) {
        const double before = elapsed_ms();
        call();
        return elapsed_ms() - before;
    }

    void stop_at(std::int64_t ms) {
        at(ms, [this] { frm.link.stop_requested = true; });
    }

    ScriptedTarget target;
    Bytes image = Bytes(512);
    LinkState& link = frm.link;
};

// ---- opening and closing ------------------------------------------------------

TEST_F(LinkPort, OpenTakesTheNumberFromTheListCountingFromOne) {
    port.present = {3};
    frm.screen.combCommPort.ListIndex = 2;
    EXPECT_EQ(open_port(frm), 0);
    EXPECT_EQ(port.port_number(), 3);
    EXPECT_TRUE(port.is_open());
}

TEST_F(LinkPort, OpenClosesAnOpenPortFirst) {
    open_at("1200");
    EXPECT_EQ(open_port(frm), 0);
    EXPECT_EQ(port.closings, 1);
    EXPECT_EQ(port.openings, 2);
}

TEST_F(LinkPort, OpenHandsOnTheSystemsErrorNumber) {
    port.present.clear();
    EXPECT_EQ(open_port(frm), error_missing);
    port.present = {1};
    port.open_error[1] = error_busy;
    EXPECT_EQ(open_port(frm), error_busy);
    frm.screen.combCommPort.ListIndex = -1;
    EXPECT_GT(open_port(frm), 0);
}

// A port whose calls don't do what they are asked for.
struct OddPort : ForwardingPort {
    using ForwardingPort::ForwardingPort;
    int open() override {
        ++open_calls;
        return open_calls <= ineffective_opens ? 0 : below_.open();
    }
    void close() override {
        ++close_calls;
        if (close_calls > agentborn) below_.close();
    }
    bool set_settings(std::string_view settings) override {
        return !refuses_settings && below_.set_settings(settings);
    }
    int ineffective_opens = 0;
    int open_calls = 0;
    bool refuses_settings = false;
    int agentborn = 0;  // closes that have no effect
    int close_calls = 0;
};

struct OddWorld : VirtualPlatform {
    OddPort odd{port};
    frmMain frm{Platform{loop, wall_clock, odd, settings, dialogs, files, sounder, code_page}};
    OddWorld() { fill_start_lists(frm.screen); }
};

TEST(LinkOddPort, OpenWithoutErrorAndWithoutSuccessIsMinusOne) {
    OddWorld world;
    world.odd.ineffective_opens = 99;
    EXPECT_EQ(open_port(world.frm), -1);
    EXPECT_EQ(send_trigger(world.frm, 0x82), -1);
}

TEST(LinkOddPort, CloseTriesThreeTimesAtMost) {
    OddWorld world;
    ASSERT_EQ(open_port(world.frm), 0);
    world.odd.close_calls = 0;
    world.odd.agentborn = 2;
    EXPECT_FALSE(close_port(world.frm));
    EXPECT_EQ(world.odd.close_calls, 3);
    ASSERT_EQ(open_port(world.frm), 0);
    world.odd.close_calls = 0;
    world.odd.agentborn = 99;
    EXPECT_TRUE(close_port(world.frm));
    EXPECT_EQ(world.odd.close_calls, 3);
}

TEST(LinkOddPort, RefusedSettingsAreAFailureToOpen) {
    OddWorld world;
    world.odd.refuses_settings = true;
    std::int32_t newbaud = 0;
    EXPECT_EQ(handshake(world.frm, newbaud, false), -1);
    EXPECT_TRUE(world.frm.screen.textMsg.Text.starts_with("\r\nOpen COM port failure! / "));
    EXPECT_EQ(world.sounder.beeps(), 3);
}

TEST(LinkOddPort, TheHandshakeTriesTwiceMoreToOpenASluggishPort) {
    for (const int ineffective : {2, 3, 4}) {
        OddWorld world;
        world.odd.ineffective_opens = ineffective;  // the first is that of the clearing
        world.loop.after(milliseconds(100), [&] { world.frm.link.stop_requested = true; });
        std::int32_t newbaud = 0;
        EXPECT_EQ(handshake(world.frm, newbaud, false), -1);
        EXPECT_EQ(world.port.written.empty(), ineffective == 4) << ineffective;
        EXPECT_EQ(world.frm.screen.textMsg.Text, "\r\nOperation is stop. / 操作被停止.");
    }
}

TEST_F(LinkPort, CloseTurnsThePictureToItsClosedLook) {
    show_port_picture(frm, true);
    EXPECT_TRUE(frm.screen.imgOpen_sys.Visible);
    EXPECT_FALSE(frm.screen.imgNotOpen_sys.Visible);
    EXPECT_FALSE(close_port(frm));
    EXPECT_FALSE(frm.screen.imgOpen_sys.Visible);
    EXPECT_TRUE(frm.screen.imgNotOpen_sys.Visible);
}

TEST_F(LinkPort, RestartKeepsTheSettingsAndOpensInThreeTries) {
    open_at("57600");
    port.opens = 0;
    port.nth_open_error = {{1, error_busy}, {2, error_busy}};
    Restart_Port(frm);
    EXPECT_TRUE(port.is_open());
    EXPECT_EQ(port.opens, 3);
    EXPECT_EQ(port.settings(), "57600,n,8,1");
    port.opens = 0;
    port.nth_open_error = {{1, error_busy}, {2, error_busy}, {3, error_busy}};
    Restart_Port(frm);
    EXPECT_FALSE(port.is_open());
    EXPECT_EQ(port.opens, 3);
}

TEST_F(LinkPort, SettingsThatAreRefusedStayAsTheyWere) {
    open_at("9600");
    EXPECT_FALSE(set_port_baud(frm, "0"));
    EXPECT_EQ(port.settings(), "9600,n,8,1");
    EXPECT_TRUE(set_port_baud(frm, " 57600 "));
    EXPECT_EQ(port.settings(), "57600,n,8,1");
}

TEST_F(LinkPort, OnlyTheListsLowestRateHoldsTheBaseBaud) {
    for (const Entry& entry : frm.screen.cobBaudMax.List) {
        ASSERT_TRUE(choose_text(frm.screen.cobBaudMax, entry.Text));
        EXPECT_EQ(held_at_base_baud(frm), entry.Text == "1200") << entry.Text;
    }
    frm.screen.cobBaudMax.ListIndex = -1;
    EXPECT_FALSE(held_at_base_baud(frm));
}

// ---- clearing -------------------------------------------------------------------

TEST_F(LinkPort, ResetForgetsWhatWasReceivedAndWhatIsUnsent) {
    open_at("1200");
    write_frame(frm, Bytes(10, 0x55));
    line.input = {1, 2, 3};
    link.rx_count = 5;
    link.rx_frame[0] = 0x68;
    link.rx_expected = 7;
    link.frame_ok = link.seen_46 = link.seen_B9 = true;
    reset_receive(frm);
    EXPECT_EQ(port.input_count(), 0U);
    EXPECT_EQ(port.output_count(), 0U);
    EXPECT_EQ(link.rx_count, 0);
    EXPECT_FALSE(link.frame_ok);
    EXPECT_FALSE(link.seen_46);
    EXPECT_TRUE(link.seen_B9);
    EXPECT_EQ(link.rx_frame[0], 0x68);
    EXPECT_EQ(link.rx_expected, 7);
    EXPECT_TRUE(port.is_open());
}

TEST_F(LinkPort, ResetOpensAClosedPortAndClosesItAgain) {
    reset_receive(frm);
    EXPECT_EQ(port.openings, 1);
    EXPECT_FALSE(port.is_open());
}

TEST_F(LinkPort, ResetLeavesThePortOpenWhenHeldAtTheBaseBaud) {
    ASSERT_TRUE(choose_text(frm.screen.cobBaudMax, "1200"));
    reset_receive(frm);
    EXPECT_TRUE(port.is_open());
}

TEST_F(LinkPort, ResetWithoutAPortIsHarmless) {
    port.present.clear();
    link.rx_count = 5;
    reset_receive(frm);
    EXPECT_FALSE(port.is_open());
    EXPECT_EQ(link.rx_count, 0);
}

TEST_F(LinkPort, DefaultsEmptyBothBuffersAndReadAllBytes) {
    open_at("1200");
    write_frame(frm, Bytes(10, 0x55));
    line.input = {1, 2, 3};
    port.set_read_length(1);
    set_port_defaults(frm);
    EXPECT_EQ(port.input_count(), 0U);
    EXPECT_EQ(port.output_count(), 0U);
    line.input = {1, 2, 3};
    EXPECT_EQ(port.read().size(), 3U);
}

TEST_F(LinkPort, CopyKeepsTheReplyReadableBehindAReset) {
    link.rx_frame[3] = 0x80;
    link.rx_frame[2100] = 0x11;
    link.rx_count = 7;
    EXPECT_EQ(copy_receive(frm), 7);
    reset_receive(frm);
    link.rx_frame.fill(0);
    EXPECT_EQ(link.rx_copy[3], 0x80);
    EXPECT_EQ(link.rx_copy[2100], 0x11);
}

// ---- the receive handler at the port ----------------------------------------------

TEST_F(LinkPort, TheHandlerReadsAllThatWaitsWhateverTheReadLength) {
    open_at("115200");
    port.set_read_length(1);
    const Bytes frame = reply({0x80});
    line.input.assign(frame.begin(), frame.end());
    on_port_event(frm);
    EXPECT_TRUE(link.frame_ok);
    EXPECT_EQ(port.input_count(), 0U);
}

TEST_F(LinkPort, ADemoFrameWithoutEndMarkClearsThePortToo) {
    open_at("115200");
    link.demo_mode = true;
    line.input = {0x5A, 0xA5, 0x00, 0x08, 0xB0, 0x01, 0xB7, 0x17};
    write_frame(frm, Bytes(4, 0x55));
    on_port_event(frm);
    EXPECT_EQ(link.rx_count, 0);
    EXPECT_EQ(port.output_count(), 0U);
}

TEST_F(LinkPort, ADemoFrameWithAWrongSumLeavesTheOutput) {
    open_at("115200");
    link.demo_mode = true;
    line.input = {0x5A, 0xA5, 0x00, 0x08, 0xB0, 0x01, 0xB6, 0x16};
    write_frame(frm, Bytes(4, 0x55));
    on_port_event(frm);
    EXPECT_EQ(link.rx_count, 0);
    EXPECT_EQ(port.output_count(), 4U);
}

Bytes monitor_bytes;

TEST_F(LinkPort, BytesOfTheTerminalGoToItWhole) {
    open_at("115200");
    link.debug_mode = true;
    const Bytes frame = reply({0x80});
    line.input.assign(frame.begin(), frame.end());
    on_port_event(frm);  // nobody is there yet
    EXPECT_FALSE(link.frame_ok);
    EXPECT_EQ(port.input_count(), 0U);
    link.Assistant_Bytes = [](frmMain&, const Bytes& bytes) { monitor_bytes = bytes; };
    line.input.assign(frame.begin(), frame.end());
    on_port_event(frm);
    EXPECT_EQ(monitor_bytes, frame);
    EXPECT_FALSE(link.frame_ok);
    // The 5A A5 class comes before the terminal.
    link.demo_mode = true;
    monitor_bytes.clear();
    line.input = {0x5A, 0xA5, 0x00, 0x08, 0xB0, 0x01, 0xB7, 0x16};
    on_port_event(frm);
    EXPECT_TRUE(link.demo_frame_ok);
    EXPECT_TRUE(monitor_bytes.empty());
}

// ---- waiting ------------------------------------------------------------------------

TEST_F(LinkPort, AWaitEndsWithTheFrameTheStopOrItsTime) {
    open_at("115200");
    EXPECT_DOUBLE_EQ(time_of([&] { EXPECT_FALSE(wait_for_frame(frm, 900)); }), 900);

    at(100, [&] {
        const Bytes frame = reply({0x80});
        line.input.assign(frame.begin(), frame.end());
    });
    EXPECT_DOUBLE_EQ(time_of([&] { EXPECT_TRUE(wait_for_frame(frm, 900)); }), 100);

    link.frame_ok = false;
    stop_at(50);
    EXPECT_DOUBLE_EQ(time_of([&] { EXPECT_FALSE(wait_for_frame(frm, 900)); }), 50);
    EXPECT_DOUBLE_EQ(time_of([&] { EXPECT_FALSE(wait_for_frame(frm, 900)); }), 0);
}

TEST_F(LinkPort, SettlingTakesThreeMilliseconds) {
    open_at("115200");
    EXPECT_DOUBLE_EQ(time_of([&] { write_and_settle(frm, Bytes(8, 0x11)); }), 3);
    ASSERT_EQ(port.written.size(), 1U);
    EXPECT_EQ(port.written[0].bytes, Bytes(8, 0x11));
}

struct TimeoutRow {
    double clock;
    std::int32_t baud;
    std::int32_t ms;
};

TEST(ReplyTimeout, FollowsTheClockAndIsRaisedOnSlowLines) {
    const TimeoutRow rows[] = {
        {2.999e6, 115200, 4000}, {3e6, 115200, 3000},     {3.999e6, 115200, 3000},
        {4e6, 115200, 2000},     {5.999e6, 115200, 2000}, {6e6, 115200, 1500},
        {7.999e6, 115200, 1500}, {8e6, 115200, 1200},     {1.1999e7, 115200, 1200},
        {1.2e7, 115200, 1000},   {24e6, 115200, 1000},    {24e6, 1200, 5000},
        {1e6, 1200, 5000},       {24e6, 1201, 3000},      {24e6, 2400, 3000},
        {1e6, 2400, 4000},       {3.5e6, 2400, 3000},     {24e6, 2401, 2000},
        {24e6, 4800, 2000},      {3.5e6, 4800, 3000},     {24e6, 9600, 1500},
        {10e6, 9600, 1500},      {5e6, 9600, 2000},       {24e6, 9601, 1000},
        {24e6, 11520, 1000},     {24e6, 0, 5000},
    };
    for (const TimeoutRow& row : rows)
        EXPECT_EQ(reply_timeout(row.clock, row.baud), row.ms) << row.clock << " " << row.baud;
}

TEST_F(LinkPort, TheReplyTimerTakesItsBaudFromThePort) {
    open_at("1200");
    arm_reply_timer(frm);
    EXPECT_EQ(frm.timers.Timer7.Interval, 5000);
    EXPECT_TRUE(frm.timers.Timer7.Enabled);
    set_port_baud(frm, "115200");
    arm_reply_timer(frm);
    EXPECT_EQ(frm.timers.Timer7.Interval, 1000);
}

// ---- blocks ---------------------------------------------------------------------------

TEST_F(LinkPort, ABlockGoesOutWithItsCommandAndIsAcknowledgedByItsDataSum) {
    open_at("115200");
    Bytes heard;
    target.answer = [&](const Bytes& frame) {
        heard = frame;
        std::uint8_t sum = 0;
        for (std::size_t i = 12; i < frame.size() - 2; ++i)
            sum = static_cast<std::uint8_t>(sum + frame[i]);
        return reply({0x80, sum});
    };
    EXPECT_EQ(send_block(frm, 256, 128, false, image), 0);
    EXPECT_EQ(heard, build_data_frame(256, 128, 0x00, image).bytes);
    EXPECT_EQ(link.rx_copy[3], 0x80);
    EXPECT_EQ(send_block(frm, 128, 16, true, image), 0);
    EXPECT_EQ(heard, build_data_frame(128, 16, 0x30, image).bytes);
}

TEST_F(LinkPort, ABlockAnswerIsJudgedByCodeSumAndLength) {
    open_at("115200");
    const std::uint8_t sum = 10 + 11 + 12 + 13;
    const auto bad = static_cast<std::uint8_t>(sum + 1);
    const std::vector<std::pair<Bytes, int>> answers = {
        {{0x80}, 0},             // six bytes: no sum is told
        {{0x80, sum}, 0},        // seven bytes
        {{0x80, bad}, -1},       //
        {{0x81}, -1},            //
        {{0x81, sum}, -1},       //
        {{0x80, sum, 0x77}, 0},  // longer: the sum still stands at its place
        {{0x80, bad, sum}, -1},
    };
    for (const auto& [payload, result] : answers) {
        target.answer = [&](const Bytes&) { return reply(payload); };
        EXPECT_EQ(send_block(frm, 10, 4, false, image), result)
            << ::testing::PrintToString(payload);
        EXPECT_TRUE(link.frame_ok);
    }
}

TEST_F(LinkPort, ASilentChipFailsABlockAfterTheReplyTime) {
    open_at("115200");
    EXPECT_DOUBLE_EQ(time_of([&] { EXPECT_EQ(send_block(frm, 0, 128, false, image), -1); }), 1000);
    set_port_baud(frm, "1200");
    EXPECT_DOUBLE_EQ(time_of([&] { EXPECT_EQ(send_block(frm, 0, 128, false, image), -1); }), 5000);
    link.crystal_frequency = 1e6F;
    set_port_baud(frm, "115200");
    EXPECT_DOUBLE_EQ(time_of([&] { EXPECT_EQ(send_block(frm, 0, 128, false, image), -1); }), 4000);
}

TEST_F(LinkPort, AnAnswerIsLostWhileReceivingIsOff) {
    open_at("115200");
    target.answer = [&](const Bytes&) { return reply({0x80}); };
    link.receive_enabled = false;
    EXPECT_DOUBLE_EQ(time_of([&] { EXPECT_EQ(send_block(frm, 0, 128, false, image), -1); }), 1000);
    link.receive_enabled = true;
    EXPECT_EQ(send_block(frm, 0, 128, false, image), 0);
}

TEST_F(LinkPort, ABlockAnswerWithAWrongSumRunsIntoTheTimeout) {
    open_at("115200");
    target.answer = [&](const Bytes&) {
        Bytes frame = reply({0x80});
        frame[frame.size() - 2] ^= 1;
        return frame;
    };
    EXPECT_DOUBLE_EQ(time_of([&] { EXPECT_EQ(send_block(frm, 0, 128, false, image), -1); }), 1000);
    EXPECT_TRUE(link.reply_gap_or_bad);
    EXPECT_FALSE(link.frame_ok);
}

TEST_F(LinkPort, StopEndsABlockAtOnce) {
    open_at("115200");
    stop_at(200);
    EXPECT_DOUBLE_EQ(time_of([&] { EXPECT_EQ(send_block(frm, 0, 128, false, image), -1); }), 200);
}

TEST_F(LinkPort, AFailedBlockClosesTheWindowThatWasAskedToClose) {
    open_at("115200");
    EXPECT_EQ(send_block(frm, 0, 4, false, image), -1);
    EXPECT_FALSE(frm.timers.Timer4.Enabled);
    link.close_pending = true;
    EXPECT_EQ(send_block(frm, 0, 4, false, image), -1);
    EXPECT_TRUE(frm.timers.Timer4.Enabled);
    stop_timer(frm.timers.Timer4);
    target.answer = [&](const Bytes&) { return reply({0x80}); };
    EXPECT_EQ(send_block(frm, 0, 4, false, image), 0);
    EXPECT_FALSE(frm.timers.Timer4.Enabled);
}

TEST_F(LinkPort, AnAnswerToTheFrameBeforeIsNotTakenForThisOne) {
    open_at("115200");
    const Bytes late = reply({0x80});
    line.input.assign(late.begin(), late.end());
    link.frame_ok = true;
    EXPECT_EQ(send_block(frm, 0, 4, false, image), -1);
}

TEST_F(LinkPort, AReplyThatIsHereBeforeTheBlockHasLeftIsNotItsAnswer) {
    constexpr double block_ms = 142 * 10 / 115.2;
    const Bytes late = reply({0x80});
    for (const bool answered : {true, false}) {
        for (double ms = 0; ms < 20; ms += 0.25) {
            SCOPED_TRACE(ms);
            open_at("115200");
            frm.link.answer_owed = false;
            if (answered) target.answer = [&](const Bytes&) { return reply({0x80}); };
            target.turnaround = milliseconds(10);
            loop.after(microseconds(static_cast<int>(ms * 1000)),
                       [&] { line.input.insert(line.input.end(), late.begin(), late.end()); });
            int result = 1;
            const double took = time_of([&] { result = send_block(frm, 0, 128, false, image); });
            if (ms < block_ms) {
                EXPECT_EQ(result, answered ? 0 : -1);
                EXPECT_NEAR(took, answered ? block_ms + 10 + 0.7 : 1000, 0.1);
            } else {
                EXPECT_EQ(result, 0);
                EXPECT_NEAR(took, ms, 0.1);
            }
            target.answer = nullptr;
        }
    }
}

TEST_F(LinkPort, ADeviceWithoutAWireMayAnswerAtOnce) {
    open_at("115200");
    port.wired = false;
    const Bytes early = reply({0x80});
    at(1, [&] { line.input.assign(early.begin(), early.end()); });
    EXPECT_EQ(send_block(frm, 0, 128, false, image), 0);
}

TEST_F(LinkPort, PulsesAndTriggersMayBeAnsweredAtAnyTime) {
    open_at("1200");
    const Bytes answer = reply({0x80});
    const Bytes pulse = {0x7F, 0x7F};
    for (const bool trigger : {true, false}) {
        write_frame(frm, answer);  // a request before it
        port.clear_output();
        if (trigger)
            EXPECT_EQ(send_trigger(frm, 0x8A), 0);
        else
            write_signal(frm, pulse);
        forget_reply(link);
        at(1, [&] { line.input.assign(answer.begin(), answer.end()); });
        EXPECT_TRUE(wait_for_frame(frm, 10));
    }
}

TEST_F(LinkPort, TheOutputOfABusyAdapterIsWaitedFor) {
    open_at("115200");
    at(1, [&] { port.write(image); });  // it isn't done when the frame should have left
    const Bytes late = reply({0x80});
    at(30, [&] { line.input.assign(late.begin(), late.end()); });
    EXPECT_EQ(send_block(frm, 0, 128, false, image), -1);
}

TEST_F(LinkPort, AFrameThatTheDriverDroppedIsNotAnsweredInItsTime) {
    open_at("115200");
    at(1, [&] { port.clear_output(); });
    const Bytes late = reply({0x80});
    at(5, [&] { line.input.assign(late.begin(), late.end()); });
    EXPECT_EQ(send_block(frm, 0, 128, false, image), -1);
}

TEST_F(LinkPort, ARequestIsOpenUntilItsAnswerCame) {
    open_at("115200");
    target.answer = [&](const Bytes&) { return reply({0x80}); };
    EXPECT_FALSE(link.open_request);
    send_command(frm, 0x80, 200, 0);
    EXPECT_TRUE(link.open_request);
    EXPECT_TRUE(wait_for_frame(frm, 200));
    EXPECT_FALSE(link.open_request);
    target.answer = nullptr;
    send_command(frm, 0x80, 200, 0);
    EXPECT_FALSE(wait_for_frame(frm, 200));
    EXPECT_TRUE(link.open_request);
}

TEST_F(LinkPort, AVanishedPortFailsABlock) {
    open_at("115200");
    at(1, [&] { port.unplug(); });
    EXPECT_EQ(send_block(frm, 0, 128, false, image), -1);
}

TEST_F(LinkPort, ADemoBlockIsJudgedByItsSixteenBitSum) {
    open_at("115200");
    link.demo_mode = true;
    const Bytes bytes(128, 0xFF);  // sum 7F80
    const auto answer_in_20_ms = [&](std::uint8_t high, std::uint8_t low) {
        at(20, [&, high, low] {
            Bytes frame = {0x5A, 0xA5, 0x00, 0x0A, 0xB3, high, low};
            const std::uint16_t sum = sum16(frame);
            frame.insert(frame.end(), {static_cast<std::uint8_t>(sum >> 8),
                                       static_cast<std::uint8_t>(sum & 0xFF), 0x16});
            line.input.assign(frame.begin(), frame.end());
        });
    };
    answer_in_20_ms(0x7F, 0x80);
    EXPECT_EQ(send_block(frm, 0, 128, false, bytes), 0);
    EXPECT_EQ(port.written.back().bytes, build_demo_frame(0, 128, 0xB3, bytes).bytes);
    EXPECT_TRUE(link.frame_ok);
    EXPECT_EQ(link.rx_copy[5], 0x7F);
    // Eight bits of it are not enough.
    answer_in_20_ms(0x00, 0x80);
    EXPECT_EQ(send_block(frm, 0, 128, true, bytes), -1);
    EXPECT_EQ(port.written.back().bytes, build_demo_frame(0, 128, 0xB4, bytes).bytes);
}

TEST_F(LinkPort, ADemoBlockEndsByTimeOrByEitherStop) {
    open_at("115200");
    link.demo_mode = true;
    const auto time_of_block = [&] {
        return time_of([&] { EXPECT_EQ(send_block(frm, 0, 8, false, image), -1); });
    };
    constexpr double frame_ms = 2;  // 22 bytes, to the next poll
    EXPECT_DOUBLE_EQ(time_of_block(), 1000 + frame_ms);
    link.demo_stop_requested = true;  // cleared by the sender
    at(300, [&] { link.demo_stop_requested = true; });
    EXPECT_DOUBLE_EQ(time_of_block(), 300);
    at(200, [&] { link.stop_requested = true; });
    EXPECT_DOUBLE_EQ(time_of_block(), 200);
    EXPECT_DOUBLE_EQ(time_of_block(), 0) << "a Stop before the block";
}

TEST_F(LinkPort, ADemoBlockReachesTheTargetWholeBeforeItClears) {
    open_at("1200");
    link.demo_mode = true;
    send_block(frm, 0, 128, false, image);
    ASSERT_EQ(port.written.size(), 1U);
    ASSERT_EQ(target.heard.size(), 1U);
    EXPECT_EQ(target.heard[0], port.written[0].bytes);
}

TEST_F(LinkPort, AStopEndsTheWayOfADemoBlock) {
    open_at("1200");
    link.demo_mode = true;
    at(100, [&] {
        link.stop_requested = true;
        port.clear_output();
        close_port(frm);
    });
    EXPECT_LE(time_of([&] { EXPECT_EQ(send_block(frm, 0, 128, false, image), -1); }), 101);
}

// ---- commands ---------------------------------------------------------------------------

TEST_F(LinkPort, ACommandStartsItsTimeAndLeavesTheGapTimeStopped) {
    open_at("115200");
    frm.catalogue.MCU_Info.MCU_Family = 6;
    link.Board_Gap_Wait = 222;
    link.reply_timed_out = link.reply_gap_or_bad = link.frame_ok = true;
    restart_timer(frm, frm.timers.Timer2, 10);
    EXPECT_DOUBLE_EQ(time_of([&] { send_command(frm, 0x80, 200, 0x07); }), 0);
    EXPECT_FALSE(link.reply_timed_out || link.reply_gap_or_bad || link.frame_ok);
    EXPECT_TRUE(frm.timers.Timer1.Enabled);
    EXPECT_EQ(frm.timers.Timer1.Interval, 200);
    EXPECT_FALSE(frm.timers.Timer2.Enabled);
    EXPECT_EQ(frm.timers.Timer2.Interval, 222);
    EXPECT_EQ(port.written.back().bytes, build_board_command(0x80, 6, 7, false));

    run_for(199);
    EXPECT_FALSE(link.reply_timed_out);
    run_for(2);
    EXPECT_TRUE(link.reply_timed_out);
    EXPECT_FALSE(frm.timers.Timer1.Enabled);

    link.use_crc = true;
    send_command(frm, 0x0C, 200, 0);
    EXPECT_EQ(port.written.back().bytes, build_board_command(0x0C, 6, 0, true));
    restart_timer(frm, frm.timers.Timer2, 10);
    run_for(20);
    EXPECT_TRUE(link.reply_gap_or_bad);
    EXPECT_FALSE(frm.timers.Timer2.Enabled);
}

TEST_F(LinkPort, ADemoCommandWaitsForTheOutputAndTwentyMillisecondsMore) {
    open_at("1200");
    write_frame(frm, Bytes(12, 0x55));  // 100 ms on the wire
    const double time = time_of([&] { send_demo_command(frm, 0xB0); });
    EXPECT_GE(time, 120);
    EXPECT_LE(time, 122);
    EXPECT_EQ(port.written.back().bytes, build_demo_command(0xB0));
    EXPECT_EQ(port.written.back().unsent, 0U);
}

TEST_F(LinkPort, ATriggerOpensAClosedPortAndClearsTheReply) {
    link.rx_count = 9;
    link.frame_ok = true;
    EXPECT_EQ(send_trigger(frm, 0x82), 0);
    EXPECT_TRUE(port.is_open());
    EXPECT_EQ(link.rx_count, 0);
    EXPECT_FALSE(link.frame_ok);
    EXPECT_EQ(port.written.back().bytes,
              (Bytes{0xFE, 0xFE, 0xFE, 0xFE, 0x46, 0xB9, 0x6A, 0x00, 0x06, 0x82, 0xF2, 0x16}));
}

TEST_F(LinkPort, ACommandThatIsNoTriggerSendsNothing) {
    open_at("115200");
    EXPECT_EQ(send_trigger(frm, 0x83), -1);
    EXPECT_TRUE(port.written.empty());
}

TEST_F(LinkPort, ATriggerToAPortThatTheSystemRefusesIsLost) {
    port.present.clear();
    EXPECT_EQ(send_trigger(frm, 0x82), 0);
    EXPECT_TRUE(port.written.empty());
}

}  // namespace
}  // namespace vkm::test
