// The verdict: how the last job ended, as a word with a sign beside the counter.
// It stands until the next job starts. Value of labVerdict holds the Job_Result
// for the edge's colour.
#pragma once

#include "frmMain.h"
#include "screen/message_text.h"

namespace vkm {

void job_runs(frmMain& frm);
void job_done(frmMain& frm);

// The running job ends without success in this step. When a stop was asked for
// it counts as stopped. The first call of a job decides; without a running job
// nothing happens.
void job_failed(frmMain& frm, const MessageText& step);

}  // namespace vkm
