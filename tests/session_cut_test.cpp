// Where the boot firmware's size ends an image, and where it doesn't.
#include <gtest/gtest.h>

#include "session/programming.h"
#include "session_bench.h"

namespace vkm::test {
namespace {

struct CutCase {
    const char* what;
    const char* model;
    const char* Chip_Name;
    bool known;
    std::int16_t Firmware_Size;
    const char* version;
    bool cut_allowed;
    bool demo_mode;
    bool cut;
};

// All but the last model have their data memory up to F7FF and lose 1 K to 2 K
// of firmware.
constexpr CutCase cases[] = {
    {"family 2", "VKM47H516RK+", "VKM47H516RK+", true, 2048, "3.8", true, false, true},
    {"no cut asked for", "VKM47H516RK+", "VKM47H516RK+", true, 2048, "3.8", false, false, false},
    {"another link", "VKM47H516RK+", "VKM47H516RK+", true, 2048, "3.8", true, true, false},
    {"firmware of 1 K", "VKM47H516RK+", "VKM47H516RK+", true, 1024, "2.5", true, false, false},
    {"by version", "VKM47H516RK+", "VKM47H516RK+", false, 0, "2.5", true, false, true},
    {"by version, 1 K", "VKM47H516RK+", "VKM47H516RK+", false, 0, "2.4", true, false, false},
    {"no such version", "VKM47H516RK+", "VKM47H516RK+", false, 0, "5.0", true, false, false},
    {"by its name", "VKM47H516RK+", "VKM47W516AD", true, 2048, "2.5", false, false, true},
    {"by its other name", "VKM47H516RK+", "VKM47W516X2", true, 2048, "2.5", false, false, true},
    {"another family", "VKM27J060", "VKM27J060", true, 2048, "2.5", true, false, false},
    {"oldest family asks no version", "VKM47H58RK", "VKM47W516AD", false, 0, "2.5", true, false,
     false},
};

TEST(FirmwareCut, AppliesByModelFamilyAndFirmwareAlone) {
    for (const CutCase& c : cases) {
        SCOPED_TRACE(c.what);
        SessionBench bench({.powered_at = sim::never}, c.model);
        bench.frm.link.Chip_Name = c.Chip_Name;
        bench.frm.link.Chip_Version = c.version;
        bench.frm.session.Firmware_Size_Known = c.known;
        bench.frm.session.Firmware_Size = c.Firmware_Size;
        bench.frm.link.demo_mode = c.demo_mode;
        bench.frm.link.stop_requested = true;  // one frame, and no answer to it
        const std::vector<std::uint8_t> bytes(0x10000);
        EXPECT_EQ(Program_Range(bench.frm, true, bytes, {0, 0xF7FF}, c.cut_allowed), -1);
        EXPECT_EQ(bench.sounder.beeps(), c.cut ? 2 : 0);
        EXPECT_EQ(bench.log_has("Enable 61K file size for this Version firmware."), c.cut);
        EXPECT_EQ(bench.frm.session.Cut_Note, c.cut ? "(Downloaded 61K only)" : "");
        EXPECT_EQ(bench.frm.session.Cut_Note_CN, c.cut ? "(有一部分数据未下载)。" : "");
        EXPECT_EQ(bench.frm.screen.ProgressBar1.Max, c.cut ? 0xF3FF / 256 + 1 : 0xF8);
    }
}

TEST(FirmwareCut, OfFamily2TakesTheSizeFromTheVersionWhenTheChipDoesntTell) {
    SessionBench bench({.model = "VKM47H516RK+", .version = 0x25});
    bench.load(63488);
    comDownload(bench.frm, 0);
    expect_good_chip(bench);
    EXPECT_FALSE(bench.frm.session.Firmware_Size_Known);
    EXPECT_EQ(bench.frm.session.Firmware_Size, 2048);
    EXPECT_TRUE(bench.log_has("\r\nEnable 61K file size for this Version firmware."));
    EXPECT_TRUE(bench.flash_holds(std::span(bench.image).first(62464))) << bench.story();
    EXPECT_TRUE(bench.chip.faults().empty()) << bench.story();
}

TEST(FirmwareCut, AnImageThatBeginsBehindTheLimitCountsAsProgrammed) {
    // 2 K of firmware: the program may reach F7FF.
    SessionBench bench({.model = "VKM47W516AD", .version = 0x25});
    bench.load(0x200, 0xFA00);
    comDownload(bench.frm, 0);
    expect_good_chip(bench);
    EXPECT_TRUE(bench.log_has("\r\nEnable 62K file size for this Version firmware."));
    EXPECT_TRUE(bench.log_has("\r\nProgram OK / 下载 OK(有一部分数据未下载)。\r\n"));
    EXPECT_EQ(bench.chip.counters().blocks, 0);
    EXPECT_EQ(bench.frm.screen.ProgressBar1.Value, bench.frm.screen.ProgressBar1.Min);
}

}  // namespace
}  // namespace vkm::test
