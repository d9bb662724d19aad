#include "simulators/board_programmer.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <optional>
#include <utility>
#include <vector>

#include "simulators/board_job.h"
#include "simulators/byte_values.h"
#include "simulators/frames.h"

namespace vkm::sim {
namespace {

using namespace std::chrono_literals;
using std::chrono::microseconds;
using Bytes = std::vector<std::uint8_t>;

constexpr double line_baud = 115200;
constexpr std::uint8_t code_done = 0x80;
constexpr std::uint8_t code_busy = 0x81;
constexpr std::uint8_t retried_block = 0x30;
constexpr std::uint8_t trigger_byte = 0xFE;
constexpr int trigger_bytes = 4;

constexpr std::uint32_t chunk = 128;
constexpr int tries_of_a_frame = 3;
constexpr int tries_of_a_block = 6;
constexpr int tries_of_busy_options = 50;
constexpr microseconds short_wait = 300ms;
constexpr microseconds erase_wait = 10s;

// What the chip tells of itself, in the payload of its first answer.
constexpr std::size_t place_of_counts = 1;
constexpr std::size_t count_of_counts = 8;
constexpr std::size_t place_of_version = 17;
constexpr std::size_t place_of_letter = 18;
constexpr std::size_t place_of_id = 20;
constexpr std::size_t place_of_options_read = 10;  // in the answer to a status read
constexpr double hz_per_count = 500.5;
constexpr double counts_missed = 145;

// Early firmware of letter E reaches less than its model has.
constexpr std::uint8_t last_early_E = 0x50;
constexpr std::uint32_t reach_of_early_E = 0x3000;
constexpr std::uint8_t last_without_erase = 0x02;
constexpr std::uint8_t last_without_watchdog_option = 0x36;

// The line to the chip: a frame out, an answer in.
class ChipLine {
  public:
    ChipLine(SimulatedChip& chip, Instant start) : line_(chip.target()), now_(start) {}

    Instant now() const { return now_; }

    void pass(microseconds time) { advance_to(now_ + time); }

    void send(const Bytes& bytes) {
        const Instant start = now_;
        for (std::size_t i = 0; i < bytes.size(); ++i) {
            advance_to(start + wire_time(i + 1, line_baud));
            line_.hear(now_, bytes[i], line_baud);
        }
    }

    // The payload of the answer, from its code on; nothing when none came in time.
    std::optional<Bytes> listen(microseconds patience) {
        FrameReceiver receiver(chip_reply);
        const Instant until = now_ + patience;
        for (;;) {
            for (const WireByte& byte : line_.take_output()) {
                now_ = std::max(now_, byte.start + wire_time(1, byte.baud));
                const auto heard = as_heard(byte.value, byte.baud, line_baud);
                if (!heard || receiver.take(*heard) != FrameReceiver::Result::complete) continue;
                pass(1ms);  // the chip listens again
                const auto frame = receiver.frame();
                return Bytes(frame.begin() + 5, frame.end() - 2);
            }
            if (line_.due() > until) break;
            advance_to(line_.due());
        }
        advance_to(until);
        return std::nullopt;
    }

    std::optional<Bytes> ask(const Bytes& frame, microseconds patience) {
        send(frame);
        return listen(patience);
    }

    // The same up to some times; true when the chip says that it is done.
    bool order(const Bytes& body, microseconds patience) {
        const Bytes frame = build_reply(chip_request, body);
        for (int i = 0; i < tries_of_a_frame; ++i) {
            const auto answer = ask(frame, patience);
            if (answer) return answer->front() == code_done;
        }
        return false;
    }

  private:
    void advance_to(Instant time) {
        while (line_.due() <= time) {
            now_ = std::max(now_, line_.due());
            line_.act(now_);
        }
        now_ = std::max(now_, time);
    }

    Target line_;
    Instant now_;
};

Bytes trigger(std::uint8_t command) {
    Bytes bytes(trigger_bytes, trigger_byte);
    const Bytes frame = build_reply(chip_request, {{command}});
    bytes.insert(bytes.end(), frame.begin(), frame.end());
    return bytes;
}

void append_number(Bytes& bytes, std::uint32_t value, int count) {
    for (int place = count - 1; place >= 0; --place)
        bytes.push_back(static_cast<std::uint8_t>(value >> (8 * place)));
}

class Programming {
  public:
    Programming(const BoardJob& job, ChipLine& line) : job_(job), line_(line) {}

    // Empty, or what went wrong.
    std::string run(BoardProgramming& result) {
        if (!connect()) return "the chip doesn't answer";
        if (!right_chip()) return "the chip is another one";
        const auto family = static_cast<std::uint8_t>(job_.family);
        if (!line_.order({0x80, family, 0x00, 0x36, 0x01}, short_wait))
            return "the chip doesn't answer the link check";
        if (!erase()) return "the chip can't be erased";
        if (!program(result)) return "the chip can't be programmed";
        if (has_options()) {
            if (!write_options()) return "the options can't be written";
            result.options_written = true;
        }
        line_.send(trigger(0x82));
        line_.pass(10ms);
        return {};
    }

  private:
    bool connect() {
        for (int i = 0; i < tries_of_a_frame; ++i) {
            const auto answer = line_.ask(trigger(0x8A), short_wait);
            if (!answer || answer->size() <= place_of_letter) continue;
            status_ = *answer;
            return true;
        }
        return false;
    }

    std::uint8_t version() const { return status_[place_of_version]; }
    char letter() const { return static_cast<char>(status_[place_of_letter]); }
    double clock() const {
        double sum = 0;
        for (std::size_t i = 0; i < count_of_counts; ++i)
            sum += big_endian(std::span(status_).subspan(place_of_counts + 2 * i, 2));
        return (sum + counts_missed) * hz_per_count;
    }

    // Chips of family 0 have no ID, and those of family 1 tell one byte of it.
    bool right_chip() const {
        if (job_.family == 0) return true;
        const std::size_t told = std::min<std::size_t>(
            job_.id.size(), status_.size() - std::min(status_.size(), place_of_id));
        if (told == 0) return false;
        const auto is = [&](const std::array<std::uint8_t, 2>& id) {
            return std::equal(id.begin(), id.begin() + static_cast<std::ptrdiff_t>(told),
                              status_.begin() + place_of_id);
        };
        const bool has_old = job_.old_id[0] != 0 || job_.old_id[1] != 0;
        return is(job_.id) || (has_old && is(job_.old_id));
    }

    bool erase() {
        if (version() <= last_without_erase) return true;
        Bytes body = {0x84, 0xFF};
        if (letter() >= 'D' && letter() <= 'G') {
            const auto low = static_cast<std::uint32_t>(job_.code.size());
            std::uint32_t high = std::max(low, job_.data_end + 1);
            if (letter() == 'E' && version() <= last_early_E)
                high = std::max(low, std::min(high, reach_of_early_E));
            append_number(body, low, 3);
            append_number(body, high, 3);
        } else {
            body.resize(8, 0x33);
        }
        return line_.order(body, erase_wait);
    }

    bool program(BoardProgramming& result) {
        code_ = code_of_next_chip(job_);
        for (std::uint32_t start = 0; start < code_.size(); start += job_.block_size) {
            bool good = false;
            for (int attempt = 0; attempt < tries_of_a_block && !good; ++attempt) {
                if (attempt > 0) ++result.retries;
                good = program_block(start, attempt > 0, result);
            }
            if (!good) return false;
        }
        return true;
    }

    bool program_block(std::uint32_t start, bool again, BoardProgramming& result) {
        const auto end = std::min<std::size_t>(code_.size(), start + job_.block_size);
        for (std::uint32_t address = start; address < end; address += chunk) {
            const auto count =
                static_cast<std::uint32_t>(std::min<std::size_t>(chunk, end - address));
            const auto data = std::span(code_).subspan(address, count);
            const bool first_again = again && address == start;
            Bytes body = {first_again ? retried_block : std::uint8_t{0}};
            append_number(body, address, 4);
            append_number(body, count, 2);
            body.insert(body.end(), data.begin(), data.end());
            const auto answer = line_.ask(build_reply(chip_request, body), short_wait);
            if (!answer || answer->front() != code_done) return false;
            if (answer->size() > 1 && (*answer)[1] != sum_of(data)) return false;
            ++result.blocks;
        }
        return true;
    }

    bool has_options() const { return job_.family >= 2; }

    bool write_options() {
        const auto body = job_.family == 2 ? options_with_rate() : options_with_clock();
        if (!body) return false;
        const Bytes frame = build_reply(chip_request, *body);
        for (int i = 0; i < tries_of_busy_options; ++i) {
            const auto answer = line_.ask(frame, short_wait);
            if (answer && answer->front() == code_done) return true;
            if (answer && answer->front() != code_busy) return false;
        }
        return false;
    }

    // Of the job, but words that it doesn't tell stay as the chip has them.
    std::optional<std::uint8_t> told_option(int number) const {
        constexpr int numbers[] = {2, 3, 8, 10, 11};
        const auto* found = std::find(std::begin(numbers), std::end(numbers), number);
        if (found == std::end(numbers)) return std::nullopt;
        return job_.options[static_cast<std::size_t>(found - std::begin(numbers))];
    }

    std::optional<Bytes> options_with_clock() {
        const auto numbers = option_numbers_of(letter());
        const auto status = line_.ask(build_reply(chip_request, {{0x50}}), short_wait);
        if (!status || status->size() < place_of_options_read + numbers.size()) return std::nullopt;
        const bool lacks_watchdog = letter() != 'G' && version() <= last_without_watchdog_option;
        const int clock_option = letter() == 'G' ? 3 : 2;
        Bytes body = {0x8D};
        bool on_crystal = false;
        for (std::size_t i = 0; i < numbers.size(); ++i) {
            std::uint8_t option =
                told_option(numbers[i]).value_or((*status)[place_of_options_read + i]);
            if (lacks_watchdog && numbers[i] == 3) option = 0xFF;
            if (numbers[i] == clock_option) on_crystal = (option & 0x02) != 0;
            body.push_back(option);
        }
        append_number(body, on_crystal ? 0xFFFFFFFF : static_cast<std::uint32_t>(clock()), 4);
        return body;
    }

    // Word 1, and the reload pair of the line's rate in the clock mode to come.
    std::optional<Bytes> options_with_rate() const {
        const std::uint8_t option = job_.options[1];
        const bool doubled = (option & 0x01) == 0;
        const double count = std::round(clock() * (doubled ? 2 : 1) / 32 / line_baud);
        Bytes body = {0x8D, option};
        append_number(body, 65536 - static_cast<std::uint32_t>(count), 2);
        body.push_back(0xFF);
        return body;
    }

    const BoardJob& job_;
    ChipLine& line_;
    Bytes status_;
    Bytes code_;
};

}  // namespace

BoardProgramming program_chip(std::span<std::uint8_t> storage, SimulatedChip& chip, Instant start) {
    BoardProgramming result;
    const BoardJobRead read = read_board_job(storage);
    result.problem = read.problem;
    ChipLine line(chip, start);
    if (result.problem.empty()) {
        chip.power_off(start);
        line.pass(10ms);
        chip.power_on(line.now());
        line.pass(10ms);
        result.problem = Programming(read.job, line).run(result);
        chip.power_off(line.now());
    }
    result.done = result.problem.empty() && count_chip(storage);
    result.chips_left = chips_left(storage);
    result.end = line.now();
    return result;
}

}  // namespace vkm::sim
