"""The serial terminal as the scenarios meet it: its page, and the other end of its line."""

import fcntl
import os
import pty
import select
import struct
import threading
import time
import tty

from bench import expect, expect_equal

TCGETS2 = 0x802C542A  # the rate as a number, whatever it is


class Line:
    """A pseudo-terminal that a scenario itself reads and writes."""

    def __init__(self, folder, name="line"):
        self.device = folder / name
        self.lock = threading.Condition()
        self.heard = bytearray()
        self.plug()

    def plug(self):
        self.master, self.slave = pty.openpty()
        for end in (self.master, self.slave):
            tty.setraw(end)
        os.set_blocking(self.master, False)
        self.device.symlink_to(os.ttyname(self.slave))
        self.plugged = True
        self.reader = threading.Thread(target=self._read, daemon=True)
        self.reader.start()

    def unplug(self):
        """The host sees its port vanish."""
        self.device.unlink()
        self.plugged = False
        self.reader.join()  # a terminal that is being read isn't gone
        os.close(self.slave)
        os.close(self.master)

    def _read(self):
        while self.plugged:
            if not select.select([self.master], [], [], 0.02)[0]:
                continue
            piece = os.read(self.master, 65536)
            with self.lock:
                self.heard += piece
                self.lock.notify_all()

    def say(self, content):
        """All of it, as fast as the host takes it."""
        sent = 0
        while sent < len(content):
            expect(select.select([], [self.master], [], 10)[1], "the host reads nothing")
            try:
                sent += os.write(self.master, content[sent : sent + 4096])
            except BlockingIOError:
                time.sleep(0.001)

    def say_at(self, content, baud, step_s=0.01):
        """At the pace of a wire."""
        began = time.monotonic()
        sent = 0
        while sent < len(content):
            due = min(len(content), int((time.monotonic() - began) * baud / 10))
            self.say(content[sent:due])
            sent = due
            time.sleep(step_s)

    def hears(self, count, limit_s=5):
        """The next so many bytes."""
        until = time.monotonic() + limit_s
        with self.lock:
            while len(self.heard) < count:
                left = until - time.monotonic()
                expect(left > 0, f"{bytes(self.heard)!r} instead of {count} bytes")
                self.lock.wait(left)
            piece = bytes(self.heard[:count])
            del self.heard[:count]
        return piece

    def hears_nothing(self, for_s):
        time.sleep(for_s)
        with self.lock:
            expect(not self.heard, f"{bytes(self.heard)!r} was sent")

    def forget(self):
        with self.lock:
            self.heard.clear()

    def baud(self):
        """The rate that the host has set on its side."""
        settings = fcntl.ioctl(self.slave, TCGETS2, bytes(44))
        return struct.unpack_from("I", settings, 40)[0]

    def kill(self):
        if self.device.is_symlink():
            self.unplug()


# ---- its page ---------------------------------------------------------------------------


def at_terminal(bench, **options):
    """A robot at the page of the terminal, and a line as COM1."""
    line = Line(bench.folder)
    bench.started.append(line)
    robot = bench.robot(ports={1: line.device}, **options)
    robot.choose("TabStrip2", key="Debug_COM")
    return robot, line


def with_open_terminal(bench, **options):
    robot, line = at_terminal(bench, **options)
    robot.click("comOpenCOM")
    expect_open(robot)
    return robot, line


def expect_open(robot, is_open=True):
    robot.wait("comOpenCOM", "Caption", equals="关闭串口" if is_open else "打开串口")
    expect_equal(robot.get("imgOpen", "Visible"), is_open, "picture of the open port")
    expect_equal(robot.get("imgNotOpen", "Visible"), not is_open, "picture of the closed port")
    expect_equal(robot.value("debug_mode"), is_open, "debug_mode")


def settings_of(bench, **values):
    """Settings that the next robot finds."""
    lines = "".join(f"{key}={value}\n" for key, value in values.items())
    bench.settings.write_text("[Settings]\n" + lines, encoding="utf-8")


def wait_for_boxes(robot, count, limit_s=5):
    until = time.monotonic() + limit_s
    while len(robot.boxes()) < count and time.monotonic() < until:
        time.sleep(0.02)
    boxes = robot.boxes()
    expect_equal(len(boxes), count, f"boxes {boxes}")
    return boxes


def terminal_at(bench, target, model=None):
    robot = bench.robot(ports={1: target.device})
    if model:
        robot.model(model)
    robot.choose("TabStrip2", key="Debug_COM")
    return robot
