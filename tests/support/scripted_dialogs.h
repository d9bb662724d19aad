// The operator in front of the boxes: answers laid out beforehand, every
// question kept.
#pragma once

#include <deque>
#include <functional>
#include <string>
#include <vector>

#include "platform/dialogs.h"
#include "platform/event_loop.h"
#include "platform/sounder.h"

namespace vkm::test {

enum class BoxKind { text, warning, yes_no, open_file, save_file };

struct Box {
    BoxKind kind = BoxKind::text;
    std::string title;
    std::string text;    // of text, warning and yes_no
    std::string filter;  // of the file dialogs
    std::string folder;
    std::string name;
    Instant at;  // when it came up
};

class ScriptedDialogs final : public Dialogs {
  public:
    explicit ScriptedDialogs(const EventLoop& loop) : loop_(loop) {}

    // ---- the test's side ------------------------------------------------------

    // The next answers. Without one a box is left by its default: No, or the
    // file dialog's Cancel.
    void answer_yes() { yes_no.push_back(true); }
    void answer_no() { yes_no.push_back(false); }
    void choose_file(std::string path) { files.push_back(std::move(path)); }

    std::deque<bool> yes_no;
    std::deque<std::string> files;
    std::vector<Box> boxes;  // in the order in which they came up
    int open_boxes = 0;      // on the screen now

    // How long a box stays before its answer is given; events run meanwhile.
    Microseconds stays{0};
    // Lets events run for that long; VirtualWorld fills it.
    std::function<void(Microseconds)> let_events_run;

    // ---- the seam -----------------------------------------------------------
    void show_text(std::string_view text, std::string_view title = {}) override;
    void show_warning(std::string_view text, std::string_view title = {}) override;
    bool ask_yes_no(std::string_view text, std::string_view title = {}) override;
    std::string ask_file_to_open(const FileQuestion& question) override;
    std::string ask_file_to_save(const FileQuestion& question) override;

  private:
    void show(Box box);

    const EventLoop& loop_;
};

class CountingSounder final : public Sounder {
  public:
    explicit CountingSounder(const EventLoop& loop) : loop_(loop) {}
    void beep() override { at.push_back(loop_.now()); }

    int beeps() const { return static_cast<int>(at.size()); }
    std::vector<Instant> at;  // when it sounded

  private:
    const EventLoop& loop_;
};

}  // namespace vkm::test
