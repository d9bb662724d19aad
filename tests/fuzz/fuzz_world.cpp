#include "fuzz/fuzz_world.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include "image/image_files.h"
#include "support/virtual_bench.h"
#include "text/trimming.h"

namespace vkm::fuzz {
namespace {

constexpr const char* program_path = "/before/program.bin";
constexpr const char* data_path = "/before/data.bin";

bool is_continuation(char c) {
    return (static_cast<unsigned char>(c) & 0xC0) == 0x80;
}

// How many bytes the character at the head of the text has; 0 for none.
std::size_t character_at_head(std::string_view text) {
    const auto first = static_cast<unsigned char>(text.front());
    const std::size_t length = first < 0x80                    ? 1
                               : first >= 0xC2 && first < 0xE0 ? 2
                               : first >= 0xE0 && first < 0xF0 ? 3
                               : first >= 0xF0 && first < 0xF5 ? 4
                                                               : 0;
    if (length == 0 || text.size() < length) return 0;
    return std::ranges::all_of(text.substr(1, length - 1), is_continuation) ? length : 0;
}

bool is_utf8(std::string_view text) {
    while (!text.empty()) {
        const std::size_t length = character_at_head(text);
        if (length == 0) return false;
        text.remove_prefix(length);
    }
    return true;
}

void check_image(const Image_Buffer& image, std::size_t size) {
    must(image.Bytes.size() == size, "an image keeps its size");
    // A 16-bit address and a record's length behind the highest start.
    constexpr std::int32_t highest = 0x30000;
    must(image.Image_Low >= 0 && image.Image_Low <= highest, "Image_Low is an address");
    must(image.Image_High >= -1 && image.Image_High <= highest, "Image_High is an address");
    must(image.File_High >= -1 && image.File_High <= image.Image_High,
         "a file lies below the end of its image");
}

void check_control(const Control& control) {
    const auto entries = static_cast<std::int32_t>(control.List.size());
    must(control.ListIndex >= -1 && control.ListIndex < entries, "a choice lies in its list");
    const auto characters = static_cast<std::int32_t>(character_count(control.Text));
    switch (control.Kind) {
        case ControlKind::CheckBox:
        case ControlKind::OptionButton:
            must(control.Value == 0 || control.Value == 1, "a box is checked or not");
            break;
        case ControlKind::ScrollBar:
            must(
                control.Value >= control.Min && control.Value <= std::max(control.Min, control.Max),
                "a bar stands between its ends");
            break;
        case ControlKind::LogBox:
        case ControlKind::MemoBox:
            // Without a length there is only an insertion point, which the edge holds inside.
            must(control.SelStart >= 0 && control.SelLength >= 0, "a selection is one");
            must(control.SelLength == 0 || control.SelStart + control.SelLength <= characters,
                 "a selection lies in its text");
            break;
        default:
            break;
    }
}

void check_numbering(const Auto_Increase_Set& set, const std::array<Control, 3>& formats) {
    must(set.Numeral >= 0 && set.Numeral <= 2, "a number has one of the three formats");
    must(std::ranges::count_if(formats, [](const Control& c) { return c.Value != 0; }) == 1,
         "one format is chosen");
}

}  // namespace

FuzzWorld::FuzzWorld() {
    files.add(program_path, std::vector<std::uint8_t>(600, 0x11));
    files.add(data_path, std::vector<std::uint8_t>(300, 0x22));
    test::start_program(frm);
}

void FuzzWorld::set_out(std::string_view model) {
    must(test::choose_model(frm, std::string(model)), "the model exists");
    Load_File(frm, program_path, program());
    Load_File(frm, data_path, data());
    must(frm.images.File_Loaded, "there is an image before");
    dialogs.boxes.clear();
}

void must(bool holds, const char* what) {
    if (holds) return;
    std::fprintf(stderr, "It doesn't hold that %s.\n", what);
    std::abort();
}

void check_always(FuzzWorld& world) {
    frmMain& frm = world.frm;
    check_image(world.program(), ap_buffer_size);
    check_image(world.data(), data_buffer_size);
    for_each_control(frm.screen, [](Control& control) { check_control(control); });
    check_numbering(frm.increase.Auto_Increase, frm.screen.optAuto_Increase);
    check_numbering(frm.increase.Data_Auto_Increase, frm.screen.optData_Auto_Increase);
    must(frm.session.UI_State != ui_locked || frm.images.File_Loaded,
         "a locked tool has a program");
    must(!frm.session.Project_Lock || frm.images.File_Loaded, "a project that locks has a program");
    must(!frm.session.Running && !frm.session.Connected, "no job began");
    must(world.files.open_readers == 0, "every file is closed again");
    must(world.dialogs.open_boxes == 0, "every box is closed again");
    must(frm.screen.MousePointer == default_pointer, "the pointer is its own again");
    must(world.take_violations().empty(), "the line is left alone");
}

void check_texts(FuzzWorld& world) {
    for_each_control(world.frm.screen, [](Control& control) {
        must(is_utf8(control.Text) && is_utf8(control.Caption), "the screen's texts are UTF-8");
    });
    for (const test::Box& box : world.boxes())
        must(is_utf8(box.text) && is_utf8(box.title), "the boxes' texts are UTF-8");
}

std::size_t CrumblingFile::read(std::span<std::uint8_t> room) {
    piece_ = piece_ % 7 + 1;
    const std::size_t count = std::min({piece_, room.size(), rest_.size()});
    std::ranges::copy(rest_.substr(0, count), room.begin());
    rest_.remove_prefix(count);
    return count;
}

std::vector<Line> lines_of(std::string_view content) {
    std::vector<Line> lines;
    while (!content.empty()) {
        const std::size_t end = content.find('\n');
        const bool ended = end != std::string_view::npos;
        lines.push_back({content.substr(0, end), ended});
        content.remove_prefix(ended ? end + 1 : content.size());
    }
    return lines;
}

std::string_view without_cr(std::string_view line) {
    if (line.ends_with('\r')) line.remove_suffix(1);
    return line;
}

}  // namespace vkm::fuzz
