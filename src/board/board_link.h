// The link with the download board: 115200 baud, every frame with a CRC. One request,
// then one answer; a request is repeated here as often as its step allows.
#pragma once

#include <cstdint>
#include <span>

#include "frmMain.h"
#include "link/isp_link.h"
#include "screen/message_text.h"
#include "session/program_ranges.h"

namespace vkm {

// The storage of the board is written and counted in these.
inline constexpr std::int32_t board_sector = 512;

// The port of combCommPort at the board's rate, with nothing received and nothing stopped.
// False, and the failure told, when it can't be opened.
bool open_board_port(frmMain& frm, const MessageText& failure);

// Behind the board's frames: the modes and what is still owed are nobody else's.
void leave_board_link(LinkState& link);

// Opens the port and wakes the board, for as long as nobody stops it and some 300 s. True
// when it answers; otherwise the operator has been told, and the port is closed.
bool Board_Connect(frmMain& frm);

// Why a step of the flow ended: the operator's Stop, with one beep, or this failure; the
// same for a board that doesn't answer.
void report_stop_or(frmMain& frm, const MessageText& failure);
void report_no_board(frmMain& frm);

// A command of the board, tried up to so many times of timeout_ms each. True when it was
// answered and nobody stopped it; the answer is in rx_copy then.
struct Board_Command {
    std::uint8_t command = 0;
    std::int32_t timeout_ms = 0;
    int tries = 1;
    std::uint8_t parameter = 0;
    Is_Answer is_answer = any_frame;  // a good frame that is none counts as no answer
};
bool board_asked(frmMain& frm, const Board_Command& command);

// Writes a frame and waits: for a good frame, a bad one, the end of Timer1 or Timer2, or
// Stop. True for a good one, which is in rx_copy then.
bool board_answers(frmMain& frm, std::span<const std::uint8_t> frame, std::int32_t timeout_ms);

// Bytes of the reply in rx_frame, from its 68 to its 16, as its length field tells.
int reply_length(const LinkState& link);

// Sends a range of the image to the same addresses, in sectors that are repeated when
// one of their blocks fails. Shows progress. False when a sector fails for the sixth
// time, and after a Stop.
bool Board_Send_Range(frmMain& frm, std::span<const std::uint8_t> image, Address_Range range);

// One block: 0 when the board acknowledged it, else -1.
int Board_Send_Block(frmMain& frm, std::span<const std::uint8_t> image, std::int32_t address,
                     std::int32_t count, bool flag);

}  // namespace vkm
