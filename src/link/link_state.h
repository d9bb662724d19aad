// The state of the ISP link: what is on the wire, and what the handshake found.
// There is exactly one link. Who sets a flag stands behind it.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/event_loop.h"

namespace vkm {

struct frmMain;

inline constexpr int rx_frame_size = 2101;  // indices 0 to 2100

struct LinkState {
    // ---- the reply on its way ----
    std::array<std::uint8_t, rx_frame_size> rx_frame{};  // from its start byte 68 (5A in demo_mode)
    int rx_count = 0;                                    // bytes in rx_frame
    int rx_expected = 0;  // from the length field; kept between events, 0 until known
    std::array<std::uint8_t, rx_frame_size> rx_copy{};  // what callers parse; by copy_receive

    // ---- flags that waits test ----
    bool frame_ok = false;             // a frame of the 46 B9 class passed its check
    bool demo_frame_ok = false;        // a frame of the 5A A5 class did
    bool stop_requested = false;       // the operator asked to stop
    bool demo_stop_requested = false;  // the same for the 5A A5 waits
    bool reply_timed_out = false;      // Timer1 fired
    bool reply_gap_or_bad = false;     // Timer2 fired, or a frame failed its check

    // ---- how bytes are taken ----
    bool receive_enabled = false;  // bytes read while this is false are thrown away
    bool hunt_header = false;      // synchronise on 46 B9 first, a byte at a time
    bool seen_46 = false;          // progress of that hunt
    bool seen_B9 = false;
    bool demo_mode = false;   // replies are of the 5A A5 class
    bool debug_mode = false;  // the port belongs to the terminal
    // The request that has no answer yet: when it will have left the wire, nothing
    // having held it up. What comes before that answers an older one. Pulses and
    // triggers are none, since they may be answered at any time.
    std::optional<Instant> open_request;
    // A wait for an answer ended without one, which may still come: with what is
    // asked next, let_owed_answers_pass.
    bool answer_owed = false;
    bool use_crc = false;  // board frames carry a CRC instead of the sum

    bool close_pending = false;  // the window was asked to close during a session

    // ---- what the handshake found ----
    std::string Base_Baud = "1200";
    float crystal_frequency = 0;  // Hz, as measured
    float Chip_Clock = 0;         // Hz, a copy for the range and option code
    bool TL_Link = false;         // connected at 115200 baud
    bool Chip_Known = false;      // the status frame held an ID byte
    bool Chip_Double_Speed = false;
    std::string Chip_ID_High;  // two upper-case hexadecimal digits
    std::string Chip_ID_Low;
    std::string Chip_Name;             // model found from the ID code; empty when none
    std::string Chip_Letter;           // firmware letter, A to G
    std::string Chip_Version;          // "3.8"; empty for byte 00
    bool Chip_Extended = false;        // the next two are valid
    std::int16_t Chip_Flash_Info = 0;  // 1024, 1536, 2048, 2560, or 0
    bool Chip_Needs_Header = false;
    bool Status_Read_OK = false;  // a status was read and shown
    // Reload pair of the link's baud, kept across jobs; and the pair of the
    // other clock mode, by Keep_Baud_Pair.
    std::int16_t newBaud_H = 0;
    std::int16_t newBaud_L = 0;
    std::int16_t other_Baud_H = 0;
    std::int16_t other_Baud_L = 0;

    // ---- board link ----
    std::int32_t Board_Block_Wait = 600;  // ms, answer time of a block
    std::int32_t Board_Gap_Wait = 200;    // ms, interval of Timer2

    // ---- what stands above the link and is called from it ----
    // Filled by src/window at start-up; a plug that is null is passed over.
    void (*Receive_Event)(frmMain&) = nullptr;  // on_port_event, for the event loop
    bool (*Check_Model)(frmMain&) = nullptr;    // the chip fits the selected model
    // With debug_mode: what has arrived, and that the device has gone.
    void (*Assistant_Bytes)(frmMain&, const std::vector<std::uint8_t>&) = nullptr;
    void (*Assistant_Port_Lost)(frmMain&) = nullptr;
};

}  // namespace vkm
