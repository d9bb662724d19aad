// What the suites of the download session share: a bench with a chosen model and
// a file, and what must hold after every session however it ended.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "session/download_session.h"
#include "support/chip_faults.h"
#include "support/virtual_bench.h"
#include "waiting/waiting.h"

namespace vkm::test {

using Bytes = std::vector<std::uint8_t>;

inline std::vector<std::uint8_t> random_bytes(std::size_t count, unsigned seed = 1) {
    std::mt19937 source(seed);
    std::vector<std::uint8_t> bytes(count);
    for (std::uint8_t& byte : bytes) byte = static_cast<std::uint8_t>(source());
    return bytes;
}

struct SessionBench : VirtualBench {
    explicit SessionBench(const sim::ChipConfig& config = {}, const std::string& model = {})
        : VirtualBench(config) {
        EXPECT_TRUE(select_model(model.empty() ? config.model : model));
        run_for(600);  // the settings are saved after a change of model
        start_ms = elapsed_ms();
    }

    void load(std::size_t count, std::int32_t address = 0, unsigned seed = 1) {
        image = random_bytes(count, seed);
        load_bytes(image, address);
    }

    void click_stop_in(std::int64_t ms) {
        at(ms, [this] { comStop_Download(frm); });
    }

    double job_ms() const { return elapsed_ms() - start_ms; }
    const std::string& verdict() const { return frm.screen.labVerdict.Caption; }
    const std::string& count() const { return frm.screen.txtWrite_OK_Count.Text; }

    std::vector<std::uint8_t> image;
    double start_ms = 0;
};

// The text with its digits in the shape of `shape` (as 00:00) replaced by `name`.
inline std::string with_digits_named(std::string text, std::string_view shape,
                                     std::string_view name) {
    const auto fits = [&](std::size_t at) {
        for (std::size_t i = 0; i < shape.size(); ++i) {
            const char c = text[at + i];
            if (shape[i] == '0' ? c < '0' || c > '9' : c != shape[i]) return false;
        }
        return true;
    };
    for (std::size_t at = 0; at + shape.size() <= text.size(); ++at)
        if (fits(at)) text.replace(at, shape.size(), name);
    return text;
}

// The log with its times of day as hh:mm:ss and its lengths as mm:ss.
inline std::string without_times(const std::string& log) {
    return with_digits_named(with_digits_named(log, "00:00:00", "hh:mm:ss"), "00:00", "mm:ss");
}

inline bool ends_with(const std::string& text, std::string_view end) {
    return text.size() >= end.size() &&
           std::string_view(text).substr(text.size() - end.size()) == end;
}

// Every session, whatever became of it, leaves the port closed and the controls
// with the operator.
inline void expect_session_over(const SessionBench& bench) {
    const frmMain& frm = bench.frm;
    EXPECT_EQ(frm.session.UI_State, 0);
    EXPECT_TRUE(frm.screen.comDownload[0].Enabled);
    EXPECT_TRUE(frm.screen.comDownload[1].Enabled);
    EXPECT_TRUE(frm.screen.txtDevice.Enabled);
    EXPECT_FALSE(frm.screen.comStop_Download.Enabled);
    EXPECT_FALSE(bench.port.is_open());
    EXPECT_FALSE(frm.session.Running);
    EXPECT_FALSE(frm.session.Connected);
    EXPECT_TRUE(frm.link.stop_requested);
    EXPECT_FALSE(frm.timers.Timer9.Enabled);
    EXPECT_NE(frm.session.Result, Job_Result::running);
    EXPECT_EQ(frm.screen.labVerdict.Value, static_cast<int>(frm.session.Result));
}

inline void expect_good_chip(const SessionBench& bench, const std::string& count = "1") {
    expect_session_over(bench);
    EXPECT_TRUE(bench.frm.session.Program_OK) << bench.story();
    EXPECT_EQ(bench.verdict(), "✔ OK / 成功") << bench.story();
    EXPECT_EQ(bench.frm.session.Result, Job_Result::done);
    EXPECT_EQ(bench.count(), count);
    EXPECT_EQ(bench.settings.on_disk.at({"Settings", "Write_OK_Count"}), count);
    EXPECT_TRUE(bench.chip.started()) << bench.story();
}

inline void expect_failed_at(const SessionBench& bench, const std::string& step) {
    expect_session_over(bench);
    EXPECT_EQ(bench.verdict(), "✘ Failed / 失败: " + step) << bench.story();
    EXPECT_EQ(bench.frm.session.Result, Job_Result::failed);
    EXPECT_EQ(bench.frm.session.Failed_Step, step);
    EXPECT_EQ(bench.count(), "0");
}

inline void expect_stopped(const SessionBench& bench) {
    expect_session_over(bench);
    EXPECT_EQ(bench.verdict(), "■ Stopped / 已停止") << bench.story();
    EXPECT_EQ(bench.frm.session.Result, Job_Result::stopped);
    EXPECT_TRUE(ends_with(bench.log(), "\r\nOperation is stop. / 操作被停止.")) << bench.story();
}

}  // namespace vkm::test
