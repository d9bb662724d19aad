#include <string_view>

#include "catalogue/model_selection.h"
#include "image/image_files.h"
#include "options/option_panel.h"
#include "session/download_session.h"

namespace vkm {
namespace {

// Enabled in the states 0 (idle), 1 and 3 (busy), 2 (idle with options locked).
struct Enabling {
    bool idle;
    bool busy;
    bool locked;
};
constexpr Enabling free_only = {true, false, false};
constexpr Enabling no_session = {true, false, true};
constexpr Enabling session_only = {false, true, false};

struct Row {
    std::string_view control;  // an array stands for all its elements
    Enabling enabled;
};

constexpr Row table[] = {
    {"txtDevice", free_only},
    {"txtAP_FileStart", free_only},
    {"txtFileCheckSum", free_only},
    {"cheClearAP_Buffer", free_only},
    {"cheClearDataBuffer", free_only},
    {"comLoadFile", free_only},
    {"comLoadDataFile", free_only},
    {"txtDataFileStart", free_only},
    {"Command3", free_only},
    {"comTJXZ", free_only},
    {"comDebugContinue", free_only},
    {"comOpenCOM", free_only},
    {"comDebugClear", free_only},
    {"comLockOptions", free_only},
    {"comMastWindow", free_only},
    {"comDebugSend", free_only},
    {"comAutoSend", free_only},
    {"comSendUserCode", free_only},
    {"comStoreFile", free_only},
    {"comDownSoft_ICE", free_only},
    {"comDownload", no_session},
    {"comDebugHelp", no_session},
    {"comOpenBatchFile", no_session},
    {"comSaveBatchFile", no_session},
    {"comUnlockOptions", no_session},
    {"com_Demo_DownLoad", no_session},
    {"com_Demo_Re_DownLoad", no_session},
    {"comReadChipLock", no_session},
    {"comStop_Download", session_only},
    {"com_Demo_Stop", session_only},
};

bool enabled_in(const Enabling& enabled, std::int16_t state) {
    switch (state) {
        case ui_idle:
            return enabled.idle;
        case ui_locked:
            return enabled.locked;
        default:
            return enabled.busy;
    }
}

// An idle tool is not all that these need.
void keep_own_conditions(frmMain& frm) {
    Enable_Save_File(frm);
    Screen& screen = frm.screen;
    if (!frm.catalogue.SoftICE_Enable) screen.comDownSoft_ICE.Enabled = false;
    if (!has_data_memory(frm.catalogue.MCU_Info)) Data_Memory_Controls(frm, false);
}

}  // namespace

void Set_UI_State(frmMain& frm, std::int16_t state) {
    frm.session.UI_State = state;
    for (const Row& row : table)
        for_each_element(frm.screen, row.control, [&](Control& control) {
            control.Enabled = enabled_in(row.enabled, state);
        });
    Apply_Option_Enable(frm, state);
    keep_own_conditions(frm);
}

void Set_UI_Busy(frmMain& frm) {
    if (frm.session.UI_State == ui_idle) Set_UI_State(frm, ui_busy);
    if (frm.session.UI_State == ui_locked) Set_UI_State(frm, ui_busy_locked);
}

void comLockOptions(frmMain& frm) {
    Set_UI_State(frm, ui_locked);
}

void comUnlockOptions(frmMain& frm) {
    Set_UI_State(frm, ui_idle);
}

}  // namespace vkm
