// The storage of a download board for one job, laid out by hand.
#pragma once

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "board_frames.h"

namespace vkm::test {

class BoardStorage {
  public:
    BoardStorage(std::string_view model, const Bytes& code) : bytes(0x10000, 0xFF) {
        std::fill_n(bytes.begin() + 0xEC00, 0x100, 0);
        std::copy(model.begin(), model.end(), bytes.begin() + 0xEC00);
        for (int i = 0; i < 5; ++i) put(0x30 + i, 0xFF, 1);
        put(0x40, 0x4000, 3);
        put(0x43, 0xEBFF, 3);
        put(0x49, 0xABFF, 3);
        put(0x58, 0x2000, 3);
        put(0x5B, 0x3FFF, 3);
        put(0x5E, 0xAC00, 3);
        put(0x61, 0xCBFF, 3);
        put(0x70, static_cast<unsigned>(code.size() - 1), 3);
        put(0x78, 0xF3, 1);
        put(0x96, 0x0200, 2);
        put_code(code);
        set_limit(5);
        seal();
    }

    // A field of the parameters.
    void put(int place, unsigned value, int count) {
        for (int i = 0; i < count; ++i)
            bytes[static_cast<std::size_t>(0xEC00 + place + i)] =
                static_cast<std::uint8_t>(value >> (8 * (count - 1 - i)));
    }

    void put_code(const Bytes& code) {
        for (std::size_t i = 0; i < code.size(); ++i)
            bytes[i < 0xAC00 ? 0x4000 + i : 0x2000 + (i - 0xAC00)] = code[i];
        for (std::size_t block = 0; block * 128 < code.size(); ++block) {
            Bytes part(code.begin() + static_cast<std::ptrdiff_t>(block * 128),
                       code.begin() +
                           static_cast<std::ptrdiff_t>(std::min(code.size(), block * 128 + 128)));
            part.resize(128, 0xFF);
            const std::uint16_t crc = crc_modbus(part);
            bytes[0xF000 + 2 * block] = static_cast<std::uint8_t>(crc);
            bytes[0xF001 + 2 * block] = static_cast<std::uint8_t>(crc >> 8);
        }
    }

    // Thermometers: so many low bits set.
    void set_limit(unsigned chips) {
        put(0x90, chips, 4);
        set_bits(0xED00, chips / 2048);
        set_bits(0xEE00, chips % 2048);
    }

    void number(unsigned address, unsigned before, unsigned boundary, unsigned behind,
                unsigned increment, unsigned numeral) {
        put(0x80, 1, 1);
        put(0x81, address, 3);
        put(0x84, before, 1);
        put(0x85, boundary, 3);
        put(0x88, behind, 1);
        put(0x89, increment, 1);
        put(0x8A, numeral, 1);
    }

    // Behind all changes of the parameters.
    void seal() {
        const std::uint16_t crc = crc_modbus(std::span(bytes).subspan(0xEC00, 0xFE));
        bytes[0xECFE] = static_cast<std::uint8_t>(crc);
        bytes[0xECFF] = static_cast<std::uint8_t>(crc >> 8);
    }

    Bytes bytes;

  private:
    void set_bits(std::size_t place, unsigned value) {
        std::fill_n(bytes.begin() + static_cast<std::ptrdiff_t>(place), 256, 0);
        for (unsigned bit = 0; bit < value; ++bit)
            bytes[place + bit / 8] |= static_cast<std::uint8_t>(1U << bit % 8);
    }
};

// Bytes of which no two stretches are alike.
inline Bytes some_code(std::size_t size, std::uint32_t seed = 1) {
    Bytes bytes;
    for (std::size_t i = 0; i < size; ++i) {
        seed = seed * 1664525U + 1013904223U;
        bytes.push_back(static_cast<std::uint8_t>(seed >> 24));
    }
    return bytes;
}

}  // namespace vkm::test
