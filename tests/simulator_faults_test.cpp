// What a simulated chip can be told to do wrong.
#include <gtest/gtest.h>

#include "simulator_driver.h"

namespace vkm::test {
namespace {

using sim::ChipConfig;
using sim::Fault;
using sim::FaultKind;
using sim::FrameKind;
using sim::parse_fault;

const Bytes poll = short_frame({0x80, 2, 0, 0x36, 0x01});

// A connected chip with one fault, told as on a command line.
ChipConfig chip_with(const char* fault) {
    ChipConfig config;
    config.faults = {parse_fault(fault).value()};
    return config;
}

Bytes answer_with(const char* fault) {
    ChipDriver driver(chip_with(fault));
    driver.connect();
    return driver.exchange(poll).bytes;
}

TEST(FaultPlan, StrikesTheFramesThatItNames) {
    ChipDriver driver(chip_with("lose_reply@link_check:2*3"));
    driver.connect();
    std::string answered;
    for (int i = 0; i < 7; ++i) answered += driver.exchange(poll).bytes.empty() ? '-' : '+';
    EXPECT_EQ(answered, "+---+++");
    EXPECT_FALSE(driver.exchange(short_frame({0x86, 0xFF})).bytes.empty());
}

TEST(FaultPlan, StrikesForGoodWhenItsTimesAreZero) {
    ChipDriver driver(chip_with("lose_reply@link_check:2*0"));
    driver.connect();
    std::string answered;
    for (int i = 0; i < 6; ++i) answered += driver.exchange(poll).bytes.empty() ? '-' : '+';
    EXPECT_EQ(answered, "+-----");
}

TEST(FaultPlan, CountsEveryFrameWhereItNamesNone) {
    ChipDriver driver(chip_with("lose_reply:3"));
    EXPECT_FALSE(driver.connect().bytes.empty());
    EXPECT_FALSE(driver.exchange(poll).bytes.empty());
    EXPECT_TRUE(driver.exchange(short_frame({0x86, 0xFF})).bytes.empty());
    EXPECT_FALSE(driver.exchange(poll).bytes.empty());
}

TEST(FaultPlan, AnswersFromTheNthFrameOn) {
    ChipConfig config;
    config.faults = sim::answers_from(FrameKind::link_check, 3);
    ChipDriver driver(config);
    driver.connect();
    EXPECT_TRUE(driver.exchange(poll).bytes.empty());
    EXPECT_TRUE(driver.exchange(poll).bytes.empty());
    EXPECT_FALSE(driver.exchange(poll).bytes.empty());
    EXPECT_FALSE(driver.exchange(poll).bytes.empty());
    EXPECT_TRUE(sim::answers_from(FrameKind::link_check, 1).empty());
}

TEST(FaultPlan, CountsFromWhenAFaultWasAdded) {
    ChipDriver driver;
    driver.connect();
    driver.exchange(poll);
    driver.chip.add_fault(parse_fault("lose_reply@link_check").value());
    EXPECT_TRUE(driver.exchange(poll).bytes.empty());
    EXPECT_FALSE(driver.exchange(poll).bytes.empty());
}

TEST(FaultPlan, LosesAFrameUndoneOrItsAnswerAlone) {
    for (const auto& [fault, first_byte] :
         {std::pair{"lose_frame@block", 0xFF}, {"lose_reply@block", 0x12}}) {
        ChipDriver driver(chip_with(fault));
        driver.connect();
        EXPECT_TRUE(driver.exchange(block_frame(0x00, 0, {0x12})).bytes.empty());
        EXPECT_EQ(driver.chip.flash()[0], first_byte);
    }
}

TEST(FaultPlan, DamagesLengthensCutsAndDoublesAnswers) {
    EXPECT_EQ(answer_with("damage@link_check=5"),
              (Bytes{0x46, 0xB9, 0x68, 0x00, 0x06, 0x81, 0xEE, 0x16}));
    EXPECT_EQ(answer_with("damage@link_check=99").back(), 0x17);
    EXPECT_EQ(answer_with("cut_off@link_check=3"), (Bytes{0x46, 0xB9, 0x68}));
    EXPECT_EQ(answer_with("cut_off@link_check=0"), Bytes{});
    EXPECT_EQ(answer_with("twice@link_check").size(), 16U);
    EXPECT_EQ(answer_with("noise@link_check=0068AB"),
              (Bytes{0x00, 0x68, 0xAB, 0x46, 0xB9, 0x68, 0x00, 0x06, 0x80, 0xEE, 0x16}));
    EXPECT_EQ(answer_with("other_code@link_check=3"),
              (Bytes{0x46, 0xB9, 0x68, 0x00, 0x06, 0x03, 0x71, 0x16}));
    EXPECT_EQ(answer_with("wrong_length@link_check"),
              (Bytes{0x46, 0xB9, 0x68, 0xFF, 0xFF, 0x80, 0xEE, 0x16}));
}

TEST(FaultPlan, BabblesOnBehindAWrongLength) {
    ChipConfig config = chip_with("wrong_length@link_check");
    config.faults[0].extra = 5000;
    ChipDriver driver(config);
    driver.connect();
    EXPECT_EQ(driver.exchange(poll).bytes.size(), 5008U);
}

TEST(FaultPlan, DelaysAnAnswerDuringWhichTheChipIsDeaf) {
    ChipDriver driver(chip_with("delay@link_check=1500"));
    driver.connect();
    driver.send(poll, 1200);
    const sim::Instant sent = driver.now;
    driver.now += 500ms;
    driver.send(poll, 1200);
    const Heard heard = driver.listen();
    EXPECT_EQ(heard.bytes.size(), 8U);
    EXPECT_GE(heard.start - sent, 1500ms);
    EXPECT_LE(heard.start - sent, 1502ms);
}

TEST(FaultPlan, EchoesAWrongDataSum) {
    ChipDriver driver(chip_with("wrong_data_sum@block"));
    driver.connect();
    EXPECT_EQ(driver.exchange(block_frame(0x00, 0, {0x10, 0x20})).bytes[6], 0x31);
    EXPECT_EQ(driver.exchange(block_frame(0x30, 0, {0x10, 0x20})).bytes[6], 0x30);
}

TEST(FaultPlan, KillsThePowerForAWhileOrForGood) {
    ChipDriver driver(chip_with("power_loss@link_check=700"));
    driver.connect();
    driver.send(poll, 1200);
    EXPECT_EQ(driver.chip.state(), sim::ChipState::off);
    driver.advance_to(driver.now + 699ms);
    EXPECT_EQ(driver.chip.state(), sim::ChipState::off);
    driver.advance_to(driver.now + 1ms);
    EXPECT_EQ(driver.chip.state(), sim::ChipState::listening);
    EXPECT_FALSE(driver.connect().bytes.empty());

    ChipDriver dead(chip_with("power_loss@link_check=0"));
    dead.connect();
    dead.exchange(poll);
    dead.advance_to(dead.now + 1h);
    EXPECT_EQ(dead.chip.state(), sim::ChipState::off);
}

TEST(FaultText, IsReadWholeOrNotAtAll) {
    const auto fault = parse_fault("delay@erase:2*4=2500");
    ASSERT_TRUE(fault);
    EXPECT_EQ(fault->kind, FaultKind::delay);
    EXPECT_EQ(fault->frame, FrameKind::erase);
    EXPECT_EQ(fault->nth, 2);
    EXPECT_EQ(fault->times, 4);
    EXPECT_EQ(fault->value, 2500);
    EXPECT_EQ(parse_fault("twice")->frame, FrameKind::any);
    EXPECT_EQ(parse_fault("wrong_length@block")->value, 0xFFFF);
    for (const char* text :
         {"", "lose", "lose_reply@", "lose_reply@nothing", "lose_reply@block:", "lose_reply:0",
          "lose_reply:-1", "lose_reply:1x", "lose_reply*-1", "delay=", "delay=x", "delay=-5",
          "noise=0", "noise=", "noise=0G", "lose_reply:99999999999", "@block"})
        EXPECT_FALSE(parse_fault(text)) << text;
}

TEST(FaultText, KnowsEveryKindByItsName) {
    for (const char* name :
         {"any", "status", "watchdog", "test_baud", "set_baud", "link_check", "erase", "block",
          "status_read", "options", "trigger", "last_command", "unknown"})
        EXPECT_EQ(sim::name_of(sim::frame_kind_named(name).value()), name);
    for (const char* name : {"lose_frame", "lose_reply", "damage", "delay", "twice", "cut_off",
                             "noise", "wrong_data_sum", "other_code", "wrong_length", "power_loss"})
        EXPECT_EQ(sim::name_of(sim::fault_kind_named(name).value()), name);
}

}  // namespace
}  // namespace vkm::test
