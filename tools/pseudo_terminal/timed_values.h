// Values of options that several programs have.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "simulators/value_forms.h"

namespace vkm::sim {

inline bool set_milliseconds(std::string_view text, std::chrono::microseconds& time) {
    const auto ms = parse_whole(text, 0, 600'000);
    if (ms) time = std::chrono::milliseconds{*ms};
    return ms.has_value();
}

inline bool set_microseconds(std::string_view text, std::chrono::microseconds& time) {
    const auto us = parse_whole(text, 0, 60'000'000);
    if (us) time = std::chrono::microseconds{*us};
    return us.has_value();
}

inline bool set_hex_byte(std::string_view text, std::uint8_t& byte) {
    const auto read = parse_hex(text, 0xFF);
    if (read) byte = static_cast<std::uint8_t>(*read);
    return read.has_value();
}

// Of an option that may be told several times.
template <typename Value>
bool append_told(std::vector<Value>& list, std::optional<Value> value) {
    if (value) list.push_back(*std::move(value));
    return value.has_value();
}

}  // namespace vkm::sim
