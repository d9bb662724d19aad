// How a file comes to be loaded: the dialogs, the remembered paths, a drop.
#include <string>

#include "image/image_files.h"
#include "image/image_messages.h"
#include "image/path_parts.h"
#include "plug.h"
#include "screen/control.h"
#include "text/trimming.h"

namespace vkm {
namespace {

constexpr std::string_view settings_section = "Settings";
constexpr std::string_view path_key = "FilePath";
constexpr std::string_view data_path_key = "DataFilePath";
constexpr std::string_view project_extension = ".VKM";

// What the open dialog asks, and where its answer is kept.
struct OpenKind {
    std::string_view title;
    std::string_view key;
    std::string_view caption;
    Control Screen::*frame;
};

constexpr OpenKind program_kind = {image_text::open_title, path_key, image_text::program_caption,
                                   &Screen::Frame7};
constexpr OpenKind data_kind = {image_text::open_data_title, data_path_key,
                                image_text::data_caption, &Screen::frmDataFlash};

const OpenKind& open_kind(std::string_view kind) {
    return kind == "AP" ? program_kind : data_kind;
}

// What the dialog starts with. A path that ends in a separator is a folder; any
// other counts only while the file is still there.
struct Proposal {
    std::string folder;
    std::string name;
};

Proposal proposal_from(const Files& files, const std::string& remembered) {
    if (ends_in_separator(remembered)) return {.folder = remembered, .name = {}};
    if (!files.exists(remembered)) return {};
    return {.folder = folder_of(remembered), .name = name_of(remembered)};
}

bool is_project(const std::string& path) {
    return upper_case(path).find(project_extension) != std::string::npos;
}

// A project is no file of an image: it brings the captions of its own along, or is
// refused and changes none.
void remember_file(frmMain& frm, const OpenKind& kind, const std::string& path) {
    frm.images.Current_File = path;
    if (!is_project(path)) (frm.screen.*kind.frame).Caption = std::string(kind.caption) + path;
    frm.platform.settings.save(settings_section, kind.key, path);
    frm.platform.settings.flush();
}

void load_chosen(frmMain& frm, const std::string& path, Image_Buffer& buffer) {
    if (path.empty()) return;
    if (!is_project(path)) {
        Load_File(frm, path, buffer);
        return;
    }
    choose_key(frm.screen.TabStrip2, "Batch_quantity");
    run_plug(frm, frm.images.Show_Chosen_Page);
    run_plug(frm, frm.images.Load_Project, path);
}

}  // namespace

std::string Choose_File(frmMain& frm, std::string_view kind) {
    const OpenKind& asked = open_kind(kind);
    const std::string remembered = frm.platform.settings.get(settings_section, asked.key, "");
    const Proposal proposal = proposal_from(frm.platform.files, remembered);
    const std::string path =
        frm.platform.dialogs.ask_file_to_open({.title = asked.title,
                                               .filter = image_text::open_filter,
                                               .folder = proposal.folder,
                                               .name = proposal.name});
    if (!path.empty()) remember_file(frm, asked, path);
    return path;
}

bool Check_Last_File(frmMain& frm) {
    // A file that was chosen and refused is remembered, but isn't the one to be read.
    const std::string& loaded = frm.images.Program_File;
    const std::string path =
        loaded.empty() ? frm.platform.settings.get(settings_section, path_key, "") : loaded;
    if (!frm.platform.files.exists(path)) {
        frm.platform.dialogs.show_text(chosen_text(frm.screen, image_text::file_gone));
        return false;
    }
    frm.screen.Frame7.Caption = std::string(image_text::program_caption) + path;
    return true;
}

void comLoadFile(frmMain& frm) {
    load_chosen(frm, Choose_File(frm, "AP"), frm.images.AP_Buffer);
}

void comLoadDataFile(frmMain& frm) {
    load_chosen(frm, Choose_File(frm, "DATA"), frm.images.Data_Buffer);
}

void Open_Dropped_File(frmMain& frm, const std::string& path) {
    // The open dialog is closed to the operator during a job, and gives existing
    // files alone; a folder is none.
    if (!frm.screen.comLoadFile.Enabled || !frm.platform.files.exists(path)) return;
    remember_file(frm, program_kind, path);
    load_chosen(frm, path, frm.images.AP_Buffer);
}

}  // namespace vkm
