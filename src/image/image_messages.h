// The texts of loading and saving, in both languages. Those about ranges are
// put together in range_messages.h.
#pragma once

#include <string_view>

#include "screen/message_text.h"

namespace vkm::image_text {

inline constexpr std::string_view range_box_title = "Open HEX file";

// The whole line stands behind it.
inline constexpr MessageText bad_checksum = {"Checksum is Error:\r\n\r\n", "校验和错:\r\n\r\n"};
inline constexpr MessageText go_on_unchecked = {
    "Not test Checksum and continue, input Y\r\n\r\n"
    "Stop Load File, input N",
    "不再检测校验和, 继续加载文件请输入 Y\r\n\r\n"
    "中止加载文件, 立即返回请输入 N"};

inline constexpr MessageText start_out_of_range_program = {
    "Buffer Start Address Outrun the valid scope. \r\n",
    "Buffer Start Address Outrun the valid scope. \r\n"
    "   缓冲区起始地址超出有效空间。"};
inline constexpr MessageText start_out_of_range_data = {
    "Buffer Start Address Outrun the valid scope. \r\n",
    "Buffer Start Address Outrun the valid scope. \r\n"
    "        缓冲区起始地址超出有效空间。"};

inline constexpr MessageText file_gone = {"Can not find the file.",
                                          "Can not find the file./找不到文件"};

// Overwriting digits in the hex view.
inline constexpr MessageText ask_to_edit = {"Update the buffer ?",
                                            "Update the buffer? / 修改缓冲区内容吗?"};
inline constexpr MessageText nothing_to_edit = {" Please open file.",
                                                "    Please open file./请打开文件。    "};

// Dialogs, and the captions that a chosen path stands behind.
inline constexpr std::string_view open_title = "Open file ( *.hex or *.bin )";
inline constexpr std::string_view open_data_title = "Open Data file ( *.hex or *.bin )";
inline constexpr std::string_view open_filter =
    "(*.hex, *.bin)|*.hex;*.bin|(*.bin)|*.bin|All Files (*.*)|*.*";
inline constexpr std::string_view save_title = "Save .bin file";
inline constexpr std::string_view save_filter = "(*.bin)|*.bin|All Files (*.*)|*.*";
inline constexpr std::string_view program_caption = "File Buffer: ";
inline constexpr std::string_view data_caption = "Data File: ";

// Save File shows both languages at once.
inline constexpr std::string_view start_too_small =
    "Start Address is small in 0.\r\n"
    "      起始地址小于 0。";
inline constexpr std::string_view start_too_big =
    "Start Address is too big.\r\n"
    "起始地址太大。";
inline constexpr std::string_view length_too_small =
    "File length too small.\r\n"
    "文件长度不能小于 0。";
inline constexpr std::string_view length_too_big =
    "File length too big.\r\n"
    "文件长度太大。";

}  // namespace vkm::image_text
