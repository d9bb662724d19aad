// What the board's flows tell the operator. Pairs stand on two lines, English first.
#pragma once

#include "screen/message_text.h"

namespace vkm::board_text {

// ---- the link ----
inline constexpr MessageText open_failed = {
    "Open COM port is failure!\r\n"
    "The COM port opened by another Program or no the COM port.",
    "Open COM port is failure!\r\n"
    "The COM port opened by another Program or no the COM port.\r\n"
    "打开串口失败!\r\n"
    "串口已被其它程序打开或不存在。"};
inline constexpr MessageText connecting = {"We are connecting ... ",
                                           "We are connecting ... \r\n"
                                           "正在连接..."};
inline constexpr MessageText power_on = {"Please turn power on.",
                                         "Please turn power on.\r\n"
                                         "请给脱机下载板上电。"};
// Followed by the version.
inline constexpr MessageText version = {"Version: ", "脱机下载固件版本号: "};
inline constexpr MessageText connected = {"Connect OK.", "Connect OK. / 连接成功。"};
inline constexpr MessageText connect_failed = {"Communication is failure!",
                                               "Communication is failure!\r\n"
                                               "连接失败。"};
inline constexpr MessageText stopped = {"Operation is stop.",
                                        "Operation is stop.\r\n"
                                        "操作被停止."};
inline constexpr MessageText erasing = {"We are erasing all ...",
                                        "We are erasing all ...\r\n"
                                        "正在擦除全片内容..."};
inline constexpr MessageText erase_failed = {"Erase application is failed.",
                                             "Erase application is failed.\r\n"
                                             "擦除失败"};
inline constexpr MessageText downloading = {"We are download ...",
                                            "We are download ...\r\n"
                                            "正在下载 ..."};
inline constexpr MessageText download_failed = {"Download is failure!",
                                                "Download is failure!\r\n"
                                                "下载失败。"};
inline constexpr MessageText second_stage_failed = {"Erase application is failed.",
                                                    "Erase application is failed.\r\n"
                                                    "下载失败。"};
inline constexpr MessageText downloaded = {"Download OK.", "Download OK. / 下载成功。"};

// ---- laying the job out ----
inline constexpr std::string_view limit_too_small = "脱机下载板下载数量上限应大于 0。";
inline constexpr std::string_view limit_too_great = "脱机下载板下载数量上限应小于、等于 1000000。";
inline constexpr std::string_view numbers_too_great =
    "自动增量下一值 + (增量*脱机下载板下载数限量) 太大( >2147483648 ), \r\n"
    "请减小自动增量下一值, 或减小增量, 或减小脱机下载板下载数限量";
// The board has a byte for each of them.
inline constexpr std::string_view number_too_wide =
    "脱机下载板的自动增量: 字节数应为 1 到 10, 增量应为 0 到 255。\r\n"
    "The board counts numbers of 1 to 10 bytes by increments of 0 to 255.";
inline constexpr MessageText numbering_gone = {
    "The file was read again, which switched the numbering off. Untick 每次下载前重新打开文件, "
    "then enable the numbering.",
    "已重新打开文件, 自动增量因此关闭。请取消“每次下载前重新打开文件”, 再启用自动增量。\r\n"
    "The file was read again, which switched the numbering off.\r\n"
    "Untick 每次下载前重新打开文件, then enable the numbering."};
// Between the pieces the address, in hexadecimal.
inline constexpr std::string_view code_left_out[] = {
    "The program from address ",
    "H on is not on the board. / 该地址以后的程序没有装入脱机下载板。"};
// Kilobytes stand between the two pieces.
inline constexpr std::string_view code_cut[] = {"此脱机下载板版本或该型号的 MCU 最多下载",
                                                "K 程序和数据, 超出部分将不下载。\r\n"
                                                "                      按确定继续"};
inline constexpr MessageText processing = {"we are  processing data, please wait...",
                                           "we are  processing data, please wait...\r\n"
                                           "正在处理数据，请稍候..."};

// ---- reading the storage back ----
inline constexpr MessageText read_open_failed = {
    "Open COM port failure!\r\n"
    "The COM port opened by another Program or no the COM port.",
    "Open COM port failure! / 打开串口失败!\r\n"
    "The COM port opened by another Program or no the COM port.\r\n"
    "Chinese:串口已被其它程序打开或该串口不存在。"};
inline constexpr std::string_view reading = "正在读 24C512 ...";
inline constexpr std::string_view reading_stopped = "操作被停止.";
inline constexpr std::string_view reading_failed = "读 24C512 失败";
inline constexpr std::string_view reading_done = "读 24C512 OK";

}  // namespace vkm::board_text
