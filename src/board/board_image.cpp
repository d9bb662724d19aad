#include "board/board_image.h"

#include <algorithm>

#include "link/frames.h"
#include "text/hexadecimal.h"
#include "text/numbers.h"
#include "text/trimming.h"

namespace vkm {
namespace {

// ---- places of the storage -----------------------------------------------------------

constexpr std::size_t second_code = 0x2000;
constexpr std::size_t second_code_size = 0x2000;
constexpr std::size_t first_code = 0x4000;
constexpr std::size_t first_code_size = 0xAC00;
constexpr std::size_t parameters = 0xEC00;
constexpr std::size_t limit_high = 0xED00;  // chips / 2048
constexpr std::size_t behind_limit_high = 0xED40;
constexpr std::size_t behind_limit_high_size = 0x20;
constexpr std::size_t limit_low = 0xEE00;  // the rest
constexpr std::size_t code_crc = 0xF000;
constexpr std::size_t behind_code_crc = 0xF400;
constexpr std::size_t behind_code_crc_size = 0x200;

constexpr std::int32_t chips_per_high_bit = 2048;
constexpr std::int32_t number_boundary = 128;
constexpr std::size_t code_block_size = 128;

// ---- offsets of the parameter block ------------------------------------------------------

enum Offset : std::size_t {
    name_at = 0x00,
    id_at = 0x20,
    old_id_at = 0x22,
    options_at = 0x30,
    first_part_at = 0x40,
    image_top_at = 0x4F,
    second_part_at = 0x58,
    code_last_at = 0x70,
    block_count_at = 0x76,
    mark_at = 0x78,
    number_at = 0x80,
    limit_at = 0x90,
    block_size_at = 0x96,
    program_range_at = 0x98,
    gap_range_at = 0xA0,
    data_range_at = 0xA8,
    boot_range_at = 0xB0,
    ends_at = 0xB8,
    old_ends_at = 0xC1,
    file_ends_at = 0xCA,
    old_file_ends_at = 0xD3,
    crc_at = 0xFE,
};
constexpr std::size_t longest_name = 31;
constexpr std::size_t option_field_size = 0x10;
constexpr std::uint8_t mark = 0xF3;

constexpr std::int32_t last_first_code =
    static_cast<std::int32_t>(first_code + first_code_size) - 1;
constexpr std::int32_t highest_end = 0xF7FF;  // of what the board can erase and program

// Writes one field behind the other.
class Writer {
  public:
    Writer(Board_Storage storage, std::size_t at) : storage_(storage), at_(at) {}

    Writer& byte(std::int32_t value) { return number(value, 1); }
    Writer& word(std::int32_t value) { return number(value, 2); }
    Writer& address(std::int32_t value) { return number(value, 3); }
    Writer& number(std::int32_t value, int bytes) {
        for (int shift = 8 * (bytes - 1); shift >= 0; shift -= 8)
            storage_[at_++] = static_cast<std::uint8_t>(value >> shift & 0xFF);
        return *this;
    }

  private:
    Board_Storage storage_;
    std::size_t at_;
};

Writer parameter(Board_Storage storage, Offset offset) {
    return {storage, parameters + offset};
}

void fill(Board_Storage storage, std::size_t from, std::size_t count, std::uint8_t value) {
    std::ranges::fill(storage.subspan(from, count), value);
}

void thermometer(Board_Storage storage, std::size_t base, std::int32_t value) {
    const auto whole = static_cast<std::size_t>(value / 8);
    fill(storage, base, whole, 0xFF);
    const int rest = value % 8;
    if (rest > 0) storage[base + whole] = static_cast<std::uint8_t>((1 << rest) - 1);
}

// One byte a character; what isn't ASCII has no place there.
void put_name(Board_Storage storage, std::string_view utf8) {
    std::size_t at = parameters + name_at;
    const std::size_t end = at + longest_name;
    for (const char c : utf8) {
        const auto byte = static_cast<std::uint8_t>(c);
        if ((byte & 0xC0) == 0x80) continue;
        if (at == end) return;
        storage[at++] = byte < 0x80 ? byte : '?';
    }
}

// Its first two and its last two digits: a code of two stands there twice.
void put_id(Board_Storage storage, Offset offset, std::string_view id) {
    parameter(storage, offset)
        .byte(static_cast<std::int32_t>(hex_field(first_characters(id, 2), 2)))
        .byte(static_cast<std::int32_t>(hex_field(last_characters(id, 2), 2)));
}

void put_options(Board_Storage storage, std::int16_t family, const Option_Words& words) {
    fill(storage, parameters + options_at, option_field_size, 0xFF);
    Writer out = parameter(storage, options_at);
    if (family == 2) {
        out.byte(0xFF).byte(words[1]);
        return;
    }
    if (family < 3 || family > 6) return;
    for (const std::size_t word : {2u, 3u, 8u, 10u, 11u}) out.byte(words[word]);
}

// Where the two parts of the code lie on the board and in the image.
void put_code_parts(Board_Storage storage, const Board_Job& job) {
    constexpr auto start = static_cast<std::int32_t>(first_code);
    const std::int32_t last = std::min(job.Image_High + start, last_first_code);
    parameter(storage, first_part_at).address(start).address(last).address(0).address(last - start);
    const bool small = job.MCU_Info.MCU_ID.starts_with("F0");
    parameter(storage, image_top_at).address(small ? 0x7BFF : 0xEBFF);
    constexpr auto behind = static_cast<std::int32_t>(first_code_size);
    constexpr auto size = static_cast<std::int32_t>(second_code_size);
    parameter(storage, second_part_at)
        .address(static_cast<std::int32_t>(second_code))
        .address(static_cast<std::int32_t>(second_code) + size - 1)
        .address(behind)
        .address(behind + size - 1);
}

void put_code_size(Board_Storage storage, const Board_Job& job) {
    const std::int32_t limit = board_code_limit(job.MCU_Info.MCU_Family, job.Board_Capacity);
    const std::int32_t size = std::clamp(job.Image_High + 1, 0, std::max(limit, 0));
    parameter(storage, code_last_at).address(std::max(size - 1, 0));
    parameter(storage, block_count_at).word((size + job.Block_Size - 1) / job.Block_Size);
}

void put_range(Board_Storage storage, Offset offset, std::int32_t first, std::int32_t last,
               std::int32_t Block_Size) {
    const std::int32_t blocks = round_half_even(static_cast<double>(last - first + 1) / Block_Size);
    parameter(storage, offset).address(first).address(last).word(blocks);
}

void put_ranges(Board_Storage storage, const Board_Job& job) {
    const MCU_Record& model = job.MCU_Info;
    const auto range = [&](Offset offset, std::int32_t first, std::int32_t last) {
        put_range(storage, offset, first, last, job.Block_Size);
    };
    range(program_range_at, model.AP_Start, model.AP_End);
    if (model.MCU_Family == 3) range(gap_range_at, model.AP_End + 1, model.Data_Start - 1);
    if (model.MCU_Family >= 2) range(data_range_at, model.Data_Start, model.Data_End);
    range(boot_range_at, model.Code_Top, model.Memory_Top);
}

std::int32_t held(std::int32_t end) {
    return std::min(end, highest_end);
}

void put_ends(Board_Storage storage, const Board_Job& job) {
    const MCU_Record& model = job.MCU_Info;
    const std::int32_t program_end = model.MCU_Family == 3 ? model.Data_Start - 1 : model.AP_End;
    parameter(storage, ends_at).address(0).address(held(program_end)).address(held(model.Data_End));
    if (!job.Old_Model) return;
    parameter(storage, old_ends_at)
        .address(0)
        .address(held(job.Old_Model->AP_End))
        .address(held(job.Old_Model->Data_End));
}

// How far the file reaches, the memory behind it, and the data memory.
void put_file_ends(Board_Storage storage, Offset offset, std::int32_t Image_High,
                   const MCU_Record& model) {
    parameter(storage, offset)
        .address(Image_High)
        .address(std::max(held(model.Data_Start - 1), Image_High))
        .address(held(model.Data_End));
}

}  // namespace

void lay_out_limit(Board_Storage storage, std::int32_t chips) {
    fill(storage, second_code, behind_code_crc - second_code, 0);
    thermometer(storage, limit_high, chips / chips_per_high_bit);
    thermometer(storage, limit_low, chips % chips_per_high_bit);
}

std::array<std::uint8_t, number_table_size> number_table(const Board_Number& number) {
    const std::int32_t room = number_boundary - number.address % number_boundary;
    const std::int32_t length = std::clamp(number.length, 0, 0xFF);
    const std::int32_t before = std::min(length, room);
    const bool crosses = length > room;
    std::array<std::uint8_t, number_table_size> table{};
    Writer(table, 0)
        .byte(number.enabled ? 1 : 0)
        .address(number.address)
        .byte(before)
        .address(crosses ? number.address + room : number.address)
        .byte(length - before)
        .byte(number.increment)
        .byte(number.numeral);
    return table;
}

void lay_out_tables(Board_Storage storage, const Board_Number& number, std::int32_t chips) {
    std::ranges::copy(number_table(number), storage.subspan(parameters + number_at).begin());
    parameter(storage, limit_at).number(chips, 4);
    fill(storage, behind_limit_high, behind_limit_high_size, 0xFF);
    fill(storage, behind_code_crc, behind_code_crc_size, 0xFF);
}

std::int32_t board_code_limit(std::int16_t MCU_Family, std::int32_t Board_Capacity) {
    switch (MCU_Family) {
        case 1:
            return std::min(Board_Capacity, 0xF800);
        case 2:
            return std::min(Board_Capacity, 0xF400);
        case 3:
            return std::min(Board_Capacity, 0x1400);
        case 4:
            return std::min(Board_Capacity, 0x7000);
        case 6:
            return std::min(Board_Capacity, 0xF000);
        default:
            return Board_Capacity;
    }
}

void lay_out_parameters(Board_Storage storage, const Board_Job& job) {
    const MCU_Record& model = job.MCU_Info;
    put_name(storage, job.model_name);
    put_id(storage, id_at, model.MCU_ID);
    if (job.Old_Model) put_id(storage, old_id_at, model.Old_ID);
    put_options(storage, model.MCU_Family, job.Option_Bytes);
    put_code_parts(storage, job);
    put_code_size(storage, job);
    parameter(storage, mark_at).byte(mark);
    parameter(storage, block_size_at).word(model.MCU_Family == 0 ? 0x0080 : 0x0200);
    put_ranges(storage, job);
    put_ends(storage, job);
    put_file_ends(storage, file_ends_at, job.Image_High, model);
    if (job.Old_Model) put_file_ends(storage, old_file_ends_at, job.Image_High, *job.Old_Model);
    const auto crc = crc16(storage.subspan(parameters, crc_at));
    parameter(storage, crc_at).byte(crc[0]).byte(crc[1]);
}

void lay_out_code_crc(Board_Storage storage, std::span<const std::uint8_t> AP_Bytes, int block) {
    const auto number = static_cast<std::size_t>(block);
    const auto crc = crc16(AP_Bytes.subspan(number * code_block_size, code_block_size));
    Writer(storage, code_crc + 2 * number).byte(crc[0]).byte(crc[1]);
}

void lay_out_code(Board_Storage storage, std::span<const std::uint8_t> AP_Bytes) {
    std::ranges::copy(AP_Bytes.first(first_code_size), storage.subspan(first_code).begin());
    std::ranges::copy(AP_Bytes.subspan(first_code_size, second_code_size),
                      storage.subspan(second_code).begin());
}

}  // namespace vkm
