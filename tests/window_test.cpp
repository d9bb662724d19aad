// The window as the logic knows it: start-up, closing, shrinking, wiring.
#include <gtest/gtest.h>

#include "image/image_files.h"
#include "session/download_session.h"
#include "support/virtual_world.h"
#include "window/main_window.h"
#include "window/wiring.h"

namespace vkm {
namespace {

using test::VirtualWorld;

struct Window : VirtualWorld {
    Window() {
        wire(frm);
        Load(frm);
        run_for(1000);  // past the first save
    }
    void event(Control& control, EventKind kind, int key = 0) {
        handle_event(frm, {&control, kind, key, {}});
    }
    void click(Control& control) { event(control, EventKind::Click); }
    std::string stored(const std::string& key) const {
        const auto found = settings.on_disk.find({"Settings", key});
        return found == settings.on_disk.end() ? "(absent)" : found->second;
    }
    // A job that waits for a chip that isn't there.
    void start_job_at(std::int64_t ms) {
        frm.images.File_Loaded = true;
        at(ms, [this] { click(frm.screen.comDownload[0]); });
    }
};

// ---- start-up -----------------------------------------------------------------

TEST(WindowStart, LeavesOffWhatTheModelOrTheFieldsDoNotAllow) {
    Window window;
    const Screen& s = window.frm.screen;
    EXPECT_FALSE(s.comDownSoft_ICE.Enabled) << "the model has no debug monitor";
    EXPECT_FALSE(s.comStoreFile.Enabled) << "no start address";
    EXPECT_TRUE(s.cheClearDataBuffer.Enabled);
    EXPECT_TRUE(s.comDownload[0].Enabled);
    EXPECT_FALSE(s.comStop_Download.Enabled);
}

TEST(WindowStart, KeepsTheDataImageShutForTheOldestFamily) {
    Window window;
    window.frm.screen.TreeViewDevice.ListIndex = -1;
    ASSERT_TRUE(choose_key(window.frm.screen.TreeViewDevice, "VKM47H58RK"));
    window.click(window.frm.screen.TreeViewDevice);
    window.run_for(600);
    VirtualWorld again;
    again.settings = window.settings;
    wire(again.frm);
    Load(again.frm);
    EXPECT_EQ(again.frm.screen.txtDevice.Text, "VKM47H58RK");
    EXPECT_FALSE(again.frm.screen.cheClearDataBuffer.Enabled);
    EXPECT_TRUE(again.frm.screen.comDownSoft_ICE.Enabled);
}

TEST(WindowStart, AProjectFileShowsThePageOfProjects) {
    Window window;
    window.files.add("/job/a.VKM", std::string_view("VER: 1.1\r\n"));
    window.dialogs.choose_file("/job/a.VKM");
    window.click(window.frm.screen.comLoadFile);
    EXPECT_TRUE(window.frm.screen.fra_Batch_quantity.Visible);
    EXPECT_FALSE(window.frm.screen.Frame7.Visible);
}

TEST(WindowStart, FillsTheLists) {
    Window window;
    const Screen& s = window.frm.screen;
    const auto texts = [](const Control& list) {
        std::vector<std::string> all;
        for (const Entry& entry : list.List) all.push_back(entry.Text);
        return all;
    };
    using Texts = std::vector<std::string>;
    EXPECT_EQ(texts(s.cobBaudMax), (Texts{"115200", "57600", "38400", "28800", "19200", "14400",
                                          "12800", "11520", "9600", "4800", "2400", "1200"}));
    EXPECT_EQ(s.cobBaudMax.ListIndex, 0);
    ASSERT_EQ(s.combCommPort.List.size(), 16u);
    EXPECT_EQ(s.combCommPort.List.front().Text, "COM1");
    EXPECT_EQ(s.combCommPort.List.back().Text, "COM16");
    EXPECT_EQ(texts(s.comDalay_ReDownLoad), (Texts{"9", "8", "7", "6", "5", "4", "3", "2", "1"}));
    EXPECT_EQ(texts(s.comWDT_Prescalar), (Texts{"2", "4", "8", "16", "32", "64", "128", "256"}));
    const Texts pins = {"P1.0", "P1.1", "P1.2", "P1.3", "P1.4", "P1.5", "P1.6", "P1.7",
                        "P3.0", "P3.1", "P3.2", "P3.3", "P3.4", "P3.5", "P3.7"};
    EXPECT_EQ(texts(s.comb_485_pin), pins);
    EXPECT_EQ(texts(s.comb_External_WDT), pins);
    ASSERT_EQ(s.comb_WDT.List.size(), 36u);
    EXPECT_EQ(s.comb_WDT.List.front().Text, "P0.0");
    EXPECT_EQ(s.comb_WDT.List.back().Text, "P4.3");
    EXPECT_EQ(texts(s.com_Debug_Baud),
              (Texts{"256000", "128000", "115200", "57600", "38400", "28800", "19200", "14400",
                     "12800", "11520", "9600", "4800", "2400", "1200", "600"}));
    EXPECT_EQ(texts(s.com_Debug_ParityCheck), (Texts{"Even", "Odd", "None"}));
    for (const Control* baud : {&s.com_Debug_Baud, &s.cobUserCodeBaud, &s.cob_DEMO_DownLoad_Baud,
                                &s.cob_DEMO_UserCode_Baud})
        EXPECT_EQ(text_of(*baud), "115200") << baud->Name;
}

TEST(WindowStart, SetsItsStartValues) {
    Window window;
    const Screen& s = window.frm.screen;
    EXPECT_EQ(s.Text1.Text, "999");
    EXPECT_EQ(s.vscFile[0].SmallChange, 16);
    EXPECT_EQ(s.vscFile[1].SmallChange, 1);
    EXPECT_EQ(s.labKbyte.Caption, "");
    EXPECT_TRUE(s.comDownload[0].Enabled);
    EXPECT_TRUE(s.comSendUserCode.Enabled);
    EXPECT_FALSE(s.comStop_Download.Enabled);
    EXPECT_FALSE(s.Show_English);
    EXPECT_FALSE(s.texHardWareHelp.Text.empty());
    EXPECT_EQ(window.frm.session.UI_State, 0);
    EXPECT_EQ(window.frm.images.AP_Buffer.Bytes.size(), 0x12001u);
    EXPECT_EQ(window.frm.images.Data_Buffer.Bytes.size(), 0x8001u);
    EXPECT_EQ(window.frm.images.AP_Buffer.Image_High, 1023);
    EXPECT_FALSE(s.txtISP_reange[0].Text.empty());
}

TEST(WindowStart, NoSetOfOptionsStartsWithTwoOn) {
    Window window;
    std::map<std::string_view, int> on;
    for_each_control(window.frm.screen, [&](Control& control) {
        if (control.Kind == ControlKind::OptionButton && control.Index >= 0)
            on[control.Name] += control.Value;
    });
    for (const auto& [name, count] : on) EXPECT_LE(count, 1) << name;
}

TEST(WindowStart, OpensNoPortAndAsksNothing) {
    Window window;
    EXPECT_FALSE(window.port.is_open());
    EXPECT_TRUE(window.boxes().empty());
    EXPECT_EQ(window.sounder.beeps(), 0);
}

// ---- settings timer ---------------------------------------------------------------

TEST(WindowTimer3, ShowsTheRangesOfTheModelAndStopsItself) {
    Window window;
    Screen& s = window.frm.screen;
    choose_key(s.TreeViewDevice, "VKM26H2052");
    window.click(s.TreeViewDevice);
    const std::string before = s.txtISP_reange[1].Text;
    window.run_for(499);
    EXPECT_EQ(s.txtISP_reange[1].Text, before);
    window.run_for(2);
    EXPECT_NE(s.txtISP_reange[1].Text, before);
    EXPECT_FALSE(window.frm.timers.Timer3.Enabled);
}

// ---- closing ------------------------------------------------------------------------

TEST(WindowClose, TakesTwoPasses) {
    Window window;
    EXPECT_FALSE(QueryUnload(window.frm));
    EXPECT_TRUE(window.frm.link.close_pending);
    window.run_for(499);
    EXPECT_FALSE(window.frm.screen.window.Close_Requested);
    window.run_for(2);
    EXPECT_TRUE(window.frm.screen.window.Close_Requested);
    EXPECT_FALSE(window.frm.timers.TimerUnload.Enabled);
    EXPECT_TRUE(QueryUnload(window.frm));
}

TEST(WindowClose, DuringADownloadStopsItInTheFirstPassAndClosesInTheSecond) {
    Window window;
    window.start_job_at(10);
    bool first = true;
    bool still_running = true;
    window.at(3000, [&] {
        ASSERT_TRUE(window.frm.session.Running);
        first = QueryUnload(window.frm);
    });
    window.at(3400, [&] { still_running = window.frm.session.Running; });
    window.run_for(4000);
    EXPECT_FALSE(first);
    EXPECT_FALSE(still_running);
    EXPECT_FALSE(window.port.is_open());
    EXPECT_EQ(window.frm.session.UI_State, 0);
    EXPECT_TRUE(window.frm.screen.window.Close_Requested);
    EXPECT_TRUE(QueryUnload(window.frm));
}

TEST(WindowClose, ABlockThatFailsWhileClosingClosesTheWindow) {
    Window window;
    window.frm.timers.Timer4.Interval = 1;
    start_timer(window.frm.timers.Timer4, 1, window.loop.now());
    window.run_for(5);
    EXPECT_TRUE(window.frm.screen.window.Close_Requested);
    EXPECT_FALSE(window.frm.timers.Timer4.Enabled);
}

TEST(WindowClose, UnloadClosesThePortAndKeepsTheWindowsPlace) {
    Window window;
    WindowRecord& record = window.frm.screen.window;
    record.Left = 150;
    record.Top = 300;
    record.Width = 15000;
    record.Height = 10500;
    window.port.set_settings("1200,n,8,1");
    window.port.open();
    Unload(window.frm);
    EXPECT_FALSE(window.port.is_open());
    EXPECT_EQ(window.stored("MainLeft"), "150");
    EXPECT_EQ(window.stored("MainTop"), "300");
    EXPECT_EQ(window.stored("MainWidth"), "15000");
    EXPECT_EQ(window.stored("MainHeight"), "10500");
}

TEST(WindowClose, AMovedWindowIsKeptThroughACrash) {
    Window window;
    window.frm.screen.window.Left = 4500;
    handle_event(window.frm, {nullptr, EventKind::Change, 0, {}});
    window.run_for(501);
    EXPECT_EQ(window.stored("MainLeft"), "4500");
}

// ---- shrinking and the splitter ----------------------------------------------------

TEST(WindowShrink, TogglesBetweenTheWholeWindowAndTheStepColumn) {
    Window window;
    Screen& s = window.frm.screen;
    s.window.Width = 14000;
    window.click(s.comMastWindow);
    EXPECT_TRUE(s.window.Shrunk);
    EXPECT_EQ(s.comMastWindow.Caption, "恢复主窗体");
    s.window.Width = 6600;  // as the edge draws it
    window.click(s.comMastWindow);
    EXPECT_FALSE(s.window.Shrunk);
    EXPECT_EQ(s.comMastWindow.Caption, "收缩主窗体");
    EXPECT_EQ(s.window.Width, 14000);
}

TEST(WindowShrink, AShrunkWindowComesBackWhole) {
    Window window;
    Screen& s = window.frm.screen;
    s.window.Width = 14000;
    window.click(s.comMastWindow);
    s.window.Width = 6600;
    Unload(window.frm);
    EXPECT_EQ(window.stored("MainWidth"), "14000");
}

TEST(WindowSplitter, ReleasingStoresAWidthThatFitsAtOnce) {
    Window window;
    const std::pair<int, const char*> rows[] = {
        {2500, "2500"}, {10, "300"}, {-100, "300"}, {11900, "11900"}, {50000, "11900"}};
    for (const auto& [width, stored] : rows) {
        ImgSplitter_Released(window.frm, width);
        EXPECT_EQ(window.stored("Frame24_Width"), stored);
        EXPECT_EQ(std::to_string(window.frm.screen.window.Frame24_Width), stored);
    }
}

TEST(WindowSplitter, ABarShowsThatItIsBeingMoved) {
    Window window;
    const Control& bar = window.frm.screen.picSplitter;
    EXPECT_FALSE(bar.Visible);
    ImgSplitter_Pressed(window.frm);
    EXPECT_TRUE(bar.Visible);
    ImgSplitter_Released(window.frm, 3000);
    EXPECT_FALSE(bar.Visible);
}

// ---- wiring ---------------------------------------------------------------------------

TEST(Wiring, EveryNameOfTheTableIsAControl) {
    Screen screen;
    for (const Wire& wire : wires()) {
        if (wire.control.empty()) continue;
        EXPECT_NE(find_control(screen, wire.control, 0), nullptr) << wire.control;
    }
}

TEST(Wiring, NoEventStandsInTheTableTwice) {
    std::set<std::pair<std::string_view, EventKind>> seen;
    for (const Wire& wire : wires())
        EXPECT_TRUE(seen.insert({wire.control, wire.kind}).second) << wire.control;
}

TEST(Wiring, EveryEventOfEveryControlIsTakenWithoutHarm) {
    Window window;
    window.port.present.clear();  // nothing waits for a chip
    for (int round = 0; round < 2; ++round) {
        for_each_control(window.frm.screen, [&](Control& control) {
            for (EventKind kind : {EventKind::Click, EventKind::Change, EventKind::KeyDown,
                                   EventKind::KeyPress, EventKind::MouseUp, EventKind::Drop})
                handle_event(window.frm, {&control, kind, 0, "x"});
        });
    }
    EXPECT_EQ(window.frm.session.UI_State, 0);
}

TEST(Wiring, AClickAnywhereElseClosesTheTree) {
    for (const char* name : {"Frame1", "Frame2", "Frame3", "Frame5", "combCommPort", "TabStrip1"}) {
        Window window;
        Screen& s = window.frm.screen;
        window.click(s.Command3);
        ASSERT_TRUE(s.TreeViewDevice.Visible);
        ASSERT_FALSE(s.txtDevice.Enabled);
        window.click(*find_control(s, name));
        EXPECT_FALSE(s.TreeViewDevice.Visible) << name;
        EXPECT_TRUE(s.txtDevice.Enabled) << name;
    }
}

TEST(Wiring, EscapeClosesTheTreeAndLeavesTheModel) {
    Window window;
    Screen& s = window.frm.screen;
    window.click(s.Command3);
    window.event(s.TreeViewDevice, EventKind::KeyDown, 27);
    EXPECT_FALSE(s.TreeViewDevice.Visible);
    EXPECT_EQ(s.txtDevice.Text, "VKM47H51RB");
}

TEST(Wiring, AFamilyLeavesTheTreeOpenAndTheImagesAlone) {
    Window window;
    Screen& s = window.frm.screen;
    window.frm.images.AP_Buffer.Bytes[5] = 0x55;
    window.click(s.Command3);
    choose_key(s.TreeViewDevice, "Family26H2052");
    window.click(s.TreeViewDevice);
    EXPECT_TRUE(s.TreeViewDevice.Visible);
    EXPECT_EQ(window.frm.images.AP_Buffer.Bytes[5], 0x55);
}

TEST(Wiring, DuringAJobAndWhileItUnwindsNeitherModelNorImageChanges) {
    Window window;
    Screen& s = window.frm.screen;
    window.files.add("/bench/other.bin", std::vector<std::uint8_t>{1, 2, 3});
    window.click(s.Command3);
    window.start_job_at(10);
    const auto try_everything = [&] {
        ASSERT_TRUE(window.frm.session.Running);
        EXPECT_FALSE(s.TreeViewDevice.Visible);
        window.frm.images.AP_Buffer.Bytes[5] = 0x55;
        choose_key(s.TreeViewDevice, "VKM26H2052");
        window.click(s.TreeViewDevice);
        window.click(s.Command3);
        EXPECT_FALSE(s.TreeViewDevice.Visible);
        window.dialogs.choose_file("/bench/other.bin");
        window.click(s.comLoadFile);
        window.click(s.comLoadDataFile);
        handle_event(window.frm, {nullptr, EventKind::Drop, 0, "/bench/other.bin"});
        window.click(s.comDownload[0]);
        window.click(s.comDownload[1]);
        EXPECT_EQ(window.frm.images.AP_Buffer.Bytes[5], 0x55);
        EXPECT_EQ(s.txtDevice.Text, "VKM47H51RB");
        EXPECT_TRUE(window.boxes().empty());
    };
    window.at(2000, [&] {
        try_everything();
        window.click(s.comStop_Download);
        EXPECT_EQ(window.frm.session.UI_State, 0);
        try_everything();
    });
    window.run_for(4000);
    EXPECT_FALSE(window.frm.session.Running);
}

TEST(Wiring, ADroppedFileIsLoadedAsTheProgramFile) {
    Window window;
    window.files.add("/bench/program.bin", std::vector<std::uint8_t>{0x02, 0x00, 0x30});
    handle_event(window.frm, {nullptr, EventKind::Drop, 0, "/bench/program.bin"});
    EXPECT_TRUE(window.frm.images.File_Loaded);
    EXPECT_EQ(window.frm.images.AP_Buffer.Bytes[2], 0x30);
}

TEST(Wiring, AClickOnAnEventWithoutAWireDoesNothing) {
    Window window;
    handle_event(window.frm, {nullptr, EventKind::KeyDown, 27, {}});
    handle_event(window.frm, {&window.frm.screen.labKbyte, EventKind::Click, 0, {}});
    EXPECT_TRUE(window.boxes().empty());
}

}  // namespace
}  // namespace vkm
