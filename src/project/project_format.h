// A project file: a header of "key: value" lines, a line "END", and the images as
// hexadecimal digits. Line ends are CR LF. Values only; texts are in the file's own
// code page.
//
//     VER: 1.1
//     MCU_Type: ...            the general items, then the options of all families
//     buffer_check_sum: 4711   sum of the program's bytes
//     END
//     02000C...                the program from address 0 on, two digits a byte
//     Data_File_Begin:         from here on only with a data image; without one the
//     data_buffer_check_sum: 1 file ends behind the program's last digit
//     A5...
//     Data_File_End
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace vkm {

struct Project_Row {
    std::string key;
    std::string value;
    bool operator==(const Project_Row&) const = default;
};
using Project_Rows = std::vector<Project_Row>;

// Keys that the format itself knows; the others are those of the option schema.
namespace project_key {
inline constexpr std::string_view version = "VER";
inline constexpr std::string_view model = "MCU_Type";
inline constexpr std::string_view data_file_sum = "Dtat_File_CheckSum";
inline constexpr std::string_view buffer_sum = "buffer_check_sum";
inline constexpr std::string_view data_buffer_sum = "data_buffer_check_sum";
}  // namespace project_key

inline constexpr std::string_view project_version = "1.1";
inline constexpr std::string_view header_end = "END";
inline constexpr std::string_view data_begin = "Data_File_Begin:";
inline constexpr std::string_view data_end = "Data_File_End";

// The whole file. `items` are the rows between the version and the program's sum.
std::string text_of_project(const Project_Rows& items, std::span<const std::uint8_t> program,
                            std::optional<std::span<const std::uint8_t>> data);

// A header line as a row: what stands left of its first colon, and what stands right
// of it without blanks at its ends. Nothing for a line without a colon.
std::optional<Project_Row> project_row(std::string_view line);

// The value of the first row of this key; empty when there is none.
std::string_view value_of(const Project_Rows& rows, std::string_view key);

// Arithmetic sum of the bytes.
std::int64_t byte_sum(std::span<const std::uint8_t> bytes);

}  // namespace vkm
