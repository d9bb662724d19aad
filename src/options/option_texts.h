// What the operator reads of a chip's options. The texts of the options
// themselves stand in the schema.
#pragma once

#include <string_view>

namespace vkm::option_text {

// ---- the panel ----
inline constexpr std::string_view step_4 = "Step4/步骤4: 设置本框和右下方“选项”中的各项";
inline constexpr std::string_view double_speed = "Double speed / 双倍速:";
inline constexpr std::string_view double_speed_english = "         Double speed:";
inline constexpr std::string_view double_speed_is_burnt =
    "注:一旦烧录双倍速,由编程器擦除整个芯片才可恢复为单倍速\r\n整个芯片才可恢复为单倍速。";
inline constexpr std::string_view no_options = "双倍速、加密位只能由编程器擦除、读、写。";
inline constexpr std::string_view half_gain_remark =
    "     如需低功耗,16MHz 以下振荡器增益可选 1/2 gain";
inline constexpr std::string_view pin_clash = "请不要用同一个 I/O 口线控制 485 和 外部看门狗。";

// ---- the log, followed by what the chip told ----
inline constexpr std::string_view model = "MCU Type is: ";
inline constexpr std::string_view firmware = "MCU Firmware Version: ";
inline constexpr std::string_view firmware_CN = "Chinese:MCU 固件版本号: ";
inline constexpr std::string_view speed_single = "Double speed: No";
inline constexpr std::string_view speed_double = "Double speed: Yes";
inline constexpr std::string_view speed_unknown = "Double speed: Unknown";
inline constexpr std::string_view prescaler_runs = "冷启动后内部看门狗预分频数:            ";
inline constexpr std::string_view prescaler_rests = "冷启动后内部看门狗预分频数(未启用):     ";

// ---- the labels LabLock ----
inline constexpr std::string_view line_model = "MCU Type is:                      ";
inline constexpr std::string_view line_firmware = "MCU Firmware Version / MCU 固件版本号: ";
inline constexpr std::string_view line_speed_single = "Double speed (6 clock) / 双倍速:       No";
inline constexpr std::string_view line_speed_double = "Double speed (6 clock) / 双倍速:       Yes";
inline constexpr std::string_view line_speed_unknown =
    "Double speed (6 clock) / 双倍速:     Unknown";
inline constexpr std::string_view heading = "MCU: ";
inline constexpr std::string_view heading_indented = "     MCU: ";
inline constexpr std::string_view heading_firmware = "    固件版本号: ";

}  // namespace vkm::option_text
