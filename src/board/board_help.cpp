#include "board/board_help.h"

namespace vkm {

const std::string_view board_help_title = "脱机下载板使用说明";
const std::string_view board_help =
    "    脱机下载板装入一次任务后, 不用电脑即可成批下载。\r\n"
    "    Once loaded with a job, the board programs chip after chip without a computer.\r\n"
    "\r\n"
    "1. 装入任务 / Load the job\r\n"
    "  (1) 步骤1选型号, 步骤2打开程序文件, 步骤4设置选项; 编号请先启用“自动增量”。\r\n"
    "      Choose model, file and options (steps 1, 2, 4); enable the numbering if wanted.\r\n"
    "  (2) 填写下载数量上限: 1 到 1000000。达到上限后不再下载, 需重新装入。\r\n"
    "      Enter how many chips the board may program, 1 to 1000000;\r\n"
    "      then it has to be loaded again.\r\n"
    "  (3) 脱机下载板先断电, 接好串口, 点击“下载到脱机下载板”。\r\n"
    "      Board without power, serial line connected: click “下载到脱机下载板”.\r\n"
    "  (4) 看到“请给脱机下载板上电。”后上电。约 5 分钟内不上电则结束; 可随时停止。\r\n"
    "      Switch the board on when asked. It is waited for some 5 minutes; Stop ends that.\r\n"
    "  (5) 看到“下载成功。”即完成。中途停止或失败后板内没有完整任务, 必须重新装入。\r\n"
    "      “Download OK.” ends it. Behind a stop or a failure the board holds\r\n"
    "      no whole job: load it again.\r\n"
    "\r\n"
    "2. 装入什么 / What it takes along\r\n"
    "  型号、选项、程序、自动增量、数量上限。程序最多 51K, 由型号和板的容量决定,\r\n"
    "  超出部分会提示并且不下载。数据文件和数据文件的自动增量不装入。\r\n"
    "  Model, options, program, numbering and limit. Of the program at most 51 K,\r\n"
    "  by model and board; the rest is told and left out.\r\n"
    "  Not the data file, nor its numbering.\r\n"
    "  自动增量: 字节数 1 到 10, 增量 0 到 255, 最后一个编号必须小于 2147483648。\r\n"
    "  Numbering: 1 to 10 bytes, increment 0 to 255, the last number below 2147483648.\r\n"
    "  新任务请核对第二片的编号。/ Check the number of the second chip of a new job.\r\n"
    "\r\n"
    "3. 读 24C512 / Reading the EEPROM\r\n"
    "  维修用: 先把缓冲区 4000 以后的内容写入脱机下载板(板内任务被覆盖!),\r\n"
    "  再读回全部 64K 并显示。没有打开文件时只读不写, 请先给板上电。\r\n"
    "  For service: writes the buffer from 4000 on to the board (the job in it is lost!)\r\n"
    "  and reads all 64 K back into the buffer.\r\n"
    "  Without a file it only reads: switch the board on first.";

}  // namespace vkm
