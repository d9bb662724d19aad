// The option bytes of a whole job: what goes to the chip, what it then holds, and
// what the operator reads.
#include <gtest/gtest.h>

#include <cmath>
#include <map>

#include "link/status_frame.h"
#include "option_bench.h"
#include "session/write_options.h"
#include "text/numbers.h"

namespace vkm::test {
namespace {

const std::string program_ok =
    "\r\nProgram OK / 下载 OK"
    "\r\nVerify  OK / 校验 OK "
    "\r\nerase times/擦除时间 :  mm:ss"
    "\r\nprogram times/下载时间: mm:ss"
    "\r\nHave already encrypt. / 已加密";
const std::string options_ok = "\r\nConfig option OK. / 设置选项成功。";

std::string model_and_firmware(const OptionBench& bench, const std::string& version) {
    const std::string& name = bench.chip.config().model;
    return "\r\nMCU Type is: " + name + "\r\nMCU Firmware Version: " + version +
           "\r\nChinese:MCU 固件版本号: " + version;
}

std::string replaced(std::string text, const std::string& line, const std::string& by) {
    const std::size_t at = text.find(line);
    EXPECT_NE(at, std::string::npos) << line;
    return at == std::string::npos ? text : text.replace(at, line.size(), by);
}

void expect_options(const OptionBench& bench, const std::map<int, std::uint8_t>& options) {
    for (const auto& [number, value] : options)
        EXPECT_EQ(bench.chip.options()[static_cast<std::size_t>(number)], value)
            << "option byte " << number;
}

// A job of the chip that has its options already: they are left alone.
void expect_nothing_to_write(OptionBench& bench, const std::string& count = "2") {
    const int written_before = bench.option_attempts();
    const int read_before = bench.status_reads();
    bench.power_cycle();
    bench.run_job();
    expect_good_chip(bench, count);
    EXPECT_TRUE(bench.option_frames().empty());
    EXPECT_EQ(bench.option_attempts(), written_before);
    EXPECT_FALSE(bench.log_has("Config option")) << bench.log();
    EXPECT_EQ(bench.status_reads(), read_before);
    EXPECT_TRUE(bench.chip.faults().empty()) << bench.story();
}

// ---- family 0 ------------------------------------------------------------------

TEST(OptionByteOfFamily0, Is20ForTheModelsWithPCAAnd40ForAllOthers) {
    VirtualWorld world;
    MCU_Record& model = world.frm.catalogue.MCU_Info;
    model.MCU_Family = 0;
    world.frm.screen.Option0[0].Value = 0;
    for (const char* name : {"VKM47H516PCA", "VKM47H58PCA", "VKM47H54PCA", "VKM47H52PCA",
                             "VKM47T516PCA", "VKM47T58PCA", "VKM47T54PCA", "VKM47T52PCA"}) {
        SCOPED_TRACE(name);
        model.MCU_Name = name;
        world.frm.screen.Option0[0].Value = 0;
        EXPECT_EQ(Family0_Option_Byte(world.frm), 0x20);
        world.frm.screen.Option0[0].Value = 1;
        EXPECT_EQ(Family0_Option_Byte(world.frm), 0x28);
    }
    for (const char* name : {"VKM47H58RK", "VKM47H53PCA", "VKM47H58PCA+", "PCA", ""}) {
        SCOPED_TRACE(name);
        model.MCU_Name = name;
        world.frm.screen.Option0[0].Value = 0;
        EXPECT_EQ(Family0_Option_Byte(world.frm), 0x40);
        world.frm.screen.Option0[0].Value = 1;
        EXPECT_EQ(Family0_Option_Byte(world.frm), 0x48);
    }
}

TEST(OptionByteOfFamily0, IsFFInEveryOtherFamily) {
    VirtualWorld world;
    world.frm.catalogue.MCU_Info.MCU_Name = "VKM47H58PCA";
    for (const int family : {1, 2, 3, 4, 5, 6, -1}) {
        world.frm.catalogue.MCU_Info.MCU_Family = static_cast<std::int16_t>(family);
        for (const int speed : {0, 1}) {
            world.frm.screen.Option0[0].Value = speed;
            EXPECT_EQ(Family0_Option_Byte(world.frm), 0xFF) << family;
        }
    }
}

const std::string firmware_2_5A =
    "\r\nMCU Firmware Version: 2.5A"
    "\r\nChinese:MCU 固件版本号: 2.5A";

TEST(OptionsOfLetterA, AreWrittenAnewInEveryJobAndOnlyTheirTimeIsTold) {
    OptionBench bench(chip_of('A'));
    for (const char* count : {"1", "2"}) {
        bench.run_job();
        expect_good_chip(bench, count);
        EXPECT_EQ(bench.option_frames(), (Frames{chip_frame({0x8D, 0x40})}));
        EXPECT_EQ(bench.told_afterwards(), firmware_2_5A +
                                               "\r\nDouble speed: No"
                                               "\r\n (End: hh:mm:ss)" +
                                               program_ok);
        expect_options(bench, {{0, 0x40}});
        EXPECT_TRUE(bench.chip.faults().empty()) << bench.story();
        bench.power_cycle();
    }
}

TEST(OptionsOfLetterA, TellTheDoubleSpeedThatWasSet) {
    OptionBench bench(chip_of('A'));
    bench.choose_option("Option0", 0);
    bench.run_job();
    expect_good_chip(bench);
    EXPECT_EQ(bench.option_frames(), (Frames{chip_frame({0x8D, 0x48})}));
    EXPECT_EQ(bench.told_afterwards(), firmware_2_5A +
                                           "\r\nDouble speed: Yes"
                                           "\r\nLock Chip, set 6 Clock OK/双倍速成功"
                                           " (End: hh:mm:ss)" +
                                           program_ok);
    expect_options(bench, {{0, 0x48}});
    EXPECT_EQ(bench.sounder.beeps(), 1);  // for the good chip
}

TEST(OptionsOfLetterB, DoNotExist) {
    OptionBench bench({'B', "VKM47W58AD", "VKM47W58AD", 0});
    bench.run_job();
    expect_good_chip(bench);
    EXPECT_TRUE(bench.option_frames().empty());
    EXPECT_EQ(bench.status_reads(), 0);
    EXPECT_EQ(bench.told_afterwards(), program_ok);
}

// ---- choices of the panel ----------------------------------------------------------

struct Line {
    std::string before, after;  // of the read-back, in the log
};
struct Choice {
    std::string_view array;
    int element;
    int byte;  // -1: no byte of the chip
    std::uint8_t value;
    std::vector<Line> lines{};
};

// ---- letter C ----------------------------------------------------------------------

const std::string lines_of_C =
    "\r\nDouble speed / 双倍速:          12T/单倍速"
    "\r\n振荡放大器增益:                  full gain"
    "\r\n下次下载时 P1.0, P1.1 与下载无关"
    "\r\n内部扩展AUX-RAM:        允许访问(强烈推荐)"
    "\r\n下次下载用户应用程序时将数据Flash区擦除: NO"
    "\r\n用户软件启动内部看门狗后:     复位关看门狗";

const std::vector<Choice> choices_of_C = {
    {"", 0, 1, 0xFD, {}},
    {"Option0",
     0,
     1,
     0xFC,
     {{"Double speed / 双倍速:          12T/单倍速",
       "Double speed / 双倍速:           6T/双倍速"}}},
    {"Option1",
     0,
     1,
     0xED,
     {{"振荡放大器增益:                  full gain",
       "振荡放大器增益:                   1/2 gain"}}},
    {"Option3",
     0,
     1,
     0xF9,
     {{"下次下载时 P1.0, P1.1 与下载无关", "下次冷启动须 P1.0,P1.1=0,0 才下载, 快速启动"}}},
    {"Option4",
     0,
     1,
     0xBD,
     {{"内部扩展AUX-RAM:        允许访问(强烈推荐)", "内部扩展AUX-RAM:                 禁止访问"}}},
    {"Option5", 0, 1, 0xF5, {{"数据Flash区擦除: NO", "数据Flash区擦除:YES"}}},
    {"Option10",
     1,
     1,
     0x7D,
     {{"用户软件启动内部看门狗后:     复位关看门狗",
       "用户软件启动内部看门狗后:  只有停电关看门狗"}}},
};

TEST(OptionsOfLetterC, FollowEveryChoiceOfThePanel) {
    for (const Choice& choice : choices_of_C) {
        SCOPED_TRACE(choice.array);
        OptionBench bench = OptionBench::with_other_options(chip_of('C'));
        bench.choose_option(choice.array, choice.element);
        bench.run_job();
        expect_good_chip(bench);
        // 115200 baud of 11.0592 MHz is a count of 3, of the doubled clock 6.
        const std::uint8_t low = choice.value == 0xFC ? 0xFA : 0xFD;
        EXPECT_EQ(bench.option_frames(),
                  (Frames{chip_frame({0x8D, choice.value, 0xFF, low, 0xFF})}));
        expect_options(bench, {{1, choice.value}});
        std::string told = model_and_firmware(bench, "3.8C") + lines_of_C;
        for (const Line& line : choice.lines) told = replaced(told, line.before, line.after);
        EXPECT_EQ(bench.told_afterwards(), told + options_ok + program_ok);
        EXPECT_TRUE(bench.chip.faults().empty()) << bench.story();
        expect_nothing_to_write(bench);
    }
}

TEST(OptionsOfLetterC, OfAChipAsDeliveredAreLeftAlone) {
    OptionBench bench(chip_of('C'));
    bench.run_job();
    expect_good_chip(bench);
    EXPECT_TRUE(bench.option_frames().empty());
    expect_nothing_to_write(bench);
}

// ---- letters D, E and F --------------------------------------------------------------

const std::string lines_of_DEF =
    "\r\n下次冷启动后使用 内部 RC 振荡器         NO"
    "\r\n下次下载时 P1.0, P1.1 与下载无关"
    "\r\n下次下载用户应用程序时将数据Flash区清0:  NO"
    "\r\n"  // what is done with the program area above the image has no words
    "\r\n启动内部看门狗后禁止改看门狗分频数      NO"
    "\r\n下次上电自动用有关参数启动内部看门狗    NO"
    "\r\nIdle(空闲)状态时内部看门狗停止计数      NO"
    "\r\n冷启动后内部看门狗预分频数(未启用):     256";

const std::vector<Choice> choices_of_DEF = {
    {"", 0, -1, 0, {}},
    {"Option0", 0, 2, 0xFD, {{"RC 振荡器         NO", "RC 振荡器         YES"}}},
    {"Option1",
     0,
     8,
     0xF6,
     {{"下次下载时 P1.0, P1.1 与下载无关", "下次冷启动须 P1.0,P1.1=0,0 才可以下载程序"}}},
    {"Option2", 0, 8, 0xF5, {{"区清0:  NO", "区清0: YES"}}},
    {"Option4", 0, -1, 0, {}},
    {"Option9", 0, 3, 0x7F, {{"看门狗分频数      NO", "看门狗分频数      YES"}}},
    {"Option10",
     0,
     3,
     0xDF,
     {{"启动内部看门狗    NO", "启动内部看门狗    YES"},
      {"冷启动后内部看门狗预分频数(未启用):     256",
       "冷启动后内部看门狗预分频数:            256"}}},
    {"Option11", 0, 3, 0xF7, {{"停止计数      NO", "停止计数      YES"}}},
};

// 11.0592 MHz as the host measures it: 11059326 Hz.
const Bytes measured_clock = {0x00, 0xA8, 0xC0, 0x7E};
const Bytes no_clock = {0xFF, 0xFF, 0xFF, 0xFF};

// The frame with these option bytes in this order, and the clock where it is wanted.
Bytes frame_of(const std::map<int, std::uint8_t>& options, bool with_clock) {
    Bytes body = {0x8D};
    for (const auto& [number, value] : options) body.push_back(value);
    const Bytes& clock = with_clock ? measured_clock : no_clock;
    body.insert(body.end(), clock.begin(), clock.end());
    return chip_frame(body);
}

std::map<int, std::uint8_t> with_choice(std::map<int, std::uint8_t> options, int byte,
                                        std::uint8_t value) {
    if (byte >= 0) options[byte] = value;
    return options;
}

// A chip on its own oscillator may have been told another clock, so it is written
// in each job.
void expect_written_again(OptionBench& bench, const Bytes& frame) {
    bench.power_cycle();
    bench.run_job();
    expect_good_chip(bench, "2");
    EXPECT_EQ(bench.option_frames(), Frames{frame});
    EXPECT_TRUE(bench.log_has("Config option OK.")) << bench.log();
}

const std::map<int, std::uint8_t> panel_of_DEF = {
    {2, 0xFF}, {3, 0xFF}, {8, 0xF7}, {10, 0xFF}, {11, 0xFF}};

const std::map<char, std::string> usual_firmware = {{'D', "3.8D"}, {'E', "5.0E"}, {'F', "5.2F"}};

TEST(OptionsOfLettersDToF, FollowEveryChoiceOfThePanel) {
    for (const auto& [letter, version] : usual_firmware) {
        for (const Choice& choice : choices_of_DEF) {
            SCOPED_TRACE(letter + std::string(choice.array));
            OptionBench bench = OptionBench::with_other_options(chip_of(letter));
            bench.choose_option(choice.array, choice.element);
            bench.run_job();
            expect_good_chip(bench);
            const auto options = with_choice(panel_of_DEF, choice.byte, choice.value);
            const bool on_crystal = choice.array != "Option0";
            const Bytes frame = frame_of(options, !on_crystal);
            EXPECT_EQ(bench.option_frames(), Frames{frame});
            expect_options(bench, options);
            std::string told = model_and_firmware(bench, version) + lines_of_DEF;
            for (const Line& line : choice.lines) told = replaced(told, line.before, line.after);
            EXPECT_EQ(bench.told_afterwards(), told + options_ok + program_ok);
            EXPECT_TRUE(bench.chip.faults().empty()) << bench.story();
            if (on_crystal)
                expect_nothing_to_write(bench);
            else
                expect_written_again(bench, frame);
        }
    }
}

const std::vector<const char*> prescalers = {"2", "4", "8", "16", "32", "64", "128", "256"};

TEST(OptionsOfLettersDToF, FollowThePrescaler) {
    for (const auto& [letter, version] : usual_firmware) {
        for (std::size_t i = 0; i < prescalers.size(); ++i) {
            SCOPED_TRACE(letter + std::string(prescalers[i]));
            OptionBench bench = OptionBench::with_other_options(chip_of(letter));
            ASSERT_TRUE(bench.choose(bench.frm.screen.comWDT_Prescalar, prescalers[i]));
            bench.run_job();
            expect_good_chip(bench);
            const auto options = with_choice(panel_of_DEF, 3, static_cast<std::uint8_t>(0xF8 + i));
            EXPECT_EQ(bench.option_frames(), Frames{frame_of(options, false)});
            expect_options(bench, options);
            EXPECT_EQ(bench.told_afterwards(),
                      model_and_firmware(bench, version) +
                          replaced(lines_of_DEF, "     256", "     " + std::string(prescalers[i])) +
                          options_ok + program_ok);
            expect_nothing_to_write(bench);
        }
    }
}

TEST(OptionsOfLettersDToF, OfAChipAsDeliveredAreLeftAlone) {
    for (const char letter : {'D', 'E', 'F'}) {
        SCOPED_TRACE(letter);
        OptionBench bench(chip_of(letter));
        bench.run_job();
        expect_good_chip(bench);
        EXPECT_TRUE(bench.option_frames().empty());
        EXPECT_EQ(bench.told_afterwards(), program_ok);
    }
}

// ---- letter G ------------------------------------------------------------------------

const std::map<int, std::uint8_t> panel_of_G = {{0, 0x3F}, {3, 0xFF},  {4, 0xFF},
                                                {8, 0xFF}, {10, 0xFF}, {11, 0xFF}};

const std::vector<Choice> choices_of_G = {
    {"", 0, -1, 0},           {"Option0", 0, 3, 0xFD},  {"Option1", 0, 3, 0xBF},
    {"Option2", 0, 8, 0xFE},  {"Option3", 0, 8, 0xEF},  {"Option3", 1, 8, 0xFD},
    {"Option4", 0, 8, 0xF7},  {"Option8", 0, 4, 0x7F},  {"Option9", 0, 4, 0xDF},
    {"Option10", 0, 4, 0xF7}, {"Option11", 1, 0, 0xBF}, {"Option12", 1, 0, 0x7F},
};

void expect_written_to_G(OptionBench& bench, int byte, std::uint8_t value) {
    bench.run_job();
    expect_good_chip(bench);
    const auto options = with_choice(panel_of_G, byte, value);
    const bool on_crystal = (options.at(3) & 2) != 0;
    const Bytes frame = frame_of(options, !on_crystal);
    EXPECT_EQ(bench.option_frames(), Frames{frame});
    expect_options(bench, options);
    EXPECT_EQ(bench.told_afterwards(), model_and_firmware(bench, "3.8G") + options_ok + program_ok);
    EXPECT_TRUE(bench.chip.faults().empty()) << bench.story();
    if (on_crystal)
        expect_nothing_to_write(bench);
    else
        expect_written_again(bench, frame);
}

TEST(OptionsOfLetterG, FollowEveryChoiceOfThePanel) {
    for (const Choice& choice : choices_of_G) {
        SCOPED_TRACE(std::string(choice.array) + std::to_string(choice.element));
        OptionBench bench = OptionBench::with_other_options(chip_of('G'));
        bench.choose_option(choice.array, choice.element);
        expect_written_to_G(bench, choice.byte, choice.value);
    }
}

TEST(OptionsOfLetterG, FollowThePrescaler) {
    for (std::size_t i = 0; i < prescalers.size(); ++i) {
        SCOPED_TRACE(prescalers[i]);
        OptionBench bench = OptionBench::with_other_options(chip_of('G'));
        ASSERT_TRUE(bench.choose(bench.frm.screen.comWDT_Prescalar, prescalers[i]));
        expect_written_to_G(bench, 4, static_cast<std::uint8_t>(0xF8 + i));
    }
}

// ---- options that are right already ----------------------------------------------------

TEST(OptionsThatAreRight, EndTheSessionTwiceAndCloseThePort) {
    const Bytes leave = {0xFE, 0xFE, 0xFE, 0xFE, 0x46, 0xB9, 0x6A, 0x00, 0x06, 0x82, 0xF2, 0x16};
    for (const char letter : {'C', 'D', 'E', 'F', 'G'}) {
        SCOPED_TRACE(letter);
        OptionBench bench = OptionBench::with_other_options(chip_of(letter));
        bench.run_job();
        bench.power_cycle();
        bench.run_job();
        expect_good_chip(bench, "2");
        const auto family = static_cast<std::uint8_t>(bench.frm.catalogue.MCU_Info.MCU_Family);
        const auto& written = bench.port.written;
        ASSERT_GT(written.size(), 4u);
        const Bytes last_command = chip_frame({0x52, family, 0x00, 0x36, 0x01});
        const auto last = [&](std::size_t i) { return written[written.size() - i].bytes; };
        EXPECT_EQ(last(4), leave);
        EXPECT_EQ(last(3), last_command);
        EXPECT_EQ(last(2), leave);
        EXPECT_EQ(last(1), last_command);
        EXPECT_NE(last(5), leave);
        // The chip has 100 ms to leave, both times, and is gone with the first.
        for (const std::size_t i : {4u, 2u})
            EXPECT_NEAR(std::chrono::duration<double>(written[written.size() - i + 1].at -
                                                      written[written.size() - i].at)
                            .count(),
                        0.1, 0.005);
        EXPECT_EQ(bench.chip.counters().starts, 2);
        EXPECT_TRUE(bench.frm.link.Status_Read_OK);
    }
}

// The chip is done by then, so a stop takes nothing back.
TEST(OptionsThatAreRight, CountTheChipWhateverTheOperatorDoesAtTheEnd) {
    for (const char letter : {'C', 'D', 'E', 'F'}) {
        OptionBench whole(chip_of(letter));
        whole.run_job();
        const auto& written = whole.port.written;
        const std::chrono::duration<double, std::milli> last_block =
            written[written.size() - 5].at - whole.loop.start();
        const auto begin = static_cast<std::int64_t>(last_block.count() - whole.start_ms) + 20;
        for (auto moment = begin; moment < static_cast<std::int64_t>(whole.job_ms()); ++moment) {
            SCOPED_TRACE(letter + std::to_string(moment));
            OptionBench bench(chip_of(letter));
            bench.click_stop_in(moment);
            bench.run_job();
            expect_session_over(bench);
            EXPECT_EQ(bench.frm.session.Result, Job_Result::done);
            EXPECT_EQ(bench.count(), "1");
            EXPECT_TRUE(bench.flash_holds(bench.image));
            EXPECT_TRUE(bench.log_has("Program OK")) << bench.log();
            if (HasFailure()) return;
        }
    }
}

TEST(OptionsThatAreRight, LeaveTheStepWithThePortClosedAndTheJobGoingOn) {
    OptionBench bench(chip_of('D'));
    frmMain& frm = bench.frm;
    comDownload(frm, 0);
    // The step alone once more: the chip's bytes are known and right.
    frm.link.stop_requested = false;
    frm.link.frame_ok = false;
    frm.link.Status_Read_OK = false;
    bench.port.open();
    Write_Options(frm);
    EXPECT_TRUE(frm.link.frame_ok);
    EXPECT_TRUE(frm.link.Status_Read_OK);
    EXPECT_FALSE(bench.port.is_open());
    EXPECT_TRUE(bench.option_frames().empty());
}

TEST(OptionsThatAreRight, AreWrittenToAChipOnItsOwnOscillator) {
    for (const char letter : {'D', 'E', 'F', 'G'}) {
        SCOPED_TRACE(letter);
        OptionBench bench(chip_of(letter));
        bench.choose_option("Option0", 0);
        bench.run_job();
        bench.power_cycle();
        bench.run_job();
        expect_good_chip(bench, "2");
        EXPECT_EQ(bench.option_frames().size(), 1u);
        EXPECT_EQ(bench.chip.counters().option_writes, 2);
    }
}

TEST(OptionsOfAFamilyWithoutAny, LeaveTheJobAsItStood) {
    OptionBench bench(chip_of('D'));
    frmMain& frm = bench.frm;
    for (const int family : {1, 5, 7, -1}) {
        for (const bool frame_ok : {false, true}) {
            frm.catalogue.MCU_Info.MCU_Family = static_cast<std::int16_t>(family);
            frm.link.frame_ok = frame_ok;
            frm.link.Status_Read_OK = true;
            Write_Options(frm);
            EXPECT_EQ(frm.link.frame_ok, frame_ok);
            EXPECT_FALSE(frm.link.Status_Read_OK);
        }
    }
    EXPECT_TRUE(bench.port.written.empty());
    EXPECT_TRUE(bench.log().empty());
}

// ---- the clock that a chip is told -----------------------------------------------------

TEST(ClockOfTheOptionFrame, IsRoundedHalfToEven) {
    const std::vector<std::pair<float, Bytes>> clocks = {
        {4000000.0f, {0x00, 0x3D, 0x09, 0x00}}, {4000000.5f, {0x00, 0x3D, 0x09, 0x00}},
        {4000001.5f, {0x00, 0x3D, 0x09, 0x02}}, {4000002.5f, {0x00, 0x3D, 0x09, 0x02}},
        {33000000.f, {0x01, 0xF7, 0x8A, 0x40}},
    };
    for (const char letter : {'D', 'G'}) {
        for (const auto& [hertz, bytes] : clocks) {
            SCOPED_TRACE(hertz);
            OptionBench bench(chip_of(letter), {.powered_at = sim::never});
            bench.choose_option("Option0", 0);
            bench.frm.link.Chip_Clock = hertz;
            Write_Options(bench.frm);
            ASSERT_EQ(bench.option_frames().size(), 4u);
            const Bytes frame = bench.option_frames()[0];
            EXPECT_EQ(Bytes(frame.end() - 6, frame.end() - 2), bytes);
        }
    }
}

// ---- firmware ----------------------------------------------------------------------------

struct Firmware {
    int version;
    bool has_watchdog_byte;  // of families 3 and 4
    bool reports;
};
const std::vector<Firmware> firmwares = {
    {0x00, false, false}, {0x02, false, false}, {0x26, false, false},
    {0x31, false, false}, {0x32, false, true},  {0x36, false, true},
    {0x37, true, true},   {0x50, true, true},   {0x51, true, true}};

TEST(OptionsOfFirmware, UpTo36HaveFFForTheWatchdogByteAndBelow32NothingIsTold) {
    for (const char letter : {'D', 'E', 'F'}) {
        for (const Firmware& firmware : firmwares) {
            SCOPED_TRACE(letter + std::to_string(firmware.version));
            OptionBench bench =
                OptionBench::with_other_options(chip_of(letter), {.version = firmware.version});
            bench.choose_option("Option11", 0);
            bench.run_job();
            expect_good_chip(bench);
            const std::uint8_t byte_3 = firmware.has_watchdog_byte ? 0xF7 : 0xFF;
            EXPECT_EQ(bench.option_frames(),
                      Frames{frame_of(with_choice(panel_of_DEF, 3, byte_3), false)});
            EXPECT_EQ(bench.log_has("Config option OK."), firmware.reports) << bench.log();
            EXPECT_FALSE(bench.log_has("error")) << bench.log();
            EXPECT_EQ(bench.status_reads(), 1);
            EXPECT_TRUE(bench.chip.faults().empty()) << bench.story();
            expect_nothing_to_write(bench);
        }
    }
}

TEST(OptionsOfFirmware, HaveAllSixBytesInFamily6) {
    for (const Firmware& firmware : firmwares) {
        SCOPED_TRACE(firmware.version);
        OptionBench bench =
            OptionBench::with_other_options(chip_of('G'), {.version = firmware.version});
        bench.choose_option("Option10", 0);
        bench.run_job();
        expect_good_chip(bench);
        EXPECT_EQ(bench.option_frames(), Frames{frame_of(with_choice(panel_of_G, 4, 0xF7), false)});
        EXPECT_EQ(bench.log_has("Config option OK."), firmware.reports) << bench.log();
        expect_nothing_to_write(bench);
    }
}

TEST(OptionsOfFirmware, Below32AreNotCompared) {
    for (const char letter : {'D', 'E', 'F', 'G'}) {
        for (const int version : {0x00, 0x31, 0x32}) {
            SCOPED_TRACE(letter + std::to_string(version));
            OptionBench bench = OptionBench::with_other_options(
                chip_of(letter), {.version = version, .option_flaw = 0x80});
            bench.run_job();
            if (version == 0x32) {
                expect_failed_at(bench, "Write options / 写选项");
                EXPECT_TRUE(ends_with(bench.log(), options_failed)) << bench.log();
            } else {
                expect_good_chip(bench);
                EXPECT_FALSE(bench.log_has("Config option")) << bench.log();
            }
        }
    }
}

// ---- whatever the chip holds -------------------------------------------------------------

// Every value of every byte, read in the status frame, shown, and written over.
TEST(OptionsOfEveryLetter, AreReadAndWrittenWhateverTheChipHolds) {
    const std::map<char, std::vector<std::size_t>> places = {
        {'A', {0}},
        {'C', {1, 8}},
        {'D', {2, 3, 8, 10, 11}},
        {'E', {2, 3, 8, 10, 11}},
        {'F', {2, 3, 8, 10, 11}},
        {'G', {0, 3, 4, 8, 10, 11}},
    };
    for (const auto& [letter, bytes] : places) {
        for (const std::size_t place : bytes) {
            for (int value = 0; value < 256; ++value) {
                SCOPED_TRACE(letter + std::to_string(place) + " = " + std::to_string(value));
                sim::OptionBytes options;
                options.fill(0xFF);
                options[place] = static_cast<std::uint8_t>(value);
                OptionBench bench(chip_of(letter), {.options = options});
                bench.run_job();
                expect_good_chip(bench);
                for (const int word :
                     option_words_of_family(bench.frm.catalogue.MCU_Info.MCU_Family)) {
                    const auto at = static_cast<std::size_t>(word);
                    EXPECT_EQ(bench.chip.options()[at], bench.frm.options.Option_Bytes[0][at]);
                }
                if (HasFailure()) return;
            }
        }
    }
}

// ---- the double speed --------------------------------------------------------------------

double megahertz_behind(const OptionBench& bench, std::string_view words) {
    const std::size_t at = bench.log().rfind(words);
    return at == std::string::npos ? 0 : leading_number(bench.log().substr(at + words.size()));
}

void expect_clock_lines(const OptionBench& bench, double crystal_hz, bool double_speed) {
    const double crystal = crystal_hz / 1e6;
    const double inside = double_speed ? 2 * crystal : crystal;
    EXPECT_NEAR(megahertz_behind(bench, "Internal clock:"), inside, inside * 0.005);
    EXPECT_NEAR(megahertz_behind(bench, "External clock:"), crystal, crystal * 0.005);
}

const std::vector<double> crystals = {4e6,  6e6,  8e6,       11.0592e6, 12e6, 14.7456e6,
                                      16e6, 20e6, 22.1184e6, 24e6,      27e6, 33e6};

TEST(DoubleSpeed, OfTheChipShowsInTheClockLinesAndStaysOrGoes) {
    for (const char letter : {'A', 'C'}) {
        for (const double crystal : crystals) {
            for (const bool was_double : {false, true}) {
                for (const bool wanted : {false, true}) {
                    SCOPED_TRACE(letter + std::to_string(crystal) + (was_double ? " 6T" : " 12T") +
                                 (wanted ? " to 6T" : " to 12T"));
                    OptionBench bench(chip_of(letter),
                                      {.clock_hz = crystal, .double_speed = was_double});
                    bench.choose_option("Option0", wanted ? 0 : 1);
                    bench.run_job();
                    expect_good_chip(bench);
                    expect_clock_lines(bench, crystal, was_double);
                    // Once burnt into the oldest chips it stays.
                    const bool then_double = wanted || (letter == 'A' && was_double);
                    if (letter == 'A')
                        expect_options(bench, {{0, then_double ? 0x48 : 0x40}});
                    else
                        expect_options(bench, {{1, wanted ? 0xFC : 0xFD}});

                    bench.power_cycle();
                    bench.run_job();
                    expect_good_chip(bench, "2");
                    expect_clock_lines(bench, crystal, then_double);
                    EXPECT_TRUE(bench.flash_holds(bench.image));
                    EXPECT_TRUE(bench.chip.faults().empty()) << bench.story();
                    if (HasFailure()) return;
                }
            }
        }
    }
}

// The count of the reload pair at this place of a frame.
int count_at(const Bytes& frame, std::size_t place) {
    return 65536 - (frame[place] * 256 + frame[place + 1]);
}

TEST(DoubleSpeed, OfLetterCSendsTheReloadPairOfTheDoubledClock) {
    for (const double crystal : crystals) {
        SCOPED_TRACE(crystal);
        OptionBench bench(chip_of('C'), {.clock_hz = crystal});
        bench.choose_option("Option0", 0);
        bench.run_job();
        ASSERT_EQ(bench.option_frames().size(), 1u) << bench.story();
        const int in_force = count_at(bench.sent(0x8E).back(), 6);
        EXPECT_EQ(count_at(bench.option_frames()[0], 7), 2 * in_force);

        // Back again: the pair in force is that of the doubled clock now.
        bench.power_cycle();
        bench.choose_option("Option0", 1);
        bench.run_job();
        expect_good_chip(bench, "2");
        ASSERT_EQ(bench.option_frames().size(), 1u) << bench.story();
        EXPECT_EQ(count_at(bench.option_frames()[0], 7), count_at(bench.sent(0x8E).back(), 6));
    }
}

// ---- both languages ------------------------------------------------------------------------

TEST(OptionsInEnglish, AreTold) {
    OptionBench good = OptionBench::with_other_options(chip_of('G'));
    good.frm.screen.Show_English = true;
    good.run_job();
    EXPECT_TRUE(
        good.log_has("\r\nMCU Firmware Version: 3.8G"
                     "\r\nConfig option OK. "
                     "\r\nProgram OK\r\n"))
        << good.log();

    for (const OptionChip& chip : option_chips) {
        OptionBench bad = OptionBench::with_other_options(
            chip, {.faults = {lose_frame(sim::FrameKind::options, always)}});
        bad.frm.screen.Show_English = true;
        bad.run_job();
        EXPECT_TRUE(ends_with(bad.log(), " )\r\nConfig option are error!")) << bad.log();
        EXPECT_EQ(bad.verdict(), "✘ Failed: Write options");
    }
}

}  // namespace
}  // namespace vkm::test
