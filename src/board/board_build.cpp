#include "board/board_build.h"

#include <algorithm>
#include <optional>
#include <string>

#include "board/board_image.h"
#include "board/board_texts.h"
#include "catalogue/mcu_catalogue.h"
#include "increase/number_bytes.h"
#include "options/mcu_options.h"
#include "session/download_session.h"
#include "session/progress.h"
#include "session/session_report.h"
#include "text/hexadecimal.h"
#include "text/numbers.h"
#include "waiting/waiting.h"

namespace vkm {
namespace {

constexpr double first_number_out_of_reach = 2147483648.0;
constexpr std::int32_t longest_number = 10;  // bytes
constexpr std::int32_t greatest_increment = 0xFF;

enum Field { address_field, length_field, next_field, increase_field };

bool refuse(frmMain& frm, std::string_view why) {
    frm.platform.dialogs.show_text(why);
    return false;
}

Board_Number number_on_screen(const frmMain& frm) {
    const Screen& screen = frm.screen;
    const auto& fields = screen.texAuto_Increase;
    const auto chosen = std::ranges::find_if(screen.optAuto_Increase,
                                             [](const Control& c) { return c.Value != 0; });
    return {
        .enabled = screen.cheAuto_Increase.Value != 0,
        .address = static_cast<std::int32_t>(hex_field(fields[address_field].Text, address_digits)),
        .length = leading_integer(fields[length_field].Text),
        .increment = leading_integer(fields[increase_field].Text),
        .numeral = chosen == screen.optAuto_Increase.end() ? -1 : chosen->Index};
}

bool last_number_fits(frmMain& frm, const Board_Number& number) {
    if (!number.enabled) return true;
    const double next = leading_number(frm.screen.texAuto_Increase[next_field].Text);
    const double last = next + static_cast<double>(number.increment) * frm.board.Chip_Limit;
    return last < first_number_out_of_reach || refuse(frm, board_text::numbers_too_great);
}

// The record of the older code; nothing when the model has none or no row has that code.
std::optional<MCU_Record> old_model(frmMain& frm) {
    const std::string code = frm.catalogue.MCU_Info.Old_ID;
    if (code.empty()) return std::nullopt;
    MCU_Record record;
    if (Find_Code_Record(frm, code, record).empty()) return std::nullopt;
    return record;
}

void tell_cut(frmMain& frm) {
    const std::int32_t limit = Board_Code_Limit(frm);
    if (frm.images.AP_Buffer.Image_High < limit) return;
    frm.platform.dialogs.show_text(std::string(board_text::code_cut[0]) +
                                   std::to_string(limit / bytes_per_kilobyte) +
                                   std::string(board_text::code_cut[1]));
}

}  // namespace

bool Board_Check_Limit(frmMain& frm) {
    const double wanted = leading_number(frm.screen.txt_download_max.Text);
    if (wanted > most_chips) return refuse(frm, board_text::limit_too_great);
    const std::int32_t chips = leading_integer(frm.screen.txt_download_max.Text);
    if (chips <= 0) return refuse(frm, board_text::limit_too_small);
    frm.board.Chip_Limit = chips;
    lay_out_limit(frm.board.Board_Image, chips);
    return true;
}

bool Board_Check_Number(frmMain& frm) {
    const Board_Number number = number_on_screen(frm);
    if (!number.enabled) return true;
    const Auto_Increase_Set& set = frm.increase.Auto_Increase;
    if (!set.Active) return false;
    const std::string_view problem = number_bytes(set).problem;
    if (!problem.empty()) return refuse(frm, problem);
    const bool fits = number.length >= 1 && number.length <= longest_number &&
                      number.increment >= 0 && number.increment <= greatest_increment;
    return fits || refuse(frm, board_text::number_too_wide);
}

bool Board_Make_Table(frmMain& frm) {
    const Board_Number number = number_on_screen(frm);
    lay_out_tables(frm.board.Board_Image, number, frm.board.Chip_Limit);
    frm.board.Saved_AP_Image = frm.images.AP_Buffer.Bytes;
    return last_number_fits(frm, number);
}

std::int32_t Board_Code_Limit(const frmMain& frm) {
    return board_code_limit(frm.catalogue.MCU_Info.MCU_Family, frm.board.Board_Capacity);
}

void Board_Make_Block(frmMain& frm) {
    tell_cut(frm);
    Compose_Options(frm);
    const std::optional<MCU_Record> old = old_model(frm);
    lay_out_parameters(frm.board.Board_Image, {.MCU_Info = frm.catalogue.MCU_Info,
                                               .Old_Model = old ? &*old : nullptr,
                                               .model_name = frm.screen.txtDevice.Text,
                                               .Block_Size = frm.catalogue.Block_Size,
                                               .Option_Bytes = frm.options.Option_Bytes[0],
                                               .Image_High = frm.images.AP_Buffer.Image_High,
                                               .Board_Capacity = frm.board.Board_Capacity});
}

void Board_Make_CRC(frmMain& frm) {
    report(frm, board_text::processing);
    Control& bar = frm.screen.ProgressBar1;
    set_up_bar(frm, {.Min = 0, .Max = code_blocks});
    Show_Progress(frm, Progress::down_load);
    for (int block = 0; block < code_blocks; ++block) {
        lay_out_code_crc(frm.board.Board_Image, frm.images.AP_Buffer.Bytes, block);
        bar.Value = block + 1;
        give_turn(frm);
    }
}

void Board_Copy_Code(frmMain& frm) {
    lay_out_code(frm.board.Board_Image, frm.images.AP_Buffer.Bytes);
}

}  // namespace vkm
