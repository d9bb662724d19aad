// Loads that another load or a reset overtakes at a late moment: behind the last
// box of bad lines, behind the question, inside one huge line.
#include <gtest/gtest.h>

#include <string>

#include "image/image_files.h"
#include "image_world.h"

namespace vkm::test {
namespace {

// Its box stands from 0 to 100 ms, the next ones from there on, the question from
// 300 to 400 ms.
constexpr const char* three_bad_lines =
    ":010000000100\n:010001000200\n:010002000300\n:010003000400\n:00000001FF\n";

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

struct OvertakenWorld : ImageWorld {
    OvertakenWorld() { files.add("/b.hex", hex_file(0x200, pattern(8))); }
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

TEST(Overtaken, BehindTheThirdBadLineALoadAsksNothingMore) {
    OvertakenWorld world;
    world.dialogs.stays = Milliseconds(100);
    world.other_file_at(250);
    world.load(world.program(), "/a.hex", three_bad_lines);
    EXPECT_EQ(world.boxes().size(), 3u);
    expect_other_file(world);
}

TEST(Overtaken, BehindTheQuestionNeitherAnswerCounts) {
    for (bool yes : {true, false}) {
        SCOPED_TRACE(yes);
        OvertakenWorld world;
        world.dialogs.stays = Milliseconds(100);
        if (yes) world.dialogs.answer_yes();
        world.other_file_at(350);
        world.load(world.program(), "/a.hex", three_bad_lines);
        EXPECT_EQ(world.boxes().size(), 4u);
        expect_other_file(world);
    }
}

TEST(Overtaken, BehindTheQuestionByAResetLeavesAnEmptyImage) {
    OvertakenWorld world;
    world.dialogs.stays = Milliseconds(100);
    world.dialogs.answer_yes();
    world.choice_at(350);
    world.load(world.program(), "/a.hex", three_bad_lines);
    EXPECT_EQ(world.program().Bytes, std::vector<std::uint8_t>(0x12001));
    EXPECT_FALSE(world.program().Has_File);
    EXPECT_FALSE(world.frm.images.File_Loaded);
    EXPECT_EQ(world.frm.screen.txtFileCheckSum.Text, "");
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
        EXPECT_FALSE(world.program().Has_File);
        EXPECT_FALSE(world.frm.images.File_Loaded);
        EXPECT_LT(huge.bytes_read, 1u << 20);
    }
}

}  // namespace
}  // namespace vkm::test
