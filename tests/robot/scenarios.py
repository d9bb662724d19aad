#!/usr/bin/env python3
"""What the operator of a bench lives through, at the real window and over real
pseudo-terminals.

    VKM_BUILD=build/release tests/robot/scenarios.py [NAME]...

A NAME chooses the scenarios that begin with it. Pictures of the window go to
robot-shots in the build folder.
"""

import os
import pathlib
import re
import struct
import subprocess
import sys
import time

import board_scenarios
import isp_program_scenarios
import monitor_scenarios
import option_scenarios
import production_scenarios
import terminal_scenarios
from bench import (BUILD, Failed, collection, expect, expect_equal, hex_file, program,
                   run_scenarios)
from expectations import PROGRAM_OK, STOPPED, expect_at_rest, expect_done

SOURCE = pathlib.Path(__file__).resolve().parents[2]

OPEN_FAILED = "Open COM port failure! / 打开串口失败!"
WRONG_MODEL = "MCU Type is wrong. / MCU 型号错, 请重选"
NO_FILE = "Please open file./请打开文件。"

# One model of every group that can be chosen, and the chip that goes with it.
GROUPS = [
    ("VKM47H58RK", "VKM47H58RK", {}),
    ("VKM47W58AD", "VKM47W58AD", {}),
    ("VKM47H58RK+", "VKM47H58RK+", {}),
    ("VKM26H2052", "VKM26H2052", {}),
    ("VKM26H5410", "VKM26H5410", {}),
    ("26H/W54xx Series", "VKM26H5416", {"letter": "F"}),
]
CLOCKS = ["4M", "11.0592M", "12M", "24M", "33M"]
BAUDS = [115200, 57600, 38400, 28800, 19200, 14400, 12800, 11520, 9600, 4800, 2400, 1200]

scenarios, scenario = collection()


# ---- downloads ---------------------------------------------------------------


def download_one(bench, model, chip_model, content, **options):
    chip = bench.chip(chip_model, **options)
    robot = bench.robot_with(chip, model)
    robot.load_bytes(bench.folder, content)
    robot.download()
    expect_done(robot, chip, content)
    expect_equal(robot.get("txtWrite_OK_Count"), "1", "counter")
    expect_equal(robot.settings()["Write_OK_Count"], "1", "stored counter")
    expect_equal(robot.boxes(), [], "boxes")
    expect_equal(robot.quit(), 0, "exit status")


def add_models():
    for model, chip_model, options in GROUPS:
        for clock in CLOCKS:
            scenarios[f"model {model} at {clock}"] = (
                lambda bench, m=model, c=chip_model, o=options, k=clock: download_one(
                    bench, m, c, program(1500), clock=k, fast=True, **o
                )
            )


def add_paced_models():
    """At the pace of a real line, and with images that reach to the end of the program area."""
    for (model, chip_model, options), length in zip(
        GROUPS, (0x2000, 0x2000, 0x2000, 0x800, 0x2800, 0x4000), strict=True
    ):
        scenarios[f"paced {model}"] = lambda bench, m=model, c=chip_model, o=options, n=length: (
            download_one(bench, m, c, program(n), **o)
        )


def add_bauds():
    for index, baud in enumerate(BAUDS):

        def at_most(bench, index=index, baud=baud):
            chip = bench.chip("VKM47H58RK+", fast=True)
            robot = bench.robot_with(chip, "VKM47H58RK+")
            expect_equal(robot.get("cobBaudMax", "List"), [str(b) for b in BAUDS], "the list")
            robot.choose("cobBaudMax", text=str(baud))
            robot.load_bytes(bench.folder, program(600))
            robot.download()
            expect_done(robot, chip, program(600))
            told = re.search(r"Now baud is: / 当前波特率为: (\d+) bps\.", robot.log())
            expect(told, "no baud in the log")
            expect(int(told[1]) in BAUDS and int(told[1]) <= baud, f"{told[1]} is above {baud}")

        scenarios[f"baud {baud}"] = at_most


@scenario("example programs")
def _(bench):
    for name in ("blink", "counter"):
        path = SOURCE / "examples" / f"{name}.hex"
        chip = bench.chip("VKM47H58RK+", fast=True)
        robot = bench.robot_with(chip, "VKM47H58RK+", settings=bench.folder / f"{name}.ini")
        robot.load(path)
        size = robot.value("AP_Buffer.Image_High") + 1
        image = bytes.fromhex(robot.do("bytes", image="AP_Buffer", **{"from": 0}, count=size))
        robot.download()
        expect_done(robot, chip, image)
        expect_equal(robot.boxes(), [], "boxes")
        robot.shot(f"done-{name}")


@scenario("a HEX file with gaps and high parts")
def _(bench):
    content = program(700)
    chip = bench.chip("VKM47H58RK+", fast=True)
    robot = bench.robot_with(chip, "VKM47H58RK+")
    robot.load(bench.file("part.hex", hex_file(content[:300]) [: -13] + hex_file(content, 0x1000)))
    robot.download()
    flash = chip.flash()
    expect_equal(flash[:300], content[:300], "the low part")
    expect_equal(flash[300:0x1000], bytes(0x1000 - 300), "the gap")
    expect_equal(flash[0x1000 : 0x1000 + 700], content, "the high part")


@scenario("a whole 60 KB at the pace of the line")
def _(bench):
    download_one(bench, "VKM47H516RK+", "VKM47H516RK+", program(0xF000))


@scenario("a data file goes into the data memory")
def _(bench):
    code, data = program(1000), program(700, seed=2)
    chip = bench.chip("VKM26H5410", fast=True)
    robot = bench.robot_with(chip, "VKM26H5410")
    robot.load_bytes(bench.folder, code)
    robot.open_file(bench.file("data.bin", data), "comLoadDataFile")
    robot.wait("txtDataFileCheckSum", "Text", not_equals="")
    robot.download()
    expect_done(robot, chip, code)
    start = robot.value("MCU_Info.Data_Start")
    expect_equal(chip.flash()[start : start + len(data)], data, "data memory")


@scenario("a file is opened again before each download")
def _(bench):
    chip = bench.chip("VKM47H58RK+", fast=True)
    robot = bench.robot_with(chip, "VKM47H58RK+")
    robot.load_bytes(bench.folder, program(500))
    robot.check("cekReloadFile")
    newer = program(500, seed=3)
    bench.file("program.bin", newer)
    robot.download()
    expect_done(robot, chip, newer)


@scenario("a second click on Download does nothing")
def _(bench):
    chip = bench.chip("VKM47H58RK+", fast=True, off=True)
    robot = bench.robot_with(chip, "VKM47H58RK+")
    robot.load_bytes(bench.folder, program(500))
    robot.click("comDownload(0)")
    expect_equal(robot.error("click", on="comDownload(0)"), "disabled", "second click")
    chip.do("on")
    robot.idle()
    expect_done(robot, chip, program(500))
    expect_equal(robot.get("txtWrite_OK_Count"), "1", "counter")


@scenario("the second way of connecting is kept for programs")
def _(bench):
    robot = bench.robot()
    expect_equal(robot.error("check", on="cheTL", value=True), "hidden", "cheTL")
    expect_equal(robot.error("click", on="Command2"), "hidden", "Command2")


@scenario("re-download of three chips")
def _(bench):
    content = program(900)
    saved = bench.folder / "saved-flash"
    chip = bench.chip("VKM47H58RK+", fast=True, fresh_chip_after_done="0.3", save_flash=saved)
    robot = bench.robot_with(chip, "VKM47H58RK+")
    robot.load_bytes(bench.folder, content)
    robot.choose("comDalay_ReDownLoad", text="1")
    robot.click("comDownload(1)")
    for count in range(1, 4):
        chip.event("saved")
        expect_equal(saved.read_bytes()[: len(content)], content, f"flash of chip {count}")
        saved.write_bytes(b"")
        robot.wait("txtWrite_OK_Count", "Text", 20000, equals=str(count))
        robot.wait("textMsg", "Text", contains="Program succeed. / 下载成功.")
        expect("will continue.  1" in robot.log(), "no count-down")
    robot.shot("redownload-pause")
    robot.click("comStop_Download")
    robot.idle(10000)
    expect(STOPPED in robot.log(), robot.log())
    expect_at_rest(robot)
    expect_equal(robot.settings()["Write_OK_Count"], "3", "stored counter")


# ---- stop -------------------------------------------------------------------


def stop_when(bench, ready, content_length=6000, button="comDownload(0)", **options):
    """Stop once `ready(robot, chip)` has come back; the next download works."""
    chip = bench.chip("VKM47H58RK+", **options)
    robot = bench.robot_with(chip, "VKM47H58RK+")
    content = program(content_length)
    robot.load_bytes(bench.folder, content)
    robot.click(button)
    ready(robot, chip)
    robot.wait("comStop_Download", "Enabled", equals=True)
    robot.click("comStop_Download")
    robot.idle(15000)
    expect(STOPPED in robot.log(), f"no word of the stop:{robot.log()}")
    expect_at_rest(robot)
    expect_equal(robot.boxes(), [], "boxes")
    chip.do("no-faults")
    chip.do("new")
    robot.download()
    expect_done(robot, chip, content)


@scenario("stop while no chip answers")
def _(bench):
    stop_when(bench, lambda robot, chip: time.sleep(0.5), content_length=500, off=True)


@scenario("stop during the baud test")
def _(bench):
    stop_when(bench, lambda robot, chip: chip.event("connected"), 500, fault="lose_reply@test_baud:1*0")


@scenario("stop during the erase")
def _(bench):
    stop_when(
        bench,
        lambda robot, chip: robot.wait("textMsg", "Text", 20000, contains="eras"),
        500,
        fault="delay@erase=3000",
    )


@scenario("stop while blocks go out")
def _(bench):
    def some_blocks(robot, chip):
        for _ in range(5):
            chip.event("block")
        robot.shot("programming")
        expect(robot.get("ProgressBar1", "Visible"), "no progress bar")

    stop_when(bench, some_blocks, 20000)


@scenario("stop in the pause between chips")
def _(bench):
    stop_when(
        bench,
        lambda robot, chip: robot.wait("textMsg", "Text", 20000, contains="will continue.  5"),
        500,
        button="comDownload(1)",
        fast=True,
    )


# ---- what goes wrong -----------------------------------------------------------


@scenario("wrong model")
def _(bench):
    chip = bench.chip("VKM26H2052", fast=True)
    robot = bench.robot_with(chip, "VKM47H58RK+")
    robot.load_bytes(bench.folder, program(300))
    robot.download()
    expect(WRONG_MODEL in robot.log(), robot.log())
    expect_equal(robot.value("File_Loaded"), False, "File_Loaded")
    expect_equal(robot.do("beeps"), 3, "beeps")
    expect_at_rest(robot)
    robot.shot("wrong-model")
    robot.click("comDownload(0)")
    robot.idle()
    boxes = robot.boxes()
    expect_equal(len(boxes), 2, "boxes")
    expect_equal(
        boxes[0]["text"],
        "MCU Type is wrong, please select another MCU and open the file again."
        "\r\n         Chinese:MCU 型号错。请重选 MCU、重新打开文件。",
        "first box",
    )
    expect_equal(boxes[0]["buttons"], ["ok"], "buttons")
    expect_equal(boxes[1]["text"], f"    {NO_FILE}    ", "second box")


@scenario("no file")
def _(bench):
    robot = bench.robot()
    robot.click("comDownload(0)")
    robot.idle()
    expect_equal([box["text"] for box in robot.boxes()], [f"    {NO_FILE}    "], "boxes")
    expect_at_rest(robot)


@scenario("a port that isn't there")
def _(bench):
    robot = bench.robot(ports={1: bench.folder / "no-such-device"})
    robot.load_bytes(bench.folder, program(300))
    log = robot.download()
    expect(OPEN_FAILED in log, log)
    expect("Chinese:串口已被其它程序打开或该串口不存在。" in log, log)
    expect_equal(robot.do("beeps"), 3, "beeps")
    expect_at_rest(robot)
    robot.shot("no-port")


@scenario("a port without a device")
def _(bench):
    robot = bench.robot()
    robot.choose("combCommPort", index=15)
    robot.load_bytes(bench.folder, program(300))
    expect(OPEN_FAILED in robot.download(), robot.log())
    expect_at_rest(robot)


@scenario("a file instead of a device")
def _(bench):
    robot = bench.robot(ports={1: bench.file("device", b"not a device")})
    robot.load_bytes(bench.folder, program(300))
    expect(OPEN_FAILED in robot.download(), robot.log())
    expect_at_rest(robot)


def pull_when(bench, ready, content_length=500, **options):
    """The other end of the cable goes; Stop works, and so does the next download."""
    chip = bench.chip("VKM47H58RK+", **options)
    robot = bench.robot_with(chip, "VKM47H58RK+")
    content = program(content_length)
    robot.load_bytes(bench.folder, content)
    robot.click("comDownload(0)")
    ready(robot, chip)
    chip.do("pull")
    time.sleep(0.2)
    if robot.value("UI_State") == 1:
        robot.try_do("click", on="comStop_Download")
    robot.idle(20000)
    expect(PROGRAM_OK not in robot.log(), "the job went well without a cable")
    expect_at_rest(robot)
    chip.do("no-faults")
    chip.do("plug")
    chip.do("new")
    robot.download()
    expect_done(robot, chip, content)


@scenario("cable pulled while no chip answers")
def _(bench):
    pull_when(bench, lambda robot, chip: time.sleep(0.5), off=True)


@scenario("cable pulled during the baud test")
def _(bench):
    pull_when(bench, lambda robot, chip: chip.event("connected"), fault="lose_reply@test_baud:1*0")


@scenario("cable pulled during the erase")
def _(bench):
    pull_when(
        bench,
        lambda robot, chip: robot.wait("textMsg", "Text", 20000, contains="eras"),
        fault="delay@erase=3000",
    )


@scenario("cable pulled while blocks go out")
def _(bench):
    def some_blocks(robot, chip):
        for _ in range(5):
            chip.event("block")

    pull_when(bench, some_blocks, 20000)


@scenario("cable pulled and nobody stops")
def _(bench):
    chip = bench.chip("VKM47H58RK+")
    robot = bench.robot_with(chip, "VKM47H58RK+")
    robot.load_bytes(bench.folder, program(20000))
    robot.click("comDownload(0)")
    for _ in range(5):
        chip.event("block")
    chip.do("pull")
    robot.idle(90000)
    expect(PROGRAM_OK not in robot.log(), "the job went well without a cable")
    expect_at_rest(robot)
    robot.shot("cable-pulled")


# What each fault does to the job: True when it is overcome.
FAULTS = {
    "lose_frame@block:2": True,
    "lose_reply@block:2": True,
    "lose_reply@block:2*0": False,
    "damage@block:2=5": True,
    "delay@block:2=1500": True,
    "twice@block:2": True,
    "cut_off@block:2=4": True,
    "noise@block:2=0068FF": True,
    "wrong_data_sum@block:2": True,
    "other_code@block:2=129": True,
    "wrong_length@block:2=65535": True,
    "power_loss@block:2=0": False,
    "lose_reply@erase:1": True,
    "lose_frame@erase:1*0": False,
    "lose_reply@test_baud:1": True,
    "lose_reply@set_baud:1": True,
    "lose_reply@link_check:1*0": True,
    "noise@status=7F7F00": True,
    "damage@status=9": True,
}


def add_faults():
    for fault, overcome in FAULTS.items():

        def with_fault(bench, fault=fault, overcome=overcome):
            chip = bench.chip("VKM47H58RK+", fast=True, fault=fault)
            robot = bench.robot_with(chip, "VKM47H58RK+")
            content = program(1500)
            robot.load_bytes(bench.folder, content)
            robot.download(120000)
            expect_at_rest(robot)
            done = PROGRAM_OK in robot.log()
            expect_equal(done, overcome, f"the job went well:{robot.log()}")
            if done:
                expect_equal(chip.flash()[: len(content)], content, "flash")
            expect_equal(robot.get("txtWrite_OK_Count"), "1" if done else "0", "counter")

        scenarios[f"fault {fault}"] = with_fault


# ---- the window -------------------------------------------------------------------


@scenario("settings survive a restart")
def _(bench):
    first = bench.robot()
    first.model("VKM26H5410")
    first.choose("combCommPort", text="COM7")
    first.check("optBeepNo")
    first.choose("comDalay_ReDownLoad", text="2")
    first.do("size", width=1300, height=850)
    expect_equal(first.quit(), 0, "exit status")
    again = bench.robot(size=None)
    expect_equal(again.get("txtDevice"), "VKM26H5410", "model")
    expect_equal(again.get("combCommPort"), "COM7", "port")
    expect_equal(again.get("optBeepNo", "Value"), 1, "beep")
    expect_equal(again.get("comDalay_ReDownLoad"), "2", "delay")
    expect_equal(again.settings()["MainWidth"], str(1300 * 15), "width")
    expect_equal(again.settings()["MainHeight"], str(850 * 15), "height")


@scenario("settings survive a crash")
def _(bench):
    first = bench.robot()
    first.model("VKM26H2052")
    first.check("Option0(0)")
    first.choose("combCommPort", text="COM3")
    first.do("size", width=1250, height=820)
    time.sleep(1.5)
    first.kill()
    again = bench.robot()
    expect_equal(again.get("txtDevice"), "VKM26H2052", "model")
    expect_equal(again.get("combCommPort"), "COM3", "port")
    expect_equal(again.get("Option0(0)", "Value"), 1, "double speed")
    expect_equal(again.settings()["安全锁"], "4", "speed number")
    expect_equal(again.settings()["MainWidth"], str(1250 * 15), "width")


@scenario("settings of junk")
def _(bench):
    bench.settings.write_text(
        "[Settings]\nMainLeft=junk\nMainTop=-99999999999\nMainWidth=0\nMainHeight=99999999\n"
        "Frame24_Width=x\nDeviceProducts=26H2052\nCOM_port=77\nBeepYesNo=maybe\n"
        "Dalay_ReDownLoad=-4\nWrite_OK_Count=seven\npin_for_485=,,,\n"
    )
    robot = bench.robot(size=None)
    expect_equal(robot.get("txtDevice"), "VKM47H51RB", "model")
    expect_equal(robot.get("combCommPort"), "COM1", "port")
    expect_equal(robot.get("comDalay_ReDownLoad"), "5", "delay")
    expect_equal(robot.get("txtWrite_OK_Count"), "0", "counter")
    robot.shot("settings-of-junk")
    expect_equal(robot.quit(), 0, "exit status")


@scenario("every control is drawn")
def _(bench):
    robot = bench.robot()
    table = (SOURCE / "src" / "screen" / "controls.def").read_text()
    rows = re.findall(r"^CONTROL\((\w+), \w+, (\d+),", table, re.M)
    expect(len(rows) > 100, "the table can't be read")
    for name, count in rows:
        for on in [name] if count == "0" else [f"{name}({i})" for i in range(int(count))]:
            robot.get(on, "Visible")


@scenario("the tree of models")
def _(bench):
    robot = bench.robot()
    expect_equal(robot.get("TreeViewDevice", "Visible"), False, "tree")
    robot.click("Command3")
    robot.wait("TreeViewDevice", "Visible", equals=True)
    expect_equal(robot.get("txtDevice", "Enabled"), False, "the box under the tree")
    robot.shot("tree")
    robot.choose("TreeViewDevice", key="Family26H2052")
    expect_equal(robot.get("TreeViewDevice", "Visible"), True, "tree after a family")
    robot.choose("TreeViewDevice", key="VKM26H2052")
    robot.wait("TreeViewDevice", "Visible", equals=False)
    expect_equal(robot.get("txtDevice"), "VKM26H2052", "model")
    expect_equal(robot.get("txtDevice", "Enabled"), True, "the box")

    robot.click("Command3")
    robot.wait("TreeViewDevice", "Visible", equals=True)
    robot.do("key", on="TreeViewDevice", key="Escape")
    robot.wait("TreeViewDevice", "Visible", equals=False)
    for ground in ("Frame3", "Frame5", "Frame2"):
        robot.click("Command3")
        robot.wait("TreeViewDevice", "Visible", equals=True)
        robot.click(ground)
        robot.wait("TreeViewDevice", "Visible", equals=False)
    expect_equal(robot.get("txtDevice"), "VKM26H2052", "model")


@scenario("every model of the tree")
def _(bench):
    robot = bench.robot()
    models = [text for text in robot.get("TreeViewDevice", "List") if "系列" not in text]
    expect(len(models) > 70, f"only {len(models)} models")
    for model in models[::7]:
        robot.model(model)
        expect_equal(robot.value("MCU_Info.MCU_Name"), model, "MCU_Info")
    expect_equal(robot.boxes(), [], "boxes")


@scenario("tabs")
def _(bench):
    robot = bench.robot()
    robot.model("VKM47H58RK+")
    pages = {
        "options": "Frame12",
        "user_code": "Frame8",
        "TJXZ": "Frame18",
        "ISP DEMO": "Frame11",
        "store_buffer": "Frame9",
        "softICE": "Frame10",
    }
    for key, frame in pages.items():
        robot.choose("TabStrip1", key=key)
        robot.wait(frame, "Visible", equals=True)
        for other in set(pages.values()) - {frame}:
            expect(not robot.get(other, "Visible"), f"{other} beside {frame}")
        robot.shot(f"tool-{frame}")
    for text, frame in (("检查MCU选项", "Frame4"), ("自动增量", "fraAuto_Increase"),
                        ("硬件帮助", "fraAboutHardWare")):
        robot.choose("TabStrip1", text=text)
        robot.wait(frame, "Visible", equals=True)
        robot.shot(f"tool-{frame}")
    for key, frame in (("tab_file", "Frame7"), ("EEPROM_File", "frmDataFlash"), ("Debug1", "Frame21"),
                       ("Debug2", "Frame22"), ("Debug_COM", "fraDebug"),
                       ("Batch_quantity", "fra_Batch_quantity")):
        robot.choose("TabStrip2", key=key)
        robot.wait(frame, "Visible", equals=True)
        robot.shot(f"view-{frame}")


@scenario("tabs that a family lacks")
def _(bench):
    robot = bench.robot()
    robot.model("VKM47H58RK")
    for strip, keys in (("TabStrip1", ("ISP DEMO", "TJXZ")), ("TabStrip2", ("Debug1", "Debug2"))):
        before = robot.get(strip, "ListIndex")
        for key in keys:
            robot.try_do("choose", on=strip, key=key)
            expect_equal(robot.get(strip, "ListIndex"), before, f"tab of {strip}")
    expect(not robot.get("comLoadDataFile", "Enabled"), "data file without data memory")
    robot.shot("family-0")
    robot.model("VKM47H58RK+")
    robot.choose("TabStrip2", key="Debug1")
    robot.wait("Frame21", "Visible", equals=True)
    expect(robot.get("comLoadDataFile", "Enabled"), "no data file with data memory")


@scenario("opening files")
def _(bench):
    robot = bench.robot()
    robot.model("VKM47H58RK+")
    robot.open_file("")
    robot.open_file(bench.folder / "no-such-file.hex")
    robot.open_file(bench.folder)
    expect_equal(robot.value("File_Loaded"), False, "File_Loaded")

    content = program(400)
    robot.load(bench.file("my.hex.bak", hex_file(content)))
    expect_equal(robot.value("File_Loaded"), True, "File_Loaded")
    expect_equal(robot.do("bytes", image="AP_Buffer", **{"from": 0}, count=400),
                 content.hex().upper(), "image")
    expect_equal(robot.get("txtFileCheckSum"), f"{sum(content):07X}H       ", "sum")
    expect("my.hex.bak" in robot.get("Frame7", "Caption"), "caption of the view")
    robot.shot("file-open")

    robot.open_file(bench.file("data.bin", b"\x01\x02\x03"), "comLoadDataFile")
    robot.wait("txtDataFileCheckSum", "Text", contains="0000006H")
    expect_equal(robot.value("Data_Buffer.Has_File"), True, "Data_Buffer.Has_File")


@scenario("start address and second file")
def _(bench):
    robot = bench.robot()
    robot.model("VKM47H58RK+")
    robot.load(bench.file("first.bin", b"\x11" * 16))
    robot.enter("txtAP_FileStart", "0100")
    robot.open_file(bench.file("second.bin", b"\x22" * 16))
    robot.wait("txtFileCheckSum", "Text", contains="0000220H")
    expect_equal(robot.do("bytes", image="AP_Buffer", **{"from": 0}, count=2), "1111", "first")
    expect_equal(robot.do("bytes", image="AP_Buffer", **{"from": 256}, count=2), "2222", "second")
    robot.enter("txtAP_FileStart", "FFFF")
    robot.open_file(bench.file("third.bin", b"\x33"))
    robot.wait("txtAP_FileStart", "Text", equals="FFFF")
    expect_equal(len(robot.boxes()), 1, "boxes")


@scenario("a HEX file with bad lines")
def _(bench):
    lines = hex_file(program(160)).decode().split("\r\n")
    bad = [line[:-2] + "00" if 1 <= i <= 5 else line for i, line in enumerate(lines)]
    path = bench.file("bad.hex", "\r\n".join(bad).encode())
    robot = bench.robot()
    robot.model("VKM47H58RK+")
    robot.open_file(path)
    expect_equal(robot.value("File_Loaded"), False, "File_Loaded after No")
    boxes = robot.boxes()
    expect_equal([box["buttons"] for box in boxes[:3]], [["ok"]] * 3, "boxes of lines")
    expect_equal(boxes[0]["title"], str(path), "title")
    expect_equal(boxes[0]["text"], "校验和错:\r\n\r\n" + bad[1], "text")
    expect_equal(sorted(boxes[3]["buttons"]), ["no", "yes"], "question")
    expect_equal(boxes[3]["answer"], "no", "default answer")

    for answer in ("ok", "ok", "ok", "yes"):
        robot.do("box", answer=answer)
    robot.load(path)
    expect_equal(robot.value("File_Loaded"), True, "File_Loaded after Yes")
    expect_equal(robot.boxes()[-1]["answer"], "yes", "answer")


@scenario("a file that takes its time")
def _(bench):
    path = bench.folder / "long.hex"
    with path.open("w") as out:
        out.write("no record\n" * 16_000_000)
    robot = bench.robot()
    robot.model("VKM47H58RK+")
    robot.open_file(path)
    robot.shot("reading-a-long-file")
    expect_equal(robot.value("File_Loaded"), False, "File_Loaded while it is read")
    robot.click("comDownload(0)")
    robot.choose("TabStrip2", key="EEPROM_File")
    robot.wait("frmDataFlash", "Visible", equals=True)
    expect_equal(robot.quit(), 0, "exit status")


@scenario("saving a file")
def _(bench):
    robot = bench.robot()
    robot.model("VKM47H58RK+")
    robot.load(bench.file("program.bin", program(1000)))
    robot.choose("TabStrip1", key="store_buffer")
    expect_equal(robot.error("click", on="comStoreFile"), "disabled", "Save File without a length")
    robot.enter("txt_Start_Address", "0010")
    robot.enter("txt_length", "00100")
    robot.wait("comStoreFile", "Enabled", equals=True)
    out = bench.folder / "saved.bin"
    robot.do("file", path=str(out))
    robot.click("comStoreFile")
    for _ in range(100):
        if out.exists() and out.stat().st_size:
            break
        time.sleep(0.05)
    expect_equal(out.read_bytes(), program(1000)[0x10:0x110], "saved bytes")


@scenario("shrinking and sizes")
def _(bench):
    robot = bench.robot()
    robot.click("comMastWindow")
    robot.wait("comMastWindow", "Caption", equals="恢复主窗体")
    expect_equal(robot.get("TabStrip1", "Visible"), False, "tools of a shrunk window")
    expect_equal(robot.get("txtWrite_OK_Count", "Visible"), True, "counter of a shrunk window")
    robot.shot("shrunk")
    robot.click("comMastWindow")
    robot.wait("comMastWindow", "Caption", equals="收缩主窗体")
    expect_equal(robot.get("TabStrip1", "Visible"), True, "tools")
    for width, height in ((800, 600), (1024, 768), (1920, 1080), (3840, 2160)):
        robot.do("size", width=width, height=height)
        robot.shot(f"size-{width}x{height}")
        for on in ("comDownload(0)", "comStop_Download", "textMsg", "Command3", "comLoadFile"):
            expect(robot.get(on, "Visible"), f"{on} at {width}x{height}")
        robot.click("Command3")
        robot.wait("TreeViewDevice", "Visible", equals=True)
        robot.do("key", on="TreeViewDevice", key="Escape")


@scenario("shrinking keeps the height that the window was started with")
def _(bench):
    robot = bench.robot(size="1300x900")
    robot.click("comMastWindow")
    robot.wait("comMastWindow", "Caption", equals="恢复主窗体")
    picture = bench.folder / "narrow.png"
    robot.do("shot", path=str(picture))
    width, height = struct.unpack(">II", picture.read_bytes()[16:24])
    expect(width < 600, f"{width} wide")
    expect_equal(height, 900, "height")


@scenario("what is off during a job")
def _(bench):
    chip = bench.chip("VKM47H58RK+", off=True)
    robot = bench.robot_with(chip, "VKM47H58RK+")
    robot.load_bytes(bench.folder, program(500))
    robot.click("comDownload(0)")
    robot.wait("comStop_Download", "Enabled", equals=True)
    robot.shot("waiting-for-a-chip")
    for on in ("comDownload(0)", "comDownload(1)", "comLoadFile", "Command3", "comMastWindow"):
        expect_equal(robot.error("click", on=on), "disabled", on)
    expect_equal(robot.error("choose", on="TreeViewDevice", key="VKM26H2052"), "disabled", "tree")
    robot.choose("TabStrip2", key="EEPROM_File")
    robot.wait("frmDataFlash", "Visible", equals=True)
    robot.click("comStop_Download")
    robot.idle()
    expect_at_rest(robot)


@scenario("counter and beeps")
def _(bench):
    chip = bench.chip("VKM47H58RK+", fast=True)
    robot = bench.robot_with(chip, "VKM47H58RK+")
    robot.enter("txtWrite_OK_Count", "41")
    robot.load_bytes(bench.folder, program(300))
    robot.download()
    expect_equal(robot.get("txtWrite_OK_Count"), "42", "counter")
    expect_equal(robot.do("beeps"), 1, "beeps")
    robot.check("optBeepNo")
    chip.do("new")
    robot.download()
    expect_equal(robot.do("beeps"), 1, "beeps")
    robot.click("comClear_OK_Count")
    robot.wait("txtWrite_OK_Count", "Text", equals="0")
    expect_equal(robot.settings()["Write_OK_Count"], "0", "stored counter")


# ---- closing -------------------------------------------------------------------------


def close_when(bench, ready, **options):
    chip = bench.chip("VKM47H58RK+", **options)
    robot = bench.robot_with(chip, "VKM47H58RK+")
    robot.load_bytes(bench.folder, program(20000))
    robot.click("comDownload(0)")
    ready(robot, chip)
    expect_equal(robot.quit(), 0, "exit status")
    expect("MainWidth" in bench.settings.read_text(), "the window's place was not kept")


@scenario("closing while no chip answers")
def _(bench):
    close_when(bench, lambda robot, chip: time.sleep(0.5), off=True)


@scenario("closing while blocks go out")
def _(bench):
    close_when(bench, lambda robot, chip: chip.event("block"))


@scenario("closing in the pause between chips")
def _(bench):
    chip = bench.chip("VKM47H58RK+", fast=True)
    robot = bench.robot_with(chip, "VKM47H58RK+")
    robot.load_bytes(bench.folder, program(300))
    robot.choose("comDalay_ReDownLoad", text="3")
    robot.click("comDownload(1)")
    robot.wait("textMsg", "Text", 20000, contains="will continue.  3")
    expect_equal(robot.quit(), 0, "exit status")


@scenario("the end of the robot's input closes the window")
def _(bench):
    robot = bench.robot()
    robot.popen.stdin.close()
    expect_equal(robot.popen.wait(20), 0, "exit status")


# ---- the robot itself ------------------------------------------------------------------


@scenario("the robot answers what it can't do")
def _(bench):
    robot = bench.robot()
    for fields, named in (
        ({"command": "dance"}, "dance"),
        ({"command": "click", "on": "comNothing"}, "comNothing"),
        ({"command": "click", "on": "comDownload"}, "comDownload"),
        ({"command": "click", "on": "comDownload(7)"}, "comDownload(7)"),
        ({"command": "click", "on": "comDownload(99999999999999999999)"}, "comDownload"),
        ({"command": "get", "on": "txtDevice", "property": "Colour"}, "Colour"),
        ({"command": "get", "on": "txtDevice", "property": "Value"}, "Value"),
        ({"command": "get", "on": "txtDevice"}, "property"),
        ({"command": "click"}, "on"),
        ({"command": "key", "on": "txtAP_FileStart", "key": "Hyper"}, "Hyper"),
        ({"command": "choose", "on": "combCommPort", "text": "COM99"}, "COM99"),
        ({"command": "choose", "on": "combCommPort", "index": 16}, "16"),
        ({"command": "choose", "on": "combCommPort"}, "index"),
        ({"command": "choose", "on": "comLoadFile", "index": 0}, "comLoadFile"),
        ({"command": "value", "name": "Board_Block"}, "Board_Block"),
        ({"command": "value", "name": "MCU_Info.Colour"}, "MCU_Info.Colour"),
        ({"command": "bytes", "image": "T100_Buffer", "from": 0, "count": 1}, "T100_Buffer"),
        ({"command": "bytes", "image": "AP_Buffer", "from": 0x12000, "count": 2}, "AP_Buffer"),
        ({"command": "bytes", "image": "AP_Buffer", "from": -1, "count": 2}, "AP_Buffer"),
        ({"command": "box", "answer": "perhaps"}, "perhaps"),
        ({"command": "check", "on": "comLoadFile", "value": True}, "comLoadFile"),
        ({"command": "check", "on": "cheClearAP_Buffer", "value": 1}, "value"),
        ({"command": "wait", "on": "textMsg", "property": "Text", "ms": 10}, "contains"),
        ({"command": "size", "width": -1, "height": 0}, "size"),
        ({"command": "shot", "path": "/proc/no/such/picture.png"}, "picture"),
    ):
        error = robot.error(**fields)
        expect(named in error, f"{fields}: {error}")
    for line in ("", "{", "[]", "7", '"click"', "{}", '{"do":5}', "\udcff".encode("utf-8", "surrogateescape")
                 .decode("latin1"), "[" * 5000):
        if not line:
            continue
        robot.write_line(line)
        answer = robot._answer(10)
        expect_equal(answer["ok"], False, f"answer to {line[:20]!r}")
        expect(answer["error"], "no reason")
    expect_equal(robot.error("click", on="comStop_Download"), "disabled", "Stop at rest")
    expect_equal(robot.error("enter", on="txt_length", text="1"), "hidden", "on another page")
    expect("COM1" in robot.error("wait", on="combCommPort", property="Text", ms=20, equals="COM2"), "wait")
    expect_equal(robot.get("txtDevice"), "VKM47H51RB", "still there")


@scenario("the robot refuses a wrong command line")
def _(bench):
    for arguments in (["--port", "17=x"], ["--port", "x"], ["--size", "big"], ["--settings"], ["-h"]):
        run = subprocess.run(
            [BUILD / "vkm_robot", *arguments],
            capture_output=True,
            timeout=30,
            env=dict(os.environ, QT_QPA_PLATFORM="offscreen"),
        )
        expect_equal(run.returncode, 2, f"exit status with {arguments}")
        expect(b"vkm_robot:" in run.stderr, "no reason")


@scenario("the robot's keyboard and caret")
def _(bench):
    robot = bench.robot()
    robot.enter("txtAP_FileStart", "12AB")
    expect_equal(robot.get("txtAP_FileStart"), "12AB", "entered")
    robot.do("caret", on="txtAP_FileStart", at=2)
    expect_equal(robot.get("txtAP_FileStart", "SelStart"), 2, "caret")
    robot.do("keys", on="txtAP_FileStart", text="9")
    expect("9" in robot.get("txtAP_FileStart"), "typed")
    robot.enter("txtAP_FileStart", "")
    expect_equal(robot.get("txtAP_FileStart"), "", "emptied")
    robot.check("cheClearAP_Buffer", True)
    robot.check("cheClearAP_Buffer", True)
    expect(robot.get("cheClearAP_Buffer", "Value") is True, "checked")
    for wanted in (True, 1):
        robot.wait("cheClearAP_Buffer", "Value", equals=wanted)
    robot.error("wait", on="cheClearAP_Buffer", property="Value", ms=20, not_equals=1)
    robot.check("cheClearAP_Buffer", False)
    expect(robot.get("cheClearAP_Buffer", "Value") is False, "unchecked")
    # A click on the page chooses the digit at the caret, or the next one.
    robot.do("caret", on="txtBuffer2", at=100)
    expect_equal(robot.get("txtBuffer2", "SelStart"), 101, "digit of the page")
    expect_equal(robot.get("txtBuffer2", "SelLength"), 1, "one digit")
    for command, fields in (("caret", {"at": 100}), ("keys", {"text": "A"}), ("key", {"key": "Up"}), ("click", {})):
        expect_equal(robot.error(command, on="txtBuffer", **fields), "hidden", f"{command} on what is covered")
    expect_equal(robot.get("txtBuffer"), robot.get("txtBuffer2"), "the covered text")
    expect_equal(robot.error("caret", on="txtAP_FileStart", at=9), "no position 9", "beyond")
    # What lies out of sight is scrolled to.
    robot.do("size", width=800, height=600)
    robot.load_bytes(bench.folder, program(5000))
    rows = (len(robot.get("txtBuffer2")) - 4) // 60
    expect(rows >= 4, "a page on a small screen")
    last_row = 4 + 60 * (rows - 1)
    for at in (4 + 10, last_row + 10, last_row + 10 + 15 * 3 + 1, 60 + 14):
        robot.do("caret", on="txtBuffer2", at=at)
        expect_equal(robot.get("txtBuffer2", "SelStart"), at, "digit of the page")
    robot.do("key", on="txtBuffer2", key="PageDown")
    robot.wait("vscFile(0)", "Value", equals=rows)
    expect(robot.get("txtBuffer2").startswith(f"\r\n\r\n {rows * 16:06X}   "), "the next page")
    robot.choose("TabStrip1", key="user_code")
    robot.enter("txtUserCode", "0123456789ABCDEF" * 20)
    for at in (0, 300, 10, 160, 320):
        robot.do("caret", on="txtUserCode", at=at)
        expect_equal(robot.get("txtUserCode", "SelStart"), at, "caret of a long line")


add_models()
add_paced_models()
add_bauds()
add_faults()
scenarios.update(option_scenarios.scenarios)
scenarios.update(production_scenarios.scenarios)
scenarios.update(terminal_scenarios.scenarios)
scenarios.update(monitor_scenarios.scenarios)
scenarios.update(board_scenarios.scenarios)
scenarios.update(isp_program_scenarios.scenarios)

if __name__ == "__main__":
    try:
        sys.exit(run_scenarios(scenarios))
    except Failed as failure:
        sys.exit(str(failure))
