#include "window/panel_settings.h"

#include <span>
#include <string>

#include "text/numbers.h"
#include "window/settings.h"

namespace vkm {
namespace {

constexpr std::string_view default_cycle = "1000";
constexpr std::string_view default_send_text = "0123456789 ABCDEF 串口调试助手";

// A list and the key of its index. The index that a list begins with is its default.
struct ListSetting {
    std::string_view key;
    Control Screen::*list;
};

constexpr ListSetting assistant_lists[] = {
    {"DebugCOM", &Screen::com_Debug_COM},           {"DebugBaud", &Screen::com_Debug_Baud},
    {"DebugDataBits", &Screen::com_Debug_DataBits}, {"DebugParity", &Screen::com_Debug_ParityCheck},
    {"DebugStopBits", &Screen::com_Debug_StopBits},
};

constexpr ListSetting user_code_lists[] = {
    {"UserCodeBaud", &Screen::cobUserCodeBaud},
    {"UserCodeParity", &Screen::cobUserCodeParity},
    {"UserCodeDataBits", &Screen::cobUserCodeDataBits},
    {"UserCodeStopBits", &Screen::cobUserCodeStopBits},
};

constexpr ListSetting demo_lists[] = {
    {"ISP_DEMO_DownLoad_Baud", &Screen::cob_DEMO_DownLoad_Baud},
    {"ISP_DEMO_DownLoad_Parity", &Screen::cob_DEMO_DownLoad_Parity},
    {"ISP_DEMO_DownLoad_DataBits", &Screen::cob_DEMO_DownLoad_DataBits},
    {"ISP_DEMO_DownLoad_StopBits", &Screen::cob_DEMO_DownLoad_StopBits},
    {"ISP_DEMO_UserCodeBaud", &Screen::cob_DEMO_UserCode_Baud},
    {"ISP_DEMO_UserCodeParity", &Screen::cob_DEMO_UserCode_Parity},
    {"ISP_DEMO_UserCodeDataBits", &Screen::cob_DEMO_UserCode_DataBits},
    {"ISP_DEMO_UserCodeStopBits", &Screen::cob_DEMO_UserCode_StopBits},
};

void load(frmMain& frm, std::span<const ListSetting> lists) {
    for (const ListSetting& setting : lists) {
        std::int32_t& index = (frm.screen.*setting.list).ListIndex;
        index = leading_integer(Get_Setting(frm, setting.key, std::to_string(index)));
    }
}

void save(frmMain& frm, std::span<const ListSetting> lists) {
    for (const ListSetting& setting : lists)
        Save_Setting(frm, setting.key, std::to_string((frm.screen.*setting.list).ListIndex));
}

void load_text(frmMain& frm, std::string_view key, std::string_view otherwise, Control& text) {
    text.Text = Get_Setting(frm, key, otherwise);
}

std::string numbered(std::string_view key, const Control& element) {
    return std::string(key) + std::to_string(element.Index);
}

std::string check_text(const Control& box) {
    return box.Value != 0 ? "1" : "0";
}

std::string option_text(const Control& option) {
    return option.Value != 0 ? "True" : "False";
}

}  // namespace

void Load_Assistant_Settings(frmMain& frm) {
    Screen& screen = frm.screen;
    load(frm, assistant_lists);
    load_text(frm, "texSendCycle", default_cycle, screen.texSendCycle);
    load_text(frm, "texSendText", default_send_text, screen.texSend);
    load_text(frm, "texSpreadSendCycle", default_cycle, screen.texSpreadSendCycle);
    for (Control& box : screen.cheSpreadHex) {
        const std::string stored = Get_Setting(frm, numbered("cheSpreadHex_", box), "0");
        box.Value = leading_integer(stored) != 0 ? 1 : 0;
    }
    for (Control& text : screen.texSpreadSend)
        load_text(frm, numbered("texSpreadSend_", text), "", text);
}

void Save_Assistant_Settings(frmMain& frm) {
    const Screen& screen = frm.screen;
    save(frm, assistant_lists);
    // These two are written only: a run begins with the port left closed behind a
    // download, and with text.
    Save_Setting(frm, "DebugAutoOpenPort", check_text(screen.che_AutoOpenPort));
    for (const Control& option : screen.optHexSend)
        Save_Setting(frm, numbered("optHexSend_", option), option_text(option));
    Save_Setting(frm, "texSendCycle", screen.texSendCycle.Text);
    Save_Setting(frm, "texSendText", screen.texSend.Text);
    Save_Setting(frm, "texSpreadSendCycle", screen.texSpreadSendCycle.Text);
    for (const Control& box : screen.cheSpreadHex)
        Save_Setting(frm, numbered("cheSpreadHex_", box), check_text(box));
    for (const Control& text : screen.texSpreadSend)
        Save_Setting(frm, numbered("texSpreadSend_", text), text.Text);
}

void Load_User_Code_Settings(frmMain& frm) {
    load(frm, user_code_lists);
}

void Save_User_Code_Settings(frmMain& frm) {
    save(frm, user_code_lists);
}

void Load_Demo_Settings(frmMain& frm) {
    load(frm, demo_lists);
}

void Save_Demo_Settings(frmMain& frm) {
    save(frm, demo_lists);
}

}  // namespace vkm
