#!/usr/bin/env python3
"""Measures of the real window with a simulated chip on a line paced to the bit.

Prints a table; nothing passes or fails here.
"""

import argparse
import os
import pathlib
import re
import sys
import threading
import time

ROOT = pathlib.Path(__file__).resolve().parent.parent
sys.path.insert(0, str(ROOT / "tests" / "robot"))

import bench  # noqa: E402  (the robot's own bench, found by the line above)
from terminal import Line  # noqa: E402

MODEL = "VKM47H516RK+"
CLOCK = "22.1184M"  # divides to every rate of the list without an error
BULK = 60 * 1024
# Bytes for each rate, so that the slow ones end within a minute.
SIZES = {115200: BULK, 57600: BULK, 38400: 32768, 28800: 32768, 19200: 16384, 14400: 8192,
         12800: 8192, 11520: 8192, 9600: 8192, 4800: 4096, 2400: 2048, 1200: 1024}
TICK = os.sysconf("SC_CLK_TCK")


def row(name, value):
    print(f"{name:<58}{value:>20}", flush=True)


def processor_seconds(process):
    """User and system time of a process so far."""
    fields = pathlib.Path(f"/proc/{process.popen.pid}/stat").read_text().rsplit(")", 1)[1].split()
    return (int(fields[11]) + int(fields[12])) / TICK


def megabytes(process, field):
    status = pathlib.Path(f"/proc/{process.popen.pid}/status").read_text()
    return int(re.search(rf"{field}:\s+(\d+)", status).group(1)) / 1024


def measures(chip):
    chip.write_line("measure")
    line = chip.event("ok")
    return {name: int(value) for name, value in re.findall(r"(\w+)=(\d+)", line)}


def download(job, baud, size):
    chip = job.chip(MODEL, clock=CLOCK, fast=True, quiet=True)
    tool = job.robot_with(chip, MODEL)
    tool.load_bytes(job.folder, bench.program(size))
    tool.choose("cobBaudMax", text=str(baud))
    time.sleep(1)  # what start-up left to do is done
    before = processor_seconds(tool)
    began = time.monotonic()
    tool.click("comDownload(0)")
    tool.idle(300000)
    whole = time.monotonic() - began
    used = processor_seconds(tool) - before
    bench.expect("Program OK" in tool.log(), f"{baud} baud:{tool.log()}")
    found = measures(chip)
    tool.kill()
    chip.kill()
    return found, whole, used


def rates(job, only_fastest):
    for baud, size in SIZES.items():
        found, whole, used = download(job, baud, size)
        share = found["bulk_us"] / found["wire_us"]
        row(f"{size} bytes at {baud} baud: time of the blocks / wire time", f"{share:.4f}")
        if baud == 115200:
            row("  turnaround, median / 95 %", f"{found['median_us']} / {found['p95_us']} us")
            row("  whole job", f"{whole:.2f} s")
            row("  of it behind the blocks' wire time", f"{whole - found['wire_us'] / 1e6:.2f} s")
            row("  processor time of the job", f"{used:.2f} s")
            if only_fastest:
                return


def waiting(job, seconds):
    chip = job.chip(MODEL, off=True, quiet=True)
    tool = job.robot_with(chip, MODEL)
    tool.load_bytes(job.folder, bench.program(100))
    time.sleep(1)
    for name, click in [("idle", None), ("waiting for a chip", "comDownload(0)")]:
        if click:
            tool.click(click)
            time.sleep(6)  # past the advice
        before = processor_seconds(tool)
        resident = megabytes(tool, "VmRSS")
        time.sleep(seconds)
        share = (processor_seconds(tool) - before) / seconds
        row(f"processor, {name}, {seconds} s", f"{share:.2%} of a core")
        row("  growth of memory meanwhile", f"{megabytes(tool, 'VmRSS') - resident:.1f} MB")
    tool.kill()
    chip.kill()


def terminal(job, baud, seconds, hexadecimal):
    """Printable text without a pause, at the pace of a wire; above all rates of the
    list as fast as the terminal is read."""
    line = Line(job.folder)
    job.started.append(line)
    tool = job.robot(ports={1: line.device})
    tool.choose("TabStrip2", key="Debug_COM")
    if hexadecimal:
        tool.check("optReceiveHex(1)")
    tool.choose("com_Debug_Baud", text=str(min(baud, 256000)))
    tool.wait("comOpenCOM", "Caption", equals="关闭串口")
    content = (b"".join(b"%06d: the line is never silent\r\n" % n for n in range(2000)))
    content = (content * (baud // 10 * seconds // len(content) + 1))[: baud // 10 * seconds]
    before = processor_seconds(tool)
    clicks = Clicks(tool)
    if baud <= 256000:
        line.say_at(content, baud)
    else:
        line.say(content)
    slowest = clicks.end()
    used = processor_seconds(tool) - before
    time.sleep(1)
    name = f"terminal, {baud} baud, {'hexadecimal' if hexadecimal else 'text'}"
    row(f"{name}: bytes of {len(content)} not counted", len(content) - tool.value("Receive_Count"))
    if not hexadecimal:
        shown = tool.get("texReceive").encode()[-30000:]
        row("  of the newest 30000 not shown", 0 if content.endswith(shown) else "some")
    row("  processor time meanwhile", f"{used / seconds:.1%} of a core")
    row("  slowest click of an option, answered and drawn", f"{slowest * 1000:.0f} ms")
    tool.kill()
    line.kill()


class Clicks:
    """Clicks an option ten times a second, and looks for it as drawn, until end()."""

    def __init__(self, tool):
        self.tool = tool
        self.slowest = 0.0
        self.ended = threading.Event()
        self.thread = threading.Thread(target=self._run)
        self.thread.start()

    def _run(self):
        on = True
        while not self.ended.wait(0.1):
            began = time.monotonic()
            self.tool.check("cheSpreadHex(0)", on)
            bench.expect(self.tool.get("cheSpreadHex(0)", "Value") == on, "a lost click")
            self.slowest = max(self.slowest, time.monotonic() - began)
            on = not on

    def end(self):
        self.ended.set()
        self.thread.join()
        return self.slowest


def start_up(job):
    times = []
    for _ in range(5):
        began = time.monotonic()
        tool = job.robot()
        times.append(time.monotonic() - began)
        memory = megabytes(tool, "VmRSS")
        tool.kill()
    row("start to the shown window, best of 5", f"{min(times) * 1000:.0f} ms")
    row("memory then", f"{memory:.0f} MB")


def main():
    words = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    words.add_argument("--build", default=ROOT / "build" / "release", type=pathlib.Path)
    words.add_argument("--quick", action="store_true", help="only the fastest rate, short waits")
    arguments = words.parse_args()
    bench.BUILD = arguments.build
    job = bench.Bench("measure")
    try:
        start_up(job)
        rates(job, arguments.quick)
        waiting(job, 10 if arguments.quick else 60)
        for hexadecimal in (False, True):
            terminal(job, 256000, 10 if arguments.quick else 60, hexadecimal)
        terminal(job, 3000000, 10, False)
    finally:
        job.close()


if __name__ == "__main__":
    main()
