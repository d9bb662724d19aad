// What a session does to the screen: the controls by state, the progress bar, the
// verdict; and the right to run one.
#include <gtest/gtest.h>

#include <map>
#include <set>
#include <string>

#include "options/mcu_options.h"
#include "session/download_session.h"
#include "session/progress.h"
#include "session/session_lease.h"
#include "session/session_texts.h"
#include "session/verdict.h"
#include "support/virtual_world.h"

namespace vkm::test {
namespace {

const std::set<std::string> idle_only = {
    "txtDevice",          "txtAP_FileStart",  "txtFileCheckSum",  "cheClearAP_Buffer",
    "cheClearDataBuffer", "comLoadFile",      "Command3",         "comTJXZ",
    "comLoadDataFile",    "txtDataFileStart", "comDebugContinue", "comOpenCOM",
    "comDebugClear",      "comLockOptions",   "comMastWindow",    "comDebugSend",
    "comAutoSend",        "comSendUserCode",  "comStoreFile",     "comDownSoft_ICE"};
const std::set<std::string> not_busy = {
    "comDownload",      "comDebugHelp",      "comOpenBatchFile",     "comSaveBatchFile",
    "comUnlockOptions", "com_Demo_DownLoad", "com_Demo_Re_DownLoad", "comReadChipLock"};
const std::set<std::string> busy_only = {"comStop_Download", "com_Demo_Stop"};

// What Save File, the debug monitor and the data image ask for beside an idle tool.
void grant_own_conditions(frmMain& frm) {
    frm.screen.txt_Start_Address.Text = "0000";
    frm.screen.txt_length.Text = "400";
    frm.catalogue.SoftICE_Enable = true;
    frm.catalogue.MCU_Info.MCU_Family = 2;
}

TEST(UIState, LeavesOffWhatLacksMoreThanAnIdleTool) {
    VirtualWorld world;
    Screen& screen = world.frm.screen;
    grant_own_conditions(world.frm);
    Set_UI_State(world.frm, 0);
    EXPECT_TRUE(screen.comStoreFile.Enabled);
    EXPECT_TRUE(screen.comDownSoft_ICE.Enabled);
    EXPECT_TRUE(screen.cheClearDataBuffer.Enabled);
    screen.txt_Start_Address.Text.clear();
    world.frm.catalogue.SoftICE_Enable = false;
    world.frm.catalogue.MCU_Info.MCU_Family = 0;
    Set_UI_State(world.frm, 0);
    EXPECT_FALSE(screen.comStoreFile.Enabled);
    EXPECT_FALSE(screen.comDownSoft_ICE.Enabled);
    EXPECT_FALSE(screen.cheClearDataBuffer.Enabled);
}

TEST(UIState, EnablesEachControlByTheState) {
    for (const bool before : {false, true}) {
        for (std::int16_t state :
             {std::int16_t{0}, std::int16_t{1}, std::int16_t{2}, std::int16_t{3}}) {
            VirtualWorld world;
            for_each_control(world.frm.screen, [&](Control& c) { c.Enabled = before; });
            grant_own_conditions(world.frm);
            Set_UI_State(world.frm, state);
            EXPECT_EQ(world.frm.session.UI_State, state);
            std::map<std::string, int> seen;
            for_each_control(world.frm.screen, [&](Control& c) {
                const std::string name(c.Name);
                bool wanted = before;  // the state says nothing of the others
                if (idle_only.contains(name)) wanted = state == 0;
                if (not_busy.contains(name)) wanted = state == 0 || state == 2;
                if (busy_only.contains(name)) wanted = state == 1 || state == 3;
                EXPECT_EQ(c.Enabled, wanted) << name << " " << c.Index << " in state " << state;
                ++seen[name];
            });
            for (const auto* names : {&idle_only, &not_busy, &busy_only})
                for (const std::string& name : *names) EXPECT_GT(seen[name], 0) << name;
            EXPECT_EQ(seen["comDownload"], 2);
            EXPECT_EQ(seen["comDebugClear"], 3);
        }
    }
}

TEST(UIState, TellsTheOptionPanel) {
    VirtualWorld world;
    Fill_Options(world.frm);
    world.frm.catalogue.MCU_Info.MCU_Family = 2;
    const Screen& screen = world.frm.screen;
    Set_UI_State(world.frm, 1);
    EXPECT_TRUE(screen.LabOption[0].Enabled);
    EXPECT_FALSE(screen.Option0[0].Enabled);
    Set_UI_State(world.frm, 3);
    EXPECT_FALSE(screen.LabOption[0].Enabled);
    Set_UI_State(world.frm, 0);
    EXPECT_TRUE(screen.Option0[0].Enabled);
}

TEST(UIState, BecomesBusyAndLockedAndFree) {
    VirtualWorld world;
    Set_UI_Busy(world.frm);
    EXPECT_EQ(world.frm.session.UI_State, 1);
    Set_UI_Busy(world.frm);
    EXPECT_EQ(world.frm.session.UI_State, 1);
    comLockOptions(world.frm);
    EXPECT_EQ(world.frm.session.UI_State, 2);
    Set_UI_Busy(world.frm);
    EXPECT_EQ(world.frm.session.UI_State, 3);
    comUnlockOptions(world.frm);
    EXPECT_EQ(world.frm.session.UI_State, 0);
}

TEST(UIState, LeavesTheDataControlsOffForAModelWithoutThem) {
    VirtualWorld world;
    Fill_Options(world.frm);
    Screen& screen = world.frm.screen;
    for (const bool has_data : {false, true}) {
        grant_own_conditions(world.frm);
        world.frm.catalogue.MCU_Info.MCU_Family = has_data ? 2 : 0;
        Set_UI_State(world.frm, 0);
        EXPECT_EQ(screen.comLoadDataFile.Enabled, has_data);
        EXPECT_EQ(screen.txtDataFileStart.Enabled, has_data);
        EXPECT_EQ(screen.cheClearDataBuffer.Enabled, has_data);
        EXPECT_EQ(screen.txtDataFileCheckSum.Enabled, has_data);
        EXPECT_EQ(screen.cheData_Auto_Increase.Enabled, has_data);
        EXPECT_EQ(screen.texData_Auto_Increase[0].Enabled, has_data);
        EXPECT_EQ(screen.optData_Auto_Increase[2].Enabled, has_data);
        EXPECT_TRUE(screen.texAuto_Increase[0].Enabled);
    }
}

TEST(Stop, AtRestChangesNothingButTheFlag) {
    VirtualWorld world;
    Set_UI_State(world.frm, 2);
    world.frm.session.Result = Job_Result::done;
    world.frm.timers.Timer9.Enabled = true;
    comStop_Download(world.frm);
    comStop_Download(world.frm);
    EXPECT_EQ(world.frm.session.UI_State, 2);
    EXPECT_EQ(world.frm.session.Result, Job_Result::done);
    EXPECT_TRUE(world.frm.link.stop_requested);
    EXPECT_FALSE(world.frm.timers.Timer9.Enabled);
    EXPECT_EQ(world.log(), "");
}

TEST(Stop, GivesTheControlsBackAndClosesThePort) {
    VirtualWorld world;
    world.frm.platform.port.open();
    world.frm.session.Connected = true;
    for (std::int16_t busy : {std::int16_t{1}, std::int16_t{3}}) {
        Set_UI_State(world.frm, busy);
        comStop_Download(world.frm);
        EXPECT_EQ(world.frm.session.UI_State, busy - 1);
        EXPECT_FALSE(world.frm.session.Connected);
        EXPECT_FALSE(world.port.is_open());
    }
}

TEST(Progress, ShowsAndHidesTheBar) {
    VirtualWorld world;
    Screen& screen = world.frm.screen;
    Show_Progress(world.frm, Progress::down_load);
    EXPECT_TRUE(screen.ProgressBar1.Visible);
    screen.labKbyte.Caption = "1.000K";
    Show_Progress(world.frm, Progress::hide);
    EXPECT_FALSE(screen.ProgressBar1.Visible);
    EXPECT_EQ(screen.labKbyte.Caption, "");
    Show_Progress(world.frm, Progress::fill_grid);
    EXPECT_TRUE(screen.ProgressBar2.Visible);
    EXPECT_FALSE(screen.ProgressBar1.Visible);
    Show_Progress(world.frm, Progress::hide);
    EXPECT_FALSE(screen.ProgressBar2.Visible);
}

TEST(Progress, TellsKilobytesWithADigitBeforeThePoint) {
    VirtualWorld world;
    const Progress_Scale scale = progress_scale({0, 32768});
    set_up_bar(world.frm, scale);
    EXPECT_EQ(world.frm.screen.ProgressBar1.Max, 129);
    show_programmed(world.frm, scale, {0, 127});
    EXPECT_EQ(world.frm.screen.labKbyte.Caption, "0.125K");
    show_programmed(world.frm, scale, {0x100, 0x1FF});
    EXPECT_EQ(world.frm.screen.labKbyte.Caption, "0.250K");
    show_programmed(world.frm, scale, {0, 32767});
    EXPECT_EQ(world.frm.screen.labKbyte.Caption, "32.000K");
    EXPECT_EQ(world.frm.screen.ProgressBar1.Value, 128);
}

TEST(Verdict, StandsAsAWordWithASignAndItsCode) {
    VirtualWorld world;
    const Control& label = world.frm.screen.labVerdict;
    job_runs(world.frm);
    EXPECT_EQ(label.Caption, "… Running / 正在进行");
    EXPECT_EQ(label.Value, 1);
    job_failed(world.frm, session_text::step_erase);
    EXPECT_EQ(label.Caption, "✘ Failed / 失败: Erase / 擦除");
    EXPECT_EQ(label.Value, 3);
    job_runs(world.frm);
    EXPECT_EQ(world.frm.session.Failed_Step, "");
    job_done(world.frm);
    EXPECT_EQ(label.Caption, "✔ OK / 成功");
    EXPECT_EQ(label.Value, 2);
    job_runs(world.frm);
    world.frm.link.stop_requested = true;
    job_failed(world.frm, session_text::step_program);
    EXPECT_EQ(label.Caption, "■ Stopped / 已停止");
    EXPECT_EQ(label.Value, 4);
    EXPECT_EQ(world.frm.session.Failed_Step, "");
}

TEST(Verdict, NamesTheFirstFailureOfAJobAndNothingOutsideOne) {
    VirtualWorld world;
    job_failed(world.frm, session_text::step_connect);
    EXPECT_EQ(world.frm.screen.labVerdict.Caption, "");
    job_runs(world.frm);
    job_failed(world.frm, session_text::step_identify);
    job_failed(world.frm, session_text::step_connect);
    EXPECT_EQ(world.frm.screen.labVerdict.Caption, "✘ Failed / 失败: Identify model / 识别型号");
}

TEST(Verdict, SpeaksEnglishOnDemand) {
    VirtualWorld world;
    world.frm.screen.Show_English = true;
    job_runs(world.frm);
    EXPECT_EQ(world.frm.screen.labVerdict.Caption, "… Running");
    job_failed(world.frm, session_text::step_write_options);
    EXPECT_EQ(world.frm.screen.labVerdict.Caption, "✘ Failed: Write options");
}

TEST(SessionLease, IsGrantedToOneAtATime) {
    VirtualWorld world;
    {
        const Session_Lease first(world.frm);
        EXPECT_TRUE(first.granted());
        {
            const Session_Lease second(world.frm);
            EXPECT_FALSE(second.granted());
        }
        EXPECT_TRUE(world.frm.session.Running);
    }
    EXPECT_FALSE(world.frm.session.Running);
    const Session_Lease third(world.frm);
    EXPECT_TRUE(third.granted());
}

}  // namespace
}  // namespace vkm::test
