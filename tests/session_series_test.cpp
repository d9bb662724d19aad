// A series of chips: what the first one leaves to the others.
#include <gtest/gtest.h>

#include "sent_erases.h"

namespace vkm::test {
namespace {

// What the operator does when the log holds a text in the pause behind the nth
// good chip.
void in_pause(SessionBench& bench, const std::string& count, const std::string& text,
              const std::function<void()>& act) {
    if (bench.count() == count && bench.log_has(text))
        act();
    else
        bench.at(20, [&bench, count, text, act] { in_pause(bench, count, text, act); });
}

TEST(Series, KeepsThePlanOfItsFirstChip) {
    // The second chip's later firmware has a data memory of its own, up to 6FFF.
    sim::OptionBytes clears_data;
    clears_data.fill(0xFF);
    clears_data[8] = 0xFD;
    sim::SimulatedChip later(
        {.model = "VKM26H5404", .version = 0x51, .options = clears_data, .powered_at = sim::never});
    SessionBench bench({.model = "VKM26H5404", .version = 0x50, .options = clears_data});
    bench.frm.screen.Option2[0].Value = 1;  // and so does the operator
    bench.frm.screen.Option2[1].Value = 0;
    bench.choose(bench.frm.screen.comDalay_ReDownLoad, "2");
    bench.load(0x700);
    in_pause(bench, "1", "will continue.  2", [&] {
        bench.line.connect(later.target());
        later.power_on(bench.loop.now());
    });
    in_pause(bench, "2", "will continue.  2", [&] { comStop_Download(bench.frm); });
    comDownload(bench.frm, 1);
    ASSERT_EQ(bench.count(), "2") << bench.story();
    EXPECT_EQ(later.counters().erases, 1);
    const Bytes from_image_to_2FFF = {0xFF, 0, 0x07, 0x00, 0, 0x2F, 0xFF};
    EXPECT_EQ(sent_erases(bench), (std::vector<Bytes>{from_image_to_2FFF, from_image_to_2FFF}));

    // The next job begins with a plan of its own.
    later.power_cycle(bench.loop.now(), Milliseconds(100));
    comDownload(bench.frm, 0);
    ASSERT_EQ(sent_erases(bench).size(), 3u) << bench.story();
    EXPECT_EQ(sent_erases(bench)[2], (Bytes{0xFF, 0, 0x07, 0x00, 0, 0x6F, 0xFF}));
}

TEST(Series, LeavesTheTerminalsPortClosedBetweenItsChipsAndAtItsEnd) {
    static int openings;
    openings = 0;
    SessionBench bench({.after_start = {.power_cycle = true, .fresh_chip = true}});
    bench.frm.session.Open_Assistant_Port = [](frmMain&) { ++openings; };
    bench.frm.screen.che_AutoOpenPort.Value = 1;
    bench.choose(bench.frm.screen.comDalay_ReDownLoad, "2");
    bench.load(300);
    bool looked = false;
    in_pause(bench, "1", "will continue.  1", [&] {
        looked = true;
        EXPECT_FALSE(bench.port.is_open());
        EXPECT_EQ(openings, 0);
    });
    in_pause(bench, "2", "will continue.  2", [&] { comStop_Download(bench.frm); });
    comDownload(bench.frm, 1);
    EXPECT_TRUE(looked);
    EXPECT_EQ(bench.count(), "2");
    EXPECT_EQ(openings, 0);
    expect_stopped(bench);
}

}  // namespace
}  // namespace vkm::test
