// The page of the serial terminal as the operator has it.
#include <QAbstractButton>
#include <QAbstractItemView>
#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QPlainTextEdit>
#include <QScrollArea>
#include <QScrollBar>
#include <QTabBar>

#include "qt_drawn_window.h"
#include "qt_pseudo_terminal.h"

namespace vkm::test {
namespace {

class QtAssistantPageTest : public DrawnWindow {
  protected:
    QtAssistantPageTest() {
        tool.window.resize(1280, 800);
        tool.window.activateWindow();
        static_cast<QTabBar*>(widget(screen.TabStrip2))->setCurrentIndex(4);
        settle();
    }

    QPlainTextEdit* box(Control& control) { return static_cast<QPlainTextEdit*>(widget(control)); }

    // The controls of the page that are seen, with the area in which each can be scrolled.
    std::vector<QWidget*> controls_of_page() {
        std::vector<QWidget*> found;
        QWidget* page = widget(screen.comOpenCOM)->parentWidget()->parentWidget();
        for_each_control(screen, [&](Control& control) {
            if (page->isAncestorOf(widget(control)) && widget(control)->isVisible())
                found.push_back(widget(control));
        });
        return found;
    }
};

// ---- the page --------------------------------------------------------------------------

TEST_F(QtAssistantPageTest, NothingIsCutOffOrLiesOverSomethingElse) {
    for (const QSize size : {QSize(800, 600), QSize(1280, 800), QSize(1920, 1080)}) {
        tool.window.resize(size);
        settle();
        const std::vector<QWidget*> controls = controls_of_page();
        EXPECT_GT(controls.size(), 95u);
        for (const QWidget* one : controls) {
            if (one->objectName() == "ImgSplitter" || one->objectName() == "fraDebug") continue;
            EXPECT_TRUE(one->parentWidget()->rect().contains(one->geometry()))
                << one->objectName().toStdString() << " " << size.width();
            if (const auto* button = qobject_cast<const QAbstractButton*>(one)) {
                EXPECT_GE(one->width(), one->fontMetrics().horizontalAdvance(button->text()))
                    << one->objectName().toStdString();
            }
            for (const QWidget* other : controls)
                if (other != one && other->parentWidget() == one->parentWidget()) {
                    EXPECT_FALSE(one->geometry().intersects(other->geometry()))
                        << one->objectName().toStdString() << " "
                        << other->objectName().toStdString();
                }
        }
    }
}

TEST_F(QtAssistantPageTest, TextAndPortAreInSightOnASmallScreenWhileTheTextsToSendScroll) {
    tool.window.resize(800, 600);
    settle();
    const auto in_sight = [&](Control& control) {
        QWidget* one = widget(control);
        const QPoint middle = one->mapTo(&tool.window, one->rect().center());
        return tool.window.rect().contains(middle) &&
               (tool.window.childAt(middle) == one ||
                one->isAncestorOf(tool.window.childAt(middle)));
    };
    for (Control* control :
         {&screen.texReceive, &screen.optReceiveHex[0], &screen.optReceiveHex[1],
          &screen.comDebugClear[0], &screen.comDebugHelp[0], &screen.comClearCount,
          &screen.com_Debug_COM, &screen.com_Debug_Baud, &screen.com_Debug_StopBits,
          &screen.comOpenCOM, &screen.imgNotOpen, &screen.che_AutoOpenPort, &screen.texSend})
        EXPECT_TRUE(in_sight(*control)) << full_name(*control);
    EXPECT_FALSE(in_sight(screen.texSpreadSend[24]));
    for (QWidget* above = widget(screen.texSpreadSend[24])->parentWidget(); above;
         above = above->parentWidget())
        if (auto* area = qobject_cast<QScrollArea*>(above))
            area->ensureWidgetVisible(widget(screen.texSpreadSend[24]));
    settle();
    EXPECT_TRUE(in_sight(screen.texSpreadSend[24]));
}

TEST_F(QtAssistantPageTest, TheLampOfThePortIsAStateThatCanBeClicked) {
    EXPECT_TRUE(widget(screen.imgNotOpen)->isVisible());
    EXPECT_FALSE(widget(screen.imgOpen)->isVisible());
    for (Control* lamp : {&screen.imgOpen, &screen.imgNotOpen}) {
        EXPECT_EQ(widget(*lamp)->cursor().shape(), Qt::PointingHandCursor);
        EXPECT_FALSE(widget(*lamp)->toolTip().isEmpty());
    }
    EXPECT_NE(widget(screen.imgOpen_sys)->cursor().shape(), Qt::PointingHandCursor)
        << "it does nothing";
}

// ---- keys typed into the received text ---------------------------------------------------

class QtTypedKeysTest : public QtAssistantPageTest {
  protected:
    QtTypedKeysTest() {
        tool.ports.use(1, line.path());
        screen.com_Debug_COM.ListIndex = 0;
        click(widget(screen.comOpenCOM));
        settle();
        text()->setFocus();
    }

    QPlainTextEdit* text() { return box(screen.texReceive); }
    void press_with(int key, Qt::KeyboardModifiers with, bool held = false,
                    const QString& typed = {}) {
        QKeyEvent event(QEvent::KeyPress, key, with, typed, held);
        QCoreApplication::sendEvent(text(), &event);
    }
    std::string sent() {
        const Instant end = tool.loop.now() + Milliseconds(100);
        while (tool.loop.now() < end) process_events(tool.frm);
        const auto& bytes = line.heard();
        return {bytes.begin(), bytes.end()};
    }

    PseudoTerminal line{folder.filePath("line").toStdString()};
};

TEST_F(QtTypedKeysTest, AKeyThatTypesIsSentAtOnce) {
    press(text(), Qt::Key_A, "a");
    press(text(), Qt::Key_Return, "\r");
    press(text(), Qt::Key_Escape, "\x1b");
    press(text(), Qt::Key_Backspace, "\b");
    press(text(), Qt::Key_Enter, "\r");
    EXPECT_EQ(sent(), "a\x1b\b") << "all but Return";
    EXPECT_EQ(screen.texReceive.Text, "") << "it is typed to the line, not into the text";
}

// Systems differ in whether these keys type anything.
TEST_F(QtTypedKeysTest, EscapeAndBackspaceTypeOnEverySystem) {
    press(text(), Qt::Key_Escape);
    press(text(), Qt::Key_Backspace);
    EXPECT_EQ(sent(), "\x1b\b");
}

TEST_F(QtTypedKeysTest, KeysThatTypeNothingSendNothing) {
    for (const int key : {Qt::Key_Down, Qt::Key_PageUp, Qt::Key_Home, Qt::Key_F5, Qt::Key_Shift})
        press(text(), key);
    EXPECT_EQ(sent(), "");
}

TEST_F(QtTypedKeysTest, AKeyThatIsHeldDownDoesNotPileUp) {
    press_with(Qt::Key_X, {}, false, "x");
    for (int i = 0; i < 50; ++i) press_with(Qt::Key_X, {}, true, "x");
    EXPECT_EQ(sent(), "x") << "nothing was worked off between them";
    for (int i = 0; i < 3; ++i) {
        press_with(Qt::Key_X, {}, true, "x");
        settle();
    }
    EXPECT_EQ(sent(), "xxxx");
}

TEST_F(QtTypedKeysTest, QuickFingersLoseNoKey) {
    for (const char key : {'q', 'w', 'e', 'q', 'q'}) press(text(), Qt::Key_Q, QString(QChar(key)));
    EXPECT_EQ(sent(), "qweqq");
}

TEST_F(QtTypedKeysTest, TextIsStillSelectedAndCopied) {
    screen.texReceive.Text = "one\r\ntwo";
    settle();
    press_with(Qt::Key_A, Qt::ControlModifier, false, "\x01");
    settle();
    EXPECT_EQ(screen.texReceive.SelStart, 0);
    EXPECT_EQ(screen.texReceive.SelLength, 8);
    press_with(Qt::Key_C, Qt::ControlModifier, false, "\x03");
    EXPECT_EQ(QApplication::clipboard()->text(), "one\ntwo");
    EXPECT_EQ(sent(), "");
}

// ---- the text to send ------------------------------------------------------------------

TEST_F(QtAssistantPageTest, TheTextToSendHasLines) {
    QPlainTextEdit* memo = box(screen.texSend);
    memo->setFocus();
    memo->selectAll();
    press(memo, Qt::Key_A, "a");
    press(memo, Qt::Key_Return, "\r");
    press(memo, Qt::Key_B, "b");
    settle();
    EXPECT_EQ(screen.texSend.Text, "a\r\nb");
    EXPECT_EQ(drawn(screen.texSend).Text, "a\r\nb");
    EXPECT_EQ(screen.texSend.SelStart, 4);
}

TEST_F(QtAssistantPageTest, TheTabulatorLeavesTheTextToSend) {
    QPlainTextEdit* memo = box(screen.texSend);
    memo->setFocus();
    const std::string before = screen.texSend.Text;
    press(memo, Qt::Key_Tab, "\t");
    settle();
    EXPECT_NE(tool.window.focusWidget(), memo);
    EXPECT_EQ(screen.texSend.Text, before);
}

TEST_F(QtAssistantPageTest, TheTextToSendIsAsHighAsItsRows) {
    screen.texSend.Text = "one\r\ntwo";
    settle();
    EXPECT_FALSE(box(screen.texSend)->verticalScrollBar()->isVisible());
    EXPECT_LE(box(screen.texSend)->height(), 4 * box(screen.texSend)->fontMetrics().lineSpacing());
}

// ---- lists ----------------------------------------------------------------------------------

TEST_F(QtAssistantPageTest, ANumberFromOldSettingsThatIsNoEntryIsDrawnAsNothingChosen) {
    fill_list(screen.com_Debug_COM, {"COM1", "COM2"});
    for (const int stale : {40, -7, 2}) {
        screen.com_Debug_COM.ListIndex = stale;
        EXPECT_EQ(drawn(screen.com_Debug_COM).ListIndex, -1) << stale;
        auto* ports = static_cast<QComboBox*>(widget(screen.com_Debug_COM));
        EXPECT_EQ(ports->currentText(), QString()) << stale;
        tool.window.grab();
    }
    screen.com_Debug_COM.ListIndex = 1;
    EXPECT_EQ(drawn(screen.com_Debug_COM).ListIndex, 1);
}

TEST_F(QtAssistantPageTest, EntriesOfThePortListTellTheirDevices) {
    tool.ports.use(1, "");
    tool.ports.use(2, "/dev/adapter");
    fill_list(screen.com_Debug_COM, {"COM1", "COM2"});
    settle();
    auto* ports = static_cast<QComboBox*>(widget(screen.com_Debug_COM));
    const int plain = ports->view()->sizeHintForIndex(ports->model()->index(0, 0)).width();
    const int noted = ports->view()->sizeHintForIndex(ports->model()->index(1, 0)).width();
    EXPECT_GT(noted, plain + ports->fontMetrics().horizontalAdvance("adapter"));
    EXPECT_EQ(ports->itemText(1), "COM2");
}

}  // namespace
}  // namespace vkm::test
