// Lines for whoever reads a program's output, who may be slow or not read at all: no
// call but finish waits for him.
#pragma once

#include <chrono>
#include <string>
#include <string_view>

namespace vkm::sim {

class PrintedLines {
  public:
    explicit PrintedLines(int descriptor) : descriptor_(descriptor) {}

    // Comes whole, however long the reader takes.
    void answer(std::string_view line);
    // Is dropped when too much waits for the reader.
    void news(std::string_view line);

    // Prints what finds room now.
    void print();
    // The same until all is printed, the reader is gone or the time is up.
    void finish(std::chrono::milliseconds at_most);

    // Something waits for room at the descriptor.
    bool wait() const { return !waiting_.empty(); }
    // So much that nobody seems to read.
    bool too_many() const;

  private:
    int descriptor_;
    std::string waiting_;
};

}  // namespace vkm::sim
