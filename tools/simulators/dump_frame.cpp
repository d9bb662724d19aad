#include "simulators/dump_frame.h"

#include <algorithm>
#include <span>

#include "simulators/byte_values.h"

namespace vkm::sim {
namespace {

constexpr unsigned first_sfr = 0x80;
constexpr std::size_t xram_size = 0x10000;
constexpr std::size_t window_size = 512;
constexpr std::size_t longest_xram_dump = 1024;

// What stands in a frame before and behind the memory.
constexpr std::size_t head = 16;
constexpr std::size_t around_memory = head + 1;

namespace sfr {
constexpr unsigned SP = 0x81, TCON = 0x88, IE = 0xA8, T2CON = 0xC8, PSW = 0xD0, CCON = 0xD8,
                   ACC = 0xE0;
}

// The agent needs these for itself: it works with the accumulator and the flags,
// its call and pushes lie on the stack, it keeps interrupts off and the counters
// still. So what it finds there when it sends is its own.
std::uint8_t as_the_agent_leaves_it(unsigned address, std::uint8_t value) {
    switch (address) {
        case sfr::ACC:
            return static_cast<std::uint8_t>(address);  // the byte that it has just sent
        case sfr::PSW:
            return 0x80;
        case sfr::SP:
            return static_cast<std::uint8_t>(value + 9);
        case sfr::IE:
            return value & 0x7F;
        case sfr::TCON:
            return value & static_cast<std::uint8_t>(~0x50);
        case sfr::T2CON:
            return value & static_cast<std::uint8_t>(~0x04);
        case sfr::CCON:
            return value & static_cast<std::uint8_t>(~0x40);
        default:
            return value;
    }
}

std::uint8_t cell_in_frame(const CpuState& state, const Dump& dump, std::size_t i) {
    switch (dump.type) {
        case DumpType::registers: {
            const auto address = static_cast<unsigned>(dump.address + i);
            return as_the_agent_leaves_it(address, state.get(Memory::sfr, address));
        }
        case DumpType::ram:
            // R0 points to the cell that the agent sends, R1 counts those to come.
            if (i == 0) return 0;
            if (i == 1) return static_cast<std::uint8_t>(dump.size - 1);
            return state.get(Memory::ram, static_cast<unsigned>(i));
        case DumpType::window:
            return state.get(Memory::xram,
                             static_cast<unsigned>(dump.address / window_size * window_size + i));
        default:
            return state.get(Memory::xram, static_cast<unsigned>(dump.address + i));
    }
}

}  // namespace

CpuState::CpuState() : xram_(xram_size) {
    set(Memory::sfr, sfr::SP, 0x07);
    for (const unsigned port : {0x80U, 0x90U, 0xA0U, 0xB0U}) set(Memory::sfr, port, 0xFF);
}

bool CpuState::set(Memory memory, unsigned address, std::uint8_t value) {
    if (memory == Memory::sfr && address >= first_sfr && address < first_sfr + sfr_.size())
        sfr_[address - first_sfr] = value;
    else if (memory == Memory::ram && address < ram_.size())
        ram_[address] = value;
    else if (memory == Memory::xram && address < xram_.size())
        xram_[address] = value;
    else
        return false;
    return true;
}

std::uint8_t CpuState::get(Memory memory, unsigned address) const {
    if (memory == Memory::sfr && address >= first_sfr && address < first_sfr + sfr_.size())
        return sfr_[address - first_sfr];
    if (memory == Memory::ram && address < ram_.size()) return ram_[address];
    if (memory == Memory::xram && address < xram_.size()) return xram_[address];
    return 0;
}

Dump registers_dump() {
    return {};
}
Dump ram_dump() {
    return {DumpType::ram, 0, 256};
}
Dump xram_dump(std::size_t size) {
    return {DumpType::xram, 0, std::min(size, longest_xram_dump)};
}
Dump window_dump(std::uint16_t address) {
    return {DumpType::window, address, window_size};
}

std::vector<std::uint8_t> dump_frame(const CpuState& state, const Dump& dump) {
    const std::size_t length = dump.size + around_memory;
    std::vector<std::uint8_t> frame = {0xAA,
                                       static_cast<std::uint8_t>(length >> 8),
                                       static_cast<std::uint8_t>(length),
                                       static_cast<std::uint8_t>(dump.type),
                                       0x00,
                                       static_cast<std::uint8_t>(dump.address >> 8),
                                       static_cast<std::uint8_t>(dump.address)};
    for (const unsigned address :
         {sfr::PSW, sfr::ACC, sfr::TCON, sfr::T2CON, sfr::CCON, sfr::IE, sfr::SP})
        frame.push_back(state.get(Memory::sfr, address));
    frame.push_back(state.r1());
    frame.push_back(state.r0());
    for (std::size_t i = 0; i < dump.size; ++i) frame.push_back(cell_in_frame(state, dump, i));
    frame.push_back(0);
    renew_sum(frame);
    return frame;
}

void renew_sum(std::vector<std::uint8_t>& frame) {
    frame.back() = sum_of(std::span(frame).first(frame.size() - 1));
}

}  // namespace vkm::sim
