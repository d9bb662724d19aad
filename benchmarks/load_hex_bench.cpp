// How long the operator waits for a program file: 64 K of Intel HEX, read from
// disk, ruled, summed and redrawn as a page.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

#include "catalogue/model_selection.h"
#include "image/image_files.h"
#include "platform/qt/qt_files.h"
#include "support/virtual_world.h"

namespace vkm::test {
namespace {

std::string hex_file_of_64K() {
    std::string text;
    for (int address = 0; address < 0x10000; address += 16) {
        char line[64];
        int sum = 16 + (address >> 8) + (address & 0xFF);
        std::string data;
        for (int i = 0; i < 16; ++i) {
            const int byte = (address * 7 + i * 13) & 0xFF;
            sum += byte;
            std::snprintf(line, sizeof line, "%02X", static_cast<unsigned>(byte));
            data += line;
        }
        std::snprintf(line, sizeof line, ":10%04X00%s%02X\r\n", static_cast<unsigned>(address),
                      data.c_str(), static_cast<unsigned>(-sum & 0xFF));
        text += line;
    }
    return text + ":00000001FF\r\n";
}

void LoadHex64K(benchmark::State& state) {
    VirtualWorld world;
    // The real disk in place of the world's own.
    QtFiles files;
    Platform platform = world.frm.platform;
    const auto path = std::filesystem::temp_directory_path() / "vkm-bench-64k.hex";
    std::ofstream(path, std::ios::binary) << hex_file_of_64K();
    frmMain frm({platform.loop, platform.wall_clock, platform.port, platform.settings,
                 platform.dialogs, files, platform.sounder, platform.code_page});
    Allocate_Buffers(frm);
    frm.screen.txtDevice.Text = "VKM47H516RK";
    Apply_Model(frm);
    for (auto _ : state) Load_File(frm, path.string(), frm.images.AP_Buffer);
    std::filesystem::remove(path);
}
BENCHMARK(LoadHex64K)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace vkm::test
