// The option panel and what changes with the family, as drawn.
#include <gtest/gtest.h>

#include <QLabel>
#include <QLayout>
#include <QScrollArea>
#include <QScrollBar>
#include <QTabBar>
#include <QTemporaryDir>
#include <algorithm>
#include <map>
#include <set>

#include "options/option_display.h"
#include "options/option_panel.h"
#include "platform/qt/tool.h"
#include "qt_application.h"
#include "waiting/waiting.h"

namespace vkm::test {
namespace {

constexpr int column_width = 430;

class QtOptionPanelTest : public testing::Test {
  protected:
    QtOptionPanelTest() {
        tool.window.resize(1280, 1024);
        tool.window.show();
        settle();
    }
    ~QtOptionPanelTest() override { QApplication::setFont(usual_font); }

    void settle() {
        for (int i = 0; i < 4; ++i) process_events(tool.frm);
    }
    void show_family(int family) {
        tool.frm.catalogue.MCU_Info.MCU_Family = static_cast<std::int16_t>(family);
        Arrange_Options(tool.frm);
        settle();
    }
    void double_the_font() {
        QFont font = usual_font;
        font.setPointSizeF(2 * font.pointSizeF());
        QApplication::setFont(font);
        settle();
    }

    QWidget* widget(Control& control) { return view(control); }
    QWidget* panel() { return widget(screen.Frame16); }
    QScrollArea* area() {
        return qobject_cast<QScrollArea*>(panel()->parentWidget()->parentWidget());
    }
    QWidget* named(const std::string& name) {
        return panel()->findChild<QWidget*>(QString::fromStdString(name));
    }
    std::set<QWidget*> seen() {
        std::set<QWidget*> widgets;
        for (auto* child : panel()->findChildren<QWidget*>(Qt::FindDirectChildrenOnly))
            if (!child->isHidden()) widgets.insert(child);
        return widgets;
    }
    // The names of what is seen, as it is read: line by line, from left to right.
    std::vector<std::string> as_read() {
        std::vector<QWidget*> widgets;
        for (QWidget* each : seen()) widgets.push_back(each);
        std::sort(widgets.begin(), widgets.end(), [](const QWidget* a, const QWidget* b) {
            const bool below = a->geometry().top() > b->geometry().bottom();
            const bool above = a->geometry().bottom() < b->geometry().top();
            return above || (!below && a->x() < b->x());
        });
        std::vector<std::string> names;
        for (const QWidget* each : widgets) names.push_back(each->objectName().toStdString());
        return names;
    }
    void lay_out_at(int width) {
        QLayout* lines = panel()->layout();
        lines->invalidate();
        lines->setGeometry({0, 0, width, lines->heightForWidth(width)});
    }
    void expect_whole(int width);
    void expect_edges(int width);

    QApplication& qt = application();
    const QFont usual_font = QApplication::font();
    QTemporaryDir folder;
    Tool tool{{folder.filePath("settings.ini").toStdString(), {}, folder.path().toStdString()}};
    Screen& screen = tool.frm.screen;
    ScreenView& view = tool.window.controls();
};

constexpr int families[] = {0, 1, 2, 3, 4, 6};

// Everything stands inside, nothing lies over anything else, and no text is cut.
void QtOptionPanelTest::expect_whole(int width) {
    const QRect room(0, 0, width, panel()->layout()->heightForWidth(width));
    for (const QWidget* each : seen()) {
        const std::string name = each->objectName().toStdString();
        EXPECT_TRUE(room.contains(each->geometry())) << name;
        if (each->hasHeightForWidth())
            EXPECT_GE(each->height(), each->heightForWidth(each->width())) << name;
        else
            EXPECT_GE(each->width(), each->sizeHint().width()) << name;
        for (const QWidget* other : seen())
            EXPECT_TRUE(each == other || !each->geometry().intersects(other->geometry()))
                << name << " and " << other->objectName().toStdString();
    }
}

void QtOptionPanelTest::expect_edges(int width) {
    const auto& list = screen.Frame16.List;
    for (std::size_t i = 0; i < list.size(); ++i) {
        const QWidget* each = named(list[i].Text);
        ASSERT_NE(each, nullptr) << list[i].Text;
        if (list[i].Parent.empty()) {
            EXPECT_EQ(each->x(), 0) << list[i].Text;
        } else if (i + 1 == list.size() || list[i + 1].Parent.empty()) {
            EXPECT_EQ(each->geometry().right(), width - 1) << list[i].Text;
        }
    }
}

// ---- order ---------------------------------------------------------------------

TEST_F(QtOptionPanelTest, LinesAndChoicesStandInTheOrderOfTheRecord) {
    for (const int family : families) {
        show_family(family);
        std::vector<std::string> expected;
        for (const Entry& entry : screen.Frame16.List) expected.push_back(entry.Text);
        ASSERT_FALSE(expected.empty()) << family;
        EXPECT_EQ(as_read(), expected) << family;
    }
}

TEST_F(QtOptionPanelTest, FamiliesDifferInTheOrderOfTheirChoices) {
    show_family(0);
    EXPECT_EQ(as_read(),
              (std::vector<std::string>{"LabOption(0)", "Option0(0)", "Option0(1)", "LabOptionC"}));
    show_family(1);
    EXPECT_EQ(as_read(), (std::vector<std::string>{"LabOption(0)"}));
    const auto place = [&](const char* name) {
        const std::vector<std::string> names = as_read();
        return std::find(names.begin(), names.end(), name) - names.begin();
    };
    show_family(2);
    EXPECT_EQ(place("Option3(0)"), place("Option3(1)") + 1);
    show_family(4);
    EXPECT_EQ(place("Label20"), place("Option11(1)") + 1);
    EXPECT_EQ(place("comWDT_Prescalar"), place("Label20") + 1);
    show_family(6);
    EXPECT_EQ(place("LabOption(11)"), place("comWDT_Prescalar") + 1);
    EXPECT_EQ(place("Label7"), place("Option1(1)") + 1);
}

TEST_F(QtOptionPanelTest, NothingOfAnotherFamilyIsLeft) {
    std::map<int, std::map<std::string, QRect>> first;
    for (int round = 0; round < 2; ++round)
        for (const int family : families) {
            show_family(family);
            std::map<std::string, QRect> places;
            for (const QWidget* each : seen())
                places[each->objectName().toStdString()] = each->geometry();
            EXPECT_EQ(places.size(), screen.Frame16.List.size()) << family;
            EXPECT_EQ(first.try_emplace(family, places).first->second, places) << family;
        }
}

TEST_F(QtOptionPanelTest, WhatTheRecordDoesNotNameTakesNoRoom) {
    show_family(4);
    const int place = widget(screen.LabOption[0])->y();
    const int height = panel()->layout()->heightForWidth(column_width);
    auto& list = screen.Frame16.List;
    ASSERT_EQ(list[3].Text, "LabOption(1)");
    list.erase(list.begin(), list.begin() + 3);
    settle();
    EXPECT_EQ(widget(screen.LabOption[1])->y(), place);
    EXPECT_LT(panel()->layout()->heightForWidth(column_width), height);
    EXPECT_TRUE(widget(screen.cheTL)->isHidden());
    EXPECT_EQ(widget(screen.cheTL)->parentWidget(), panel());
}

TEST_F(QtOptionPanelTest, TheTabulatorGoesThroughTheLinesAsTheyStand) {
    for (const int family : {0, 4, 2, 6, 1, 2, 6}) {
        show_family(family);
        std::vector<std::string> expected;
        for (const std::string& name : as_read())
            if (named(name)->focusPolicy() & Qt::TabFocus) expected.push_back(name);
        std::vector<std::string> found;
        const QWidget* first = widget(screen.txtDevice);
        for (const QWidget* at = first->nextInFocusChain(); at != first;
             at = at->nextInFocusChain())
            if (at->parentWidget() == panel() && !at->isHidden() &&
                (at->focusPolicy() & Qt::TabFocus))
                found.push_back(at->objectName().toStdString());
        EXPECT_EQ(found, expected) << family;
    }
}

TEST_F(QtOptionPanelTest, TheTabulatorPassesThePanelBetweenItsNeighbours) {
    for (const int family : {2, 6, 4}) {
        show_family(family);
        std::vector<int> steps;
        const QWidget* first = widget(screen.txtDevice);
        const QWidget* at = first;
        do {
            if (at == widget(screen.cobBaudMax)) steps.push_back(3);
            if (at->parentWidget() == panel() && !at->isHidden()) steps.push_back(4);
            if (at == widget(screen.comDownload[0])) steps.push_back(5);
            at = at->nextInFocusChain();
        } while (at != first);
        EXPECT_TRUE(std::is_sorted(steps.begin(), steps.end())) << family;
        EXPECT_GT(steps.size(), 10u);
    }
}

// ---- room ----------------------------------------------------------------------

TEST_F(QtOptionPanelTest, EveryPanelIsWholeInTheWindow) {
    for (const int family : families) {
        show_family(family);
        expect_whole(panel()->width());
        expect_edges(panel()->width());
        EXPECT_EQ(panel()->height(), area()->viewport()->height()) << family;
        EXPECT_FALSE(area()->verticalScrollBar()->isVisible()) << family;
    }
}

TEST_F(QtOptionPanelTest, EveryPanelIsWholeInTheNarrowestColumn) {
    for (const int family : families) {
        show_family(family);
        EXPECT_LE(panel()->layout()->minimumSize().width(), column_width) << family;
        lay_out_at(column_width);
        expect_whole(column_width);
        expect_edges(column_width);
    }
}

TEST_F(QtOptionPanelTest, EveryPanelIsWholeInLettersOfTwiceTheSize) {
    const int usual = named("LabOption(0)")->fontMetrics().height();
    double_the_font();
    ASSERT_GT(named("LabOption(0)")->fontMetrics().height(), usual * 3 / 2);
    for (const int family : families) {
        show_family(family);
        EXPECT_LE(panel()->layout()->minimumSize().width(), column_width) << family;
        lay_out_at(column_width);
        expect_whole(column_width);
        expect_edges(column_width);
    }
}

TEST_F(QtOptionPanelTest, ATextOfAnyLengthBreaksItsLine) {
    show_family(4);
    for (Control& label : screen.LabOption)
        if (label.Visible) label.Caption += label.Caption + label.Caption;
    settle();
    expect_whole(panel()->width());
    expect_edges(panel()->width());
    const QWidget* label = widget(screen.LabOption[2]);
    EXPECT_GE(label->height(), 2 * label->fontMetrics().height());
    EXPECT_GT(widget(screen.Option2[1])->y(), label->geometry().bottom());
}

TEST_F(QtOptionPanelTest, BrokenLinesGetTheHeightTheyNeed) {
    show_family(0);
    screen.LabOption[0].Caption += screen.LabOption[0].Caption + screen.LabOption[0].Caption;
    settle();
    EXPECT_GT(widget(screen.Option0[0])->y(), widget(screen.LabOption[0])->y());
    EXPECT_EQ(panel()->height(), area()->viewport()->height());
    EXPECT_FALSE(area()->verticalScrollBar()->isVisible());
}

TEST_F(QtOptionPanelTest, AShortTextStandsOnOneLineWithItsChoices) {
    for (const int family : families) {
        show_family(family);
        for (const Control& label : screen.LabOption) {
            if (!label.Visible) continue;
            const QWidget* drawn = named("LabOption(" + std::to_string(label.Index) + ")");
            EXPECT_EQ(drawn->height(), drawn->heightForWidth(10 * column_width))
                << family << ": " << label.Caption;
        }
    }
}

TEST_F(QtOptionPanelTest, ChoicesTooWideForOneRowTakeSeveral) {
    show_family(6);
    for (Control& choice : screen.Option3) choice.Caption += std::string(30, 'x');
    settle();
    expect_whole(panel()->width());
    for (const Control& choice : screen.Option3) {
        const QWidget* each = named("Option3(" + std::to_string(choice.Index) + ")");
        EXPECT_EQ(each->geometry().right(), panel()->width() - 1) << choice.Index;
    }
}

// The last line can be reached, and what lies around the panel keeps its room.
TEST_F(QtOptionPanelTest, WhereThereIsNoHeightThePanelScrollsInsideItself) {
    tool.window.resize(800, 600);
    for (const int family : families) {
        show_family(family);
        const auto* log = widget(screen.textMsg);
        EXPECT_GE(log->height(), 6 * log->fontMetrics().lineSpacing()) << family;
        EXPECT_LE(log->mapTo(&tool.window, QPoint(0, log->height())).y(), 600) << family;
        EXPECT_EQ(panel()->height(), panel()->layout()->heightForWidth(panel()->width()));
        const QScrollBar* bar = area()->verticalScrollBar();
        EXPECT_EQ(bar->maximum(), std::max(0, panel()->height() - area()->viewport()->height()));
        expect_whole(panel()->width());
    }
}

TEST_F(QtOptionPanelTest, APanelThatScrolledStandsWholeAgainInAHigherWindow) {
    show_family(4);
    tool.window.resize(800, 600);
    settle();
    ASSERT_TRUE(area()->verticalScrollBar()->isVisible());
    tool.window.resize(1280, 1024);
    settle();
    EXPECT_FALSE(area()->verticalScrollBar()->isVisible());
    EXPECT_EQ(panel()->height(), area()->viewport()->height());
}

TEST_F(QtOptionPanelTest, TheLogKeepsItsLinesBesideTheLargePanels) {
    tool.window.resize(1280, 800);
    for (const int family : {2, 4}) {
        show_family(family);
        const auto* log = widget(screen.textMsg);
        EXPECT_GE(log->height(), 6 * log->fontMetrics().lineSpacing()) << family;
    }
}

// ---- what else goes with the family ----------------------------------------------

TEST_F(QtOptionPanelTest, ThePinsAreChosenOnlyInTheNewerFamilies) {
    for (const int family : families) {
        show_family(family);
        for (QWidget* each : {widget(screen.Lab_485_pin), widget(screen.opt_485_logic[1]),
                              widget(screen.opt_External_WDT[0]), widget(screen.comb_External_WDT)})
            EXPECT_EQ(each->isVisible(), family >= 2) << family;
        for (const auto* label : widget(screen.Picture7)->findChildren<QLabel*>())
            EXPECT_EQ(label->isVisible(), family >= 2) << family;
    }
}

TEST_F(QtOptionPanelTest, ThePinChoicesStandInOneColumn) {
    const auto expect_one_column = [&] {
        const auto left = [&](Control& control) {
            return widget(control)->mapTo(&tool.window, QPoint()).x();
        };
        EXPECT_EQ(left(screen.opt_485_pin[0]), left(screen.opt_External_WDT[0]));
        EXPECT_EQ(left(screen.opt_485_pin[0]), left(screen.opt_485_logic[0]));
    };
    show_family(4);
    expect_one_column();
    screen.Lab_485_logic.Caption += " (RS-485)";
    settle();
    expect_one_column();
    show_family(1);
    double_the_font();
    show_family(4);
    expect_one_column();
}

TEST_F(QtOptionPanelTest, TheDelayGoesWithItsCaptionAndItsUnitAndNothingMoves) {
    QLabel* unit = nullptr;
    for (auto* label : widget(screen.Frame13)->findChildren<QLabel*>())
        if (label->text() == "s") unit = label;
    ASSERT_NE(unit, nullptr);
    show_family(4);
    EXPECT_TRUE(unit->isVisible());
    const QRect yes = widget(screen.optBeepYes)->geometry();
    const QRect caption = widget(screen.Label6)->geometry();
    const QRect reload = widget(screen.cekReloadFile)->geometry();
    const int step_height = widget(screen.Frame13)->height();
    for (const int family : {0, 4, 1, 6}) {
        show_family(family);
        for (const QWidget* each :
             {widget(screen.Label6), widget(screen.comDalay_ReDownLoad), (QWidget*)unit})
            EXPECT_EQ(each->isVisible(), family >= 2) << family;
        EXPECT_EQ(widget(screen.optBeepYes)->geometry(), yes);
        EXPECT_EQ(widget(screen.Label6)->geometry(), caption) << "its place is not kept";
        EXPECT_EQ(widget(screen.cekReloadFile)->geometry(), reload);
        EXPECT_EQ(widget(screen.Frame13)->height(), step_height);
    }
}

TEST_F(QtOptionPanelTest, TheLetterOfTheDelayGoesToItsList) {
    auto* label = static_cast<QLabel*>(widget(screen.Label6));
    EXPECT_EQ(label->buddy(), widget(screen.comDalay_ReDownLoad));
    EXPECT_EQ(label->text(), QStringLiteral("间隔/De&lay:"));
}

// ---- the lines read back ---------------------------------------------------------

TEST_F(QtOptionPanelTest, AnEmptyLineReadBackKeepsItsHeightBetweenTheOthers) {
    static_cast<QTabBar*>(widget(screen.TabStrip1))->setCurrentIndex(3);
    for (const std::size_t count : {0u, 4u, 10u}) {
        Clear_Read_Lines(tool.frm);
        for (std::size_t i = 1; i <= count; ++i) {
            screen.LabLock[i].Caption = i == 3 ? "" : "启动内部看门狗后禁止改看门狗分频数      YES";
            screen.LabLock[i].Visible = true;
        }
        settle();
        ASSERT_TRUE(widget(screen.comReadChipLock)->isVisible());
        int step = 0;
        for (std::size_t i = 0; i < screen.LabLock.size(); ++i) {
            const QWidget* line = widget(screen.LabLock[i]);
            EXPECT_EQ(line->isVisible(), i >= 1 && i <= count) << i;
            if (i < 2 || i > count) continue;
            const int down = line->y() - widget(screen.LabLock[i - 1])->y();
            if (i == 2) step = down;
            EXPECT_NEAR(down, step, 2) << i;  // letters of another typeface are higher
            EXPECT_GE(down, line->fontMetrics().height()) << i;
            EXPECT_EQ(line->x(), widget(screen.LabLock[1])->x());
            EXPECT_GE(line->width(), line->sizeHint().width());
        }
    }
}

}  // namespace
}  // namespace vkm::test
