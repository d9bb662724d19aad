// Everything that depends on a model's name and on nothing else, asked here and
// nowhere else. A name is compared as it stands: exact, case and all, so the
// caller decides whether it trims. A name that no trait knows gets the common
// answer.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace vkm {

// The collective entry that stands for the large 54xx models when one is chosen.
inline constexpr std::string_view series_54xx = "26H/W54xx Series";

// Boot firmware of 2 KB instead of 1 KB: the 47H/W55RK+ and 47H/W61RK+.
bool has_2k_isp(std::string_view model);

// Size of the boot block below Memory_Top, in bytes: 1024 or 2048.
std::int32_t isp_size(std::string_view model);

// The 47H/W55RK+: between the program area and 0x8000 there is no memory.
bool has_memory_hole(std::string_view model);

// The 47W516AD and 47W516X2: one two-digit code for both, so that either stands
// for the other; large firmware takes room from their program area.
bool is_W516(std::string_view model);

// One of the 47H and 47T models of family 0 with a PCA, whose option byte differs
// from that of the others.
bool has_PCA_option(std::string_view model);

// Chosen is the collective entry series_54xx.
bool is_54xx_series(std::string_view model);

// A chip's model that the collective entry stands for: a 26H or 26W model whose
// size, the digits at characters 9 and 10, is 16 to 28.
bool belongs_to_54xx_series(std::string_view chip_name);

// How many 512-byte sectors an erase of the whole chip counts, for firmware that
// has to be told by model. Empty for a model of another generation.
std::optional<std::int16_t> erase_sectors_47W_AD(std::string_view model);    // letters A, B
std::optional<std::int16_t> erase_sectors_47_RB_RK(std::string_view model);  // letter C before 2.8

}  // namespace vkm
