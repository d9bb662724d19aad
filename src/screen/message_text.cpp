#include "screen/message_text.h"

namespace vkm {

void append_message(Screen& screen, std::string_view message) {
    screen.textMsg.Text.append("\r\n").append(message);
}

void append_message(Screen& screen, const MessageText& message) {
    append_message(screen, chosen_text(screen, message));
}

void append_to_last_line(Screen& screen, std::string_view text) {
    screen.textMsg.Text.append(text);
}

void scroll_log_to_end(Screen& screen) {
    caret_to_end(screen.textMsg);
}

}  // namespace vkm
