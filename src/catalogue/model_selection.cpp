#include "catalogue/model_selection.h"

#include "catalogue/family_tree.h"
#include "catalogue/mcu_catalogue.h"
#include "image/image_files.h"
#include "options/option_display.h"
#include "options/option_panel.h"
#include "plug.h"
#include "text/trimming.h"
#include "waiting/waiting.h"

namespace vkm {
namespace {

constexpr std::int32_t settle_ms = 500;  // Timer3 gathers changes that come close together
constexpr std::int16_t block_size_before_look_up = 128;

}  // namespace

void Build_Device_Tree(frmMain& frm) {
    Control& tree = frm.screen.TreeViewDevice;
    tree.Visible = false;
    tree.List = device_tree();
    tree.ListIndex = -1;
}

void Open_Device_Tree(frmMain& frm) {
    frm.screen.txtDevice.Enabled = false;
    frm.screen.TreeViewDevice.Visible = true;
    frm.screen.Focus_Request = frm.screen.TreeViewDevice.Name;
}

void Close_Device_Tree(frmMain& frm) {
    // A click on the ground of a frame also comes here while a job runs or a
    // project is locked, and must not free the box then.
    frm.screen.txtDevice.Enabled = frm.session.UI_State == ui_idle;
    frm.screen.TreeViewDevice.Visible = false;
}

void Device_Node_Click(frmMain& frm) {
    Screen& screen = frm.screen;
    const Entry* node = chosen_entry(screen.TreeViewDevice);
    if (!node || is_family_key(node->Key) || frm.session.UI_State != ui_idle) return;
    screen.txtDevice.Text = node->Key;
    Reset_Buffer(frm, 0, frm.images.AP_Buffer);
    Reset_Buffer(frm, 0, frm.images.Data_Buffer);
    if (screen.txtDevice.Text.empty()) return;
    Close_Device_Tree(frm);
    if (!Apply_Model(frm).empty()) Arrange_Options(frm);
    screen.Focus_Request = screen.txtDevice.Name;
}

std::string Apply_Model(frmMain& frm) {
    CatalogueState& catalogue = frm.catalogue;
    MCU_Record& model = catalogue.MCU_Info;
    catalogue.Block_Size = block_size_before_look_up;
    catalogue.SoftICE_Enable = true;
    model.Split_Flag = false;

    std::string name = Find_Model(frm, trimmed(frm.screen.txtDevice.Text), model);
    if (name.empty()) return name;

    frm.screen.comDownSoft_ICE.Enabled = catalogue.SoftICE_Enable;
    run_plug(frm, catalogue.Rebuild_Register_List);  // empty for a family without a table
    Data_Memory_Controls(frm, false);
    if (!has_data_memory(model)) {
        Mark_Absent_Tabs(frm);
        TabStrip1_Click(frm);
    } else {
        Restore_Tab_Captions(frm);
        Data_Memory_Controls(frm, true);
    }
    Clear_Read_Lines(frm);
    restart_timer(frm, frm.timers.Timer3, settle_ms);
    Arrange_Options(frm);
    return name;
}

bool has_data_memory(const MCU_Record& model) {
    return model.MCU_Family >= 1 && model.MCU_Family <= 6;
}

void Data_Memory_Controls(frmMain& frm, bool enabled) {
    Screen& screen = frm.screen;
    for (Control* control :
         {&screen.comLoadDataFile, &screen.txtDataFileStart, &screen.txtDataFileCheckSum,
          &screen.cheClearDataBuffer, &screen.cheData_Auto_Increase})
        control->Enabled = enabled;
    const bool numbering = enabled && screen.cheData_Auto_Increase.Value != 0;
    for (Control& field : screen.texData_Auto_Increase) field.Enabled = numbering;
    for (Control& option : screen.optData_Auto_Increase) option.Enabled = numbering;
}

}  // namespace vkm
