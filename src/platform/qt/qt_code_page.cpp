#include "platform/qt/qt_code_page.h"

#include <QStringDecoder>
#include <QStringEncoder>

#include "platform/qt/text_mapping.h"

namespace vkm {
namespace {

// The extension of GBK that has bytes for every character. A Qt that was built without
// such codecs has the system's own code page at least.
constexpr const char* code_page = "GB18030";

template <typename Codec>
Codec codec() {
    Codec wanted(code_page);
    return wanted.isValid() ? std::move(wanted) : Codec(QStringConverter::System);
}

}  // namespace

// A decoder keeps half a character at the end for the bytes to come, and there are none.
// A line feed, which no character continues with, brings it out.
std::string QtCodePage::to_screen(std::string_view bytes) const {
    auto decoder = codec<QStringDecoder>();
    QString text = decoder(QByteArray(bytes.data(), static_cast<qsizetype>(bytes.size())) + '\n');
    text.chop(1);
    return from_qt(text);
}

std::string QtCodePage::to_file(std::string_view utf8) const {
    auto encoder = codec<QStringEncoder>();
    const QByteArray bytes = encoder(to_qt(utf8));
    return bytes.toStdString();
}

}  // namespace vkm
