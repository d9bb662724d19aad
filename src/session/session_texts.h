// What a session tells the operator, both languages side by side. Texts that end
// in "(End: " are followed by the time of day and ")".
#pragma once

#include "link/link_texts.h"
#include "screen/message_text.h"

namespace vkm::session_text {

// ---- the driver ----
inline constexpr MessageText no_file = {"    Please open file.   ",
                                        "    Please open file./请打开文件。    "};
inline constexpr MessageText over_limit = {"程序文件超出此 MCU 固件下载范围, 超出部分不下载。 ",
                                           "程序文件超出此 MCU 固件下载范围, 超出部分不下载。 "};
inline constexpr MessageText block0_locked = {
    "Because Block1 to write Block0 is disable, so program can not continue.",
    "Because Block1 to write Block0 is disable, so program can not continue.\r\n"
    "Chinese:因为由 block1 对 block0 编程已被禁止, 所以不能继续下载程序。"};
inline constexpr MessageText stopped = link_text::stopped;
inline constexpr MessageText program_ok = {"Program OK", "Program OK / 下载 OK"};
inline constexpr MessageText verify_ok = {"Verify  OK ( Total: ", "Verify  OK / 校验 OK "};
inline constexpr std::string_view erase_times = "erase times/擦除时间 :  ";
inline constexpr std::string_view program_times = "program times/下载时间: ";
inline constexpr MessageText encrypted = {"Have already encrypt.",
                                          "Have already encrypt. / 已加密"};
inline constexpr MessageText data_file_not_sent = {
    "The data file was not sent.", "The data file was not sent. / 数据文件未下载。"};
inline constexpr MessageText data_file_cut = {
    "The data file was not wholly sent.",
    "The data file was not wholly sent. / 数据文件未全部下载。"};
inline constexpr MessageText program_number_not_sent = {
    "The program's number was not sent.",
    "The program's number was not sent. / 程序文件的编号未下载。"};
inline constexpr MessageText data_number_not_sent = {
    "The data's number was not sent.", "The data's number was not sent. / 数据文件的编号未下载。"};
inline constexpr MessageText count_not_saved = {
    "The counter and the next number can not be saved!",
    "The counter and the next number can not be saved! / 计数和下一个值无法保存!"};
inline constexpr MessageText succeeded = {"Program succeed.", "Program succeed. / 下载成功."};
inline constexpr std::string_view next_chip = "After a few seconds re-connect will continue.  ";
inline constexpr std::string_view next_chip_CN = "Chinese:几秒钟后将继续下载下一个 MCU...  ";

// ---- a target's own program: the user code that it jumps by, its line settings ----
inline constexpr MessageText no_file_for_code = {"Please open file.",
                                                 "Please open file./请打开文件。"};
inline constexpr std::string_view panel_port_title = "  调试用串口     ";
// Followed by the settings.
inline constexpr MessageText settings_refused = {
    "The port does not take these settings: ",
    "The port does not take these settings / 串口不支持此参数: "};

// ---- download over a user's own ISP program ----
inline constexpr MessageText no_file_for_demo = {"  Please open file. ",
                                                 " Please open file./请打开文件。"};
inline constexpr MessageText demo_connected = {"Connection is OK...",
                                               "Connection is OK... / 握手成功..."};
inline constexpr MessageText demo_reading_version = {"We are read MCU Firmware Version ...",
                                                     "We are read MCU Firmware Version ..."};
inline constexpr MessageText demo_version_failed = {
    "Read MCU Option is failed. (End: ", "Read MCU Option is failed. / 读 Option 失败 (End: "};
inline constexpr MessageText demo_program_ok = {"Program OK.", "Program OK / 下载 OK"};
// Followed by the length and " )".
inline constexpr MessageText demo_verify_ok = {"Verify  OK ( Total: ",
                                               "Verify  OK / 校验 OK  ( Total: "};

// ---- the debug monitor in place of the boot firmware ----
inline constexpr std::string_view monitor_file_missing = "找不到文件 ";
inline constexpr std::string_view monitor_file_empty[] = {
    "文件 ", " 是空的, 或无法读取。\r\nThe file is empty or can not be read."};
inline constexpr std::string_view ask_for_monitor =
    "Write SoftICE program, the DownLoad Code will be erased!\r\n"
    " Chinese: 烧录 SoftICE 程序, 将会删除下载引导码。\r\n"
    "          Continue?/ 继续吗?  (Y/N)";
inline constexpr std::string_view ask_for_model =
    "Please check MCU type / 请确认 MCU 型号是否正确\r\n"
    "        Continue?/ 继续吗?  (Y/N)";
inline constexpr MessageText monitor_done = {
    "Download Soft_ICE is succeed.\r\n"
    "Chinese:下载 Soft_ICE 成功。",
    "Download Soft_ICE is succeed /下载 Soft_ICE 成功"};

// ---- connecting ----
inline constexpr MessageText connecting = {"We are trying to connect to your MCU ... ",
                                           "We are trying to connect to your MCU ... \r\n"
                                           "Chinese:正在尝试与 MCU/单片机 握手连接 ... "};
inline constexpr MessageText handshake_failed = link_text::handshake_failed_at;
inline constexpr MessageText baud_now = {"Now baud is: ", "Now baud is: / 当前波特率为: "};
inline constexpr MessageText wrong_model = {"MCU Type is wrong. ",
                                            "MCU Type is wrong. / MCU 型号错, 请重选"};
inline constexpr MessageText wrong_model_box = {
    "MCU Type is wrong, please select another MCU and open the file again.",
    "MCU Type is wrong, please select another MCU and open the file again.\r\n"
    "         Chinese:MCU 型号错。请重选 MCU、重新打开文件。"};
// A clock line: the first, MHz, the second, MHz again, the third.
inline constexpr std::string_view clock[] = {"Clock:", "MHz./时钟频率:", "M."};
inline constexpr std::string_view internal_clock[] = {
    "Internal clock:", "MHz./内部时钟频率:", "M."};
inline constexpr std::string_view external_clock[] = {
    "External clock:", "MHz./外部时钟频率:", "M."};

// ---- erase ----
inline constexpr MessageText erasing = {
    "We are erasing application flash...",
    "We are erasing application flash...\r\n正在擦除应用程序区..."};
inline constexpr MessageText erase_failed = {"Erase application is failed. (End: ",
                                             "Erase application is failed. / 擦除失败 (End: "};
inline constexpr MessageText erase_advice = {
    "Try to use the lower baud.", "Try to use the lower baud. / 请尝试用稍低的波特率下载。"};

// ---- programming ----
inline constexpr MessageText programming = {"Programming...", "Programming.../ 正在下载..."};
inline constexpr MessageText program_failed = {"Program is failure. (End: ",
                                               "Program is failure. / 下载失败 (End: "};
inline constexpr MessageText program_advice = {
    "Try to use the lower baud. ", "Try to use the lower baud. / 请尝试用稍低的波特率下载。"};

// The cut at the boot firmware: kilobytes stand between the two pieces.
inline constexpr std::string_view cut_at[] = {"Enable ", "K file size for this Version firmware."};
inline constexpr std::string_view cut_at_CN[] = {
    "\r\n\r\nChinese:此版本固件最多可编程 ", "K, 您的文件已超长，\r\n        超长部分不下载。\r\n"};
inline constexpr std::string_view cut_note[] = {"(Downloaded ", "K only)"};
inline constexpr std::string_view cut_note_CN = "(有一部分数据未下载)。";

// ---- option bytes ----
inline constexpr MessageText options_ok = {"Config option OK. ",
                                           "Config option OK. / 设置选项成功。"};
inline constexpr MessageText options_failed = {"Config option are error!",
                                               "Config option are error! / 设置选项失败。"};
// The oldest chips, in both languages, followed by the time of the end.
inline constexpr std::string_view options_end = " (End: ";
inline constexpr std::string_view double_speed_done = "Lock Chip, set 6 Clock OK/双倍速成功";
inline constexpr MessageText read_version_ok = {"Read MCU Firmware Version OK.",
                                                "Read MCU Firmware Version OK. / 读版本号成功."};
inline constexpr MessageText read_options_ok = {"Read Chip Lock OK. ",
                                                "Read Chip Lock OK. / 读选项成功."};
inline constexpr MessageText read_options_failed = {"Failed to read Options.",
                                                    "Failed to read Options. / 读选项失败."};

// ---- a chip that stays silent ----
inline constexpr std::string_view advice[] = {
    "Connection is failure. You can try:",
    " 1.Give your MCU Power On Reset.",
    " 2.Stop operation, then re-select COM Port.",
    " 3.Because PLCC-DIP/PQFP-DIP Socket trace too long.",
    " 4.Update the VKM ISP.exe version.",
    " 5.If still error, your MCU Firmware is error",
    "   or null.",
};
inline constexpr std::string_view advice_CN[] = {
    "Chinese:连接失败，请尝试以下操作：",
    " 1.给 MCU/单片机上电复位(冷启动，先没有电，再上电)。",
    " 2.停止下载，重新选择 RS-232 串口, 接好电缆。",
    " 3.因 PLCC、PQFP 转换座引线过长而引起时钟振荡不对，请调整参数。",
    " 4.可能要升级电脑端的 VKM ISP.exe 软件。",
    " 5.若仍然不成功，可能 MCU/单片机内无 ISP 系统引导码，",
    "   或需退回升级，或 MCU 已损坏。",
    " 仍在连接中, 请给 MCU 上电...",
};
// Over the link of a user's own ISP program.
inline constexpr std::string_view demo_advice[] = {
    "连接失败，请尝试以下操作：",
    " 1.重新选择 RS-232 串口, 接好电缆，打开电源。",
    " 2.检查波特率、奇偶位、数据位、停止位是否正确。",
    " 3.因 PLCC、PQFP 转换座引线过长而引起时钟振荡不对，请调整参数。",
    " 4.可能要升级电脑端的 VKM ISP.exe 软件。",
    " 5.若仍然不成功，可能 MCU/单片机内无 ISP 系统引导码，",
    "   或需退回升级，或 MCU 已损坏。",
    " 仍在连接中, 请给 MCU 上电...",
};

// ---- the verdict beside the counter: a sign, so that it never speaks by colour alone ----
inline constexpr MessageText verdict_running = {"… Running", "… Running / 正在进行"};
inline constexpr MessageText verdict_done = {"✔ OK", "✔ OK / 成功"};
inline constexpr MessageText verdict_failed = {"✘ Failed: ", "✘ Failed / 失败: "};
inline constexpr MessageText verdict_stopped = {"■ Stopped", "■ Stopped / 已停止"};
inline constexpr MessageText step_connect = {"Connect", "Connect / 连接"};
inline constexpr MessageText step_identify = {"Identify model", "Identify model / 识别型号"};
inline constexpr MessageText step_read_options = {"Read options", "Read options / 读选项"};
inline constexpr MessageText step_erase = {"Erase", "Erase / 擦除"};
inline constexpr MessageText step_program = {"Program", "Program / 下载"};
inline constexpr MessageText step_read_board = {"Read 24C512", "Read 24C512 / 读 24C512"};
inline constexpr MessageText step_read_monitor = {"Read monitor file",
                                                  "Read monitor file / 读仿真监控文件"};
inline constexpr MessageText step_write_options = {"Write options", "Write options / 写选项"};

}  // namespace vkm::session_text
