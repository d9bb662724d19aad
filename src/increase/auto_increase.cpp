#include "increase/auto_increase.h"

#include <algorithm>
#include <limits>

#include "increase/increase_texts.h"
#include "increase/number_bytes.h"
#include "text/hexadecimal.h"
#include "text/numbers.h"
#include "text/trimming.h"

namespace vkm {
namespace {

enum Field { address_field, length_field, next_field, increase_field };

constexpr std::string_view numeral_key = "numeral_system";
constexpr std::string_view default_numeral = "1";

struct FieldSetting {
    std::string_view key;
    std::string_view otherwise;
};

constexpr FieldSetting field_settings[] = {
    {"address", "FFFF"}, {"Length", "8"}, {"next_value", "0000"}, {"Increase", "1"}};

bool is_program_set(const Auto_Increase_Set& set) {
    return upper_case(set.Set_Name) == "AP_AUTO_INCREASE";
}

std::array<NumberPlace, 2> places(frmMain& frm) {
    IncreaseState& increase = frm.increase;
    return {place_of(frm, increase.Auto_Increase), place_of(frm, increase.Data_Auto_Increase)};
}

void load(frmMain& frm, const NumberPlace& place) {
    const auto setting = [&](std::string_view key, std::string_view otherwise) {
        return frm.platform.settings.get(place.section, key, otherwise);
    };
    for (std::size_t i = 0; i < place.fields.size(); ++i)
        place.fields[i].Text = setting(field_settings[i].key, field_settings[i].otherwise);
    const std::int32_t stored = leading_integer(setting(numeral_key, default_numeral));
    const std::int32_t numeral = stored >= 0 && stored <= numeral_ascii ? stored : 0;
    for (Control& format : place.formats) format.Value = format.Index == numeral ? 1 : 0;
}

std::int32_t chosen_numeral(const NumberPlace& place) {
    const auto chosen =
        std::ranges::find_if(place.formats, [](const Control& c) { return c.Value != 0; });
    return chosen == place.formats.end() ? 0 : chosen->Index;
}

void save(frmMain& frm, const NumberPlace& place) {
    for (std::size_t i = 0; i < place.fields.size(); ++i)
        frm.platform.settings.save(place.section, field_settings[i].key, place.fields[i].Text);
    frm.platform.settings.save(place.section, numeral_key, std::to_string(chosen_numeral(place)));
}

std::int16_t short_number(Control& field) {
    using Limits = std::numeric_limits<std::int16_t>;
    const std::int32_t value = leading_integer(field.Text);
    const std::int32_t held = std::clamp<std::int32_t>(value, Limits::min(), Limits::max());
    if (held != value) field.Text = std::to_string(held);
    return static_cast<std::int16_t>(held);
}

void read(const NumberPlace& place) {
    Control& address = place.fields[address_field];
    address.Text = upper_case(address.Text);
    place.set.Address = static_cast<std::int32_t>(hex_field(address.Text, length_digits));
    place.set.Length = short_number(place.fields[length_field]);
    place.set.Next_Value = trimmed(place.fields[next_field].Text);
    place.set.Increase = short_number(place.fields[increase_field]);
    place.set.Numeral = chosen_numeral(place);
}

// The data set's limit is the same address as the program's, and not counted from
// Data_Start.
std::int32_t highest_address(const frmMain& frm, const Auto_Increase_Set& set) {
    const MCU_Record& model = frm.catalogue.MCU_Info;
    return is_program_set(set) && model.MCU_Family < 2 ? model.AP_End : model.Data_End;
}

}  // namespace

NumberPlace place_of(frmMain& frm, const Auto_Increase_Set& set) {
    Screen& screen = frm.screen;
    if (is_program_set(set))
        return {.set = frm.increase.Auto_Increase,
                .buffer = frm.images.AP_Buffer,
                .enable = screen.cheAuto_Increase,
                .fields = screen.texAuto_Increase,
                .formats = screen.optAuto_Increase,
                .section = "Auto_Increase",
                .title = increase_text::program_title};
    return {.set = frm.increase.Data_Auto_Increase,
            .buffer = frm.images.Data_Buffer,
            .enable = screen.cheData_Auto_Increase,
            .fields = screen.texData_Auto_Increase,
            .formats = screen.optData_Auto_Increase,
            .section = "Data_Auto_Increase",
            .title = increase_text::data_title};
}

void Load_Auto_Increase_Settings(frmMain& frm) {
    for (const NumberPlace& place : places(frm)) load(frm, place);
}

void Save_Auto_Increase_Settings(frmMain& frm) {
    for (const NumberPlace& place : places(frm)) save(frm, place);
    frm.platform.settings.flush();
}

void Read_Auto_Increase(frmMain& frm) {
    for (const NumberPlace& place : places(frm)) read(place);
}

int Check_Auto_Increase(frmMain& frm, Auto_Increase_Set& set) {
    std::string_view problem;
    if (set.Address > highest_address(frm, set))
        problem = increase_text::address_too_high;
    else if (set.Address + 1 - set.Length < 0)
        problem = increase_text::address_too_low;
    if (!problem.empty()) {
        frm.platform.dialogs.show_text(problem);
        return -1;
    }
    set.Active = true;
    return 0;
}

void Patch_Auto_Increase(frmMain& frm, Auto_Increase_Set& set) {
    const NumberPlace place = place_of(frm, set);
    const NumberBytes number = number_bytes(set);
    if (!number.problem.empty()) {
        frm.platform.dialogs.show_text(number.problem, place.title);
        return;
    }
    std::vector<std::uint8_t>& image = place.buffer.Bytes;
    std::int64_t address = set.Address;
    for (const std::uint8_t byte : number.bytes) {
        if (address >= 0 && address < static_cast<std::int64_t>(image.size()))
            image[static_cast<std::size_t>(address)] = byte;
        --address;
    }
}

void Advance_Auto_Increase(frmMain& frm, Auto_Increase_Set& set) {
    if (!set.Active) return;
    place_of(frm, set).fields[next_field].Text = next_number(set);
    Read_Auto_Increase(frm);
}

void Note_Number_Behind(frmMain& frm, const Auto_Increase_Set& set) {
    frm.platform.settings.save(place_of(frm, set).section, field_settings[next_field].key,
                               next_number(set));
}

void Note_Numbers_Behind(frmMain& frm) {
    for (const NumberPlace& place : places(frm))
        if (place.set.Active && counts_up(place.set)) Note_Number_Behind(frm, place.set);
}

std::string last_saved_number(frmMain& frm, const Auto_Increase_Set& set) {
    const auto [key, otherwise] = field_settings[next_field];
    return frm.platform.settings.get(place_of(frm, set).section, key, otherwise);
}

void Program_Number_Touched(frmMain& frm) {
    frm.increase.Auto_Increase.Active = false;
}

void Data_Number_Touched(frmMain& frm) {
    frm.increase.Data_Auto_Increase.Active = false;
}

void Free_Number_Fields(const frmMain& frm, const NumberPlace& place) {
    if (frm.session.UI_State != ui_idle || !place.enable.Enabled) return;
    for (Control& field : place.fields) field.Enabled = true;
    for (Control& format : place.formats) format.Enabled = true;
}

void Switch_Numbering_Off(frmMain& frm) {
    for (const NumberPlace& place : places(frm)) {
        place.enable.Value = 0;
        place.set.Active = false;
        Free_Number_Fields(frm, place);
    }
}

}  // namespace vkm
