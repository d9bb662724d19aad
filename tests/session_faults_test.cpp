// What can go wrong on the line and with the chip, at every point of a job. Only
// two outcomes pass: a good chip whose flash holds the image, or a failure that
// is named. Never a hang, and the controls always come back.
#include <gtest/gtest.h>

#include <map>
#include <random>
#include <span>

#include "session_bench.h"
#include "support/holding_line.h"

namespace vkm::test {
namespace {

using std::chrono::milliseconds;

// A job without a fault ends within 3 s; with the waits of all retries, within this.
constexpr auto longest_job = std::chrono::minutes(3);

bool names_its_failure(const std::string& log) {
    for (std::string_view text :
         {"Operation is stop.", "Handshake is failed.", "Open COM port failure!",
          "Erase application is failed.", "Program is failure.", "MCU Type is wrong.",
          "Config option are error!"})
        if (log.find(text) != std::string::npos) return true;
    return false;
}

struct Outcomes {
    int good = 0;
    int failed = 0;
    int stopped = 0;
};

// Runs the job and holds its outcome against what the bench shows.
void run_job(SessionBench& bench, Outcomes& outcomes) {
    bench.loop.time_limit =
        std::chrono::duration_cast<Microseconds>(longest_job) + bench.loop.elapsed();
    ASSERT_NO_THROW(comDownload(bench.frm, 0)) << bench.story();
    expect_session_over(bench);
    switch (bench.frm.session.Result) {
        case Job_Result::done:
            ++outcomes.good;
            EXPECT_EQ(bench.count(), "1");
            EXPECT_TRUE(bench.flash_holds(bench.image)) << bench.story();
            EXPECT_TRUE(bench.log_has("Program OK")) << bench.story();
            break;
        case Job_Result::failed:
            ++outcomes.failed;
            EXPECT_EQ(bench.count(), "0");
            EXPECT_FALSE(bench.frm.session.Failed_Step.empty());
            EXPECT_TRUE(names_its_failure(bench.log())) << bench.story();
            EXPECT_FALSE(bench.log_has("Program OK")) << bench.story();
            break;
        case Job_Result::stopped:
            ++outcomes.stopped;
            EXPECT_EQ(bench.count(), "0");
            // Stop may fall into the beeps of a failure, which is told then.
            EXPECT_TRUE(names_its_failure(bench.log())) << bench.story();
            break;
        default:
            ADD_FAILURE() << "no verdict: " << bench.story();
    }
}

// A chip that is lost while the tool seeks it is sought for ever; somebody has to
// press Stop.
void somebody_presses_stop(SessionBench& bench) {
    bench.click_stop_in(100'000);
}

const std::map<std::string, PortFault> port_faults = {{"lose", PortFault::lose},
                                                      {"damage", PortFault::damage},
                                                      {"twice", PortFault::twice},
                                                      {"late", PortFault::late},
                                                      {"cut off", PortFault::cut_off}};

struct Chip {
    std::string chip, model;
};
const std::vector<Chip> chips = {{"VKM47H58RK", "VKM47H58RK"},   {"VKM47W58AD", "VKM47W58AD"},
                                 {"VKM47H58RK+", "VKM47H58RK+"}, {"VKM26H2052", "VKM26H2052"},
                                 {"VKM26H5404", "VKM26H5404"},   {"VKM26H5420", "26H/W54xx Series"},
                                 {"VKM27J032", "VKM27J032"}};

TEST(FaultSweep, AFrameThatGoesWrongOnItsWayToTheChip) {
    for (const Chip& chip : chips) {
        for (const auto& [name, fault] : port_faults) {
            Outcomes outcomes;
            bool struck = true;
            for (int nth = 1; struck; ++nth) {
                SCOPED_TRACE(chip.chip + ", frame " + std::to_string(nth) + ": " + name);
                SessionBench bench({.model = chip.chip}, chip.model);
                bench.load(1100);
                bench.faults.fault_frame(nth, fault);
                somebody_presses_stop(bench);
                run_job(bench, outcomes);
                struck = bench.faults.struck > 0;
                if (HasFailure()) return;
            }
            // One bad frame is retried. There is one exception: the tool follows to
            // the new rate whether the chip heard of it or not.
            EXPECT_LE(outcomes.failed, 1) << chip.chip << ", " << name;
            EXPECT_EQ(outcomes.stopped, 0) << chip.chip << ", " << name;
            EXPECT_GT(outcomes.good, 15);
        }
    }
}

TEST(FaultSweep, AByteThatGoesWrongOnItsWayToTheTool) {
    for (const Chip& chip : {chips[0], chips[2], chips[4]}) {
        for (const auto& [name, fault] : port_faults) {
            Outcomes outcomes;
            bool struck = true;
            for (int nth = 1; struck; ++nth) {
                SCOPED_TRACE(chip.chip + ", byte " + std::to_string(nth) + ": " + name);
                SessionBench bench({.model = chip.chip}, chip.model);
                bench.load(700);
                bench.faults.fault_byte(nth, fault);
                somebody_presses_stop(bench);
                run_job(bench, outcomes);
                struck = bench.faults.struck > 0;
                if (HasFailure()) return;
            }
            EXPECT_GT(outcomes.good, 40);
        }
    }
}

TEST(FaultSweep, AnAnswerThatTheChipGetsWrong) {
    using sim::FaultKind;
    const std::vector<FaultKind> kinds = {
        FaultKind::lose_frame, FaultKind::lose_reply,  FaultKind::damage, FaultKind::delay,
        FaultKind::twice,      FaultKind::cut_off,     FaultKind::noise,  FaultKind::wrong_data_sum,
        FaultKind::other_code, FaultKind::wrong_length};
    for (const Chip& chip : chips) {
        for (const FaultKind kind : kinds) {
            Outcomes outcomes;
            for (int nth = 1; nth <= 25; ++nth) {
                SCOPED_TRACE(chip.chip + ", answer " + std::to_string(nth) + ": " +
                             std::string(sim::name_of(kind)));
                SessionBench bench({.model = chip.chip,
                                    .faults = {{.kind = kind,
                                                .nth = nth,
                                                .value = kind == FaultKind::wrong_length ? 65535
                                                         : kind == FaultKind::other_code ? 0x8F
                                                                                         : 4,
                                                .extra = 40,
                                                .bytes = {0x00, 0x68, 0xFF}}}},
                                   chip.model);
                bench.load(1100);
                somebody_presses_stop(bench);
                run_job(bench, outcomes);
                if (HasFailure()) return;
            }
            EXPECT_GT(outcomes.good, 20) << chip.chip << " " << sim::name_of(kind);
        }
    }
}

// Answers carry no number, so a late one must not pass for the next.
TEST(FaultSweep, AnAnswerThatTheLineHoldsBack) {
    Outcomes outcomes;
    int option_writes = 0;
    for (const Chip& chip : chips) {
        for (const bool short_acks : {false, true}) {
            for (int ms = 200; ms <= 400; ms += 25) {
                bool held_back = true;
                for (int nth = 1; held_back; ++nth) {
                    SCOPED_TRACE(chip.chip + ", answer " + std::to_string(nth) + ", " +
                                 std::to_string(ms) + " ms");
                    SessionBench bench({.model = chip.chip, .short_acks = short_acks}, chip.model);
                    HoldingLine held(bench.chip.target(), nth, milliseconds(ms));
                    bench.line.connect(held.target());
                    bench.load(700);
                    somebody_presses_stop(bench);
                    run_job(bench, outcomes);
                    held_back = held.answers >= nth;
                    // The oldest chips have 50 ms to answer an option write, three times.
                    if (bench.frm.session.Result == Job_Result::failed) {
                        EXPECT_EQ(bench.frm.link.Chip_Letter, "A");
                        EXPECT_TRUE(bench.log_has("Config option are error!"));
                        ++option_writes;
                    }
                    if (HasFailure()) return;
                }
            }
        }
    }
    EXPECT_GT(outcomes.good, 1000);
    EXPECT_EQ(outcomes.failed, option_writes);
    EXPECT_EQ(outcomes.stopped, 0);
}

// Held back for so long that its request is repeated, an answer is followed by
// that to the repeat, which must not pass for what is asked next.
struct HeldBack {
    const char* what;
    sim::ChipConfig chip;
    std::vector<int> answers;  // which is held back
    int from_ms, to_ms, step_ms;
};

void hold_back(const HeldBack& held_back) {
    Outcomes outcomes;
    for (const int nth : held_back.answers) {
        for (int ms = held_back.from_ms; ms <= held_back.to_ms; ms += held_back.step_ms) {
            SCOPED_TRACE(std::string(held_back.what) + ", answer " + std::to_string(nth) + ", " +
                         std::to_string(ms) + " ms");
            SessionBench bench(held_back.chip);
            HoldingLine held(bench.chip.target(), nth, milliseconds(ms));
            bench.line.connect(held.target());
            bench.image.assign(700, 0x00);  // all blocks have one sum
            bench.load_bytes(bench.image);
            somebody_presses_stop(bench);
            run_job(bench, outcomes);
            EXPECT_GE(bench.chip.counters().erases, 1) << bench.story();
            EXPECT_GE(held.answers, nth);
            if (testing::Test::HasFailure()) return;
        }
    }
    EXPECT_EQ(outcomes.failed + outcomes.stopped, 0) << held_back.what;
}

TEST(FaultSweep, AnAnswerThatIsHeldBackUntilItsRequestIsRepeated) {
    const std::string model = "VKM47H58RK+";
    for (const bool short_acks : {false, true}) {
        hold_back({"erase", {.model = model, .short_acks = short_acks}, {9}, 4600, 5200, 10});
        for (const int work : {1, 20, 80})
            hold_back({"block",
                       {.model = model, .short_acks = short_acks, .block_time = milliseconds(work)},
                       {10, 11, 12},
                       950,
                       1320,
                       10});
    }
    for (const int turnaround : {1, 40, 100, 150}) {
        hold_back(
            {"status",
             {.model = "VKM47H58RK", .status_length = 24, .turnaround = milliseconds(turnaround)},
             {9},
             800,
             960,
             10});
        hold_back({"link check",
                   {.model = model, .turnaround = milliseconds(turnaround)},
                   {4, 5, 6, 7, 8},
                   60,
                   400,
                   20});
    }
    // The chip itself takes as long as it is given.
    for (int work = 4940; work <= 5020; work += 4)
        hold_back(
            {"long erase", {.model = model, .erase_time = milliseconds(work)}, {9}, 0, 60, 6});
    for (const int work : {7000, 12000})
        hold_back(
            {"slow erase", {.model = model, .erase_time = milliseconds(work)}, {9}, 0, 60, 20});
}

TEST(FaultSweep, TheChipLosesItsPower) {
    Outcomes outcomes;
    for (int ms = 0; ms < 2600; ms += 7) {
        SCOPED_TRACE("power lost after " + std::to_string(ms) + " ms");
        SessionBench bench({.model = "VKM47H58RK+"});
        bench.load(3000);
        bench.power_off_in(ms);
        somebody_presses_stop(bench);
        run_job(bench, outcomes);
        if (HasFailure()) return;
    }
    EXPECT_GT(outcomes.good, 10);
    EXPECT_GT(outcomes.failed, 100);
    EXPECT_GT(outcomes.stopped, 10);
}

TEST(FaultSweep, TheChipLosesItsPowerAndGetsItBack) {
    Outcomes outcomes;
    for (int ms = 0; ms < 2600; ms += 13) {
        SCOPED_TRACE("power blinks after " + std::to_string(ms) + " ms");
        SessionBench bench({.model = "VKM26H5404"});
        bench.load(3000);
        bench.power_off_in(ms);
        bench.power_on_in(ms + 30);
        somebody_presses_stop(bench);
        run_job(bench, outcomes);
        if (HasFailure()) return;
    }
    EXPECT_GT(outcomes.good, 10);
    EXPECT_GT(outcomes.failed, 50);
}

TEST(FaultSweep, TheCableIsPulled) {
    Outcomes outcomes;
    for (int ms = 0; ms < 2600; ms += 7) {
        SCOPED_TRACE("cable pulled after " + std::to_string(ms) + " ms");
        SessionBench bench({.model = "VKM47H58RK+"});
        bench.load(3000);
        bench.at(ms, [&] { bench.port.unplug(); });
        somebody_presses_stop(bench);
        run_job(bench, outcomes);
        if (HasFailure()) return;
    }
    EXPECT_GT(outcomes.good, 10);
    EXPECT_GT(outcomes.failed, 100);
}

TEST(FaultSweep, TheCableIsPulledAndPutBack) {
    Outcomes outcomes;
    for (int ms = 0; ms < 2600; ms += 13) {
        SCOPED_TRACE("cable out after " + std::to_string(ms) + " ms");
        SessionBench bench({.model = "VKM47H58RK+"});
        bench.load(3000);
        bench.at(ms, [&] { bench.port.unplug(); });
        bench.at(ms + 200, [&] { bench.port.plug(1); });
        somebody_presses_stop(bench);
        run_job(bench, outcomes);
        if (HasFailure()) return;
    }
    EXPECT_GT(outcomes.good, 10);
}

TEST(FaultSweep, ThePortOpensNotAtTheNthTry) {
    Outcomes outcomes;
    for (int nth = 1; nth <= 20; ++nth) {
        SCOPED_TRACE("open " + std::to_string(nth));
        SessionBench bench({.model = "VKM47H58RK+"});
        bench.load(1000);
        bench.port.nth_open_error[nth] = error_busy;
        somebody_presses_stop(bench);
        run_job(bench, outcomes);
        if (HasFailure()) return;
    }
    EXPECT_GT(outcomes.good, 5);
}

// The same throws for the same seed.
class Dice {
  public:
    explicit Dice(unsigned seed) : throws_(seed) {}
    int operator()(int sides) { return static_cast<int>(throws_() % static_cast<unsigned>(sides)); }
    const Chip& one_of(std::span<const Chip> all) {
        return all[static_cast<std::size_t>((*this)(static_cast<int>(all.size())))];
    }

  private:
    std::mt19937 throws_;
};

TEST(FaultSoak, ManyFaultsAtOnce) {
    Outcomes outcomes;
    for (unsigned seed = 1; seed <= 600; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        Dice roll(seed);
        const Chip& chip = roll.one_of(chips);
        SessionBench bench({.model = chip.chip}, chip.model);
        bench.load(static_cast<std::size_t>(200 + roll(1800)));
        const auto fault = [&] {
            auto any = port_faults.begin();
            std::advance(any, roll(static_cast<int>(port_faults.size())));
            return any->second;
        };
        bench.faults.delay = Milliseconds(1 + roll(400));
        for (int faults = roll(12); faults > 0; --faults)
            bench.faults.fault_frame(1 + roll(40), fault());
        for (int faults = roll(12); faults > 0; --faults)
            bench.faults.fault_byte(1 + roll(300), fault());
        if (roll(4) == 0) bench.click_stop_in(roll(4000));
        somebody_presses_stop(bench);
        run_job(bench, outcomes);
        if (HasFailure()) return;
    }
    EXPECT_GT(outcomes.good, 100);
    EXPECT_GT(outcomes.failed, 20);
    EXPECT_GT(outcomes.stopped, 20);
}

TEST(FaultSoak, ManyWrongAnswersAtOnce) {
    using sim::FaultKind;
    const FaultKind kinds[] = {FaultKind::delay, FaultKind::lose_frame, FaultKind::lose_reply,
                               FaultKind::twice, FaultKind::damage,     FaultKind::cut_off};
    Outcomes outcomes;
    for (unsigned seed = 1; seed <= 600; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        Dice roll(seed);
        const Chip& chip = roll.one_of(chips);
        sim::ChipConfig config{.model = chip.chip,
                               .short_acks = roll(2) == 0,
                               .block_time = std::chrono::microseconds(500 + roll(8000)),
                               .erase_time = milliseconds(50 + roll(1000))};
        for (int faults = roll(12); faults > 0; --faults) {
            const FaultKind kind = kinds[roll(6)];
            config.faults.push_back({.kind = kind,
                                     .nth = 1 + roll(40),
                                     .times = 1 + roll(2),
                                     .value = kind == FaultKind::delay ? roll(1500) : 4});
        }
        SessionBench bench(config, chip.model);
        bench.load(static_cast<std::size_t>(200 + roll(1800)));
        somebody_presses_stop(bench);
        run_job(bench, outcomes);
        if (HasFailure()) return;
    }
    EXPECT_GT(outcomes.good, 300);
    EXPECT_GT(outcomes.failed, 10);
}

}  // namespace
}  // namespace vkm::test
