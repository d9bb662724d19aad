// What the suites of the serial terminal share: the program as people start it, and a
// talking target instead of a chip at the other end of the line.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "assistant/serial_assistant.h"
#include "session_bench.h"
#include "simulators/talking_target.h"
#include "support/operator_hands.h"

namespace vkm::test {

inline Bytes bytes_of(std::string_view text) {
    return {text.begin(), text.end()};
}

// Each byte as the terminal shows it.
inline std::string shown_as_hex(const Bytes& bytes) {
    std::string text;
    for (const std::uint8_t byte : bytes) {
        for (const int digit : {byte >> 4, byte & 15}) text += "0123456789ABCDEF"[digit];
        text += ' ';
    }
    return text;
}

inline const std::string open_caption = "打开串口";
inline const std::string close_caption = "关闭串口";
inline const std::string auto_caption = "自动发送";
inline const std::string auto_stop_caption = "停止自动发送";
inline const std::string spread_caption = "自动循环发送";
inline const std::string spread_stop_caption = "停止循环发送";
inline const std::string port_box_title = "  串口调试助手     ";
inline const std::string hex_box_title = "串口调试助手:十六进制发送";

// What the operator does, and what he sees of the port; on any world with a window.
struct TerminalHands : OperatorHands {
    explicit TerminalHands(VirtualWorld& world)
        : OperatorHands(world.frm), world(world), s(world.frm.screen) {}

    void press(const std::string& key) {
        handle_event(world.frm, {&s.texReceive, EventKind::KeyPress, 0, key});
    }
    void open() {
        click(s.comOpenCOM);
        ASSERT_TRUE(world.port.is_open());
    }
    void show_as_hex(bool hex) { choose_second(s.optReceiveHex, hex); }
    void send_as_hex(bool hex) { choose_second(s.optHexSend, hex); }
    void send(const std::string& text, bool hex) {
        s.texSend.Text = text;
        send_as_hex(hex);
        click(s.comDebugSend);
    }
    void fill(std::size_t element, const std::string& text, bool hex = false) {
        s.texSpreadSend[element].Text = text;
        s.cheSpreadHex[element].Value = hex ? 1 : 0;
    }
    void start_cycle(const std::string& ms) {
        s.texSendCycle.Text = ms;
        click(s.comAutoSend);
    }
    void start_spread(const std::string& ms) {
        s.texSpreadSendCycle.Text = ms;
        click(s.comSpreadAutoSend);
    }

    // All that has been written, as one.
    Bytes written() const {
        Bytes all;
        for (const Written& write : world.port.written)
            all.insert(all.end(), write.bytes.begin(), write.bytes.end());
        return all;
    }

    const std::string& received() const { return s.texReceive.Text; }
    const std::string& receive_count() const { return s.labReceiveCount.Caption; }
    const std::string& send_count() const { return s.labSendCount.Caption; }

    VirtualWorld& world;
    Screen& s;

  private:
    static void choose_second(std::array<Control, 2>& pair, bool second) {
        pair[0].Value = second ? 0 : 1;
        pair[1].Value = second ? 1 : 0;
    }
};

struct TerminalBench : VirtualWorld, TerminalHands {
    explicit TerminalBench(const sim::TalkingConfig& config = {})
        : TerminalHands(static_cast<VirtualWorld&>(*this)), peer(config) {
        line.connect(peer.target());
        start_program(frm);
        run_for(600);  // the settings are saved after the start
    }

    // The target says it now, or that many ms from now.
    void say(const Bytes& bytes) { peer.say(loop.now(), bytes); }
    void say_in(std::int64_t ms, const Bytes& bytes) {
        at(ms, [this, bytes] { say(bytes); });
    }

    sim::TalkingTarget peer;
};

inline void expect_shown_open(const TerminalHands& hands) {
    const Screen& s = hands.s;
    EXPECT_EQ(s.comOpenCOM.Caption, close_caption);
    EXPECT_TRUE(s.imgOpen.Visible);
    EXPECT_FALSE(s.imgNotOpen.Visible);
    EXPECT_TRUE(hands.world.frm.link.debug_mode);
    EXPECT_FALSE(hands.world.frm.link.demo_mode);
    EXPECT_TRUE(hands.world.port.is_open());
}

inline void expect_shown_closed(const TerminalHands& hands) {
    const Screen& s = hands.s;
    EXPECT_EQ(s.comOpenCOM.Caption, open_caption);
    EXPECT_FALSE(s.imgOpen.Visible);
    EXPECT_TRUE(s.imgNotOpen.Visible);
    EXPECT_FALSE(s.imgOpen_sys.Visible);
    EXPECT_TRUE(s.imgNotOpen_sys.Visible);
    EXPECT_FALSE(hands.world.frm.link.debug_mode);
    EXPECT_FALSE(hands.world.port.is_open());
}

inline void expect_cycles_stopped(const TerminalHands& hands) {
    EXPECT_EQ(hands.s.comAutoSend.Caption, auto_caption);
    EXPECT_EQ(hands.s.comSpreadAutoSend.Caption, spread_caption);
    EXPECT_FALSE(hands.world.frm.timers.TimerDebugAutoSend.Enabled);
    EXPECT_FALSE(hands.world.frm.timers.TimerSpreadAutoSend.Enabled);
}

}  // namespace vkm::test
