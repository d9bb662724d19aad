#include "options/mcu_options.h"

#include "options/option_bytes.h"
#include "options/option_schema.h"

namespace vkm {
namespace {

using Rows = std::vector<Option_Row>;

constexpr std::int16_t all_but_prescaler = 248;

std::size_t place(int group) {
    return static_cast<std::size_t>(group);
}

std::int16_t family(const frmMain& frm) {
    return frm.catalogue.MCU_Info.MCU_Family;
}

std::string state_of(const Control& control, Property_Kind property) {
    switch (property) {
        case Property_Kind::Caption:
            return control.Caption;
        case Property_Kind::Text:
            return std::string(text_of(control));
        default:
            return control.Value != 0 ? "True" : "False";
    }
}

void apply_choice(OptionsState& options, const Option_Row& row) {
    const auto bit = option_bit(row.Option_Code);
    if (!bit || row.Option_State != "True") return;
    std::int16_t& byte = options.Option_Bytes[0][bit->byte];
    byte = static_cast<std::int16_t>(bit->value == 0 ? byte & Bit_Clear_Mask[bit->bit]
                                                     : byte | Bit_Set_Mask[bit->bit]);
}

void apply_prescaler(frmMain& frm, const Rows& rows) {
    const auto at = prescaler_byte(family(frm));
    const Option_Row* row = find_row(rows, option_key::prescaler);
    if (!at || !row) return;
    const Control* list = control_of(frm.screen, *row);
    const std::int16_t bits = prescaler_bits(list ? text_of(*list) : std::string_view{});
    std::int16_t& byte = frm.options.Option_Bytes[0][*at];
    byte = static_cast<std::int16_t>((byte & all_but_prescaler) | bits);
}

std::string state_of_key(const frmMain& frm, std::string_view key, const Option_Words& bytes) {
    const Rows* rows = family_rows(frm);
    const Option_Row* row = rows ? find_row(*rows, key) : nullptr;
    return row ? std::string(bit_state(row->Option_Code, bytes)) : std::string();
}

}  // namespace

void Fill_Options(frmMain& frm) {
    for (int group = 0; group < option_group_count; ++group)
        frm.options.MCU_Options[place(group)] = option_rows(group);
}

Rows* family_rows(frmMain& frm) {
    const auto group = option_group(family(frm));
    return group ? &frm.options.MCU_Options[place(*group)] : nullptr;
}

const Rows* family_rows(const frmMain& frm) {
    const auto group = option_group(family(frm));
    return group ? &frm.options.MCU_Options[place(*group)] : nullptr;
}

Control* control_of(Screen& screen, const Option_Row& row) {
    return find_control(screen, row.Option_Control, row.Option_Index);
}

void Reset_Option_State(frmMain& frm) {
    if (Rows* rows = family_rows(frm))
        for (Option_Row& row : *rows) row.Option_State.clear();
}

void Refresh_Option_State(frmMain& frm) {
    Reset_Option_State(frm);
    Rows* rows = family_rows(frm);
    if (!rows) return;
    for (Option_Row& row : *rows) {
        if (row.Option_Code.empty() && row.Option_Key != option_key::prescaler) continue;
        const Control* control = control_of(frm.screen, row);
        if (control) row.Option_State = state_of(*control, row.Option_Property);
    }
}

// A byte without an entry ends the filling: chips of that family take no option
// bytes of this kind, and the words keep what they held.
void Fill_Option_Defaults(frmMain& frm) {
    auto& [value, and_mask, or_mask, unused] = frm.options.Option_Bytes;
    for (std::size_t byte = 0; byte < option_byte_count; ++byte) {
        const auto entry = option_default(family(frm), byte);
        if (!entry) return;
        value[byte] = entry->value;
        and_mask[byte] = entry->and_mask;
        or_mask[byte] = entry->or_mask;
    }
    for (std::size_t byte = 0; byte < option_byte_count; ++byte)
        value[byte] = static_cast<std::int16_t>((or_mask[byte] | value[byte]) & and_mask[byte]);
}

void Compose_Options(frmMain& frm) {
    Refresh_Option_State(frm);
    const Rows* rows = family_rows(frm);
    if (!rows) return;
    Fill_Option_Defaults(frm);
    for (const Option_Row& row : *rows) apply_choice(frm.options, row);
    apply_prescaler(frm, *rows);
    Preview_All_Options(frm);
}

std::string Read_Option(const frmMain& frm, std::string_view key) {
    return state_of_key(frm, key, frm.options.Chip_Bytes);
}

std::string Preview_Option(const frmMain& frm, std::string_view key) {
    return state_of_key(frm, key, frm.options.Option_Bytes[0]);
}

void Read_All_Options(frmMain& frm) {
    if (family_rows(frm)) Fill_Option_Defaults(frm);
    for (const std::string_view key : option_keys)
        frm.options.Read_State[std::string(key)] = Read_Option(frm, key);
}

void Preview_All_Options(frmMain& frm) {
    for (const std::string_view key : option_keys)
        frm.options.Panel_State[std::string(key)] = Preview_Option(frm, key);
}

}  // namespace vkm
