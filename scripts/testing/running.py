"""Running programs: their output in a file, their time on the wall and on the processors."""
# SPDX-License-Identifier: MIT
import os
import subprocess
import time


class Failed(Exception):
    """A step of a part failed; the text says which, and the log's end shows why."""

    def __init__(self, what, log=None):
        super().__init__(what)
        self.log = log


class Meter:
    """Seconds of what ran: on the wall, and of all processors together."""

    def __init__(self):
        self.wall = self.processors = 0.0

    def add(self, wall, usage):
        self.wall += wall
        self.processors += usage.ru_utime + usage.ru_stime


def run(command, log, meter, environment=None):
    """Runs a command to its end, its output added to the file `log`; returns its exit code."""
    log.parent.mkdir(parents=True, exist_ok=True)
    started = time.monotonic()
    with log.open("ab") as output:
        process = subprocess.Popen(command, stdin=subprocess.DEVNULL, stdout=output, stderr=subprocess.STDOUT,
                                   env={**os.environ, **(environment or {})})
        # Not Popen.wait(): the usage of this child and its own children is asked for.
        _, status, usage = os.wait4(process.pid, 0)
    process.returncode = os.waitstatus_to_exitcode(status)
    meter.add(time.monotonic() - started, usage)
    return process.returncode


def must(command, log, meter, environment=None):
    code = run(command, log, meter, environment)
    if code != 0:
        raise Failed(f"{' '.join(map(str, command))} ended with {code}", log)


def end_of(log, lines=60):
    if log is None or not log.exists():
        return ""
    return "\n".join(log.read_text(errors="replace").splitlines()[-lines:])
