// What a good frame of the agent tells about the memories of its target.
#include <gtest/gtest.h>

#include <map>

#include "monitor/target_dump.h"
#include "monitor_frames.h"

namespace vkm::test {
namespace {

using Known = std::map<int, int>;  // cells that the frame tells, by address

template <class Cells>
Known known(const Cells& cells) {
    Known values;
    for (std::size_t i = 0; i < cells.size(); ++i)
        if (cells[i] != 256) values[static_cast<int>(i)] = cells[i];
    return values;
}

// The seven that the agent has saved: PSW, ACC, TCON, T2CON, CCON, IE, SP.
const Known saved = {{208, 0x11}, {224, 0x22}, {136, 0x33}, {200, 0x44},
                     {216, 0x55}, {168, 0x66}, {129, 0x77}};

Known with(Known values, const Known& more) {
    for (const auto& [address, value] : more) values[address] = value;
    return values;
}

Known counted(int first, int count, int value) {
    Known values;
    for (int i = 0; i < count; ++i) values[first + i] = (value + i) % 256;
    return values;
}

TEST(Dump, TellsItsType) {
    for (int type = 0; type < 256; ++type)
        EXPECT_EQ(type_of_dump(agent_frame(static_cast<std::uint8_t>(type), 0, {})), type);
    // Of four bytes the last is type and sum in one.
    EXPECT_EQ(type_of_dump(Bytes{0xAA, 0x00, 0x04, 0xAE}), 0xAE);
    for (std::size_t size = 0; size < 4; ++size) EXPECT_GT(type_of_dump(Bytes(size, 0)), 3) << size;
}

TEST(RegisterDump, WithoutPayloadTellsTheSavedRegisters) {
    // Its length of 17 counts one cell, which is the sum.
    const Bytes frame = agent_frame(0, 0x9A, {});
    ASSERT_EQ(frame.size(), 17u);
    EXPECT_EQ(known(register_cells(frame)), with({{0x9A, frame.back()}}, saved));
}

TEST(RegisterDump, FillsTheCellsFromItsAddressUpToTheSum) {
    const Bytes frame = agent_frame(0, 0x90, {0xE1, 0xE2, 0xE3});
    EXPECT_EQ(known(register_cells(frame)),
              with({{0x90, 0xE1}, {0x91, 0xE2}, {0x92, 0xE3}, {0x93, frame.back()}}, saved));
}

TEST(RegisterDump, OfTheWholeMemoryPutsTheSumNowhere) {
    const Bytes frame = agent_frame(0, 0x80, counting(128, 0x40));
    EXPECT_EQ(known(register_cells(frame)), with(counted(0x80, 128, 0x40), saved));
}

TEST(RegisterDump, TheSavedRegistersWinOverThePayload) {
    const Cells_256 cells = register_cells(agent_frame(0, 0x80, Bytes(128, 0xEE)));
    for (const auto& [address, value] : saved)
        EXPECT_EQ(cells[static_cast<std::size_t>(address)], value) << address;
    EXPECT_EQ(cells[0x80], 0xEE);
    EXPECT_EQ(cells[0xFF], 0xEE);
}

TEST(RegisterDump, BeginsAtAnyAddress) {
    struct Row {
        unsigned address;
        Known cells;
    };
    for (const auto& [address, cells] :
         {Row{0x00, counted(0, 4, 0xE0)}, Row{0x7F, counted(127, 4, 0xE0)},
          Row{0x80, with(counted(128, 4, 0xE0), {{129, 0x77}})}, Row{0xFE, counted(254, 2, 0xE0)},
          Row{0xFF, counted(255, 1, 0xE0)}}) {
        Known expected = with(cells, saved);
        Known told = known(register_cells(agent_frame(0, address, counting(4, 0xE0))));
        told.erase(static_cast<int>(address) + 4);  // the sum
        EXPECT_EQ(told, expected) << address;
    }
    // The high byte of the address has no meaning here.
    EXPECT_EQ(register_cells(agent_frame(0, 0x3490, {1}))[0x90], 1);
}

TEST(RegisterDump, APayloadBeyondTheLastAddressIsCut) {
    EXPECT_EQ(known(register_cells(agent_frame(0, 0xF0, counting(150)))),
              with(counted(0xF0, 16, 0), saved));
}

TEST(RegisterDump, IsCountedByTheLowByteOfItsLength) {
    // 16 + 239 + 1 bytes: a low byte of 0, so that no cell is told.
    EXPECT_EQ(known(register_cells(agent_frame(0, 0x80, Bytes(239, 5)))), saved);
    // 16 + 259 + 1: a low byte of 20, so four cells.
    EXPECT_EQ(known(register_cells(agent_frame(0, 0xF0, Bytes(259, 5)))),
              with({{0xF0, 5}, {0xF1, 5}, {0xF2, 5}, {0xF3, 5}}, saved));
}

TEST(RegisterDump, TooShortForAFieldLeavesItsRegisterUnknown) {
    const std::vector<int> in_order = {208, 224, 136, 200, 216, 168, 129};
    for (std::size_t length = 4; length <= 16; ++length) {
        Known expected;
        // The last byte is the sum.
        for (std::size_t i = 0; i < in_order.size() && 7 + i < length - 1; ++i)
            expected[in_order[i]] = 0x3C;
        EXPECT_EQ(known(register_cells(frame_of_length(length, 0))), expected) << length;
    }
}

TEST(RamDump, FillsTheCellsFromZeroAndTakesR0AndR1FromTheirFields) {
    const Known expected = with(counted(0, 256, 0x40), {{0, 0x99}, {1, 0x88}});
    EXPECT_EQ(known(ram_cells(agent_frame(1, 0, counting(256, 0x40)))), expected);
    // The address has no meaning here.
    EXPECT_EQ(known(ram_cells(agent_frame(1, 0x1280, counting(256, 0x40)))), expected);
}

TEST(RamDump, ShorterOrLongerThanTheMemoryTellsWhatIsThere) {
    const Known r0_r1 = {{0, 0x99}, {1, 0x88}};
    EXPECT_EQ(known(ram_cells(agent_frame(1, 0, {}))), r0_r1);
    EXPECT_EQ(known(ram_cells(agent_frame(1, 0, {7}))), r0_r1);
    EXPECT_EQ(known(ram_cells(agent_frame(1, 0, {7, 8, 9}))), with(r0_r1, {{2, 9}}));
    EXPECT_EQ(known(ram_cells(agent_frame(1, 0, counting(128, 0x40)))),
              with(counted(0, 128, 0x40), r0_r1));
    EXPECT_EQ(known(ram_cells(agent_frame(1, 0, counting(300, 0x40)))),
              with(counted(0, 256, 0x40), r0_r1));
    EXPECT_EQ(known(ram_cells(agent_frame(1, 0, counting(1083, 0x40)))),
              with(counted(0, 256, 0x40), r0_r1));
}

TEST(RamDump, WithoutTheFieldsOfR0AndR1LeavesThemUnknown) {
    for (std::size_t length = 4; length <= 15; ++length)
        EXPECT_EQ(known(ram_cells(frame_of_length(length, 1))), Known()) << length;
    EXPECT_EQ(known(ram_cells(frame_of_length(16, 1))), (Known{{1, 0x3C}}));  // R1 stands first
    EXPECT_EQ(known(ram_cells(frame_of_length(17, 1))), (Known{{0, 0x3C}, {1, 0x3C}}));
    EXPECT_EQ(known(ram_cells(frame_of_length(18, 1))), (Known{{0, 0x3C}, {1, 0x3C}}));
    EXPECT_EQ(known(ram_cells(frame_of_length(20, 1))), (Known{{0, 0x3C}, {1, 0x3C}, {2, 0x3C}}));
}

TEST(Payload, IsWhatStandsBetweenTheFieldsAndTheSum) {
    EXPECT_EQ(payload_cells(agent_frame(2, 0, {0xAB, 0x00, 0xFF}), 1024),
              (std::vector<Cell>{0xAB, 0x00, 0xFF}));
    for (const std::size_t count : {0, 1, 8, 511, 512, 513, 1023, 1024, 1025, 1083}) {
        const Bytes frame = agent_frame(2, 0, counting(count));
        for (const std::size_t most : {std::size_t{512}, std::size_t{1024}}) {
            const std::vector<Cell> cells = payload_cells(frame, most);
            EXPECT_EQ(cells.size(), std::min(count, most));
            for (std::size_t i = 0; i < cells.size(); ++i) ASSERT_EQ(cells[i], i % 256);
        }
    }
    for (std::size_t length = 4; length <= 17; ++length)
        EXPECT_TRUE(payload_cells(frame_of_length(length), 1024).empty()) << length;
}

TEST(Window, BeginsAtAMultipleOf512) {
    for (unsigned base = 0; base <= 0xFE00; base += 512)
        for (const unsigned address : {base, base + 1, base + 255, base + 256, base + 511})
            EXPECT_EQ(window_base(agent_frame(3, address, {})), base) << address;
}

TEST(Window, WithoutItsAddressBeginsAtZero) {
    // Of six bytes the high byte of the address would be the sum.
    for (std::size_t length = 4; length <= 6; ++length)
        EXPECT_EQ(window_base(frame_of_length(length, 3)), 0) << length;
    EXPECT_EQ(window_base(frame_of_length(7, 3)), 0x3C00);
    EXPECT_EQ(window_base(frame_of_length(8, 3)), 0x3C00);
}

}  // namespace
}  // namespace vkm::test
