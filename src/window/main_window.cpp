#include "window/main_window.h"

#include <utility>

#include "assistant/serial_assistant.h"
#include "catalogue/mcu_catalogue.h"
#include "catalogue/model_selection.h"
#include "catalogue/tab_strips.h"
#include "image/image_files.h"
#include "increase/auto_increase.h"
#include "increase/number_sequence.h"
#include "link/isp_link.h"
#include "monitor/monitor_lists.h"
#include "options/mcu_options.h"
#include "session/demo_download.h"
#include "session/download_session.h"
#include "waiting/waiting.h"
#include "window/hardware_help.h"
#include "window/lists.h"
#include "window/panel_settings.h"
#include "window/settings.h"

namespace vkm {
namespace {

constexpr std::string_view shrink_caption = "收缩主窗体";
constexpr std::string_view restore_caption = "恢复主窗体";

// Time for the waits of a stopped session to end before the window closes.
constexpr std::int32_t unload_delay_ms = 500;

// How often the program file is looked at.
constexpr std::int32_t file_watch_ms = 1000;

// How far the arrows of a buffer's scroll bar go: a page of 16 lines of the
// program, a line of the data.
constexpr std::int32_t program_view_step = 16;
constexpr std::int32_t data_view_step = 1;

void Clear_Flags(frmMain& frm) {
    frm.session.Connected = false;
    frm.link.hunt_header = false;
    frm.screen.Show_English = false;
    frm.images.Current_File.clear();
}

void Start_Values(Screen& screen) {
    screen.comDownload[0].Enabled = true;
    screen.comSendUserCode.Enabled = true;
    screen.labKbyte.Caption.clear();
    screen.vscFile[0].SmallChange = program_view_step;
    screen.vscFile[1].SmallChange = data_view_step;
    screen.Text1.Text = "999";
    screen.texHardWareHelp.Text = hardware_help;
}

}  // namespace

void Load(frmMain& frm) {
    Allocate_Buffers(frm);
    Fill_Options(frm);
    Fill_Lists(frm.screen);
    Choose_First_Options(frm.screen);
    Fill_Tab_Strips(frm);
    Build_Device_Tree(frm);
    Load_Window(frm);
    TabStrip1_Click(frm);
    TabStrip2_Click(frm);
    Load_Auto_Increase_Settings(frm);
    Load_Settings(frm);
    Load_Assistant_Settings(frm);
    Load_User_Code_Settings(frm);
    Load_Demo_Settings(frm);
    Clear_Flags(frm);
    Start_Values(frm.screen);
    Read_Auto_Increase(frm);
    cheAuto_Increase(frm);
    Fill_Monitor_Lists(frm);
    Reset_Buffer(frm, 0, frm.images.AP_Buffer);
    Reset_Buffer(frm, 0, frm.images.Data_Buffer);
    Set_UI_State(frm, ui_idle);
    restart_timer(frm, frm.timers.Timer12, file_watch_ms);
}

bool QueryUnload(frmMain& frm) {
    Close_Assistant_Port(frm);
    comStop_Download(frm);
    com_Demo_Stop(frm);
    if (frm.link.close_pending) return true;
    frm.link.close_pending = true;
    restart_timer(frm, frm.timers.TimerUnload, unload_delay_ms);
    return false;
}

void Unload(frmMain& frm) {
    Close_Assistant_Port(frm);
    close_port(frm);
    Save_Assistant_Settings(frm);
    Save_User_Code_Settings(frm);
    Save_Demo_Settings(frm);
    // Not every change starts the saving by itself.
    Save_Settings(frm);
    Save_Window(frm);
}

void Window_Moved(frmMain& frm) {
    frm.window.Moved = true;
    Settings_Changed(frm);
}

void Timer3_Tick(frmMain& frm) {
    stop_timer(frm.timers.Timer3);
    Save_Settings(frm);
    if (std::exchange(frm.window.Moved, false)) Save_Window(frm);
    Show_ISP_Range(frm);
}

void Timer4_Tick(frmMain& frm) {
    stop_timer(frm.timers.Timer4);
    frm.screen.window.Close_Requested = true;
}

void TimerUnload_Tick(frmMain& frm) {
    stop_timer(frm.timers.TimerUnload);
    frm.screen.window.Close_Requested = true;
}

void comMastWindow(frmMain& frm) {
    WindowRecord& window = frm.screen.window;
    window.Shrunk = !window.Shrunk;
    frm.screen.comMastWindow.Caption = window.Shrunk ? restore_caption : shrink_caption;
    if (window.Shrunk)
        frm.window.Full_Width = window.Width;
    else
        window.Width = frm.window.Full_Width;
}

void ImgSplitter_Pressed(frmMain& frm) {
    frm.screen.picSplitter.Visible = true;
}

void ImgSplitter_Released(frmMain& frm, std::int32_t width) {
    frm.screen.picSplitter.Visible = false;
    WindowRecord& window = frm.screen.window;
    window.Frame24_Width = fitting_panel_width(window, width);
    Save_Panel_Width(frm);
}

}  // namespace vkm
