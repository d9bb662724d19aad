// The plain widgets of the window, with sizes that follow from their text and
// font.
#pragma once

#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QList>
#include <QPlainTextEdit>
#include <functional>
#include <string>
#include <string_view>

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

// Many lines of monospaced text, never smaller than so many rows and columns.
// Nobody types into it unless that is allowed.
class TextView : public QPlainTextEdit {
  public:
    TextView();
    void set_size_in_characters(int rows, int columns);
    QSize sizeHint() const override { return minimumSizeHint(); }
    QSize minimumSizeHint() const override;

    // Whole lines that there is room for, and what is called when that may have
    // changed.
    int rows_in_sight() const;
    std::function<void()> on_resize = [] {};

    // Draws a record's text, of which so many bytes at its beginning stand there already.
    virtual void draw_text(std::string_view text, std::size_t unchanged);

    // What is drawn, as a record holds it.
    virtual std::string drawn_text() const;

    // A place among the code units of the text as text_mapping.h counts them, and the
    // document's own for it.
    virtual int document_position(int units) const { return units; }
    virtual int units_at(int document_position) const { return document_position; }

    // Makes it a box that is typed into.
    void allow_typing();

    // What is selected looks the same without the keyboard as with it.
    void keep_selection_visible();

    // Does what the key does in a text box.
    void act_on(QKeyEvent& key) { keyPressEvent(&key); }

  protected:
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

  private:
    bool selection_always_ = false;
    int rows_ = 4;
    int columns_ = 20;
};

// A value that changes all the time, in a place of fixed size: that of its widest
// text. A label would have the whole window laid out anew for each value.
class Readout final : public QLabel {
  public:
    Readout(const QString& widest, Qt::Alignment side);

  protected:
    void changeEvent(QEvent* event) override;

  private:
    void fix_size();

    QString widest_;
};

// A text of one line whatever the width: what finds no room is left out of the middle.
class OneLine final : public QLabel {
  public:
    OneLine();

  protected:
    void paintEvent(QPaintEvent* event) override;
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
