#include "image_world.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "catalogue/mcu_catalogue.h"
#include "catalogue/memory_ranges.h"
#include "image/image_files.h"
#include "text/hexadecimal.h"

namespace vkm::test {

std::string hex_record(std::uint32_t address, std::uint8_t type,
                       const std::vector<std::uint8_t>& data) {
    std::vector<std::uint8_t> fields = {static_cast<std::uint8_t>(data.size()),
                                        static_cast<std::uint8_t>(address >> 8),
                                        static_cast<std::uint8_t>(address), type};
    fields.insert(fields.end(), data.begin(), data.end());
    std::string line = ":";
    unsigned sum = 0;
    for (std::uint8_t field : fields) {
        line += hex_text(field, 2);
        sum += field;
    }
    return line + hex_text((256 - sum % 256) % 256, 2) + "\r\n";
}

std::string hex_file(std::uint32_t start, std::span<const std::uint8_t> data) {
    std::string text;
    for (std::size_t at = 0; at < data.size(); at += 16) {
        const auto piece = data.subspan(at, std::min<std::size_t>(16, data.size() - at));
        text += hex_record(start + static_cast<std::uint32_t>(at), 0,
                           std::vector<std::uint8_t>(piece.begin(), piece.end()));
    }
    return text + ":00000001FF\r\n";
}

std::string hex_file_of_marks(const std::vector<std::uint32_t>& addresses) {
    std::string text;
    for (std::uint32_t address : addresses) text += hex_record(address, 0, {0x55});
    return text + ":00000001FF\r\n";
}

std::vector<std::uint8_t> pattern(std::size_t count) {
    std::vector<std::uint8_t> bytes(count);
    for (std::size_t i = 0; i < count; ++i) bytes[i] = static_cast<std::uint8_t>(1 + i * 7 % 251);
    return bytes;
}

MCU_Record record_of(const ModelGroup& group, const ModelRow& row) {
    MCU_Record record;
    record.MCU_Family = group.MCU_Family;
    record.MCU_ID = row.MCU_ID;
    record.AP_End = row.AP_End;
    record.Data_Start = row.Data_Start;
    record.Data_End = row.Data_End;
    record.Code_Top = row.Code_Top;
    record.Memory_Top = row.Memory_Top;
    record.Split_Flag = row.Split_Flag;
    record.MCU_Name = row.MCU_Name;
    record.ISP_Start = isp_range(record, record.MCU_Name).ISP_Start;
    return record;
}

MCU_Record record_of(std::string_view name) {
    for (int group = 0; group < group_count; ++group) {
        if (group == older_54xx_group) continue;
        for (const ModelRow& row : MCU_AP_ISP_range[static_cast<std::size_t>(group)].rows)
            if (row.MCU_Name == name)
                return record_of(MCU_AP_ISP_range[static_cast<std::size_t>(group)], row);
    }
    ADD_FAILURE() << "no model " << name;
    return {};
}

std::int32_t shown_end(const MCU_Record& record) {
    return isp_range(record, record.MCU_Name).shown_end;
}

ImageWorld::ImageWorld(std::string_view model) {
    Allocate_Buffers(frm);
    choose_model(model);
}

void ImageWorld::choose_model(std::string_view model) {
    frm.screen.txtDevice.Text = model;
    frm.catalogue.MCU_Info = record_of(model);
    Show_ISP_Range(frm);
    Reset_Buffer(frm, 0, program());
    Reset_Buffer(frm, 0, data());
}

void ImageWorld::load(Image_Buffer& buffer, const std::string& path, std::string_view content) {
    files.add(path, content);
    Load_File(frm, path, buffer);
}

void ImageWorld::load(Image_Buffer& buffer, const std::string& path,
                      std::vector<std::uint8_t> content) {
    files.add(path, std::move(content));
    Load_File(frm, path, buffer);
}

}  // namespace vkm::test
