// The option panel of each family: what is on it, in which order, and what can be
// operated in which state.
#include <gtest/gtest.h>

#include <map>
#include <set>
#include <string>
#include <vector>

#include "catalogue/model_selection.h"
#include "options/mcu_options.h"
#include "options/option_panel.h"
#include "session/download_session.h"
#include "support/virtual_world.h"
#include "window/lists.h"
#include "window/wiring.h"

namespace vkm {
namespace {

using Names = std::set<std::string>;

constexpr std::string_view step_4 = "Step4/步骤4: 设置本框和右下方“选项”中的各项";

struct OptionPanel : testing::Test {
    OptionPanel() {
        wire(frm);
        Fill_Options(frm);
        Fill_Lists(s);
    }

    void lay_out(int family) {
        frm.catalogue.MCU_Info.MCU_Family = static_cast<std::int16_t>(family);
        Arrange_Options(frm);
    }

    // The operator chooses this one of its set.
    void choose(const std::string& array, int index) {
        for (int i = 0; Control* control = find_control(s, array, i); ++i)
            control->Value = i == index ? 1 : 0;
        handle_event(frm, {find_control(s, array, index), EventKind::Click, 0, {}});
    }

    void choose_pin(Control& list, std::string_view pin) {
        choose_text(list, pin);
        handle_event(frm, {&list, EventKind::Click, 0, {}});
    }

    // Everything that the panel of some family has.
    std::vector<Control*> panel() {
        std::vector<Control*> controls;
        for_each_control(s, [&](Control& control) {
            const bool option =
                control.Name.starts_with("Option") && control.Kind == ControlKind::OptionButton;
            const std::set<std::string_view> others = {
                "LabOption",     "LabOptionC",         "Label7",       "Label20",
                "Label6",        "Picture4",           "Picture7",     "comWDT_Prescalar",
                "Lab_485_pin",   "opt_485_pin",        "comb_485_pin", "Lab_485_logic",
                "opt_485_logic", "comDalay_ReDownLoad"};
            if (option || others.contains(control.Name)) controls.push_back(&control);
        });
        return controls;
    }

    Names visible() {
        Names names;
        for (const Control* control : panel())
            if (control->Visible) names.insert(full_name(*control));
        return names;
    }

    // Choices of the panel that are on.
    Names chosen() {
        Names names;
        for (const Control* control : panel())
            if (control->Visible && control->Value != 0) names.insert(full_name(*control));
        for (const char* pin :
             {"opt_485_pin(0)", "opt_485_pin(1)", "opt_485_logic(0)", "opt_485_logic(1)"})
            names.erase(pin);
        return names;
    }

    // "label: what stands beside it", a line each.
    std::string order() {
        std::string text;
        for (const Entry& entry : s.Frame16.List) {
            if (entry.Parent.empty()) {
                text += (text.empty() ? "" : "\n") + entry.Text + ":";
                parent_ = entry.Text;
            } else {
                EXPECT_EQ(entry.Parent, parent_);
                text += " " + entry.Text;
            }
        }
        return text;
    }

    Names enabled_of(const Names& names) {
        Names enabled;
        for (const std::string& name : names)
            if (control(name).Enabled) enabled.insert(name);
        return enabled;
    }

    Control& control(const std::string& name) {
        const auto bracket = name.find('(');
        const int index = bracket == std::string::npos ? -1 : std::stoi(name.substr(bracket + 1));
        Control* found = find_control(s, name.substr(0, bracket), index);
        EXPECT_NE(found, nullptr) << name;
        return *found;
    }

    test::VirtualWorld world;
    frmMain& frm = world.frm;
    Screen& s = frm.screen;
    std::string parent_;
};

Names operator+(Names left, const Names& right) {
    left.insert(right.begin(), right.end());
    return left;
}

Names operator-(Names left, const Names& right) {
    for (const std::string& name : right) left.erase(name);
    return left;
}

Names labels(const std::vector<int>& elements) {
    Names names;
    for (const int i : elements) names.insert("LabOption(" + std::to_string(i) + ")");
    return names;
}

Names pairs(const std::vector<int>& arrays) {
    Names names;
    for (const int array : arrays)
        for (const char* element : {"(0)", "(1)"})
            names.insert("Option" + std::to_string(array) + element);
    return names;
}

const Names extras = {"Label6",           "Picture4",         "Picture7",           "Lab_485_pin",
                      "opt_485_pin(0)",   "opt_485_pin(1)",   "comb_485_pin",       "Lab_485_logic",
                      "opt_485_logic(0)", "opt_485_logic(1)", "comDalay_ReDownLoad"};
const Names prescaler = {"Label20", "comWDT_Prescalar"};

// What stands on each family's panel.
const Names labels_2 = labels({0, 1, 2, 3, 4, 5, 8, 9, 10});
const Names choices_2 = pairs({0, 1, 3, 4, 5, 10});
const Names labels_4 = labels({0, 1, 2, 3, 4, 8, 9, 10, 11});
const Names choices_4 = pairs({0, 1, 2, 4, 9, 10, 11});
const Names labels_6 = labels({0, 1, 2, 3, 4, 8, 9, 10, 11, 12});
const Names choices_6 = pairs({0, 1, 2, 3, 4, 8, 9, 10, 11, 12}) + Names{"Option3(2)"};

// ---- what is on it ------------------------------------------------------------

TEST_F(OptionPanel, ShowsWhatItsFamilyHasAndNothingElse) {
    const std::map<int, Names> expected = {
        {0, labels({0}) + pairs({0}) + Names{"LabOptionC"}},
        {1, labels({0})},
        {2, labels_2 + choices_2 + extras},
        {3, labels_4 + choices_4 + prescaler + extras},
        {4, labels_4 + choices_4 + prescaler + extras},
        {6, labels_6 + choices_6 + prescaler + extras + Names{"Label7"}},
    };
    // Whatever stood there before.
    for (const auto& [before, unused] : expected)
        for (const auto& [family, names] : expected) {
            lay_out(before);
            lay_out(family);
            EXPECT_EQ(visible(), names) << "family " << family << " after " << before;
        }
}

TEST_F(OptionPanel, HasTheDefaultChoicesOfItsFamily) {
    const std::map<int, Names> expected = {
        {0, {"Option0(1)"}},
        {1, {}},
        {2, {"Option0(1)", "Option1(1)", "Option3(1)", "Option4(1)", "Option5(1)", "Option10(0)"}},
        {3,
         {"Option0(1)", "Option1(1)", "Option2(1)", "Option4(1)", "Option9(1)", "Option10(1)",
          "Option11(1)"}},
        {4,
         {"Option0(1)", "Option1(1)", "Option2(1)", "Option4(1)", "Option9(1)", "Option10(1)",
          "Option11(1)"}},
        {6,
         {"Option0(1)", "Option1(1)", "Option2(1)", "Option3(2)", "Option4(1)", "Option8(1)",
          "Option9(1)", "Option10(1)", "Option11(0)", "Option12(0)"}},
    };
    for (const auto& [before, unused] : expected)
        for (const auto& [family, names] : expected) {
            lay_out(before);
            choose_text(s.comWDT_Prescalar, "16");
            lay_out(family);
            EXPECT_EQ(chosen(), names) << "family " << family << " after " << before;
            EXPECT_EQ(text_of(s.comWDT_Prescalar), family >= 3 ? "256" : "16") << family;
        }
}

TEST_F(OptionPanel, HasItsLinesInOrder) {
    const std::map<int, std::string> expected = {
        {0,
         "LabOption(0): Option0(0) Option0(1)\n"
         "LabOptionC:"},
        {1, "LabOption(0):"},
        {2,
         "LabOption(0): Option0(0) Option0(1)\n"
         "LabOption(1): Option1(0) Option1(1)\n"
         "LabOption(2):\n"
         "LabOption(3): Option3(1) Option3(0)\n"
         "LabOption(4): Option4(0) Option4(1)\n"
         "LabOption(5): Option5(0) Option5(1)\n"
         "LabOption(8):\n"
         "LabOption(9):\n"
         "LabOption(10): Option10(1) Option10(0)"},
        {4,
         "LabOption(0): Option0(0) Option0(1)\n"
         "LabOption(1): Option1(1) Option1(0)\n"
         "LabOption(2): Option2(0) Option2(1)\n"
         "LabOption(3):\n"
         "LabOption(4): Option4(0) Option4(1)\n"
         "LabOption(8):\n"
         "LabOption(9): Option9(0) Option9(1)\n"
         "LabOption(10): Option10(0) Option10(1)\n"
         "LabOption(11): Option11(0) Option11(1)\n"
         "Label20: comWDT_Prescalar"},
        {6,
         "LabOption(0): Option0(0) Option0(1)\n"
         "LabOption(1): Option1(0) Option1(1)\n"
         "Label7:\n"
         "LabOption(2): Option2(1) Option2(0)\n"
         "LabOption(3): Option3(0) Option3(1) Option3(2)\n"
         "LabOption(4): Option4(0) Option4(1)\n"
         "LabOption(8): Option8(0) Option8(1)\n"
         "LabOption(9): Option9(0) Option9(1)\n"
         "LabOption(10): Option10(0) Option10(1)\n"
         "Label20: comWDT_Prescalar\n"
         "LabOption(11): Option11(0) Option11(1)\n"
         "LabOption(12): Option12(0) Option12(1)"},
    };
    for (const auto& [family, text] : expected) {
        lay_out(family);
        EXPECT_EQ(order(), text) << family;
    }
    lay_out(3);
    EXPECT_EQ(order(), expected.at(4));
}

TEST_F(OptionPanel, NamesInItsOrderWhatIsVisibleOnce) {
    for (const int family : {0, 1, 2, 3, 4, 6}) {
        lay_out(family);
        Names listed;
        for (const Entry& entry : s.Frame16.List) {
            EXPECT_TRUE(listed.insert(entry.Text).second) << entry.Text;
            EXPECT_TRUE(control(entry.Text).Visible) << entry.Text;
        }
        EXPECT_EQ(listed, visible() - extras) << family;
    }
}

TEST_F(OptionPanel, HasTheCaptionsOfItsFamily) {
    const auto caption = [this](const std::string& name) { return control(name).Caption; };
    lay_out(0);
    EXPECT_EQ(caption("LabOption(0)"), "Double speed / 双倍速:");
    EXPECT_EQ(caption("Option0(0)"), "6T/双倍速");
    EXPECT_EQ(caption("Option0(1)"), "12T/单倍速");
    lay_out(2);
    EXPECT_EQ(caption("LabOption(0)"), "Double speed / 双倍速:");
    EXPECT_EQ(caption("LabOption(2)"), "如需低功耗,16MHz 以下振荡器增益可选 1/2 gain");
    EXPECT_EQ(caption("Option3(0)"), "等于0,0才可下载,快速启动");
    EXPECT_EQ(caption("Option4(1)"), "允许访问(强烈推荐)");
    EXPECT_EQ(caption("LabOption(8)"), "以下功能仅针对 VKM47H51RB/RK+ 系列单片机新版本C版有效");
    EXPECT_EQ(caption("Option10(0)"), "复位关看门狗");
    EXPECT_EQ(caption("Option10(1)"), "只有停电关看门狗");
    lay_out(3);
    EXPECT_EQ(caption("LabOption(0)"), "下次冷启动后时钟源为:");
    EXPECT_EQ(caption("Option0(0)"), "内部RC振荡器");
    EXPECT_EQ(caption("Option4(0)"), "写成00");
    EXPECT_EQ(caption("LabOption(10)"), "上电时自动用有关参数启动内部看门狗");
    lay_out(6);
    EXPECT_EQ(caption("Option3(2)"), "不管");
    EXPECT_EQ(caption("LabOption(9)"), "下次上电时自动用有关参数启动内部看门狗");
    EXPECT_EQ(caption("LabOption(12)"), "允许掉电复位:");
    lay_out(0);
    EXPECT_EQ(caption("Option0(0)"), "6T/双倍速");
}

TEST_F(OptionPanel, HasItsRemarks) {
    lay_out(0);
    EXPECT_EQ(s.LabOptionC.Caption,
              "注:一旦烧录双倍速,由编程器擦除整个芯片才可恢复为单倍速\r\n"
              "整个芯片才可恢复为单倍速。");
    lay_out(1);
    EXPECT_EQ(s.LabOption[0].Caption, "双倍速、加密位只能由编程器擦除、读、写。");
    lay_out(6);
    EXPECT_EQ(s.Label7.Caption, "     如需低功耗,16MHz 以下振荡器增益可选 1/2 gain");
}

TEST_F(OptionPanel, NamesTheSpeedInTheLanguageOfTheMessages) {
    s.Show_English = true;
    lay_out(0);
    EXPECT_EQ(s.LabOption[0].Caption, "         Double speed:");
    lay_out(2);
    EXPECT_EQ(s.LabOption[0].Caption, "Double speed / 双倍速:");
}

TEST_F(OptionPanel, NamesStep4ForTheNewerFamiliesAndLeavesItForTheOthers) {
    const std::string start = "Step4/步骤4: Double Speed  设置双倍速, 缺省为普通速度";
    for (const int family : {0, 1}) {
        lay_out(family);
        EXPECT_EQ(s.Frame2.Caption, start) << family;
    }
    for (const int family : {2, 3, 4, 6}) {
        s.Frame2.Caption = start;
        lay_out(family);
        EXPECT_EQ(s.Frame2.Caption, step_4) << family;
    }
    for (const int family : {0, 1}) {
        lay_out(family);
        EXPECT_EQ(s.Frame2.Caption, step_4) << family;
    }
}

TEST_F(OptionPanel, StaysAsItIsForAnUnknownFamily) {
    lay_out(4);
    choose("Option0", 0);
    const Screen before = s;
    for (const int family : {-1, 5, 7, 300}) {
        lay_out(family);
        EXPECT_EQ(visible(), labels_4 + choices_4 + prescaler + extras) << family;
        EXPECT_EQ(s.Frame16, before.Frame16) << family;
        EXPECT_EQ(s.Option0[0], before.Option0[0]) << family;
        for (const std::int16_t state : std::initializer_list<std::int16_t>{0, 1, 2, 3})
            Apply_Option_Enable(frm, state);
        Follow_Watchdog_Choice(frm);
    }
}

TEST_F(OptionPanel, DiscardsTheChoicesWithEachModelAlsoOfTheSameFamily) {
    s.txtDevice.Text = "VKM26H5401";
    ASSERT_EQ(Apply_Model(frm), "VKM26H5401");
    choose("Option0", 0);
    choose("Option10", 0);
    choose_text(s.comWDT_Prescalar, "8");
    s.txtDevice.Text = "VKM26H5410";
    ASSERT_EQ(Apply_Model(frm), "VKM26H5410");
    EXPECT_EQ(chosen(), (Names{"Option0(1)", "Option1(1)", "Option2(1)", "Option4(1)", "Option9(1)",
                               "Option10(1)", "Option11(1)"}));
    EXPECT_EQ(text_of(s.comWDT_Prescalar), "256");
    EXPECT_FALSE(s.comWDT_Prescalar.Enabled);
}

TEST_F(OptionPanel, KeepsTheChoicesThroughAllStates) {
    lay_out(4);
    choose("Option0", 0);
    choose("Option10", 0);
    choose_text(s.comWDT_Prescalar, "8");
    const Names before = chosen();
    for (const std::int16_t state : std::initializer_list<std::int16_t>{1, 3, 2, 0}) {
        Set_UI_State(frm, state);
        EXPECT_EQ(chosen(), before) << state;
        EXPECT_EQ(text_of(s.comWDT_Prescalar), "8") << state;
    }
}

// ---- what can be operated -------------------------------------------------------

struct Family_Lock {
    int family;
    Names labels;
    Names choices;       // can be changed in state 0
    Names unchangeable;  // never
    Names parked;        // hidden, and never to be operated
    // What follows the choice whether the chip starts its watchdog.
    Names watchdog_labels;
    Names watchdog_choices;
    std::string watchdog;  // the array of that choice, 0 for yes
};

const Family_Lock locks[] = {
    {0, labels({0}), pairs({0}), {}, {}, {}, {}, ""},
    {2, labels_2, choices_2, {}, pairs({2, 8, 9}), {}, {}, ""},
    {3, labels_4 - labels({11}), choices_4 - pairs({9, 11}), pairs({9}), pairs({3, 8}),
     labels({11}) + Names{"Label20"}, pairs({11}) + Names{"comWDT_Prescalar"}, "Option10"},
    {4, labels_4 - labels({11}), choices_4 - pairs({9, 11}), pairs({9}), pairs({3, 8}),
     labels({11}) + Names{"Label20"}, pairs({11}) + Names{"comWDT_Prescalar"}, "Option10"},
    {6,
     labels_6 - labels({10}),
     choices_6 - pairs({8, 10}),
     pairs({8}),
     {},
     labels({10}) + Names{"Label20"},
     pairs({10}) + Names{"comWDT_Prescalar"},
     "Option9"},
};

TEST_F(OptionPanel, IsFreeInState0AndFrozenInTheOthersWithReadableLabels) {
    for (const Family_Lock& lock : locks)
        for (const bool runs : {false, true})
            for (const std::int16_t state : std::initializer_list<std::int16_t>{0, 1, 2, 3}) {
                lay_out(lock.family);
                if (!lock.watchdog.empty()) choose(lock.watchdog, runs ? 0 : 1);
                Set_UI_State(frm, state);
                EXPECT_EQ(frm.session.UI_State, state);
                const bool follows = runs && !lock.watchdog.empty();
                Names expected;
                if (state < 3) expected = lock.labels;
                if (state < 3 && follows) expected = expected + lock.watchdog_labels;
                if (state == 0) expected = expected + lock.choices;
                if (state == 0 && follows) expected = expected + lock.watchdog_choices;
                const Names all = lock.labels + lock.choices + lock.unchangeable + lock.parked +
                                  lock.watchdog_labels + lock.watchdog_choices;
                EXPECT_EQ(enabled_of(all), expected)
                    << "family " << lock.family << ", state " << state << ", runs " << runs;
                Set_UI_State(frm, 0);
            }
}

TEST_F(OptionPanel, HasNoStateBeyond3) {
    lay_out(4);
    for (const std::int16_t state : std::initializer_list<std::int16_t>{3, 4, -1, 300}) {
        Apply_Option_Enable(frm, state);
        EXPECT_EQ(enabled_of(labels_4 + choices_4 + prescaler), Names{}) << state;
    }
}

TEST_F(OptionPanel, LocksTheGeneralItemsInEveryFamily) {
    const Names frames = {"Frame7", "frmDataFlash"};
    const Names fields = {"txtDevice",
                          "txtFileCheckSum",
                          "txtDataFileCheckSum",
                          "cheAuto_Increase",
                          "texAuto_Increase(0)",
                          "texAuto_Increase(1)",
                          "texAuto_Increase(2)",
                          "texAuto_Increase(3)",
                          "optAuto_Increase(0)",
                          "optAuto_Increase(1)",
                          "optAuto_Increase(2)",
                          "cheData_Auto_Increase",
                          "texData_Auto_Increase(0)",
                          "texData_Auto_Increase(1)",
                          "texData_Auto_Increase(2)",
                          "texData_Auto_Increase(3)",
                          "optData_Auto_Increase(0)",
                          "optData_Auto_Increase(1)",
                          "optData_Auto_Increase(2)"};
    for (const int family : {-1, 0, 1, 2, 3, 4, 5, 6, 300}) {
        lay_out(family);
        Apply_Option_Enable(frm, 0);
        EXPECT_EQ(enabled_of(frames + fields), frames + fields) << family;
        Apply_Option_Enable(frm, 1);
        EXPECT_EQ(enabled_of(frames + fields), frames) << family;
        Apply_Option_Enable(frm, 0);
        Apply_Option_Enable(frm, 2);
        EXPECT_EQ(enabled_of(frames + fields), frames) << family;
        Apply_Option_Enable(frm, 3);
        EXPECT_EQ(enabled_of(frames + fields), Names{}) << family;
    }
}

TEST_F(OptionPanel, IsLaidOutInTheStateThatTheToolIsIn) {
    for (const Family_Lock& lock : locks)
        for (const std::int16_t state : std::initializer_list<std::int16_t>{0, 1, 2, 3}) {
            Set_UI_State(frm, state);
            lay_out(lock.family);
            Names expected;
            if (state < 3) expected = lock.labels;
            if (state == 0) expected = expected + lock.choices;
            const Names all = lock.labels + lock.choices + lock.unchangeable + lock.parked +
                              lock.watchdog_labels + lock.watchdog_choices;
            EXPECT_EQ(enabled_of(all), expected) << lock.family << ' ' << state;
        }
}

TEST_F(OptionPanel, FollowsTheWatchdogsChoiceAtOnce) {
    for (const Family_Lock& lock : locks) {
        if (lock.watchdog.empty()) continue;
        const Names following = lock.watchdog_labels + lock.watchdog_choices;
        lay_out(lock.family);
        EXPECT_EQ(enabled_of(following), Names{}) << lock.family;
        for (int round = 0; round < 2; ++round) {
            choose(lock.watchdog, 0);
            EXPECT_EQ(enabled_of(following), following) << lock.family;
            choose(lock.watchdog, 1);
            EXPECT_EQ(enabled_of(following), Names{}) << lock.family;
        }
        choose(lock.watchdog, 0);
        lay_out(lock.family);
        EXPECT_EQ(enabled_of(following), Names{}) << "laid out anew, family " << lock.family;
    }
}

TEST_F(OptionPanel, FollowsTheWatchdogsChoiceAndNotThatOfTheSameArrayInAnotherFamily) {
    lay_out(6);
    choose("Option9", 0);
    choose("Option10", 0);
    EXPECT_TRUE(s.comWDT_Prescalar.Enabled);
    choose("Option10", 1);
    EXPECT_TRUE(s.comWDT_Prescalar.Enabled);
    EXPECT_TRUE(s.Option11[0].Enabled);
    choose("Option9", 1);
    EXPECT_FALSE(s.comWDT_Prescalar.Enabled);
    EXPECT_TRUE(s.Option11[0].Enabled);
    EXPECT_TRUE(s.LabOption[11].Enabled);

    lay_out(2);
    const auto before = enabled_of(labels_2 + choices_2 + prescaler + pairs({11}));
    choose("Option10", 1);
    choose("Option10", 0);
    EXPECT_EQ(enabled_of(labels_2 + choices_2 + prescaler + pairs({11})), before);
}

TEST_F(OptionPanel, LetsNoWatchdogChoiceThroughWhileItIsLocked) {
    lay_out(4);
    for (const std::int16_t state : std::initializer_list<std::int16_t>{1, 2, 3}) {
        Set_UI_State(frm, state);
        choose("Option10", 0);
        EXPECT_FALSE(s.comWDT_Prescalar.Enabled) << state;
        EXPECT_FALSE(s.Option11[0].Enabled) << state;
        EXPECT_EQ(s.Label20.Enabled, state != 3) << state;
        EXPECT_EQ(s.LabOption[11].Enabled, state != 3) << state;
    }
}

// ---- pins -----------------------------------------------------------------------

TEST_F(OptionPanel, OffersThePinsOfBothSelectors) {
    const std::vector<std::string> pins = {"P1.0", "P1.1", "P1.2", "P1.3", "P1.4",
                                           "P1.5", "P1.6", "P1.7", "P3.0", "P3.1",
                                           "P3.2", "P3.3", "P3.4", "P3.5", "P3.7"};
    for (const Control* list : {&s.comb_485_pin, &s.comb_External_WDT}) {
        ASSERT_EQ(list->List.size(), pins.size());
        for (std::size_t i = 0; i < pins.size(); ++i) EXPECT_EQ(list->List[i].Text, pins[i]);
    }
}

TEST_F(OptionPanel, FreesThe485PinWhileItIsUsed) {
    const Names controls = {"comb_485_pin", "Lab_485_logic", "opt_485_logic(0)",
                            "opt_485_logic(1)"};
    for (int round = 0; round < 2; ++round) {
        choose("opt_485_pin", 1);
        EXPECT_EQ(enabled_of(controls), controls);
        choose("opt_485_pin", 0);
        EXPECT_EQ(enabled_of(controls), Names{});
    }
}

TEST_F(OptionPanel, FreesTheWatchdogsPinWhileItIsUsed) {
    choose("opt_485_pin", 1);
    for (int round = 0; round < 2; ++round) {
        choose("opt_External_WDT", 1);
        EXPECT_TRUE(s.comb_External_WDT.Enabled);
        choose("opt_External_WDT", 0);
        EXPECT_FALSE(s.comb_External_WDT.Enabled);
        EXPECT_TRUE(s.comb_485_pin.Enabled);
    }
}

TEST_F(OptionPanel, HasItsPinsAsChosenAfterEveryLayout) {
    for (const int family : {0, 1, 2, 3, 4, 6})
        for (const int used : {0, 1}) {
            s.opt_485_pin[0].Value = s.opt_External_WDT[1].Value = 1 - used;
            s.opt_485_pin[1].Value = s.opt_External_WDT[0].Value = used;
            lay_out(family);
            EXPECT_EQ(s.comb_485_pin.Enabled, used == 1) << family;
            EXPECT_EQ(s.comb_External_WDT.Enabled, used == 0) << family;
        }
}

TEST_F(OptionPanel, WarnsOfOnePinForTwoEachTimeTheWatchdogsPinIsChosen) {
    choose_pin(s.comb_485_pin, "P1.3");
    choose_pin(s.comb_External_WDT, "P1.4");
    EXPECT_TRUE(world.boxes().empty());
    for (std::size_t times = 1; times <= 3; ++times) {
        choose_pin(s.comb_External_WDT, "P1.3");
        ASSERT_EQ(world.boxes().size(), times);
        EXPECT_EQ(world.boxes().back().kind, test::BoxKind::text);
        EXPECT_EQ(world.boxes().back().text, "请不要用同一个 I/O 口线控制 485 和 外部看门狗。");
        EXPECT_EQ(text_of(s.comb_External_WDT), "P1.3") << "the choice stays";
        EXPECT_EQ(text_of(s.comb_485_pin), "P1.3");
    }
}

TEST_F(OptionPanel, DoesNotWarnWhenThe485PinIsChosen) {
    choose_pin(s.comb_External_WDT, "P3.7");
    choose_pin(s.comb_485_pin, "P3.7");
    EXPECT_TRUE(world.boxes().empty());
}

TEST_F(OptionPanel, DoesNotWarnWhileNoPinIsChosen) {
    Check_Pin_Clash(frm);
    choose_pin(s.comb_485_pin, "P1.0");
    Check_Pin_Clash(frm);
    EXPECT_TRUE(world.boxes().empty());
}

}  // namespace
}  // namespace vkm
