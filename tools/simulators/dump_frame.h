// Frames in which a stopped target tells its state: the mark A5 5A, then AA, the
// length, the type, an address, what the debug agent has saved of the interrupted
// program, a piece of memory and the sum.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace vkm::sim {

enum class Memory { sfr, ram, xram };

// The interrupted program's view of its chip.
class CpuState {
  public:
    CpuState();  // as after a reset

    // 80 to FF for sfr, 00 to FF for ram, 0000 to FFFF for xram. False, and
    // nothing set, beyond that; 0 is read there.
    bool set(Memory memory, unsigned address, std::uint8_t value);
    std::uint8_t get(Memory memory, unsigned address) const;

    // R0 and R1 of register bank 0.
    std::uint8_t r0() const { return ram_[0]; }
    std::uint8_t r1() const { return ram_[1]; }

  private:
    std::array<std::uint8_t, 128> sfr_{};
    std::array<std::uint8_t, 256> ram_{};
    std::vector<std::uint8_t> xram_;
};

enum class DumpType : std::uint8_t { registers = 0, ram = 1, xram = 2, window = 3 };

struct Dump {
    DumpType type = DumpType::registers;
    std::uint16_t address = 0x80;  // registers: the first; window: any address in it
    std::size_t size = 128;        // bytes of memory in the frame
};

Dump registers_dump();
Dump ram_dump();
Dump xram_dump(std::size_t size);         // from address 0, at most 1024 bytes
Dump window_dump(std::uint16_t address);  // the 512 bytes in which that address lies

// The frame without the mark, from its AA through its sum.
std::vector<std::uint8_t> dump_frame(const CpuState& state, const Dump& dump);

// Sets the sum of a frame whose other bytes were changed.
void renew_sum(std::vector<std::uint8_t>& frame);

}  // namespace vkm::sim
