// Logs of simulated targets that run for hours.
#pragma once

#include <cstddef>
#include <utility>
#include <vector>

namespace vkm::sim {

// Appends; a list that is full loses its older half first.
template <typename Entry>
void append_bounded(std::vector<Entry>& list, Entry entry, std::size_t most) {
    if (list.size() >= most)
        list.erase(list.begin(), list.begin() + static_cast<std::ptrdiff_t>(most / 2));
    list.push_back(std::move(entry));
}

}  // namespace vkm::sim
