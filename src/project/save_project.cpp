// The job into a project file.
#include <algorithm>
#include <optional>
#include <span>

#include "image/path_parts.h"
#include "project/project_files.h"
#include "project/project_folder.h"
#include "project/project_items.h"
#include "project/project_texts.h"

namespace vkm {
namespace {

// Addresses 0 to Image_High, as far as there are bytes.
std::span<const std::uint8_t> saved_bytes(const Image_Buffer& buffer) {
    const auto count = std::clamp<std::int64_t>(std::int64_t{buffer.Image_High} + 1, 0,
                                                static_cast<std::int64_t>(buffer.Bytes.size()));
    return std::span(buffer.Bytes).first(static_cast<std::size_t>(count));
}

Project_Rows in_code_page(const CodePage& code_page, Project_Rows rows) {
    for (Project_Row& row : rows) row.value = code_page.to_file(row.value);
    return rows;
}

bool save(frmMain& frm, const std::string& path) {
    const Image_Buffer& data = frm.images.Data_Buffer;
    const std::string text = text_of_project(
        in_code_page(frm.platform.code_page, project_items(frm)), saved_bytes(frm.images.AP_Buffer),
        data.Has_File ? std::optional(saved_bytes(data)) : std::nullopt);
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(text.data());
    return frm.platform.files.replace(path, std::span(bytes, text.size()));
}

}  // namespace

void comSaveBatchFile(frmMain& frm) {
    using namespace project_text;
    if (!frm.images.File_Loaded) {
        frm.platform.dialogs.show_text(chosen_text(frm.screen, no_file));
        return;
    }
    const std::string folder = project_folder(frm);
    // Where it can't be made the dialog begins elsewhere.
    frm.platform.files.make_folder(folder);
    std::string& path = frm.screen.texBatchFileName.Text;
    path = frm.platform.dialogs.ask_file_to_save(
        {.title = save_title, .filter = filter, .folder = folder, .name = name_of(path)});
    if (path.empty() || save(frm, path)) return;
    frm.platform.dialogs.show_text(std::string(chosen_text(frm.screen, not_saved)) + path);
}

}  // namespace vkm
