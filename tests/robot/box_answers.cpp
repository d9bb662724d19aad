#include "robot/box_answers.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QApplication>
#include <QCompleter>
#include <QDialogButtonBox>
#include <QEvent>
#include <QFileDialog>
#include <QFileInfo>
#include <QJsonObject>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <algorithm>

#include "robot/drawn.h"
#include "robot/line_breaks.h"
#include "robot/refusal.h"

namespace vkm::robot {
namespace {

// Until a file dialog has listed its folder it knows no files, and then it puts
// its proposal over what was typed meanwhile: whoever is that fast types again.
constexpr int listing_ms = 60;
constexpr int typings_of_a_file = 80;
constexpr int typings_of_no_file = 3;

QString name_of(const QMessageBox& box, QAbstractButton* button) {
    switch (box.standardButton(button)) {
        case QMessageBox::Ok:
            return "ok";
        case QMessageBox::Yes:
            return "yes";
        case QMessageBox::No:
            return "no";
        default:
            return without_mnemonic(button->text());
    }
}

// The button of that name, or the one that Return would press.
QAbstractButton* button_for(const QMessageBox& box, const QString& answer) {
    for (QAbstractButton* button : box.buttons())
        if (name_of(box, button) == answer) return button;
    if (box.defaultButton()) return box.defaultButton();
    return box.buttons().isEmpty() ? nullptr : box.buttons().first();
}

QPushButton* button_of_role(const QFileDialog& dialog, QDialogButtonBox::ButtonRole role) {
    const auto* buttons = dialog.findChild<QDialogButtonBox*>();
    for (QAbstractButton* button : buttons->buttons())
        if (buttons->buttonRole(button) == role) return qobject_cast<QPushButton*>(button);
    return nullptr;
}

}  // namespace

Box_Answers::Box_Answers(std::function<void()> answered) : answered_(std::move(answered)) {
    qApp->installEventFilter(this);
}

bool Box_Answers::busy() const {
    return std::any_of(unanswered_.begin(), unanswered_.end(),
                       [](const QPointer<QWidget>& box) { return box && box->isVisible(); });
}

void Box_Answers::queue_box(const QString& answer) {
    if (!QStringList{"ok", "yes", "no"}.contains(answer)) throw Refusal{"unknown answer " + answer};
    box_answers_ << answer;
}

void Box_Answers::queue_file(const QString& path) {
    file_answers_ << path;
}

// A box is answered from the event loop that it runs, once it stands.
bool Box_Answers::eventFilter(QObject* object, QEvent* event) {
    if (event->type() != QEvent::Show) return false;
    if (auto* box = qobject_cast<QMessageBox*>(object))
        QTimer::singleShot(0, box, [=, this] { answer_box(*box); });
    else if (auto* dialog = qobject_cast<QFileDialog*>(object))
        QTimer::singleShot(0, dialog, [=, this] { answer_file(*dialog); });
    else
        return false;
    unanswered_.append(static_cast<QWidget*>(object));
    return false;
}

void Box_Answers::answered(QWidget* box) {
    unanswered_.removeAll(QPointer<QWidget>(box));
    answered_();
}

void Box_Answers::answer_box(QMessageBox& box) {
    QAbstractButton* button =
        button_for(box, box_answers_.isEmpty() ? QString() : box_answers_.takeFirst());
    if (!picture_.isEmpty()) box.grab().save(std::exchange(picture_, {}), "PNG");
    QJsonArray buttons;
    for (QAbstractButton* each : box.buttons()) buttons.append(name_of(box, each));
    boxes_.append(QJsonObject{{"title", box.windowTitle()},
                              {"text", with_cr_lf(box.text())},
                              {"buttons", buttons},
                              {"answer", button ? name_of(box, button) : QString()}});
    if (button)
        click_widget(*button);
    else
        box.reject();
    answered(&box);
}

void Box_Answers::answer_file(QFileDialog& dialog) {
    const QString path = file_answers_.isEmpty() ? QString() : file_answers_.takeFirst();
    if (!path.isEmpty()) {
        dialog.selectNameFilter(dialog.nameFilters().last());  // all files
        return type_path(dialog, path,
                         QFileInfo(path).isFile() ? typings_of_a_file : typings_of_no_file);
    }
    click_widget(*button_of_role(dialog, QDialogButtonBox::RejectRole));
    answered(&dialog);
}

void Box_Answers::type_path(QFileDialog& dialog, const QString& path, int typings_left) {
    auto* name = dialog.findChild<QLineEdit*>("fileNameEdit");
    name->setFocus();
    name->selectAll();
    QTest::sendKeyEvent(QTest::Press, name, Qt::Key_unknown, path, Qt::NoModifier);
    if (name->completer()) name->completer()->popup()->hide();
    QTimer::singleShot(listing_ms, &dialog, [=, this, &dialog] {
        const bool taken = name->text() == path &&
                           button_of_role(dialog, QDialogButtonBox::AcceptRole)->isEnabled();
        if (!taken && typings_left > 0) return type_path(dialog, path, typings_left - 1);
        accept_file(dialog);
    });
}

// A dialog that doesn't take the name (no such file, a folder) stays: cancelled.
void Box_Answers::accept_file(QFileDialog& dialog) {
    const QPointer<QFileDialog> stays = &dialog;
    click_widget(*button_of_role(dialog, QDialogButtonBox::AcceptRole));
    if (!stays) return answered_();
    if (stays->isVisible()) click_widget(*button_of_role(*stays, QDialogButtonBox::RejectRole));
    answered(stays);
}

}  // namespace vkm::robot
