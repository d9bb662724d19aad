// Record and widget are alike in both directions.
#include <gtest/gtest.h>

#include <QAbstractItemView>
#include <QComboBox>
#include <QDropEvent>
#include <QFile>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QTabBar>
#include <QTimer>
#include <QTreeWidget>
#include <QUrl>
#include <algorithm>
#include <map>

#include "platform/qt/control_hints.h"
#include "qt_drawn_window.h"
#include "session/download_session.h"
#include "window/wiring.h"

namespace vkm::test {
namespace {

class QtScreenTest : public DrawnWindow {};

TEST_F(QtScreenTest, EveryControlOfTheTableIsDrawn) {
    EXPECT_EQ(view.without_widget(), std::vector<std::string>());
}

TEST_F(QtScreenTest, EveryWidgetStandsInTheWindowUnderTheNameOfItsControl) {
    for_each_control(screen, [&](Control& control) {
        const std::string name = full_name(control);
        auto* found = tool.window.findChild<QWidget*>(QString::fromStdString(name));
        ASSERT_NE(found, nullptr) << name;
        EXPECT_EQ(view.control_of(found), &control) << name;
    });
}

TEST_F(QtScreenTest, EveryHintBelongsToAControl) {
    int with_hint = 0;
    for_each_control(screen, [&](Control& control) {
        const ControlHint* hint = hint_of(control);
        if (!hint) return;
        ++with_hint;
        const bool marked = marked_caption(control).contains(u'&');
        EXPECT_EQ(marked, hint->mnemonic != 0) << control.Name << " lacks the letter";
    });
    EXPECT_GT(with_hint, 40);
}

TEST_F(QtScreenTest, BothPagesTellHowTheBufferIsChanged) {
    for (Control* page : {&screen.txtBuffer2, &screen.tetDataFlash2})
        EXPECT_TRUE(widget(*page)->toolTip().startsWith("点击, 当一个字符高亮时可以修改缓冲区"));
}

// ---- from the record to the widget -------------------------------------------------

TEST_F(QtScreenTest, TheStartOfEveryControlIsDrawnAsItStands) {
    for_each_control(screen, [&](Control& control) {
        const Control seen = drawn(control);
        EXPECT_EQ(seen.Caption, control.Caption) << control.Name;
        EXPECT_EQ(seen.Text, control.Text) << control.Name;
        EXPECT_EQ(seen.ListIndex, control.ListIndex) << control.Name;
        EXPECT_EQ(seen.List, control.List) << control.Name;
        const QWidget* drawn_widget = widget(control);
        EXPECT_EQ(!drawn_widget->isHidden(), control.Visible) << control.Name;
        EXPECT_EQ(drawn_widget->testAttribute(Qt::WA_ForceDisabled), !control.Enabled)
            << control.Name;
    });
}

TEST_F(QtScreenTest, ACaptionIsDrawnWithoutItsMnemonic) {
    EXPECT_EQ(drawn(screen.comDownload[0]).Caption, "Download");
    EXPECT_EQ(static_cast<QPushButton*>(widget(screen.comDownload[0]))->text(),
              QStringLiteral("&Download"));
    screen.comDownload[0].Caption = "A & B";
    EXPECT_EQ(drawn(screen.comDownload[0]).Caption, "A & B");
}

TEST_F(QtScreenTest, TheLetterOfALabelGoesToTheControlBesideIt) {
    auto* label = static_cast<QLabel*>(widget(screen.LabMaxBaud));
    EXPECT_EQ(label->buddy(), widget(screen.cobBaudMax));
    EXPECT_EQ(label->text(), QStringLiteral("Ma&x Baud / 最高波特率:"));
    EXPECT_EQ(drawn(screen.LabMaxBaud).Caption, screen.LabMaxBaud.Caption);
    screen.labKbyte.Caption = "A & B";
    EXPECT_EQ(drawn(screen.labKbyte).Caption, "A & B");
    EXPECT_EQ(static_cast<QLabel*>(widget(screen.labKbyte))->text(), QStringLiteral("A & B"));
}

TEST_F(QtScreenTest, NoLetterStandsForTwoControlsThatAreSeenTogether) {
    const auto letter = [](const QString& text) {
        const auto at = text.indexOf(u'&');
        const bool marked = at >= 0 && at + 1 < text.size() && text[at + 1] != u'&';
        return marked ? text[at + 1].toUpper() : QChar();
    };
    auto* tabs = static_cast<QTabBar*>(widget(screen.TabStrip1));
    for (int tab = 0; tab < tabs->count(); ++tab) {
        tabs->setCurrentIndex(tab);
        settle();
        std::map<QChar, QString> taken;
        const auto take = [&](const QWidget& one, const QString& text) {
            const QChar own = letter(text);
            if (own.isNull() || !one.isVisible()) return;
            EXPECT_TRUE(taken.emplace(own, text).second)
                << text.toStdString() << " and " << taken[own].toStdString();
        };
        for (const auto* button : tool.window.findChildren<QAbstractButton*>())
            take(*button, button->text());
        for (const auto* label : tool.window.findChildren<QLabel*>())
            if (label->buddy()) take(*label, label->text());
        EXPECT_GT(taken.size(), 10u);
    }
}

TEST_F(QtScreenTest, ALongTitleIsKeptWholeAndDoesNotWidenTheWindow) {
    const int before = tool.window.minimumSizeHint().width();
    screen.Frame7.Caption = "File Buffer: /" + std::string(500, 'x') + "/a & b.hex";
    EXPECT_EQ(drawn(screen.Frame7).Caption, screen.Frame7.Caption);
    EXPECT_EQ(tool.window.minimumSizeHint().width(), before);
    EXPECT_EQ(widget(screen.Frame7)->toolTip().toStdString(), screen.Frame7.Caption);
}

TEST_F(QtScreenTest, TheLogIsDrawnWithItsBreaksAndItsEndInSight) {
    for (int i = 0; i < 200; ++i) screen.textMsg.Text += "\r\n行 / line " + std::to_string(i);
    caret_to_end(screen.textMsg);
    EXPECT_EQ(drawn(screen.textMsg).Text, screen.textMsg.Text);
    EXPECT_EQ(drawn(screen.textMsg).SelStart, screen.textMsg.SelStart);
    auto* log = static_cast<QPlainTextEdit*>(widget(screen.textMsg));
    EXPECT_TRUE(log->viewport()->rect().contains(log->cursorRect()));
    screen.textMsg.Text += "and on the same line";
    EXPECT_EQ(drawn(screen.textMsg).Text, screen.textMsg.Text);
    screen.textMsg.Text = "\r\nnew";
    EXPECT_EQ(drawn(screen.textMsg).Text, "\r\nnew");
    screen.textMsg.Text.clear();
    EXPECT_EQ(drawn(screen.textMsg).Text, "");
}

TEST_F(QtScreenTest, ASelectionIsDrawnBehindLineBreaks) {
    screen.txtBuffer2.Text = "\r\n\r\n 000000   00 11 22 \r\n";
    screen.txtBuffer2.SelStart = 14;
    screen.txtBuffer2.SelLength = 2;
    settle();
    const auto* box = static_cast<QPlainTextEdit*>(widget(screen.txtBuffer2));
    EXPECT_EQ(box->textCursor().selectedText(), QStringLiteral("00"));
    EXPECT_EQ(drawn(screen.txtBuffer2).SelStart, 14);
    EXPECT_EQ(drawn(screen.txtBuffer2).SelLength, 2);
}

TEST_F(QtScreenTest, EveryPropertyOfEveryKindIsDrawn) {
    screen.txtAP_FileStart.Text = "1F00";
    screen.cheClearAP_Buffer.Value = 1;
    fill_list(screen.cobBaudMax, {"1", "2", "3"});
    screen.cobBaudMax.ListIndex = 2;
    screen.ProgressBar1.Min = 100;
    screen.ProgressBar1.Max = 300;
    screen.ProgressBar1.Value = 150;
    screen.ProgressBar1.Visible = true;
    screen.vscFile[0].Max = 77;
    screen.vscFile[0].Value = 12;
    screen.labKbyte.Caption = "12.125K";
    screen.comStop_Download.Enabled = true;
    screen.lst_debug1.List = {{"E0H ACC", "", ""}, {"F0H B", "", ""}};
    screen.lst_debug1.ListIndex = 1;
    EXPECT_EQ(drawn(screen.txtAP_FileStart).Text, "1F00");
    EXPECT_EQ(drawn(screen.cheClearAP_Buffer).Value, 1);
    EXPECT_EQ(drawn(screen.cobBaudMax).List.size(), 3u);
    EXPECT_EQ(drawn(screen.cobBaudMax).ListIndex, 2);
    EXPECT_EQ(drawn(screen.ProgressBar1).Value, 150);
    EXPECT_EQ(drawn(screen.ProgressBar1).Min, 100);
    EXPECT_EQ(drawn(screen.ProgressBar1).Max, 300);
    EXPECT_TRUE(drawn(screen.ProgressBar1).Visible);
    EXPECT_EQ(drawn(screen.vscFile[0]).Max, 77);
    EXPECT_EQ(drawn(screen.vscFile[0]).Value, 12);
    EXPECT_EQ(drawn(screen.labKbyte).Caption, "12.125K");
    EXPECT_TRUE(drawn(screen.comStop_Download).Enabled);
    EXPECT_EQ(drawn(screen.lst_debug1).List, screen.lst_debug1.List);
    EXPECT_EQ(drawn(screen.lst_debug1).ListIndex, 1);
}

TEST_F(QtScreenTest, ASetOfOptionsMayStandWithNoneOn) {
    for (Control& option : screen.optHexSend) option.Value = 0;
    EXPECT_EQ(drawn(screen.optHexSend[0]).Value, 0);
    EXPECT_EQ(drawn(screen.optHexSend[1]).Value, 0);
    screen.optHexSend[1].Value = 1;
    EXPECT_EQ(drawn(screen.optHexSend[0]).Value, 0);
    EXPECT_EQ(drawn(screen.optHexSend[1]).Value, 1);
}

// From light and dark grounds alike: the distance in lightness from the ground, against
// that of free text.
TEST_F(QtScreenTest, WhatStandsInALockedFieldIsStillRead) {
    const auto contrast = [&](QPalette::ColorGroup group) {
        const QPalette colours = widget(screen.txtDevice)->palette();
        return std::abs(colours.color(group, QPalette::Text).lightness() -
                        colours.color(group, QPalette::Base).lightness());
    };
    const QPalette before = QApplication::palette();
    for (const QColor& ground : {QColor(Qt::white), QColor(Qt::black)}) {
        QApplication::setPalette(QPalette(ground));
        settle();
        EXPECT_GE(contrast(QPalette::Disabled), 0.5 * contrast(QPalette::Active));
        EXPECT_LT(contrast(QPalette::Disabled), contrast(QPalette::Active));
    }
    QApplication::setPalette(before);
}

TEST_F(QtScreenTest, AnAbsentTabIsNotShown) {
    auto* tabs = static_cast<QTabBar*>(widget(screen.TabStrip1));
    ASSERT_GT(tabs->count(), 3);
    screen.TabStrip1.List[2].Text = "_no_";
    settle();
    EXPECT_FALSE(tabs->isTabVisible(2));
    EXPECT_EQ(drawn(screen.TabStrip1).List[2].Text, "_no_");
    screen.TabStrip1.List[2].Text = "脱机下载";
    settle();
    EXPECT_TRUE(tabs->isTabVisible(2));
}

TEST_F(QtScreenTest, NothingOutOfRangeCrashesTheDrawing) {
    screen.cobBaudMax.ListIndex = 9999;
    screen.TabStrip2.ListIndex = -7;
    screen.TreeViewDevice.ListIndex = 100000;
    screen.vscFile[0].Max = -5;
    screen.vscFile[0].Value = 2000000000;
    screen.ProgressBar1.Max = -1;
    screen.textMsg.SelStart = -4;
    screen.textMsg.SelLength = 2000000000;
    screen.txtDevice.SelStart = 2000000000;
    screen.texReceive.Text = std::string("\0\x01\xFF\xC3\r\n\r", 7);
    screen.window.Width = -100;
    screen.window.Height = 2000000000;
    settle();
    SUCCEED();
}

// ---- from the widget to the record ------------------------------------------------------

TEST_F(QtScreenTest, WhatIsTypedIsInTheRecordBeforeTheEvent) {
    auto* field = static_cast<QLineEdit*>(widget(screen.txtWrite_OK_Count));
    stop_timer(tool.frm.timers.Timer3);
    field->selectAll();
    EXPECT_EQ(screen.txtWrite_OK_Count.SelLength, 1);
    press(field, Qt::Key_4, "4");
    press(field, Qt::Key_1, "1");
    EXPECT_EQ(screen.txtWrite_OK_Count.Text, "41");
    EXPECT_EQ(screen.txtWrite_OK_Count.SelStart, 2);
    EXPECT_FALSE(tool.frm.timers.Timer3.Enabled) << "a handler ran inside the toolkit";
    settle();
    EXPECT_TRUE(tool.frm.timers.Timer3.Enabled) << "the change was not handed in";
}

TEST_F(QtScreenTest, AClickOnACheckBoxIsInTheRecord) {
    click(widget(screen.cekReloadFile), {8, widget(screen.cekReloadFile)->height() / 2});
    EXPECT_EQ(screen.cekReloadFile.Value, 1);
    click(widget(screen.cekReloadFile), {8, widget(screen.cekReloadFile)->height() / 2});
    EXPECT_EQ(screen.cekReloadFile.Value, 0);
}

TEST_F(QtScreenTest, OfASetOfOptionsOneIsOn) {
    for (auto [chosen, other] : {std::pair{&screen.optBeepNo, &screen.optBeepYes},
                                 std::pair{&screen.optBeepYes, &screen.optBeepNo},
                                 std::pair{&screen.optFillbyte[1], &screen.optFillbyte[0]}}) {
        click(widget(*chosen), {8, widget(*chosen)->height() / 2});
        EXPECT_EQ(chosen->Value, 1) << chosen->Name;
        EXPECT_EQ(other->Value, 0) << other->Name;
        EXPECT_EQ(drawn(*chosen).Value, 1);
        EXPECT_EQ(drawn(*other).Value, 0);
    }
}

TEST_F(QtScreenTest, ChangesByTheLogicRaiseNoEvent) {
    tool.window.resize(1200, 700);
    settle();
    screen.combCommPort.ListIndex = 5;
    screen.optBeepNo.Value = 1;
    screen.optBeepYes.Value = 0;
    screen.cekReloadFile.Value = 1;
    screen.txtWrite_OK_Count.Text = "77";
    screen.textMsg.Text += "\r\nmore";
    screen.textMsg.SelStart = 3;
    screen.vscFile[0].Max = 30;
    screen.vscFile[0].Value = 3;
    screen.TabStrip1.ListIndex = 3;
    screen.TreeViewDevice.ListIndex = 5;
    screen.lst_debug2.List = {{"00", "", ""}, {"08", "", ""}};
    screen.lst_debug2.ListIndex = 1;
    screen.window.Width = 1000 * 15;
    tool.window.draw();
    for (int i = 0; i < 4; ++i) {
        QCoreApplication::processEvents();
        EXPECT_FALSE(tool.queue.hand_in(tool.frm));
    }
    EXPECT_EQ(screen.textMsg.SelStart, 3);
}

TEST_F(QtScreenTest, EachChangedControlIsDrawnOnce) {
    struct Counter final : QObject {
        int paints = 0;
        bool eventFilter(QObject*, QEvent* event) override {
            if (event->type() == QEvent::Paint) ++paints;
            return false;
        }
    } counter;
    QWidget* label = widget(screen.labKbyte);
    label->installEventFilter(&counter);
    settle();
    counter.paints = 0;
    for (int i = 0; i < 10; ++i) screen.labKbyte.Caption = std::to_string(i) + ".000K";
    settle();
    EXPECT_EQ(counter.paints, 1);
    settle();
    EXPECT_EQ(counter.paints, 1) << "nothing has changed";
    label->removeEventFilter(&counter);
}

TEST_F(QtScreenTest, ATabThatIsChosenShowsItsPage) {
    auto* tabs = static_cast<QTabBar*>(widget(screen.TabStrip1));
    for (int i = 0; i < tabs->count(); ++i) {
        if (!tabs->isTabVisible(i)) continue;
        tabs->setCurrentIndex(i);
        settle();
        EXPECT_EQ(screen.TabStrip1.ListIndex, i);
    }
    EXPECT_FALSE(widget(screen.Frame12)->isVisible());
    EXPECT_TRUE(widget(screen.Frame10)->isVisible());
}

TEST_F(QtScreenTest, ThePageOfTheAssistantGoesWithItsPanel) {
    auto* tabs = static_cast<QTabBar*>(widget(screen.TabStrip2));
    EXPECT_FALSE(widget(screen.texSend)->isVisible());
    tabs->setCurrentIndex(4);
    settle();
    EXPECT_TRUE(widget(screen.fraDebug)->isVisible());
    EXPECT_TRUE(widget(screen.texSend)->isVisible());
    EXPECT_TRUE(widget(screen.ImgSplitter)->isVisible());
    tabs->setCurrentIndex(0);
    settle();
    EXPECT_FALSE(widget(screen.texSend)->isVisible());
    EXPECT_TRUE(widget(screen.txtBuffer)->isVisible());
}

TEST_F(QtScreenTest, ModelsAreChosenInATreeThatDropsOverTheBox) {
    QWidget* tree = widget(screen.TreeViewDevice);
    EXPECT_TRUE(tree->isHidden());
    click(widget(screen.Command3));
    settle();
    ASSERT_TRUE(tree->isVisible());
    EXPECT_EQ(tree->mapToGlobal(QPoint(0, 0)), widget(screen.txtDevice)->mapToGlobal(QPoint(0, 0)));
    press(tree, Qt::Key_Escape);
    settle();
    EXPECT_TRUE(tree->isHidden());
    click(widget(screen.txtDevice));
    settle();
    EXPECT_TRUE(tree->isVisible()) << "a click on the box opens it too";
}

TEST_F(QtScreenTest, ANodeThatIsClickedIsTheModel) {
    click(widget(screen.Command3));
    settle();
    auto* tree = static_cast<QTreeWidget*>(widget(screen.TreeViewDevice));
    QTreeWidgetItem* family = tree->topLevelItem(1);
    tree->scrollToItem(family, QAbstractItemView::PositionAtTop);
    click(tree->viewport(), tree->visualItemRect(family).center());
    settle();
    EXPECT_TRUE(tree->isVisible()) << "a family is no model";
    EXPECT_TRUE(family->isExpanded());
    QTreeWidgetItem* model = family->child(0);
    tree->scrollToItem(model);
    click(tree->viewport(), tree->visualItemRect(model).center());
    settle();
    EXPECT_EQ(screen.txtDevice.Text, model->text(0).toStdString());
    EXPECT_TRUE(tree->isHidden());
}

TEST_F(QtScreenTest, TheProjectPageTellsWhetherTheOptionsAreLocked) {
    const auto words = [&] {
        settle();
        QString all;
        for (const auto* label : widget(screen.fra_Batch_quantity)->findChildren<QLabel*>())
            all += label->text() + u'\n';
        return all;
    };
    EXPECT_TRUE(words().contains("可修改"));
    static_cast<QPushButton*>(widget(screen.comLockOptions))->click();
    EXPECT_TRUE(words().contains("已锁定"));
    EXPECT_FALSE(words().contains("可修改"));
    Set_UI_Busy(tool.frm);
    EXPECT_TRUE(words().contains("已锁定")) << "a job that runs unlocks nothing";
    Set_UI_State(tool.frm, ui_idle);
    EXPECT_TRUE(words().contains("可修改"));
}

TEST_F(QtScreenTest, AnEventOfAControlThatWasDisabledMeanwhileIsDropped) {
    auto* button = static_cast<QPushButton*>(widget(screen.comMastWindow));
    button->click();
    screen.comMastWindow.Enabled = false;
    settle();
    EXPECT_FALSE(screen.window.Shrunk);
    screen.comMastWindow.Enabled = true;
    settle();
    button->click();
    settle();
    EXPECT_TRUE(screen.window.Shrunk);
}

TEST_F(QtScreenTest, TheWheelChangesNoSetting) {
    auto* list = static_cast<QComboBox*>(widget(screen.combCommPort));
    const int before = list->currentIndex();
    const QPoint middle = list->rect().center();
    QWheelEvent event(middle, list->mapToGlobal(middle), {}, {0, -240}, Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(list, &event);
    settle();
    EXPECT_EQ(screen.combCommPort.ListIndex, before);
}

TEST_F(QtScreenTest, ADisabledButtonGetsTheKeyboardBack) {
    tool.window.activateWindow();
    QWidget* button = widget(screen.comDownload[0]);
    button->setFocus();
    settle();
    ASSERT_EQ(tool.window.focusWidget(), button);
    screen.comDownload[0].Enabled = false;
    settle();
    EXPECT_EQ(tool.window.focusWidget(), nullptr);
    screen.comDownload[0].Enabled = true;
    settle();
    EXPECT_EQ(tool.window.focusWidget(), button);
}

// ---- the window ------------------------------------------------------------------------

TEST_F(QtScreenTest, ThePlaceAndSizeOfTheWindowAreInTheRecord) {
    tool.window.resize(900, 640);
    settle();
    EXPECT_EQ(screen.window.Width, 900 * 15);
    EXPECT_EQ(screen.window.Height, 640 * 15);
    screen.window.Width = 1000 * 15;
    settle();
    EXPECT_EQ(tool.window.width(), 1000);
}

TEST_F(QtScreenTest, ShrinkingLeavesTheStepsAndRestoringTheWholeWindow) {
    tool.window.resize(1000, 640);
    settle();
    static_cast<QPushButton*>(widget(screen.comMastWindow))->click();
    settle();
    EXPECT_LT(tool.window.width(), 600);
    EXPECT_TRUE(widget(screen.comDownload[0])->isVisible());
    EXPECT_TRUE(widget(screen.txtWrite_OK_Count)->isVisible());
    EXPECT_FALSE(widget(screen.TabStrip1)->isVisible());
    EXPECT_EQ(drawn(screen.comMastWindow).Caption, "恢复主窗体");
    static_cast<QPushButton*>(widget(screen.comMastWindow))->click();
    settle();
    EXPECT_EQ(tool.window.width(), 1000);
    EXPECT_TRUE(widget(screen.TabStrip1)->isVisible());
}

TEST_F(QtScreenTest, AWindowThatFillsTheScreenDoesSoAgainAfterShrinking) {
    tool.window.showMaximized();
    settle();
    const QSize whole = tool.window.size();
    ASSERT_NE(whole, QSize(screen.window.Width, screen.window.Height) / 15);
    auto* button = static_cast<QPushButton*>(widget(screen.comMastWindow));
    button->click();
    settle();
    EXPECT_FALSE(tool.window.isMaximized());
    EXPECT_LT(tool.window.width(), 600);
    button->click();
    settle();
    EXPECT_TRUE(tool.window.isMaximized());
    EXPECT_EQ(tool.window.size(), whole);
}

TEST_F(QtScreenTest, NoPageNeedsMoreRoomThanASmallScreenHas) {
    for (Control* strip : {&screen.TabStrip1, &screen.TabStrip2}) {
        auto* tabs = static_cast<QTabBar*>(widget(*strip));
        for (int i = 0; i < tabs->count(); ++i) {
            tabs->setCurrentIndex(i);
            settle();
            const QSize needed = tool.window.minimumSizeHint();
            EXPECT_LE(needed.width(), 800) << strip->Name << " " << i;
            EXPECT_LE(needed.height(), 600) << strip->Name << " " << i;
        }
    }
}

TEST_F(QtScreenTest, TheLogHasSixLinesOnASmallScreen) {
    tool.window.resize(800, 600);
    settle();
    const QWidget* log = widget(screen.textMsg);
    EXPECT_GE(log->height(), 6 * log->fontMetrics().lineSpacing());
    EXPECT_LE(log->mapTo(&tool.window, QPoint(0, log->height())).y(), 600);
}

// A port that will not open adds a line below; the steps must not begin to scroll.
TEST_F(QtScreenTest, TheStepsStayWholeWithAReasonBelowThem) {
    tool.window.resize(800, 600);
    screen.combCommPort.ListIndex = 2;
    settle();
    const auto* area =
        qobject_cast<QScrollArea*>(widget(screen.Frame1)->parentWidget()->parentWidget());
    ASSERT_NE(area, nullptr);
    const int width_without_reason = area->width() + area->mapTo(&tool.window, QPoint()).x() * 2;
    for (const char* device : {"/dev/a-device-that-is-not-there", ""}) {
        tool.ports.use(3, device);
        tool.port.set_port_number(3);
        tool.port.open();
        ASSERT_FALSE(tool.port.reason().text.empty());
        for (int shrunk = 0; shrunk < 2; ++shrunk) {
            settle();
            EXPECT_FALSE(area->verticalScrollBar()->isVisible()) << device << " " << shrunk;
            EXPECT_LE(tool.window.height(), 600);
            if (shrunk == 1) {
                EXPECT_EQ(tool.window.width(), width_without_reason);
            }
            static_cast<QPushButton*>(widget(screen.comMastWindow))->click();
        }
    }
}

TEST_F(QtScreenTest, ALongDeviceNameLeavesTheStatusOnOneLine) {
    const auto height = [&](const std::string& device) {
        tool.ports.use(1, device);
        screen.combCommPort.ListIndex = 0;
        settle();
        return widget(screen.comMastWindow)->parentWidget()->height();
    };
    tool.window.resize(800, 600);
    EXPECT_EQ(height("/dev/" + std::string(300, 'x')), height("/dev/x"));
}

TEST_F(QtScreenTest, APageOfWrappedLinesIsRightTheFirstTime) {
    tool.window.resize(800, 600);
    settle();
    auto* tabs = static_cast<QTabBar*>(widget(screen.TabStrip1));
    tabs->setCurrentIndex(5);
    const QWidget* last = widget(screen.cob_DEMO_DownLoad_StopBits);
    for (int turn = 0; turn < 4 && !last->isVisible(); ++turn) process_events(tool.frm);
    ASSERT_TRUE(last->isVisible());
    tool.window.grab();  // whatever is drawn next
    EXPECT_GT(last->y(), widget(screen.cob_DEMO_DownLoad_Baud)->y()) << "all on one line";
    EXPECT_TRUE(last->parentWidget()->rect().contains(last->geometry())) << "cut off";
}

TEST_F(QtScreenTest, AListOfPortsThatStandsOpenTellsOfAPlug) {
    class PaintCount final : public QObject {
      public:
        int count = 0;

      protected:
        bool eventFilter(QObject*, QEvent* event) override {
            if (event->type() == QEvent::Paint) ++count;
            return false;
        }
    };
    auto* list = static_cast<QComboBox*>(widget(screen.combCommPort));
    PaintCount paints;
    list->view()->viewport()->installEventFilter(&paints);
    list->showPopup();
    for (int before = -1; before != paints.count; settle()) before = paints.count;
    const int at_rest = paints.count;
    tool.ports.use(3, "/dev/new");
    settle();
    EXPECT_GT(paints.count, at_rest);
    list->hidePopup();
}

TEST_F(QtScreenTest, TheSplitterShowsItsBarWhileItIsHeldAndKeepsItsPlace) {
    tool.window.resize(1400, 800);
    auto* tabs = static_cast<QTabBar*>(widget(screen.TabStrip2));
    tabs->setCurrentIndex(4);
    settle();
    QWidget* handle = widget(screen.ImgSplitter);
    QWidget* bar = widget(screen.picSplitter);
    EXPECT_FALSE(bar->isVisible());
    const auto mouse = [&](QEvent::Type type, QPoint at) {
        const auto button = type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton;
        const auto held = type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton;
        QMouseEvent event(type, at, handle->mapToGlobal(at), button, held, Qt::NoModifier);
        QCoreApplication::sendEvent(handle, &event);
        settle();
    };
    const QPoint hold = handle->rect().center();
    const int before = widget(screen.fraDebug)->width();
    mouse(QEvent::MouseButtonPress, hold);
    EXPECT_TRUE(bar->isVisible());
    EXPECT_EQ(bar->size(), handle->size());
    mouse(QEvent::MouseMove, hold + QPoint(30, 0));
    mouse(QEvent::MouseButtonRelease, hold);
    EXPECT_FALSE(bar->isVisible());
    const int width = widget(screen.fraDebug)->width();
    EXPECT_EQ(width, before + 30);
    EXPECT_EQ(screen.window.Frame24_Width, width * 15);
    EXPECT_EQ(tool.settings.get("Settings", "Frame24_Width", ""), std::to_string(width * 15));
}

TEST_F(QtScreenTest, TheTabulatorGoesThroughTheStepsInTheirOrder) {
    const QWidget* steps[] = {widget(screen.Frame3),  widget(screen.Frame5),
                              widget(screen.Frame6),  widget(screen.Frame2),
                              widget(screen.Frame13), widget(screen.textMsg)};
    std::vector<int> order;
    const QWidget* first = widget(screen.txtDevice);
    const QWidget* at = first;
    do {
        for (int step = 0; step < 6; ++step)
            if ((at == steps[step] || steps[step]->isAncestorOf(at)) &&
                (at->focusPolicy() & Qt::TabFocus) && at->isVisible())
                order.push_back(step);
        at = at->nextInFocusChain();
    } while (at != first);
    EXPECT_TRUE(std::is_sorted(order.begin(), order.end()));
    EXPECT_GT(order.size(), 20u);
}

TEST_F(QtScreenTest, EveryControlThatCanBeOperatedIsReachedByTheKeyboard) {
    for_each_control(screen, [&](Control& control) {
        switch (control.Kind) {
            case ControlKind::Label:
            case ControlKind::Frame:
            case ControlKind::Picture:
            case ControlKind::ProgressBar:
            case ControlKind::ScrollBar:
                return;
            default:
                // They lie below the boxes that the operator uses.
                if (&control == &screen.txtBuffer || &control == &screen.txtDataFlash1) return;
                EXPECT_TRUE(widget(control)->focusPolicy() & Qt::TabFocus) << control.Name;
        }
    });
}

TEST_F(QtScreenTest, AFileDroppedOnTheWindowIsOpened) {
    QFile file(folder.filePath("dropped.bin"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("abc");
    file.close();
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(file.fileName())});
    QDragEnterEvent enter(QPoint(10, 10), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&tool.window, &enter);
    EXPECT_TRUE(enter.isAccepted());
    QDropEvent event(QPointF(10, 10), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&tool.window, &event);
    EXPECT_FALSE(tool.frm.images.File_Loaded) << "an operation ran inside the toolkit";
    settle();
    EXPECT_TRUE(tool.frm.images.File_Loaded);
    EXPECT_EQ(tool.frm.images.Current_File, file.fileName().toStdString());
}

TEST_F(QtScreenTest, TheStatusLineTellsThePortAndItsState) {
    const auto text = [&] {
        settle();
        QString all;
        for (const QLabel* label : tool.window.findChildren<QLabel*>())
            if (label->isVisible()) all += label->text() + u'\n';
        return all;
    };
    tool.ports.use(3, "");
    screen.combCommPort.ListIndex = 2;
    EXPECT_TRUE(text().contains("COM3")) << text().toStdString();
    EXPECT_TRUE(text().contains("closed"));
    tool.port.set_port_number(3);
    EXPECT_GT(tool.port.open(), 0);
    EXPECT_TRUE(text().contains("no device has this number")) << "the reason is not shown";
}

TEST_F(QtScreenTest, ABoxKeepsItsLinesWhereTheScreenHasRoom) {
    std::string line;
    for (int i = 0; i < 14; ++i) line += "xxx ";
    int height = 0;
    int width = 0;
    tool.dialogs.box_shown = [&](QMessageBox& box) {
        QTimer::singleShot(0, &box, [&] {
            const auto* label = box.findChild<QLabel*>("qt_msgbox_label");
            if (label) height = label->height() / label->fontMetrics().lineSpacing();
            width = box.width();
            box.button(QMessageBox::Ok)->click();
        });
    };
    tool.dialogs.show_text(line + "\r\n" + line + "\r\n" + line, "");
    EXPECT_EQ(height, 3);
    tool.dialogs.show_text(std::string(2000, 'x') + " " + std::string(2000, 'y'), "");
    EXPECT_LE(width, tool.window.screen()->availableGeometry().width());
}

TEST_F(QtScreenTest, ClosingAsksTheLogicFirst) {
    tool.window.close();
    EXPECT_TRUE(tool.window.isVisible()) << "it may take two passes";
    const Instant end = tool.loop.now() + Milliseconds(3000);
    while (!tool.window.is_over() && tool.loop.now() < end)
        process_events(tool.frm, Sleep::until_something);
    EXPECT_TRUE(tool.window.is_over());
    EXPECT_FALSE(tool.window.isVisible());
}

TEST_F(QtScreenTest, TheLogicMayAskForTheClosing) {
    screen.window.Close_Requested = true;
    const Instant end = tool.loop.now() + Milliseconds(3000);
    while (!tool.window.is_over() && tool.loop.now() < end)
        process_events(tool.frm, Sleep::until_something);
    EXPECT_TRUE(tool.window.is_over());
    EXPECT_FALSE(screen.window.Close_Requested);
}

}  // namespace
}  // namespace vkm::test
