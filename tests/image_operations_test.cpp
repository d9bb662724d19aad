// The operations on the images: choosing, loading, showing and saving files.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "catalogue/mcu_catalogue.h"
#include "image/image_files.h"
#include "image/readers.h"
#include "image_world.h"
#include "increase/auto_increase.h"
#include "waiting/waiting.h"

namespace vkm {
namespace {

using test::Box;
using test::BoxKind;
using test::four_bad_lines;
using test::hex_file;
using test::hex_file_of_marks;
using test::hex_record;
using test::ImageWorld;
using test::pattern;

constexpr const char* end_line = ":00000001FF\r\n";

// ---- empty images -----------------------------------------------------------

TEST(AllocateBuffers, SizesBothImagesAndNamesThem) {
    test::VirtualWorld world;
    Allocate_Buffers(world.frm);
    EXPECT_EQ(world.frm.images.AP_Buffer.Bytes.size(), 0x12001u);
    EXPECT_EQ(world.frm.images.Data_Buffer.Bytes.size(), 0x8001u);
    EXPECT_EQ(world.frm.images.AP_Buffer.Buffer_Name, "AP_FILE");
    EXPECT_EQ(world.frm.images.Data_Buffer.Buffer_Name, "Data_File");
}

TEST(ResetBuffer, OfTheProgramEmptiesItAndItsView) {
    ImageWorld world;
    world.load(world.program(), "/a.hex", hex_file(0, pattern(3000)));
    world.frm.screen.Frame7.Caption = "File Buffer: /a.hex";
    world.frm.screen.vscFile[0].Value = 20;
    ASSERT_TRUE(world.frm.images.File_Loaded);
    Reset_Buffer(world.frm, 0, world.program());
    const Image_Buffer& image = world.program();
    EXPECT_EQ(image.Bytes, std::vector<std::uint8_t>(0x12001));
    EXPECT_EQ(image.File_Low, 0);
    EXPECT_EQ(image.File_High, 0x3FF);
    EXPECT_EQ(image.Image_Low, 0);
    EXPECT_EQ(image.Image_High, 0x3FF);
    EXPECT_EQ(image.Sum, 0);
    EXPECT_FALSE(image.Has_File);
    EXPECT_FALSE(world.frm.images.File_Loaded);
    const Screen& screen = world.frm.screen;
    EXPECT_EQ(screen.vscFile[0].Min, 0);
    EXPECT_EQ(screen.vscFile[0].Max, 64);
    EXPECT_EQ(screen.vscFile[0].Value, 0);
    EXPECT_EQ(screen.Frame7.Caption, "File Buffer: ");
    EXPECT_EQ(screen.txtFileCheckSum.Text, "");
    EXPECT_EQ(screen.txt_length.Text, "400");
}

TEST(ResetBuffer, OfTheDataLeavesFileLoadedAsItIs) {
    ImageWorld world;
    world.load(world.program(), "/a.hex", hex_file(0, pattern(30)));
    world.load(world.data(), "/d.bin", pattern(30));
    world.frm.screen.txtDataFileCheckSum.Text = "x";
    Reset_Buffer(world.frm, 0, world.data());
    EXPECT_TRUE(world.frm.images.File_Loaded);
    EXPECT_FALSE(world.data().Has_File);
    EXPECT_TRUE(world.program().Has_File);
    EXPECT_EQ(world.frm.screen.vscFile[1].Max, 64);
    EXPECT_EQ(world.frm.screen.frmDataFlash.Caption, "Data File: ");
    EXPECT_EQ(world.frm.screen.txtDataFileCheckSum.Text, "");
    EXPECT_TRUE(world.frm.screen.txtDataFlash1.Text.starts_with("\r\n\r\n 000000   00 00"));
}

TEST(ResetBuffer, StoresAnyValueItIsGiven) {
    ImageWorld world;
    Reset_Buffer(world.frm, 0xFF, world.program());
    EXPECT_EQ(world.program().Bytes, std::vector<std::uint8_t>(0x12001, 0xFF));
}

TEST(View, OfAnEmptyImageShows1024BytesOf00) {
    ImageWorld world;
    const Screen& screen = world.frm.screen;
    // A page is 62 rows; scrolled to its end the view shows the last of the 64.
    EXPECT_TRUE(screen.txtBuffer.Text.starts_with(
        "\r\n\r\n 000000   00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 \r\n"));
    EXPECT_TRUE(screen.txtBuffer.Text.ends_with(
        " 0003D0   00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 \r\n"));
    world.frm.screen.vscFile[0].Value = 63;
    vscFile_Change(world.frm, 0);
    EXPECT_EQ(screen.txtBuffer.Text,
              "\r\n\r\n 0003F0   00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 \r\n");
}

// ---- loading ----------------------------------------------------------------

TEST(LoadFile, PutsAHexFileIntoTheImage) {
    ImageWorld world;
    const std::vector<std::uint8_t> code = pattern(1000);
    world.load(world.program(), "/a.hex", hex_file(0x10, code));
    const Image_Buffer& image = world.program();
    EXPECT_TRUE(std::equal(code.begin(), code.end(), image.Bytes.begin() + 0x10));
    EXPECT_EQ(image.File_Low, 0);
    EXPECT_EQ(image.File_High, 0x10 + 999);
    EXPECT_EQ(image.Image_Low, 0);
    EXPECT_EQ(image.Image_High, 0x10 + 999);
    std::int32_t sum = 0;
    for (std::uint8_t byte : code) sum += byte;
    EXPECT_EQ(image.Sum, sum);
    EXPECT_TRUE(image.Has_File);
    EXPECT_TRUE(world.frm.images.File_Loaded);
    EXPECT_TRUE(world.boxes().empty());
    EXPECT_EQ(world.frm.screen.txt_length.Text, "3F8");
    EXPECT_EQ(world.frm.screen.vscFile[0].Max, (0x10 + 999) / 16 - 3);
}

TEST(LoadFile, PutsABinaryFileIntoTheImage) {
    ImageWorld world;
    world.frm.screen.txtAP_FileStart.Text = "0100";
    world.load(world.program(), "/a.bin", std::vector<std::uint8_t>{1, 2, 0xFF});
    EXPECT_EQ(world.at_address(0x100), 1);
    EXPECT_EQ(world.at_address(0x102), 0xFF);
    EXPECT_EQ(world.program().File_Low, 0x100);
    EXPECT_EQ(world.program().File_High, 0x102);
    EXPECT_EQ(world.program().Image_Low, 0x100);
    EXPECT_EQ(world.program().Image_High, 0x102);
    EXPECT_EQ(world.frm.screen.txtFileCheckSum.Text, "0000102H       ");
}

TEST(LoadFile, ShowsTheWorkedSumOfAHexFile) {
    ImageWorld world;
    world.load(world.program(), "/a.hex", hex_record(0, 0, {0x12, 0x34, 0x56}) + end_line);
    EXPECT_EQ(world.frm.screen.txtFileCheckSum.Text, "000009CH       ");
}

TEST(LoadFile, OfAnEmptyPathDoesNothing) {
    ImageWorld world;
    Load_File(world.frm, "", world.program());
    EXPECT_FALSE(world.program().Has_File);
    EXPECT_FALSE(world.frm.images.File_Loaded);
}

TEST(LoadFile, OfABlankPathReadsNothing) {
    ImageWorld world;
    Load_File(world.frm, "  ", world.program());
    EXPECT_FALSE(world.frm.images.File_Loaded);
    EXPECT_EQ(world.frm.screen.txtFileCheckSum.Text, "");
}

TEST(LoadFile, RefusesAStartAddressBeyondTheRange) {
    struct Row {
        bool program;
        const char* start;
        bool english;
        const char* box;
    };
    // VKM47H51RB: data memory from 1000 to 37FF.
    const Row rows[] = {
        {true, "37FF", false, ""},
        {true, "3800", false,
         "Buffer Start Address Outrun the valid scope. \r\n   缓冲区起始地址超出有效空间。"},
        {true, "3800", true, "Buffer Start Address Outrun the valid scope. \r\n"},
        {true, "123456789ABCDEF0", true, "Buffer Start Address Outrun the valid scope. \r\n"},
        {false, "27FF", false, ""},
        {false, "2800", false,
         "Buffer Start Address Outrun the valid scope. \r\n        缓冲区起始地址超出有效空间。"},
        {false, "2800", true, "Buffer Start Address Outrun the valid scope. \r\n"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.start);
        ImageWorld world;
        world.frm.screen.Show_English = row.english;
        (row.program ? world.frm.screen.txtAP_FileStart : world.frm.screen.txtDataFileStart).Text =
            row.start;
        Image_Buffer& image = row.program ? world.program() : world.data();
        image.Bytes[5] = 9;
        world.load(image, "/a.bin", std::vector<std::uint8_t>{0});
        if (*row.box == 0) {
            EXPECT_TRUE(image.Has_File);
            continue;
        }
        ASSERT_EQ(world.boxes().size(), 1u);
        EXPECT_EQ(world.boxes()[0].text, row.box);
        EXPECT_EQ(world.boxes()[0].title, "");
        EXPECT_EQ(image.Bytes[5], 9);
        EXPECT_EQ(image.Image_High, 0x3FF);
        EXPECT_FALSE(image.Has_File);
        EXPECT_FALSE(world.frm.images.File_Loaded);
    }
}

TEST(LoadFile, PlacesATextThatReadsAsNegativeAtItsUnsignedAddress) {
    ImageWorld world("VKM47H516RK");
    world.frm.screen.txtAP_FileStart.Text = "FFF0";
    world.load(world.program(), "/a.hex", hex_record(0, 0, {7}) + end_line);
    EXPECT_EQ(world.program().Start_Add, -16);
    EXPECT_EQ(world.at_address(0xFFF0), 7);
    EXPECT_EQ(world.program().File_Low, 0xFFF0);
    EXPECT_EQ(world.program().File_High, 0xFFF0);
    world.load(world.program(), "/a.bin", std::vector<std::uint8_t>{8});
    EXPECT_EQ(world.at_address(0xFFF0), 8);
}

TEST(LoadFile, OfASecondFileKeepsTheFirstWhenItIsNotToBeCleared) {
    ImageWorld world;
    world.load(world.program(), "/a.hex", hex_file(0x800, pattern(64)));
    world.frm.screen.txtAP_FileStart.Text = "0100";
    world.load(world.program(), "/b.bin", std::vector<std::uint8_t>{5});
    EXPECT_EQ(world.at_address(0x100), 5);
    EXPECT_EQ(world.at_address(0x800), pattern(1)[0]);
    EXPECT_EQ(world.program().File_Low, 0x100);
    EXPECT_EQ(world.program().File_High, 0x100);
    EXPECT_EQ(world.program().Image_Low, 0);
    EXPECT_EQ(world.program().Image_High, 0x83F);
    EXPECT_EQ(world.program().Sum, 5);
}

TEST(LoadFile, OfASecondFileClearsTheFirstWhenTheOperatorWantsThat) {
    ImageWorld world;
    world.load(world.program(), "/a.hex", hex_file(0x800, pattern(64)));
    world.frm.screen.cheClearAP_Buffer.Value = 1;
    world.load(world.program(), "/b.bin", std::vector<std::uint8_t>{5});
    EXPECT_EQ(world.at_address(0x800), 0);
    EXPECT_EQ(world.program().Image_High, 0);
}

TEST(LoadFile, OfADataFileThatComesFirstAlwaysClearsItsImage) {
    ImageWorld world;
    world.data().Bytes[0x500] = 1;
    world.load(world.data(), "/d.bin", std::vector<std::uint8_t>{5});
    EXPECT_EQ(world.data().Bytes[0x500], 0);
    EXPECT_EQ(world.data().Bytes[0], 5);
    // The flag speaks for both: now a second one is added.
    world.frm.screen.txtDataFileStart.Text = "0010";
    world.load(world.data(), "/e.bin", std::vector<std::uint8_t>{6});
    EXPECT_EQ(world.data().Bytes[0], 5);
    EXPECT_EQ(world.data().Bytes[0x10], 6);
    world.frm.screen.cheClearDataBuffer.Value = 1;
    world.load(world.data(), "/e.bin", std::vector<std::uint8_t>{7});
    EXPECT_EQ(world.data().Bytes[0], 0);
}

TEST(LoadFile, ChoosesTheReaderByNameAndByTheFirstThreeLines) {
    const std::string hex = hex_record(0, 0, {0x11}) + end_line;
    struct Row {
        const char* path;
        std::string content;
        std::uint8_t first;  // byte 0 of the image: 0x11 by HEX, ':' or other by binary
    };
    const Row rows[] = {
        {"/my.hex", hex, 0x11},
        {"/my.HEX", hex, 0x11},
        {"/my.hex.bak", hex, 0x11},
        {"/out.hexfiles/my.bin", hex, 0x11},
        {"/my.bin", hex, 0x11},  // two lines that begin with ":"
        {"/my.bin", hex_record(0, 0, {0x11}), 0x11},
        {"/my.bin", ":0100000011EE", 0x11},  // one, without an end
        {"/my.txt", ":x\n:y\n:z\nrest", 0},
        {"/my.bin", ":x\n:y\nz\n", ':'},
        {"/my.bin", ":x\n\n:z\n", ':'},
        {"/my.bin", "x\n:y\n:z\n", 'x'},
        {"/my.bin", "\n:y\n:z\n", '\n'},
        {"/my.hex", "junk", 0},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(std::string(row.path) + " " + row.content);
        ImageWorld world;
        world.load(world.program(), row.path, row.content);
        EXPECT_EQ(world.at_address(0), row.first);
    }
}

TEST(LoadFile, SwitchesTheNumberingOffAndReadsItAnew) {
    for (const bool program : {true, false}) {
        SCOPED_TRACE(program);
        ImageWorld world;
        Screen& screen = world.frm.screen;
        IncreaseState& increase = world.frm.increase;
        screen.cheAuto_Increase.Value = 1;
        screen.cheData_Auto_Increase.Value = 1;
        increase.Auto_Increase.Active = true;
        increase.Data_Auto_Increase.Active = true;
        for (Control& field : screen.texAuto_Increase) field.Enabled = false;
        for (Control& format : screen.optAuto_Increase) format.Enabled = false;
        screen.texAuto_Increase[0].Text = "3f";
        screen.texData_Auto_Increase[2].Text = "17";
        world.load(program ? world.program() : world.data(), "/a.hex", hex_file(0, pattern(10)));
        EXPECT_EQ(screen.cheAuto_Increase.Value, 0);
        EXPECT_EQ(screen.cheData_Auto_Increase.Value, 0);
        EXPECT_FALSE(increase.Auto_Increase.Active);
        EXPECT_FALSE(increase.Data_Auto_Increase.Active);
        for (const Control& field : screen.texAuto_Increase) EXPECT_TRUE(field.Enabled);
        for (const Control& format : screen.optAuto_Increase) EXPECT_TRUE(format.Enabled);
        EXPECT_EQ(screen.texAuto_Increase[0].Text, "3F");
        EXPECT_EQ(increase.Auto_Increase.Address, 0x3F);
        EXPECT_EQ(increase.Data_Auto_Increase.Next_Value, "17");
        // A number that was enabled before the load widens no image.
        EXPECT_EQ((program ? world.program() : world.data()).Image_High, 9);
    }
}

TEST(LoadFile, ClearsTheHighlightsOfBothViews) {
    ImageWorld world;
    world.frm.increase.Auto_Increase.Sel_Length = 5;
    world.frm.increase.Data_Auto_Increase.Sel_Length = 5;
    world.load(world.program(), "/a.hex", hex_file(0, pattern(10)));
    EXPECT_EQ(world.frm.increase.Auto_Increase.Sel_Length, 0);
    EXPECT_EQ(world.frm.increase.Data_Auto_Increase.Sel_Length, 0);
}

TEST(LoadFile, ShowsThatItIsBusyWhileAReaderRuns) {
    ImageWorld world;
    std::int32_t pointer_meanwhile = -1;
    world.at(0, [&] { pointer_meanwhile = world.frm.screen.MousePointer; });
    world.load(world.program(), "/a.hex", hex_file(0, pattern(10)));
    EXPECT_EQ(pointer_meanwhile, 11);
    EXPECT_EQ(world.frm.screen.MousePointer, 0);
}

TEST(LoadFile, ComputesTheRangesOfAModelThatWasChosenAMomentAgo) {
    ImageWorld world("VKM47H51RB");
    // As Apply_Model leaves it until the tick of Timer3.
    world.frm.screen.txtDevice.Text = "VKM47H516RK+";
    world.frm.catalogue.MCU_Info = test::record_of("VKM47H516RK+");
    world.frm.catalogue.MCU_Info.ISP_Start = 0;
    restart_timer(world.frm, world.frm.timers.Timer3, 500);
    world.load(world.program(), "/a.hex", hex_file_of_marks({0xF7FF}));
    EXPECT_TRUE(world.boxes().empty());
    EXPECT_EQ(world.program().File_High, 0xF7FF);
    EXPECT_EQ(world.frm.catalogue.MCU_Info.ISP_Start, 0xF800);
    EXPECT_EQ(world.frm.screen.txtISP_reange[1].Text, "F7FF");
}

TEST(LoadFile, ShowsTheBoxOfTheRangeRulesOnceWithItsTitle) {
    ImageWorld world("VKM47W54AD");
    world.load(world.program(), "/a.bin", pattern(0x4001));
    ASSERT_EQ(world.boxes().size(), 1u);
    EXPECT_EQ(world.boxes()[0].kind, BoxKind::text);
    EXPECT_EQ(world.boxes()[0].title, "Open HEX file");
    EXPECT_EQ(world.boxes()[0].text,
              "    File over the valid scope.\r\n文件超出有效空间, 超出的部分已丢失。"
              "\r\n\r\n         按确定继续。");
    EXPECT_EQ(world.program().File_High, 0x3FFF);
    EXPECT_EQ(world.at_address(0x4000), 0);
    EXPECT_TRUE(world.frm.images.File_Loaded);

    world.frm.screen.Show_English = true;
    world.load(world.program(), "/a.hex", hex_file_of_marks({0x4000}));
    ASSERT_EQ(world.boxes().size(), 2u);
    EXPECT_EQ(world.boxes()[1].title, "Open HEX file");
    EXPECT_EQ(world.boxes()[1].text, " File over the valid scope.\r\n\r\n\r\n        Continue");
}

TEST(LoadFile, ShowsTheSumOfADataFileWhereItsReaderShowsIt) {
    ImageWorld world("VKM47H51RB");
    world.load(world.data(), "/d.bin", std::vector<std::uint8_t>{0x10});
    EXPECT_EQ(world.frm.screen.txtDataFileCheckSum.Text, "0000010H       ");
    EXPECT_EQ(world.frm.screen.txtFileCheckSum.Text, "");
    // The HEX reader of these families shows it in the program's field.
    world.load(world.data(), "/d.hex", hex_file_of_marks({0}));
    EXPECT_EQ(world.frm.screen.txtFileCheckSum.Text, "0000055H       ");
    EXPECT_EQ(world.frm.screen.txtDataFileCheckSum.Text, "0000010H       ");

    world.choose_model("VKM26H5416");
    world.load(world.data(), "/d.hex", hex_file_of_marks({0}));
    EXPECT_EQ(world.frm.screen.txtDataFileCheckSum.Text, "0000055H");
    world.choose_model("VKM26H2052");
    world.load(world.data(), "/d.hex", hex_file_of_marks({0}));
    EXPECT_EQ(world.frm.screen.txtDataFileCheckSum.Text, "0000055H       ");
}

// ---- the records of a HEX file ----------------------------------------------

TEST(HexFile, WithoutAnEndRecordEndsAtTheEndOfTheFile) {
    for (const char* end : {"", end_line}) {
        ImageWorld world;
        world.load(world.program(), "/a.hex", hex_record(0, 0, {1, 2, 3}) + end);
        EXPECT_EQ(world.program().File_High, 2);
        EXPECT_EQ(world.program().Sum, 6);
        EXPECT_TRUE(world.boxes().empty());
    }
}

TEST(HexFile, IsNotReadBehindItsEndRecord) {
    ImageWorld world;
    world.load(world.program(), "/a.hex",
               hex_record(0, 0, {1}) + end_line + hex_record(0x100, 0, {9}) + ":bad\r\n");
    EXPECT_EQ(world.at_address(0x100), 0);
    EXPECT_EQ(world.program().File_High, 0);
    EXPECT_TRUE(world.boxes().empty());
}

TEST(HexFile, PassesOverBlankLinesAndComments) {
    ImageWorld world;
    world.load(world.program(), "/a.hex",
               "; made by hand\n\n" + hex_record(0, 0, {1}) + "  \n" + " :02\n" +
                   hex_record(1, 0, {2}) + end_line);
    EXPECT_EQ(world.at_address(1), 2);
    EXPECT_TRUE(world.boxes().empty());
}

TEST(HexFile, TakesExtendedAddressRecordsAsData) {
    ImageWorld world;
    world.frm.screen.txtAP_FileStart.Text = "0200";
    world.load(world.program(), "/a.hex",
               hex_record(0, 4, {0, 1}) + hex_record(0x10, 0, {7}) + end_line);
    EXPECT_EQ(world.at_address(0x200), 0);
    EXPECT_EQ(world.at_address(0x201), 1);
    EXPECT_EQ(world.at_address(0x210), 7);
    EXPECT_EQ(world.program().Sum, 8);
    for (const std::uint8_t type : std::vector<std::uint8_t>{2, 3, 5, 9, 255}) {
        world.load(world.program(), "/a.hex", hex_record(0x20, type, {type}) + end_line);
        EXPECT_EQ(world.at_address(0x220), type);
    }
}

TEST(HexFile, LosesTheHighPartOfARecordThatRunsOverTheTop) {
    ImageWorld world("VKM47H51RB");  // Memory_Top 3BFF
    world.load(world.program(), "/a.hex", hex_record(0x3BFE, 0, {1, 2, 3, 4}) + end_line);
    EXPECT_EQ(world.at_address(0x3BFF), 2);
    EXPECT_EQ(world.at_address(0x3C00), 0);
    EXPECT_EQ(world.program().Sum, 10);
    EXPECT_EQ(world.frm.screen.txtFileCheckSum.Text, "000000AH       ");
    EXPECT_EQ(world.program().File_High, 0x37FF);  // out of scope: the end of the data memory
    EXPECT_EQ(world.boxes().size(), 1u);
}

TEST(HexFile, TellsABadLineWithTheLineAsItStands) {
    for (bool english : {false, true}) {
        ImageWorld world;
        world.frm.screen.Show_English = english;
        world.load(world.program(), "/dir/a.hex", std::string(":0100000041BF\r\n") + end_line);
        ASSERT_EQ(world.boxes().size(), 1u);
        EXPECT_EQ(world.boxes()[0].title, "/dir/a.hex");
        EXPECT_EQ(world.boxes()[0].text, english ? "Checksum is Error:\r\n\r\n:0100000041BF"
                                                 : "校验和错:\r\n\r\n:0100000041BF");
        EXPECT_EQ(world.at_address(0), 0x41);  // loaded all the same
        EXPECT_TRUE(world.frm.images.File_Loaded);
    }
}

TEST(HexFile, TellsABadEndRecordBeforeItEnds) {
    ImageWorld world;
    world.load(world.program(), "/a.hex", ":00000001FE\r\n" + hex_record(0, 0, {9}));
    EXPECT_EQ(world.boxes().size(), 1u);
    EXPECT_EQ(world.at_address(0), 0);
}

TEST(HexFile, WithThreeBadLinesAsksWhetherToGoOn) {
    ImageWorld world;
    world.dialogs.answer_yes();
    world.load(world.program(), "/a.hex", four_bad_lines);
    ASSERT_EQ(world.boxes().size(), 4u);
    EXPECT_EQ(world.boxes()[2].text, "校验和错:\r\n\r\n:010002000300");
    EXPECT_EQ(world.boxes()[3].kind, BoxKind::yes_no);
    EXPECT_EQ(world.boxes()[3].text,
              "不再检测校验和, 继续加载文件请输入 Y\r\n\r\n中止加载文件, 立即返回请输入 N");
    EXPECT_EQ(world.program().Sum, 10);
    EXPECT_EQ(world.at_address(2), 3);
    EXPECT_EQ(world.at_address(3), 4);
    EXPECT_TRUE(world.frm.images.File_Loaded);
}

TEST(HexFile, ThatTheOperatorRefusesLeavesTheImageEmpty) {
    ImageWorld world;
    world.frm.screen.Show_English = true;
    world.load(world.program(), "/a.hex", hex_record(0x100, 0, {1}) + four_bad_lines);
    ASSERT_EQ(world.boxes().size(), 4u);
    EXPECT_EQ(world.boxes()[3].text,
              "Not test Checksum and continue, input Y\r\n\r\nStop Load File, input N");
    EXPECT_EQ(world.program().Bytes, std::vector<std::uint8_t>(0x12001));
    EXPECT_FALSE(world.frm.images.File_Loaded);
    EXPECT_EQ(world.program().Image_High, 0x3FF);
    EXPECT_EQ(world.frm.screen.txtFileCheckSum.Text, "");
    EXPECT_EQ(world.frm.screen.Frame7.Caption, "File Buffer: ");
}

TEST(HexFile, OfDataThatTheOperatorRefusesClearsFileLoadedToo) {
    ImageWorld world;
    world.load(world.program(), "/a.hex", hex_file(0, pattern(10)));
    world.load(world.data(), "/d.hex", four_bad_lines);
    EXPECT_FALSE(world.frm.images.File_Loaded);
    EXPECT_EQ(world.at_address(0), 1);
}

TEST(HexFile, ThatRunsDataIntoTheProgramAreaOfAFullChipGivesNoBox) {
    ImageWorld world("VKM47W516AD");
    world.load(world.program(), "/a.hex", hex_file(0, pattern(0xFC00)));
    EXPECT_TRUE(world.boxes().empty());
    EXPECT_EQ(world.program().File_High, 0xFBFF);
    EXPECT_EQ(world.frm.screen.txt_length.Text, "FC00");
}

// ---- binary files -----------------------------------------------------------

TEST(BinFile, OfNothingEndsOneBelowItsStart) {
    ImageWorld world;
    world.frm.screen.txtAP_FileStart.Text = "0010";
    world.load(world.program(), "/a.bin", std::vector<std::uint8_t>{});
    EXPECT_EQ(world.program().File_Low, 0x10);
    EXPECT_EQ(world.program().File_High, 0xF);
    EXPECT_EQ(world.program().Sum, 0);
    EXPECT_EQ(world.frm.screen.txtFileCheckSum.Text, "0000000H       ");
    EXPECT_TRUE(world.frm.images.File_Loaded);
    world.frm.screen.txtAP_FileStart.Text = "0";
    world.frm.screen.cheClearAP_Buffer.Value = 1;
    Load_File(world.frm, "/a.bin", world.program());
    EXPECT_EQ(world.program().File_High, -1);
    EXPECT_EQ(world.program().Image_High, 0);
}

TEST(BinFile, OneByteLongerThanTheImageLosesThatByte) {
    ImageWorld world("VKM47H54RK+");
    world.frm.screen.txtDataFileStart.Text = "0001";
    world.load(world.data(), "/a.bin", pattern(0x8001));
    EXPECT_EQ(world.data().Bytes[0x8000], pattern(0x8000).back());
    EXPECT_EQ(world.data().File_High, 0x7FFF);
    world.load(world.data(), "/a.bin", pattern(0x8000));
    EXPECT_EQ(world.data().File_High, 0x8000);
}

TEST(BinFile, IsReadByItselfWithoutTheDriver) {
    ImageWorld world;
    world.files.add("/monitor.rom", pattern(384));
    EXPECT_TRUE(Read_Bin_File(world.frm, "/monitor.rom", world.program()));
    EXPECT_EQ(world.at_address(383), pattern(384).back());
    EXPECT_TRUE(world.frm.images.File_Loaded);
    EXPECT_FALSE(world.program().Has_File);
}

// ---- the operator's buttons -------------------------------------------------

TEST(OpenFile, LoadsTheChosenFileAndRemembersIt) {
    ImageWorld world;
    world.files.add("/job/a.hex", hex_file(0, pattern(100)));
    world.dialogs.choose_file("/job/a.hex");
    comLoadFile(world.frm);
    ASSERT_EQ(world.boxes().size(), 1u);
    const Box& dialog = world.boxes()[0];
    EXPECT_EQ(dialog.kind, BoxKind::open_file);
    EXPECT_EQ(dialog.title, "Open file ( *.hex or *.bin )");
    EXPECT_EQ(dialog.filter, "(*.hex, *.bin)|*.hex;*.bin|(*.bin)|*.bin|All Files (*.*)|*.*");
    EXPECT_EQ(dialog.folder, "");
    EXPECT_EQ(dialog.name, "");
    EXPECT_TRUE(world.frm.images.File_Loaded);
    EXPECT_EQ(world.frm.images.Current_File, "/job/a.hex");
    EXPECT_EQ(world.frm.screen.Frame7.Caption, "File Buffer: /job/a.hex");
    // On the disk already: a crash loses nothing.
    world.settings.crash();
    EXPECT_EQ(world.settings.get("Settings", "FilePath", ""), "/job/a.hex");

    comLoadFile(world.frm);
    EXPECT_EQ(world.boxes()[1].folder, "/job");
    EXPECT_EQ(world.boxes()[1].name, "a.hex");
}

TEST(OpenFile, OfDataHasItsOwnTitleCaptionAndSetting) {
    ImageWorld world;
    world.settings.preset("Settings", "FilePath", "/job/a.hex");
    world.files.add("/job/a.hex", "");
    world.files.add("/job/d.bin", pattern(100));
    world.dialogs.choose_file("/job/d.bin");
    comLoadDataFile(world.frm);
    EXPECT_EQ(world.boxes().at(0).title, "Open Data file ( *.hex or *.bin )");
    EXPECT_EQ(world.boxes()[0].folder, "");
    EXPECT_EQ(world.data().Bytes[0], 1);
    EXPECT_EQ(world.at_address(0), 0);
    EXPECT_EQ(world.frm.screen.frmDataFlash.Caption, "Data File: /job/d.bin");
    EXPECT_EQ(world.settings.get("Settings", "DataFilePath", ""), "/job/d.bin");
    EXPECT_EQ(world.settings.get("Settings", "FilePath", ""), "/job/a.hex");
}

TEST(OpenFile, CancelledChangesNothing) {
    ImageWorld world;
    world.load(world.program(), "/a.hex", hex_file(0, pattern(100)));
    world.frm.images.Current_File = "/a.hex";
    world.frm.screen.Frame7.Caption = "File Buffer: /a.hex";
    comLoadFile(world.frm);
    EXPECT_TRUE(world.frm.images.File_Loaded);
    EXPECT_EQ(world.frm.images.Current_File, "/a.hex");
    EXPECT_EQ(world.frm.screen.Frame7.Caption, "File Buffer: /a.hex");
    EXPECT_TRUE(world.settings.values.empty());
}

TEST(OpenFile, ProposesNothingOfARememberedFileThatHasGone) {
    ImageWorld world;
    world.settings.preset("Settings", "FilePath", "/gone/a.hex");
    Choose_File(world.frm, "AP");
    EXPECT_EQ(world.boxes().at(0).folder, "");
    EXPECT_EQ(world.boxes()[0].name, "");
}

TEST(OpenFile, ProposesNoNameForARememberedFolder) {
    ImageWorld world;
    world.settings.preset("Settings", "FilePath", "C:\\work\\");
    Choose_File(world.frm, "AP");
    EXPECT_EQ(world.boxes().at(0).folder, "C:\\work\\");
    EXPECT_EQ(world.boxes()[0].name, "");
}

TEST(OpenFile, OfAProjectOpensItsTabAndLoadsTheProject) {
    static std::string project;
    static std::string calls;
    for (bool data : {false, true}) {
        ImageWorld world;
        project.clear();
        calls.clear();
        world.frm.screen.TabStrip2.List = {{"文件缓冲区", "tab_file", ""},
                                           {"工程文件", "Batch_quantity", ""}};
        world.frm.screen.TabStrip2.ListIndex = 0;
        world.files.add("/job/a.Vkm", "x");
        const auto open = data ? comLoadDataFile : comLoadFile;
        world.dialogs.choose_file("/job/a.Vkm");
        open(world.frm);  // the job is whole without projects
        EXPECT_EQ(world.frm.screen.TabStrip2.ListIndex, 1);
        EXPECT_FALSE(world.frm.images.File_Loaded);

        world.frm.images.Show_Chosen_Page = [](frmMain&) { calls += "page "; };
        world.frm.images.Load_Project = [](frmMain&, const std::string& path) {
            calls += "load ";
            project = path;
        };
        world.dialogs.choose_file("/job/a.Vkm");
        open(world.frm);
        EXPECT_EQ(calls, "page load ");
        EXPECT_EQ(project, "/job/a.Vkm");
        EXPECT_FALSE(world.program().Has_File);
    }
}

TEST(DroppedFile, IsTakenLikeOneThatWasOpened) {
    ImageWorld world;
    world.files.add("/job/a.hex", hex_file(0, pattern(100)));
    Open_Dropped_File(world.frm, "/job/a.hex");
    EXPECT_TRUE(world.boxes().empty());
    EXPECT_TRUE(world.frm.images.File_Loaded);
    EXPECT_EQ(world.frm.images.Current_File, "/job/a.hex");
    EXPECT_EQ(world.frm.screen.Frame7.Caption, "File Buffer: /job/a.hex");
    world.settings.crash();
    EXPECT_EQ(world.settings.get("Settings", "FilePath", ""), "/job/a.hex");
}

TEST(DroppedFile, ThatIsAProjectIsLoadedAsOne) {
    static std::string project;
    project.clear();
    ImageWorld world;
    world.files.add("/job/a.VKM", "x");
    world.frm.images.Load_Project = [](frmMain&, const std::string& path) { project = path; };
    Open_Dropped_File(world.frm, "/job/a.VKM");
    EXPECT_EQ(project, "/job/a.VKM");
}

TEST(DroppedFile, IsLeftAloneDuringAJobAndWhenItIsNoFile) {
    ImageWorld world;
    world.files.add("/job/a.hex", hex_file(0, pattern(100)));
    world.frm.screen.comLoadFile.Enabled = false;
    Open_Dropped_File(world.frm, "/job/a.hex");
    world.frm.screen.comLoadFile.Enabled = true;
    Open_Dropped_File(world.frm, "/job");
    Open_Dropped_File(world.frm, "/nothing.hex");
    Open_Dropped_File(world.frm, "");
    EXPECT_FALSE(world.frm.images.File_Loaded);
    EXPECT_EQ(world.frm.images.Current_File, "");
    EXPECT_TRUE(world.settings.values.empty());
}

TEST(CheckLastFile, TellsWhenTheRememberedFileHasGone) {
    ImageWorld world;
    world.settings.preset("Settings", "FilePath", "/job/a.hex");
    Check_Last_File(world.frm);
    ASSERT_EQ(world.boxes().size(), 1u);
    EXPECT_EQ(world.boxes()[0].text, "Can not find the file./找不到文件");
    world.frm.screen.Show_English = true;
    Check_Last_File(world.frm);
    EXPECT_EQ(world.boxes().at(1).text, "Can not find the file.");
    EXPECT_EQ(world.frm.screen.Frame7.Caption, "File Buffer: ");
    world.files.add("/job/a.hex", "");
    Check_Last_File(world.frm);
    EXPECT_EQ(world.boxes().size(), 2u);
    EXPECT_EQ(world.frm.screen.Frame7.Caption, "File Buffer: /job/a.hex");
}

// ---- Save File --------------------------------------------------------------

TEST(SaveFile, WritesAPieceOfTheProgramImage) {
    ImageWorld world("VKM47H516RK");
    world.load(world.program(), "/job/a.bin", pattern(0x10000));
    world.settings.preset("Settings", "FilePath", "/job/a.bin");
    world.frm.screen.txt_Start_Address.Text = "0";
    world.frm.screen.txt_length.Text = "10000";
    world.dialogs.choose_file("/job/saved.bin");
    comStoreFile(world.frm);
    ASSERT_EQ(world.boxes().size(), 1u);
    const Box& dialog = world.boxes()[0];
    EXPECT_EQ(dialog.kind, BoxKind::save_file);
    EXPECT_EQ(dialog.title, "Save .bin file");
    EXPECT_EQ(dialog.filter, "(*.bin)|*.bin|All Files (*.*)|*.*");
    EXPECT_EQ(dialog.name, "");
    EXPECT_EQ(dialog.folder, "/job");
    EXPECT_EQ(world.files.content("/job/saved.bin"), pattern(0x10000));

    world.frm.screen.txt_Start_Address.Text = "FFFE";
    world.frm.screen.txt_length.Text = "2";
    world.dialogs.choose_file("/job/saved.bin");  // over the one before
    comStoreFile(world.frm);
    const std::vector<std::uint8_t> all = pattern(0x10000);
    EXPECT_EQ(world.files.content("/job/saved.bin"),
              (std::vector<std::uint8_t>{all[0xFFFE], all[0xFFFF]}));
}

TEST(SaveFile, RefusesAPieceThatPassesFFFF) {
    ImageWorld world;
    world.frm.screen.txt_Start_Address.Text = "0001";
    world.frm.screen.txt_length.Text = "10000";
    comStoreFile(world.frm);
    ASSERT_EQ(world.boxes().size(), 1u);
    EXPECT_EQ(world.boxes()[0].text, "File length too big.\r\n文件长度太大。");
    world.frm.screen.txt_length.Text = "0000";
    comStoreFile(world.frm);
    EXPECT_EQ(world.boxes().at(1).text, "File length too small.\r\n文件长度不能小于 0。");
}

TEST(SaveFile, CancelledOrOnAFullDiskWritesNothing) {
    ImageWorld world;
    world.frm.screen.txt_Start_Address.Text = "0000";
    comStoreFile(world.frm);
    EXPECT_TRUE(world.files.files.empty());
    world.files.disk_full = true;
    world.dialogs.choose_file("/a.bin");
    comStoreFile(world.frm);
    EXPECT_TRUE(world.files.files.empty());
    EXPECT_EQ(world.boxes().size(), 2u);  // the two dialogs alone
}

TEST(SaveFile, NeedsBothOfItsFields) {
    ImageWorld world;
    Screen& screen = world.frm.screen;
    EXPECT_EQ(screen.txt_length.Text, "400");  // filled by the view
    EXPECT_FALSE(screen.comStoreFile.Enabled);
    screen.txt_Start_Address.Text = "0";
    Enable_Save_File(world.frm);
    EXPECT_TRUE(screen.comStoreFile.Enabled);
    screen.txt_length.Text = "";
    Enable_Save_File(world.frm);
    EXPECT_FALSE(screen.comStoreFile.Enabled);
    // The next redraw proposes a length again.
    vscFile_Change(world.frm, 0);
    EXPECT_TRUE(screen.comStoreFile.Enabled);
}

// ---- the view ---------------------------------------------------------------

TEST(View, OfAFileOfOneByteShowsOneRowWithOneByte) {
    ImageWorld world;
    world.load(world.program(), "/a.bin", std::vector<std::uint8_t>{0xA5});
    EXPECT_EQ(world.frm.screen.txtBuffer.Text, "\r\n\r\n 000000   A5 \r\n");
    EXPECT_EQ(world.frm.screen.vscFile[0].Max, -3);
    EXPECT_EQ(world.frm.screen.vscFile[0].Value, 0);
    EXPECT_EQ(world.frm.screen.txt_length.Text, "1");
}

TEST(View, OfAnImageThatBeginsAboveItsRowsStartShowsThatRow) {
    ImageWorld world;
    world.frm.screen.txtAP_FileStart.Text = "0123";
    world.load(world.program(), "/a.bin", std::vector<std::uint8_t>{0xA5});
    EXPECT_EQ(world.frm.screen.txtBuffer.Text, "\r\n\r\n 000120   00 00 00 A5 \r\n");
}

TEST(View, ShowsAPageFromTheRowThatTheBarStandsAt) {
    ImageWorld world("VKM47H516RK");
    world.load(world.program(), "/a.bin", pattern(0x10000));
    Screen& screen = world.frm.screen;
    EXPECT_EQ(screen.vscFile[0].Max, 0xFFFF / 16 - 3);
    screen.vscFile[0].Value = 0x123;
    screen.txtBuffer.SelStart = 99;
    vscFile_Change(world.frm, 0);
    EXPECT_TRUE(screen.txtBuffer.Text.starts_with("\r\n\r\n 001230   "));
    // 990 bytes: the last row lacks two.
    EXPECT_EQ(screen.txtBuffer.Text.size(), 4 + 62 * 60 - 2 * 3u);
    EXPECT_EQ(screen.txtBuffer.SelStart, 0);
    EXPECT_EQ(screen.txtBuffer.SelLength, 0);
    screen.vscFile[0].Value = screen.vscFile[0].Max;
    vscFile_Change(world.frm, 0);
    EXPECT_TRUE(screen.txtBuffer.Text.starts_with("\r\n\r\n 00FFC0   "));
    EXPECT_EQ(screen.txtBuffer.Text.size(), 4 + 4 * 60u);
}

TEST(View, StaysInsideTheImageWhateverTheBarSays) {
    ImageWorld world;
    world.load(world.program(), "/a.bin", pattern(100));
    for (std::int32_t value : {-1, -1000000, 7, 64, 100000, 0x7FFFFFFF, -0x7FFFFFFF - 1})
        for (int element : {-1, 0, 1, 2, 100}) {
            world.frm.screen.vscFile[0].Value = value;
            world.frm.screen.vscFile[1].Value = value;
            vscFile_Change(world.frm, element);
        }
    world.frm.screen.vscFile[0].Value = -5;
    vscFile_Change(world.frm, 0);
    EXPECT_TRUE(world.frm.screen.txtBuffer.Text.starts_with("\r\n\r\n 000000   01 08"));
}

TEST(View, HoldsTheBarInsideAShorterFile) {
    ImageWorld world;
    world.load(world.program(), "/a.bin", pattern(0x1000));
    world.frm.screen.vscFile[0].Value = 200;
    world.frm.screen.cheClearAP_Buffer.Value = 1;
    world.load(world.program(), "/b.bin", pattern(0x100));
    EXPECT_EQ(world.frm.screen.vscFile[0].Max, 0xFF / 16 - 3);
    EXPECT_EQ(world.frm.screen.vscFile[0].Value, 0xFF / 16 - 3);
}

TEST(View, TakesInAnActiveNumberAndOneByteBelowIt) {
    ImageWorld world;
    world.load(world.program(), "/a.bin", pattern(16));
    Auto_Increase_Set& set = world.frm.increase.Auto_Increase;
    world.frm.screen.texAuto_Increase[0].Text = "3FF";
    world.frm.screen.texAuto_Increase[1].Text = "4";
    Read_Auto_Increase(world.frm);
    Refresh_Buffer_View(world.frm, world.program(), set);
    EXPECT_EQ(world.program().Image_High, 15);
    set.Active = true;
    Refresh_Buffer_View(world.frm, world.program(), set);
    EXPECT_EQ(world.program().Image_High, 0x3FF);
    EXPECT_EQ(world.program().Image_Low, 0);
    EXPECT_EQ(world.frm.screen.txt_length.Text, "400");
    world.program().Image_Low = world.program().File_Low = 0x3FE;
    Refresh_Buffer_View(world.frm, world.program(), set);
    EXPECT_EQ(world.program().Image_Low, 0x3FB);
}

TEST(View, OfAnActiveNumberAtAddress0StaysInsideTheImage) {
    ImageWorld world;
    world.load(world.program(), "/a.bin", pattern(16));
    Auto_Increase_Set& set = world.frm.increase.Auto_Increase;
    set.Active = true;
    set.Address = 3;
    set.Length = 4;
    Refresh_Buffer_View(world.frm, world.program(), set);  // a byte below the number is none
    EXPECT_EQ(world.program().Image_Low, 0);
    EXPECT_TRUE(world.frm.screen.txtBuffer.Text.starts_with("\r\n\r\n 000000   01 08"));
}

TEST(View, TakesTheKeyboardWhenItsPageIsShown) {
    ImageWorld world;
    world.frm.screen.Focus_Request = {};
    world.frm.screen.frmDataFlash.Visible = false;
    vscFile_Change(world.frm, 1);
    EXPECT_EQ(world.frm.screen.Focus_Request, "");
    world.frm.screen.frmDataFlash.Visible = true;
    vscFile_Change(world.frm, 1);
    EXPECT_EQ(world.frm.screen.Focus_Request, "tetDataFlash2");
    vscFile_Change(world.frm, 0);
    EXPECT_EQ(world.frm.screen.Focus_Request, "txtBuffer2");
}

}  // namespace
}  // namespace vkm
