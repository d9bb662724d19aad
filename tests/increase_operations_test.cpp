// The numbering and the record of the tool: screen, settings, image and view.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "image/buffer_view.h"
#include "image/image_files.h"
#include "image_world.h"
#include "increase/auto_increase.h"
#include "increase/number_sequence.h"

namespace vkm::test {
namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr const char* address_too_high = "自动增量低位地址太大";
constexpr const char* address_too_low = "自动增量低位地址太小或字节数太长";
constexpr const char* program_title = "设置程序文件自动增量";
constexpr const char* data_title = "设置数据文件自动增量";

// Both sets are alike but for their names.
struct NumberWorld : ImageWorld {
    explicit NumberWorld(bool of_program = true, std::string_view model = "VKM47H51RB")
        : ImageWorld(model), program_set(of_program) {
        frm.screen.optAuto_Increase[1].Value = 1;
        frm.screen.optData_Auto_Increase[1].Value = 1;
    }

    Auto_Increase_Set& set() {
        return program_set ? frm.increase.Auto_Increase : frm.increase.Data_Auto_Increase;
    }
    Image_Buffer& image() { return program_set ? program() : data(); }
    std::array<Control, 4>& fields() {
        return program_set ? frm.screen.texAuto_Increase : frm.screen.texData_Auto_Increase;
    }
    std::array<Control, 3>& formats() {
        return program_set ? frm.screen.optAuto_Increase : frm.screen.optData_Auto_Increase;
    }
    Control& box() {
        return program_set ? frm.screen.cheAuto_Increase : frm.screen.cheData_Auto_Increase;
    }
    Control& bar() { return frm.screen.vscFile[program_set ? 0 : 1]; }
    Control& view() { return program_set ? frm.screen.txtBuffer2 : frm.screen.tetDataFlash2; }

    void type(const std::string& address, const std::string& length, const std::string& next,
              const std::string& increase = "1", std::size_t numeral = 1) {
        fields()[0].Text = address;
        fields()[1].Text = length;
        fields()[2].Text = next;
        fields()[3].Text = increase;
        for (std::size_t i = 0; i < 3; ++i) formats()[i].Value = i == numeral;
    }

    void click(bool checked) {
        box().Value = checked ? 1 : 0;
        program_set ? cheAuto_Increase(frm) : cheData_Auto_Increase(frm);
    }

    Bytes bytes(std::size_t first, std::size_t count) {
        const auto begin = image().Bytes.begin() + static_cast<std::ptrdiff_t>(first);
        return {begin, begin + static_cast<std::ptrdiff_t>(count)};
    }

    bool fields_free() {
        int free = 0;
        for (const Control& field : fields()) free += field.Enabled;
        for (const Control& format : formats()) free += format.Enabled;
        EXPECT_TRUE(free == 0 || free == 7) << free;
        return free == 7;
    }

    std::string stored(const std::string& key) {
        const auto found =
            settings.on_disk.find({program_set ? "Auto_Increase" : "Data_Auto_Increase", key});
        return found == settings.on_disk.end() ? "none" : found->second;
    }

    const bool program_set;
};

// ---- reading the screen ----------------------------------------------------------

TEST(ReadNumbering, TakesTheFieldsIntoBothRecords) {
    for (const bool of_program : {true, false}) {
        SCOPED_TRACE(of_program);
        NumberWorld world(of_program);
        world.type("1f3a", "12", "  0042 ", "-7", 2);
        Read_Auto_Increase(world.frm);
        EXPECT_EQ(world.fields()[0].Text, "1F3A");
        EXPECT_EQ(world.set().Address, 0x1F3A);
        EXPECT_EQ(world.set().Length, 12);
        EXPECT_EQ(world.set().Next_Value, "0042");
        EXPECT_EQ(world.set().Increase, -7);
        EXPECT_EQ(world.set().Numeral, 2);
    }
}

TEST(ReadNumbering, TakesTheLastFiveDigitsOfTheAddress) {
    const std::pair<const char*, std::int32_t> rows[] = {
        {"", 0},
        {"3", 3},
        {" 7fff ", 0x7FFF},
        {"12000", 0x12000},
        {"FFFFF", 0xFFFFF},
        {"ABC12345", 0x12345},
        {"xyz", 0},
    };
    NumberWorld world;
    for (const auto& [text, address] : rows) {
        world.fields()[0].Text = text;
        Read_Auto_Increase(world.frm);
        EXPECT_EQ(world.set().Address, address) << text;
    }
}

TEST(ReadNumbering, ShowsTheNumberThatA16BitFieldCanHold) {
    NumberWorld world;
    world.type("FF", "40000", "1", "-99999");
    Read_Auto_Increase(world.frm);
    EXPECT_EQ(world.set().Length, 32767);
    EXPECT_EQ(world.fields()[1].Text, "32767");
    EXPECT_EQ(world.set().Increase, -32768);
    EXPECT_EQ(world.fields()[3].Text, "-32768");
    world.type("FF", "many", "1", "32767");
    Read_Auto_Increase(world.frm);
    EXPECT_EQ(world.set().Length, 0);
    EXPECT_EQ(world.fields()[1].Text, "many");
    EXPECT_EQ(world.set().Increase, 32767);
}

TEST(ReadNumbering, HappensBeforeEachRedraw) {
    NumberWorld world;
    world.type("3f", "4", "77");
    vscFile_Change(world.frm, 1);  // of the other view
    EXPECT_EQ(world.set().Address, 0x3F);
    EXPECT_EQ(world.set().Next_Value, "77");
    EXPECT_EQ(world.fields()[0].Text, "3F");
}

// ---- the range check ---------------------------------------------------------------

struct Limit {
    std::int16_t family;
    bool program;
    std::int32_t highest;
};

TEST(CheckNumbering, TakesAddressesUpToTheEndOfTheMemory) {
    constexpr std::int32_t AP_End = 0x1FFF;
    constexpr std::int32_t Data_End = 0x37FF;
    std::vector<Limit> limits;
    for (const std::int16_t family : std::vector<std::int16_t>{0, 1, 2, 3, 4, 6}) {
        limits.push_back({family, true, family < 2 ? AP_End : Data_End});
        limits.push_back({family, false, Data_End});
    }
    for (const Limit& limit : limits) {
        SCOPED_TRACE("family " + std::to_string(limit.family));
        NumberWorld world(limit.program);
        MCU_Record& model = world.frm.catalogue.MCU_Info;
        model.MCU_Family = limit.family;
        model.AP_End = AP_End;
        model.Data_Start = 0x2000;  // the limit isn't counted from there
        model.Data_End = Data_End;
        world.set().Length = 4;
        world.set().Address = limit.highest;
        EXPECT_EQ(Check_Auto_Increase(world.frm, world.set()), 0);
        EXPECT_TRUE(world.set().Active);
        EXPECT_TRUE(world.boxes().empty());

        world.set().Active = false;
        world.set().Address = limit.highest + 1;
        EXPECT_NE(Check_Auto_Increase(world.frm, world.set()), 0);
        EXPECT_FALSE(world.set().Active);
        ASSERT_EQ(world.boxes().size(), 1u);
        EXPECT_EQ(world.boxes()[0].text, address_too_high);
        EXPECT_EQ(world.boxes()[0].title, "");
        EXPECT_EQ(world.boxes()[0].kind, BoxKind::text);
    }
}

TEST(CheckNumbering, RefusesANumberThatWouldBeginBelowTheImage) {
    for (const bool of_program : {true, false}) {
        NumberWorld world(of_program);
        for (const std::int16_t length : std::vector<std::int16_t>{1, 4, 10}) {
            world.set().Length = length;
            world.set().Address = length - 1;
            EXPECT_EQ(Check_Auto_Increase(world.frm, world.set()), 0) << length;
        }
        EXPECT_TRUE(world.boxes().empty());
        world.set().Active = false;
        world.set().Length = 4;
        world.set().Address = 2;
        EXPECT_NE(Check_Auto_Increase(world.frm, world.set()), 0);
        EXPECT_FALSE(world.set().Active);
        ASSERT_EQ(world.boxes().size(), 1u);
        EXPECT_EQ(world.boxes()[0].text, address_too_low);
        EXPECT_EQ(world.boxes()[0].title, "");
    }
}

TEST(CheckNumbering, LeavesAnActiveSetActiveWhenItFails) {
    NumberWorld world;
    world.set().Active = true;
    world.set().Address = 0x12000;
    EXPECT_NE(Check_Auto_Increase(world.frm, world.set()), 0);
    EXPECT_TRUE(world.set().Active);
}

TEST(CheckNumbering, TellsTheSetsApartByTheirNamesInAnyCase) {
    NumberWorld world;
    world.frm.catalogue.MCU_Info.MCU_Family = 0;
    world.frm.catalogue.MCU_Info.AP_End = 0xFFF;
    world.frm.catalogue.MCU_Info.Data_End = 0x1FFF;
    world.frm.increase.Auto_Increase.Set_Name = "Ap_auto_Increase";
    world.frm.increase.Auto_Increase.Address = 0x1000;
    world.frm.increase.Data_Auto_Increase.Address = 0x1000;
    EXPECT_NE(Check_Auto_Increase(world.frm, world.frm.increase.Auto_Increase), 0);
    EXPECT_EQ(Check_Auto_Increase(world.frm, world.frm.increase.Data_Auto_Increase), 0);
}

// ---- patching ------------------------------------------------------------------------

TEST(PatchNumber, WritesBigEndianEndingAtTheAddress) {
    struct Row {
        std::int32_t numeral;
        Bytes bytes;
    };
    const Row rows[] = {{0, {0x00, 0x00, 0x04, 0xD2}},
                        {1, {0x00, 0x00, 0x12, 0x34}},
                        {2, {0x31, 0x32, 0x33, 0x34}}};
    for (const bool of_program : {true, false})
        for (const Row& row : rows) {
            NumberWorld world(of_program);
            Fill_Bytes(0xEE, world.program().Bytes);
            Fill_Bytes(0xEE, world.data().Bytes);
            world.set().Address = 0x3FFF;
            world.set().Length = 4;
            world.set().Next_Value = "1234";
            world.set().Numeral = row.numeral;
            Patch_Auto_Increase(world.frm, world.set());
            EXPECT_EQ(world.bytes(0x3FFC, 4), row.bytes);
            EXPECT_EQ(world.bytes(0x3FFB, 1), Bytes{0xEE});
            EXPECT_EQ(world.bytes(0x4000, 1), Bytes{0xEE});
            // Nothing in the other image.
            const Image_Buffer& other = of_program ? world.data() : world.program();
            EXPECT_EQ(other.Bytes, Bytes(other.Bytes.size(), 0xEE));
            EXPECT_TRUE(world.boxes().empty());
        }
}

TEST(PatchNumber, ReachesDownToAddress0) {
    NumberWorld world;
    world.set().Address = 3;
    world.set().Length = 4;
    world.set().Next_Value = "12345678";
    world.set().Numeral = 1;
    Patch_Auto_Increase(world.frm, world.set());
    EXPECT_EQ(world.bytes(0, 5), (Bytes{0x12, 0x34, 0x56, 0x78, 0}));
}

TEST(PatchNumber, TellsWhatIsWrongUnderTheTitleOfItsSetAndLeavesTheImage) {
    struct Row {
        const char* next;
        std::int16_t length;
        std::int32_t numeral;
        const char* text;
    };
    const Row rows[] = {
        {"12a", 4, 1, " '下一个值' 应输入10进制数"},
        {"1 2", 4, 0, " '下一个值' 应输入10进制数"},
        {"2147483648", 4, 0, "下一值必须小于 2147483648。"},
        {"256", 1, 0, "自动增量字节数太小"},
        {"100", 1, 1, "自动增量字节数太小"},
        {"10", 1, 2, "自动增量字节数太小"},
        {"1", 5, 0, "选择 16进制时，字节数必须小于或等于 4。"},
        {"1", 11, 1, "字节数必须小于或等于 10。"},
        {"1", 11, 2, "字节数必须小于或等于 10。"},
    };
    for (const bool of_program : {true, false})
        for (const Row& row : rows) {
            SCOPED_TRACE(row.text);
            NumberWorld world(of_program);
            Fill_Bytes(0xEE, world.image().Bytes);
            const Bytes before = world.image().Bytes;
            world.set().Active = true;
            world.set().Address = 0x100;
            world.set().Length = row.length;
            world.set().Next_Value = row.next;
            world.set().Numeral = row.numeral;
            Patch_Auto_Increase(world.frm, world.set());
            ASSERT_EQ(world.boxes().size(), 1u);
            EXPECT_EQ(world.boxes()[0].text, row.text);
            EXPECT_EQ(world.boxes()[0].title, of_program ? program_title : data_title);
            EXPECT_EQ(world.boxes()[0].kind, BoxKind::text);
            EXPECT_EQ(world.image().Bytes, before);
            EXPECT_TRUE(world.set().Active);
        }
}

TEST(PatchNumber, PassesOverWhatLiesOutsideTheImage) {
    for (const std::int32_t beyond : {0, 1, 2, 100}) {
        NumberWorld world(false, "VKM27J032");  // its data memory ends at EFFF
        const auto size = static_cast<std::int32_t>(world.image().Bytes.size());
        EXPECT_EQ(size, 0x8001);
        world.set().Address = size - 1 + beyond;
        world.set().Length = 2;
        world.set().Next_Value = "1234";
        world.set().Numeral = 1;
        EXPECT_EQ(Check_Auto_Increase(world.frm, world.set()), 0);
        Patch_Auto_Increase(world.frm, world.set());
        EXPECT_TRUE(world.boxes().empty());
        const Bytes last = world.bytes(0x7FFF, 2);
        EXPECT_EQ(last, beyond == 0   ? (Bytes{0x12, 0x34})
                        : beyond == 1 ? (Bytes{0, 0x12})
                                      : (Bytes{0, 0}));
        Refresh_Buffer_View(world.frm, world.image(), world.set());
        Show_Auto_Increase(world.frm, world.set());
    }
    NumberWorld world;
    world.set().Address = 0;
    world.set().Length = 3;
    world.set().Next_Value = "123456";
    world.set().Numeral = 1;
    Patch_Auto_Increase(world.frm, world.set());  // unchecked, from -2 on
    EXPECT_EQ(world.bytes(0, 2), (Bytes{0x56, 0}));
}

// ---- moving on ---------------------------------------------------------------------------

TEST(AdvanceNumber, OfAnInactiveSetDoesNothing) {
    NumberWorld world;
    world.type("FF", "4", "41");
    Read_Auto_Increase(world.frm);
    Advance_Auto_Increase(world.frm, world.set());
    EXPECT_EQ(world.fields()[2].Text, "41");
    world.set().Active = true;
    Advance_Auto_Increase(world.frm, world.set());
    EXPECT_EQ(world.fields()[2].Text, "00000042");
    EXPECT_EQ(world.set().Next_Value, "00000042");  // read back from the screen
}

TEST(AdvanceNumbers, PatchesShowsAndSavesTheNextNumberOfEachActiveSet) {
    for (const bool of_program : {true, false}) {
        SCOPED_TRACE(of_program);
        NumberWorld world(of_program);
        world.load(world.image(), "/a.bin", pattern(0x40));
        world.type("1f", "2", "41", "2");
        world.click(true);
        ASSERT_TRUE(world.set().Active);
        EXPECT_EQ(world.bytes(0x1E, 2), (Bytes{0x00, 0x41}));
        const int flushes = world.settings.flushes;
        world.frm.screen.Focus_Request = {};
        Advance_Numbers(world.frm);
        EXPECT_EQ(world.fields()[2].Text, "0043");
        EXPECT_EQ(world.bytes(0x1E, 2), (Bytes{0x00, 0x43}));
        EXPECT_EQ(world.view().Text.substr(4 + 60 + 10 + 14 * 3, 5), "00 43");
        EXPECT_EQ(world.stored("next_value"), "0043");
        EXPECT_GT(world.settings.flushes, flushes);
        EXPECT_TRUE(world.set().Active);
        EXPECT_FALSE(world.fields_free());
        // The keyboard stays where it is, for the next chip.
        EXPECT_EQ(world.frm.screen.Focus_Request, "");
    }
}

TEST(AdvanceNumbers, LeavesAnInactiveSetAndANumberOfZeroAlone) {
    for (const bool active : {true, false}) {
        NumberWorld world;
        world.type("1F", "2", active ? "0000" : "41");
        world.click(true);
        world.set().Active = active;
        const int flushes = world.settings.flushes;
        Advance_Numbers(world.frm);
        EXPECT_EQ(world.fields()[2].Text, active ? "0000" : "41");
        EXPECT_EQ(world.settings.flushes, flushes);
    }
}

TEST(AdvanceNumbers, TellsANumberThatHasBecomeTooGreatAndKeepsTheImage) {
    NumberWorld world;
    world.type("1F", "4", "2147483647", "1", 0);
    world.click(true);
    const Bytes written = world.bytes(0x1C, 4);
    EXPECT_EQ(written, (Bytes{0x7F, 0xFF, 0xFF, 0xFF}));
    Advance_Numbers(world.frm);
    ASSERT_EQ(world.boxes().size(), 1u);
    EXPECT_EQ(world.boxes()[0].text, "下一值必须小于 2147483648。");
    EXPECT_EQ(world.boxes()[0].title, program_title);
    EXPECT_EQ(world.bytes(0x1C, 4), written);
    EXPECT_EQ(world.fields()[2].Text, "02147483648");
    EXPECT_EQ(world.stored("next_value"), "02147483648");
    EXPECT_TRUE(world.set().Active);
}

TEST(AdvanceNumbers, TakesTheProgramSetFirst) {
    NumberWorld world;
    for (auto* fields :
         {&world.frm.screen.texAuto_Increase, &world.frm.screen.texData_Auto_Increase}) {
        (*fields)[0].Text = "1F";
        (*fields)[1].Text = "1";
        (*fields)[2].Text = "98";
        (*fields)[3].Text = "-99";  // the next number is none
    }
    for (auto* set : {&world.frm.increase.Auto_Increase, &world.frm.increase.Data_Auto_Increase})
        set->Active = true;
    Read_Auto_Increase(world.frm);
    Advance_Numbers(world.frm);
    ASSERT_EQ(world.boxes().size(), 2u);
    EXPECT_EQ(world.boxes()[0].title, program_title);
    EXPECT_EQ(world.boxes()[1].title, data_title);
}

// ---- settings -------------------------------------------------------------------------------

TEST(NumberingSettings, HaveTheirDefaults) {
    for (const bool of_program : {true, false}) {
        NumberWorld world(of_program);
        world.type("x", "x", "x", "x", 0);
        Load_Auto_Increase_Settings(world.frm);
        EXPECT_EQ(world.fields()[0].Text, "FFFF");
        EXPECT_EQ(world.fields()[1].Text, "8");
        EXPECT_EQ(world.fields()[2].Text, "0000");
        EXPECT_EQ(world.fields()[3].Text, "1");
        EXPECT_EQ(world.formats()[0].Value, 0);
        EXPECT_EQ(world.formats()[1].Value, 1);
        EXPECT_EQ(world.formats()[2].Value, 0);
    }
}

TEST(NumberingSettings, ComeBackAsTheyWereSaved) {
    for (const bool of_program : {true, false}) {
        NumberWorld world(of_program);
        world.type("12AB", "6", "00123", "-3", 2);
        Save_Auto_Increase_Settings(world.frm);
        EXPECT_EQ(world.stored("address"), "12AB");
        EXPECT_EQ(world.stored("Length"), "6");
        EXPECT_EQ(world.stored("next_value"), "00123");
        EXPECT_EQ(world.stored("Increase"), "-3");
        EXPECT_EQ(world.stored("numeral_system"), "2");
        // The other set's stand in a section of their own.
        EXPECT_EQ(world.settings.on_disk.at(
                      {of_program ? "Data_Auto_Increase" : "Auto_Increase", "address"}),
                  "FFFF");

        NumberWorld next(of_program);
        next.settings.values = next.settings.on_disk = world.settings.on_disk;
        Load_Auto_Increase_Settings(next.frm);
        EXPECT_EQ(next.fields()[0].Text, "12AB");
        EXPECT_EQ(next.fields()[1].Text, "6");
        EXPECT_EQ(next.fields()[2].Text, "00123");
        EXPECT_EQ(next.fields()[3].Text, "-3");
        EXPECT_EQ(next.formats()[2].Value, 1);
        EXPECT_EQ(next.formats()[1].Value, 0);
    }
}

TEST(NumberingSettings, AFormatOutOfRangeIsHexadecimal) {
    for (const bool of_program : {true, false})
        for (const char* stored : {"-1", "3", "99999", "-2147483648", ""}) {
            SCOPED_TRACE(stored);
            NumberWorld world(of_program);
            world.settings.preset(of_program ? "Auto_Increase" : "Data_Auto_Increase",
                                  "numeral_system", stored);
            Load_Auto_Increase_Settings(world.frm);
            EXPECT_EQ(world.formats()[0].Value, 1);
            EXPECT_EQ(world.formats()[1].Value, 0);
            EXPECT_EQ(world.formats()[2].Value, 0);
        }
}

TEST(NumberingSettings, HoldTheNumberThatThisBenchHasComeTo) {
    NumberWorld world;
    EXPECT_EQ(last_saved_number(world.frm, world.set()), "0000");
    world.type("FF", "4", "41");
    world.click(true);
    EXPECT_EQ(last_saved_number(world.frm, world.set()), "41");
    Advance_Numbers(world.frm);
    EXPECT_EQ(last_saved_number(world.frm, world.set()), "00000042");
    EXPECT_EQ(last_saved_number(world.frm, world.frm.increase.Data_Auto_Increase), "0000");
}

TEST(NumbersBehind, AreSavedWithoutAFlushForTheActiveSetsThatCountUp) {
    NumberWorld world;
    world.type("FF", "4", "41", "3");
    world.click(true);
    const int flushes = world.settings.flushes;
    Note_Numbers_Behind(world.frm);
    EXPECT_EQ(world.settings.values.at({"Auto_Increase", "next_value"}), "00000044");
    EXPECT_EQ(world.settings.values.at({"Data_Auto_Increase", "next_value"}), "0000");
    EXPECT_EQ(world.stored("next_value"), "41");
    EXPECT_EQ(world.settings.flushes, flushes);
    EXPECT_EQ(world.fields()[2].Text, "41");
    // What is noted is what the step behind the good chip comes to.
    Advance_Numbers(world.frm);
    EXPECT_EQ(world.fields()[2].Text, "00000044");
}

// ---- the click
// -----------------------------------------------------------------------------------

TEST(NumberingClick, ChecksSavesPatchesAndShowsTheNumber) {
    for (const bool of_program : {true, false}) {
        SCOPED_TRACE(of_program);
        NumberWorld world(of_program);
        world.load(world.image(), "/a.bin", pattern(0x800));
        world.type("5fe", "3", "123456");
        const int writes = world.settings.disk_writes;
        world.click(true);
        EXPECT_TRUE(world.set().Active);
        EXPECT_EQ(world.box().Value, 1);
        EXPECT_FALSE(world.fields_free());
        EXPECT_EQ(world.fields()[0].Text, "5FE");
        EXPECT_EQ(world.stored("address"), "5FE");
        EXPECT_EQ(world.stored("next_value"), "123456");
        EXPECT_EQ(world.settings.disk_writes, writes + 1);
        EXPECT_EQ(world.bytes(0x5FC, 3), (Bytes{0x12, 0x34, 0x56}));
        // It stands in the fourth row of the page, and is selected.
        EXPECT_EQ(world.bar().Value, 0x5F - 3);
        EXPECT_EQ(world.view().SelStart, 4 + 3 * 60 + 10 + 12 * 3);
        EXPECT_EQ(world.view().Text.substr(static_cast<std::size_t>(world.view().SelStart),
                                           static_cast<std::size_t>(world.view().SelLength)),
                  "12 34 56");
        EXPECT_TRUE(world.boxes().empty());
    }
}

TEST(NumberingClick, OffFreesTheFieldsAndEndsTheNumbering) {
    for (const bool of_program : {true, false}) {
        NumberWorld world(of_program);
        world.load(world.image(), "/a.bin", pattern(0x100));
        world.type("5F", "3", "123456");
        world.click(true);
        world.click(false);
        EXPECT_FALSE(world.set().Active);
        EXPECT_TRUE(world.fields_free());
        // The number stays in the image.
        EXPECT_EQ(world.bytes(0x5D, 3), (Bytes{0x12, 0x34, 0x56}));
    }
}

TEST(NumberingClick, ThatFailsTheCheckStaysCheckedAndPatchesNothing) {
    for (const bool of_program : {true, false})
        for (const bool too_high : {true, false}) {
            NumberWorld world(of_program);
            world.load(world.image(), "/a.bin", pattern(0x100));
            const Bytes before = world.image().Bytes;
            world.type(too_high ? "11FFF" : "1", "4", "123456");
            world.set().Active = true;  // of a click before
            const int flushes = world.settings.flushes;
            world.click(true);
            ASSERT_EQ(world.boxes().size(), 1u);
            EXPECT_EQ(world.boxes()[0].text, too_high ? address_too_high : address_too_low);
            EXPECT_EQ(world.boxes()[0].title, "");
            EXPECT_EQ(world.box().Value, 1);
            EXPECT_FALSE(world.fields_free());
            EXPECT_FALSE(world.set().Active);
            EXPECT_EQ(world.image().Bytes, before);
            EXPECT_EQ(world.settings.flushes, flushes);
            EXPECT_EQ(world.stored("next_value"), "none");
            EXPECT_EQ(world.image().Image_High, 0xFF);
        }
}

TEST(NumberingClick, WithANumberThatCantBeWrittenStaysActive) {
    NumberWorld world;
    world.load(world.program(), "/a.bin", pattern(0x100));
    const Bytes before = world.image().Bytes;
    world.type("5F", "1", "100");
    world.click(true);
    ASSERT_EQ(world.boxes().size(), 1u);
    EXPECT_EQ(world.boxes()[0].title, program_title);
    EXPECT_EQ(world.image().Bytes, before);
    EXPECT_TRUE(world.set().Active);
    EXPECT_EQ(world.stored("next_value"), "100");
}

TEST(NumberingClick, InALockedToolLeavesTheFieldsToTheOneWhoUnlocks) {
    for (const std::int16_t state : std::vector<std::int16_t>{1, 2, 3}) {
        NumberWorld world;
        world.type("5F", "3", "1");
        world.click(true);
        world.frm.session.UI_State = state;
        world.click(false);
        EXPECT_FALSE(world.fields_free());
        EXPECT_FALSE(world.set().Active);
        world.frm.session.UI_State = 0;
        world.click(false);
        EXPECT_TRUE(world.fields_free());
    }
}

TEST(NumberingClick, OffForAModelWithoutSuchAnImageLeavesTheFields) {
    NumberWorld world(false);
    world.type("5F", "3", "1");
    world.click(true);
    world.box().Enabled = false;
    world.click(false);
    EXPECT_FALSE(world.fields_free());
}

TEST(NumberingClick, OfOneSetLeavesTheOtherAlone) {
    NumberWorld world;
    world.frm.increase.Data_Auto_Increase.Active = true;
    world.click(true);
    world.click(false);
    EXPECT_TRUE(world.frm.increase.Data_Auto_Increase.Active);
    for (const Control& field : world.frm.screen.texData_Auto_Increase) EXPECT_TRUE(field.Enabled);
}

// ---- image bounds and scrolling
// -----------------------------------------------------------------------

TEST(NumberOutsideTheFile, WidensTheImageSoThatItIsProgrammed) {
    for (const bool of_program : {true, false}) {
        NumberWorld world(of_program);
        world.load(world.image(), "/a.bin", pattern(0x10));
        world.type("3FF", "4", "1234");
        world.click(true);
        EXPECT_EQ(world.image().Image_High, 0x3FF);
        EXPECT_EQ(world.image().Image_Low, 0);
        EXPECT_EQ(world.image().File_High, 0xF);
        EXPECT_EQ(world.bytes(0x3FC, 4), (Bytes{0, 0, 0x12, 0x34}));
    }
}

TEST(NumberBelowTheFile, WidensTheImageByOneByteMore) {
    NumberWorld world;
    world.frm.screen.txtAP_FileStart.Text = "0200";
    world.load(world.program(), "/a.bin", pattern(0x10));
    world.type("1FF", "4", "1234");
    world.click(true);
    EXPECT_EQ(world.program().Image_Low, 0x1FB);
    EXPECT_EQ(world.program().Image_High, 0x20F);
}

TEST(NumberAtTheStart, NeverTakesTheImageBelowZero) {
    NumberWorld world;
    world.frm.screen.txtAP_FileStart.Text = "0200";
    world.load(world.program(), "/a.bin", pattern(0x10));
    world.type("3", "4", "1234");
    world.click(true);
    EXPECT_TRUE(world.boxes().empty());
    EXPECT_EQ(world.program().Image_Low, 0);
    EXPECT_EQ(world.bytes(0, 4), (Bytes{0, 0, 0x12, 0x34}));
    EXPECT_TRUE(world.view().Text.starts_with("\r\n\r\n 000000   00 00 12 34 "));
}

TEST(ShowNumber, ScrollsItIntoTheFourthRow) {
    NumberWorld world;
    world.load(world.program(), "/a.bin", pattern(0x1000));
    const std::pair<const char*, std::int32_t> rows[] = {
        {"0FFF", 0xFF - 3}, {"0800", 0x80 - 3}, {"0037", 0}, {"0030", 0}, {"0040", 1}, {"0005", 0}};
    for (const auto& [address, value] : rows) {
        SCOPED_TRACE(address);
        world.type(address, "1", "1");
        Read_Auto_Increase(world.frm);
        Show_Auto_Increase(world.frm, world.set());
        EXPECT_EQ(world.bar().Value, value);
    }
}

TEST(ShowNumber, CountsRowsFromTheImagesLowEnd) {
    NumberWorld world;
    world.frm.screen.txtAP_FileStart.Text = "0123";
    world.load(world.program(), "/a.bin", pattern(0x1000));
    world.type("0834", "1", "1");
    Read_Auto_Increase(world.frm);
    Show_Auto_Increase(world.frm, world.set());
    EXPECT_EQ(world.bar().Value, (0x834 - 0x123) / 16 - 3);
}

}  // namespace
}  // namespace vkm::test
