#include "platform/qt/text_mapping.h"

namespace vkm {
namespace {

constexpr std::size_t longest_character = 4;

// Length in bytes of the character that begins at `at`.
std::size_t character_length(std::string_view utf8, std::size_t at) {
    std::size_t length = 1;
    while (length < longest_character && at + length < utf8.size() &&
           (static_cast<unsigned char>(utf8[at + length]) & 0xC0) == 0x80)
        ++length;
    return length;
}

// One step of both counts: a character, or a line break.
struct Step {
    std::size_t bytes = 1;
    int characters = 1;
    int units = 1;
};

Step step_at(std::string_view utf8, std::size_t at) {
    if (utf8[at] == '\r' && at + 1 < utf8.size() && utf8[at + 1] == '\n') return {2, 2, 1};
    const std::size_t bytes = character_length(utf8, at);
    return {bytes, 1, bytes == longest_character ? 2 : 1};
}

bool is_taken_for_an_end(QChar character) {
    switch (character.unicode()) {
        case u'\0':
        case QChar::LineSeparator:
        case QChar::ParagraphSeparator:
        case 0xFDD0:
        case 0xFDD1:
            return true;
        default:
            return false;
    }
}

}  // namespace

// The toolkit takes a byte order mark at the beginning for none of the text.
QString to_qt(std::string_view utf8) {
    constexpr std::string_view mark = "\xEF\xBB\xBF";
    const QString text = QString::fromUtf8(utf8.data(), static_cast<qsizetype>(utf8.size()));
    return utf8.starts_with(mark) ? QChar(QChar::ByteOrderMark) + text : text;
}

std::string from_qt(const QString& text) {
    return text.toStdString();
}

QString drawable(std::string_view utf8) {
    QString text = to_qt(utf8);
    for (QChar& character : text)
        if (is_taken_for_an_end(character)) character = QChar::ReplacementCharacter;
    return text;
}

QString widget_lines(std::string_view utf8) {
    QString text = drawable(utf8);
    text.replace(QLatin1String("\r\n"), QLatin1String("\n"));
    text.replace(u'\r', u'\n');
    return text;
}

std::string record_lines(const QString& text) {
    return from_qt(QString(text).replace(u'\n', QLatin1String("\r\n")));
}

std::int32_t record_position(std::string_view utf8, int units) {
    std::int32_t position = 0;
    int passed = 0;
    for (std::size_t at = 0; at < utf8.size() && passed < units;) {
        const Step step = step_at(utf8, at);
        at += step.bytes;
        passed += step.units;
        position += step.characters;
    }
    return position;
}

int widget_position(std::string_view utf8, std::int32_t position) {
    int units = 0;
    std::int32_t passed = 0;
    for (std::size_t at = 0; at < utf8.size();) {
        const Step step = step_at(utf8, at);
        if (passed + step.characters > position) break;
        at += step.bytes;
        passed += step.characters;
        units += step.units;
    }
    return units;
}

}  // namespace vkm
