// Questions to the operator on Qt's boxes and file dialogs.
//
// Each call waits by turning the event loop itself, so timers tick and the port
// is read meanwhile; only the window behind the box is closed to the operator.
#pragma once

#include <QDialog>
#include <QPointer>
#include <QWidget>
#include <functional>

#include "platform/dialogs.h"

class QFileDialog;
class QMessageBox;

namespace vkm {

class QtDialogs final : public Dialogs {
  public:
    void show_text(std::string_view text, std::string_view title) override;
    void show_warning(std::string_view text, std::string_view title) override;
    bool ask_yes_no(std::string_view text, std::string_view title) override;
    std::string ask_file_to_open(const FileQuestion& question) override;
    std::string ask_file_to_save(const FileQuestion& question) override;

    // ---- set once, before the first question ----

    QPointer<QWidget> window;  // the one that boxes stand before
    // Turns the event loop, sleeping, until something has happened.
    std::function<void()> let_events_run;
    // True when the window has closed: a box that still stands is left by its default.
    std::function<bool()> is_over;

    // ---- for whoever operates the window by program ----

    std::function<void(QMessageBox&)> box_shown;
    std::function<void(QFileDialog&)> file_dialog_shown;
    bool system_dialogs = true;  // the system's own file dialogs, where it has any

  private:
    void wait_for(QDialog& dialog);
    int show_box(QMessageBox& box, std::string_view text, std::string_view title);
    std::string ask_file(QFileDialog& dialog, const FileQuestion& question);
};

// "(*.bin)|*.bin|All Files (*.*)|*.*" as Qt writes it, one text a row. A pattern
// also finds names in the other letter case.
QStringList name_filters(std::string_view filter);

}  // namespace vkm
