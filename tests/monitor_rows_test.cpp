// The rows of the monitor's lists to the letter, and the register tables.
#include <gtest/gtest.h>

#include "monitor/list_rows.h"
#include "monitor_frames.h"
#include "text/trimming.h"

namespace vkm::test {
namespace {

// Written down by hand from what each family has.
constexpr std::string_view family_2 =
    "E0H ACC, F0H B, 81H SP, 83H DPH, 82H DPL, D0H PSW, 80H P0, 90H P1, A0H P2, B0H P3, E8H P4, "
    "E2H ISP_DATA, E3H ISP_ADDRH, E4H ISP_ADDRL, E5H ISP_CMD, E6H ISP_TRIG, E7H ISP_CONTR, "
    "88H TCON, 89H TMOD, 8CH TH0, 8AH TL0, 8DH TH1, 8BH TL1, C8H T2CON, C9H T2MOD, CDH TH2, "
    "CCH TL2, CBH RCAP2H, CAH RCAP2L, 8EH AUXR, A2H AUXR1, A8H IE, C0H XICON, B7H IPH, B8H IP, "
    "87H PCON, E1H WDT_CONTR, 98H SCON, 99H SBUF, A9H SADDR, B9H SADEN, ";

constexpr std::string_view family_3 =
    "E0H ACC, F0H B, 81H SP, 83H DPH, 82H DPL, D0H PSW, 90H P1, 91H P1M0, 92H P1M1, B0H P3, "
    "B1H P3M0, B2H P3M1, E2H ISP_DATA, E3H ISP_ADDRH, E4H ISP_ADDRL, E5H ISP_CMD, E6H ISP_TRIG, "
    "E7H ISP_CONTR, 88H TCON, 89H TMOD, 8CH TH0, 8AH TL0, 8DH TH1, 8BH TL1, 8EH AUXR, A8H IE, "
    "B7H IPH, B8H IP, 87H PCON, C7H IDLE_CLK, E1H WDT_CONTR, 98H SCON, 99H SBUF, A9H SADDR, "
    "B9H SADEN, 84H SPSTAT, 85H SPCTL, 86H SPDAT, C5H ADC_CONTR, C6H ADC_DATA, D8H CCON, "
    "D9H CMOD, F9H CH, E9H CL, DAH CCAPM0, FAH CCAP0H, EAH CCAP0L, F2H PCA_PWM0, DBH CCAPM1, "
    "FBH CCAP1H, EBH CCAP1L, F3H PCA_PWM1, ";

constexpr std::string_view family_4 =
    "E0H ACC, F0H B, 81H SP, 83H DPH, 82H DPL, D0H PSW, 80H P0, 90H P1, A0H P2, B0H P3, 93H P0M0, "
    "94H P0M1, 91H P1M0, 92H P1M1, 95H P2M0, 96H P2M1, B1H P3M0, B2H P3M1, E2H ISP_DATA, "
    "E3H ISP_ADDRH, E4H ISP_ADDRL, E5H ISP_CMD, E6H ISP_TRIG, E7H ISP_CONTR, 88H TCON, 89H TMOD, "
    "8CH TH0, 8AH TL0, 8DH TH1, 8BH TL1, 8EH AUXR, A8H IE, B7H IPH, B8H IP, 87H PCON, "
    "C7H CLK_DIV, E1H WDT_CONTR, 98H SCON, 99H SBUF, A9H SADDR, B9H SADEN, 84H SPSTAT, "
    "85H SPCTL, 86H SPDAT, C5H ADC_CONTR, C6H ADC_DATA, BEH ADC_LOW2, D8H CCON, D9H CMOD, F9H CH, "
    "E9H CL, DAH CCAPM0, FAH CCAP0H, EAH CCAP0L, F2H PCA_PWM0, DBH CCAPM1, FBH CCAP1H, "
    "EBH CCAP1L, F3H PCA_PWM1, DCH CCAPM2, FCH CCAP2H, ECH CCAP2L, F4H PCA_PWM2, DDH CCAPM3, "
    "FDH CCAP3H, EDH CCAP3L, F5H PCA_PWM3, ";

std::string as_text(std::span<const RegisterRow> rows) {
    std::string text;
    for (const RegisterRow& row : rows)
        text.append(row.address).append(" ").append(row.name).append(", ");
    return text;
}

TEST(RegisterTables, OfTheThreeFamiliesHaveTheseRows) {
    EXPECT_EQ(as_text(registers_of_family(2)), family_2);
    EXPECT_EQ(as_text(registers_of_family(3)), family_3);
    EXPECT_EQ(as_text(registers_of_family(4)), family_4);
    EXPECT_EQ(registers_of_family(2).size(), 41u);
    EXPECT_EQ(registers_of_family(3).size(), 52u);
    EXPECT_EQ(registers_of_family(4).size(), 67u);
}

TEST(RegisterTables, OfAllOtherFamiliesAreEmpty) {
    for (int family = -32768; family <= 32767; ++family) {
        if (family >= 2 && family <= 4) continue;
        ASSERT_TRUE(registers_of_family(static_cast<std::int16_t>(family)).empty()) << family;
    }
}

TEST(RegisterRows, StandUnderTheirHeader) {
    EXPECT_EQ(register_header, "地址    名称     HEX  DEC");
    EXPECT_EQ(register_row({"E0H", "ACC"}), "E0H     ACC      ");
    EXPECT_EQ(register_row({"F0H", "B"}), "F0H     B        ");
    EXPECT_EQ(register_row({"E4H", "ISP_ADDRL"}), "E4H     ISP_ADDRL");
    // Each Chinese character of the header is two columns wide: names at 8, values at
    // 17, decimal digits at 22.
    EXPECT_EQ(register_header.find("名"), 8u + 2u);
    EXPECT_EQ(register_header.find("HEX"), 17u + 4u);
    EXPECT_EQ(register_header.find("DEC"), 22u + 4u);
}

TEST(RegisterRows, ShowTheValueInBothNotations) {
    const std::string row = register_row({"E0H", "ACC"});
    EXPECT_EQ(with_register_value(row, 0x5A), "E0H     ACC      5AH   90");
    EXPECT_EQ(with_register_value(row, 0), "E0H     ACC      00H    0");
    EXPECT_EQ(with_register_value(row, 9), "E0H     ACC      09H    9");
    EXPECT_EQ(with_register_value(row, 0x0A), "E0H     ACC      0AH   10");
    EXPECT_EQ(with_register_value(row, 99), "E0H     ACC      63H   99");
    EXPECT_EQ(with_register_value(row, 100), "E0H     ACC      64H  100");
    EXPECT_EQ(with_register_value(row, 255), "E0H     ACC      FFH  255");
    EXPECT_EQ(with_register_value("E0H     ACC      FFH  255", 7), "E0H     ACC      07H    7");
}

TEST(RegisterRows, AreComparedByTheirValueAlone) {
    EXPECT_TRUE(same_register_value("E0H     ACC      5AH   90", "E0H     ACC      5AH   90"));
    EXPECT_TRUE(same_register_value("E0H     ACC      5AH   90", "F0H     B        5AH   90"));
    EXPECT_FALSE(same_register_value("E0H     ACC      5AH   90", "E0H     ACC      5BH   91"));
    EXPECT_FALSE(same_register_value("E0H     ACC      5AH   90", "E0H     ACC      A5H  165"));
    EXPECT_FALSE(same_register_value("E0H     ACC      ", "E0H     ACC      00H    0"));
    EXPECT_TRUE(same_register_value("E0H     ACC      ", "F0H     B        "));
}

TEST(RegisterRows, TellTheirAddress) {
    for (std::int16_t family = 2; family <= 4; ++family)
        for (const RegisterRow& row : registers_of_family(family)) {
            EXPECT_EQ(address_of_register_row(register_row(row)),
                      std::stoi(std::string(row.address), nullptr, 16));
            EXPECT_LE(row.name.size(), 9u);
            EXPECT_EQ(row.address.size(), 3u);
        }
}

TEST(MemoryRows, BeginWithTheirAddressAndZeros) {
    EXPECT_EQ(memory_row(0, 2), "00                          00 00 00 00 00 00 00 00");
    EXPECT_EQ(memory_row(0xF8, 2), "F8                          00 00 00 00 00 00 00 00");
    EXPECT_EQ(memory_row(0, 4), "0000                        00 00 00 00 00 00 00 00");
    EXPECT_EQ(memory_row(0xFFF8, 4), "FFF8                        00 00 00 00 00 00 00 00");
}

TEST(MemoryRows, ShowTheirCells) {
    const std::string row = memory_row(8, 2);
    EXPECT_EQ(with_memory_values(row, std::vector<Cell>{1, 2, 0x0A, 0x5A, 0xA5, 0xFF, 0, 0x80}),
              "08                          01 02 0A 5A A5 FF 00 80");
    EXPECT_EQ(with_memory_values(row, std::vector<Cell>{}), row);
    EXPECT_EQ(with_memory_values(row, std::vector<Cell>(20, 0x11)),
              "08                          11 11 11 11 11 11 11 11");
}

TEST(MemoryRows, KeepWhatTheyShowOfCellsWithoutAValue) {
    const std::string row = "08                          11 22 33 44 55 66 77 88";
    EXPECT_EQ(with_memory_values(row, std::vector<Cell>{256, 0xAB, 256, 256, 256, 256, 256, 0xCD}),
              "08                          11 AB 33 44 55 66 77 CD");
    EXPECT_EQ(with_memory_values(row, std::vector<Cell>{1, 2, 3}),
              "08                          01 02 03 44 55 66 77 88");
}

}  // namespace
}  // namespace vkm::test
