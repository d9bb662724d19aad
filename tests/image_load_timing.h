// How long a load takes, measured on the wall clock.
#pragma once

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <string>
#include <vector>

#include "image/image_files.h"

namespace vkm::test {

// The median time of one load of this file into the program image, in
// milliseconds: read, ruled, summed and redrawn. The file is the operator's own
// kind of file for the platform that frm has. `loads` is 1 or more.
inline double milliseconds_per_load(frmMain& frm, const std::string& path, std::size_t loads = 21) {
    std::vector<double> times;
    for (std::size_t i = 0; i < loads; ++i) {
        const auto begin = std::chrono::steady_clock::now();
        Load_File(frm, path, frm.images.AP_Buffer);
        const auto end = std::chrono::steady_clock::now();
        times.push_back(std::chrono::duration<double, std::milli>(end - begin).count());
    }
    const auto middle = times.begin() + static_cast<std::ptrdiff_t>(times.size() / 2);
    std::nth_element(times.begin(), middle, times.end());
    return *middle;
}

}  // namespace vkm::test
