// The stand-alone download board: loaded once with a job over the serial line, it then
// programs chips without a computer.
//
// Owns the layout of the job (board_image.h, board_build.h), the link with the board
// (board_link.h), the flow, and the reading back of the board's storage. Called by the
// wiring. Always holds: every way out closes the port and gives the controls back;
// frames carry the board's CRC (use_crc) inside these flows alone; the program image is
// behind the loading of a board what it was when the job was laid out.
#pragma once

#include "frmMain.h"

namespace vkm {

enum class Board_Outcome {
    done,
    no_file,  // nothing is loaded; the operator has been told
    failed,   // or stopped; the operator has been told
};

// The flow: the job goes into the board. With `raw` the program image goes to the
// storage as it is, with the ID code and the option bytes at its end.
Board_Outcome Board_Download(frmMain& frm, bool raw);

// The operator's entry points. Each does nothing while a session runs.
void comTJXZ(frmMain& frm);
// Writes the program image raw, and reads all 64 K of the storage back in its place.
void Read24C512(frmMain& frm);
// How to use the board.
void com_TJXZ_help(frmMain& frm);

}  // namespace vkm
