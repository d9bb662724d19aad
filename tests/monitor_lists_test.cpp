// The four lists: how they begin, what a dump changes in them and which rows it
// highlights.
#include <gtest/gtest.h>

#include "monitor/monitor_lists.h"
#include "monitor_frames.h"
#include "support/virtual_world.h"

namespace vkm::test {
namespace {

using Rows = std::vector<std::int32_t>;

const std::string zeros = "00 00 00 00 00 00 00 00";

std::string row_of(const std::string& address, const std::string& values) {
    return address + std::string(28 - address.size(), ' ') + values;
}

std::string hex(unsigned value, int digits) {
    char text[8];
    std::snprintf(text, sizeof text, "%0*X", digits, value);
    return text;
}

class Lists : public testing::Test {
  protected:
    Lists() {
        world.frm.catalogue.MCU_Info.MCU_Family = 2;
        Fill_Monitor_Lists(world.frm);
    }

    void show(const Bytes& frame) { Show_Dump(world.frm, frame); }

    const std::string& register_row(std::string_view name) const {
        for (const Entry& entry : registers.List)
            if (entry.Text.substr(8, 9) == std::string(name) + std::string(9 - name.size(), ' '))
                return entry.Text;
        ADD_FAILURE() << "no row " << name;
        return registers.List.front().Text;
    }

    static void expect_addresses(const Control& list, unsigned base, std::size_t rows, int digits) {
        ASSERT_EQ(list.List.size(), rows);
        for (std::size_t i = 0; i < rows; ++i)
            EXPECT_EQ(list.List[i].Text.substr(0, 28),
                      row_of(hex(base + 8 * static_cast<unsigned>(i), digits), ""));
    }

    static void expect_at_start(const Control& list, unsigned base, std::size_t rows, int digits) {
        expect_addresses(list, base, rows, digits);
        for (const Entry& entry : list.List) EXPECT_EQ(entry.Text.substr(28), zeros);
        EXPECT_EQ(list.ListIndex, -1);
        EXPECT_TRUE(list.Selected.empty());
        EXPECT_EQ(list.Value, 0);
    }

    static void expect_highlighted(const Control& list, const Rows& rows) {
        EXPECT_EQ(list.Selected, rows);
        EXPECT_EQ(list.ListIndex, rows.empty() ? -1 : rows.back());
    }

    VirtualWorld world;
    Control& registers = world.frm.screen.lst_debug1;
    Control& ram = world.frm.screen.lst_debug2;
    Control& xram = world.frm.screen.lst_debug3;
    Control& window = world.frm.screen.lst_debug4;
};

TEST_F(Lists, BeginWithoutRegisterValuesAndWithZeros) {
    ASSERT_EQ(registers.List.size(), 41u);
    EXPECT_EQ(registers.List[0].Text, "E0H     ACC      ");
    EXPECT_EQ(registers.List[40].Text, "B9H     SADEN    ");
    EXPECT_EQ(registers.ListIndex, -1);
    expect_at_start(ram, 0, 32, 2);
    expect_at_start(xram, 0, 128, 4);
    expect_at_start(window, 0, 64, 4);
}

TEST_F(Lists, OfRegistersIsThatOfTheFamily) {
    for (const auto& [family, rows] : {std::pair<int, std::size_t>{2, 41},
                                       {3, 52},
                                       {4, 67},
                                       {0, 0},
                                       {1, 0},
                                       {6, 0},
                                       {5, 0},
                                       {7, 0},
                                       {-1, 0}}) {
        world.frm.catalogue.MCU_Info.MCU_Family = static_cast<std::int16_t>(family);
        Rebuild_Register_List(world.frm);
        EXPECT_EQ(registers.List.size(), rows) << family;
    }
}

TEST_F(Lists, ARegisterDumpShowsEachValueBehindItsName) {
    Bytes payload = counting(128, 0x80);  // each cell is its address
    show(agent_frame(0, 0x80, payload));
    EXPECT_EQ(register_row("B"), "F0H     B        F0H  240");
    EXPECT_EQ(register_row("P0"), "80H     P0       80H  128");
    EXPECT_EQ(register_row("SADEN"), "B9H     SADEN    B9H  185");
    EXPECT_EQ(register_row("ISP_ADDRH"), "E3H     ISP_ADDRHE3H  227");
    // Those that the agent has saved.
    EXPECT_EQ(register_row("PSW"), "D0H     PSW      11H   17");
    EXPECT_EQ(register_row("ACC"), "E0H     ACC      22H   34");
    EXPECT_EQ(register_row("TCON"), "88H     TCON     33H   51");
    EXPECT_EQ(register_row("T2CON"), "C8H     T2CON    44H   68");
    EXPECT_EQ(register_row("IE"), "A8H     IE       66H  102");
    EXPECT_EQ(register_row("SP"), "81H     SP       77H  119");
    // The first time every row is new.
    EXPECT_EQ(registers.Selected.size(), 41u);
    EXPECT_EQ(registers.ListIndex, 40);
    EXPECT_EQ(registers.Value, 0);
}

TEST_F(Lists, CCONIsShownWhereTheFamilyHasIt) {
    world.frm.catalogue.MCU_Info.MCU_Family = 4;
    Rebuild_Register_List(world.frm);
    show(agent_frame(0, 0x80, Bytes(128, 0)));
    EXPECT_EQ(register_row("CCON"), "D8H     CCON     55H   85");
    EXPECT_EQ(register_row("PCA_PWM3"), "F5H     PCA_PWM3 00H    0");
    EXPECT_EQ(registers.Selected.size(), 67u);
}

TEST_F(Lists, HighlightWhatChangedSinceTheLastStop) {
    Bytes payload(128, 0);
    show(agent_frame(0, 0x80, payload));
    show(agent_frame(0, 0x80, payload));
    expect_highlighted(registers, {});
    payload[0x70] = 1;  // B
    payload[0x01] = 1;  // SP, which the saved one hides
    Saved saved;
    saved.PSW = 0x12;
    registers.Value = 7;
    show(agent_frame(0, 0x80, payload, saved));
    expect_highlighted(registers, {1, 5});
    EXPECT_EQ(registers.Value, 0) << "the top row is shown";
    show(agent_frame(0, 0x80, payload, saved));
    expect_highlighted(registers, {});
    // The value that it had before is a change too.
    show(agent_frame(0, 0x80, Bytes(128, 0)));
    expect_highlighted(registers, {1, 5});
}

TEST_F(Lists, ARegisterThatADumpDoesNotTellKeepsItsRow) {
    show(agent_frame(0, 0xF0, {0x42}));
    EXPECT_EQ(register_row("B"), "F0H     B        42H   66");
    EXPECT_EQ(register_row("DPH"), "83H     DPH      ");
    // ACC, B, SP, PSW, TCON, T2CON, IE.
    expect_highlighted(registers, {0, 1, 2, 5, 17, 23, 31});
    show(agent_frame(0, 0x83, {0x17}));
    EXPECT_EQ(register_row("B"), "F0H     B        42H   66");
    EXPECT_EQ(register_row("DPH"), "83H     DPH      17H   23");
    EXPECT_EQ(register_row("DPL"), "82H     DPL      ");
    expect_highlighted(registers, {3});
}

TEST_F(Lists, ARegisterDumpForAFamilyWithoutATableShowsNothing) {
    world.frm.catalogue.MCU_Info.MCU_Family = 6;
    Rebuild_Register_List(world.frm);
    show(agent_frame(0, 0x80, Bytes(128, 1)));
    EXPECT_TRUE(registers.List.empty());
    expect_highlighted(registers, {});
}

TEST_F(Lists, ARamDumpShowsItsCellsWithR0AndR1FirstAndSecond) {
    show(agent_frame(1, 0, counting(256)));
    expect_addresses(ram, 0, 32, 2);
    EXPECT_EQ(ram.List[0].Text, row_of("00", "99 88 02 03 04 05 06 07"));
    EXPECT_EQ(ram.List[1].Text, row_of("08", "08 09 0A 0B 0C 0D 0E 0F"));
    EXPECT_EQ(ram.List[31].Text, row_of("F8", "F8 F9 FA FB FC FD FE FF"));
    EXPECT_EQ(ram.Selected.size(), 32u);
    show(agent_frame(1, 0, counting(256)));
    expect_highlighted(ram, {});
    Saved saved;
    saved.R1 = 0x87;
    Bytes payload = counting(256);
    payload[0xFF] = 0;
    payload[0x00] = 0x55;  // R0's cell
    ram.Value = 9;
    show(agent_frame(1, 0, payload, saved));
    expect_highlighted(ram, {0, 31});
    EXPECT_EQ(ram.List[0].Text, row_of("00", "99 87 02 03 04 05 06 07"));
    EXPECT_EQ(ram.Value, 9) << "the operator's place in the list";
}

TEST_F(Lists, AShortRamDumpLeavesTheRest) {
    show(agent_frame(1, 0, counting(256)));
    show(agent_frame(1, 0, Bytes(10, 0xEE)));
    EXPECT_EQ(ram.List[0].Text, row_of("00", "99 88 EE EE EE EE EE EE"));
    EXPECT_EQ(ram.List[1].Text, row_of("08", "EE EE 0A 0B 0C 0D 0E 0F"));
    EXPECT_EQ(ram.List[2].Text, row_of("10", "10 11 12 13 14 15 16 17"));
    expect_highlighted(ram, {0, 1});
    show(frame_of_length(15, 1));
    EXPECT_EQ(ram.List[0].Text, row_of("00", "99 88 EE EE EE EE EE EE"));
    expect_highlighted(ram, {});
}

TEST_F(Lists, AnXramDumpShowsItsCellsFromZeroOn) {
    Bytes payload = counting(1024);
    show(agent_frame(2, 0x1200, payload));  // the address has no meaning here
    expect_addresses(xram, 0, 128, 4);
    EXPECT_EQ(xram.List[0].Text, row_of("0000", "00 01 02 03 04 05 06 07"));
    EXPECT_EQ(xram.List[127].Text, row_of("03F8", "F8 F9 FA FB FC FD FE FF"));
    EXPECT_EQ(xram.Selected.size(), 128u);
    payload[8] = 0xEE;
    payload[1023] = 0xEE;
    show(agent_frame(2, 0, payload));
    expect_highlighted(xram, {1, 127});
    show(agent_frame(2, 0, payload));
    expect_highlighted(xram, {});
}

TEST_F(Lists, AnXramDumpOfAnyLengthShowsWhatFits) {
    for (const std::size_t count : {0, 1, 7, 8, 9, 256, 1023, 1024, 1025, 1083}) {
        Fill_Monitor_Lists(world.frm);
        show(agent_frame(2, 0, Bytes(count, 0x5A)));
        expect_addresses(xram, 0, 128, 4);
        std::size_t shown = 0;
        for (const Entry& entry : xram.List)
            for (std::size_t at = 28; at < entry.Text.size(); at += 3)
                shown += entry.Text.substr(at, 2) == "5A";
        EXPECT_EQ(shown, std::min<std::size_t>(count, 1024)) << count;
        EXPECT_EQ(xram.Selected.size(), std::min<std::size_t>((count + 7) / 8, 128)) << count;
    }
}

TEST_F(Lists, TheWindowShows512CellsFromItsBase) {
    Bytes payload = counting(512);
    show(agent_frame(3, 0x1234, payload));
    expect_addresses(window, 0x1200, 64, 4);
    EXPECT_EQ(window.List[0].Text, row_of("1200", "00 01 02 03 04 05 06 07"));
    EXPECT_EQ(window.List[63].Text, row_of("13F8", "F8 F9 FA FB FC FD FE FF"));
    EXPECT_EQ(window.Selected.size(), 64u);
    payload[511] = 0;
    show(agent_frame(3, 0x13FF, payload));
    expect_highlighted(window, {63});
}

TEST_F(Lists, TheWindowKeepsItsPlaceAndMovesOnlyToAnotherBase) {
    struct Row {
        unsigned address, base;
    };
    for (const auto& [address, base] :
         {Row{0, 0}, Row{511, 0}, Row{512, 512}, Row{513, 512}, Row{0x3FF, 0x200},
          Row{0x400, 0x400}, Row{0xFDFF, 0xFC00}, Row{0xFE00, 0xFE00}, Row{0xFFFF, 0xFE00}}) {
        show(agent_frame(3, address, {}));
        expect_at_start(window, base, 64, 4);
    }
    show(agent_frame(3, 0xFFFF, Bytes(512, 0x77)));
    window.Value = 5;
    show(agent_frame(3, 0xFE00, {0x11}));
    EXPECT_EQ(window.List[0].Text, row_of("FE00", "11 77 77 77 77 77 77 77"));
    EXPECT_EQ(window.List[63].Text, row_of("FFF8", "77 77 77 77 77 77 77 77"));
    expect_highlighted(window, {0});
    EXPECT_EQ(window.Value, 5);
    // At another base nothing of the old one is left.
    show(agent_frame(3, 0x0000, {0x11}));
    EXPECT_EQ(window.List[0].Text, row_of("0000", "11 00 00 00 00 00 00 00"));
    EXPECT_EQ(window.List[1].Text, row_of("0008", zeros));
    expect_highlighted(window, {0});
    EXPECT_EQ(window.Value, 0);
}

TEST_F(Lists, AWindowDumpOfAnyLengthShowsWhatFits) {
    for (const std::size_t count : {0, 1, 511, 512, 513, 1083}) {
        Fill_Monitor_Lists(world.frm);
        show(agent_frame(3, 0, Bytes(count, 0x5A)));
        expect_addresses(window, 0, 64, 4);
        EXPECT_EQ(window.Selected.size(), std::min<std::size_t>((count + 7) / 8, 64)) << count;
    }
}

TEST_F(Lists, AnUnknownTypeChangesNone) {
    show(agent_frame(1, 0, counting(256)));
    const Control before[] = {registers, ram, xram, window};
    for (int type = 4; type < 256; ++type)
        show(agent_frame(static_cast<std::uint8_t>(type), 0x1234, Bytes(600, 0xEE)));
    EXPECT_TRUE(registers == before[0] && ram == before[1] && xram == before[2] &&
                window == before[3]);
}

TEST_F(Lists, EachTypeChangesItsOwnAlone) {
    for (std::uint8_t type = 0; type < 4; ++type) {
        Fill_Monitor_Lists(world.frm);
        show(agent_frame(type, 0x80, Bytes(128, 0xEE)));
        EXPECT_EQ(!registers.Selected.empty(), type == 0);
        EXPECT_EQ(!ram.Selected.empty(), type == 1);
        EXPECT_EQ(!xram.Selected.empty(), type == 2);
        EXPECT_EQ(!window.Selected.empty(), type == 3);
    }
}

TEST_F(Lists, ClearingLeavesTheWindow) {
    show(agent_frame(0, 0x80, Bytes(128, 1)));
    show(agent_frame(1, 0, Bytes(256, 1)));
    show(agent_frame(2, 0, Bytes(1024, 1)));
    show(agent_frame(3, 0x400, Bytes(512, 1)));
    const Control moved = window;
    ram.Value = 3;
    xram.Value = 3;
    Clear_Monitor_Lists(world.frm);
    ASSERT_EQ(registers.List.size(), 41u);
    for (const Entry& entry : registers.List) EXPECT_EQ(entry.Text.size(), 17u);
    expect_highlighted(registers, {});
    expect_at_start(ram, 0, 32, 2);
    expect_at_start(xram, 0, 128, 4);
    EXPECT_EQ(window, moved);
    // Every register is new again.
    show(agent_frame(0, 0x80, Bytes(128, 1)));
    EXPECT_EQ(registers.Selected.size(), 41u);
    Fill_Monitor_Lists(world.frm);
    expect_at_start(window, 0, 64, 4);
}

TEST_F(Lists, FramesOfEveryTypeAndLengthKeepTheirShape) {
    for (std::uint8_t type = 0; type < 5; ++type)
        for (std::size_t length = 4; length <= 1100; ++length) {
            show(frame_of_length(length, type));
            ASSERT_EQ(registers.List.size(), 41u);
            ASSERT_EQ(ram.List.size(), 32u);
            ASSERT_EQ(xram.List.size(), 128u);
            ASSERT_EQ(window.List.size(), 64u);
            for (const Control* list : {&ram, &xram, &window})
                for (const Entry& entry : list->List) ASSERT_EQ(entry.Text.size(), 51u);
            for (const Entry& entry : registers.List)
                ASSERT_TRUE(entry.Text.size() == 17 || entry.Text.size() == 25) << entry.Text;
        }
}

}  // namespace
}  // namespace vkm::test
