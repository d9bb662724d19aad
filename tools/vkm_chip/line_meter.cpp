#include "vkm_chip/line_meter.h"

#include <algorithm>

namespace vkm::sim {
namespace {

// Only frames that carry a block are so long.
constexpr std::size_t shortest_block_frame = 100;

double wire_us(std::size_t bytes, double baud) {
    return baud > 0 ? static_cast<double>(bytes) * bits_per_byte * 1e6 / baud : 0;
}

}  // namespace

void LineMeter::host_wrote(Instant now, std::size_t bytes, double baud) {
    if (bytes >= shortest_block_frame) {
        if (!begun_) begin_ = now;
        if (answered_) turnarounds_.push_back(now - end_);
        begun_ = true;
        answered_ = false;
        in_bulk_ = true;
    } else {
        in_bulk_ = false;
    }
    if (begun_) wire_us_ += wire_us(bytes, baud);
}

void LineMeter::host_was_given(Instant now, std::size_t bytes, double baud) {
    if (!begun_ || bytes == 0) return;
    wire_us_ += wire_us(bytes, baud);
    if (!in_bulk_) return;
    end_ = now;
    bulk_us_ = wire_us_;
    answered_ = true;
}

std::string LineMeter::report() const {
    auto sorted = turnarounds_;
    std::sort(sorted.begin(), sorted.end());
    const auto at = [&](double share) {
        if (sorted.empty()) return std::string("0");
        const auto index = static_cast<std::size_t>(share * static_cast<double>(sorted.size() - 1));
        return std::to_string(sorted[index].count());
    };
    return "bulk_us=" + std::to_string(begun_ ? (end_ - begin_).count() : 0) +
           " wire_us=" + std::to_string(static_cast<long long>(bulk_us_)) +
           " turnarounds=" + std::to_string(sorted.size()) + " median_us=" + at(0.5) +
           " p95_us=" + at(0.95);
}

}  // namespace vkm::sim
