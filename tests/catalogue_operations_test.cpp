#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "catalogue/mcu_catalogue.h"
#include "catalogue/tab_strips.h"
#include "support/virtual_world.h"

namespace vkm {
namespace {

using test::BoxKind;
using test::VirtualWorld;

struct LookUp : testing::Test {
    VirtualWorld world;
    frmMain& frm = world.frm;
    MCU_Record& model = frm.catalogue.MCU_Info;
};

TEST_F(LookUp, FillsTheRecordAndTheBlockSizeByName) {
    EXPECT_EQ(Find_Model(frm, "VKM26H5401", model), "VKM26H5401");
    EXPECT_EQ(model.MCU_ID, "E001");
    EXPECT_EQ(model.Old_ID, "F301");
    EXPECT_EQ(model.MCU_Family, 4);
    EXPECT_EQ(frm.catalogue.Block_Size, 512);
    EXPECT_FALSE(frm.catalogue.SoftICE_Enable);
    EXPECT_EQ(frm.catalogue.SoftICE_File, "");
    EXPECT_TRUE(world.boxes().empty());
}

TEST_F(LookUp, SetsSmallBlocksAndTheDebugMonitorForFamily0) {
    EXPECT_EQ(Find_Model(frm, "VKM47T516RK", model), "VKM47T516RK");
    EXPECT_EQ(frm.catalogue.Block_Size, 128);
    EXPECT_TRUE(frm.catalogue.SoftICE_Enable);
    EXPECT_EQ(frm.catalogue.SoftICE_File, "VKM516_2003.ROM");
    Find_Model(frm, "VKM47W52AD", model);
    EXPECT_EQ(frm.catalogue.Block_Size, 512);
    EXPECT_FALSE(frm.catalogue.SoftICE_Enable);
    EXPECT_EQ(frm.catalogue.SoftICE_File, "");
}

TEST_F(LookUp, KeepsTheFormValuesOfTheChosenModelWhenItFillsAnotherRecord) {
    Find_Model(frm, "VKM47H58RK", model);
    Find_Model(frm, "VKM47H51RB", frm.catalogue.Chip_Info);
    EXPECT_EQ(model.MCU_Name, "VKM47H58RK");
    EXPECT_EQ(frm.catalogue.Chip_Info.MCU_Name, "VKM47H51RB");
    EXPECT_EQ(frm.catalogue.Block_Size, 128);
    EXPECT_TRUE(frm.catalogue.SoftICE_Enable);
    EXPECT_EQ(frm.catalogue.SoftICE_File, "VKM58_2003.ROM");
}

TEST_F(LookUp, LeavesTheComputedAddressToTheTick) {
    model.ISP_Start = 12345;
    Find_Model(frm, "VKM47H51RB", model);
    EXPECT_EQ(model.ISP_Start, 12345);
}

TEST_F(LookUp, TakesANameThatStandsInTheRecordItself) {
    Find_Model(frm, "VKM47H51RB", model);
    EXPECT_EQ(Find_Model(frm, model.MCU_Name, model), "VKM47H51RB");
    EXPECT_EQ(model.MCU_ID, "F001");
}

TEST_F(LookUp, TellsTheTextOfTheModelBoxWhenANameIsUnknown) {
    Find_Model(frm, "VKM47H58RK", model);
    const MCU_Record before = model;
    frm.screen.txtDevice.Text = " what is shown ";
    EXPECT_EQ(Find_Model(frm, "what is sought", model), "");
    ASSERT_EQ(world.boxes().size(), 1u);
    EXPECT_EQ(world.boxes()[0].kind, BoxKind::text);
    EXPECT_EQ(world.boxes()[0].text, "找不到 MCU:  what is shown ");
    EXPECT_EQ(model.MCU_Name, before.MCU_Name);
    EXPECT_EQ(model.AP_End, before.AP_End);
    EXPECT_EQ(frm.catalogue.Block_Size, 128);
    EXPECT_TRUE(frm.catalogue.SoftICE_Enable);
}

TEST_F(LookUp, TellsTheSameTextInBothLanguages) {
    frm.screen.Show_English = true;
    frm.screen.txtDevice.Text = "X";
    Find_Model(frm, "X", model);
    ASSERT_EQ(world.boxes().size(), 1u);
    EXPECT_EQ(world.boxes()[0].text, "找不到 MCU: X");
}

TEST_F(LookUp, TakesAnEmptyNameForNoModel) {
    Find_Model(frm, "VKM47H51RB", model);
    EXPECT_EQ(Find_Model(frm, "", model), "");
    EXPECT_EQ(world.boxes().size(), 1u);
    EXPECT_EQ(model.MCU_Name, "VKM47H51RB");
}

TEST_F(LookUp, FindsTheOlderRowOfA54xxByItsOldCode) {
    EXPECT_EQ(Find_Code_Record(frm, "F301", frm.catalogue.Chip_Info), "VKM26H5401");
    EXPECT_EQ(frm.catalogue.Chip_Info.Data_End, 12287);
    EXPECT_EQ(frm.catalogue.Chip_Info.Code_Top, 12288);
    EXPECT_EQ(frm.catalogue.Chip_Info.Old_ID, "");
    EXPECT_EQ(model.MCU_Name, "");
}

TEST_F(LookUp, TellsAnUnknownCodeLikeAnUnknownName) {
    frm.screen.txtDevice.Text = "VKM26W5406AD";
    EXPECT_EQ(Find_Code_Record(frm, "F336", model), "");
    ASSERT_EQ(world.boxes().size(), 1u);
    EXPECT_EQ(world.boxes()[0].text, "找不到 MCU: VKM26W5406AD");
    EXPECT_EQ(model.MCU_Name, "");
}

struct ShownCase {
    const char* name;
    std::int32_t ISP_Start;
    const char* end;
};

constexpr ShownCase shown_cases[] = {
    {"VKM47H516RK", 65536, "FFFF"}, {"VKM47W516AD", 64512, "FBFF"}, {"VKM47H516RK+", 63488, "F7FF"},
    {"VKM47H61RK+", 62464, "F3FF"}, {"VKM47H53RB", 14336, "37FF"},  {"VKM47H51RB", 14336, "0FFF"},
    {"VKM26H0552", 5120, "01FF"},   {"VKM26H5424", 12288, "5FFE"},  {"VKM27J016", 0, "3FFF"}};

TEST(ShownRange, StandsInTheBoxesInFourDigits) {
    for (const ShownCase& wanted : shown_cases) {
        SCOPED_TRACE(wanted.name);
        VirtualWorld world;
        frmMain& frm = world.frm;
        frm.screen.txtDevice.Text = wanted.name;
        Find_Model(frm, wanted.name, frm.catalogue.MCU_Info);
        Show_ISP_Range(frm);
        EXPECT_EQ(frm.catalogue.MCU_Info.ISP_Start, wanted.ISP_Start);
        EXPECT_EQ(frm.screen.txtISP_reange[0].Text, "0000");
        EXPECT_EQ(frm.screen.txtISP_reange[1].Text, wanted.end);
    }
}

TEST(ShownRangeOfTheChoice, GoesByTheTextOfTheModelBox) {
    VirtualWorld world;
    frmMain& frm = world.frm;
    Find_Model(frm, "VKM47H61RK+", frm.catalogue.MCU_Info);
    frm.screen.txtDevice.Text = "VKM47H61RK+ ";
    Show_ISP_Range(frm);
    EXPECT_EQ(frm.catalogue.MCU_Info.ISP_Start, 63488);
    EXPECT_EQ(frm.screen.txtISP_reange[1].Text, "F7FF");
}

// ---- tab strips -------------------------------------------------------------

struct TabStrips : testing::Test {
    TabStrips() { Fill_Tab_Strips(frm); }

    std::vector<std::string> captions(const Control& strip) {
        std::vector<std::string> texts;
        for (const Entry& tab : strip.List) texts.push_back(tab.Text);
        return texts;
    }
    std::vector<std::string> keys(const Control& strip) {
        std::vector<std::string> texts;
        for (const Entry& tab : strip.List) texts.push_back(tab.Key);
        return texts;
    }
    // The names of the pages of a strip that are shown.
    std::vector<std::string> shown(const std::vector<const Control*>& pages) {
        std::vector<std::string> names;
        for (const Control* page : pages)
            if (page->Visible) names.emplace_back(page->Name);
        return names;
    }
    std::vector<std::string> tools() {
        const Screen& s = frm.screen;
        return shown({&s.Frame12, &s.Frame8, &s.Frame18, &s.Frame4, &s.fraAuto_Increase, &s.Frame11,
                      &s.Frame9, &s.fraAboutHardWare, &s.Frame10});
    }
    std::vector<std::string> views() {
        const Screen& s = frm.screen;
        return shown({&s.Frame7, &s.frmDataFlash, &s.Frame21, &s.Frame22, &s.fraDebug,
                      &s.fra_Batch_quantity});
    }
    void choose_tool(int tab) {
        frm.screen.TabStrip1.ListIndex = tab;
        TabStrip1_Click(frm);
    }
    void choose_view(int tab) {
        frm.screen.TabStrip2.ListIndex = tab;
        TabStrip2_Click(frm);
    }

    using Names = std::vector<std::string>;
    VirtualWorld world;
    frmMain& frm = world.frm;
};

TEST_F(TabStrips, HoldTheirTabsInOrder) {
    EXPECT_EQ(captions(frm.screen.TabStrip1),
              (Names{"选项", "自定义下载", "脱机下载", "检查MCU选项", "自动增量", "ISP DEMO",
                     "存储文件", "硬件帮助", "仿真芯片"}));
    EXPECT_EQ(keys(frm.screen.TabStrip1), (Names{"options", "user_code", "TJXZ", "", "", "ISP DEMO",
                                                 "store_buffer", "", "softICE"}));
    EXPECT_EQ(captions(frm.screen.TabStrip2), (Names{"文件缓冲区", "数据文件", "Debug_SFR",
                                                     "Debug_xdata", "串口调试助手", "工程文件"}));
    EXPECT_EQ(keys(frm.screen.TabStrip2), (Names{"tab_file", "EEPROM_File", "Debug1", "Debug2",
                                                 "Debug_COM", "Batch_quantity"}));
}

TEST_F(TabStrips, ShowTheirFirstPagesAtTheStart) {
    EXPECT_EQ(tools(), Names{"Frame12"});
    EXPECT_EQ(views(), Names{"Frame7"});
}

TEST_F(TabStrips, ShowThePageOfTheChosenTabAlone) {
    const Names tool_pages = {"Frame12", "Frame8", "Frame18",          "Frame4", "fraAuto_Increase",
                              "Frame11", "Frame9", "fraAboutHardWare", "Frame10"};
    for (std::size_t i = 0; i < tool_pages.size(); ++i) {
        choose_tool(static_cast<int>(i));
        EXPECT_EQ(tools(), Names{tool_pages[i]});
        EXPECT_EQ(views(), Names{"Frame7"});
    }
    const Names view_pages = {"Frame7",  "frmDataFlash", "Frame21",
                              "Frame22", "fraDebug",     "fra_Batch_quantity"};
    for (std::size_t i = 0; i < view_pages.size(); ++i) {
        choose_view(static_cast<int>(i));
        EXPECT_EQ(views(), Names{view_pages[i]});
    }
}

TEST_F(TabStrips, SwitchNothingOnAnAbsentTab) {
    choose_tool(6);
    choose_view(4);
    Mark_Absent_Tabs(frm);
    for (int absent : {2, 5}) {
        EXPECT_EQ(frm.screen.TabStrip1.List[static_cast<std::size_t>(absent)].Text, "_no_");
        choose_tool(absent);
        EXPECT_EQ(tools(), Names{"Frame9"});
        EXPECT_EQ(frm.screen.TabStrip1.ListIndex, 6);
    }
    for (int absent : {2, 3}) {
        EXPECT_EQ(frm.screen.TabStrip2.List[static_cast<std::size_t>(absent)].Text, "_no_");
        choose_view(absent);
        EXPECT_EQ(views(), Names{"fraDebug"});
        EXPECT_EQ(frm.screen.TabStrip2.ListIndex, 4);
    }
}

TEST_F(TabStrips, LeaveAPageWhoseOwnTabBecameAbsent) {
    choose_tool(5);
    Mark_Absent_Tabs(frm);
    TabStrip1_Click(frm);
    EXPECT_EQ(tools(), Names{"Frame12"});
    EXPECT_EQ(frm.screen.TabStrip1.ListIndex, 0);
}

TEST_F(TabStrips, GetTheirCaptionsBack) {
    const auto tools_before = frm.screen.TabStrip1.List;
    const auto views_before = frm.screen.TabStrip2.List;
    Mark_Absent_Tabs(frm);
    EXPECT_NE(frm.screen.TabStrip1.List, tools_before);
    EXPECT_NE(frm.screen.TabStrip2.List, views_before);
    Restore_Tab_Captions(frm);
    EXPECT_EQ(frm.screen.TabStrip1.List, tools_before);
    EXPECT_EQ(frm.screen.TabStrip2.List, views_before);
    choose_tool(2);
    EXPECT_EQ(tools(), Names{"Frame18"});
}

TEST_F(TabStrips, TakeAChoiceThatIsNoneForTheShownTab) {
    choose_tool(3);
    for (int index : {-1, 9, 1000}) {
        choose_tool(index);
        EXPECT_EQ(frm.screen.TabStrip1.ListIndex, 3);
        EXPECT_EQ(tools(), Names{"Frame4"});
    }
}

TEST(TabStripsBeforeTheStart, DoNothingWhileTheyAreEmpty) {
    VirtualWorld world;
    TabStrip1_Click(world.frm);
    TabStrip2_Click(world.frm);
    Mark_Absent_Tabs(world.frm);
    Restore_Tab_Captions(world.frm);
    EXPECT_TRUE(world.frm.screen.Frame12.Visible);
    EXPECT_TRUE(world.frm.screen.TabStrip1.List.empty());
}

}  // namespace
}  // namespace vkm
