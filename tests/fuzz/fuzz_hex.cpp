// Program and data files. The first four bytes of an input lay out the job (see
// Job), the rest is the file.
#include <algorithm>
#include <span>
#include <string>
#include <vector>

#include "catalogue/model_table.h"
#include "fuzz/fuzz_world.h"
#include "image/hex_line.h"
#include "image/image_files.h"
#include "image/image_messages.h"
#include "image/start_address.h"
#include "image/text_lines.h"
#include "text/hexadecimal.h"
#include "text/trimming.h"

namespace vkm::fuzz {
namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr std::size_t job_size = 4;

std::vector<std::string_view> models() {
    std::vector<std::string_view> names;
    for (int group = 0; group < group_count; ++group) {
        if (group == older_54xx_group) continue;
        for (const ModelRow& row : MCU_AP_ISP_range[static_cast<std::size_t>(group)].rows)
            if (!row.MCU_Name.empty()) names.push_back(row.MCU_Name);
    }
    return names;
}

// What the operator has set before the load, from the first four bytes.
struct Job {
    std::string_view model;  // byte 0 counts the models of the table
    bool data_image;         // byte 1, bit 0: into the data image
    bool named_other;        // bit 1: not ".hex", so that the content decides
    bool english;            // bit 2: language of the boxes
    bool yes;                // bit 3: the answer behind the third bad line
    bool clear_first;        // bit 4
    std::string start;       // bytes 2 and 3, behind a digit 1 with bit 5 of byte 1
};

Job job_of(std::span<const std::uint8_t, job_size> bytes) {
    static const std::vector<std::string_view> names = models();
    const auto bit = [&](int n) { return (bytes[1] >> n & 1) != 0; };
    return {.model = names[bytes[0] % names.size()],
            .data_image = bit(0),
            .named_other = bit(1),
            .english = bit(2),
            .yes = bit(3),
            .clear_first = bit(4),
            .start = (bit(5) ? "1" : "") + hex_text(bytes[2] * 256u + bytes[3], 4)};
}

// The file as a whole, line by line or byte by byte: what the tool, which reads in
// pieces, has to arrive at.
struct Told {
    bool hex = false;
    int bad_lines = 0;
    std::uint32_t sum = 0;
    struct Cell {
        std::int32_t address;
        std::uint8_t byte;
    };
    std::vector<Cell> cells;  // in their order; a later one replaces an earlier one
};

bool begins_like_hex(const std::vector<Line>& lines) {
    return !lines.empty() &&
           std::ranges::all_of(std::span(lines).first(std::min<std::size_t>(lines.size(), 3)),
                               [](const Line& line) { return line.text.starts_with(':'); });
}

void take_records(Told& told, const std::vector<Line>& lines, std::int32_t start) {
    for (const Line& line : lines) {
        const std::string_view text = without_cr(line.text);
        if (!text.starts_with(':')) continue;
        const std::string_view digits = text.substr(1, kept_of_line - 1);
        const HexLine record = read_hex_line(digits, text.size() - 1);
        if (!record.Good) ++told.bad_lines;
        if (record_type(record) == end_record) return;
        std::int32_t address = start + record_address(record);
        for (const std::uint8_t byte : record_data(record)) {
            told.sum += byte;
            told.cells.push_back({address++, byte});
        }
    }
}

void take_bytes(Told& told, std::string_view content, std::int32_t start, std::size_t size) {
    const std::size_t room = size - std::min(size, static_cast<std::size_t>(start));
    for (const char c : content.substr(0, room)) {
        const auto byte = static_cast<std::uint8_t>(c);
        told.sum += byte;
        told.cells.push_back({start++, byte});
    }
}

Told told_by(const Job& job, std::string_view content, std::size_t size) {
    Told told;
    const std::vector<Line> lines = lines_of(content);
    const std::int32_t start = placement_start(start_address(job.start));
    told.hex = !job.named_other || begins_like_hex(lines);
    if (told.hex)
        take_records(told, lines, start);
    else
        take_bytes(told, content, start, size);
    return told;
}

// Up to here every rule leaves a program as the file has it.
std::int32_t free_of_rules(const FuzzWorld& world) {
    const auto shown = static_cast<std::int32_t>(
        hex_field(world.frm.screen.txtISP_reange[1].Text, address_digits));
    return std::min(
        {shown, world.frm.catalogue.MCU_Info.AP_End, world.frm.catalogue.MCU_Info.Memory_Top});
}

void check_reading_in_pieces(std::string_view content) {
    CrumblingFile file(content);
    TextLines lines(&file);
    for (const Line& line : lines_of(content)) {
        TextLines::Step step = lines.next();
        while (step == TextLines::Step::more) step = lines.next();
        must(step == TextLines::Step::line, "a line reads in pieces");
        const std::string_view text = without_cr(line.text);
        must(lines.line().Length == text.size(), "a line has the same length in pieces");
        must(lines.line().Kept == text.substr(0, kept_of_line),
             "a line has the same characters in pieces");
    }
    must(lines.next() == TextLines::Step::end, "a file ends in pieces too");
}

void check_cells(const FuzzWorld& world, const Image_Buffer& image, Bytes expected,
                 const Told& told) {
    const std::int32_t top =
        std::min(free_of_rules(world), static_cast<std::int32_t>(expected.size()) - 1);
    for (const Told::Cell& cell : told.cells) {
        if (cell.address > top) continue;
        expected[static_cast<std::size_t>(cell.address)] = cell.byte;
        must(cell.address >= image.Image_Low && cell.address <= image.Image_High,
             "what a file stores lies in the image");
    }
    const auto count = static_cast<std::size_t>(top + 1);
    must(std::ranges::equal(std::span(expected).first(count), std::span(image.Bytes).first(count)),
         "the program area has the file's bytes");
    must(static_cast<std::uint32_t>(image.Sum) == told.sum, "the sum is that of the file's bytes");
}

// The boxes about lines, in their order; true when the operator stopped the load.
bool check_line_boxes(const Job& job, const Told& told, std::span<const test::Box>& boxes) {
    const auto next = [&](test::BoxKind kind) {
        must(!boxes.empty() && boxes.front().kind == kind, "a bad line is told");
        const test::Box& box = boxes.front();
        boxes = boxes.subspan(1);
        return box;
    };
    using namespace image_text;
    for (int told_lines = 0; told_lines < std::min(told.bad_lines, 3); ++told_lines)
        must(next(test::BoxKind::text)
                 .text.starts_with(job.english ? bad_checksum.english : bad_checksum.bilingual),
             "a bad line is told as such");
    if (told.bad_lines < 3) return false;
    must(next(test::BoxKind::yes_no).text ==
             (job.english ? go_on_unchecked.english : go_on_unchecked.bilingual),
         "the operator is asked behind the third bad line");
    return !job.yes;
}

void check_stopped(const FuzzWorld& world, const Image_Buffer& image) {
    must(!world.frm.images.File_Loaded, "a load that was stopped leaves nothing to download");
    must(std::ranges::all_of(image.Bytes, [](std::uint8_t byte) { return byte == 0; }),
         "a load that was stopped leaves nothing behind");
}

void lay_out(FuzzWorld& world, const Job& job) {
    world.set_out(job.model);
    Screen& screen = world.frm.screen;
    screen.Show_English = job.english;
    (job.data_image ? screen.txtDataFileStart : screen.txtAP_FileStart).Text = job.start;
    (job.data_image ? screen.cheClearDataBuffer : screen.cheClearAP_Buffer).Value = job.clear_first;
    // What the last load set off is done: the range of the model is on the screen.
    world.run_for(600);
    world.dialogs.boxes.clear();
    if (job.yes) world.dialogs.answer_yes();
}

void scroll_to_the_ends(FuzzWorld& world, int element) {
    Control& bar = world.frm.screen.vscFile[static_cast<std::size_t>(element)];
    for (const std::int32_t value : {std::max(bar.Min, bar.Max), bar.Min}) {
        bar.Value = value;
        vscFile_Change(world.frm, element);
    }
}

void run(const Job& job, std::string_view content) {
    FuzzWorld world;
    lay_out(world, job);
    Image_Buffer& image = job.data_image ? world.data() : world.program();
    Image_Buffer& other = job.data_image ? world.program() : world.data();
    const Image_Buffer before = image;
    const Bytes other_before = other.Bytes;
    const std::string path = job.named_other ? "/in/a.dat" : "/in/a.hex";
    world.files.add(path, content);
    Load_File(world.frm, path, image);
    check_always(world);

    must(other.Bytes == other_before, "the other image is left alone");
    must(world.frm.session.UI_State == ui_idle, "a file locks nothing");
    std::span<const test::Box> boxes = world.boxes();
    if (!start_in_range(image.Start_Add, world.frm.catalogue.MCU_Info, !job.data_image)) {
        must(boxes.size() == 1, "a start out of range is told");
        must(image.Bytes == before.Bytes && image.Image_High == before.Image_High &&
                 world.frm.images.File_Loaded,
             "a start out of range leaves the image alone");
        return;
    }
    const Told told = told_by(job, content, image.Bytes.size());
    if (check_line_boxes(job, told, boxes)) {
        check_stopped(world, image);
    } else {
        must(world.frm.images.File_Loaded && image.Has_File, "a file that was read is there");
        check_cells(world, image, job.clear_first ? Bytes(image.Bytes.size()) : before.Bytes, told);
        if (!boxes.empty()) {
            must(boxes.front().title == image_text::range_box_title,
                 "what doesn't fit is told in the box of the ranges");
            boxes = boxes.subspan(1);
        }
    }
    must(boxes.empty(), "nothing else is told");
    scroll_to_the_ends(world, job.data_image ? 1 : 0);
    check_always(world);
}

}  // namespace
}  // namespace vkm::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    using namespace vkm::fuzz;
    if (size < job_size) return 0;
    const std::string_view content(reinterpret_cast<const char*>(bytes) + job_size,
                                   size - job_size);
    check_reading_in_pieces(content);
    run(job_of(std::span<const std::uint8_t, job_size>(bytes, job_size)), content);
    return 0;
}
