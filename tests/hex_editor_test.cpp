// What the operator does in the hex view: scrolling, clicking, overwriting digits.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "image/buffer_view.h"
#include "image/image_files.h"
#include "image_world.h"
#include "session/download_session.h"
#include "text/hexadecimal.h"
#include "window/wiring.h"

namespace vkm::test {
namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr std::int32_t page_head = 4;
constexpr std::int32_t row_length = 60;

constexpr int page_up = 33;
constexpr int page_down = 34;
constexpr int up = 38;
constexpr int down = 40;

struct EditWorld : ImageWorld {
    explicit EditWorld(std::string_view model = "VKM47H516RK") : ImageWorld(model) { wire(frm); }

    Control& view(int element = 0) {
        return element == 0 ? frm.screen.txtBuffer2 : frm.screen.tetDataFlash2;
    }
    Control& bar(int element = 0) { return frm.screen.vscFile[static_cast<std::size_t>(element)]; }

    void open(std::size_t count) { load(program(), "/a.bin", pattern(count)); }

    void press(const std::string& text, int element = 0) {
        handle_event(frm, {&view(element), EventKind::KeyPress, 0, text});
    }
    void key(int code, int element = 0) {
        handle_event(frm, {&view(element), EventKind::KeyDown, code, {}});
    }
    void click_at(std::int32_t place, int element = 0) {
        view(element).SelStart = place;
        view(element).SelLength = 0;
        handle_event(frm, {&view(element), EventKind::MouseUp, 0, {}});
    }
    void scroll_to(std::int32_t value, int element = 0) {
        bar(element).Value = value;
        vscFile_Change(frm, element);
    }
    // The operator has agreed a moment ago.
    void permit() {
        frm.images.Buffer_Edit_OK = true;
        frm.timers.Timer11.Enabled = false;
    }
    std::string selected(int element = 0) {
        return view(element).Text.substr(static_cast<std::size_t>(view(element).SelStart),
                                         static_cast<std::size_t>(view(element).SelLength));
    }
};

std::int32_t place_of(std::int32_t row, std::int32_t column, std::int32_t digit = 0) {
    return page_head + row * row_length + 10 + column * 3 + digit;
}

// ---- the page -----------------------------------------------------------------------

TEST(Page, HasTheRowsThatTheBoxHasRoomForBehindTwoEmptyOnes) {
    const std::pair<std::int32_t, std::int32_t> rows[] = {{0, 62}, {-1, 62}, {1, 1},   {2, 1},
                                                          {3, 1},  {12, 10}, {64, 62}, {500, 62}};
    for (const int element : {0, 1})
        for (const auto& [lines, shown] : rows) {
            SCOPED_TRACE(lines);
            EditWorld world("VKM27J032");
            world.load(element == 0 ? world.program() : world.data(), "/a.bin", pattern(0x1000));
            world.view(element).Rows = lines;
            handle_event(world.frm, {&world.view(element), EventKind::Resize, 0, {}});
            const std::string& text = world.view(element).Text;
            // A page ends two bytes short of its 62nd row.
            EXPECT_EQ(text.size(), static_cast<std::size_t>(page_head + shown * row_length -
                                                            (shown == 62 ? 6 : 0)));
            EXPECT_EQ(world.bar(element).LargeChange, shown);
        }
}

TEST(Page, IsTheSameInBothBoxesOfAView) {
    EditWorld world;
    world.open(0x1000);
    world.scroll_to(7);
    EXPECT_TRUE(world.view().Text.starts_with("\r\n\r\n 000070   "));
    EXPECT_EQ(world.frm.screen.txtBuffer.Text, world.view().Text);
    EXPECT_EQ(world.frm.screen.txtBuffer.SelStart, world.view().SelStart);
    EXPECT_EQ(world.frm.screen.txtBuffer.SelLength, world.view().SelLength);
}

TEST(Page, BelowTheImageBeginsAtItsFirstRow) {
    EditWorld world;
    world.frm.screen.txtAP_FileStart.Text = "0123";
    world.open(0x800);
    for (const std::int32_t value : {0, -1, -18, -100}) {
        world.scroll_to(value);
        EXPECT_TRUE(world.view().Text.starts_with("\r\n\r\n 000120   00 00 00 01 08 "));
    }
    world.scroll_to(1);
    EXPECT_TRUE(world.view().Text.starts_with("\r\n\r\n 000130   "));
}

// ---- the number in the page --------------------------------------------------------------

struct NumberedView {
    bool of_program;
    bool checked;
    bool active;
    bool shown;
};

TEST(Highlight, IsShownByTheBoxForTheProgramAndByTheImageForTheData) {
    const NumberedView views[] = {{true, true, true, true},   {true, true, false, true},
                                  {true, false, true, false}, {true, false, false, false},
                                  {false, true, true, true},  {false, true, false, false},
                                  {false, false, true, true}, {false, false, false, false}};
    for (const NumberedView& v : views) {
        EditWorld world("VKM27J032");
        Screen& screen = world.frm.screen;
        const int element = v.of_program ? 0 : 1;
        world.load(v.of_program ? world.program() : world.data(), "/a.bin", pattern(0x100));
        auto& fields = v.of_program ? screen.texAuto_Increase : screen.texData_Auto_Increase;
        fields[0].Text = "21";
        fields[1].Text = "4";
        (v.of_program ? screen.cheAuto_Increase : screen.cheData_Auto_Increase).Value = v.checked;
        (v.of_program ? world.frm.increase.Auto_Increase : world.frm.increase.Data_Auto_Increase)
            .Active = v.active;
        vscFile_Change(world.frm, element);
        EXPECT_EQ(world.view(element).SelStart, place_of(1, 14));
        // Across the row's end.
        EXPECT_EQ(world.view(element).SelLength, v.shown ? 4 * 3 - 1 + 12 : 0);
    }
}

TEST(Highlight, IsGoneOnAPageWithoutTheNumber) {
    EditWorld world;
    world.open(0x1000);
    world.frm.screen.texAuto_Increase[0].Text = "21";
    world.frm.screen.texAuto_Increase[1].Text = "4";
    world.frm.screen.cheAuto_Increase.Value = 1;
    world.scroll_to(0);
    EXPECT_EQ(world.view().SelLength, 23);
    world.scroll_to(2);  // its last bytes are on this page, its first are not
    EXPECT_EQ(world.view().SelLength, 0);
    world.scroll_to(1);
    EXPECT_EQ(world.view().SelLength, 23);
    world.frm.screen.texAuto_Increase[1].Text = "0";
    world.scroll_to(0);
    EXPECT_EQ(world.view().SelLength, 0);
    EXPECT_EQ(world.view().SelStart, 0);
}

// ---- clicking -------------------------------------------------------------------------------

TEST(Click, SelectsTheDigitThereOrTheNextOne) {
    for (const int element : {0, 1}) {
        EditWorld world("VKM27J032");
        world.load(element == 0 ? world.program() : world.data(), "/a.bin", pattern(0x40));
        world.click_at(place_of(1, 3, 1), element);
        EXPECT_EQ(world.view(element).SelStart, place_of(1, 3, 1));
        EXPECT_EQ(world.view(element).SelLength, 1);
        world.click_at(page_head + row_length + 3, element);  // in the address
        EXPECT_EQ(world.view(element).SelStart, place_of(1, 0));
        EXPECT_EQ(world.view(element).SelLength, 1);
        world.click_at(place_of(1, 15, 1) + 1, element);  // the blank behind the row
        EXPECT_EQ(world.view(element).SelStart, place_of(2, 0));
        world.click_at(0, element);
        EXPECT_EQ(world.view(element).SelStart, place_of(0, 0));
        world.click_at(place_of(3, 15, 1) + 1, element);  // behind the last digit of all
        EXPECT_EQ(world.view(element).SelLength, 0);
    }
}

// ---- keys that scroll ------------------------------------------------------------------------

TEST(PageKeys, ScrollByAPageInsideTheBar) {
    for (const int element : {0, 1}) {
        EditWorld world("VKM27J032");
        world.view(element).Rows = 12;
        world.load(element == 0 ? world.program() : world.data(), "/a.bin", pattern(0x400));
        ASSERT_EQ(world.bar(element).Max, 0x3F - 3);
        world.key(page_down, element);
        EXPECT_EQ(world.bar(element).Value, 10);
        EXPECT_TRUE(world.view(element).Text.starts_with("\r\n\r\n 0000A0   "));
        world.key(page_up, element);
        EXPECT_EQ(world.bar(element).Value, 0);
        world.key(page_up, element);
        EXPECT_EQ(world.bar(element).Value, 0);
        for (int i = 0; i < 9; ++i) world.key(page_down, element);
        EXPECT_EQ(world.bar(element).Value, 0x3F - 3);
        world.key(page_up, element);
        EXPECT_EQ(world.bar(element).Value, 0x3F - 3 - 10);
    }
}

TEST(ArrowKeys, ScrollAtTheEndsOfThePageAloneAndKeepTheInsertionPoint) {
    EditWorld world;
    world.view().Rows = 12;
    world.open(0x1000);
    world.bar().SmallChange = 16;
    world.scroll_to(40);
    const auto length = static_cast<std::int32_t>(world.view().Text.size());
    struct Step {
        int key;
        std::int32_t caret;
        std::int32_t moves;
    };
    const Step steps[] = {{up, 0, -16},           {up, 2, -16},       {up, 3, 0},
                          {up, length, 0},        {down, length, 16}, {down, length - 9, 16},
                          {down, length - 10, 0}, {down, 0, 0}};
    for (const Step& step : steps) {
        SCOPED_TRACE(std::to_string(step.key) + " at " + std::to_string(step.caret));
        world.scroll_to(40);
        world.view().SelStart = step.caret;
        world.view().SelLength = 0;
        world.key(step.key);
        EXPECT_EQ(world.bar().Value, 40 + step.moves);
        EXPECT_EQ(world.view().SelStart, step.caret);
    }
    // Nothing beyond the ends of the image.
    world.scroll_to(0);
    world.view().SelStart = 1;
    world.key(up);
    EXPECT_EQ(world.bar().Value, 0);
    world.scroll_to(world.bar().Max);
    world.view().SelStart = static_cast<std::int32_t>(world.view().Text.size());
    world.key(down);
    EXPECT_EQ(world.bar().Value, world.bar().Max);
}

TEST(OtherKeys, DontScroll) {
    EditWorld world;
    world.open(0x1000);
    world.scroll_to(40);
    world.view().SelStart = 0;
    for (const int code : {0, 13, 27, 32, 35, 36, 37, 39, 41, 48, 65}) world.key(code);
    EXPECT_EQ(world.bar().Value, 40);
    EXPECT_TRUE(world.boxes().empty());
}

TEST(Keys, InAnImageShorterThanAPageDoNothing) {
    EditWorld world;
    world.open(1);
    ASSERT_LT(world.bar().Max, 0);
    for (const int code : {page_up, page_down, up, down}) {
        world.view().SelStart = 0;
        world.key(code);
        EXPECT_EQ(world.bar().Value, 0);
    }
    EXPECT_EQ(world.view().Text, "\r\n\r\n 000000   01 \r\n");
}

// ---- overwriting ----------------------------------------------------------------------------

TEST(Edit, OfEachDigitOfAPageChangesThatByteAlone) {
    EditWorld world;
    world.open(0x2000);
    world.permit();
    world.scroll_to(0x55);
    const std::int32_t first = 0x550;
    Bytes expected = world.program().Bytes;
    constexpr std::string_view digits = "0123456789abcdefABCDEF";
    std::size_t turn = 0;
    for (std::int32_t i = 0; i < 990; ++i)
        for (const std::int32_t digit : {0, 1}) {
            const char typed = digits[turn++ % digits.size()];
            const std::int32_t place = place_of(i / 16, i % 16, digit);
            world.click_at(place);
            ASSERT_EQ(world.view().SelStart, place);
            ASSERT_EQ(world.view().SelLength, 1);
            world.press(std::string(1, typed));
            std::uint8_t& byte = expected[static_cast<std::size_t>(first + i)];
            const auto value = static_cast<std::uint8_t>(hex_digit(typed));
            byte = static_cast<std::uint8_t>(digit == 0 ? value * 16 + byte % 16
                                                        : byte / 16 * 16 + value);
            ASSERT_EQ(world.program().Bytes, expected) << i << " " << digit;
            ASSERT_EQ(world.view().Text.substr(static_cast<std::size_t>(place - digit), 2),
                      hex_text(byte, 2));
        }
    EXPECT_TRUE(world.boxes().empty());
    // The page that is drawn next says the same.
    const std::string edited = world.view().Text;
    world.scroll_to(0x55);
    EXPECT_EQ(world.view().Text, edited);
}

TEST(Edit, GoesOnDigitByDigitAcrossRowsToTheEndOfThePage) {
    EditWorld world;
    world.open(0x30);
    world.permit();
    world.click_at(0);
    for (int i = 0; i < 0x30; ++i) {
        ASSERT_EQ(world.view().SelLength, 1);
        world.press("a");
        ASSERT_EQ(world.view().SelLength, 1);
        world.press("5");
    }
    for (std::size_t i = 0; i < 0x30; ++i) EXPECT_EQ(world.at_address(i), 0xA5);
    EXPECT_EQ(world.at_address(0x30), 0);
    // Behind the last digit nothing is selected, and keys do nothing.
    EXPECT_EQ(world.view().SelLength, 0);
    const std::string text = world.view().Text;
    world.press("7");
    EXPECT_EQ(world.view().Text, text);
}

TEST(Edit, ReachesTheLastByteOfTheImage) {
    EditWorld world;
    world.open(0x100);
    world.permit();
    world.program().Image_High = 0x20000;  // may lie beyond the bytes
    world.bar().Max = 0x1200;
    world.scroll_to(0x1200);
    EXPECT_EQ(world.view().Text, "\r\n\r\n 012000   00 \r\n");
    world.click_at(0);
    world.press("F");
    world.press("e");
    EXPECT_EQ(world.program().Bytes.back(), 0xFE);
}

TEST(Edit, InAnImageThatBeginsInsideARowFindsItsAddresses) {
    EditWorld world;
    world.frm.screen.txtAP_FileStart.Text = "0123";
    world.open(0x20);
    world.permit();
    world.click_at(place_of(0, 3, 1));
    world.press("9");
    EXPECT_EQ(world.at_address(0x123), 0x09);
    world.press("8");
    EXPECT_EQ(world.at_address(0x124), 0x88);  // 08 before
}

TEST(Edit, InTheDataViewGoesToTheProgramImage) {
    EditWorld world("VKM27J032");
    world.open(0x40);
    world.frm.screen.cheClearDataBuffer.Value = 1;
    world.load(world.data(), "/d.bin", Bytes(0x40, 0x77));
    world.permit();
    const Bytes data = world.data().Bytes;
    Bytes program = world.program().Bytes;
    world.click_at(place_of(2, 5), 1);
    world.press("c", 1);
    program[0x25] = 0xC7;  // the pair as the data view shows it
    EXPECT_EQ(world.program().Bytes, program);
    EXPECT_EQ(world.data().Bytes, data);
    EXPECT_EQ(world.view(1).Text.substr(static_cast<std::size_t>(place_of(2, 5)), 2), "C7");
    vscFile_Change(world.frm, 1);
    EXPECT_EQ(world.view(1).Text.substr(static_cast<std::size_t>(place_of(2, 5)), 2), "77");
}

TEST(Edit, LeavesTheSumOfTheFile) {
    EditWorld world;
    world.open(0x40);
    world.permit();
    const std::int32_t sum = world.program().Sum;
    const std::string text = world.frm.screen.txtFileCheckSum.Text;
    world.click_at(0);
    world.press("F");
    ASSERT_EQ(world.at_address(0), 0xF1);
    EXPECT_EQ(world.program().Sum, sum);
    EXPECT_EQ(world.frm.screen.txtFileCheckSum.Text, text);
    EXPECT_EQ(world.program().File_High, 0x3F);
    EXPECT_EQ(world.program().Image_High, 0x3F);
}

// ---- keys that change nothing -------------------------------------------------------------------

TEST(Edit, TakesNoKeyThatIsNoHexadecimalDigit) {
    EditWorld world;
    world.open(0x40);
    world.click_at(place_of(1, 1));
    const Bytes before = world.program().Bytes;
    const std::string text = world.view().Text;
    for (const char* key :
         {"g", "G", "x", " ", "-", "\r", "\b", "/", ":", "@", "`", "", "12", "é", "０"}) {
        SCOPED_TRACE(key);
        world.press(key);
        EXPECT_EQ(world.view().SelStart, place_of(1, 1));
        EXPECT_EQ(world.view().SelLength, 1);
    }
    EXPECT_EQ(world.program().Bytes, before);
    EXPECT_EQ(world.view().Text, text);
    EXPECT_TRUE(world.boxes().empty());
}

TEST(Edit, NeedsOneSelectedDigitOfAByte) {
    struct Selection {
        std::int32_t start;
        std::int32_t length;
    };
    const Selection selections[] = {
        {place_of(1, 1), 0},      {place_of(1, 1), 2}, {place_of(1, 1) - 1, 1},
        {page_head + 60 + 3, 1},  {page_head + 60, 1}, {0, 1},
        {place_of(0, 15) + 3, 1}, {1'000'000, 1},      {-1, 1}};
    for (const Selection& selection : selections) {
        SCOPED_TRACE(selection.start);
        EditWorld world;
        world.open(0x40);
        const Bytes before = world.program().Bytes;
        const std::string text = world.view().Text;
        world.view().SelStart = selection.start;
        world.view().SelLength = selection.length;
        world.press("F");
        EXPECT_EQ(world.program().Bytes, before);
        EXPECT_EQ(world.view().Text, text);
        EXPECT_TRUE(world.boxes().empty());
        EXPECT_FALSE(world.frm.timers.Timer11.Enabled);
    }
}

// ---- permission
// -----------------------------------------------------------------------------------

TEST(EditPermission, IsAskedForWithNoAsItsDefault) {
    for (const bool english : {false, true}) {
        EditWorld world;
        world.frm.screen.Show_English = english;
        world.open(0x40);
        world.click_at(place_of(0, 0));
        const Bytes before = world.program().Bytes;
        const std::string text = world.view().Text;
        world.press("F");
        ASSERT_EQ(world.boxes().size(), 1u);
        EXPECT_EQ(world.boxes()[0].kind, BoxKind::yes_no);
        EXPECT_EQ(world.boxes()[0].text,
                  english ? "Update the buffer ?" : "Update the buffer? / 修改缓冲区内容吗?");
        EXPECT_EQ(world.program().Bytes, before);
        EXPECT_EQ(world.view().Text, text);
        EXPECT_EQ(world.selected(), "0");
        EXPECT_FALSE(world.frm.images.Buffer_Edit_OK);
        EXPECT_FALSE(world.frm.timers.Timer11.Enabled);

        world.dialogs.answer_yes();
        world.press("F");
        EXPECT_EQ(world.boxes().size(), 2u);
        EXPECT_EQ(world.at_address(0), 0xF1);
        EXPECT_TRUE(world.frm.images.Buffer_Edit_OK);
    }
}

TEST(EditPermission, IsNotGivenWithoutAFile) {
    for (const bool english : {false, true}) {
        EditWorld world;
        world.frm.screen.Show_English = english;
        world.click_at(place_of(0, 0));
        world.dialogs.answer_yes();
        world.press("F");
        ASSERT_EQ(world.boxes().size(), 2u);
        EXPECT_EQ(world.boxes()[1].kind, BoxKind::text);
        EXPECT_EQ(world.boxes()[1].text,
                  english ? " Please open file." : "    Please open file./请打开文件。    ");
        EXPECT_EQ(world.at_address(0), 0);
        EXPECT_FALSE(world.frm.images.Buffer_Edit_OK);
        EXPECT_FALSE(world.frm.timers.Timer11.Enabled);
    }
}

TEST(EditPermission, EndsTwentySecondsAfterTheLastEdit) {
    for (const auto& [ms, asked] : {std::pair{19'900, false}, std::pair{20'100, true}}) {
        SCOPED_TRACE(ms);
        EditWorld world;
        world.open(0x40);
        world.click_at(place_of(0, 0));
        world.dialogs.answer_yes();
        world.press("F");
        world.run_for(19'900);
        world.press("E");  // starts the twenty seconds anew
        EXPECT_EQ(world.boxes().size(), 1u);
        EXPECT_EQ(world.at_address(0), 0xFE);
        world.run_for(ms);
        EXPECT_EQ(world.frm.images.Buffer_Edit_OK, !asked);
        world.press("D");
        EXPECT_EQ(world.boxes().size(), asked ? 2u : 1u);
        EXPECT_EQ(world.at_address(1), asked ? 0x08 : 0xD8);
    }
}

TEST(EditPermission, EndsWithTheLoadOfAFile) {
    for (const bool data_file : {false, true}) {
        EditWorld world("VKM27J032");
        world.open(0x40);
        world.click_at(place_of(0, 0));
        world.dialogs.answer_yes();
        world.press("F");
        ASSERT_TRUE(world.frm.images.Buffer_Edit_OK);
        world.load(data_file ? world.data() : world.program(), "/b.bin", pattern(0x40));
        EXPECT_FALSE(world.frm.images.Buffer_Edit_OK);
        world.dialogs.boxes.clear();
        world.click_at(place_of(0, 4));
        world.press("E");
        EXPECT_EQ(world.boxes().size(), 1u);
        EXPECT_EQ(world.at_address(4), pattern(0x40)[4]);
    }
}

TEST(EditPermission, EndsWithTheLoadOfAProject) {
    EditWorld world;
    world.open(0x40);
    world.permit();
    world.files.add("/p.VKM", std::string_view("VER: 1.1\r\nMCU_Type: VKM47H516RK\r\n"
                                               "buffer_check_sum: 6\r\nEND\r\n010203"));
    handle_event(world.frm, {nullptr, EventKind::Drop, 0, "/p.VKM"});
    ASSERT_EQ(world.at_address(2), 3);
    ASSERT_TRUE(world.boxes().empty());
    EXPECT_FALSE(world.frm.images.Buffer_Edit_OK);
    world.click_at(place_of(0, 0));
    world.press("F");
    EXPECT_EQ(world.boxes().size(), 1u);
    EXPECT_EQ(world.at_address(0), 1);
}

TEST(EditPermission, IsHeldByEditsAlone) {
    EditWorld world;
    world.open(0x400);
    world.click_at(place_of(0, 0));
    world.dialogs.answer_yes();
    world.press("F");
    for (int i = 0; i < 21; ++i) {
        world.run_for(1000);
        world.press("x");
        world.key(page_down);
        world.click_at(place_of(0, i % 16));
    }
    EXPECT_FALSE(world.frm.images.Buffer_Edit_OK);
    EXPECT_FALSE(world.frm.timers.Timer11.Enabled);
}

// ---- beside a job
// ----------------------------------------------------------------------------------

TEST(Edit, IsRefusedWhileASessionRuns) {
    for (const int element : {0, 1}) {
        EditWorld world;
        world.open(0x400);
        world.permit();
        world.click_at(place_of(0, 0), element);
        const Bytes before = world.program().Bytes;
        const std::string text = world.view(element).Text;
        world.frm.session.Running = true;
        world.press("F", element);
        world.frm.images.Buffer_Edit_OK = false;
        world.press("F", element);
        EXPECT_EQ(world.program().Bytes, before);
        EXPECT_EQ(world.view(element).Text, text);
        EXPECT_TRUE(world.boxes().empty());
        EXPECT_TRUE(world.frm.session.Running);
        world.frm.session.Running = false;
        world.permit();
        world.press("F", element);
        EXPECT_NE(world.program().Bytes, before);
    }
}

// What may happen to the page while the question stands there.
TEST(EditQuestion, BehindWhichThePageHasChangedChangesNothing) {
    const std::function<void(EditWorld&)> changes[] = {
        [](EditWorld& world) {
            world.view().Rows = 3;
            Redraw_Page(world.frm, world.program());
        },
        [](EditWorld& world) { world.load(world.program(), "/b.bin", Bytes{1}); },
        [](EditWorld& world) { world.view().Text.clear(); },
    };
    for (const auto& change : changes) {
        EditWorld world;
        world.frm.screen.cheClearAP_Buffer.Value = 1;
        world.open(0x400);
        world.click_at(place_of(30, 5));
        ASSERT_EQ(world.view().SelLength, 1);
        world.dialogs.stays = Milliseconds(1000);
        world.dialogs.answer_yes();
        std::string text;
        Bytes bytes;
        world.at(500, [&] {
            EXPECT_EQ(world.dialogs.open_boxes, 1);
            change(world);
            text = world.view().Text;
            bytes = world.program().Bytes;
        });
        EXPECT_NO_THROW(world.press("F"));
        ASSERT_FALSE(bytes.empty());
        EXPECT_EQ(world.view().Text, text);
        EXPECT_TRUE(world.program().Bytes == bytes);
        // The answer holds no longer than one behind an edit.
        world.run_for(20'100);
        EXPECT_FALSE(world.frm.images.Buffer_Edit_OK);
    }
}

TEST(EditQuestion, LetsNoJobBeginBehindIt) {
    EditWorld world;
    world.open(0x400);
    world.click_at(place_of(0, 0));
    world.dialogs.stays = Milliseconds(1000);
    bool tried = false;
    world.at(500, [&] {
        tried = true;
        EXPECT_EQ(world.dialogs.open_boxes, 1);
        comDownload(world.frm, 0);
        EXPECT_EQ(world.frm.session.UI_State, 0);
    });
    world.press("F");
    EXPECT_TRUE(tried);
    EXPECT_TRUE(world.port.written.empty());
    EXPECT_FALSE(world.frm.session.Running);
}

}  // namespace
}  // namespace vkm::test
