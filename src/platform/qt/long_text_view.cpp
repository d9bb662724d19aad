#include "platform/qt/long_text_view.h"

#include <QEvent>
#include <QKeyEvent>
#include <QMimeData>
#include <QScrollBar>
#include <QSignalBlocker>
#include <QTextBlock>
#include <vector>

#include "platform/qt/text_mapping.h"

namespace vkm {
namespace {

// What stands between a paragraph and the one before it, kept as its state.
enum Break { soft = 1, carriage_return_line_feed, carriage_return, line_feed };

const char* text_of(int kind) {
    switch (kind) {
        case carriage_return_line_feed:
            return "\r\n";
        case carriage_return:
            return "\r";
        case line_feed:
            return "\n";
        default:
            return "";
    }
}

bool is_soft(const QTextBlock& block) {
    return block.userState() == soft;
}

struct Line {
    int kind;  // of the break before it
    QString text;
};

// The first line continues what stands there already.
std::vector<Line> lines_of(std::string_view text) {
    std::vector<Line> lines;
    int kind = soft;
    for (;;) {
        const std::size_t end = text.find_first_of("\r\n");
        lines.push_back({kind, drawable(text.substr(0, end))});
        if (end == std::string_view::npos) return lines;
        kind = text[end] == '\n'                      ? line_feed
               : text.substr(end).starts_with("\r\n") ? carriage_return_line_feed
                                                      : carriage_return;
        text.remove_prefix(end + (kind == carriage_return_line_feed ? 2 : 1));
    }
}

}  // namespace

// Rows as paragraphs: the first one continues what stands there already.
struct LongTextView::Rows {
    QString text;  // with line feeds between them
    std::vector<int> kinds;

    void add(const QStringList& rows, int kind) {
        for (const QString& row : rows) {
            if (!kinds.empty()) text += u'\n';
            text += row;
            kinds.push_back(kind);
            kind = soft;
        }
    }
};

LongTextView::LongTextView() {
    // Should the toolkit find a row too wide, nothing of it is out of sight.
    setLineWrapMode(WidgetWidth);
    setWordWrapMode(QTextOption::WrapAnywhere);
    // A bar that comes and goes would change the width.
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    fit_rows({});
}

void LongTextView::draw_text(std::string_view text, std::size_t unchanged) {
    if (unchanged == 0) {
        clear();
        soft_breaks_ = 0;
    }
    QTextBlock last = document()->lastBlock();
    if (unchanged > 0 && text[unchanged] == '\n' && last.userState() == carriage_return &&
        last.length() == 1) {
        last.setUserState(carriage_return_line_feed);  // one break that came in two pieces
        ++unchanged;
    }
    append(text.substr(unchanged));
}

// The last row may have to be broken elsewhere, those before it stay.
void LongTextView::append(std::string_view text) {
    QTextBlock last = document()->lastBlock();
    const int first_row = last.blockNumber();
    const QString begun = last.text();
    Rows rows;
    for (const Line& line : lines_of(text)) {
        const bool continued = rows.kinds.empty();
        rows.add(breaker_->rows_of(continued ? begun + line.text : line.text), line.kind);
    }
    QTextCursor end(document());
    end.beginEditBlock();
    end.movePosition(QTextCursor::End);
    if (rows.text.startsWith(begun)) {
        end.insertText(rows.text.mid(begun.size()));
    } else {
        end.movePosition(QTextCursor::StartOfBlock, QTextCursor::KeepAnchor);
        end.insertText(rows.text);
    }
    QTextBlock block = document()->findBlockByNumber(first_row);
    for (std::size_t i = 1; i < rows.kinds.size(); ++i) {
        block = block.next();
        block.setUserState(rows.kinds[i]);
        if (rows.kinds[i] == soft) ++soft_breaks_;
    }
    end.endEditBlock();
}

std::string LongTextView::drawn_text() const {
    std::string text;
    for (QTextBlock block = document()->begin(); block.isValid(); block = block.next()) {
        if (block.blockNumber() > 0) text += text_of(block.userState());
        text += from_qt(block.text());
    }
    return text;
}

int LongTextView::document_position(int units) const {
    const int end = document()->characterCount() - 1;
    if (units >= end - soft_breaks_) return end;
    for (QTextBlock block = document()->begin(); block.isValid(); block = block.next()) {
        const int length = block.length() - 1;
        const bool continued = is_soft(block.next());
        if (units < length || (units == length && !continued)) return block.position() + units;
        units -= continued ? length : length + 1;
    }
    return end;
}

int LongTextView::units_at(int position) const {
    if (position >= document()->characterCount() - 1) return position - soft_breaks_;
    const int row = document()->findBlock(position).blockNumber();
    int breaks = 0;
    QTextBlock block = document()->begin();
    for (int i = 0; i < row; ++i) {
        block = block.next();
        if (is_soft(block)) ++breaks;
    }
    return position - breaks;
}

QMimeData* LongTextView::createMimeDataFromSelection() const {
    const int start = textCursor().selectionStart();
    const int end = textCursor().selectionEnd();
    QString text;
    for (QTextBlock block = document()->findBlock(start);
         block.isValid() && block.position() <= end; block = block.next()) {
        if (block.position() > start && !is_soft(block)) text += u'\n';
        const int from = std::max(start - block.position(), 0);
        text += block.text().mid(from, end - block.position() - from);
    }
    auto* data = new QMimeData;
    data->setText(text);
    return data;
}

// A key that has only gone over the break between two rows goes on.
void LongTextView::keyPressEvent(QKeyEvent* event) {
    const int before = textCursor().position();
    TextView::keyPressEvent(event);
    const int after = textCursor().position();
    if (after != before && units_at(after) == units_at(before)) TextView::keyPressEvent(event);
}

LongTextView::Sight LongTextView::sight() const {
    const QScrollBar* bar = verticalScrollBar();
    return {bar->value() == bar->maximum(), units_at(firstVisibleBlock().position())};
}

void LongTextView::resizeEvent(QResizeEvent* event) {
    const Sight before = sight();
    TextView::resizeEvent(event);
    fit_rows(before);
}

void LongTextView::changeEvent(QEvent* event) {
    const Sight before = sight();
    TextView::changeEvent(event);
    if (event->type() != QEvent::FontChange) return;
    room_ = 0;
    fit_rows(before);
}

// Draws the same text anew in rows of the present width. What was at the top stays there,
// or what was at the end.
void LongTextView::fit_rows(const Sight& before) {
    const double room = viewport()->width() - 2 * document()->documentMargin();
    if (room == room_) return;
    room_ = room;
    breaker_.emplace(font(), room, tabStopDistance());
    const QSignalBlocker quiet(this);
    const int anchor = units_at(textCursor().anchor());
    const int position = units_at(textCursor().position());
    draw_text(drawn_text(), 0);
    QTextCursor cursor(document());
    cursor.setPosition(document_position(anchor));
    cursor.setPosition(document_position(position), QTextCursor::KeepAnchor);
    setTextCursor(cursor);
    QScrollBar* bar = verticalScrollBar();
    bar->setValue(before.end
                      ? bar->maximum()
                      : document()->findBlock(document_position(before.top)).firstLineNumber());
}

}  // namespace vkm
