#include "support/virtual_bench.h"

#include <algorithm>

namespace vkm::test {
namespace {

void fill_image(frmMain& frm, Image_Buffer& image, std::string_view name, std::size_t size,
                std::span<const std::uint8_t> bytes, std::int32_t address) {
    if (image.Bytes.size() != size) image.Bytes.assign(size, 0);
    image.Buffer_Name = name;
    const auto place = static_cast<std::size_t>(address);
    const std::size_t count = std::min(bytes.size(), size - std::min(place, size));
    std::copy_n(bytes.begin(), count, image.Bytes.begin() + static_cast<std::ptrdiff_t>(place));
    const auto last = static_cast<std::int32_t>(place + count) - 1;
    image.File_Low = address;
    image.File_High = last;
    image.Image_Low = image.Has_File ? std::min(image.Image_Low, address) : address;
    image.Image_High = image.Has_File ? std::max(image.Image_High, last) : last;
    image.Start_Add = address;
    image.Sum = 0;
    for (const std::uint8_t byte : bytes.first(count)) image.Sum += byte;
    image.Has_File = true;
    frm.images.File_Loaded = true;
}

}  // namespace

VirtualBench::VirtualBench(const sim::ChipConfig& config,
                           const std::function<void(VirtualBench&)>& prepare)
    : chip(config) {
    line.connect(chip.target());
    if (prepare) prepare(*this);
    start_program(frm);
}

bool VirtualBench::select_model(const std::string& name) {
    return choose_model(frm, name);
}

void VirtualBench::load_bytes(std::span<const std::uint8_t> bytes, std::int32_t address) {
    fill_image(frm, frm.images.AP_Buffer, "AP_FILE", ap_buffer_size, bytes, address);
}

void VirtualBench::load_data_bytes(std::span<const std::uint8_t> bytes, std::int32_t address) {
    fill_image(frm, frm.images.Data_Buffer, "Data_File", data_buffer_size, bytes, address);
}

int VirtualBench::heard(sim::FrameKind kind) const {
    int count = 0;
    for (const sim::LoggedFrame& frame : chip.log())
        count += !frame.from_chip && frame.kind == kind;
    return count;
}

std::vector<std::uint8_t> VirtualBench::last_heard(sim::FrameKind kind) const {
    std::vector<std::uint8_t> bytes;
    for (const sim::LoggedFrame& frame : chip.log())
        if (!frame.from_chip && frame.kind == kind) bytes = frame.bytes;
    return bytes;
}

bool VirtualBench::flash_holds(std::span<const std::uint8_t> bytes, std::size_t address) const {
    const auto flash = chip.flash();
    return address + bytes.size() <= flash.size() &&
           std::equal(bytes.begin(), bytes.end(),
                      flash.begin() + static_cast<std::ptrdiff_t>(address));
}

std::string VirtualBench::story() const {
    std::string text = log();
    for (const std::string& fault : chip.faults()) text += "\nchip: " + fault;
    return text;
}

}  // namespace vkm::test
