#include "image/text_lines.h"

#include <algorithm>
#include <cstring>

namespace vkm {
namespace {

constexpr std::size_t piece_size = 16384;

}  // namespace

TextLines::Step TextLines::next() {
    if (at_ == filled_ && !fill()) {
        if (!inside_line_) return Step::end;
        finish_line();
        return Step::line;
    }
    if (!inside_line_) {
        inside_line_ = true;
        ends_in_cr_ = false;
        line_.Kept.clear();
        line_.Length = 0;
    }
    const std::uint8_t* rest = piece_.data() + at_;
    const auto* line_end = static_cast<const std::uint8_t*>(std::memchr(rest, '\n', filled_ - at_));
    if (!line_end) {
        take(filled_ - at_);
        return Step::more;
    }
    take(static_cast<std::size_t>(line_end - rest));
    ++at_;
    finish_line();
    return Step::line;
}

bool TextLines::fill() {
    if (!file_) return false;
    piece_.resize(piece_size);
    at_ = 0;
    filled_ = file_->read(piece_);
    return filled_ > 0;
}

void TextLines::take(std::size_t count) {
    if (count == 0) return;
    const std::size_t room = kept_of_line - std::min(kept_of_line, line_.Kept.size());
    line_.Kept.append(reinterpret_cast<const char*>(piece_.data() + at_), std::min(count, room));
    line_.Length += count;
    at_ += count;
    ends_in_cr_ = piece_[at_ - 1] == '\r';
}

void TextLines::finish_line() {
    inside_line_ = false;
    if (!ends_in_cr_) return;
    --line_.Length;
    if (line_.Kept.size() > line_.Length) line_.Kept.pop_back();
}

}  // namespace vkm
