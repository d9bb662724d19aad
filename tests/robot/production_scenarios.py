"""What a production bench does: numbers counted up, projects, the hex view, and
downloads without a hand on the mouse."""

import random
import re
import time

from bench import collection, expect, expect_equal, program
from expectations import PROGRAM_OK, STOPPED, expect_at_rest, expect_done

KEEP_COUNTING = "若要修改“下一个值(10进制)”，请先点击“允许修改参数和选项”按钮。"
FORMATS = ("hexadecimal", "packed", "ascii")

scenarios, scenario = collection()


# ---- numbers ---------------------------------------------------------------


def number_bytes(value, length, numeral):
    """A number as it stands in the flash, highest-order byte first."""
    if numeral == 0:
        return value.to_bytes(length, "big")
    if numeral == 1:
        return bytes.fromhex(f"{value:0{2 * length}d}")
    return f"{value:0{length}d}".encode()


def set_numbering(robot, prefix, address, length, next_value, increase, numeral):
    """Fills in the fields of a set ("" or "Data_") and enables it."""
    robot.choose("TabStrip1", text="自动增量")
    for index, text in enumerate((f"{address:X}", str(length), str(next_value), str(increase))):
        robot.enter(f"tex{prefix}Auto_Increase({index})", text)
    robot.check(f"opt{prefix}Auto_Increase({numeral})")
    robot.check(f"che{prefix}Auto_Increase")
    robot.wait(f"tex{prefix}Auto_Increase(0)", "Enabled", equals=False)


def image(robot, name, start, count):
    return bytes.fromhex(robot.do("bytes", image=name, **{"from": start}, count=count))


def with_number(content, address, number):
    """The content with the number's last byte at the address."""
    start = address + 1 - len(number)
    return content[:start] + number + content[address + 1 :]


def three_numbered_chips(bench, numeral):
    code, data = program(1000), program(300, seed=5)
    number, data_number = (0x2F0, 4, 1234, 3, numeral), (0x1F, 5 if numeral else 4, 500, 1, numeral)
    chip = bench.chip("VKM26H5410", fast=True)
    writer = bench.robot_with(chip, "VKM26H5410")
    writer.load_bytes(bench.folder, code)
    writer.open_file(bench.file("data.bin", data), "comLoadDataFile")
    writer.wait("txtDataFileCheckSum", "Text", not_equals="")
    writer.check("Option1(0)")
    set_numbering(writer, "", *number)
    set_numbering(writer, "Data_", *data_number)
    writer.shot(f"numbering-{FORMATS[numeral]}")
    project = bench.folder / "工程 1.VKM"
    save_project(writer, project)
    expect_equal(writer.boxes(), [], "boxes")
    expect_equal(writer.quit(), 0, "exit status")

    robot = bench.robot(ports={1: chip.device}, settings=bench.folder / "fresh.ini")
    open_project(robot, project)
    boxes = robot.boxes()
    expect_equal(len(boxes), 1, "boxes of the load")
    expect(boxes[0]["text"].startswith(KEEP_COUNTING), boxes[0]["text"])
    start = robot.value("MCU_Info.Data_Start")
    for count in range(3):
        robot.download()
        expect(PROGRAM_OK in robot.log(), robot.log())
        flash = chip.flash()
        wanted = with_number(code, 0x2F0, number_bytes(1234 + 3 * count, 4, numeral))
        expect_equal(flash[:1000], wanted, f"program of chip {count}")
        wanted = with_number(data, 0x1F, number_bytes(500 + count, data_number[1], numeral))
        expect_equal(flash[start : start + 300], wanted, f"data of chip {count}")
        expect_equal(chip.do("options").split(" ")[2], "8=F6", "the changed option")
        expect_locked(robot)
        chip.do("new")
    sections = robot.do("settings")
    expect_equal(int(sections["Auto_Increase"]["next_value"]), 1234 + 9, "stored number")
    expect_equal(int(sections["Data_Auto_Increase"]["next_value"]), 503, "stored data number")
    expect_equal(sections["Settings"]["Write_OK_Count"], "3", "stored counter")


for _numeral, _name in enumerate(FORMATS):
    scenarios[f"three chips with {_name} numbers from a project"] = (
        lambda bench, n=_numeral: three_numbered_chips(bench, n)
    )


@scenario("a series counts its chips")
def _(bench):
    content = program(900)
    saved = bench.folder / "saved-flash"
    chip = bench.chip("VKM47H58RK+", fast=True, fresh_chip_after_done="0.3", save_flash=saved)
    robot = bench.robot_with(chip, "VKM47H58RK+")
    robot.load_bytes(bench.folder, content)
    set_numbering(robot, "", 0x3FFF, 4, 98, 1, 1)
    robot.choose("comDalay_ReDownLoad", text="1")
    robot.click("comDownload(1)")
    for count in range(3):
        chip.event("started")
        chip.event("saved")
        flash = saved.read_bytes()
        expect_equal(flash[:900], content, f"flash of chip {count}")
        # Behind the file, and programmed all the same.
        expect_equal(flash[0x3FFC:0x4000], number_bytes(98 + count, 4, 1), f"number of chip {count}")
        robot.wait("txtWrite_OK_Count", "Text", 20000, equals=str(count + 1))
        robot.wait("texAuto_Increase(2)", "Text", equals=f"{99 + count:08d}")
        robot.wait("textMsg", "Text", contains="Program succeed. / 下载成功.")
    robot.click("comStop_Download")
    robot.idle(15000)
    expect(STOPPED in robot.log(), robot.log())
    expect_at_rest(robot)


@scenario("what the operator is told of a bad number")
def _(bench):
    chip = bench.chip("VKM47H58RK+", fast=True)
    robot = bench.robot_with(chip, "VKM47H58RK+")
    robot.load_bytes(bench.folder, program(500))
    title = "设置程序文件自动增量"
    for fields, wanted, wanted_title in (
        (("FFFFF", "4", "1", "1"), "自动增量低位地址太大", None),
        (("2", "4", "1", "1"), "自动增量低位地址太小或字节数太长", None),
        (("100", "4", "1 2", "1"), " '下一个值' 应输入10进制数", title),
        (("100", "4", "2147483648", "1"), "下一值必须小于 2147483648。", title),
        (("100", "1", "100", "1"), "自动增量字节数太小", title),
        (("100", "11", "1", "1"), "字节数必须小于或等于 10。", title),
    ):
        robot.choose("TabStrip1", text="自动增量")
        robot.check("cheAuto_Increase", False)
        robot.check("optAuto_Increase(1)")
        for index, text in enumerate(fields):
            robot.enter(f"texAuto_Increase({index})", text)
        before = len(robot.boxes())
        robot.check("cheAuto_Increase")
        robot.wait("texAuto_Increase(0)", "Enabled", equals=False)
        boxes = robot.boxes()[before:]
        expect_equal([box["text"] for box in boxes], [wanted], f"boxes of {fields}")
        if wanted_title:
            expect_equal(boxes[0]["title"], wanted_title, "title")
        expect(robot.get("cheAuto_Increase", "Value") is True, "still ticked")
        expect_equal(image(robot, "AP_Buffer", 0, 500), program(500), "the image")
    # A bad number doesn't stop a download.
    robot.download()
    expect_done(robot, chip, program(500))


def stored(path):
    """Sections of the settings as a tool that was killed has left them."""
    sections, section = {}, None
    for line in path.read_text("utf-8").splitlines() if path.exists() else []:
        if line.startswith("["):
            section = sections.setdefault(line[1:-1], {})
        elif "=" in line:
            key, value = line.split("=", 1)
            section[key] = value
    return sections


def number_and_count(settings):
    sections = stored(settings)
    count = int(sections.get("Settings", {}).get("Write_OK_Count", "0"))
    return int(sections.get("Auto_Increase", {}).get("next_value", "100")), count


@scenario("a tool killed at any moment gives no number twice and skips none")
def _(bench):
    """The bench's power fails again and again. A chip that was counted is taken out;
    any other is tried again."""
    content = program(400)
    path = bench.file("program.bin", content)
    chip = bench.chip("VKM47H58RK+", fast=True)
    moments = random.Random(4)
    good, robot = [], None
    for turn in range(24):
        if not robot:
            robot = bench.robot_with(chip, None if turn else "VKM47H58RK+")
            robot.load(path)
            if turn == 0:
                set_numbering(robot, "", 0x100, 4, 100, 1, 0)
            else:
                robot.choose("TabStrip1", text="自动增量")
                robot.check("cheAuto_Increase")
                robot.wait("texAuto_Increase(0)", "Enabled", equals=False)
        number, count = number_and_count(bench.settings)
        expect_equal((number, count), (100 + len(good), len(good)), "next number and counter")
        chip.do("cycle 1")
        robot.click("comDownload(0)")
        if turn % 3:
            time.sleep(moments.uniform(0.0, 0.8))
            robot.kill()
            robot = None
        else:
            robot.idle()
            expect(PROGRAM_OK in robot.log(), robot.log())
        number, count_after = number_and_count(bench.settings)
        expect(count_after in (count, count + 1), f"the counter went from {count} to {count_after}")
        expect_equal(number, 100 + count_after, "next number")
        if count_after > count:
            flash = chip.flash()
            good.append(int.from_bytes(flash[0xFD:0x101], "big"))
            expect_equal(flash[:0xFD], content[:0xFD], "program of a counted chip")
            chip.do("new")
    expect_equal(good, list(range(100, 100 + len(good))), "numbers of the good chips")
    expect(len(good) >= 8, f"only {len(good)} chips")


# ---- projects -----------------------------------------------------------------


def save_project(robot, path):
    robot.choose("TabStrip2", key="Batch_quantity")
    robot.do("file", path=str(path))
    robot.click("comSaveBatchFile")
    robot.wait("texBatchFileName", "Text", equals=str(path))
    deadline = time.monotonic() + 10
    while not path.exists():
        expect(time.monotonic() < deadline, f"{path} wasn't written")
        time.sleep(0.02)


def try_project(robot, path):
    robot.choose("TabStrip2", key="Batch_quantity")
    robot.do("file", path=str(path))
    robot.click("comOpenBatchFile")
    robot.idle()


def open_project(robot, path):
    try_project(robot, path)
    expect_equal(robot.value("Project_Lock"), True, f"Project_Lock; boxes {robot.boxes()}")
    expect_locked(robot)


def expect_locked(robot):
    expect_equal(robot.value("UI_State"), 2, "UI_State")
    for name in ("comLoadFile", "comLockOptions", "txtAP_FileStart", "cheAuto_Increase",
                 "texAuto_Increase(2)", "comSendUserCode"):
        expect(not robot.get(name, "Enabled"), f"{name} is open in a locked tool")
    for name in ("comDownload(0)", "comDownload(1)", "comOpenBatchFile", "comSaveBatchFile",
                 "comUnlockOptions", "comReadChipLock"):
        expect(robot.get(name, "Enabled"), f"{name} is dead in a locked tool")
    expect(not robot.get("comStop_Download", "Enabled"), "Stop has nothing to stop")


@scenario("a project locks the job until it is unlocked, and again after it")
def _(bench):
    content = program(600)
    chip = bench.chip("VKM47H58RK+", fast=True)
    robot = bench.robot_with(chip, "VKM47H58RK+")
    robot.choose("TabStrip2", key="Batch_quantity")
    robot.click("comSaveBatchFile")
    expect_equal([box["text"] for box in wait_for_box(robot)],
                 ["    Please open file./请打开应用文件。    "], "boxes without a file")
    robot.shot("project-free")
    robot.load_bytes(bench.folder, content)
    robot.check("Option3(0)")
    project = bench.folder / "job.VKM"
    save_project(robot, project)
    robot.choose("TabStrip2", key="Batch_quantity")
    robot.click("comLockOptions")
    expect_locked(robot)
    again = bench.folder / "again.VKM"
    save_project(robot, again)  # also while it is locked
    expect_equal(again.read_bytes(), project.read_bytes(), "saved in the lock")
    robot.click("comUnlockOptions")
    expect_equal(robot.value("UI_State"), 0, "unlocked")
    robot.check("Option3(1)")
    open_project(robot, project)
    robot.shot("project-locked")
    expect(robot.get("Option3(0)", "Value") is True, "the option of the project")
    expect_equal(robot.error("check", on="Option3(1)", value=True), "disabled", "a locked option")
    robot.download()
    expect(PROGRAM_OK in robot.log(), robot.log())
    expect_equal(chip.flash()[:600], content, "flash")
    expect_locked(robot)
    robot.click("comUnlockOptions")
    expect_equal(robot.value("UI_State"), 0, "unlocked again")
    chip.do("off")
    robot.click("comDownload(0)")
    robot.wait("comStop_Download", "Enabled", equals=True)
    robot.click("comStop_Download")
    robot.idle()
    expect(STOPPED in robot.log(), robot.log())
    expect_locked(robot)
    robot.click("Command1")
    expect_equal(wait_for_box(robot, 2)[-1]["title"], "VKM 工程文件使用说明", "help")


def header(model, extra=(), content=b"\x02\x00\x03\x80\xfe"):
    """A project as somebody else's tool may have written it."""
    lines = ["VER: 1.1", f"MCU_Type: {model}", *extra, f"buffer_check_sum: {sum(content)}", "END"]
    return ("\r\n".join(lines) + "\r\n" + content.hex().upper()).encode("gb18030")


@scenario("a family that no tree offers is reached by a project")
def _(bench):
    content = program(2000)
    chip = bench.chip("VKM27J032", fast=True)
    robot = bench.robot(ports={1: chip.device})
    options = ["Half_Gain_YES: True", "Half_Gain_NO: False", "Clear_EEPROM_00H: True",
               "Power_On_Run_WDT_YES: True", "WDT_Prescalar: 2", "LowU_Reset_NO: True"]
    project = bench.file("g.VKM", header("VKM27J032", options, content))
    open_project(robot, project)
    expect_equal(robot.boxes(), [], "boxes")
    expect_equal(robot.value("MCU_Info.MCU_Family"), 6, "family")
    robot.shot("project-family-6")
    robot.download()
    expect(PROGRAM_OK in robot.log(), robot.log() + "\n".join(chip.output[-20:]))
    expect_equal(robot.value("Chip_Letter"), "G", "letter")
    expect_equal(chip.flash()[:2000], content, "flash")
    objections = [line for line in chip.output if line.startswith("objection")]
    expect_equal(objections, [], "objections")
    stored = {int(pair.split("=")[0]): int(pair.split("=")[1], 16)
              for pair in chip.do("options").split(" ")}
    expect_equal(stored[0] & 0x40, 0x40, "no reset at low voltage")
    expect_equal(stored[3] & 0x40, 0, "half gain")
    expect_equal(stored[4] & 0x27, 0x02, "watchdog at power-up, prescaler 8")
    expect_equal(stored[8] & 0x10, 0, "EEPROM to 00")


@scenario("damaged and foreign project files")
def _(bench):
    content = program(600)
    chip = bench.chip("VKM47H58RK+", fast=True)
    robot = bench.robot_with(chip, "VKM47H58RK+")
    robot.load_bytes(bench.folder, content)

    def boxes_of(data):
        before = len(robot.boxes())
        try_project(robot, bench.file("try.VKM", data))
        return [box["text"] for box in robot.boxes()[before:]]

    before = (robot.get("txtDevice"), robot.get("Frame7", "Caption"))
    expect_equal(boxes_of(header("VKM99X99")), ["找不到 MCU: VKM99X99", "找不到 MCU 型号: VKM99X99"],
                 "boxes of an unknown model")
    expect_equal((robot.get("txtDevice"), robot.get("Frame7", "Caption")), before, "what is shown")
    expect_equal(robot.value("UI_State"), 0, "nothing is locked")
    robot.download()
    expect_done(robot, chip, content)

    good = header("VKM47H58RK+")
    for data in (good[:-1], good[:-2], good + b"G", good.replace(b"02", b"03"),
                 good.replace(b"END\r\n", b"END\r\n\r\n")):
        expect_equal(boxes_of(data), ["应用程序代码校验和错。"], f"boxes of {data[-30:]}")
        expect_equal(robot.value("File_Loaded"), False, "File_Loaded")
        expect_equal(robot.value("Project_Lock"), False, "Project_Lock")
    robot.click("comDownload(0)")
    robot.idle()
    expect_equal(robot.boxes()[-1]["text"], "    Please open file./请打开文件。    ", "refused")
    data_part = b"\r\nData_File_Begin:\r\ndata_buffer_check_sum: 4\r\n0103\r\nData_File_End\r\n"
    expect_equal(boxes_of(good + data_part.replace(b" 4", b" 5")), ["数据文件校验和错。"], "data sum")
    expect_equal(robot.value("Data_Buffer.Has_File"), False, "data image")
    expect_locked(robot)
    expect_equal(boxes_of(good + data_part), [], "a good one")
    expect_equal(robot.value("Data_Buffer.Image_High"), 1, "data image")
    expect_equal(boxes_of(good.replace(b"\r\n", b"\n").replace(b"END", b"end")), [], "other line ends")

    for model, key, option in (("VKM47H58RK", b"Option0(0)", "Option0(0)"),
                               ("VKM47H58RK+", b"Option1(0)", "Option3(0)")):
        old = header(model).replace(b"VER: 1.1\r\nMCU_Type", b"MCU type").replace(
            b"buffer_check_sum", key + b": True\r\nbuffer_check_sum")
        told = boxes_of(old)
        expect_equal(len(told), 1, "boxes of an old file")
        expect(told[0].startswith("您使用的是旧版本的工程文件"), told[0])
        expect_locked(robot)
        expect(robot.get(option, "Value") is True, f"the option of the old file of {model}")


# ---- the hex view ----------------------------------------------------------------


def hex_row(address, data):
    return f" {address:06X}   " + "".join(f"{byte:02X} " for byte in data) + "\r\n"


def place_of(row, column, digit=0):
    """Position in the text of a digit of the page's row and column."""
    return 4 + 60 * row + 10 + 3 * column + digit


@scenario("the hex view pages, finds the number and is edited")
def _(bench):
    content = program(0x2000)
    robot = bench.robot(size="1280x800")
    robot.model("VKM47H516RK+")
    robot.load_bytes(bench.folder, content)
    page = "txtBuffer2"
    text = robot.get(page)
    rows = (len(text) - 4) // 60
    expect(rows >= 8, f"only {rows} rows")
    expect_equal(text[4:], "".join(hex_row(16 * n, content[16 * n : 16 * n + 16]) for n in range(rows)),
                 "first page")
    expect_equal(robot.get("txtBuffer"), text, "the box below")
    expect_equal(robot.get("vscFile(0)", "Max"), 0x1FFF // 16 - 3, "bar")

    robot.do("key", on=page, key="PageDown")
    robot.wait(page, "Text", contains=f" {16 * rows:06X}   ")
    expect_equal(robot.get("vscFile(0)", "Value"), rows, "one page down")
    robot.do("key", on=page, key="PageUp")
    robot.wait("vscFile(0)", "Value", equals=0)

    # A click into the address goes to the row's first digit.
    robot.do("caret", on=page, at=place_of(3, 0) - 7)
    robot.wait(page, "SelLength", equals=1)
    expect_equal(robot.get(page, "SelStart"), place_of(3, 0), "snapped")
    robot.do("box", answer="no")
    robot.do("keys", on=page, text="A")
    expect_equal(robot.boxes()[-1]["text"], "Update the buffer? / 修改缓冲区内容吗?", "question")
    expect_equal(image(robot, "AP_Buffer", 0, 0x2000), content, "refused")

    # The last column of the last row of the page, both digits.
    robot.do("caret", on=page, at=place_of(rows - 1, 15))
    robot.wait(page, "SelLength", equals=1)
    robot.do("box", answer="yes")
    robot.do("keys", on=page, text="5")
    robot.wait(page, "SelStart", equals=place_of(rows - 1, 15, 1))
    robot.do("keys", on=page, text="z")
    robot.do("keys", on=page, text="c")
    last = 16 * rows - 1
    deadline = time.monotonic() + 5
    while image(robot, "AP_Buffer", last, 1) != b"\x5c":
        expect(time.monotonic() < deadline, f"{image(robot, 'AP_Buffer', last, 1)} at {last:X}")
    edited = content[:last] + b"\x5c" + content[last + 1 :]
    expect_equal(image(robot, "AP_Buffer", 0, 0x2000), edited, "edited")
    expect_equal(len(robot.boxes()), 2, "asked once more")
    expect("5C" in robot.get(page)[place_of(rows - 1, 15) :], "shown")
    robot.shot("hex-edited")

    # Six bytes over a row's end.
    set_numbering(robot, "", 0x1012, 6, 424242, 1, 2)
    robot.wait(page, "SelLength", equals=6 * 3 - 1 + 12)
    start, length = robot.get(page, "SelStart"), robot.get(page, "SelLength")
    number = robot.get(page)[start : start + length]
    expect_equal(re.sub(r"\r\n 001010   ", "", number).split(), ["34", "32"] * 3, "the number")
    robot.shot("hex-number")


@scenario("digits of the data view go to the program image")
def _(bench):
    robot = bench.robot()
    robot.model("VKM26H5410")
    robot.load_bytes(bench.folder, program(100))
    robot.open_file(bench.file("data.bin", program(64, seed=2)), "comLoadDataFile")
    robot.wait("txtDataFileCheckSum", "Text", not_equals="")
    robot.choose("TabStrip2", key="EEPROM_File")
    robot.do("caret", on="tetDataFlash2", at=place_of(1, 2))
    robot.wait("tetDataFlash2", "SelLength", equals=1)
    robot.do("box", answer="yes")
    robot.do("keys", on="tetDataFlash2", text="E")
    robot.wait("tetDataFlash2", "SelStart", equals=place_of(1, 2, 1))
    low = program(64, seed=2)[18] & 15
    expect_equal(image(robot, "AP_Buffer", 18, 1), bytes([0xE0 | low]), "program image")
    expect_equal(image(robot, "Data_Buffer", 0, 64), program(64, seed=2), "data image")
    robot.shot("hex-data")


# ---- without a hand on the mouse -----------------------------------------------------


def tick_watch(robot, *names):
    robot.choose("TabStrip1", key="user_code")
    for name in names:
        robot.check(name)
    # The watch knows the file from its next look on.
    deadline = time.monotonic() + 20
    while not robot.value("Watched_File"):
        expect(time.monotonic() < deadline, "the watch doesn't look at the file")
        time.sleep(0.05)


def wait_for_box(robot, count=1):
    """The boxes, once there are that many."""
    deadline = time.monotonic() + 20
    while len(robot.boxes()) < count:
        expect(time.monotonic() < deadline, f"boxes: {robot.boxes()}")
        time.sleep(0.05)
    return robot.boxes()


@scenario("a changed file is programmed by itself")
def _(bench):
    chip = bench.chip("VKM47H58RK+", fast=True)
    robot = bench.robot_with(chip, "VKM47H58RK+")
    robot.load_bytes(bench.folder, program(500))
    tick_watch(robot, "cekReloadFileWhileFileChange")
    newer = program(700, seed=2)
    bench.file("program.bin", newer)
    robot.wait("txtWrite_OK_Count", "Text", 20000, equals="1")
    robot.idle()
    expect_done(robot, chip, newer)
    # A compiler that deletes the file first, takes its time, and writes in pieces.
    chip.do("new")
    path = bench.folder / "program.bin"
    path.unlink()
    time.sleep(1.5)
    newest = program(900, seed=3)
    with path.open("wb") as file:
        for at in range(0, 900, 100):
            file.write(newest[at : at + 100])
            file.flush()
            time.sleep(0.2)
    robot.wait("txtWrite_OK_Count", "Text", 20000, equals="2")
    robot.idle()
    expect_done(robot, chip, newest)
    expect_equal(robot.boxes(), [], "boxes")


@scenario("a running target is sent into its boot firmware by user code")
def _(bench):
    code = "55 AA,5A5A 7"
    chip = bench.chip("VKM47H58RK+", fast=True, user_code="55AA5A5A07", user_code_baud="9600")
    robot = bench.robot_with(chip, "VKM47H58RK+")
    robot.load_bytes(bench.folder, program(500))
    robot.download()  # from now on the program runs, and power stays
    expect_done(robot, chip, program(500))
    robot.choose("TabStrip1", key="user_code")
    robot.enter("txtUserCode", code)
    robot.choose("cobUserCodeBaud", text="9600")
    robot.click("comSendUserCode")
    robot.idle()
    expect_done(robot, chip, program(500))
    expect_equal(robot.get("txtWrite_OK_Count"), "2", "counter")
    expect("user_codes=1" in chip.do("state"), "the code was not heard")
    robot.shot("user-code")

    # And without a click, when the compiler has written.
    tick_watch(robot, "cekReloadFileWhileFileChange1")
    newer = program(800, seed=7)
    bench.file("program.bin", newer)
    robot.wait("txtWrite_OK_Count", "Text", 20000, equals="3")
    robot.idle()
    expect_done(robot, chip, newer)
    expect("user_codes=2 " in chip.do("state") + " ", "the second code was not heard")
    expect_equal(robot.boxes(), [], "boxes")


@scenario("user code without a file or a port")
def _(bench):
    robot = bench.robot(ports={1: bench.folder / "no-such-port"})
    robot.choose("TabStrip1", key="user_code")
    robot.click("comSendUserCode")
    expect_equal([box["text"] for box in wait_for_box(robot)], ["Please open file./请打开文件。"], "boxes")
    robot.model("VKM47H58RK+")
    robot.load_bytes(bench.folder, program(100))
    robot.click("comSendUserCode")
    robot.idle()
    expect("Open COM port failure! / 打开串口失败!" in robot.log(), robot.log())
    expect("Chinese:串口已被其它程序打开或该串口不存在。" in robot.log(), robot.log())
    expect_equal(robot.do("beeps"), 3, "beeps")
