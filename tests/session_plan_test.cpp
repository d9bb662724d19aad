// The download plan and the erase frame, as values.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "catalogue/model_table.h"
#include "session/download_plan.h"
#include "session/erase_frame.h"

namespace vkm {
namespace {

MCU_Record chip(std::int32_t AP_End, std::int32_t Data_Start, std::int32_t Data_End) {
    MCU_Record record;
    record.AP_End = AP_End;
    record.Data_Start = Data_Start;
    record.Data_End = Data_End;
    return record;
}

Planned plan_of(const MCU_Record& record, std::string_view letter, double version,
                std::int32_t Image_High, bool clear_unused = false) {
    return Make_Download_Plan({record, letter, version, Image_High, clear_unused});
}

// ---- the plan ---------------------------------------------------------------

TEST(DownloadPlan, HoldsTheChipsAreasAndTheImagesEnd) {
    const Planned made = plan_of(chip(0x0FFF, 0x1000, 0x37FF), "C", 3.8, 0x0234);
    EXPECT_EQ(made.plan.Plan_Name, "AP_FILE");
    EXPECT_EQ(made.plan.Plan_AP_Low, 0);
    EXPECT_EQ(made.plan.Plan_AP_High, 0x0FFF);
    EXPECT_EQ(made.plan.Plan_File_Low, 0);
    EXPECT_EQ(made.plan.Plan_File_High, 0x0234);
    EXPECT_EQ(made.plan.Plan_Data_Low, 0x1000);
    EXPECT_EQ(made.plan.Plan_Data_High, 0x37FF);
    EXPECT_FALSE(made.Over_Limit);
}

TEST(DownloadPlan, TailIsThePartOfTheProgramAreaAboveTheImage) {
    const auto plan = plan_of(chip(0x0FFF, 0x1000, 0x37FF), "C", 3.8, 0x0234).plan;
    EXPECT_EQ(plan.Tail_Low, 0x0235);
    EXPECT_EQ(plan.Tail_High, 0x0FFF);
}

TEST(DownloadPlan, AnImageThatFillsOrExceedsTheProgramAreaLeavesNoTail) {
    for (std::int32_t high : {0x0FFF, 0x1000, 0x2000}) {
        const auto plan = plan_of(chip(0x0FFF, 0x1000, 0x37FF), "C", 3.8, high).plan;
        EXPECT_EQ(plan.Tail_Low, 0x1000) << high;
        EXPECT_EQ(plan.Tail_High, 0x0FFF) << high;
        EXPECT_FALSE(plan.Tail_Free) << high;
    }
}

TEST(DownloadPlan, SpillIsTheImagesPartInTheDataMemory) {
    const auto plan = plan_of(chip(0x0FFF, 0x1000, 0x37FF), "C", 3.8, 0x1234).plan;
    EXPECT_TRUE(plan.Spill);
    EXPECT_EQ(plan.Spill_Low, 0x1000);
    EXPECT_EQ(plan.Spill_High, 0x1234);
    EXPECT_EQ(plan.Free_Low, 0x1235);
    EXPECT_EQ(plan.Free_High, 0x37FF);
}

TEST(DownloadPlan, SpillIsCutAtTheEndOfTheDataMemory) {
    const auto plan = plan_of(chip(0x0FFF, 0x1000, 0x37FF), "C", 3.8, 0x4000).plan;
    EXPECT_EQ(plan.Spill_High, 0x37FF);
    EXPECT_EQ(plan.Free_Low, 0x3800);
}

TEST(DownloadPlan, WithoutSpillItsAddressesLieBehindTheDataMemory) {
    const auto plan = plan_of(chip(0x0FFF, 0x1000, 0x37FF), "C", 3.8, 0x0FFF).plan;
    EXPECT_FALSE(plan.Spill);
    EXPECT_EQ(plan.Spill_Low, 0x3800);
    EXPECT_EQ(plan.Spill_High, 0x3800);
    EXPECT_EQ(plan.Free_Low, 0x1000);
    EXPECT_EQ(plan.Free_High, 0x37FF);
}

TEST(DownloadPlan, FreeMemoryOfAChipWithoutDataMemoryIsEmpty) {
    const auto plan = plan_of(chip(5119, 5120, 5119), "D", 3.8, 100).plan;
    EXPECT_EQ(plan.Free_Low, 0x1400);
    EXPECT_EQ(plan.Free_High, 0x13FF);
}

TEST(DownloadPlan, LetterDReachesTo13FF) {
    const MCU_Record record = chip(0x07FF, 0x1000, 0x1FFF);
    EXPECT_EQ(plan_of(record, "D", 3.8, 0x13FF).plan.Plan_Data_High, 0x13FF);
    EXPECT_FALSE(plan_of(record, "D", 3.8, 0x13FF).Over_Limit);
    EXPECT_TRUE(plan_of(record, "D", 3.8, 0x1400).Over_Limit);
}

TEST(DownloadPlan, LetterEUpToVersion50ReachesTo2FFF) {
    const MCU_Record record = chip(0x03FF, 0x0400, 0x59FF);
    for (double version : {0.0, 3.8, 5.0}) {
        EXPECT_EQ(plan_of(record, "E", version, 0x2FFF).plan.Plan_Data_High, 0x2FFF);
        EXPECT_EQ(plan_of(record, "E", version, 0x2FFF).plan.Plan_Data_Low, 0x0400);
        EXPECT_FALSE(plan_of(record, "E", version, 0x2FFF).Over_Limit);
        EXPECT_TRUE(plan_of(record, "E", version, 0x3000).Over_Limit);
    }
}

TEST(DownloadPlan, LaterLetterEHasItsDataMemoryFromARoundAddressTo6FFF) {
    const struct {
        std::int32_t AP_End, Data_Low;
    } cases[] = {{0x03FF, 0x1000}, {0x0FFF, 0x1000}, {0x1000, 0x1000},
                 {0x1001, 0x2000}, {0x2000, 0x2000}, {0x2001, 0x3000},
                 {0x3000, 0x3000}, {0x3001, 0x3002}, {0x6FFF, 0x7000}};
    for (const auto& c : cases) {
        const Planned made = plan_of(chip(c.AP_End, 0x0400, 0x59FF), "E", 5.1, 0xFFFF);
        EXPECT_EQ(made.plan.Plan_Data_Low, c.Data_Low) << c.AP_End;
        EXPECT_EQ(made.plan.Plan_Data_High, 0x6FFF);
        EXPECT_FALSE(made.Over_Limit);
    }
}

TEST(DownloadPlan, OtherLettersNeverWarnOfTheLimit) {
    for (std::string_view letter : {"", "A", "B", "C", "F", "G", "H"})
        EXPECT_FALSE(plan_of(chip(0x03FF, 0x0400, 0x07FF), letter, 3.8, 0xFFFF).Over_Limit);
}

TEST(DownloadPlan, TheTailIsClearedOnSmallChipsOnLetterGAndOnDemand) {
    const struct {
        std::string_view letter;
        std::int32_t AP_End;
        bool demanded;
        bool cleared;
    } cases[] = {
        {"C", 0x37FF, false, true}, {"C", 0x3800, false, false}, {"C", 0x3800, true, true},
        {"D", 0x37FF, false, true}, {"E", 0x5FFF, false, false}, {"F", 0x5FFF, true, true},
        {"G", 0xEFFF, false, true}, {"A", 0x1FFF, true, false},  {"B", 0x1FFF, true, false},
        {"", 0x1FFF, true, false},  {"H", 0x1FFF, true, false},
    };
    for (const auto& c : cases)
        EXPECT_EQ(plan_of(chip(c.AP_End, c.AP_End + 1, 0xEFFF), c.letter, 5.1, 0x100, c.demanded)
                      .plan.Tail_Free,
                  c.cleared)
            << c.letter << " " << c.AP_End << " " << c.demanded;
}

// ---- how many sectors ----------------------------------------------------------

int sectors(std::string_view letter, double version, std::string_view model,
            std::int32_t Image_High = 0x1234) {
    return Erase_Sectors({letter, version, model, Image_High});
}

TEST(EraseSectors, LettersAAndBCountByModel) {
    const struct {
        std::string_view model;
        int count;
    } cases[] = {
        {"VKM47W516AD", 124}, {"VKM47W516X2", 124}, {"VKM47W58AD", 64}, {"VKM47W54AD", 32},
        {"VKM47W52AD", 16},   {"VKM47H516RK", 255}, {"", 255},          {"VKM47H51RB", 255}};
    for (const auto& c : cases)
        for (std::string_view letter : {"A", "B"})
            EXPECT_EQ(sectors(letter, 3.8, c.model), c.count) << c.model;
}

TEST(EraseSectors, LetterCBefore28CountsByModel) {
    for (std::string_view model :
         {"VKM47H51RB", "VKM47W51RB", "VKM47H52RB", "VKM47W52RB", "VKM47H53RB", "VKM47W53RB"})
        EXPECT_EQ(sectors("C", 2.7, model), 30) << model;
    for (std::string_view model :
         {"VKM47H54RK+", "VKM47W54RK+", "VKM47H55RK+", "VKM47W55RK+", "VKM47H58RK+", "VKM47W58RK+",
          "VKM47H61RK+", "VKM47W61RK+", "VKM47H516RK+", "VKM47W516RK+"})
        EXPECT_EQ(sectors("C", 2.7, model), 126) << model;
    EXPECT_EQ(sectors("C", 2.7, "VKM47W58AD"), 255);
}

TEST(EraseSectors, LetterCFrom28CountsByTheImage) {
    const struct {
        std::int32_t Image_High;
        int count;
    } cases[] = {{0, 1},        {511, 1},       {512, 2},         {0x3FFF, 32},
                 {130047, 254}, {130048, 255},  {255 * 512, 255}, {256 * 512 - 1, 255},
                 {65535, 128},  {0x12000, 145}, {256 * 512, 255}};
    for (const auto& c : cases)
        EXPECT_EQ(sectors("C", 2.8, "VKM47H51RB", c.Image_High), c.count) << c.Image_High;
    EXPECT_EQ(sectors("C", 3.8, "VKM47H51RB", 511), 1);
}

TEST(EraseSectors, LettersDToGCountNothing) {
    for (std::string_view letter : {"D", "E", "F", "G", ""})
        EXPECT_EQ(sectors(letter, 3.8, "VKM47W52AD", 511), 255) << letter;
}

// ---- which range ------------------------------------------------------------------

Download_Plan_Record areas() {
    Download_Plan_Record plan;
    plan.Plan_AP_High = 0x0FFF;
    plan.Plan_Data_Low = 0x1000;
    plan.Plan_Data_High = 0x2FFF;
    plan.Tail_Low = 0x0200;
    plan.Spill_High = 0x1500;
    return plan;
}

TEST(EraseRange, LettersWithoutARangeGetAnAddressBeyondTheChip) {
    for (std::string_view letter : {"", "A", "B", "C", "H"}) {
        const Erase_Span range = Erase_Range(letter, areas(), false);
        EXPECT_EQ(range.low, 0x10000) << letter;
        EXPECT_EQ(range.high, 0x10000) << letter;
    }
}

TEST(EraseRange, FollowsTailSpillAndTheKeptDataMemory) {
    const struct {
        bool tail, spill, keep;
        std::int32_t low, high;
    } cases[] = {
        {false, false, false, 0x1000, 0x1000}, {false, false, true, 0x1000, 0x1000},
        {true, false, false, 0x0200, 0x2FFF},  {true, false, true, 0x0200, 0x1000},
        {false, true, false, 0x1501, 0x2FFF},  {false, true, true, 0x1501, 0x1501},
        {true, true, false, 0x0200, 0x2FFF},  // the tail is asked first
    };
    for (const auto& c : cases) {
        Download_Plan_Record plan = areas();
        plan.Tail_Free = c.tail;
        plan.Spill = c.spill;
        for (std::string_view letter : {"D", "E", "F", "G"}) {
            const Erase_Span range = Erase_Range(letter, plan, c.keep);
            EXPECT_EQ(range.low, c.low) << letter << c.tail << c.spill << c.keep;
            EXPECT_EQ(range.high, c.high) << letter << c.tail << c.spill << c.keep;
        }
    }
}

TEST(EraseRange, LowIsCutBehindTheDataMemoryAndHighFollows) {
    Download_Plan_Record plan = areas();
    plan.Spill = true;
    plan.Spill_High = 0x2FFF;
    const Erase_Span range = Erase_Range("E", plan, false);
    EXPECT_EQ(range.low, 0x3000);
    EXPECT_EQ(range.high, 0x3000);

    plan = areas();  // no data memory at all
    plan.Plan_Data_Low = 0x7000;
    plan.Plan_Data_High = 0x6FFF;
    EXPECT_EQ(Erase_Range("F", plan, false).low, 0x7000);
    EXPECT_EQ(Erase_Range("F", plan, false).high, 0x7000);
}

// ---- the frame ------------------------------------------------------------------------

TEST(EraseFrame, CarriesCountAndRangeForLettersDToG) {
    for (std::string_view letter : {"D", "E", "F", "G"})
        EXPECT_EQ(build_erase_frame(letter, 255, {0x012345, 0x00ABCD}),
                  (Frame{0x46, 0xB9, 0x6A, 0x00, 0x0D, 0x84, 0xFF, 0x01, 0x23, 0x45, 0x00, 0xAB,
                         0xCD, 0xDB, 0x16}))
            << letter;
}

TEST(EraseFrame, CarriesFixedBytesForTheOtherLetters) {
    for (std::string_view letter : {"", "A", "B", "C"})
        EXPECT_EQ(build_erase_frame(letter, 30, {0x10000, 0x10000}),
                  (Frame{0x46, 0xB9, 0x6A, 0x00, 0x0D, 0x84, 0x1E, 0x33, 0x33, 0x33, 0x33, 0x33,
                         0x33, 0x4B, 0x16}))
            << letter;
}

// ---- every model and many images ---------------------------------------------------------

TEST(DownloadPlan, HoldsItsOrderForEveryModelLetterAndImage) {
    int seen = 0;
    for (const ModelGroup& group : MCU_AP_ISP_range) {
        for (const ModelRow& row : group.rows) {
            const MCU_Record record = chip(row.AP_End, row.Data_Start, row.Data_End);
            for (std::string_view letter : {"A", "B", "C", "D", "E", "F", "G"}) {
                for (double version : {2.7, 5.0, 5.1}) {
                    for (std::int32_t high = 0; high <= row.Memory_Top; high += 333) {
                        const Planned made = plan_of(record, letter, version, high, high % 2 == 0);
                        const Download_Plan_Record& plan = made.plan;
                        ASSERT_LE(plan.Tail_Low, plan.Tail_High + 1);
                        ASSERT_EQ(plan.Spill, high > row.AP_End);
                        ASSERT_LE(plan.Free_Low, plan.Free_High + 1);
                        if (plan.Tail_Free) {
                            ASSERT_LE(plan.Tail_Low, plan.Tail_High);
                        }
                        // The warning and the cut of the programming speak of the same limit.
                        if (made.Over_Limit) {
                            ASSERT_GT(high, plan.Plan_Data_High);
                        }
                        for (bool keep : {false, true}) {
                            const Erase_Span range = Erase_Range(letter, plan, keep);
                            ASSERT_GE(range.high, range.low);
                            ASSERT_GE(range.low, 0);
                            ASSERT_LE(range.high, 0x10000);
                            // Nothing of the image is erased behind its back: the frame's
                            // range begins above what will be programmed.
                            if (letter >= "D" && (plan.Tail_Free || plan.Spill) &&
                                high <= plan.Plan_Data_High) {
                                ASSERT_GT(range.low, high);
                            }
                        }
                        ++seen;
                    }
                }
            }
        }
    }
    EXPECT_GT(seen, 100000);
}

}  // namespace
}  // namespace vkm
