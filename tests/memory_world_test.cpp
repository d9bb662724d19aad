// Files and settings in memory: the ways in which they go wrong on purpose.
#include <gtest/gtest.h>

#include "support/memory_files.h"
#include "support/memory_settings.h"

namespace vkm::test {
namespace {

using Bytes = std::vector<std::uint8_t>;

std::uint64_t read_all(FileReader& reader, std::uint64_t at_most = ~std::uint64_t{0}) {
    Bytes room(100'000);
    std::uint64_t total = 0;
    while (total < at_most) {
        const std::size_t count = reader.read(room);
        if (count == 0) break;
        total += count;
    }
    return total;
}

TEST(MemoryFilesTest, AFileOfAGigabyteNeedsNoMemoryAndCountsWhatIsReadOfIt) {
    MemoryFiles files;
    MemoryFile& big = files.add("/big.bin", Bytes{1, 2, 3});
    big.size = 1'000'000'000;
    big.rest = 0xEE;
    const auto reader = files.open("/big.bin");
    Bytes room(5);
    ASSERT_EQ(reader->read(room), 5u);
    EXPECT_EQ(room, (Bytes{1, 2, 3, 0xEE, 0xEE}));
    read_all(*reader, 200'000);
    EXPECT_EQ(big.bytes_read, 200'005u);
    EXPECT_EQ(big.opens, 1);
}

TEST(MemoryFilesTest, AFileThatVanishesIsThereAndCannotBeOpened) {
    MemoryFiles files;
    files.add("/a.hex", "text").vanishes = true;
    EXPECT_TRUE(files.exists("/a.hex"));
    EXPECT_EQ(files.open("/a.hex"), nullptr);
    EXPECT_FALSE(files.exists("/a.hex"));
}

TEST(MemoryFilesTest, AFileThatMayNotBeReadIsThereAndStays) {
    MemoryFiles files;
    files.add("/a.hex", "text").readable = false;
    EXPECT_EQ(files.open("/a.hex"), nullptr);
    EXPECT_TRUE(files.exists("/a.hex"));
}

TEST(MemoryFilesTest, ReadingBreaksOffWhereItIsToldTo) {
    MemoryFiles files;
    files.add("/a.bin", Bytes(1000, 1)).breaks_at = 300;
    EXPECT_EQ(read_all(*files.open("/a.bin")), 300u);
}

TEST(MemoryFilesTest, AFileThatGoesWhileItIsReadEndsThere) {
    MemoryFiles files;
    files.add("/a.bin", Bytes(1000, 1));
    const auto reader = files.open("/a.bin");
    Bytes room(10);
    EXPECT_EQ(reader->read(room), 10u);
    files.remove("/a.bin");
    EXPECT_EQ(reader->read(room), 0u);
}

TEST(MemoryFilesTest, AFullDiskLeavesTheFileBefore) {
    MemoryFiles files;
    files.add("/a.bin", Bytes{1});
    files.disk_full = true;
    EXPECT_FALSE(files.replace("/a.bin", Bytes{2}));
    EXPECT_EQ(files.content("/a.bin"), Bytes{1});
}

TEST(MemoryFilesTest, AReaderThatIsNotGivenBackIsSeen) {
    MemoryFiles files;
    files.add("/a.bin", Bytes{1});
    const auto reader = files.open("/a.bin");
    EXPECT_EQ(files.open_readers, 1);
}

TEST(MemoryFilesTest, EachWriteMakesAFileYounger) {
    MemoryFiles files;
    const auto first = files.add("/a.bin", Bytes{1}).last_modified;
    ASSERT_TRUE(files.replace("/a.bin", Bytes{1}));
    EXPECT_GT(files.files["/a.bin"].last_modified, first);
}

TEST(MemorySettingsTest, ACrashTakesWhatWasNotFlushed) {
    MemorySettings store;
    store.save("Settings", "a", "1");
    store.flush();
    store.save("Settings", "a", "2");
    store.save("Settings", "b", "3");
    store.crash();
    EXPECT_EQ(store.dump(), "[Settings] a=1\n");
}

TEST(MemorySettingsTest, SavingWhatIsStoredAlreadyIsNoChange) {
    MemorySettings store;
    store.preset("Settings", "a", "1");
    store.save("Settings", "a", "1");
    EXPECT_EQ(store.changes, 0);
    store.flush();
    EXPECT_EQ(store.flushes, 1);
    EXPECT_EQ(store.disk_writes, 0);
    store.save("Settings", "a", "2");
    store.flush();
    EXPECT_EQ(store.changes, 1);
    EXPECT_EQ(store.disk_writes, 1);
}

}  // namespace
}  // namespace vkm::test
