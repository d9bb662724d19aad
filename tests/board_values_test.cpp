// The job as the storage of the board, and the frames that carry it: values only.
#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "board/board_frames.h"
#include "board/board_image.h"
#include "board/board_state.h"
#include "board_frames.h"
#include "board_storage.h"
#include "catalogue/model_lookup.h"
#include "catalogue/model_table.h"
#include "image/image_buffer.h"

namespace vkm::test {
namespace {

constexpr std::size_t block_at = 0xEC00;

unsigned value_at(const Bytes& bytes, std::size_t place, int count) {
    unsigned value = 0;
    for (int i = 0; i < count; ++i) value = value << 8 | bytes[place++];
    return value;
}

// ---- the limit ------------------------------------------------------------------------------

// A storage that held something else before.
Bytes used_storage() {
    return Bytes(board_image_size, 0x5A);
}

Bytes with_limit(std::int32_t chips) {
    Bytes storage = used_storage();
    lay_out_limit(storage, chips);
    return storage;
}

Bytes thermometer_of(std::int32_t value) {
    Bytes bytes(static_cast<std::size_t>(value / 8), 0xFF);
    if (value % 8 != 0) bytes.push_back(static_cast<std::uint8_t>(0xFF >> (8 - value % 8)));
    return bytes;
}

TEST(BoardLimit, IsLaidOutInThermometersOfItsTwoParts) {
    for (const std::int32_t chips : {1, 7, 8, 9, 2047, 2048, 2049, 5000, 16384, 999999, 1000000}) {
        const Bytes storage = with_limit(chips);
        Bytes expected(0x1400, 0);  // E000 to F3FF
        const Bytes high = thermometer_of(chips / 2048);
        const Bytes low = thermometer_of(chips % 2048);
        std::copy(high.begin(), high.end(), expected.begin() + 0xD00);
        std::copy(low.begin(), low.end(), expected.begin() + 0xE00);
        EXPECT_TRUE(std::equal(expected.begin(), expected.end(), storage.begin() + 0xE000))
            << chips;
    }
}

TEST(BoardLimit, OfKnownNumbers) {
    const Bytes one = with_limit(1);
    EXPECT_EQ(one[0xEE00], 0x01);
    EXPECT_EQ(one[0xEE01], 0x00);
    EXPECT_EQ(one[0xED00], 0x00);
    const Bytes eight = with_limit(8);
    EXPECT_EQ(eight[0xEE00], 0xFF);
    EXPECT_EQ(eight[0xEE01], 0x00);
    const Bytes many = with_limit(5000);
    EXPECT_EQ(many[0xED00], 0x03);
    EXPECT_EQ(many[0xED01], 0x00);
    EXPECT_EQ(many[0xEE00 + 112], 0xFF);
    EXPECT_EQ(many[0xEE00 + 113], 0x00);
}

TEST(BoardLimit, ClearsTheLayoutAndNothingElse) {
    const Bytes storage = with_limit(1);
    for (std::size_t at = 0; at < storage.size(); ++at) {
        if (at == 0xEE00) continue;
        const int expected = at >= 0x2000 && at < 0xF400 ? 0x00 : 0x5A;
        ASSERT_EQ(storage[at], expected) << std::hex << at;
    }
}

// ---- the numbering ----------------------------------------------------------------------------

struct NumberCase {
    Board_Number number;
    std::vector<int> table;
};

TEST(BoardNumberTable, TellsBothSidesOfABoundary) {
    const NumberCase cases[] = {
        {{true, 0x007E, 4, 1, 0}, {1, 0, 0x00, 0x7E, 2, 0, 0x00, 0x80, 2, 1, 0}},
        {{true, 0x007C, 4, 1, 1}, {1, 0, 0x00, 0x7C, 4, 0, 0x00, 0x7C, 0, 1, 1}},
        {{true, 0x007D, 4, 1, 1}, {1, 0, 0x00, 0x7D, 3, 0, 0x00, 0x80, 1, 1, 1}},
        {{true, 0x007F, 1, 1, 1}, {1, 0, 0x00, 0x7F, 1, 0, 0x00, 0x7F, 0, 1, 1}},
        {{true, 0x0080, 10, 255, 2}, {1, 0, 0x00, 0x80, 10, 0, 0x00, 0x80, 0, 255, 2}},
        {{true, 0x12FF, 8, 7, 2}, {1, 0, 0x12, 0xFF, 1, 0, 0x13, 0x00, 7, 7, 2}},
        {{true, 0xFFFF, 8, 7, 2}, {1, 0, 0xFF, 0xFF, 1, 1, 0x00, 0x00, 7, 7, 2}},
        {{false, 0xFFFF, 1, 1, -1}, {0, 0, 0xFF, 0xFF, 1, 0, 0xFF, 0xFF, 0, 1, 0xFF}},
        {{true, 0x0000, 0, 0, 0}, {1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}},
        {{true, 0x0000, -1, 0, 0}, {1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}},
    };
    for (const auto& [number, expected] : cases) {
        const auto table = number_table(number);
        EXPECT_EQ(std::vector<int>(table.begin(), table.end()), expected)
            << number.address << " " << number.length;
    }
}

TEST(BoardNumberTable, StandsInTheBlockWithTheLimitAndTheAreasOfFF) {
    Bytes storage(board_image_size, 0);
    lay_out_tables(storage, {true, 0x1234, 4, 5, 2}, 1000000);
    Bytes expected(board_image_size, 0);
    const Bytes table = {1, 0x00, 0x12, 0x34, 4, 0x00, 0x12, 0x34, 0, 5, 2};
    std::copy(table.begin(), table.end(), expected.begin() + 0xEC80);
    const Bytes limit = {0x00, 0x0F, 0x42, 0x40};
    std::copy(limit.begin(), limit.end(), expected.begin() + 0xEC90);
    std::fill_n(expected.begin() + 0xED40, 0x20, 0xFF);
    std::fill_n(expected.begin() + 0xF400, 0x200, 0xFF);
    EXPECT_TRUE(storage == expected);
}

// ---- the parameter block ----------------------------------------------------------------

MCU_Record record_of(const ModelGroup& group, const ModelRow& row) {
    MCU_Record record;
    record.MCU_Family = group.MCU_Family;
    record.MCU_ID = row.MCU_ID;
    record.MCU_Name = row.MCU_Name;
    record.AP_End = row.AP_End;
    record.Data_Start = row.Data_Start;
    record.Data_End = row.Data_End;
    record.Code_Top = row.Code_Top;
    record.Memory_Top = row.Memory_Top;
    record.Old_ID = row.Old_ID;
    return record;
}

std::vector<MCU_Record> whole_catalogue() {
    std::vector<MCU_Record> records;
    for (const ModelGroup& group : MCU_AP_ISP_range)
        for (const ModelRow& row : group.rows) records.push_back(record_of(group, row));
    return records;
}

Option_Words some_options() {
    Option_Words words{};
    for (std::size_t i = 0; i < words.size(); ++i) words[i] = static_cast<std::int16_t>(0xA0 + i);
    return words;
}

struct LaidOut {
    MCU_Record model;
    std::optional<MCU_Record> old{};
    std::int32_t Image_High = 0x1000;
    std::int32_t capacity_kb = 255;
    std::string name = "VKM47H58RK+";
    std::int32_t Block_Size = 512;

    Bytes storage() const {
        Bytes bytes(board_image_size, 0);
        lay_out_limit(bytes, 1000);
        lay_out_tables(bytes, {true, 0x007E, 4, 1, 2}, 1000);
        lay_out_parameters(bytes, {.MCU_Info = model,
                                   .Old_Model = old ? &*old : nullptr,
                                   .model_name = name,
                                   .Block_Size = Block_Size,
                                   .Option_Bytes = options,
                                   .Image_High = Image_High,
                                   .Board_Capacity = capacity_kb * 1024});
        return bytes;
    }
    unsigned field(std::size_t place, int count = 3) const {
        return value_at(storage(), block_at + place, count);
    }

    Option_Words options = some_options();
};

// The block written again, field behind field.
class Block {
  public:
    Bytes bytes = Bytes(0x100, 0);

    void at(std::size_t place, std::initializer_list<std::int32_t> values, int size) {
        for (const std::int32_t value : values)
            for (int i = size - 1; i >= 0; --i)
                bytes[place++] = static_cast<std::uint8_t>(static_cast<unsigned>(value) >> 8 * i);
    }
    void range(std::size_t place, std::int32_t first, std::int32_t last, double size) {
        at(place, {first, last}, 3);
        at(place + 6, {static_cast<std::int32_t>(std::nearbyint((last - first + 1) / size))}, 2);
    }
    void id(std::size_t place, const std::string& digits) {
        at(place,
           {std::stoi(digits.substr(0, 2), nullptr, 16),
            std::stoi(digits.substr(digits.size() - 2), nullptr, 16)},
           1);
    }
};

std::int32_t limit_of(int family, std::int32_t kb) {
    const std::int32_t by_family[] = {0xFFFFFF, 0xF800, 0xF400, 0x1400, 0x7000, 0xFFFFFF, 0xF000};
    return std::min(kb * 1024, by_family[family]);
}

Bytes expected_block(const LaidOut& job) {
    const MCU_Record& m = job.model;
    const int family = m.MCU_Family;
    const std::int32_t high = job.Image_High;
    const auto held = [](std::int32_t end) { return std::min(end, 0xF7FF); };
    Block b;
    for (std::size_t i = 0; i < job.name.size() && i < 31; ++i)
        b.bytes[i] = static_cast<std::uint8_t>(job.name[i]);
    b.id(0x20, m.MCU_ID);
    if (job.old) b.id(0x22, m.Old_ID);
    std::fill_n(b.bytes.begin() + 0x30, 0x10, 0xFF);
    if (family == 2) b.at(0x31, {0xA1}, 1);
    if (family >= 3) b.at(0x30, {0xA2, 0xA3, 0xA8, 0xAA, 0xAB}, 1);
    const std::int32_t top = std::min(high + 0x4000, 0xEBFF);
    const bool F0 = m.MCU_ID.substr(0, 2) == "F0";
    b.at(0x40, {0x4000, top, 0, top - 0x4000, 0, F0 ? 0x7BFF : 0xEBFF}, 3);
    b.at(0x58, {0x2000, 0x3FFF, 0xAC00, 0xCBFF}, 3);
    const std::int32_t taken = std::min(high + 1, limit_of(family, job.capacity_kb));
    b.at(0x70, {std::max(taken - 1, 0)}, 3);
    b.at(0x76, {static_cast<std::int32_t>(std::ceil(taken * 1.0 / job.Block_Size))}, 2);
    b.at(0x78, {0xF3}, 1);
    b.at(0x80, {1, 0, 0, 0x7E, 2, 0, 0, 0x80, 2, 1, 2}, 1);
    b.at(0x90, {1000}, 4);
    b.at(0x96, {family == 0 ? 0x80 : 0x200}, 2);
    b.range(0x98, 0, m.AP_End, job.Block_Size);
    if (family == 3) b.range(0xA0, m.AP_End + 1, m.Data_Start - 1, job.Block_Size);
    if (family >= 2) b.range(0xA8, m.Data_Start, m.Data_End, job.Block_Size);
    b.range(0xB0, m.Code_Top, m.Memory_Top, job.Block_Size);
    b.at(0xB8, {0, held(family == 3 ? m.Data_Start - 1 : m.AP_End), held(m.Data_End)}, 3);
    b.at(0xCA, {high, std::max(held(m.Data_Start - 1), high), held(m.Data_End)}, 3);
    if (job.old) {
        b.at(0xC1, {0, held(job.old->AP_End), held(job.old->Data_End)}, 3);
        b.at(0xD3, {high, std::max(held(job.old->Data_Start - 1), high), held(job.old->Data_End)},
             3);
    }
    const unsigned crc = crc_modbus(std::span(b.bytes).first(0xFE));
    b.at(0xFE, {static_cast<int>(crc & 0xFF), static_cast<int>(crc >> 8)}, 1);
    return b.bytes;
}

TEST(BoardParameters, OfEveryModelAndCapacity) {
    const std::vector<MCU_Record> models = whole_catalogue();
    ASSERT_EQ(models.size(), 154U);
    int with_old = 0;
    for (const MCU_Record& model : models)
        for (const std::int32_t kb : {0, 1, 44, 62, 255})
            for (const std::int32_t high : {0, 0x1FF, 0x200, 0x13FF, 0x1400, 0xABFF, 0xAC00, 0xF7FF,
                                            0xF800, 0xFFFF, 0x12000}) {
                LaidOut job{.model = model, .Image_High = high, .capacity_kb = kb};
                job.name = model.MCU_Name;
                job.Block_Size = model.MCU_Family == 0 ? 128 : 512;
                if (!model.Old_ID.empty()) job.old = record_by_code(model.Old_ID);
                with_old += job.old.has_value();
                const Bytes storage = job.storage();
                const Bytes block(storage.begin() + block_at, storage.begin() + block_at + 0x100);
                const Bytes expected = expected_block(job);
                for (std::size_t i = 0; i < block.size(); ++i)
                    ASSERT_EQ(block[i], expected[i])
                        << model.MCU_Name << " " << model.MCU_ID << ", " << kb << " K, " << std::hex
                        << high << ", offset " << i;
            }
    EXPECT_GT(with_old, 0);
}

LaidOut job_of(const std::string& model) {
    return {.model = record_by_name(model).value(), .name = model};
}

TEST(BoardParameters, OfKnownModels) {
    LaidOut job = job_of("VKM47H58RK+");
    job.Image_High = 0x10FF;
    EXPECT_EQ(job.field(0x20, 2), 0xF108U);
    EXPECT_EQ(job.field(0x22, 2), 0U);
    EXPECT_EQ(job.field(0x43), 0x50FFU);
    EXPECT_EQ(job.field(0x4F), 0xEBFFU);
    EXPECT_EQ(job.field(0x70), 0x10FFU);
    EXPECT_EQ(job.field(0x76, 2), 9U);
    EXPECT_EQ(job.field(0x96, 2), 0x200U);
    EXPECT_EQ(job.field(0x98), 0U);
    EXPECT_EQ(job.field(0x9B), 0x7FFFU);
    EXPECT_EQ(job.field(0x9E, 2), 0x40U);
    EXPECT_EQ(job.field(0xCA), 0x10FFU);
    EXPECT_EQ(job.field(0xCD), 0x7FFFU);
    LaidOut small = job_of("VKM47H52RB");
    EXPECT_EQ(small.field(0x4F), 0x7BFFU);
    small.model.MCU_ID = "F0A1";
    EXPECT_EQ(small.field(0x4F), 0x7BFFU);
    EXPECT_EQ(job_of("VKM47W58AD").field(0x20, 2), 0x5858U);
}

TEST(BoardParameters, OfAModelWithoutItsOlderRecordAreThoseOfNone) {
    LaidOut job = job_of("VKM26H5408AD");
    ASSERT_EQ(job.model.Old_ID, "F318");
    EXPECT_EQ(job.field(0x22, 2), 0U);
    for (const std::size_t place : {0xC1, 0xC4, 0xC7, 0xD3, 0xD6, 0xD9})
        EXPECT_EQ(job.field(place), 0U) << place;
    job.old = record_by_code("F318");
    EXPECT_EQ(job.field(0x22, 2), 0xF318U);
    EXPECT_EQ(job.field(0xC4), 0x1FFFU);
    EXPECT_EQ(job.field(0xC7), 0x2FFFU);
}

TEST(BoardParameters, CutTheNameAtThirtyOneCharacters) {
    LaidOut job = job_of("VKM47H58RK+");
    job.name = std::string(40, 'x');
    Bytes storage = job.storage();
    EXPECT_EQ(storage[block_at + 30], 'x');
    EXPECT_EQ(storage[block_at + 31], 0);
    EXPECT_EQ(storage[block_at + 0x20], 0xF1);
    job.name = std::string(31, 'y');
    EXPECT_EQ(job.storage()[block_at + 31], 0);
    job.name = "型号A";
    storage = job.storage();
    EXPECT_EQ(std::string(storage.begin() + block_at, storage.begin() + block_at + 4),
              std::string("??A\0", 4));
}

TEST(BoardParameters, TakeTheCodeUpToTheLimitOfTheBoardAndTheFamily) {
    LaidOut job = job_of("VKM47H516RK+");
    job.capacity_kb = 44;
    job.Image_High = 44 * 1024 - 1;
    EXPECT_EQ(job.field(0x70), 44U * 1024 - 1);
    job.Image_High = 44 * 1024;
    EXPECT_EQ(job.field(0x70), 44U * 1024 - 1);
    EXPECT_EQ(job.field(0x76, 2), 88U);
    job.capacity_kb = 255;
    job.Image_High = 0xF400;
    EXPECT_EQ(job.field(0x70), 0xF3FFU);
    job.capacity_kb = 0;
    EXPECT_EQ(job.field(0x70), 0U);
    EXPECT_EQ(job.field(0x76, 2), 0U);
}

TEST(BoardCodeLimit, IsTheLesserOfBoardAndFamily) {
    EXPECT_EQ(board_code_limit(0, 255 * 1024), 255 * 1024);
    EXPECT_EQ(board_code_limit(1, 255 * 1024), 0xF800);
    EXPECT_EQ(board_code_limit(2, 255 * 1024), 0xF400);
    EXPECT_EQ(board_code_limit(3, 255 * 1024), 0x1400);
    EXPECT_EQ(board_code_limit(4, 255 * 1024), 0x7000);
    EXPECT_EQ(board_code_limit(6, 255 * 1024), 0xF000);
    for (const std::int16_t family : std::vector<std::int16_t>{0, 1, 2, 3, 4, 6}) {
        EXPECT_EQ(board_code_limit(family, 0), 0);
        EXPECT_EQ(board_code_limit(family, 1024), 1024);
    }
}

// ---- the code -----------------------------------------------------------------------------------

TEST(BoardCode, LiesInItsTwoParts) {
    const Bytes code = some_code(ap_buffer_size);
    Bytes storage = used_storage();
    lay_out_code(storage, code);
    Bytes expected = used_storage();
    std::copy_n(code.begin(), 0xAC00, expected.begin() + 0x4000);
    std::copy_n(code.begin() + 0xAC00, 0x2000, expected.begin() + 0x2000);
    EXPECT_TRUE(storage == expected);
}

TEST(BoardCode, HasACrcForEachBlock) {
    const Bytes code = some_code(ap_buffer_size);
    Bytes storage = used_storage();
    Bytes expected = used_storage();
    for (int block = 0; block < code_blocks; ++block) {
        lay_out_code_crc(storage, code, block);
        const auto at = static_cast<std::size_t>(block);
        const unsigned crc = crc_modbus(std::span(code).subspan(at * 128, 128));
        expected[0xF000 + 2 * at] = static_cast<std::uint8_t>(crc);
        expected[0xF001 + 2 * at] = static_cast<std::uint8_t>(crc >> 8);
    }
    EXPECT_EQ(code_blocks, 512);
    EXPECT_TRUE(storage == expected);
}

// ---- frames -------------------------------------------------------------------------------------

TEST(BoardFrames, OfABlock) {
    const Bytes image = some_code(board_image_size);
    for (const std::int32_t address : {0, 0x2000, 0xF780, 0xFF80})
        for (const std::int32_t count : {1, 2, 127, 128})
            for (const bool again : {false, true}) {
                const Bytes data(image.begin() + address, image.begin() + address + count);
                EXPECT_EQ(build_board_block(image, address, count, again),
                          board_block(static_cast<unsigned>(address), data, again ? 0x30 : 0x00));
            }
}

TEST(BoardFrames, OfABlockBeyondTheImageCarryZeros) {
    const Bytes image = {1, 2, 3};
    EXPECT_EQ(build_board_block(image, 2, 4, false), board_block(2, {3, 0, 0, 0}));
}

TEST(BoardFrames, OfARead) {
    for (const unsigned address : {0x0000U, 0x0080U, 0x1280U, 0xFF80U})
        EXPECT_EQ(build_board_read(static_cast<std::int32_t>(address)), board_read(address));
    const Bytes known = {0x46, 0xB9, 0x6A, 0x00, 0x09, 0x53, 0xFF, 0x80};
    const Bytes frame = build_board_read(0xFF80);
    EXPECT_TRUE(std::equal(known.begin(), known.end(), frame.begin()));
    EXPECT_EQ(frame.size(), 11U);
    EXPECT_EQ(frame.back(), 0x16);
}

}  // namespace
}  // namespace vkm::test
