"""Running programs: their output in a file, their time on the wall and on the processors."""
# SPDX-License-Identifier: MIT
import contextlib
import os
import pathlib
import shutil
import subprocess
import tempfile
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


@contextlib.contextmanager
def files_in_memory(least=4 << 30):
    """While this lasts, temporary files of all programs are kept in memory, if TMPDIR says nothing else and there is room.

    Tests create databases and servers in great numbers, and a database waits for its disk at every commit.
    """
    memory = pathlib.Path("/dev/shm")
    if "TMPDIR" in os.environ or not memory.is_dir() or shutil.disk_usage(memory).free < least:
        yield
        return
    for left in memory.glob("pelmora-tests-*-*"):  # by a run that was killed
        if not pathlib.Path("/proc", left.name.split("-")[2]).exists():
            shutil.rmtree(left, ignore_errors=True)
    with tempfile.TemporaryDirectory(prefix=f"pelmora-tests-{os.getpid()}-", dir=memory,
                                     ignore_cleanup_errors=True) as folder:
        os.chmod(folder, 0o755)  # servers have a user of their own
        os.environ["TMPDIR"] = folder
        try:
            yield
        finally:
            del os.environ["TMPDIR"]


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
