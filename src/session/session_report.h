// The reports that several steps of a session share.
#pragma once

#include "frmMain.h"
#include "screen/message_text.h"

namespace vkm {

// A message, and the view at its end.
void report(frmMain& frm, const MessageText& message);

// A text that ends in "(End: ", completed by the time of day and ")".
std::string with_time_of_day(const frmMain& frm, std::string_view text);
std::string with_time_of_day(const frmMain& frm, const MessageText& text);

// One beep, and that the operator's stop took effect.
void report_stop(frmMain& frm);

}  // namespace vkm
