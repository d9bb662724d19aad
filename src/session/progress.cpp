#include "session/progress.h"

#include "session/download_session.h"
#include "text/numbers.h"

namespace vkm {

void set_up_bar(frmMain& frm, const Progress_Scale& scale) {
    Control& bar = frm.screen.ProgressBar1;
    bar.Min = scale.Min;
    bar.Max = scale.Max;
    bar.Value = scale.Min;
}

void show_programmed(frmMain& frm, const Progress_Scale& scale, Address_Range programmed) {
    frm.screen.ProgressBar1.Value = scale.value_at(programmed.last + 1);
    frm.screen.labKbyte.Caption = kilobytes(programmed.last - programmed.first + 1) + "K";
}

// The place and width of a bar are the edge's.
void Show_Progress(frmMain& frm, Progress mode) {
    Screen& screen = frm.screen;
    switch (mode) {
        case Progress::down_load:
            screen.ProgressBar1.Visible = true;
            break;
        case Progress::fill_grid:
            screen.ProgressBar2.Visible = true;
            break;
        case Progress::hide:
            screen.labKbyte.Caption.clear();
            screen.ProgressBar1.Visible = false;
            screen.ProgressBar2.Visible = false;
            break;
    }
}

}  // namespace vkm
