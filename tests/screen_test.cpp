#include <gtest/gtest.h>

#include <set>
#include <string>

#include "screen/message_text.h"
#include "screen/screen.h"

namespace vkm {
namespace {

TEST(ControlNames, TellThePlaceInAnArray) {
    Screen screen;
    EXPECT_EQ(full_name(screen.txtDevice), "txtDevice");
    EXPECT_EQ(full_name(screen.comDownload[1]), "comDownload(1)");
    EXPECT_EQ(full_name(screen.LabOption[12]), "LabOption(12)");
}

TEST(Screen, FindsEveryControlOfTheTableByItsName) {
    Screen screen;
    int controls = 0;
    for_each_control(screen, [&](Control& control) {
        ++controls;
        EXPECT_EQ(find_control(screen, control.Name, control.Index), &control) << control.Name;
    });
    EXPECT_GT(controls, 200);
}

TEST(Screen, NamesEveryControlOnce) {
    Screen screen;
    std::set<std::string> names;
    for_each_control(screen, [&](Control& control) {
        const std::string name = std::string(control.Name) + "#" + std::to_string(control.Index);
        EXPECT_TRUE(names.insert(name).second) << name;
    });
}

TEST(Screen, KnowsNoControlBeyondItsArraysAndNames) {
    Screen screen;
    EXPECT_EQ(find_control(screen, "comDownload", 2), nullptr);
    EXPECT_EQ(find_control(screen, "comDownload", -1), nullptr);
    EXPECT_EQ(find_control(screen, "noSuchControl"), nullptr);
    EXPECT_EQ(find_control(screen, "txtDevice", 7), &screen.txtDevice);
}

TEST(Screen, GoesThroughTheElementsOfAnArrayOrTheOneControl) {
    Screen screen;
    const auto names_of = [&](std::string_view name) {
        std::string names;
        for_each_element(screen, name,
                         [&](Control& control) { names += full_name(control) + " "; });
        return names;
    };
    EXPECT_EQ(names_of("comDownload"), "comDownload(0) comDownload(1) ");
    EXPECT_EQ(names_of("optAuto_Increase"),
              "optAuto_Increase(0) optAuto_Increase(1) optAuto_Increase(2) ");
    EXPECT_EQ(names_of("txtDevice"), "txtDevice ");
    EXPECT_EQ(names_of("noSuchControl"), "");
    for_each_element(screen, "comDownload", [](Control& control) { control.Enabled = false; });
    EXPECT_FALSE(screen.comDownload[1].Enabled);
}

TEST(Screen, StartsWithTheTextsAndStatesOfTheTable) {
    Screen screen;
    EXPECT_EQ(screen.comDownload[0].Caption, "Download");
    EXPECT_EQ(screen.comDownload[1].Caption, "Re-Download");
    EXPECT_EQ(screen.Frame5.Caption, "Step2/步骤2: Open File / 打开文件(文件范围内未用区域填00)");
    EXPECT_EQ(screen.txtAP_FileStart.Text, "0000");
    EXPECT_FALSE(screen.comStop_Download.Enabled);
    EXPECT_FALSE(screen.cheTL.Visible);
    EXPECT_FALSE(screen.Show_English);
    EXPECT_EQ(screen.opt_ISP_DEMO_WDT[1].Caption, "用1个I/O口喂狗");
}

TEST(Lists, GiveTheTextOfTheChosenEntry) {
    Screen screen;
    fill_list(screen.cobBaudMax, {"115200", "57600"});
    EXPECT_EQ(text_of(screen.cobBaudMax), "");
    EXPECT_TRUE(choose_text(screen.cobBaudMax, "57600"));
    EXPECT_EQ(text_of(screen.cobBaudMax), "57600");
    screen.cobBaudMax.ListIndex = 99;
    EXPECT_EQ(text_of(screen.cobBaudMax), "");
    EXPECT_FALSE(choose_text(screen.cobBaudMax, "300"));
    EXPECT_EQ(screen.cobBaudMax.ListIndex, -1);
}

TEST(Log, PutsTheBreakBeforeAMessage) {
    Screen screen;
    append_message(screen, "one");
    append_message(screen, "二");
    append_to_last_line(screen, " ( 00:01 )");
    EXPECT_EQ(screen.textMsg.Text, "\r\none\r\n二 ( 00:01 )");
    scroll_log_to_end(screen);
    EXPECT_EQ(screen.textMsg.SelStart, 18);
}

TEST(Messages, AreBilingualUnlessEnglishIsChosen) {
    Screen screen;
    const MessageText text{"Program OK", "Program OK / 下载 OK"};
    EXPECT_EQ(chosen_text(screen, text), "Program OK / 下载 OK");
    screen.Show_English = true;
    EXPECT_EQ(chosen_text(screen, text), "Program OK");
}

}  // namespace
}  // namespace vkm
