#include "session/chip_checks.h"

#include <span>

#include "catalogue/model_traits.h"
#include "session/session_texts.h"
#include "text/numbers.h"

namespace vkm {
namespace {

// Letter B: both W516 answer with one code, so either stands for the other; the
// box may be empty, and so may the name of a chip whose code is unknown.
bool fits_letter_B(const Model_Facts& facts) {
    if (facts.MCU_Info.MCU_Family != 1) return false;
    if (facts.Chip_Name == facts.txtDevice) return true;
    if (is_W516(facts.Chip_Name)) return is_W516(facts.txtDevice) || facts.txtDevice.empty();
    return facts.Chip_Name.empty();
}

bool has_family_and_code(const Model_Facts& facts, std::int16_t family, std::string_view code) {
    return facts.MCU_Info.MCU_Family == family && code == facts.chip_code;
}

// "Clock:11.0592MHz./时钟频率:11.0592M."
std::string clock_line(std::span<const std::string_view, 3> words, double megahertz,
                       bool Show_English) {
    const std::string number = shortest_decimal(megahertz);
    const std::string line = std::string(words[0]) + number;
    if (Show_English) return line + "MHz.";
    return line + std::string(words[1]) + number + std::string(words[2]);
}

}  // namespace

bool chip_fits_model(const Model_Facts& facts) {
    if (facts.Chip_Letter.size() != 1) return true;
    switch (facts.Chip_Letter.front()) {
        case 'A':
            return facts.Block_Size == facts.Chunk_Size;
        case 'B':
            return fits_letter_B(facts);
        case 'C':
            return has_family_and_code(facts, 2, facts.MCU_Info.MCU_ID);
        case 'D':
            return has_family_and_code(facts, 3, facts.MCU_Info.MCU_ID);
        case 'E':  // firmware that reports the older code
            return has_family_and_code(facts, 4, facts.MCU_Info.Old_ID);
        case 'F':
            return is_54xx_series(facts.txtDevice) && belongs_to_54xx_series(facts.Chip_Name);
        case 'G':
            return has_family_and_code(facts, 6, facts.MCU_Info.MCU_ID);
        default:
            return true;
    }
}

std::vector<std::string> clock_lines(const Clock_Facts& facts, bool Show_English) {
    const double clock = facts.Chip_Clock;
    const auto line = [&](std::span<const std::string_view, 3> words, double hertz_per_unit) {
        return clock_line(words, clock / hertz_per_unit, Show_English);
    };
    if (facts.Chip_Letter == "D" || facts.Chip_Letter == "E")
        return {line(session_text::clock, 1e6)};
    const std::string internal = line(session_text::internal_clock, 1e6);
    if (facts.Chip_Letter == "B") return {internal};
    const bool doubled = facts.Chip_Letter == "C" ? facts.double_speed_C : facts.double_speed;
    return {internal, line(session_text::external_clock, doubled ? 2e6 : 1e6)};
}

}  // namespace vkm
