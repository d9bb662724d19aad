// The count of sectors in the erase frame, as it goes out.
#include <gtest/gtest.h>

#include <functional>
#include <utility>

#include "sent_erases.h"

namespace vkm::test {
namespace {

TEST(EraseOnTheWire, TellsTheCountByLetterVersionModelAndImage) {
    const struct {
        const char* chip;
        const char* model;
        char letter;
        int version;
        std::size_t bytes;
        int count;
    } cases[] = {
        {"VKM47H51RB", "VKM47H51RB", 'C', 0x27, 511, 30},
        {"VKM47H51RB", "VKM47H51RB", 'C', 0x27, 4000, 30},
        {"VKM47H58RK+", "VKM47W58RK+", 'C', 0x27, 511, 126},
        {"VKM47H51RB", "VKM47H51RB", 'C', 0x28, 511, 1},
        {"VKM47H51RB", "VKM47H51RB", 'C', 0x28, 512, 1},
        {"VKM47H51RB", "VKM47H51RB", 'C', 0x28, 513, 2},
        {"VKM47H58RK+", "VKM47H58RK+", 'C', 0x38, 32768, 64},
        {"VKM47H516RK", "VKM47H516RK", 'A', 0x25, 512, 255},
        {"VKM47W516AD", "VKM47W516X2", 'B', 0x24, 512, 124},
        {"VKM47W58AD", "VKM47W58AD", 'B', 0x24, 512, 64},
        {"VKM47W54AD", "VKM47W54AD", 'B', 0x24, 512, 32},
        {"VKM47W52AD", "VKM47W52AD", 'B', 0x24, 512, 16},
        {"VKM26H2052", "VKM26H2052", 'D', 0x38, 512, 255},
        {"VKM27J032", "VKM27J032", 'G', 0x38, 512, 255},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.model) + " " + std::to_string(c.version) + " " +
                     std::to_string(c.bytes));
        SessionBench bench({.model = c.chip, .letter = c.letter, .version = c.version}, c.model);
        bench.load(c.bytes);
        comDownload(bench.frm, 0);
        const auto erases = sent_erases(bench);
        ASSERT_EQ(erases.size(), 1u) << bench.story();
        EXPECT_EQ(erases[0][0], c.count);
        EXPECT_TRUE(bench.flash_holds(bench.image)) << bench.story();
    }
}

TEST(EraseOnTheWire, CountsTheWholeChipForAnImageOf256SectorsOrMore) {
    for (const auto& [image_high, count] : {std::pair{254 * 512 - 1, 254},
                                            {255 * 512 - 1, 255},
                                            {256 * 512 - 1, 255},
                                            {256 * 512, 255}}) {
        SessionBench bench({.model = "VKM47H51RB", .version = 0x28});
        bench.load(512);
        bench.frm.images.AP_Buffer.Image_High = image_high;
        // The frame alone is wanted: an image of that size fits no chip.
        std::function<void()> stop = [&] {
            if (sent_erases(bench).empty())
                bench.at(5, stop);
            else
                comStop_Download(bench.frm);
        };
        bench.at(0, stop);
        comDownload(bench.frm, 0);
        ASSERT_EQ(sent_erases(bench).size(), 1u);
        EXPECT_EQ(sent_erases(bench)[0][0], count) << image_high;
    }
}

}  // namespace
}  // namespace vkm::test
