#include "support/scripted_dialogs.h"

#include <utility>

namespace vkm::test {
namespace {

Box text_box(BoxKind kind, std::string_view text, std::string_view title) {
    Box box;
    box.kind = kind;
    box.text = text;
    box.title = title;
    return box;
}

Box file_box(BoxKind kind, const FileQuestion& question) {
    Box box;
    box.kind = kind;
    box.title = question.title;
    box.filter = question.filter;
    box.folder = question.folder;
    box.name = question.name;
    return box;
}

template <typename Answer>
Answer next_of(std::deque<Answer>& answers) {
    if (answers.empty()) return {};
    Answer answer = std::move(answers.front());
    answers.pop_front();
    return answer;
}

}  // namespace

void ScriptedDialogs::show(Box box) {
    box.at = loop_.now();
    boxes.push_back(std::move(box));
    ++open_boxes;
    if (let_events_run && stays > Microseconds(0)) let_events_run(stays);
    --open_boxes;
}

void ScriptedDialogs::show_text(std::string_view text, std::string_view title) {
    show(text_box(BoxKind::text, text, title));
}

void ScriptedDialogs::show_warning(std::string_view text, std::string_view title) {
    show(text_box(BoxKind::warning, text, title));
}

bool ScriptedDialogs::ask_yes_no(std::string_view text, std::string_view title) {
    show(text_box(BoxKind::yes_no, text, title));
    return next_of(yes_no);
}

std::string ScriptedDialogs::ask_file_to_open(const FileQuestion& question) {
    show(file_box(BoxKind::open_file, question));
    return next_of(files);
}

std::string ScriptedDialogs::ask_file_to_save(const FileQuestion& question) {
    show(file_box(BoxKind::save_file, question));
    return next_of(files);
}

}  // namespace vkm::test
