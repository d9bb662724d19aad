#include "project/project_format.h"

#include <algorithm>
#include <numeric>

#include "text/trimming.h"

namespace vkm {
namespace {

constexpr std::string_view line_end = "\r\n";

std::string line(std::string_view key, std::string_view value) {
    std::string text(key);
    text.append(": ").append(value).append(line_end);
    return text;
}

void append_hexadecimal(std::string& text, std::span<const std::uint8_t> bytes) {
    constexpr char digits[] = "0123456789ABCDEF";
    text.reserve(text.size() + 2 * bytes.size());
    for (const std::uint8_t byte : bytes) {
        text += digits[byte >> 4];
        text += digits[byte & 15];
    }
}

}  // namespace

std::string text_of_project(const Project_Rows& items, std::span<const std::uint8_t> program,
                            std::optional<std::span<const std::uint8_t>> data) {
    std::string text = line(project_key::version, project_version);
    for (const Project_Row& item : items) text += line(item.key, item.value);
    text += line(project_key::buffer_sum, std::to_string(byte_sum(program)));
    text.append(header_end).append(line_end);
    append_hexadecimal(text, program);
    if (!data) return text;
    text.append(line_end).append(data_begin).append(line_end);
    text += line(project_key::data_buffer_sum, std::to_string(byte_sum(*data)));
    append_hexadecimal(text, *data);
    text.append(line_end).append(data_end).append(line_end);
    return text;
}

std::optional<Project_Row> project_row(std::string_view line) {
    const std::size_t colon = line.find(':');
    if (colon == std::string_view::npos) return std::nullopt;
    return Project_Row{std::string(line.substr(0, colon)),
                       std::string(trimmed(line.substr(colon + 1)))};
}

std::string_view value_of(const Project_Rows& rows, std::string_view key) {
    const auto found = std::ranges::find(rows, key, &Project_Row::key);
    return found == rows.end() ? std::string_view() : std::string_view(found->value);
}

std::int64_t byte_sum(std::span<const std::uint8_t> bytes) {
    return std::accumulate(bytes.begin(), bytes.end(), std::int64_t{0});
}

}  // namespace vkm
