"""The target monitor: dumps of a target that has stopped, and what it is answered."""

import time

from bench import collection, expect, expect_equal, program
from expectations import PROGRAM_OK
from terminal import Line, expect_open, terminal_at, with_open_terminal

scenarios, scenario = collection()


# ---- the debug agent's side of the wire ---------------------------------------------

ACKNOWLEDGE = bytes.fromhex("FEAA50FA")
AGAIN = bytes.fromhex("FEAA52FC")
CONTINUE = bytes.fromhex("FEAA54FE")


def dump(kind, payload, address=0, saved=bytes(7), r1=0, r0=0):
    """A whole dump with its mark."""
    body = bytes([kind, 0, address >> 8, address & 0xFF]) + saved + bytes([r1, r0]) + payload
    length = len(body) + 4
    frame = bytes([0xAA, length >> 8, length & 0xFF]) + body
    return b"\xa5\x5a" + frame + bytes([sum(frame) & 0xFF])


# ---- scenarios ------------------------------------------------------------


def registers_dump(acc, sp=0x07):
    """All 128 registers counting up from their addresses, and the saved ones."""
    return dump(0, bytes(range(128, 256)), 0x80, saved=bytes([1, acc, 2, 3, 4, 5, sp]), r1=6, r0=7)


def row(robot, list_, start):
    return next(text for text in robot.get(list_, "List") if text.startswith(start))


def wait_for_row(robot, list_, wanted):
    until = time.monotonic() + 5
    while wanted not in robot.get(list_, "List"):
        expect(time.monotonic() < until, f"{list_} lacks {wanted!r}: {robot.get(list_, 'List')[:4]}")
        time.sleep(0.02)


@scenario("four lists show a stopped target, and what changed at its next stop")
def _(bench):
    robot, line = with_open_terminal(bench)
    robot.model("VKM26H5410")  # family 4
    ram, xram, window = program(256), program(1024, seed=2), program(512, seed=3)

    def stop(acc, ram, xram):
        for frame in (registers_dump(acc), dump(1, ram, r1=0x11, r0=0x22), dump(2, xram),
                      dump(3, window, address=0x1234)):
            line.say(frame)
            expect_equal(line.hears(4), ACKNOWLEDGE, "acknowledge")

    stop(0x5A, ram, xram)
    robot.choose("TabStrip2", key="Debug1")
    wait_for_row(robot, "lst_debug1", "E0H     ACC      5AH   90")
    expect_equal(row(robot, "lst_debug1", "81H"), "81H     SP       07H    7", "SP")
    expect_equal(row(robot, "lst_debug1", "F5H"), "F5H     PCA_PWM3 F5H  245", "the last register")
    expect_equal(len(robot.get("lst_debug1", "List")), 67, "registers")
    first = bytes([0x22, 0x11]) + ram[2:8]
    expect_equal(row(robot, "lst_debug2", "00")[28:], first.hex(" ").upper(), "R0 and R1")
    robot.shot("monitor-registers")
    robot.choose("TabStrip2", key="Debug2")
    expect_equal(row(robot, "lst_debug3", "03F8")[28:], xram[-8:].hex(" ").upper(), "XRAM")
    rows = robot.get("lst_debug4", "List")
    expect_equal((rows[0][:4], rows[-1][:4], len(rows)), ("1200", "13F8", 64), "window")
    robot.shot("monitor-memory")

    robot.choose("TabStrip2", key="Debug1")
    stop(0x5B, ram[:40] + b"\xee" + ram[41:], xram)
    wait_for_row(robot, "lst_debug1", "E0H     ACC      5BH   91")
    expect_equal(robot.get("lst_debug1", "Selected"), [0], "changed registers")
    expect_equal(robot.get("lst_debug2", "Selected"), [] if ram[40] == 0xEE else [5], "changed RAM")
    expect_equal(robot.get("lst_debug3", "Selected"), [], "changed XRAM")
    robot.shot("monitor-second-stop")
    stop(0x5B, ram[:40] + b"\xee" + ram[41:], xram)
    expect_equal(robot.get("lst_debug1", "Selected"), [], "nothing changed")

    robot.click("comDebugContinue")
    expect_equal(line.hears(4), CONTINUE, "continue")
    robot.wait("labSendCount", "Caption", equals="发送计数:3")
    robot.click("comDebugClear(1)")
    expect_equal(row(robot, "lst_debug1", "E0H"), "E0H     ACC      ", "a cleared register")


@scenario("a broken dump is asked for again, three times and no more")
def _(bench):
    robot, line = with_open_terminal(bench)
    robot.model("VKM26H5410")
    robot.choose("TabStrip2", key="Debug1")
    good = registers_dump(0x77)
    line.say(good[:-1] + bytes([good[-1] ^ 1]))
    line.hears_nothing(0.5)
    expect_equal(robot.get("lst_debug1", "List")[0], "E0H     ACC      ", "a broken dump changes nothing")
    expect_equal(line.hears(4), AGAIN, "asked again")
    line.say(good[:1])
    time.sleep(0.1)
    line.say(good[1:2])
    time.sleep(0.1)
    line.say(good[2:])
    expect_equal(line.hears(4), ACKNOWLEDGE, "acknowledge")
    wait_for_row(robot, "lst_debug1", "E0H     ACC      77H  119")
    line.say(good[:60])
    expect_equal(line.hears(12, 8), AGAIN * 3, "asked three times")
    line.hears_nothing(2)


@scenario("the answers to the agent can be switched off")
def _(bench):
    robot, line = with_open_terminal(bench)
    robot.model("VKM26H5410")
    robot.choose("TabStrip2", key="Debug1")
    robot.check("che_disable_Debug_SFR_232")
    line.say(registers_dump(0x12))
    wait_for_row(robot, "lst_debug1", "E0H     ACC      12H   18")
    line.say(registers_dump(0x13)[:50])
    line.hears_nothing(1.5)


@scenario("a download amid a dump asks nobody for the rest")
def _(bench):
    chip = bench.chip("VKM47H58RK+", fast=True, off=True)
    line = Line(bench.folder)
    bench.started.append(line)
    robot = bench.robot(ports={1: chip.device, 2: line.device})
    robot.model("VKM47H58RK+")
    robot.load_bytes(bench.folder, program(500))
    robot.choose("TabStrip2", key="Debug_COM")
    robot.choose("com_Debug_COM", index=1)
    robot.click("comOpenCOM")
    expect_open(robot)
    line.say(registers_dump(1)[:30])
    robot.wait("labReceiveCount", "Caption", equals="接收计数:30")
    robot.click("comDownload(0)")
    time.sleep(1.5)
    chip.do("on")
    robot.idle()
    expect(PROGRAM_OK in robot.log(), robot.log())
    line.hears_nothing(0)


@scenario("a simulated target stops twice, one of its dumps is spoilt, and it goes on")
def _(bench):
    target = bench.target(
        monitor=True,
        stops=0,  # when the host listens, however long it took to begin
        fault=["wrong_sum:2", "cut_off:4=40"],
        change=["2 sfr 90 12", "2 ram 30 99", "2 xram 0010 77"],
        set=["xram 1200 AB"],
        dumps="registers,ram,xram 256,window 1200",
    )
    robot = terminal_at(bench, target, "VKM26H5410")
    robot.click("comOpenCOM")
    expect_open(robot)
    robot.choose("TabStrip2", key="Debug2")
    target.do("stop")
    told = [target.event("dump", 10).split(" ")[1] for _ in range(6)]
    expect_equal(told, ["registers", "ram", "ram", "xram", "xram", "window"], "dumps")
    wait_for_row(robot, "lst_debug4", "1200" + " " * 24 + "AB 00 00 00 00 00 00 00")
    robot.click("comDebugClear(2)")
    robot.choose("TabStrip2", key="Debug1")
    robot.click("comDebugContinue")
    target.event("running")
    target.do("stop")
    wait_for_row(robot, "lst_debug1", "90H     P1       12H   18")
    wait_for_row(robot, "lst_debug2", "30" + " " * 26 + "99 00 00 00 00 00 00 00")
    robot.choose("TabStrip2", key="Debug2")
    wait_for_row(robot, "lst_debug3", "0010" + " " * 24 + "77 00 00 00 00 00 00 00")
    objections = [line for line in target.output if line.startswith("objection")]
    expect_equal(objections, [], "what the target objected to")
