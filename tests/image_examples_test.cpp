// Files as a compiler writes them, and how long a big one takes.
#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>

#include "image/image_files.h"
#include "image_load_timing.h"
#include "image_world.h"

namespace vkm {
namespace {

using test::ImageWorld;

std::string example(const std::string& name) {
    std::ifstream file(std::string(VKM_EXAMPLES) + "/" + name, std::ios::binary);
    EXPECT_TRUE(file.is_open()) << name;
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

TEST(ExampleFile, BlinkLoadsIntoTheSmallestModelWithoutABox) {
    ImageWorld world("VKM47H51RB");
    world.load(world.program(), "/examples/blink.hex", example("blink.hex"));
    EXPECT_TRUE(world.boxes().empty());
    EXPECT_TRUE(world.frm.images.File_Loaded);
    EXPECT_EQ(world.at_address(0), 0x02);  // LJMP at the reset vector
    const auto& bytes = world.program().Bytes;
    const std::string greeting = "Hello. This is the example program.\r\n";
    EXPECT_NE(std::search(bytes.begin(), bytes.end(), greeting.begin(), greeting.end()),
              bytes.end());
    // The end that the linker reported. The records stand out of order, so it isn't
    // that of the last one.
    EXPECT_EQ(world.program().File_High, 0x94F);
}

TEST(ExampleFile, CounterKeepsTheGapsOfItsVectors) {
    ImageWorld world("VKM26H2052");
    world.load(world.program(), "/examples/counter.hex", example("counter.hex"));
    EXPECT_TRUE(world.boxes().empty());
    EXPECT_EQ(world.at_address(0), 0x02);
    EXPECT_EQ(world.at_address(0x0B), 0x02);  // vector of timer 0
    for (std::size_t address = 4; address < 0x0B; ++address)
        EXPECT_EQ(world.at_address(address), 0);
}

TEST(LoadTime, OfA64KHexFileIsPrinted) {
    ImageWorld world("VKM47H516RK");
    world.files.add("/big.hex", test::hex_file(0, test::pattern(0x10000)));
    const double ms = test::milliseconds_per_load(world.frm, "/big.hex", 5);
    std::printf("a 64 K HEX file loads in %.3f ms\n", ms);
    RecordProperty("milliseconds", std::to_string(ms));
    EXPECT_EQ(world.program().File_High, 0xFFFF);
    EXPECT_LT(ms, 1000);  // whatever the build and the machine
}

}  // namespace
}  // namespace vkm
