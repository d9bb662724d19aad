#include "catalogue/tab_strips.h"

#include <cstdint>
#include <string>

namespace vkm {
namespace {

enum class Families { all, not_0 };

struct Tab {
    std::string_view key;
    std::string_view caption;
    Control Screen::*page;
    Families families;
};

// clang-format off
constexpr Tab tools[] = {
    // key           caption         page                       families that have it
    {"options",      "选项",         &Screen::Frame12,          Families::all},
    {"user_code",    "自定义下载",   &Screen::Frame8,           Families::all},
    {"TJXZ",         "脱机下载",     &Screen::Frame18,          Families::not_0},
    {"",             "检查MCU选项",  &Screen::Frame4,           Families::all},
    {"",             "自动增量",     &Screen::fraAuto_Increase, Families::all},
    {"ISP DEMO",     "ISP DEMO",     &Screen::Frame11,          Families::not_0},
    {"store_buffer", "存储文件",     &Screen::Frame9,           Families::all},
    {"",             "硬件帮助",     &Screen::fraAboutHardWare, Families::all},
    {"softICE",      "仿真芯片",     &Screen::Frame10,          Families::all},
};

constexpr Tab views[] = {
    // key             caption         page                         families that have it
    {"tab_file",       "文件缓冲区",   &Screen::Frame7,             Families::all},
    {"EEPROM_File",    "数据文件",     &Screen::frmDataFlash,       Families::all},
    {"Debug1",         "Debug_SFR",    &Screen::Frame21,            Families::not_0},
    {"Debug2",         "Debug_xdata",  &Screen::Frame22,            Families::not_0},
    {"Debug_COM",      "串口调试助手", &Screen::fraDebug,           Families::all},
    {"Batch_quantity", "工程文件",     &Screen::fra_Batch_quantity, Families::all},
};
// clang-format on

void fill(Control& strip, std::span<const Tab> tabs) {
    strip.List.clear();
    for (const Tab& tab : tabs)
        strip.List.push_back(
            {.Text = std::string(tab.caption), .Key = std::string(tab.key), .Parent = {}});
    strip.ListIndex = 0;
}

void mark_absent(Control& strip, std::span<const Tab> tabs) {
    for (std::size_t i = 0; i < tabs.size() && i < strip.List.size(); ++i)
        if (tabs[i].families == Families::not_0) strip.List[i].Text = absent_caption;
}

void restore_captions(Control& strip, std::span<const Tab> tabs) {
    for (std::size_t i = 0; i < tabs.size() && i < strip.List.size(); ++i)
        strip.List[i].Text = tabs[i].caption;
}

bool can_be_shown(const Control& strip, std::size_t tab) {
    return tab < strip.List.size() && strip.List[tab].Text != absent_caption;
}

// The tab to fall back to from an absent one; the number of tabs when there is none.
std::size_t tab_to_return_to(const Screen& screen, const Control& strip,
                             std::span<const Tab> tabs) {
    for (std::size_t i = 0; i < tabs.size(); ++i)
        if ((screen.*tabs[i].page).Visible && can_be_shown(strip, i)) return i;
    for (std::size_t i = 0; i < tabs.size(); ++i)
        if (can_be_shown(strip, i)) return i;
    return tabs.size();
}

void show_chosen_page(Screen& screen, Control& strip, std::span<const Tab> tabs) {
    std::size_t chosen =
        strip.ListIndex < 0 ? tabs.size() : static_cast<std::size_t>(strip.ListIndex);
    if (!can_be_shown(strip, chosen)) chosen = tab_to_return_to(screen, strip, tabs);
    if (chosen >= tabs.size()) return;
    strip.ListIndex = static_cast<std::int32_t>(chosen);
    for (std::size_t i = 0; i < tabs.size(); ++i) (screen.*tabs[i].page).Visible = i == chosen;
}

}  // namespace

void Fill_Tab_Strips(frmMain& frm) {
    fill(frm.screen.TabStrip1, tools);
    fill(frm.screen.TabStrip2, views);
    TabStrip1_Click(frm);
    TabStrip2_Click(frm);
}

void Mark_Absent_Tabs(frmMain& frm) {
    mark_absent(frm.screen.TabStrip1, tools);
    mark_absent(frm.screen.TabStrip2, views);
}

void Restore_Tab_Captions(frmMain& frm) {
    restore_captions(frm.screen.TabStrip1, tools);
    restore_captions(frm.screen.TabStrip2, views);
}

void TabStrip1_Click(frmMain& frm) {
    show_chosen_page(frm.screen, frm.screen.TabStrip1, tools);
}

void TabStrip2_Click(frmMain& frm) {
    show_chosen_page(frm.screen, frm.screen.TabStrip2, views);
}

}  // namespace vkm
