#include "image/range_messages.h"

#include <algorithm>
#include <cstddef>
#include <string_view>

#include "screen/message_text.h"
#include "text/hexadecimal.h"
#include "text/numbers.h"
#include "text/trimming.h"

namespace vkm {
namespace {

constexpr std::string_view line_break = "\r\n";
constexpr std::string_view two_breaks = "\r\n\r\n";

constexpr MessageText over_scope = {
    "    File over the valid scope.\r\n"
    "Continue",
    "文件超出最大有效空间, 超出的部分已被清除。\r\n\r\n"
    "               按确定继续"};

// The gap's two ends stand between these, parted by " -- ".
constexpr MessageText gap_head = {"    File over the valid scope(", "无效区间 "};
constexpr MessageText gap_tail = {").", " 中有数据, 这些数据已被清除。\r\n"};
constexpr MessageText gap_data = {"Data Memory contain datas.\r\n", "Data Memory 空间有数据。\r\n"};
constexpr MessageText gap_over = {"    File over the valid scope.\r\n",
                                  "文件超出最大有效空间, 超出的部分已被清除。\r\n"};
constexpr MessageText gap_close = {"Continue", "按确定继续。"};

struct AreaTexts {
    MessageText over;
    MessageText data;
    MessageText close;
};

constexpr AreaTexts hex_area = {
    {" File over the valid scope.\r\n",
     "    File over the valid scope.\r\n文件超出有效空间, 超出的部分已丢失。"},
    {" Data Memory contain datas.\r\n",
     " Data Memory contain datas.\r\n  Data Memory 空间有数据。"},
    {"        Continue", "       按确定继续。"}};

constexpr AreaTexts bin_area = {
    {"    File over the valid scope.\r\n",
     "    File over the valid scope.\r\n文件超出有效空间, 超出的部分已丢失。"},
    {"   Data Memory contain datas.\r\n",
     "   Data Memory contain datas.\r\n     Data Memory 空间有数据。"},
    {"          Continue", "         按确定继续。"}};

std::string text_in(const MessageText& text, bool english) {
    return std::string(english ? text.english : text.bilingual);
}

std::int32_t length_of(const std::string& text) {
    return static_cast<std::int32_t>(character_count(text));
}

std::string area_message(const AreaFindings& found, const AreaTexts& texts, bool english) {
    std::string message;
    if (found.Over) message = text_in(texts.over, english);
    if (found.Data_Seen) {
        if (!message.empty()) message += two_breaks;
        message += text_in(texts.data, english);
    }
    if (message.empty()) return message;
    return message.append(two_breaks) + text_in(texts.close, english);
}

}  // namespace

std::string over_scope_message(bool english) {
    return text_in(over_scope, english);
}

std::string gap_message(const GapFindings& found, bool english) {
    std::string message;
    std::int32_t widest = 0;
    const auto add_line = [&](const std::string& line, std::int32_t width) {
        message.append(line).append(line_break);
        widest = std::max(widest, width);
    };
    // The closing word is centred by hand: the first line counts with its line
    // break, the two others without.
    const auto break_length = static_cast<std::int32_t>(line_break.size());
    if (found.Gap_Filled) {
        const std::string line = text_in(gap_head, english) +
                                 hex_text(static_cast<std::uint32_t>(found.Gap_Low)) + " -- " +
                                 hex_text(static_cast<std::uint32_t>(found.Gap_High)) +
                                 text_in(gap_tail, english);
        add_line(line, length_of(line));
    }
    if (found.Data_Seen) {
        const std::string line = text_in(gap_data, english);
        add_line(line, length_of(line) - break_length);
    }
    if (found.Over) {
        const std::string line = text_in(gap_over, english);
        add_line(line, length_of(line) - break_length);
    }
    if (message.empty()) return message;
    const std::int32_t blanks = round_half_even(widest / 2.0 - (english ? 5 : 0));
    return message.append(line_break).append(static_cast<std::size_t>(std::max(blanks, 0)), ' ') +
           text_in(gap_close, english);
}

std::string hex_area_message(const AreaFindings& found, bool english) {
    return area_message(found, hex_area, english);
}

std::string bin_area_message(const AreaFindings& found, bool english) {
    return area_message(found, bin_area, english);
}

}  // namespace vkm
