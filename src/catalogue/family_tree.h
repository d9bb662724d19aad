// What the tree of families offers, as values: a node per family and below it a
// node per model, in the order in which the operator sees them.
#pragma once

#include <array>
#include <string_view>
#include <vector>

#include "screen/control.h"

namespace vkm {

// A family node's key begins with this; a model's key is its name.
inline constexpr std::string_view family_key_start = "Family";

// Keys of the family nodes by family number. There is no family 5; family 6 has
// a key and no node, so its models can't be chosen.
inline constexpr std::array<std::string_view, 7> family_keys = {
    "Family47H516RK", "Family47W516AD", "Family47H5xRB/RK+", "Family26H2052", "Family26H5410E", "",
    "Family27xxx"};

bool is_family_key(std::string_view key);

// All nodes: the families first, then the models family by family.
std::vector<Entry> device_tree();

}  // namespace vkm
