#include "window/settings.h"

#include <algorithm>

#include "catalogue/model_selection.h"
#include "text/numbers.h"
#include "text/trimming.h"
#include "waiting/waiting.h"

namespace vkm {
namespace {

constexpr std::string_view section = "Settings";
constexpr std::string_view default_model = "VKM47H51RB";
constexpr std::string_view device_key = "DeviceProducts";
constexpr std::string_view speed_key = "安全锁";
constexpr std::string_view family_key = "Family";  // how keys of family nodes begin
constexpr std::int32_t save_delay_ms = 500;

constexpr std::int32_t narrowest_panel = 300;  // twips
constexpr std::int32_t beside_panel = 100;     // twips that the window keeps beside it

using List = Control Screen::*;
using Pair = std::array<Control, 2> Screen::*;

void choose(Control& first, Control& second, bool choose_first) {
    first.Value = choose_first ? 1 : 0;
    second.Value = choose_first ? 0 : 1;
}

bool is_true(std::string_view text) {
    return leading_number(text) != 0 || upper_case(trimmed(text)) == "TRUE";
}

// ---- a list's index ------------------------------------------------------

// An index that the list doesn't have counts as absent.
template <List list>
void load_index(frmMain& frm, std::string_view text, std::string_view otherwise) {
    Control& control = frm.screen.*list;
    const auto in_list = [&](std::int32_t index) {
        return index >= 0 && static_cast<std::size_t>(index) < control.List.size();
    };
    const std::int32_t index = leading_integer(text);
    control.ListIndex = in_list(index) ? index : leading_integer(otherwise);
}

template <List list>
std::string index_text(frmMain& frm) {
    return std::to_string((frm.screen.*list).ListIndex);
}

// ---- a pair of options: 1 when the first is on, 0 when the second is --------

template <Pair pair>
void load_pair(frmMain& frm, std::string_view text, std::string_view) {
    choose((frm.screen.*pair)[0], (frm.screen.*pair)[1], is_true(text));
}

template <Pair pair>
std::string pair_text(frmMain& frm) {
    return (frm.screen.*pair)[0].Value != 0 ? "1" : "0";
}

// ---- settings of their own kind ---------------------------------------------

bool is_model(const Entry* node) {
    return node && !node->Key.empty() && !node->Key.starts_with(family_key);
}

// A family's text is no model, so it counts as unknown.
void load_device(frmMain& frm, std::string_view text, std::string_view otherwise) {
    Control& tree = frm.screen.TreeViewDevice;
    if (!choose_text(tree, text) || !is_model(chosen_entry(tree))) choose_text(tree, otherwise);
}

std::string device_text(frmMain& frm) {
    Control& tree = frm.screen.TreeViewDevice;
    if (!is_model(chosen_entry(tree))) choose_key(tree, default_model);
    const Entry* node = chosen_entry(tree);
    return node ? node->Key : std::string(default_model);
}

// Two questions are asked of one number: above 3 says double speed, and the
// number modulo 4 above 1 says normal speed, which wins. 4 and 2 are the numbers
// that answer one of them with yes and the other with no, so writing these
// brings the same choice back.
constexpr std::string_view double_speed_number = "4";
constexpr std::string_view normal_speed_number = "2";

void load_speed(frmMain& frm) {
    if (trimmed(Get_Setting(frm, device_key, default_model)) != frm.screen.txtDevice.Text) return;
    auto& speed = frm.screen.Option0;
    const std::int32_t number = leading_integer(Get_Setting(frm, speed_key, normal_speed_number));
    if (number > 3) choose(speed[0], speed[1], true);
    if (number % 4 > 1) choose(speed[0], speed[1], false);
}

// The choice of a model that isn't the one that is stored beside it counts for
// nothing: another family's first option is no speed.
std::string speed_text(frmMain& frm) {
    if (device_text(frm) != frm.catalogue.MCU_Info.MCU_Name)
        return std::string(normal_speed_number);
    const auto& speed = frm.screen.Option0;
    if (speed[0].Value != 0) return std::string(double_speed_number);
    return speed[1].Value != 0 ? std::string(normal_speed_number) : "0";
}

void load_beep(frmMain& frm, std::string_view text, std::string_view) {
    choose(frm.screen.optBeepYes, frm.screen.optBeepNo, text == "True");
}

std::string beep_text(frmMain& frm) {
    return frm.screen.optBeepYes.Value != 0 ? "True" : "False";
}

void load_count(frmMain& frm, std::string_view text, std::string_view) {
    const std::string_view count = trimmed(text);
    frm.screen.txtWrite_OK_Count.Text = leading_number(count) != 0 ? std::string(count) : "0";
}

std::string count_text(frmMain& frm) {
    return std::string(trimmed(frm.screen.txtWrite_OK_Count.Text));
}

// The open dialog keeps it; it is written again so that the store holds all keys.
std::string file_path_text(frmMain& frm) {
    return Get_Setting(frm, "FilePath", "");
}

std::string fillbyte_text(frmMain&) {
    return "00";
}

// ---- the settings --------------------------------------------------------------

struct Setting {
    std::string_view key;
    std::string_view otherwise;  // when the key is absent
    void (*load)(frmMain&, std::string_view text, std::string_view otherwise);  // null: not read
    std::string (*text)(frmMain&);
};

// clang-format off
constexpr Setting settings[] = {
    {device_key,                 default_model, load_device, device_text},
    // Read back behind the panel's layout.
    {speed_key,                  "",     nullptr, speed_text},
    {"FilePath",                 "",     nullptr, file_path_text},
    {"COM_port",                 "0",    load_index<&Screen::combCommPort>, index_text<&Screen::combCommPort>},
    {"BeepYesNo",                "True", load_beep, beep_text},
    {"Dalay_ReDownLoad",         "4",    load_index<&Screen::comDalay_ReDownLoad>, index_text<&Screen::comDalay_ReDownLoad>},
    {"Write_OK_Count",           "0",    load_count, count_text},
    {"pin_for_485",              "1",    load_pair<&Screen::opt_485_pin>, pair_text<&Screen::opt_485_pin>},
    {"pin_address_for_485",      "0",    load_index<&Screen::comb_485_pin>, index_text<&Screen::comb_485_pin>},
    {"logic_of_control_485",     "1",    load_pair<&Screen::opt_485_logic>, pair_text<&Screen::opt_485_logic>},
    {"pin_External_WDT",         "1",    load_pair<&Screen::opt_External_WDT>, pair_text<&Screen::opt_External_WDT>},
    {"pin_address_External_WDT", "1",    load_index<&Screen::comb_External_WDT>, index_text<&Screen::comb_External_WDT>},
    // Written only; nothing reads them back.
    {"WDT_Prescalar",            "",     nullptr, index_text<&Screen::comWDT_Prescalar>},
    {"fillbyte",                 "",     nullptr, fillbyte_text},
};
// clang-format on

// The window's own keys. Their values are used as they stand.
struct WindowSetting {
    std::string_view key;
    std::string_view otherwise;
    std::int32_t WindowRecord::*value;
};

constexpr WindowSetting window_settings[] = {
    {"MainLeft", "0", &WindowRecord::Left},
    {"MainTop", "0", &WindowRecord::Top},
    {"MainWidth", "12000", &WindowRecord::Width},
    {"MainHeight", "9045", &WindowRecord::Height},
};
constexpr std::string_view panel_width_key = "Frame24_Width";
constexpr std::string_view default_panel_width = "2000";

}  // namespace

std::string Get_Setting(const frmMain& frm, std::string_view key, std::string_view otherwise) {
    return frm.platform.settings.get(section, key, otherwise);
}

void Save_Setting(frmMain& frm, std::string_view key, std::string_view value) {
    frm.platform.settings.save(section, key, value);
}

void Load_Settings(frmMain& frm) {
    for (const Setting& setting : settings)
        if (setting.load)
            setting.load(frm, Get_Setting(frm, setting.key, setting.otherwise), setting.otherwise);
    Device_Node_Click(frm);
    // The model has laid out its panel, with the choices that it begins with.
    load_speed(frm);
}

void Save_Settings(frmMain& frm) {
    for (const Setting& setting : settings) Save_Setting(frm, setting.key, setting.text(frm));
    frm.platform.settings.flush();
}

void Load_Window(frmMain& frm) {
    WindowRecord& window = frm.screen.window;
    for (const WindowSetting& setting : window_settings)
        window.*setting.value = leading_integer(Get_Setting(frm, setting.key, setting.otherwise));
    window.Frame24_Width = fitting_panel_width(
        window, leading_integer(Get_Setting(frm, panel_width_key, default_panel_width)));
}

void Save_Window(frmMain& frm) {
    // A window narrowed to its step column comes back whole.
    WindowRecord window = frm.screen.window;
    if (window.Shrunk) window.Width = frm.window.Full_Width;
    for (const WindowSetting& setting : window_settings)
        Save_Setting(frm, setting.key, std::to_string(window.*setting.value));
    frm.platform.settings.flush();
}

std::int32_t fitting_panel_width(const WindowRecord& window, std::int32_t width) {
    const std::int32_t widest =
        std::max(window.Width, narrowest_panel + beside_panel) - beside_panel;
    return std::clamp(width, narrowest_panel, widest);
}

void Save_Panel_Width(frmMain& frm) {
    Save_Setting(frm, panel_width_key, std::to_string(frm.screen.window.Frame24_Width));
    frm.platform.settings.flush();
}

void Settings_Changed(frmMain& frm) {
    if (!frm.timers.Timer3.Enabled) restart_timer(frm, frm.timers.Timer3, save_delay_ms);
}

}  // namespace vkm
