// What is programmed and in which pieces, as values.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>

#include "catalogue/model_table.h"
#include "session/program_ranges.h"

namespace vkm {
namespace {

MCU_Record model(int family, std::int32_t AP_End = 0xFFF, std::int32_t Data_End = 0x37FF) {
    MCU_Record record;
    record.MCU_Family = static_cast<std::int16_t>(family);
    record.AP_End = AP_End;
    record.Data_Start = AP_End + 1;
    record.Data_End = Data_End;
    return record;
}

Image_Buffer image(std::int32_t low, std::int32_t high) {
    Image_Buffer buffer;
    buffer.Image_Low = low;
    buffer.Image_High = high;
    return buffer;
}

// ---- the range of an image --------------------------------------------------

TEST(ImageRange, FamiliesWithoutALimitTakeTheImageAsItIs) {
    for (int family : {0, 1, 2, 5})
        EXPECT_EQ(program_image_range({model(family), 3.8}, image(0x123, 0x11FFF)),
                  (Address_Range{0x123, 0x11FFF}))
            << family;
}

TEST(ImageRange, Family6EndsWithTheDataMemoryAndBeginsAtZeroAtTheLowest) {
    const MCU_Record record = model(6, 0x1FFF, 0xEFFF);
    EXPECT_EQ(program_image_range({record, 3.8}, image(0x100, 0xEFFF)),
              (Address_Range{0x100, 0xEFFF}));
    EXPECT_EQ(program_image_range({record, 3.8}, image(-1, 0xFFFF)), (Address_Range{0, 0xEFFF}));
}

TEST(ImageRange, Families3And4AreCutWhereTheirFirmwareEnds) {
    const struct {
        std::int16_t family;
        std::int32_t AP_End;
        double version;
        std::int32_t limit;
    } cases[] = {{3, 0x07FF, 3.8, 0x13FF}, {3, 0x07FF, 5.0, 0x13FF}, {4, 0x07FF, 5.0, 0x2FFF},
                 {4, 0x3BFF, 5.1, 0x5DFF}, {4, 0x3C00, 5.1, 0x6FFF}, {3, 0x07FF, 5.1, 0x5DFF},
                 {4, 0x6FFF, 6.3, 0x6FFF}, {4, 0x6FFF, 0.0, 0x2FFF}};
    for (const auto& c : cases) {
        const MCU_Record record = model(c.family, c.AP_End);
        EXPECT_EQ(program_image_range({record, c.version}, image(0x10, c.limit)),
                  (Address_Range{0x10, c.limit}));
        EXPECT_EQ(program_image_range({record, c.version}, image(-5, c.limit + 1)),
                  (Address_Range{0, c.limit}));
        EXPECT_EQ(program_image_range({record, c.version}, image(0x7FFF, 0x7FFF)),
                  (Address_Range{c.limit, c.limit}));
    }
}

TEST(ImageRange, AFamilyThatIsntKnownHasNone) {
    EXPECT_FALSE(program_image_range({model(7), 3.8}, image(0, 100)));
    EXPECT_FALSE(program_image_range({model(-1), 3.8}, image(0, 100)));
}

// ---- program and data file in one image ------------------------------------------

Image_Buffer filled(std::size_t size, std::uint8_t seed, std::int32_t high) {
    Image_Buffer buffer = image(0, high);
    buffer.Bytes.resize(size);
    for (std::size_t i = 0; i < size; ++i)
        buffer.Bytes[i] = static_cast<std::uint8_t>(seed + i * 7 + i / 256);
    buffer.Has_File = true;
    return buffer;
}

TEST(JoinedImage, IsForFamilies3And4WithADataFile) {
    Image_Buffer data;
    for (int family : {0, 1, 2, 3, 4, 6}) {
        data.Has_File = true;
        EXPECT_EQ(joins_data_file(model(family), data), family == 3 || family == 4) << family;
        data.Has_File = false;
        EXPECT_FALSE(joins_data_file(model(family), data)) << family;
    }
}

TEST(JoinedImage, HoldsTheProgramUpToAPEndAndTheDataBehindIt) {
    Image_Buffer program = filled(ap_buffer_size, 1, 0x234);
    program.File_Low = 3;
    program.File_High = 0x222;
    program.Sum = 4711;
    const Image_Buffer data = filled(data_buffer_size, 100, 0x321);
    const Joined_Image joined = join_images(model(4, 0x3FF), program, data);

    EXPECT_EQ(joined.T100_Buffer.Buffer_Name, "T100_Buffer");
    EXPECT_EQ(joined.T100_Buffer.File_Low, 3);
    EXPECT_EQ(joined.T100_Buffer.File_High, 0x222);
    EXPECT_EQ(joined.T100_Buffer.Sum, 4711);
    EXPECT_EQ(joined.range, (Address_Range{0, 0x3FF + 0x321 + 1}));
    const auto& bytes = joined.T100_Buffer.Bytes;
    ASSERT_EQ(bytes.size(), static_cast<std::size_t>(0x3FF + 0x321 + 512 + 1));
    EXPECT_TRUE(std::equal(bytes.begin(), bytes.begin() + 0x400, program.Bytes.begin()));
    EXPECT_TRUE(
        std::equal(bytes.begin() + 0x400, bytes.begin() + 0x400 + 0x322, data.Bytes.begin()));
    EXPECT_TRUE(
        std::all_of(bytes.begin() + 0x722, bytes.end(), [](std::uint8_t b) { return b == 0; }));
}

TEST(JoinedImage, TakesAnEmptyDataFileForNone) {
    const Image_Buffer program = filled(ap_buffer_size, 1, 0x234);
    const Image_Buffer data = filled(data_buffer_size, 100, 0);
    const Joined_Image joined = join_images(model(4, 0x3FF), program, data);
    EXPECT_EQ(joined.range, (Address_Range{0, 0x235}));
    ASSERT_EQ(joined.T100_Buffer.Bytes.size(), static_cast<std::size_t>(0x234 + 513));
    EXPECT_TRUE(std::equal(joined.T100_Buffer.Bytes.begin(),
                           joined.T100_Buffer.Bytes.begin() + 0x235, program.Bytes.begin()));
    EXPECT_EQ(joined.T100_Buffer.Bytes[0x235], 0);
}

TEST(JoinedImage, LeavesOutDataWhoseAddressesLieBehindIt) {
    MCU_Record record = model(3, 0x1FF, 0x13FF);
    record.Data_Start = 0x1000;  // a gap between program area and data memory
    const Joined_Image joined =
        join_images(record, filled(ap_buffer_size, 1, 99), filled(data_buffer_size, 9, 99));
    EXPECT_EQ(joined.range, (Address_Range{0, 0x1FF + 99 + 1}));
    const auto& bytes = joined.T100_Buffer.Bytes;
    EXPECT_TRUE(
        std::all_of(bytes.begin() + 0x200, bytes.end(), [](std::uint8_t b) { return b == 0; }));
}

TEST(JoinedImage, StaysWithinItsBytesWhateverTheSizes) {
    for (std::int32_t data_high : {1, 100, 0x8000})
        for (std::int32_t AP_End : {0x1FF, 0x5FFE, 0x6FFF, 0x11FFF})
            for (std::size_t size : {std::size_t{0}, std::size_t{10}, data_buffer_size}) {
                const Joined_Image joined = join_images(model(4, AP_End), filled(size, 1, 0x50),
                                                        filled(size, 2, data_high));
                EXPECT_GE(joined.T100_Buffer.Bytes.size(),
                          static_cast<std::size_t>(joined.range.last));
            }
    const Joined_Image joined =
        join_images(model(4, 0x3FF), image(0, -7), filled(data_buffer_size, 2, 0));
    EXPECT_EQ(joined.range.first, 0);
}

// ---- the boot firmware's size --------------------------------------------------------

TEST(FirmwareSize, FollowsTheVersion) {
    const std::map<int, int> known = {{19, 1024}, {20, 1024}, {21, 1024}, {22, 1024},
                                      {23, 1024}, {24, 1024}, {26, 1024}};
    for (int number = 0; number < 40; ++number) {
        const auto size = firmware_size(number / 10.0);
        ASSERT_TRUE(size) << number;
        EXPECT_EQ(*size, known.contains(number) ? 1024 : 2048) << number;
    }
    EXPECT_EQ(firmware_size(2.0), 1024);
    EXPECT_EQ(firmware_size(0.5), 2048);
    EXPECT_EQ(firmware_size(3.0), 2048);
}

TEST(FirmwareSize, OfAVersionOutsideTheTableIsUnknown) {
    for (double version : {4.0, 5.1, 9.9, 1e9, -1.0}) EXPECT_FALSE(firmware_size(version));
    EXPECT_TRUE(firmware_size(3.9));
}

TEST(FirmwareLimit, LeavesTheLastBytesOfTheDataMemoryToTheFirmware) {
    EXPECT_EQ(firmware_limit(63487, 2048), 62463);
    EXPECT_EQ(firmware_limit(63487, 1536), 62975);
    EXPECT_EQ(firmware_limit(63487, 1024), 63487);
    EXPECT_EQ(firmware_limit(64511, 2560), 62975);
}

// ---- blocks -------------------------------------------------------------------------------

using Blocks = std::vector<Address_Range>;

TEST(Blocks, AnImageOf100BytesIsProgrammedTo639) {
    EXPECT_EQ(programmed_end(99, 128), 639);
    EXPECT_EQ(blocks_between(0, 639, 128),
              (Blocks{{0, 127}, {128, 255}, {256, 383}, {384, 511}, {512, 639}}));
    EXPECT_EQ(programmed_end(99, 512), 639);
    EXPECT_EQ(blocks_between(0, 639, 512), (Blocks{{0, 511}, {512, 1023}}));
}

TEST(Blocks, TheMinimumAppliesAfterRounding) {
    EXPECT_EQ(programmed_end(511, 512), 639);
    EXPECT_EQ(blocks_between(0, programmed_end(511, 512), 512).size(), 2u);
}

TEST(Blocks, TheEndIsRoundedUpToItsBlocksLastAddress) {
    EXPECT_EQ(programmed_end(639, 128), 639);
    EXPECT_EQ(programmed_end(640, 128), 767);
    EXPECT_EQ(programmed_end(640, 512), 1023);
    EXPECT_EQ(programmed_end(1023, 512), 1023);
    EXPECT_EQ(programmed_end(1024, 512), 1535);
    EXPECT_EQ(programmed_end(0xFFFF, 512), 0xFFFF);
    EXPECT_EQ(programmed_end(0x11FFF, 128), 0x11FFF);
}

TEST(Blocks, AnImageFrom0100BeginsThereAndRealigns) {
    EXPECT_EQ(blocks_between(0x100, 0x3FF, 512), (Blocks{{0x100, 0x1FF}, {0x200, 0x3FF}}));
}

TEST(Blocks, TheLastOneRunsToItsEndWhereverTheEndLies) {
    EXPECT_EQ(blocks_between(0, 1030, 512), (Blocks{{0, 511}, {512, 1023}, {1024, 1535}}));
}

TEST(Blocks, AnEndBeforeTheFirstBlockLeavesNone) {
    EXPECT_TRUE(blocks_between(0x800, 0x3FF, 512).empty());
    EXPECT_FALSE(within_one_block(0x800, 0x3FF, 512));
    EXPECT_TRUE(blocks_between(0x10FFFF, 639, 512).empty());
}

TEST(Blocks, OneBlockIsToldFromSeveral) {
    EXPECT_TRUE(within_one_block(0x200, 0x3FF, 512));
    EXPECT_TRUE(within_one_block(0x3FF, 0x3FF, 512));
    EXPECT_FALSE(within_one_block(0x1FF, 0x3FF, 512));
}

// ---- frames of a block -------------------------------------------------------------------------

using Chunks = std::vector<Chunk>;

TEST(Chunks, CutABlockIntoFrames) {
    EXPECT_EQ(chunks_of({0, 511}, 128), (Chunks{{0, 128}, {128, 128}, {256, 128}, {384, 128}}));
    EXPECT_EQ(chunks_of({0x100, 0x1FF}, 128), (Chunks{{0x100, 128}, {0x180, 128}}));
    EXPECT_EQ(chunks_of({512, 639}, 128), (Chunks{{512, 128}}));
}

TEST(Chunks, ABlockThatStartsOffTheBoundaryRealignsWithItsSecondFrame) {
    EXPECT_EQ(chunks_of({0x10, 0xFF}, 128), (Chunks{{0x10, 128}, {0x80, 128}}));
    EXPECT_EQ(chunks_of({0x1F0, 0x1FF}, 128), (Chunks{{0x1F0, 16}}));
}

TEST(Chunks, TheLastFrameEndsWithTheBlock) {
    EXPECT_EQ(chunks_of({0, 200}, 128), (Chunks{{0, 128}, {128, 73}}));
    EXPECT_EQ(chunks_of({0, 0}, 128), (Chunks{{0, 1}}));
    EXPECT_TRUE(chunks_of({1, 0}, 128).empty());
}

// ---- progress ----------------------------------------------------------------------------------

TEST(ProgressScale, CountsBytesUpTo32767) {
    const Progress_Scale scale = progress_scale({0x100, 32767});
    EXPECT_EQ(scale.Min, 0x100);
    EXPECT_EQ(scale.Max, 32768);
    EXPECT_EQ(scale.value_at(0x400), 0x400);
}

TEST(ProgressScale, CountsUnitsOf256Beyond) {
    const Progress_Scale scale = progress_scale({0x1234, 32768});
    EXPECT_EQ(scale.Min, 0x12);
    EXPECT_EQ(scale.Max, 129);
    EXPECT_EQ(scale.value_at(32768), 128);
    EXPECT_EQ(scale.value_at(128 * 256 + 128), 128);  // halves to the even number
    EXPECT_EQ(scale.value_at(127 * 256 + 128), 128);
    EXPECT_EQ(scale.value_at(1 << 20), 129);  // never beyond the bar
    EXPECT_EQ(progress_scale({32768, 40000}).Min, 128);
}

// ---- every model and many images
// ------------------------------------------------------------------

TEST(Blocks, CoverEveryImageOfEveryModelWithoutAGap) {
    int seen = 0;
    for (const ModelGroup& group : MCU_AP_ISP_range) {
        const std::int32_t block_size = group.MCU_Family == 0 ? 128 : 512;
        for (const ModelRow& row : group.rows) {
            for (std::int32_t first : {0, 1, 0x7F, 0x100, 0x3FF, 0x1000}) {
                for (std::int32_t last = first; last <= row.Memory_Top; last += 1777) {
                    const std::int32_t end = programmed_end(last, block_size);
                    ASSERT_GE(end, last);
                    ASSERT_GE(end, 639);
                    // Everything lies within the image's own bytes.
                    ASSERT_LT(end, static_cast<std::int32_t>(ap_buffer_size));
                    Blocks blocks = within_one_block(first, end, block_size)
                                        ? Blocks{{first, end}}
                                        : blocks_between(first, end, block_size);
                    std::int32_t next = first;
                    for (const Address_Range& block : blocks) {
                        ASSERT_EQ(block.first, next);
                        ASSERT_LE(block.last - block.first + 1, block_size);
                        ASSERT_EQ((block.last + 1) % 128, 0);
                        std::int32_t reached = block.first;
                        for (const Chunk& chunk : chunks_of(block, 128)) {
                            ASSERT_LE(chunk.address, reached);
                            ASSERT_GE(chunk.count, 1);
                            ASSERT_LE(chunk.count, 128);
                            ASSERT_GE(chunk.address + chunk.count, reached);
                            reached = chunk.address + chunk.count;
                        }
                        ASSERT_EQ(reached, block.last + 1);
                        next = block.last + 1;
                    }
                    ASSERT_GT(next, end);
                    ++seen;
                }
            }
        }
    }
    EXPECT_GT(seen, 10000);
}

}  // namespace
}  // namespace vkm
