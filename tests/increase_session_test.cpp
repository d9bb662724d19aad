// Numbers in whole downloads, from the click on the box to the chip's flash, and what
// the operator may touch meanwhile.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "increase/auto_increase.h"
#include "session_bench.h"
#include "window/wiring.h"

namespace vkm::test {
namespace {

struct NumberBench : SessionBench {
    explicit NumberBench(sim::ChipConfig config = {.model = "VKM47H58RK+"})
        : SessionBench(std::move(config)) {
        choose(frm.screen.comDalay_ReDownLoad, "1");
    }

    std::array<Control, 4>& fields(bool of_program) {
        return of_program ? frm.screen.texAuto_Increase : frm.screen.texData_Auto_Increase;
    }
    Auto_Increase_Set& set(bool of_program) {
        return of_program ? frm.increase.Auto_Increase : frm.increase.Data_Auto_Increase;
    }
    Control& box(bool of_program) {
        return of_program ? frm.screen.cheAuto_Increase : frm.screen.cheData_Auto_Increase;
    }

    void type(bool of_program, const std::string& address, const std::string& length,
              const std::string& next, const std::string& increase = "1", std::size_t numeral = 1) {
        auto& texts = fields(of_program);
        texts[0].Text = address;
        texts[1].Text = length;
        texts[2].Text = next;
        texts[3].Text = increase;
        auto& formats = of_program ? frm.screen.optAuto_Increase : frm.screen.optData_Auto_Increase;
        for (std::size_t i = 0; i < 3; ++i) formats[i].Value = i == numeral;
    }

    // What the operator does.
    void touch(Control& control, EventKind kind = EventKind::Change) {
        handle_event(frm, {&control, kind, 0, {}});
    }
    void tick(bool of_program, bool checked = true) {
        box(of_program).Value = checked ? 1 : 0;
        touch(box(of_program), EventKind::Click);
    }

    Bytes flash_at(std::size_t address, std::size_t count) const {
        const auto begin = chip.flash().begin() + static_cast<std::ptrdiff_t>(address);
        return {begin, begin + static_cast<std::ptrdiff_t>(count)};
    }

    // Waits for each good chip of a series, notes its bytes there and puts a blank one
    // in its place; stops behind the last one.
    void watch_chips(int wanted, std::size_t address, std::size_t count) {
        if (static_cast<int>(numbers.size()) == wanted) return;
        if (this->count() == std::to_string(numbers.size() + 1)) {
            numbers.push_back(flash_at(address, count));
            chip.power_cycle(loop.now(), Milliseconds(300), true);
            if (static_cast<int>(numbers.size()) == wanted) return comStop_Download(frm);
        }
        at(20, [this, wanted, address, count] { watch_chips(wanted, address, count); });
    }

    std::vector<Bytes> numbers;
};

struct Row {
    std::size_t numeral;
    const char* next;
    const char* increase;
    std::vector<Bytes> numbers;
    const char* left;  // for the next chip
};

const Row rows[] = {
    {0, "254", "1", {{0, 0, 0xFE}, {0, 0, 0xFF}, {0, 1, 0}, {0, 1, 1}}, "00000258"},
    {1, "0098", "1", {{0, 0, 0x98}, {0, 0, 0x99}, {0, 1, 0}, {0, 1, 1}}, "000102"},
    {2, "8", "5", {{'0', '0', '8'}, {'0', '1', '3'}, {'0', '1', '8'}, {'0', '2', '3'}}, "028"},
    {1, "999998", "1", {{0x99, 0x99, 0x98}, {0x99, 0x99, 0x99}, {0, 0, 0}, {0, 0, 0}}, "000000"},
    {2, "3", "-1", {{'0', '0', '3'}, {'0', '0', '2'}, {'0', '0', '1'}, {'0', '0', '0'}}, "000"},
};

TEST(NumberedDownload, GivesEachChipOfASeriesItsNumberInTheProgram) {
    for (const Row& row : rows) {
        SCOPED_TRACE(std::string(row.next) + ", format " + std::to_string(row.numeral));
        NumberBench bench;
        bench.load(0x300);
        bench.type(true, "1FF", "3", row.next, row.increase, row.numeral);
        bench.tick(true);
        bench.watch_chips(4, 0x1FD, 3);
        comDownload(bench.frm, 1);
        EXPECT_EQ(bench.numbers, row.numbers) << bench.story();
        const std::string& left = bench.fields(true)[2].Text;
        EXPECT_EQ(left, row.left);
        EXPECT_EQ(bench.settings.on_disk.at({"Auto_Increase", "next_value"}), left);
        EXPECT_TRUE(bench.boxes().empty());
        EXPECT_TRUE(bench.chip.faults().empty()) << bench.story();
    }
}

TEST(NumberedDownload, GivesEachChipOfASeriesItsNumberInTheDataImage) {
    // One model of each family whose data file goes into the chip behind the program.
    for (const std::string model : {"VKM26H4052", "VKM26H5404"})
        for (const Row& row : rows) {
            SCOPED_TRACE(model + " " + row.next);
            NumberBench bench({.model = model});
            const auto data_start =
                static_cast<std::size_t>(bench.frm.catalogue.MCU_Info.Data_Start);
            bench.load(0x300);
            bench.load_data_bytes(random_bytes(0x80, 7));
            bench.type(false, "3F", "3", row.next, row.increase, row.numeral);
            bench.tick(false);
            bench.watch_chips(4, data_start + 0x3D, 3);
            comDownload(bench.frm, 1);
            EXPECT_EQ(bench.numbers, row.numbers) << bench.story();
            EXPECT_EQ(bench.fields(false)[2].Text, row.left);
            EXPECT_EQ(bench.settings.on_disk.at({"Data_Auto_Increase", "next_value"}), row.left);
        }
}

TEST(NumberedDownload, ProgramsANumberThatLiesOutsideTheFile) {
    NumberBench bench;
    bench.load(0x40);
    bench.type(true, "3FF", "4", "12345678");
    bench.tick(true);
    comDownload(bench.frm, 0);
    expect_good_chip(bench);
    EXPECT_EQ(bench.flash_at(0x3FC, 4), (Bytes{0x12, 0x34, 0x56, 0x78}));
}

// A number that no job sends: of the data without a data file, and of the program
// behind its area when a data file comes in between.
TEST(NumberedDownload, TellsOfANumberThatIsNotSent) {
    struct {
        const char* model;
        bool of_program;
        const char* address;
        std::size_t data;  // bytes of the data file; 0: none
        const char* line;
        const char* line_in_english;
    } const jobs[] = {
        {"VKM26H5404", false, "3F", 0, "The data's number was not sent. / 数据文件的编号未下载。",
         "The data's number was not sent."},
        {"VKM47H58RK+", false, "3F", 0, "The data's number was not sent. / 数据文件的编号未下载。",
         "The data's number was not sent."},
        {"VKM26H5404", false, "3F", 64, "", ""},
        {"VKM26H5404", true, "1000", 64,
         "The program's number was not sent. / 程序文件的编号未下载。",
         "The program's number was not sent."},
        {"VKM26H5404", true, "FFF", 64, "", ""},
        {"VKM26H5404", true, "1000", 0, "", ""},
        // Between its program area and its data memory there is a gap.
        {"VKM26H2052", false, "3F", 64, "The data's number was not sent. / 数据文件的编号未下载。",
         "The data's number was not sent."},
    };
    for (const auto& job : jobs)
        for (const bool english : {false, true}) {
            SCOPED_TRACE(std::string(job.model) + " " + job.address + " " +
                         std::to_string(job.data));
            NumberBench bench({.model = job.model});
            bench.frm.screen.Show_English = english;
            ASSERT_TRUE(bench.select_model(job.model));
            bench.load(0x300);
            if (job.data > 0) bench.load_data_bytes(random_bytes(job.data, 7));
            bench.type(job.of_program, job.address, "3", "123456");
            bench.tick(job.of_program);
            comDownload(bench.frm, 0);
            ASSERT_EQ(bench.frm.session.Result, Job_Result::done) << bench.story();
            const std::string line = english ? job.line_in_english : job.line;
            const std::string number = "number was not sent";
            EXPECT_EQ(bench.log_has(number), !line.empty()) << bench.story();
            EXPECT_TRUE(line.empty() || bench.log().ends_with("\r\n" + line)) << bench.story();
            const std::size_t start =
                job.of_program ? 0
                               : static_cast<std::size_t>(bench.frm.catalogue.MCU_Info.Data_Start);
            const std::size_t at = start + std::stoul(job.address, nullptr, 16) - 2;
            EXPECT_EQ(bench.flash_at(at, 3) == (Bytes{0x12, 0x34, 0x56}), line.empty());
        }
}

TEST(NumberedDownload, PatchesAnewWhatWasTouchedSinceTheLastOne) {
    for (const bool of_program : {true, false}) {
        SCOPED_TRACE(of_program);
        NumberBench bench({.model = "VKM26H5404"});
        const std::size_t at = (of_program ? 0 : 0x1000) + 0x3E;
        bench.load(0x300);
        bench.load_data_bytes(random_bytes(0x80, 7));
        bench.type(of_program, "3F", "2", "0007");
        bench.tick(of_program);
        comDownload(bench.frm, 0);
        EXPECT_EQ(bench.flash_at(at, 2), (Bytes{0x00, 0x07}));

        bench.fields(of_program)[2].Text = "4321";
        bench.touch(bench.fields(of_program)[2]);
        EXPECT_FALSE(bench.set(of_program).Active);
        bench.chip.power_cycle(bench.loop.now(), Milliseconds(100), true);
        comDownload(bench.frm, 0);
        EXPECT_EQ(bench.count(), "2");
        EXPECT_EQ(bench.flash_at(at, 2), (Bytes{0x43, 0x21}));
        EXPECT_EQ(bench.fields(of_program)[2].Text, "4322");
        EXPECT_TRUE(bench.set(of_program).Active);
    }
}

TEST(NumberedDownload, GoesOnBehindTheBoxOfANumberThatCantBeWritten) {
    NumberBench bench;
    bench.load(0x300);
    bench.type(true, "1FF", "2", "0007");
    bench.tick(true);
    bench.fields(true)[2].Text = "10000";  // three bytes
    bench.touch(bench.fields(true)[2]);
    comDownload(bench.frm, 0);
    ASSERT_EQ(bench.boxes().size(), 1u);
    EXPECT_EQ(bench.boxes()[0].text, "自动增量字节数太小");
    EXPECT_EQ(bench.boxes()[0].title, "设置程序文件自动增量");
    EXPECT_EQ(bench.count(), "1");
    EXPECT_EQ(bench.flash_at(0x1FE, 2), (Bytes{0x00, 0x07}));  // the previous number
    EXPECT_EQ(bench.fields(true)[2].Text, "0001");             // 10001, cut to its width
}

TEST(NumberedDownload, GoesOnBehindTheBoxOfAnAddressOutOfRange) {
    NumberBench bench;
    bench.load(0x300);
    bench.type(true, "FFFFF", "2", "0007");
    bench.tick(true);
    ASSERT_EQ(bench.boxes().size(), 1u);
    comDownload(bench.frm, 0);  // asks again, since nothing is active
    ASSERT_EQ(bench.boxes().size(), 2u);
    EXPECT_EQ(bench.boxes()[1].text, "自动增量低位地址太大");
    expect_good_chip(bench);
    EXPECT_TRUE(bench.flash_holds(bench.image));
    EXPECT_EQ(bench.fields(true)[2].Text, "0007");
}

TEST(NumberedDownload, ASeriesThatRunsOutOfNumbersGoesOnAndTells) {
    NumberBench bench;
    bench.load(0x300);
    bench.type(true, "1FF", "4", "2147483646", "1", 0);
    bench.tick(true);
    bench.watch_chips(3, 0x1FC, 4);
    comDownload(bench.frm, 1);
    const Bytes last = {0x7F, 0xFF, 0xFF, 0xFF};
    EXPECT_EQ(bench.numbers, (std::vector<Bytes>{{0x7F, 0xFF, 0xFF, 0xFE}, last, last}));
    ASSERT_EQ(bench.boxes().size(), 2u);
    EXPECT_EQ(bench.boxes()[0].text, "下一值必须小于 2147483648。");
}

TEST(NumberedDownload, PatchesANumberOfZeroAndCountsItNotUp) {
    NumberBench bench;
    bench.load(0x300);
    bench.type(true, "1FF", "2", "0000", "1", 2);
    bench.tick(true);
    bench.watch_chips(3, 0x1FE, 2);
    comDownload(bench.frm, 1);
    EXPECT_EQ(bench.numbers, (std::vector<Bytes>(3, Bytes{'0', '0'})));
    EXPECT_EQ(bench.fields(true)[2].Text, "0000");
    EXPECT_EQ(bench.settings.on_disk.at({"Auto_Increase", "next_value"}), "0000");
}

TEST(NumberedDownload, WithoutTheBoxTickedNumbersNothing) {
    NumberBench bench;
    bench.load(0x300);
    bench.type(true, "1FF", "2", "0007");
    bench.type(false, "1FF", "2", "0007");
    comDownload(bench.frm, 0);
    expect_good_chip(bench);
    EXPECT_TRUE(bench.flash_holds(bench.image));
    EXPECT_EQ(bench.fields(true)[2].Text, "0007");
    EXPECT_EQ(bench.fields(false)[2].Text, "0007");
    EXPECT_TRUE(bench.boxes().empty());
}

TEST(NumberedDownload, StoresTheNextNumberWithTheCountOfTheChip) {
    NumberBench bench;
    bench.load(0x300);
    bench.type(true, "1FF", "2", "0041", "2");
    bench.type(false, "1FF", "2", "0100", "-1");
    bench.tick(true);
    bench.tick(false);
    std::vector<std::string> disk;  // as each flush leaves it
    bench.settings.after_flush = [&] {
        const auto& stored = bench.settings.on_disk;
        disk.push_back(stored.at({"Settings", "Write_OK_Count"}) + " " +
                       stored.at({"Auto_Increase", "next_value"}) + " " +
                       stored.at({"Data_Auto_Increase", "next_value"}));
    };
    comDownload(bench.frm, 0);
    EXPECT_EQ(bench.count(), "1");
    ASSERT_FALSE(disk.empty());
    for (const std::string& state : disk) EXPECT_EQ(state, "1 0043 0099");
    bench.settings.after_flush = {};
}

// ---- a disk that takes nothing ------------------------------------------------------------

TEST(CountThatCantBeSaved, IsToldBehindEachGoodChipUntilTheDiskTakesIt) {
    for (const bool english : {false, true}) {
        NumberBench bench;
        bench.frm.screen.Show_English = english;
        bench.load(0x300);
        bench.type(true, "1FF", "2", "0041");
        bench.tick(true);
        const std::string told = english
                                     ? "\r\nThe counter and the next number can not be saved!"
                                     : "\r\nThe counter and the next number can not be saved! / "
                                       "计数和下一个值无法保存!";
        const auto stored = [&](const char* section, const char* key) {
            const auto found = bench.settings.on_disk.find({section, key});
            return found == bench.settings.on_disk.end() ? std::string("none") : found->second;
        };
        bench.settings.disk_full = true;
        const std::string count_before = stored("Settings", "Write_OK_Count");
        for (const char* count : {"1", "2"}) {
            comDownload(bench.frm, 0);
            EXPECT_TRUE(ends_with(bench.log(), told)) << bench.log();
            EXPECT_EQ(bench.log().find(told), bench.log().rfind(told));
            EXPECT_EQ(bench.verdict(), english ? "✔ OK" : "✔ OK / 成功");
            EXPECT_TRUE(bench.frm.session.Program_OK);
            EXPECT_EQ(bench.frm.session.Result, Job_Result::done);
            EXPECT_EQ(bench.count(), count);
            EXPECT_TRUE(bench.boxes().empty());
            bench.chip.power_cycle(bench.loop.now(), Milliseconds(100), true);
        }
        EXPECT_EQ(stored("Settings", "Write_OK_Count"), count_before);
        EXPECT_EQ(stored("Auto_Increase", "next_value"), "0041");
        EXPECT_EQ(bench.fields(true)[2].Text, "0043");

        bench.settings.disk_full = false;
        EXPECT_TRUE(bench.settings.flush());
        EXPECT_EQ(stored("Settings", "Write_OK_Count"), "2");
        EXPECT_EQ(stored("Auto_Increase", "next_value"), "0043");
        comDownload(bench.frm, 0);
        EXPECT_EQ(bench.count(), "3");
        EXPECT_EQ(stored("Settings", "Write_OK_Count"), "3");
        EXPECT_FALSE(bench.log_has(told));
        EXPECT_EQ(bench.flash_at(0x1FE, 2), (Bytes{0x00, 0x43}));
    }
}

TEST(CountThatCantBeSaved, IsToldForEachChipOfASeries) {
    NumberBench bench;
    bench.load(0x300);
    bench.settings.disk_full = true;
    const std::string told = "The counter and the next number can not be saved! / ";
    std::vector<bool> seen;
    // Each log begins anew with its chip, and waits behind it for the next one.
    for (int ms = 0; ms < 20'000; ms += 50)
        bench.at(ms, [&] {
            if (bench.count() != std::to_string(seen.size() + 1) || !bench.log_has("will continue"))
                return;
            seen.push_back(bench.log_has(told));
            if (seen.size() == 3) return comStop_Download(bench.frm);
            bench.chip.replace(bench.loop.now());
            bench.power_on_in(150);
        });
    comDownload(bench.frm, 1);
    EXPECT_EQ(seen, (std::vector<bool>{true, true, true}));
}

TEST(NumberedDownload, OfAReloadedFileNeedsTheBoxTickedAgain) {
    NumberBench bench;
    const Bytes file = random_bytes(0x300, 5);
    bench.files.add("/job/app.bin", file);
    bench.dialogs.choose_file("/job/app.bin");
    bench.touch(bench.frm.screen.comLoadFile, EventKind::Click);
    bench.type(true, "1FF", "2", "0007");
    bench.tick(true);
    bench.frm.screen.cekReloadFile.Value = 1;
    comDownload(bench.frm, 0);
    expect_good_chip(bench);
    EXPECT_EQ(bench.box(true).Value, 0);
    EXPECT_EQ(bench.fields(true)[2].Text, "0007");
    EXPECT_EQ(bench.flash_at(0, 0x300)[0x1FF], file[0x1FF]);
}

// ---- what makes a set inactive --------------------------------------------------------

TEST(NumberingActive, EndsWithAnyTouchOfItsSetAlone) {
    for (const bool of_program : {true, false})
        for (int control = 0; control < 7; ++control) {
            SCOPED_TRACE(control);
            NumberBench bench({.model = "VKM26H5404"});
            bench.load(0x100);
            for (const bool set : {true, false}) {
                bench.type(set, "1F", "2", "0007");
                bench.tick(set);
                ASSERT_TRUE(bench.set(set).Active);
            }
            Screen& screen = bench.frm.screen;
            const auto index = static_cast<std::size_t>(control < 4 ? control : control - 4);
            if (control < 4)
                bench.touch(bench.fields(of_program)[index]);
            else
                bench.touch(
                    (of_program ? screen.optAuto_Increase : screen.optData_Auto_Increase)[index],
                    EventKind::Click);
            EXPECT_FALSE(bench.set(of_program).Active);
            EXPECT_TRUE(bench.set(!of_program).Active);
            EXPECT_EQ(bench.box(of_program).Value, 1);
        }
}

TEST(NumberingActive, EndsWithTheBoxAndWithEveryFile) {
    for (const bool by_file : {true, false}) {
        NumberBench bench({.model = "VKM26H5404"});
        bench.load(0x100);
        for (const bool set : {true, false}) {
            bench.type(set, "1F", "2", "0007");
            bench.tick(set);
        }
        if (by_file) {
            bench.files.add("/job/app.bin", random_bytes(50));
            bench.dialogs.choose_file("/job/app.bin");
            bench.touch(bench.frm.screen.comLoadFile, EventKind::Click);
        } else {
            bench.tick(true, false);
            bench.tick(false, false);
        }
        for (const bool set : {true, false}) {
            EXPECT_FALSE(bench.set(set).Active);
            EXPECT_EQ(bench.box(set).Value, 0);
            for (const Control& field : bench.fields(set)) EXPECT_TRUE(field.Enabled);
        }
    }
}

TEST(NumberingBox, KeepsTellingWhatARunningSeriesDoes) {
    NumberBench bench({.model = "VKM26H5404"});
    bench.load(0x300);
    bench.type(true, "1FF", "2", "0007");
    bench.tick(true);
    for (int ms = 50; ms < 4000; ms += 150)
        bench.at(ms, [&] {
            if (!bench.frm.session.Running) return;
            bench.tick(true, false);
            EXPECT_EQ(bench.box(true).Value, 1);
            bench.tick(false, true);
            EXPECT_EQ(bench.box(false).Value, 0);
            for (const Control& field : bench.fields(true)) EXPECT_FALSE(field.Enabled);
        });
    bench.watch_chips(3, 0x1FE, 2);
    comDownload(bench.frm, 1);
    EXPECT_EQ(bench.numbers, (std::vector<Bytes>{{0, 7}, {0, 8}, {0, 9}}));
    EXPECT_FALSE(bench.set(false).Active);
    bench.tick(true, false);
    EXPECT_EQ(bench.box(true).Value, 0);
    EXPECT_FALSE(bench.set(true).Active);
}

TEST(NumberedDownload, InALockedToolLeavesTheFieldsToTheOneWhoUnlocks) {
    NumberBench bench({.model = "VKM26H5404"});
    bench.load(0x300);
    for (const bool set : {true, false})
        for (Control& field : bench.fields(set)) field.Enabled = false;
    Set_UI_State(bench.frm, 2);
    comDownload(bench.frm, 0);  // with both boxes empty
    EXPECT_EQ(bench.count(), "1");
    EXPECT_EQ(bench.frm.session.UI_State, 2);
    for (const bool set : {true, false})
        for (const Control& field : bench.fields(set)) EXPECT_FALSE(field.Enabled);

    Set_UI_State(bench.frm, 0);
    bench.chip.power_cycle(bench.loop.now(), Milliseconds(100));
    comDownload(bench.frm, 0);
    for (const bool set : {true, false})
        for (const Control& field : bench.fields(set)) EXPECT_TRUE(field.Enabled);
}

TEST(NumberingAtStart, ShowsTheSettingsAndIsOff) {
    VirtualBench bench({}, [](VirtualBench& made) {
        made.settings.preset("Auto_Increase", "next_value", "00077");
        made.settings.preset("Auto_Increase", "numeral_system", "2");
        made.settings.preset("Data_Auto_Increase", "address", "1a");
    });
    const Screen& screen = bench.frm.screen;
    EXPECT_EQ(screen.texAuto_Increase[2].Text, "00077");
    EXPECT_EQ(screen.optAuto_Increase[2].Value, 1);
    EXPECT_EQ(screen.optAuto_Increase[0].Value, 0);
    EXPECT_EQ(screen.optData_Auto_Increase[1].Value, 1);
    EXPECT_EQ(screen.texData_Auto_Increase[0].Text, "1A");
    EXPECT_EQ(bench.frm.increase.Auto_Increase.Next_Value, "00077");
    EXPECT_EQ(bench.frm.increase.Data_Auto_Increase.Address, 0x1A);
    EXPECT_FALSE(bench.frm.increase.Auto_Increase.Active);
    EXPECT_FALSE(bench.frm.increase.Data_Auto_Increase.Active);
    EXPECT_EQ(screen.cheAuto_Increase.Value, 0);
    for (const Control& field : screen.texAuto_Increase) EXPECT_TRUE(field.Enabled);
    EXPECT_TRUE(bench.boxes().empty());
}

}  // namespace
}  // namespace vkm::test
