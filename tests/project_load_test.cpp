// Projects into the tool: all that was saved comes back, and a damaged file never
// gets as far as a chip.
#include "project_bench.h"

#include "catalogue/model_table.h"
#include "options/mcu_options.h"
#include "options/option_panel.h"
#include "options/option_schema.h"
#include "project/project_files.h"
#include "session/download_session.h"
#include "window/main_window.h"

namespace vkm::test {
namespace {

// ---- there and back -----------------------------------------------------------

using Values = std::vector<std::pair<std::string, std::string>>;

Values panel_of(frmMain& frm) {
    Values values;
    for_each_option_control(frm.screen, [&](Control& c) {
        if (c.Visible)
            values.push_back({full_name(c), std::to_string(c.Value) + "/" +
                                                std::to_string(c.ListIndex) + "/" + c.Caption});
    });
    return values;
}

Values items_of(frmMain& frm) {
    Values values;
    const auto add = [&](const Control& c) {
        values.push_back({full_name(c), c.Text + "|" + std::to_string(c.Value)});
    };
    Screen& s = frm.screen;
    values.push_back({"Frame7", s.Frame7.Caption});
    values.push_back({"frmDataFlash", s.frmDataFlash.Caption});
    for (const Control* c : {&s.txtDevice, &s.txtFileCheckSum, &s.txtDataFileCheckSum,
                             &s.cheAuto_Increase, &s.cheData_Auto_Increase})
        add(*c);
    for (const auto* fields : {&s.texAuto_Increase, &s.texData_Auto_Increase})
        for (const Control& c : *fields) add(c);
    for (const auto* formats : {&s.optAuto_Increase, &s.optData_Auto_Increase})
        for (const Control& c : *formats) add(c);
    return values;
}

// The controls that are not alike.
std::string differences(const Values& is, const Values& wanted) {
    std::string text = is.size() == wanted.size() ? "" : "other controls";
    for (std::size_t i = 0; i < std::min(is.size(), wanted.size()); ++i)
        if (is[i] != wanted[i])
            text += is[i].first + ": " + is[i].second + " instead of " + wanted[i].second + "\n";
    return text;
}

// The operator sets everything somehow.
struct Chance {
    explicit Chance(unsigned seed) : source(seed) {}
    int below(int n) { return static_cast<int>(source() % static_cast<unsigned>(n)); }
    unsigned seed() { return static_cast<unsigned>(source()); }
    std::mt19937 source;

    void choose(Screen& screen, std::string_view array) {
        // What a family doesn't offer is parked, and hidden.
        int count = 0;
        while (const Control* c = find_control(screen, array, count)) {
            if (!c->Visible) break;
            ++count;
        }
        const int chosen = below(count);
        for (int i = 0; i < count; ++i) find_control(screen, array, i)->Value = i == chosen;
    }
    void set_fields(std::array<Control, 4>& fields) {
        fields[0].Text = "0" + std::to_string(100 + below(900));
        fields[1].Text = std::to_string(1 + below(4));
        fields[2].Text =
            std::string(static_cast<std::size_t>(below(4)), '0') + std::to_string(below(1000));
        fields[3].Text = std::to_string(below(20) - 5);
    }
    void set_everything(ProjectBench& bench, bool with_data) {
        Screen& s = bench.frm.screen;
        if (const auto* rows = family_rows(bench.frm))
            for (const Option_Row& row : *rows)
                if (!row.Option_Code.empty() && row.Option_Visible) choose(s, row.Option_Control);
        s.comWDT_Prescalar.ListIndex = below(8);
        set_fields(s.texAuto_Increase);
        set_fields(s.texData_Auto_Increase);
        choose(s, "optAuto_Increase");
        choose(s, "optData_Auto_Increase");
        s.cheAuto_Increase.Value = below(2);
        s.cheData_Auto_Increase.Value = below(2);
        bench.load_bytes(random_bytes(static_cast<std::size_t>(1 + below(3000)), seed()),
                         below(1000));
        if (with_data)
            bench.load_data(random_bytes(static_cast<std::size_t>(1 + below(2000)), seed()));
        s.Frame7.Caption = "File Buffer: D:\\程序: " + std::to_string(below(1000)) + ".hex";
        s.txtFileCheckSum.Text = "1A2B";
        if (with_data) s.frmDataFlash.Caption = "Data File: E:\\数据.bin";
    }
};

struct ThereAndBack : ::testing::TestWithParam<std::string_view> {};

TEST_P(ThereAndBack, APanelFieldsAndImagesAreTheSame) {
    for (unsigned seed = 1; seed <= 16; ++seed) {
        SCOPED_TRACE(seed);
        ProjectBench saver(GetParam());
        Chance(seed).set_everything(saver, seed % 2 == 0);
        const std::string text = saver.save();

        ProjectBench loader(seed % 3 == 0 ? GetParam() : "VKM47H51RB");
        loader.load_bytes(random_bytes(5000, 9));  // nothing of it may be left
        loader.load_data(random_bytes(5000, 8));
        loader.open(text);
        EXPECT_EQ(differences(panel_of(loader.frm), panel_of(saver.frm)), "");
        EXPECT_EQ(differences(items_of(loader.frm), items_of(saver.frm)), "");
        EXPECT_TRUE(loader.frm.images.File_Loaded);
        EXPECT_TRUE(loader.locked());
        EXPECT_TRUE(loader.frm.session.Project_Lock);
        for (const auto image : {&ImageState::AP_Buffer, &ImageState::Data_Buffer}) {
            const Image_Buffer& was = saver.frm.images.*image;
            const Image_Buffer& is = loader.frm.images.*image;
            EXPECT_TRUE(is.Bytes == was.Bytes);
            EXPECT_EQ(is.Has_File, was.Has_File);
            if (!was.Has_File) continue;
            EXPECT_EQ(is.Image_Low, 0);
            EXPECT_EQ(is.Image_High, was.Image_High);
            EXPECT_EQ(is.File_High, was.Image_High);
        }
        EXPECT_EQ(loader.save("/job/again.VKM"), text);
    }
}

INSTANTIATE_TEST_SUITE_P(OfAllFamilies, ThereAndBack, ::testing::ValuesIn(family_models));

TEST(LoadedProject, ChoosesTheModelWhateverItsName) {
    ProjectBench bench;
    int models = 0;
    for (const ModelGroup& group : MCU_AP_ISP_range)
        for (const ModelRow& row : group.rows) {
            SCOPED_TRACE(row.MCU_Name);
            ProjectBench saver(row.MCU_Name);
            saver.load_bytes(Bytes{1});
            bench.open(saver.save());
            EXPECT_EQ(bench.frm.screen.txtDevice.Text, row.MCU_Name);
            EXPECT_EQ(bench.frm.catalogue.MCU_Info.MCU_Name, row.MCU_Name);
            EXPECT_EQ(bench.frm.catalogue.MCU_Info.MCU_ID, saver.frm.catalogue.MCU_Info.MCU_ID);
            EXPECT_EQ(bench.frm.catalogue.Block_Size, group.MCU_Family == 0 ? 128 : 512);
            ++models;
        }
    EXPECT_EQ(models, 154);
    EXPECT_TRUE(bench.take_texts().empty());
}

TEST(LoadedProject, HoldsAsMuchAsTheImagesDo) {
    ProjectBench saver("VKM27J060");
    saver.load_bytes(bytes_without_zero(0x12001));
    saver.load_data(bytes_without_zero(0x8001, 2));
    const std::string text = saver.save();
    ProjectBench loader;
    loader.open(text);
    EXPECT_TRUE(loader.take_texts().empty());
    EXPECT_TRUE(loader.frm.images.AP_Buffer.Bytes == saver.frm.images.AP_Buffer.Bytes);
    EXPECT_TRUE(loader.frm.images.Data_Buffer.Bytes == saver.frm.images.Data_Buffer.Bytes);
    EXPECT_EQ(loader.save(), text);
}

TEST(LoadedProject, ComesWithLineFeedsToo) {
    ProjectBench saver("VKM26H5404");
    saver.load_bytes(bytes_without_zero(100));
    saver.load_data(bytes_without_zero(50, 2));
    const std::string text = saver.save();
    std::string unix_text = text;
    std::erase(unix_text, '\r');
    ProjectBench loader;
    loader.open(unix_text);
    EXPECT_EQ(loader.save(), text);
}

TEST(LoadedProject, IsShownInBothViews) {
    ProjectBench bench;
    bench.open(small_project("VKM26H5404", "", Bytes{0x5A, 0xC3}) +
               data_section(Bytes{0x7E, 0x99}));
    EXPECT_NE(bench.frm.screen.txtBuffer2.Text.find("5A C3"), std::string::npos)
        << bench.frm.screen.txtBuffer2.Text;
    EXPECT_NE(bench.frm.screen.tetDataFlash2.Text.find("7E 99"), std::string::npos)
        << bench.frm.screen.tetDataFlash2.Text;
}

// ---- damaged files -----------------------------------------------------------

struct Before {
    std::string model, frame, device_memory;
    std::int16_t Block_Size;
    Bytes program, data;
    Values items, panel;
    bool operator==(const Before&) const = default;

    static Before of(ProjectBench& bench) {
        frmMain& frm = bench.frm;
        return {frm.catalogue.MCU_Info.MCU_Name,
                frm.screen.Frame7.Caption,
                frm.screen.comLoadDataFile.Enabled ? "on" : "off",
                frm.catalogue.Block_Size,
                frm.images.AP_Buffer.Bytes,
                frm.images.Data_Buffer.Bytes,
                items_of(frm),
                panel_of(frm)};
    }
};

TEST(DamagedProject, CutOffAnywhereNeverGivesOtherBytesThanWereSaved) {
    const Bytes program = bytes_without_zero(20);
    const Bytes data = bytes_without_zero(10, 2);
    for (const bool with_data : {false, true}) {
        ProjectBench saver("VKM26H5404");
        saver.load_bytes(program);
        if (with_data) saver.load_data(data);
        const std::string text = saver.save();
        const std::size_t data_line = text.find("\r\n", text.find("data_buffer_check_sum")) + 2;
        ProjectBench bench("VKM47H58RK");
        for (std::size_t length = 0; length <= text.size(); ++length) {
            SCOPED_TRACE(length);
            comUnlockOptions(bench.frm);
            bench.frm.session.Project_Lock = false;
            ASSERT_TRUE(bench.select_model("VKM47H58RK"));
            bench.frm.images.Data_Buffer.Has_File = false;
            bench.load_bytes(bytes_without_zero(300, 7));
            const Before before = Before::of(bench);
            bench.take_texts();
            bench.open(text.substr(0, length));
            const Texts texts = bench.take_texts();
            const bool whole =
                length >= (with_data ? data_line + 2 * data.size() + 2 : text.size());
            if (bench.frm.catalogue.MCU_Info.MCU_Name == "VKM47H58RK") {
                ASSERT_EQ(texts.size(), length < 4 ? 3u : 2u);
                ASSERT_TRUE(Before::of(bench) == before);
                ASSERT_FALSE(bench.locked());
                continue;
            }
            if (!bench.frm.images.File_Loaded) {
                ASSERT_EQ(texts, (Texts{program_sum_wrong}));
                ASSERT_FALSE(bench.locked());
                ASSERT_FALSE(bench.frm.session.Project_Lock);
                continue;
            }
            ASSERT_EQ(bench.program(), program);
            ASSERT_TRUE(bench.locked());
            ASSERT_EQ(bench.frm.images.Data_Buffer.Has_File, with_data && whole);
            ASSERT_EQ(texts, whole ? Texts{} : Texts{data_sum_wrong});
            if (with_data && whole) {
                ASSERT_EQ(bench.data(), data);
            }
        }
        EXPECT_TRUE(bench.frm.images.File_Loaded);
    }
}

const std::string no_file_to_download = "    Please open file./请打开文件。    ";
const std::string no_file_to_save = "    Please open file./请打开应用文件。    ";

TEST(DamagedProject, OfTheProgramCantBeDownloaded) {
    const std::string good = small_project("VKM26H5404", "", bytes_without_zero(20));
    const std::string last = good.substr(good.size() - 2);
    for (const std::string& text :
         {good.substr(0, good.size() - 2), good + "0", good + "01", good + " 01", good + "G",
          good.substr(0, good.size() - 2) + "0" + last, good.substr(0, good.size() - 1) + "Z",
          with(good, "\r\nEND", "1\r\nEND"), with(good, "buffer_check_sum", "other_key"),
          with(good, "\r\nEND\r\n", "\r\nEND\r\n\r\n"), good.substr(0, good.find("END")),
          good.substr(0, good.find("END") + 5), std::string("VER: 1.1\r\nMCU_Type: VKM26H5404")}) {
        SCOPED_TRACE(text);
        ProjectBench bench;
        bench.load_bytes(bytes_without_zero(30));
        bench.open(text + "\r\n");
        EXPECT_EQ(bench.take_texts(), (Texts{program_sum_wrong}));
        EXPECT_FALSE(bench.frm.images.File_Loaded);
        EXPECT_EQ(bench.frm.session.UI_State, 0);
        EXPECT_FALSE(bench.frm.session.Project_Lock);
        EXPECT_TRUE(bench.frm.screen.txtDevice.Enabled);
        EXPECT_EQ(bench.frm.screen.txtDevice.Text, "VKM26H5404");
        bench.click(bench.frm.screen.comDownload[0]);
        EXPECT_EQ(bench.take_texts(), (Texts{no_file_to_download}));
        EXPECT_EQ(bench.port.opens, 0);
    }
}

// A bench with a project whose program is damaged, and a data file beside it.
struct SpoiltBench : ProjectBench {
    SpoiltBench() {
        open(with(small_project("VKM26H5404", "", Bytes{0x5A, 0xC3}), "5AC3", "5AC4"));
        EXPECT_EQ(take_texts(), (Texts{program_sum_wrong}));
        open_data_file();
    }
    void open_data_file() {
        frm.screen.cheClearDataBuffer.Value = 1;
        files.add("/job/d.bin", Bytes(40, 0x66));
        dialogs.choose_file("/job/d.bin");
        click(frm.screen.comLoadDataFile);
        EXPECT_EQ(data(), Bytes(40, 0x66));
        take_texts();
    }
};

TEST(DamagedProject, OfTheProgramIsNoJobWithADataFileBesideIt) {
    SpoiltBench bench;
    EXPECT_FALSE(bench.frm.images.File_Loaded);
    bench.click(bench.frm.screen.comDownload[0]);
    EXPECT_EQ(bench.take_texts(), (Texts{no_file_to_download}));
    EXPECT_EQ(bench.port.opens, 0);
    EXPECT_EQ(bench.save("/job/again.VKM"), "");
    EXPECT_EQ(bench.take_texts(), (Texts{no_file_to_save}));
}

TEST(DamagedProject, OfTheProgramIsAJobWithAProgramFileInItsPlace) {
    SpoiltBench bench;
    bench.files.add("/job/a.bin", Bytes{7, 8, 9});
    bench.dialogs.choose_file("/job/a.bin");
    bench.click(bench.frm.screen.comLoadFile);
    EXPECT_TRUE(bench.frm.images.File_Loaded);
    bench.open_data_file();
    EXPECT_TRUE(bench.frm.images.File_Loaded);
    EXPECT_EQ(bench.program(), (Bytes{7, 8, 9}));
    EXPECT_NE(bench.save("/job/again.VKM"), "");
    EXPECT_TRUE(bench.take_texts().empty());
}

TEST(DamagedProject, OfTheProgramIsForgottenWithAnotherChoiceOfTheModel) {
    SpoiltBench bench;
    ASSERT_TRUE(choose_key(bench.frm.screen.TreeViewDevice, "VKM26H5404"));
    bench.click(bench.frm.screen.TreeViewDevice);
    bench.open_data_file();
    EXPECT_TRUE(bench.frm.images.File_Loaded);
}

TEST(DamagedProject, OfTheProgramIsForgottenWithAGoodOne) {
    SpoiltBench bench;
    bench.open(small_project("VKM26H5404", "", Bytes{1, 2}));
    bench.click(bench.frm.screen.comUnlockOptions);
    bench.open_data_file();
    EXPECT_TRUE(bench.frm.images.File_Loaded);
}

TEST(DamagedProject, OfTheProgramShowsTheBytesThatItHas) {
    const SpoiltBench bench;
    EXPECT_TRUE(bench.frm.screen.txtBuffer2.Text.starts_with("\r\n\r\n 000000   5A C4 00 "))
        << bench.frm.screen.txtBuffer2.Text;
}

TEST(DamagedProject, OfTheProgramLeavesALockThatStoodBefore) {
    ProjectBench bench;
    bench.open(small_project("VKM26H5404", "", Bytes{1}));
    bench.open(small_project("VKM26H5404", "", Bytes{1}) + "02");
    EXPECT_FALSE(bench.frm.images.File_Loaded);
    EXPECT_TRUE(bench.locked());
}

TEST(DamagedProject, OfTheDataKeepsTheProgramAndIsLocked) {
    const Bytes program = bytes_without_zero(20);
    const std::string good = small_project("VKM26H5404", "Dtat_File_CheckSum: 12\r\n", program);
    const std::string data = data_section(Bytes{1, 2, 3});
    for (const std::string& section :
         {std::string(), std::string("\r\n"), with(data, "010203", "010204"),
          with(data, "010203", "0102030"), with(data, "010203", "01020G"),
          with(data, "010203", "01 0203"), with(data, "010203", ""), with(data, "sum: 6", "sum: 7"),
          with(data, "sum: 6", "sum"), with(data, "\r\nData_File_End\r\n", ""),
          with(data, "\r\nData_File_Begin:", "")}) {
        SCOPED_TRACE(section);
        ProjectBench bench;
        bench.load_data(bytes_without_zero(7));
        bench.open(good + section);
        EXPECT_EQ(bench.take_texts(), (Texts{data_sum_wrong}));
        EXPECT_TRUE(bench.frm.images.File_Loaded);
        EXPECT_EQ(bench.program(), program);
        EXPECT_FALSE(bench.frm.images.Data_Buffer.Has_File);
        EXPECT_TRUE(bench.locked());
        EXPECT_TRUE(bench.frm.session.Project_Lock);
    }
}

TEST(DamagedProject, OfTheDataNamesNoDataFile) {
    const std::string good =
        small_project("VKM26H5404",
                      "File_Name: File Buffer: C:\\x.hex\r\nFile_Check_Sum: 00AB\r\n"
                      "Dtat_File_Name: Data File: C:\\d.bin\r\nDtat_File_CheckSum: 12\r\n",
                      Bytes{1, 2});
    const std::string data = data_section(Bytes{1, 2, 3});
    {
        ProjectBench bench;
        bench.open(good + data);
        EXPECT_EQ(bench.frm.screen.frmDataFlash.Caption, "Data File: C:\\d.bin");
    }
    for (const std::string& section : {std::string(), with(data, "010203", "010204")}) {
        SCOPED_TRACE(section);
        ProjectBench bench;
        bench.load_data(bytes_without_zero(7));
        bench.open(good + section);
        EXPECT_EQ(bench.take_texts(), (Texts{data_sum_wrong}));
        const Screen& s = bench.frm.screen;
        EXPECT_EQ(s.frmDataFlash.Caption, "Data File: ");
        EXPECT_EQ(s.txtDataFileCheckSum.Text, "");
        EXPECT_TRUE(bench.frm.images.Data_Buffer.Bytes == Bytes(0x8001, 0));
        EXPECT_FALSE(bench.frm.images.Data_Buffer.Has_File);
        EXPECT_TRUE(s.tetDataFlash2.Text.starts_with("\r\n\r\n 000000   00 00 00 "));
        // The program is the whole job.
        EXPECT_EQ(s.Frame7.Caption, "File Buffer: C:\\x.hex");
        EXPECT_EQ(s.txtFileCheckSum.Text, "00AB");
        EXPECT_EQ(s.txt_length.Text, "2");
        EXPECT_TRUE(bench.locked());
        EXPECT_TRUE(bench.frm.images.File_Loaded);
        bench.click_stop_in(500);
        bench.click(bench.frm.screen.comDownload[0]);
        EXPECT_GT(bench.port.opens, 0);
        EXPECT_TRUE(bench.take_texts().empty());
    }
}

TEST(DamagedProject, WithMoreBytesThanTheImagesTakeIsOne) {
    ProjectBench bench;
    bench.open(small_project("VKM26H5404", "", Bytes(0x12002, 0)));
    EXPECT_EQ(bench.take_texts(), (Texts{program_sum_wrong}));
    bench.open(small_project("VKM26H5404", "", Bytes{1}) + data_section(Bytes(0x8002, 0)));
    EXPECT_EQ(bench.take_texts(), (Texts{data_sum_wrong}));
}

TEST(DamagedProject, WithoutAHeaderIsAnOldOneOfNoModel) {
    for (const std::string& text :
         {std::string(), std::string("END"), std::string("\x00\xFF\x7F", 3)}) {
        ProjectBench bench;
        bench.load_bytes(bytes_without_zero(30));
        const Before before = Before::of(bench);
        bench.open(text);
        EXPECT_EQ(bench.take_texts(),
                  (Texts{old_version_warning, "找不到 MCU: ", "找不到 MCU 型号: "}));
        EXPECT_TRUE(Before::of(bench) == before);
        EXPECT_TRUE(bench.frm.images.File_Loaded);
        EXPECT_FALSE(bench.locked());
    }
}

TEST(AProject, ThatCantBeOpenedIsToldAndLeavesEverythingAsItWas) {
    for (const bool there : {false, true})
        for (const bool english : {false, true}) {
            ProjectBench bench;
            bench.frm.screen.Show_English = english;
            bench.load_bytes(bytes_without_zero(30));
            if (there)
                bench.files.add(project_path, small_project("VKM26H5404", "", Bytes{1})).readable =
                    false;
            const Before before = Before::of(bench);
            bench.dialogs.choose_file(project_path);
            bench.click(bench.frm.screen.comOpenBatchFile);
            EXPECT_EQ(bench.take_texts(), (Texts{english ? "Can not find the file."
                                                         : "Can not find the file./找不到文件"}));
            EXPECT_TRUE(Before::of(bench) == before);
            EXPECT_TRUE(bench.frm.images.File_Loaded);
            EXPECT_FALSE(bench.locked());
            EXPECT_EQ(bench.files.open_readers, 0);
        }
}

TEST(AProject, ThatIsReadWhileTheWindowClosesChangesNothing) {
    ProjectBench bench;
    bench.load_bytes(bytes_without_zero(30));
    const Before before = Before::of(bench);
    const std::string text = small_project("VKM26H5404", "", bytes_without_zero(70'000));
    bench.at(0, [&] { QueryUnload(bench.frm); });
    bench.open(text);
    EXPECT_TRUE(bench.frm.link.close_pending);
    EXPECT_LT(bench.files.files.at(project_path).bytes_read, text.size());
    EXPECT_TRUE(bench.take_texts().empty());
    EXPECT_TRUE(Before::of(bench) == before);
    EXPECT_TRUE(bench.frm.images.File_Loaded);
    EXPECT_FALSE(bench.locked());
}

TEST(DamagedProject, WhoseDiskBreaksIsCutOffThere) {
    ProjectBench bench;
    const std::string text = small_project("VKM26H5404", "", bytes_without_zero(20));
    bench.files.add(project_path, text).breaks_at = text.size() - 5;
    Open_Project(bench.frm, project_path);
    EXPECT_EQ(bench.take_texts(), (Texts{program_sum_wrong}));
}

TEST(UnknownModel, IsToldTwiceAndLeavesEverythingAsItWas) {
    for (const char* model : {"VKM99X99", "", "vkm26h5404", "VKM26H5404 X"}) {
        ProjectBench bench("VKM47H58RK+");
        bench.load_bytes(bytes_without_zero(30));
        bench.load_data(bytes_without_zero(20, 2));
        bench.frm.screen.Option0[0].Value = 1;
        bench.frm.screen.Option0[1].Value = 0;
        const Before before = Before::of(bench);
        const MCU_Record record = bench.frm.catalogue.MCU_Info;
        bench.open(small_project(model, "File_Name: X\r\n", Bytes{1}));
        EXPECT_EQ(bench.take_texts(), (Texts{"找不到 MCU: " + std::string(model),
                                             "找不到 MCU 型号: " + std::string(model)}));
        EXPECT_TRUE(Before::of(bench) == before);
        EXPECT_EQ(bench.frm.catalogue.Block_Size, 512);
        EXPECT_EQ(bench.frm.catalogue.MCU_Info.ISP_Start, record.ISP_Start);
        EXPECT_EQ(bench.frm.catalogue.MCU_Info.Split_Flag, record.Split_Flag);
        EXPECT_TRUE(bench.frm.images.File_Loaded);
        EXPECT_EQ(bench.frm.session.UI_State, 0);
        EXPECT_FALSE(bench.frm.session.Project_Lock);
        EXPECT_FALSE(bench.frm.session.Running);
    }
}

// ---- values ----------------------------------------------------------------------

TEST(ProjectValue, IsTakenAsTruthOrAsANumber) {
    const struct {
        const char* value;
        int box;
    } cases[] = {{"True", 1}, {"TRUE", 1}, {"true", 1}, {"False", 0}, {"false", 0}, {"1", 1},
                 {"0", 0},    {"-1", 1},   {"2", 1},    {"00", 0},    {"yes", 0},   {"0.0", 0}};
    for (const auto& c : cases) {
        ProjectBench bench;
        bench.frm.screen.cheAuto_Increase.Value = 1 - c.box;
        bench.open(small_project("VKM26H5404",
                                 "Auto_Increase_Enable: " + std::string(c.value) +
                                     "\r\nAuto_Increase_ASCII: " + c.value +
                                     "\r\nInterior_Oscillate: " + c.value + "\r\n",
                                 Bytes{1}));
        const Screen& s = bench.frm.screen;
        EXPECT_EQ(s.cheAuto_Increase.Value, c.box) << c.value;
        // Of a set one is always on.
        EXPECT_EQ(s.optAuto_Increase[2].Value, c.box) << c.value;
        EXPECT_EQ(s.optAuto_Increase[1].Value, 1 - c.box) << c.value;
        EXPECT_EQ(s.Option0[0].Value, c.box) << c.value;
        EXPECT_EQ(s.Option0[1].Value, 1 - c.box) << c.value;
    }
}

TEST(ProjectValue, ThatIsEmptyLeavesItsControlAlone) {
    ProjectBench bench;
    bench.frm.screen.texAuto_Increase[3].Text = "17";
    bench.open(
        small_project("VKM26H5404", "Auto_Increase:   \r\nInterior_Oscillate:\r\n", Bytes{1}));
    EXPECT_EQ(bench.frm.screen.texAuto_Increase[3].Text, "17");
    EXPECT_EQ(bench.frm.screen.Option0[1].Value, 1);
}

TEST(ProjectValue, OfAKeyThatTheFamilyLacksChangesNothing) {
    ProjectBench plain("VKM26H5404"), strange("VKM26H5404");
    plain.open(small_project("VKM26H5404", "", Bytes{1}));
    strange.open(small_project("VKM26H5404",
                               "Double_speed_YES: True\r\nClear_EEPROM_FFH: True\r\nClew: X\r\n"
                               "Clock_Source_Clew: X\r\nNo_Such_Key: True\r\n: True\r\n",
                               Bytes{1}));
    EXPECT_EQ(differences(panel_of(strange.frm), panel_of(plain.frm)), "");
    EXPECT_EQ(differences(items_of(strange.frm), items_of(plain.frm)), "");
}

TEST(ProjectValue, OfAKeyThatStandsTwiceIsTheFirstOne) {
    ProjectBench bench;
    bench.frm.screen.texAuto_Increase[3].Text = "17";
    bench.open(with(small_project("VKM26H5404",
                                  "File_Check_Sum: 00AB\r\nFile_Check_Sum: 00CD\r\n"
                                  "Auto_Increase:\r\nAuto_Increase: 5\r\n"
                                  "Interior_Oscillate: True\r\nExterior_Oscillate: False\r\n"
                                  "Exterior_Oscillate: True\r\nMCU_Type: VKM27J060\r\n"
                                  "WDT_Prescalar: 2\r\nWDT_Prescalar: 4\r\n",
                                  Bytes{1}),
                    "END", "buffer_check_sum: 2\r\nEND"));
    EXPECT_TRUE(bench.take_texts().empty());
    const Screen& s = bench.frm.screen;
    EXPECT_EQ(s.txtDevice.Text, "VKM26H5404");
    EXPECT_EQ(s.txtFileCheckSum.Text, "00AB");
    EXPECT_EQ(s.texAuto_Increase[3].Text, "17");
    EXPECT_EQ(s.Option0[0].Value, 1);
    EXPECT_EQ(s.comWDT_Prescalar.ListIndex, 2);
}

TEST(ProjectValue, OfAPrescalerOutsideTheListChangesNothing) {
    const struct {
        const char* value;
        int index;
    } cases[] = {{"0", 0}, {"7", 7},  {"8", 7}, {"-1", 7}, {"99999999999", 7},
                 {"x", 7}, {"3x", 7}, {"3", 3}, {"1.5", 7}};
    for (const auto& c : cases) {
        ProjectBench bench;
        bench.open(small_project("VKM26H5404", "WDT_Prescalar: " + std::string(c.value) + "\r\n",
                                 Bytes{1}));
        EXPECT_EQ(bench.frm.screen.comWDT_Prescalar.ListIndex, c.index) << c.value;
    }
}

TEST(ProjectValue, OfAPathInAnyLanguageComesBack) {
    for (const char* path : {"D:\\程序\\a.hex", "D:\\𠀀\\é€.hex", "D:\\русский ひらがな.bin"}) {
        ProjectBench saver;
        saver.load_bytes(Bytes{1});
        saver.frm.screen.Frame7.Caption = "File Buffer: " + std::string(path);
        const std::string text = saver.save();
        ProjectBench loader;
        loader.open(text);
        EXPECT_EQ(loader.frm.screen.Frame7.Caption, saver.frm.screen.Frame7.Caption);
    }
}

TEST(ProjectValue, OfTheFileNameAndItsSumIsShown) {
    ProjectBench bench;
    bench.open(small_project(
        "VKM26H5404", "File_Name: File Buffer: C:\\x.hex\r\nFile_Check_Sum: 00AB\r\n", Bytes{1}));
    EXPECT_EQ(bench.frm.screen.Frame7.Caption, "File Buffer: C:\\x.hex");
    EXPECT_EQ(bench.frm.screen.txtFileCheckSum.Text, "00AB");
}

TEST(ProjectValue, OfTheOptionsKeepsTheWatchdogsControlsWithItsChoice) {
    ProjectBench bench;
    bench.open(small_project("VKM26H5404", "Power_On_Run_WDT_YES: True\r\nWDT_Prescalar: 2\r\n",
                             Bytes{1}));
    EXPECT_FALSE(bench.frm.screen.comWDT_Prescalar.Enabled);
    bench.click(bench.frm.screen.comUnlockOptions);
    EXPECT_TRUE(bench.frm.screen.comWDT_Prescalar.Enabled);
    EXPECT_EQ(bench.frm.screen.comWDT_Prescalar.ListIndex, 2);
}

// ---- older files ------------------------------------------------------------------

std::string old_project(const std::string& model, const std::string& lines, const Bytes& program) {
    return "MCU type: " + model + "\r\nfile name: File Buffer: C:\\old.hex\r\n" +
           "File Check Sum(HEX): 77\r\nAuto_Increase_Check: 0\r\nAuto_Increase_Next: 42\r\n" +
           lines + "buffer_check_sum: " + decimal_sum(program) + "\r\nend\r\n" +
           hexadecimal(program) + "\r\n";
}

TEST(OldProjectFile, IsReadWithAWarning) {
    ProjectBench bench("VKM26H2052");
    const Bytes program = bytes_without_zero(20);
    bench.open(old_project("VKM47H58RK", "Option0(0): True\r\nOption0(1): False\r\n", program));
    EXPECT_EQ(bench.take_texts(), (Texts{old_version_warning}));
    EXPECT_EQ(bench.frm.screen.txtDevice.Text, "VKM47H58RK");
    EXPECT_EQ(bench.frm.screen.Frame7.Caption, "File Buffer: C:\\old.hex");
    EXPECT_EQ(bench.frm.screen.txtFileCheckSum.Text, "77");
    EXPECT_EQ(bench.frm.screen.texAuto_Increase[2].Text, "42");
    EXPECT_EQ(bench.frm.screen.Option0[0].Value, 1);
    EXPECT_EQ(bench.program(), program);
    EXPECT_TRUE(bench.locked());
}

TEST(OldProjectFile, OfTheSecondFamilyReadsItsOwnList) {
    // Its second list knows no double speed: "Option0" was the clock source there.
    ProjectBench bench;
    bench.open(old_project("VKM47H58RK+",
                           "Option0(0): True\r\nOption1(0): True\r\nOption1(1): False\r\n"
                           "Option2(1): False\r\nOptionEraseData(0): True\r\n",
                           Bytes{1}));
    EXPECT_EQ(bench.take_texts(), (Texts{old_version_warning}));
    const Screen& s = bench.frm.screen;
    EXPECT_EQ(s.Option0[0].Value, 0);
    EXPECT_EQ(s.Option1[0].Value, 0);
    EXPECT_EQ(s.Option3[0].Value, 1);  // P1.0 and P1.1 have to be 0
    EXPECT_EQ(s.Option3[1].Value, 0);
    EXPECT_EQ(s.Option5[1].Value, 1);  // the data memory stays
}

TEST(OldProjectFile, OfANewerFamilyReadsTheFirstList) {
    ProjectBench bench;
    bench.open(old_project("VKM26H5404",
                           "Option2(0): True\r\nOptionEraseData(1): True\r\n"
                           "WDT_Prescalar: 4\r\n",
                           Bytes{1}));
    const Screen& s = bench.frm.screen;
    EXPECT_EQ(s.Option1[0].Value, 1);  // P1.0 and P1.1 have to be 0
    EXPECT_EQ(s.Option2[1].Value, 1);
    EXPECT_EQ(s.comWDT_Prescalar.ListIndex, 4);
}

TEST(OldProjectFile, OfAnUnknownModelLeavesEverythingAsItWas) {
    ProjectBench bench;
    bench.load_bytes(bytes_without_zero(30));
    const Before before = Before::of(bench);
    bench.open(old_project("X", "", Bytes{1}));
    EXPECT_EQ(bench.take_texts(),
              (Texts{old_version_warning, "找不到 MCU: X", "找不到 MCU 型号: X"}));
    EXPECT_TRUE(Before::of(bench) == before);
}

TEST(OldProjectFile, WithAWrongSumCantBeDownloaded) {
    ProjectBench bench;
    bench.open(with(old_project("VKM26H5404", "", Bytes{1, 2}), "0102", "0103"));
    EXPECT_EQ(bench.take_texts(), (Texts{old_version_warning, program_sum_wrong}));
    EXPECT_FALSE(bench.frm.images.File_Loaded);
}

}  // namespace
}  // namespace vkm::test
