// The settings store: what the tool remembers between two runs.
#include <gtest/gtest.h>

#include "support/virtual_world.h"
#include "window/lists.h"
#include "window/main_window.h"
#include "window/settings.h"
#include "window/wiring.h"

namespace vkm {
namespace {

using test::VirtualWorld;

struct ToolRun : VirtualWorld {
    // Starts the tool with what an earlier run left in the store.
    explicit ToolRun(const test::MemorySettings::Values& stored = {}) {
        settings.values = settings.on_disk = stored;
        wire(frm);
        Load(frm);
    }
    std::string stored(const std::string& key) const {
        const auto found = settings.on_disk.find({"Settings", key});
        return found == settings.on_disk.end() ? "(absent)" : found->second;
    }
    // The operator chooses an entry, or turns an option on.
    void choose(Control& list, std::int32_t index) {
        list.ListIndex = index;
        handle_event(frm, {&list, EventKind::Click, 0, {}});
    }
    void turn_on(Control& option, Control& other) {
        option.Value = 1;
        other.Value = 0;
        handle_event(frm, {&option, EventKind::Click, 0, {}});
    }
    void choose_model(std::string_view name) {
        choose_key(frm.screen.TreeViewDevice, name);
        handle_event(frm, {&frm.screen.TreeViewDevice, EventKind::Click, 0, {}});
    }
};

test::MemorySettings::Values one(const std::string& key, const std::string& value) {
    return {{{"Settings", key}, value}};
}

TEST(Settings, AnEmptyStoreGivesTheDefaults) {
    ToolRun run;
    const Screen& s = run.frm.screen;
    EXPECT_EQ(s.window.Left, 0);
    EXPECT_EQ(s.window.Top, 0);
    EXPECT_EQ(s.window.Width, 12000);
    EXPECT_EQ(s.window.Height, 9045);
    EXPECT_EQ(s.window.Frame24_Width, 2000);
    EXPECT_EQ(s.txtDevice.Text, "VKM47H51RB");
    EXPECT_EQ(run.frm.catalogue.MCU_Info.MCU_Name, "VKM47H51RB");
    EXPECT_EQ(s.Option0[0].Value, 0);
    EXPECT_EQ(s.Option0[1].Value, 1);
    EXPECT_EQ(text_of(s.combCommPort), "COM1");
    EXPECT_EQ(s.optBeepYes.Value, 1);
    EXPECT_EQ(s.optBeepNo.Value, 0);
    EXPECT_EQ(text_of(s.comDalay_ReDownLoad), "5");
    EXPECT_EQ(s.txtWrite_OK_Count.Text, "0");
    EXPECT_EQ(s.opt_485_pin[0].Value, 1);
    EXPECT_EQ(text_of(s.comb_485_pin), "P1.0");
    EXPECT_EQ(s.opt_485_logic[0].Value, 1);
    EXPECT_EQ(s.opt_External_WDT[0].Value, 1);
    EXPECT_EQ(text_of(s.comb_External_WDT), "P1.1");
    EXPECT_EQ(text_of(s.comWDT_Prescalar), "256");
}

TEST(Settings, StartingSavesEverySettingHalfASecondLaterAndNotBefore) {
    ToolRun run;
    run.run_for(499);
    EXPECT_EQ(run.stored("COM_port"), "(absent)");
    run.run_for(2);
    EXPECT_FALSE(run.frm.timers.Timer3.Enabled);
    const std::pair<const char*, const char*> expected[] = {
        {"DeviceProducts", "VKM47H51RB"},
        {"安全锁", "2"},
        {"FilePath", ""},
        {"COM_port", "0"},
        {"BeepYesNo", "True"},
        {"Dalay_ReDownLoad", "4"},
        {"Write_OK_Count", "0"},
        {"pin_for_485", "1"},
        {"pin_address_for_485", "0"},
        {"logic_of_control_485", "1"},
        {"pin_External_WDT", "1"},
        {"pin_address_External_WDT", "1"},
        {"WDT_Prescalar", "7"},
        {"fillbyte", "00"},
        {"MainLeft", "(absent)"},
        {"MainWidth", "(absent)"},
        {"Frame24_Width", "(absent)"},
    };
    for (const auto& [key, value] : expected) EXPECT_EQ(run.stored(key), value) << key;
}

TEST(Settings, WhatTheOperatorChoseIsThereAfterACrashAndARestart) {
    test::MemorySettings::Values left;
    {
        ToolRun run;
        Screen& s = run.frm.screen;
        run.run_for(1000);
        run.choose_model("VKM26H2052");
        run.choose(s.combCommPort, 15);
        run.turn_on(s.Option0[0], s.Option0[1]);
        run.turn_on(s.optBeepNo, s.optBeepYes);
        run.choose(s.comDalay_ReDownLoad, 8);
        s.txtWrite_OK_Count.Text = " 1234 ";
        handle_event(run.frm, {&s.txtWrite_OK_Count, EventKind::Change, 0, {}});
        run.turn_on(s.opt_485_pin[1], s.opt_485_pin[0]);
        run.choose(s.comb_485_pin, 14);
        run.turn_on(s.opt_485_logic[1], s.opt_485_logic[0]);
        run.turn_on(s.opt_External_WDT[1], s.opt_External_WDT[0]);
        run.choose(s.comb_External_WDT, 13);
        run.choose(s.comWDT_Prescalar, 2);
        run.run_for(501);
        run.settings.crash();
        left = run.settings.values;
    }
    EXPECT_EQ(left.at({"Settings", "WDT_Prescalar"}), "2");
    EXPECT_EQ(left.at({"Settings", "Write_OK_Count"}), "1234");

    ToolRun again(left);
    const Screen& s = again.frm.screen;
    EXPECT_EQ(s.txtDevice.Text, "VKM26H2052");
    EXPECT_EQ(text_of(s.combCommPort), "COM16");
    EXPECT_EQ(s.Option0[0].Value, 1);
    EXPECT_EQ(s.Option0[1].Value, 0);
    EXPECT_EQ(s.optBeepNo.Value, 1);
    EXPECT_EQ(s.optBeepYes.Value, 0);
    EXPECT_EQ(text_of(s.comDalay_ReDownLoad), "1");
    EXPECT_EQ(s.txtWrite_OK_Count.Text, "1234");
    EXPECT_EQ(s.opt_485_pin[1].Value, 1);
    EXPECT_EQ(text_of(s.comb_485_pin), "P3.7");
    EXPECT_EQ(s.opt_485_logic[1].Value, 1);
    EXPECT_EQ(s.opt_External_WDT[1].Value, 1);
    EXPECT_EQ(text_of(s.comb_External_WDT), "P3.5");
    EXPECT_EQ(text_of(s.comWDT_Prescalar), "256") << "nothing reads it back";
}

TEST(Settings, EveryControlThatASettingStandsForStartsTimer3) {
    const std::pair<const char*, EventKind> changes[] = {
        {"combCommPort", EventKind::Click},       {"Option0", EventKind::Click},
        {"optFillbyte", EventKind::Click},        {"optBeepYes", EventKind::Click},
        {"optBeepNo", EventKind::Click},          {"comDalay_ReDownLoad", EventKind::Click},
        {"txtWrite_OK_Count", EventKind::Change}, {"opt_485_pin", EventKind::Click},
        {"comb_485_pin", EventKind::Click},       {"opt_485_logic", EventKind::Click},
        {"opt_External_WDT", EventKind::Click},   {"comWDT_Prescalar", EventKind::Click},
    };
    for (const auto& [name, kind] : changes) {
        ToolRun run;
        run.run_for(1000);
        ASSERT_FALSE(run.frm.timers.Timer3.Enabled);
        Control* control = find_control(run.frm.screen, name, 0);
        ASSERT_NE(control, nullptr) << name;
        handle_event(run.frm, {control, kind, 0, {}});
        EXPECT_TRUE(run.frm.timers.Timer3.Enabled) << name;
        EXPECT_EQ(run.frm.timers.Timer3.Interval, 500) << name;
    }
}

TEST(Settings, TheWatchdogsPinAloneStartsNoSaveAndIsSavedAtTheEnd) {
    ToolRun run;
    run.run_for(1000);
    run.choose(run.frm.screen.comb_External_WDT, 13);
    EXPECT_FALSE(run.frm.timers.Timer3.Enabled);
    Unload(run.frm);
    ToolRun again(run.settings.on_disk);
    EXPECT_EQ(text_of(again.frm.screen.comb_External_WDT), "P3.5");
}

TEST(Settings, ASteadyStreamOfChangesIsSavedEveryHalfSecond) {
    ToolRun run;
    run.run_for(1000);
    Screen& s = run.frm.screen;
    for (int i = 0; i < 20; ++i) {
        run.choose(s.combCommPort, i % 16);
        run.run_for(100);
    }
    EXPECT_NE(run.stored("COM_port"), "0");
}

struct SpeedRow {
    const char* number;
    int double_speed;
    int normal_speed;
};

TEST(Settings, TheSpeedNumberChoosesTheSpeed) {
    const SpeedRow rows[] = {
        {"2", 0, 1},
        {"3", 0, 1},
        {"4", 1, 0},
        {"5", 1, 0},
        {"8", 1, 0},
        {"6", 0, 1},
        {"7", 0, 1},
        {"junk", 0, 1},
        {"", 0, 1},
        {"0", 0, 1},
        {"1", 0, 1},
        {"-3", 0, 1},
        {"99999999999999999999", 0, 1},
    };
    for (const SpeedRow& row : rows) {
        ToolRun run(one("安全锁", row.number));
        EXPECT_EQ(run.frm.screen.Option0[0].Value, row.double_speed) << row.number;
        EXPECT_EQ(run.frm.screen.Option0[1].Value, row.normal_speed) << row.number;
    }
}

// Another family's first choice stands at the place of the speed.
TEST(Settings, TheSpeedOfAnotherModelCountsForNothing) {
    ToolRun run;
    Screen& s = run.frm.screen;
    run.choose_model("VKM26H2052");
    run.turn_on(s.Option0[0], s.Option0[1]);        // its own oscillator
    choose_key(s.TreeViewDevice, "Family26H2052");  // looked at, and left
    run.run_for(501);
    EXPECT_EQ(run.stored("DeviceProducts"), "VKM47H51RB");
    EXPECT_EQ(run.stored("安全锁"), "2");

    test::MemorySettings::Values by_hand = one("安全锁", "4");
    by_hand[{"Settings", "DeviceProducts"}] = "no such model";
    ToolRun fallen_back(by_hand);
    EXPECT_EQ(fallen_back.frm.screen.txtDevice.Text, "VKM47H51RB");
    EXPECT_EQ(fallen_back.frm.screen.Option0[0].Value, 0);
    EXPECT_EQ(fallen_back.frm.screen.Option0[1].Value, 1);
}

TEST(Settings, TheWrittenSpeedNumberBringsTheSameSpeedBack) {
    for (int element : {0, 1}) {
        ToolRun run;
        auto& speed = run.frm.screen.Option0;
        run.turn_on(speed[element == 0 ? 0 : 1], speed[element == 0 ? 1 : 0]);
        run.run_for(501);
        EXPECT_EQ(run.stored("安全锁"), element == 0 ? "4" : "2");
        ToolRun again(run.settings.on_disk);
        EXPECT_EQ(again.frm.screen.Option0[0].Value, element == 0 ? 1 : 0);
        EXPECT_EQ(again.frm.screen.Option0[1].Value, element == 0 ? 0 : 1);
    }
}

TEST(Settings, ATextThatNoModelHasFallsBackToTheDefaultModel) {
    for (const char* text : {"", "VKM99X99", "26H2052 系列", "Family26H2052", "vkm47h51rb",
                             "VKM27J008", "Family27xxx"}) {
        ToolRun run(one("DeviceProducts", text));
        EXPECT_EQ(run.frm.screen.txtDevice.Text, "VKM47H51RB") << text;
        EXPECT_TRUE(run.boxes().empty()) << text;
        run.run_for(501);
        EXPECT_EQ(run.stored("DeviceProducts"), "VKM47H51RB") << text;
    }
}

TEST(Settings, TheSaverChoosesTheDefaultModelWhenTheTreeShowsNone) {
    ToolRun run;
    run.choose_model("VKM26H2052");
    choose_key(run.frm.screen.TreeViewDevice, "Family26H2052");
    Save_Settings(run.frm);
    EXPECT_EQ(run.stored("DeviceProducts"), "VKM47H51RB");
    EXPECT_EQ(chosen_entry(run.frm.screen.TreeViewDevice)->Key, "VKM47H51RB");
    run.frm.screen.TreeViewDevice.ListIndex = -1;
    Save_Settings(run.frm);
    EXPECT_EQ(run.stored("DeviceProducts"), "VKM47H51RB");
}

TEST(Settings, OnlyTheExactWordTurnsTheBeepOn) {
    for (const auto& [text, yes] :
         {std::pair{"True", 1}, {"False", 0}, {"true", 0}, {"1", 0}, {"", 0}}) {
        ToolRun run(one("BeepYesNo", text));
        EXPECT_EQ(run.frm.screen.optBeepYes.Value, yes) << text;
        EXPECT_EQ(run.frm.screen.optBeepNo.Value, 1 - yes) << text;
    }
}

TEST(Settings, AnIndexThatIsNoNumberCountsAsZeroAndOneOutsideTheListAsAbsent) {
    for (const auto& [text, index] : {std::pair{"7", 7},
                                      {"junk", 0},
                                      {"", 0},
                                      {"8", 8},
                                      {"9", 4},
                                      {"-1", 4},
                                      {"1e9", 1},
                                      {"99999999999", 4},
                                      {"3.9", 3}}) {
        ToolRun run(one("Dalay_ReDownLoad", text));
        EXPECT_EQ(run.frm.screen.comDalay_ReDownLoad.ListIndex, index) << text;
    }
}

TEST(Settings, AFlagIsOnForAnyNumberButZero) {
    for (const auto& [text, first] :
         {std::pair{"1", 1}, {"-1", 1}, {"True", 1}, {"0", 0}, {"False", 0}, {"junk", 0}}) {
        ToolRun run(one("pin_for_485", text));
        EXPECT_EQ(run.frm.screen.opt_485_pin[0].Value, first) << text;
        EXPECT_EQ(run.frm.screen.opt_485_pin[1].Value, 1 - first) << text;
    }
}

TEST(Settings, AnUnreadableCountIsZero) {
    for (const auto& [text, count] :
         {std::pair{"12", "12"},
          {" 7 ", "7"},
          {"junk", "0"},
          {"", "0"},
          {"123456789012345678901234567890", "123456789012345678901234567890"}}) {
        ToolRun run(one("Write_OK_Count", text));
        EXPECT_EQ(run.frm.screen.txtWrite_OK_Count.Text, count) << text;
    }
}

TEST(Settings, WindowValuesAreTakenAsTheyStand) {
    for (const auto& [text, value] :
         {std::pair{"-300", -300}, {"junk", 0}, {"", 0}, {"99999999999", 2147483647}}) {
        for (const char* key : {"MainLeft", "MainTop", "MainWidth", "MainHeight"}) {
            ToolRun run(one(key, text));
            const WindowRecord& window = run.frm.screen.window;
            const std::map<std::string, std::int32_t> values = {{"MainLeft", window.Left},
                                                                {"MainTop", window.Top},
                                                                {"MainWidth", window.Width},
                                                                {"MainHeight", window.Height}};
            EXPECT_EQ(values.at(key), value) << key << "=" << text;
        }
    }
}

TEST(Settings, ThePanelIsAtLeast300WideAndLeaves100OfTheWindow) {
    const std::tuple<const char*, const char*, int> rows[] = {
        {"12000", "2000", 2000},
        {"12000", "299", 300},
        {"12000", "300", 300},
        {"12000", "11900", 11900},
        {"12000", "11901", 11900},
        {"12000", "99999", 11900},
        {"12000", "junk", 300},
        {"0", "2000", 300},
        {"-5", "2000", 300},
        {"399", "2000", 300},
        {"1000", "2000", 900},
        {"99999999999", "99999999999", 2147483547},
        {"-99999999999", "-99999999999", 300},
    };
    for (const auto& [window, stored, fitting] : rows) {
        ToolRun run({{{"Settings", "MainWidth"}, window}, {{"Settings", "Frame24_Width"}, stored}});
        EXPECT_EQ(run.frm.screen.window.Frame24_Width, fitting) << window << " " << stored;
    }
}

TEST(Settings, JunkInEveryKeyAtOnceGivesAWindowThatWorks) {
    const std::string junk[] = {"",
                                " ",
                                "junk",
                                "-1",
                                "99999999999999999999",
                                "1e400",
                                "\xff\xfe",
                                std::string(100000, '9'),
                                std::string("4\0 5", 4),
                                "真"};
    const char* keys[] = {"MainLeft",
                          "MainTop",
                          "MainWidth",
                          "MainHeight",
                          "Frame24_Width",
                          "DeviceProducts",
                          "安全锁",
                          "FilePath",
                          "COM_port",
                          "BeepYesNo",
                          "Dalay_ReDownLoad",
                          "Write_OK_Count",
                          "pin_for_485",
                          "pin_address_for_485",
                          "logic_of_control_485",
                          "pin_External_WDT",
                          "pin_address_External_WDT",
                          "WDT_Prescalar",
                          "fillbyte"};
    for (const std::string& text : junk) {
        test::MemorySettings::Values stored;
        for (const char* key : keys) stored[{"Settings", key}] = text;
        ToolRun run(stored);
        run.run_for(501);
        EXPECT_EQ(run.frm.screen.txtDevice.Text, "VKM47H51RB");
        EXPECT_EQ(run.stored("fillbyte"), "00");
        EXPECT_FALSE(text_of(run.frm.screen.combCommPort).empty());
        Unload(run.frm);
    }
}

}  // namespace
}  // namespace vkm
