#include "catalogue/memory_ranges.h"

#include "catalogue/model_traits.h"

namespace vkm {
namespace {

constexpr std::int32_t isp_start_family_3 = 5120;
constexpr std::int32_t isp_start_family_4 = 12288;  // for the larger models too

constexpr std::int32_t large_54xx_least_end = 12289;
constexpr std::int32_t large_54xx_least_data = 101;  // Data_End - Data_Start

}  // namespace

IspRange isp_range(const MCU_Record& record, std::string_view chosen_name) {
    IspRange range{.shown_end = record.AP_End};
    switch (record.MCU_Family) {
        case 0:
            range.ISP_Start = record.Code_Top;
            break;
        case 1:
        case 2:
            range.ISP_Start = record.Memory_Top - isp_size(chosen_name) + 1;
            if (record.Split_Flag) range.shown_end = range.ISP_Start - 1;
            break;
        case 3:
            range.ISP_Start = isp_start_family_3;
            break;
        case 4:
            range.ISP_Start = isp_start_family_4;
            break;
        default:
            break;
    }
    return range;
}

bool Is_Large_54xx(const MCU_Record& record) {
    return record.MCU_Family == 4 && record.AP_End >= large_54xx_least_end &&
           record.Data_End - record.Data_Start >= large_54xx_least_data;
}

}  // namespace vkm
