#include "window/wiring.h"

#include "assistant/serial_assistant.h"
#include "board/board_download.h"
#include "catalogue/model_selection.h"
#include "image/buffer_view.h"
#include "image/hex_editor.h"
#include "image/image_files.h"
#include "increase/auto_increase.h"
#include "increase/number_sequence.h"
#include "link/isp_link.h"
#include "monitor/monitor_lists.h"
#include "monitor/target_monitor.h"
#include "options/option_panel.h"
#include "project/project_files.h"
#include "session/connect_advice.h"
#include "session/demo_download.h"
#include "session/download_session.h"
#include "session/read_chip_lock.h"
#include "session/session_lease.h"
#include "session/soft_ice.h"
#include "session/user_code.h"
#include "window/main_window.h"
#include "window/settings.h"

namespace vkm {
namespace {

constexpr int escape_key = 27;
constexpr std::string_view the_window{};

using Event = const ScreenEvent&;

// An operation that needs nothing of the event.
template <void (*operation)(frmMain&)>
void run(frmMain& frm, Event) {
    operation(frm);
}

// An operation that is told which element of the array it was.
template <void (*operation)(frmMain&, int)>
void run_element(frmMain& frm, Event event) {
    operation(frm, event.Source->Index);
}

// An operation on a choice that the settings keep.
template <void (*operation)(frmMain&)>
void run_and_save(frmMain& frm, Event) {
    operation(frm);
    Settings_Changed(frm);
}

// What would change the images under a running job, or stand in its way as a box,
// does nothing meanwhile, and no job begins while it is at work.
template <void (*operation)(frmMain&)>
void run_between_jobs(frmMain& frm, Event) {
    const Session_Lease lease(frm);
    if (lease.granted()) operation(frm);
}

// The same for a check box, which goes on telling what the running job does.
template <void (*operation)(frmMain&)>
void switch_between_jobs(frmMain& frm, Event event) {
    const Session_Lease lease(frm);
    if (lease.granted()) return operation(frm);
    event.Source->Value = event.Source->Value == 0 ? 1 : 0;
}

// What shows a box: no job begins behind it.
template <void (*operation)(frmMain&)>
void run_and_hold_jobs(frmMain& frm, Event) {
    const Session_Lease lease(frm);
    operation(frm);
}

void Drop_File(frmMain& frm, Event event) {
    const Session_Lease lease(frm);
    if (lease.granted()) Open_Dropped_File(frm, event.Text);
}

// The views of the two images.
template <int element>
void Buffer_Key_Down(frmMain& frm, Event event) {
    Buffer_Key_Down(frm, element, event.Key);
}

// The image of a running job can't be edited, and no job begins behind the question.
template <int element>
void Buffer_Key_Press(frmMain& frm, Event event) {
    const Session_Lease lease(frm);
    if (lease.granted()) Buffer_Key_Press(frm, element, event.Text);
}

template <int element>
void Buffer_Resized(frmMain& frm, Event) {
    Fit_Page(frm, element == 0 ? frm.images.AP_Buffer : frm.images.Data_Buffer);
}

void Snap_Clicked(frmMain&, Event event) {
    Snap_Cursor(*event.Source);
}

void Key_To_Target(frmMain& frm, Event event) {
    texReceive_KeyPress(frm, event.Text);
}

void Tree_Key(frmMain& frm, Event event) {
    if (event.Key == escape_key) Close_Device_Tree(frm);
}

using enum EventKind;

// clang-format off
constexpr Wire wire_table[] = {
    // Step 1: model
    {"Command3",                 Click,   run_between_jobs<Open_Device_Tree>},
    {"TreeViewDevice",           Click,   run_between_jobs<Device_Node_Click>},
    {"TreeViewDevice",           KeyDown, Tree_Key},
    // Step 2: files
    {"comLoadFile",              Click,   run_between_jobs<comLoadFile>},
    {"comLoadDataFile",          Click,   run_between_jobs<comLoadDataFile>},
    {the_window,                 Drop,    Drop_File},
    // Step 5: download
    {"comDownload",              Click,   run_element<comDownload>},
    {"comStop_Download",         Click,   run<comStop_Download>},
    {"Command2",                 Click,   run<Command2>},
    {"comClear_OK_Count",        Click,   run<comClear_OK_Count>},
    // Window
    {"comMastWindow",            Click,   run<comMastWindow>},
    {"TabStrip1",                Click,   run<TabStrip1_Click>},
    {"TabStrip2",                Click,   run<TabStrip2_Click>},
    {"vscFile",                  Change,  run_element<vscFile_Change>},
    // Hex view
    {"txtBuffer2",               KeyDown,  Buffer_Key_Down<0>},
    {"txtBuffer2",               KeyPress, Buffer_Key_Press<0>},
    {"txtBuffer2",               MouseUp,  Snap_Clicked},
    {"txtBuffer2",               Resize,   Buffer_Resized<0>},
    {"tetDataFlash2",            KeyDown,  Buffer_Key_Down<1>},
    {"tetDataFlash2",            KeyPress, Buffer_Key_Press<1>},
    {"tetDataFlash2",            MouseUp,  Snap_Clicked},
    {"tetDataFlash2",            Resize,   Buffer_Resized<1>},
    // Numbering
    {"cheAuto_Increase",         Click,   switch_between_jobs<cheAuto_Increase>},
    {"texAuto_Increase",         Change,  run<Program_Number_Touched>},
    {"optAuto_Increase",         Click,   run<Program_Number_Touched>},
    {"cheData_Auto_Increase",    Click,   switch_between_jobs<cheData_Auto_Increase>},
    {"texData_Auto_Increase",    Change,  run<Data_Number_Touched>},
    {"optData_Auto_Increase",    Click,   run<Data_Number_Touched>},
    // Projects
    {"comOpenBatchFile",         Click,   run_between_jobs<comOpenBatchFile>},
    {"comSaveBatchFile",         Click,   run_between_jobs<comSaveBatchFile>},
    {"Command1",                 Click,   run_between_jobs<Command1>},
    // User code
    {"comSendUserCode",          Click,   run<comSendUserCode>},
    // Serial terminal
    {"comOpenCOM",               Click,    run<comOpenCOM>},
    {"com_Debug_Baud",           Click,    run<com_Debug_Baud>},
    {"imgOpen",                  Click,    run<Close_Assistant_Port>},
    {"imgNotOpen",               Click,    run<Open_Assistant_Port>},
    {"comDebugClear",            Click,    run_element<comDebugClear>},
    {"comClearCount",            Click,    run<comClearCount>},
    {"comDebugHelp",             Click,    run_element<comDebugHelp>},
    {"texReceive",               KeyPress, Key_To_Target},
    {"comDebugSend",             Click,    run<comDebugSend>},
    {"comClearSend",             Click,    run<comClearSend>},
    {"comAutoSend",              Click,    run<comAutoSend>},
    {"comSpreadSendCom",         Click,    run_element<comSpreadSendCom>},
    {"comSpreadAutoSend",        Click,    run<comSpreadAutoSend>},
    // Target monitor
    {"comDebugContinue",         Click,    run<comDebugContinue>},
    // Download board
    {"comTJXZ",                  Click,   run<comTJXZ>},
    {"com_TJXZ_help",            Click,   run_between_jobs<com_TJXZ_help>},
    {"Read24C512",               Click,   run<Read24C512>},
    // ISP program of the user's
    {"com_Demo_DownLoad",        Click,   run<com_Demo_DownLoad>},
    {"com_Demo_Re_DownLoad",     Click,   run<com_Demo_Re_DownLoad>},
    {"com_Demo_Stop",            Click,   run<com_Demo_Stop>},
    // Debug monitor
    {"comDownSoft_ICE",          Click,   run<comDownSoft_ICE>},
    // Save File
    {"txt_Start_Address",        Change,  run<Enable_Save_File>},
    {"txt_length",               Change,  run<Enable_Save_File>},
    {"comStoreFile",             Click,   run_between_jobs<comStoreFile>},
    // Options
    {"Option9",                  Click,   run<Follow_Watchdog_Choice>},
    {"Option10",                 Click,   run<Follow_Watchdog_Choice>},
    {"opt_485_pin",              Click,   run_and_save<Follow_485_Choice>},
    {"opt_External_WDT",         Click,   run_and_save<Follow_External_WDT_Choice>},
    {"comb_External_WDT",        Click,   run_and_hold_jobs<Check_Pin_Clash>},
    {"comReadChipLock",          Click,   run<comReadChipLock>},
    {"comLockOptions",           Click,   run<comLockOptions>},
    {"comUnlockOptions",         Click,   run<comUnlockOptions>},
    // What the settings keep
    {"combCommPort",             Click,   run<Settings_Changed>},
    {"Option0",                  Click,   run<Settings_Changed>},
    {"optFillbyte",              Click,   run<Settings_Changed>},
    {"optBeepYes",               Click,   run<Settings_Changed>},
    {"optBeepNo",                Click,   run<Settings_Changed>},
    {"comDalay_ReDownLoad",      Click,   run<Settings_Changed>},
    {"txtWrite_OK_Count",        Change,  run<Settings_Changed>},
    {"comb_485_pin",             Click,   run<Settings_Changed>},
    {"opt_485_logic",            Click,   run<Settings_Changed>},
    {"comWDT_Prescalar",         Click,   run<Settings_Changed>},
    {the_window,                 Change,  run<Window_Moved>},
};
// clang-format on

// The tree lies over the box until a choice is made: a click anywhere else (the
// grounds of the steps included) closes it, as losing the focus does.
bool closes_tree(const frmMain& frm, Event event) {
    return frm.screen.TreeViewDevice.Visible && event.Kind == Click && event.Source &&
           event.Source != &frm.screen.TreeViewDevice;
}

void wire_timers(Timers& timers) {
    timers.Timer1.Tick = Timer1_Tick;
    timers.Timer2.Tick = Timer2_Tick;
    timers.Timer3.Tick = Timer3_Tick;
    timers.Timer4.Tick = Timer4_Tick;
    timers.Timer9.Tick = Timer9_Tick;
    timers.Timer11.Tick = Timer11_Tick;
    timers.Timer12.Tick = Timer12_Tick;
    timers.TimerUnload.Tick = TimerUnload_Tick;
    timers.TimerDebug.Tick = TimerDebug_Tick;
    timers.TimerDebugDisplay.Tick = Show_Received;
    timers.TimerDebugAutoSend.Tick = TimerDebugAutoSend_Tick;
    timers.TimerSpreadAutoSend.Tick = TimerSpreadAutoSend_Tick;
}

}  // namespace

std::span<const Wire> wires() {
    return wire_table;
}

void wire(frmMain& frm) {
    wire_timers(frm.timers);
    frm.link.Receive_Event = on_port_event;
    frm.link.Check_Model = Check_Model;
    frm.link.Assistant_Bytes = Take_Received;
    frm.link.Assistant_Port_Lost = Assistant_Port_Lost;
    frm.session.Close_Assistant_Port = Close_Assistant_Port;
    frm.session.Open_Assistant_Port = Open_Assistant_Port;
    frm.catalogue.Rebuild_Register_List = Rebuild_Register_List;
    frm.images.Show_Chosen_Page = TabStrip2_Click;
    frm.images.Load_Project = Open_Project;
}

void handle_event(frmMain& frm, const ScreenEvent& event) {
    if (closes_tree(frm, event)) Close_Device_Tree(frm);
    const std::string_view name = event.Source ? event.Source->Name : the_window;
    for (const Wire& wire : wire_table)
        if (wire.kind == event.Kind && wire.control == name) return wire.run(frm, event);
}

}  // namespace vkm
