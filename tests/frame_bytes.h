// Bytes of frames that are built by hand.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <vector>

namespace vkm::test {

using Bytes = std::vector<std::uint8_t>;

// The lowest `count` bytes of the value, the highest of them first.
inline Bytes big_endian(std::uint32_t value, int count) {
    Bytes bytes;
    for (int shift = 8 * (count - 1); shift >= 0; shift -= 8)
        bytes.push_back(static_cast<std::uint8_t>(value >> shift));
    return bytes;
}

inline Bytes joined(std::initializer_list<Bytes> parts) {
    Bytes bytes;
    for (const Bytes& part : parts) bytes.insert(bytes.end(), part.begin(), part.end());
    return bytes;
}

}  // namespace vkm::test
