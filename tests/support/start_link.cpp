// The program of a bench that exercises the link alone.
#include "catalogue/mcu_catalogue.h"
#include "link/isp_link.h"
#include "options/mcu_options.h"
#include "support/virtual_bench.h"

namespace vkm::test {

void start_program(frmMain& frm) {
    Fill_Options(frm);
    frm.link.Receive_Event = on_port_event;
    frm.timers.Timer1.Tick = Timer1_Tick;
    frm.timers.Timer2.Tick = Timer2_Tick;
}

bool choose_model(frmMain& frm, const std::string& name) {
    frm.screen.txtDevice.Text = name;
    if (Find_Model(frm, name, frm.catalogue.MCU_Info).empty()) return false;
    Show_ISP_Range(frm);
    return true;
}

}  // namespace vkm::test
