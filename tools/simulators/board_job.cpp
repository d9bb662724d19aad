#include "simulators/board_job.h"

#include <algorithm>
#include <cstdio>

#include "catalogue/model_lookup.h"
#include "simulators/byte_values.h"

namespace vkm::sim {
namespace {

using Bytes = std::vector<std::uint8_t>;
using Storage = std::span<const std::uint8_t>;

constexpr std::size_t parameters = 0xEC00;
constexpr std::size_t parameter_count = 0x100;
constexpr std::size_t high_counter = 0xED00;  // of 2048 chips each
constexpr std::size_t low_counter = 0xEE00;
constexpr std::size_t counter_bytes = 0x100;
constexpr std::uint32_t chips_per_high = 2048;
constexpr std::size_t crc_table = 0xF000;
constexpr std::uint32_t crc_block = 128;
constexpr std::uint8_t blank = 0xFF;

// Places in the parameter block.
constexpr std::size_t model_name = 0x00;
constexpr std::size_t model_name_length = 31;
constexpr std::size_t chip_id = 0x20;
constexpr std::size_t old_chip_id = 0x22;
constexpr std::size_t options = 0x30;
constexpr std::size_t first_part = 0x40;   // board address of image address 0
constexpr std::size_t second_part = 0x58;  // and of second_part_image
constexpr std::size_t second_part_last = 0x5B;
constexpr std::size_t second_part_image = 0x5E;
constexpr std::size_t second_part_image_last = 0x61;
constexpr std::size_t last_to_program = 0x70;
constexpr std::size_t number_table = 0x80;
constexpr std::size_t limit = 0x90;
constexpr std::size_t block_size = 0x96;
constexpr std::size_t data_end = 0xD0;
constexpr std::size_t crc_place = 0xFE;

std::uint32_t field(Storage block, std::size_t place, std::size_t count) {
    return big_endian(block.subspan(place, count));
}

std::uint16_t low_first(Storage bytes) {
    return static_cast<std::uint16_t>(bytes[0] | bytes[1] << 8);
}

// Up to its end mark, without blanks behind it.
std::string text_of(Storage bytes) {
    std::string text;
    for (const std::uint8_t byte : bytes) {
        if (byte == 0 || byte == blank) break;
        text += static_cast<char>(byte);
    }
    while (text.ends_with(' ')) text.pop_back();
    return text;
}

// Bits from the first on that are set.
std::uint32_t counted(Storage counter) {
    std::uint32_t count = 0;
    for (const std::uint8_t byte : counter) {
        for (std::uint8_t rest = byte; (rest & 1) != 0; rest >>= 1) ++count;
        if (byte != blank) break;
    }
    return count;
}

void set_counter(std::span<std::uint8_t> counter, std::uint32_t value) {
    std::fill(counter.begin(), counter.end(), 0);
    std::fill_n(counter.begin(), value / 8, blank);
    if (value % 8 != 0) counter[value / 8] = static_cast<std::uint8_t>((1U << value % 8) - 1);
}

// Where the byte of this image address stands; nothing when the board has no room for it.
std::optional<std::size_t> place_of(Storage block, std::uint32_t address) {
    const std::uint32_t second = field(block, second_part_image, 3);
    std::uint32_t place = field(block, first_part, 3) + address;
    if (address >= second) {
        if (address > field(block, second_part_image_last, 3)) return std::nullopt;
        place = field(block, second_part, 3) + (address - second);
        if (place > field(block, second_part_last, 3)) return std::nullopt;
    }
    if (place >= parameters) return std::nullopt;
    return place;
}

std::string at(std::uint32_t address) {
    char text[16];
    std::snprintf(text, sizeof text, " at %04X", address);
    return text;
}

// In whole blocks of the table; empty when it has no room in the storage.
Bytes stored_code(Storage storage, Storage block, std::uint32_t last) {
    Bytes code;
    for (std::uint32_t address = 0; address <= (last | (crc_block - 1)); ++address) {
        const auto place = place_of(block, address);
        if (!place) return {};
        code.push_back(storage[*place]);
    }
    return code;
}

bool second_part_is_blank(Storage storage, Storage block) {
    const std::uint32_t first = field(block, second_part, 3);
    const std::uint32_t last = std::min(field(block, second_part_last, 3), 0xFFFFU);
    if (first > last) return true;
    const Storage part = storage.subspan(first, last - first + 1);
    return std::all_of(part.begin(), part.end(), [](std::uint8_t byte) { return byte == blank; });
}

std::string problem_of_code(Storage storage, Storage block, Storage code) {
    for (std::uint32_t address = 0; address < code.size(); address += crc_block) {
        const std::size_t place = crc_table + address / crc_block * 2;
        if (crc_of(code.subspan(address, crc_block)) == low_first(storage.subspan(place, 2)))
            continue;
        if (address >= field(block, second_part_image, 3) && second_part_is_blank(storage, block))
            return "the second part of the code was never loaded";
        return "the CRC of the code is wrong" + at(address);
    }
    return {};
}

// A number that crosses a boundary of 128 bytes is told in two stretches.
BoardNumber number_of(Storage table) {
    BoardNumber number;
    number.enabled = table[0] != 0 && table[0] != blank;
    number.address = field(table, 1, 3);
    const bool crosses = field(table, 5, 3) != number.address;
    number.length = table[4] + (crosses ? table[8] : 0U);
    number.increment = table[9];
    number.numeral = static_cast<BoardNumber::Numeral>(table[10]);
    return number;
}

std::string problem_of(const BoardNumber& number, std::size_t code_size) {
    if (!number.enabled) return {};
    if (number.numeral > BoardNumber::Numeral::ascii) return "there is no such numeral";
    if (number.length == 0 || number.address + number.length > code_size)
        return "the number stands outside the code";
    return {};
}

// Adds to one digit or byte; what is left over for the next.
unsigned add(std::uint8_t& byte, BoardNumber::Numeral numeral, unsigned more) {
    switch (numeral) {
        case BoardNumber::Numeral::hexadecimal: {
            const unsigned sum = byte + more;
            byte = static_cast<std::uint8_t>(sum);
            return sum / 256;
        }
        case BoardNumber::Numeral::packed: {
            const unsigned sum = (byte >> 4) * 10U + (byte & 0x0F) + more;
            byte = static_cast<std::uint8_t>(sum / 10 % 10 << 4 | sum % 10);
            return sum / 100;
        }
        default: {
            const unsigned sum = (byte & 0x0F) + more;
            byte = static_cast<std::uint8_t>('0' + sum % 10);
            return sum / 10;
        }
    }
}

}  // namespace

BoardJobRead read_board_job(Storage storage) {
    BoardJobRead read;
    BoardJob& job = read.job;
    const auto refuse = [&read](std::string problem) {
        read.problem = std::move(problem);
        return read;
    };
    const Storage block = storage.subspan(parameters, parameter_count);
    if (crc_of(block.first(crc_place)) != low_first(block.subspan(crc_place)))
        return refuse("the CRC of the parameters is wrong");

    job.model = text_of(block.subspan(model_name, model_name_length));
    const auto record = record_by_name(job.model);
    if (!record || record->MCU_Name.empty()) return refuse("there is no chip " + job.model);
    job.family = record->MCU_Family;
    std::copy_n(block.begin() + chip_id, job.id.size(), job.id.begin());
    std::copy_n(block.begin() + old_chip_id, job.old_id.size(), job.old_id.begin());
    std::copy_n(block.begin() + options, job.options.size(), job.options.begin());
    job.block_size = field(block, block_size, 2);
    if (job.block_size != 128 && job.block_size != 512)
        return refuse("there is no such block size");
    job.data_end = field(block, data_end, 3);

    const std::uint32_t last = field(block, last_to_program, 3);
    if (last <= 0xFFFF) job.code = stored_code(storage, block, last);
    if (job.code.empty()) return refuse("the code doesn't fit the board");
    if (auto problem = problem_of_code(storage, block, job.code); !problem.empty())
        return refuse(std::move(problem));
    job.code.resize(last + 1);

    job.number = number_of(block.subspan(number_table, 11));
    if (auto problem = problem_of(job.number, job.code.size()); !problem.empty())
        return refuse(std::move(problem));

    job.chips_left = chips_left(storage);
    const std::uint32_t allowed = field(block, limit, 4);
    if (job.chips_left > allowed) return refuse("more chips are left than were allowed");
    if (job.chips_left == 0) return refuse("the production limit is used up");
    job.chips_done = allowed - job.chips_left;
    return read;
}

Bytes code_of_next_chip(const BoardJob& job) {
    Bytes code = job.code;
    if (!job.number.enabled) return code;
    for (std::uint32_t chip = 0; chip < job.chips_done; ++chip) {
        unsigned more = job.number.increment;
        for (std::uint32_t i = job.number.length; i > 0 && more > 0; --i)
            more = add(code[job.number.address + i - 1], job.number.numeral, more);
    }
    return code;
}

std::uint32_t chips_left(Storage storage) {
    return counted(storage.subspan(high_counter, counter_bytes)) * chips_per_high +
           counted(storage.subspan(low_counter, counter_bytes));
}

bool count_chip(std::span<std::uint8_t> storage) {
    const auto high = storage.subspan(high_counter, counter_bytes);
    const auto low = storage.subspan(low_counter, counter_bytes);
    const std::uint32_t left = chips_left(storage);
    if (left == 0) return false;
    set_counter(high, (left - 1) / chips_per_high);
    set_counter(low, (left - 1) % chips_per_high);
    return true;
}

}  // namespace vkm::sim
