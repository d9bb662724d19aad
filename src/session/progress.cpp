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

// One bar serves both kinds of progress; its place and width are the edge's.
void Show_Progress(frmMain& frm, Progress mode) {
    frm.screen.ProgressBar1.Visible = mode != Progress::hide;
    if (mode == Progress::hide) frm.screen.labKbyte.Caption.clear();
}

}  // namespace vkm
