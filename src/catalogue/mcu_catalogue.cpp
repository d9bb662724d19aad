#include "catalogue/mcu_catalogue.h"

#include <optional>
#include <utility>

#include "text/hexadecimal.h"
#include "text/trimming.h"

namespace vkm {
namespace {

// The text is the same in both languages.
constexpr std::string_view model_not_found = "找不到 MCU: ";

constexpr std::int16_t block_size_family_0 = 128;  // the oldest firmware takes no more
constexpr std::int16_t block_size = 512;           // a sector of the flash

std::string take(frmMain& frm, std::optional<MCU_Record> found, MCU_Record& record) {
    if (!found) {
        frm.platform.dialogs.show_text(std::string(model_not_found) + frm.screen.txtDevice.Text);
        return {};
    }
    CatalogueState& catalogue = frm.catalogue;
    found->ISP_Start = record.ISP_Start;
    record = *std::move(found);
    // These follow the operator's choice. The record of the chip that answered, or
    // of an old code, must not change how the chosen model is programmed.
    if (&record != &catalogue.MCU_Info) return record.MCU_Name;
    catalogue.SoftICE_File = trimmed(record.SoftICE_ROM);
    catalogue.SoftICE_Enable = !catalogue.SoftICE_File.empty();
    catalogue.Block_Size = record.MCU_Family == 0 ? block_size_family_0 : block_size;
    return record.MCU_Name;
}

// An address in the four digits that the boxes have room for.
std::string four_digits(std::int32_t address) {
    return hex_text(static_cast<std::uint16_t>(address), address_digits);
}

}  // namespace

std::string Find_Model(frmMain& frm, std::string_view name, MCU_Record& record) {
    return take(frm, record_by_name(name), record);
}

std::string Find_Code_Record(frmMain& frm, std::string_view code, MCU_Record& record) {
    return take(frm, record_by_code(code), record);
}

void Show_ISP_Range(frmMain& frm) {
    MCU_Record& model = frm.catalogue.MCU_Info;
    const IspRange range = isp_range(model, frm.screen.txtDevice.Text);
    model.ISP_Start = range.ISP_Start;
    frm.screen.txtISP_reange[0].Text = four_digits(model.AP_Start);
    frm.screen.txtISP_reange[1].Text = four_digits(range.shown_end);
}

void Settle_ISP_Range(frmMain& frm) {
    if (frm.timers.Timer3.Enabled) Show_ISP_Range(frm);
}

}  // namespace vkm
