#include "platform/qt/qt_code_page.h"

#include <QStringDecoder>
#include <QStringEncoder>

#include "platform/qt/text_mapping.h"

namespace vkm {
namespace {

// The extension of GBK that has bytes for every character.
constexpr const char* code_page = "GB18030";

}  // namespace

std::string QtCodePage::to_screen(std::string_view bytes) const {
    QStringDecoder decoder(code_page);
    const QString text =
        decoder(QByteArrayView(bytes.data(), static_cast<qsizetype>(bytes.size())));
    return from_qt(text);
}

std::string QtCodePage::to_file(std::string_view utf8) const {
    QStringEncoder encoder(code_page);
    const QByteArray bytes = encoder(to_qt(utf8));
    return bytes.toStdString();
}

}  // namespace vkm
