#include "session/erase_frame.h"

#include <algorithm>

#include "catalogue/model_traits.h"
#include "session/download_plan.h"

namespace vkm {
namespace {

constexpr std::uint8_t erase_command = 0x84;
constexpr std::uint8_t no_range = 0x33;          // six times, to firmware that takes no range
constexpr std::int32_t range_of_none = 0x10000;  // beyond any address of the chips
constexpr int first_version_by_image = 28;       // letter C from 2.8 on takes a count by image

bool takes_range(std::string_view letter) {
    return letter_within(letter, "D", "G");
}

std::uint8_t sectors_of_image(std::int32_t Image_High) {
    const std::int32_t count = Image_High / sector_size + 1;
    return count >= 256 ? whole_chip_sectors : static_cast<std::uint8_t>(count);
}

}  // namespace

std::uint8_t Erase_Sectors(const Erase_Facts& facts) {
    const auto by_model = [](std::optional<std::int16_t> count) {
        return count ? static_cast<std::uint8_t>(*count) : whole_chip_sectors;
    };
    if (facts.Chip_Letter == "A" || facts.Chip_Letter == "B")
        return by_model(erase_sectors_47W_AD(facts.model));
    if (facts.Chip_Letter != "C") return whole_chip_sectors;
    if (static_cast<int>(facts.version * 10 + 0.5) < first_version_by_image)
        return by_model(erase_sectors_47_RB_RK(facts.model));
    return sectors_of_image(facts.Image_High);
}

Erase_Span Erase_Range(std::string_view Chip_Letter, const Download_Plan_Record& plan,
                       bool keep_data) {
    if (!takes_range(Chip_Letter)) return {range_of_none, range_of_none};
    std::int32_t low = plan.Plan_Data_Low;
    std::int32_t high = plan.Plan_Data_Low;
    if (plan.Tail_Free) {
        low = plan.Tail_Low;
        high = keep_data ? plan.Plan_Data_Low : plan.Plan_Data_High;
    } else if (plan.Spill) {
        low = plan.Spill_High + 1;
        high = keep_data ? plan.Spill_High + 1 : plan.Plan_Data_High;
    }
    if (low > plan.Plan_Data_High) low = plan.Plan_Data_High + 1;
    return {low, std::max(low, high)};
}

Frame build_erase_frame(std::string_view Chip_Letter, std::uint8_t sectors, Erase_Span range) {
    Frame body = {sectors, no_range, no_range, no_range, no_range, no_range, no_range};
    if (takes_range(Chip_Letter)) {
        const auto byte = [](std::int32_t address, int place) {
            return static_cast<std::uint8_t>(static_cast<std::uint32_t>(address) >> (8 * place));
        };
        for (int place = 2; place >= 0; --place) {
            body[static_cast<std::size_t>(3 - place)] = byte(range.low, place);
            body[static_cast<std::size_t>(6 - place)] = byte(range.high, place);
        }
    }
    return build_short_command(erase_command, body);
}

}  // namespace vkm
