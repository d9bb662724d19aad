// Frames for the download board that carry data or ask for it; its short commands are the
// link's (send_command). All with a CRC, low byte first.
#pragma once

#include <cstdint>
#include <span>

#include "link/frames.h"

namespace vkm {

// `count` bytes of the image from `address` on for the same address of the board's
// storage. The flag says that the block's sector is sent again and has to be cleared
// first. Bytes that lie outside the image count as 00.
Frame build_board_block(std::span<const std::uint8_t> image, std::int32_t address,
                        std::int32_t count, bool flag);

// Asks for the 128 bytes of the storage from `address` on.
Frame build_board_read(std::int32_t address);

}  // namespace vkm
