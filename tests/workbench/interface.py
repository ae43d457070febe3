#!/usr/bin/env python3
"""The JSON interface of the workbench does what its description says:
interface.py PROGRAM DATA OPENAPI SCHEMA [CASE...]"""
# SPDX-License-Identifier: MIT
import concurrent.futures
import http.client
import json
import os
import re
import signal
import subprocess
import sys
import tempfile
import time

from databases import digest, locked
from described import CHECKED, DATA, INTERFACE, OPENAPI, PROGRAM, ROTOR, as_command, change, check, command, read
from served import Workbench, run_cases


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
    read(bench, "/table", **ROTOR)
    assert read(bench, "/openapi.json") == INTERFACE
    change(bench, "/fit", **ROTOR)
    out = [{"part": 1, "number": 5, "reason": "air"}]
    stored = change(bench, "/store", **ROTOR, revision=series["revision"], excluded=out, settings=series["settings"])
    assert stored["stored"] and stored["historyEntries"]
    signed = change(bench, "/sign", **ROTOR, revision=stored["revision"], name="Ada Byron")
    entry = read(bench, "/history", **ROTOR)["entries"][0]["entry"]
    change(bench, "/restore", **ROTOR, revision=signed["revision"], entry=entry)
    status, stand = bench.upload(os.path.join(DATA, "stand-dual-rotor.csv"))
    check("/upload", status, stand, "post")
    change(bench, "/import", upload=stand["upload"], meter="M1", runs=[{"job": "1003", "fluid": "Spirit"}], newCalibration=True, dryRun=True)
    with tempfile.TemporaryDirectory() as folder:
        file = os.path.join(folder, "points.csv")
        with open(file, "w", encoding="ascii") as stream:
            stream.write("Roshko,Strouhal\n" + "".join(f"{x},{1300 - x / 10}\n" for x in range(10, 200, 10)))
        table = bench.upload(file)[1]
    change(bench, "/raw", upload=table["upload"], meter="M1", series="K", part=1, dryRun=True)
    assert CHECKED >= requests_described() - {("get", "/report")}, requests_described() - CHECKED  # a report is a file


def requests_described():
    return {(method, path) for path, methods in INTERFACE["paths"].items() for method in methods}


def the_description_names_every_request_and_its_arguments(bench, curves):
    # Beside the description is the list of what is served.
    with open(os.path.join(os.path.dirname(OPENAPI), "interface.cpp"), encoding="utf-8") as stream:
        served = {(method.lower(), "/" + path) for method, path in re.findall(r'\{"(GET|POST)", "([a-z.]+)", &', stream.read())}
    assert served == requests_described(), served ^ requests_described()
    for method, path in sorted(served - {("get", "/openapi.json")}):
        described = INTERFACE["paths"][path][method]
        names = {parameter["name"] for parameter in described.get("parameters", [])}
        if method == "post" and path != "/upload":
            names = set(described["requestBody"]["content"]["application/json"]["schema"]["properties"])
            status, answer = bench.post(path.lstrip("/"), nonsense=1)
        elif method == "post":
            status, _, body = bench.ask("POST", f"/{bench.room}/api/upload?nonsense=1", b"x", {"Content-Type": "application/octet-stream"})
            answer = json.loads(body)
        else:
            status, answer = bench.get(path.lstrip("/"), nonsense=1)
        error = check(path, status, answer, method)["error"]
        assert status == 400 and "'nonsense' is not an argument" in error["what"], (path, status, error)
        taken = set() if error["remedy"] == "it takes none" else set(error["remedy"].removeprefix("it takes ").split(", "))
        assert taken == names, (path, taken ^ names)


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


def two_people_with_a_workbench_each_overwrite_nothing_of_each_other(bench, curves):
    with Workbench(PROGRAM, curves) as other:
        other.open()
        seen = read(other, "/series", **ROTOR)
        first = [{"part": 1, "number": 5, "reason": "first"}]
        stored = change(bench, "/store", **ROTOR, revision=seen["revision"], excluded=first, settings=seen["settings"])
        assert read(other, "/revision", **ROTOR)["revision"] == stored["revision"] != seen["revision"]
        second = [{"part": 1, "number": 6, "reason": "second"}]
        refused = change(other, "/store", 409, **ROTOR, revision=seen["revision"], excluded=second, settings=seen["settings"])
        assert refused["error"]["kind"] == "changed", refused
        change(other, "/store", **ROTOR, revision=stored["revision"], excluded=first + second, settings=seen["settings"])
    assert [(e["number"], e["reason"]) for e in read(bench, "/series", **ROTOR)["excluded"]] == [(5, "first"), (6, "second")]


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


def what_is_under_way_is_told_that_the_workbench_ends(bench, curves):
    series = read(bench, "/series", **ROTOR)
    before = digest(curves)
    for pause in (0.2, 1, 5, 25):  # until the request waits
        with Workbench(PROGRAM, curves) as other, concurrent.futures.ThreadPoolExecutor() as threads:
            other.open()
            with locked(curves):
                # In two pieces, as networks deliver it: the answer to such a request waits for its turn to be sent.
                request = threads.submit(other.post, "store", pause=0.1, **ROTOR, revision=series["revision"], excluded=[],
                                         settings={"band": 5})
                time.sleep(0.1 + pause)
                other.process.send_signal(signal.SIGINT)
                try:
                    status, answer = request.result()
                    break
                except (ConnectionError, http.client.HTTPException):
                    pass  # it had not been read yet
    error = check("/store", status, answer, "post")["error"]
    assert (status, error["kind"]) == (503, "ending") and "start it again" in error["remedy"], (status, error)
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
    # A server does not give a number again, even if the change was undone.
    without_ids = lambda series: [{name: value for name, value in entry.items() if name != "seriesId"} for entry in series]
    assert without_ids(preview["series"]) == without_ids(done["series"]) and not done["dryRun"]
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
