// A whole job laid out as the storage of the download board, whose firmware programs
// chips from this alone. Values only. Addresses are those of the storage; fields of more
// than one byte are big-endian.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string_view>

#include "catalogue/mcu_record.h"
#include "options/options_state.h"

namespace vkm {

using Board_Storage = std::span<std::uint8_t>;  // Board_Image

// ---- how many chips the board may program ------------------------------------------

inline constexpr std::int32_t most_chips = 1000000;

// Clears 2000 to F3FF and writes the limit as the board counts it down: its 2048s and
// the rest, each in thermometer code (a bit for every chip, from the lowest bit on).
void lay_out_limit(Board_Storage storage, std::int32_t chips);

// ---- numbering -----------------------------------------------------------------------

struct Board_Number {
    bool enabled = false;
    std::int32_t address = 0;    // as the operator entered it, 0 to FFFF
    std::int32_t length = 0;     // bytes, from the address upward
    std::int32_t increment = 0;  // of which a byte has room
    std::int32_t numeral = -1;   // 0 to 2; -1: none is chosen
};

inline constexpr std::size_t number_table_size = 11;

// The table by which the board counts: where the number lies, and how it falls on the two
// sides of a boundary of 128 bytes.
std::array<std::uint8_t, number_table_size> number_table(const Board_Number& number);

// That table, the limit in 32 bits, and the areas that stay FF.
void lay_out_tables(Board_Storage storage, const Board_Number& number, std::int32_t chips);

// ---- the parameter block ----------------------------------------------------------------

struct Board_Job {
    const MCU_Record& MCU_Info;
    const MCU_Record* Old_Model;  // the record of its Old_ID; null when there is none
    std::string_view model_name;  // as it stands on the screen
    std::int32_t Block_Size;
    const Option_Words& Option_Bytes;  // column 0
    std::int32_t Image_High;           // of AP_Buffer
    std::int32_t Board_Capacity;       // bytes
};

inline constexpr std::int32_t bytes_per_kilobyte = 1024;  // of the board's capacity

// Bytes of program that the board takes for a model of this family.
std::int32_t board_code_limit(std::int16_t MCU_Family, std::int32_t Board_Capacity);

// The block at EC00, the numbering table and limit in it kept, its CRC last.
void lay_out_parameters(Board_Storage storage, const Board_Job& job);

// ---- the code -----------------------------------------------------------------------------

inline constexpr int code_blocks = 512;

// The CRC of block 0 to 511 of the program, 128 bytes each.
void lay_out_code_crc(Board_Storage storage, std::span<const std::uint8_t> AP_Bytes, int block);

// The program: what lies below AC00 in the first part, the 8 K behind it in the second.
void lay_out_code(Board_Storage storage, std::span<const std::uint8_t> AP_Bytes);

}  // namespace vkm
