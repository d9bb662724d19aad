// The four lists of the monitor: what a stopped target holds, with the rows
// highlighted that show something else than before.
#pragma once

#include <cstdint>
#include <span>

#include "frmMain.h"

namespace vkm {

// The registers of the selected model's family, without values; an empty list for a
// family without a table of them.
void Rebuild_Register_List(frmMain& frm);

// Behind the operator's "清接收区" on a page of the monitor: registers, RAM and XRAM
// as at the start. The window on the XRAM stays.
void Clear_Monitor_Lists(frmMain& frm);

// All four as at the start.
void Fill_Monitor_Lists(frmMain& frm);

// A good frame into the list of its type; an unknown type changes none.
void Show_Dump(frmMain& frm, std::span<const std::uint8_t> frame);

}  // namespace vkm
