// The pages of the stand-alone board, of a download over a user's ISP program and of the
// debug monitor: what a person sees of them at any size of the window.
#include <QAbstractButton>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QScrollArea>
#include <QTabBar>
#include <cstdlib>
#include <functional>

#include "platform/qt/text_mapping.h"
#include "qt_drawn_window.h"

namespace vkm::test {
namespace {

constexpr QSize sizes[] = {{800, 600}, {1280, 800}, {1920, 1080}};

class QtOtherDownloadsTest : public DrawnWindow {
  protected:
    QtOtherDownloadsTest() { tool.window.resize(1280, 800); }

    QWidget* show_page(Control& frame, const QString& tab) {
        auto* tabs = static_cast<QTabBar*>(widget(screen.TabStrip1));
        for (int i = 0; i < tabs->count(); ++i)
            if (tabs->tabText(i) == tab) tabs->setCurrentIndex(i);
        settle();
        return widget(frame);
    }
    QWidget* board() { return show_page(screen.Frame18, QStringLiteral("脱机下载")); }
    QWidget* demo() { return show_page(screen.Frame11, QStringLiteral("ISP DEMO")); }
    QWidget* monitor() { return show_page(screen.Frame10, QStringLiteral("仿真芯片")); }

    void lay_out_at(QSize size) {
        tool.window.resize(size);
        // A line that breaks anew makes its page higher, and the page's scroll bar its lines
        // narrower.
        for (int i = 0; i < 4; ++i) {
            settle();
            QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
        }
    }

    // Names in the order of the tabulator, beginning with this one, as far as they stand
    // on the page.
    std::vector<std::string> tab_order(QWidget* page, Control& first) {
        std::vector<std::string> names;
        QWidget* at = widget(first);
        for (QWidget* next = at; names.empty() || next != at; next = next->nextInFocusChain()) {
            const Control* control = view.control_of(next);
            if (control && page->isAncestorOf(next) && next->focusPolicy() & Qt::TabFocus)
                names.emplace_back(control->Name);
        }
        return names;
    }
};

bool is_seen(const QWidget* widget) {
    return widget->isVisible() && !widget->size().isEmpty();
}

// What lies on its neighbour, or reaches beyond what it stands on.
QStringList badly_placed(const QWidget* page) {
    QStringList bad;
    for (const QWidget* widget : page->findChildren<QWidget*>()) {
        const QWidget* ground = widget->parentWidget();
        if (!is_seen(widget) || qobject_cast<const QComboBox*>(ground)) continue;
        if (!ground->rect().contains(widget->geometry())) bad << "outside: " + widget->objectName();
        for (const QObject* other : ground->children()) {
            const auto* neighbour = qobject_cast<const QWidget*>(other);
            if (neighbour && neighbour != widget && is_seen(neighbour) &&
                neighbour->geometry().intersects(widget->geometry()))
                bad << "overlap: " + widget->objectName() + ' ' + neighbour->objectName();
        }
    }
    return bad;
}

QStringList cut_off(const QWidget* page) {
    QStringList cut;
    for (const auto* button : page->findChildren<QAbstractButton*>())
        if (is_seen(button) && button->width() < button->minimumSizeHint().width())
            cut << button->text();
    for (const auto* label : page->findChildren<QLabel*>())
        if (is_seen(label) && (label->width() < label->minimumSizeHint().width() ||
                               label->height() < label->heightForWidth(label->width())))
            cut << label->text();
    return cut;
}

TEST_F(QtOtherDownloadsTest, NothingIsCutOffOrLiesOnSomethingElseAtAnySize) {
    for (const QSize size : sizes) {
        const std::function<QWidget*()> pages[] = {
            [this] { return board(); }, [this] { return demo(); }, [this] { return monitor(); }};
        for (const auto& show : pages) {
            const QWidget* page = show();
            lay_out_at(size);
            ASSERT_TRUE(page->isVisible());
            EXPECT_EQ(badly_placed(page), QStringList()) << size.width();
            EXPECT_EQ(cut_off(page), QStringList()) << size.width();
            // Lines break, so that nothing stands beyond the right edge.
            const QWidget* viewport = page->parentWidget()->parentWidget();
            EXPECT_LE(page->width(), viewport->width()) << size.width();
        }
    }
}

TEST_F(QtOtherDownloadsTest, EveryControlHasAHintInBothLanguages) {
    for (QWidget* page : {board(), demo(), monitor()})
        for (const auto* child : page->findChildren<QWidget*>())
            if (const Control* control = view.control_of(child)) {
                EXPECT_TRUE(child->toolTip().contains(" / ")) << control->Name;
            }
}

TEST_F(QtOtherDownloadsTest, TheTabulatorGoesTheWayOfTheEye) {
    EXPECT_EQ(
        tab_order(board(), screen.txt_download_max),
        (std::vector<std::string>{"txt_download_max", "comTJXZ", "com_TJXZ_help", "Read24C512"}));
    EXPECT_EQ(tab_order(demo(), screen.com_Demo_DownLoad),
              (std::vector<std::string>{
                  "com_Demo_DownLoad", "com_Demo_Re_DownLoad", "com_Demo_Stop", "Text1",
                  "cob_DEMO_DownLoad_Baud", "cob_DEMO_DownLoad_Parity",
                  "cob_DEMO_DownLoad_DataBits", "cob_DEMO_DownLoad_StopBits", "che_Demo_DownLoad",
                  "txt_DEMO_UserCode", "cob_DEMO_UserCode_Baud", "cob_DEMO_UserCode_Parity",
                  "cob_DEMO_UserCode_DataBits", "cob_DEMO_UserCode_StopBits", "opt_ISP_DEMO_WDT",
                  "opt_ISP_DEMO_WDT", "comb_WDT"}));
}

TEST_F(QtOtherDownloadsTest, TheRestingPlaceTakesTheKeyboardAndIsNoBoxToTypeInto) {
    demo();
    auto* rest = static_cast<QLineEdit*>(widget(screen.Text1));
    screen.Focus_Request = "Text1";
    settle();
    EXPECT_EQ(tool.window.focusWidget(), rest);
    EXPECT_FALSE(rest->hasFrame());
    press(rest, Qt::Key_5, "5");
    settle();
    EXPECT_EQ(rest->text(), "999");
    EXPECT_EQ(screen.Text1.Text, "999");
}

TEST_F(QtOtherDownloadsTest, ThePageOfTheMonitorNamesItsModels) {
    QString texts;
    for (const auto* label : monitor()->findChildren<QLabel*>()) texts += label->text();
    for (const char* piece : {"VKM47H516RK (VKM516_2003.ROM)", "VKM47T516RK (VKM516_2003.ROM)",
                              "VKM47H58RK (VKM58_2003.ROM)", "VKM47T58RK (VKM58_2003.ROM)"})
        EXPECT_TRUE(texts.contains(piece)) << piece;
}

// ---- what can't be operated now ----------------------------------------------------------

int contrast(const QWidget* button) {
    const QPalette colours = button->palette();
    return std::abs(colours.color(QPalette::Disabled, QPalette::ButtonText).lightness() -
                    colours.color(QPalette::Disabled, QPalette::Button).lightness());
}

TEST_F(QtOtherDownloadsTest, CaptionsOfDisabledButtonsCanBeRead) {
    board();
    const QWidget* load = widget(screen.comTJXZ);
    EXPECT_GE(contrast(load), 100);
    const QPalette before = QApplication::palette();
    QPalette dark = before;
    for (const auto group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
        dark.setColor(group, QPalette::Button, QColor(40, 40, 40));
        dark.setColor(group, QPalette::ButtonText, QColor(250, 250, 250));
    }
    dark.setColor(QPalette::Disabled, QPalette::ButtonText, QColor(60, 60, 60));
    QApplication::setPalette(dark);
    settle();
    EXPECT_GE(contrast(load), 90);
    EXPECT_GT(load->palette().color(QPalette::Disabled, QPalette::ButtonText).lightness(), 100);
    QApplication::setPalette(before);
    settle();
    EXPECT_GE(contrast(load), 100);
}

}  // namespace
}  // namespace vkm::test
