// One memory image: the bytes that go into a chip, and what is known of the
// file that they came from. Addresses are indices into Bytes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace vkm {

inline constexpr std::size_t ap_buffer_size = 0x12001;   // indices 0 to 0x12000
inline constexpr std::size_t data_buffer_size = 0x8001;  // indices 0 to 0x8000

struct Image_Buffer {
    std::string Buffer_Name;          // "AP_FILE" or "Data_File"; tells the two apart
    std::int32_t File_Low = 0;        // where the last file was placed (its Start_Add)
    std::int32_t File_High = 0;       // its highest address, after the range rules
    std::int32_t Image_Low = 0;       // lowest address over all files since the last clearing
    std::int32_t Image_High = 0;      // highest; may lie above the end of Bytes
    std::vector<std::uint8_t> Bytes;  // sized once at start
    std::int32_t Sum = 0;             // of the data bytes of the last file
    std::int32_t Start_Add = 0;  // where a file is to be placed; signed, see Read_Buffer_Options
    bool Clear_First = false;    // clear the image before the next file
    bool Has_File = false;       // a file or a project filled it
    // Grows with every load and reset. A load that finds another number after a
    // turn of the event loop has been overtaken, and ends.
    std::uint32_t Load_Number = 0;
};

// True for the program image, false for the data image.
bool is_program_image(const Image_Buffer& buffer);

// Areas of an image, both ends included; an area whose high end is below its low
// end is empty. What lies outside the array holds nothing and takes nothing.
bool holds_data(std::span<const std::uint8_t> bytes, std::int64_t low, std::int64_t high);
void clear_area(std::span<std::uint8_t> bytes, std::int64_t low, std::int64_t high);

}  // namespace vkm
