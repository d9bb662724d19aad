// The lines of a text file, read in big pieces. A line ends at LF or CR LF, or
// at the end of the file. Only as much of a line is kept as a HEX record can
// use, so that a file without line ends needs no more memory than any other.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "platform/files.h"

namespace vkm {

inline constexpr std::size_t kept_of_line = 523;  // ":" and 261 pairs of digits

struct TextLine {
    std::string Kept;        // the line, or its first kept_of_line characters
    std::size_t Length = 0;  // of the whole line, without its line end
};

class TextLines {
  public:
    // A null file reads as an empty one. The file stays the caller's.
    explicit TextLines(FileReader* file) : file_(file) {}

    enum class Step {
        line,  // line() is the next line
        more,  // a piece of a long line was passed; ask again
        end,   // no further line
    };

    // Reads the file once at most, so the time it takes is bounded.
    Step next();
    const TextLine& line() const { return line_; }

  private:
    bool fill();
    void take(std::size_t count);
    void finish_line();

    FileReader* file_;
    std::vector<std::uint8_t> piece_;
    std::size_t at_ = 0;      // first byte of the piece that is not yet used
    std::size_t filled_ = 0;  // bytes of the piece
    bool inside_line_ = false;
    bool ends_in_cr_ = false;
    TextLine line_;
};

}  // namespace vkm
