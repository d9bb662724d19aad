// The flows of the download board from the click to the end: what is refused, what the
// operator may do meanwhile, reading the storage back, and the chips that a board programs
// from what it was given.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "board_bench.h"
#include "board_frames.h"
#include "catalogue/model_lookup.h"
#include "options/mcu_options.h"
#include "simulators/board_job.h"
#include "simulators/board_programmer.h"
#include "support/holding_line.h"

namespace vkm::test {
namespace {

using sim::BoardFrame;

constexpr std::size_t file_size = 0x1234;

void expect_untouched_port(const BoardBench& bench) {
    EXPECT_EQ(bench.port.opens, 0);
    EXPECT_FALSE(bench.frm.session.Running);
    EXPECT_EQ(bench.frm.session.UI_State, 0);
    EXPECT_TRUE(bench.frm.images.AP_Buffer.Bytes == bench.loaded);
}

// ---- before the port ----------------------------------------------------------------------

TEST(BoardFlow, WithoutAFileShowsTheBoxAlone) {
    BoardBench bench;
    const std::string before = bench.log();
    bench.load_board();
    ASSERT_EQ(bench.boxes().size(), 1U);
    EXPECT_EQ(bench.boxes()[0].text, "    Please open file./请打开文件。    ");
    EXPECT_EQ(bench.port.opens, 0);
    EXPECT_EQ(bench.log(), before);
    EXPECT_EQ(bench.verdict(), "");
}

struct LimitCase {
    std::string text;
    std::string box;  // empty: taken
};

TEST(BoardFlow, TheLimitIsCheckedBeforeThePort) {
    const std::string small = "脱机下载板下载数量上限应大于 0。";
    const std::string great = "脱机下载板下载数量上限应小于、等于 1000000。";
    const LimitCase cases[] = {{"0", small},           {"-1", small},       {"", small},
                               {"abc", small},         {"0.5", small},      {"1000001", great},
                               {"99999999999", great}, {"1000000.5", great}};
    for (const auto& [text, box] : cases) {
        BoardBench bench;
        bench.load(file_size);
        bench.s.txt_download_max.Text = text;
        bench.load_board();
        SCOPED_TRACE(text);
        ASSERT_EQ(bench.boxes().size(), 1U);
        EXPECT_EQ(bench.boxes()[0].text, box);
        expect_untouched_port(bench);
    }
    for (const std::string text : {"1", "1000000"}) {
        BoardBench bench;
        bench.load(file_size);
        bench.s.txt_download_max.Text = text;
        bench.load_board();
        EXPECT_TRUE(bench.boxes().empty());
        EXPECT_EQ(bench.frm.session.Result, Job_Result::done) << bench.tale();
        EXPECT_EQ(sim::chips_left(bench.board.storage()), static_cast<unsigned>(std::stoi(text)));
    }
}

TEST(BoardFlow, APortThatCantBeOpenedIsToldWithThreeBeeps) {
    for (const bool by_rate : {false, true}) {
        BoardBench bench;
        bench.load(file_size);
        if (by_rate)
            bench.port.refused_baud = {115200};
        else
            bench.port.open_error[1] = error_busy;
        bench.load_board();
        expect_board_failed(bench, "打开串口失败!\r\n串口已被其它程序打开或不存在。", connect_step);
        EXPECT_TRUE(
            bench.log_has("Open COM port is failure!\r\nThe COM port opened by another "
                          "Program or no the COM port.\r\n"));
        EXPECT_EQ(bench.sounder.beeps(), 3);
        EXPECT_EQ(bench.port.openings, 0);
    }
}

// ---- a whole job ------------------------------------------------------------------------------

TEST(BoardFlow, TellsItsSteps) {
    BoardBench bench;
    bench.load(file_size);
    bench.s.textMsg.Text.clear();
    bench.load_board();
    EXPECT_EQ(bench.frm.session.Result, Job_Result::done) << bench.tale();
    for (const char* text :
         {"We are connecting ... \r\n正在连接...", "Please turn power on.\r\n请给脱机下载板上电。",
          "Connect OK. / 连接成功。",
          "we are  processing data, please wait...\r\n正在处理数据，请稍候...",
          "We are erasing all ...\r\n正在擦除全片内容...", "We are download ...\r\n正在下载 ...",
          "Download OK. / 下载成功。"})
        EXPECT_TRUE(told(bench, text)) << text << "\n" << bench.tale();
    EXPECT_EQ(bench.verdict(), "✔ OK / 成功");
}

TEST(BoardFlow, InEnglishTellsEnglishAlone) {
    BoardBench bench;
    bench.load(file_size);
    bench.s.textMsg.Text.clear();
    bench.s.Show_English = true;
    bench.load_board();
    EXPECT_EQ(bench.frm.session.Result, Job_Result::done) << bench.tale();
    for (const char c : bench.log()) ASSERT_LT(static_cast<unsigned char>(c), 0x80) << bench.log();
    EXPECT_TRUE(told(bench, "Version: 17"));
}

TEST(BoardFlow, HoldsTheControlsMeanwhile) {
    for (const int state : {0, 2}) {
        BoardBench bench;
        bench.load(file_size);
        if (state == 2) comLockOptions(bench.frm);
        ASSERT_EQ(bench.frm.session.UI_State, state);
        int seen = 0;
        for (const int ms : {5, 500, 3000, 7000})
            bench.at(ms, [&] {
                ++seen;
                EXPECT_EQ(bench.frm.session.UI_State, state + 1);
                EXPECT_TRUE(bench.s.comStop_Download.Enabled);
                EXPECT_TRUE(bench.frm.session.Running);
                EXPECT_EQ(bench.port.settings(), "115200,n,8,1");
                EXPECT_TRUE(bench.frm.link.use_crc);
            });
        bench.load_board();
        EXPECT_GT(bench.job_took, 7000);
        EXPECT_EQ(seen, 4);
        expect_flow_over(bench, state);
        EXPECT_EQ(bench.frm.session.Result, Job_Result::done) << bench.tale();
    }
}

TEST(BoardFlow, ShowsItsProgress) {
    BoardBench bench;
    bench.load(file_size);
    std::vector<std::int32_t> values;
    for (int ms = 1000; ms < 7000; ms += 500)
        bench.at(ms, [&] {
            EXPECT_TRUE(bench.s.ProgressBar1.Visible);
            values.push_back(bench.s.ProgressBar1.Value);
        });
    bench.load_board();
    ASSERT_EQ(values.size(), 12U);
    for (std::size_t i = 1; i < values.size(); ++i) EXPECT_GT(values[i], values[i - 1]);
}

TEST(BoardFlow, ClosesThePortOfTheTerminalFirst) {
    BoardBench bench;
    bench.load(file_size);
    bench.click(bench.s.comOpenCOM);
    ASSERT_TRUE(bench.frm.link.debug_mode);
    bench.load_board();
    EXPECT_FALSE(bench.frm.link.debug_mode);
    EXPECT_EQ(bench.s.comOpenCOM.Caption, "打开串口");
    expect_flow_over(bench);
    EXPECT_EQ(bench.frm.session.Result, Job_Result::done) << bench.tale();
}

TEST(BoardFlow, OtherClicksDoNothingMeanwhile) {
    BoardBench plain;
    plain.load(file_size);
    plain.load_board();
    BoardBench bench;
    bench.load(file_size);
    for (const int ms : {1, 100, 400, 2000, 6000, 7500}) {
        bench.click_in(ms, bench.s.comTJXZ);
        bench.click_in(ms, bench.s.comDownload[0]);
        bench.click_in(ms, bench.s.comDownload[1]);
        bench.click_in(ms, bench.s.Read24C512);
        bench.click_in(ms, bench.s.com_TJXZ_help);
    }
    bench.load_board();
    EXPECT_GT(bench.job_took, 7500);
    EXPECT_NEAR(bench.job_took, plain.job_took, 1);
    EXPECT_TRUE(bench.boxes().empty());
    EXPECT_EQ(bench.log(), plain.log());
    EXPECT_EQ(bench.port.openings, plain.port.openings);
    EXPECT_EQ(bench.board.counters().frames, plain.board.counters().frames);
    expect_flow_over(bench);
}

TEST(BoardFlow, ABoxShowsTheHelp) {
    BoardBench bench;
    bench.click(bench.s.com_TJXZ_help);
    ASSERT_EQ(bench.boxes().size(), 1U);
    EXPECT_EQ(bench.boxes()[0].title, "脱机下载板使用说明");
    EXPECT_NE(bench.boxes()[0].text.find("1000000"), std::string::npos);
}

// ---- laying the job out ----------------------------------------------------------------

std::string cut_box(int kb) {
    return "此脱机下载板版本或该型号的 MCU 最多下载" + std::to_string(kb) +
           "K 程序和数据, 超出部分将不下载。\r\n                      按确定继续";
}

TEST(BoardFlow, TellsWhatTheBoardCantTake) {
    for (const std::size_t size : {1024U, 1025U, 3000U}) {
        BoardBench bench({.capacity_kb = 1});
        bench.load(size);
        bench.dialogs.stays = std::chrono::seconds(2);
        bool looked = false;
        for (int ms = 10; ms < 2000; ++ms)
            bench.at(ms, [&] {
                if (bench.dialogs.open_boxes == 0) return;
                looked = true;
                // Half a job is none: Stop waits.
                EXPECT_FALSE(bench.s.comStop_Download.Enabled);
            });
        bench.at(3000, [&] { EXPECT_TRUE(bench.s.comStop_Download.Enabled); });
        bench.load_board();
        SCOPED_TRACE(size);
        expect_flow_over(bench);
        EXPECT_EQ(bench.frm.session.Result, Job_Result::done) << bench.tale();
        EXPECT_EQ(looked, size > 1024);
        ASSERT_EQ(bench.boxes().size(), size > 1024 ? 1U : 0U);
        if (size > 1024) {
            EXPECT_EQ(bench.boxes()[0].text, cut_box(1));
        }
        const sim::BoardJobRead read = sim::read_board_job(bench.board.storage());
        EXPECT_EQ(read.problem, "");
        EXPECT_TRUE(read.job.code == Bytes(bench.image.begin(), bench.image.begin() + 1024));
    }
}

TEST(BoardFlow, ABoardWithoutRoomTakesNothing) {
    BoardBench bench({.capacity_kb = 0});
    bench.load(file_size);
    bench.load_board();
    EXPECT_TRUE(bench.boxes().empty());
    expect_board_failed(bench, board_not_loaded, program_step);
    EXPECT_EQ(bench.board.counters().erases, 0);
}

TEST(BoardFlow, CodeThatNeitherStageHoldsIsTold) {
    const struct {
        std::uint8_t version;
        std::size_t size;
        const char* from;
    } rows[] = {{0x16, 0xAC00, nullptr},
                {0x16, 0xAC01, "AC00"},
                {0x17, 0xCC00, nullptr},
                {0x17, 0xCC01, "CC00"}};
    for (const auto& row : rows) {
        BoardBench bench({.version = row.version, .capacity_kb = 64}, "VKM47H516RK+");
        bench.load(row.size);
        bench.load_board();
        EXPECT_EQ(bench.frm.session.Result, Job_Result::done) << bench.tale();
        EXPECT_EQ(bench.log_has("is not on the board."), row.from != nullptr) << row.size;
        if (row.from) {
            EXPECT_TRUE(bench.log_has(std::string("The program from address ") + row.from));
        }
        expect_flow_over(bench);
    }
}

TEST(BoardFlow, TheLimitIsTheOneThatWasChecked) {
    BoardBench bench({.powered_at = sim::never, .powered_after_wakes = 500});
    bench.load(file_size);
    bench.s.txt_download_max.Text = "5000";
    bench.at(500, [&] { bench.s.txt_download_max.Text = "-7"; });
    bench.load_board();
    EXPECT_EQ(bench.frm.session.Result, Job_Result::done) << bench.tale();
    const auto limit = bench.board.storage().begin() + 0xEC90;
    EXPECT_EQ(Bytes(limit, limit + 4), (Bytes{0, 0, 0x13, 0x88}));
    expect_flow_over(bench);
}

TEST(BoardFlow, AnOlderCodeThatNoModelHasCountsAsNone) {
    BoardBench bench({}, "VKM26H5408AD");
    bench.load(file_size);
    bench.frm.catalogue.MCU_Info.Old_ID = "F3FE";
    bench.load_board();
    EXPECT_EQ(bench.boxes().size(), 1U);
    expect_flow_over(bench);
    EXPECT_EQ(bench.frm.session.Result, Job_Result::done) << bench.tale();
    const auto storage = bench.board.storage();
    EXPECT_EQ(storage[0xEC22] | storage[0xEC23], 0);
    for (std::size_t at = 0xECC1; at < 0xECCA; ++at) EXPECT_EQ(storage[at], 0);
    for (std::size_t at = 0xECD3; at < 0xECDC; ++at) EXPECT_EQ(storage[at], 0);
    EXPECT_EQ(sim::read_board_job(storage).problem, "");
}

TEST(BoardFlow, AnOlderCodeStandsBesideTheNewOne) {
    BoardBench bench({}, "VKM26H5408AD");
    bench.load(file_size);
    bench.load_board();
    EXPECT_TRUE(bench.boxes().empty());
    const auto storage = bench.board.storage();
    EXPECT_EQ(storage[0xEC20], 0xE0);
    EXPECT_EQ(storage[0xEC22], 0xF3);
    EXPECT_EQ(storage[0xEC23], 0x18);
    // The last address of the older chip's data memory.
    EXPECT_EQ(storage[0xECC8] * 256 + storage[0xECC9], 0x2FFF);
}

struct Numbering : BoardBench {
    explicit Numbering(const std::string& address = "007E", const std::string& length = "4",
                       const std::string& next = "12345678", const std::string& more = "1",
                       const sim::BoardConfig& config = {})
        : BoardBench(config) {
        load(file_size);
        const char* names[] = {address.c_str(), length.c_str(), next.c_str(), more.c_str()};
        for (std::size_t i = 0; i < 4; ++i) s.texAuto_Increase[i].Text = names[i];
        s.cheAuto_Increase.Value = 1;
        click(s.cheAuto_Increase);
        EXPECT_TRUE(frm.increase.Auto_Increase.Active);
        EXPECT_TRUE(boxes().empty()) << tale();
        loaded = frm.images.AP_Buffer.Bytes;
    }
};

const std::string too_great =
    "自动增量下一值 + (增量*脱机下载板下载数限量) 太大( >2147483648 ), \r\n"
    "请减小自动增量下一值, 或减小增量, 或减小脱机下载板下载数限量";

TEST(BoardNumbering, TheLastNumberMustStayBelowTwoToTheThirtyFirst) {
    for (const int over : {0, 1}) {
        Numbering bench;
        bench.s.txt_download_max.Text = "100";
        bench.s.texAuto_Increase[3].Text = "2";
        bench.s.texAuto_Increase[2].Text = std::to_string(2147483447 + over);
        bench.load_board();
        SCOPED_TRACE(over);
        if (over == 0) {
            EXPECT_TRUE(bench.boxes().empty());
            EXPECT_EQ(bench.frm.session.Result, Job_Result::done) << bench.tale();
            expect_flow_over(bench);
        } else {
            ASSERT_EQ(bench.boxes().size(), 1U);
            EXPECT_EQ(bench.boxes()[0].text, too_great);
            EXPECT_EQ(bench.frm.session.Result, Job_Result::failed);
            EXPECT_EQ(bench.board.counters().erases, 0);
            EXPECT_TRUE(bench.s.txt_download_max.Enabled);
            expect_flow_over(bench);
        }
    }
}

TEST(BoardNumbering, ANumberThatIsSwitchedOffIsNotChecked) {
    BoardBench bench;
    bench.load(file_size);
    bench.s.texAuto_Increase[2].Text = "2147483647";
    bench.load_board();
    EXPECT_TRUE(bench.boxes().empty());
    EXPECT_EQ(bench.frm.session.Result, Job_Result::done) << bench.tale();
    EXPECT_EQ(bench.board.storage()[0xEC80], 0);
    expect_flow_over(bench);
}

TEST(BoardNumbering, IsTakenFromTheScreen) {
    Numbering bench("007E", "4", "12345678", "3");
    bench.load_board();
    const auto begin = bench.board.storage().begin() + 0xEC80;
    const Bytes expected = {1, 0x00, 0x00, 0x7E, 2, 0x00, 0x00, 0x80, 2, 3};
    EXPECT_EQ(Bytes(begin, begin + 10), expected);
    std::uint8_t chosen = 0xFF;
    for (std::uint8_t i = 0; i < 3; ++i)
        if (bench.s.optAuto_Increase[i].Value != 0) chosen = i;
    EXPECT_EQ(begin[10], chosen);
    expect_flow_over(bench);
}

TEST(BoardNumbering, WhatTheBoardHasNoByteForIsRefused) {
    const std::pair<std::size_t, const char*> wrong[] = {
        {3, "256"}, {3, "-1"}, {1, "11"}, {1, "0"}};
    for (const auto& [field, text] : wrong) {
        Numbering bench;
        bench.s.texAuto_Increase[field].Text = text;
        bench.load_board();
        ASSERT_EQ(bench.boxes().size(), 1U) << text;
        EXPECT_FALSE(bench.ran()) << text;
        expect_flow_over(bench);
    }
}

TEST(BoardNumbering, WhatCantBeWrittenIsNoJob) {
    const std::pair<std::size_t, const char*> wrong[] = {{2, "12 4"}, {2, "2147483648"}, {1, "5"}};
    for (const auto& [field, text] : wrong) {
        Numbering bench;
        bench.s.optAuto_Increase[0].Value = 1;
        bench.s.optAuto_Increase[1].Value = 0;
        bench.s.texAuto_Increase[field].Text = text;
        handle_event(bench.frm, {&bench.s.texAuto_Increase[field], EventKind::Change, 0, {}});
        bench.load_board();
        EXPECT_FALSE(bench.boxes().empty()) << text;
        EXPECT_FALSE(bench.ran()) << text;
        expect_flow_over(bench);
    }
}

TEST(BoardNumbering, AFileThatIsReadAgainSwitchesItOffAndIsTold) {
    Numbering bench;
    bench.files.add("/program.bin", bench.image);
    bench.frm.images.Program_File = "/program.bin";
    bench.s.cekReloadFile.Value = 1;
    bench.load_board();
    ASSERT_EQ(bench.boxes().size(), 1U);
    EXPECT_TRUE(bench.boxes()[0].text.starts_with("已重新打开文件, 自动增量因此关闭"));
    EXPECT_EQ(bench.s.cheAuto_Increase.Value, 0);
    EXPECT_FALSE(bench.ran());
}

// A number that was touched since goes into the image first, as in any job.
TEST(BoardNumbering, ATouchedNumberIsPatchedFirst) {
    Numbering bench("0100");
    bench.s.texAuto_Increase[2].Text = "77";
    handle_event(bench.frm, {&bench.s.texAuto_Increase[2], EventKind::Change, 0, {}});
    bench.load_board();
    EXPECT_EQ(bench.frm.session.Result, Job_Result::done) << bench.tale();
    EXPECT_FALSE(bench.frm.images.AP_Buffer.Bytes == bench.loaded);
    bench.loaded = bench.frm.images.AP_Buffer.Bytes;
    expect_flow_over(bench);
    EXPECT_TRUE(bench.stored(0x4000, 0xF7FF));
    EXPECT_TRUE(std::equal(bench.loaded.begin(), bench.loaded.begin() + file_size,
                           bench.board.storage().begin() + 0x4000));
}

TEST(BoardNumbering, AWindowThatIsClosedBehindItsBoxOpensNoPort) {
    Numbering bench("0100");
    bench.s.texAuto_Increase[0].Text = "FFFF";
    handle_event(bench.frm, {&bench.s.texAuto_Increase[0], EventKind::Change, 0, {}});
    bench.dialogs.stays = std::chrono::seconds(1);
    bench.at(500, [&] {
        EXPECT_EQ(bench.dialogs.open_boxes, 1);
        QueryUnload(bench.frm);
    });
    bench.load_board();
    EXPECT_FALSE(bench.boxes().empty());
    EXPECT_EQ(bench.port.opens, 0);
    EXPECT_FALSE(bench.frm.session.Running);
}

// The copy that a job keeps of the image never comes back in a later one.
TEST(BoardNumbering, AnotherProgramStaysWhenItsFlowFails) {
    Numbering bench;
    bench.load_board();
    EXPECT_EQ(bench.frm.session.Result, Job_Result::done) << bench.tale();
    expect_flow_over(bench);
    bench.load(file_size, 0, 2);
    for (const char* fault : {"lose_frame@link_check:1*0", "lose_frame@capacity:1*0",
                              "lose_frame@erase:1*0", "lose_frame@block:1*0"}) {
        bench.board.forget_faults();
        bench.board.add_fault(board_faults({fault})[0]);
        bench.load_board();
        EXPECT_EQ(bench.frm.session.Result, Job_Result::failed) << bench.tale();
        expect_flow_over(bench);
    }
}

TEST(BoardNumbering, TheImageComesBackAsTheJobFoundIt) {
    Numbering bench;
    // Something of the edge touches the image behind the copy.
    bench.at(3000, [&] { bench.frm.images.AP_Buffer.Bytes[0x7E] ^= 0xFF; });
    bench.load_board();
    EXPECT_EQ(bench.frm.session.Result, Job_Result::done) << bench.tale();
    expect_flow_over(bench);
}

// ---- Stop, and the closing of the window ------------------------------

double whole_job_ms() {
    BoardBench bench({.powered_at = sim::never, .powered_after_wakes = 50});
    bench.load(file_size);
    bench.load_board();
    EXPECT_EQ(bench.frm.session.Result, Job_Result::done);
    return bench.job_took;
}

TEST(BoardStop, EndsTheJobAtOnceAtAnyMoment) {
    const double whole = whole_job_ms();
    std::vector<std::int64_t> moments;
    for (std::int64_t ms = 0; ms < 240; ms += 3) moments.push_back(ms);
    for (std::int64_t ms = 240; ms < static_cast<std::int64_t>(whole); ms += 97)
        moments.push_back(ms);
    for (const std::int64_t ms : moments) {
        BoardBench bench({.powered_at = sim::never, .powered_after_wakes = 50});
        bench.load(file_size);
        bench.click_in(ms, bench.s.comStop_Download);
        bench.load_board();
        SCOPED_TRACE(ms);
        expect_board_stopped(bench);
        EXPECT_LT(bench.job_took, static_cast<double>(ms) + 3);
        if (HasFailure()) return;
    }
}

// Stop within the wait for an answer that doesn't come.
TEST(BoardStop, EndsEveryWait) {
    const std::pair<const char*, BoardFrame> lost[] = {
        {"lose_frame@wake:1*0", BoardFrame::wake},
        {"lose_frame@link_check:5*0", BoardFrame::link_check},
        {"lose_frame@version:1*0", BoardFrame::version},
        {"lose_frame@capacity:1*0", BoardFrame::capacity},
        {"lose_frame@version:2*0", BoardFrame::version},
        {"lose_frame@erase:1*0", BoardFrame::erase},
        {"lose_frame@block:1*0", BoardFrame::block},
        {"lose_frame@block:30*0", BoardFrame::block},
        {"lose_frame@erase_second:1*0", BoardFrame::erase_second},
        {"lose_frame@link_check:12*0", BoardFrame::link_check},
        {"lose_frame@block:390*0", BoardFrame::block}};
    for (const auto& [fault, frame] : lost)
        for (const int later : {1, 30, 45, 350, 610, 650}) {
            BoardBench bench(board_with({fault}));
            bench.load(file_size);
            const int nth = board_faults({fault})[0].nth;
            double stopped_at = 0;
            int due = later;
            std::function<void()> watch = [&] {
                if (bench.number_of(frame) >= nth && --due == 0) {
                    stopped_at = bench.elapsed_ms();
                    bench.click(bench.s.comStop_Download);
                }
                if (stopped_at == 0) bench.at(1, watch);
            };
            bench.at(1, watch);
            bench.load_board();
            SCOPED_TRACE(std::string(fault) + " " + std::to_string(later));
            expect_board_stopped(bench);
            EXPECT_GT(stopped_at, 0);
            EXPECT_LT(bench.elapsed_ms() - stopped_at, 3);
            if (HasFailure()) return;
        }
}

TEST(BoardStop, ClosingTheWindowEndsTheJob) {
    for (const int ms : {1, 100, 400, 1000, 3000, 8000}) {
        BoardBench bench;
        bench.load(file_size);
        bench.at(ms, [&] { EXPECT_FALSE(QueryUnload(bench.frm)); });
        bench.load_board();
        expect_board_stopped(bench);
        EXPECT_LT(bench.job_took, ms + 3);
        EXPECT_TRUE(bench.frm.link.close_pending);
        bench.run_for(1000);
        EXPECT_TRUE(bench.s.window.Close_Requested);
    }
}

// ---- reading the storage back ----------------------------------------------------------------

// The whole storage as the raw job leaves it.
Bytes raw_storage(const BoardBench& bench) {
    Bytes raw(0x10000, 0xFF);
    std::copy(bench.loaded.begin() + 0x4000, bench.loaded.begin() + 0x10000, raw.begin() + 0x4000);
    const auto& words = bench.frm.options.Option_Bytes[0];
    raw[0xFFD0] = 0xF1;
    raw[0xFFD1] = 0x08;
    for (std::size_t i = 0; i < 8; ++i) {
        raw[0xFFE0 + i] = static_cast<std::uint8_t>(words[8 + i]);
        raw[0xFFF0 + i] = static_cast<std::uint8_t>(words[i]);
    }
    return raw;
}

bool image_is(const BoardBench& bench, const Bytes& bytes, std::size_t count) {
    const Bytes& image = bench.frm.images.AP_Buffer.Bytes;
    return std::equal(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(count),
                      image.begin());
}

// What expect_flow_over asks, the image left aside.
void expect_read_over(BoardBench& bench) {
    bench.loaded.clear();
    expect_flow_over(bench);
}

TEST(BoardRead, WritesTheImageRawAndReadsTheWholeStorage) {
    BoardBench bench;
    bench.load(0x10000);
    bench.read_board();
    EXPECT_EQ(bench.frm.session.Result, Job_Result::done) << bench.tale();
    const Bytes raw = raw_storage(bench);
    EXPECT_TRUE(std::equal(raw.begin(), raw.end(), bench.board.storage().begin()));
    EXPECT_TRUE(image_is(bench, raw, 0x10000));
    EXPECT_EQ(bench.board.first_stage(), (std::vector<sim::WrittenRange>{{0x4000, 0xFFFF}}));
    EXPECT_EQ(bench.board.counters().second_erases, 0);

    const auto reads = bench.frames(BoardFrame::read);
    ASSERT_EQ(reads.size(), 512U);
    for (unsigned page = 0; page < 512; ++page) EXPECT_EQ(reads[page], board_read(page * 128));
    EXPECT_EQ(bench.frm.images.AP_Buffer.Image_High, 65535);
    EXPECT_EQ(bench.frm.images.AP_Buffer.Image_Low, 0);
    EXPECT_TRUE(bench.frm.images.File_Loaded);
    unsigned sum = 0;
    for (const std::uint8_t byte : raw) sum += byte;
    char text[16];
    std::snprintf(text, sizeof text, "%07XH", sum);
    EXPECT_EQ(bench.s.txtFileCheckSum.Text.substr(0, 8), text);
    EXPECT_TRUE(told(bench, "正在读 24C512 ..."));
    EXPECT_TRUE(ends_with(bench.log(), "\r\n读 24C512 OK")) << bench.tale();
    EXPECT_EQ(times_told(bench, "Download OK."), 0);
    EXPECT_NE(bench.s.txtBuffer2.Text.find("FF FF FF"), std::string::npos);  // of 0000 on
    EXPECT_TRUE(bench.board.faults().empty()) << bench.tale();
    expect_read_over(bench);
}

sim::BoardConfig full_board(const std::vector<std::string>& faults = {}) {
    return board_with(faults, {.storage = random_bytes(0x10000, 5)});
}

TEST(BoardRead, WithoutAFileReadsAlone) {
    BoardBench bench(full_board());
    bench.read_board();
    ASSERT_EQ(bench.boxes().size(), 1U);
    EXPECT_EQ(bench.boxes()[0].text, "    Please open file./请打开文件。    ");
    EXPECT_EQ(bench.number_of(BoardFrame::block), 0);
    EXPECT_EQ(bench.number_of(BoardFrame::wake), 0);
    EXPECT_TRUE(image_is(bench, random_bytes(0x10000, 5), 0x10000));
    EXPECT_EQ(bench.frm.session.Result, Job_Result::done) << bench.tale();
    expect_read_over(bench);
}

TEST(BoardRead, TriesAPageThreeTimes) {
    for (const char* kind :
         {"lose_frame@read:100*", "lose_reply@read:100*", "wrong_sum@read:100*",
          "cut_off@read:100*=50", "other_code@read:100*=128", "damage@read:100*=60"}) {
        const std::string text = kind;
        const std::size_t star = text.find('*') + 1;
        const auto times = [&](const char* n) {
            return std::vector<std::string>{text.substr(0, star) + n + text.substr(star)};
        };
        SCOPED_TRACE(kind);
        BoardBench good(full_board(times("2")));
        good.read_board();
        EXPECT_EQ(good.frm.session.Result, Job_Result::done) << good.tale();
        EXPECT_TRUE(image_is(good, random_bytes(0x10000, 5), 0x10000));
        EXPECT_EQ(good.number_of(BoardFrame::read), 514);
        expect_read_over(good);

        BoardBench bad(full_board(times("3")));
        bad.read_board();
        EXPECT_EQ(bad.frm.session.Result, Job_Result::failed) << bad.tale();
        EXPECT_EQ(bad.frm.session.Failed_Step, "Read 24C512 / 读 24C512");
        EXPECT_TRUE(ends_with(bad.log(), "\r\n读 24C512 失败")) << bad.tale();
        EXPECT_EQ(bad.number_of(BoardFrame::read), 102);
        EXPECT_TRUE(image_is(bad, random_bytes(0x10000, 5), 99 * 128));
        const Bytes& image = bad.frm.images.AP_Buffer.Bytes;
        EXPECT_TRUE(std::all_of(image.begin() + 99 * 128, image.end(),
                                [](std::uint8_t byte) { return byte == 0; }));
        EXPECT_FALSE(bad.frm.images.File_Loaded);
        expect_read_over(bad);
    }
}

TEST(BoardRead, WaitsSixHundredMillisecondsForAPage) {
    BoardBench bench(full_board({"lose_frame@read:1*3"}));
    bench.read_board();
    EXPECT_GE(bench.job_took, 1800);
    EXPECT_LE(bench.job_took, 3700);
}

TEST(BoardRead, StopEndsTheReading) {
    for (const int ms : {1, 50, 500, 3000}) {
        BoardBench bench(full_board());
        bench.click_in(ms, bench.s.comStop_Download);
        bench.read_board();
        EXPECT_EQ(bench.frm.session.Result, Job_Result::stopped) << bench.tale();
        EXPECT_TRUE(ends_with(bench.log(), "\r\n操作被停止.")) << bench.tale();
        EXPECT_LT(bench.job_took, ms + 3);
        EXPECT_FALSE(bench.frm.images.File_Loaded);
        expect_read_over(bench);
    }
}

TEST(BoardRead, NothingIsReadWhenTheImageWasntWritten) {
    for (const char* fault : {"lose_frame@link_check:1*0", "lose_frame@capacity:1*0",
                              "lose_frame@erase:1*0", "lose_frame@block:300*6"}) {
        BoardBench bench(board_with({fault}));
        bench.load(file_size);
        bench.read_board();
        EXPECT_EQ(bench.frm.session.Result, Job_Result::failed) << bench.tale();
        EXPECT_EQ(bench.number_of(BoardFrame::read), 0);
        EXPECT_TRUE(bench.frm.images.File_Loaded);
        expect_flow_over(bench);
    }
    for (const int ms : {1, 400, 4000}) {
        BoardBench bench;
        bench.load(file_size);
        bench.click_in(ms, bench.s.comStop_Download);
        bench.read_board();
        expect_board_stopped(bench);
        EXPECT_EQ(bench.number_of(BoardFrame::read), 0);
    }
}

TEST(BoardRead, APortThatIsGoneBehindTheWritingIsToldAndLeavesTheImage) {
    BoardBench bench;
    bench.load(file_size);
    bench.port.nth_open_error[2] = error_busy;
    bench.read_board();
    EXPECT_TRUE(bench.log_has("Chinese:串口已被其它程序打开或该串口不存在。")) << bench.tale();
    EXPECT_EQ(bench.sounder.beeps(), 3);
    EXPECT_EQ(bench.number_of(BoardFrame::read), 0);
    EXPECT_TRUE(bench.frm.images.File_Loaded);
    EXPECT_EQ(bench.frm.session.Result, Job_Result::failed) << bench.tale();
    EXPECT_EQ(bench.frm.session.Failed_Step, "Read 24C512 / 读 24C512");
    expect_flow_over(bench);
}

TEST(BoardRead, APageThatComesLateIsNotTakenForTheNext) {
    for (const int nth : {1, 2, 100, 511})
        for (const int ms : {590, 610, 1150, 1250, 1400, 1790}) {
            SCOPED_TRACE(std::to_string(nth) + " " + std::to_string(ms));
            BoardBench bench(full_board());
            HoldingLine held(bench.board.target(), nth, Milliseconds(ms));
            bench.line.connect(held.target());
            bench.read_board();
            EXPECT_EQ(bench.frm.session.Result, Job_Result::done) << bench.tale();
            EXPECT_TRUE(image_is(bench, random_bytes(0x10000, 5), 0x10000));
            expect_read_over(bench);
        }
}

TEST(BoardRead, HalfOfTheStorageIsNoProgram) {
    BoardBench bench(board_with({"lose_frame@read:300*3"}));
    bench.load(file_size);
    bench.read_board();
    EXPECT_EQ(bench.frm.session.Result, Job_Result::failed) << bench.tale();
    EXPECT_FALSE(bench.frm.images.File_Loaded);
    expect_read_over(bench);
}

TEST(BoardRead, NoNumberIsCountedUpInWhatWasRead) {
    Numbering bench;
    bench.read_board();
    EXPECT_EQ(bench.frm.session.Result, Job_Result::done) << bench.tale();
    EXPECT_EQ(bench.s.cheAuto_Increase.Value, 0);
    EXPECT_FALSE(bench.frm.increase.Auto_Increase.Active);
    expect_read_over(bench);
}

TEST(BoardRead, AProgramWhoseFileHasGoneStays) {
    BoardBench bench;
    bench.load(file_size);
    bench.s.cekReloadFile.Value = 1;
    bench.frm.images.Program_File = "/gone.bin";
    bench.read_board();
    ASSERT_EQ(bench.boxes().size(), 1U);
    EXPECT_FALSE(bench.ran());
    EXPECT_TRUE(bench.frm.images.File_Loaded);
    expect_flow_over(bench);
}

TEST(BoardRead, StopCantBeTakenAwayByALock) {
    BoardBench bench;
    bench.load(file_size);
    int looked = 0;
    for (const int ms : {200, 9000, 12000})
        bench.at(ms, [&] {
            if (!bench.frm.session.Running) return;
            EXPECT_FALSE(bench.s.comLockOptions.Enabled);
            EXPECT_TRUE(bench.s.comStop_Download.Enabled);
            ++looked;
        });
    bench.read_board();
    EXPECT_EQ(looked, 3) << bench.tale();
    EXPECT_EQ(bench.frm.session.UI_State, 0);
}

TEST(BoardRead, AWindowThatIsClosedBehindTheBoxOpensNoPort) {
    BoardBench bench;
    bench.dialogs.stays = std::chrono::seconds(1);
    bench.at(300, [&] { QueryUnload(bench.frm); });
    bench.read_board();
    EXPECT_EQ(bench.boxes().size(), 1U);
    EXPECT_EQ(bench.port.opens, 0);
}

TEST(BoardRead, ClosingTheWindowEndsIt) {
    for (const int ms : {1, 1000, 5000, 12000}) {
        BoardBench bench;
        bench.load(file_size);
        bench.at(ms, [&] { EXPECT_FALSE(QueryUnload(bench.frm)); });
        bench.read_board();
        EXPECT_EQ(bench.frm.session.Result, Job_Result::stopped) << bench.tale();
        EXPECT_LT(bench.job_took, ms + 3);
        expect_read_over(bench);
    }
}

// ---- the chips behind it ----------------------------------------------------------------

// The chip that the board programs from what it was given, and one that is downloaded
// into directly, both blank before.
struct TwoChips {
    explicit TwoChips(const std::string& model)
        : by_board({.model = model, .powered_at = sim::never}), direct({.model = model}, model) {}

    sim::BoardProgramming program(BoardBench& bench) {
        return sim::program_chip(bench.board.storage(), by_board, sim::Instant{} + Milliseconds(1));
    }

    sim::SimulatedChip by_board;
    SessionBench direct;
};

struct ChipCase {
    std::string model;
    const char* array;  // of options, of which the first element is none that stands there
};

void choose_first(Screen& screen, std::string_view array) {
    for (int i = 0; Control* button = find_control(screen, array, i); ++i)
        button->Value = i == 0 ? 1 : 0;
}

bool same_flash(const TwoChips& chips, std::size_t count) {
    const auto a = chips.by_board.flash();
    const auto b = chips.direct.chip.flash();
    return count <= a.size() && count <= b.size() &&
           std::equal(a.begin(), a.begin() + static_cast<std::ptrdiff_t>(count), b.begin());
}

class BoardChips : public testing::TestWithParam<ChipCase> {};

TEST_P(BoardChips, AreProgrammedAsByADirectDownload) {
    const auto& [model, array] = GetParam();
    const std::int32_t room = record_by_name(model)->AP_End + 1;
    for (const int version : {0x15, 0x16, 0x17, 0x18})
        for (const int flag : {0, 1}) {
            SCOPED_TRACE(std::to_string(version) + " " + std::to_string(flag));
            const auto size = static_cast<std::size_t>(std::min(room, 0x2345));
            BoardBench bench({.version = static_cast<std::uint8_t>(version),
                              .flag = static_cast<std::uint8_t>(flag)},
                             model);
            bench.load(size);
            choose_first(bench.s, array);
            bench.load_board();
            ASSERT_EQ(bench.frm.session.Result, Job_Result::done) << bench.tale();
            expect_flow_over(bench);

            TwoChips chips(model);
            const auto delivered = chips.by_board.options();
            const sim::BoardProgramming result = chips.program(bench);
            ASSERT_EQ(result.problem, "");
            EXPECT_TRUE(result.done);

            chips.direct.load(size);
            choose_first(chips.direct.frm.screen, array);
            comDownload(chips.direct.frm, 0);
            ASSERT_TRUE(chips.direct.frm.session.Program_OK) << chips.direct.story();

            EXPECT_TRUE(same_flash(chips, size));
            const auto& a = chips.by_board.options();
            const auto& b = chips.direct.chip.options();
            const int family = bench.frm.catalogue.MCU_Info.MCU_Family;
            int changed = 0;
            for (const std::size_t word : family == 2 ? std::vector<std::size_t>{1}
                                                      : std::vector<std::size_t>{2, 3, 8, 10, 11}) {
                EXPECT_EQ(a[word], b[word]) << word;
                changed += a[word] != delivered[word];
            }
            EXPECT_GT(changed, 0);
            EXPECT_TRUE(chips.by_board.faults().empty());
        }
}

INSTANTIATE_TEST_SUITE_P(OfEachKind, BoardChips,
                         testing::Values(ChipCase{"VKM47H52RB", "Option3"},
                                         ChipCase{"VKM47H58RK+", "Option3"},
                                         ChipCase{"VKM26H5052", "Option1"},
                                         ChipCase{"VKM26H5408AD", "Option1"},
                                         ChipCase{"VKM27J032PCA", "Option2"}),
                         [](const auto& info) {
                             std::string name = info.param.model;
                             std::erase(name, '+');
                             return name;
                         });

// More than the first part of the code has room for.
TEST(BoardChipsWithTwoParts, AreProgrammedWhenTheBoardHasTheSecondStage) {
    const std::string model = "VKM47H516RK+";
    for (const int version : {0x15, 0x16, 0x17, 0x18})
        for (const int flag : {0, 1}) {
            SCOPED_TRACE(std::to_string(version) + " " + std::to_string(flag));
            BoardBench bench({.version = static_cast<std::uint8_t>(version),
                              .flag = static_cast<std::uint8_t>(flag),
                              .capacity_kb = 51},
                             model);
            bench.load(0xC345);
            bench.load_board();
            ASSERT_EQ(bench.frm.session.Result, Job_Result::done) << bench.tale();
            TwoChips chips(model);
            const sim::BoardProgramming result = chips.program(bench);
            if (version == 0x16 || flag == 1) {
                EXPECT_EQ(result.problem, "the second part of the code was never loaded");
                continue;
            }
            ASSERT_EQ(result.problem, "");
            chips.direct.load(0xC345);
            comDownload(chips.direct.frm, 0);
            ASSERT_TRUE(chips.direct.frm.session.Program_OK) << chips.direct.story();
            EXPECT_TRUE(same_flash(chips, 0xC345));
        }
}

TEST(BoardNumbering, TheFirstChipIsThatOfADirectDownload) {
    for (const char* address : {"007E", "007F", "0080", "0081", "0083", "0103"}) {
        SCOPED_TRACE(address);
        Numbering bench(address);
        bench.load_board();
        ASSERT_EQ(bench.frm.session.Result, Job_Result::done) << bench.tale();
        TwoChips chips(model_of_board);
        ASSERT_EQ(chips.program(bench).problem, "");
        chips.direct.load(file_size);
        Screen& screen = chips.direct.frm.screen;
        const char* fields[] = {address, "4", "12345678", "1"};
        for (std::size_t i = 0; i < 4; ++i) screen.texAuto_Increase[i].Text = fields[i];
        screen.cheAuto_Increase.Value = 1;
        OperatorHands(chips.direct.frm).click(screen.cheAuto_Increase);
        comDownload(chips.direct.frm, 0);
        ASSERT_TRUE(chips.direct.frm.session.Program_OK) << chips.direct.story();
        EXPECT_TRUE(same_flash(chips, file_size));
    }
}

}  // namespace
}  // namespace vkm::test
