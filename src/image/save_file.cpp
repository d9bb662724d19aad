// Save File: a piece of the program image into a binary file.
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

#include "image/image_files.h"
#include "image/image_messages.h"
#include "image/path_parts.h"
#include "image/save_range.h"

namespace vkm {

void Enable_Save_File(frmMain& frm) {
    Screen& screen = frm.screen;
    screen.comStoreFile.Enabled = frm.session.UI_State == ui_idle &&
                                  !screen.txt_Start_Address.Text.empty() &&
                                  !screen.txt_length.Text.empty();
}

void comStoreFile(frmMain& frm) {
    const SaveRange range =
        save_range(frm.screen.txt_Start_Address.Text, frm.screen.txt_length.Text);
    const std::string_view problem = save_range_problem(range);
    if (!problem.empty()) {
        frm.platform.dialogs.show_text(problem);
        return;
    }
    const std::string folder = folder_of(frm.platform.settings.get("Settings", "FilePath", ""));
    const std::string path =
        frm.platform.dialogs.ask_file_to_save({.title = image_text::save_title,
                                               .filter = image_text::save_filter,
                                               .folder = folder,
                                               .name = {}});
    if (path.empty()) return;
    // A file that can't be written is passed over without a word.
    frm.platform.files.replace(path, std::span<const std::uint8_t>(frm.images.AP_Buffer.Bytes)
                                         .subspan(static_cast<std::size_t>(range.start),
                                                  static_cast<std::size_t>(range.length)));
}

}  // namespace vkm
