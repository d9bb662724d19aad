// What the operator is told about project files.
#pragma once

#include <string_view>

#include "screen/message_text.h"

namespace vkm::project_text {

inline constexpr std::string_view save_title = "保存工程文件 *.VKM";
inline constexpr std::string_view open_title = "打开工程文件 *.VKM";
inline constexpr std::string_view filter = "*.VKM |*.VKM|All Files (*.*)|*.*";

inline constexpr MessageText no_file = {"    Please open file.   ",
                                        "    Please open file./请打开应用文件。    "};
// Followed by the path.
inline constexpr MessageText not_saved = {"Can not save the project file: ",
                                          "Can not save the project file / 无法保存工程文件: "};

inline constexpr std::string_view old_version =
    "您使用的是旧版本的工程文件，打开文件后请仔细核对各选项是否正确。\r\n"
    "                         按确认键继续";
// Followed by the model.
inline constexpr std::string_view model_not_found = "找不到 MCU 型号: ";
inline constexpr std::string_view program_sum_wrong = "应用程序代码校验和错。";
inline constexpr std::string_view data_sum_wrong = "数据文件校验和错。";

// The reminder of the next value, then a line for each set that is enabled: what the
// project holds, and what this bench would have given its next chip.
inline constexpr std::string_view check_next_value =
    "若要修改“下一个值(10进制)”，请先点击“允许修改参数和选项”按钮。\r\n"
    "下载前请核对下一个值: 工程文件保存的是存盘时的值, 之后的下载不会改变它。\r\n"
    "Check the next value before the download: a project keeps the value of the time when it "
    "was saved. To change it, click \"允许修改参数和选项\" first.";
inline constexpr std::string_view program_next_value = "程序文件 / Program file: ";
inline constexpr std::string_view data_next_value = "数据文件 / Data file: ";
inline constexpr std::string_view last_saved_value = "    本机上次 / last on this bench: ";

inline constexpr std::string_view help_title = "VKM 工程文件使用说明";
inline constexpr std::string_view help =
    "1. 先选型号、打开程序文件(和数据文件)、设置选项和自动增量, 再点击“保存工程文件”。\r\n"
    "    Choose the model, open the files, set options and numbering, then save the project.\r\n"
    "2. 工程文件包含型号、全部选项、自动增量设置和两个文件的全部内容, 不再需要原文件。\r\n"
    "    A project holds all of that and the bytes of both files; the files are not needed "
    "again.\r\n"
    "3. 点击“打开工程文件”, 参数和选项即被锁定, 可直接下载。\r\n"
    "    Open the project: parameters and options are locked, and Download works at once.\r\n"
    "4. 要修改参数, 先点击“允许修改参数和选项”; 下一次下载结束后又会锁定。\r\n"
    "    To change something, unlock it first; the end of the next download locks again.\r\n"
    "5. 使用自动增量时, 下载前核对“下一个值(10进制)”: 工程文件中的值不随下载改变。\r\n"
    "    With numbering, check the next value: the one in the file doesn't move with the chips.\r\n"
    "6. 校验和错说明文件已损坏, 不能下载, 请用备份或重新保存。\r\n"
    "    A wrong checksum means a damaged file: take a copy, or save the project again.";

}  // namespace vkm::project_text
