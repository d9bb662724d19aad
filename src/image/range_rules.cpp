#include "image/range_rules.h"

#include <algorithm>

#include "catalogue/memory_ranges.h"
#include "catalogue/model_traits.h"
#include "image/image_buffer.h"
#include "image/range_messages.h"

namespace vkm {
namespace {

// The hole of the models with one ends here; from here on lies data memory.
constexpr std::int32_t hole_end = 0x8000;

bool has_gap(const MCU_Record& mcu) {
    return mcu.MCU_Family == 3 || mcu.MCU_Family == 4 || mcu.MCU_Family == 6;
}

RangeVerdict large_54xx_rules(const RangeQuestion& question, const Placement& file) {
    const MCU_Record& mcu = question.mcu;
    const std::int32_t top = question.program_image ? mcu.Data_End : mcu.Data_End - mcu.Data_Start;
    return {.File_High = std::min(file.High, top),
            .message = file.High > top ? over_scope_message(question.english) : std::string(),
            .sum_of_program_field = question.program_image,
            .sum_tail = question.program_image ? SumTail::blanks : SumTail::plain};
}

RangeVerdict gap_rules(const RangeQuestion& question, Placement& file, bool Data_Seen) {
    const MCU_Record& mcu = question.mcu;
    const std::int32_t gap_low = mcu.AP_End + 1;
    const std::int32_t gap_high = mcu.Data_Start - 1;
    const GapFindings found = {.Gap_Filled = holds_data(file.Bytes, gap_low, gap_high),
                               .Gap_Low = gap_low,
                               .Gap_High = gap_high,
                               .Data_Seen = Data_Seen,
                               .Over = file.High > mcu.Data_End};
    clear_area(file.Bytes, gap_low, gap_high);
    return {.File_High = std::min(file.High, mcu.Data_End),
            .message = gap_message(found, question.english),
            .sum_of_program_field = question.program_image};
}

// Above the end of a program only zeros may stand, or data where the chip keeps them.
AreaFindings hex_area_findings(const RangeQuestion& question, Placement& file) {
    const MCU_Record& mcu = question.mcu;
    const std::int32_t limit = question.ISP_Limit;
    AreaFindings found;
    std::int32_t high = file.High;
    if (high >= mcu.ISP_Start) {
        found.Over = true;
        high = mcu.ISP_Start - 1;
    }
    if (!mcu.Split_Flag && high > limit)
        (mcu.MCU_Family == 2 ? found.Data_Seen : found.Over) = true;

    if (mcu.MCU_Family == 2 && has_memory_hole(question.device)) {
        found.Over = holds_data(file.Bytes, limit + 1, hole_end - 1);
        found.Data_Seen = holds_data(file.Bytes, hole_end, mcu.ISP_Start - 1);
        clear_area(file.Bytes, limit + 1, hole_end - 1);
    } else if (mcu.MCU_Family == 2) {
        found.Data_Seen = found.Data_Seen || holds_data(file.Bytes, limit + 1, mcu.ISP_Start - 1);
    } else if (!found.Over && holds_data(file.Bytes, limit + 1, mcu.ISP_Start - 1)) {
        found.Over = true;
        clear_area(file.Bytes, limit + 1, mcu.ISP_Start - 1);
    }
    return found;
}

// A binary file has no gaps: that it reaches an area means that it fills it.
AreaFindings bin_area_findings(const RangeQuestion& question, Placement& file) {
    const MCU_Record& mcu = question.mcu;
    const std::int32_t limit = question.ISP_Limit;
    const bool data_above_program = !mcu.Split_Flag && mcu.MCU_Family == 2;
    AreaFindings found;
    if (data_above_program) {
        found.Data_Seen = file.High > limit;
    } else if (file.High > limit) {
        found.Over = true;
        file.High = limit;
    }
    if (!mcu.Split_Flag && !data_above_program) clear_area(file.Bytes, limit + 1, mcu.Code_Top - 1);

    if (has_memory_hole(question.device)) {
        const auto in_hole = [&](std::int32_t a) { return a > limit && a < hole_end; };
        const bool Hole_Hit = in_hole(file.Start) || in_hole(file.High) ||
                              (file.Start <= limit && file.High >= hole_end);
        found.Over = found.Over || Hole_Hit;
        found.Data_Seen = file.Start >= hole_end || file.High >= hole_end;
        clear_area(file.Bytes, limit + 1, hole_end - 1);
    }
    return found;
}

}  // namespace

RangeVerdict apply_hex_rules(const RangeQuestion& question, Placement& file) {
    const MCU_Record& mcu = question.mcu;
    if (Is_Large_54xx(mcu)) return large_54xx_rules(question, file);
    if (has_gap(mcu)) {
        const bool Data_Seen = holds_data(file.Bytes, mcu.Data_Start, mcu.Data_End);
        return gap_rules(question, file, Data_Seen);
    }
    const AreaFindings found = hex_area_findings(question, file);
    // The sum goes to the program's field, whichever image is loaded.
    return {.File_High = found.Over ? mcu.Data_End : file.High,
            .message = hex_area_message(found, question.english),
            .sum_of_program_field = true};
}

RangeVerdict apply_bin_rules(const RangeQuestion& question, Placement& file) {
    const MCU_Record& mcu = question.mcu;
    if (Is_Large_54xx(mcu)) return large_54xx_rules(question, file);
    if (has_gap(mcu)) return gap_rules(question, file, file.High > mcu.Data_Start);
    const AreaFindings found = bin_area_findings(question, file);
    const bool to_data_end = found.Over && !has_memory_hole(question.device);
    return {.File_High = to_data_end ? mcu.Data_End : file.High,
            .message = bin_area_message(found, question.english),
            .sum_of_program_field = question.program_image};
}

}  // namespace vkm
