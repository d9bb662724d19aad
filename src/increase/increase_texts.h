// What the operator is told about the numbering.
#pragma once

#include <string_view>

namespace vkm::increase_text {

inline constexpr std::string_view program_title = "设置程序文件自动增量";
inline constexpr std::string_view data_title = "设置数据文件自动增量";

inline constexpr std::string_view address_too_high = "自动增量低位地址太大";
inline constexpr std::string_view address_too_low = "自动增量低位地址太小或字节数太长";

inline constexpr std::string_view not_decimal = " '下一个值' 应输入10进制数";
inline constexpr std::string_view too_great = "下一值必须小于 2147483648。";
inline constexpr std::string_view too_few_bytes = "自动增量字节数太小";
inline constexpr std::string_view too_many_hexadecimal = "选择 16进制时，字节数必须小于或等于 4。";
inline constexpr std::string_view too_many_decimal = "字节数必须小于或等于 10。";

}  // namespace vkm::increase_text
