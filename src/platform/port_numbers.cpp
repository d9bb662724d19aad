#include "platform/port_numbers.h"

#include <algorithm>

namespace vkm {
namespace {

bool contains(const auto& paths, const std::string& path) {
    return std::find(paths.begin(), paths.end(), path) != paths.end();
}

}  // namespace

bool give_port_numbers(PortNumbers& numbers, const std::vector<std::string>& present) {
    bool changed = false;
    for (const std::string& device : present) {
        if (device.empty() || contains(numbers, device)) continue;
        auto place = std::find(numbers.begin(), numbers.end(), std::string());
        if (place == numbers.end())
            place = std::find_if(numbers.begin(), numbers.end(), [&](const std::string& owner) {
                return !contains(present, owner);
            });
        if (place == numbers.end()) break;
        *place = device;
        changed = true;
    }
    return changed;
}

}  // namespace vkm
