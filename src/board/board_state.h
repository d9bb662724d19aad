// The stand-alone download board: what goes into its storage, and what it said of itself.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace vkm {

inline constexpr std::size_t board_image_size = 0x10001;  // indices 0 to 65536

struct BoardState {
    // The storage of the board with the whole job in it (board_image.h).
    std::vector<std::uint8_t> Board_Image = std::vector<std::uint8_t>(board_image_size, 0);
    // AP_Buffer as it was when the job was laid out; empty when there is none to go back to.
    std::vector<std::uint8_t> Saved_AP_Image;
    std::int32_t Chip_Limit = 0;         // chips that the board may program, as it was checked
    std::int16_t Link_Block_Size = 128;  // bytes of data in one block frame
    std::string Board_Version = "0";     // two hexadecimal digits once the board has told it
    std::int32_t Board_Capacity = 0;     // bytes of program that the board can hold
    bool Board_Flag = false;             // its reply to the capacity command carried a flag
};

}  // namespace vkm
