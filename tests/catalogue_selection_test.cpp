#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "catalogue/mcu_catalogue.h"
#include "catalogue/model_selection.h"
#include "image/image_files.h"
#include "options/mcu_options.h"
#include "support/virtual_world.h"

namespace vkm {
namespace {

using test::VirtualWorld;

std::vector<std::string> calls;  // of the plugs, in their order

constexpr std::int16_t locked_states[] = {1, 2, 3};  // busy, project locked, both

struct Selection : testing::Test {
    Selection() {
        calls.clear();
        Allocate_Buffers(frm);
        Fill_Options(frm);
        Build_Device_Tree(frm);
        Fill_Tab_Strips(frm);
        frm.catalogue.Rebuild_Register_List = [](frmMain& f) {
            calls.push_back("registers of " + std::to_string(f.catalogue.MCU_Info.MCU_Family));
        };
    }

    void click(const std::string& key) {
        choose_key(screen.TreeViewDevice, key);
        Device_Node_Click(frm);
    }
    std::string apply(const std::string& text) {
        screen.txtDevice.Text = text;
        return Apply_Model(frm);
    }
    std::string tab(const Control& strip, std::string_view key) {
        const auto found = std::ranges::find(strip.List, key, &Entry::Key);
        return found == strip.List.end() ? "no such tab" : found->Text;
    }
    // As if files had been loaded.
    void fill_images() {
        for (Image_Buffer* image : {&frm.images.AP_Buffer, &frm.images.Data_Buffer}) {
            std::ranges::fill(image->Bytes, std::uint8_t{0x5A});
            image->Image_High = 2000;
            image->Has_File = true;
        }
        frm.images.File_Loaded = true;
    }
    bool image_is_empty(const Image_Buffer& image) {
        return std::ranges::all_of(image.Bytes, [](std::uint8_t byte) { return byte == 0; }) &&
               image.Image_High == 0x3FF && !image.Has_File;
    }
    std::vector<const Control*> data_controls() {
        return {&screen.comLoadDataFile, &screen.txtDataFileStart, &screen.txtDataFileCheckSum,
                &screen.cheClearDataBuffer, &screen.cheData_Auto_Increase};
    }
    std::vector<const Control*> data_numbering() {
        std::vector<const Control*> controls;
        for (const Control& field : screen.texData_Auto_Increase) controls.push_back(&field);
        for (const Control& option : screen.optData_Auto_Increase) controls.push_back(&option);
        return controls;
    }
    void expect_enabled(const std::vector<const Control*>& controls, bool enabled) {
        for (const Control* control : controls)
            EXPECT_EQ(control->Enabled, enabled) << control->Name << control->Index;
    }

    VirtualWorld world;
    frmMain& frm = world.frm;
    Screen& screen = frm.screen;
    MCU_Record& model = frm.catalogue.MCU_Info;
};

// ---- the tree ---------------------------------------------------------------

TEST_F(Selection, BuildsTheTreeHiddenAndWithoutAChoice) {
    EXPECT_FALSE(screen.TreeViewDevice.Visible);
    EXPECT_EQ(screen.TreeViewDevice.ListIndex, -1);
    EXPECT_EQ(screen.TreeViewDevice.List.size(), 5u + 78);
    EXPECT_EQ(screen.TreeViewDevice.List[0].Key, "Family47H5xRB/RK+");
}

TEST_F(Selection, FindsNoNodeForAModelOfFamily6) {
    EXPECT_FALSE(choose_key(screen.TreeViewDevice, "VKM27J008"));
    EXPECT_EQ(screen.TreeViewDevice.ListIndex, -1);
    fill_images();
    Device_Node_Click(frm);
    EXPECT_EQ(screen.txtDevice.Text, "");
    EXPECT_TRUE(frm.images.File_Loaded);
    EXPECT_TRUE(calls.empty());
}

TEST_F(Selection, OpensTheTreeInPlaceOfTheBoxAndGivesItTheKeyboard) {
    Open_Device_Tree(frm);
    EXPECT_TRUE(screen.TreeViewDevice.Visible);
    EXPECT_FALSE(screen.txtDevice.Enabled);
    EXPECT_EQ(screen.Focus_Request, "TreeViewDevice");
    Close_Device_Tree(frm);
    EXPECT_FALSE(screen.TreeViewDevice.Visible);
    EXPECT_TRUE(screen.txtDevice.Enabled);
}

TEST_F(Selection, FreesTheBoxOnClosingOnlyWhileTheControlsAreFree) {
    for (const std::int16_t state : locked_states) {
        frm.session.UI_State = state;
        screen.txtDevice.Enabled = false;
        screen.TreeViewDevice.Visible = true;
        Close_Device_Tree(frm);
        EXPECT_FALSE(screen.TreeViewDevice.Visible);
        EXPECT_FALSE(screen.txtDevice.Enabled) << state;
    }
}

TEST_F(Selection, DoesNothingOnAClickOnAFamily) {
    click("VKM47H51RB");
    fill_images();
    calls.clear();
    Open_Device_Tree(frm);
    click("Family26H2052");
    EXPECT_TRUE(screen.TreeViewDevice.Visible);
    EXPECT_EQ(screen.txtDevice.Text, "VKM47H51RB");
    EXPECT_EQ(model.MCU_Name, "VKM47H51RB");
    EXPECT_TRUE(frm.images.File_Loaded);
    EXPECT_EQ(frm.images.AP_Buffer.Bytes[0], 0x5A);
    EXPECT_TRUE(calls.empty());
}

TEST_F(Selection, TakesTheModelThatIsClickedAndEmptiesBothImages) {
    fill_images();
    Open_Device_Tree(frm);
    click("VKM26H2052");
    EXPECT_EQ(screen.txtDevice.Text, "VKM26H2052");
    EXPECT_EQ(model.MCU_Name, "VKM26H2052");
    EXPECT_FALSE(screen.TreeViewDevice.Visible);
    EXPECT_TRUE(screen.txtDevice.Enabled);
    EXPECT_EQ(screen.Focus_Request, "txtDevice");
    EXPECT_TRUE(image_is_empty(frm.images.AP_Buffer));
    EXPECT_TRUE(image_is_empty(frm.images.Data_Buffer));
    EXPECT_FALSE(frm.images.File_Loaded);
    EXPECT_EQ(calls, std::vector<std::string>{"registers of 3"});
}

TEST_F(Selection, LaysOutThePanelOfTheModelAndForgetsWhatWasRead) {
    apply("VKM47H51RB");
    screen.Option0[0].Value = 1;
    screen.Option0[1].Value = 0;
    screen.LabLock[1].Caption = "MCU: ";
    click("VKM26H2052");
    EXPECT_EQ(screen.LabOption[0].Caption, "下次冷启动后时钟源为:");
    EXPECT_EQ(screen.Option0[0].Value, 0);
    EXPECT_EQ(screen.Option0[1].Value, 1);
    EXPECT_EQ(screen.LabLock[1].Caption, "");
    apply("no such model");
    EXPECT_EQ(screen.LabOption[0].Caption, "下次冷启动后时钟源为:");
}

TEST_F(Selection, EmptiesBothImagesAlsoWhenTheModelIsTheSelectedOne) {
    click("VKM47H51RB");
    fill_images();
    click("VKM47H51RB");
    EXPECT_TRUE(image_is_empty(frm.images.AP_Buffer));
    EXPECT_TRUE(image_is_empty(frm.images.Data_Buffer));
    EXPECT_FALSE(frm.images.File_Loaded);
}

TEST_F(Selection, TakesEveryModelThatTheTreeOffers) {
    for (const Entry& node : screen.TreeViewDevice.List) {
        if (node.Parent.empty()) continue;
        click(node.Key);
        EXPECT_EQ(model.MCU_Name, node.Key);
        EXPECT_NE(model.MCU_ID.substr(0, 2), "F3") << node.Key;
        EXPECT_EQ(frm.catalogue.Block_Size, model.MCU_Family == 0 ? 128 : 512) << node.Key;
    }
    EXPECT_TRUE(world.boxes().empty());
}

TEST_F(Selection, TakesNoModelWhileAJobRunsOrTheOptionsAreLocked) {
    click("VKM47H51RB");
    fill_images();
    for (const std::int16_t state : locked_states) {
        frm.session.UI_State = state;
        click("VKM26H2052");
        EXPECT_EQ(model.MCU_Name, "VKM47H51RB") << state;
        EXPECT_EQ(screen.txtDevice.Text, "VKM47H51RB") << state;
        EXPECT_TRUE(frm.images.File_Loaded) << state;
    }
}

// ---- applying ---------------------------------------------------------------

TEST_F(Selection, AppliesTheTrimmedTextOfTheBox) {
    EXPECT_EQ(apply("  VKM47H61RK+ "), "VKM47H61RK+");
    EXPECT_EQ(model.MCU_Name, "VKM47H61RK+");
    EXPECT_TRUE(model.Split_Flag);
    EXPECT_EQ(frm.catalogue.Block_Size, 512);
    EXPECT_FALSE(screen.comDownSoft_ICE.Enabled);
}

TEST_F(Selection, AppliesModelsThatTheTreeDoesNotOffer) {
    EXPECT_EQ(apply("VKM27J016PCA"), "VKM27J016PCA");
    EXPECT_EQ(model.MCU_Family, 6);
    EXPECT_EQ(tab(screen.TabStrip1, "TJXZ"), "脱机下载");
    EXPECT_EQ(apply("VKM26W5424"), "VKM26W5424");
}

TEST_F(Selection, LeavesTheImagesWhenTheTreeIsNotInvolved) {
    fill_images();
    apply("VKM47H51RB");
    EXPECT_TRUE(frm.images.File_Loaded);
    EXPECT_EQ(frm.images.AP_Buffer.Bytes[0], 0x5A);
}

TEST_F(Selection, OffersTheDebugMonitorForFamily0Alone) {
    apply("VKM47H58RK");
    EXPECT_TRUE(screen.comDownSoft_ICE.Enabled);
    EXPECT_EQ(frm.catalogue.SoftICE_File, "VKM58_2003.ROM");
    apply("VKM47W58AD");
    EXPECT_FALSE(screen.comDownSoft_ICE.Enabled);
}

TEST_F(Selection, MarksFourTabsForFamily0AndGivesThemBack) {
    apply("VKM47H516RK");
    EXPECT_EQ(tab(screen.TabStrip1, "ISP DEMO"), "_no_");
    EXPECT_EQ(tab(screen.TabStrip1, "TJXZ"), "_no_");
    EXPECT_EQ(tab(screen.TabStrip2, "Debug1"), "_no_");
    EXPECT_EQ(tab(screen.TabStrip2, "Debug2"), "_no_");
    const auto marked = [](const Control& strip) {
        return std::ranges::count(strip.List, std::string("_no_"), &Entry::Text);
    };
    EXPECT_EQ(marked(screen.TabStrip1), 2);
    EXPECT_EQ(marked(screen.TabStrip2), 2);
    apply("VKM47W516AD");
    EXPECT_EQ(marked(screen.TabStrip1), 0);
    EXPECT_EQ(marked(screen.TabStrip2), 0);
    EXPECT_EQ(tab(screen.TabStrip1, "ISP DEMO"), "ISP DEMO");
    EXPECT_EQ(tab(screen.TabStrip1, "TJXZ"), "脱机下载");
    EXPECT_EQ(tab(screen.TabStrip2, "Debug1"), "Debug_SFR");
    EXPECT_EQ(tab(screen.TabStrip2, "Debug2"), "Debug_xdata");
    EXPECT_EQ(tab(screen.TabStrip2, "Debug_COM"), "串口调试助手");
    EXPECT_EQ(tab(screen.TabStrip2, "EEPROM_File"), "数据文件");
}

TEST_F(Selection, LeavesAToolPageThatFamily0DoesNotHave) {
    apply("VKM47H51RB");
    choose_key(screen.TabStrip1, "TJXZ");
    TabStrip1_Click(frm);
    ASSERT_TRUE(screen.Frame18.Visible);
    apply("VKM47H516RK");
    EXPECT_FALSE(screen.Frame18.Visible);
    EXPECT_TRUE(screen.Frame12.Visible);
    EXPECT_EQ(screen.TabStrip1.ListIndex, 0);
}

TEST_F(Selection, RebuildsTheRegisterListForEveryModel) {
    apply("VKM47H516RK");
    EXPECT_EQ(calls, std::vector<std::string>{"registers of 0"});
    apply("VKM47W516AD");
    EXPECT_EQ(calls, (std::vector<std::string>{"registers of 0", "registers of 1"}));
}

TEST_F(Selection, PassesOverTheRegisterListWhenNobodyHasPluggedItIn) {
    frm.catalogue.Rebuild_Register_List = nullptr;
    click("VKM47H51RB");
    EXPECT_EQ(model.MCU_Name, "VKM47H51RB");
    EXPECT_TRUE(calls.empty());
}

TEST_F(Selection, GathersChangesForOneTickHalfASecondLater) {
    apply("VKM47H51RB");
    EXPECT_TRUE(frm.timers.Timer3.Enabled);
    EXPECT_EQ(frm.timers.Timer3.Interval, 500);
    EXPECT_EQ(frm.timers.Timer3.Due, world.loop.now() + Milliseconds(500));
}

TEST_F(Selection, LeavesAllButThreeValuesWhenTheTextIsNoModel) {
    apply("VKM47H61RK+");
    Show_ISP_Range(frm);
    stop_timer(frm.timers.Timer3);
    const MCU_Record before = model;
    const auto tabs = screen.TabStrip1.List;
    calls.clear();
    EXPECT_EQ(apply("VKM99"), "");
    ASSERT_EQ(world.boxes().size(), 1u);
    EXPECT_EQ(world.boxes()[0].text, "找不到 MCU: VKM99");
    EXPECT_EQ(model.MCU_Name, before.MCU_Name);
    EXPECT_EQ(model.AP_End, before.AP_End);
    EXPECT_EQ(model.ISP_Start, before.ISP_Start);
    EXPECT_FALSE(model.Split_Flag);
    EXPECT_EQ(frm.catalogue.Block_Size, 128);
    EXPECT_TRUE(frm.catalogue.SoftICE_Enable);
    EXPECT_EQ(screen.TabStrip1.List, tabs);
    EXPECT_FALSE(frm.timers.Timer3.Enabled);
    EXPECT_TRUE(calls.empty());
}

TEST_F(Selection, TakesAnEmptyTextForNoModel) {
    EXPECT_EQ(apply("  "), "");
    ASSERT_EQ(world.boxes().size(), 1u);
    EXPECT_EQ(world.boxes()[0].text, "找不到 MCU:   ");
}

// ---- the controls of the data memory ----------------------------------------

TEST_F(Selection, FreesTheControlsOfTheDataMemoryForAllFamiliesBut0) {
    apply("VKM47H516RK");
    expect_enabled(data_controls(), false);
    expect_enabled(data_numbering(), false);
    apply("VKM26H5410");
    expect_enabled(data_controls(), true);
    expect_enabled(data_numbering(), false);
}

TEST_F(Selection, FreesTheFieldsOfTheDataNumberWhenItIsTicked) {
    screen.cheData_Auto_Increase.Value = 1;
    Data_Memory_Controls(frm, true);
    expect_enabled(data_controls(), true);
    expect_enabled(data_numbering(), true);
    screen.cheData_Auto_Increase.Value = 0;
    Data_Memory_Controls(frm, true);
    expect_enabled(data_controls(), true);
    expect_enabled(data_numbering(), false);
    screen.cheData_Auto_Increase.Value = 1;
    Data_Memory_Controls(frm, false);
    expect_enabled(data_controls(), false);
    expect_enabled(data_numbering(), false);
}

}  // namespace
}  // namespace vkm
