// A project that was opened, into a chip: the same bytes and options as the job that
// was saved.
#include "option_bench.h"
#include "project_bench.h"

#include "session/user_code.h"

namespace vkm::test {
namespace {

const OptionChip& option_chip(char letter) {
    return chip_of(letter);
}

// A choice of the panel that a new chip doesn't have.
void choose_something_else(frmMain& frm) {
    Screen& s = frm.screen;
    const auto choose = [](auto& pair, int element) {
        for (std::size_t i = 0; i < pair.size(); ++i)
            pair[i].Value = static_cast<int>(i) == element;
    };
    choose(s.Option0, 0);
    if (frm.catalogue.MCU_Info.MCU_Family >= 2) choose(s.Option1, 0);
    if (frm.catalogue.MCU_Info.MCU_Family >= 3) {
        choose(s.Option10, 0);
        s.comWDT_Prescalar.ListIndex = 2;
    }
}

struct ProjectDownload : ::testing::TestWithParam<char> {};

TEST_P(ProjectDownload, GivesTheChipWhatTheSavedJobGaveIt) {
    const OptionChip& chip = option_chip(GetParam());
    const Bytes program = bytes_without_zero(900, 4);
    const Bytes data = bytes_without_zero(300, 5);
    const bool with_data = GetParam() == 'D' || GetParam() == 'E';

    ProjectBench saver(chip.model, {.model = chip.chip});
    saver.load_bytes(program);
    if (with_data) saver.load_data(data);
    choose_something_else(saver.frm);
    const std::string text = saver.save();
    comDownload(saver.frm, 0);
    expect_good_chip(saver);

    ProjectBench bench("VKM47H51RB", {.model = chip.chip});
    const sim::OptionBytes as_delivered = bench.chip.options();
    bench.open(text);
    comDownload(bench.frm, 0);
    EXPECT_EQ(bench.verdict(), "✔ OK / 成功") << bench.story();
    EXPECT_TRUE(bench.chip.started()) << bench.story();
    EXPECT_TRUE(bench.flash_holds(program)) << bench.story();
    EXPECT_TRUE(std::ranges::equal(bench.chip.flash(), saver.chip.flash()));
    EXPECT_EQ(bench.chip.options(), saver.chip.options());
    EXPECT_NE(bench.chip.options(), as_delivered);
    EXPECT_TRUE(bench.chip.faults().empty()) << bench.story();
    EXPECT_TRUE(bench.take_texts().empty());
    // The end of the download locks whatever was unlocked.
    EXPECT_TRUE(bench.locked());

    bench.click(bench.frm.screen.comUnlockOptions);
    bench.chip.power_cycle(bench.loop.now(), Milliseconds(100));
    comDownload(bench.frm, 0);
    EXPECT_EQ(bench.count(), "2");
    EXPECT_TRUE(bench.locked());
}

INSTANTIATE_TEST_SUITE_P(OfAllFamilies, ProjectDownload,
                         ::testing::Values('A', 'C', 'D', 'E', 'F', 'G'));

// The number of a project at address 0x10 downward, hexadecimal, four bytes.
std::string numbered(std::string_view model, std::string_view next, const Bytes& program) {
    return small_project(model,
                         "Auto_Increase_Enable: 1\r\nAuto_Increase_Address: 0010\r\n"
                         "Auto_Increase_Bytes: 4\r\nAuto_Increase_Next: " +
                             std::string(next) +
                             "\r\nAuto_Increase: 2\r\nAuto_Increase_HEX: True\r\n",
                         program);
}

TEST(NumberOfAProject, IsPatchedByItsFirstDownloadAndMovesOn) {
    Bytes program = bytes_without_zero(900, 4);
    ProjectBench bench("VKM47H51RB", {.model = "VKM47H58RK+"});
    bench.open(numbered("VKM47H58RK+", "70000", program));
    EXPECT_EQ(bench.program(), program);
    bench.take_texts();
    comDownload(bench.frm, 0);
    EXPECT_EQ(bench.verdict(), "✔ OK / 成功") << bench.story();
    const auto numbered_as = [&](Bytes number) {
        std::ranges::copy(number, program.begin() + 0x0D);
        return program;
    };
    EXPECT_TRUE(bench.flash_holds(numbered_as({0x00, 0x01, 0x11, 0x70})));
    EXPECT_EQ(bench.frm.screen.texAuto_Increase[2].Text.substr(
                  bench.frm.screen.texAuto_Increase[2].Text.find_first_not_of('0')),
              "70002");
    bench.chip.power_cycle(bench.loop.now(), Milliseconds(100), true);
    comDownload(bench.frm, 0);
    EXPECT_TRUE(bench.flash_holds(numbered_as({0x00, 0x01, 0x11, 0x72})));
    EXPECT_TRUE(bench.take_texts().empty());
    // The file is what it was.
    EXPECT_EQ(line_value(bench.text_on_disk(), "Auto_Increase_Next"), "70000");
}

TEST(FileOfAProject, IsNeverReadAgain) {
    for (const bool every_download : {false, true}) {
        ProjectBench bench("VKM47H58RK+", {.model = "VKM47H58RK+"});
        Screen& s = bench.frm.screen;
        bench.files.add("/job/a.bin", Bytes(900, 0x5A));
        bench.dialogs.choose_file("/job/a.bin");
        bench.click(s.comLoadFile);
        bench.take_texts();
        const Bytes program = bytes_without_zero(900, 4);
        bench.open(
            small_project("VKM47H58RK+", "File_Name: File Buffer: /job/a.bin\r\n", program));
        s.cekReloadFile.Value = every_download ? 1 : 0;
        s.cekReloadFileWhileFileChange.Value = 1;
        bench.files.add("/job/a.bin", Bytes(900, 0x77));
        bench.run_for(5000);
        EXPECT_EQ(bench.port.opens, 0);
        comDownload(bench.frm, 0);
        EXPECT_TRUE(bench.flash_holds(program)) << bench.story();
        EXPECT_TRUE(bench.take_texts().empty());
    }
}

}  // namespace
}  // namespace vkm::test
