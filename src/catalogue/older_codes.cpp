#include "catalogue/older_codes.h"

namespace vkm {
namespace {

// clang-format off
constexpr OlderCode codes[] = {
    // code  model              high  low
    {"0001", "VKM47W51RB",      "F0", "01"},
    {"0002", "VKM47W52RB",      "F0", "02"},
    {"0003", "VKM47W53RB",      "F0", "04"},
    {"0004", "VKM47W54RK+",     "F1", "04"},
    {"0005", "VKM47W58RK+",     "F1", "08"},
    {"0006", "VKM47W516RK+",    "F1", "10"},
    {"4001", "VKM47H51RB",      "F0", "01"},
    {"4002", "VKM47H52RB",      "F0", "02"},
    {"4003", "VKM47H53RB",      "F0", "04"},
    {"4004", "VKM47H54RK+",     "F1", "04"},
    {"4005", "VKM47H58RK+",     "F1", "08"},
    {"4006", "VKM47H516RK+",    "F1", "10"},
    {"0051", "VKM47H/W51RB",    "F0", "01"},
    {"0052", "VKM47H/W52RB",    "F0", "02"},
    {"0053", "VKM47H/W53RB",    "F0", "04"},
    {"0054", "VKM47H/W54RK+",   "F1", "04"},
    {"0058", "VKM47H/W58RK+",   "F1", "08"},
    {"0516", "VKM47H/W516RK+",  "F1", "10"},
};
// clang-format on

}  // namespace

std::span<const OlderCode> older_codes() {
    return codes;
}

OlderCode find_older_code(std::string_view reported) {
    for (const OlderCode& code : codes)
        if (code.reported == reported) return code;
    return {};
}

}  // namespace vkm
