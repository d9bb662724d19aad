#include "session/program_ranges.h"

#include <algorithm>
#include <array>

#include "text/numbers.h"

namespace vkm {
namespace {

// What the firmware of families 3 and 4 reaches: up to version 5.0, and later
// by the size of the program area.
constexpr double last_early_version = 5.0;
constexpr std::int32_t early_reach_of_family_3 = 0x13FF;
constexpr std::int32_t early_reach_of_family_4 = 0x2FFF;
constexpr std::int32_t large_program_area = 0x3C00;
constexpr std::int32_t late_reach_of_large = 0x6FFF;
constexpr std::int32_t late_reach = 0x5DFF;

std::int32_t reach(const Range_Facts& facts) {
    if (facts.version <= last_early_version)
        return facts.MCU_Info.MCU_Family == 3 ? early_reach_of_family_3 : early_reach_of_family_4;
    return facts.MCU_Info.AP_End >= large_program_area ? late_reach_of_large : late_reach;
}

// By firmware number (version times ten). Anything below 1 K stands for 2 K.
constexpr std::int16_t size_by_default = 2048;
constexpr std::int16_t least_known_size = 1024;
constexpr std::array<std::int16_t, 40> firmware_sizes = {
    0,    0,    0,    0,    0,    0,    0,    0,    0,    0,     // 0.0 to 0.9
    2048, 2048, 2048, 2048, 2048, 2048, 2048, 2048, 2048, 1024,  // 1.0 to 1.9
    1024, 1024, 1024, 1024, 1024, 2048, 1024, 0,    0,    0,     // 2.0 to 2.9
    0,    0,    0,    0,    0,    0,    0,    0,    0,    0};    // 3.0 to 3.9

constexpr std::int32_t smallest_firmware = 1024;  // what Data_End already allows for

// Beyond this address the bar counts in units.
constexpr std::int32_t greatest_bar_value = 32767;
constexpr std::int32_t bar_unit = 256;

// Room behind the joined image, so that its last block is whole.
constexpr std::int32_t joined_margin = 512;

// A data file of one byte counts as none.
bool joined_with_data(const Image_Buffer& Data_Buffer) {
    return Data_Buffer.Image_High >= 1;
}

std::int32_t last_of_joined(const MCU_Record& MCU_Info, const Image_Buffer& Data_Buffer) {
    return MCU_Info.AP_End + Data_Buffer.Image_High;
}

bool data_is_joined(const MCU_Record& MCU_Info, const Image_Buffer& Data_Buffer) {
    return joins_data_file(MCU_Info, Data_Buffer) && joined_with_data(Data_Buffer);
}

// The last address of it that is sent.
std::int32_t end_of_joined(const MCU_Record& MCU_Info, const Image_Buffer& Data_Buffer,
                           std::int32_t Block_Size) {
    return programmed_end(last_of_joined(MCU_Info, Data_Buffer) + 1, Block_Size);
}

// Copies bytes 0 to `last` to `place`, as far as both images reach.
void copy_bytes(const Image_Buffer& from, std::int32_t last, std::vector<std::uint8_t>& to,
                std::int32_t place) {
    if (place < 0 || place >= static_cast<std::int64_t>(to.size()) || last < 0) return;
    const std::size_t room = to.size() - static_cast<std::size_t>(place);
    const std::size_t count =
        std::min({static_cast<std::size_t>(last) + 1, from.Bytes.size(), room});
    std::copy_n(from.Bytes.begin(), count, to.begin() + place);
}

}  // namespace

std::optional<Address_Range> program_image_range(const Range_Facts& facts,
                                                 const Image_Buffer& AP_Buffer) {
    const std::int32_t low = AP_Buffer.Image_Low;
    const std::int32_t high = AP_Buffer.Image_High;
    switch (facts.MCU_Info.MCU_Family) {
        case 0:
        case 1:
        case 2:
        case 5:
            return Address_Range{low, high};
        case 3:
        case 4: {
            const std::int32_t limit = reach(facts);
            return Address_Range{std::clamp(low, 0, limit), std::clamp(high, 0, limit)};
        }
        case 6:
            return Address_Range{std::max(low, 0), std::min(high, facts.MCU_Info.Data_End)};
        default:
            return std::nullopt;
    }
}

bool joins_data_file(const MCU_Record& MCU_Info, const Image_Buffer& Data_Buffer) {
    return (MCU_Info.MCU_Family == 3 || MCU_Info.MCU_Family == 4) && Data_Buffer.Has_File;
}

Joined_Image join_images(const MCU_Record& MCU_Info, const Image_Buffer& AP_Buffer,
                         const Image_Buffer& Data_Buffer) {
    Joined_Image joined;
    Image_Buffer& image = joined.T100_Buffer;
    image.Buffer_Name = "T100_Buffer";
    image.File_Low = AP_Buffer.File_Low;
    image.File_High = AP_Buffer.File_High;
    image.Sum = AP_Buffer.Sum;

    const bool with_data = joined_with_data(Data_Buffer);
    const std::int32_t last =
        std::max(with_data ? last_of_joined(MCU_Info, Data_Buffer) : AP_Buffer.Image_High, 0);
    image.Bytes.assign(static_cast<std::size_t>(last + joined_margin) + 1, 0);
    copy_bytes(AP_Buffer, with_data ? MCU_Info.AP_End : last, image.Bytes, 0);
    if (with_data)
        copy_bytes(Data_Buffer, Data_Buffer.Image_High, image.Bytes, MCU_Info.Data_Start);
    joined.range = {0, last + 1};
    return joined;
}

Data_File_Sent data_file_sent(const MCU_Record& MCU_Info, const Image_Buffer& Data_Buffer,
                              std::int32_t Block_Size) {
    if (!Data_Buffer.Has_File) return Data_File_Sent::whole;
    if (!data_is_joined(MCU_Info, Data_Buffer)) return Data_File_Sent::no;
    const std::int32_t end = end_of_joined(MCU_Info, Data_Buffer, Block_Size);
    if (MCU_Info.Data_Start > end) return Data_File_Sent::no;
    return MCU_Info.Data_Start + Data_Buffer.Image_High > end ? Data_File_Sent::in_part
                                                              : Data_File_Sent::whole;
}

bool data_number_sent(const MCU_Record& MCU_Info, const Image_Buffer& Data_Buffer,
                      std::int32_t Block_Size, std::int32_t Address) {
    return data_is_joined(MCU_Info, Data_Buffer) &&
           MCU_Info.Data_Start + Address <= end_of_joined(MCU_Info, Data_Buffer, Block_Size);
}

bool program_number_sent(const MCU_Record& MCU_Info, const Image_Buffer& Data_Buffer,
                         std::int32_t Address) {
    return !data_is_joined(MCU_Info, Data_Buffer) || Address <= MCU_Info.AP_End;
}

std::optional<std::int16_t> firmware_size(double version) {
    const double number = version * 10 + 0.5;
    if (number < 0 || number >= static_cast<double>(firmware_sizes.size())) return std::nullopt;
    const std::int16_t size = firmware_sizes[static_cast<std::size_t>(number)];
    return size < least_known_size ? size_by_default : size;
}

std::int32_t firmware_limit(std::int32_t Data_End, std::int32_t Firmware_Size) {
    return Data_End + smallest_firmware - Firmware_Size;
}

std::int32_t programmed_end(std::int32_t last, std::int32_t Block_Size) {
    return std::max((last / Block_Size + 1) * Block_Size - 1, least_last_address);
}

bool within_one_block(std::int32_t first, std::int32_t end, std::int32_t Block_Size) {
    return first / Block_Size == end / Block_Size;
}

std::vector<Address_Range> blocks_between(std::int32_t first, std::int32_t end,
                                          std::int32_t Block_Size) {
    std::vector<Address_Range> blocks;
    const std::int32_t last_block = end / Block_Size;
    for (std::int32_t block = first / Block_Size; block <= last_block; ++block) {
        const std::int32_t start = blocks.empty() ? first : block * Block_Size;
        blocks.push_back({start, (block + 1) * Block_Size - 1});
    }
    return blocks;
}

std::vector<Chunk> chunks_of(Address_Range block, std::int32_t Chunk_Size) {
    std::vector<Chunk> chunks;
    for (std::int32_t at = block.first; at <= block.last;
         at = (at + Chunk_Size) / Chunk_Size * Chunk_Size) {
        chunks.push_back({at, std::min(Chunk_Size, block.last - at + 1)});
    }
    return chunks;
}

std::int32_t Progress_Scale::value_at(std::int32_t address) const {
    return std::clamp(round_half_even(static_cast<double>(address) / unit), Min,
                      std::max(Min, Max));
}

Progress_Scale progress_scale(Address_Range range) {
    if (range.first <= greatest_bar_value && range.last <= greatest_bar_value)
        return {range.first, range.last + 1, 1};
    return {range.first / bar_unit, range.last / bar_unit + 1, bar_unit};
}

}  // namespace vkm
