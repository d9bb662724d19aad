#!/usr/bin/env python3
"""Takes the pictures of the manual, off screen, with simulated chips on the line.

    cmake --build --preset release
    VKM_BUILD=build/release docs/pictures/take.py

They are written beside this file; the whole window goes to docs/window.png.
"""

import pathlib
import shutil
import sys

HERE = pathlib.Path(__file__).resolve().parent
ROOT = HERE.parent.parent
sys.path.insert(0, str(ROOT / "tests" / "robot"))

import bench as robot_bench
from bench import Bench, program
from monitor_scenarios import dump, registers_dump
from small_png import make_small
from terminal import with_open_terminal

FOLDER = pathlib.Path("/tmp/VKM")  # short names in the pictures
SIZE = "1280x800"
UPPER, LOWER, LEFT = "TabStrip2", "TabStrip1", "Frame1"
MODEL = "VKM47H58RK+"


def tool(robot, key, name):
    robot.choose(LOWER, text=key)
    robot.shot(name, around=LOWER)


def view(robot, key, name):
    robot.choose(UPPER, text=key)
    robot.shot(name, around=UPPER)


def download(bench):
    """A download, and the pages that go with it."""
    chip = bench.chip(MODEL, fast=True)
    robot = bench.robot_with(chip, MODEL, size=SIZE)
    shutil.copy(ROOT / "examples" / "blink.hex", bench.folder)
    robot.load(bench.folder / "blink.hex")
    robot.download()
    tool(robot, "检查MCU选项", "tool-read-options")
    robot.shot("../window")
    robot.shot("left", around=LEFT)
    view(robot, "文件缓冲区", "view-program")
    tool(robot, "选项", "tool-options")
    robot.choose(LOWER, text="自定义下载")
    robot.enter("txtUserCode", "12 34 AB CD")
    tool(robot, "自定义下载", "tool-user-code")
    robot.choose(LOWER, text="自动增量")
    for field, text in enumerate(["00FF", "4", "1001", "1"]):
        robot.enter(f"texAuto_Increase({field})", text)
    robot.check("cheAuto_Increase")
    tool(robot, "自动增量", "tool-numbers")
    tool(robot, "存储文件", "tool-save")
    tool(robot, "硬件帮助", "tool-hardware")
    view(robot, "工程文件", "view-project")


def data_file(bench):
    """A model with a panel full of options and a data memory."""
    robot = bench.robot(size=SIZE)
    robot.model("VKM26H5410")
    robot.load_bytes(bench.folder, program(0x1000))
    (bench.folder / "data.bin").write_bytes(program(0x200, seed=2))
    robot.open_file(bench.folder / "data.bin", "comLoadDataFile")
    robot.wait("txtDataFileCheckSum", "Text", not_equals="")
    view(robot, "数据文件", "view-data")
    robot.shot("left-26", around=LEFT)


def board(bench):
    device = bench.board()
    robot = bench.robot_with(device, MODEL, size=SIZE)
    robot.load_bytes(bench.folder, program(0x2000))
    robot.choose(LOWER, text="脱机下载")
    robot.click("comTJXZ")
    robot.idle()
    tool(robot, "脱机下载", "tool-board")
    robot.shot_box("board-help")
    robot.click("com_TJXZ_help")
    robot.boxes()


def demo(bench):
    target = bench.isp_target()
    robot = bench.robot_with(target, MODEL, size=SIZE)
    tool(robot, "ISP DEMO", "tool-demo")


def softice(bench):
    robot = bench.robot(size=SIZE)
    robot.model("VKM47H516RK")
    tool(robot, "仿真芯片", "tool-softice")


def terminal_and_monitor(bench):
    robot, line = with_open_terminal(bench, size=SIZE)
    robot.model("VKM26H5410")
    line.say(b"VKM26H5410 ready\r\n")
    robot.wait("texReceive", "Text", contains="ready")
    view(robot, "串口调试助手", "view-terminal")
    ram, xram = bytearray(program(256)), program(1024, seed=2)
    for acc in (0x5A, 0x5B):
        ram[40] = acc
        for frame in (registers_dump(acc), dump(1, bytes(ram)), dump(2, xram),
                      dump(3, program(512, seed=3), address=0x1234)):
            line.say(frame)
            line.hears(4)
    view(robot, "Debug_SFR", "view-sfr")
    view(robot, "Debug_xdata", "view-xdata")


def main():
    robot_bench.SHOTS = HERE
    for scene in (download, data_file, board, demo, softice, terminal_and_monitor):
        bench = Bench(scene.__name__)
        shutil.rmtree(FOLDER, ignore_errors=True)
        bench.folder.rename(FOLDER)
        bench.folder, bench.settings = FOLDER, FOLDER / "settings.ini"
        try:
            scene(bench)
        finally:
            bench.close()
    for path in [*HERE.glob("*.png"), HERE.parent / "window.png"]:
        make_small(path)


if __name__ == "__main__":
    main()
