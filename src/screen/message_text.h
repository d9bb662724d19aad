// Texts for the operator, in both languages side by side.
#pragma once

#include <string>
#include <string_view>

#include "screen/screen.h"

namespace vkm {

// Every message exists in an English and in a bilingual form.
struct MessageText {
    std::string_view english;
    std::string_view bilingual;
};

inline std::string_view chosen_text(const Screen& screen, const MessageText& text) {
    return screen.Show_English ? text.english : text.bilingual;
}

// The running log textMsg, the only running report.

// Old text, CR LF, message. The break stands before the message, so an emptied
// log begins with an empty line.
void append_message(Screen& screen, std::string_view message);
void append_message(Screen& screen, const MessageText& message);

// Directly behind the last line, without a break.
void append_to_last_line(Screen& screen, std::string_view text);

// Shows the end of the log; due behind each message or group of messages.
void scroll_log_to_end(Screen& screen);

}  // namespace vkm
