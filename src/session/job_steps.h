// Steps that several kinds of jobs share, in the order in which a job takes them.
#pragma once

#include <string_view>

#include "frmMain.h"

namespace vkm {

// The terminal and a job never use the port together.
void close_assistant_port(frmMain& frm);

// True when a program is loaded; it is read again first where the operator wants that
// before each job. Otherwise the operator has been told.
bool file_ready(frmMain& frm);

// A number that the operator touched since the last job is checked and patched now.
void patch_touched_program_number(frmMain& frm);
void patch_touched_data_number(frmMain& frm);

// What is put into the program image from here on is no file's: nothing reads one in its
// place, no number is counted up in it, and the caption names `source` instead.
void take_over_image(frmMain& frm, std::string_view source);

// The controls of a running job; nothing is stopped, and no plan is made yet.
void begin_session(frmMain& frm);

// A chip that fits the model and is blank. False when the job ended before that; the
// operator has been told then.
bool connect_and_erase(frmMain& frm);

}  // namespace vkm
