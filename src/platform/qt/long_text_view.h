// A text view for texts of tens of thousands of characters that grow all the time.
//
// What the toolkit spends on a change grows with the length of the paragraph, and bytes in
// hexadecimal have no line break at all. So each row of the window is a paragraph of its
// own. Nothing outside of this class sees the breaks that are put in for it: not the text
// that is read back, no position, no copy.
#pragma once

#include <optional>

#include "platform/qt/fields.h"
#include "platform/qt/row_breaker.h"

namespace vkm {

class LongTextView final : public TextView {
  public:
    LongTextView();

    void draw_text(std::string_view text, std::size_t unchanged) override;
    std::string drawn_text() const override;
    int document_position(int units) const override;
    int units_at(int document_position) const override;

  protected:
    QMimeData* createMimeDataFromSelection() const override;
    void keyPressEvent(QKeyEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

  private:
    struct Rows;

    // What is in sight.
    struct Sight {
        bool end = false;
        int top = 0;  // place in the text of the first row
    };

    void append(std::string_view text);
    Sight sight() const;
    void fit_rows(const Sight& before);

    double room_ = 0;  // for a row, in pixels
    std::optional<RowBreaker> breaker_;
    int soft_breaks_ = 0;
};

}  // namespace vkm
