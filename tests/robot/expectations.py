"""What must hold after a job, whichever scenario ran it."""

from bench import expect, expect_equal

PROGRAM_OK = "Program OK / 下载 OK"
STOPPED = "Operation is stop. / 操作被停止."


def expect_done(robot, chip, content):
    log = robot.log()
    expect(PROGRAM_OK in log, f"the job failed:{log}\n" + "\n".join(chip.output[-20:]))
    expect_equal(chip.flash()[: len(content)], content, "flash")
    expect(not robot.get("ProgressBar1", "Visible"), "the progress bar is still there")
    expect_at_rest(robot)


def expect_at_rest(robot):
    expect_equal(robot.value("UI_State"), 0, "UI_State")
    expect_equal(robot.value("Connected"), False, "Connected")
    for button in ("comDownload(0)", "comDownload(1)"):
        expect(robot.get(button, "Enabled"), f"{button} is dead")
    expect(not robot.get("comStop_Download", "Enabled"), "Stop has nothing to stop")
