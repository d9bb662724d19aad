// Texts and positions between records (UTF-8, CR LF, characters) and widgets
// (UTF-16, one line feed, code units).
#include <gtest/gtest.h>

#include "platform/qt/text_mapping.h"

namespace vkm {
namespace {

TEST(TextMapping, WidgetsGetOneLineFeedForEachBreak) {
    EXPECT_EQ(widget_lines("\r\none\r\ntwo"), QStringLiteral("\none\ntwo"));
    EXPECT_EQ(widget_lines("lone\rcarriage\nreturn"), QStringLiteral("lone\ncarriage\nreturn"));
    EXPECT_EQ(widget_lines("\r\r\n\n"), QStringLiteral("\n\n\n"));
    EXPECT_EQ(widget_lines(""), QString());
}

TEST(TextMapping, TextsComeBackAsTheyWere) {
    for (const char* text : {"", "Download", "下载 / OK", "ä€𝄞", " blanks "})
        EXPECT_EQ(from_qt(to_qt(text)), text);
}

struct Place {
    const char* text;
    std::int32_t record;  // characters, CR and LF one each
    int widget;           // code units, one for a break
};

// 𝄞 is one character and two code units.
constexpr Place places[] = {
    {"abc", 0, 0},        {"abc", 2, 2},          {"abc", 3, 3},         {"\r\nabc", 2, 1},
    {"\r\nabc", 5, 4},    {"a\r\nb\r\nc", 6, 4},  {"a\r\nb\r\nc", 7, 5}, {"下载\r\nOK", 2, 2},
    {"下载\r\nOK", 4, 3}, {"下载\r\nOK", 6, 5},   {"𝄞x", 1, 2},          {"𝄞x", 2, 3},
    {"lone\nfeed", 5, 5}, {"lone\rreturn", 5, 5},
};

TEST(TextMapping, PlacesAreTheSameInBothCounts) {
    for (const Place& place : places) {
        EXPECT_EQ(widget_position(place.text, place.record), place.widget) << place.text;
        EXPECT_EQ(record_position(place.text, place.widget), place.record) << place.text;
    }
}

TEST(TextMapping, PlacesOutsideOfTheTextAreHeldToIt) {
    EXPECT_EQ(widget_position("a\r\nb", 1000000), 3);
    EXPECT_EQ(record_position("a\r\nb", 1000000), 4);
    EXPECT_EQ(widget_position("a\r\nb", -5), 0);
    EXPECT_EQ(record_position("a\r\nb", -5), 0);
    EXPECT_EQ(widget_position("", 3), 0);
}

TEST(TextMapping, APlaceInsideOfABreakCountsAsBeforeIt) {
    EXPECT_EQ(widget_position("a\r\nb", 2), 1);
}

TEST(TextMapping, BytesThatAreNoUtf8DoNoHarm) {
    const std::string broken = "\xC3\x28\xFF\xE4\xB8";
    EXPECT_GE(widget_position(broken, 100), 0);
    EXPECT_GE(record_position(broken, 100), 0);
    EXPECT_FALSE(widget_lines(broken).isNull());
}

}  // namespace
}  // namespace vkm
