// What comes over the serial line while the terminal owns the port, and while an ISP
// session does: any bytes, in any batches, at any time, under an operator who switches
// whatever there is to switch. An input is a list of steps, see take_step.
//
// What the monitor answers and when is worked out here once more, from the bytes and
// the clock alone.
#include <algorithm>
#include <span>
#include <vector>

#include "assistant/serial_assistant.h"
#include "fuzz/fuzz_world.h"
#include "link/isp_link.h"
#include "monitor/target_dump.h"
#include "support/virtual_bench.h"
#include "text/trimming.h"
#include "window/wiring.h"

namespace vkm::fuzz {
namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr std::size_t longest_frame = 1100;
constexpr std::size_t longest_text = 65000;      // characters; more are trimmed by the next tick
constexpr std::size_t most_of_a_tick = 0xFFFF;   // characters
constexpr std::size_t most_in_a_burst = 0xFFFF;  // bytes
constexpr std::size_t most_in_bursts = 300'000;  // bytes of an input
constexpr std::int64_t request_interval_ms = 1000;
constexpr int most_requests = 3;

const Bytes acknowledge = {0xFE, 0xAA, 0x50, 0xFA};
const Bytes again = {0xFE, 0xAA, 0x52, 0xFC};
const Bytes go_on = {0xFE, 0xAA, 0x54, 0xFE};

struct Family {
    const char* model;
    std::size_t registers;
};
constexpr Family families[] = {{"VKM47H58RK", 0},  {"VKM47W58AD", 0},  {"VKM47H58RK+", 41},
                               {"VKM26H2052", 52}, {"VKM26H5404", 67}, {"VKM27J060", 0}};

// What has to be answered: a byte at a time, the frame in a vector that grows.
class Hearer {
  public:
    // How many good dumps there are in the batch.
    int take(std::span<const std::uint8_t> batch) {
        int good = 0;
        for (const std::uint8_t byte : batch) {
            const Seen seen = take(byte);
            good += seen == Seen::good;
            if (seen == Seen::broken) break;
        }
        waits_ = marks_ == 2;
        requests_ = 0;
        silent_ms_ = 0;
        return good;
    }

    // How often a dump is asked for in that time.
    int pass(std::int64_t ms) {
        if (!waits_) return 0;
        silent_ms_ += ms;
        const auto due = static_cast<int>(
            std::min<std::int64_t>(silent_ms_ / request_interval_ms, most_requests));
        const int now = due - requests_;
        requests_ = due;
        if (due > 0) forget();
        if (silent_ms_ >= request_interval_ms * (most_requests + 1)) waits_ = false;
        return now;
    }

    void reset() {
        forget();
        waits_ = false;
    }

    bool waits() const { return waits_; }

  private:
    enum class Seen { nothing, good, broken };

    void forget() {
        marks_ = 0;
        frame_.clear();
    }

    Seen take(std::uint8_t byte) {
        if (marks_ == 0) {
            marks_ = byte == 0xA5 ? 1 : 0;
        } else if (marks_ == 1) {
            marks_ = byte == 0x5A ? 2 : 0;
        } else {
            frame_.push_back(byte);
            if (frame_.front() != 0xAA || frame_.size() > longest_frame) forget();
            if (frame_.size() >= 3) return judge();
        }
        return Seen::nothing;
    }

    Seen judge() {
        const std::size_t length = frame_[1] * 256u + frame_[2];
        if (length == 0 || frame_.size() < length) return Seen::nothing;
        unsigned sum = 0;
        for (std::size_t i = 0; i + 1 < length; ++i) sum += frame_[i];
        if ((sum & 0xFF) == frame_[length - 1]) {
            forget();
            return Seen::good;
        }
        frame_.clear();
        return Seen::broken;
    }

    int marks_ = 0;
    Bytes frame_;
    bool waits_ = false;
    int requests_ = 0;
    std::int64_t silent_ms_ = 0;
};

class Terminal {
  public:
    explicit Terminal(std::span<const std::uint8_t> steps) : steps_(steps) {
        // Thousands of steps of several seconds.
        world_.loop.time_limit = std::chrono::hours(100);
        Open_Assistant_Port(frm_);
        must(frm_.link.debug_mode, "the port opens");
    }

    void run() {
        while (!steps_.empty()) {
            take_step();
            check_step();
        }
        world_.run_for(5000);
        check_text();
        check_texts(world_);
        if (!frm_.link.debug_mode) frm_.platform.port.close();
        check_always(world_);
    }

  private:
    std::uint8_t next() {
        if (steps_.empty()) return 0;
        const std::uint8_t byte = steps_.front();
        steps_ = steps_.subspan(1);
        return byte;
    }
    std::size_t next_word() {
        const std::size_t high = next();
        return high * 256 + next();
    }
    std::span<const std::uint8_t> next_bytes(std::size_t count) {
        const auto bytes = steps_.first(std::min(count, steps_.size()));
        steps_ = steps_.subspan(bytes.size());
        return bytes;
    }

    // A step is a byte, below 80 the number of bytes that arrive in one batch, less one;
    // they stand behind it. Behind some of the others stand their values.
    void take_step() {
        Screen& screen = frm_.screen;
        const std::uint8_t step = next();
        if (step < 0x80) return arrive(next_bytes(step + 1u));
        switch (step) {
            case 0x80:
                return arrive(next_bytes(next_word()));
            case 0x81:
                return burst();
            case 0x82:
                return good_frame();
            case 0x83:
                return switch_to(screen.optReceiveHex, 0);
            case 0x84:
                return switch_to(screen.optReceiveHex, 1);
            case 0x85:
                screen.che_disable_Debug_SFR_232.Value ^= 1;
                return;
            case 0x86:
                return to_session(false);
            case 0x87:
                return to_session(true);
            case 0x88:
                return to_terminal();
            case 0x89:
                frm_.link.hunt_header = !frm_.link.hunt_header;
                return;
            case 0x8A:
                frm_.link.use_crc = !frm_.link.use_crc;
                return;
            case 0x8B:
                comDebugClear(frm_, next() % 3);
                return;
            case 0x8C:
                return click_continue();
            case 0x8D:
                must(test::choose_model(frm_,
                                        families[family_ = next() % std::size(families)].model),
                     "the model exists");
                return;
            default:
                return pass(step);
        }
    }

    void arrive(std::span<const std::uint8_t> batch) {
        if (batch.empty()) return;
        const std::size_t written = world_.port.written.size();
        world_.line.input.insert(world_.line.input.end(), batch.begin(), batch.end());
        on_port_event(frm_);
        int good = 0;
        if (frm_.link.debug_mode) {
            received_ += batch.size();
            good = hearer_.take(batch);
        }
        check_written(written, acknowledge, answers() ? good : 0);
    }

    // More than the text holds.
    void burst() {
        const std::size_t count = std::min({next_word(), most_in_a_burst, most_in_bursts - burst_});
        burst_ += count;
        const std::uint8_t byte = next();
        arrive(Bytes(count, byte));
    }

    // Type, address, length, what fills it, and where it is split in two batches.
    void good_frame() {
        const std::uint8_t type = next();
        const std::size_t address = next_word();
        const std::size_t length = std::max<std::size_t>(next_word() % 1200, 4);
        Bytes bytes(length + 2, next());
        const std::size_t split = next_word() % (bytes.size() + 1);
        const std::span frame = std::span(bytes).subspan(2);
        bytes[0] = 0xA5;
        bytes[1] = 0x5A;
        frame[0] = 0xAA;
        frame[1] = static_cast<std::uint8_t>(length / 256);
        frame[2] = static_cast<std::uint8_t>(length);
        frame[3] = type;
        if (length > 7) {
            frame[5] = static_cast<std::uint8_t>(address / 256);
            frame[6] = static_cast<std::uint8_t>(address);
        }
        unsigned sum = 0;
        for (const std::uint8_t byte : frame.first(length - 1)) sum += byte;
        frame.back() = static_cast<std::uint8_t>(sum);
        arrive(std::span(bytes).first(split));
        arrive(std::span(bytes).subspan(split));
    }

    // The upper five bits as a table of times.
    void pass(std::uint8_t step) {
        constexpr std::int64_t times_ms[] = {1,   34,   35,   36,   70,   500,
                                             999, 1000, 1001, 1999, 3000, 5000};
        const std::int64_t ms = times_ms[step % std::size(times_ms)];
        const std::size_t written = world_.port.written.size();
        const int requests = frm_.link.debug_mode ? hearer_.pass(ms) : 0;
        world_.run_for(ms);
        check_written(written, again, answers() ? requests : 0);
        check_text();
    }

    void to_session(bool demo) {
        Close_Assistant_Port(frm_);
        hearer_.reset();
        if (!frm_.platform.port.is_open()) frm_.platform.port.open();
        frm_.link.demo_mode = demo;
        frm_.link.receive_enabled = true;
        must(!frm_.timers.TimerDebug.Enabled, "nothing is waited for in a session");
    }

    void to_terminal() {
        if (!frm_.link.debug_mode) frm_.platform.port.close();
        Open_Assistant_Port(frm_);
        must(frm_.link.debug_mode && !frm_.link.demo_mode, "the terminal takes the port");
    }

    void click_continue() {
        if (!frm_.link.debug_mode) to_terminal();
        const std::size_t written = world_.port.written.size();
        const std::uint32_t before = frm_.assistant.Send_Count;
        comDebugContinue(frm_);
        check_written(written, go_on, 1);
        must(frm_.assistant.Send_Count == before + 3, "a command counts three");
    }

    void switch_to(std::array<Control, 2>& options, std::size_t element) {
        options[element].Value = 1;
        options[1 - element].Value = 0;
    }

    bool answers() const { return frm_.screen.che_disable_Debug_SFR_232.Value == 0; }

    void check_written(std::size_t from, const Bytes& command, int times) const {
        const auto& written = world_.port.written;
        must(written.size() == from + static_cast<std::size_t>(times),
             "a dump is answered once, and asked for three times at most");
        for (std::size_t i = from; i < written.size(); ++i)
            must(written[i].bytes == command, "an answer is the right one");
    }

    void check_step() {
        const LinkState& link = frm_.link;
        must(link.rx_count >= 0 && link.rx_count <= rx_frame_size, "a frame lies in its buffer");
        if (link.debug_mode) {
            must(static_cast<std::size_t>(link.rx_count) <= longest_frame, "a dump isn't longer");
            must(frm_.timers.TimerDebug.Enabled == hearer_.waits(),
                 "a part of a dump is waited for");
        }
        must(frm_.assistant.Receive_Count == static_cast<std::uint32_t>(received_),
             "every byte for the terminal counts, and no other");
        const Screen& screen = frm_.screen;
        check_list(screen.lst_debug1, families[family_].registers, {17, 25});
        check_list(screen.lst_debug2, 32, {51, 51});
        check_list(screen.lst_debug3, 128, {51, 51});
        check_list(screen.lst_debug4, 64, {51, 51});
    }

    static void check_list(const Control& list, std::size_t rows,
                           std::pair<std::size_t, std::size_t> lengths) {
        must(list.List.size() == rows, "a list keeps its rows");
        must(std::ranges::all_of(list.List,
                                 [&](const Entry& row) {
                                     return row.Text.size() == lengths.first ||
                                            row.Text.size() == lengths.second;
                                 }),
             "a row keeps its length");
        const auto& selected = list.Selected;
        must(std::ranges::is_sorted(selected, std::ranges::less_equal()) || selected.size() < 2,
             "highlighted rows ascend");
        must(selected.empty() ||
                 (selected.front() >= 0 && selected.back() < static_cast<std::int32_t>(rows)),
             "highlighted rows are there");
        must(list.ListIndex == (selected.empty() ? -1 : selected.back()),
             "the last row that changed is the current one");
        must(list.Value >= 0, "a list shows its rows");
    }

    void check_text() const {
        must(character_count(frm_.screen.texReceive.Text) <= longest_text + most_of_a_tick,
             "the text is trimmed");
        must(frm_.assistant.ring.waiting() == 0 || frm_.timers.TimerDebugDisplay.Enabled,
             "what waits for the display will be shown");
    }

    std::span<const std::uint8_t> steps_;
    FuzzWorld world_;
    frmMain& frm_ = world_.frm;
    Hearer hearer_;
    std::size_t received_ = 0;
    std::size_t burst_ = 0;
    std::size_t family_ = family_at_start();

    std::size_t family_at_start() const {
        const auto rows = frm_.screen.lst_debug1.List.size();
        return static_cast<std::size_t>(std::ranges::find(families, rows, &Family::registers) -
                                        std::begin(families));
    }
};

}  // namespace
}  // namespace vkm::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    vkm::fuzz::Terminal({bytes, size}).run();
    return 0;
}
