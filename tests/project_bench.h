// What the suites of the project files share: the operator who saves and opens one,
// a project's text built from its lines, and files taken apart.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "session_bench.h"
#include "support/operator_hands.h"

namespace vkm::test {

inline const std::string project_path = "/job/job.VKM";

inline const std::string program_sum_wrong = "应用程序代码校验和错。";
inline const std::string data_sum_wrong = "数据文件校验和错。";
inline const std::string old_version_warning =
    "您使用的是旧版本的工程文件，打开文件后请仔细核对各选项是否正确。\r\n"
    "                         按确认键继续";

// A model of each family.
inline constexpr std::array<std::string_view, 6> family_models = {
    "VKM47H58RK", "VKM47W58AD", "VKM47H58RK+", "VKM26H2052", "VKM26H5404", "VKM27J060"};

inline std::string hexadecimal(std::span<const std::uint8_t> bytes) {
    std::string text;
    for (const std::uint8_t byte : bytes)
        for (const int digit : {byte >> 4, byte & 15}) text += "0123456789ABCDEF"[digit];
    return text;
}

inline std::string decimal_sum(std::span<const std::uint8_t> bytes) {
    unsigned sum = 0;
    for (const std::uint8_t byte : bytes) sum += byte;
    return std::to_string(sum);
}

// Bytes without a zero. A zero at an image's end adds nothing to its sum, so that
// nobody could tell whether it was cut off.
inline Bytes bytes_without_zero(std::size_t count, unsigned seed = 1) {
    Bytes bytes = random_bytes(count, seed);
    for (std::uint8_t& byte : bytes) byte = static_cast<std::uint8_t>(byte | 1);
    return bytes;
}

// The text with the first `piece` in it replaced.
inline std::string with(std::string text, std::string_view piece, std::string_view by) {
    const std::size_t at = text.find(piece);
    EXPECT_NE(at, std::string::npos) << piece;
    return at == std::string::npos ? text : text.replace(at, piece.size(), by);
}

// The value of the line of this key.
inline std::string line_value(const std::string& text, const std::string& key) {
    const std::size_t at = text.find("\r\n" + key + ": ");
    EXPECT_NE(at, std::string::npos) << key;
    if (at == std::string::npos) return {};
    const std::size_t start = at + key.size() + 4;
    return text.substr(start, text.find("\r\n", start) - start);
}

// The text with another value in the line of this key.
inline std::string with_value(const std::string& text, const std::string& key,
                              const std::string& value) {
    const std::string line = "\r\n" + key + ": ";
    return with(text, line + line_value(text, key) + "\r\n", line + value + "\r\n");
}

// A project of version 1.1 by hand: a model, more header lines, a program.
inline std::string small_project(std::string_view model, std::string_view lines,
                                 std::span<const std::uint8_t> program) {
    return "VER: 1.1\r\nMCU_Type: " + std::string(model) + "\r\n" + std::string(lines) +
           "buffer_check_sum: " + decimal_sum(program) + "\r\nEND\r\n" + hexadecimal(program);
}

inline std::string data_section(std::span<const std::uint8_t> data) {
    return "\r\nData_File_Begin:\r\ndata_buffer_check_sum: " + decimal_sum(data) + "\r\n" +
           hexadecimal(data) + "\r\nData_File_End\r\n";
}

struct ProjectBench : SessionBench, OperatorHands {
    explicit ProjectBench(std::string_view model = "VKM47H58RK+",
                          const sim::ChipConfig& chip = {.powered_at = sim::never})
        : SessionBench(chip, std::string(model)), OperatorHands(frm) {
        files.add_folder("/job");
    }

    // The operator saves under that name; what is on the disk then.
    std::string save(const std::string& path = project_path) {
        dialogs.choose_file(path);
        click(frm.screen.comSaveBatchFile);
        return text_on_disk(path);
    }

    std::string text_on_disk(const std::string& path = project_path) const {
        const Bytes bytes = files.content(path);
        return {bytes.begin(), bytes.end()};
    }

    // The operator opens a file of this content.
    void open(const std::string& text, const std::string& path = project_path) {
        files.add(path, text);
        dialogs.choose_file(path);
        click(frm.screen.comOpenBatchFile);
    }

    // The texts of the boxes that came up, without the file dialogs; forgets them.
    std::vector<std::string> take_texts() {
        std::vector<std::string> texts;
        for (const Box& box : std::exchange(dialogs.boxes, {}))
            if (box.kind == BoxKind::text) texts.push_back(box.text);
        return texts;
    }

    // A data file as one that was read: its sum stands on the screen.
    void load_data(std::span<const std::uint8_t> bytes) {
        load_data_bytes(bytes);
        frm.screen.txtDataFileCheckSum.Text = "1234";
    }

    Bytes program() const { return used(frm.images.AP_Buffer); }
    Bytes data() const { return used(frm.images.Data_Buffer); }

    bool locked() const { return frm.session.UI_State == 2 && !frm.screen.comLoadFile.Enabled; }

  private:
    static Bytes used(const Image_Buffer& image) {
        return {image.Bytes.begin(), image.Bytes.begin() + image.Image_High + 1};
    }
};

using Texts = std::vector<std::string>;

}  // namespace vkm::test
