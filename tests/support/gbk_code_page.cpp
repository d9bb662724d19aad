#include "support/gbk_code_page.h"

#include <iconv.h>

#include <vector>

namespace vkm::test {
namespace {

// A byte that begins no character is passed over, with `replacement` in its place.
std::string converted(const char* to, const char* from, std::string_view text,
                      std::string_view replacement) {
    const iconv_t codec = iconv_open(to, from);
    std::vector<char> input(text.begin(), text.end());
    std::vector<char> room(4 * text.size() + 16);
    std::string result;
    char* in = input.data();
    std::size_t left = input.size();
    while (left > 0) {
        char* out = room.data();
        std::size_t free = room.size();
        const bool whole = iconv(codec, &in, &left, &out, &free) != static_cast<std::size_t>(-1);
        result.append(room.data(), room.size() - free);
        if (whole || left == 0) break;
        result += replacement;
        ++in;
        --left;
    }
    iconv_close(codec);
    return result;
}

}  // namespace

std::string GbkCodePage::to_screen(std::string_view bytes) const {
    return converted("UTF-8", "GB18030", bytes, "\uFFFD");
}

std::string GbkCodePage::to_file(std::string_view utf8) const {
    return converted("GB18030", "UTF-8", utf8, "?");
}

}  // namespace vkm::test
