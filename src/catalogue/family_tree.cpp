#include "catalogue/family_tree.h"

#include "catalogue/model_table.h"

namespace vkm {
namespace {

struct FamilyNode {
    std::string_view text;
    std::size_t group;  // whose rows are its children
};

// In the order of the tree. Group 4 feeds no node: its models are those of group 5.
constexpr FamilyNode family_nodes[] = {
    {"47H5xRB/RK+ 系列", 2}, {"26H2052 系列", 3},  {"26H5410 系列", 5},
    {"47H516RK 系列", 0},    {"47W516AD 系列", 1},
};

std::string key_of(const FamilyNode& node) {
    const auto family = static_cast<std::size_t>(MCU_AP_ISP_range[node.group].MCU_Family);
    return std::string(family_keys[family]);
}

}  // namespace

bool is_family_key(std::string_view key) {
    return key.starts_with(family_key_start);
}

std::vector<Entry> device_tree() {
    std::vector<Entry> tree;
    for (const FamilyNode& node : family_nodes)
        tree.push_back({.Text = std::string(node.text), .Key = key_of(node), .Parent = {}});
    for (const FamilyNode& node : family_nodes)
        for (const ModelRow& row : MCU_AP_ISP_range[node.group].rows) {
            if (!row.In_Tree) continue;
            const std::string name(row.MCU_Name);
            tree.push_back({.Text = name, .Key = name, .Parent = key_of(node)});
        }
    return tree;
}

}  // namespace vkm
