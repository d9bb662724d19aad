// The state of a download session.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>

#include "platform/files.h"

namespace vkm {

struct frmMain;

// What is to be erased and programmed, made once per comDownload from the chip
// that answered. Addresses are image addresses.
struct Download_Plan_Record {
    std::string Plan_Name;  // "AP_FILE" once made, empty before
    std::int32_t Plan_AP_Low = 0;
    std::int32_t Plan_AP_High = 0;  // AP_End of the chip
    std::int32_t Plan_File_Low = 0;
    std::int32_t Plan_File_High = 0;  // Image_High of the program image
    std::int32_t Plan_Data_Low = 0;   // first address of the chip's data memory
    std::int32_t Plan_Data_High = 0;  // last
    std::int32_t Tail_Low = 0;        // the part of the program area above the image
    std::int32_t Tail_High = 0;
    bool Tail_Free = false;      // it is to be cleared as well
    std::int32_t Spill_Low = 0;  // where the image reaches into the data memory
    std::int32_t Spill_High = 0;
    bool Spill = false;         // it does
    std::int32_t Free_Low = 0;  // data memory that the image leaves free; kept, not read
    std::int32_t Free_High = 0;
};

// Values of UI_State. It is also the lock state of the option panel.
enum UI_State_Value : std::int16_t {
    ui_idle = 0,
    ui_busy = 1,         // a session runs
    ui_locked = 2,       // idle, a project or the operator has locked the options
    ui_busy_locked = 3,  // both
};

// How the last job ended, for the verdict beside the counter. The edge draws the
// numbers' colours.
enum class Job_Result { none, running, done, failed, stopped };

struct SessionState {
    bool Connected = false;         // a session with the boot firmware is open
    bool Program_OK = false;        // the whole image went well
    std::int16_t Chunk_Size = 128;  // bytes of data in one frame
    std::int64_t Begin_Time = 0;    // wall clock seconds when programming began
    std::string Erase_Time;         // mm:ss of the last erase, or empty
    std::string Cut_Note;           // remark after a cut at the firmware limit
    std::string Cut_Note_CN;
    std::int16_t UI_State = ui_idle;   // one of UI_State_Value
    std::int16_t Firmware_Size = 0;    // bytes of the chip's boot firmware
    bool Firmware_Size_Known = false;  // set by the handshake
    Download_Plan_Record Download_Plan;
    bool Project_Lock = false;  // a project was loaded: sessions end locked
    // A chip that may not write its block 0 from block 1 has "1" at the head of
    // entry 2. Nothing fills this row.
    std::array<std::string, 3> Block0_Rule;

    // True while an operation that owns the port is on the stack, also while it
    // unwinds after Stop; a click that would start another one does nothing.
    bool Running = false;
    Job_Result Result = Job_Result::none;
    std::string Failed_Step;  // named beside a failed result, as the operator sees it

    // The program file as Timer12 saw it last, and a change that has yet to come to
    // rest: a compiler may still be writing.
    std::string Watched_File;
    std::string Watched_Time;
    std::optional<FileStamp> Unsettled;

    // Plugs; a plug that is null is passed over.
    void (*Close_Assistant_Port)(frmMain&) = nullptr;
    void (*Open_Assistant_Port)(frmMain&) = nullptr;
};

}  // namespace vkm
