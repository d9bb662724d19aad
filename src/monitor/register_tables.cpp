#include "monitor/register_tables.h"

namespace vkm {
namespace {

// clang-format off
constexpr RegisterRow family_2[] = {
    {"E0H", "ACC"}, {"F0H", "B"}, {"81H", "SP"}, {"83H", "DPH"}, {"82H", "DPL"}, {"D0H", "PSW"},
    {"80H", "P0"}, {"90H", "P1"}, {"A0H", "P2"}, {"B0H", "P3"}, {"E8H", "P4"}, {"E2H", "ISP_DATA"},
    {"E3H", "ISP_ADDRH"}, {"E4H", "ISP_ADDRL"}, {"E5H", "ISP_CMD"}, {"E6H", "ISP_TRIG"},
    {"E7H", "ISP_CONTR"}, {"88H", "TCON"}, {"89H", "TMOD"}, {"8CH", "TH0"}, {"8AH", "TL0"},
    {"8DH", "TH1"}, {"8BH", "TL1"}, {"C8H", "T2CON"}, {"C9H", "T2MOD"}, {"CDH", "TH2"},
    {"CCH", "TL2"}, {"CBH", "RCAP2H"}, {"CAH", "RCAP2L"}, {"8EH", "AUXR"}, {"A2H", "AUXR1"},
    {"A8H", "IE"}, {"C0H", "XICON"}, {"B7H", "IPH"}, {"B8H", "IP"}, {"87H", "PCON"},
    {"E1H", "WDT_CONTR"}, {"98H", "SCON"}, {"99H", "SBUF"}, {"A9H", "SADDR"}, {"B9H", "SADEN"},
};

constexpr RegisterRow family_3[] = {
    {"E0H", "ACC"}, {"F0H", "B"}, {"81H", "SP"}, {"83H", "DPH"}, {"82H", "DPL"}, {"D0H", "PSW"},
    {"90H", "P1"}, {"91H", "P1M0"}, {"92H", "P1M1"}, {"B0H", "P3"}, {"B1H", "P3M0"},
    {"B2H", "P3M1"}, {"E2H", "ISP_DATA"}, {"E3H", "ISP_ADDRH"}, {"E4H", "ISP_ADDRL"},
    {"E5H", "ISP_CMD"}, {"E6H", "ISP_TRIG"}, {"E7H", "ISP_CONTR"}, {"88H", "TCON"}, {"89H", "TMOD"},
    {"8CH", "TH0"}, {"8AH", "TL0"}, {"8DH", "TH1"}, {"8BH", "TL1"}, {"8EH", "AUXR"}, {"A8H", "IE"},
    {"B7H", "IPH"}, {"B8H", "IP"}, {"87H", "PCON"}, {"C7H", "IDLE_CLK"}, {"E1H", "WDT_CONTR"},
    {"98H", "SCON"}, {"99H", "SBUF"}, {"A9H", "SADDR"}, {"B9H", "SADEN"}, {"84H", "SPSTAT"},
    {"85H", "SPCTL"}, {"86H", "SPDAT"}, {"C5H", "ADC_CONTR"}, {"C6H", "ADC_DATA"}, {"D8H", "CCON"},
    {"D9H", "CMOD"}, {"F9H", "CH"}, {"E9H", "CL"}, {"DAH", "CCAPM0"}, {"FAH", "CCAP0H"},
    {"EAH", "CCAP0L"}, {"F2H", "PCA_PWM0"}, {"DBH", "CCAPM1"}, {"FBH", "CCAP1H"}, {"EBH", "CCAP1L"},
    {"F3H", "PCA_PWM1"},
};

constexpr RegisterRow family_4[] = {
    {"E0H", "ACC"}, {"F0H", "B"}, {"81H", "SP"}, {"83H", "DPH"}, {"82H", "DPL"}, {"D0H", "PSW"},
    {"80H", "P0"}, {"90H", "P1"}, {"A0H", "P2"}, {"B0H", "P3"}, {"93H", "P0M0"}, {"94H", "P0M1"},
    {"91H", "P1M0"}, {"92H", "P1M1"}, {"95H", "P2M0"}, {"96H", "P2M1"}, {"B1H", "P3M0"},
    {"B2H", "P3M1"}, {"E2H", "ISP_DATA"}, {"E3H", "ISP_ADDRH"}, {"E4H", "ISP_ADDRL"},
    {"E5H", "ISP_CMD"}, {"E6H", "ISP_TRIG"}, {"E7H", "ISP_CONTR"}, {"88H", "TCON"}, {"89H", "TMOD"},
    {"8CH", "TH0"}, {"8AH", "TL0"}, {"8DH", "TH1"}, {"8BH", "TL1"}, {"8EH", "AUXR"}, {"A8H", "IE"},
    {"B7H", "IPH"}, {"B8H", "IP"}, {"87H", "PCON"}, {"C7H", "CLK_DIV"}, {"E1H", "WDT_CONTR"},
    {"98H", "SCON"}, {"99H", "SBUF"}, {"A9H", "SADDR"}, {"B9H", "SADEN"}, {"84H", "SPSTAT"},
    {"85H", "SPCTL"}, {"86H", "SPDAT"}, {"C5H", "ADC_CONTR"}, {"C6H", "ADC_DATA"},
    {"BEH", "ADC_LOW2"}, {"D8H", "CCON"}, {"D9H", "CMOD"}, {"F9H", "CH"}, {"E9H", "CL"},
    {"DAH", "CCAPM0"}, {"FAH", "CCAP0H"}, {"EAH", "CCAP0L"}, {"F2H", "PCA_PWM0"}, {"DBH", "CCAPM1"},
    {"FBH", "CCAP1H"}, {"EBH", "CCAP1L"}, {"F3H", "PCA_PWM1"}, {"DCH", "CCAPM2"}, {"FCH", "CCAP2H"},
    {"ECH", "CCAP2L"}, {"F4H", "PCA_PWM2"}, {"DDH", "CCAPM3"}, {"FDH", "CCAP3H"}, {"EDH", "CCAP3L"},
    {"F5H", "PCA_PWM3"},
};
// clang-format on

}  // namespace

std::span<const RegisterRow> registers_of_family(std::int16_t MCU_Family) {
    switch (MCU_Family) {
        case 2:
            return family_2;
        case 3:
            return family_3;
        case 4:
            return family_4;
        default:
            return {};
    }
}

}  // namespace vkm
