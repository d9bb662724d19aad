"""Options, as the operator sees them: chosen on the panel, on the wire, in the
chip, and read back."""

import time

from bench import collection, expect, expect_equal, program
from expectations import PROGRAM_OK, expect_at_rest, expect_done

OPTIONS_OK = "Config option OK. / 设置选项成功。"
OPTIONS_FAILED = "Config option are error! / 设置选项失败。"
DOUBLE_SPEED_DONE = "Lock Chip, set 6 Clock OK/双倍速成功 (End: "
ADVICE = "Connection is failure. You can try:"
CONTENT = program(300)

scenarios, scenario = collection()


class Choice:
    """One choice that isn't the default: what is clicked first, its option bytes,
    and what is then read back."""

    def __init__(self, on, options, text, before=()):
        self.on = on
        self.options = options
        self.text = text
        self.before = before


FAMILY_0 = [Choice("Option0(0)", "0=48", "Double speed: Yes")]

FAMILY_2 = [
    Choice("Option0(0)", "1=FC", "Double speed / 双倍速:           6T/双倍速"),
    Choice("Option1(0)", "1=ED", "振荡放大器增益:                   1/2 gain"),
    Choice("Option3(0)", "1=F9", "下次冷启动须 P1.0,P1.1=0,0 才下载, 快速启动"),
    Choice("Option4(0)", "1=BD", "内部扩展AUX-RAM:                 禁止访问"),
    Choice("Option5(0)", "1=F5", "下次下载用户应用程序时将数据Flash区擦除:YES"),
    Choice("Option10(1)", "1=7D", "用户软件启动内部看门狗后:  只有停电关看门狗"),
]


def families_3_and_4(byte_2="FF", byte_3="FF", byte_8="F7"):
    return f"2={byte_2} 3={byte_3} 8={byte_8} 10=FF 11=FF"


WATCHDOG = ("Option10(0)",)
FAMILIES_3_AND_4 = [
    Choice("Option0(0)", families_3_and_4(byte_2="FD"), "下次冷启动后使用 内部 RC 振荡器         YES"),
    Choice("Option1(0)", families_3_and_4(byte_8="F6"), "下次冷启动须 P1.0,P1.1=0,0 才可以下载程序"),
    Choice("Option2(0)", families_3_and_4(byte_8="F5"), "下次下载用户应用程序时将数据Flash区清0: YES"),
    Choice("Option10(0)", families_3_and_4(byte_3="DF"), "下次上电自动用有关参数启动内部看门狗    YES"),
    Choice("Option11(0)", families_3_and_4(byte_3="D7"), "Idle(空闲)状态时内部看门狗停止计数      YES",
           WATCHDOG),
    Choice("2", families_3_and_4(byte_3="D8"), "冷启动后内部看门狗预分频数:            2", WATCHDOG),
    Choice("16", families_3_and_4(byte_3="DB"), "冷启动后内部看门狗预分频数:            16", WATCHDOG),
    Choice("128", families_3_and_4(byte_3="DE"), "冷启动后内部看门狗预分频数:            128", WATCHDOG),
]


def choose(robot, on):
    if on.isdigit():
        robot.choose("comWDT_Prescalar", text=on)
    else:
        robot.check(on)


def start_bench(bench, model, chip_model, **options):
    chip = bench.chip(chip_model, fast=True, **options)
    robot = bench.robot_with(chip, model)
    robot.load_bytes(bench.folder, CONTENT)
    robot.choose("TabStrip1", text="检查MCU选项")
    return chip, robot


def fresh_panel(bench, robot, model):
    """The model chosen anew lays its panel out with the defaults, and takes the file away."""
    robot.model(model)
    robot.load_bytes(bench.folder, CONTENT)


def option_frames(chip):
    return [line for line in chip.output if line.startswith("option_frame ")]


def expect_no_objection(chip):
    """The chip found nothing wrong with an option frame."""
    objections = [line for line in chip.output if line.startswith("objection option")]
    expect_equal(objections, [], "objections")


def expect_in_frame(frame, options):
    """The bytes stand on the wire in the order of their numbers, from the seventh byte on."""
    sent = frame.split(" ")[1:]
    wanted = [pair.split("=")[1] for pair in options.split(" ")]
    expect_equal(sent[6 : 6 + len(wanted)], wanted, f"option bytes of {frame}")


def read_back(robot, chip):
    """What the operator reads of the chip, without programming it: the log and the page."""
    chip.do("cycle")
    robot.click("comReadChipLock")
    robot.idle()
    expect_at_rest(robot)
    page = [robot.get(f"LabLock({i})", "Caption") for i in range(14)
            if robot.get(f"LabLock({i})", "Visible")]
    return robot.log(), page


def every_choice(bench, model, chip_model, default, choices, **options):
    """A delivered chip takes the panel's default; then every single other choice."""
    chip, robot = start_bench(bench, model, chip_model, **options)
    robot.download()
    expect_done(robot, chip, CONTENT)
    expect_equal(chip.do("options"), default, "default")
    for choice in choices:
        chip.do("new")
        for on in (*choice.before, choice.on):
            choose(robot, on)
        before = len(option_frames(chip))
        robot.download()
        expect_done(robot, chip, CONTENT)
        expect_equal(chip.do("options"), choice.options, f"chip after {choice.on}")
        # A chip that is late on a busy machine is sent the same frame again.
        frames = set(option_frames(chip)[before:])
        expect_equal(len(frames), 1, f"different option frames of {choice.on}")
        expect_in_frame(frames.pop(), choice.options)
        expect(choice.text in robot.log(), f"{choice.text} isn't in{robot.log()}")

        # The chip has them now: nothing is written, and nothing told of it. The oldest
        # chips are always written, and those that have to be told their own clock.
        chip.do("cycle")
        before = len(option_frames(chip))
        robot.download()
        expect_done(robot, chip, CONTENT)
        written_anew = choice.options.startswith(("0=", "2=FD"))
        expect_equal(len(option_frames(chip)) > before, written_anew, "written anew")
        expect(written_anew or OPTIONS_OK not in robot.log(), robot.log())

        log, page = read_back(robot, chip)
        expect(choice.text in log.splitlines(), f"{choice.text} isn't in{log}")
        expect(page[0].strip().startswith("MCU"), f"page: {page}")
        fresh_panel(bench, robot, model)
    expect_no_objection(chip)
    expect_equal(robot.boxes(), [], "boxes")


@scenario("options of family 0")
def _(bench):
    every_choice(bench, "VKM47H58RK", "VKM47H58RK", "0=40", FAMILY_0)


@scenario("options of family 2")
def _(bench):
    every_choice(bench, "VKM47H58RK+", "VKM47H58RK+", "1=FD", FAMILY_2)


@scenario("options of family 3")
def _(bench):
    every_choice(bench, "VKM26H2052", "VKM26H2052", families_3_and_4(), FAMILIES_3_AND_4)


@scenario("options of family 4")
def _(bench):
    every_choice(bench, "VKM26H5410", "VKM26H5410", families_3_and_4(), FAMILIES_3_AND_4)


@scenario("options of the collective entry")
def _(bench):
    every_choice(bench, "26H/W54xx Series", "VKM26H5416", families_3_and_4(), FAMILIES_3_AND_4[:4],
                 letter="F")


@scenario("the speed option of family 0 is told with the time of its end")
def _(bench):
    chip, robot = start_bench(bench, "VKM47H58RK", "VKM47H58RK")
    log = robot.download()
    expect("\n (End: " in log, log)
    expect(DOUBLE_SPEED_DONE not in log, log)
    chip.do("new")
    robot.check("Option0(0)")
    log = robot.download()
    expect("\n" + DOUBLE_SPEED_DONE in log, log)
    expect_done(robot, chip, CONTENT)
    expect_equal(sorted(set(option_frames(chip))), ["option_frame 46 B9 6A 00 07 8D 40 3E 16",
                                                    "option_frame 46 B9 6A 00 07 8D 48 46 16"], "frames")


@scenario("family 1 has no options")
def _(bench):
    chip, robot = start_bench(bench, "VKM47W58AD", "VKM47W58AD")
    robot.shot("panel-family-1")
    log = robot.download()
    expect_done(robot, chip, CONTENT)
    expect("Config option" not in log and "(End: " not in log, log)
    expect_equal(option_frames(chip), [], "option frames")
    log, page = read_back(robot, chip)
    expect("Double speed: Unknown" in log, log)
    expect_equal(page[2], "Double speed (6 clock) / 双倍速:     Unknown", "page")


@scenario("clearing the unused program area is asked for on the panel")
def _(bench):
    chip, robot = start_bench(bench, "VKM26H5410", "VKM26H5410")
    expect_equal(robot.value("Option_Bytes")[16], 0, "byte 16 before the first job")
    robot.download()
    expect_equal(robot.value("Chip_Bytes")[16], 0xFF, "byte 16")
    chip.do("new")
    robot.check("Option4(0)")
    robot.download()
    expect_done(robot, chip, CONTENT)
    expect_equal(robot.value("Chip_Bytes")[16], 0xFE, "byte 16")
    expect_equal(option_frames(chip), [], "option frames")


@scenario("a chip that stores another byte is reported")
def _(bench):
    chip, robot = start_bench(bench, "VKM26H2052", "VKM26H2052", option_flaw="04")
    robot.check("Option1(0)")
    log = robot.download()
    expect(log.endswith(OPTIONS_FAILED), log)
    expect(PROGRAM_OK not in log, log)
    expect_equal(robot.do("beeps"), 3, "beeps")
    expect_equal(robot.get("txtWrite_OK_Count"), "0", "counter")
    expect("Write options / 写选项" in robot.get("labVerdict", "Caption"), "verdict")
    expect_at_rest(robot)
    robot.shot("options-not-stored")


def with_firmware(version, model="VKM26H2052", **options):
    def run(bench):
        chip, robot = start_bench(bench, model, model, version=version, **options)
        robot.check("Option10(0)")
        robot.check("Option1(0)")  # so that there is something to write in any case
        log = robot.download()
        expect_done(robot, chip, CONTENT)
        frame = option_frames(chip)[0].split(" ")[1:]
        old = float(version) <= 3.6
        expect_equal(frame[7], "FF" if old else "DF", "byte 3 on the wire")
        expect_equal(frame[8], "F6", "byte 8 on the wire")
        expect_equal(OPTIONS_OK in log, float(version) >= 3.2, f"the report:{log}")
        expect_equal(robot.get("txtWrite_OK_Count"), "1", "counter")
        expect_no_objection(chip)

    return run


for firmware in ("3.1", "3.6", "3.7"):
    scenarios[f"options of firmware {firmware}"] = with_firmware(firmware)
for firmware in ("5.0", "5.1"):
    scenarios[f"options of firmware {firmware}"] = with_firmware(firmware, "VKM26H5410")


@scenario("stop ends a chip that is busy for ever")
def _(bench):
    chip, robot = start_bench(bench, "VKM26H2052", "VKM26H2052", option_busy="-1")
    robot.check("Option1(0)")
    robot.click("comDownload(0)")
    for _ in range(20):
        chip.event("busy")
    robot.click("comStop_Download")
    robot.idle(5000)
    expect(robot.log().endswith(OPTIONS_FAILED), robot.log())
    expect("Stopped" in robot.get("labVerdict", "Caption"), "verdict")
    expect_at_rest(robot)


@scenario("a chip that is busy for a while takes its options")
def _(bench):
    chip, robot = start_bench(bench, "VKM26H2052", "VKM26H2052", option_busy="7")
    robot.check("Option1(0)")
    log = robot.download()
    expect(OPTIONS_OK in log, log)
    expect(len(option_frames(chip)) >= 8, "option frames")
    expect_done(robot, chip, CONTENT)


@scenario("advice for a chip that stays silent")
def _(bench):
    chip, robot = start_bench(bench, "VKM47H58RK+", "VKM47H58RK+", off=True)
    began = time.monotonic()
    robot.click("comDownload(0)")
    robot.wait("textMsg", "Text", 15000, contains=" 仍在连接中, 请给 MCU 上电...")
    expect(time.monotonic() - began > 4, "the advice came too early")
    expect_equal(robot.do("beeps"), 2, "beeps")
    expect("   或需退回升级，或 MCU 已损坏。" in robot.log(), robot.log())
    robot.shot("advice")
    time.sleep(5)
    expect_equal(robot.log().count(ADVICE), 1, "times that the advice stands in the log")
    chip.do("on")
    robot.idle()
    expect_done(robot, chip, CONTENT)
    expect_equal(robot.do("beeps"), 3, "beeps")
    chip.do("cycle")
    expect(ADVICE not in robot.download(), robot.log())


@scenario("options are read without a file")
def _(bench):
    chip = bench.chip("VKM26H2052", fast=True)
    robot = bench.robot_with(chip, "VKM26H2052")
    robot.choose("TabStrip1", text="检查MCU选项")
    log, page = read_back(robot, chip)
    expect("MCU Type is: VKM26H2052" in log, log)
    expect("冷启动后内部看门狗预分频数(未启用):     256" in log, log)
    expect_equal(page[0], "     MCU: VKM26H2052    固件版本号: 3.8D", "page")
    expect_equal(len(page), 9, f"lines of {page}")
    expect_equal(robot.value("File_Loaded"), False, "File_Loaded")
    expect_equal(robot.boxes(), [], "boxes")
    robot.shot("options-read")
    robot.model("VKM26H1052")
    expect(not robot.get("LabLock(1)", "Visible"), "lines of the chip before")


@scenario("reading options is stopped")
def _(bench):
    chip = bench.chip("VKM26H2052", fast=True, off=True)
    robot = bench.robot_with(chip, "VKM26H2052")
    robot.choose("TabStrip1", text="检查MCU选项")
    robot.click("comReadChipLock")
    robot.wait("comStop_Download", "Enabled", equals=True)
    expect_equal(robot.error("click", on="comReadChipLock"), "disabled", "a second click")
    expect_equal(robot.error("check", on="Option0(0)", value=True), "disabled", "the panel")
    robot.click("comStop_Download")
    robot.idle(5000)
    expect_at_rest(robot)
    robot.check("Option0(0)")


@scenario("the watchdog's choices follow its start at power-up")
def _(bench):
    robot = bench.robot()
    for model in ("VKM26H2052", "VKM26H5410"):
        robot.model(model)
        for on in ("Option11(0)", "comWDT_Prescalar"):
            expect_equal(robot.get(on, "Enabled"), False, on)
        robot.check("Option10(0)")
        for on in ("Option11(0)", "Option11(1)", "comWDT_Prescalar", "Label20", "LabOption(11)"):
            robot.wait(on, "Enabled", equals=True)
        robot.check("Option10(1)")
        for on in ("Option11(0)", "Option11(1)", "comWDT_Prescalar", "Label20", "LabOption(11)"):
            robot.wait(on, "Enabled", equals=False)
        expect_equal(robot.error("check", on="Option9(0)", value=True), "disabled", "Option9(0)")


@scenario("locking the options")
def _(bench):
    chip = bench.chip("VKM47H58RK+", fast=True, off=True)
    robot = bench.robot_with(chip, "VKM47H58RK+")
    robot.load_bytes(bench.folder, CONTENT)
    robot.check("Option1(0)")
    robot.choose("TabStrip2", key="Batch_quantity")
    robot.click("comLockOptions")
    robot.wait("Option0(0)", "Enabled", equals=False)
    expect_equal(robot.value("UI_State"), 2, "UI_State")
    expect_equal(robot.get("LabOption(0)", "Enabled"), True, "a label")
    expect_equal(robot.error("click", on="comLoadFile"), "disabled", "comLoadFile")
    robot.shot("options-locked")
    robot.click("comDownload(0)")
    robot.wait("LabOption(0)", "Enabled", equals=False)
    expect_equal(robot.value("UI_State"), 3, "UI_State")
    chip.do("on")
    robot.idle()
    expect_equal(robot.value("UI_State"), 2, "UI_State")
    expect_equal(chip.do("options"), "1=ED", "the choice that was locked")
    robot.click("comUnlockOptions")
    robot.wait("Option0(0)", "Enabled", equals=True)
    expect_equal(robot.get("Option1(0)", "Value"), True, "the choice")
    expect_at_rest(robot)


@scenario("one pin for two circuits is told")
def _(bench):
    robot = bench.robot()
    robot.model("VKM47H58RK+")
    robot.choose("TabStrip1", key="options")
    expect_equal(robot.get("comb_485_pin", "Enabled"), False, "a pin that isn't used")
    robot.check("opt_485_pin(1)")
    robot.check("opt_External_WDT(1)")
    for on in ("comb_485_pin", "Lab_485_logic", "opt_485_logic(1)", "comb_External_WDT"):
        robot.wait(on, "Enabled", equals=True)
    for pin in ("P3.3", "P1.0", "P1.0", "P3.7"):
        robot.choose("comb_External_WDT", text=pin)
    robot.choose("comb_485_pin", text="P3.7")
    expect_equal(robot.get("comb_External_WDT"), "P3.7", "the choice stays")
    robot.shot("options-page")
    robot.check("opt_485_pin(0)")
    robot.wait("comb_485_pin", "Enabled", equals=False)
    boxes = robot.boxes()
    expect(boxes, "no box")
    expect({box["text"] for box in boxes} == {"请不要用同一个 I/O 口线控制 485 和 外部看门狗。"}, f"{boxes}")
    expect(len(boxes) <= 2, f"{len(boxes)} boxes")


@scenario("panels of all families")
def _(bench):
    robot = bench.robot(size="1280x800")
    shown = {}
    for family, model in ((0, "VKM47H58RK"), (1, "VKM47W58AD"), (2, "VKM47H58RK+"),
                          (3, "VKM26H2052"), (4, "VKM26H5410")):
        robot.model(model)
        robot.shot(f"panel-family-{family}")
        shown[family] = [i for i in range(13) if robot.get(f"LabOption({i})", "Visible")]
        expect_equal(robot.get("comDalay_ReDownLoad", "Visible"), family >= 2, "pause of a series")
        expect_equal(robot.get("comWDT_Prescalar", "Visible"), family >= 3, "prescaler")
    expect_equal(shown, {0: [0], 1: [0], 2: [0, 1, 2, 3, 4, 5, 8, 9, 10],
                         3: [0, 1, 2, 3, 4, 8, 9, 10, 11], 4: [0, 1, 2, 3, 4, 8, 9, 10, 11]}, "lines")
