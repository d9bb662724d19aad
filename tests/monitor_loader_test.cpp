// The loader's tables as the tool holds them. That they are what the source gives, and do
// what they should, is checked in a simulator: checks/monitor_loader.py.
#include "session/monitor_loader.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <string>

namespace vkm {
namespace {

constexpr std::string_view image_516 = "VKM516_2003.ROM";
constexpr std::string_view image_58 = "VKM58_2003.ROM";

template <typename Lines>
std::string joined(const Lines& lines) {
    std::string all;
    for (const auto line : lines) all += line;
    return all;
}

std::string digits_from(const Monitor_Loader& loader, int address) {
    return joined(loader.at_2180)
        .substr(2 * static_cast<std::size_t>(address - monitor_loader_first));
}

bool begins(const std::string& digits, std::string_view beginning) {
    return digits.compare(0, beginning.size(), beginning) == 0;
}

class Monitor_Loader_Of : public ::testing::TestWithParam<std::string_view> {
  protected:
    const Monitor_Loader& loader = monitor_loader(GetParam());
};

INSTANTIATE_TEST_SUITE_P(Both, Monitor_Loader_Of, ::testing::Values(image_516, image_58));

TEST_P(Monitor_Loader_Of, EveryLineIsSixteenBytesInUpperCaseDigits) {
    EXPECT_EQ(loader.at_2180.size(), 23u);
    EXPECT_EQ(loader.at_3300.size(), 6u);
    for (const auto line : loader.at_2180) EXPECT_EQ(line.size(), 32u);
    for (const auto line : loader.at_3300) EXPECT_EQ(line.size(), 32u);
    EXPECT_EQ(
        (joined(loader.at_2180) + joined(loader.at_3300)).find_first_not_of("0123456789ABCDEF"),
        std::string::npos);
}

TEST_P(Monitor_Loader_Of, StartUpStandsWhereTheResetJumpGoes) {
    EXPECT_EQ(monitor_loader_start, 0x2200);  // the reset jump is 02 22 00
    EXPECT_TRUE(begins(digits_from(loader, monitor_loader_start), "787FE4F5D0F6D8FD75810D02"));
}

// ljmp main, at the end of the start-up, and from there the way through the second table.
TEST_P(Monitor_Loader_Of, TheWayFromStartUpLeadsThroughTheSecondTableAndBack) {
    const auto main_at =
        std::stoi(digits_from(loader, monitor_loader_start + 12).substr(0, 4), nullptr, 16);
    EXPECT_NE(digits_from(loader, main_at).find("023300"), std::string::npos);

    const std::string opening = joined(loader.at_3300);
    EXPECT_TRUE(begins(opening, "53B1FC43B14075B4F075B30075B20B"));
    EXPECT_EQ(opening.substr(2 * 18, 2), "02");
    const int back = std::stoi(opening.substr(2 * 19, 4), nullptr, 16);
    EXPECT_TRUE(begins(digits_from(loader, back), "12")) << "a call of the erasing";
}

TEST_P(Monitor_Loader_Of, HoldsThePiecesThatEraseWriteCopyAndLeave) {
    const std::string first = joined(loader.at_2180);
    for (const auto piece :
         {"8E838F828583B48582B38DB575B20E", "E4FDFCAF05AE04", "850982850883E493", "53B1FC021000"})
        EXPECT_NE(first.find(piece), std::string::npos) << piece;
}

TEST(Monitor_Loader, TheVariantsDifferInBothTables) {
    EXPECT_NE(monitor_loader(image_516).at_2180, monitor_loader(image_58).at_2180);
    EXPECT_NE(monitor_loader(image_516).at_3300, monitor_loader(image_58).at_3300);
}

// mov target_high,#F0 or #90: where the boot firmware's upper half is for the ISP commands.
TEST(Monitor_Loader, EachVariantCopiesToThePlaceOfItsChip) {
    EXPECT_NE(joined(monitor_loader(image_516).at_2180).find("750AF0750B00"), std::string::npos);
    EXPECT_NE(joined(monitor_loader(image_58).at_2180).find("750A90750B00"), std::string::npos);
}

TEST(Monitor_Loader, EveryOtherNameHasTheSmallerChipsVariant) {
    for (const auto name : {"", "VKM516_2003", "vkm516_2003.rom", "VKM516_2003.ROM "})
        EXPECT_EQ(&monitor_loader(name), &monitor_loader(image_58)) << name;
    EXPECT_NE(&monitor_loader(image_516), &monitor_loader(image_58));
}

}  // namespace
}  // namespace vkm
