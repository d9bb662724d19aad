// The text view whose long lines are broken for the toolkit's sake: nobody notices.
#include <gtest/gtest.h>

#include <QClipboard>
#include <QMimeData>
#include <QScrollBar>
#include <QTabBar>
#include <QTextBlock>

#include "platform/qt/long_text_view.h"
#include "platform/qt/text_mapping.h"
#include "qt_drawn_window.h"
#include "screen/control.h"

namespace vkm::test {
namespace {

std::string repeated(std::string_view piece, int count) {
    std::string text;
    for (int i = 0; i < count; ++i) text += piece;
    return text;
}

std::string hexadecimal(int bytes) {
    std::string text;
    for (int i = 0; i < bytes; ++i) {
        constexpr const char* digits = "0123456789ABCDEF";
        text += {digits[i / 16 % 16], digits[i % 16], ' '};
    }
    return text;
}

const std::vector<std::string>& texts() {
    static const std::vector<std::string> all = {
        "",
        "x",
        "\r\n",
        "\r\n\r\n\r\n",
        "lone\rcarriage\r\rreturn\r",
        "lone\nfeed\n\nand \r\n\n\r mixed \n\r",
        repeated("0123456789", 50),
        repeated("0123456789", 50) + "\r\n" + repeated("abc ", 60) + "\r\n\r\nend",
        repeated("下载", 90) + "\r\n" + repeated("x下", 77),
        repeated("𝄞", 120) + "a" + repeated("𝄞é", 55),
        repeated(" ", 300) + "behind the blanks",
        repeated("a\tbc\t", 60),
        hexadecimal(400),
        "5" + hexadecimal(100) + "\r\n" + hexadecimal(3) + "温" + hexadecimal(60),
        repeated("\x01\x1b\x7f", 60),
        "\uFEFFmarked\r\n\uFEFF\uFEFF" + repeated("x\uFEFF", 90),
    };
    return all;
}

// Ends of characters.
std::vector<std::size_t> places_between(const std::string& text) {
    std::vector<std::size_t> places;
    for (std::size_t i = 0; i <= text.size(); ++i)
        if (i == text.size() || (static_cast<unsigned char>(text[i]) & 0xC0) != 0x80)
            places.push_back(i);
    return places;
}

class QtLongTextTest : public testing::Test {
  protected:
    QtLongTextTest() {
        show_width(400);
        view.show();
    }
    // Gives the widget the size; the toolkit tells a widget that isn't shown of it late.
    void show_width(int width) {
        view.resize(width, 200);
        QCoreApplication::processEvents();
    }
    void draw(const std::string& text) { view.draw_text(text, 0); }
    std::vector<std::pair<int, QString>> rows() const {
        std::vector<std::pair<int, QString>> all;
        for (QTextBlock block = view.document()->begin(); block.isValid(); block = block.next())
            all.emplace_back(block.userState(), block.text());
        return all;
    }
    void select(int from, int to) {
        QTextCursor cursor(view.document());
        cursor.setPosition(view.document_position(from));
        cursor.setPosition(view.document_position(to), QTextCursor::KeepAnchor);
        view.setTextCursor(cursor);
    }
    QString copied() {
        QApplication::clipboard()->clear();
        view.copy();
        return QApplication::clipboard()->text();
    }

    QApplication& qt = application();
    LongTextView view;
};

// ---- the text ---------------------------------------------------------------------------

TEST_F(QtLongTextTest, ATextIsReadBackAsItWasDrawnAtAnyWidth) {
    for (const std::string& text : texts())
        for (const int width : {400, 90, 777}) {
            draw(text);
            EXPECT_EQ(view.drawn_text(), text);
            show_width(width);
            EXPECT_EQ(view.drawn_text(), text) << width;
        }
}

TEST_F(QtLongTextTest, LongLinesAreBroken) {
    draw(hexadecimal(1000));
    EXPECT_GT(view.blockCount(), 30);
    draw("short");
    EXPECT_EQ(view.blockCount(), 1);
}

TEST_F(QtLongTextTest, EachRowFitsTheWindowAndIsFull) {
    for (const int width : {400, 90, 777}) {
        show_width(width);
        for (const std::string& text : texts()) {
            draw(text);
            view.grab();
            for (QTextBlock block = view.document()->begin(); block.isValid();
                 block = block.next()) {
                view.setTextCursor(QTextCursor(block));
                view.grab();  // lays it out
                EXPECT_EQ(block.layout()->lineCount(), 1) << block.text().toStdString();
            }
        }
        draw(repeated("x", 1000));
        const double room = view.viewport()->width() - 2 * view.document()->documentMargin();
        const int columns =
            static_cast<int>(room / QFontMetricsF(view.font()).horizontalAdvance(u'x'));
        EXPECT_EQ(view.document()->begin().text().size(), columns);
    }
}

TEST_F(QtLongTextTest, NoByteInHexadecimalIsSplit) {
    for (int width = 90; width < 130; ++width) {
        show_width(width);
        draw(hexadecimal(200));
        for (QTextBlock block = view.document()->begin(); block.isValid(); block = block.next())
            EXPECT_EQ(block.text().size() % 3, 0) << width << " " << block.text().toStdString();
    }
}

TEST_F(QtLongTextTest, ATextThatGrewIsDrawnLikeOneThatCameAtOnce) {
    for (const std::string& text : texts()) {
        draw(text);
        const auto at_once = rows();
        const std::vector<std::size_t> places = places_between(text);
        for (const std::size_t step : {std::size_t(1), std::size_t(2), std::size_t(7)}) {
            draw("");
            std::size_t drawn = 0;
            for (std::size_t i = step; drawn < text.size(); i += step) {
                const std::size_t now = places[std::min(i, places.size() - 1)];
                view.draw_text(std::string_view(text).substr(0, now), drawn);
                drawn = now;
            }
            EXPECT_EQ(view.drawn_text(), text) << step;
            EXPECT_TRUE(rows() == at_once) << text << " by " << step;
            EXPECT_EQ(view.units_at(view.document()->characterCount() - 1),
                      widget_lines(text).size());
        }
    }
}

TEST_F(QtLongTextTest, ABreakThatCameInTwoPiecesIsOne) {
    draw("one\r");
    view.draw_text("one\r\ntwo", 4);
    EXPECT_EQ(view.blockCount(), 2);
    EXPECT_EQ(view.drawn_text(), "one\r\ntwo");
    view.draw_text("one\r\ntwo\n", 8);
    view.draw_text("one\r\ntwo\n\n", 9);
    EXPECT_EQ(view.drawn_text(), "one\r\ntwo\n\n");
    EXPECT_EQ(view.blockCount(), 4);
}

TEST_F(QtLongTextTest, WhatTheToolkitTakesForAnEndIsReplaced) {
    const std::string ends = std::string("a\0b", 3) + "\u2028c\u2029d\uFDD0e\uFDD1f";
    draw(ends);
    EXPECT_EQ(view.blockCount(), 1);
    EXPECT_EQ(view.drawn_text(), "a\uFFFDb\uFFFDc\uFFFDd\uFFFDe\uFFFDf");
    EXPECT_EQ(view.units_at(view.document()->characterCount() - 1), 11);
    EXPECT_EQ(widget_position(ends, 11), 11);
    view.draw_text(ends + "g", ends.size());
    EXPECT_TRUE(view.drawn_text().ends_with("fg"));
}

// ---- places --------------------------------------------------------------------------------

TEST_F(QtLongTextTest, PlacesKnowNothingOfTheBreaks) {
    for (const std::string& text : texts()) {
        draw(text);
        const int units = static_cast<int>(widget_lines(text).size());
        for (int place = 0; place <= units; ++place)
            ASSERT_EQ(view.units_at(view.document_position(place)), place) << text;
        EXPECT_EQ(view.document_position(units + 1000), view.document()->characterCount() - 1);
        // The character at a place is the text's own.
        const QString plain = widget_lines(text);
        for (int place = 0; place < units; ++place) {
            const QChar seen = view.document()->characterAt(view.document_position(place));
            const QChar expected =
                plain[place] == u'\n' ? QChar(QChar::ParagraphSeparator) : plain[place];
            ASSERT_EQ(seen, expected) << text << " " << place;
        }
    }
}

TEST_F(QtLongTextTest, BothSidesOfABreakThatWasPutInAreOnePlace) {
    draw(repeated("x", 300));
    const QTextBlock second = view.document()->findBlockByNumber(1);
    EXPECT_EQ(view.units_at(second.position()), view.units_at(second.position() - 1));
}

TEST_F(QtLongTextTest, TheArrowsGoCharacterByCharacter) {
    const std::string text = repeated("x", 150) + "\r\n" + repeated("下", 70);
    draw(text);
    view.moveCursor(QTextCursor::Start);
    const int units = static_cast<int>(widget_lines(text).size());
    const auto press = [&](int key) {
        QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier);
        view.act_on(event);
        return view.units_at(view.textCursor().position());
    };
    // A read-only box scrolls by its arrows, unless its text is selected by them.
    ASSERT_TRUE(view.textInteractionFlags() & Qt::TextSelectableByKeyboard);
    for (int place = 1; place <= units; ++place) ASSERT_EQ(press(Qt::Key_Right), place);
    for (int place = units - 1; place >= 0; --place) ASSERT_EQ(press(Qt::Key_Left), place);
}

// ---- copying ----------------------------------------------------------------------------------

TEST_F(QtLongTextTest, ACopyHasTheTextsOwnLineEndsAndNoOther) {
    for (const std::string& text : texts()) {
        if (text.empty() || text.find('\x01') != std::string::npos) continue;
        draw(text);
        view.selectAll();
        EXPECT_EQ(copied(), widget_lines(text)) << text;
    }
}

TEST_F(QtLongTextTest, APieceIsCopiedWhereverItBeginsAndEnds) {
    const std::string text = repeated("0123456789", 14) + "\r\n\r\n" + repeated("abcdefghi", 13);
    draw(text);
    const QString plain = widget_lines(text);
    for (int from = 0; from < plain.size(); from += 7)
        for (int to = from + 1; to <= plain.size(); to += 11) {
            select(from, to);
            ASSERT_EQ(copied(), plain.mid(from, to - from)) << from << " to " << to;
        }
}

// ---- what it costs ------------------------------------------------------------------------------

TEST_F(QtLongTextTest, WhatIsAddedChangesTheLastRowAlone) {
    std::string text = hexadecimal(20000);
    draw(text);
    int removed = 0;
    int added = 0;
    QObject::connect(view.document(), &QTextDocument::contentsChange, &view,
                     [&](int, int gone, int come) {
                         removed += gone;
                         added += come;
                     });
    for (int i = 0; i < 100; ++i) {
        const std::size_t before = text.size();
        text += "5A ";
        view.draw_text(text, before);
    }
    EXPECT_LT(removed, 3 * view.blockCount() / 10);
    EXPECT_LT(added, 3 * 100 + 100);
    EXPECT_EQ(view.drawn_text(), text);
}

// ---- in the window ------------------------------------------------------------------------------

class QtReceivedTextTest : public DrawnWindow {
  protected:
    QtReceivedTextTest() {
        tool.window.resize(1280, 800);
        static_cast<QTabBar*>(widget(screen.TabStrip2))->setCurrentIndex(4);
        settle();
    }
    LongTextView* box() { return dynamic_cast<LongTextView*>(widget(screen.texReceive)); }
    void append(std::string_view text) {
        screen.texReceive.Text += text;
        caret_to_end(screen.texReceive);
        settle();
    }
    void expect_as_the_record() {
        const Control seen = drawn(screen.texReceive);
        EXPECT_EQ(seen.Text, screen.texReceive.Text);
        EXPECT_EQ(seen.SelStart, screen.texReceive.SelStart);
        EXPECT_EQ(seen.SelLength, screen.texReceive.SelLength);
    }
    bool caret_in_sight() {
        return box()->viewport()->rect().contains(box()->cursorRect().center());
    }
};

TEST_F(QtReceivedTextTest, TheReceivedTextIsALongText) {
    ASSERT_NE(box(), nullptr);
    EXPECT_FALSE(box()->horizontalScrollBar()->isVisible());
}

TEST_F(QtReceivedTextTest, TheEndStaysInSightWhileTextArrivesAndIsTrimmed) {
    for (int i = 0; i < 30; ++i) {
        append(hexadecimal(900));
        EXPECT_TRUE(caret_in_sight()) << i;
    }
    expect_as_the_record();
    std::string& text = screen.texReceive.Text;
    text = text.substr(text.size() - 30720);
    append("温度\r\n");
    expect_as_the_record();
    EXPECT_TRUE(caret_in_sight());
    text.clear();
    append("");
    expect_as_the_record();
    append("again");
    expect_as_the_record();
}

TEST_F(QtReceivedTextTest, TheOperatorsSelectionIsInTheRecordAndSurvivesANewWidth) {
    append(repeated("温度", 500) + "\r\n" + hexadecimal(500));
    QTextCursor cursor(box()->document());
    cursor.setPosition(box()->document_position(700));
    cursor.setPosition(box()->document_position(1500), QTextCursor::KeepAnchor);
    box()->setTextCursor(cursor);
    EXPECT_EQ(screen.texReceive.SelStart, 700);
    EXPECT_EQ(screen.texReceive.SelLength, 801) << "CR and LF are two";
    for (const int width : {800, 1600, 1280}) {
        const int rows = box()->blockCount();
        tool.window.resize(width, 800);
        settle();
        EXPECT_NE(box()->blockCount(), rows);
        EXPECT_EQ(screen.texReceive.SelStart, 700);
        EXPECT_EQ(screen.texReceive.SelLength, 801);
        expect_as_the_record();
    }
}

TEST_F(QtReceivedTextTest, ANewWidthKeepsThePlaceInTheText) {
    append(hexadecimal(5000));
    tool.window.resize(1000, 800);
    settle();
    EXPECT_TRUE(caret_in_sight());
    box()->verticalScrollBar()->setValue(40);
    const QTextCursor top = box()->cursorForPosition({2, 2});
    const int before = box()->units_at(top.block().position());
    tool.window.resize(1280, 800);
    settle();
    const QTextBlock now = box()->cursorForPosition({2, 2}).block();
    EXPECT_LE(box()->units_at(now.position()), before);
    EXPECT_GE(box()->units_at(now.position()) + now.length(), before);
}

TEST_F(QtReceivedTextTest, ANewWidthLeavesThePlaceThatTheLogicHasSetMeanwhile) {
    append(hexadecimal(1000));
    screen.texReceive.Text += hexadecimal(1000);
    caret_to_end(screen.texReceive);
    const int rows = box()->blockCount();
    tool.window.resize(1000, 800);
    QCoreApplication::processEvents();
    ASSERT_NE(box()->blockCount(), rows);
    EXPECT_EQ(screen.texReceive.SelStart, 6000);
    settle();
    expect_as_the_record();
}

TEST_F(QtReceivedTextTest, ALargerFontHasOtherRows) {
    append(hexadecimal(1000));
    const int rows = box()->blockCount();
    QFont font = box()->font();
    font.setPointSizeF(font.pointSizeF() * 1.5);
    box()->setFont(font);
    settle();
    EXPECT_GT(box()->blockCount(), rows);
    expect_as_the_record();
}

TEST_F(QtReceivedTextTest, WhatTheLogicSelectsIsSelected) {
    append(repeated("下载0123456789", 40) + "\r\nend");
    screen.texReceive.SelStart = 100;
    screen.texReceive.SelLength = 200;
    settle();
    EXPECT_EQ(box()->textCursor().selectionStart(), box()->document_position(100));
    EXPECT_EQ(box()->textCursor().selectionEnd(), box()->document_position(300));
    expect_as_the_record();
}

}  // namespace
}  // namespace vkm::test
