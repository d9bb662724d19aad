// What stands on the screen around a load, and what odd texts there come to.
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "image/image_files.h"
#include "image_world.h"
#include "screen/control.h"

namespace vkm::test {
namespace {

// ---- blanks behind a record ---------------------------------------------------

TEST(HexFileLines, WithTrailingBlanksFailTheirChecksumAndAreShownWithThem) {
    for (const std::string line :
         {":0100000055AA  ", ":020000001122CB ", ":0100000055AA    ", ":0100000055AA\t\t"}) {
        SCOPED_TRACE("'" + line + "'");
        for (const char* line_end : {"\n", "\r\n"}) {
            ImageWorld world;
            world.load(world.program(), "/a.hex", line + line_end + ":00000001FF" + line_end);
            ASSERT_EQ(world.boxes().size(), 1u);
            EXPECT_EQ(world.boxes()[0].text, "校验和错:\r\n\r\n" + line);
            EXPECT_EQ(world.boxes()[0].title, "/a.hex");
            EXPECT_TRUE(world.frm.images.File_Loaded);
        }
    }
    // The blanks make a longer record of it: its checksum and they are data.
    ImageWorld world;
    world.load(world.program(), "/a.hex", ":0100000055AA    \n:00000001FF\n");
    EXPECT_EQ(world.at_address(0), 0x55);
    EXPECT_EQ(world.at_address(1), 0xAA);
    EXPECT_EQ(world.program().File_High, 2);
    EXPECT_EQ(world.program().Sum, 0x55 + 0xAA);
    // One blank behind an even number of fields changes nothing.
    ImageWorld kept;
    kept.load(kept.program(), "/a.hex", ":0100000055AA \n:00000001FF\n");
    EXPECT_TRUE(kept.boxes().empty());
    EXPECT_EQ(kept.program().File_High, 0);
}

// ---- the end of the program area as it is shown ---------------------------------

TEST(ShownEnd, IsReadByItsLastFourDigitsWhateverStandsThere) {
    const std::pair<const char*, std::int32_t> texts[] = {
        {"3FFF", 0x3FFF}, {" 1fff ", 0x1FFF}, {"1FF", 0x1FF}, {"F", 0xF},  {"", 0},
        {"   ", 0},       {"92FFF", 0x2FFF},  {"xyz", 0},     {"1G00", 1}, {"9000", 0x9000},
        {"FFFF", 0xFFFF}, {"文件", 0},        {"-1", 0},
    };
    for (const auto& [text, limit] : texts) {
        SCOPED_TRACE(text);
        ImageWorld fits("VKM47W54AD");
        fits.frm.screen.txtISP_reange[1].Text = text;
        fits.load(fits.program(), "/a.bin", pattern(static_cast<std::size_t>(limit) + 1));
        EXPECT_TRUE(fits.boxes().empty());
        EXPECT_EQ(fits.program().File_High, limit);

        ImageWorld over("VKM47W54AD");
        over.frm.screen.txtISP_reange[1].Text = text;
        const std::vector<std::uint8_t> bytes = pattern(static_cast<std::size_t>(limit) + 2);
        over.load(over.program(), "/a.bin", bytes);
        EXPECT_EQ(over.boxes().size(), 1u);
        // What lies above the end is cleared up to the top of the code.
        EXPECT_EQ(over.at_address(static_cast<std::size_t>(limit)),
                  bytes[static_cast<std::size_t>(limit)]);
        const std::int32_t above = limit + 1;
        EXPECT_EQ(over.at_address(static_cast<std::size_t>(above)),
                  above < 0xE000 ? 0 : bytes[static_cast<std::size_t>(above)]);
    }
}

// ---- a box on the screen ----------------------------------------------------------

TEST(RangeBox, StandsBesideTheSumOfItsFile) {
    for (const char* path : {"/a.hex", "/a.bin"}) {
        SCOPED_TRACE(path);
        ImageWorld world("VKM47W54AD");
        world.frm.screen.txtFileCheckSum.Text = "of the file before";
        world.dialogs.stays = Milliseconds(100);
        std::string seen;
        world.at(50, [&] {
            EXPECT_EQ(world.dialogs.open_boxes, 1);
            seen = world.frm.screen.txtFileCheckSum.Text;
        });
        const std::vector<std::uint8_t> bytes(0x4010, 1);
        if (std::string(path) == "/a.hex")
            world.load(world.program(), path, hex_file(0, bytes));
        else
            world.load(world.program(), path, bytes);
        EXPECT_EQ(seen, "0004010H       ");
        EXPECT_EQ(world.boxes().size(), 1u);
    }
}

// ---- refused, blank -----------------------------------------------------------------

TEST(RefusedHexFile, CountsAsAFileAndSwitchesTheNumberingOff) {
    for (bool program : {true, false}) {
        SCOPED_TRACE(program);
        ImageWorld world;
        world.frm.increase.Auto_Increase.Active = true;
        world.frm.increase.Data_Auto_Increase.Active = true;
        world.frm.screen.texAuto_Increase[2].Text = "0815";
        world.frm.screen.cheAuto_Increase.Value = 1;
        world.frm.screen.cheData_Auto_Increase.Value = 1;
        Image_Buffer& image = program ? world.program() : world.data();
        const std::string bad = ":0100000055AB\n";
        world.load(image, "/a.hex", bad + bad + bad);
        EXPECT_TRUE(image.Has_File);
        EXPECT_FALSE(world.frm.images.File_Loaded);
        EXPECT_EQ(world.frm.screen.cheAuto_Increase.Value, 0);
        EXPECT_EQ(world.frm.screen.cheData_Auto_Increase.Value, 0);
        EXPECT_FALSE(world.frm.increase.Auto_Increase.Active);
        EXPECT_FALSE(world.frm.increase.Data_Auto_Increase.Active);
        EXPECT_EQ(world.frm.increase.Auto_Increase.Next_Value, "0815");
        EXPECT_EQ(image.Image_High, 0x3FF);
        EXPECT_EQ(world.frm.screen.vscFile[program ? 0 : 1].Max, 0x3FF / 16 - 3);
    }
}

TEST(BlankPath, IsALoadThatReadsNothing) {
    ImageWorld world;
    world.load(world.program(), "/a.hex", hex_file(0, pattern(100)));
    world.frm.screen.cheClearAP_Buffer.Value = 1;
    world.frm.screen.cheAuto_Increase.Value = 1;
    Load_File(world.frm, " \t ", world.program());
    EXPECT_EQ(world.at_address(0), 0);
    EXPECT_FALSE(world.frm.images.File_Loaded);
    EXPECT_TRUE(world.program().Has_File);
    EXPECT_EQ(world.frm.screen.cheAuto_Increase.Value, 0);
    EXPECT_EQ(world.frm.screen.MousePointer, 0);
    EXPECT_TRUE(world.boxes().empty());
    EXPECT_TRUE(world.files.files.at("/a.hex").opens == 1);
}

// ---- the view and Save File -----------------------------------------------------------

TEST(EmptyImage, ShowsNothingBehindItsLastRow) {
    for (int element : {0, 1}) {
        ImageWorld world;
        Control& bar = world.frm.screen.vscFile[static_cast<std::size_t>(element)];
        EXPECT_EQ(bar.Min, 0);
        EXPECT_EQ(bar.Max, 64);
        bar.Value = bar.Max;
        vscFile_Change(world.frm, element);
        EXPECT_EQ((element == 0 ? world.frm.screen.txtBuffer : world.frm.screen.txtDataFlash1).Text,
                  "\r\n\r\n");
        EXPECT_EQ(world.frm.screen.txt_length.Text, "400");
    }
}

TEST(SaveFileOfTheProgram, IsSavedAlsoWhileTheDataAreShown) {
    ImageWorld world;
    world.load(world.program(), "/a.bin", std::vector<std::uint8_t>{1, 2, 3, 4});
    world.frm.screen.cheClearDataBuffer.Value = 1;
    world.load(world.data(), "/d.bin", std::vector<std::uint8_t>{9, 8, 7});
    world.frm.screen.Frame7.Visible = false;
    world.frm.screen.frmDataFlash.Visible = true;
    vscFile_Change(world.frm, 1);
    EXPECT_EQ(world.frm.screen.txt_length.Text, "3");  // that of the view drawn last
    world.frm.screen.txt_Start_Address.Text = "0";
    world.dialogs.choose_file("/saved.bin");
    comStoreFile(world.frm);
    EXPECT_EQ(world.files.content("/saved.bin"), (std::vector<std::uint8_t>{1, 2, 3}));
}

}  // namespace
}  // namespace vkm::test
