// A project file into the tool.
#include <algorithm>
#include <memory>
#include <optional>
#include <utility>

#include "catalogue/mcu_catalogue.h"
#include "catalogue/model_selection.h"
#include "catalogue/tab_strips.h"
#include "image/buffer_view.h"
#include "image/image_files.h"
#include "image/image_messages.h"
#include "increase/auto_increase.h"
#include "options/option_panel.h"
#include "project/old_project.h"
#include "project/project_files.h"
#include "project/project_folder.h"
#include "project/project_items.h"
#include "project/project_reader.h"
#include "project/project_texts.h"
#include "session/download_session.h"
#include "text/numbers.h"
#include "text/trimming.h"
#include "waiting/waiting.h"

namespace vkm {
namespace {

void tell(frmMain& frm, std::string_view text) {
    frm.platform.dialogs.show_text(text);
}

// Nothing for a file that can't be opened, which the operator is told, and for a window
// that closes meanwhile.
std::optional<Project_Content> read_project(frmMain& frm, const std::string& path) {
    const std::unique_ptr<FileReader> file = frm.platform.files.open(path);
    if (!file) {
        tell(frm, chosen_text(frm.screen, image_text::file_gone));
        return std::nullopt;
    }
    Project_Reader reader(file.get());
    while (reader.read_piece()) {
        give_turn(frm);
        if (frm.link.close_pending) return std::nullopt;
    }
    return reader.content();
}

Project_Rows rows_on_screen(const CodePage& code_page, const Project_Rows& rows) {
    Project_Rows result;
    for (const Project_Row& row : rows) result.push_back({row.key, code_page.to_screen(row.value)});
    return result;
}

std::int16_t family_of(std::string_view model) {
    const auto record = record_by_name(trimmed(model));
    return record ? record->MCU_Family : std::int16_t{0};
}

Project_Rows converted(frmMain& frm, const Project_Rows& rows) {
    if (!is_old_project(rows)) return rows;
    Project_Rows present = present_rows(rows, family_of(value_of(rows, old_model_key)));
    tell(frm, project_text::old_version);
    return present;
}

// False for a model that doesn't exist; everything is as it was then.
bool choose_model(frmMain& frm, std::string_view model) {
    const CatalogueState before = frm.catalogue;
    std::string& device = frm.screen.txtDevice.Text;
    const std::string device_before = std::exchange(device, std::string(model));
    if (!Apply_Model(frm).empty()) return true;
    frm.catalogue = before;
    device = device_before;
    tell(frm, std::string(project_text::model_not_found) + std::string(model));
    return false;
}

void fill_image(Image_Buffer& buffer, const Image_Line& line) {
    std::ranges::copy(line.bytes(), buffer.Bytes.begin());
}

// The image ends with its last byte, and has no other file in it.
void take_range(Image_Buffer& buffer, const Image_Line& line) {
    buffer.Image_Low = 0;
    buffer.Image_High = static_cast<std::int32_t>(line.bytes().size()) - 1;
    buffer.File_High = buffer.Image_High;
    buffer.Has_File = true;
}

bool take_program(frmMain& frm, const Project_Rows& rows, const Image_Line& line) {
    Image_Buffer& buffer = frm.images.AP_Buffer;
    fill_image(buffer, line);
    if (!line.is_whole(leading_integer(value_of(rows, project_key::buffer_sum)))) {
        frm.images.Program_Spoilt = true;
        Redraw_Page(frm, buffer);
        tell(frm, project_text::program_sum_wrong);
        return false;
    }
    take_range(buffer, line);
    Refresh_Buffer_View(frm, buffer, frm.increase.Auto_Increase);
    frm.images.File_Loaded = true;
    comLockOptions(frm);
    frm.session.Project_Lock = true;
    return true;
}

// A file that was cut off has lost the data that its header tells of.
bool take_data(frmMain& frm, const Project_Rows& rows, const Project_Content& content) {
    const bool expected = !value_of(rows, project_key::data_file_sum).empty();
    if (!content.has_data && !expected) return true;
    if (!content.data.ended() || !content.data.is_whole(content.data_sum)) {
        // Its name and sum must not stand there as if it were loaded. The length that is
        // proposed for saving stays the program's.
        Reset_Buffer(frm, 0, frm.images.Data_Buffer);
        Redraw_Page(frm, frm.images.AP_Buffer);
        tell(frm, project_text::data_sum_wrong);
        return false;
    }
    Image_Buffer& buffer = frm.images.Data_Buffer;
    fill_image(buffer, content.data);
    take_range(buffer, content.data);
    Refresh_Buffer_View(frm, buffer, frm.increase.Data_Auto_Increase);
    return true;
}

// The project's number is the one of the day when it was saved. The settings know how
// far this bench has come since.
std::string next_value_line(frmMain& frm, const Auto_Increase_Set& set, std::string_view caption) {
    const NumberPlace place = place_of(frm, set);
    if (place.enable.Value == 0) return {};
    return "\r\n\r\n" + std::string(caption) + set.Next_Value +
           std::string(project_text::last_saved_value) + last_saved_number(frm, set);
}

void remind_of_next_value(frmMain& frm) {
    using namespace project_text;
    Read_Auto_Increase(frm);
    const std::string lines =
        next_value_line(frm, frm.increase.Auto_Increase, program_next_value) +
        next_value_line(frm, frm.increase.Data_Auto_Increase, data_next_value);
    if (!lines.empty()) tell(frm, std::string(check_next_value) + lines);
}

}  // namespace

void Load_Project(frmMain& frm) {
    const auto content = read_project(frm, frm.screen.texBatchFileName.Text);
    if (!content) return;
    const Project_Rows rows = converted(frm, rows_on_screen(frm.platform.code_page, content->rows));
    if (!choose_model(frm, value_of(rows, project_key::model))) return;
    Arrange_Options(frm);
    Reset_Buffer(frm, 0, frm.images.AP_Buffer);
    Reset_Buffer(frm, 0, frm.images.Data_Buffer);
    // What is in the images is no longer a file that could be read again.
    frm.images.Program_File.clear();
    frm.images.Buffer_Edit_OK = false;
    // Opened again later it is a new file, however much it has changed meanwhile.
    frm.session.Watched_File.clear();
    Set_Project_Items(frm, rows);
    // The numbers are patched by the next download.
    frm.increase.Auto_Increase.Active = false;
    frm.increase.Data_Auto_Increase.Active = false;
    const bool program_good = take_program(frm, rows, content->program);
    const bool whole = program_good && take_data(frm, rows, *content);
    if (whole) remind_of_next_value(frm);
    // The choice of the model freed some controls.
    Set_UI_State(frm, program_good ? std::int16_t{ui_locked} : frm.session.UI_State);
}

void Open_Project(frmMain& frm, const std::string& path) {
    frm.screen.texBatchFileName.Text = path;
    Load_Project(frm);
}

void comOpenBatchFile(frmMain& frm) {
    const std::string path =
        frm.platform.dialogs.ask_file_to_open({.title = project_text::open_title,
                                               .filter = project_text::filter,
                                               .folder = project_folder(frm),
                                               .name = {}});
    frm.screen.texBatchFileName.Text = path;
    if (path.empty()) return;
    choose_key(frm.screen.TabStrip2, "Batch_quantity");
    TabStrip2_Click(frm);
    Load_Project(frm);
}

void Command1(frmMain& frm) {
    frm.platform.dialogs.show_text(project_text::help, project_text::help_title);
}

}  // namespace vkm
