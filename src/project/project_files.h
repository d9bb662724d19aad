// Project files: a whole job in one file, saved, loaded with its checks, and locked
// against change.
//
// Owns the file's format (project_format.h), its reader (project_reader.h), the
// conversion of older files (old_project.h) and the way of the items to the screen
// and back (project_items.h). Called by the wiring and, for a project among the
// program files, by the choice of a file. Always holds: a file is read whole before
// anything changes; a model that is unknown leaves the job as it was; an image whose
// sum is wrong can't be downloaded; saving replaces a file as a whole or not
// at all.
#pragma once

#include <string>

#include "frmMain.h"

namespace vkm {

// The save dialog, and the job into the file that was named. Tells the operator when
// that can't be written.
void comSaveBatchFile(frmMain& frm);

// The open dialog, and the project that was chosen.
void comOpenBatchFile(frmMain& frm);

// A project that was chosen among the program files.
void Open_Project(frmMain& frm, const std::string& path);

// The file in texBatchFileName: model, items, options, images; locked at the end.
void Load_Project(frmMain& frm);

// How to use project files.
void Command1(frmMain& frm);

}  // namespace vkm
