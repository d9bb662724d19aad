// The buttons of the projects: their dialogs, what goes wrong, and the lock.
#include "project_bench.h"

#include "image/image_files.h"
#include "options/mcu_options.h"
#include "project/project_files.h"
#include "session/download_session.h"

namespace vkm::test {
namespace {

const std::string folder = "/opt/vkm/VKM_Project";

const Box& only_box(const ProjectBench& bench) {
    EXPECT_EQ(bench.boxes().size(), 1u);
    return bench.boxes().at(0);
}

// ---- saving ------------------------------------------------------------------

TEST(SavingAProject, AsksForItsNameInTheFolderOfProjects) {
    ProjectBench bench;
    bench.load_bytes(Bytes{1});
    bench.click(bench.frm.screen.comSaveBatchFile);
    const Box& box = only_box(bench);
    EXPECT_EQ(box.kind, BoxKind::save_file);
    EXPECT_EQ(box.title, "保存工程文件 *.VKM");
    EXPECT_EQ(box.filter, "*.VKM |*.VKM|All Files (*.*)|*.*");
    EXPECT_EQ(box.folder, folder);
    EXPECT_EQ(box.name, "");
    EXPECT_TRUE(bench.files.folders.contains(folder));
}

TEST(SavingAProject, ShowsItsPathAndProposesItsNameNextTime) {
    ProjectBench bench;
    bench.load_bytes(Bytes{1});
    bench.save(folder + "/job.VKM");
    EXPECT_EQ(bench.frm.screen.texBatchFileName.Text, folder + "/job.VKM");
    EXPECT_EQ(bench.text_on_disk(folder + "/job.VKM").substr(0, 10), "VER: 1.1\r\n");
    bench.dialogs.boxes.clear();
    bench.click(bench.frm.screen.comSaveBatchFile);
    EXPECT_EQ(only_box(bench).name, "job.VKM");
}

TEST(SavingAProject, EndsWithACancelledDialog) {
    ProjectBench bench;
    bench.load_bytes(Bytes{1});
    bench.save();
    bench.load_bytes(Bytes{2});
    const std::string before = bench.text_on_disk();
    const auto files = bench.files.files.size();
    bench.click(bench.frm.screen.comSaveBatchFile);
    EXPECT_EQ(bench.text_on_disk(), before);
    EXPECT_EQ(bench.files.files.size(), files);
    EXPECT_EQ(bench.frm.screen.texBatchFileName.Text, "");
    EXPECT_TRUE(bench.take_texts().empty());
}

TEST(SavingAProject, NeedsAFile) {
    for (const bool english : {false, true}) {
        ProjectBench bench;
        bench.frm.screen.Show_English = english;
        bench.click(bench.frm.screen.comSaveBatchFile);
        const Box& box = only_box(bench);
        EXPECT_EQ(box.kind, BoxKind::text);
        EXPECT_EQ(box.text, english ? "    Please open file.   "
                                    : "    Please open file./请打开应用文件。    ");
        EXPECT_EQ(box.title, "");
        EXPECT_FALSE(bench.files.folders.contains(folder));
    }
}

TEST(SavingAProject, ReplacesTheFileAsAWhole) {
    ProjectBench bench;
    bench.load_bytes(Bytes(5000, 1));
    const std::string longer = bench.save();
    bench.frm.images.AP_Buffer.Image_High = 0;
    const std::string text = bench.save();
    EXPECT_LT(text.size(), longer.size());
    EXPECT_TRUE(ends_with(text, "END\r\n01"));
}

TEST(SavingAProject, ThatFailsIsToldAndLeavesTheFileAsItWas) {
    for (const bool english : {false, true}) {
        ProjectBench bench;
        bench.frm.screen.Show_English = english;
        bench.load_bytes(Bytes{1});
        const std::string before = bench.save();
        bench.take_texts();
        bench.load_bytes(Bytes{2});
        bench.files.disk_full = true;
        bench.dialogs.choose_file(project_path);
        bench.click(bench.frm.screen.comSaveBatchFile);
        EXPECT_EQ(bench.take_texts(),
                  (Texts{(english ? "Can not save the project file: "
                                  : "Can not save the project file / 无法保存工程文件: ") +
                         project_path}));
        EXPECT_EQ(bench.text_on_disk(), before);
    }
}

TEST(SavingAProject, WorksWhileTheOptionsAreLocked) {
    ProjectBench bench;
    bench.open(small_project("VKM26H5404", "", Bytes{1, 2}));
    ASSERT_TRUE(bench.locked());
    EXPECT_TRUE(bench.frm.screen.comSaveBatchFile.Enabled);
    EXPECT_TRUE(bench.frm.screen.comOpenBatchFile.Enabled);
    EXPECT_TRUE(ends_with(bench.save("/job/second.VKM"), "END\r\n0102"));
    EXPECT_TRUE(bench.locked());
}

TEST(SavingAProject, ChangesNothingInTheTool) {
    ProjectBench bench;
    bench.load_bytes(Bytes{1, 2});
    bench.save();
    EXPECT_EQ(bench.frm.session.UI_State, 0);
    EXPECT_FALSE(bench.frm.session.Project_Lock);
    EXPECT_FALSE(bench.frm.session.Running);
}

// ---- opening -----------------------------------------------------------------

TEST(OpeningAProject, AsksForItInTheFolderOfProjectsAndShowsItsPage) {
    ProjectBench bench;
    bench.open(small_project("VKM26H5404", "", Bytes{1}));
    const Box& box = only_box(bench);
    EXPECT_EQ(box.kind, BoxKind::open_file);
    EXPECT_EQ(box.title, "打开工程文件 *.VKM");
    EXPECT_EQ(box.filter, "*.VKM |*.VKM|All Files (*.*)|*.*");
    EXPECT_EQ(box.folder, folder);
    EXPECT_EQ(bench.frm.screen.texBatchFileName.Text, project_path);
    EXPECT_EQ(chosen_entry(bench.frm.screen.TabStrip2)->Key, "Batch_quantity");
    EXPECT_EQ(bench.files.open_readers, 0);
    EXPECT_FALSE(bench.frm.session.Running);
}

TEST(OpeningAProject, EndsWithACancelledDialog) {
    ProjectBench bench;
    bench.load_bytes(Bytes{1});
    const std::string tab = chosen_entry(bench.frm.screen.TabStrip2)->Key;
    ASSERT_NE(tab, "Batch_quantity");
    bench.click(bench.frm.screen.comOpenBatchFile);
    EXPECT_EQ(bench.boxes().size(), 1u);
    EXPECT_EQ(chosen_entry(bench.frm.screen.TabStrip2)->Key, tab);
    EXPECT_TRUE(bench.frm.images.File_Loaded);
    EXPECT_FALSE(bench.locked());
}

TEST(OpeningAProject, WorksFromTheButtonsOfTheFilesAndByDropping) {
    const std::string text = small_project("VKM26H5404", "", Bytes{7, 8, 9});
    for (const int way : {0, 1, 2}) {
        for (const std::string path : {"/job/job.VKM", "/job/job.vkm", "/job/job.Vkm.bak"}) {
            SCOPED_TRACE(path + std::to_string(way));
            ProjectBench bench;
            bench.files.add(path, text);
            if (way < 2) bench.dialogs.choose_file(path);
            if (way == 0) bench.click(bench.frm.screen.comLoadFile);
            if (way == 1) bench.click(bench.frm.screen.comLoadDataFile);
            if (way == 2) handle_event(bench.frm, {nullptr, EventKind::Drop, 0, path});
            EXPECT_EQ(bench.frm.screen.texBatchFileName.Text, path);
            EXPECT_EQ(bench.frm.screen.txtDevice.Text, "VKM26H5404");
            EXPECT_EQ(bench.program(), (Bytes{7, 8, 9}));
            EXPECT_FALSE(bench.frm.images.Data_Buffer.Has_File);
            EXPECT_EQ(chosen_entry(bench.frm.screen.TabStrip2)->Key, "Batch_quantity");
            EXPECT_TRUE(bench.locked());
            EXPECT_TRUE(bench.frm.session.Project_Lock);
            EXPECT_TRUE(bench.take_texts().empty());
        }
    }
}

// The operator's three ways from the files to a project.
void open_from_the_files(ProjectBench& bench, int way, const std::string& text) {
    bench.files.add(project_path, text);
    if (way < 2) bench.dialogs.choose_file(project_path);
    if (way == 0) bench.click(bench.frm.screen.comLoadFile);
    if (way == 1) bench.click(bench.frm.screen.comLoadDataFile);
    if (way == 2) handle_event(bench.frm, {nullptr, EventKind::Drop, 0, project_path});
}

TEST(OpeningAProject, ThatIsRefusedLeavesTheNamesOfTheLoadedFiles) {
    for (const int way : {0, 1, 2}) {
        SCOPED_TRACE(way);
        ProjectBench bench("VKM26H5404");
        bench.frm.screen.cheClearDataBuffer.Value = 1;
        bench.files.add("/job/a.bin", Bytes{1, 2});
        bench.files.add("/job/d.bin", Bytes{3, 4});
        bench.dialogs.choose_file("/job/a.bin");
        bench.click(bench.frm.screen.comLoadFile);
        bench.dialogs.choose_file("/job/d.bin");
        bench.click(bench.frm.screen.comLoadDataFile);
        open_from_the_files(bench, way, small_project("X", "File_Name: File Buffer: x\r\n", {}));
        EXPECT_EQ(bench.take_texts().size(), 2u);
        EXPECT_EQ(bench.frm.screen.Frame7.Caption, "File Buffer: /job/a.bin");
        EXPECT_EQ(bench.frm.screen.frmDataFlash.Caption, "Data File: /job/d.bin");
        EXPECT_EQ(bench.program(), (Bytes{1, 2}));
        EXPECT_EQ(bench.data(), (Bytes{3, 4}));
    }
}

TEST(OpeningAProject, FromTheFilesShowsTheNamesThatItHas) {
    for (const int way : {0, 1, 2})
        for (const bool named : {false, true}) {
            SCOPED_TRACE(way);
            ProjectBench bench;
            open_from_the_files(bench, way,
                                small_project("VKM26H5404",
                                              named ? "File_Name: File Buffer: C:\\x.hex\r\n"
                                                      "Dtat_File_Name: Data File: C:\\d.bin\r\n"
                                                    : "",
                                              Bytes{7}) +
                                    data_section(Bytes{8}));
            EXPECT_EQ(bench.frm.screen.Frame7.Caption,
                      named ? "File Buffer: C:\\x.hex" : "File Buffer: ");
            EXPECT_EQ(bench.frm.screen.frmDataFlash.Caption,
                      named ? "Data File: C:\\d.bin" : "Data File: ");
            EXPECT_TRUE(bench.take_texts().empty());
        }
}

TEST(OpeningAProject, HoldsEveryJobBackMeanwhile) {
    ProjectBench bench;
    bench.dialogs.stays = std::chrono::seconds(3);
    bench.load_bytes(Bytes{1});
    bench.at(1000, [&] { bench.click(bench.frm.screen.comDownload[0]); });
    bench.open(small_project("X", "", Bytes{7}));
    EXPECT_EQ(bench.port.opens, 0);
    EXPECT_EQ(bench.boxes().size(), 3u);
}

TEST(OpeningAProject, IsRefusedWhileAJobRuns) {
    ProjectBench bench;
    bench.load_bytes(Bytes{1});
    bench.files.add(project_path, small_project("VKM26H5404", "", Bytes{7}));
    bench.at(500, [&] {
        bench.dialogs.choose_file(project_path);
        bench.click(bench.frm.screen.comOpenBatchFile);
        bench.click(bench.frm.screen.comSaveBatchFile);
    });
    bench.click_stop_in(1500);
    comDownload(bench.frm, 0);
    EXPECT_TRUE(bench.boxes().empty());
    EXPECT_EQ(bench.program(), (Bytes{1}));
}

TEST(ProjectHelp, HasItsTitleAndSixPoints) {
    ProjectBench bench;
    bench.click(bench.frm.screen.Command1);
    const Box& box = only_box(bench);
    EXPECT_EQ(box.title, "VKM 工程文件使用说明");
    for (const char* point : {"1. ", "\r\n2. ", "\r\n3. ", "\r\n4. ", "\r\n5. ", "\r\n6. "})
        EXPECT_NE(box.text.find(point), std::string::npos) << point;
    EXPECT_EQ(box.text.find("\r\n7. "), std::string::npos);
}

// ---- the next value -----------------------------------------------------------

const std::string change_next_value =
    "若要修改“下一个值(10进制)”，请先点击“允许修改参数和选项”按钮。";

std::string numbered_project(bool program, bool data) {
    const auto enable = [](bool on) { return std::string(on ? "1" : "0") + "\r\n"; };
    return small_project("VKM26H5404",
                         "Auto_Increase_Enable: " + enable(program) +
                             "Auto_Increase_Next: 00111\r\nData_Increase_Enable: " + enable(data) +
                             "Data_Increase_Next: 222\r\n",
                         Bytes{1}) +
           data_section(Bytes{2});
}

struct NumberedBench : ProjectBench {
    NumberedBench() {
        settings.preset("Auto_Increase", "next_value", "333");
        settings.preset("Data_Auto_Increase", "next_value", "444");
    }
};

TEST(NextValueBox, TellsTheProjectsNumberAndHowFarThisBenchHasCome) {
    for (const int sets : {1, 2, 3}) {
        NumberedBench bench;
        bench.open(numbered_project(sets & 1, sets & 2));
        const Texts texts = bench.take_texts();
        ASSERT_EQ(texts.size(), 1u);
        EXPECT_EQ(texts[0].substr(0, change_next_value.size()), change_next_value);
        std::string end;
        if (sets & 1)
            end += "\r\n\r\n程序文件 / Program file: 00111    本机上次 / last on this bench: 333";
        if (sets & 2)
            end += "\r\n\r\n数据文件 / Data file: 222    本机上次 / last on this bench: 444";
        EXPECT_TRUE(ends_with(texts[0], end)) << texts[0];
        EXPECT_EQ(texts[0].find("程序文件") != std::string::npos, (sets & 1) != 0);
        EXPECT_EQ(texts[0].find("数据文件") != std::string::npos, (sets & 2) != 0);
        EXPECT_TRUE(bench.locked());
        EXPECT_FALSE(bench.frm.increase.Auto_Increase.Active);
        EXPECT_FALSE(bench.frm.increase.Data_Auto_Increase.Active);
    }
}

TEST(NextValueBox, IsNotShownWithoutNumbering) {
    NumberedBench bench;
    bench.open(numbered_project(false, false));
    EXPECT_TRUE(bench.take_texts().empty());
}

TEST(NextValueBox, IsNotShownForADamagedProject) {
    NumberedBench bench;
    bench.open(with(numbered_project(true, true), "\r\n02\r\n", "\r\n03\r\n"));
    EXPECT_EQ(bench.take_texts(), (Texts{data_sum_wrong}));
    bench.open(with(numbered_project(true, true), "END\r\n01", "END\r\n02"));
    EXPECT_EQ(bench.take_texts(), (Texts{program_sum_wrong}));
}

TEST(NumberingOfAProject, IsActiveNoMoreWhenAnotherProjectIsLoaded) {
    ProjectBench bench("VKM26H5404");
    bench.load_bytes(Bytes(100, 1));
    bench.load_data(Bytes(100, 1));
    Screen& s = bench.frm.screen;
    s.texAuto_Increase[0].Text = "10";
    s.texData_Auto_Increase[0].Text = "10";
    for (Control* enable : {&s.cheAuto_Increase, &s.cheData_Auto_Increase}) {
        enable->Value = 1;
        bench.click(*enable);
    }
    ASSERT_TRUE(bench.frm.increase.Auto_Increase.Active);
    ASSERT_TRUE(bench.frm.increase.Data_Auto_Increase.Active);
    bench.open(numbered_project(true, true));
    EXPECT_FALSE(bench.frm.increase.Auto_Increase.Active);
    EXPECT_FALSE(bench.frm.increase.Data_Auto_Increase.Active);
}

// ---- the lock -------------------------------------------------------------------

void expect_options_open(ProjectBench& bench, bool open) {
    Screen& s = bench.frm.screen;
    const auto* rows = family_rows(bench.frm);
    ASSERT_TRUE(rows);
    for (const Option_Row& row : *rows) {
        if (row.Option_Code.empty() || !row.Option_Visible || !row.Option_Enable_0) continue;
        // Those of the watchdog follow a choice.
        if (row.Option_Key.starts_with("Idle_Run")) continue;
        EXPECT_EQ(control_of(s, row)->Enabled, open) << row.Option_Key;
    }
    for (const Control* c : {&s.cheAuto_Increase, &s.cheData_Auto_Increase, &s.txtDevice,
                             &s.comLoadFile, &s.comLoadDataFile, &s.comLockOptions, &s.Command3,
                             &s.txtAP_FileStart, &s.txtFileCheckSum})
        EXPECT_EQ(c->Enabled, open) << full_name(*c);
    for (const auto* fields : {&s.texAuto_Increase, &s.texData_Auto_Increase})
        for (const Control& c : *fields) EXPECT_EQ(c.Enabled, open) << full_name(c);
    for (const auto* formats : {&s.optAuto_Increase, &s.optData_Auto_Increase})
        for (const Control& c : *formats) EXPECT_EQ(c.Enabled, open) << full_name(c);
    for (const Control* c : {&s.comDownload[0], &s.comDownload[1], &s.comOpenBatchFile,
                             &s.comSaveBatchFile, &s.comUnlockOptions, &s.comReadChipLock})
        EXPECT_TRUE(c->Enabled) << full_name(*c);
    EXPECT_FALSE(s.comStop_Download.Enabled);
}

TEST(ProjectLock, DisablesWhatChangesTheJobUntilItIsUnlocked) {
    for (const std::string_view model : family_models) {
        if (model == "VKM47W58AD" || model == "VKM47H58RK") continue;
        SCOPED_TRACE(model);
        ProjectBench bench;
        bench.open(small_project(model, "", Bytes{1}));
        EXPECT_EQ(bench.frm.session.UI_State, 2);
        expect_options_open(bench, false);
        bench.click(bench.frm.screen.comUnlockOptions);
        EXPECT_EQ(bench.frm.session.UI_State, 0);
        EXPECT_TRUE(bench.frm.session.Project_Lock);
        expect_options_open(bench, true);
        bench.click(bench.frm.screen.comLockOptions);
        EXPECT_EQ(bench.frm.session.UI_State, 2);
        expect_options_open(bench, false);
    }
}

TEST(ProjectLock, OfAFamilyWithoutDataMemoryKeepsItsControlsOff) {
    ProjectBench bench;
    bench.open(small_project("VKM47H58RK", "", Bytes{1}));
    bench.click(bench.frm.screen.comUnlockOptions);
    EXPECT_TRUE(bench.frm.screen.comLoadFile.Enabled);
    EXPECT_TRUE(bench.frm.screen.Option0[0].Enabled);
    EXPECT_FALSE(bench.frm.screen.comLoadDataFile.Enabled);
    EXPECT_FALSE(bench.frm.screen.cheData_Auto_Increase.Enabled);
}

TEST(ProjectLock, TakesNoDroppedFile) {
    ProjectBench bench;
    bench.open(small_project("VKM26H5404", "", Bytes{1}));
    bench.files.add("/job/a.bin", Bytes{5, 6});
    handle_event(bench.frm, {nullptr, EventKind::Drop, 0, "/job/a.bin"});
    EXPECT_EQ(bench.program(), (Bytes{1}));
}

TEST(ProjectLock, ComesBackAfterStop) {
    ProjectBench bench;
    bench.open(small_project("VKM47H58RK+", "", Bytes{1}));
    for (const bool unlocked : {false, true}) {
        if (unlocked) bench.click(bench.frm.screen.comUnlockOptions);
        bench.at(300, [&] { EXPECT_EQ(bench.frm.session.UI_State, unlocked ? 1 : 3); });
        bench.click_stop_in(500);
        comDownload(bench.frm, 0);
        EXPECT_TRUE(bench.locked());
    }
}

TEST(ProjectLock, DoesntComeBackWithoutAProject) {
    ProjectBench bench;
    bench.load_bytes(Bytes{1});
    bench.click(bench.frm.screen.comLockOptions);
    bench.click(bench.frm.screen.comUnlockOptions);
    bench.click_stop_in(500);
    comDownload(bench.frm, 0);
    EXPECT_EQ(bench.frm.session.UI_State, 0);
}

}  // namespace
}  // namespace vkm::test
