// The option bytes of a simulated chip: taken, stored, reported, refused.
#include <gtest/gtest.h>

#include <string>

#include "simulator_driver.h"

namespace vkm::test {
namespace {

using sim::ChipConfig;

ChipConfig chip_of(const std::string& model) {
    ChipConfig config;
    config.model = model;
    config.clock_hz = 12000000;  // 00 B7 1B 00
    return config;
}

// Code of the answer to an option write, -1 for none.
int write_code(ChipDriver& driver, const Bytes& frame) {
    const Heard heard = driver.exchange(frame);
    return heard.bytes.size() == 8 ? heard.bytes[5] : -1;
}

Bytes options_read(ChipDriver& driver) {
    const Heard heard = driver.exchange(short_frame({0x50}));
    if (heard.bytes.size() < 17) return {};
    return {heard.bytes.begin() + 15, heard.bytes.end() - 2};
}

TEST(SimulatedOptions, OfLetterAAreOneByte) {
    ChipDriver driver(chip_of("VKM47H516RK"));
    driver.connect();
    EXPECT_EQ(write_code(driver, short_frame({0x8D, 0x48})), 0x80);
    EXPECT_EQ(options_read(driver), (Bytes{0x48}));
    EXPECT_EQ(write_code(driver, short_frame({0x8D, 0xFF})), 0x8F);
    EXPECT_EQ(write_code(driver, short_frame({0x8D, 0x40, 0x00})), -1);
    EXPECT_EQ(write_code(driver, short_frame({0x8D, 0x28})), 0x8F);  // of a chip with a PCA
    EXPECT_EQ(options_read(driver), (Bytes{0x48}));
}

TEST(SimulatedOptions, OfLetterAKeepTheDoubleSpeedThatWasBurnt) {
    ChipDriver driver(chip_of("VKM47H516RK"));
    driver.connect();
    EXPECT_EQ(write_code(driver, short_frame({0x8D, 0x48})), 0x80);
    EXPECT_EQ(write_code(driver, short_frame({0x8D, 0x40})), 0x80);
    EXPECT_EQ(options_read(driver), (Bytes{0x48}));
}

TEST(SimulatedOptions, OfLetterADoubleTheClockFromTheNextPowerUpOn) {
    ChipDriver driver(chip_of("VKM47H516RK"));
    driver.connect();
    write_code(driver, short_frame({0x8D, 0x48}));
    EXPECT_NEAR(driver.chip.rate(), 1200, 1);
    driver.chip.power_cycle(driver.now, 10ms);
    const Heard status = driver.connect();
    const int first_count = status.bytes[6] * 256 + status.bytes[7];
    EXPECT_NEAR((first_count + 6) * 2061.0, 24e6, 3000);
}

TEST(SimulatedOptions, DoNotExistForLetterB) {
    ChipDriver driver(chip_of("VKM47W516AD"));
    driver.connect();
    EXPECT_EQ(write_code(driver, short_frame({0x8D, 0x40})), -1);
    EXPECT_EQ(driver.chip.faults().size(), 1U);
}

TEST(SimulatedOptions, OfLetterCComeWithAReloadPairOfEitherClockMode) {
    ChipDriver driver(chip_of("VKM47H58RK+"));
    driver.connect();
    driver.exchange(short_frame({0x8F, 0xFF, 0xF6, 0x00, 20, 40, 129}));
    EXPECT_EQ(write_code(driver, short_frame({0x8D, 0xF5, 0xFF, 0xF6, 0xFF})), 0x80);
    EXPECT_EQ(options_read(driver), (Bytes{0xF5}));
    EXPECT_EQ(write_code(driver, short_frame({0x8D, 0xFC, 0xFF, 0xEC, 0xFF})), 0x80);  // doubled
    EXPECT_EQ(options_read(driver), (Bytes{0xFC}));
    EXPECT_EQ(write_code(driver, short_frame({0x8D, 0xFD, 0xFF, 0xF0, 0xFF})), 0x8F);
    EXPECT_EQ(write_code(driver, short_frame({0x8D, 0xFC, 0xFF, 0xF6, 0xFF})),
              0x8F);  // not doubled
    EXPECT_EQ(write_code(driver, short_frame({0x8D, 0xFD, 0xFF, 0xEC, 0xFF})), 0x8F);
    EXPECT_EQ(write_code(driver, short_frame({0x8D, 0xFF, 0xFF, 0xF6, 0xFF})), 0x8F);  // bit 1
    EXPECT_EQ(options_read(driver), (Bytes{0xFC}));
}

TEST(SimulatedOptions, OfLettersDToFComeWithTheClockOfTheInternalOscillator) {
    for (const char* model : {"VKM26H2052", "VKM26H5428"}) {
        ChipDriver driver(chip_of(model));
        driver.connect();
        const Bytes on_crystal =
            short_frame({0x8D, 0xFF, 0xA3, 0xF6, 0x12, 0x34, 0xFF, 0xFF, 0xFF, 0xFF});
        EXPECT_EQ(write_code(driver, on_crystal), 0x80);
        EXPECT_EQ(options_read(driver), (Bytes{0xFF, 0xA3, 0xF6, 0x12, 0x34}));

        // 12001203 Hz, as near as the host can know it.
        const Bytes inside =
            short_frame({0x8D, 0xFD, 0xFF, 0xF7, 0xFF, 0xFF, 0x00, 0xB7, 0x1F, 0xB3});
        EXPECT_EQ(write_code(driver, inside), 0x80);
        EXPECT_EQ(options_read(driver), (Bytes{0xFD, 0xFF, 0xF7, 0xFF, 0xFF}));

        for (const Bytes& wrong : {
                 short_frame({0x8D, 0xFD, 0xFF, 0xF7, 0xFF, 0xFF, 0x00, 0xB3, 0x00, 0x00}),
                 short_frame({0x8D, 0xFD, 0xFF, 0xF7, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF}),
                 short_frame({0x8D, 0xFF, 0xFF, 0xF7, 0xFF, 0xFF, 0x00, 0xB7, 0x1B, 0x00}),
                 short_frame({0x8D, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF}),
             })
            EXPECT_EQ(write_code(driver, wrong), 0x8F);
        EXPECT_EQ(driver.chip.faults().size(), 4U);
        EXPECT_EQ(driver.chip.counters().option_writes, 2);
    }
}

TEST(SimulatedOptions, UpToFirmware36LackTheWatchdogByteOfLettersDToF) {
    ChipConfig config = chip_of("VKM26H2052");
    config.version = 0x36;
    ChipDriver driver(config);
    driver.connect();
    EXPECT_EQ(write_code(driver, short_frame({0x8D, 0xFF, 0xA3, 0xF7, 1, 2, 255, 255, 255, 255})),
              0x8F);
    EXPECT_EQ(write_code(driver, short_frame({0x8D, 0xFF, 0xFF, 0xF7, 1, 2, 255, 255, 255, 255})),
              0x80);
    EXPECT_EQ(options_read(driver), (Bytes{0xFF, 0xFF, 0xF7, 0x01, 0x02}));

    config.version = 0x37;
    ChipDriver newer(config);
    newer.connect();
    EXPECT_EQ(write_code(newer, short_frame({0x8D, 0xFF, 0xA3, 0xF7, 1, 2, 255, 255, 255, 255})),
              0x80);
    EXPECT_EQ(options_read(newer), (Bytes{0xFF, 0xA3, 0xF7, 0x01, 0x02}));
}

TEST(SimulatedOptions, OfLetterGAreSixBytesAndTheClock) {
    ChipDriver driver(chip_of("VKM27J060"));
    driver.connect();
    EXPECT_EQ(write_code(driver, short_frame({0x8D, 0x7F, 0xFF, 0xA2, 0xEF, 0x55, 0x66, 0xFF, 0xFF,
                                              0xFF, 0xFF})),
              0x80);
    EXPECT_EQ(options_read(driver), (Bytes{0x7F, 0xFF, 0xA2, 0xEF, 0x55, 0x66}));
    EXPECT_EQ(write_code(driver, short_frame({0x8D, 0x7F, 0xFD, 0xA2, 0xEF, 0x55, 0x66, 0x00, 0xB7,
                                              0x1B, 0x00})),
              0x80);
    EXPECT_EQ(driver.chip.options()[3], 0xFD);
    EXPECT_EQ(write_code(driver,
                         short_frame({0x8D, 0x7F, 0xFF, 0xF7, 0x55, 0x66, 0xFF, 0xFF, 0xFF, 0xFF})),
              -1);  // a frame of letter D
}

TEST(SimulatedOptions, AreBusyAsOftenAsTold) {
    ChipConfig config = chip_of("VKM26H2052");
    config.option_busy = 3;
    ChipDriver driver(config);
    driver.connect();
    const Bytes frame = short_frame({0x8D, 0xFF, 0xA3, 0xF6, 1, 2, 255, 255, 255, 255});
    for (int i = 0; i < 3; ++i) EXPECT_EQ(write_code(driver, frame), 0x81);
    EXPECT_EQ(options_read(driver), (Bytes{0xFF, 0xFF, 0xF7, 0xFF, 0xFF}));
    EXPECT_EQ(write_code(driver, frame), 0x80);
    EXPECT_EQ(options_read(driver), (Bytes{0xFF, 0xA3, 0xF6, 0x01, 0x02}));

    config.option_busy = -1;
    ChipDriver for_ever(config);
    for_ever.connect();
    for (int i = 0; i < 50; ++i) EXPECT_EQ(write_code(for_ever, frame), 0x81);
}

TEST(SimulatedOptions, AreStoredWithTheFlawThatWasTold) {
    ChipConfig config = chip_of("VKM26H2052");
    config.option_flaw = 0x40;
    ChipDriver driver(config);
    driver.connect();
    EXPECT_EQ(write_code(driver, short_frame({0x8D, 0xFF, 0xA3, 0xF6, 1, 2, 255, 255, 255, 255})),
              0x80);
    EXPECT_EQ(options_read(driver), (Bytes{0xBF, 0xA3, 0xF6, 0x01, 0x02}));
}

}  // namespace
}  // namespace vkm::test
