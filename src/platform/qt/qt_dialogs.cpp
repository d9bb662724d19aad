#include "platform/qt/qt_dialogs.h"

#include <QFileDialog>
#include <QFileInfo>
#include <QLabel>
#include <QMessageBox>
#include <QScreen>
#include <algorithm>

#include "platform/qt/text_mapping.h"

namespace vkm {
namespace {

const QString program_title = QStringLiteral("VKM ISP");

QString qt_patterns(const QString& patterns) {
    QStringList all;
    for (const QString& pattern : patterns.split(u';', Qt::SkipEmptyParts)) {
        const QString trimmed = pattern.trimmed();
        // Names without a point are files too.
        if (trimmed == QLatin1String("*.*")) return QStringLiteral("*");
        all << trimmed.toLower() << trimmed.toUpper();
    }
    all.removeDuplicates();
    return all.join(u' ');
}

// The ending that a new file gets when the operator types none.
QString first_suffix(std::string_view filter) {
    const QString pattern = to_qt(filter).section(u'|', 1, 1).section(u';', 0, 0).trimmed();
    return pattern.startsWith(QLatin1String("*.")) ? pattern.mid(2) : QString();
}

constexpr int widest_box = 100;  // in digits

// The toolkit breaks lines early; numbers that are to be compared, and the two
// languages of a sentence, keep their lines as far as the screen has room.
void keep_lines(QMessageBox& box) {
    auto* label = box.findChild<QLabel*>(QStringLiteral("qt_msgbox_label"));
    if (!label) return;
    const QFontMetrics metrics = label->fontMetrics();
    int width = 0;
    for (const QString& line : box.text().split(u'\n'))
        width = std::max(width, metrics.horizontalAdvance(line + u' '));
    label->setMinimumWidth(std::min({width, metrics.horizontalAdvance(u'0') * widest_box,
                                     box.screen()->availableGeometry().width() * 2 / 3}));
}

}  // namespace

QStringList name_filters(std::string_view filter) {
    const QStringList parts = to_qt(filter).split(u'|');
    QStringList filters;
    for (qsizetype i = 0; i + 1 < parts.size(); i += 2)
        filters << QStringLiteral("%1 (%2)").arg(parts[i].trimmed(), qt_patterns(parts[i + 1]));
    return filters;
}

void QtDialogs::show_text(std::string_view text, std::string_view title) {
    QMessageBox box(window);
    box.setIcon(QMessageBox::Information);
    box.setStandardButtons(QMessageBox::Ok);
    show_box(box, text, title);
}

void QtDialogs::show_warning(std::string_view text, std::string_view title) {
    QMessageBox box(window);
    box.setIcon(QMessageBox::Warning);
    box.setStandardButtons(QMessageBox::Ok);
    show_box(box, text, title);
}

bool QtDialogs::ask_yes_no(std::string_view text, std::string_view title) {
    QMessageBox box(window);
    box.setIcon(QMessageBox::Question);
    box.setStandardButtons(QMessageBox::Yes | QMessageBox::No);
    box.setDefaultButton(QMessageBox::No);
    box.setEscapeButton(QMessageBox::No);
    return show_box(box, text, title) == QMessageBox::Yes;
}

std::string QtDialogs::ask_file_to_open(const FileQuestion& question) {
    QFileDialog dialog(window);
    dialog.setAcceptMode(QFileDialog::AcceptOpen);
    dialog.setFileMode(QFileDialog::ExistingFile);
    return ask_file(dialog, question);
}

std::string QtDialogs::ask_file_to_save(const FileQuestion& question) {
    QFileDialog dialog(window);
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setFileMode(QFileDialog::AnyFile);
    dialog.setDefaultSuffix(first_suffix(question.filter));
    return ask_file(dialog, question);
}

void QtDialogs::wait_for(QDialog& dialog) {
    bool answered = false;
    QObject::connect(&dialog, &QDialog::finished, &dialog, [&answered] { answered = true; });
    dialog.setWindowModality(Qt::WindowModal);
    dialog.open();
    while (!answered && !is_over()) let_events_run();
}

int QtDialogs::show_box(QMessageBox& box, std::string_view text, std::string_view title) {
    box.setTextFormat(Qt::PlainText);
    box.setText(widget_lines(text));
    box.setWindowTitle(title.empty() ? program_title : to_qt(title));
    keep_lines(box);
    if (box_shown) box_shown(box);
    wait_for(box);
    const QAbstractButton* pressed = box.clickedButton();
    return pressed ? box.standardButton(const_cast<QAbstractButton*>(pressed)) : 0;
}

std::string QtDialogs::ask_file(QFileDialog& dialog, const FileQuestion& question) {
    dialog.setWindowTitle(to_qt(question.title));
    dialog.setNameFilters(name_filters(question.filter));
    dialog.setOption(QFileDialog::HideNameFilterDetails);
    dialog.setOption(QFileDialog::DontUseNativeDialog, !system_dialogs);
    const QString folder = to_qt(question.folder);
    if (!folder.isEmpty() && QFileInfo(folder).isDir()) dialog.setDirectory(folder);
    if (!question.name.empty()) dialog.selectFile(to_qt(question.name));
    if (file_dialog_shown) file_dialog_shown(dialog);
    wait_for(dialog);
    if (dialog.result() != QDialog::Accepted) return {};
    const QStringList files = dialog.selectedFiles();
    return files.isEmpty() ? std::string() : from_qt(files.front());
}

}  // namespace vkm
