// The link with the boot firmware of a chip, over the one serial port.
//
// Owns the wire: sending frames, gathering replies (the receive handler), the
// waits for them, and everything up to a chip that is identified and talks at
// its final baud (handshake.h, baud_exchange.h). Called by the session flows and
// the board. Always holds: half duplex, one request then one answer; flags are
// cleared before a frame is written (of the 5A A5 class in the same turn), never later;
// no answer is taken before its
// request has left the wire, unless it is a repeat; what answers an earlier try
// doesn't pass for the answer to another request; nothing is retransmitted here.
// A failure is a result of -1 or false, never a text, except in the handshake.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "frmMain.h"

namespace vkm {

// ---- port -------------------------------------------------------------

// Read all that waits, binary, threshold 1; both buffers emptied.
void set_port_defaults(frmMain& frm);

// Closes the port if it is open, takes the number from combCommPort and opens
// it. 0 when it is open afterwards, not_open when it is not and no error was
// told, else the system's positive error number.
inline constexpr int not_open = -1;
int open_port(frmMain& frm);

// True if the port still reports open after three tries. Also turns the port's
// picture to its closed look.
bool close_port(frmMain& frm);

// Closes, takes the number from combCommPort, opens, with up to two more tries.
// The settings stay.
void Restart_Port(frmMain& frm);

// Shows the port as open or closed beside its list.
void show_port_picture(frmMain& frm, bool open);

// Sets the port's settings to "BAUD,n,8,1". False when they are refused; the
// settings before stay in force then.
bool set_port_baud(frmMain& frm, std::string_view baud);

// Time that so many bytes take on the wire at the port's rate; the same in ms, rounded up.
Microseconds time_on_wire(const SerialPort& port, std::size_t bytes);
std::int32_t ms_on_wire(const SerialPort& port, std::size_t bytes);

// The connection is made by the trigger at 115200 baud (cheTL), without pulses.
bool over_trigger(const frmMain& frm);

// The list of cobBaudMax stands at the base baud, so that nothing may change
// the rate: the first four characters of its text equal Base_Baud.
bool held_at_base_baud(const frmMain& frm);

// ---- receiving ----------------------------------------------------------

// Forgets everything received. On a closed port it opens it for that, and
// closes it again unless held at the base baud.
void reset_receive(frmMain& frm);

// Copies rx_frame into rx_copy; the count of bytes.
int copy_receive(frmMain& frm);

// The receive handler; the event loop calls it while bytes wait.
void on_port_event(frmMain& frm);

// ---- sending ------------------------------------------------------------

// Writes a request to the port. A reply that is here before the request has left
// the wire is a late one to the request before, and is passed over.
void write_frame(frmMain& frm, std::span<const std::uint8_t> bytes);

// Writes what may be answered at any time: sync pulses and triggers, to a chip
// without power or a running program, and the repeat of a request.
void write_signal(frmMain& frm, std::span<const std::uint8_t> bytes);

// Until the output is empty; no longer than so many bytes need, and half a second, since
// a driver may never let go of them. Stop ends it, since that closes the port.
void wait_until_sent(frmMain& frm, std::size_t bytes);

// Behind a request: if bytes are still unsent lets events run once; waits 3 ms.
void settle(frmMain& frm);

// Writes a request and settles.
void write_and_settle(frmMain& frm, std::span<const std::uint8_t> bytes);

// One block of `count` bytes of the image from `address`: 0 when the chip
// acknowledged it, else -1.
int send_block(frmMain& frm, std::int32_t address, std::int32_t count, bool flag,
               std::span<const std::uint8_t> image);

// The result of a block. A window that was asked to close meanwhile closes at a block that
// failed.
int block_result(frmMain& frm, bool good);

// A short command with the board fields; the caller waits.
void send_command(frmMain& frm, std::uint8_t command, std::int32_t timeout_ms,
                  std::uint8_t parameter);

// Before a request to the download board is written: its flags cleared, Timer1 started as
// the time for its answer, Timer2 set to the gap time and stopped.
void expect_board_answer(frmMain& frm, std::int32_t timeout_ms);

// What has been received of the 5A A5 class so far is no answer; output stays.
void forget_demo_input(frmMain& frm);

// A short command of the 5A A5 class, once the output is empty and 20 ms later. Nothing
// is written when Stop came in between.
void send_demo_command(frmMain& frm, std::uint8_t command);

// The trigger, opening the port if it is closed. -1 when the command is no
// trigger or open_port gives not_open, else 0: on a port that the system refuses
// the bytes are lost, as on any closed port.
int send_trigger(frmMain& frm, std::uint8_t command);

// ---- waiting for a reply --------------------------------------------------

// The usual wait: restarts Timer7 and waits for frame_ok, stop_requested or the
// timer's end. True when a frame came.
bool wait_for_frame(frmMain& frm, std::int32_t timeout_ms);

// The same on a timer that has been started already.
bool wait_for_armed_timer(frmMain& frm, const Timer& timer);

// Stop of either class of waits.
bool demo_stopped(const LinkState& link);

// The wait for a reply of the 5A A5 class, Timer7 having been started: for demo_frame_ok,
// a Stop or the timer's end. True when a frame came and no Stop.
bool wait_for_demo_frame(frmMain& frm);

// How long a block's answer may take (ms), by the chip's clock and the baud.
std::int32_t reply_timeout(double crystal_frequency, std::int32_t baud);

// How long an answer may take (ms): at_least_ms, or longer where the line alone
// needs it for so many bytes of request and answer, with chip_ms beside.
std::int32_t answer_time(const frmMain& frm, std::int32_t at_least_ms, std::size_t bytes,
                         std::int32_t chip_ms);

// Any good frame is an answer.
inline bool any_frame(const LinkState&) {
    return true;
}

// One try of a request: 5 ms for a chip that has just answered, the frame, and the
// wait. What comes in the pause before a first try answers something older and is
// forgotten. While an earlier try is owed its answer, that is as good: in the pause
// it ends the try and nothing is written, and it counts while the repeat is on the
// wire. A frame that is no answer to such a request is passed over. True when the
// answer came.
using Is_Answer = bool (*)(const LinkState&);
bool try_request(frmMain& frm, std::span<const std::uint8_t> frame, std::int32_t timeout_ms,
                 Is_Answer is_answer = any_frame);

// Behind a request that was answered at last: lets the answers pass that earlier
// tries of it may still get, until the line is silent for timeout_ms. Otherwise one
// of them would pass for the answer to what is asked next. Nothing to do, and no
// time spent, when every request had its answer. Keeps frame_ok.
void let_owed_answers_pass(frmMain& frm, std::int32_t timeout_ms);

// Sets Timer7 to that and starts it.
void arm_reply_timer(frmMain& frm);

// Ticks of the link's timers.
void Timer1_Tick(frmMain& frm);
void Timer2_Tick(frmMain& frm);

}  // namespace vkm
