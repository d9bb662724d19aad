// Files that are not what their names say: the image keeps its size, nothing
// hangs, nothing is read further than it can be of use.
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "image/image_files.h"
#include "image_world.h"

namespace vkm {
namespace {

using test::hex_file;
using test::hex_record;
using test::ImageWorld;
using test::MemoryFile;
using test::pattern;

constexpr std::uint64_t gigabyte = std::uint64_t{1} << 30;

TEST(BadInput, AFileAtTheTopOfA64KModelStaysInsideTheImage) {
    for (const char* model : {"VKM47H516RK", "VKM47W516AD", "VKM47H516RK+", "VKM47H55RK+"})
        for (bool program : {true, false})
            for (bool hex : {true, false}) {
                ImageWorld world(model);
                Image_Buffer& image = program ? world.program() : world.data();
                (program ? world.frm.screen.txtAP_FileStart : world.frm.screen.txtDataFileStart)
                    .Text = "FFFF";
                if (hex)
                    world.load(image, "/a.hex", hex_file(0, pattern(0x10000)));
                else
                    world.load(image, "/a.bin", pattern(0x20000));
                EXPECT_EQ(image.Bytes.size(), program ? 0x12001u : 0x8001u);
                EXPECT_EQ(image.File_Low, 0xFFFF);
                EXPECT_TRUE(image.Has_File);
            }
}

TEST(BadInput, ABinaryOfAGigabyteIsReadNoFurtherThanTheImageReaches) {
    for (bool program : {true, false}) {
        ImageWorld world;
        MemoryFile& file = world.files.add("/big.bin", "MZ");
        file.size = gigabyte;
        file.rest = 1;
        Image_Buffer& image = program ? world.program() : world.data();
        Load_File(world.frm, "/big.bin", image);
        EXPECT_EQ(image.Bytes.back(), 1);
        // One look at its first lines, then the image and one byte more.
        const std::uint64_t used = image.Bytes.size() + 1;
        EXPECT_EQ(file.opens, 2);
        EXPECT_LE(file.bytes_read, 16384 + used);
        EXPECT_EQ(world.files.open_readers, 0);
    }
}

TEST(BadInput, AHexLineOfAMegabyteLosesItsExcess) {
    ImageWorld world("VKM47H516RK");
    std::string line = ":FF000000";
    for (int i = 0; i < (1 << 19); ++i) line += "01";
    world.load(world.program(), "/a.hex",
               line + "\r\n" + hex_record(0x200, 0, {7}) + ":00000001FF\r\n");
    EXPECT_TRUE(world.boxes().empty());
    EXPECT_EQ(world.at_address(0), 1);
    EXPECT_EQ(world.at_address(256), 1);
    EXPECT_EQ(world.at_address(257), 0);
    EXPECT_EQ(world.at_address(0x200), 7);
    EXPECT_EQ(world.program().Sum, 257 + 7);
}

TEST(BadInput, AGigabyteWithoutALineEndIsPassedWithoutKeepingIt) {
    ImageWorld world;
    MemoryFile& file = world.files.add("/big.hex", "no record");
    file.size = gigabyte / 8;
    file.rest = ' ';
    Load_File(world.frm, "/big.hex", world.program());
    EXPECT_EQ(world.program().File_High, 0);
    EXPECT_EQ(world.program().Sum, 0);
    EXPECT_EQ(file.bytes_read, gigabyte / 8);
}

TEST(BadInput, AFolderAMissingAndAnUnreadableFileCountAsEmpty) {
    for (const char* path : {"/folder", "/missing", "/closed", "/vanishes"}) {
        SCOPED_TRACE(path);
        ImageWorld world;
        world.files.add_folder("/folder");
        world.files.add("/closed", "secret").readable = false;
        world.files.add("/vanishes", "soon gone").vanishes = true;
        world.program().Bytes[0] = 1;
        Load_File(world.frm, path, world.program());
        EXPECT_EQ(world.at_address(0), 0);
        EXPECT_EQ(world.program().File_High, -1);
        EXPECT_EQ(world.program().Sum, 0);
        EXPECT_TRUE(world.boxes().empty());
        EXPECT_TRUE(world.frm.images.File_Loaded);
        EXPECT_EQ(world.frm.screen.txtFileCheckSum.Text, "0000000H       ");
    }
}

TEST(BadInput, AFileThatVanishesBehindTheDialogCountsAsEmpty) {
    ImageWorld world;
    world.files.add("/job/a.hex", hex_file(0, pattern(100))).vanishes = true;
    world.dialogs.choose_file("/job/a.hex");
    comLoadFile(world.frm);
    EXPECT_EQ(world.program().File_High, 0);
    EXPECT_EQ(world.frm.images.Current_File, "/job/a.hex");
}

TEST(BadInput, AFileThatBreaksOffWhileItIsReadEndsThere) {
    ImageWorld world;
    MemoryFile& file = world.files.add("/a.bin", pattern(3000));
    file.breaks_at = 1000;
    Load_File(world.frm, "/a.bin", world.program());
    EXPECT_EQ(world.program().File_High, 999);
    world.files.add("/a.hex", hex_file(0, pattern(3000))).breaks_at = 20;
    world.frm.screen.cheClearAP_Buffer.Value = 1;
    Load_File(world.frm, "/a.hex", world.program());
    EXPECT_EQ(world.boxes().size(), 1u);  // half a line is a bad line
    EXPECT_LT(world.program().File_High, 16);
}

std::string random_line(std::mt19937& random) {
    const char* digits = "0123456789ABCDEFabcdef";
    switch (random() % 6) {
        case 0:
            return hex_record(random() % 0x10000, static_cast<std::uint8_t>(random() % 7 == 0),
                              pattern(random() % 32));
        case 1: {
            std::string line = ":";
            for (std::size_t i = random() % 700; i > 0; --i) line += digits[random() % 22];
            return line + "\n";
        }
        case 2: {
            std::string line;
            for (std::size_t i = random() % 40; i > 0; --i) line += static_cast<char>(random());
            return line + "\n";
        }
        case 3: {
            std::string line = hex_record(random() % 0x10000, 0, pattern(random() % 255));
            line[random() % line.size()] = static_cast<char>(random());
            return line;
        }
        case 4:
            return ":\n";
        default:
            return hex_record(random() % 0x10000, static_cast<std::uint8_t>(random()), pattern(16));
    }
}

TEST(BadInput, RandomFilesNeverStoreOutsideTheImageOnAnyModel) {
    std::mt19937 random(154);
    for (const ModelGroup& group : MCU_AP_ISP_range)
        for (const ModelRow& row : group.rows) {
            if (row.MCU_Name.empty()) continue;
            SCOPED_TRACE(std::string(row.MCU_Name) + " " + std::string(row.MCU_ID));
            ImageWorld world;
            world.frm.screen.txtDevice.Text = row.MCU_Name;
            world.frm.catalogue.MCU_Info = test::record_of(group, row);
            world.frm.screen.txtISP_reange[1].Text = row.Split_Flag      ? "F7FF"
                                                     : random() % 8 == 0 ? "junk"
                                                                         : "0FFF";
            for (int round = 0; round < 4; ++round) {
                const char* starts[] = {"0", "FFFF", "8000", "1000", "FFFFFFFFFF", "zz", ""};
                world.frm.screen.txtAP_FileStart.Text = starts[random() % std::size(starts)];
                world.frm.screen.txtDataFileStart.Text = starts[random() % std::size(starts)];
                Image_Buffer& image = round % 2 == 0 ? world.program() : world.data();
                if (random() % 2 == 0) world.dialogs.answer_yes();
                std::string content;
                for (std::size_t lines = random() % 60; lines > 0; --lines)
                    content += random_line(random);
                world.load(image, round < 2 ? "/a.hex" : "/a.dat", content);
                ASSERT_EQ(world.program().Bytes.size(), 0x12001u);
                ASSERT_EQ(world.data().Bytes.size(), 0x8001u);
                // A HEX file never stores above the top of the model.
                if (round < 2) {
                    for (std::size_t a = static_cast<std::size_t>(row.Memory_Top) + 1;
                         a < image.Bytes.size(); ++a)
                        ASSERT_EQ(image.Bytes[a], 0) << a;
                }
                ASSERT_LE(world.frm.screen.txtBuffer.Text.size(), 4 + 62 * 60u);
                ASSERT_EQ(world.frm.screen.MousePointer, 0);
            }
        }
}

}  // namespace
}  // namespace vkm
