"""A bench of simulated chips and targets and the robot at the tool's window.

Scenarios are functions that take a Bench; run_scenarios() runs those that are
named on the command line, several at a time, and tells which failed and why.
Python's standard library alone.
"""

import concurrent.futures
import itertools
import json
import os
import pathlib
import queue
import shutil
import subprocess
import sys
import tempfile
import threading
import time
import traceback

BUILD = pathlib.Path(os.environ.get("VKM_BUILD", "."))
SHOTS = BUILD / "robot-shots"
ANSWER_LIMIT_S = 30  # any command but wait and idle answers at once
TELL_ALL = "VKM_TELL_ALL" in os.environ  # the scenarios that pass, too


class Failed(Exception):
    """What a scenario found wrong, in words."""


def expect(condition, message):
    if not condition:
        raise Failed(message)


def short(*values):
    """As a text that a long value doesn't bury."""
    return " ".join(text if len(text) < 400 else f"{text[:200]} ... {text[-200:]}" for text in map(str, values))


def expect_equal(found, expected, what):
    if isinstance(found, bytes) and isinstance(expected, bytes):
        return expect_bytes(found, expected, what)
    expect(found == expected, f"{what}: " + short(repr(found), "instead of", repr(expected)))


def expect_bytes(found, expected, what):
    expect(len(found) == len(expected), f"{what}: {len(found)} bytes instead of {len(expected)}")
    wrong = [at for at, pair in enumerate(zip(found, expected, strict=True)) if pair[0] != pair[1]]
    if wrong:
        at = wrong[0]
        raise Failed(
            f"{what}: {len(wrong)} bytes differ, the first at {at:04X}: "
            f"{found[at]:02X} instead of {expected[at]:02X}"
        )


class Process:
    """A program whose output lines can be waited for."""

    def __init__(self, arguments, environment=None):
        self.arguments = [str(argument) for argument in arguments]
        self.output = []
        self.lines = queue.Queue()
        self.popen = subprocess.Popen(
            self.arguments,
            stdin=subprocess.PIPE,
            stdout=subprocess.PIPE,
            stderr=subprocess.STDOUT,
            env=environment,
        )
        threading.Thread(target=self._read, daemon=True).start()

    def _read(self):
        for line in self.popen.stdout:
            text = line.decode("utf-8", "replace").rstrip("\n")
            self.output.append(text)
            self.lines.put(text)
        self.lines.put(None)

    def next_line(self, limit_s):
        try:
            line = self.lines.get(timeout=limit_s)
        except queue.Empty:
            raise Failed(f"{self.arguments[0]} said nothing for {limit_s} s") from None
        if line is None:
            raise Failed(
                f"{self.arguments[0]} ended with {self.popen.wait()}:\n" + "\n".join(self.output[-30:])
            )
        return line

    def write_line(self, text):
        self.popen.stdin.write(text.encode("utf-8") + b"\n")
        self.popen.stdin.flush()

    def kill(self):
        self.popen.kill()
        self.popen.wait()


class Robot(Process):
    """vkm_robot; every command of it is a method."""

    def __init__(self, settings=None, ports=None, folder=None, size="1200x800"):
        arguments = [BUILD / "vkm_robot"]
        if size:
            arguments += ["--size", size]
        if settings:
            arguments += ["--settings", settings]
        for number, device in (ports or {}).items():
            arguments += ["--port", f"{number}={device}"]
        if folder:
            arguments += ["--program-folder", folder]
        environment = {"QT_QPA_PLATFORM": "offscreen", **os.environ, "LC_ALL": "C.UTF-8"}
        super().__init__(arguments, environment)
        expect_equal(self._answer(ANSWER_LIMIT_S), {"ok": True, "ready": True}, "first line")

    def _answer(self, limit_s):
        while True:
            line = self.next_line(limit_s)
            try:
                return json.loads(line)
            except json.JSONDecodeError:
                continue  # a remark of the toolkit

    def try_do(self, command, limit_s=ANSWER_LIMIT_S, **fields):
        """The whole answer, whether the command went well or not."""
        self.write_line(json.dumps({"do": command, **fields}, ensure_ascii=False))
        return self._answer(limit_s)

    def do(self, command, limit_s=ANSWER_LIMIT_S, **fields):
        answer = self.try_do(command, limit_s, **fields)
        if not answer["ok"]:
            raise Failed(f"{short(command, fields, answer['error'])}\nlog:{self.try_log()}")
        return answer.get("value")

    def error(self, command, **fields):
        answer = self.try_do(command, **fields)
        expect(not answer["ok"], f"{command} {fields} was carried out")
        return answer["error"]

    def click(self, on):
        self.do("click", on=on)

    def enter(self, on, text):
        self.do("enter", on=on, text=text)

    def choose(self, on, **entry):
        self.do("choose", on=on, **entry)

    def check(self, on, value=True):
        self.do("check", on=on, value=value)

    def get(self, on, property="Text"):
        return self.do("get", on=on, property=property)

    def value(self, name):
        return self.do("value", name=name)

    def wait(self, on, property, ms=5000, **condition):
        return self.do("wait", ms / 1000 + ANSWER_LIMIT_S, on=on, property=property, ms=ms, **condition)

    def idle(self, ms=60000):
        self.do("idle", ms / 1000 + ANSWER_LIMIT_S, ms=ms)

    def log(self):
        return self.get("textMsg")

    def try_log(self):
        return self.try_do("get", on="textMsg", property="Text").get("value")

    def boxes(self):
        return self.do("boxes")

    def settings(self):
        return self.do("settings").get("Settings", {})

    def shot(self, name, around=None):
        """Pictures the window, or what the control that is named stands on."""
        where = {"around": around} if around else {}
        self.do("shot", path=str((SHOTS / f"{name}.png").resolve()), **where)

    def shot_box(self, name):
        """Pictures the next message box before it is answered."""
        self.do("shot_box", path=str((SHOTS / f"{name}.png").resolve()))

    def model(self, name):
        """Chooses a model in the tree."""
        self.choose("TreeViewDevice", key=name)
        self.wait("txtDevice", "Text", equals=name)
        # Half a second later the settings are saved and the ranges shown.
        self.wait("TreeViewDevice", "Visible", equals=False)

    def open_file(self, path, button="comLoadFile"):
        self.do("file", path=str(path))
        self.click(button)

    def load(self, path):
        """Opens a program file, and waits until it is loaded."""
        self.open_file(path)
        self.wait("txtFileCheckSum", "Text", not_equals="")

    def load_bytes(self, folder, content, name="program.bin"):
        path = folder / name
        path.write_bytes(content)
        self.load(path)

    def download(self, ms=60000, button="comDownload(0)"):
        self.click(button)
        self.idle(ms)
        return self.log()

    def quit(self):
        """Closes the window as a person does; the exit status."""
        self.do("close")
        self.do("quit")
        self.popen.stdin.close()
        try:
            return self.popen.wait(30)
        except subprocess.TimeoutExpired:
            raise Failed("the robot doesn't end") from None


class Simulator(Process):
    """A program that simulates something on a pseudo-terminal, with a link of its own to it.

    Options are those of its command line, with underscores: fast=True, clock="12M",
    fault=["lose_reply@block:3"].
    """

    def __init__(self, program, kind, folder, **options):
        self.folder = folder
        self.device = folder / f"{kind}-{next(_numbers)}"  # stays when the cable is plugged again
        arguments = [BUILD / program, "--link", self.device, "--until-eof"]
        for name, value in options.items():
            for each in value if isinstance(value, list) else [value]:
                arguments.append("--" + name.replace("_", "-"))
                if each is not True:
                    arguments.append(each)
        super().__init__(arguments)
        self.event("ready")

    def event(self, name, limit_s=30):
        """The next line that tells of this, from where the last one was found."""
        while True:
            line = self.next_line(limit_s)
            if line.split(" ")[0] == name:
                return line

    def do(self, command):
        self.write_line(command)
        while True:
            line = self.next_line(ANSWER_LIMIT_S)
            if line.split(" ")[0] == "error":
                raise Failed(f"{self.arguments[0]}: {command}: {line}")
            if line.split(" ")[0] == "ok":
                return line[3:]


class Chip(Simulator):
    """vkm-chip: a simulated chip."""

    def __init__(self, model, folder, **options):
        super().__init__("vkm-chip", "chip", folder, model=model, **options)

    def flash(self):
        path = self.folder / f"flash-{next(_numbers)}"
        self.do(f"flash {path}")
        return path.read_bytes()


class Target(Simulator):
    """vkm-target: a target whose program talks (talk=True) or stops (monitor=True)."""

    def __init__(self, folder, **options):
        super().__init__("vkm-target", "target", folder, **options)

    def heard(self):
        """Bytes that its program has heard since the last time."""
        return bytes.fromhex(self.do("heard"))


class Board(Simulator):
    """vkm-board: a download board, with a chip in its socket."""

    def __init__(self, folder, **options):
        super().__init__("vkm-board", "board", folder, **options)

    def storage(self, first=0, count=0x10000):
        return bytes.fromhex(self.do(f"storage {first:X} {count:X}"))

    def ranges(self):
        """What was written in each stage, as pairs of addresses, the last included."""
        first, second = self.do("ranges").removeprefix("first").split("second")
        return [[tuple(int(end, 16) for end in pair.split("-")) for pair in text.split()] for text in (first, second)]

    def counters(self):
        return _counters(self.do("counters"))

    def faults(self):
        """Its objections since the last time, as one text."""
        return self.do("faults")

    def program(self):
        """Programs the chip in its socket; "done ..." or "failed: ..."."""
        return self.do("program")

    def chip_flash(self, first, count):
        return bytes.fromhex(self.do(f"chip-flash {first:X} {count:X}"))


class IspTarget(Simulator):
    """vkm-isp-target: a target with a user's own ISP program."""

    def __init__(self, folder, **options):
        super().__init__("vkm-isp-target", "isp-target", folder, **options)

    def flash(self, first, count):
        return bytes.fromhex(self.do(f"flash {first:X} {count:X}"))

    def counters(self):
        return _counters(self.do("counters"))

    def faults(self):
        """Its objections since the last time, as one text."""
        return self.do("faults")


def _counters(text):
    """name=number, without what else stands there."""
    return {name: int(number) for name, _, number in (word.partition("=") for word in text.split()) if number}


_numbers = itertools.count(1)


class Bench:
    """A folder of its own, and whatever a scenario starts; all of it ends with it."""

    def __init__(self, name):
        self.name = name
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="vkm-robot-"))
        self.settings = self.folder / "settings.ini"
        self.started = []

    def robot(self, **options):
        options.setdefault("settings", self.settings)
        options.setdefault("folder", self.folder)
        robot = Robot(**options)
        self.started.append(robot)
        return robot

    def chip(self, model, **options):
        chip = Chip(model, self.folder, **options)
        self.started.append(chip)
        return chip

    def target(self, **options):
        target = Target(self.folder, **options)
        self.started.append(target)
        return target

    def board(self, **options):
        board = Board(self.folder, **options)
        self.started.append(board)
        return board

    def isp_target(self, **options):
        target = IspTarget(self.folder, **options)
        self.started.append(target)
        return target

    def file(self, name, content):
        path = self.folder / name
        path.write_bytes(content)
        return path

    def robot_with(self, chip, model=None, **options):
        """A robot with this chip as COM1 and its model chosen."""
        robot = self.robot(ports={1: chip.device}, **options)
        if model:
            robot.model(model)
        return robot

    def close(self):
        for process in self.started:
            process.kill()
        shutil.rmtree(self.folder, ignore_errors=True)


def program(length, seed=1):
    """Bytes that look like nothing: no two stretches of it are alike."""
    value = seed * 2654435761 % 2**32
    out = bytearray()
    for _ in range(length):
        value = (value * 1664525 + 1013904223) % 2**32
        out.append(value >> 24)
    return bytes(out)


def hex_file(content, start=0, line=16):
    """The content as an Intel HEX file."""
    out = []
    for at in range(0, len(content), line):
        data = content[at : at + line]
        address = start + at
        record = bytes([len(data), address >> 8 & 0xFF, address & 0xFF, 0]) + data
        out.append(":" + (record + bytes([-sum(record) & 0xFF])).hex().upper())
    return ("\r\n".join(out + [":00000001FF"]) + "\r\n").encode()


def collection():
    """A dictionary of scenarios, and the decorator that names a function as one of them."""
    scenarios = {}

    def scenario(name):
        def add(function):
            scenarios[name] = function
            return function

        return add

    return scenarios, scenario


def _run(name, scenario):
    """What went wrong, or nothing."""
    began = time.monotonic()
    bench = Bench(name)
    why = None
    try:
        try:
            scenario(bench)
        finally:
            bench.close()
    except Exception as failure:
        why = str(failure) if isinstance(failure, Failed) else traceback.format_exc()
    if why or TELL_ALL:
        print(f"{'FAIL' if why else 'ok  '} {name} ({time.monotonic() - began:.1f} s)", flush=True)
    if why:
        print("     " + why.replace("\n", "\n     "), flush=True)
    return name, why


def run_scenarios(scenarios):
    """Runs the scenarios (name to function) that the command line names, or all.

    Time is real here, and a machine that is busy elsewhere makes chips late: what
    failed beside others is tried once more, alone, and fails if it does again.
    """
    wanted = sys.argv[1:]
    chosen = {
        name: scenario
        for name, scenario in scenarios.items()
        if not wanted or any(name.startswith(word) for word in wanted)
    }
    expect(chosen, "no scenario begins with one of these words")
    at_once = int(os.environ.get("VKM_AT_ONCE", 2 * (os.cpu_count() or 1)))
    with concurrent.futures.ThreadPoolExecutor(at_once) as pool:
        results = list(pool.map(lambda name: _run(name, chosen[name]), chosen))
    doubtful = [name for name, why in results if why]
    if doubtful:
        print("once more, alone:")
    failures = [name for name in doubtful if _run(name, chosen[name])[1]]
    print(f"{len(chosen) - len(failures)} of {len(chosen)} scenarios passed")
    return 1 if failures else 0
