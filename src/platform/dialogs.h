// Questions to the operator. Each call returns with the answer; events run
// meanwhile (timers tick, the port is read), the rest of the window is closed
// to the operator.
#pragma once

#include <string>
#include <string_view>

namespace vkm {

struct FileQuestion {
    std::string_view title;
    // Pairs of a name and patterns, all parted by "|":
    // "(*.bin)|*.bin|All Files (*.*)|*.*".
    std::string_view filter;
    std::string_view folder;  // where to start; empty: wherever the system likes
    std::string_view name;    // proposed name, possibly empty
};

class Dialogs {
  public:
    virtual ~Dialogs() = default;

    // A text with the OK button. Line breaks are CR LF. An empty title is the
    // program's own.
    virtual void show_text(std::string_view text, std::string_view title = {}) = 0;

    // The same, as a warning.
    virtual void show_warning(std::string_view text, std::string_view title = {}) = 0;

    // A text with Yes and No, No being the default. True for Yes.
    virtual bool ask_yes_no(std::string_view text, std::string_view title = {}) = 0;

    // The path of an existing file; empty when the operator cancels.
    virtual std::string ask_file_to_open(const FileQuestion& question) = 0;

    // The path to save to, after a question when such a file exists; empty when
    // the operator cancels.
    virtual std::string ask_file_to_save(const FileQuestion& question) = 0;
};

}  // namespace vkm
