// The lists of a stopped target as the operator has them: highlighted rows, scrolling,
// copying, the header.
#include <QApplication>
#include <QClipboard>
#include <QListWidget>
#include <QScrollBar>
#include <QTabBar>

#include "monitor/list_rows.h"
#include "qt_drawn_window.h"

namespace vkm::test {
namespace {

using Rows = std::vector<std::int32_t>;

class QtMonitorPagesTest : public DrawnWindow {
  protected:
    QtMonitorPagesTest() {
        tool.window.resize(1280, 800);
        show_tab(2);
        fill(screen.lst_debug1, 60, "90");
    }

    void show_tab(int tab) {
        static_cast<QTabBar*>(widget(screen.TabStrip2))->setCurrentIndex(tab);
        settle();
    }
    QListWidget* list(Control& control) { return static_cast<QListWidget*>(widget(control)); }
    QListWidget* registers() { return list(screen.lst_debug1); }
    QScrollBar* bar() { return registers()->verticalScrollBar(); }

    static std::string row(int number, const std::string& value) {
        return std::to_string(100 + number) + "     ACC      5AH  " + value + "";
    }
    void fill(Control& control, int rows, const std::string& value) {
        std::vector<std::string> texts;
        for (int i = 0; i < rows; ++i) texts.push_back(row(i, value));
        fill_list(control, texts);
        settle();
    }
    void change_all_texts(const std::string& value) {
        int number = 0;
        for (Entry& entry : screen.lst_debug1.List) entry.Text = row(number++, value);
        settle();
    }
    void click_row(int number, Qt::KeyboardModifiers with = {}) {
        const QPoint at = registers()->visualItemRect(registers()->item(number)).center();
        QWidget* viewport = registers()->viewport();
        for (const auto type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
            const auto buttons = type == QEvent::MouseButtonPress ? Qt::LeftButton : Qt::NoButton;
            QMouseEvent event(type, at, viewport->mapToGlobal(at), Qt::LeftButton, buttons, with);
            QCoreApplication::sendEvent(viewport, &event);
        }
        settle();
    }
};

// ---- what the logic highlights ------------------------------------------------------

TEST_F(QtMonitorPagesTest, RowsThatTheLogicHighlightsAreHighlighted) {
    screen.lst_debug1.Selected = {1, 4, 59};
    screen.lst_debug1.ListIndex = 59;
    EXPECT_EQ(drawn(screen.lst_debug1).Selected, Rows({1, 4, 59}));
    EXPECT_EQ(drawn(screen.lst_debug1).ListIndex, 59);
    EXPECT_TRUE(registers()->item(4)->isSelected());
    EXPECT_FALSE(registers()->item(5)->isSelected());
    screen.lst_debug1.Selected = {2};
    EXPECT_EQ(drawn(screen.lst_debug1).Selected, Rows({2}));
    screen.lst_debug1.Selected.clear();
    screen.lst_debug1.ListIndex = -1;
    EXPECT_EQ(drawn(screen.lst_debug1).Selected, Rows());
    EXPECT_EQ(drawn(screen.lst_debug1).ListIndex, -1);
}

TEST_F(QtMonitorPagesTest, HighlightedRowsStayWhereTextsChange) {
    screen.lst_debug1.Selected = {3, 7};
    settle();
    change_all_texts("91");
    EXPECT_EQ(drawn(screen.lst_debug1).Selected, Rows({3, 7}));
    EXPECT_EQ(drawn(screen.lst_debug1).List, screen.lst_debug1.List);
}

TEST_F(QtMonitorPagesTest, AListOfAnotherLengthIsDrawnWithItsHighlightedRows) {
    screen.lst_debug1.Selected = {3, 7};
    settle();
    fill(screen.lst_debug1, 20, "17");
    EXPECT_EQ(drawn(screen.lst_debug1).List.size(), 20u);
    EXPECT_EQ(drawn(screen.lst_debug1).Selected, Rows({3, 7}));
}

TEST_F(QtMonitorPagesTest, RowsThatAreNotThereDoNoHarm) {
    screen.lst_debug1.Selected = {-1, 5, 60, 2000000000};
    screen.lst_debug1.ListIndex = 77;
    screen.lst_debug1.Value = 2000000000;
    EXPECT_EQ(drawn(screen.lst_debug1).Selected, Rows({5}));
    EXPECT_EQ(drawn(screen.lst_debug1).ListIndex, -1);
    EXPECT_EQ(drawn(screen.lst_debug1).Value, bar()->maximum());
}

TEST_F(QtMonitorPagesTest, HighlightedRowsAreAsClearWithoutTheKeyboard) {
    const QPalette before = QApplication::palette();
    QPalette other = before;
    other.setColor(QPalette::Active, QPalette::Highlight, Qt::darkGreen);
    other.setColor(QPalette::Inactive, QPalette::Highlight, Qt::lightGray);
    QApplication::setPalette(other);
    settle();
    for (Control* control :
         {&screen.lst_debug1, &screen.lst_debug2, &screen.lst_debug3, &screen.lst_debug4})
        EXPECT_EQ(widget(*control)->palette().color(QPalette::Inactive, QPalette::Highlight),
                  QColor(Qt::darkGreen))
            << control->Name;
    QApplication::setPalette(before);
    settle();
}

TEST_F(QtMonitorPagesTest, WhatTheLogicDrawsRaisesNoEvent) {
    screen.lst_debug1.Selected = {1, 4};
    screen.lst_debug1.ListIndex = 4;
    screen.lst_debug1.Value = 10;
    for (Entry& entry : screen.lst_debug1.List) entry.Text += " ";
    tool.window.draw();
    EXPECT_FALSE(tool.queue.hand_in(tool.frm));
    EXPECT_EQ(screen.lst_debug1.Value, 10);
    EXPECT_EQ(screen.lst_debug1.Selected, Rows({1, 4}));
}

// ---- the row at the top ----------------------------------------------------------------

TEST_F(QtMonitorPagesTest, TheRecordFollowsTheScrollBar) {
    bar()->setValue(13);
    EXPECT_EQ(screen.lst_debug1.Value, 13);
    EXPECT_EQ(drawn(screen.lst_debug1).Value, 13);
    EXPECT_EQ(registers()->itemAt(5, 2), registers()->item(13));
}

TEST_F(QtMonitorPagesTest, TheLogicShowsTheTopAgain) {
    bar()->setValue(13);
    settle();
    screen.lst_debug1.Value = 0;
    EXPECT_EQ(drawn(screen.lst_debug1).Value, 0);
    EXPECT_EQ(bar()->value(), 0);
}

TEST_F(QtMonitorPagesTest, TextsThatChangeLeaveThePlaceOfTheOperator) {
    bar()->setValue(13);
    settle();
    change_all_texts("92");
    screen.lst_debug1.Selected = {0, 59};
    screen.lst_debug1.ListIndex = 59;
    EXPECT_EQ(drawn(screen.lst_debug1).Value, 13);
    EXPECT_EQ(screen.lst_debug1.Value, 13);
}

TEST_F(QtMonitorPagesTest, APlaceBehindANewListIsDrawnToo) {
    std::vector<std::string> texts(200, "0000");
    fill_list(screen.lst_debug1, texts);
    screen.lst_debug1.Value = 150;
    EXPECT_EQ(drawn(screen.lst_debug1).Value, 150);
}

TEST_F(QtMonitorPagesTest, AListThatChangedWhileItWasHiddenIsRightWhenItIsSeen) {
    show_tab(0);
    screen.lst_debug1.Value = 7;
    screen.lst_debug1.Selected = {8};
    screen.lst_debug1.ListIndex = 50;
    settle();
    show_tab(2);
    EXPECT_EQ(drawn(screen.lst_debug1).Value, 7);
    EXPECT_EQ(drawn(screen.lst_debug1).Selected, Rows({8}));
}

// ---- what the operator does ---------------------------------------------------------------

TEST_F(QtMonitorPagesTest, TheOperatorsOwnSelectionIsInTheRecord) {
    click_row(2);
    EXPECT_EQ(screen.lst_debug1.Selected, Rows({2}));
    EXPECT_EQ(screen.lst_debug1.ListIndex, 2);
    click_row(5, Qt::ShiftModifier);
    EXPECT_EQ(screen.lst_debug1.Selected, Rows({2, 3, 4, 5}));
    click_row(8, Qt::ControlModifier);
    EXPECT_EQ(screen.lst_debug1.Selected, Rows({2, 3, 4, 5, 8}));
    screen.lst_debug1.Selected.clear();
    EXPECT_EQ(drawn(screen.lst_debug1).Selected, Rows());
}

TEST_F(QtMonitorPagesTest, SelectedRowsAreCopiedAsLines) {
    screen.lst_debug1.Selected = {4, 1};
    settle();
    QApplication::clipboard()->setText("before");
    QKeyEvent copy(QEvent::KeyPress, Qt::Key_C, Qt::ControlModifier);
    QCoreApplication::sendEvent(registers(), &copy);
    EXPECT_EQ(QApplication::clipboard()->text().toStdString(),
              row(1, "90") + "\n" + row(4, "90") + "\n");
    screen.lst_debug1.Selected.clear();
    settle();
    QCoreApplication::sendEvent(registers(), &copy);
    EXPECT_FALSE(QApplication::clipboard()->text().isEmpty()) << "nothing selected, nothing copied";
}

// ---- the page --------------------------------------------------------------------------------

TEST_F(QtMonitorPagesTest, AWholeRowIsSeenOnAUsualScreenAndReachedOnASmallOne) {
    const std::string memory =
        "0000" + std::string(memory_value_column - 4, ' ') + "00 11 22 33 44 55 66 77";
    fill_list(screen.lst_debug2, std::vector<std::string>(32, memory));
    fill_list(screen.lst_debug3, std::vector<std::string>(128, memory));
    fill_list(screen.lst_debug4, std::vector<std::string>(64, memory));
    for (const int width : {1280, 800, 1280, 1920}) {
        tool.window.resize(width, width * 5 / 8 + (width == 800 ? 100 : 0));
        for (const int tab : {2, 3}) {
            show_tab(tab);
            for (Control* control :
                 {&screen.lst_debug1, &screen.lst_debug2, &screen.lst_debug3, &screen.lst_debug4}) {
                if (!list(*control)->isVisible()) continue;
                const bool cut = list(*control)->horizontalScrollBar()->isVisible();
                EXPECT_EQ(cut, width == 800) << control->Name << " " << width;
            }
        }
    }
}

// The columns of the header that are painted, in characters.
TEST_F(QtMonitorPagesTest, TheHeaderStandsAboveItsColumnsAlsoWhenTheyAreScrolledSideways) {
    fill_list(screen.lst_debug1, {"X       X        X    X"});
    tool.window.resize(800, 600);
    settle();
    const int character = registers()->fontMetrics().horizontalAdvance(u'0');
    for (const int sideways : {0, 2 * character}) {
        registers()->horizontalScrollBar()->setValue(sideways);
        settle();
        const QImage seen = registers()->grab().toImage();
        const QRect rows = registers()->viewport()->geometry();
        // Left ends of what is painted in a band as high as a row.
        const auto starts = [&](int top, int bottom) {
            std::vector<int> columns;
            int blank = character;
            for (int x = rows.left(); x <= rows.right(); ++x) {
                bool ink = false;
                for (int y = top; y < bottom; ++y) ink = ink || qGray(seen.pixel(x, y)) < 110;
                if (ink && blank >= character * 3 / 2) columns.push_back(x);
                blank = ink ? 0 : blank + 1;
            }
            return columns;
        };
        const int height = registers()->fontMetrics().height();
        const std::vector<int> header = starts(rows.top() - height, rows.top() - 2);
        const std::vector<int> texts = starts(rows.top() + 1, rows.top() + height);
        ASSERT_GE(texts.size(), 2u);
        ASSERT_EQ(header.size(), texts.size());
        for (std::size_t i = 0; i < texts.size(); ++i)
            EXPECT_NEAR(header[i], texts[i], character / 2 + 1) << i << " at " << sideways;
    }
}

}  // namespace
}  // namespace vkm::test
