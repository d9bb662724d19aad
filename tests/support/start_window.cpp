// The program of a bench as people have it: wired and started like the window.
#include "catalogue/model_selection.h"
#include "support/virtual_bench.h"
#include "window/main_window.h"
#include "window/wiring.h"

namespace vkm::test {

void start_program(frmMain& frm) {
    wire(frm);
    Load(frm);
}

bool choose_model(frmMain& frm, const std::string& name) {
    frm.screen.txtDevice.Text = name;
    return !Apply_Model(frm).empty();
}

}  // namespace vkm::test
