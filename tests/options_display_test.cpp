// What the operator is shown of a chip: whole texts, byte for byte.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "options/mcu_options.h"
#include "options/option_display.h"
#include "support/virtual_world.h"

namespace vkm {
namespace {

using Lines = std::vector<std::string>;

// ---- the lines, written again -------------------------------------------------

struct Line_Of_Bit {
    std::size_t byte;
    std::size_t bit;
    std::string_view clear;
    std::string_view set;
};

// clang-format off
constexpr Line_Of_Bit lines_of_C[] = {
    {1, 0, "Double speed / 双倍速:           6T/双倍速",          "Double speed / 双倍速:          12T/单倍速"},
    {1, 4, "振荡放大器增益:                   1/2 gain",          "振荡放大器增益:                  full gain"},
    {1, 2, "下次冷启动须 P1.0,P1.1=0,0 才下载, 快速启动",        "下次下载时 P1.0, P1.1 与下载无关"},
    {1, 6, "内部扩展AUX-RAM:                 禁止访问",           "内部扩展AUX-RAM:        允许访问(强烈推荐)"},
    {1, 3, "下次下载用户应用程序时将数据Flash区擦除:YES",         "下次下载用户应用程序时将数据Flash区擦除: NO"},
    {1, 7, "用户软件启动内部看门狗后:  只有停电关看门狗",         "用户软件启动内部看门狗后:     复位关看门狗"},
};
constexpr Line_Of_Bit lines_of_DEF[] = {
    {2,  1, "下次冷启动后使用 内部 RC 振荡器         YES",        "下次冷启动后使用 内部 RC 振荡器         NO"},
    {8,  0, "下次冷启动须 P1.0,P1.1=0,0 才可以下载程序",         "下次下载时 P1.0, P1.1 与下载无关"},
    {8,  1, "下次下载用户应用程序时将数据Flash区清0: YES",        "下次下载用户应用程序时将数据Flash区清0:  NO"},
    {16, 0, "",                                                   ""},
    {3,  7, "启动内部看门狗后禁止改看门狗分频数      YES",        "启动内部看门狗后禁止改看门狗分频数      NO"},
    {3,  5, "下次上电自动用有关参数启动内部看门狗    YES",        "下次上电自动用有关参数启动内部看门狗    NO"},
    {3,  3, "Idle(空闲)状态时内部看门狗停止计数      YES",        "Idle(空闲)状态时内部看门狗停止计数      NO"},
};
constexpr std::string_view prescalers[] = {"2", "4", "8", "16", "32", "64", "128", "256"};
// clang-format on

struct OptionDisplay : testing::Test {
    OptionDisplay() {
        Fill_Options(frm);
        frm.catalogue.MCU_Info.MCU_Family = 4;
        frm.link.Chip_Name = "VKM26H5410";
        frm.link.Chip_Version = "3.8";
    }

    void show(const std::string& letter, std::uint8_t option = 0) {
        frm.screen.textMsg.Text.clear();
        frm.link.Chip_Letter = letter;
        const auto code = letter.empty() ? std::uint8_t{0} : static_cast<std::uint8_t>(letter[0]);
        Show_Chip_Info(frm, 0x38, code, option);
    }

    void show_panel(const std::string& letter, std::uint8_t option = 0) {
        frm.link.Chip_Letter = letter;
        const auto code = letter.empty() ? std::uint8_t{0} : static_cast<std::uint8_t>(letter[0]);
        Show_Panel_Lines(frm, 0x38, code, option, 0);
    }

    bool is_set(std::size_t byte, std::size_t bit) const {
        return ((frm.options.Chip_Bytes[byte] >> bit) & 1) != 0;
    }

    template <std::size_t count>
    Lines options_by(const Line_Of_Bit (&table)[count]) const {
        Lines lines;
        for (const Line_Of_Bit& line : table)
            lines.emplace_back(is_set(line.byte, line.bit) ? line.set : line.clear);
        return lines;
    }

    Lines options_of_DEF() const {
        Lines lines = options_by(lines_of_DEF);
        const auto n = static_cast<std::size_t>(frm.options.Chip_Bytes[3] & 7);
        lines.push_back((is_set(3, 5) ? "冷启动后内部看门狗预分频数(未启用):     "
                                      : "冷启动后内部看门狗预分频数:            ") +
                        std::string(prescalers[n]));
        return lines;
    }

    // The log holds exactly these, each behind a break.
    static std::string log_of(const Lines& lines) {
        std::string text;
        for (const std::string& line : lines) text += "\r\n" + line;
        return text;
    }

    // From index 1 on; what is not shown is also empty.
    void expect_labels(const Lines& lines) {
        const auto& labels = frm.screen.LabLock;
        ASSERT_EQ(labels.size(), 14u);
        for (std::size_t i = 0; i < labels.size(); ++i) {
            const bool used = i >= 1 && i <= lines.size();
            EXPECT_EQ(labels[i].Visible, used) << i;
            EXPECT_EQ(labels[i].Caption, used ? lines[i - 1] : "") << i;
            EXPECT_TRUE(!used || labels[i].Enabled) << i;
        }
    }

    static Lines head(const std::string& letter) {
        return {"MCU Type is: VKM26H5410", "MCU Firmware Version: 3.8" + letter,
                "Chinese:MCU 固件版本号: 3.8" + letter};
    }

    const std::string& log() const { return frm.screen.textMsg.Text; }

    test::VirtualWorld world;
    frmMain& frm = world.frm;
};

Lines operator+(Lines left, const Lines& right) {
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

// ---- letters A and B --------------------------------------------------------

TEST_F(OptionDisplay, TellsTheSpeedOfAnAByBit3Alone) {
    for (int option = 0; option < 256; ++option) {
        const bool set = (option & 8) != 0;
        frm.link.Chip_Double_Speed = !set;
        show("A", static_cast<std::uint8_t>(option));
        ASSERT_EQ(log(), log_of(head("A") + Lines{set ? "Double speed: Yes" : "Double speed: No"}));
        ASSERT_EQ(frm.link.Chip_Double_Speed, set) << option;
    }
    expect_labels({});
}

TEST_F(OptionDisplay, KnowsNoSpeedOfAB) {
    for (const std::uint8_t option : {std::uint8_t{0}, std::uint8_t{8}, std::uint8_t{255}}) {
        frm.link.Chip_Double_Speed = true;
        show("B", option);
        EXPECT_EQ(log(),
                  "\r\nMCU Type is: VKM26H5410"
                  "\r\nMCU Firmware Version: 3.8B"
                  "\r\nChinese:MCU 固件版本号: 3.8B"
                  "\r\nDouble speed: Unknown");
        EXPECT_FALSE(frm.link.Chip_Double_Speed);
    }
    expect_labels({});
}

TEST_F(OptionDisplay, HasThreeLabelsForAnA) {
    const Lines lines = {"MCU Type is:                      VKM26H5410",
                         "MCU Firmware Version / MCU 固件版本号: 3.8A"};
    show_panel("A", 0xF7);
    expect_labels(lines + Lines{"Double speed (6 clock) / 双倍速:       No"});
    show_panel("A", 0x08);
    expect_labels(lines + Lines{"Double speed (6 clock) / 双倍速:       Yes"});
}

TEST_F(OptionDisplay, HasThreeLabelsForAB) {
    for (const std::uint8_t option : {std::uint8_t{0}, std::uint8_t{8}}) {
        show_panel("B", option);
        expect_labels({"MCU Type is:                      VKM26H5410",
                       "MCU Firmware Version / MCU 固件版本号: 3.8B",
                       "Double speed (6 clock) / 双倍速:     Unknown"});
    }
}

TEST_F(OptionDisplay, LeavesTheLabelFreeOfWhatIsNotKnown) {
    frm.link.Chip_Name.clear();
    show_panel("A");
    EXPECT_FALSE(frm.screen.LabLock[1].Visible);
    EXPECT_EQ(frm.screen.LabLock[2].Caption, "MCU Firmware Version / MCU 固件版本号: 3.8A");
    EXPECT_TRUE(frm.screen.LabLock[3].Visible);
    frm.link.Chip_Version.clear();
    show_panel("B");
    EXPECT_FALSE(frm.screen.LabLock[1].Visible);
    EXPECT_FALSE(frm.screen.LabLock[2].Visible);
    EXPECT_EQ(frm.screen.LabLock[2].Caption, "");
    EXPECT_EQ(frm.screen.LabLock[3].Caption, "Double speed (6 clock) / 双倍速:     Unknown");
}

TEST_F(OptionDisplay, LeavesTheLabelsToTheOthersForAllOtherLetters) {
    for (const std::string letter : {"C", "D", "E", "F", "G", "Z", "a", ""}) {
        for (Control& label : frm.screen.LabLock) label.Caption = "kept";
        show_panel(letter, 8);
        for (const Control& label : frm.screen.LabLock) EXPECT_EQ(label.Caption, "kept") << letter;
    }
}

// ---- letter C ---------------------------------------------------------------

TEST_F(OptionDisplay, ListsAllOptionsOfACInTheLogAndThoseBehindTheGainOnThePage) {
    frm.options.Chip_Bytes[1] = 255;
    show("C");
    EXPECT_EQ(log(),
              "\r\nMCU Type is: VKM26H5410"
              "\r\nMCU Firmware Version: 3.8C"
              "\r\nChinese:MCU 固件版本号: 3.8C"
              "\r\nDouble speed / 双倍速:          12T/单倍速"
              "\r\n振荡放大器增益:                  full gain"
              "\r\n下次下载时 P1.0, P1.1 与下载无关"
              "\r\n内部扩展AUX-RAM:        允许访问(强烈推荐)"
              "\r\n下次下载用户应用程序时将数据Flash区擦除: NO"
              "\r\n用户软件启动内部看门狗后:     复位关看门狗");
    expect_labels({"MCU: VKM26H5410    固件版本号: 3.8C", "下次下载时 P1.0, P1.1 与下载无关",
                   "内部扩展AUX-RAM:        允许访问(强烈推荐)",
                   "下次下载用户应用程序时将数据Flash区擦除: NO",
                   "用户软件启动内部看门狗后:     复位关看门狗"});
}

TEST_F(OptionDisplay, ShowsWhatAgreesWithEveryValueOfByte1OfAC) {
    for (std::int16_t value = 0; value < 256; ++value) {
        // Other bytes must not be seen.
        frm.options.Chip_Bytes.fill(static_cast<std::int16_t>(~value & 255));
        frm.options.Chip_Bytes[1] = value;
        show("C");
        const Lines options = options_by(lines_of_C);
        ASSERT_EQ(log(), log_of(head("C") + options)) << value;
        expect_labels(Lines{"MCU: VKM26H5410    固件版本号: 3.8C"} +
                      Lines(options.begin() + 2, options.end()));
    }
}

// ---- letters D, E and F -----------------------------------------------------

TEST_F(OptionDisplay, ShowsTheOptionsOfAD) {
    frm.options.Chip_Bytes.fill(255);
    frm.options.Chip_Bytes[3] = 0x57;  // bit 5 clear: the watchdog starts at power-up
    show("D");
    EXPECT_EQ(log(),
              "\r\nMCU Type is: VKM26H5410"
              "\r\nMCU Firmware Version: 3.8D"
              "\r\nChinese:MCU 固件版本号: 3.8D"
              "\r\n下次冷启动后使用 内部 RC 振荡器         NO"
              "\r\n下次下载时 P1.0, P1.1 与下载无关"
              "\r\n下次下载用户应用程序时将数据Flash区清0:  NO"
              "\r\n"
              "\r\n启动内部看门狗后禁止改看门狗分频数      YES"
              "\r\n下次上电自动用有关参数启动内部看门狗    YES"
              "\r\nIdle(空闲)状态时内部看门狗停止计数      YES"
              "\r\n冷启动后内部看门狗预分频数:            256");
    expect_labels({"     MCU: VKM26H5410    固件版本号: 3.8D",
                   "下次冷启动后使用 内部 RC 振荡器         NO", "下次下载时 P1.0, P1.1 与下载无关",
                   "下次下载用户应用程序时将数据Flash区清0:  NO", "",
                   "启动内部看门狗后禁止改看门狗分频数      YES",
                   "下次上电自动用有关参数启动内部看门狗    YES",
                   "Idle(空闲)状态时内部看门狗停止计数      YES",
                   "冷启动后内部看门狗预分频数:            256"});
}

TEST_F(OptionDisplay, SaysThatThePrescalerRestsWhileTheWatchdogIsNotStarted) {
    frm.options.Chip_Bytes.fill(255);
    frm.options.Chip_Bytes[3] = 0x77;
    show("E");
    EXPECT_TRUE(log().ends_with("\r\n冷启动后内部看门狗预分频数(未启用):     256")) << log();
    frm.options.Chip_Bytes[3] = 0x20;
    show("E");
    EXPECT_TRUE(log().ends_with("\r\n冷启动后内部看门狗预分频数(未启用):     2")) << log();
    frm.options.Chip_Bytes[3] = 0x03;
    show("E");
    EXPECT_TRUE(log().ends_with("\r\n冷启动后内部看门狗预分频数:            16")) << log();
}

TEST_F(OptionDisplay, ShowsWhatAgreesWithEveryValueOfEveryByteOfADEF) {
    for (const std::string letter : {"D", "E", "F"})
        for (const std::size_t byte : {2u, 3u, 8u, 16u})
            for (std::int16_t value = 0; value < 256; ++value) {
                frm.options.Chip_Bytes.fill(static_cast<std::int16_t>(~value & 255));
                frm.options.Chip_Bytes[byte] = value;
                show(letter);
                const Lines options = options_of_DEF();
                ASSERT_EQ(log(), log_of(head(letter) + options)) << byte << ": " << value;
                expect_labels(Lines{"     MCU: VKM26H5410    固件版本号: 3.8" + letter} + options);
            }
}

TEST_F(OptionDisplay, TakesAWordBeyondAByteByItsBits) {
    for (const int word : {-1, -2, -32768, 256, 511, 32767}) {
        frm.options.Chip_Bytes.fill(static_cast<std::int16_t>(word));
        show("C");
        EXPECT_EQ(log(), log_of(head("C") + options_by(lines_of_C))) << word;
        show("F");
        EXPECT_EQ(log(), log_of(head("F") + options_of_DEF())) << word;
    }
}

TEST_F(OptionDisplay, LeavesTheSpeedAloneForTheNewerLetters) {
    for (const std::string letter : {"C", "D", "E", "F", "G", "Z"})
        for (const bool speed : {false, true}) {
            frm.link.Chip_Double_Speed = speed;
            show(letter, speed ? 0 : 255);
            EXPECT_EQ(frm.link.Chip_Double_Speed, speed) << letter;
        }
}

TEST_F(OptionDisplay, GoesByTheLetterAndNotByTheSelectedModel) {
    for (const int family : {-1, 0, 1, 2, 3, 4, 5, 6, 7, 300}) {
        frm.catalogue.MCU_Info.MCU_Family = static_cast<std::int16_t>(family);
        frm.options.Chip_Bytes.fill(0x5A);
        show("C");
        EXPECT_EQ(log(), log_of(head("C") + options_by(lines_of_C))) << family;
        show("D");
        EXPECT_EQ(log(), log_of(head("D") + options_of_DEF())) << family;
    }
}

// ---- letter G and unknown letters -------------------------------------------

TEST_F(OptionDisplay, ShowsNoOptionsOfAGOrOfAnUnknownLetter) {
    for (const std::string letter : {"G", "H", "Z", "a", "d", ""}) {
        for (const std::int16_t value : {std::int16_t{0}, std::int16_t{255}}) {
            frm.options.Chip_Bytes.fill(value);
            show(letter, 255);
            EXPECT_EQ(log(), log_of(head(letter)));
            expect_labels({});
        }
    }
}

// ---- what is not known, and languages -----------------------------------------

TEST_F(OptionDisplay, HasNoLineForAModelThatIsNotKnown) {
    frm.link.Chip_Name.clear();
    show("G");
    EXPECT_EQ(log(), "\r\nMCU Firmware Version: 3.8G\r\nChinese:MCU 固件版本号: 3.8G");
    show("C");
    EXPECT_EQ(frm.screen.LabLock[1].Caption, "MCU:     固件版本号: 3.8C");
}

TEST_F(OptionDisplay, ShowsTheLetterAloneWithoutAVersion) {
    frm.link.Chip_Version.clear();
    show("G");
    EXPECT_EQ(log(),
              "\r\nMCU Type is: VKM26H5410"
              "\r\nMCU Firmware Version: G"
              "\r\nChinese:MCU 固件版本号: G");
    show("F");
    EXPECT_EQ(frm.screen.LabLock[1].Caption, "     MCU: VKM26H5410    固件版本号: F");
}

TEST_F(OptionDisplay, LeavesTheChineseLineOutInEnglish) {
    frm.screen.Show_English = true;
    show("A", 8);
    EXPECT_EQ(log(),
              "\r\nMCU Type is: VKM26H5410"
              "\r\nMCU Firmware Version: 3.8A"
              "\r\nDouble speed: Yes");
    show("G");
    EXPECT_EQ(log(), "\r\nMCU Type is: VKM26H5410\r\nMCU Firmware Version: 3.8G");
}

TEST_F(OptionDisplay, ShowsTheEndOfTheLog) {
    show("B");
    const Control& message_box = frm.screen.textMsg;
    Control at_end = message_box;
    caret_to_end(at_end);
    EXPECT_EQ(message_box.SelStart, at_end.SelStart);
    EXPECT_GT(message_box.SelStart, 0);
}

// ---- one display after another ------------------------------------------------

TEST_F(OptionDisplay, ClearsTheDisplayBefore) {
    frm.options.Chip_Bytes.fill(255);
    for (const std::string next : {"A", "B", "G", "Z", ""}) {
        show("F");
        ASSERT_TRUE(frm.screen.LabLock[9].Visible);
        show(next);
        expect_labels({});
    }
    show("F");
    show("C");
    EXPECT_TRUE(frm.screen.LabLock[5].Visible);
    for (std::size_t i = 6; i < 14; ++i) {
        EXPECT_FALSE(frm.screen.LabLock[i].Visible) << i;
        EXPECT_EQ(frm.screen.LabLock[i].Caption, "") << i;
    }
    show("F");
    show_panel("B");
    for (std::size_t i = 4; i < 14; ++i) EXPECT_FALSE(frm.screen.LabLock[i].Visible) << i;
}

TEST_F(OptionDisplay, IsEmptyAndHiddenAfterItIsCleared) {
    frm.options.Chip_Bytes.fill(255);
    show("F");
    Clear_Read_Lines(frm);
    expect_labels({});
}

TEST_F(OptionDisplay, WritesThePrescalersTextAnewEachTime) {
    frm.options.Chip_Bytes.fill(255);
    frm.options.Chip_Bytes[3] = 0x06;
    show("D");
    frm.options.Chip_Bytes[3] = 0x01;
    show("D");
    EXPECT_EQ(frm.screen.LabLock[9].Caption, "冷启动后内部看门狗预分频数:            4");
}

TEST_F(OptionDisplay, EndsAtTheLastLabelHoweverManyOptionsThereAre) {
    auto& rows = frm.options.MCU_Options[4];
    const auto again = rows;
    for (int i = 0; i < 4; ++i) rows.insert(rows.end(), again.begin(), again.end());
    show("D");
    for (std::size_t i = 1; i < 14; ++i) EXPECT_TRUE(frm.screen.LabLock[i].Visible) << i;
    // The controls behind the array in the record.
    EXPECT_EQ(frm.screen.fraAuto_Increase.Caption, "自动增量可以给 MCU 及产品编号");
    EXPECT_EQ(frm.screen.frmAP_FileIncrease.Caption, "程序文件自动增量");
}

// ---- the states behind it -----------------------------------------------------

TEST_F(OptionDisplay, LeavesTheStateOfEachRowBehind) {
    frm.options.Chip_Bytes.fill(0);
    frm.options.Chip_Bytes[4] = 0x23;
    for (const int group : {0, 2, 3, 4, 5}) {
        Decode_Chip_Options(frm, group);
        for (const Option_Row& row : frm.options.MCU_Options[static_cast<std::size_t>(group)]) {
            std::string expected;
            if (!row.Option_Code.empty()) expected = row.Option_Code.back() == '0' ? "1" : "0";
            if (row.Option_Code == "0450") expected = "0";
            if (row.Option_Code == "0451") expected = "1";
            if (row.Option_Key == "WDT_Prescalar") expected = "1";
            EXPECT_EQ(row.Option_State, expected) << group << ' ' << row.Option_Key;
        }
    }
}

TEST_F(OptionDisplay, WritesBothFormsOfThePrescalersTextForEveryValue) {
    for (const std::size_t group : {3u, 4u, 5u}) {
        const std::size_t byte = group == 5 ? 4 : 3;
        const auto& rows = frm.options.MCU_Options[group];
        const auto row = std::ranges::find(rows, "WDT_Prescalar", &Option_Row::Option_Key);
        for (std::int16_t value = 0; value < 256; ++value) {
            frm.options.Chip_Bytes.fill(static_cast<std::int16_t>(~value & 255));
            frm.options.Chip_Bytes[byte] = value;
            Decode_Chip_Options(frm, static_cast<int>(group));
            const std::string number(prescalers[static_cast<std::size_t>(value % 8)]);
            const bool rests = (value & 0x20) != 0;
            ASSERT_EQ(row->Option_Text, (rests ? "冷启动后内部看门狗预分频数(未启用):     "
                                               : "冷启动后内部看门狗预分频数:            ") +
                                            number)
                << group << ' ' << value;
        }
    }
}

TEST_F(OptionDisplay, LeavesNoStateOfThePanelBehind) {
    for (const std::int16_t family : std::initializer_list<std::int16_t>{0, 2, 4, 6}) {
        frm.catalogue.MCU_Info.MCU_Family = family;
        for (const std::string letter : {"C", "D"}) {
            Compose_Options(frm);
            show(letter);
            for (const Option_Row& row : *family_rows(frm)) {
                EXPECT_NE(row.Option_State, "True") << family << ' ' << letter;
                EXPECT_NE(row.Option_State, "False") << family << ' ' << letter;
            }
        }
    }
}

TEST_F(OptionDisplay, HasNothingToDecodeInAGroupWithoutRows) {
    for (const int group : {1, 6}) {
        Decode_Chip_Options(frm, group);
        EXPECT_TRUE(frm.options.MCU_Options[static_cast<std::size_t>(group)].empty());
    }
}

}  // namespace
}  // namespace vkm
