// A debug monitor in the place of a chip's boot firmware: the files and the questions, the
// image, the two passes, and what goes wrong with them.
#include "soft_ice_bench.h"

#include "window/main_window.h"

namespace vkm::test {
namespace {

const char* const models[] = {"VKM47H516RK", "VKM47T516RK", "VKM47H58RK", "VKM47T58RK"};

std::string monitor_of(std::string_view model) {
    return model.find("516") != std::string_view::npos ? "VKM516_2003.ROM" : "VKM58_2003.ROM";
}

Bytes part(const Bytes& image, std::size_t first, std::size_t last) {
    return {image.begin() + static_cast<std::ptrdiff_t>(first),
            image.begin() + static_cast<std::ptrdiff_t>(last) + 1};
}

// The addresses of the program blocks that the chip heard.
std::vector<unsigned> block_addresses(const SoftIceBench& bench) {
    std::vector<unsigned> addresses;
    for (const sim::LoggedFrame& frame : bench.chip.log())
        if (!frame.from_chip && frame.kind == sim::FrameKind::block)
            addresses.push_back(frame.bytes[8] * 256U + frame.bytes[9]);
    return addresses;
}

// ---- the image ---------------------------------------------------------------------------

TEST(SoftIceImage, HasItsPiecesInTheirPlaces) {
    const Bytes start = random_bytes(monitor_start_size, 3);
    const Bytes monitor = random_bytes(monitor_size, 4);
    for (const char* file : {"VKM516_2003.ROM", "VKM58_2003.ROM"}) {
        Bytes image(0x4000, 0x5A);
        lay_out_monitor(image, std::span(start).first<monitor_start_size>(),
                        std::span(monitor).first<monitor_size>(), file);
        Bytes wanted = monitor_image(start, monitor, file);
        wanted.resize(0x4000, 0x5A);  // nothing behind 13312 is touched
        EXPECT_EQ(image, wanted);
    }
    EXPECT_NE(monitor_loader("VKM516_2003.ROM").at_2180, monitor_loader("VKM58_2003.ROM").at_2180);
}

// ---- the good job ------------------------------------------------------------------------

TEST(SoftIce, ProgramsTheMonitorIntoAChip) {
    for (const char* model : models) {
        SCOPED_TRACE(model);
        SoftIceBench bench({.model = model});
        EXPECT_TRUE(bench.frm.screen.comDownSoft_ICE.Enabled);
        EXPECT_EQ(bench.frm.catalogue.SoftICE_File, monitor_of(model));
        bench.chip.load_flash(Bytes(0x4000, 0x00));
        bench.run();
        expect_soft_ice_over(bench);
        EXPECT_EQ(bench.frm.session.Result, Job_Result::done) << bench.story();
        const Bytes image = monitor_image(bench.start_file, bench.monitor_file, monitor_of(model));
        EXPECT_TRUE(bench.flash_holds(part(image, 0x2000, 0x33FF), 0x2000));
        EXPECT_TRUE(bench.flash_holds(part(image, 0, 0x27F), 0));
        EXPECT_EQ(part(image, 3, 0x27F), Bytes(0x27D, 0xFF));
        EXPECT_TRUE(bench.chip.started());
        EXPECT_EQ(bench.chip.faults(), std::vector<std::string>{}) << bench.story();
        EXPECT_EQ(bench.chip.counters().erases, 1);
        EXPECT_EQ(bench.chip.counters().retried_blocks, 0);
    }
}

TEST(SoftIce, SendsTheResetJumpBehindAllElse) {
    SoftIceBench bench;
    bench.run();
    std::vector<unsigned> wanted;
    for (unsigned at = 0x2000; at < 0x3400; at += 128) wanted.push_back(at);
    const auto addresses = block_addresses(bench);
    ASSERT_EQ(addresses.size(), wanted.size() + 5);  // no fewer than 640 bytes
    EXPECT_EQ(std::vector<unsigned>(addresses.begin(),
                                    addresses.begin() + static_cast<std::ptrdiff_t>(wanted.size())),
              wanted);
    for (std::size_t i = wanted.size(); i < addresses.size(); ++i)
        EXPECT_EQ(addresses[i], (i - wanted.size()) * 128);
    EXPECT_EQ(bench.heard(sim::FrameKind::options), 0);
    EXPECT_EQ(bench.heard(sim::FrameKind::trigger), 1);
}

TEST(SoftIce, TellsItsStepsInBothLanguages) {
    for (const bool english : {false, true}) {
        SoftIceBench bench;
        bench.frm.screen.Show_English = english;
        bench.run();
        EXPECT_TRUE(bench.log_has("We are trying to connect to your MCU ... "));
        EXPECT_TRUE(bench.log_has("We are erasing application flash..."));
        const std::size_t first = bench.log().find("Programming...");
        ASSERT_NE(first, std::string::npos);
        EXPECT_NE(bench.log().find("Programming...", first + 1), std::string::npos);
        EXPECT_TRUE(ends_with(bench.log(), english ? "\r\nDownload Soft_ICE is succeed."
                                                     "\r\nChinese:下载 Soft_ICE 成功。"
                                                   : "\r\nDownload Soft_ICE is succeed /下载 "
                                                     "Soft_ICE 成功"))
            << bench.log();
        EXPECT_EQ(bench.verdict(), english ? "✔ OK" : "✔ OK / 成功");
    }
}

TEST(SoftIce, ShowsItsResultForASecondWhichStopEnds) {
    for (const bool stop : {false, true}) {
        SoftIceBench bench;
        double told = 0;
        bool progress = true;
        std::function<void()> look = [&] {
            if (!bench.log_has("Soft_ICE is succeed")) return bench.at(1, look);
            told = bench.elapsed_ms();
            progress = bench.frm.screen.ProgressBar1.Visible;
            EXPECT_FALSE(bench.port.is_open());
            EXPECT_EQ(bench.frm.session.UI_State, 1);
            if (stop) bench.click_stop_in(300);
        };
        look();
        bench.run();
        const double shown = bench.elapsed_ms() - told;
        EXPECT_GE(shown, stop ? 299 : 998);
        EXPECT_LE(shown, stop ? 301 : 1001);
        EXPECT_FALSE(progress);
        EXPECT_EQ(bench.frm.session.Result, Job_Result::done);
        expect_soft_ice_over(bench);
    }
}

TEST(SoftIce, ShowsTheImageAndItsName) {
    SoftIceBench bench;
    bench.run();
    EXPECT_EQ(bench.frm.screen.Frame7.Caption, "File Buffer: VKM58_2003.ROM");
    EXPECT_TRUE(bench.frm.images.File_Loaded);
    const Bytes image = monitor_image(bench.start_file, bench.monitor_file, "VKM58_2003.ROM");
    const auto& held = bench.frm.images.AP_Buffer.Bytes;
    EXPECT_TRUE(std::equal(image.begin(), image.end(), held.begin()));
    for (std::size_t i = image.size(); i < held.size(); ++i) ASSERT_EQ(held[i], 0) << i;
}

TEST(SoftIce, WorksInBothWaysOfConnecting) {
    SoftIceBench bench;
    bench.frm.screen.cheTL.Value = 1;
    bench.run();
    EXPECT_EQ(bench.frm.session.Result, Job_Result::done) << bench.story();
}

// ---- the files -----------------------------------------------------------------------------

TEST(SoftIceFiles, OfAnyLengthTouchNoOthersPlace) {
    for (const std::size_t start : {1, 200, 383, 384, 385, 8193, 70000})
        for (const std::size_t monitor : {1, 4095, 4096, 4097, 8193, 70000}) {
            SCOPED_TRACE(std::to_string(start) + " " + std::to_string(monitor));
            SoftIceBench bench;
            bench.load(900, 0x400);  // of the program before nothing is left
            bench.set_files(start, monitor);
            bench.run();
            EXPECT_EQ(bench.frm.session.Result, Job_Result::done) << bench.story();
            const Bytes image =
                monitor_image(bench.start_file, bench.monitor_file, "VKM58_2003.ROM");
            EXPECT_TRUE(bench.flash_holds(part(image, 0x2000, 0x33FF), 0x2000));
            EXPECT_TRUE(bench.flash_holds(part(image, 0, 0x27F), 0));
            const auto& held = bench.frm.images.AP_Buffer.Bytes;
            EXPECT_TRUE(std::all_of(held.begin() + 0x3401, held.end(),
                                    [](std::uint8_t byte) { return byte == 0; }));
            // The reader tells of a file beyond the model's memory.
            const auto beyond = static_cast<std::size_t>((start == 70000) + (monitor == 70000));
            EXPECT_EQ(bench.boxes().size(), 2 + beyond);
        }
}

TEST(SoftIceFiles, WithAReadersBoxBehindWhichTheWindowIsClosedProgramNothing) {
    SoftIceBench bench;
    bench.set_files(70000, 0x1000);
    bench.dialogs.stays = std::chrono::milliseconds(50);
    bench.at(120, [&] { QueryUnload(bench.frm); });
    bench.run();
    expect_soft_ice_over(bench);
    EXPECT_EQ(bench.boxes().size(), 3u);
    EXPECT_EQ(bench.frm.session.Result, Job_Result::stopped);
    EXPECT_EQ(bench.chip.counters().frames, 0);
}

struct Trouble {
    const char* name;
    std::function<void(SoftIceBench&)> make;
    const char* text;
};

const Trouble troubles[] = {
    {"no start", [](SoftIceBench& b) { b.files.remove(start_path); }, "找不到文件 VKM2000.rom."},
    {"no monitor", [](SoftIceBench& b) { b.files.remove(b.monitor_path()); },
     "找不到文件 VKM58_2003.ROM"},
    {"neither",
     [](SoftIceBench& b) {
         b.files.remove(start_path);
         b.files.remove(b.monitor_path());
     },
     "找不到文件 VKM2000.rom."},
    {"empty start", [](SoftIceBench& b) { b.files.add(start_path, ""); },
     "文件 VKM2000.rom 是空的, 或无法读取。\r\nThe file is empty or can not be read."},
    {"empty monitor", [](SoftIceBench& b) { b.files.add(b.monitor_path(), ""); },
     "文件 VKM58_2003.ROM 是空的, 或无法读取。\r\nThe file is empty or can not be read."},
    {"locked start", [](SoftIceBench& b) { b.files.files[start_path].readable = false; },
     "文件 VKM2000.rom 是空的, 或无法读取。\r\nThe file is empty or can not be read."},
    {"locked monitor", [](SoftIceBench& b) { b.files.files[b.monitor_path()].readable = false; },
     "文件 VKM58_2003.ROM 是空的, 或无法读取。\r\nThe file is empty or can not be read."},
};

TEST(SoftIceFiles, ThatAreMissingOrEmptyAreToldBeforeAnyQuestion) {
    for (const Trouble& trouble : troubles) {
        SCOPED_TRACE(trouble.name);
        SoftIceBench bench;
        bench.load(900);
        const Bytes before = bench.frm.images.AP_Buffer.Bytes;
        const std::string caption = bench.frm.screen.Frame7.Caption;
        trouble.make(bench);
        bench.run();
        ASSERT_EQ(bench.boxes().size(), 1u);
        EXPECT_EQ(bench.boxes()[0].text, trouble.text);
        EXPECT_EQ(bench.boxes()[0].kind, BoxKind::text);
        expect_nothing_changed(bench);
        EXPECT_EQ(bench.frm.images.AP_Buffer.Bytes, before);
        EXPECT_EQ(bench.frm.screen.Frame7.Caption, caption);
        EXPECT_TRUE(bench.frm.images.File_Loaded);
    }
}

TEST(SoftIceFiles, StandBesideTheProgram) {
    SoftIceBench bench;
    bench.files.folder_of_program = "/elsewhere";
    bench.run();
    EXPECT_EQ(bench.boxes().at(0).text, "找不到文件 VKM2000.rom.");
    bench.files.add("/elsewhere/VKM2000.rom", bench.start_file);
    bench.files.add("/elsewhere/VKM58_2003.ROM", bench.monitor_file);
    bench.run();
    EXPECT_EQ(bench.frm.session.Result, Job_Result::done);
}

// ---- the questions ---------------------------------------------------------------------------

TEST(SoftIceQuestions, AreBothAnsweredYesOrNothingIsChanged) {
    const std::string ask_for_monitor =
        "Write SoftICE program, the DownLoad Code will be erased!\r\n"
        " Chinese: 烧录 SoftICE 程序, 将会删除下载引导码。\r\n"
        "          Continue?/ 继续吗?  (Y/N)";
    const std::string ask_for_model =
        "Please check MCU type / 请确认 MCU 型号是否正确\r\n"
        "        Continue?/ 继续吗?  (Y/N)";
    for (const std::size_t no : {0, 1, 2}) {
        SoftIceBench bench;
        bench.load(900);
        bench.frm.images.Program_File = "/job/a.bin";
        const Bytes before = bench.frm.images.AP_Buffer.Bytes;
        if (no < 2) bench.dialogs.yes_no[no] = false;
        bench.run();
        ASSERT_EQ(bench.boxes().size(), std::min<std::size_t>(no + 1, 2));
        EXPECT_EQ(bench.boxes()[0].text, ask_for_monitor);
        EXPECT_EQ(bench.boxes()[0].kind, BoxKind::yes_no);
        if (no > 0) {
            EXPECT_EQ(bench.boxes()[1].text, ask_for_model);
            EXPECT_EQ(bench.boxes()[1].kind, BoxKind::yes_no);
        }
        if (no == 2) continue;
        expect_nothing_changed(bench);
        EXPECT_EQ(bench.frm.images.AP_Buffer.Bytes, before);
        EXPECT_EQ(bench.frm.images.Program_File, "/job/a.bin");
        EXPECT_EQ(bench.frm.images.AP_Buffer.Image_High, 899);
    }
}

TEST(SoftIceQuestions, AreFollowedByNothingWhenTheWindowWasClosed) {
    SoftIceBench bench;
    bench.dialogs.stays = std::chrono::milliseconds(50);
    bench.at(70, [&] { QueryUnload(bench.frm); });
    bench.run();
    EXPECT_EQ(bench.port.opens, 0);
    EXPECT_FALSE(bench.frm.session.Running);
}

TEST(SoftIceQuestions, LeaveNoOtherJobIn) {
    SoftIceBench bench;
    bench.load(900);
    bench.dialogs.stays = std::chrono::milliseconds(50);
    bench.at(20, [&] { comDownload(bench.frm, 0); });
    bench.at(30, [&] { bench.run(); });
    bench.at(80, [&] { comDownload(bench.frm, 0); });
    bench.run();
    EXPECT_EQ(bench.frm.session.Result, Job_Result::done);
    EXPECT_EQ(bench.boxes().size(), 2u);
    EXPECT_EQ(bench.chip.counters().erases, 1);
}

// ---- before the job --------------------------------------------------------------------------

TEST(SoftIce, ClosesTheTerminalFirst) {
    static int closed;
    static std::size_t boxes;
    static const SoftIceBench* on;
    SoftIceBench bench;
    on = &bench;
    closed = 0;
    bench.frm.session.Close_Assistant_Port = [](frmMain&) {
        ++closed;
        boxes = on->boxes().size();
    };
    bench.run();
    EXPECT_EQ(closed, 1);
    EXPECT_EQ(boxes, 0u);
}

TEST(SoftIce, HasNoButtonForAModelWithoutAMonitor) {
    SoftIceBench bench;
    for (const char* model :
         {"VKM47W58AD", "VKM47H58RK+", "VKM26H2052", "VKM47H58RK", "VKM27J032"}) {
        ASSERT_TRUE(bench.select_model(model));
        EXPECT_EQ(bench.frm.screen.comDownSoft_ICE.Enabled, std::string(model) == "VKM47H58RK");
        // Nor does a job give it one.
        Set_UI_State(bench.frm, ui_busy);
        EXPECT_FALSE(bench.frm.screen.comDownSoft_ICE.Enabled);
        Set_UI_State(bench.frm, ui_idle);
        EXPECT_EQ(bench.frm.screen.comDownSoft_ICE.Enabled, std::string(model) == "VKM47H58RK");
    }
}

// ---- what goes wrong -----------------------------------------------------------------------

using sim::FaultKind;
using sim::FrameKind;

constexpr int first_pass_blocks = 40;

TEST(SoftIceFailure, OfTheEraseEndsTheJob) {
    SoftIceBench bench({.model = "VKM47H58RK", .faults = {lose_reply(FrameKind::erase, always)}});
    bench.run();
    expect_soft_ice_over(bench);
    EXPECT_EQ(bench.frm.session.Failed_Step, "Erase / 擦除");
    EXPECT_TRUE(bench.log_has("\r\nErase application is failed. / 擦除失败 (End: "));
    EXPECT_EQ(bench.chip.counters().blocks, 0);
    EXPECT_FALSE(bench.log_has("Soft_ICE is succeed"));
}

TEST(SoftIceFailure, OfABlockEndsTheJobInEitherPass) {
    for (const int nth : {1, 17, first_pass_blocks, first_pass_blocks + 1, first_pass_blocks + 3}) {
        SCOPED_TRACE(nth);
        SoftIceBench bench(
            {.model = "VKM47H58RK", .faults = {lose_frame(FrameKind::block, always, nth)}});
        bench.run();
        expect_soft_ice_over(bench);
        EXPECT_EQ(bench.frm.session.Result, Job_Result::failed);
        EXPECT_EQ(bench.frm.session.Failed_Step, "Program / 下载");
        EXPECT_TRUE(bench.log_has("\r\nProgram is failure. / 下载失败 (End: ")) << bench.log();
        EXPECT_EQ(bench.sounder.beeps(), 3);
        EXPECT_FALSE(bench.log_has("Soft_ICE is succeed"));
        EXPECT_EQ(bench.chip.counters().blocks, nth - 1);
        // As the erase left it, unless the second pass has begun.
        EXPECT_EQ(bench.flash(0), nth <= first_pass_blocks + 1 ? 0xFF : 0x02);
        EXPECT_EQ(bench.heard(FrameKind::trigger), 0);
    }
}

TEST(SoftIceFailure, OfOneTryIsNone) {
    for (const int nth : {1, first_pass_blocks, first_pass_blocks + 1}) {
        SoftIceBench bench(
            {.model = "VKM47H58RK", .faults = {lose_reply(FrameKind::block, 1, nth)}});
        bench.run();
        EXPECT_EQ(bench.frm.session.Result, Job_Result::done) << bench.story();
        EXPECT_EQ(bench.flash(0), 0x02);
    }
}

TEST(SoftIceFailure, AtAChipOfAnotherModelErasesNothing) {
    SoftIceBench bench({.model = "VKM47W58AD"}, "VKM47H58RK");
    bench.run();
    expect_soft_ice_over(bench);
    EXPECT_EQ(bench.frm.session.Failed_Step, "Identify model / 识别型号");
    EXPECT_TRUE(bench.log_has("MCU Type is wrong."));
    ASSERT_EQ(bench.boxes().size(), 3u);
    EXPECT_EQ(bench.chip.counters().erases, 0);
    EXPECT_FALSE(bench.frm.images.File_Loaded);
}

// The questions may stand for minutes.
TEST(SoftIceFailure, OfAFileThatGoesBehindTheQuestionsProgramsNothing) {
    SoftIceBench bench;
    MemoryFile& file = bench.files.files.at(bench.files.folder_of_program + "/VKM58_2003.ROM");
    bench.at(1, [&file] { file.readable = false; });
    bench.dialogs.stays = std::chrono::seconds(1);
    bench.run();
    EXPECT_EQ(bench.frm.session.Result, Job_Result::failed);
    ASSERT_FALSE(bench.boxes().empty());
    EXPECT_NE(bench.boxes().back().text.find("VKM58_2003.ROM"), std::string::npos);
    EXPECT_FALSE(bench.frm.images.File_Loaded);
    EXPECT_EQ(bench.port.opens, 0);
}

TEST(SoftIceFailure, OfThePortIsTold) {
    SoftIceBench bench;
    bench.port.open_error[1] = error_busy;
    bench.run();
    expect_soft_ice_over(bench);
    EXPECT_EQ(bench.frm.session.Failed_Step, "Connect / 连接");
    EXPECT_TRUE(bench.log_has("Open COM port failure!"));
}

TEST(SoftIceStop, EndsTheJobWhereverItComes) {
    int stopped = 0, done = 0;
    for (const bool close : {false, true})
        for (int ms = 0; ms < 4000; ms += 23) {
            SCOPED_TRACE(ms);
            SoftIceBench bench(
                {.model = "VKM47H58RK", .erase_time = std::chrono::milliseconds(700)});
            double at = 0;
            bench.at(ms, [&] {
                at = bench.elapsed_ms();
                if (close)
                    QueryUnload(bench.frm);
                else
                    comStop_Download(bench.frm);
            });
            bench.run();
            expect_soft_ice_over(bench);
            if (bench.frm.session.Result == Job_Result::done) {
                ++done;
                continue;
            }
            ++stopped;
            EXPECT_EQ(bench.frm.session.Result, Job_Result::stopped);
            EXPECT_TRUE(bench.log_has("Operation is stop. / 操作被停止.")) << bench.log();
            EXPECT_FALSE(bench.log_has("Soft_ICE is succeed"));
            EXPECT_LE(bench.elapsed_ms() - at, 1000);
            if (bench.chip.counters().blocks <= first_pass_blocks && bench.chip.counters().erases) {
                EXPECT_EQ(bench.flash(0), 0xFF);
            }
            if (HasFailure()) return;
        }
    EXPECT_GT(stopped, 150);
    EXPECT_GT(done, 20);
}

TEST(SoftIceStop, EndsTheSearchForAChip) {
    SoftIceBench bench({.model = "VKM47H58RK", .powered_at = sim::never});
    bench.click_stop_in(9000);
    bench.run();
    expect_stopped(bench);
    EXPECT_TRUE(bench.log_has("Connection is failure. You can try:"));
}

// ---- what it leaves ----------------------------------------------------------------------------

TEST(SoftIceBehind, TheNumbersAreOff) {
    SoftIceBench bench;
    bench.load(900);
    auto& texts = bench.frm.screen.texAuto_Increase;
    texts[0].Text = "2010";
    texts[1].Text = "3";
    texts[2].Text = "7";
    bench.frm.screen.cheAuto_Increase.Value = 1;
    bench.click(bench.frm.screen.cheAuto_Increase);
    ASSERT_TRUE(bench.frm.increase.Auto_Increase.Active);
    bench.run();
    EXPECT_EQ(bench.frm.session.Result, Job_Result::done) << bench.story();
    EXPECT_EQ(bench.frm.screen.cheAuto_Increase.Value, 0);
    EXPECT_FALSE(bench.frm.increase.Auto_Increase.Active);
    EXPECT_TRUE(texts[2].Enabled);
    EXPECT_TRUE(bench.flash_holds(bench.start_file, 0x2000));
}

TEST(SoftIceBehind, NoFileIsReadOverTheImage) {
    SoftIceBench bench;
    bench.load(900);
    bench.files.add("/job/a.bin", random_bytes(500, 9));
    bench.frm.images.Program_File = "/job/a.bin";
    bench.frm.screen.cekReloadFileWhileFileChange.Value = 1;
    bench.frm.screen.cekReloadFile.Value = 1;
    bench.run_for(2500);
    bench.at(500, [&] { bench.files.add("/job/a.bin", random_bytes(500, 8)); });
    bench.run();
    EXPECT_EQ(bench.frm.images.Program_File, "");
    bench.run_for(5000);
    const Bytes image = monitor_image(bench.start_file, bench.monitor_file, "VKM58_2003.ROM");
    const auto same = [&] {
        return std::equal(image.begin(), image.end(), bench.frm.images.AP_Buffer.Bytes.begin());
    };
    EXPECT_TRUE(same());
    EXPECT_EQ(bench.chip.counters().erases, 1);
    // Nor before a download.
    bench.chip.power_cycle(bench.loop.now(), Milliseconds(50), true);
    comDownload(bench.frm, 0);
    EXPECT_EQ(bench.frm.session.Result, Job_Result::done) << bench.story();
    EXPECT_TRUE(same());
}

TEST(SoftIceBehind, ADownloadOfAFileIsAsAlone) {
    SoftIceBench bench;
    bench.run();
    bench.chip.power_cycle(bench.loop.now(), Milliseconds(50), true);
    bench.load(900);
    comDownload(bench.frm, 0);
    expect_good_chip(bench);
    EXPECT_TRUE(bench.flash_holds(bench.image));
    // And the other way round.
    bench.chip.power_cycle(bench.loop.now(), Milliseconds(50), true);
    bench.dialogs.answer_yes();
    bench.dialogs.answer_yes();
    bench.run();
    EXPECT_EQ(bench.frm.session.Result, Job_Result::done) << bench.story();
    const Bytes image = monitor_image(bench.start_file, bench.monitor_file, "VKM58_2003.ROM");
    EXPECT_TRUE(bench.flash_holds(part(image, 0, 0x27F), 0));
    EXPECT_EQ(bench.count(), "1");
}

}  // namespace
}  // namespace vkm::test
