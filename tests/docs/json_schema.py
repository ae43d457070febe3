#!/usr/bin/env python3
"""What every command writes with --json is as the schema of the documentation says, no member more or less.

json_schema.py PROGRAM DATA SCHEMA ACCESS_FILE: ends with 0, or with 1 and what differs; 77 where Python's jsonschema is
missing. Leave ACCESS_FILE out if this build cannot read Access files.
"""
# SPDX-License-Identifier: MIT
import copy
import json
import os
import pathlib
import re
import subprocess
import sys
import tempfile

try:
    import jsonschema
except ImportError:
    print("Python's jsonschema is missing: install python3-jsonschema, as scripts/setup does")
    sys.exit(77)

sys.path.append(str(pathlib.Path(__file__).parents[1] / "support"))
from strict_schema import strict  # noqa: E402

PROGRAM, DATA, SCHEMA = sys.argv[1:4]
ACCESS_FILE = sys.argv[4] if len(sys.argv) > 4 else None
BAND_FAILED, MOVED, PROBLEMS, BAD_DATA = 6, 9, 5, 5  # exit codes of commands that write their JSON all the same


def outputs(folder):
    """Names in the schema and what the commands write, on a meter that has been calibrated twice."""
    curves, result = os.path.join(folder, "curves.db"), os.path.join(folder, "result.txt")
    stand = ["--stand", os.path.join(DATA, "stand-dual-rotor.csv"), "--job", "1001", "--fluid", "Spirit", "--job", "1002",
             "--fluid", "Glycol", "--operator", "Ada"]
    series = ["--meter", "M1", "--series", "Rotor A"]
    with open(result, "w", encoding="ascii", newline="\r\n") as file:
        file.write("one\ntwo\nthree\n" + "".join(f"{x} {2 + x / 100}\n" for x in range(1, 9)))

    begin = {"report": [curves, "-o", "-"], "meter": ["set", curves], "laboratory": ["set", curves], "equations": [],
             "import-access": [], "check-dcc": [], "stand": ["uncertainty", curves],
             "fleet start": ["start", curves], "fleet status": ["status", curves], "fluid set": ["set", curves],
             "fluid show": ["show", curves]}

    def run(command, *arguments, code=0):
        ended = subprocess.run([PROGRAM, command.split()[0], *begin.get(command, [curves]), *arguments, "--json"],
                               capture_output=True, text=True, encoding="utf-8")
        if ended.returncode != code:
            raise AssertionError(f"{command} ended with {ended.returncode}, not {code}: {ended.stderr}")
        return json.loads(ended.stdout)

    yield "init", run("init")
    yield "import", run("import", "--meter", "M1", *stand)
    yield "calibrate", run("calibrate", "--meter", "M1", *stand)
    yield "calibrate", run("calibrate", "--meter", "M1", *stand, "--new-calibration", "--dry-run")
    run("calibrate", "--meter", "M1", *stand, "--new-calibration", "--points", "50")
    yield "raw", run("raw", os.path.join(DATA, "real-vortex-shedding-strouhal.csv"), "--meter", "V", "--register",
                     "--series", "Shedding", "--where", "set=2")
    spoiled = ["--meter", "V", "--series", "Shedding"]
    yield "exclude", run("exclude", *spoiled, "--part", "1", "--point", "2-3", "--reason", "trial")
    yield "exclude", run("exclude", *spoiled, "--all-below", "7", "--reason", "trial", "--dry-run")
    yield "points", run("points", *spoiled)
    yield "points", run("points", *series)
    yield "include", run("include", *spoiled, "--part", "1", "--point", "3", "--with-derived")
    yield "restore", run("restore", str(run("history")["entries"][0]["entry"]))
    yield "import-curve", run("import-curve", result, "--meter", "V", "--series", "Shedding")
    if ACCESS_FILE:
        yield "import-access", run("import-access", ACCESS_FILE, os.path.join(folder, "copy.db"))
        with open(ACCESS_FILE, "rb") as file, open(os.path.join(folder, "cut.mdb"), "wb") as cut:
            cut.write(file.read()[:-4096])
        yield "import-access", run("import-access", cut.name, os.path.join(folder, "part.db"), code=PROBLEMS)
    yield "copy", run("copy", os.path.join(folder, "copied.db"), "--meter", "V")
    yield "fit", run("fit", *series)
    yield "fit", run("fit", *series, "--band", "0.01", "--choose", "adjusted-r2", code=BAND_FAILED)
    yield "fit", run("fit", "--meter", "V", "--series", "Shedding", "--fit-min", "8", "--strict", "--dry-run", code=BAND_FAILED)
    yield "equations", run("equations")
    yield "refit", run("refit", "--all")
    yield "refit", run("refit", "--meter", "M1", "--dry-run")
    yield "fleet start", run("fleet start", "--range", "3", "--changed", "0", "--choose", "adjusted-r2")
    yield "worker", run("worker", "--ranges", "1")
    yield "fleet status", run("fleet status")
    yield "worker", run("worker")
    yield "fleet status", run("fleet status")
    stated = os.path.join(folder, "stand.ini")
    with open(stated, "w", encoding="ascii") as file:
        file.write("[stand]\nname = S\n[flow]\nstandard = 0.05 %\n[viscosity]\nhalf-width = 1 %\ndistribution = rectangular\n")
    yield "evaluate", run("evaluate", "5", "5000", *series)
    yield "stand", run("stand", stated, "--meter", "M1")
    yield "stand", run("stand", "--meter", "M1")
    yield "stand", run("stand", "--meter", "M1", "--remove")
    yield "evaluate", run("evaluate", "5", "--table", "--monte-carlo", "20000", *series)
    yield "evaluate", run("evaluate", "1.05", "--inverse", "--meter", "M1", "--series", "Ratio")
    yield "fluid", run("fluid set", "--name", "ISO 32", "--point", "40C:32cSt", "--point", "100C:5.4cSt")
    yield "fluid", run("fluid set", "--name", "Water", "--law", "andrade", "--constant=-3.7188", "--constant", "578.919",
                       "--constant=-137.546", "--from", "0C", "--to", "100C")
    yield "fluid", run("fluid show", "--temperature", "60C")
    yield "flow", run("flow", "--frequency", "600", "--viscosity", "1.2", *series)
    yield "flow", run("flow", "--frequency", "600", "--frequency-b", "640", "--viscosity", "1.2", "--meter", "M1")
    yield "flow", run("flow", "--frequency", "6e6", "--viscosity", "1.2", *series)
    yield "drift", run("drift", *series)
    yield "drift", run("drift", "--limit", "1", "--at", "100", *series)
    yield "export --for", run("export", "--for", "linear", "--viscosity", "2", *series)
    yield "compare", run("compare", *series)
    yield "compare", run("compare", "--meter", "M1", "--series", "Rotor B", "--with", curves, "--from", "0",
                           "--tolerance", "1e-9", code=MOVED)
    yield "export", run("export", *series)
    yield "show", run("show")
    yield "show --meter", run("show", "--meter", "M1")
    yield "show --series", run("show", *series)
    yield "laboratory", run("laboratory", "--name", "L", "--nominal-flow-column", "V14")
    yield "meter", run("meter", "--meter", "M1", "--maker", "A", "--remark", "one", "--limit", "0.3 %")
    yield "report", run("report", "--meter", "M1")
    flawed = os.path.join(folder, "flawed.xml")
    with open(flawed, "w", encoding="ascii") as file:
        file.write("<digitalCalibrationCertificate><real><value>NaN</value></real></digitalCalibrationCertificate>")
    yield "check-dcc", run("check-dcc", flawed, code=BAD_DATA)
    yield "report", run("report", "--meter", "V")
    yield "delete", run("delete", "--meter", "M1", "--series", "Ratio", "--yes")
    yield "delete", run("delete", "--meter", "M1", "--calibration", "0", "--yes")
    history = run("history")
    yield "history", history
    yield "restore", run("restore", str(history["entries"][0]["entry"]))
    yield "history --prune", run("history", "--prune", "--keep", "1", "--yes")
    connection = subprocess.run(["sqlite3", curves, "delete from series where id in (select min(id) from series)"])
    connection.check_returncode()
    yield "doctor", run("doctor", code=PROBLEMS)
    yield "doctor", run("doctor", "--repair")
    yield "doctor --salvage", run("doctor", "--salvage", os.path.join(folder, "whole.db"))
    roots = subprocess.run(["sqlite3", curves, "select rootpage from sqlite_master where tbl_name = 'curve'"],
                           check=True, capture_output=True, text=True).stdout
    with open(curves, "r+b") as file:  # the table and its index
        for root in roots.split():
            file.seek((int(root) - 1) * 4096)
            file.write(bytes(4096))
    yield "doctor", run("doctor", code=PROBLEMS)
    yield "doctor --salvage", run("doctor", "--salvage", os.path.join(folder, "new.db"), code=PROBLEMS)


def commands_with_json():
    text = subprocess.run([PROGRAM, "--help"], check=True, capture_output=True, text=True).stdout
    names = re.findall(r"^  ([a-z][a-z-]*) ", text[text.index("Subcommands:"):], re.MULTILINE)
    help_of = lambda name: subprocess.run([PROGRAM, name, "--help"], check=True, capture_output=True, text=True).stdout
    return {name for name in names if re.search(r"^  (-\S+,)?--json ", help_of(name), re.MULTILINE)}


def without_a_member(value):
    """The output as it would be if one of its own members had been renamed."""
    changed = copy.deepcopy(value)
    changed["renamed"] = changed.pop(sorted(changed)[-1])
    return changed


def main():
    with open(SCHEMA, encoding="utf-8") as file:
        schema = json.load(file)
    jsonschema.Draft202012Validator.check_schema(schema)
    closed, failures, seen = strict(schema), [], set()
    with tempfile.TemporaryDirectory() as folder:
        for name, value in outputs(folder):
            seen.add(name)
            validator = jsonschema.Draft202012Validator({**closed, "$ref": f"#/$defs/commands/{name}"})
            for error in validator.iter_errors(value):
                failures.append(f"{name}: {error.json_path}: {error.message[:300]}")
            if validator.is_valid(without_a_member(value)):
                failures.append(f"{name}: the schema does not notice a member that is renamed")
    if not ACCESS_FILE:
        seen.add("import-access")
    for name in commands_with_json() - {name.split()[0] for name in seen}:
        failures.append(f"{name}: takes --json and has no example here")
    for name in set(schema["$defs"]["commands"]) - seen:
        failures.append(f"{name}: the schema describes it and nothing here writes it")
    print("\n".join(failures) or f"{len(seen)} objects are as the schema says")
    return 1 if failures else 0


sys.exit(main())
