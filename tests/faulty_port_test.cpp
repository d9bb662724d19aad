// The layer that makes mistakes on the way between program and line.
#include <gtest/gtest.h>

#include <utility>

#include "support/virtual_platform.h"

namespace vkm::test {
namespace {

using Bytes = std::vector<std::uint8_t>;
using std::chrono::milliseconds;

class FaultyPortTest : public testing::Test {
  protected:
    FaultyPortTest() {
        world.line.connect(
            {.hear = [this](Instant, std::uint8_t value, double) { heard.push_back(value); },
             .due = {},
             .act = {},
             .take_output = [this] { return std::exchange(to_send, {}); }});
        port.set_settings("115200,n,8,1");
        port.open();
    }

    void run_for(Microseconds time) {
        const Instant end = world.loop.now() + time;
        while (world.loop.now() < end) world.loop.turn(end);
    }
    void answer(const Bytes& bytes) {
        std::size_t n = 0;
        for (const std::uint8_t byte : bytes)
            to_send.push_back({world.loop.now() + sim::wire_time(n++, 115200), byte, 115200});
        run_for(milliseconds(1));
    }
    // What the far end hears of two frames when the second meets this fault.
    Bytes heard_with(PortFault fault) {
        port.fault_frame(2, fault);
        port.write(Bytes{1, 2, 3, 4});
        run_for(milliseconds(1));
        heard.clear();
        port.write(Bytes{5, 6, 7, 8});
        run_for(milliseconds(5));
        return heard;
    }
    // What the program reads of an answer whose second byte meets this fault.
    Bytes read_with(PortFault fault) {
        port.fault_byte(2, fault);
        answer({1, 2, 3});
        return port.read();
    }

    VirtualPlatform world;
    FaultyPort& port = world.faults;
    Bytes heard;
    std::vector<sim::WireByte> to_send;
};

TEST_F(FaultyPortTest, WithoutFaultsEverythingPasses) {
    port.write(Bytes{1, 2, 3});
    answer({4, 5});
    EXPECT_EQ(heard, (Bytes{1, 2, 3}));
    EXPECT_EQ(port.input_count(), 2u);
    EXPECT_EQ(port.read(), (Bytes{4, 5}));
    EXPECT_EQ(port.frames, 1);
    EXPECT_EQ(port.bytes, 2);
    EXPECT_EQ(port.struck, 0);
}

TEST_F(FaultyPortTest, AFrameIsLost) {
    EXPECT_EQ(heard_with(PortFault::lose), Bytes{});
}

TEST_F(FaultyPortTest, AFrameIsDamaged) {
    EXPECT_EQ(heard_with(PortFault::damage), (Bytes{5, 6, 7 ^ 0x10, 8}));
}

TEST_F(FaultyPortTest, AFrameComesTwice) {
    EXPECT_EQ(heard_with(PortFault::twice), (Bytes{5, 6, 7, 8, 5, 6, 7, 8}));
}

TEST_F(FaultyPortTest, AFrameIsCutOff) {
    EXPECT_EQ(heard_with(PortFault::cut_off), (Bytes{5, 6}));
}

TEST_F(FaultyPortTest, AFrameComesLate) {
    port.delay = milliseconds(30);
    EXPECT_EQ(heard_with(PortFault::late), Bytes{});
    run_for(milliseconds(30));
    EXPECT_EQ(heard, (Bytes{5, 6, 7, 8}));
    EXPECT_EQ(port.struck, 1);
}

TEST_F(FaultyPortTest, AnAnswersByteIsLost) {
    EXPECT_EQ(read_with(PortFault::lose), (Bytes{1, 3}));
}

TEST_F(FaultyPortTest, AnAnswersByteIsDamaged) {
    EXPECT_EQ(read_with(PortFault::damage), (Bytes{1, 3, 3}));
}

TEST_F(FaultyPortTest, AnAnswersByteComesTwice) {
    EXPECT_EQ(read_with(PortFault::twice), (Bytes{1, 2, 2, 3}));
}

TEST_F(FaultyPortTest, AnAnswerIsCutOffAndTheNextIsWhole) {
    EXPECT_EQ(read_with(PortFault::cut_off), Bytes{1});
    run_for(port.delay);
    answer({7, 8});
    EXPECT_EQ(port.read(), (Bytes{7, 8}));
}

TEST_F(FaultyPortTest, AnAnswersByteComesLateAndWakesTheLoop) {
    EXPECT_EQ(read_with(PortFault::late), (Bytes{1, 3}));
    world.loop.turn(never);
    EXPECT_EQ(port.read(), Bytes{2});
}

TEST_F(FaultyPortTest, ThePulsesThatSeekAChipAreNoFrames) {
    port.fault_frame(1, PortFault::lose);
    for (int i = 0; i < 5; ++i) port.write(Bytes{0x7F, 0x7F});
    EXPECT_EQ(port.frames, 0);
    port.write(Bytes{1, 2, 3});
    EXPECT_EQ(port.frames, 1);
    run_for(milliseconds(5));
    EXPECT_EQ(heard, Bytes(10, 0x7F));
}

TEST_F(FaultyPortTest, ResetTakesTheFaultsAwayAndCountsAnew) {
    heard_with(PortFault::lose);
    port.reset();
    EXPECT_EQ(port.frames, 0);
    EXPECT_EQ(port.struck, 0);
    for (int i = 0; i < 3; ++i) port.write(Bytes{1, 2, 3});
    run_for(milliseconds(5));
    EXPECT_EQ(heard.size(), 9u);
}

// A layer of a test's own overrides one call and inherits the rest.
TEST_F(FaultyPortTest, AForwardingLayerPassesOnWhatItDoesNotOverride) {
    struct Deaf final : ForwardingPort {
        using ForwardingPort::ForwardingPort;
        std::vector<std::uint8_t> read() override {
            below_.read();
            return {};
        }
    } deaf(world.port);
    deaf.write(Bytes{1, 2, 3});
    answer({4});
    EXPECT_TRUE(deaf.is_open());
    EXPECT_EQ(deaf.settings(), "115200,n,8,1");
    EXPECT_EQ(deaf.input_count(), 1u);
    EXPECT_TRUE(deaf.read().empty());
    EXPECT_EQ(heard, (Bytes{1, 2, 3}));
    deaf.close();
    EXPECT_FALSE(world.port.is_open());
}

}  // namespace
}  // namespace vkm::test
