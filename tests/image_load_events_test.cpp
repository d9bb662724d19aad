// Events inside a load: another load or a reset overtakes it, a field changes, a
// page is drawn.
#include <gtest/gtest.h>

#include <string>

#include "image/image_files.h"
#include "image_world.h"

namespace vkm::test {
namespace {

void expect_other_file(ImageWorld& world) {
    EXPECT_EQ(world.at_address(0), 0);
    EXPECT_EQ(world.at_address(0x200), 1);
    EXPECT_EQ(world.program().File_High, 0x207);
    EXPECT_EQ(world.program().Image_High, 0x207);
    EXPECT_TRUE(world.program().Has_File);
    EXPECT_TRUE(world.frm.images.File_Loaded);
    EXPECT_EQ(world.frm.screen.txtFileCheckSum.Text.substr(7), "H       ");
    EXPECT_EQ(world.frm.screen.MousePointer, 0);
    EXPECT_EQ(world.files.open_readers, 0);
}

void expect_empty_image(ImageWorld& world) {
    EXPECT_EQ(world.program().Bytes, std::vector<std::uint8_t>(0x12001));
    EXPECT_FALSE(world.program().Has_File);
    EXPECT_FALSE(world.frm.images.File_Loaded);
    EXPECT_EQ(world.frm.screen.txtFileCheckSum.Text, "");
    EXPECT_EQ(world.frm.screen.MousePointer, 0);
}

struct OvertakenWorld : ImageWorld {
    explicit OvertakenWorld(std::string_view model = "VKM47H51RB") : ImageWorld(model) {
        files.add("/b.hex", hex_file(0x200, pattern(8)));
        dialogs.stays = Milliseconds(100);
    }
    // One line of a gigabyte.
    const MemoryFile& huge_line(const char* path) {
        MemoryFile& huge = files.add(path, std::string_view(":"));
        huge.size = 1u << 30;
        huge.rest = '0';
        return huge;
    }
    void other_file_at(std::int64_t ms) {
        at(ms, [this] { Load_File(frm, "/b.hex", program()); });
    }
    void choice_at(std::int64_t ms) {
        at(ms, [this] { choose_model("VKM26H2052"); });
    }
};

TEST(Overtaken, WhileItReadsLeavesTheOther) {
    OvertakenWorld world;
    world.other_file_at(0);
    world.load(world.program(), "/a.hex", hex_file(0, pattern(1000)));
    expect_other_file(world);
}

TEST(Overtaken, WhileItReadsByAResetLeavesAnEmptyImage) {
    for (const char* path : {"/a.hex", "/a.bin", "/hexadecimal"}) {
        SCOPED_TRACE(path);
        OvertakenWorld world;
        world.choice_at(0);
        if (std::string(path) == "/a.bin")
            world.load(world.program(), path, pattern(3000));
        else
            world.load(world.program(), path, hex_file(0, pattern(3000)));
        expect_empty_image(world);
    }
}

// A reload by a timer while the operator reads the box of the range rules or that
// of a bad line.
TEST(Overtaken, BehindABoxLeavesTheOther) {
    for (const std::string& content : {hex_file(0x4000, pattern(8)), std::string(":0100000041BF\n"),
                                       std::string(four_bad_lines)}) {
        OvertakenWorld world("VKM47W54AD");
        world.other_file_at(50);
        world.load(world.program(), "/a.hex", content);
        EXPECT_EQ(world.boxes().size(), 1u);
        expect_other_file(world);
    }
}

TEST(Overtaken, BehindABoxByAResetLeavesAnEmptyImage) {
    OvertakenWorld world("VKM47W54AD");
    world.at(50, [&] { Reset_Buffer(world.frm, 0, world.program()); });
    world.load(world.program(), "/a.hex", hex_file(0x4000, pattern(8)));
    EXPECT_FALSE(world.frm.images.File_Loaded);
    EXPECT_FALSE(world.program().Has_File);
    EXPECT_EQ(world.program().Image_High, 0x3FF);
}

// The boxes of the bad lines stand from 0 to 300 ms, the question to 400 ms.
TEST(Overtaken, BehindTheThirdBadLineALoadAsksNothingMore) {
    OvertakenWorld world;
    world.other_file_at(250);
    world.load(world.program(), "/a.hex", four_bad_lines);
    EXPECT_EQ(world.boxes().size(), 3u);
    expect_other_file(world);
}

TEST(Overtaken, BehindTheQuestionNeitherAnswerCounts) {
    for (bool yes : {true, false}) {
        SCOPED_TRACE(yes);
        OvertakenWorld world;
        if (yes) world.dialogs.answer_yes();
        world.other_file_at(350);
        world.load(world.program(), "/a.hex", four_bad_lines);
        EXPECT_EQ(world.boxes().size(), 4u);
        expect_other_file(world);
    }
}

TEST(Overtaken, BehindTheQuestionByAResetLeavesAnEmptyImage) {
    OvertakenWorld world;
    world.dialogs.answer_yes();
    world.choice_at(350);
    world.load(world.program(), "/a.hex", four_bad_lines);
    expect_empty_image(world);
}

// A file of one line: read as HEX by its name, or looked at first. The reading
// is given up at the first turn that overtakes it.
TEST(Overtaken, InsideAHugeLineALoadReadsNoFurther) {
    for (const char* path : {"/huge.hex", "/huge.txt"}) {
        SCOPED_TRACE(path);
        OvertakenWorld world;
        const MemoryFile& huge = world.huge_line(path);
        world.other_file_at(0);
        Load_File(world.frm, path, world.program());
        expect_other_file(world);
        EXPECT_LT(huge.bytes_read, 1u << 20);
    }
}

TEST(Overtaken, InsideAHugeLineByAResetLeavesAnEmptyImage) {
    for (const char* path : {"/huge.hex", "/huge.txt"}) {
        SCOPED_TRACE(path);
        OvertakenWorld world;
        const MemoryFile& huge = world.huge_line(path);
        world.choice_at(0);
        Load_File(world.frm, path, world.program());
        expect_empty_image(world);
        EXPECT_LT(huge.bytes_read, 1u << 20);
    }
}

// ---- other events ----------------------------------------------------------------

TEST(LoadFile, TakesAStartAddressThatWasTypedWhileTheFileWasLookedAt) {
    ImageWorld world;
    world.at(0, [&] { world.frm.screen.txtAP_FileStart.Text = "0020"; });
    world.load(world.program(), "/a.txt", hex_file(0, pattern(8)));
    EXPECT_EQ(world.program().File_Low, 0x20);
    EXPECT_EQ(world.at_address(0x20), 1);
}

TEST(LoadFile, OfTheOtherImageInsideALoadGoesItsOwnWay) {
    ImageWorld world;
    world.files.add("/d.bin", pattern(8));
    world.at(0, [&] { Load_File(world.frm, "/d.bin", world.data()); });
    world.load(world.program(), "/a.hex", hex_file(0, pattern(1000)));
    EXPECT_EQ(world.at_address(999), pattern(1000).back());
    EXPECT_EQ(world.data().Bytes[7], pattern(8).back());
    EXPECT_TRUE(world.program().Has_File);
    EXPECT_TRUE(world.data().Has_File);
}

TEST(LoadFile, ShowsAWholeImageAtEveryTurn) {
    ImageWorld world;
    world.load(world.program(), "/a.hex", hex_file(0, pattern(100)));
    std::vector<std::uint8_t> seen;
    world.at(0, [&] {
        seen = world.program().Bytes;
        vscFile_Change(world.frm, 0);
    });
    world.run_for(0);
    seen.clear();
    world.at(20, [&] { seen = world.program().Bytes; });
    world.dialogs.stays = Milliseconds(50);
    world.frm.screen.txtAP_FileStart.Text = "0200";
    // Half of it is placed when the box of its bad line comes up.
    world.load(world.program(), "/b.hex", hex_record(0, 0, {9}) + ":010001000200\n:00000001FF\n");
    ASSERT_FALSE(seen.empty());
    EXPECT_EQ(seen[0], 1);
    EXPECT_EQ(seen[0x200], 0);
    EXPECT_EQ(world.at_address(0x200), 9);
    EXPECT_EQ(world.at_address(0x201), 2);
}

}  // namespace
}  // namespace vkm::test
