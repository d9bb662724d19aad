// What a host tells the debug agent of a target that stands, byte by byte as it goes over
// the wire.
#pragma once

#include <cstdint>
#include <vector>

namespace vkm::test {

inline const std::vector<std::uint8_t> acknowledge = {0xFE, 0xAA, 0x50, 0xFA};
inline const std::vector<std::uint8_t> again = {0xFE, 0xAA, 0x52, 0xFC};
inline const std::vector<std::uint8_t> go_on = {0xFE, 0xAA, 0x54, 0xFE};

}  // namespace vkm::test
