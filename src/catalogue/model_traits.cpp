#include "catalogue/model_traits.h"

#include <algorithm>
#include <array>

#include "text/numbers.h"

namespace vkm {
namespace {

constexpr std::int32_t small_isp_size = 1024;
constexpr std::int32_t large_isp_size = 2048;

// Where the size stands in a name like VKM26H5416AD, counted from 0.
constexpr std::size_t size_digits_at = 8;
constexpr std::size_t size_digits = 2;
constexpr std::int32_t smallest_of_series = 16;
constexpr std::int32_t largest_of_series = 28;

struct EraseSectors {
    std::string_view model;
    std::int16_t sectors;  // of 512 bytes
};

constexpr auto sectors_47W_AD = std::to_array<EraseSectors>({
    {"VKM47W516AD", 124},
    {"VKM47W516X2", 124},
    {"VKM47W58AD", 64},
    {"VKM47W54AD", 32},
    {"VKM47W52AD", 16},
});

constexpr auto sectors_47_RB_RK = std::to_array<EraseSectors>({
    {"VKM47H51RB", 30},
    {"VKM47W51RB", 30},
    {"VKM47H52RB", 30},
    {"VKM47W52RB", 30},
    {"VKM47H53RB", 30},
    {"VKM47W53RB", 30},
    {"VKM47H54RK+", 126},
    {"VKM47W54RK+", 126},
    {"VKM47H55RK+", 126},
    {"VKM47W55RK+", 126},
    {"VKM47H58RK+", 126},
    {"VKM47W58RK+", 126},
    {"VKM47H61RK+", 126},
    {"VKM47W61RK+", 126},
    {"VKM47H516RK+", 126},
    {"VKM47W516RK+", 126},
});

template <std::size_t count>
std::optional<std::int16_t> sectors_of(const std::array<EraseSectors, count>& models,
                                       std::string_view model) {
    const auto found = std::ranges::find(models, model, &EraseSectors::model);
    if (found == models.end()) return std::nullopt;
    return found->sectors;
}

}  // namespace

bool has_2k_isp(std::string_view model) {
    return model == "VKM47H55RK+" || model == "VKM47W55RK+" || model == "VKM47H61RK+" ||
           model == "VKM47W61RK+";
}

std::int32_t isp_size(std::string_view model) {
    return has_2k_isp(model) ? large_isp_size : small_isp_size;
}

bool has_memory_hole(std::string_view model) {
    return model == "VKM47H55RK+" || model == "VKM47W55RK+";
}

bool is_W516(std::string_view model) {
    return model == "VKM47W516AD" || model == "VKM47W516X2";
}

bool has_PCA_option(std::string_view model) {
    constexpr std::string_view models[] = {
        "VKM47H516PCA", "VKM47H58PCA", "VKM47H54PCA", "VKM47H52PCA",
        "VKM47T516PCA", "VKM47T58PCA", "VKM47T54PCA", "VKM47T52PCA",
    };
    return std::ranges::find(models, model) != std::end(models);
}

bool is_54xx_series(std::string_view model) {
    return model == series_54xx;
}

bool belongs_to_54xx_series(std::string_view chip_name) {
    if (!chip_name.starts_with("VKM26H") && !chip_name.starts_with("VKM26W")) return false;
    if (chip_name.size() < size_digits_at + size_digits) return false;
    const std::int32_t size = leading_integer(chip_name.substr(size_digits_at, size_digits));
    return size >= smallest_of_series && size <= largest_of_series;
}

std::optional<std::int16_t> erase_sectors_47W_AD(std::string_view model) {
    return sectors_of(sectors_47W_AD, model);
}

std::optional<std::int16_t> erase_sectors_47_RB_RK(std::string_view model) {
    return sectors_of(sectors_47_RB_RK, model);
}

}  // namespace vkm
