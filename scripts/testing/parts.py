"""The parts of the tests: what each builds and runs.

A part is built while no other is; its tests run while the next part is built, because many of them wait: for a window,
a browser, Wine, a lock.
"""
# SPDX-License-Identifier: MIT
import os
import pathlib
import shutil
import subprocess
import time

import fuzzing
from results import Results, of_ctest
from running import Failed, Meter, end_of, must, run

jobs = os.cpu_count() or 1
tests_at_once = jobs + 1  # most wait now and then, for a disk, a window or a browser
formatter = "clang-format-14"  # another version formats otherwise


class Unavailable(Exception):
    """What the part needs cannot be had on this machine; the text says what."""


class Part:
    """One row of the summary. A part without a preset builds nothing."""

    def __init__(self, name, what, preset=None, targets=(), settings=(), select=()):
        self.name, self.what, self.preset = name, what, preset
        self.targets, self.settings, self.select = list(targets), list(settings), list(select)
        self.building, self.testing = Meter(), Meter()
        self.results = Results()
        self.report = ""  # what a person needs to see of a failure
        self.untested = None  # why what is built cannot be tested here

    @property
    def folder(self):
        return pathlib.Path("build") / (self.preset or "test")

    def log(self, step):
        return self.folder / f"{self.name}-{step}.log"

    def build(self):
        self.log("build").unlink(missing_ok=True)
        must(["cmake", "--preset", self.preset, *self.settings], self.log("build"), self.building)
        must(["cmake", "--build", "--preset", self.preset, "-j", str(jobs),
              *(["--target", *self.targets] if self.targets else [])], self.log("build"), self.building)

    def test(self):
        if self.untested:
            self.results.skipped.append((f"{self.name}: all tests", self.untested))
            return
        log, junit = self.log("test"), self.folder / f"{self.name}-tests.xml"
        lists = self.folder / "test_results"
        shutil.rmtree(lists, ignore_errors=True)
        lists.mkdir(parents=True)
        junit.unlink(missing_ok=True)
        log.unlink(missing_ok=True)
        code = run(["ctest", "--preset", self.preset, "-j", str(tests_at_once), "--no-tests=error", "--output-junit",
                    str(junit.resolve()), "--test-output-size-passed", "20000", *self.select], log, self.testing,
                   {"CMAKE_BUILD_PARALLEL_LEVEL": str(jobs)})
        if not junit.exists():
            raise Failed(f"ctest ended with {code} before it ran a test", log)
        self.results = of_ctest(junit, lists)
        if code != 0 and not self.results.failed:
            self.results.failed.append(f"{self.name}: ctest ended with {code}")
        if self.results.failed:
            dull = ("Passed", "      Start")
            self.report = "\n".join(line for line in log.read_text(errors="replace").splitlines()
                                    if not line.startswith(dull[1]) and dull[0] not in line)


class FormatPart(Part):
    """Every C++ file is as the formatter writes it."""

    def build(self):
        pass

    def test(self):
        if shutil.which(formatter) is None:
            raise Unavailable(f"{formatter} is not installed")
        files = subprocess.run(["git", "ls-files", "*.cpp", "*.h"], check=True, text=True,
                               stdout=subprocess.PIPE).stdout.split()
        log = self.log("test")
        log.unlink(missing_ok=True)
        if run([formatter, "--dry-run", "-Werror", *files], log, self.testing) == 0:
            self.results.passed += 1
        else:
            self.results.failed.append(f"{self.name}: files are not formatted; {formatter} -i puts them right")
            self.report = end_of(log)


class WindowsPart(Part):
    """The automation component, cross-compiled and tested under Wine."""

    def build(self):
        log = self.log("build")
        log.unlink(missing_ok=True)
        if run(["scripts/setup", "windows"], log, self.building) != 0:
            raise Unavailable("the cross-compiler or Wine cannot be installed: " + end_of(log, 1))
        if self.preset == "windows-x86":
            if run(["scripts/wine32", str(self.folder)], self.log("wine32"), self.building) != 0:
                self.untested = "Wine's 32-bit parts cannot be had: " + end_of(self.log("wine32"), 1)
        try:
            super().build()
        except Failed as failure:
            if "SQLite's source cannot be fetched" in log.read_text(errors="replace"):
                raise Unavailable("SQLite's source cannot be fetched from the npm registry") from failure
            raise


class FuzzPart(Part):
    """Every fuzz target for a short while; scripts/fuzz runs them for long."""

    seconds = 20

    def test(self):
        started = time.monotonic()
        outcomes = fuzzing.run_targets(self.folder, fuzzing.targets(), self.seconds, jobs, self.testing)
        self.testing.wall = time.monotonic() - started  # several at a time
        for outcome in outcomes:
            if outcome.is_clean:
                self.results.passed += 1
            else:
                self.results.failed.append(f"{self.name}: {outcome.target}, see {self.folder}/{outcome.target}.log")
                self.report += outcome.last_lines + "\n"


# The optimised library is tested on Linux; compiling it so twice more would take a quarter of the whole time. With no
# optimisation at all, the linker takes far longer over the inline functions than the compiler saves.
hardly_optimised = "-DPELMORA_OPTIMISATION=-Og"
# A sixth of the time that a sanitized source takes to compile. A report names functions all the same.
without_lines = "-DCMAKE_CXX_FLAGS_DEBUG=-O0"


def parts():
    # Other programs, which are not built with them, and many rounds of what runs once under them.
    not_under_sanitizers = "slow|browser|long"
    return [
        FormatPart("format", "every C++ file is formatted"),
        Part("release", "optimised: all rooms, the command line, documents, packages, the report page in a browser",
             "release"),
        WindowsPart("windows-x64", "the automation component for 64-bit Windows, under Wine", "windows-x64",
                    settings=[hardly_optimised]),
        WindowsPart("windows-x86", "the same for 32-bit Windows", "windows-x86", settings=[hardly_optimised]),
        # Its targets run for a fixed time: while the next part, of the same folder, is built.
        FuzzPart("fuzz", "everything that reads data from outside, fuzzed for 20 s a target", "sanitize",
                 targets=["fuzz_targets"], settings=[without_lines]),
        Part("sanitize", "all rooms and the command line under the address and undefined-behaviour sanitizers",
             "sanitize", settings=[without_lines], select=["--label-exclude", not_under_sanitizers]),
        Part("tsan", "what starts threads, under the thread sanitizer", "tsan", select=["--label-regex", "threads"],
             targets=["threads_tests"], settings=[without_lines]),
    ]


def quick(known):
    """What is passed without --all: everything optimised, and under the sanitizers what a change can break most."""
    chosen = [part for part in known if part.name in ("format", "release", "sanitize")]
    for part in chosen:
        if part.name == "release":
            part.select = ["--label-exclude", "long|again"]
            part.targets = ["quick_tests"]
        if part.name == "sanitize":
            part.select = ["--label-regex", "memory"]
            part.targets = ["memory_tests"]
    return chosen
