// What the suites of the download board share: the whole tool with a simulated board at
// the other end of its line, and what must hold behind every flow however it ended.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "board/board_download.h"
#include "session_bench.h"
#include "simulators/simulated_board.h"
#include "support/operator_hands.h"
#include "window/main_window.h"

namespace vkm::test {

inline const std::string model_of_board = "VKM47H58RK+";

// The faults by their names, as "lose_reply@block:3".
inline std::vector<sim::BoardFault> board_faults(const std::vector<std::string>& names) {
    std::vector<sim::BoardFault> faults;
    for (const std::string& name : names) {
        const auto fault = sim::parse_fault_on<sim::BoardFrame>(name);
        EXPECT_TRUE(fault) << name;
        if (fault) faults.push_back(*fault);
    }
    return faults;
}

inline sim::BoardConfig board_with(const std::vector<std::string>& faults,
                                   sim::BoardConfig config = {}) {
    config.faults = board_faults(faults);
    return config;
}

struct BoardBench : SessionBench, OperatorHands {
    explicit BoardBench(const sim::BoardConfig& config = {},
                        const std::string& model = model_of_board)
        : SessionBench({.model = model}, model),
          OperatorHands(static_cast<SessionBench&>(*this).frm),
          s(SessionBench::frm.screen),
          board(config) {
        line.connect(board.target());
    }

    void load(std::size_t count, std::int32_t address = 0, unsigned seed = 1) {
        SessionBench::load(count, address, seed);
        loaded = frm.images.AP_Buffer.Bytes;
    }

    // The clicks; each job ends within ten minutes.
    void load_board() { job(s.comTJXZ); }
    void read_board() { job(s.Read24C512); }
    void click_in(std::int64_t ms, Control& control) {
        at(ms, [this, &control] { click(control); });
    }

    int number_of(sim::BoardFrame kind) const {
        int count = 0;
        for (const auto& entry : board.log()) count += !entry.answer && entry.kind == kind;
        return count;
    }
    // The frames of that kind that the board heard.
    std::vector<Bytes> frames(sim::BoardFrame kind) const {
        std::vector<Bytes> all;
        for (const auto& entry : board.log())
            if (!entry.answer && entry.kind == kind) all.push_back(entry.bytes);
        return all;
    }
    bool ran() const { return port.openings > 0; }

    // The storage holds the layout there.
    bool stored(std::size_t first, std::size_t last) const {
        return std::equal(board.storage().begin() + static_cast<std::ptrdiff_t>(first),
                          board.storage().begin() + static_cast<std::ptrdiff_t>(last + 1),
                          frm.board.Board_Image.begin() + static_cast<std::ptrdiff_t>(first));
    }

    std::string tale() const {
        std::string text = log() + "\nverdict " + verdict();
        for (const std::string& fault : board.faults()) text += "\nboard: " + fault;
        for (const auto& box : dialogs.boxes) text += "\nbox: " + box.text;
        return text;
    }

    Screen& s;
    sim::SimulatedBoard board;
    Bytes loaded;  // AP_Buffer as it was before the flow
    double job_took = 0;

  private:
    void job(Control& button) {
        loop.time_limit = loop.elapsed() + std::chrono::minutes(10);
        const double began = elapsed_ms();
        ASSERT_NO_THROW(click(button)) << tale();
        job_took = elapsed_ms() - began;
    }
};

inline void expect_flow_over(const BoardBench& bench, int state = 0) {
    const frmMain& frm = bench.frm;
    EXPECT_EQ(frm.session.UI_State, state) << bench.tale();
    EXPECT_FALSE(bench.port.is_open());
    EXPECT_FALSE(frm.session.Running);
    EXPECT_FALSE(frm.link.use_crc);
    EXPECT_FALSE(frm.screen.comStop_Download.Enabled);
    EXPECT_FALSE(frm.screen.ProgressBar1.Visible);
    EXPECT_TRUE(frm.board.Saved_AP_Image.empty());
    EXPECT_NE(frm.session.Result, Job_Result::running) << bench.tale();
    if (!bench.loaded.empty()) {
        EXPECT_TRUE(frm.images.AP_Buffer.Bytes == bench.loaded) << bench.tale();
    }
}

inline bool told(const BoardBench& bench, std::string_view text) {
    return ("\r\n" + bench.log() + "\r\n").find("\r\n" + std::string(text) + "\r\n") !=
           std::string::npos;
}

inline int times_told(const BoardBench& bench, std::string_view text) {
    int count = 0;
    for (std::size_t at = 0; (at = bench.log().find(text, at)) != std::string::npos; ++at) ++count;
    return count;
}

inline void expect_board_failed(const BoardBench& bench, const std::string& text,
                                const std::string& step) {
    expect_flow_over(bench);
    EXPECT_EQ(bench.frm.session.Result, Job_Result::failed) << bench.tale();
    EXPECT_EQ(bench.frm.session.Failed_Step, step) << bench.tale();
    EXPECT_TRUE(ends_with(bench.log(), text)) << bench.tale();
}

inline void expect_board_stopped(const BoardBench& bench) {
    expect_flow_over(bench);
    EXPECT_EQ(bench.frm.session.Result, Job_Result::stopped) << bench.tale();
    EXPECT_TRUE(ends_with(bench.log(), "Operation is stop.\r\n操作被停止.")) << bench.tale();
}

inline const std::string board_done = "Download OK. / 下载成功。";
inline const std::string board_not_connected = "Communication is failure!\r\n连接失败。";
inline const std::string board_not_loaded = "Download is failure!\r\n下载失败。";
inline const std::string connect_step = "Connect / 连接";
inline const std::string erase_step = "Erase / 擦除";
inline const std::string program_step = "Program / 下载";

}  // namespace vkm::test
