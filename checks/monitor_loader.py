#!/usr/bin/env python3
"""Runs the loader code for a debug monitor, both variants, in a simulator of the chip's core.

The bytes are those that the tool holds (src/session/monitor_loader.cpp), the labels those
of the source. The simulator knows nothing of the chip's flash: for it the ISP registers are
plain memory. So the flash is made of break points in the wait that follows every command:
a write leaves only the 1s that the cell had, an erase fills 128 bytes with FF.

Needs s51 of the Debian package sdcc-ucsim, and what `assemble` needs.
"""

import importlib.machinery
import importlib.util
import pathlib
import random
import re
import subprocess
import sys
import tempfile
import threading
import unittest

sys.dont_write_bytecode = True
ROOT = pathlib.Path(__file__).resolve().parent.parent
LOADER = importlib.machinery.SourceFileLoader(
    "assemble", str(ROOT / "firmware" / "monitor_loader" / "assemble"))
SPEC = importlib.util.spec_from_loader(LOADER.name, LOADER)
ASSEMBLE = importlib.util.module_from_spec(SPEC)
LOADER.exec_module(ASSEMBLE)

ERASE, WRITE = 0x0B, 0x0E
SECTOR = 128
MONITOR_SIZE = 4096
MONITOR_SOURCE = 0x2300
MONITOR_ENTRY = 0x1000
TRIES = 4
SECONDS_FOR_ONE = 20  # a simulator that hasn't ended by then never does


def held_by_the_tool(table):
    """The bytes of one table of the generated source, by address."""
    text = ASSEMBLE.GENERATED.read_text()
    begin = text.index(f"Monitor_Loader {table} ")
    digits = re.findall(r'"([0-9A-F]{32})"', text[begin:text.index("\n};", begin)])
    image = {}
    for _, start, count, _ in ASSEMBLE.PARTS:
        part = bytes.fromhex("".join(digits[:count]))
        del digits[:count]
        image.update((start + offset, byte) for offset, byte in enumerate(part))
    return image


def intel_hex(image):
    lines = []
    for page in sorted({address // 16 for address in image}):
        row = [a for a in range(16 * page, 16 * page + 16) if a in image]
        for address in row:  # a record a byte: gaps need no thought
            record = bytes([1, address >> 8, address & 0xFF, 0, image[address]])
            lines.append(f":{record.hex()}{-sum(record) & 0xFF:02X}")
    return "\n".join([*lines, ":00000001FF", ""])


def simulator():
    return ASSEMBLE.tool("s51", package="sdcc-ucsim")


class Simulator:
    """One s51 with a chip's code memory, spoken to in lines."""

    def __init__(self, image, folder):
        file = pathlib.Path(folder) / "image.ihx"
        file.write_text(intel_hex(image))
        self.process = subprocess.Popen(
            [simulator(), "-q", "-b", "-t", "51", file], text=True, stdin=subprocess.PIPE,
            stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
        self.limit = threading.Timer(SECONDS_FOR_ONE, self.process.kill)
        self.limit.start()
        self.told = []
        self.markers = 0
        self.break_points = 0

    def end(self):
        self.limit.cancel()
        self.process.kill()
        self.process.communicate()

    def tell(self, *commands):
        """Gives commands whose answers don't matter. They go out with the next question: it
        looks for input ten times a second only."""
        self.told += commands

    def ask(self, *commands):
        """Gives commands, returns the lines up to the answer to a question asked behind them."""
        self.markers += 1
        marker = str(1000000 + self.markers)
        self._send(*commands, f"expr {marker}")
        return self._lines_up_to(lambda line: line == marker)

    def run(self):
        """Runs to a break point without commands; its address, and the lines up to there."""
        self._send("run")
        lines = self._lines_up_to(lambda line: line.startswith("F 0x"))
        return int(lines[-1][4:], 16), lines

    def _send(self, *commands):
        self.process.stdin.write("\n".join([*self.told, *commands, ""]))
        self.process.stdin.flush()
        self.told = []

    def _lines_up_to(self, is_last):
        lines = []
        for line in self.process.stdout:
            lines.append(line.strip())
            if is_last(lines[-1]):
                return lines
        raise AssertionError("s51 ended or took too long; its last lines were:\n"
                             + "\n".join(line[:100] for line in lines[-20:]))

    def dump(self, memory, first, last):
        return b"".join(dumped(self.ask(f"dump /h {memory} {first} {last}")))

    def fill(self, memory, first, data):
        self.tell(*(f"fill {memory} {first + offset} {first + offset} {byte}"
                    for offset, byte in enumerate(data)))

    def steps(self, count):
        """Executes `count` instructions; where the next one stands."""
        return int(re.findall(r"^Stop at 0x(\w+)", "\n".join(self.ask(f"step {count}")), re.M)[-1],
                   16)

    def stop_at(self, address, condition="", commands=""):
        self.break_points += 1
        self.tell(f"break {address}" + (f' 1 if "{condition}"' if condition else ""),
                  *([f"commands {self.break_points} {commands};run"] if commands else []))


def dumped(lines):
    """The bytes of each line of a dump."""
    for line in lines:
        found = re.match(r"0x[0-9a-f]+\s+((?:[0-9a-f]{2} )+)", line)
        if found:
            yield bytes.fromhex(found[1])


class Command:
    """What the ISP registers held when the chip was told to do something."""

    def __init__(self, registers):
        self.configuration, self.kind, low, high, self.data, _ = registers
        self.address = high << 8 | low


class Loader(unittest.TestCase):
    """The variant's table, source, sectors to erase, and where the monitor goes."""

    table, source, sectors, place = None, None, None, None

    @classmethod
    def setUpClass(cls):
        _, cls.label = ASSEMBLE.assemble(cls.source)
        fixed = random.Random(cls.table)
        cls.monitor = bytes(fixed.randrange(256) for _ in range(MONITOR_SIZE))

    def chip(self, target=None):
        """A chip as the tool leaves it, at reset, with `target` where the monitor goes."""
        image = held_by_the_tool(self.table)
        image.update(enumerate(b"\x02\x22\x00"))
        image.update(enumerate(self.monitor, MONITOR_SOURCE))
        if target is not None:
            image.update(enumerate(target, self.place))
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        chip = Simulator(image, folder.name)
        self.addCleanup(chip.end)
        chip.tell("reset", "fill iram 0 0x7f 0xa5", "fill sfr 0xb1 0xb1 0x83",
                  "fill sfr 0xb6 0xb6 0")
        return chip

    def give_flash(self, chip, bad, misses, mask=0xFFFF):
        """Commands have their effect from here on. A cell that is `bad` in the bits of the mask
        takes no value from the first `misses` writes."""
        chip.tell("var at", "var refuses", "var refused", "expr refused=0")
        address = "expr at=sfr[0xb4]*256+sfr[0xb3]"
        chip.stop_at(self.label["wait_while_busy"], f"sfr[0xb2]=={WRITE}",
                     f"dump /h sfr 0xb1 0xb6;{address};"
                     f"expr refuses=((at&{mask})=={bad & mask})&&(refused<{misses});"
                     "expr rom[at]=refuses?rom[at]:(rom[at]&sfr[0xb5]);"
                     "expr refused=refuses?(refused+1):0")
        filled = "+".join(f"(rom[at+{offset}]=255)" for offset in range(SECTOR))
        chip.stop_at(self.label["end_of_wait"], f"sfr[0xb2]=={ERASE}",
                     f"dump /h sfr 0xb1 0xb6;{address};expr {filled}")

    def run_to_the_end(self, chip):
        """Where it ends, and the commands that the chip was given on the way."""
        chip.stop_at(MONITOR_ENTRY)
        chip.stop_at(self.label["for_ever"])
        end, lines = chip.run()
        return end, [Command(registers) for registers in dumped(lines) if len(registers) == 6]

    def expect_for_ever(self, chip, end):
        self.assertEqual(end, self.label["for_ever"])
        self.assertEqual(chip.steps(20000), end)
        self.assertEqual(chip.dump("sfr", 0xB1, 0xB1)[0] & 0x40, 0, "commands are still taken")

    def test_start_up_clears_ram_and_sets_the_stack(self):
        chip = self.chip()
        chip.stop_at(self.label["start_up"])
        chip.stop_at(self.label["main"])
        self.assertEqual(chip.run()[0], 0x2200)
        self.assertEqual(chip.run()[0], self.label["main"])
        self.assertEqual(chip.dump("iram", 0, 0x7F), bytes(128))
        self.assertEqual(chip.dump("sfr", 0x81, 0x81), b"\x0D")

    def test_a_chip_ends_in_the_monitor_with_all_of_it_in_place(self):
        old = bytes(MONITOR_SIZE)  # nothing can be written over without the erasing
        chip = self.chip(old)
        slow = 0x23  # in every page; each byte has all its tries
        self.give_flash(chip, slow, TRIES - 1, mask=0xFF)
        end, commands = self.run_to_the_end(chip)

        self.assertEqual(end, MONITOR_ENTRY)
        self.assertEqual(chip.dump("rom", self.place, self.place + MONITOR_SIZE - 1), self.monitor)
        self.assertEqual(chip.dump("sfr", 0x81, 0x81), b"\x0D", "the stack is as it began")
        self.assertEqual(chip.dump("sfr", 0xB1, 0xB1)[0] & 0x43, 0, "the ISP mode is left")
        self.assertEqual({command.configuration & 0x43 for command in commands}, {0x40})

        opening, *commands = commands
        self.assertEqual((opening.kind, opening.address), (ERASE, 0xF000))
        self.assertEqual([(command.kind, command.address) for command in commands[:self.sectors]],
                         [(ERASE, 0x8000 + SECTOR * sector) for sector in range(self.sectors)])
        wanted = []
        for address, byte in enumerate(self.monitor, self.place):
            again = address & 0xFF == slow and byte != 0xFF  # an erased cell is FF already
            wanted += [(WRITE, address, byte)] * (TRIES if again else 1)
        self.assertEqual([(command.kind, command.address, command.data)
                          for command in commands[self.sectors:]], wanted)

    def test_a_byte_that_takes_no_value_ends_in_an_endless_loop(self):
        for offset in (0, 0x7FF, MONITOR_SIZE - 1):
            with self.subTest(offset=offset):
                chip = self.chip()
                # A byte of FF can't fail in a sector that has been erased.
                while self.monitor[offset] == 0xFF:
                    offset -= 1
                bad = self.place + offset
                self.give_flash(chip, bad, misses=1000)
                end, commands = self.run_to_the_end(chip)
                self.expect_for_ever(chip, end)
                last = commands[-TRIES:]
                self.assertEqual({command.address for command in last}, {bad})
                self.assertEqual({command.data for command in last}, {self.monitor[offset]})
                self.assertEqual(len(commands), 1 + self.sectors + offset + TRIES)

    def test_without_a_flash_only_what_is_there_already_reads_back(self):
        for wrong in (None, 0, 0x8A5, MONITOR_SIZE - 1):
            with self.subTest(wrong=wrong):
                there = bytearray(self.monitor)
                if wrong is not None:
                    there[wrong] ^= 0x10
                chip = self.chip(there)
                end, _ = self.run_to_the_end(chip)
                if wrong is None:
                    self.assertEqual(end, MONITOR_ENTRY)
                else:
                    self.expect_for_ever(chip, end)

    def test_writing_a_byte_tells_whether_it_stands_there(self):
        chip = self.chip()
        back, address = 0x3400, 0x5A7B
        chip.stop_at(back)
        for byte, there, answer in ((0x3C, 0x3C, 0x00), (0x3C, 0x3D, 0xFE), (0x00, 0xFF, 0xFE),
                                    (0xFF, 0xFF, 0x00), (0x80, 0x00, 0xFE)):
            with self.subTest(byte=byte, there=there):
                chip.fill("rom", address, [there])
                chip.fill("iram", 5, [byte, address >> 8, address & 0xFF])
                chip.fill("iram", 0x30, [back & 0xFF, back >> 8])
                chip.fill("sfr", 0x81, [0x31])
                chip.tell(f"pc {self.label['write_byte']}")
                self.assertEqual(chip.run()[0], back)
                self.assertEqual(chip.dump("iram", 7, 7)[0], answer)
                self.assertEqual(chip.dump("sfr", 0xB2, 0xB5),
                                 bytes([WRITE, address & 0xFF, address >> 8, byte]))

    def test_it_waits_while_the_status_says_so_and_clears_that_bit_alone(self):
        chip = self.chip()
        wait, end = self.label["wait_while_busy"], self.label["end_of_wait"]
        chip.tell(f"pc {wait}")
        for busy in (0xFF, 0x04):
            chip.fill("sfr", 0xB6, [busy])
            self.assertEqual(chip.steps(1000), wait, f"{busy:02X}")
        for free in (0xFB, 0x00):
            chip.fill("sfr", 0xB6, [free])
            chip.tell(f"pc {wait}")
            self.assertEqual(chip.steps(2), end, f"{free:02X}")
        chip.fill("sfr", 0xB6, [0xFF])
        chip.steps(1)
        self.assertEqual(chip.dump("sfr", 0xB6, 0xB6), b"\xFB")


class For_VKM516(Loader):
    table, source, sectors, place = "for_VKM516", "vkm516", 256, 0xF000


class For_VKM58(Loader):
    table, source, sectors, place = "for_VKM58", "vkm58", 64, 0x9000


def load_tests(loader, *_):
    return unittest.TestSuite(map(loader.loadTestsFromTestCase, (For_VKM516, For_VKM58)))


if __name__ == "__main__":
    simulator()  # says what is missing before anything else does
    unittest.main(failfast=True)  # what never ends takes its limit in each of them
