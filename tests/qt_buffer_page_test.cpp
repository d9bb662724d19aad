// The view of an image as the operator has it: what lies over what, how many rows
// there are, keys, mouse and wheel.
#include <QApplication>
#include <QFile>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QTabBar>
#include <QTextBlock>
#include <QWheelEvent>
#include <functional>

#include "qt_drawn_window.h"

namespace vkm::test {
namespace {

constexpr int notch = 120;        // of a wheel
constexpr int row_length = 60;    // characters of a row in the record
constexpr int rows_begin = 4;     // behind the two empty rows
constexpr int digits_begin = 10;  // of a row

class QtBufferPageTest : public DrawnWindow {
  protected:
    QtBufferPageTest() {
        tool.window.resize(1280, 800);
        tool.window.activateWindow();
        settle();
        open(QByteArray(0x1000, '\x5A'));
    }

    void open(const QByteArray& content) {
        QFile file(folder.filePath("image.bin"));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
        file.close();
        handle_drop(file.fileName());
    }
    void handle_drop(const QString& path) {
        tool.queue.push(ScreenEvent{nullptr, EventKind::Drop, 0, path.toStdString()});
        settle();
        ASSERT_TRUE(tool.frm.images.File_Loaded);
    }

    QPlainTextEdit* box(Control& control) { return static_cast<QPlainTextEdit*>(widget(control)); }
    QPlainTextEdit* page() { return box(screen.txtBuffer2); }
    QScrollBar* bar(int element = 0) {
        return static_cast<QScrollBar*>(widget(screen.vscFile[static_cast<std::size_t>(element)]));
    }
    void show_data_page() {
        static_cast<QTabBar*>(widget(screen.TabStrip2))->setCurrentIndex(1);
        settle();
    }

    void wheel(QWidget* on, QPoint angle) {
        const QPoint middle = on->rect().center();
        QWheelEvent event(middle, on->mapToGlobal(middle), {}, angle, Qt::NoButton, Qt::NoModifier,
                          Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(on, &event);
        settle();
    }
    void caret_at(int row, int column) {
        QTextCursor cursor(page()->document()->findBlockByNumber(row + 2));
        cursor.setPosition(cursor.position() + column);
        page()->setTextCursor(cursor);
        settle();
    }
    void click_character(int row, int column, Qt::MouseButton button = Qt::LeftButton) {
        QTextCursor cursor(page()->document()->findBlockByNumber(row + 2));
        cursor.setPosition(cursor.position() + column);
        const QPoint at = page()->cursorRect(cursor).center();
        QWidget* viewport = page()->viewport();
        for (const auto type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
            const bool down = type == QEvent::MouseButtonPress;
            QMouseEvent event(type, at, viewport->mapToGlobal(at), button,
                              down ? button : Qt::NoButton, Qt::NoModifier);
            QCoreApplication::sendEvent(viewport, &event);
        }
        settle();
    }
    // Counts how often the operator's page gets another text.
    QMetaObject::Connection count_changes(int& count) {
        return QObject::connect(page()->document(), &QTextDocument::contentsChange, page(),
                                [&count] { ++count; });
    }
    static int place(int row, int column) { return rows_begin + row * row_length + column; }

    // Rows of the page that a person sees whole.
    int rows_in_sight() {
        const QRect sight = page()->viewport()->rect();
        int rows = 0;
        for (QTextBlock block = page()->document()->findBlockByNumber(2); block.isValid();
             block = block.next()) {
            const QRect line = page()->cursorRect(QTextCursor(block));
            if (!block.text().isEmpty() && sight.top() <= line.top() &&
                line.bottom() <= sight.bottom())
                ++rows;
        }
        return rows;
    }
    int rows_of_page() {
        return static_cast<int>(screen.txtBuffer2.Text.size() - rows_begin) / row_length;
    }
};

// ---- the two boxes -------------------------------------------------------------------

TEST_F(QtBufferPageTest, TheOperatorsBoxLiesExactlyOverTheOther) {
    const auto expect_covered = [&](Control& below, Control& above) {
        QWidget* lower = widget(below);
        QWidget* upper = widget(above);
        const QObjectList& from_below = upper->parentWidget()->children();
        EXPECT_TRUE(from_below.contains(lower));
        EXPECT_LT(from_below.indexOf(lower), from_below.indexOf(upper)) << above.Name;
        EXPECT_EQ(lower->geometry(), upper->geometry()) << above.Name;
        EXPECT_GT(upper->width(), 300);
        const QPoint middle = upper->mapTo(&tool.window, upper->rect().center());
        EXPECT_TRUE(upper->isAncestorOf(tool.window.childAt(middle))) << above.Name;
        EXPECT_EQ(lower->focusPolicy(), Qt::NoFocus) << below.Name;
        EXPECT_TRUE(lower->testAttribute(Qt::WA_TransparentForMouseEvents)) << below.Name;
        EXPECT_EQ(drawn(below).Text, below.Text);
        EXPECT_EQ(drawn(above).Text, above.Text);
    };
    expect_covered(screen.txtBuffer, screen.txtBuffer2);
    show_data_page();
    expect_covered(screen.txtDataFlash1, screen.tetDataFlash2);
}

TEST_F(QtBufferPageTest, NoScrollBarOfItsOwnStandsBesideThePage) {
    EXPECT_FALSE(page()->verticalScrollBar()->isVisible());
    EXPECT_FALSE(page()->horizontalScrollBar()->isVisible()) << "a row is cut off";
    EXPECT_TRUE(bar()->isVisible());
    tool.window.resize(800, 600);
    settle();
    EXPECT_FALSE(page()->verticalScrollBar()->isVisible());
    EXPECT_TRUE(page()->horizontalScrollBar()->isVisible())
        << "the ends of the rows are out of reach";
}

TEST_F(QtBufferPageTest, TheSelectedDigitIsAsClearWithoutTheKeyboard) {
    const auto expect_clear = [&] {
        for (Control* control : {&screen.txtBuffer2, &screen.tetDataFlash2}) {
            const QPalette colours = widget(*control)->palette();
            for (const auto role : {QPalette::Highlight, QPalette::HighlightedText})
                EXPECT_EQ(colours.brush(QPalette::Inactive, role),
                          colours.brush(QPalette::Active, role));
        }
    };
    const QPalette before = QApplication::palette();
    QPalette other = before;
    other.setColor(QPalette::Active, QPalette::Highlight, Qt::darkGreen);
    other.setColor(QPalette::Inactive, QPalette::Highlight, Qt::lightGray);
    expect_clear();
    QApplication::setPalette(other);
    settle();
    EXPECT_EQ(page()->palette().color(QPalette::Active, QPalette::Highlight),
              QColor(Qt::darkGreen));
    expect_clear();
    QApplication::setPalette(before);
    settle();
    EXPECT_EQ(page()->palette().brush(QPalette::Active, QPalette::Highlight),
              before.brush(QPalette::Active, QPalette::Highlight));
    expect_clear();
}

// ---- the number of rows -----------------------------------------------------------------

TEST_F(QtBufferPageTest, ThePageHasAsManyRowsAsAreSeen) {
    for (const QSize size :
         {QSize(1280, 800), QSize(800, 600), QSize(1920, 1080), QSize(1001, 733)}) {
        tool.window.resize(size);
        settle();
        EXPECT_GE(rows_of_page(), 4);
        EXPECT_EQ(rows_in_sight(), rows_of_page()) << size.height();
        const int line = static_cast<int>(page()->cursorRect().height());
        const QRect last = page()->cursorRect(
            QTextCursor(page()->document()->findBlockByNumber(rows_of_page() + 1)));
        EXPECT_LT(page()->viewport()->height() - last.bottom(), 2 * line) << "room for more";
        EXPECT_EQ(bar()->pageStep(), rows_of_page());
    }
}

TEST_F(QtBufferPageTest, ALargerFontHasFewerRows) {
    const int before = rows_of_page();
    QFont font = page()->font();
    font.setPointSizeF(font.pointSizeF() * 2);
    page()->setFont(font);
    settle();
    EXPECT_LT(rows_of_page(), before);
    EXPECT_EQ(rows_in_sight(), rows_of_page());
}

TEST_F(QtBufferPageTest, TheDataPageHasItsRowsWhenItIsShown) {
    show_data_page();
    EXPECT_EQ(screen.tetDataFlash2.Rows, screen.txtBuffer2.Rows);
    EXPECT_EQ(bar(1)->pageStep(), screen.tetDataFlash2.Rows - 2);
}

TEST_F(QtBufferPageTest, APageThatIsShownAgainHasItsRowsAtOnce) {
    auto* tabs = static_cast<QTabBar*>(widget(screen.TabStrip2));
    int changed = 0;
    const auto counting = count_changes(changed);
    for (const int tab : {5, 0, 4, 0, 1, 0}) {
        tabs->setCurrentIndex(tab);
        settle();
    }
    EXPECT_EQ(changed, 0);
    QObject::disconnect(counting);
}

TEST_F(QtBufferPageTest, AWindowAtRestDrawsNoPage) {
    tool.window.resize(800, 600);
    settle();
    int changed = 0;
    const auto counting = count_changes(changed);
    for (int turn = 0; turn < 20; ++turn) settle();
    tool.window.resize(801, 600);
    settle();
    EXPECT_EQ(changed, 0);
    QObject::disconnect(counting);
}

TEST_F(QtBufferPageTest, AResizeLeavesTheKeyboardTheDigitAndTheTypedLength) {
    QWidget* field = widget(screen.txtAP_FileStart);
    click_character(1, digits_begin);
    ASSERT_EQ(screen.txtBuffer2.SelLength, 1);
    const int digit = screen.txtBuffer2.SelStart;
    screen.txt_length.Text = "123";
    field->setFocus();
    settle();
    const int before = rows_of_page();
    tool.window.resize(1280, 700);
    settle();
    ASSERT_LT(rows_of_page(), before);
    EXPECT_EQ(tool.window.focusWidget(), field);
    EXPECT_EQ(screen.txt_length.Text, "123");
    EXPECT_EQ(drawn(screen.txtBuffer2).SelStart, digit);
    EXPECT_EQ(drawn(screen.txtBuffer2).SelLength, 1);
}

// ---- keys ------------------------------------------------------------------------------------

TEST_F(QtBufferPageTest, APageKeyTurnsThePageAndDoesNoMore) {
    caret_at(3, digits_begin);
    press(page(), Qt::Key_PageDown);
    settle();
    EXPECT_EQ(screen.vscFile[0].Value, rows_of_page());
    EXPECT_EQ(bar()->value(), rows_of_page());
    EXPECT_EQ(screen.txtBuffer2.SelStart, 0) << "the caret went on to another row";
    press(page(), Qt::Key_PageUp);
    settle();
    EXPECT_EQ(screen.vscFile[0].Value, 0);
    EXPECT_EQ(screen.txtBuffer2.SelStart, 0);
}

TEST_F(QtBufferPageTest, KeysInQuickSuccessionEachTurnAPage) {
    for (int i = 0; i < 3; ++i) press(page(), Qt::Key_PageDown);
    settle();
    EXPECT_EQ(screen.vscFile[0].Value, 3 * rows_of_page());
}

TEST_F(QtBufferPageTest, AnArrowMovesTheCaretWhereThePageStays) {
    caret_at(3, digits_begin);
    press(page(), Qt::Key_Down);
    settle();
    EXPECT_EQ(screen.vscFile[0].Value, 0);
    EXPECT_EQ(screen.txtBuffer2.SelStart, place(4, digits_begin));
    press(page(), Qt::Key_PageDown);
    press(page(), Qt::Key_Right);
    settle();
    EXPECT_EQ(screen.txtBuffer2.SelStart, 2) << "the page of the key before kept the caret";
}

TEST_F(QtBufferPageTest, AnArrowAtTheTopScrollsAndLeavesTheCaretThere) {
    bar()->setValue(100);
    settle();
    QTextCursor first(page()->document());
    first.setPosition(1);
    page()->setTextCursor(first);
    settle();
    press(page(), Qt::Key_Up);
    settle();
    EXPECT_EQ(screen.vscFile[0].Value, 100 - screen.vscFile[0].SmallChange);
    EXPECT_EQ(screen.txtBuffer2.SelStart, 2);
}

// ---- the mouse ---------------------------------------------------------------------------------

TEST_F(QtBufferPageTest, AClickSelectsTheDigit) {
    click_character(2, digits_begin + 3);
    EXPECT_EQ(screen.txtBuffer2.SelStart, place(2, digits_begin + 3));
    EXPECT_EQ(drawn(screen.txtBuffer2).SelLength, 1);
}

TEST_F(QtBufferPageTest, OnlyTheLeftButtonSelectsADigit) {
    caret_at(1, 2);
    for (const auto button : {Qt::RightButton, Qt::MiddleButton}) {
        click_character(2, digits_begin + 3, button);
        EXPECT_EQ(screen.txtBuffer2.SelLength, 0);
    }
}

// ---- the wheel ---------------------------------------------------------------

TEST_F(QtBufferPageTest, ANotchOfTheWheelIsThreeRowsOverThePageAndOverItsBar) {
    for (QWidget* on : {page()->viewport(), static_cast<QWidget*>(bar())}) {
        wheel(on, {0, -2 * notch});
        EXPECT_EQ(screen.vscFile[0].Value, 6);
        EXPECT_TRUE(screen.txtBuffer2.Text.starts_with("\r\n\r\n 000060   "));
        EXPECT_EQ(drawn(screen.txtBuffer2).Text, screen.txtBuffer2.Text);
        wheel(on, {0, notch});
        EXPECT_EQ(screen.vscFile[0].Value, 3);
        wheel(on, {0, 5 * notch});
        EXPECT_EQ(screen.vscFile[0].Value, 0);
    }
}

TEST_F(QtBufferPageTest, TheDataPageIsTurnedByItsOwnWheel) {
    tool.frm.images.Data_Buffer.Image_High = 0xFFF;
    tool.frm.images.Data_Buffer.Bytes.resize(0x1000);
    screen.vscFile[1].Max = 200;
    show_data_page();
    wheel(box(screen.tetDataFlash2)->viewport(), {0, -notch});
    EXPECT_EQ(screen.vscFile[1].Value, 3);
    EXPECT_EQ(screen.vscFile[0].Value, 0);
}

TEST_F(QtBufferPageTest, AFineWheelMovesRowByRowAndLosesNothing) {
    for (int i = 0; i < 40; ++i) wheel(page()->viewport(), {0, -notch / 8});
    EXPECT_EQ(screen.vscFile[0].Value, 15) << "five notches in all";
    wheel(page()->viewport(), {0, -30});
    wheel(page()->viewport(), {0, 30});
    EXPECT_EQ(screen.vscFile[0].Value, 15) << "less than a row each way";
    wheel(page()->viewport(), {0, 10});
    EXPECT_EQ(screen.vscFile[0].Value, 14);
}

TEST_F(QtBufferPageTest, AWheelTurnedSidewaysShowsTheEndsOfTheRowsAndKeepsThem) {
    tool.window.resize(800, 600);
    settle();
    ASSERT_GT(page()->horizontalScrollBar()->maximum(), 0);
    wheel(page()->viewport(), {-10 * notch, 0});
    EXPECT_EQ(screen.vscFile[0].Value, 0);
    const int sideways = page()->horizontalScrollBar()->value();
    EXPECT_GT(sideways, 0);
    wheel(page()->viewport(), {0, -notch});
    EXPECT_EQ(screen.vscFile[0].Value, 3);
    EXPECT_EQ(page()->horizontalScrollBar()->value(), sideways);
}

}  // namespace
}  // namespace vkm::test
