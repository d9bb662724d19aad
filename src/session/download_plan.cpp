#include "session/download_plan.h"

#include <algorithm>

namespace vkm {
namespace {

// Last address that the early firmware of families 3 and 4 reaches.
constexpr std::int32_t reach_of_D = 0x13FF;
constexpr std::int32_t reach_of_early_E = 0x2FFF;
constexpr std::int32_t reach_of_late_E = 0x6FFF;
constexpr double last_early_E = 5.0;
// Program areas below this are cleared whole without asking.
constexpr std::int32_t small_program_area = 0x3800;

// The data memory of late letter E firmware begins at a round address.
std::int32_t data_start_of_late_E(std::int32_t ap_high) {
    for (std::int32_t start : {0x1000, 0x2000, 0x3000})
        if (ap_high <= start) return start;
    return ap_high + 1;
}

// What the firmware's letter says of the data memory; true when the image goes beyond it.
bool fit_data_memory(Download_Plan_Record& plan, const Plan_Facts& facts) {
    if (facts.Chip_Letter == "D") {
        plan.Plan_Data_High = reach_of_D;
        return plan.Plan_File_High > plan.Plan_Data_High;
    }
    if (facts.Chip_Letter != "E") return false;
    if (facts.version <= last_early_E) {
        plan.Plan_Data_High = reach_of_early_E;
        return plan.Plan_File_High > plan.Plan_Data_High;
    }
    plan.Plan_Data_Low = data_start_of_late_E(plan.Plan_AP_High);
    plan.Plan_Data_High = reach_of_late_E;
    return false;
}

// The program area above the image, the image's part in the data memory, and
// the data memory that it leaves free.
void divide_areas(Download_Plan_Record& plan) {
    const bool beyond = plan.Plan_File_High > plan.Plan_AP_High;
    const bool within = plan.Plan_File_High < plan.Plan_AP_High;
    const std::int32_t behind_data = plan.Plan_Data_High + 1;

    plan.Tail_Low = (within ? plan.Plan_File_High : plan.Plan_AP_High) + 1;
    plan.Tail_High = plan.Plan_AP_High;

    plan.Spill = beyond;
    plan.Spill_Low = beyond ? plan.Plan_Data_Low : behind_data;
    plan.Spill_High = beyond ? std::min(plan.Plan_File_High, plan.Plan_Data_High) : behind_data;

    plan.Free_Low = std::min(beyond ? plan.Spill_High + 1 : plan.Plan_Data_Low, behind_data);
    plan.Free_High = plan.Plan_Data_High;
}

// A large chip keeps its unused program area unless the operator asked to clear it.
bool clears_tail(const Download_Plan_Record& plan, const Plan_Facts& facts) {
    return letter_within(facts.Chip_Letter, "C", "G") && plan.Plan_File_High < plan.Plan_AP_High &&
           (facts.Chip_Letter == "G" || plan.Plan_AP_High < small_program_area ||
            facts.Clear_Unused_AP);
}

}  // namespace

Planned Make_Download_Plan(const Plan_Facts& facts) {
    Planned made;
    Download_Plan_Record& plan = made.plan;
    plan.Plan_Name = "AP_FILE";
    plan.Plan_AP_High = facts.Chip_Info.AP_End;
    plan.Plan_File_High = facts.Image_High;
    plan.Plan_Data_Low = facts.Chip_Info.Data_Start;
    plan.Plan_Data_High = facts.Chip_Info.Data_End;
    made.Over_Limit = fit_data_memory(plan, facts);
    divide_areas(plan);
    plan.Tail_Free = clears_tail(plan, facts);
    return made;
}

}  // namespace vkm
