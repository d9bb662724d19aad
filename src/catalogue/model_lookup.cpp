#include "catalogue/model_lookup.h"

#include "catalogue/model_table.h"
#include "text/trimming.h"

namespace vkm {
namespace {

constexpr std::size_t two_digits = 2;

MCU_Record record_of(const ModelGroup& group, const ModelRow& row) {
    MCU_Record record;
    record.MCU_Family = group.MCU_Family;
    record.MCU_ID = row.MCU_ID;
    record.AP_End = row.AP_End;
    record.AP_End_Alt = row.AP_End_Alt;
    record.Data_Start = row.Data_Start;
    record.Data_End = row.Data_End;
    record.Code_Top = row.Code_Top;
    record.Memory_Top = row.Memory_Top;
    record.Split_Flag = row.Split_Flag;
    record.MCU_Name = row.MCU_Name;
    record.Old_ID = row.Old_ID;
    record.SoftICE_ROM = row.SoftICE_ROM;
    return record;
}

CodePlace find_code_in(std::string_view code, int first_group, int last_group) {
    for (int group = first_group; group <= last_group; ++group)
        for (int row = 0; row < rows_of_a_group; ++row) {
            const ModelRow& model = catalogue_row(group, row);
            if (model.MCU_ID == code) return {std::string(model.MCU_Name), group, row};
        }
    return {};
}

}  // namespace

CodePlace Find_Code(std::string_view code) {
    code = trimmed(code);
    if (code.size() == two_digits) return find_code_in(code, two_digit_group, two_digit_group);
    return find_code_in(code, two_digit_group + 1, last_filled_group);
}

std::optional<MCU_Record> record_by_name(std::string_view name) {
    for (int group = 0; group <= last_filled_group; ++group) {
        if (group == older_54xx_group) continue;
        const ModelGroup& models = MCU_AP_ISP_range[static_cast<std::size_t>(group)];
        for (const ModelRow& row : models.rows)
            if (row.MCU_Name == name) return record_of(models, row);
    }
    return std::nullopt;
}

std::optional<MCU_Record> record_by_code(std::string_view code) {
    for (const ModelGroup& models : MCU_AP_ISP_range)
        for (const ModelRow& row : models.rows)
            if (row.MCU_ID == code) return record_of(models, row);
    return std::nullopt;
}

}  // namespace vkm
