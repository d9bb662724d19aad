// The tool as people start it, in virtual time, for one input of the fuzzer; and
// what holds whatever was read.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/files.h"
#include "support/virtual_world.h"

namespace vkm::fuzz {

// Started as the window starts it. The two files of set_out are on the disk.
struct FuzzWorld : test::VirtualWorld {
    FuzzWorld();

    // A free tool that has this model and an image of both kinds, so that what a bad
    // file leaves behind is told from an empty image.
    void set_out(std::string_view model);

    Image_Buffer& program() { return frm.images.AP_Buffer; }
    Image_Buffer& data() { return frm.images.Data_Buffer; }
};

// Aborts with this text, which says what should hold, when it doesn't.
void must(bool holds, const char* what);

// Sizes, bounds and choices of the record, readers and boxes closed, no job begun.
void check_always(FuzzWorld& world);

// The texts on the screen and in the boxes are UTF-8.
void check_texts(FuzzWorld& world);

// Hands out a file in pieces of 1 to 7 bytes.
class CrumblingFile final : public FileReader {
  public:
    explicit CrumblingFile(std::string_view content) : rest_(content) {}
    std::size_t read(std::span<std::uint8_t> room) override;

  private:
    std::string_view rest_;
    std::size_t piece_ = 0;
};

// The file's lines without their LF; the last one only when there is something in it.
struct Line {
    std::string_view text;
    bool ended = false;
};
std::vector<Line> lines_of(std::string_view content);

// Without one CR at its end.
std::string_view without_cr(std::string_view line);

}  // namespace vkm::fuzz
