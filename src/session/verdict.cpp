#include "session/verdict.h"

#include "session/session_texts.h"

namespace vkm {
namespace {

void show(frmMain& frm, Job_Result result, std::string caption) {
    frm.session.Result = result;
    frm.screen.labVerdict.Caption = std::move(caption);
    frm.screen.labVerdict.Value = static_cast<std::int32_t>(result);
}

void show(frmMain& frm, Job_Result result, const MessageText& text) {
    show(frm, result, std::string(chosen_text(frm.screen, text)));
}

}  // namespace

void job_runs(frmMain& frm) {
    frm.session.Failed_Step.clear();
    show(frm, Job_Result::running, session_text::verdict_running);
}

void job_done(frmMain& frm) {
    show(frm, Job_Result::done, session_text::verdict_done);
}

void job_failed(frmMain& frm, const MessageText& step) {
    if (frm.session.Result != Job_Result::running) return;
    // Only the operator (or the closing window) has asked for a stop so far: the
    // driver's own call comes after this one.
    if (frm.link.stop_requested) {
        show(frm, Job_Result::stopped, session_text::verdict_stopped);
        return;
    }
    frm.session.Failed_Step = chosen_text(frm.screen, step);
    show(frm, Job_Result::failed,
         std::string(chosen_text(frm.screen, session_text::verdict_failed)) +
             frm.session.Failed_Step);
}

}  // namespace vkm
