#include "support/virtual_world.h"

#include "waiting/waiting.h"

namespace vkm::test {

VirtualWorld::VirtualWorld() : frm(seam()) {
    loop.tell = [this] { return log(); };
    dialogs.let_events_run = [this](Microseconds time) {
        run_for(std::chrono::duration_cast<Milliseconds>(time).count());
    };
    fill_start_lists(frm.screen);
}

void VirtualWorld::run_for(std::int64_t ms) {
    const Instant end = loop.now() + Milliseconds(ms);
    loop.at(end, [] {});  // wakes the loop in time
    wait_until(frm, [&] { return loop.now() >= end; });
}

void fill_start_lists(Screen& screen) {
    std::vector<std::string> ports;
    for (int number = lowest_port_number; number <= highest_port_number; ++number)
        ports.push_back("COM" + std::to_string(number));
    fill_list(screen.combCommPort, ports);
    screen.combCommPort.ListIndex = 0;

    fill_list(screen.cobBaudMax, {"115200", "57600", "38400", "28800", "19200", "14400", "12800",
                                  "11520", "9600", "4800", "2400", "1200"});
    screen.cobBaudMax.ListIndex = 0;

    fill_list(screen.comDalay_ReDownLoad, {"9", "8", "7", "6", "5", "4", "3", "2", "1"});
    screen.comDalay_ReDownLoad.ListIndex = 4;
}

}  // namespace vkm::test
