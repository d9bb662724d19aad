// Which bytes go into the chip, and in which pieces: the range of an image, the
// blocks that are retried, the data frames of a block. Values only.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include "catalogue/mcu_record.h"
#include "image/image_buffer.h"

namespace vkm {

// The tool never programs fewer than the first 640 bytes.
inline constexpr std::int32_t least_last_address = 0x27F;

// Addresses, both included.
struct Address_Range {
    std::int32_t first = 0;
    std::int32_t last = 0;
    bool operator==(const Address_Range&) const = default;
};

// ---- the range of an image ------------------------------------------------

struct Range_Facts {
    const MCU_Record& MCU_Info;  // the selected model
    double version = 0;          // number in Chip_Version
};

// The used part of the program image, within what the model's firmware reaches.
// Nothing for a family that isn't known.
std::optional<Address_Range> program_image_range(const Range_Facts& facts,
                                                 const Image_Buffer& AP_Buffer);

// Families 3 and 4 take a data file in one image with the program.
bool joins_data_file(const MCU_Record& MCU_Info, const Image_Buffer& Data_Buffer);

// That image, T100_Buffer: the program up to AP_End, the data file from
// Data_Start on. Bytes whose address lies behind it are left out.
struct Joined_Image {
    Image_Buffer T100_Buffer;
    Address_Range range;
};
Joined_Image join_images(const MCU_Record& MCU_Info, const Image_Buffer& AP_Buffer,
                         const Image_Buffer& Data_Buffer);

// Whether the bytes of a loaded data file are among those that a job sends: the
// families without a joined image send none, and where the data memory doesn't follow
// the program area the joined image may end before them. Without a data file there
// is nothing to miss.
enum class Data_File_Sent { whole, in_part, no };
Data_File_Sent data_file_sent(const MCU_Record& MCU_Info, const Image_Buffer& Data_Buffer,
                              std::int32_t Block_Size);

// Whether a number goes into the chip: that of the data image only in a joined image
// and as far as that is sent; that of the program, in a joined image, only up to
// AP_End. Address is that of the number's lowest-order byte, in its own image.
bool data_number_sent(const MCU_Record& MCU_Info, const Image_Buffer& Data_Buffer,
                      std::int32_t Block_Size, std::int32_t Address);
bool program_number_sent(const MCU_Record& MCU_Info, const Image_Buffer& Data_Buffer,
                         std::int32_t Address);

// ---- the boot firmware's limit ----------------------------------------------

// Bytes of the boot firmware of this version; empty for one that the table
// doesn't reach.
std::optional<std::int16_t> firmware_size(double version);

// Last address that firmware of this size leaves to the program.
std::int32_t firmware_limit(std::int32_t Data_End, std::int32_t Firmware_Size);

// ---- blocks and frames --------------------------------------------------------

// The last address that is programmed: that of the block that `last` lies in,
// but least_last_address at least.
std::int32_t programmed_end(std::int32_t last, std::int32_t Block_Size);

// The blocks from `first` up to the one that holds `end`. The first one begins at
// `first` itself, each ends at a block's end. None when `end` lies in a block before.
std::vector<Address_Range> blocks_between(std::int32_t first, std::int32_t end,
                                          std::int32_t Block_Size);

// `first` and `end` lie in one block, which is then programmed from `first` to `end`.
bool within_one_block(std::int32_t first, std::int32_t end, std::int32_t Block_Size);

struct Chunk {
    std::int32_t address = 0;
    std::int32_t count = 0;
    bool operator==(const Chunk&) const = default;
};

// The data frames of a block. A block that starts off a chunk's boundary comes
// back to it with its second frame.
std::vector<Chunk> chunks_of(Address_Range block, std::int32_t Chunk_Size);

// ---- progress -------------------------------------------------------------------

// The progress bar counts bytes, or units of 256 bytes where addresses would
// exceed the 16 bits of its number.
struct Progress_Scale {
    std::int32_t Min = 0;
    std::int32_t Max = 0;
    std::int32_t unit = 1;  // bytes

    // The bar's value when everything before this address has been programmed.
    std::int32_t value_at(std::int32_t address) const;
};
Progress_Scale progress_scale(Address_Range range);

}  // namespace vkm
