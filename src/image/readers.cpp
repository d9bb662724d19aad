#include "image/readers.h"

#include <algorithm>
#include <memory>

#include "image/buffer_view.h"
#include "image/image_files.h"
#include "image/image_messages.h"
#include "image/placement.h"
#include "image/range_rules.h"
#include "image/start_address.h"
#include "image/text_lines.h"
#include "text/hexadecimal.h"
#include "text/trimming.h"
#include "waiting/waiting.h"

namespace vkm {
namespace {

constexpr int lines_looked_at = 3;
constexpr int bad_lines_told = 3;

enum class Reading { ended, refused, overtaken };

bool overtaken(const Image_Buffer& buffer, std::uint32_t number) {
    return buffer.Load_Number != number;
}

Placement placement_in(const Image_Buffer& buffer) {
    return {.Bytes = buffer.Bytes, .Start = placement_start(buffer.Start_Add)};
}

void show_bad_line(frmMain& frm, const std::string& path, const TextLine& line) {
    frm.platform.dialogs.show_text(
        std::string(chosen_text(frm.screen, image_text::bad_checksum)) + line.Kept, path);
}

bool ask_to_go_on(frmMain& frm) {
    return frm.platform.dialogs.ask_yes_no(chosen_text(frm.screen, image_text::go_on_unchecked));
}

Reading read_records(frmMain& frm, const std::string& path, const Image_Buffer& buffer,
                     Placement& file) {
    const std::uint32_t number = buffer.Load_Number;
    const std::unique_ptr<FileReader> reader = frm.platform.files.open(path);
    TextLines lines(reader.get());
    int Errors = 0;
    for (;;) {
        const TextLines::Step step = lines.next();
        give_turn(frm);
        if (overtaken(buffer, number)) return Reading::overtaken;
        if (step == TextLines::Step::end) return Reading::ended;
        const TextLine& text = lines.line();
        if (step == TextLines::Step::more || !text.Kept.starts_with(':')) continue;

        const HexLine line = read_hex_line(std::string_view(text.Kept).substr(1), text.Length - 1);
        if (!line.Good && Errors < bad_lines_told) {
            show_bad_line(frm, path, text);
            if (overtaken(buffer, number)) return Reading::overtaken;
            const bool refused = ++Errors == bad_lines_told && !ask_to_go_on(frm);
            if (overtaken(buffer, number)) return Reading::overtaken;
            if (refused) return Reading::refused;
        }
        if (record_type(line) == end_record) return Reading::ended;
        place_record(file, line, frm.catalogue.MCU_Info.Memory_Top);
    }
}

Reading read_binary(frmMain& frm, const std::string& path, const Image_Buffer& buffer,
                    Placement& file) {
    const std::uint32_t number = buffer.Load_Number;
    const std::unique_ptr<FileReader> reader = frm.platform.files.open(path);
    begin_binary(file);
    while (reader && place_piece(file, *reader)) {
        give_turn(frm);
        if (overtaken(buffer, number)) return Reading::overtaken;
    }
    return Reading::ended;
}

RangeQuestion range_question(const frmMain& frm, const Image_Buffer& buffer) {
    const Screen& screen = frm.screen;
    return {.mcu = frm.catalogue.MCU_Info,
            .device = screen.txtDevice.Text,
            .ISP_Limit =
                static_cast<std::int32_t>(hex_field(screen.txtISP_reange[1].Text, address_digits)),
            .program_image = is_program_image(buffer),
            .english = screen.Show_English};
}

// The image takes the file, the operator sees its sum and, if it didn't fit,
// the box. False when that was overtaken behind the box.
bool take_file(frmMain& frm, const Placement& file, const RangeVerdict& verdict,
               Image_Buffer& buffer) {
    const std::uint32_t number = buffer.Load_Number;
    std::ranges::copy(file.Bytes, buffer.Bytes.begin());
    buffer.Sum = static_cast<std::int32_t>(file.Sum);
    buffer.File_Low = file.Start;
    buffer.File_High = verdict.File_High;
    Screen& screen = frm.screen;
    Control& sum_field =
        verdict.sum_of_program_field ? screen.txtFileCheckSum : screen.txtDataFileCheckSum;
    sum_field.Text = checksum_text(buffer.Sum, verdict.sum_tail);
    if (!verdict.message.empty())
        frm.platform.dialogs.show_text(verdict.message, image_text::range_box_title);
    if (overtaken(buffer, number)) return false;
    frm.images.File_Loaded = !frm.images.Program_Spoilt;
    return true;
}

// Nothing for a file that isn't there or is empty: that isn't HEX.
bool begins_like_hex(frmMain& frm, const std::string& path, const Image_Buffer& buffer) {
    const std::uint32_t number = buffer.Load_Number;
    const std::unique_ptr<FileReader> reader = frm.platform.files.open(path);
    TextLines lines(reader.get());
    for (int seen = 0; seen < lines_looked_at;) {
        const TextLines::Step step = lines.next();
        if (step == TextLines::Step::end) return seen > 0;
        if (!lines.line().Kept.starts_with(':')) return false;
        if (step == TextLines::Step::line) ++seen;
        give_turn(frm);
        if (overtaken(buffer, number)) return false;
    }
    return true;
}

// A file of another name: the first lines decide.
bool read_by_content(frmMain& frm, const std::string& path, Image_Buffer& buffer) {
    const std::uint32_t number = buffer.Load_Number;
    const bool hex = begins_like_hex(frm, path, buffer);
    if (overtaken(buffer, number)) return false;
    if (!hex) return Read_Bin_File(frm, path, buffer);
    Read_Buffer_Options(frm, buffer);
    return Read_Hex_File(frm, path, buffer);
}

}  // namespace

bool Read_Hex_File(frmMain& frm, const std::string& path, Image_Buffer& buffer) {
    buffer.Sum = 0;
    Placement file = placement_in(buffer);
    const Reading reading = read_records(frm, path, buffer, file);
    if (reading == Reading::refused) {
        Reset_Buffer(frm, 0, buffer);
        frm.images.File_Loaded = false;
    }
    if (reading != Reading::ended) return reading == Reading::refused;
    const RangeVerdict verdict = apply_hex_rules(range_question(frm, buffer), file);
    return take_file(frm, file, verdict, buffer);
}

bool Read_Bin_File(frmMain& frm, const std::string& path, Image_Buffer& buffer) {
    buffer.Sum = 0;
    Placement file = placement_in(buffer);
    if (read_binary(frm, path, buffer, file) == Reading::overtaken) return false;
    const RangeVerdict verdict = apply_bin_rules(range_question(frm, buffer), file);
    return take_file(frm, file, verdict, buffer);
}

bool Load_Any_File(frmMain& frm, const std::string& path, Image_Buffer& buffer) {
    if (trimmed(path).empty()) return true;
    frm.screen.MousePointer = wait_pointer;
    const bool named_hex = upper_case(path).find(".HEX") != std::string::npos;
    const bool whole =
        named_hex ? Read_Hex_File(frm, path, buffer) : read_by_content(frm, path, buffer);
    frm.screen.MousePointer = default_pointer;
    return whole;
}

}  // namespace vkm
