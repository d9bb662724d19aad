#include "session/end_session.h"

#include "link/isp_link.h"

namespace vkm {
namespace {

constexpr std::uint8_t leave_firmware = 0x82;
constexpr std::uint8_t last_command = 0x52;
constexpr std::int32_t leave_ms = 100;  // most chips leave without an answer
constexpr std::size_t trigger_bytes = 12;
constexpr std::int32_t last_byte_ms = 20;  // at 1200 baud the trigger alone takes 100 ms
constexpr std::int32_t last_command_ms = 10;

}  // namespace

void End_Session(frmMain& frm) {
    send_trigger(frm, leave_firmware);
    wait_for_frame(frm, answer_time(frm, leave_ms, trigger_bytes, last_byte_ms));
    send_command(frm, last_command, last_command_ms, 0);
    close_port(frm);
}

}  // namespace vkm
