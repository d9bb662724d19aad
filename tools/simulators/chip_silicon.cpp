#include "simulators/chip_silicon.h"

#include <algorithm>
#include <string>

#include "catalogue/model_lookup.h"
#include "catalogue/model_traits.h"

namespace vkm::sim {
namespace {

constexpr std::uint8_t last_firmware_of_small_54xx = 0x50;  // up to 5.0 it knows 12 K of flash
constexpr std::size_t shortest_answer = 6;                  // start, length, code, sum, end mark
constexpr std::size_t longest_answer = 0xFFFF;
constexpr std::uint8_t first_firmware_with_feature = 0x26;

struct LetterTraits {
    char letter;
    std::uint8_t version;       // of a common firmware
    std::size_t status_length;  // length field
};

constexpr LetterTraits letters[] = {
    {'A', 0x25, 25}, {'B', 0x24, 26}, {'C', 0x38, 28}, {'D', 0x38, 33},
    {'E', 0x50, 33}, {'F', 0x52, 33}, {'G', 0x38, 34},
};

const LetterTraits* traits_of(char letter) {
    const auto* found = std::find_if(std::begin(letters), std::end(letters),
                                     [letter](const auto& row) { return row.letter == letter; });
    return found == std::end(letters) ? nullptr : found;
}

char usual_letter(const MCU_Record& model) {
    switch (model.MCU_Family) {
        case 0:
            return 'A';
        case 1:
            return 'B';
        case 2:
            return 'C';
        case 3:
            return 'D';
        case 4:
            return model.Old_ID.empty() ? 'F' : 'E';
        case 6:
            return 'G';
        default:
            return 0;
    }
}

// Group 0 has the placeholder FF, which no chip reports.
std::vector<std::uint8_t> id_bytes(const MCU_Record& model, char letter) {
    const std::string code = letter == 'E' && !model.Old_ID.empty() ? model.Old_ID : model.MCU_ID;
    std::vector<std::uint8_t> bytes;
    if (model.MCU_Family == 0) return bytes;
    for (std::size_t i = 0; i + 1 < code.size(); i += 2)
        bytes.push_back(static_cast<std::uint8_t>(std::stoi(code.substr(i, 2), nullptr, 16)));
    return bytes;
}

std::int32_t firmware_size(const ChipConfig& config, const Silicon& chip) {
    if (has_2k_isp(config.model)) return 2048;
    const bool told = chip.status_length > 27 && chip.version >= first_firmware_with_feature;
    return told ? 1024 + 512 * (config.feature & 3) : 1024;
}

std::int32_t flash_size(const MCU_Record& model, const ChipConfig& config, const Silicon& chip) {
    switch (model.MCU_Family) {
        case 1:
            return model.Split_Flag ? model.Memory_Top + 1 - firmware_size(config, chip)
                                    : model.AP_End + 1;
        case 2:
            return model.Memory_Top + 1 - firmware_size(config, chip);
        case 4:
            return chip.letter == 'E' && chip.version <= last_firmware_of_small_54xx
                       ? 0x3000
                       : model.Code_Top;
        case 3:
        case 6:
            return model.Code_Top;
        default:
            return model.AP_End + 1;
    }
}

constexpr int options_ab[] = {0};
constexpr int options_c[] = {1};
constexpr int options_def[] = {2, 3, 8, 10, 11};
constexpr int options_g[] = {0, 3, 4, 8, 10, 11};

}  // namespace

std::optional<Silicon> silicon_of(const ChipConfig& config) {
    const auto model = record_by_name(config.model);
    if (!model || model->MCU_Name.empty()) return std::nullopt;
    Silicon chip;
    chip.letter = config.letter != 0 ? config.letter : usual_letter(*model);
    const LetterTraits* traits = traits_of(chip.letter);
    if (traits == nullptr) return std::nullopt;

    chip.family = model->MCU_Family;
    chip.version =
        config.version >= 0 ? static_cast<std::uint8_t>(config.version) : traits->version;
    chip.status_length = traits->status_length;
    if (config.status_length > 0)
        chip.status_length = std::clamp<std::size_t>(static_cast<std::size_t>(config.status_length),
                                                     shortest_answer, longest_answer);
    chip.id = config.id ? *config.id : id_bytes(*model, chip.letter);
    chip.flash_size = static_cast<std::uint32_t>(flash_size(*model, config, chip));
    chip.program_end = static_cast<std::uint32_t>(model->AP_End + 1);
    chip.sector = chip.family == 0 ? 128 : 512;
    return chip;
}

std::span<const int> option_numbers_of(char letter) {
    switch (letter) {
        case 'C':
            return options_c;
        case 'D':
        case 'E':
        case 'F':
            return options_def;
        case 'G':
            return options_g;
        default:
            return options_ab;
    }
}

OptionBytes factory_options(char letter, bool double_speed) {
    OptionBytes options;
    options.fill(0xFF);
    switch (letter) {
        case 'A':
            options[0] = double_speed ? 0x48 : 0x40;
            break;
        case 'C':
            options[1] = double_speed ? 0xFC : 0xFD;
            break;
        case 'D':
        case 'E':
        case 'F':
            options[8] = 0xF7;
            break;
        default:
            break;
    }
    return options;
}

bool is_double_speed(char letter, const OptionBytes& options) {
    if (letter == 'A') return (options[0] & 0x08) != 0;
    if (letter == 'C') return (options[1] & 0x01) == 0;
    return false;
}

}  // namespace vkm::sim
