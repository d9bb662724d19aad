#include "session/counter.h"

#include <algorithm>

#include "increase/auto_increase.h"
#include "session/download_session.h"
#include "session/session_report.h"
#include "session/session_texts.h"
#include "text/numbers.h"
#include "text/trimming.h"

namespace vkm {
namespace {

void store_count(frmMain& frm, std::string count) {
    frm.screen.txtWrite_OK_Count.Text = std::move(count);
    frm.platform.settings.save("Settings", "Write_OK_Count",
                               trimmed(frm.screen.txtWrite_OK_Count.Text));
    if (!frm.platform.settings.flush()) report(frm, session_text::count_not_saved);
}

}  // namespace

std::string one_more(std::string_view count) {
    const std::string_view text = trimmed(count);
    const bool whole = !text.empty() && std::all_of(text.begin(), text.end(),
                                                    [](char c) { return c >= '0' && c <= '9'; });
    if (!whole) return shortest_decimal(leading_number(text) + 1);

    std::string digits(1, '0');
    digits += text;
    std::size_t place = digits.size() - 1;
    for (; digits[place] == '9'; --place) digits[place] = '0';
    ++digits[place];
    return digits.substr(std::min(digits.find_first_not_of('0'), digits.size() - 1));
}

// The next chip's numbers go to the disk with the count: a tool that dies in between
// would give two chips the same number.
void count_good_chip(frmMain& frm) {
    Note_Numbers_Behind(frm);
    store_count(frm, one_more(frm.screen.txtWrite_OK_Count.Text));
}

void comClear_OK_Count(frmMain& frm) {
    store_count(frm, "0");
}

}  // namespace vkm
