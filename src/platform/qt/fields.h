// The plain widgets of the window, with sizes that follow from their text and
// font.
#pragma once

#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QList>
#include <QPlainTextEdit>
#include <functional>

namespace vkm {

// A line of text, as wide as so many digits; 0 takes what width there is. What stands
// in it can be read from afar while it is locked too: it is what the job works with.
class Field final : public QLineEdit {
  public:
    Field() { darken_locked_text(); }
    void set_columns(int columns);
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

  protected:
    void changeEvent(QEvent* event) override;

  private:
    void darken_locked_text();

    int columns_ = 0;
};

// Many lines of monospaced text that nobody types into, never smaller than so
// many rows and columns.
class TextView final : public QPlainTextEdit {
  public:
    TextView();
    void set_size_in_characters(int rows, int columns);
    QSize sizeHint() const override { return minimumSizeHint(); }
    QSize minimumSizeHint() const override;

    // Whole lines that there is room for, and what is called when that may have
    // changed.
    int rows_in_sight() const;
    std::function<void()> on_resize = [] {};

    // What is selected looks the same without the keyboard as with it.
    void show_selection_always();

    // Does what the key does in a text box.
    void act_on(QKeyEvent& key) { keyPressEvent(&key); }

  protected:
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

  private:
    void copy_selection_colours();

    bool selection_always_ = false;
    int rows_ = 4;
    int columns_ = 20;
};

// A value that changes all the time, in a place of fixed size: so many digits
// wide. A label would have the whole window laid out anew for each value.
class Readout final : public QLabel {
  public:
    explicit Readout(int columns);

  protected:
    void changeEvent(QEvent* event) override;

  private:
    void fix_size();

    int columns_;
};

// A label as wide as the widest of its column, so that forms below each other
// look like one.
class ColumnLabel final : public QLabel {
  public:
    ColumnLabel() { setTextFormat(Qt::PlainText); }
    static void align(const QList<ColumnLabel*>& column);
    QSize sizeHint() const override;

  protected:
    void resizeEvent(QResizeEvent* event) override;

  private:
    QList<ColumnLabel*> column_;
};

// A titled group. Where the title finds no room it ends in "…", and a hint shows
// it whole: a long path must not widen the window.
class Group final : public QGroupBox {
  public:
    void set_caption(const QString& caption);
    const QString& caption() const { return caption_; }
    QSize minimumSizeHint() const override;

  protected:
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

  private:
    void fit_title();

    QString caption_;
};

}  // namespace vkm
