// A list of monospaced rows, any of them highlighted: the registers and the memory of
// a stopped target.
#pragma once

#include <QListWidget>
#include <cstdint>
#include <vector>

namespace vkm {

class RowList final : public QListWidget {
  public:
    RowList();

    // How wide the rows are, in characters.
    void set_columns(int columns);

    // A line above the rows that goes sideways with them. Its words stand at the columns
    // that they have in the text; a Chinese character is two columns wide.
    void set_header(const QString& header);

    // The rows keep their places where only their texts have changed.
    void set_texts(const QStringList& texts);

    // Highlights these rows and no others; places that aren't there are passed over.
    void highlight(const std::vector<std::int32_t>& rows);
    std::vector<std::int32_t> highlighted() const;

    // The row that the keys start from; scrolls to nothing, and highlights nothing.
    void set_current(int row);

    // The first row in sight; as far down as the list goes.
    void set_top_row(int row);
    int top_row() const;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

  protected:
    void updateGeometries() override;
    void scrollContentsBy(int dx, int dy) override;
    void keyPressEvent(QKeyEvent* event) override;
    void changeEvent(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    QSize size_of(int rows, int columns) const;
    void make_room_for_header();
    void paint_header();
    void copy_rows() const;

    int columns_;
    QString header_text_;
    QWidget* header_ = nullptr;
};

}  // namespace vkm
