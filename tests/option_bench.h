// What the suites of the option bytes share: the chips that take some, the frames
// that a job sent, and the operator's choice.
#pragma once

#include <optional>
#include <string_view>

#include "session_bench.h"
#include "window/main_window.h"

namespace vkm::test {

using Frames = std::vector<Bytes>;

// A chip of a firmware letter, and the model that the operator selects for it.
struct OptionChip {
    char letter;
    std::string chip, model;
    int attempts;  // of an option write without an answer
};
// clang-format off
inline const std::vector<OptionChip> option_chips = {
    {'A', "VKM47H58RK",  "VKM47H58RK",       3},
    {'C', "VKM47H58RK+", "VKM47H58RK+",      4},
    {'D', "VKM26H2052",  "VKM26H2052",       4},
    {'E', "VKM26H5404",  "VKM26H5404",       4},
    {'F', "VKM26H5420",  "26H/W54xx Series", 4},
    {'G', "VKM27J060",   "VKM27J060",        4},
};
// clang-format on

inline const OptionChip& chip_of(char letter) {
    return *std::ranges::find(option_chips, letter, &OptionChip::letter);
}

// What no panel chooses, so that a job has something to write.
inline sim::OptionBytes other_options(char letter) {
    sim::OptionBytes options;
    options.fill(0xFF);
    if (letter == 'A') options[0] = 0x20;
    if (letter == 'C') options[1] = 0x5D;
    options[10] = 0x12;
    return options;
}

// A frame to the chip; the body begins with its command.
inline Bytes chip_frame(const Bytes& body) {
    Bytes frame = {0x46, 0xB9, 0x6A, 0x00, static_cast<std::uint8_t>(body.size() + 5)};
    frame.insert(frame.end(), body.begin(), body.end());
    unsigned sum = 0;
    for (std::size_t i = 2; i < frame.size(); ++i) sum += frame[i];
    frame.push_back(static_cast<std::uint8_t>(sum));
    frame.push_back(0x16);
    return frame;
}

inline const std::string options_failed = "\r\nConfig option are error! / 设置选项失败。";

// The operator sees the last line.
inline void expect_log_at_its_end(const frmMain& frm) {
    Control log = frm.screen.textMsg;
    caret_to_end(log);
    EXPECT_EQ(frm.screen.textMsg.SelStart, log.SelStart);
}

struct OptionBench : SessionBench {
    // A chip as it is delivered, unless the configuration says otherwise.
    explicit OptionBench(const OptionChip& chip, sim::ChipConfig config = {})
        : SessionBench(of_chip(chip, std::move(config)), chip.model) {
        load(300);
    }
    // One with something to write.
    static OptionBench with_other_options(const OptionChip& chip, sim::ChipConfig config = {}) {
        config.options = other_options(chip.letter);
        return OptionBench(chip, std::move(config));
    }

    static sim::ChipConfig of_chip(const OptionChip& chip, sim::ChipConfig config) {
        config.model = chip.chip;
        return config;
    }

    // The job ends, whatever happens, within three minutes.
    void run_job(int index = 0) {
        loop.time_limit = loop.elapsed() + std::chrono::minutes(3);
        ASSERT_NO_THROW(comDownload(frm, index)) << story();
    }

    // The next job finds the same chip again.
    void power_cycle() {
        chip.power_cycle(loop.now(), Milliseconds(100));
        port.written.clear();
    }

    void close_window_in(std::int64_t ms) {
        at(ms, [this] { QueryUnload(frm); });
    }

    void choose_option(std::string_view array, int element) {
        for (int i = 0; Control* button = find_control(frm.screen, array, i); ++i)
            button->Value = i == element ? 1 : 0;
    }

    // The frames with this command that went out.
    Frames sent(std::uint8_t command) const {
        Frames frames;
        for (const Written& written : port.written)
            if (written.bytes.size() > 7 && written.bytes[0] == 0x46 && written.bytes[5] == command)
                frames.push_back(written.bytes);
        return frames;
    }
    Frames option_frames() const { return sent(0x8D); }
    int option_attempts() const { return heard(sim::FrameKind::options); }
    int status_reads() const { return heard(sim::FrameKind::status_read); }

    // What the job told behind the line of the programming.
    std::string told_afterwards() const {
        const std::string text = without_times(log());
        const std::size_t line = text.find("Programming...");
        return line == std::string::npos ? "" : text.substr(text.find("\r\n", line));
    }
};

}  // namespace vkm::test
