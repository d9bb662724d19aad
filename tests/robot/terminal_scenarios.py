"""The serial terminal."""

import time

from bench import collection, expect, expect_equal, program
from expectations import PROGRAM_OK, expect_done
from terminal import (Line, at_terminal, expect_open, settings_of, terminal_at, wait_for_boxes,
                      with_open_terminal)

HEX_TITLE = "串口调试助手:十六进制发送"
PORT_TITLE = "  串口调试助手     "

scenarios, scenario = collection()


# ---- the port --------------------------------------------------------------------------


@scenario("the terminal opens and closes by its button, its lamps and its rates")
def _(bench):
    robot, line = at_terminal(bench)
    expect_open(robot, False)
    robot.click("comOpenCOM")
    expect_open(robot)
    expect_equal(line.baud(), 115200, "rate")
    expect_equal(robot.get("imgOpen_sys", "Visible"), True, "picture beside the download's port")
    robot.click("comOpenCOM")
    expect_open(robot, False)
    expect_equal(robot.get("imgOpen_sys", "Visible"), False, "picture beside the download's port")
    robot.click("imgNotOpen")
    expect_open(robot)
    robot.click("imgOpen")
    expect_open(robot, False)
    for baud in ("256000", "128000", "14400", "12800", "11520", "600"):
        robot.choose("com_Debug_Baud", text=baud)
        expect_open(robot)
        expect_equal(line.baud(), int(baud), "rate")
        robot.choose("com_Debug_Baud", text=baud)
        expect_open(robot, False)
    expect_equal(robot.boxes(), [], "boxes")


@scenario("the lamp beside the download's port follows only when both lists name the same port")
def _(bench):
    line = Line(bench.folder)
    bench.started.append(line)
    robot = bench.robot(ports={2: line.device})
    robot.choose("TabStrip2", key="Debug_COM")
    robot.choose("com_Debug_COM", index=1)
    robot.click("comOpenCOM")
    expect_open(robot)
    expect_equal(robot.get("imgOpen_sys", "Visible"), False, "picture beside the download's port")


@scenario("a port that isn't there is told once and leaves the terminal closed")
def _(bench):
    settings_of(bench, DebugCOM=40)
    robot, line = at_terminal(bench)
    expect_equal(robot.get("com_Debug_COM", "ListIndex"), -1, "entry of a port that no list has")
    robot.click("comOpenCOM")
    box = wait_for_boxes(robot, 1)[0]
    expect_equal(box["title"], PORT_TITLE, "title")
    expect(box["text"], "the box says nothing")
    expect_open(robot, False)
    robot.choose("com_Debug_COM", index=0)
    robot.click("comOpenCOM")
    expect_open(robot)


# ---- both ways ---------------------------------------------------------------------------


@scenario("text goes both ways in the code page of the target")
def _(bench):
    robot, line = with_open_terminal(bench)
    robot.enter("texSend", "你好, VKM\n!")
    robot.click("comDebugSend")
    expect_equal(line.hears(12), "你好, VKM\r\n!".encode("gbk"), "bytes sent")
    robot.wait("labSendCount", "Caption", equals="发送计数:10")
    line.say("温度: 23℃\r\nOK\r\n".encode("gbk"))
    robot.wait("texReceive", "Text", equals="温度: 23℃\r\nOK\r\n")
    expect_equal(robot.get("labReceiveCount", "Caption"), "接收计数:16", "count")
    expect_equal(robot.value("Receive_Count"), 16, "Receive_Count")
    expect_equal(robot.get("texReceive", "SelStart"), 13, "insertion point")
    robot.click("comDebugClear(0)")
    robot.wait("texReceive", "Text", equals="")
    robot.click("comClearCount")
    robot.wait("labReceiveCount", "Caption", equals="接收计数:0")
    expect_equal(robot.get("labSendCount", "Caption"), "发送计数:0", "count")
    robot.click("comClearSend")
    robot.wait("texSend", "Text", equals="")


@scenario("hexadecimal goes both ways")
def _(bench):
    robot, line = with_open_terminal(bench)
    robot.check("optHexSend(1)")
    robot.check("optReceiveHex(1)")
    for text, sent in (("12 34 AB CD FF", "1234ABCDFF"), ("1234", "1234"), ("a 5 cd", "0A05CD")):
        robot.enter("texSend", text)
        robot.click("comDebugSend")
        expect_equal(line.hears(len(sent) // 2), bytes.fromhex(sent), text)
    robot.wait("labSendCount", "Caption", equals="发送计数:10")
    line.say(bytes(range(256)))
    everything = "".join(f"{byte:02X} " for byte in range(256))
    robot.wait("texReceive", "Text", equals=everything)
    robot.check("optReceiveHex(0)")
    line.say(b"text")
    robot.wait("texReceive", "Text", equals=everything + "text")


@scenario("a character that is no digit is named, and ends both cycles with one box")
def _(bench):
    robot, line = at_terminal(bench)
    robot.check("optHexSend(1)")
    robot.enter("texSend", "1G")
    robot.enter("texSendCycle", "20")
    robot.enter("texSpreadSend(0)", "x")
    robot.enter("texSpreadSendCycle", "60000")
    robot.click("comSpreadAutoSend")
    robot.click("comAutoSend")
    box = wait_for_boxes(robot, 1)[0]
    expect_equal(box["title"], HEX_TITLE, "title")
    expect_equal(
        box["text"].replace("\r\n", "\n"),
        "           第 2 个字符有误: G  (计数包括空格数)\n\n"
        "请输入 HEX 格式数据: 0-9, A-F, a-f, 每 2 个字符之间隔 1 个空格，\n\n"
        "                如果自动发送已打开将会被关闭。",
        "text",
    )
    robot.wait("comAutoSend", "Caption", equals="自动发送")
    expect_equal(robot.get("comSpreadAutoSend", "Caption"), "自动循环发送", "caption")
    line.hears_nothing(0.3)
    expect_equal(len(robot.boxes()), 1, "boxes")


@scenario("keys typed into the received text go out at once")
def _(bench):
    robot, line = at_terminal(bench)
    robot.do("keys", on="texReceive", text="lost")
    robot.click("comOpenCOM")
    expect_open(robot)
    robot.do("keys", on="texReceive", text="at+v?")
    expect_equal(line.hears(5), b"at+v?", "keys")
    robot.do("key", on="texReceive", key="Return")
    robot.do("keys", on="texReceive", text="你x")
    expect_equal(line.hears(1), b"x", "neither a line end nor a Chinese character")
    robot.do("key", on="texReceive", key="Escape")
    expect_equal(line.hears(1), b"\x1b", "Escape")
    expect_equal(robot.value("Send_Count"), 7, "Send_Count")
    expect_equal(robot.get("texReceive"), "", "what the target said")


# ---- cycles ------------------------------------------------------------------------------


@scenario("automatic sending opens the port, repeats, and ends with it")
def _(bench):
    robot, line = at_terminal(bench)
    robot.enter("texSend", "ping")
    robot.enter("texSendCycle", "0")
    robot.click("comAutoSend")
    expect_equal(wait_for_boxes(robot, 1)[0]["text"], "自动发送周期太小", "text")
    expect_equal(robot.get("comAutoSend", "Caption"), "自动发送", "caption")
    robot.enter("texSendCycle", "65535")
    robot.click("comAutoSend")
    robot.wait("comAutoSend", "Caption", equals="停止自动发送")
    robot.click("comAutoSend")
    robot.wait("comAutoSend", "Caption", equals="自动发送")
    expect_open(robot, False)
    robot.enter("texSendCycle", "40")
    robot.click("comAutoSend")
    expect_equal(line.hears(40), b"ping" * 10, "ten times")
    expect_open(robot)
    robot.click("comOpenCOM")
    expect_open(robot, False)
    robot.wait("comAutoSend", "Caption", equals="自动发送")
    line.forget()
    line.hears_nothing(0.2)
    expect_open(robot, False)


@scenario("the list of texts is sent one by one, over and over")
def _(bench):
    robot, line = with_open_terminal(bench)
    for element, text in ((2, "two"), (3, "41"), (5, "five"), (24, "last")):
        robot.enter(f"texSpreadSend({element})", text)
    robot.check("cheSpreadHex(3)")
    robot.shot("terminal-list")
    robot.click("comSpreadSendCom(3)")
    expect_equal(line.hears(1), b"A", "element 3")
    robot.enter("texSpreadSendCycle", "0")
    robot.click("comSpreadAutoSend")
    expect_equal(wait_for_boxes(robot, 1)[0]["text"], "间隔时间太短", "text")
    robot.enter("texSpreadSendCycle", "30")
    robot.click("comSpreadAutoSend")
    # Behind element 3 comes 5, the next one that is filled.
    expect_equal(line.hears(20), b"fivelasttwoAfivelast", "the cycle")
    robot.wait("comSpreadAutoSend", "Caption", equals="停止循环发送")
    for element in (2, 3, 5, 24):
        robot.enter(f"texSpreadSend({element})", "")
    robot.wait("comSpreadAutoSend", "Caption", equals="自动循环发送")
    line.forget()
    line.hears_nothing(0.1)


@scenario("a port that vanishes under a cycle stops it with one message")
def _(bench):
    robot, line = at_terminal(bench)
    robot.enter("texSend", "x")
    robot.enter("texSendCycle", "10")
    robot.click("comAutoSend")
    line.hears(5)
    line.unplug()
    box = wait_for_boxes(robot, 1)[0]
    expect_equal(box["title"], PORT_TITLE, "title")
    robot.wait("comAutoSend", "Caption", equals="自动发送")
    expect_open(robot, False)
    time.sleep(0.5)
    expect_equal(len(robot.boxes()), 1, "boxes")
    line.plug()
    robot.click("comDebugSend")
    expect_open(robot)


@scenario("a port that vanishes under a quiet terminal closes it without a message")
def _(bench):
    robot, line = with_open_terminal(bench)
    line.unplug()
    expect_open(robot, False)
    expect_equal(robot.boxes(), [], "boxes")


# ---- long texts, fast lines ------------------------------------------------------------------


@scenario("a long text keeps its newest 30720 characters")
def _(bench):
    robot, line = with_open_terminal(bench)
    text = b"".join(b"%07d " % number for number in range(65000 // 8))
    line.say(text)
    robot.wait("labReceiveCount", "Caption", 10000, equals="接收计数:65000")
    robot.wait("texReceive", "Text", equals=text.decode())
    line.say(b"!")
    robot.wait("texReceive", "Text", equals=text.decode() + "!")
    line.say(b"?")
    robot.wait("texReceive", "Text", equals=(text.decode() + "!")[-30720:] + "?")
    expect_equal(robot.get("texReceive", "SelStart"), 30721, "insertion point")
    robot.shot("terminal-long-text")


def burst(bench, hexadecimal):
    robot, line = at_terminal(bench)
    robot.choose("com_Debug_Baud", text="256000")
    expect_open(robot)
    if hexadecimal:
        robot.check("optReceiveHex(1)")
    content = program(256000 // 10 * 4)
    line.say_at(content, 256000)
    robot.wait("labReceiveCount", "Caption", equals=f"接收计数:{len(content)}")
    if hexadecimal:
        shown = "".join(f"{byte:02X} " for byte in content[-10000:])
        expect_equal(robot.get("texReceive")[-30000:], shown, "the newest bytes")


@scenario("seconds at 256000 baud are counted to the byte, text display")
def _(bench):
    burst(bench, False)


@scenario("seconds at 256000 baud are counted and shown to the byte, hexadecimal display")
def _(bench):
    burst(bench, True)


@scenario("three million baud are counted to the byte")
def _(bench):
    robot, line = with_open_terminal(bench)
    content = program(3_000_000 // 10 * 3)
    line.say(content)
    robot.wait("labReceiveCount", "Caption", 30000, equals=f"接收计数:{len(content)}")
    robot.click("comOpenCOM")
    expect_open(robot, False)


# ---- in turn with the download -----------------------------------------------------------------


@scenario("a download closes the terminal, and opens it again for the program's first words")
def _(bench):
    greeting = "VKM demo ready"
    chip = bench.chip("VKM47H58RK+", fast=True, greeting=greeting)
    robot = bench.robot_with(chip, "VKM47H58RK+")
    content = program(1000)
    robot.load_bytes(bench.folder, content)
    robot.choose("TabStrip2", key="Debug_COM")
    robot.check("che_AutoOpenPort")
    robot.enter("texSend", "x")
    robot.enter("texSendCycle", "20")
    robot.click("comAutoSend")
    expect_open(robot)
    log = robot.download()
    expect(PROGRAM_OK in log, log)
    expect_equal(chip.flash()[:1000], content, "flash")
    robot.wait("texReceive", "Text", equals=greeting)
    expect_open(robot)
    expect_equal(robot.get("comAutoSend", "Caption"), "自动发送", "the cycle ended")
    robot.shot("terminal-behind-a-download")

    robot.check("che_AutoOpenPort", False)
    chip.do("off")
    robot.click("comDownload(0)")
    chip.do("on")
    robot.idle()
    expect_done(robot, chip, content)
    expect_open(robot, False)


@scenario("the terminal neither opens nor writes while a download runs")
def _(bench):
    chip = bench.chip("VKM47H58RK+", off=True)
    robot = bench.robot_with(chip, "VKM47H58RK+")
    robot.load_bytes(bench.folder, program(2000))
    robot.choose("TabStrip2", key="Debug_COM")
    robot.enter("texSpreadSend(0)", "spoil")
    robot.enter("texSpreadSendCycle", "5")
    robot.click("comDownload(0)")
    robot.wait("comStop_Download", "Enabled", equals=True)
    expect_equal(robot.error("click", on="comOpenCOM"), "disabled", "comOpenCOM")
    expect_equal(robot.error("click", on="comDebugSend"), "disabled", "comDebugSend")
    robot.click("comSpreadAutoSend")
    expect_equal(robot.get("comSpreadAutoSend", "Caption"), "自动循环发送", "no cycle begins")
    robot.click("comSpreadSendCom(0)")
    robot.click("imgNotOpen")
    robot.choose("com_Debug_Baud", text="9600")
    robot.do("keys", on="texReceive", text="spoil")
    expect_open(robot, False)
    chip.do("on")
    robot.idle()
    expect(PROGRAM_OK in robot.log(), robot.log())
    expect_equal(robot.value("Send_Count"), 0, "Send_Count")


@scenario("a failed download leaves the terminal closed")
def _(bench):
    robot, line = with_open_terminal(bench)
    robot.check("che_AutoOpenPort")
    robot.load_bytes(bench.folder, program(100))
    robot.click("comDownload(0)")
    robot.wait("comStop_Download", "Enabled", equals=True)
    time.sleep(0.3)
    robot.click("comStop_Download")
    robot.idle()
    expect_open(robot, False)


# ---- settings, help ----------------------------------------------------------------------------


@scenario("what the terminal was set to comes back")
def _(bench):
    robot, line = at_terminal(bench)
    robot.choose("com_Debug_Baud", text="9600")
    robot.choose("com_Debug_ParityCheck", text="Even")
    robot.choose("com_Debug_DataBits", text="7")
    robot.choose("com_Debug_StopBits", text="2")
    robot.enter("texSend", 'a = "b"; 你好\nc')
    robot.enter("texSendCycle", "250")
    robot.enter("texSpreadSend(24)", " 00 FF ")
    robot.check("cheSpreadHex(24)")
    robot.check("che_AutoOpenPort")
    robot.check("optHexSend(1)")
    expect_equal(robot.quit(), 0, "exit status")

    robot = bench.robot(ports={1: line.device})
    robot.choose("TabStrip2", key="Debug_COM")
    for list_, text in (("Baud", "9600"), ("ParityCheck", "Even"), ("DataBits", "7"), ("StopBits", "2")):
        expect_equal(robot.get(f"com_Debug_{list_}"), text, list_)
    expect_equal(robot.get("texSend"), 'a = "b"; 你好\r\nc', "texSend")
    expect_equal(robot.get("texSendCycle"), "250", "texSendCycle")
    expect_equal(robot.get("texSpreadSend(24)"), " 00 FF ", "element 24")
    expect_equal(robot.get("cheSpreadHex(24)", "Value"), True, "HEX of element 24")
    expect_equal(robot.get("che_AutoOpenPort", "Value"), False, "not read back")
    expect_equal(robot.get("optHexSend(0)", "Value"), True, "not read back")
    robot.click("comOpenCOM")
    expect_open(robot)
    expect_equal(line.baud(), 9600, "rate")
    stored = robot.settings()
    expect_equal(stored["DebugAutoOpenPort"], "1", "written only")
    expect_equal(stored["optHexSend_1"], "True", "written only")


@scenario("the terminal explains itself")
def _(bench):
    robot, line = at_terminal(bench)
    robot.click("comDebugHelp(0)")
    robot.wait("texReceive", "Text", contains="    串口调试助手使用说明")
    expect_equal(robot.get("texReceive", "SelStart"), 0, "read from its beginning")
    robot.shot("terminal-help")
    robot.model("VKM26H5410")
    robot.choose("TabStrip2", key="Debug2")
    robot.click("comDebugHelp(1)")
    expect_equal(
        wait_for_boxes(robot, 1)[0]["text"],
        "请点击串口调试助手，再点击串口调试助手中的“使用说明”按钮。",
        "text",
    )


# ---- the simulated targets -------------------------------------------------------------------------


@scenario("a target that talks at its own rate is heard at that rate alone")
def _(bench):
    said = "VKM 温度: 23.5℃\r\n"
    target = bench.target(
        talk=True, baud=9600, say_hex=said.encode("gbk").hex(), after=100, every=200, echo=True
    )
    robot = terminal_at(bench, target)
    robot.choose("com_Debug_Baud", text="115200")
    robot.wait("labReceiveCount", "Caption", not_equals="接收计数:0")
    expect("温度" not in robot.get("texReceive"), "read at a wrong rate")
    robot.choose("com_Debug_Baud", text="9600")  # closes it
    expect_open(robot, False)
    robot.click("comDebugClear(0)")
    robot.choose("com_Debug_Baud", text="9600")
    robot.wait("texReceive", "Text", contains=said * 2)
    robot.enter("texSend", "status?")
    robot.click("comDebugSend")
    robot.wait("texReceive", "Text", contains="status?")
    expect_equal(target.heard(), b"status?", "what the target heard")


@scenario("a burst of a simulated target is shown whole")
def _(bench):
    target = bench.target(talk=True, baud=256000)
    robot = terminal_at(bench, target)
    robot.choose("com_Debug_Baud", text="256000")
    expect_open(robot)
    robot.check("optReceiveHex(1)")
    target.do("burst 51200 count")
    robot.wait("labReceiveCount", "Caption", 10000, equals="接收计数:51200")
    everything = "".join(f"{byte:02X} " for byte in range(256))
    expect(robot.get("texReceive").endswith(everything), "the last 256 bytes")
    expect_equal(target.do("sent"), "51200", "bytes sent")
