// What can go wrong while the options are written: lost frames and answers, busy
// chips and bad ones, Stop, a closing window, power that goes. A job either ends
// with its options written, or says that they are not and isn't counted.
#include <gtest/gtest.h>

#include "option_bench.h"

namespace vkm::test {
namespace {

using sim::FaultKind;
using sim::FrameKind;

const std::string step = "Write options / 写选项";

void expect_options_failed(const OptionBench& bench) {
    expect_failed_at(bench, step);
    EXPECT_TRUE(ends_with(bench.log(), options_failed)) << bench.log();
    expect_log_at_its_end(bench.frm);
    EXPECT_EQ(bench.sounder.beeps(), 3);
    EXPECT_FALSE(bench.log_has("Program OK")) << bench.log();
    EXPECT_FALSE(bench.log_has("Config option OK.")) << bench.log();
    EXPECT_FALSE(bench.frm.link.Status_Read_OK);
    EXPECT_FALSE(bench.frm.link.frame_ok);
    EXPECT_FALSE(bench.chip.started()) << "a chip that isn't finished stays in its firmware";
}

void expect_options_written(const OptionBench& bench) {
    expect_good_chip(bench);
    EXPECT_EQ(bench.log_has("Config option OK."), bench.chip.letter() != 'A') << bench.log();
    EXPECT_FALSE(bench.log_has("error")) << bench.log();
    EXPECT_TRUE(bench.frm.link.Status_Read_OK);
}

// ---- frames and answers that are lost ---------------------------------------------

TEST(OptionWrite, IsTriedThreeTimesInFamily0AndFourTimesInTheOthers) {
    for (const OptionChip& chip : option_chips) {
        for (const FaultKind kind : {FaultKind::lose_frame, FaultKind::lose_reply}) {
            for (int lost = 1; lost <= 5; ++lost) {
                SCOPED_TRACE(chip.letter + std::to_string(lost));
                OptionBench bench = OptionBench::with_other_options(
                    chip, {.faults = {{.kind = kind, .frame = FrameKind::options, .times = lost}}});
                bench.run_job();
                if (lost < chip.attempts) {
                    expect_options_written(bench);
                    EXPECT_EQ(bench.option_attempts(), lost + 1);
                } else {
                    expect_options_failed(bench);
                    EXPECT_EQ(bench.option_attempts(), chip.attempts);
                    EXPECT_EQ(bench.status_reads(), 0);
                }
            }
        }
    }
}

TEST(OptionWrite, GivesTheChip50MillisecondsInFamily0AndHalfASecondInTheOthers) {
    for (const OptionChip& chip : option_chips) {
        SCOPED_TRACE(chip.letter);
        OptionBench bench = OptionBench::with_other_options(
            chip, {.faults = {lose_frame(FrameKind::options, always)}});
        bench.run_job();
        std::vector<double> at;
        for (const Written& written : bench.port.written)
            if (written.bytes.size() > 7 && written.bytes[5] == 0x8D)
                at.push_back(
                    std::chrono::duration<double, std::milli>(written.at - bench.loop.start())
                        .count());
        ASSERT_EQ(at.size(), static_cast<std::size_t>(chip.attempts));
        // 3 ms behind the frame and 5 ms before the next one stand beside the wait.
        const double wait = chip.letter == 'A' ? 50 : 500;
        for (std::size_t i = 1; i < at.size(); ++i) EXPECT_NEAR(at[i] - at[i - 1], wait + 8, 2);
    }
}

TEST(OptionWrite, TakesALateAnswerWithinItsTime) {
    for (const OptionChip& chip : option_chips) {
        SCOPED_TRACE(chip.letter);
        const int late = chip.letter == 'A' ? 30 : 470;
        OptionBench bench = OptionBench::with_other_options(
            chip, {.faults = {fault_of(FaultKind::delay, FrameKind::options, late)}});
        bench.run_job();
        expect_options_written(bench);
        EXPECT_EQ(bench.option_attempts(), 1);
    }
}

// It comes at the end of the wait, or in the pause before the next try.
TEST(OptionWrite, TakesALateAnswerAtTheEdgeOfItsTime) {
    for (const OptionChip& chip : option_chips) {
        const int time = chip.letter == 'A' ? 50 : 500;
        for (const int times : {1, always}) {
            for (int late = time - 10; late <= time + 14; ++late) {
                SCOPED_TRACE(std::string(1, chip.letter) + ", " + std::to_string(late) + " ms, " +
                             std::to_string(times));
                OptionBench bench = OptionBench::with_other_options(
                    chip,
                    {.faults = {fault_of(FaultKind::delay, FrameKind::options, late, times)}});
                bench.run_job();
                expect_options_written(bench);
                EXPECT_LE(bench.option_attempts(), 2);
                if (HasFailure()) return;
            }
        }
    }
}

// The line takes of the chip's time what it needs.
TEST(OptionWrite, GivesTheOldestChipsTheTimeOfASlowLine) {
    const std::pair<const char*, double> waits[] = {
        {"9600", 50}, {"4800", 50}, {"2400", 71 + 14}, {"1200", 142 + 14}};
    for (const auto& [baud, wait] : waits) {
        SCOPED_TRACE(baud);
        OptionBench lost = OptionBench::with_other_options(
            chip_of('A'), {.faults = {lose_frame(FrameKind::options, 1)}});
        lost.choose(lost.frm.screen.cobBaudMax, baud);
        lost.run_job();
        expect_options_written(lost);
        std::vector<double> at;
        for (const Written& written : lost.port.written)
            if (written.bytes.size() == 9 && written.bytes[5] == 0x8D)
                at.push_back(
                    std::chrono::duration<double, std::milli>(written.at - lost.loop.start())
                        .count());
        ASSERT_EQ(at.size(), 2U);
        EXPECT_NEAR(at[1] - at[0], wait + 8, 2);
    }
}

TEST(OptionWrite, ReadsTheStatusAgainWhenItIsLostAndFailsWithTheThird) {
    for (const OptionChip& chip : option_chips) {
        for (const FaultKind kind : {FaultKind::lose_frame, FaultKind::lose_reply}) {
            for (int lost = 1; lost <= 3; ++lost) {
                SCOPED_TRACE(chip.letter + std::to_string(lost));
                OptionBench bench = OptionBench::with_other_options(
                    chip,
                    {.faults = {{.kind = kind, .frame = FrameKind::status_read, .times = lost}}});
                bench.run_job();
                EXPECT_EQ(bench.option_attempts(), 1);
                if (lost < 3) {
                    expect_options_written(bench);
                    EXPECT_EQ(bench.status_reads(), lost + 1);
                } else {
                    expect_options_failed(bench);
                    EXPECT_EQ(bench.status_reads(), 3);
                }
            }
        }
    }
}

// The second of them comes in the pause before the status is read, and isn't that.
TEST(OptionWrite, TakesNoAnswerThatComesTwiceForTheStatus) {
    for (const OptionChip& chip : option_chips) {
        SCOPED_TRACE(chip.letter);
        OptionBench bench = OptionBench::with_other_options(
            chip, {.faults = {fault_of(FaultKind::twice, FrameKind::options, 0)}});
        bench.run_job();
        expect_options_written(bench);
        EXPECT_EQ(bench.option_attempts(), 1);
    }
}

// In family 2 the status of the first round stands before the frames of the second.
TEST(OptionWrite, TakesNoStatusThatComesTwiceForItsAnswer) {
    OptionBench bench = OptionBench::with_other_options(
        chip_of('C'), {.option_busy = 1,
                       .faults = {fault_of(FaultKind::twice, FrameKind::status_read, 0),
                                  lose_frame(FrameKind::options, 1, 2)}});
    bench.run_job();
    expect_options_written(bench);
    EXPECT_EQ(bench.option_attempts(), 3);
    EXPECT_EQ(bench.status_reads(), 2);
}

// ---- other answers ------------------------------------------------------------------

sim::Fault other_code(int code, int nth, int times = 1) {
    return {.kind = FaultKind::other_code,
            .frame = FrameKind::options,
            .nth = nth,
            .times = times,
            .value = code};
}

TEST(OptionWrite, IsTriedAgainWhenTheChipRefusesInFamilies3To6) {
    for (const char letter : {'D', 'E', 'F', 'G'}) {
        for (int refused = 1; refused <= 4; ++refused) {
            SCOPED_TRACE(letter + std::to_string(refused));
            OptionBench bench = OptionBench::with_other_options(
                chip_of(letter), {.faults = {other_code(0x8F, 1, refused)}});
            bench.run_job();
            if (refused < 4)
                expect_options_written(bench);
            else
                expect_options_failed(bench);
            EXPECT_EQ(bench.option_attempts(), std::min(refused + 1, 4));
        }
    }
}

// A refusal that comes twice costs no attempt.
TEST(OptionWrite, IsTriedAgainAsOftenWhenEachRefusalComesTwice) {
    for (const char letter : {'D', 'E', 'F', 'G'}) {
        SCOPED_TRACE(letter);
        OptionBench bench = OptionBench::with_other_options(
            chip_of(letter), {.faults = {other_code(0x8F, 1, 3),
                                         fault_of(FaultKind::twice, FrameKind::options, 0, 3)}});
        bench.run_job();
        expect_options_written(bench);
        EXPECT_EQ(bench.option_attempts(), 4);
    }
}

TEST(OptionWrite, AsksABusyChipAgainAsOftenAsItIsBusy) {
    for (const char letter : {'D', 'E', 'F', 'G'}) {
        for (int busy = 1; busy <= 10; ++busy) {
            SCOPED_TRACE(letter + std::to_string(busy));
            OptionBench bench =
                OptionBench::with_other_options(chip_of(letter), {.option_busy = busy});
            bench.run_job();
            expect_options_written(bench);
            EXPECT_EQ(bench.option_attempts(), busy + 1);
            EXPECT_EQ(bench.chip.counters().option_writes, 1);
        }
    }
}

TEST(OptionWrite, BeginsItsRoundAnewWithEveryBusyAnswer) {
    const std::vector<sim::FaultPlan> good = {
        {other_code(0x8F, 1), other_code(0x81, 2), other_code(0x8F, 3), other_code(0x81, 4),
         other_code(0x8F, 5), other_code(0x81, 6), other_code(0x8F, 7)},
        {other_code(0x8F, 1, 2), other_code(0x8F, 3), other_code(0x81, 4), other_code(0x8F, 5)},
    };
    for (const sim::FaultPlan& faults : good) {
        OptionBench bench = OptionBench::with_other_options(chip_of('D'), {.faults = faults});
        bench.run_job();
        expect_options_written(bench);
    }
    // Busy answers of the first round don't lengthen the second.
    OptionBench bench = OptionBench::with_other_options(
        chip_of('G'), {.faults = {other_code(0x81, 1, 3), other_code(0x8F, 4, 2),
                                  lose_frame(FrameKind::options, 2, 6)}});
    bench.run_job();
    expect_options_failed(bench);
    EXPECT_EQ(bench.option_attempts(), 7);
}

TEST(OptionWrite, OfFamily2JudgesByWhatTheChipHolds) {
    OptionBench once = OptionBench::with_other_options(chip_of('C'), {.option_busy = 1});
    once.run_job();
    expect_options_written(once);
    EXPECT_EQ(once.option_attempts(), 2);
    EXPECT_EQ(once.status_reads(), 2);

    // A chip that takes the frame twice and holds another byte doesn't end the job.
    for (const sim::ChipConfig& config :
         {sim::ChipConfig{.option_busy = -1}, sim::ChipConfig{.option_flaw = 0x80}}) {
        OptionBench bench = OptionBench::with_other_options(chip_of('C'), config);
        bench.run_job();
        expect_good_chip(bench);
        EXPECT_EQ(bench.option_attempts(), 2);
        EXPECT_EQ(bench.status_reads(), 2);
        EXPECT_FALSE(bench.log_has("Config option")) << bench.log();
        EXPECT_FALSE(bench.frm.link.Status_Read_OK);
        EXPECT_EQ(bench.sounder.beeps(), 1);
    }
}

TEST(OptionWrite, ReportsAChipOfFamilies3To6ThatHoldsOtherBytes) {
    for (const char letter : {'D', 'E', 'F', 'G'}) {
        for (const int flaw : {0x01, 0x02, 0x80}) {
            SCOPED_TRACE(letter + std::to_string(flaw));
            OptionBench bench = OptionBench::with_other_options(
                chip_of(letter), {.option_flaw = static_cast<std::uint8_t>(flaw)});
            bench.run_job();
            expect_options_failed(bench);
            EXPECT_EQ(bench.option_attempts(), 1);
            EXPECT_EQ(bench.status_reads(), 1);
        }
    }
}

TEST(OptionWrite, OfFamily0IsGoodOnceTheStatusWasRead) {
    OptionBench bench = OptionBench::with_other_options(chip_of('A'), {.option_flaw = 0x08});
    bench.run_job();
    expect_good_chip(bench);
    EXPECT_TRUE(bench.log_has("\r\nDouble speed: Yes\r\n (End: ")) << bench.log();
}

// ---- the operator ----------------------------------------------------------------------

// When the option write of a whole job begins, and when the job ends, in ms from the click.
struct Span {
    std::int64_t begin = 0, end = 0;
};
Span option_write_of(const OptionChip& chip, const sim::ChipConfig& config = {}) {
    OptionBench bench = OptionBench::with_other_options(chip, config);
    if (config.option_busy < 0) bench.click_stop_in(20'000);
    bench.run_job();
    for (const Written& written : bench.port.written)
        if (written.bytes.size() > 7 && written.bytes[5] == 0x8D) {
            const std::chrono::duration<double, std::milli> at = written.at - bench.loop.start();
            return {static_cast<std::int64_t>(at.count() - bench.start_ms),
                    static_cast<std::int64_t>(bench.job_ms())};
        }
    ADD_FAILURE() << "no option write";
    return {};
}

// A stopped job whose options stand or not: the failure is told in the second case.
void expect_stopped_or_done(const OptionBench& bench, int& stopped) {
    expect_session_over(bench);
    if (bench.frm.session.Result == Job_Result::stopped) {
        ++stopped;
        EXPECT_EQ(bench.count(), "0");
        EXPECT_FALSE(bench.log_has("Program OK")) << bench.log();
        EXPECT_TRUE(ends_with(bench.log(), options_failed) ||
                    ends_with(bench.log(), "\r\nProgramming.../ 正在下载... ( Begin: 10:00:01 )"))
            << bench.log();
        EXPECT_FALSE(bench.frm.link.Status_Read_OK);
    } else {
        EXPECT_EQ(bench.frm.session.Result, Job_Result::done) << bench.log();
        EXPECT_EQ(bench.count(), "1");
        EXPECT_FALSE(bench.log_has("error")) << bench.log();
    }
}

TEST(OptionWrite, EndsSoonAtAStopAtAnyMoment) {
    for (const OptionChip& chip : option_chips) {
        const Span span = option_write_of(chip);
        ASSERT_GT(span.end, span.begin + 50);
        int stopped = 0;
        for (std::int64_t moment = span.begin - 20; moment <= span.end; ++moment) {
            SCOPED_TRACE(chip.letter + std::to_string(moment));
            OptionBench bench = OptionBench::with_other_options(chip);
            bench.click_stop_in(moment);
            bench.run_job();
            EXPECT_LT(bench.job_ms(), static_cast<double>(moment) + 800);
            expect_stopped_or_done(bench, stopped);
            if (::testing::Test::HasFailure()) return;
        }
        EXPECT_GT(stopped, 20) << chip.letter;
    }
}

TEST(OptionWrite, OfAChipThatStaysBusyEndsWithStopAlone) {
    for (const char letter : {'D', 'E', 'F', 'G'}) {
        const Span span = option_write_of(chip_of(letter), {.option_busy = -1});
        EXPECT_GT(span.end, 20'000);
        for (std::int64_t later = 1; later < 5000; later += later < 60 ? 1 : 237) {
            SCOPED_TRACE(letter + std::to_string(later));
            OptionBench bench =
                OptionBench::with_other_options(chip_of(letter), {.option_busy = -1});
            bench.click_stop_in(span.begin + later);
            bench.run_job();
            EXPECT_GE(bench.job_ms(), static_cast<double>(span.begin + later));
            EXPECT_LT(bench.job_ms(), static_cast<double>(span.begin + later) + 600);
            expect_session_over(bench);
            EXPECT_EQ(bench.frm.session.Result, Job_Result::stopped);
            EXPECT_EQ(bench.verdict(), "■ Stopped / 已停止");
            EXPECT_TRUE(ends_with(bench.log(), options_failed)) << bench.log();
            EXPECT_EQ(bench.count(), "0");
            EXPECT_EQ(bench.chip.counters().option_writes, 0);
            if (::testing::Test::HasFailure()) return;
        }
    }
}

// Stop also closes the port, which silences any chip; the flag is enough, though.
TEST(OptionWrite, OfAChipThatStaysBusyEndsWithTheFlagOfStop) {
    for (const char* fastest : {"115200", "1200"}) {
        SCOPED_TRACE(fastest);
        OptionBench bench = OptionBench::with_other_options(chip_of('D'), {.option_busy = -1});
        ASSERT_TRUE(bench.choose(bench.frm.screen.cobBaudMax, fastest));
        bench.at(60'000, [&] { bench.frm.link.stop_requested = true; });
        bench.run_job();
        EXPECT_NEAR(bench.job_ms(), 60'000, 1200);
        expect_session_over(bench);
        EXPECT_EQ(bench.frm.session.Result, Job_Result::stopped);
        EXPECT_TRUE(ends_with(bench.log(), options_failed)) << bench.log();
        EXPECT_GT(bench.option_attempts(), 100);
    }
}

TEST(OptionWrite, EndsSoonWhenTheWindowClosesAtAnyMoment) {
    for (const OptionChip& chip : option_chips) {
        const Span span = option_write_of(chip);
        int stopped = 0;
        for (std::int64_t moment = span.begin - 20; moment <= span.end; moment += 3) {
            SCOPED_TRACE(chip.letter + std::to_string(moment));
            OptionBench bench = OptionBench::with_other_options(chip);
            bench.close_window_in(moment);
            bench.run_job();
            EXPECT_LT(bench.job_ms(), static_cast<double>(moment) + 800);
            expect_stopped_or_done(bench, stopped);
            bench.run_for(1000);
            EXPECT_TRUE(bench.frm.screen.window.Close_Requested);
            EXPECT_TRUE(QueryUnload(bench.frm));
            if (::testing::Test::HasFailure()) return;
        }
        EXPECT_GT(stopped, 5) << chip.letter;
    }
}

// ---- the chip goes -------------------------------------------------------------------------

TEST(OptionWrite, TellsOfAChipThatLosesItsPower) {
    for (const OptionChip& chip : option_chips) {
        const Span span = option_write_of(chip);
        int good = 0, failed = 0;
        for (std::int64_t moment = span.begin; moment <= span.end; ++moment) {
            for (const bool comes_back : {false, true}) {
                SCOPED_TRACE(chip.letter + std::to_string(moment) + (comes_back ? " blink" : ""));
                OptionBench bench = OptionBench::with_other_options(chip);
                bench.power_off_in(moment);
                if (comes_back) bench.power_on_in(moment + 15);
                bench.run_job();
                expect_session_over(bench);
                if (bench.frm.session.Result == Job_Result::failed) {
                    ++failed;
                    expect_options_failed(bench);
                } else {
                    ++good;
                    EXPECT_EQ(bench.frm.session.Result, Job_Result::done);
                    EXPECT_EQ(bench.count(), "1");
                    EXPECT_NE(bench.chip.options(), other_options(chip.letter));
                }
                if (::testing::Test::HasFailure()) return;
            }
        }
        EXPECT_GT(good, 20) << chip.letter;
        EXPECT_GT(failed, 20) << chip.letter;
    }
}

TEST(OptionWrite, TellsOfAChipThatItsFrameKills) {
    for (const OptionChip& chip : option_chips) {
        for (const FrameKind frame : {FrameKind::options, FrameKind::status_read}) {
            SCOPED_TRACE(chip.letter);
            OptionBench bench = OptionBench::with_other_options(
                chip, {.faults = {fault_of(FaultKind::power_loss, frame, 0)}});
            bench.run_job();
            expect_options_failed(bench);
            EXPECT_LT(bench.job_ms(), 8000);
        }
    }
}

// ---- a series ----------------------------------------------------------------------------

TEST(OptionWrite, ThatFailsEndsASeries) {
    OptionBench first = OptionBench::with_other_options(
        chip_of('D'), {.faults = {lose_frame(FrameKind::options, always)}});
    first.run_job(1);
    expect_options_failed(first);
    EXPECT_EQ(first.chip.counters().power_ups, 1);

    // The second chip of it.
    OptionBench second(chip_of('A'), {.after_start = {.power_cycle = true, .fresh_chip = true},
                                      .faults = {lose_frame(FrameKind::options, always, 2)}});
    second.choose(second.frm.screen.comDalay_ReDownLoad, "2");
    second.run_job(1);
    expect_session_over(second);
    EXPECT_EQ(second.count(), "1");
    EXPECT_EQ(second.frm.session.Result, Job_Result::failed);
    EXPECT_EQ(second.frm.session.Failed_Step, step);
    EXPECT_EQ(second.chip.counters().chips, 2);
    EXPECT_TRUE(ends_with(second.log(), options_failed)) << second.log();
}

TEST(OptionWrite, ThatFailedIsDoneAnewByTheNextJob) {
    for (const OptionChip& chip : option_chips) {
        SCOPED_TRACE(chip.letter);
        OptionBench bench = OptionBench::with_other_options(
            chip, {.faults = {lose_frame(FrameKind::options, chip.attempts)}});
        bench.run_job();
        expect_options_failed(bench);
        bench.power_cycle();
        bench.run_job();
        expect_options_written(bench);
        EXPECT_NE(bench.chip.options(), other_options(chip.letter));
    }
}

}  // namespace
}  // namespace vkm::test
