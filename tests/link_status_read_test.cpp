// Reading a chip's options alone, and the status read.
#include "link_bench.h"

namespace vkm::test {
namespace {

using Bench = LinkBench;

// ---- reading options alone ------------------------------------------------------------------

TEST(ReadLock, ALongStatusFrameNeedsNoOtherFrame) {
    Bench bench;
    bench.frm.link.Check_Model = [](frmMain&) { return false; };
    EXPECT_EQ(bench.run(true), 0);
    EXPECT_EQ(bench.newbaud, -1);
    EXPECT_TRUE(bench.frm.link.Status_Read_OK);
    EXPECT_EQ(bench.chip.counters().frames, 0);
    EXPECT_EQ(bench.port.settings(), "1200,n,8,1");
    EXPECT_TRUE(bench.port.is_open());
    EXPECT_EQ(bench.port.output_count(), 0U);  // pulses that were unsent are dropped
    EXPECT_TRUE(bench.log().starts_with("\r\nMCU Type is: VKM47H58RK+")) << bench.log();
}

TEST(ReadLock, AShortStatusFrameIsFollowedByTheStatusRead) {
    Bench bench({.model = "VKM47H58RK+", .status_length = 24});
    EXPECT_EQ(bench.run(true), 0);
    EXPECT_TRUE(bench.frm.link.Status_Read_OK);
    EXPECT_EQ(bench.heard(FrameKind::status_read), 1);
    EXPECT_TRUE(
        bench.log().starts_with("\r\nWe are Reading Chip Lock./ 正在读加密位,双倍速,版本号"
                                "\r\nMCU Firmware Version: 3.8C"))
        << bench.log();
    EXPECT_EQ(bench.frm.link.Chip_Letter, "C");
    EXPECT_EQ(bench.frm.link.Chip_Version, "3.8");
    EXPECT_EQ(bench.frm.options.Chip_Bytes[1], 0xFD);
}

TEST(ReadLock, FourReadsOfThreeTriesAreMade) {
    for (const int lost : {11, 12}) {
        Bench bench({.model = "VKM47H58RK+",
                     .status_length = 24,
                     .faults = {lose_reply(FrameKind::status_read, lost)}});
        bench.run(true);
        EXPECT_EQ(bench.heard(FrameKind::status_read), 12);
        EXPECT_EQ(bench.frm.link.Status_Read_OK, lost == 11);
        if (lost == 11)
            EXPECT_EQ(bench.result, 0);
        else
            bench.expect_failure_told();
    }
}

TEST(ReadLock, StopDuringTheStatusReadIsTold) {
    Bench bench({.model = "VKM47H58RK+",
                 .status_length = 24,
                 .faults = {lose_reply(FrameKind::status_read, always)}});
    bench.stop_in(1'000);
    bench.run(true);
    bench.expect_stop_told();
    EXPECT_LE(bench.heard(FrameKind::status_read), 4);
}

// ---- the status read ---------------------------------------------------------------------------

// Brings a chip to its final baud, as before an option write.
struct ConnectedBench : Bench {
    explicit ConnectedBench(const ChipConfig& config = {}) : Bench(config) {
        EXPECT_EQ(run(), 0) << story();
        chip.take_log();
    }
};

TEST(StatusRead, StoresByTheFamilyOfTheSelectedModel) {
    sim::OptionBytes options;
    for (std::size_t i = 0; i < options.size(); ++i)
        options[i] = static_cast<std::uint8_t>(0x51 + 2 * i);
    const std::vector<std::pair<const LetterRow*, std::vector<int>>> rows = {
        {&letter_rows[0], {}},
        {&letter_rows[1], {}},
        {&letter_rows[2], {1}},
        {&letter_rows[3], {2, 3, 8, 10, 11}},
        {&letter_rows[5], {2, 3, 8, 10, 11}},
        {&letter_rows[6], {0, 3, 4, 8, 10, 11}},
    };
    for (const auto& [row, words] : rows) {
        SCOPED_TRACE(row->model);
        ConnectedBench bench({.model = row->model, .letter = row->letter, .options = options});
        bench.frm.options.Chip_Bytes.fill(-7);
        bench.frm.options.Option_Bytes[0][16] = 0x33;
        bench.frm.link.Chip_Letter.clear();
        bench.frm.link.Chip_Version.clear();
        bench.frm.link.Chip_Double_Speed = true;
        Read_Chip_Status(bench.frm, -1);
        EXPECT_TRUE(bench.frm.link.Status_Read_OK);
        EXPECT_TRUE(bench.frm.link.frame_ok);
        EXPECT_EQ(bench.frm.link.Chip_Letter, std::string(1, row->letter));
        EXPECT_EQ(bench.frm.link.Chip_Version, row->version);
        EXPECT_FALSE(bench.frm.link.Chip_Double_Speed);
        for (int word = 0; word < 16; ++word) {
            const bool stored = std::find(words.begin(), words.end(), word) != words.end();
            EXPECT_EQ(bench.frm.options.Chip_Bytes[static_cast<std::size_t>(word)],
                      stored ? 0x51 + 2 * word : -7)
                << word;
        }
        const bool local = row->letter == 'A' || row->letter == 'B';
        EXPECT_EQ(bench.frm.options.Chip_Bytes[16], local ? 0x33 : 255);
    }
}

TEST(StatusRead, ReadsComposesAndShowsAnew) {
    ConnectedBench bench({.model = "VKM47H58RK+"});  // reports FD: normal speed
    bench.frm.screen.Option0[0].Value = 1;
    bench.frm.screen.textMsg.Text.clear();
    Read_Chip_Status(bench.frm, -1);
    EXPECT_EQ(bench.frm.options.Read_State.at("Double_speed_NO"), "1");
    EXPECT_EQ(bench.frm.options.Panel_State.at("Double_speed_YES"), "1");
    // The reading leaves the defaults there, so the panel was composed behind it.
    EXPECT_EQ(bench.frm.options.Option_Bytes[0][1], 0xFC);
    EXPECT_TRUE(
        bench.log().starts_with("\r\nMCU Type is: VKM47H58RK+"
                                "\r\nMCU Firmware Version: 3.8C"))
        << bench.log();
}

TEST(StatusRead, AFamilyThatStoresNothingRefreshesNothing) {
    ConnectedBench bench({.model = "VKM47H516RK"});
    bench.frm.options.Read_State["Double_speed_YES"] = "of before";
    bench.frm.options.Panel_State.clear();
    Read_Chip_Status(bench.frm, 0);
    EXPECT_TRUE(bench.frm.link.Status_Read_OK);
    EXPECT_EQ(bench.frm.options.Read_State.at("Double_speed_YES"), "of before");
    EXPECT_EQ(bench.frm.options.Panel_State.at("Double_speed_YES"), "0");
}

TEST(StatusRead, TurnsReceivingOn) {
    ConnectedBench bench;
    bench.frm.link.receive_enabled = false;
    Read_Chip_Status(bench.frm, 0);
    EXPECT_TRUE(bench.frm.link.Status_Read_OK);
    EXPECT_EQ(bench.heard(FrameKind::status_read), 1);
}

TEST(StatusRead, ThreeTriesOf900MillisecondsThenNothingIsChanged) {
    ConnectedBench bench;
    bench.chip.add_fault(lose_reply(FrameKind::status_read, always));
    bench.frm.options.Chip_Bytes.fill(-7);
    bench.frm.link.Status_Read_OK = true;
    const double before = bench.elapsed_ms();
    Read_Chip_Status(bench.frm, 0);
    EXPECT_DOUBLE_EQ(bench.elapsed_ms() - before, 3 * (5 + 3 + 900) + 2 * 50);
    EXPECT_EQ(bench.heard(FrameKind::status_read), 3);
    EXPECT_FALSE(bench.frm.link.Status_Read_OK);
    EXPECT_FALSE(bench.frm.link.frame_ok);
    EXPECT_EQ(bench.frm.options.Chip_Bytes[1], -7);
}

TEST(StatusRead, AnAcknowledgementInThePauseBeforeARepeatCostsNoTry) {
    ConnectedBench bench;
    bench.chip.add_fault(lose_reply(FrameKind::status_read, 2));
    const Bytes late = {0x46, 0xB9, 0x68, 0x00, 0x06, 0x80, 0xEE, 0x16};
    for (const int tries : {1, 2})
        bench.at(tries * (5 + 3 + 900 + 50) - 20, [&] {
            bench.line.input.insert(bench.line.input.end(), late.begin(), late.end());
        });
    Read_Chip_Status(bench.frm, 0);
    EXPECT_TRUE(bench.frm.link.Status_Read_OK);
    EXPECT_EQ(bench.frm.link.Chip_Version, "3.8");
    EXPECT_EQ(bench.heard(FrameKind::status_read), 3);
}

TEST(StatusRead, StopEndsEachTryAtItsFirstPoll) {
    ConnectedBench bench;
    bench.chip.add_fault(lose_reply(FrameKind::status_read, always));
    bench.stop_in(100);
    const double before = bench.elapsed_ms();
    Read_Chip_Status(bench.frm, 0);
    EXPECT_LT(bench.elapsed_ms() - before, 100 + 2 * (50 + 5 + 3) + 1);
    EXPECT_FALSE(bench.frm.link.frame_ok);
}

}  // namespace
}  // namespace vkm::test
