// Texts between the records and the widgets.
//
// Records hold UTF-8 with CR LF between lines, and count positions in
// characters, CR and LF one each. Widgets hold UTF-16 with one separator between
// lines, and count in code units.
#pragma once

#include <QString>
#include <cstdint>
#include <string>
#include <string_view>

namespace vkm {

QString to_qt(std::string_view utf8);
std::string from_qt(const QString& text);

// The same, with a replacement for each character that a text box takes for the end of a
// paragraph or of the text.
QString drawable(std::string_view utf8);

// The lines of a record's text as a widget takes them. CR LF, and a CR or LF
// that stands alone, become one line feed each.
QString widget_lines(std::string_view utf8);

// The other way round: a widget's lines as a record holds them.
std::string record_lines(const QString& text);

// The place of a record's text that is the widget's `units`th code unit, and the
// other way round. Places behind the end, or before the beginning, are held to
// it; inside of CR LF counts as before it.
std::int32_t record_position(std::string_view utf8, int units);
int widget_position(std::string_view utf8, std::int32_t position);

}  // namespace vkm
