"""Downloads past the boot firmware: over a user's own ISP program, and the debug monitor
that takes its place."""

import time

from bench import collection, expect, expect_equal, program
from expectations import expect_at_rest
from production_scenarios import image, number_bytes, set_numbering, with_number

DEMO_OK = "Program OK / 下载 OK"
STOPPED = "Operation is stop. / 操作被停止."
MODEL, CODE = "VKM47H58RK+", "4005"

scenarios, scenario = collection()


def at_demo(bench, content, **options):
    """A robot with a target as COM1, a program loaded and the page of the download open."""
    options.setdefault("code", CODE)
    target = bench.isp_target(**options)
    robot = bench.robot_with(target, MODEL)
    robot.load_bytes(bench.folder, content)
    robot.choose("TabStrip1", key="ISP DEMO")
    return robot, target


def expect_demo_done(robot, target, content):
    log = robot.log()
    expect(DEMO_OK in log, f"the job failed:{log}\n" + target.faults())
    expect_equal(target.flash(0, len(content)), content, "flash")
    expect_equal(target.faults(), "", "what the target objected to")
    expect_equal(target.counters()["ends"], 2, "ends of the job")
    expect_at_rest(robot)
    expect(not robot.get("com_Demo_Stop", "Enabled"), "Stop has nothing to stop")


# ---- ISP DEMO ------------------------------------------------------------------------


@scenario("a target with its own ISP program is programmed")
def _(bench):
    content = program(3000)
    robot, target = at_demo(bench, content)
    robot.shot("demo-before")
    robot.download(button="com_Demo_DownLoad")
    expect_demo_done(robot, target, content)
    robot.shot("demo-done")
    expect_equal(target.counters()["versions"], 1, "versions read")
    expect_equal(robot.boxes(), [], "boxes")
    expect_equal(robot.get("txtWrite_OK_Count"), "0", "counter")
    expect_equal(robot.value("Chip_Name"), MODEL, "Chip_Name")


def at_settings(bench, baud, parity, stop_bits):
    content = program(700)
    robot, target = at_demo(bench, content, baud=baud)
    robot.choose("cob_DEMO_DownLoad_Baud", text=str(baud))
    robot.choose("cob_DEMO_DownLoad_Parity", text=parity)
    robot.choose("cob_DEMO_DownLoad_StopBits", text=stop_bits)
    robot.download(button="com_Demo_DownLoad")
    expect_demo_done(robot, target, content)


for _baud, _parity, _stop in ((1200, "None", "1"), (4800, "Even", "1"), (9600, "Odd", "2"),
                              (57600, "None", "2"), (256000, "None", "1")):
    scenarios[f"ISP program at {_baud} baud, {_parity}, {_stop}"] = (
        lambda bench, b=_baud, p=_parity, s=_stop: at_settings(bench, b, p, s)
    )


@scenario("a user code at its own rate wakes the ISP program first")
def _(bench):
    content = program(500)
    robot, target = at_demo(bench, content, baud=19200, user_code="12 34 AB".replace(" ", ""),
                            user_code_baud=2400)
    robot.choose("cob_DEMO_DownLoad_Baud", text="19200")
    robot.choose("cob_DEMO_UserCode_Baud", text="2400")
    robot.enter("txt_DEMO_UserCode", "12 34 AB")
    robot.click("com_Demo_DownLoad")
    robot.wait("textMsg", "Text", contains="We are trying to connect")
    time.sleep(0.7)
    expect(DEMO_OK not in robot.log(), "programmed without its user code")
    robot.click("com_Demo_Stop")
    robot.idle(2000)
    robot.check("che_Demo_DownLoad")
    robot.download(button="com_Demo_DownLoad")
    expect_demo_done(robot, target, content)


@scenario("a series of three targets, each with its number")
def _(bench):
    content = program(900)
    robot, target = at_demo(bench, content)
    set_numbering(robot, "", 0x17F, 4, 0, 5, 1)
    robot.choose("comDalay_ReDownLoad", text="1")
    robot.choose("TabStrip1", key="ISP DEMO")
    robot.click("com_Demo_Re_DownLoad")
    for count in range(3):
        target.event("end")
        target.event("end")
        wanted = with_number(content, 0x17F, number_bytes(5 * count, 4, 1))
        expect_equal(target.flash(0, 900), wanted, f"flash of target {count}")
        expect_equal(target.faults(), "", "what the target objected to")
        target.do("next")
        robot.wait("texAuto_Increase(2)", "Text", equals=f"{5 * count + 5:08d}")
        robot.wait("textMsg", "Text", contains="Program succeed. / 下载成功.")
    began = time.monotonic()
    robot.click("com_Demo_Stop")
    robot.idle(2000)
    expect(time.monotonic() - began < 0.9, "Stop waited for the pause")
    expect(robot.log().endswith(STOPPED), robot.log())
    expect_at_rest(robot)
    expect_equal(int(robot.do("settings")["Auto_Increase"]["next_value"]), 15, "stored number")


@scenario("an ISP program that is not there is waited for until Stop")
def _(bench):
    robot, target = at_demo(bench, program(500), silent=True)
    robot.click("com_Demo_DownLoad")
    robot.wait("textMsg", "Text", 10000, contains="仍在连接中")
    robot.shot("demo-waiting")
    for button in ("com_Demo_DownLoad", "com_Demo_Re_DownLoad", "comDownload(0)", "comTJXZ"):
        expect(robot.error("click", on=button) in ("disabled", "hidden"), button)
    robot.click("comStop_Download")
    robot.idle(2000)
    expect(robot.log().endswith(STOPPED), robot.log())
    expect("Handshake is failed. / 握手失败 (End: " in robot.log(), robot.log())
    expect_at_rest(robot)


@scenario("the wrong model over an ISP program asks for the file again")
def _(bench):
    robot, target = at_demo(bench, program(500), code="4001")
    robot.download(button="com_Demo_DownLoad")
    expect("MCU Type is wrong. / MCU 型号错, 请重选" in robot.log(), robot.log())
    expect_equal(target.counters()["erases"], 0, "erases")
    robot.click("com_Demo_DownLoad")
    robot.idle()
    expect_equal(robot.boxes()[-1]["text"], " Please open file./请打开文件。", "the next click")


for _fault in ("lose_reply@block:2", "lose_frame@block:3", "damage@block:2=6", "wrong_data_sum@block:2",
               "delay@erase=700", "cut_off@version=5", "noise@connect=5A5A00", "lose_reply@version:1",
               "wrong_length@block:2=65535", "wrong_length@connect:2=0", "twice@erase"):

    def spoilt_demo(bench, fault=_fault):
        content = program(900)
        robot, target = at_demo(bench, content, fault=fault)
        robot.download(button="com_Demo_DownLoad")
        expect_demo_done(robot, target, content)

    scenarios[f"ISP program {_fault}"] = spoilt_demo


@scenario("a download follows an ISP program, and the other way round")
def _(bench):
    content = program(600)
    target = bench.isp_target(code=CODE)
    chip = bench.chip(MODEL, fast=True)
    robot = bench.robot(ports={1: target.device, 2: chip.device})
    robot.model(MODEL)
    robot.load_bytes(bench.folder, content)
    robot.choose("TabStrip1", key="ISP DEMO")
    for port, button in ((0, "com_Demo_DownLoad"), (1, "comDownload(0)"), (0, "com_Demo_DownLoad")):
        robot.choose("combCommPort", index=port)
        robot.download(button=button)
        expect(DEMO_OK in robot.log(), robot.log())
        if port == 0:
            target.do("next")
    expect_equal(chip.flash()[:600], content, "the chip's flash")


# ---- the debug monitor -----------------------------------------------------------------


def with_monitor(bench, model, name):
    start, monitor = program(384, seed=3), program(4096, seed=4)
    bench.file("VKM2000.rom", start + b"behind")
    bench.file(name, monitor)
    chip = bench.chip(model, fast=True)
    robot = bench.robot_with(chip, model)
    robot.choose("TabStrip1", key="softICE")
    return robot, chip, start, monitor


def monitor_downloaded(bench, model, name):
    robot, chip, start, monitor = with_monitor(bench, model, name)
    robot.shot(f"monitor-before-{model}")
    for answer in ("yes", "yes"):
        robot.do("box", answer=answer)
    log = robot.download(button="comDownSoft_ICE")
    expect("Download Soft_ICE is succeed /下载 Soft_ICE 成功" in log, log)
    expect_equal(len(robot.boxes()), 2, f"questions {robot.boxes()}")
    flash = chip.flash()
    expect_equal(flash[:3], bytes.fromhex("022200"), "reset jump")
    expect_equal(flash[3:640], b"\xff" * 637, "behind it")
    expect_equal(flash[0x2000:0x2180], start, "the monitor's start")
    expect_equal(flash[0x2300:0x3300], monitor, "the monitor")
    for first, last in ((0x2180, 0x22FF), (0x3300, 0x33FF)):
        loader = image(robot, "AP_Buffer", first, last - first + 1)
        expect(loader.count(0xFF) < len(loader), "no loader")
        expect_equal(flash[first : last + 1], loader, f"loader at {first:04X}")
    expect_equal(robot.get("Frame7", "Caption"), f"File Buffer: {name}", "caption")
    expect_equal(robot.get("txtWrite_OK_Count"), "0", "counter")
    robot.shot(f"monitor-done-{model}")
    expect_at_rest(robot)


scenarios["a debug monitor for the 58"] = lambda bench: monitor_downloaded(
    bench, "VKM47H58RK", "VKM58_2003.ROM")
scenarios["a debug monitor for the 516"] = lambda bench: monitor_downloaded(
    bench, "VKM47H516RK", "VKM516_2003.ROM")


@scenario("a debug monitor isn't begun without its files or the operator's word")
def _(bench):
    chip = bench.chip("VKM47H58RK", fast=True)
    robot = bench.robot_with(chip, "VKM47H58RK")
    robot.load_bytes(bench.folder, program(500))
    robot.choose("TabStrip1", key="softICE")
    said = lambda: [box["text"] for box in robot.boxes()]
    robot.click("comDownSoft_ICE")
    robot.idle()
    expect_equal(said(), ["找不到文件 VKM2000.rom."], "without both")
    bench.file("VKM2000.rom", program(384))
    robot.click("comDownSoft_ICE")
    robot.idle()
    expect_equal(said()[1:], ["找不到文件 VKM58_2003.ROM"], "without the monitor")
    bench.file("VKM58_2003.ROM", b"")
    robot.click("comDownSoft_ICE")
    robot.idle()
    expect("VKM58_2003.ROM" in said()[2], said()[2])
    bench.file("VKM58_2003.ROM", program(100))
    for answers in (["no"], ["yes", "no"]):
        for answer in answers:
            robot.do("box", answer=answer)
        robot.click("comDownSoft_ICE")
        robot.idle()
    expect_equal(len(said()), 6, "boxes")
    expect_equal(image(robot, "AP_Buffer", 0, 500), program(500), "the program that was loaded")
    robot.model("VKM26H5410")
    expect_equal(robot.get("comDownSoft_ICE", "Enabled"), False, "a model without a monitor")


@scenario("a monitor whose first pass fails leaves the reset jump out")
def _(bench):
    robot, chip, start, monitor = with_monitor(bench, "VKM47H58RK", "VKM58_2003.ROM")
    chip.do("fault lose_frame@block:6*0")
    for answer in ("yes", "yes"):
        robot.do("box", answer=answer)
    log = robot.download(button="comDownSoft_ICE", ms=120000)
    expect("Program is failure. / 下载失败 (End: " in log, log)
    expect_equal(chip.flash()[:128], b"\xff" * 128, "block 0")
    expect_at_rest(robot)
