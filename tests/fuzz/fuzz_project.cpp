// Project files. An input is the file as it stands: it is loaded as the operator
// loads it, and when that goes well, saved and loaded again.
#include <algorithm>
#include <optional>
#include <string>
#include <vector>

#include "fuzz/fuzz_world.h"
#include "project/project_files.h"
#include "project/project_reader.h"
#include "project/project_texts.h"
#include "text/hexadecimal.h"
#include "text/numbers.h"
#include "text/trimming.h"

namespace vkm::fuzz {
namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr const char* input_path = "/in/a.vkm";
constexpr const char* saved_path = "/out/b.vkm";
constexpr const char* model_before = "VKM47H58RK+";

// The catalogue's own words come before those of the project.
constexpr std::string_view catalogue_knows_none = "找不到 MCU: ";

std::string_view without_blanks(std::string_view text) {
    constexpr std::string_view blanks = " \t\r";
    const std::size_t first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

// The bytes of a line of digits; nothing for any other line.
std::optional<Bytes> bytes_of(std::string_view line, std::size_t most) {
    const std::string_view digits = without_blanks(line);
    if (digits.empty() || digits.size() % 2 != 0 || digits.size() / 2 > most) return std::nullopt;
    Bytes bytes;
    for (std::size_t i = 0; i < digits.size(); i += 2) {
        const int high = hex_digit(digits[i]);
        const int low = hex_digit(digits[i + 1]);
        if (high < 0 || low < 0) return std::nullopt;
        bytes.push_back(static_cast<std::uint8_t>(high * 16 + low));
    }
    return bytes;
}

std::int64_t sum_of(const Bytes& bytes) {
    std::int64_t sum = 0;
    for (const std::uint8_t byte : bytes) sum += byte;
    return sum;
}

// A project as its text says it, all of it at once and line by line: what the tool,
// which reads in pieces, has to arrive at.
struct Told {
    Project_Rows rows;
    std::optional<Bytes> program;  // with the right sum
    bool data_expected = false;
    std::optional<Bytes> data;  // with the right sum

    bool old() const { return rows.empty() || rows.front().key != "VER"; }
    std::string_view value(std::string_view key) const {
        const auto row = std::ranges::find(rows, key, &Project_Row::key);
        return row == rows.end() ? std::string_view() : std::string_view(row->value);
    }
};

Told told_by(std::string_view content) {
    Told told;
    const std::vector<Line> lines = lines_of(content);
    std::size_t at = 0;
    for (; at < lines.size() && upper_case(without_cr(lines[at].text)) != "END"; ++at) {
        const std::string_view line = without_cr(lines[at].text);
        const std::size_t colon = line.find(':');
        if (colon == std::string_view::npos) continue;
        told.rows.push_back(
            {std::string(line.substr(0, colon)), std::string(trimmed(line.substr(colon + 1)))});
    }
    const auto next = [&] { return ++at < lines.size() ? lines[at] : Line{}; };
    told.program = bytes_of(next().text, ap_buffer_size);
    if (told.program && sum_of(*told.program) != leading_integer(told.value("buffer_check_sum")))
        told.program.reset();

    const auto is_empty = [](const Line& line) { return trimmed(without_cr(line.text)).empty(); };
    Line behind = next();
    while (at < lines.size() && is_empty(behind)) behind = next();
    told.data_expected =
        at < lines.size() || (!told.old() && !told.value("Dtat_File_CheckSum").empty());
    const std::string_view sum_line = next().text;
    const std::size_t colon = sum_line.find(':');
    const std::int64_t sum =
        colon == std::string_view::npos ? 0 : leading_integer(sum_line.substr(colon + 1));
    const Line data = next();
    if (data.ended) told.data = bytes_of(data.text, data_buffer_size);
    if (told.data && sum_of(*told.data) != sum) told.data.reset();
    return told;
}

void check_reading_in_pieces(std::string_view content) {
    CrumblingFile file(content);
    Project_Reader reader(&file);
    while (reader.read_piece()) {
    }
    const Told told = told_by(content);
    must(reader.content().rows == told.rows, "a header reads the same in pieces");
    const std::int64_t sum = leading_integer(told.value("buffer_check_sum"));
    must(reader.content().program.is_whole(sum) == told.program.has_value(),
         "a program reads the same in pieces");
    must(!told.program || reader.content().program.bytes() == *told.program,
         "a program has the same bytes in pieces");
    must(!told.data || reader.content().data.bytes() == *told.data,
         "a data image has the same bytes in pieces");
}

// The bytes and, behind them, nothing.
void check_image(const Image_Buffer& image, const Bytes& bytes) {
    must(std::ranges::equal(bytes, std::span(image.Bytes).first(bytes.size())),
         "an image has the file's bytes");
    must(std::ranges::all_of(std::span(image.Bytes).subspan(bytes.size()),
                             [](std::uint8_t byte) { return byte == 0; }),
         "behind an image there is nothing");
    must(image.Image_Low == 0 && image.Image_High == static_cast<std::int32_t>(bytes.size()) - 1,
         "an image ends with its last byte");
    must(image.File_High == image.Image_High && image.Has_File, "an image has its file");
}

struct Before {
    std::string device;
    Image_Buffer program;
    Image_Buffer data;
};

bool same_image(const Image_Buffer& a, const Image_Buffer& b) {
    return a.Bytes == b.Bytes && a.Image_Low == b.Image_Low && a.Image_High == b.Image_High &&
           a.Has_File == b.Has_File && a.Load_Number == b.Load_Number;
}

void check_nothing_changed(FuzzWorld& world, const Before& before) {
    must(same_image(world.program(), before.program) && same_image(world.data(), before.data) &&
             world.frm.images.File_Loaded,
         "an unknown model leaves the images alone");
    must(world.frm.screen.txtDevice.Text == before.device,
         "an unknown model leaves the model alone");
    must(world.frm.session.UI_State == ui_idle && !world.frm.session.Project_Lock,
         "an unknown model locks nothing");
}

void check_program(FuzzWorld& world, const Told& told) {
    const frmMain& frm = world.frm;
    const bool good = told.program.has_value();
    must(frm.images.File_Loaded == good, "a program can be downloaded when its sum is right");
    must(frm.session.Project_Lock == good && (frm.session.UI_State == ui_locked) == good,
         "a project locks when its program is good");
    if (good) check_image(world.program(), *told.program);
}

void check_data(FuzzWorld& world, const Told& told) {
    const Image_Buffer& image = world.data();
    must(image.Has_File == (told.program && told.data_expected && told.data),
         "there is a data image when its sum is right");
    if (image.Has_File) check_image(image, *told.data);
}

// What the operator is told, in its order; true when the whole project is there.
bool check_boxes(FuzzWorld& world, const Told& told, const Before& before) {
    using namespace project_text;
    const std::vector<test::Box>& boxes = world.boxes();
    std::size_t at = 0;
    const auto is_next = [&](std::string_view text) {
        const bool is = at < boxes.size() && boxes[at].kind == test::BoxKind::text &&
                        boxes[at].text.starts_with(text);
        if (is) ++at;
        return is;
    };
    must(is_next(old_version) == told.old(), "an old file is told");
    bool whole = false;
    if (is_next(catalogue_knows_none)) {
        must(is_next(model_not_found), "an unknown model is told");
        check_nothing_changed(world, before);
    } else {
        check_program(world, told);
        check_data(world, told);
        if (!told.program)
            must(is_next(program_sum_wrong), "a bad program is told");
        else if (told.data_expected && !told.data)
            must(is_next(data_sum_wrong), "a bad data image is told");
        else
            whole = true;
        if (whole) {
            const Screen& screen = world.frm.screen;
            const bool numbering =
                screen.cheAuto_Increase.Value != 0 || screen.cheData_Auto_Increase.Value != 0;
            must(is_next(check_next_value) == numbering, "the next value is told of");
        }
    }
    must(at == boxes.size(), "nothing else is told");
    return whole;
}

std::string saved(FuzzWorld& world) {
    world.files.add_folder("/out");
    world.files.remove(saved_path);
    world.dialogs.choose_file(saved_path);
    comSaveBatchFile(world.frm);
    const Bytes bytes = world.files.content(saved_path);
    return std::string(bytes.begin(), bytes.end());
}

void load(FuzzWorld& world, const std::string& path, std::string_view content) {
    world.dialogs.boxes.clear();
    world.files.add(path, content);
    Open_Project(world.frm, path);
    check_always(world);
    check_texts(world);
}

void check_saved_reads_the_same(FuzzWorld& world, const Told& told) {
    const std::string first = saved(world);
    must(!first.empty(), "a whole project can be saved");
    const Told again = told_by(first);
    must(!again.old() && again.program == told.program, "the saved file has the program");
    must(again.data_expected == world.data().Has_File &&
             (!again.data_expected || again.data == told.data),
         "the saved file has the data image");

    FuzzWorld other;
    load(other, saved_path, first);
    check_program(other, again);
    check_data(other, again);

    load(world, saved_path, first);
    check_program(world, again);
    check_data(world, again);
    must(saved(world) == first, "a project that is loaded and saved stays the same");
}

void run(std::string_view content) {
    check_reading_in_pieces(content);
    FuzzWorld world;
    world.set_out(model_before);
    const Before before = {world.frm.screen.txtDevice.Text, world.program(), world.data()};
    load(world, input_path, content);
    const Told told = told_by(content);
    const bool whole = check_boxes(world, told, before);
    if (whole) check_saved_reads_the_same(world, told);
    // What was put off until later.
    world.run_for(1100);
    check_always(world);
}

}  // namespace
}  // namespace vkm::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    vkm::fuzz::run({reinterpret_cast<const char*>(bytes), size});
    return 0;
}
