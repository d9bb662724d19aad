#include "simulators/nor_flash.h"

#include <algorithm>

namespace vkm::sim {
namespace {

constexpr std::uint8_t erased = 0xFF;

}  // namespace

NorFlash::NorFlash(std::uint32_t size, std::uint32_t sector)
    : bytes_(size, erased), sector_(sector) {}

bool NorFlash::blank() const {
    return std::all_of(bytes_.begin(), bytes_.end(), [](auto byte) { return byte == erased; });
}

bool NorFlash::holds(std::uint32_t address, std::size_t count) const {
    return address < bytes_.size() && count <= bytes_.size() - address;
}

void NorFlash::erase_below(std::uint32_t end) {
    for (std::uint32_t start = 0; start < std::min(end, size()); start += sector_)
        erase_sector_of(start);
}

void NorFlash::erase_sector_of(std::uint32_t address) {
    if (address >= size()) return;
    const std::uint32_t start = address - address % sector_;
    const std::uint32_t end = std::min(start + sector_, size());
    std::fill(bytes_.begin() + start, bytes_.begin() + end, erased);
}

std::optional<std::uint32_t> NorFlash::program(std::uint32_t address,
                                               std::span<const std::uint8_t> data) {
    std::optional<std::uint32_t> first_wrong;
    for (const std::uint8_t wanted : data) {
        std::uint8_t& cell = bytes_[address];
        cell &= wanted;
        if (cell != wanted && !first_wrong) first_wrong = address;
        ++address;
    }
    return first_wrong;
}

void NorFlash::fill(std::span<const std::uint8_t> bytes) {
    std::copy_n(bytes.begin(), std::min(bytes.size(), bytes_.size()), bytes_.begin());
}

}  // namespace vkm::sim
