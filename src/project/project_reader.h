// A project file taken apart, piece by piece, so that events can run in between. A
// file of any size and any content needs no more memory than a good one.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/files.h"
#include "project/project_format.h"

namespace vkm {

// The bytes of an image, as its line of digits gives them.
class Image_Line {
  public:
    // The image takes no more than so many bytes.
    explicit Image_Line(std::size_t capacity) : capacity_(capacity) {}

    void take(std::string_view characters);
    void end_line() { ended_ = true; }

    const std::vector<std::uint8_t>& bytes() const { return bytes_; }

    // There is at least one byte, every character was a digit and found its place, no
    // digit was left alone, and the bytes have this sum.
    bool is_whole(std::int64_t sum) const;
    // The line had an end: nothing of it is cut off.
    bool ended() const { return ended_; }

  private:
    void take_character(char character);

    std::size_t capacity_;
    std::vector<std::uint8_t> bytes_;
    int high_digit_ = -1;  // the first digit of a byte whose second is still to come
    bool blank_seen_ = false;
    bool spoilt_ = false;
    bool ended_ = false;
};

struct Project_Content {
    Project_Rows rows;  // of the header, in the file's order and code page
    Image_Line program;
    bool has_data = false;  // something stands behind the program
    std::int64_t data_sum = 0;
    Image_Line data;
};

class Project_Reader {
  public:
    // A null file reads as an empty one. The file stays the caller's.
    explicit Project_Reader(FileReader* file);

    // Reads a piece. False at the end of the file, or of what counts in it: content() is
    // complete then.
    bool read_piece();
    const Project_Content& content() const { return content_; }

  private:
    enum class Part { header, program, behind_program, data_sum, data, behind_data };

    void take(std::string_view characters, bool line_ends);
    void keep(std::string_view characters);
    void finish_line();

    FileReader* file_;
    Part part_ = Part::header;
    std::string line_;
    std::vector<std::uint8_t> piece_;
    Project_Content content_;
};

}  // namespace vkm
