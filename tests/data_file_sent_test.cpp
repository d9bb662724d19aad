// Whether the bytes of a data file are among those that a job sends, and the line
// that tells when they aren't.
#include "project_bench.h"

#include "catalogue/model_lookup.h"
#include "catalogue/model_table.h"
#include "session/program_ranges.h"

namespace vkm::test {
namespace {

// ---- against the bytes that are sent ------------------------------------------

std::int32_t last_sent(std::int32_t last, std::int32_t Block_Size) {
    return blocks_between(0, programmed_end(last, Block_Size), Block_Size).back().last;
}

Data_File_Sent counted(const MCU_Record& model, const Image_Buffer& program,
                       const Image_Buffer& data) {
    const Joined_Image joined = join_images(model, program, data);
    const std::int32_t last = last_sent(joined.range.last, 512);
    const auto& bytes = joined.T100_Buffer.Bytes;
    std::int32_t sent = 0;
    const std::int32_t count = data.Image_High + 1;
    for (std::int32_t i = 0; i < count; ++i) {
        const std::int32_t address = model.Data_Start + i;
        if (address > last || static_cast<std::size_t>(address) >= bytes.size()) break;
        sent += bytes[static_cast<std::size_t>(address)] == data.Bytes[static_cast<std::size_t>(i)];
    }
    if (sent == count) return Data_File_Sent::whole;
    return sent == 0 ? Data_File_Sent::no : Data_File_Sent::in_part;
}

TEST(DataFileSent, OfEveryModelWithAJoinedImageIsWhatItsBlocksHold) {
    Image_Buffer program;
    program.Bytes.assign(ap_buffer_size, 0);  // no byte of a data file
    program.Image_High = 99;
    Image_Buffer data;
    data.Bytes = bytes_without_zero(data_buffer_size);
    data.Has_File = true;
    std::map<Data_File_Sent, int> seen;
    for (const ModelGroup& group : MCU_AP_ISP_range) {
        if (group.MCU_Family != 3 && group.MCU_Family != 4) continue;
        for (const ModelRow& row : group.rows) {
            const auto model = record_by_code(row.MCU_ID);
            if (!model || row.MCU_Name.empty()) continue;
            const std::int32_t gap = model->Data_Start - model->AP_End;
            for (const std::int32_t size : {2, 3, 100, 511, 512, 513, 1024, gap - 1, gap, gap + 1,
                                            gap + 512, gap + 513, gap + 1024, 0x8001}) {
                if (size < 2 || size > 0x8001) continue;
                data.Image_High = size - 1;
                const Data_File_Sent answer = data_file_sent(*model, data, 512);
                ASSERT_EQ(static_cast<int>(answer),
                          static_cast<int>(counted(*model, program, data)))
                    << row.MCU_Name << " " << size;
                ++seen[answer];
            }
        }
    }
    for (const auto answer : {Data_File_Sent::whole, Data_File_Sent::in_part, Data_File_Sent::no})
        EXPECT_GT(seen[answer], 0);
}

TEST(DataFileSent, OfOneByteCountsAsNone) {
    Image_Buffer data;
    data.Bytes.assign(data_buffer_size, 1);
    data.Has_File = true;
    data.Image_High = 0;
    EXPECT_EQ(data_file_sent(*record_by_name("VKM26H5404"), data, 512), Data_File_Sent::no);
}

TEST(DataFileSent, MissesNothingWithoutADataFile) {
    Image_Buffer data;
    data.Image_High = 0x3FF;
    for (const std::string_view model : family_models)
        EXPECT_EQ(data_file_sent(*record_by_name(model), data, 512), Data_File_Sent::whole)
            << model;
}

TEST(DataFileSent, IsNoneInTheFamiliesWithoutAJoinedImage) {
    Image_Buffer data;
    data.Bytes.assign(data_buffer_size, 1);
    data.Has_File = true;
    data.Image_High = 99;
    for (const std::string_view model : {"VKM47H58RK", "VKM47W58AD", "VKM47H58RK+", "VKM27J060"})
        EXPECT_EQ(data_file_sent(*record_by_name(model), data, 512), Data_File_Sent::no) << model;
}

// ---- what the operator reads ----------------------------------------------------

struct Job {
    const char* model;
    std::size_t data;  // bytes of the data file; 0: none
    const char* line;
    const char* line_in_english;
};

const char* const no_line = "";
const char* const not_sent = "\r\nThe data file was not sent. / 数据文件未下载。";
const char* const not_sent_in_english = "\r\nThe data file was not sent.";
const char* const cut = "\r\nThe data file was not wholly sent. / 数据文件未全部下载。";
const char* const cut_in_english = "\r\nThe data file was not wholly sent.";

const std::vector<Job> jobs = {
    {"VKM47H58RK", 0, no_line, no_line},
    {"VKM47H58RK", 100, not_sent, not_sent_in_english},
    {"VKM47W58AD", 100, not_sent, not_sent_in_english},
    {"VKM47H58RK+", 0, no_line, no_line},
    {"VKM47H58RK+", 100, not_sent, not_sent_in_english},
    {"VKM27J060", 100, not_sent, not_sent_in_english},
    {"VKM26H5404", 0, no_line, no_line},
    {"VKM26H5404", 1, not_sent, not_sent_in_english},
    {"VKM26H5404", 300, no_line, no_line},
    // Between its program area and its data memory there is a gap.
    {"VKM26H2052", 100, not_sent, not_sent_in_english},
    {"VKM26H3052", 1024, not_sent, not_sent_in_english},
    {"VKM26H3052", 1100, cut, cut_in_english},
    {"VKM26H4052", 1024, no_line, no_line},
};

TEST(DataFileLine, StandsBehindTheResultAndTellsTheTruth) {
    for (const Job& job : jobs)
        for (const bool english : {false, true}) {
            SCOPED_TRACE(std::string(job.model) + " " + std::to_string(job.data));
            ProjectBench bench(job.model, {.model = job.model});
            bench.frm.screen.Show_English = english;
            bench.load(500);
            const Bytes data = bytes_without_zero(job.data, 5);
            if (job.data > 0) bench.load_data(data);
            comDownload(bench.frm, 0);
            ASSERT_EQ(bench.frm.session.Result, Job_Result::done) << bench.story();
            EXPECT_TRUE(ends_with(
                bench.log(), english
                                 ? std::string("\r\nHave already encrypt.") + job.line_in_english
                                 : std::string("\r\nHave already encrypt. / 已加密") + job.line))
                << bench.story();
            if (job.data > 1 && std::string(job.line) == no_line) {
                const auto start =
                    static_cast<std::size_t>(bench.frm.catalogue.MCU_Info.Data_Start);
                EXPECT_TRUE(bench.flash_holds(data, start));
            }
        }
}

}  // namespace
}  // namespace vkm::test
