// What the operator reads of the link, in both languages.
#pragma once

#include "screen/message_text.h"

namespace vkm::link_text {

inline constexpr MessageText open_failed = {"Open COM port failure!",  //
                                            "Open COM port failure! / 打开串口失败!"};
inline constexpr MessageText port_taken_or_missing = {
    "The COM port opened by another Program or no the COM port.",
    "The COM port opened by another Program or no the COM port.\r\n"
    "Chinese:串口已被其它程序打开或该串口不存在。"};
inline constexpr MessageText reading_lock = {
    "We are Reading Chip Lock.",  //
    "We are Reading Chip Lock./ 正在读加密位,双倍速,版本号"};
inline constexpr MessageText trying_to_program = {"We are trying to program ...",
                                                  "We are trying to program ...\r\n"
                                                  "Chinese:正在进入正式编程阶段 ..."};
inline constexpr MessageText stopped = {"Operation is stop. ",  //
                                        "Operation is stop. / 操作被停止."};
inline constexpr MessageText handshake_failed = {"Handshake is failed.",  //
                                                 "Handshake is failed. / 握手失败"};
// Followed by the time of day and ")".
inline constexpr MessageText handshake_failed_at = {"Handshake is failed. (End: ",  //
                                                    "Handshake is failed. / 握手失败 (End: "};

}  // namespace vkm::link_text
