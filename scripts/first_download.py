#!/usr/bin/env python3
"""The road of a first download, on a simulated chip.

With a display: opens the window with a simulated chip as COM1, its model chosen
and the example program loaded, so that one click on Download programs it. Each
time that the chip has been programmed a blank one takes its place.

Without one (--offscreen): does that same job itself, prints the log, compares
the chip's flash with the file, saves a picture and says where. The exit status
is 0 when all went well.
"""

import argparse
import os
import pathlib
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parent.parent
sys.path.insert(0, str(ROOT / "tests" / "robot"))

import bench  # noqa: E402  (the robot's own bench, found by the line above)

MODEL = "VKM47H51RB"
CLOCK = "11.0592M"
PROGRAM = ROOT / "examples" / "blink.hex"
PICTURE = ROOT / "pictures" / "first-download.png"


def example_bytes():
    """What the example program puts into the flash, by address."""
    content = {}
    for line in PROGRAM.read_text().split():
        record = bytes.fromhex(line[1:])
        if record[3] == 0:
            address = record[1] << 8 | record[2]
            content.update({address + i: byte for i, byte in enumerate(record[4:-1])})
    return content


def prepare(tool):
    tool.model(MODEL)
    tool.choose("combCommPort", text="COM1")
    tool.load(PROGRAM)


def download_offscreen(tool, chip):
    tool.click("comDownload(0)")
    tool.idle(60000)
    log = tool.log()
    print(log.replace("\r\n", "\n"))
    print()
    PICTURE.parent.mkdir(exist_ok=True)
    tool.do("shot", path=str(PICTURE))
    flash = chip.flash()
    wrong = [address for address, byte in example_bytes().items() if flash[address] != byte]
    bench.expect("Program OK" in log, "the download did not end well")
    bench.expect(not wrong, f"the flash differs from the file at {wrong[:8]}")
    objections = [line for line in chip.output if line.startswith("objection")]
    bench.expect(not objections, f"the chip objects: {objections}")
    bench.expect_equal(tool.quit(), 0, "exit status of the window")
    print(f"The simulated {MODEL} holds {PROGRAM.relative_to(ROOT)}, byte for byte.")
    print(f"Picture of the window: {PICTURE.relative_to(ROOT)}")


def leave_to_the_operator(tool):
    print(f"The window is open. COM1 is a simulated {MODEL}; the example program is loaded:")
    print("press Download. Close the window to end.")
    tool.write_line('{"do": "quit"}')  # carried out once the window is closed
    tool.popen.wait()


def main():
    words = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    words.add_argument("--offscreen", action="store_true")
    words.add_argument("--build", default=ROOT / "build" / "release", type=pathlib.Path)
    arguments = words.parse_args()
    bench.BUILD = arguments.build
    screen = "xcb" if "DISPLAY" in os.environ else "wayland"
    os.environ["QT_QPA_PLATFORM"] = "offscreen" if arguments.offscreen else screen

    job = bench.Bench("first-download")
    try:
        after = {} if arguments.offscreen else {"fresh_chip_after_done": "1"}
        chip = job.chip(MODEL, clock=CLOCK, **after)
        tool = job.robot_with(chip, size="1280x800", folder=ROOT)
        prepare(tool)
        if arguments.offscreen:
            download_offscreen(tool, chip)
        else:
            leave_to_the_operator(tool)
    except bench.Failed as failure:
        print(f"Failed: {failure}", file=sys.stderr)
        return 1
    finally:
        job.close()
    return 0


if __name__ == "__main__":
    sys.exit(main())
