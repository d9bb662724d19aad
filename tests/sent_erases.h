// The erase frames that a session sent.
#pragma once

#include <cstdint>
#include <vector>

#include "session_bench.h"

namespace vkm::test {

// Count and range of the erase frames, in the order in which they went out.
inline std::vector<std::vector<std::uint8_t>> sent_erases(const SessionBench& bench) {
    std::vector<std::vector<std::uint8_t>> erases;
    for (const Written& written : bench.port.written)
        if (written.bytes.size() == 15 && written.bytes[5] == 0x84)
            erases.emplace_back(written.bytes.begin() + 6, written.bytes.begin() + 13);
    return erases;
}

}  // namespace vkm::test
