// What the suites of the images share: texts of HEX files, records of models,
// and a world with both images allocated and a model chosen.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "catalogue/mcu_record.h"
#include "catalogue/model_table.h"
#include "support/virtual_world.h"

namespace vkm::test {

// One record with its line end; the checksum is right.
std::string hex_record(std::uint32_t address, std::uint8_t type,
                       const std::vector<std::uint8_t>& data);

// A whole file of 16-byte records and an end record.
std::string hex_file(std::uint32_t start, std::span<const std::uint8_t> data);

// Its checksums are wrong: three lines are shown, then comes the question.
inline constexpr const char* four_bad_lines =
    ":010000000100\n:010001000200\n:010002000300\n:010003000400\n:00000001FF\n";

// A file with one byte of 0x55 at each of these addresses.
std::string hex_file_of_marks(const std::vector<std::uint32_t>& addresses);

// Bytes that are never 0 and differ from neighbour to neighbour.
std::vector<std::uint8_t> pattern(std::size_t count);

// The record of a row with its boot block computed, as a selection would leave it.
MCU_Record record_of(const ModelGroup& group, const ModelRow& row);
// By name; group 4 is not found so.
MCU_Record record_of(std::string_view name);
// The end of the program area as the operator sees it.
std::int32_t shown_end(const MCU_Record& record);

struct ImageWorld : VirtualWorld {
    explicit ImageWorld(std::string_view model = "VKM47H51RB");

    // Both images emptied, as at a choice in the tree.
    void choose_model(std::string_view model);

    Image_Buffer& program() { return frm.images.AP_Buffer; }
    Image_Buffer& data() { return frm.images.Data_Buffer; }

    // Puts the file on the disk and loads it.
    void load(Image_Buffer& buffer, const std::string& path, std::string_view content);
    void load(Image_Buffer& buffer, const std::string& path, std::vector<std::uint8_t> content);

    std::uint8_t at_address(std::size_t address) { return program().Bytes.at(address); }
};

}  // namespace vkm::test
