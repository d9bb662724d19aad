#include "platform/qt/control_hints.h"

#include <algorithm>
#include <iterator>

#include "platform/qt/text_mapping.h"

namespace vkm {
namespace {

// clang-format off
// The same for the two images.
constexpr const char* edit_hint = "点击, 当一个字符高亮时可以修改缓冲区 / Click; the buffer can be changed while one character is highlighted";
constexpr const char* numbering_hint = "每片一个编号; 打开文件后须重新启用 / A number for each chip; to be enabled again after each new file";
constexpr const char* number_address_hint = "编号最低字节的地址 (HEX), 编号由此向低地址存放 / Address of the lowest-order byte (HEX); the number extends downward from it";
constexpr const char* number_length_hint = "编号占用的字节数 / Bytes of the number";
constexpr const char* next_number_hint = "下一片的编号 (10进制); 0 不递增 / The next chip's number (decimal); 0 is not counted up";
constexpr const char* increment_hint = "每片成功后加上的数 / Added after each good chip";

// The same for the lists of a serial setting.
constexpr const char* baud_hint = "波特率 / Baud";
constexpr const char* parity_hint = "校验 / Parity";
constexpr const char* data_bits_hint = "数据位 / Data bits";
constexpr const char* stop_bits_hint = "停止位 / Stop bits";

// The same for the three lists of bytes.
constexpr const char* memory_hint = "高亮: 上次停止后改变的行; Ctrl+C 复制选中的行 / Highlighted: changed since the last stop. Ctrl+C copies the selected rows";

constexpr ControlHint hints[] = {
    // Step 1
    {"Command3", -1, 0, "选择型号 / Choose the model"},
    {"txtDevice", -1, 0, "当前型号, 点击选择 / The chosen model; click to choose another"},
    {"txtISP_reange", 0, 0, "程序区首地址 (HEX) / First address of the program memory (HEX)"},
    {"txtISP_reange", 1, 0, "程序区末地址 (HEX) / Last address of the program memory (HEX)"},
    // Step 2
    {"comLoadFile", -1, 'O', "打开程序文件, 也可将文件拖到窗口 / Open a program file, or drop it on the window"},
    {"comLoadDataFile", -1, 'F', "打开写入数据存储区的文件 / Open a file for the data memory"},
    {"txtAP_FileStart", -1, 0, "文件在缓冲区中的起始地址 (HEX) / Where the file begins in the buffer (HEX)"},
    {"txtDataFileStart", -1, 0, "文件在数据区中的起始地址 (HEX) / Where the file begins in the data memory (HEX)"},
    {"txtFileCheckSum", -1, 0, "程序文件各字节之和 / Sum of the bytes of the program file"},
    {"txtDataFileCheckSum", -1, 0, "数据文件各字节之和 / Sum of the bytes of the data file"},
    {"cheClearAP_Buffer", -1, 0, "程序缓冲区: 打开文件前全部写 00 / Program buffer: 00 everywhere before a file is opened"},
    {"cheClearDataBuffer", -1, 0, "数据缓冲区: 打开文件前全部写 00 / Data buffer: 00 everywhere before a file is opened"},
    {"optFillbyte", 0, 'P', "掉电 / Power down"},
    {"optFillbyte", 1, 'e', "软件复位 / Soft reset"},
    // Step 3
    {"combCommPort", -1, 0, "下载用串行口 / The port of the download"},
    {"LabMaxBaud", -1, 'x', "最高波特率 / The fastest rate that may be used"},
    {"imgOpen_sys", -1, 0, "下载串口已打开 / The port of the download is open"},
    {"imgNotOpen_sys", -1, 0, "下载串口已关闭 / The port of the download is closed"},
    // Step 5
    {"comDownload", 0, 'D', "下载一片 / Program one chip"},
    {"comDownload", 1, 'R', "连续下载, 直到出错或停止 / Program chip after chip, until one fails or Stop"},
    {"comStop_Download", -1, 'S', "停止下载 / Stop"},
    {"txtWrite_OK_Count", -1, 0, "下载成功的片数 / Chips programmed well"},
    {"comClear_OK_Count", -1, 'C', "计数清零 / Counter back to 0"},
    {"optBeepYes", -1, 'Y', "每片成功后响一声 / A beep for each good chip"},
    {"optBeepNo", -1, 'N', "成功后不响 / No beep for a good chip"},
    {"Label6", -1, 'l', "连续下载时两片之间的秒数 / Seconds between two chips of Re-Download"},
    {"comDalay_ReDownLoad", -1, 0, "连续下载时两片之间的秒数 / Seconds between two chips of Re-Download"},
    {"comMastWindow", -1, 0, "只留左边的步骤栏 / Leaves the column of steps alone"},
    // Buffers
    {"txtBuffer2", -1, 0, edit_hint},
    {"tetDataFlash2", -1, 0, edit_hint},
    // Monitor
    {"comDebugContinue", -1, 0, "让停在断点的程序继续 / Lets a stopped program go on"},
    {"che_disable_Debug_SFR_232", -1, 'b', "收到数据后不自动应答 / The target's dumps are no longer answered by the tool"},
    {"comDebugClear", 1, 0, "清空寄存器和存储器列表 / The lists as they were at the start"},
    {"comDebugClear", 2, 0, "清空寄存器和存储器列表 / The lists as they were at the start"},
    {"comDebugHelp", 1, 0, "使用说明在串口调试助手中 / The help stands on the page of the serial terminal"},
    {"lst_debug1", -1, 0, "高亮: 上次停止后改变的寄存器; Ctrl+C 复制选中的行 / Highlighted: changed since the last stop. Ctrl+C copies the selected rows"},
    {"lst_debug2", -1, 0, memory_hint},
    {"lst_debug3", -1, 0, memory_hint},
    {"lst_debug4", -1, 0, memory_hint},
    // Assistant
    {"optReceiveHex", -1, 0, "接收区的显示方式 / How received bytes are shown"},
    {"optHexSend", -1, 0, "发送区的内容 / What the text to send is"},
    {"texReceive", -1, 0, "接收的内容; 串口打开时在此按键即发送 / What is received; keys typed here are sent at once while the port is open"},
    {"comDebugClear", 0, 0, "清空接收的内容 / Empties what was received"},
    {"comClearCount", -1, 0, "两个计数清零 / Both counts back to 0"},
    {"comDebugHelp", 0, 0, "在接收区显示使用说明 / Shows the help in the place of the received text"},
    {"labReceiveCount", -1, 0, "收到的字节数 / Bytes received"},
    {"labSendCount", -1, 0, "发送的字节或字符数 / Bytes or characters sent"},
    {"texSend", -1, 0, "要发送的字符串, 每个换行发送为回车换行 / The text to send; each line end is sent as CR LF"},
    {"comDebugSend", -1, 0, "发送一次 / Sends it once"},
    {"comClearSend", -1, 0, "清空要发送的字符串 / Empties the text to send"},
    {"comAutoSend", -1, 0, "每个周期发送一次, 再次点击停止 / Sends it once in each cycle; click again to stop"},
    {"texSendCycle", -1, 0, "自动发送周期 (毫秒) / Cycle of the automatic sending (ms)"},
    {"texSpreadSendCycle", -1, 0, "两个字符串之间的毫秒数 / Milliseconds between two texts"},
    {"comSpreadAutoSend", -1, 0, "依次发送各行非空的字符串, 再次点击停止 / Sends the texts that aren't blank one after the other; click again to stop"},
    {"texSpreadSend", -1, 0, "要发送的字符串 / A text to send"},
    {"cheSpreadHex", -1, 0, "按十六进制发送 / Send as hexadecimal bytes"},
    {"comSpreadSendCom", -1, 0, "发送这一行 / Send this line"},
    {"com_Debug_COM", -1, 0, "串口调试助手的串口 / The port of the terminal"},
    {"com_Debug_Baud", -1, 0, "波特率; 选择后立即打开或关闭串口 / Baud; choosing a rate opens or closes the port"},
    {"com_Debug_DataBits", -1, 0, data_bits_hint},
    {"com_Debug_ParityCheck", -1, 0, parity_hint},
    {"com_Debug_StopBits", -1, 0, stop_bits_hint},
    {"comOpenCOM", -1, 0, "按左边的设置打开或关闭串口 / Opens the port with the settings on the left, or closes it"},
    {"che_AutoOpenPort", -1, 0, "下载结束后自动打开此串口, 观察用户程序 / Opens this port after each download, so that the program is seen at work"},
    {"imgOpen", -1, 0, "串口已打开, 点击关闭 / The port is open; click to close it"},
    {"imgNotOpen", -1, 0, "串口已关闭, 点击打开 / The port is closed; click to open it"},
    {"ImgSplitter", -1, 0, "拖动以改变宽度 / Drag to change the widths"},
    // Projects
    {"texBatchFileName", -1, 0, "当前工程文件 / The project file"},
    {"comOpenBatchFile", -1, 0, "打开工程: 型号, 选项和文件一次设好并锁定 / Opens a project: model, options and files at once, then locked"},
    {"comSaveBatchFile", -1, 0, "将型号, 选项和文件存为一个工程 / Saves model, options and files as one project"},
    {"comLockOptions", -1, 0, "不能再修改参数, 仍可下载 / Nothing can be changed any more; downloads go on"},
    {"comUnlockOptions", -1, 0, "可以修改参数; 打开过工程的, 下载结束后再次锁定 / Free to change; once a project was opened, the end of a download locks again"},
    {"Command1", -1, 0, "怎样使用工程文件 / How to use project files"},
    // Tools
    {"comReadChipLock", -1, 'i', "连接单片机并显示其选项, 不编程 / Connects and shows the options, programs nothing"},
    {"txtUserCode", -1, 0, "下载前发给用户程序的十六进制字节 / Hexadecimal bytes for the running program, sent before the download"},
    {"comSendUserCode", -1, 0, "按以上串口设置发送, 然后下载 / Sends the code at these settings, then downloads"},
    {"cekReloadFileWhileFileChange1", -1, 0, "编译后自动重新打开, 发送命令并下载 / After each build: reads the file again, sends the code, downloads"},
    {"cobUserCodeBaud", -1, 0, baud_hint},
    {"cobUserCodeParity", -1, 0, parity_hint},
    {"cobUserCodeDataBits", -1, 0, data_bits_hint},
    {"cobUserCodeStopBits", -1, 0, stop_bits_hint},
    // The stand-alone board
    {"txt_download_max", -1, 0, "脱机下载板最多下载的片数, 1 到 1000000 / How many chips the board may program, 1 to 1000000"},
    {"comTJXZ", -1, 0, "将型号, 选项, 程序和编号装入脱机下载板; 提示后再上电 / Loads model, options, program and numbering into the board; switch it on when asked"},
    {"com_TJXZ_help", -1, 0, "怎样使用脱机下载板 / How to use the board"},
    {"Read24C512", -1, '2', "将缓冲区写入脱机下载板, 再读回全部 64K; 板内任务丢失! / Writes the buffer to the board and reads all 64 K back; the job in it is lost!"},
    // The user's own ISP program
    {"com_Demo_DownLoad", -1, 'a', "用户 ISP 程序下载一片 / One chip over the user's own ISP program"},
    {"com_Demo_Re_DownLoad", -1, 'w', "用户 ISP 程序连续下载 / Chip after chip over the user's own ISP program"},
    {"com_Demo_Stop", -1, 't', "停止下载 / Stop"},
    {"Text1", -1, 0, "下载时键盘停在此处, 按键不会误触按钮 / The keyboard rests here during a download, so that no key presses a button"},
    {"cob_DEMO_DownLoad_Baud", -1, 0, baud_hint},
    {"cob_DEMO_DownLoad_Parity", -1, 0, parity_hint},
    {"cob_DEMO_DownLoad_DataBits", -1, 0, data_bits_hint},
    {"cob_DEMO_DownLoad_StopBits", -1, 0, stop_bits_hint},
    {"opt_ISP_DEMO_WDT", -1, 0, "普通下载时由引导码用此口喂外部看门狗; ISP DEMO 不发送 / In a usual download the boot firmware feeds an external watchdog over this pin; not sent in an ISP DEMO"},
    {"comb_WDT", -1, 0, "喂外部看门狗的 I/O 口 / The pin that feeds an external watchdog"},
    {"che_Demo_DownLoad", -1, 0, "先以下面的串口参数发送命令, 使用户程序跳到 ISP 程序 / First sends the code at the settings below, by which the program jumps to its ISP program"},
    {"txt_DEMO_UserCode", -1, 0, "发给用户程序的十六进制字节 / Hexadecimal bytes for the running program"},
    {"cob_DEMO_UserCode_Baud", -1, 0, baud_hint},
    {"cob_DEMO_UserCode_Parity", -1, 0, parity_hint},
    {"cob_DEMO_UserCode_DataBits", -1, 0, data_bits_hint},
    {"cob_DEMO_UserCode_StopBits", -1, 0, stop_bits_hint},
    // Numbering, the monitor, a file
    {"cheAuto_Increase", -1, 0, numbering_hint},
    {"texAuto_Increase", 0, 0, number_address_hint},
    {"texAuto_Increase", 1, 0, number_length_hint},
    {"texAuto_Increase", 2, 0, next_number_hint},
    {"texAuto_Increase", 3, 0, increment_hint},
    {"cheData_Auto_Increase", -1, 0, numbering_hint},
    {"texData_Auto_Increase", 0, 0, number_address_hint},
    {"texData_Auto_Increase", 1, 0, number_length_hint},
    {"texData_Auto_Increase", 2, 0, next_number_hint},
    {"texData_Auto_Increase", 3, 0, increment_hint},
    {"optAuto_Increase", 2, 'A', "每字节一个 ASCII 数字 / One ASCII digit in each byte"},
    {"optData_Auto_Increase", 2, 'I', "每字节一个 ASCII 数字 / One ASCII digit in each byte"},
    {"comDownSoft_ICE", -1, 'I', "以仿真监控程序取代下载引导码 / Puts the monitor in the place of the boot firmware"},
    {"comStoreFile", -1, 'v', "将缓冲区的一段存为 .bin 文件 / Saves a piece of the buffer as a .bin file"},
};
// clang-format on

}  // namespace

const ControlHint* hint_of(const Control& control) {
    const auto found = std::find_if(std::begin(hints), std::end(hints), [&](const ControlHint& h) {
        return h.control == control.Name && (h.index < 0 || h.index == control.Index);
    });
    return found == std::end(hints) ? nullptr : &*found;
}

QString marked_caption(const Control& control) {
    QString text = to_qt(control.Caption).replace(u'&', QLatin1String("&&"));
    const ControlHint* hint = hint_of(control);
    if (!hint || hint->mnemonic == 0) return text;
    const auto at = text.indexOf(QLatin1Char(hint->mnemonic));
    return at < 0 ? text : text.insert(at, u'&');
}

}  // namespace vkm
