#include "window/lists.h"

#include "link/baud.h"
#include "platform/serial_port.h"

namespace vkm {
namespace {

using Texts = std::vector<std::string>;

// From `first` to `last`, upward or downward.
Texts numbers(int first, int last) {
    Texts texts;
    const int step = first <= last ? 1 : -1;
    for (int number = first; number != last + step; number += step)
        texts.push_back(std::to_string(number));
    return texts;
}

Texts port_names() {
    Texts texts;
    for (int number = lowest_port_number; number <= highest_port_number; ++number)
        texts.push_back("COM" + std::to_string(number));
    return texts;
}

// The rates of the boot firmware, highest first.
Texts chip_bauds() {
    Texts texts;
    for (auto baud = baud_rates.rbegin(); baud != baud_rates.rend(); ++baud)
        texts.push_back(std::to_string(*baud));
    return texts;
}

// A free choice of rates: the chip's, and what lies beyond at both ends.
Texts terminal_bauds() {
    Texts texts = {"256000", "128000"};
    for (const std::string& baud : chip_bauds()) texts.push_back(baud);
    texts.push_back("600");
    return texts;
}

// Powers of two by which the internal watchdog divides.
Texts prescalers() {
    Texts texts;
    for (int divisor = 2; divisor <= 256; divisor *= 2) texts.push_back(std::to_string(divisor));
    return texts;
}

void add_pins(Texts& texts, int port, int last_pin) {
    for (int pin = 0; pin <= last_pin; ++pin)
        texts.push_back({'P', static_cast<char>('0' + port), '.', static_cast<char>('0' + pin)});
}

// Every port pin that can feed a watchdog while the boot firmware runs.
Texts watchdog_pins() {
    Texts texts;
    for (int port = 0; port <= 3; ++port) add_pins(texts, port, 7);
    add_pins(texts, 4, 3);
    return texts;
}

// The pins offered for an external circuit; P3.6 is not among them.
Texts free_pins() {
    Texts texts;
    add_pins(texts, 1, 7);
    add_pins(texts, 3, 5);
    texts.push_back("P3.7");
    return texts;
}

const Texts data_bits = {"8", "7", "6", "5"};
const Texts parities = {"Even", "Odd", "None"};
const Texts stop_bits = {"1", "2"};

void fill(Control& list, const Texts& texts, std::int32_t chosen) {
    fill_list(list, texts);
    list.ListIndex = chosen;
}

// The four lists of a serial setting, at 115200,n,8,1.
void fill_serial(Control& baud, Control& parity, Control& bits, Control& stop) {
    fill(baud, terminal_bauds(), 2);
    fill(parity, parities, 2);
    fill(bits, data_bits, 0);
    fill(stop, stop_bits, 0);
}

}  // namespace

void Fill_Lists(Screen& s) {
    fill_list(s.combCommPort, port_names());
    fill(s.cobBaudMax, chip_bauds(), 0);
    fill_list(s.comDalay_ReDownLoad, numbers(9, 1));
    fill(s.comWDT_Prescalar, prescalers(), 7);
    fill_list(s.comb_WDT, watchdog_pins());
    fill_list(s.comb_485_pin, free_pins());
    fill_list(s.comb_External_WDT, free_pins());

    fill(s.com_Debug_COM, port_names(), 0);
    fill_serial(s.com_Debug_Baud, s.com_Debug_ParityCheck, s.com_Debug_DataBits,
                s.com_Debug_StopBits);
    fill_serial(s.cobUserCodeBaud, s.cobUserCodeParity, s.cobUserCodeDataBits,
                s.cobUserCodeStopBits);
    fill_serial(s.cob_DEMO_DownLoad_Baud, s.cob_DEMO_DownLoad_Parity, s.cob_DEMO_DownLoad_DataBits,
                s.cob_DEMO_DownLoad_StopBits);
    fill_serial(s.cob_DEMO_UserCode_Baud, s.cob_DEMO_UserCode_Parity, s.cob_DEMO_UserCode_DataBits,
                s.cob_DEMO_UserCode_StopBits);
}

void Choose_First_Options(Screen& s) {
    s.Option0[1].Value = 1;  // normal speed
    s.optFillbyte[0].Value = 1;
    s.opt_ISP_DEMO_WDT[0].Value = 1;
    s.optReceiveHex[0].Value = 1;
    s.optHexSend[0].Value = 1;
    s.optAuto_Increase[0].Value = 1;
    s.optData_Auto_Increase[0].Value = 1;
}

}  // namespace vkm
