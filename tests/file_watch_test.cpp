// The watch on the program file: what the compiler writes is read again, once and
// whole, and downloaded if the operator wants that.
#include "project_bench.h"

#include "window/main_window.h"

namespace vkm::test {
namespace {

const std::string path = "/job/a.bin";
const Bytes first_version(700, 0x11);
const Bytes second_version(900, 0x22);

struct WatchBench : ProjectBench {
    // Each chip makes place for the next job behind its own.
    explicit WatchBench(const sim::ChipConfig& config = {.after_start = {.power_cycle = true}})
        : ProjectBench("VKM47H58RK+", config) {
        files.add(path, first_version);
        frm.screen.cheClearAP_Buffer.Value = 1;
        frm.screen.cheClearDataBuffer.Value = 1;
        open_file(path);
        frm.screen.txtUserCode.Text = "55 AA";
    }
    void open_file(const std::string& name) {
        dialogs.choose_file(name);
        click(frm.screen.comLoadFile);
    }
    void want_download() { frm.screen.cekReloadFileWhileFileChange.Value = 1; }
    void want_code() { frm.screen.cekReloadFileWhileFileChange1.Value = 1; }
    // The watch has seen the file.
    void settle() {
        run_for(3000);
        take_texts();
        port.written.clear();
    }
    void change(const Bytes& bytes) { files.add(path, bytes); }

    std::uint32_t loads() const { return frm.images.AP_Buffer.Load_Number - loads_before; }
    void forget_loads() { loads_before = frm.images.AP_Buffer.Load_Number; }
    int codes_sent() const {
        return static_cast<int>(
            std::ranges::count(port.written, Bytes{0x55, 0xAA}, &Written::bytes));
    }
    std::uint32_t loads_before = 0;
};

// One that waits for a change, with nothing on its line.
struct QuietBench : WatchBench {
    QuietBench() : WatchBench({.powered_at = sim::never}) {
        want_download();
        settle();
        forget_loads();
        at(60'000, [this] { ADD_FAILURE() << "ran too long"; });
    }
    // A download was begun by the watch; it waits for a chip.
    bool downloads() const { return frm.session.UI_State == 1; }
    // Runs until then, and stops the job that began meanwhile.
    void run_and_stop(std::int64_t ms) {
        click_stop_in(ms);
        run_for(ms + 1000);
    }
};

TEST(FileWatch, LeavesANewlyOpenedFileAlone) {
    WatchBench bench;
    bench.want_download();
    bench.forget_loads();
    bench.run_for(10'000);
    EXPECT_EQ(bench.loads(), 0u);
    EXPECT_EQ(bench.port.opens, 0);
}

TEST(FileWatch, ReadsAChangedFileAndDownloadsIt) {
    WatchBench bench;
    bench.want_download();
    bench.settle();
    bench.forget_loads();
    bench.change(second_version);
    bench.run_for(10'000);
    EXPECT_EQ(bench.loads(), 1u);
    EXPECT_EQ(bench.program(), second_version);
    EXPECT_EQ(bench.count(), "1");
    EXPECT_TRUE(bench.flash_holds(second_version)) << bench.story();
    EXPECT_EQ(bench.codes_sent(), 0);
    EXPECT_TRUE(bench.take_texts().empty());
}

TEST(FileWatch, SendsTheUserCodeAndDownloadsOnce) {
    WatchBench bench;
    bench.want_code();
    bench.settle();
    bench.change(second_version);
    bench.run_for(20'000);
    EXPECT_EQ(bench.codes_sent(), 1);
    EXPECT_EQ(bench.port.written.at(0).bytes, (Bytes{0x55, 0xAA}));
    EXPECT_EQ(bench.count(), "1");
    EXPECT_TRUE(bench.flash_holds(second_version)) << bench.story();
}

TEST(FileWatch, WithBothTicksDownloadsBehindTheUserCodeAndOnceMore) {
    WatchBench bench;
    bench.want_code();
    bench.want_download();
    bench.settle();
    bench.forget_loads();
    bench.change(second_version);
    bench.run_for(20'000);
    EXPECT_EQ(bench.codes_sent(), 1);
    EXPECT_EQ(bench.count(), "2");
    EXPECT_EQ(bench.loads(), 1u);
}

TEST(FileWatch, SleepsWithoutATick) {
    WatchBench bench;
    bench.settle();
    bench.forget_loads();
    bench.change(second_version);
    bench.run_for(10'000);
    EXPECT_EQ(bench.loads(), 0u);
    EXPECT_EQ(bench.frm.session.Watched_File, "");
    EXPECT_EQ(bench.port.opens, 0);
}

TEST(FileWatch, SleepsWithoutAFile) {
    ProjectBench bench;
    bench.files.add(path, first_version);
    bench.frm.screen.cekReloadFileWhileFileChange.Value = 1;
    bench.frm.screen.cekReloadFileWhileFileChange1.Value = 1;
    bench.run_for(10'000);
    EXPECT_EQ(bench.frm.session.Watched_File, "");
    EXPECT_TRUE(bench.boxes().empty());
    EXPECT_EQ(bench.port.opens, 0);
}

TEST(FileWatch, TakesAChangeWithinThreeSeconds) {
    QuietBench bench;
    bench.change(second_version);
    bench.at(900, [&] { EXPECT_EQ(bench.loads(), 0u); });
    bench.at(3000, [&] {
        EXPECT_EQ(bench.loads(), 1u);
        EXPECT_TRUE(bench.downloads());
    });
    bench.run_and_stop(3500);
    EXPECT_EQ(bench.loads(), 1u);
}

TEST(FileWatch, ReadsAFileThatGrowsAtTheSameTimeOnceAndWhole) {
    QuietBench bench;
    for (const int second : {0, 1, 2, 3, 4})
        bench.at(500 + second * 1000, [&, second] {
            MemoryFile& file = bench.files.files.at(path);
            if (second == 0) ++file.last_modified;
            file.bytes.assign(static_cast<std::size_t>(100 * (second + 1)), 0x33);
        });
    bench.run_and_stop(9000);
    EXPECT_EQ(bench.loads(), 1u);
    EXPECT_EQ(bench.program(), Bytes(500, 0x33));
}

TEST(FileWatch, ReadsAFileThatIsReplacedOverAndOverOnce) {
    QuietBench bench;
    for (const int i : {1, 2, 3, 4, 5, 6})
        bench.at(i * 700, [&, i] { bench.change(Bytes(200, static_cast<std::uint8_t>(i))); });
    bench.run_and_stop(9000);
    EXPECT_EQ(bench.loads(), 1u);
    EXPECT_EQ(bench.program(), Bytes(200, 6));
}

TEST(FileWatch, WaitsForAFileThatIsEmpty) {
    QuietBench bench;
    bench.change({});
    bench.run_for(6000);
    EXPECT_EQ(bench.loads(), 0u);
    EXPECT_FALSE(bench.frm.session.Running);
    bench.files.files.at(path).bytes = second_version;  // at the same time
    bench.run_and_stop(4000);
    EXPECT_EQ(bench.loads(), 1u);
    EXPECT_EQ(bench.program(), second_version);
}

TEST(FileWatch, WaitsInSilenceForAFileThatIsGone) {
    QuietBench bench;
    const MemoryFile same = bench.files.files.at(path);
    bench.files.remove(path);
    bench.run_for(6000);
    bench.files.files[path] = same;
    bench.run_for(4000);
    EXPECT_EQ(bench.loads(), 0u);
    bench.files.remove(path);
    bench.run_for(4000);
    EXPECT_TRUE(bench.boxes().empty());
    EXPECT_EQ(bench.program(), first_version);
    bench.change(second_version);
    bench.run_and_stop(4000);
    EXPECT_EQ(bench.loads(), 1u);
    EXPECT_EQ(bench.program(), second_version);
    EXPECT_TRUE(bench.take_texts().empty());
}

TEST(FileWatch, BeginsAnewWithAnotherFile) {
    QuietBench bench;
    bench.files.add("/job/b.bin", second_version);
    bench.change(second_version);
    bench.open_file("/job/b.bin");
    bench.forget_loads();
    bench.run_for(5000);
    EXPECT_EQ(bench.loads(), 0u);
    bench.files.add("/job/b.bin", Bytes(50, 0x44));
    bench.run_and_stop(4000);
    EXPECT_EQ(bench.loads(), 1u);
    EXPECT_EQ(bench.program(), Bytes(50, 0x44));
}

TEST(FileWatch, BeginsAnewWithTheSameFileBehindAProject) {
    QuietBench bench;
    bench.open(small_project("VKM47H58RK+", "", Bytes{1}));
    bench.change(second_version);
    bench.run_for(3000);
    bench.click(bench.frm.screen.comUnlockOptions);
    bench.open_file(path);
    ASSERT_EQ(bench.program(), second_version);
    bench.forget_loads();
    bench.run_for(5000);
    EXPECT_EQ(bench.loads(), 0u);
    EXPECT_FALSE(bench.downloads());
    bench.change(first_version);
    bench.run_and_stop(4000);
    EXPECT_EQ(bench.loads(), 1u);
}

TEST(FileWatch, WatchesTheProgramFileAlsoBehindADataFile) {
    QuietBench bench;
    bench.files.add("/job/d.bin", Bytes(40, 0x66));
    bench.dialogs.choose_file("/job/d.bin");
    bench.click(bench.frm.screen.comLoadDataFile);
    bench.take_texts();
    bench.run_for(3000);
    bench.files.add("/job/d.bin", Bytes(40, 0x67));
    bench.run_for(3000);
    EXPECT_EQ(bench.loads(), 0u);
    bench.change(second_version);
    bench.run_and_stop(4000);
    EXPECT_EQ(bench.loads(), 1u);
    EXPECT_EQ(bench.program(), second_version);
    EXPECT_EQ(bench.data(), Bytes(40, 0x66));
}

TEST(FileWatch, OfAChangeDuringAJobWaitsForItsEnd) {
    QuietBench bench;
    bench.at(1000, [&] { bench.change(second_version); });
    bench.at(9900, [&] {
        EXPECT_EQ(bench.loads(), 0u);
        EXPECT_EQ(bench.program(), first_version);
    });
    bench.click_stop_in(10'000);
    comDownload(bench.frm, 0);
    EXPECT_EQ(bench.loads(), 0u);
    bench.run_and_stop(4000);
    EXPECT_EQ(bench.loads(), 1u);
    EXPECT_EQ(bench.program(), second_version);
}

TEST(FileWatch, OfAChangeDuringItsOwnDownloadComesBehindIt) {
    WatchBench bench;
    bench.want_download();
    bench.settle();
    bench.forget_loads();
    bench.change(second_version);
    bool changed = false;
    for (int ms = 0; ms < 6000; ms += 50)
        bench.at(ms, [&] {
            if (changed || bench.frm.session.UI_State != 1) return;
            changed = true;
            bench.change(Bytes(600, 0x55));
        });
    bench.run_for(20'000);
    EXPECT_TRUE(changed);
    EXPECT_EQ(bench.loads(), 2u);
    EXPECT_EQ(bench.count(), "2");
    EXPECT_TRUE(bench.flash_holds(Bytes(600, 0x55))) << bench.story();
}

TEST(FileWatch, DoesNothingBehindABoxOfALoad) {
    QuietBench bench;
    bench.dialogs.stays = std::chrono::seconds(8);
    bench.at(500, [&] { bench.change(second_version); });
    bench.at(7500, [&] {
        EXPECT_EQ(bench.dialogs.open_boxes, 1);
        EXPECT_EQ(bench.loads(), 0u);
        EXPECT_FALSE(bench.downloads());
    });
    bench.click(bench.frm.screen.comLoadFile);  // cancelled
    bench.dialogs.stays = {};
    EXPECT_EQ(bench.loads(), 0u);
    bench.run_and_stop(4000);
    EXPECT_EQ(bench.loads(), 1u);
}

TEST(FileWatch, DownloadsNothingThatTheOperatorRefused) {
    QuietBench bench;
    bench.dialogs.answer_no();
    const std::string bad = ":010000000100\n:010001000200\n:010002000300\n:010003000400\n";
    bench.files.add(path, bad + ":00000001FF\n");
    bench.run_for(6000);
    EXPECT_TRUE(bench.dialogs.yes_no.empty());  // the question came
    EXPECT_FALSE(bench.frm.images.File_Loaded);
    EXPECT_EQ(bench.port.opens, 0);
    // Three bad lines and the question; nobody says that a file is missing.
    EXPECT_EQ(bench.boxes().size(), 4u);
}

TEST(FileWatch, WaitsInSilenceForAFileThatCantBeOpenedYet) {
    QuietBench bench;
    bench.change(second_version);
    bench.files.files.at(path).readable = false;
    bench.run_for(6000);
    EXPECT_EQ(bench.loads(), 0u);
    EXPECT_EQ(bench.program(), first_version);
    EXPECT_EQ(bench.port.opens, 0);
    EXPECT_TRUE(bench.boxes().empty());
    bench.files.files.at(path).readable = true;
    bench.run_and_stop(4000);
    EXPECT_EQ(bench.loads(), 1u);
    EXPECT_EQ(bench.program(), second_version);
    EXPECT_TRUE(bench.boxes().empty());
}

TEST(FileWatch, DownloadsNothingWhoseStartAddressIsRefused) {
    QuietBench bench;
    bench.want_code();
    bench.frm.screen.txtAP_FileStart.Text = "FFFFF";
    bench.change(second_version);
    bench.run_for(6000);
    EXPECT_EQ(bench.take_texts(), (Texts{"Buffer Start Address Outrun the valid scope. \r\n"
                                         "   缓冲区起始地址超出有效空间。"}));
    EXPECT_EQ(bench.program(), first_version);
    EXPECT_TRUE(bench.frm.images.File_Loaded);
    EXPECT_EQ(bench.port.opens, 0);
    EXPECT_FALSE(bench.frm.session.Running);
}

TEST(FileWatch, WithBothTicksIsStoppedAsAWhole) {
    QuietBench bench;
    bench.want_code();
    bench.change(second_version);
    bench.at(5000, [&] {
        EXPECT_TRUE(bench.downloads());
        EXPECT_EQ(bench.codes_sent(), 1);
        comStop_Download(bench.frm);
    });
    bench.at(7000, [&] {
        EXPECT_FALSE(bench.downloads());
        comStop_Download(bench.frm);
    });
    bench.run_for(8000);
    EXPECT_EQ(bench.loads(), 1u);
}

TEST(FileWatch, WithBothTicksDownloadsOnceMoreBehindAFailure) {
    WatchBench bench({.faults = {lose_frame(sim::FrameKind::erase, always)}});
    bench.want_code();
    bench.want_download();
    bench.settle();
    bench.change(second_version);
    int failures = 0;
    const std::function<void()> watch = [&] {
        if (bench.frm.session.Result == Job_Result::failed) ++failures;
        bench.at(20, watch);
    };
    bench.at(20, watch);
    bench.at(60'000, [&] {
        EXPECT_EQ(bench.frm.session.UI_State, 1) << bench.story();
        EXPECT_GT(failures, 0);  // the first one has ended, and this is the second
        comStop_Download(bench.frm);
    });
    bench.run_for(61'000);
}

TEST(FileWatch, WithBothTicksDownloadsWhenTheCodeCantBeSent) {
    QuietBench bench;
    bench.click_stop_in(500);
    comDownload(bench.frm, 0);  // an earlier job, which was stopped
    bench.want_code();
    bench.frm.screen.cobUserCodeParity.ListIndex = -1;
    bench.take_texts();
    bench.change(second_version);
    bench.at(4000, [&] { EXPECT_TRUE(bench.downloads()); });
    bench.run_and_stop(5000);
    EXPECT_EQ(bench.take_texts().size(), 1u);
    EXPECT_EQ(bench.codes_sent(), 0);
}

// What a view that was drawn anew asks for.
void expect_keyboard_left(const WatchBench& bench) {
    EXPECT_EQ(bench.frm.screen.Focus_Request, "");
}

TEST(Keyboard, StaysWhereItIsWhenTheWatchReadsTheFile) {
    QuietBench bench;
    bench.want_code();
    ASSERT_TRUE(bench.choose(bench.frm.screen.cobUserCodeBaud, "600"));
    bench.frm.screen.txtUserCode.Text = std::string(400, '5');
    bench.frm.screen.Focus_Request = {};
    bench.change(second_version);
    int looks = 0;
    for (int ms = 0; ms < 6000; ms += 20)
        bench.at(ms, [&] {
            // The image is the new one, and the code is on its way.
            if (bench.loads() == 0 || bench.downloads()) return;
            ++looks;
            expect_keyboard_left(bench);
        });
    bench.run_and_stop(8000);
    EXPECT_GT(looks, 50);
}

TEST(Keyboard, StaysWhereItIsWhenAReloadedFileIsRefused) {
    WatchBench bench;
    bench.frm.screen.cekReloadFile.Value = 1;
    bench.files.add(path, std::string(":010000000100\n:010001000200\n:010002000300\n"));
    bench.dialogs.answer_no();
    bench.take_texts();
    bench.frm.screen.Focus_Request = {};
    bench.click(bench.frm.screen.comDownload[0]);
    EXPECT_EQ(bench.take_texts().back(), "    Please open file./请打开文件。    ");
    expect_keyboard_left(bench);
}

TEST(Keyboard, StaysWhereItIsWhenTheNumbersOfAJobArePatched) {
    for (const bool data_number_fits : {true, false}) {
        WatchBench bench({.powered_at = sim::never});
        Screen& s = bench.frm.screen;
        ASSERT_TRUE(bench.select_model("VKM26H5404"));
        bench.load_data(Bytes(100, 1));
        s.Frame7.Visible = s.frmDataFlash.Visible = true;
        s.texAuto_Increase[0].Text = "10";
        s.texData_Auto_Increase[0].Text = data_number_fits ? "10" : "FFFFF";
        s.cheAuto_Increase.Value = 1;
        s.cheData_Auto_Increase.Value = 1;
        bench.take_texts();
        bench.dialogs.stays = Milliseconds(1000);
        s.Focus_Request = {};
        bool looked = false;
        // Behind the box of a number that doesn't fit, or in the job.
        bench.at(500, [&] {
            EXPECT_EQ(bench.dialogs.open_boxes, data_number_fits ? 0 : 1);
            EXPECT_TRUE(bench.frm.increase.Auto_Increase.Active);
            EXPECT_EQ(bench.frm.increase.Data_Auto_Increase.Active, data_number_fits);
            expect_keyboard_left(bench);
            looked = true;
        });
        bench.click_stop_in(3000);
        bench.click(s.comDownload[0]);
        EXPECT_TRUE(looked);
        expect_keyboard_left(bench);
    }
}

TEST(FileWatch, BeginsNothingInAWindowThatCloses) {
    QuietBench bench;
    bench.want_code();
    // The box of a bad line is answered by closing the window.
    bench.dialogs.stays = std::chrono::milliseconds(100);
    bench.files.add(path, std::string(":010000000100\n:00000001FF\n"));
    for (int ms = 0; ms < 4000; ms += 20)
        bench.at(ms, [&] {
            if (bench.dialogs.open_boxes > 0) QueryUnload(bench.frm);
        });
    bench.run_for(4500);
    EXPECT_TRUE(bench.frm.link.close_pending);
    EXPECT_EQ(bench.port.opens, 0);
}

}  // namespace
}  // namespace vkm::test
