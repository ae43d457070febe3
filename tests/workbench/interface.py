#!/usr/bin/env python3
"""The JSON interface of the workbench does what its description says: 
interface.py PROGRAM DATA OPENAPI SCHEMA [CASE...]"""
# SPDX-License-Identifier: MIT
import json
import os
import subprocess
import sys
import tempfile

try:
    import jsonschema
except ImportError:
    print("Python's jsonschema is missing: install python3-jsonschema, as scripts/setup does")
    sys.exit(77)

from served import digest, run_cases

PROGRAM, DATA, OPENAPI, SCHEMA = sys.argv[1:5]
with open(OPENAPI, encoding="utf-8") as stream:
    INTERFACE = json.load(stream)
with open(SCHEMA, encoding="utf-8") as stream:
    COMMANDS = json.load(stream)
ROTOR = {"meter": "M1", "series": "Rotor A"}


def strict(schema):
    """The schema that allows no member beyond those it names, unless it says so."""
    if isinstance(schema, list):
        return [strict(part) for part in schema]
    if not isinstance(schema, dict):
        return schema
    closed = {key: strict(value) for key, value in schema.items()}
    if isinstance(closed.get("properties"), dict) and closed.get("type") == "object":
        closed.setdefault("additionalProperties", False)
    return closed


def check(path, status, value, method="get"):
    """The answer is as described."""
    answers = INTERFACE["paths"][path][method]["responses"]
    schema = answers["200" if status == 200 else "default"]["content"]["application/json"]["schema"]
    jsonschema.Draft202012Validator({**strict(schema), "components": strict(INTERFACE["components"])}).validate(value)
    return value


def read(bench, path, expected=200, **query):
    status, value = bench.get(path.lstrip("/"), **query)
    assert status == expected, (path, status, value)
    return check(path, status, value)


def change(bench, path, expected=200, **members):
    status, value = bench.post(path.lstrip("/"), **members)
    assert status == expected, (path, status, value)
    return check(path, status, value, "post")


def as_command(name, value):
    """The answer is also what the command of this name writes."""
    schema = {"$ref": f"#/$defs/commands/{name}", "$defs": COMMANDS["$defs"]}
    jsonschema.Draft202012Validator(schema).validate(value)


def command(*words):
    return json.loads(subprocess.run([PROGRAM, *words, "--json"], check=True, capture_output=True, text=True).stdout)


def every_answer_is_as_described(bench, curves):
    read(bench, "/state")
    assert read(bench, "/meters", search="m")["serialNumbers"] == ["M1"]
    meter = read(bench, "/meter", meter="M1")
    assert [s["name"] for s in meter["calibrations"][0]["series"]] == ["Ratio", "Rotor A", "Rotor B", "Rotor Sum"]
    series = read(bench, "/series", **ROTOR)
    assert read(bench, "/revision", **ROTOR)["revision"] == series["revision"]
    read(bench, "/points", **ROTOR)
    read(bench, "/check", **ROTOR)
    # One calibration alone has not drifted.
    assert "two" in read(bench, "/drift", 400, **ROTOR)["error"]["what"]
    read(bench, "/history", meter="M1")
    read(bench, "/budget", **ROTOR)
    assert read(bench, "/openapi.json") == INTERFACE
    change(bench, "/fit", **ROTOR)
    out = [{"part": 1, "number": 5, "reason": "air"}]
    stored = change(bench, "/store", **ROTOR, revision=series["revision"], excluded=out, settings=series["settings"])
    assert stored["stored"] and stored["historyEntries"]
    signed = change(bench, "/sign", **ROTOR, revision=stored["revision"], name="Ada Byron")
    entry = read(bench, "/history", **ROTOR)["entries"][0]["entry"]
    change(bench, "/restore", **ROTOR, revision=signed["revision"], entry=entry)


def the_same_is_said_as_at_the_command_line(bench, curves):
    points = read(bench, "/points", **ROTOR)
    as_command("points", points)
    assert points == command("points", curves, "--meter", "M1", "--series", "Rotor A")
    as_command("history", read(bench, "/history"))
    fit = change(bench, "/fit", **ROTOR)
    line = command("fit", curves, "--meter", "M1", "--series", "Rotor A", "--dry-run")
    for member in ("chosen", "curve", "equations", "warnings", "merged", "cut", "range", "report"):
        assert fit[member] == line[member], member
    calibration = read(bench, "/meter", meter="M1")["calibrations"][0]
    shown = command("show", curves, "--meter", "M1")
    for series in calibration["series"]:
        del series["signed"]
    assert calibration == shown


def a_fit_without_points_is_that_of_the_exclusions_once_stored(bench, curves):
    out = [{"part": 1, "number": n, "reason": "air"} for n in (5, 20)]
    settings = read(bench, "/series", **ROTOR)["settings"]
    before = digest(curves)
    preview = change(bench, "/fit", **ROTOR, excluded=out, settings=settings)
    assert digest(curves) == before, "a preview has changed the file"
    subprocess.run([PROGRAM, "exclude", curves, "--meter", "M1", "--series", "Rotor A", "--part", "1", "--point", "5",
                    "--point", "20", "--reason", "air"], check=True, capture_output=True)
    line = command("fit", curves, "--meter", "M1", "--series", "Rotor A", "--dry-run")
    assert preview["curve"] == line["curve"]
    assert preview["chosen"] == line["chosen"]


def a_budget_says_what_the_uncertainty_consists_of(bench, curves):
    found = read(bench, "/budget", **ROTOR, roshko=120)
    line = command("evaluate", curves, "120", "--meter", "M1", "--series", "Rotor A", "--budget")["values"][0]
    for member in ("strouhal", "expandedUncertainty", "standardUncertainty", "coverageFactor", "contains", "budget"):
        assert found[member] == line[member], member
    total = sum(row["contribution"] ** 2 for row in found["budget"]) ** 0.5
    assert abs(total / found["standardUncertainty"] - 1) < 1e-9, (total, found)
    assert read(bench, "/budget", **ROTOR, roshko=1e7)["budget"] is None
    # Without a Roshko number, the middle of the curve in the logarithm.
    curve = read(bench, "/series", **ROTOR)["curve"]
    assert abs(read(bench, "/budget", **ROTOR)["roshko"] / (curve[0][0] * curve[-1][0]) ** 0.5 - 1) < 1e-12


def a_drift_is_that_of_the_command_and_the_change_of_the_curve(bench, curves):
    subprocess.run([PROGRAM, "calibrate", curves, "--meter", "M1", "--stand", os.path.join(DATA, "stand-dual-rotor.csv"), "--job", "1003",
                    "--fluid", "Mineral spirit", "--new-calibration"], check=False, capture_output=True)
    drift = read(bench, "/drift", **ROTOR, limit=0.5)
    line = command("drift", curves, "--meter", "M1", "--series", "Rotor A", "--limit", "0.5")
    changes = drift.pop("changes")
    assert drift == line
    compared = command("compare", curves, "--meter", "M1", "--series", "Rotor A")
    assert changes[0] is None and abs(changes[1]["meanPercent"] - compared["meanPercent"]) < 1e-12, (changes[1], compared)


def storing_keeps_reasons_and_takes_points_back(bench, curves):
    series = read(bench, "/series", **ROTOR)
    out = [{"part": 1, "number": 5, "reason": "air in the line"}, {"part": 2, "number": 3, "reason": "valve"}]
    stored = change(bench, "/store", **ROTOR, revision=series["revision"], excluded=out, settings=series["settings"])
    now = read(bench, "/series", **ROTOR)
    assert {(e["part"], e["number"], e["reason"]) for e in now["excluded"]} == {(1, 5, "air in the line"), (2, 3, "valve")}
    assert now["curveAge"] == "current" and now["revision"] == stored["revision"]
    change(bench, "/store", **ROTOR, revision=now["revision"], excluded=out[1:], settings=series["settings"])
    again = read(bench, "/series", **ROTOR)
    assert [(e["part"], e["number"]) for e in again["excluded"]] == [(2, 3)]
    assert len(again["points"]["part"]) == len(series["points"]["part"])


def the_second_of_two_changes_is_told_and_stores_nothing(bench, curves):
    series = read(bench, "/series", **ROTOR)
    first = [{"part": 1, "number": 5, "reason": "first"}]
    change(bench, "/store", **ROTOR, revision=series["revision"], excluded=first, settings=series["settings"])
    before = digest(curves)
    for path, members in (("/store", {"excluded": [{"part": 1, "number": 6, "reason": "second"}]}), ("/sign", {"name": "Ada"}),
                          ("/restore", {"entry": 1})):
        answer = change(bench, path, 409, **ROTOR, revision=series["revision"], **members)
        assert answer["error"]["kind"] == "changed", answer
        assert "nothing was stored" in answer["error"]["remedy"]
    assert digest(curves) == before


def a_signature_becomes_void_with_the_next_change(bench, curves):
    series = read(bench, "/series", **ROTOR)
    change(bench, "/sign", **ROTOR, revision=series["revision"], name=" Ada Byron ", remark="seen")
    signed = read(bench, "/series", **ROTOR)
    assert [(s["name"], s["remark"], s["valid"]) for s in signed["signatures"]] == [("Ada Byron", "seen", True)]
    summary = {s["name"]: s["signed"] for s in read(bench, "/meter", meter="M1")["calibrations"][0]["series"]}
    assert summary == {"Rotor A": True, "Rotor B": None, "Rotor Sum": None, "Ratio": None}
    out = [{"part": 1, "number": 5, "reason": "air"}]
    change(bench, "/store", **ROTOR, revision=signed["revision"], excluded=out, settings=series["settings"])
    assert read(bench, "/series", **ROTOR)["signatures"][0]["valid"] is False


def errors_say_what_where_and_what_to_do(bench, curves):
    series = read(bench, "/series", **ROTOR)
    bad = [(404, "notFound", "/series", {"meter": "M2", "series": "Rotor A"}),
           (404, "notFound", "/series", {"meter": "M1", "series": "Rotor C"}),
           (400, "badData", "/series", {"meter": "M1"}),
           (400, "badData", "/series", {**ROTOR, "calibration": "x"}),
           (400, "badData", "/meters", {"limit": "0"})]
    for status, kind, path, query in bad:
        error = read(bench, path, status, **query)["error"]
        assert error["kind"] == kind and error["what"] and error["remedy"], error
    changes = [(400, "badData", {"excluded": [{"part": 1, "number": 99, "reason": "x"}]}),
               (400, "badData", {"excluded": [{"part": 5, "number": 1, "reason": "x"}]}),
               (400, "badData", {"excluded": [{"part": 1, "number": 3, "reason": " "}]}),
               (422, "noFit", {"excluded": [], "settings": {"band": 0.001, "choose": "adjusted-r2"}}),
               (422, "outOfRange", {"excluded": [], "settings": {"range": {"min": 1e-9, "max": 1e9}}})]
    refused = change(bench, "/fit", **ROTOR, settings={"range": {"max": 1e9}})["refused"]
    assert refused["kind"] == "outOfRange" and refused["remedy"], refused
    before = digest(curves)
    for status, kind, members in changes:
        error = change(bench, "/store", status, **ROTOR, revision=series["revision"], **members)["error"]
        assert error["kind"] == kind and error["what"], error
    assert digest(curves) == before


def a_stand_is_recognised_previewed_and_imported(bench, curves):
    status, found = bench.upload(os.path.join(DATA, "stand-dual-rotor.csv"))
    check("/upload", status, found, "post")
    assert found["kind"] == "stand" and "1001" in found["jobs"]
    runs = [{"job": "1001", "fluid": "Spirit", "operator": "Ada"}, {"job": "1002", "fluid": "Glycol"}]
    before = digest(curves)
    preview = change(bench, "/import", upload=found["upload"], meter="N7", runs=runs, dryRun=True)
    assert digest(curves) == before, "a preview has changed the file"
    as_command("import", preview)
    done = change(bench, "/import", upload=found["upload"], meter="N7", runs=runs)
    assert {**preview, "dryRun": False}["series"] == done["series"] and not done["dryRun"]
    assert read(bench, "/meters", search="n7")["serialNumbers"] == ["N7"]
    names = [s["name"] for s in read(bench, "/meter", meter="N7")["calibrations"][0]["series"]]
    assert names == ["Ratio", "Rotor A", "Rotor B", "Rotor Sum"]


def a_table_of_points_is_recognised_previewed_and_stored(bench, curves):
    with tempfile.TemporaryDirectory() as folder:
        file = os.path.join(folder, "points.csv")
        with open(file, "w", encoding="ascii") as stream:
            stream.write("Roshko,Strouhal\n" + "".join(f"{x},{1300 - x / 10}\n" for x in range(10, 200, 10)))
        status, found = bench.upload(file)
    check("/upload", status, found, "post")
    assert (found["kind"], found["count"], found["first"][0]) == ("points", 19, [10, 1299])
    where = {"upload": found["upload"], "meter": "P1", "series": "K", "part": 2}
    before = digest(curves)
    change(bench, "/raw", **where, dryRun=True)
    assert digest(curves) == before
    done = change(bench, "/raw", **where)
    as_command("raw", {name: value for name, value in done.items() if name != "newSeries"})
    assert set(read(bench, "/series", meter="P1", series="K")["points"]["part"]) == {2}


def a_file_of_anything_else_says_what_is_wrong_by_its_own_name(bench, curves):
    with tempfile.TemporaryDirectory() as folder:
        for name, data in (("holiday.jpg", b"\xff\xd8\xff\xe0" + bytes(range(256)) * 40), ("empty.csv", b""),
                           ("words.csv", b"Roshko,Strouhal\n1,two\n3,4\n")):
            file = os.path.join(folder, name)
            with open(file, "wb") as stream:
                stream.write(data)
            status, answer = bench.upload(file)
            check("/upload", status, answer, "post")
            assert status == 400 and name in answer["error"]["what"], answer
            assert "pelmora-workbench" not in json.dumps(answer), answer
    status, answer = bench.upload(os.path.join(DATA, "stand-dual-rotor.csv"), name="../../etc/passwd")
    assert status in (200, 400), answer


def reports_of_every_format_are_files_to_keep(bench, curves):
    begins = {"html": b"<!doctype html", "json": b"{", "csv": b"", "xlsx": b"PK", "svg": b"<"}
    for kind, begin in begins.items():
        status, headers, body = bench.ask("GET", f"/{bench.room}/api/report?meter=M1&format={kind}")
        assert status == 200 and len(body) > 500, (kind, status)
        assert body[:64].lower().lstrip().startswith(begin.lower()), (kind, body[:40])
        assert headers["content-disposition"] == f'attachment; filename="M1-calibration-0.{kind}"', headers
    # A digital certificate needs details of laboratory and customer: the answer names those that are missing.
    status, answer = bench.get("report", meter="M1", format="xml")
    assert status == 400 and "certificate number is missing" in answer["error"]["what"] and answer["error"]["remedy"], answer
    status, answer = bench.get("report", meter="M1", format="exe")
    assert status == 400 and "html" in answer["error"]["what"]


def meters_are_searched_by_any_part_of_their_number(bench, curves):
    for serial in ("TX-1001", "TX-1002", "KX-77", "tx-9"):
        status, found = bench.upload(os.path.join(DATA, "stand-dual-rotor.csv"))
        change(bench, "/import", upload=found["upload"], meter=serial, runs=[{"job": "1001", "fluid": "Spirit"}])
    assert read(bench, "/meters", search="tx")["matching"] == 3
    assert read(bench, "/meters", search="1002")["serialNumbers"] == ["TX-1002"]
    assert read(bench, "/meters", search="x-")["matching"] == 4
    page = read(bench, "/meters", **{"from": 2, "limit": 2})
    assert (len(page["serialNumbers"]), page["total"]) == (2, 5)
    assert read(bench, "/meters", search="'; drop table meter; --")["matching"] == 0


run_cases(PROGRAM, DATA, globals(), sys.argv[5:])
