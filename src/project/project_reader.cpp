#include "project/project_reader.h"

#include <algorithm>

#include "image/image_buffer.h"
#include "text/hexadecimal.h"
#include "text/numbers.h"
#include "text/trimming.h"

namespace vkm {
namespace {

constexpr std::size_t piece_size = 16384;
// No path is longer, and no header has more rows; what lies beyond is passed over.
constexpr std::size_t longest_line = 32768;
constexpr std::size_t most_rows = 1000;

bool is_blank(char c) {
    return c == ' ' || c == '\t' || c == '\r';
}

}  // namespace

void Image_Line::take(std::string_view characters) {
    for (const char c : characters) take_character(c);
}

void Image_Line::take_character(char character) {
    if (is_blank(character)) {
        blank_seen_ = blank_seen_ || high_digit_ >= 0 || !bytes_.empty();
        return;
    }
    const int digit = hex_digit(character);
    if (digit < 0 || blank_seen_ || bytes_.size() == capacity_) {
        spoilt_ = true;
        return;
    }
    if (high_digit_ < 0) {
        high_digit_ = digit;
        return;
    }
    bytes_.push_back(static_cast<std::uint8_t>(high_digit_ * 16 + digit));
    high_digit_ = -1;
}

bool Image_Line::is_whole(std::int64_t sum) const {
    return !bytes_.empty() && !spoilt_ && high_digit_ < 0 && byte_sum(bytes_) == sum;
}

Project_Reader::Project_Reader(FileReader* file)
    : file_(file),
      piece_(piece_size),
      content_{
          .rows = {}, .program = Image_Line(ap_buffer_size), .data = Image_Line(data_buffer_size)} {
}

bool Project_Reader::read_piece() {
    const std::size_t filled = file_ ? file_->read(piece_) : 0;
    if (filled == 0) {
        // A last line without a line end is a line too.
        if (!line_.empty()) finish_line();
        return false;
    }
    std::string_view rest(reinterpret_cast<const char*>(piece_.data()), filled);
    while (!rest.empty()) {
        const std::size_t line_end = rest.find('\n');
        take(rest.substr(0, line_end), line_end != std::string_view::npos);
        rest.remove_prefix(line_end == std::string_view::npos ? rest.size() : line_end + 1);
    }
    return part_ != Part::behind_data;
}

void Project_Reader::take(std::string_view characters, bool line_ends) {
    switch (part_) {
        case Part::program:
            content_.program.take(characters);
            break;
        case Part::data:
            content_.data.take(characters);
            break;
        case Part::behind_data:
            return;
        default:
            keep(characters);
            break;
    }
    if (line_ends) finish_line();
}

void Project_Reader::keep(std::string_view characters) {
    line_.append(characters.substr(0, longest_line - std::min(longest_line, line_.size())));
}

void Project_Reader::finish_line() {
    if (line_.ends_with('\r')) line_.pop_back();
    switch (part_) {
        case Part::header:
            if (upper_case(line_) == header_end)
                part_ = Part::program;
            else if (auto row = project_row(line_); row && content_.rows.size() < most_rows)
                content_.rows.push_back(*std::move(row));
            break;
        case Part::program:
            content_.program.end_line();
            part_ = Part::behind_program;
            break;
        case Part::behind_program:
            // An editor may have left empty lines behind the program.
            if (trimmed(line_).empty()) break;
            content_.has_data = true;
            part_ = Part::data_sum;
            break;
        case Part::data_sum:
            if (const auto row = project_row(line_))
                content_.data_sum = leading_integer(row->value);
            part_ = Part::data;
            break;
        case Part::data:
            content_.data.end_line();
            part_ = Part::behind_data;
            break;
        case Part::behind_data:
            break;
    }
    line_.clear();
}

}  // namespace vkm
