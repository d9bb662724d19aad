// The bench as a whole: the real program, the line that knows bits and a
// simulated chip. That a job is right in every detail is for the suites of the
// session; here stands that the bench carries one, how fast, and that its faults
// reach the program.
#include <gtest/gtest.h>

#include <ctime>

#include "session/download_session.h"
#include "support/virtual_bench.h"
#include "waiting/waiting.h"

namespace vkm::test {
namespace {

std::vector<std::uint8_t> pattern(std::size_t count) {
    std::vector<std::uint8_t> bytes(count);
    for (std::size_t i = 0; i < count; ++i) bytes[i] = static_cast<std::uint8_t>(i * 31 + i / 251);
    return bytes;
}

TEST(VirtualBenchTest, AFileGoesIntoAChip) {
    VirtualBench bench({.model = "VKM47H58RK+"});
    ASSERT_TRUE(bench.select_model("VKM47H58RK+"));
    const auto image = pattern(3000);
    bench.load_bytes(image);
    comDownload(bench.frm, 0);
    EXPECT_TRUE(bench.frm.session.Program_OK) << bench.story();
    EXPECT_TRUE(bench.flash_holds(image));
    EXPECT_FALSE(bench.port.is_open());
}

TEST(VirtualBenchTest, AJobOfSixtyKilobytesTakesItsWireTimeInVirtualTimeAndHardlyAnyInReal) {
    VirtualBench bench({.model = "VKM47H516RK+", .clock_hz = 22118400});
    ASSERT_TRUE(bench.select_model("VKM47H516RK+")) << bench.log();
    const auto image = pattern(60'000);
    bench.load_bytes(image);
    const std::clock_t begin = std::clock();
    comDownload(bench.frm, 0);
    const double seconds = static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC;
    EXPECT_TRUE(bench.frm.session.Program_OK) << bench.story();
    EXPECT_TRUE(bench.flash_holds(image));
    // 60000 bytes at 115200 baud are 5.2 s on the wire.
    EXPECT_GT(bench.elapsed_ms(), 5'200);
    EXPECT_LT(bench.elapsed_ms(), 30'000);
    // Of processor time; it needs a hundredth of that in an ordinary build, and a
    // build that watches itself needs more.
    EXPECT_LT(seconds, 1.5);
}

TEST(VirtualBenchTest, AChipThatGetsPowerLaterIsWaitedFor) {
    sim::ChipConfig cold{.model = "VKM47H58RK+"};
    cold.powered_at = never;
    VirtualBench bench(cold);
    ASSERT_TRUE(bench.select_model("VKM47H58RK+"));
    const auto image = pattern(1000);
    bench.load_bytes(image);
    bench.power_on_in(3000);
    comDownload(bench.frm, 0);
    EXPECT_TRUE(bench.frm.session.Program_OK) << bench.story();
    EXPECT_TRUE(bench.flash_holds(image));
    EXPECT_GT(bench.elapsed_ms(), 3000);
}

TEST(VirtualBenchTest, TheOperatorsStopComesIntoTheWait) {
    sim::ChipConfig cold{.model = "VKM47H58RK+"};
    cold.powered_at = never;
    VirtualBench bench(cold);
    ASSERT_TRUE(bench.select_model("VKM47H58RK+"));
    bench.load_bytes(pattern(1000));
    bench.at(5000, [&] { comStop_Download(bench.frm); });
    comDownload(bench.frm, 0);
    EXPECT_EQ(bench.frm.session.Result, Job_Result::stopped) << bench.story();
    EXPECT_NEAR(bench.elapsed_ms(), 5000, 1000);
}

TEST(VirtualBenchTest, AJobSucceedsOnASlowMachineWithASlowAdapterToo) {
    VirtualBench bench({.model = "VKM47H58RK+"});
    bench.loop.oversleep = std::chrono::milliseconds(15);
    bench.line.latency = std::chrono::milliseconds(16);
    ASSERT_TRUE(bench.select_model("VKM47H58RK+"));
    const auto image = pattern(5000);
    bench.load_bytes(image);
    comDownload(bench.frm, 0);
    EXPECT_TRUE(bench.frm.session.Program_OK) << bench.story();
    EXPECT_TRUE(bench.flash_holds(image));
}

TEST(VirtualBenchTest, APortThatDoesNotWaitForItsOutputIsFoundOutByAJob) {
    VirtualBench bench({.model = "VKM47H58RK+"});
    bench.port.waits_for_output = false;
    ASSERT_TRUE(bench.select_model("VKM47H58RK+"));
    bench.load_bytes(pattern(1000));
    comDownload(bench.frm, 0);
    EXPECT_FALSE(bench.frm.session.Program_OK);
    EXPECT_FALSE(bench.take_violations().empty());
}

// Whatever happens to one frame or one byte of a job: the chip holds the file, or
// the operator was told that it doesn't. A run without a fault ends the sweep.
class FaultSweep : public testing::TestWithParam<PortFault> {
  protected:
    struct Count {
        int runs = 0;
        int stopped = 0;  // those that only the operator could end
    };

    static Count sweep(std::size_t bytes, const std::function<void(VirtualBench&, int)>& plan) {
        constexpr int far_enough = 2000;
        const auto image = pattern(bytes);
        Count count;
        for (int nth = 1;; ++nth, ++count.runs) {
            SCOPED_TRACE(nth);
            VirtualBench bench({.model = "VKM47H58RK+"});
            EXPECT_TRUE(bench.select_model("VKM47H58RK+"));
            bench.load_bytes(image);
            bench.at(60'000, [&] { bench.frm.link.stop_requested = true; });
            plan(bench, nth);
            comDownload(bench.frm, 0);
            const auto& session = bench.frm.session;
            if (session.Program_OK)
                EXPECT_TRUE(bench.flash_holds(image)) << bench.story();
            else if (bench.elapsed_ms() > 60'000)
                ++count.stopped;
            else
                EXPECT_EQ(session.Result, Job_Result::failed) << bench.story();
            EXPECT_FALSE(bench.port.is_open());
            if (bench.faults.struck == 0) return count;
            if (nth == far_enough) {
                ADD_FAILURE() << "the sweep has no end";
                return count;
            }
        }
    }
};

TEST_P(FaultSweep, AJobWithOneBadFrameEndsRightOrSaysThatItFailed) {
    const Count count = sweep(
        1500, [](VirtualBench& bench, int nth) { bench.faults.fault_frame(nth, GetParam()); });
    EXPECT_GT(count.runs, 5) << "the sweep met no frames";
    EXPECT_EQ(count.stopped, 0);
}

TEST_P(FaultSweep, AJobWithOneBadAnswersByteEndsRightOrSaysThatItFailed) {
    const Count count =
        sweep(700, [](VirtualBench& bench, int nth) { bench.faults.fault_byte(nth, GetParam()); });
    EXPECT_GT(count.runs, 50) << "the sweep met no answers";
    // A first answer that seems to be of length 0 (its upper byte came twice) is
    // never complete: only Stop ends that wait.
    EXPECT_LE(count.stopped, 1);
}

INSTANTIATE_TEST_SUITE_P(EachFault, FaultSweep,
                         testing::Values(PortFault::lose, PortFault::damage, PortFault::twice,
                                         PortFault::late, PortFault::cut_off));

}  // namespace
}  // namespace vkm::test
