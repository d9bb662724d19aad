#include "options/option_schema.h"

#include <algorithm>
#include <span>
#include <string>
#include <utility>

#include "text/trimming.h"

namespace vkm {
namespace {

// ---- lines of the schema: each stands for the rows of one control -----------

enum class Line_Kind { label, choice, list, parked, general };

struct Line {
    Line_Kind kind = Line_Kind::label;
    std::string_view key{};
    std::string_view caption_key{};  // of a choice's caption row
    std::string_view control{};      // of a general item
    int array = 0;                   // Option0 to Option12
    int element = -1;                // in the array, or of LabOption
    std::string_view caption{};
    std::string_view value{};  // the default
    std::string_view text{};   // after a read-back
    std::string_view code{};
    Property_Kind property = Property_Kind::Caption;  // of a general item
};

constexpr std::string_view decoration = "Clew";
constexpr std::string_view on = "1";
constexpr std::string_view off = "0";

constexpr Line label(std::string_view key, int element, std::string_view caption) {
    return {.kind = Line_Kind::label, .key = key, .element = element, .caption = caption};
}

constexpr Line remark(int element, std::string_view caption) {
    return label(decoration, element, caption);
}

// One choice of a set: the row of its caption and the row of its value.
constexpr Line choice(int array, int element, std::string_view key, std::string_view caption_key,
                      std::string_view caption, std::string_view value, std::string_view text,
                      std::string_view code) {
    return {.kind = Line_Kind::choice,
            .key = key,
            .caption_key = caption_key,
            .array = array,
            .element = element,
            .caption = caption,
            .value = value,
            .text = text,
            .code = code};
}

constexpr Line prescaler(std::string_view text) {
    return {.kind = Line_Kind::list, .key = option_key::prescaler, .value = "256", .text = text};
}

// A pair of option buttons that the family has no use for.
constexpr Line parked(int array) {
    return {.kind = Line_Kind::parked, .key = decoration, .array = array};
}

constexpr Line item(std::string_view key, std::string_view control, int element,
                    Property_Kind property, std::string_view value = {}) {
    return {.kind = Line_Kind::general,
            .key = key,
            .control = control,
            .element = element,
            .value = value,
            .property = property};
}

// label(key, element of LabOption, caption)
// choice(array and element of OptionN, key, key of the caption row, caption, default,
//        text read back, code)
// clang-format off
constexpr Line family_0[] = {
  label("Double_speed_Clew", 0, "Double speed / 双倍速:"),
  choice(0, 0, "Double_speed_YES", "Double_speed_YES_Clew", "6T/双倍速", off, "Double speed / 双倍速:           6T/双倍速", "0131"),
  choice(0, 1, "Double_speed_NO", "Double_speed_NO_Clew", "12T/单倍速", on, "Double speed / 双倍速:          12T/单倍速", "0130"),
};

constexpr Line family_2[] = {
  label("Double_speed_Clew", 0, "Double speed / 双倍速:"),
  choice(0, 0, "Double_speed_YES", "Double_speed_YES_Clew", "6T/双倍速", off, "Double speed / 双倍速:           6T/双倍速", "0100"),
  choice(0, 1, "Double_speed_NO", "Double_speed_NO_Clew", "12T/单倍速", on, "Double speed / 双倍速:          12T/单倍速", "0101"),
  label("Half_Gain_Clew", 1, "振荡放大器增益:"),
  choice(1, 0, "Half_Gain_YES", "Half_Gain_YES_Clew", "1/2 gain", off, "振荡放大器增益:                   1/2 gain", "0140"),
  choice(1, 1, "Half_Gain_NO", "Half_Gain_NO_Clew", "full gain", on, "振荡放大器增益:                  full gain", "0141"),
  remark(2, "如需低功耗,16MHz 以下振荡器增益可选 1/2 gain"),
  parked(2),
  label("P10_P11_Clew", 3, "下次冷启动P1.0,P1.1"),
  choice(3, 1, "Disregard_P10_P11", "Disregard_P10_P11_Clew", "与下载无关", on, "下次下载时 P1.0, P1.1 与下载无关", "0121"),
  choice(3, 0, "P10_P11_00_Download", "P10_P11_00_Down_Clew", "等于0,0才可下载,快速启动", off, "下次冷启动须 P1.0,P1.1=0,0 才下载, 快速启动", "0120"),
  label("AUX_RAM_Enable_Clew", 4, "内部扩展AUX-RAM:"),
  choice(4, 0, "AUX_RAM_Enable_NO", "AUX_RAM_Enable_NO_Clew", "禁止访问", off, "内部扩展AUX-RAM:                 禁止访问", "0160"),
  choice(4, 1, "AUX_RAM_Enable_YES", "AUX_RAM_Enable_Y_Clew", "允许访问(强烈推荐)", on, "内部扩展AUX-RAM:        允许访问(强烈推荐)", "0161"),
  label("Clear_EEPROM_Clew", 5, "下次下载用户应用程序时将数据Flash区一并擦除"),
  choice(5, 0, "Clear_EEPROM_FFH", "Clear_EEPROM_FFH_Clew", "YES", off, "下次下载用户应用程序时将数据Flash区擦除:YES", "0130"),
  choice(5, 1, "Clear_EEPROM_Spite", "Clear_EEPROM_SpiteClew", "NO", on, "下次下载用户应用程序时将数据Flash区擦除: NO", "0131"),
  remark(8, "以下功能仅针对 VKM47H51RB/RK+ 系列单片机新版本C版有效"),
  parked(8),
  remark(9, "2005年6月以后供货"),
  parked(9),
  label("Reset_Close_WDT_Clew", 10, "用户软件启动内部看门狗后"),
  choice(10, 1, "Reset_Close_WDT_NO", "Reset_Close_WDT_N_Clew", "只有停电关看门狗", off, "用户软件启动内部看门狗后:  只有停电关看门狗", "0170"),
  choice(10, 0, "Reset_Close_WDT_YES", "Reset_Close_WDT_Y_Clew", "复位关看门狗", on, "用户软件启动内部看门狗后:     复位关看门狗", "0171"),
};

constexpr Line families_3_and_4[] = {
  label("Clock_Source_Clew", 0, "下次冷启动后时钟源为:"),
  choice(0, 0, "Interior_Oscillate", "InteriorOscillate_Clew", "内部RC振荡器", off, "下次冷启动后使用 内部 RC 振荡器         YES", "0210"),
  choice(0, 1, "Exterior_Oscillate", "ExteriorOscillate_Clew", "外部晶体或时钟", on, "下次冷启动后使用 内部 RC 振荡器         NO", "0211"),
  label("P10_P11_Clew", 1, "下次冷启动P1.0,P1.1:"),
  choice(1, 1, "Disregard_P10_P11", "Disregard_P10_P11_Clew", "与下载无关", on, "下次下载时 P1.0, P1.1 与下载无关", "0801"),
  choice(1, 0, "P10_P11_00_Download", "P10_P11_00_Down_Clew", "等于0,0才可以下载程序", off, "下次冷启动须 P1.0,P1.1=0,0 才可以下载程序", "0800"),
  label("Clear_EEPROM_Clew", 2, "下次下载用户应用程序时将数据Flash区一并清0:"),
  choice(2, 0, "Clear_EEPROM_00H", "Clear_EEPROM_00H_Clew", "YES", off, "下次下载用户应用程序时将数据Flash区清0: YES", "0810"),
  choice(2, 1, "Clear_EEPROM_Spite", "Clear_EEPROM_SpiteClew", "NO", on, "下次下载用户应用程序时将数据Flash区清0:  NO", "0811"),
  remark(3, "选择清 0 下载时间可能延长(固件版本>5.0有效)"),
  parked(3),
  label("Clear_Unused_AP_Clew", 4, "本次下载时将用户程序区高端未用单元"),
  choice(4, 0, "Clear_Unused_AP_YES", "Clear_Unused_AP_Y_Clew", "写成00", off, "", "1600"),
  choice(4, 1, "Clear_Unused_AP_NO", "Clear_Unused_AP_N_Clew", "写成FF", on, "", "1601"),
  remark(8, "以下设置只有当固件版本 >= 3.7 时有效:"),
  parked(8),
  label("Unchangeable_WDT_Clew", 9, "启动内部看门狗后禁止改看门狗分频数"),
  choice(9, 0, "Unchangeable_WDT_YES", "UnchangeableWDT_Y_Clew", "YES", off, "启动内部看门狗后禁止改看门狗分频数      YES", "0370"),
  choice(9, 1, "Unchangeable_WDT_NO", "UnchangeableWDT_N_Clew", "NO", on, "启动内部看门狗后禁止改看门狗分频数      NO", "0371"),
  label("Power_On_Run_WDT_Clew", 10, "上电时自动用有关参数启动内部看门狗"),
  choice(10, 0, "Power_On_Run_WDT_YES", "PowerOn_Run_WDT_Y_Clew", "YES", off, "下次上电自动用有关参数启动内部看门狗    YES", "0350"),
  choice(10, 1, "Power_On_Run_WDT_NO", "PowerOn_Run_WDT_N_Clew", "NO", on, "下次上电自动用有关参数启动内部看门狗    NO", "0351"),
  label("Idle_Run_WDT_Clew", 11, "Idle(空闲)状态时内部看门狗停止计数"),
  choice(11, 0, "Idle_Run_WDT_YES", "Idle_Run_WDT_YES_Clew", "YES", off, "Idle(空闲)状态时内部看门狗停止计数      YES", "0330"),
  choice(11, 1, "Idle_Run_WDT_NO", "Idle_Run_WDT_NO_Clew", "NO", on, "Idle(空闲)状态时内部看门狗停止计数      NO", "0331"),
  prescaler("冷启动后内部看门狗预分频数:"),
};

constexpr Line family_6[] = {
  label("Clock_Source_Clew", 0, "下次冷启动后时钟源为:"),
  choice(0, 0, "Interior_Oscillate", "InteriorOscillate_Clew", "内部RC振荡器", off, "下次冷启动后使用 内部 RC 振荡器         YES", "0310"),
  choice(0, 1, "Exterior_Oscillate", "ExteriorOscillate_Clew", "外部晶体或时钟", on, "下次冷启动后使用 内部 RC 振荡器         NO", "0311"),
  label("Half_Gain_Clew", 1, "振荡放大器增益:"),
  choice(1, 0, "Half_Gain_YES", "Half_Gain_YES_Clew", "1/2 gain", off, "振荡放大器增益:                   1/2 gain", "0360"),
  choice(1, 1, "Half_Gain_NO", "Half_Gain_NO_Clew", "full gain", on, "振荡放大器增益:                  full gain", "0361"),
  label("P10_P11_Clew", 2, "下次冷启动P1.0,P1.1:"),
  choice(2, 1, "Disregard_P10_P11", "Disregard_P10_P11_Clew", "与下载无关", on, "下次下载时 P1.0, P1.1 与下载无关", "0801"),
  choice(2, 0, "P10_P11_00_Download", "P10_P11_00_Down_Clew", "等于0,0才可以下载程序", off, "下次冷启动须 P1.0,P1.1=0,0 才可以下载程序", "0800"),
  label("Clear_EEPROM_Clew", 3, "下次下载时将数据 EEPROM 区"),
  choice(3, 0, "Clear_EEPROM_00H", "Clear_EEPROM_00H_Clew", "清0(略耗时)", off, "下次下载用户程序时将数据 EEPROM 区清 0", "0840"),
  choice(3, 1, "Clear_EEPROM_FFH", "Clear_EEPROM_FFH_Clew", "擦成FF", off, "下次下载用户程序时将数据 EEPROM 区擦成 FF", "0810"),
  choice(3, 2, "Clear_EEPROM_Spite", "Clear_EEPROM_SpiteClew", "不管", on, "下次下载用户程序时不改变 EEPROM 区数据", "0841"),
  label("Clear_Unused_AP_Clew", 4, "本次下载时将用户程序区高端未用单元"),
  choice(4, 0, "Clear_Unused_AP_YES", "Clear_Unused_AP_Y_Clew", "清0(略耗时)", off, "", "0830"),
  choice(4, 1, "Clear_Unused_AP_NO", "Clear_Unused_AP_N_Clew", "擦成FF", on, "", "0831"),
  label("Unchangeable_WDT_Clew", 8, "启动内部看门狗后禁止改看门狗分频数"),
  choice(8, 0, "Unchangeable_WDT_YES", "UnchangeableWDT_Y_Clew", "YES", off, "启动内部看门狗后禁止改看门狗分频数      YES", "0470"),
  choice(8, 1, "Unchangeable_WDT_NO", "UnchangeableWDT_N_Clew", "NO", on, "启动内部看门狗后禁止改看门狗分频数      NO", "0471"),
  label("Power_On_Run_WDT_Clew", 9, "下次上电时自动用有关参数启动内部看门狗"),
  choice(9, 0, "Power_On_Run_WDT_YES", "PowerOn_Run_WDT_Y_Clew", "YES", off, "下次冷启动自动用有关参数启动内部看门狗  YES", "0450"),
  choice(9, 1, "Power_On_Run_WDT_NO", "PowerOn_Run_WDT_N_Clew", "NO", on, "下次冷启动自动用有关参数启动内部看门狗  NO", "0451"),
  label("Idle_Run_WDT_Clew", 10, "下次Idle(空闲)状态时内部看门狗停止计数"),
  choice(10, 0, "Idle_Run_WDT_YES", "Idle_Run_WDT_YES_Clew", "YES", off, "下次Idle(空闲)状态时内部看门狗停止计数  YES", "0430"),
  choice(10, 1, "Idle_Run_WDT_NO", "Idle_Run_WDT_NO_Clew", "NO", on, "下次Idle(空闲)状态时内部看门狗停止计数  NO", "0431"),
  prescaler("下次冷启动后内部看门狗预分频数:"),
  label("LowU_Unwrite_Clew", 11, "EEPROM 低压写保护:"),
  choice(11, 0, "LowU_Unwrite_YES", "LowU_Unwrite_YES_Clew", "YES", on, "EEPROM 低压写保护                       YES", "0070"),
  choice(11, 1, "LowU_Unwrite_NO", "LowU_Unwrite_NO_Clew", "NO", off, "EEPROM 低压写保护                       NO", "0071"),
  label("Low_Voltage_Reset_Clew", 12, "允许掉电复位:"),
  choice(12, 0, "LowU_Reset_YES", "LowU_Reset_YES_Clew", "YES", on, "允许掉电复位                            YES", "0060"),
  choice(12, 1, "LowU_Reset_NO", "LowU_Reset_NO_Clew", "NO", off, "允许掉电复位                            NO", "0061"),
};

constexpr Line general_items[] = {
  item("MCU_Type",              "txtDevice",            -1, Property_Kind::Text),
  item("File_Name",             "Frame7",               -1, Property_Kind::Caption, "File Buffer: "),
  item("File_Check_Sum",        "txtFileCheckSum",      -1, Property_Kind::Text),
  item("Dtat_File_Name",        "frmDataFlash",         -1, Property_Kind::Caption, "Data File: "),
  item("Dtat_File_CheckSum",    "txtDataFileCheckSum",  -1, Property_Kind::Text),
  item("Auto_Increase_Enable",  "cheAuto_Increase",     -1, Property_Kind::Value),
  item("Auto_Increase_Address", "texAuto_Increase",      0, Property_Kind::Text),
  item("Auto_Increase_Bytes",   "texAuto_Increase",      1, Property_Kind::Text),
  item("Auto_Increase_Next",    "texAuto_Increase",      2, Property_Kind::Text),
  item("Auto_Increase",         "texAuto_Increase",      3, Property_Kind::Text),
  item("Auto_Increase_HEX",     "optAuto_Increase",      0, Property_Kind::Value, on),
  item("Auto_Increase_BCD",     "optAuto_Increase",      1, Property_Kind::Value),
  item("Auto_Increase_ASCII",   "optAuto_Increase",      2, Property_Kind::Value),
  item("Data_Increase_Enable",  "cheData_Auto_Increase", -1, Property_Kind::Value),
  item("Data_Increase_Address", "texData_Auto_Increase", 0, Property_Kind::Text),
  item("Data_Increase_Bytes",   "texData_Auto_Increase", 1, Property_Kind::Text),
  item("Data_Increase_Next",    "texData_Auto_Increase", 2, Property_Kind::Text),
  item("Data_Increase",         "texData_Auto_Increase", 3, Property_Kind::Text),
  item("Data_Increase_HEX",     "optData_Auto_Increase", 0, Property_Kind::Value, on),
  item("Data_Increase_BCD",     "optData_Auto_Increase", 1, Property_Kind::Value),
  item("Data_Increase_ASCII",   "optData_Auto_Increase", 2, Property_Kind::Value),
};
// clang-format on

// ---- from lines to rows ----------------------------------------------------

// The operator sees these choices and can't change them.
constexpr std::string_view unchangeable[] = {"Unchangeable_WDT_YES", "Unchangeable_WDT_NO"};

bool is_unchangeable(std::string_view key) {
    return std::ranges::find(unchangeable, key) != std::end(unchangeable);
}

// Captions stay readable while the values are frozen.
Option_Row make_row(std::string_view key, std::string control, int index, Property_Kind property,
                    std::string_view value) {
    const bool caption = property == Property_Kind::Caption;
    Option_Row row;
    row.Option_Key = key;
    row.Option_Control = std::move(control);
    row.Option_Index = index;
    row.Option_Property = property;
    row.Option_Default = trimmed(value);
    row.Option_Enable_0 = caption || !is_unchangeable(key);
    row.Option_Enable_1 = caption;
    row.Option_Enable_2 = caption;
    return row;
}

std::string name_of_array(int array) {
    return "Option" + std::to_string(array);
}

void add_choice(std::vector<Option_Row>& rows, const Line& line) {
    const std::string control = name_of_array(line.array);
    for (const bool value_row : {false, true}) {
        Option_Row row =
            value_row ? make_row(line.key, control, line.element, Property_Kind::Value, line.value)
                      : make_row(line.caption_key, control, line.element, Property_Kind::Caption,
                                 line.caption);
        row.Option_Text = trimmed(line.text);
        if (value_row) row.Option_Code = line.code;
        rows.push_back(std::move(row));
    }
}

void add_parked(std::vector<Option_Row>& rows, const Line& line) {
    for (const int element : {0, 1})
        for (const auto property : {Property_Kind::Caption, Property_Kind::Value}) {
            Option_Row row = make_row(line.key, name_of_array(line.array), element, property, {});
            row.Option_Visible = row.Option_Enable_0 = false;
            row.Option_Enable_1 = row.Option_Enable_2 = false;
            rows.push_back(std::move(row));
        }
}

void add_rows(std::vector<Option_Row>& rows, const Line& line) {
    switch (line.kind) {
        case Line_Kind::label:
            rows.push_back(make_row(line.key, "LabOption", line.element, Property_Kind::Caption,
                                    line.caption));
            break;
        case Line_Kind::choice:
            add_choice(rows, line);
            break;
        case Line_Kind::list:
            rows.push_back(make_row(line.key, "comWDT_Prescalar", line.element, Property_Kind::Text,
                                    line.value));
            rows.back().Option_Text = trimmed(line.text);
            break;
        case Line_Kind::parked:
            add_parked(rows, line);
            break;
        case Line_Kind::general:
            rows.push_back(make_row(line.key, std::string(line.control), line.element,
                                    line.property, line.value));
            break;
    }
}

// Families 3 and 4 have the same rows, each in a group of its own.
std::span<const Line> lines_of(int group) {
    switch (group) {
        case 0:
            return family_0;
        case 2:
            return family_2;
        case 3:
        case 4:
            return families_3_and_4;
        case 5:
            return family_6;
        case general_group:
            return general_items;
        default:
            return {};
    }
}

}  // namespace

std::vector<Option_Row> option_rows(int group) {
    std::vector<Option_Row> rows;
    for (const Line& line : lines_of(group)) add_rows(rows, line);
    return rows;
}

std::optional<int> option_group(std::int16_t MCU_Family) {
    switch (MCU_Family) {
        case 0:
        case 1:
        case 2:
            return MCU_Family;
        case 3:
        case 4:
            return 4;
        case 6:
            return 5;
        default:
            return std::nullopt;
    }
}

std::int16_t family_of_group(int group) {
    constexpr int group_of_family_6 = 5;
    return static_cast<std::int16_t>(group == group_of_family_6 ? 6 : group);
}

Option_Row* find_row(std::vector<Option_Row>& rows, std::string_view key) {
    const auto found = std::ranges::find(rows, key, &Option_Row::Option_Key);
    return found == rows.end() ? nullptr : &*found;
}

const Option_Row* find_row(const std::vector<Option_Row>& rows, std::string_view key) {
    const auto found = std::ranges::find(rows, key, &Option_Row::Option_Key);
    return found == rows.end() ? nullptr : &*found;
}

}  // namespace vkm
