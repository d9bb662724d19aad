#include "robot/box_answers.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDialogButtonBox>
#include <QEvent>
#include <QFileDialog>
#include <QJsonObject>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include "robot/drawn.h"
#include "robot/line_breaks.h"
#include "robot/refusal.h"

namespace vkm::robot {
namespace {

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

Box_Answers::Box_Answers(QObject* parent) : QObject(parent) {
    qApp->installEventFilter(this);
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
        QTimer::singleShot(0, box, [this, box] { answer_box(*box); });
    else if (auto* dialog = qobject_cast<QFileDialog*>(object))
        QTimer::singleShot(0, dialog, [this, dialog] { answer_file(*dialog); });
    return false;
}

void Box_Answers::answer_box(QMessageBox& box) {
    QAbstractButton* button =
        button_for(box, box_answers_.isEmpty() ? QString() : box_answers_.takeFirst());
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
}

void Box_Answers::answer_file(QFileDialog& dialog) {
    const QString path = file_answers_.isEmpty() ? QString() : file_answers_.takeFirst();
    QPushButton* cancel = button_of_role(dialog, QDialogButtonBox::RejectRole);
    auto* name = dialog.findChild<QLineEdit*>("fileNameEdit");
    if (path.isEmpty() || !name) {
        click_widget(*cancel);
        return;
    }
    // A dialog that doesn't take the name (no such file, a folder) stays: cancelled.
    const QPointer<QFileDialog> stays = &dialog;
    name->setFocus();
    name->selectAll();
    QTest::sendKeyEvent(QTest::Press, name, Qt::Key_unknown, path, Qt::NoModifier);
    QTest::sendKeyEvent(QTest::Click, name, Qt::Key_Return, "\r", Qt::NoModifier);
    if (stays && stays->isVisible()) click_widget(*cancel);
}

}  // namespace vkm::robot
