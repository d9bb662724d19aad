// Flash memory of the NOR kind: an erase sets whole sectors to FF, programming
// turns bits from 1 to 0 and never back.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace vkm::sim {

class NorFlash {
  public:
    NorFlash() = default;
    NorFlash(std::uint32_t size, std::uint32_t sector);

    std::span<const std::uint8_t> bytes() const { return bytes_; }
    std::uint32_t size() const { return static_cast<std::uint32_t>(bytes_.size()); }
    std::uint32_t sector() const { return sector_; }
    bool blank() const;
    bool holds(std::uint32_t address, std::size_t count) const;

    // All sectors that begin below this address.
    void erase_below(std::uint32_t end);
    void erase_sector_of(std::uint32_t address);

    // The first address whose byte is not what was wanted, if there is one. The
    // stretch has to lie inside.
    std::optional<std::uint32_t> program(std::uint32_t address, std::span<const std::uint8_t> data);

    // Sets bytes from address 0 on, whatever they held; surplus bytes are dropped.
    void fill(std::span<const std::uint8_t> bytes);

  private:
    std::vector<std::uint8_t> bytes_;
    std::uint32_t sector_ = 512;
};

}  // namespace vkm::sim
