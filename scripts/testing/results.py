"""What a part's tests came to: read from CTest's list and from the lists of the test programs that it ran."""
# SPDX-License-Identifier: MIT
import pathlib
import xml.etree.ElementTree as xml
from dataclasses import dataclass, field


@dataclass
class Results:
    passed: int = 0
    failed: list = field(default_factory=list)   # names
    skipped: list = field(default_factory=list)  # (name, reason)

    def add(self, other):
        self.passed += other.passed
        self.failed += other.failed
        self.skipped += other.skipped

    def __str__(self):
        return f"{self.passed} passed, {len(self.failed)} failed, {len(self.skipped)} skipped"


def reason_in(output):
    """The last line that a skipped test wrote says why."""
    lines = [line.strip() for line in output.splitlines() if line.strip()]
    return lines[-1].removeprefix("SKIPPED: ").removeprefix("skipped: ") if lines else "no reason given"


def of_program(file, prefix):
    """Of one GoogleTest program, from its XML."""
    results = Results()
    for suite in xml.parse(file).getroot().iter("testsuite"):
        for case in suite.iter("testcase"):
            name = f"{prefix}{case.get('classname')}.{case.get('name')}"
            skip = case.find("skipped")
            if case.find("failure") is not None:
                results.failed.append(name)
            elif skip is not None:
                # GoogleTest writes the place on a line of its own before the message.
                results.skipped.append((name, reason_in(skip.get("message", ""))))
            elif case.get("status") == "notrun":
                results.skipped.append((name, "disabled"))
            else:
                results.passed += 1
    return results


def of_ctest(junit, programs):
    """Of one run of CTest. `programs` is the folder of the programs' own lists, which count test by test."""
    results = Results()
    for case in xml.parse(junit).getroot().iter("testcase"):
        name, status = case.get("name"), case.get("status")
        output = case.findtext("system-out") or ""
        own = pathlib.Path(programs) / (name.replace("/", ".") + ".xml")
        if status == "disabled":
            results.skipped.append((name, "disabled: what it needs is missing"))
        elif status == "notrun":
            results.skipped.append((name, reason_in(output)))
        elif own.exists():
            inside = of_program(own, name.rpartition("/")[0] + "/")
            results.add(inside)
            # A program may fail after its last test: a leak, a crash at the end.
            if status == "fail" and not inside.failed:
                results.failed.append(f"{name} (the program, after its tests)")
        elif status == "fail":
            results.failed.append(name)
        else:
            results.passed += 1
    return results
