// The realisation of the seam in virtual time, held to the contract.
#include "contract_platform.h"
#include "support/virtual_platform.h"

namespace vkm::test {
namespace {

class VirtualContractWorld {
  public:
    VirtualContractWorld() {
        platform_.line.connect(
            {.hear = [this](Instant, std::uint8_t value, double) { heard_.push_back(value); },
             .due = {},
             .act = {},
             .take_output = [this] { return std::exchange(to_send_, {}); }});
        platform_.files.add_folder(folder());
    }

    EventLoop& loop() { return platform_.loop; }
    void after(Microseconds delay, std::function<void()> action) {
        platform_.loop.after(delay, std::move(action));
    }
    SerialPort& port() { return platform_.faults; }
    int missing_number() { return 7; }
    void far_end_sends(const std::vector<std::uint8_t>& bytes) {
        std::size_t n = 0;
        for (const std::uint8_t byte : bytes)
            to_send_.push_back({loop().now() + sim::wire_time(n++, 115200), byte, 115200});
    }
    std::vector<std::uint8_t> far_end_heard() { return heard_; }
    void pull_plug() { platform_.port.unplug(); }
    SettingsStore& settings() { return platform_.settings; }
    void crash() { platform_.settings.crash(); }
    void refuse_writing(bool refused) { platform_.settings.disk_full = refused; }
    Files& files() { return platform_.files; }
    std::string folder() { return "/bench"; }

  private:
    std::vector<std::uint8_t> heard_;
    std::vector<sim::WireByte> to_send_;
    VirtualPlatform platform_;
};

INSTANTIATE_TYPED_TEST_SUITE_P(Virtual, LineContract, VirtualContractWorld);
INSTANTIATE_TYPED_TEST_SUITE_P(Virtual, SettingsContract, VirtualContractWorld);
INSTANTIATE_TYPED_TEST_SUITE_P(Virtual, FilesContract, VirtualContractWorld);

}  // namespace
}  // namespace vkm::test
