// What the terminal shows, in the language of its page.
#pragma once

#include <string_view>

namespace vkm::assistant_text {

// A button's caption also tells what it would do, and so what runs.
inline constexpr std::string_view open_port = "打开串口";
inline constexpr std::string_view close_port = "关闭串口";
inline constexpr std::string_view start_auto_send = "自动发送";
inline constexpr std::string_view stop_auto_send = "停止自动发送";
inline constexpr std::string_view start_spread_send = "自动循环发送";
inline constexpr std::string_view stop_spread_send = "停止循环发送";

inline constexpr std::string_view receive_count = "接收计数:";
inline constexpr std::string_view send_count = "发送计数:";

inline constexpr std::string_view title = "  串口调试助手     ";
inline constexpr std::string_view port_refused = "串口不能打开 / The port can't be opened";

inline constexpr std::string_view auto_send_too_short = "自动发送周期太小";
inline constexpr std::string_view spread_send_too_short = "间隔时间太短";

inline constexpr std::string_view hex_title = "串口调试助手:十六进制发送";
inline constexpr std::string_view hex_bad_at = "           第 ";
inline constexpr std::string_view hex_bad_character = " 个字符有误: ";
inline constexpr std::string_view hex_advice =
    "  (计数包括空格数)\r\n\r\n"
    "请输入 HEX 格式数据: 0-9, A-F, a-f, 每 2 个字符之间隔 1 个空格，\r\n\r\n"
    "                如果自动发送已打开将会被关闭。";

inline constexpr std::string_view help_is_elsewhere =
    "请点击串口调试助手，再点击串口调试助手中的“使用说明”按钮。";

}  // namespace vkm::assistant_text
