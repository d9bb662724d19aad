// The operator in front of the boxes: every message box and file dialog that
// comes up is answered by its own buttons, with the answer laid out beforehand
// or else by its default (a file dialog: Cancel).
#pragma once

#include <QJsonArray>
#include <QObject>
#include <QPointer>
#include <QStringList>
#include <QWidget>
#include <functional>

class QFileDialog;
class QMessageBox;

namespace vkm::robot {

class Box_Answers : public QObject {
  public:
    // `answered` is called behind each answer: what it sets going runs later.
    explicit Box_Answers(std::function<void()> answered);

    // A box stands and has not been answered yet.
    bool busy() const;

    void queue_box(const QString& answer);  // "ok", "yes" or "no", else a Refusal
    void queue_file(const QString& path);   // an empty path cancels
    void picture_next_box(const QString& path) { picture_ = path; }
    QJsonArray boxes() const { return boxes_; }

  protected:
    bool eventFilter(QObject* object, QEvent* event) override;

  private:
    void answer_box(QMessageBox& box);
    void answer_file(QFileDialog& dialog);
    void type_path(QFileDialog& dialog, const QString& path, int typings_left);
    void accept_file(QFileDialog& dialog);
    void answered(QWidget* box);

    std::function<void()> answered_;
    QList<QPointer<QWidget>> unanswered_;
    QStringList box_answers_;
    QStringList file_answers_;
    QString picture_;  // where the next box is pictured before it is answered, or empty
    QJsonArray boxes_;
};

}  // namespace vkm::robot
