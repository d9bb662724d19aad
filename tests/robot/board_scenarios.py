"""The stand-alone download board: loaded with a job, it programs chips as a download does."""

import time

from bench import collection, expect, expect_equal, program
from expectations import PROGRAM_OK, expect_at_rest
from production_scenarios import image, set_numbering

CONNECTED = "Connect OK. / 连接成功。"
LOADED = "Download OK. / 下载成功。"
STOPPED_BOARD = "Operation is stop.\r\n操作被停止."
LOW_PART, FIRST_SMALL, FIRST_LARGE = (0x2000, 0x3FFF), (0x4000, 0xF3FF), (0x4000, 0xF7FF)

scenarios, scenario = collection()


def at_board(bench, model, content, board=None, **options):
    """A robot with a board as COM1, a program loaded and the page of the board open."""
    board = board or bench.board(**options)
    robot = bench.robot_with(board, model)
    if content is not None:
        robot.load_bytes(bench.folder, content)
    robot.choose("TabStrip1", key="TJXZ")
    return robot, board


def load_board(robot, button="comTJXZ"):
    robot.choose("TabStrip1", key="TJXZ")
    robot.click(button)
    robot.idle(120000)
    return robot.log()


def expect_loaded(robot, board, ranges):
    log = robot.log()
    expect(log.endswith(LOADED), f"the board was not loaded:{log}\n" + board.faults())
    expect_equal(board.ranges(), ranges, "address ranges on the wire")
    for first, last in [pair for stage in ranges for pair in stage]:
        expect_equal(
            board.storage(first, last - first + 1),
            image(robot, "Board_Image", first, last - first + 1),
            f"storage from {first:04X}",
        )
    expect_equal(board.faults(), "", "what the board objected to")
    expect_equal(robot.boxes(), [], "boxes")
    expect_at_rest(robot)


# ---- loading -------------------------------------------------------------------------


@scenario("a job with numbers across a boundary goes into the board, and chips out of it")
def _(bench):
    model, content = "VKM26H5410", program(0x1800)
    chip = bench.chip(model, fast=True)
    board = bench.board(version="17", chip=model)
    robot = bench.robot(ports={1: chip.device, 2: board.device})
    robot.model(model)
    robot.load_bytes(bench.folder, content)
    set_numbering(robot, "", 0x7E, 4, 1234, 7, 0)
    robot.choose("TabStrip1", key="TJXZ")
    robot.enter("txt_download_max", "5000")
    robot.choose("combCommPort", index=1)
    robot.shot("board-before")
    load_board(robot)
    robot.shot("board-loaded")
    expect_loaded(robot, board, [[FIRST_LARGE], [LOW_PART]])
    expect(CONNECTED in robot.log(), robot.log())
    for line in ("Version: 17", "脱机下载固件版本号: 17"):
        expect(line in robot.log(), f"{line} is missing in {robot.log()}")
    table = image(robot, "Board_Image", 0xEC80, 11)
    expect_equal(table.hex(" "), "01 00 00 7e 02 00 00 80 02 07 00", "numbering table")
    expect_equal(board.storage(0xED00, 2), b"\x03\x00", "2048s of the limit")
    expect_equal(board.storage(0xEE00, 114), b"\xff" * 113 + b"\x00", "rest of the limit")
    expect_equal(int.from_bytes(board.storage(0xEC90, 4), "big"), 5000, "limit")
    expect_equal(robot.get("texAuto_Increase(2)"), "1234", "the next number here")

    robot.choose("combCommPort", index=0)
    robot.download()
    expect(PROGRAM_OK in robot.log(), robot.log())
    result = board.program()
    expect(result.startswith("done"), result)
    expect_equal(board.chip_flash(0, 0x1800), chip.flash()[:0x1800], "flash of the board's chip")
    expect_equal(board.do("chip-options"), chip.do("options"), "its options")
    expect("chips_left=4999" in result, result)


def loaded_in_ranges(bench, version, flag, ranges):
    robot, board = at_board(
        bench, "VKM47H516RK+", program(0xB000), version=version, flag="01" if flag else "00"
    )
    load_board(robot)
    expect_loaded(robot, board, ranges)


for _version, _flag, _ranges in (
    ("15", False, [[FIRST_SMALL], [LOW_PART]]),
    ("15", True, [[FIRST_SMALL], []]),
    ("16", False, [[FIRST_SMALL], []]),
    ("16", True, [[FIRST_SMALL], []]),
    ("17", False, [[FIRST_LARGE], [LOW_PART]]),
    ("17", True, [[FIRST_LARGE], []]),
    ("18", False, [[FIRST_LARGE], [LOW_PART]]),
):
    scenarios[f"board of version {_version} {'with' if _flag else 'without'} its flag"] = (
        lambda bench, v=_version, f=_flag, r=_ranges: loaded_in_ranges(bench, v, f, r)
    )


@scenario("a board switched on late is woken and loaded")
def _(bench):
    robot, board = at_board(bench, "VKM26H5410", program(900), power="never")
    robot.click("comTJXZ")
    robot.wait("textMsg", "Text", contains="请给脱机下载板上电。")
    robot.shot("board-waiting")
    expect_equal(robot.error("click", on="comTJXZ"), "disabled", "comTJXZ meanwhile")
    expect_equal(robot.error("click", on="comDownload(0)"), "disabled", "Download meanwhile")
    board.do("power on")
    robot.idle(120000)
    expect_loaded(robot, board, [[FIRST_LARGE], [LOW_PART]])


@scenario("Stop ends the waiting for a board that isn't there, and the sending to one")
def _(bench):
    robot, board = at_board(bench, "VKM26H5410", program(900), power="never")
    for wanted in ("请给脱机下载板上电。", "正在下载 ..."):
        robot.click("comTJXZ")
        robot.wait("textMsg", "Text", 20000, contains=wanted)
        time.sleep(0.3)
        began = time.monotonic()
        robot.click("comStop_Download")
        robot.idle(2000)
        expect(time.monotonic() - began < 1.5, "Stop took its time")
        expect(robot.log().endswith(STOPPED_BOARD), robot.log())
        expect_at_rest(robot)
        board.do("power on")
        expect_equal(image(robot, "AP_Buffer", 0, 900), program(900), "the program")
    load_board(robot)
    expect_loaded(robot, board, [[FIRST_LARGE], [LOW_PART]])


for _fault in ("lose_reply@block:5", "wrong_sum@block:7", "damage@wake:1=6", "lose_reply@erase_second:1"):

    def spoilt(bench, fault=_fault):
        robot, board = at_board(bench, "VKM26H5410", program(900), fault=fault)
        load_board(robot)
        expect_loaded(robot, board, [[FIRST_LARGE], [LOW_PART]])

    scenarios[f"board {_fault}"] = spoilt


@scenario("a board that stops answering is reported")
def _(bench):
    robot, board = at_board(bench, "VKM26H5410", program(900), fault="lose_reply@block:5*0")
    log = load_board(robot)
    expect(log.endswith("Download is failure!\r\n下载失败。"), log)
    expect_at_rest(robot)
    expect_equal(robot.get("labVerdict", "Caption"), "✘ Failed / 失败: Program / 下载", "verdict")


@scenario("limits that no board takes are refused before anything is sent")
def _(bench):
    robot, board = at_board(bench, "VKM26H5410", program(900))
    too_small, too_great = "脱机下载板下载数量上限应大于 0。", "脱机下载板下载数量上限应小于、等于 1000000。"
    for count, (text, box) in enumerate((("0", too_small), ("abc", too_small), ("1000001", too_great))):
        robot.enter("txt_download_max", text)
        robot.click("comTJXZ")
        robot.idle()
        expect_equal([each["text"] for each in robot.boxes()][count:], [box], f"box of {text}")
    expect_equal(board.counters()["wakes"], 0, "wake bytes")
    set_numbering(robot, "", 0x40, 4, 2147480000, 200, 0)
    robot.choose("TabStrip1", key="TJXZ")
    robot.enter("txt_download_max", "1000000")
    load_board(robot)
    expect(robot.boxes()[-1]["text"].startswith("自动增量下一值 + (增量*脱机下载板下载数限量) 太大"), "box")
    expect_equal(board.counters()["erases"], 0, "nothing was erased")
    expect_at_rest(robot)


@scenario("a program that the board can't hold is cut with a warning")
def _(bench):
    robot, board = at_board(bench, "VKM47H516RK+", program(0x6000), capacity="16")
    load_board(robot)
    expect_equal(
        [box["text"] for box in robot.boxes()],
        ["此脱机下载板版本或该型号的 MCU 最多下载16K 程序和数据, 超出部分将不下载。\r\n"
         "                      按确定继续"],
        "boxes",
    )
    expect(robot.log().endswith(LOADED), robot.log())
    expect_equal(board.storage(0xEC70, 3).hex(), "003fff", "last address of the code")


@scenario("the board explains itself, and wants a file")
def _(bench):
    robot, board = at_board(bench, "VKM26H5410", None)
    robot.click("com_TJXZ_help")
    robot.idle()
    robot.click("comTJXZ")
    robot.idle()
    boxes = robot.boxes()
    expect_equal(boxes[0]["title"], "脱机下载板使用说明", "title of the help")
    expect_equal(boxes[1]["text"], "    Please open file./请打开文件。    ", "without a file")
    expect_equal(board.counters()["wakes"], 0, "wake bytes")


# ---- the storage read back ------------------------------------------------------------


@scenario("the EEPROM of the board comes back into the image")
def _(bench):
    content = program(0x10000)
    robot, board = at_board(bench, "VKM47H516RK+", content[:0xF000])
    load_board(robot, "Read24C512")
    expect(robot.log().endswith("读 24C512 OK"), robot.log())
    expect_equal(robot.boxes(), [], "boxes")
    whole = image(robot, "AP_Buffer", 0, 0x10000)
    expect_equal(whole, board.storage(), "the image")
    expect_equal(whole[0x4000:0xF000], content[0x4000:0xF000], "the program came through")
    expect_equal(robot.value("AP_Buffer.Image_High"), 65535, "end of the image")
    expect_equal(int(robot.get("txtFileCheckSum").strip().rstrip("H"), 16), sum(whole), "checksum")
    expect_equal(board.counters()["reads"], 512, "pages")
    expect("FF FF" in robot.get("txtBuffer"), "the view")
    robot.shot("board-read-back")
    expect_at_rest(robot)


@scenario("without a file the EEPROM is only read, and a page that fails ends it")
def _(bench):
    stored = program(0x10000, seed=9)
    robot, board = at_board(
        bench, "VKM47H516RK+", None, eeprom=bench.file("eeprom", stored), fault="lose_reply@read:101*0"
    )
    load_board(robot, "Read24C512")
    expect(robot.log().endswith("读 24C512 失败"), robot.log())
    expect_equal(board.counters()["erases"], 0, "erased")
    expect_equal(image(robot, "AP_Buffer", 0, 12800), stored[:12800], "the pages before")
    expect_equal(image(robot, "AP_Buffer", 12800, 128), bytes(128), "the page that failed")
    board.do("no-faults")
    robot.click("Read24C512")
    robot.wait("comStop_Download", "Enabled", equals=True)
    time.sleep(0.5)
    robot.click("comStop_Download")
    robot.idle(2000)
    expect(robot.log().endswith("操作被停止."), robot.log())
    expect_at_rest(robot)
