#!/usr/bin/env python3
"""Every format of a report tells what its JSON tells, and the JSON what the database holds.

formats_agree.py PROGRAM DATA CASE: runs one case against a two-fluid calibration with an earlier one to compare with.
Readers are Python's own: json, csv, zipfile and an XML parser.
"""
# SPDX-License-Identifier: MIT
import csv
import hashlib
import io
import json
import os
import re
import subprocess
import sys
import tempfile
import xml.etree.ElementTree as ElementTree
import zipfile

from drawn_panels import Panel, compare_panels
from expectations import expect, expect_equal, expect_rounded
from page_tables import Rows

PROGRAM, DATA = sys.argv[1], sys.argv[2]
FOLDER = tempfile.TemporaryDirectory()
CURVES = os.path.join(FOLDER.name, "curves.db")
PAGE_LIMIT = 200 * 1000
MOST_REJECTED = 5  # equations in the page's ranking, so that it stays readable
SHEET_DIGITS = 1e-15  # a workbook keeps 16 significant digits


def run(*arguments):
    environment = dict(os.environ, SOURCE_DATE_EPOCH="1795268400")
    return subprocess.run([PROGRAM, *arguments], check=True, capture_output=True, env=environment).stdout


def report(option):
    return run("report", CURVES, "--meter", "M1", "-o", "-", option)


def set_up():
    stand = os.path.join(DATA, "stand-dual-rotor.csv")
    run("init", CURVES)
    job = lambda number, fluid: ["--job", number, "--fluid", fluid]
    run("calibrate", CURVES, "--meter", "M1", "--stand", stand, *job("1001", "Mineral spirit"), *job("1002", "Glycol mix"),
        "--operator", "Ada", "--points", "50")
    run("calibrate", CURVES, "--meter", "M1", "--stand", stand, "--new-calibration", *job("1001", "Mineral spirit"),
        *job("1002", "Glycol mix"), "--operator", "Ada")
    return json.loads(report("--json"))


def tables_of(model):
    """The flat tables that CSV and workbook must hold, made from the JSON alone."""
    def pick(entry, names):
        return {name: entry[name] for name in names}

    meter = model["meter"]
    tables = {name: [] for name in ("calibration", "setups", "series", "points", "curve", "equations", "parameters",
                                    "warnings", "shifts", "reports", "results", "flows", "merged", "details", "history")}
    tables["history"] += [{**entry, "user": entry["user"] or None} for entry in model["history"]]
    tables["details"] += [{"detail": key, "value": value} for part in (model["details"], model["laboratory"])
                          for key, value in part.items()]
    tables["calibration"].append({**pick(meter, ("serialNumber", "serialNumberAdjusted", "calibration")),
                                  **pick(model, ("database", "softwareVersion", "createdAt", "rawDataSha256"))})
    for setup in model["setups"]:
        tables["setups"].append({"part": setup["rawPart"], "fluid": setup["fluid"], "jobs": ", ".join(setup["jobs"]),
                                 "operator": setup["operator"], "date": setup["date"], "stand": setup["stand"],
                                 "position": setup["position"], "count": setup["points"]})
    for series in model["series"]:
        name, settings, previous = series["name"], series["settings"], series["previous"]
        row = {"series": name, "chosen": series["chosen"], "count": settings["points"], "settingsKept": settings["kept"],
               "rawDataSha256": series["rawDataSha256"],
               **pick(settings, ("bandPercent", "min", "max", "ratio", "inverted", "ignoreResiduals", "softwareVersion", "fittedAt", "choose")),
               "curveAge": series["curveAge"]}
        if previous:
            row.update(previousCalibration=previous["calibration"], date=previous["date"], meanShiftPercent=previous["meanPercent"],
                       lowestShiftPercent=previous["lowest"]["percent"], highestShiftPercent=previous["highest"]["percent"])
            tables["shifts"] += [{"series": name, **shift} for shift in previous["shifts"]]
        tables["series"].append(row)
        for point in series["rawPoints"]:
            nothing = {"reason": None, "user": None, "excludedAt": None}
            reading = {key: None for key in ("nominalFlow", "frequency", "flow", "temperature", "viscosity")}
            tables["points"].append({"series": name, **{key: value for key, value in point.items()
                                                        if key not in ("exclusion", "reading", "residualPercent")},
                                     **(point["exclusion"] or nothing), **(point["reading"] or reading)})
        tables["merged"] += [{"series": name, **point} for point in series["merged"]]
        result = dict(series["result"])
        tables["flows"] += [{"series": name, "count": flow["points"], **{key: value for key, value in flow.items()
                                                                          if key != "points"}} for flow in result.pop("flows")]
        tables["results"].append({"series": name, **result})
        tables["curve"] += [{"series": name, "number": i + 1, **point} for i, point in enumerate(series["curve"])]
        for equation in series["equations"]:
            tables["equations"].append({"series": name, "equation": equation["name"], "reason": equation["reason"] or None, **pick(
                equation, ("rank", "expression", "verdict", "observations", "r2", "adjustedR2", "residualStandardError",
                           "residualSumOfSquares", "aicc", "bic", "worstResidualPercent", "worstResidualRoshko"))})
            tables["parameters"] += [{"series": name, "equation": equation["name"], "parameter": parameter["name"],
                                      "value": parameter["value"], "standardError": parameter["standardError"]}
                                     for parameter in equation["parameters"]]
        tables["warnings"] += [{"series": name, **warning} for warning in series["warnings"]]
        tables["reports"] += [{"series": name, "number": i + 1, "text": line or None}
                              for i, line in enumerate(series["report"].splitlines())]
    return tables


def compare_tables(found, model, tolerance):
    wanted = tables_of(model)
    expect(set(found) == {name for name in wanted if wanted[name]}, f"tables {sorted(found)}")
    for name, rows in wanted.items():
        expect_equal(len(found.get(name, [])), len(rows), f"rows of {name}")
        for i, row in enumerate(rows):
            for column, value in row.items():
                cell = found[name][i].get(column)
                if value is None:
                    expect(cell in (None, ""), f"{name} {i} {column}: {cell!r} is not empty")
                else:
                    expect_equal(cell, value, f"{name} {i} {column}", tolerance)


def csv_holds_the_numbers_of_json(model):
    found, header = {}, None
    for cells in csv.reader(io.StringIO(report("--csv").decode(), newline="")):
        if not cells:
            header = None
        elif header is None:
            header = cells
            expect_equal(header[0], "table", "header")
        else:
            expect_equal(len(cells), len(header), f"fields of {cells}")
            # the apostrophe that keeps texts from being formulas
            row = {key: cell[1:] if re.match(r"'\s*[=+\-@]", cell) else cell for key, cell in zip(header, cells)}
            found.setdefault(row["table"], []).append(row)
    compare_tables(found, model, 0.0)


def workbook_holds_the_numbers_of_json(model):
    space = {"m": "http://schemas.openxmlformats.org/spreadsheetml/2006/main"}
    book = zipfile.ZipFile(io.BytesIO(report("--xlsx")))
    tree = lambda name: ElementTree.fromstring(book.read(name))
    strings = ["".join(t.text or "" for t in item.iter("{%s}t" % space["m"])) for item in tree("xl/sharedStrings.xml")]
    found = {}
    for k, sheet in enumerate(tree("xl/workbook.xml").iterfind("m:sheets/m:sheet", space)):
        table = []
        for row in tree(f"xl/worksheets/sheet{k + 1}.xml").iterfind("m:sheetData/m:row", space):
            cells = {}
            for cell in row.iterfind("m:c", space):
                value = cell.find("m:v", space).text
                expect(cell.find("m:f", space) is None, "a formula")
                cells[re.match("[A-Z]+", cell.get("r")).group()] = strings[int(value)] if cell.get("t") == "s" else float(value)
            table.append(cells)
        header = table[0]
        if table[1:]:
            found[sheet.get("name")] = [{header[column]: value for column, value in cells.items()} for cells in table[1:]]
    compare_tables(found, model, SHEET_DIGITS)


def picture_stands_at_the_numbers_of_json(model):
    tree = ElementTree.fromstring(report("--svg"))
    compare_panels([Panel(g) for g in tree.iter("{http://www.w3.org/2000/svg}g") if g.get("class") == "panel"], model)


def page_holds_the_picture(model):
    svgs = re.findall(r'<svg class="plot".*?</svg>', report("--html").decode(), re.S)
    panels = [Panel(g) for svg in svgs for g in ElementTree.fromstring(svg).iter("g") if g.get("class") == "panel"]
    compare_panels(panels, model)


def page_shows_the_numbers_of_json(model):
    page = Rows()
    page.feed(report("--html").decode())
    expect_equal(len(page.sections) - 1, len(model["series"]), "sections")
    for series, tables in zip(model["series"], page.sections[1:]):
        name = series["name"]
        curve = [row for kind, rows in tables if "predicted" in kind for row in rows[1:]]
        expect_equal(len(curve), len(series["curve"]), f"{name}: predicted table")
        for row, point in zip(curve, series["curve"]):
            for text, key in zip(row[1:], ("roshko", "strouhal", "confidenceHalfWidth", "predictionHalfWidth")):
                expect_rounded(text, point[key], f"{name}: {key}")
        measured = [row for kind, rows in tables if "measured" in kind for row in rows[1:] if row[0]]  # not the notes
        points = series["rawPoints"]
        expect_equal(len(measured), len(points), f"{name}: measured points")
        for row, point in zip(measured, points):
            expect_equal([row[0], row[-1]], [str(point["number"]), point["state"]], f"{name}: number and state")
            reading = point["reading"]
            wanted = [reading[key] for key in ("frequency", "flow", "temperature", "viscosity")]
            for text, value in zip(row[1:-1], wanted + [point["roshko"], point["strouhal"], point["deviationPercent"]]):
                expect_rounded(text, value, f"{name}: measured point {point['number']}")
        tables = [table for table in tables if not any(kind in table[0] for kind in ("measured", "predicted"))]
        equations = [row for row in tables[0][1][1:] if row[0]]
        rejected = [e for e in series["equations"] if e["verdict"] not in ("chosen", "accepted", "notTried")]
        shown = [e for e in series["equations"] if e not in rejected[MOST_REJECTED:]]
        expect_equal(len(equations), len(shown), f"{name}: equations")
        for row, equation in zip(equations, shown):
            expect_equal(row[0], f"{equation['rank']}. {equation['name']}", name)
            if equation["verdict"] in ("notTried", "noSolution"):
                continue
            for text, key in zip(row[2:], ("adjustedR2", "r2", "residualStandardError", "aicc", "worstResidualPercent", "worstResidualRoshko")):
                expect_rounded(text, equation[key], f"{name}: {key}")
        chosen = next(e for e in series["equations"] if e["verdict"] == "chosen")
        parameters = tables[1][1][1:]
        expect_equal([row[0] for row in parameters], [p["name"] for p in chosen["parameters"]], f"{name}: parameters")
        for row, parameter in zip(parameters, chosen["parameters"]):
            expect_rounded(row[1], parameter["value"], f"{name}: {parameter['name']}")
            expect_rounded(row[2], parameter["standardError"], f"{name}: error of {parameter['name']}")


def page_gives_its_script_the_numbers_of_json(model):
    page = Rows()
    page.feed(report("--html").decode())
    if "data" not in page.scripts:
        print("SKIPPED: the program was built without the page's plot library")
        sys.exit(77)
    for series, data in zip(model["series"], json.loads(page.scripts["data"])):
        sets = {points["key"]: points for points in data["points"]}
        kept = []
        for part in series["raw"]:
            for key, is_cut in (("raw", False), ("cut", True)):
                wanted = [p for p in part["points"] if p["cut"] == is_cut]
                kept += [] if is_cut else wanted
                found = sets.get(f"{key}{part['part']}", {"x": [], "y": []})
                expect_equal(len(found["x"]), len(wanted), f"{series['name']} {key}{part['part']}")
                for x, y, point in zip(found["x"], found["y"], wanted):
                    expect_equal(x, point["roshko"], "roshko", 5e-9)
                    expect_equal(y, point["strouhal"], "strouhal", 5e-9)
        expect("x" in sets["merged"] or sorted((p["roshko"], p["strouhal"]) for p in kept) ==
               sorted((p["roshko"], p["strouhal"]) for p in series["merged"]), "merged points are not what was kept")


def page_of_four_series_is_at_most_200_KB(model):
    size = len(report("--html"))
    expect_equal(len(model["series"]), 4, "series")
    expect(all(series["previous"] for series in model["series"]), "nothing to compare with")
    expect(size <= PAGE_LIMIT, f"{size} bytes")
    print(size, "bytes")


def hash_can_be_made_from_the_raw_points(model):
    lines = {s["name"]: "".join(f"{s['name']}\t{part['part']}\t{p['roshko']:.17g}\t{p['strouhal']:.17g}\n"
                                for part in s["raw"] for p in part["points"]) for s in model["series"]}
    for series in model["series"]:
        expect_equal(series["rawDataSha256"], hashlib.sha256(lines[series["name"]].encode()).hexdigest(), series["name"])
    expect_equal(model["rawDataSha256"], hashlib.sha256("".join(lines.values()).encode()).hexdigest(), "all series")


def report_tells_what_is_stored(model):
    for series in model["series"]:
        stored = json.loads(run("show", CURVES, "--meter", "M1", "--series", series["name"], "--json"))
        pairs = lambda points: [[p["roshko"], p["strouhal"]] for p in points]
        expect_equal(pairs(series["curve"]), stored["curve"], "curve")
        expect_equal(pairs(series["merged"]), stored["merged"], "merged")
        expect_equal([pairs(part["points"]) for part in series["raw"]], [raw for raw in stored["raw"] if raw], "raw")
        expect_equal(series["report"], stored["report"].replace("\r", ""), "report")
        expect_equal(series["settings"]["kept"], True, "settings")


def residuals_and_shifts_are_those_of_the_tables(model):
    def read(curve, x):
        for (a, ya), (b, yb) in zip(curve, curve[1:]):
            if a * (1 - 1e-12) <= x <= b * (1 + 1e-12):
                return ya + (yb - ya) * (x - a) / (b - a)
        return None

    for series in model["series"]:
        curve = [(p["roshko"], p["strouhal"]) for p in series["curve"]]
        for point in series["merged"] + [p for part in series["raw"] for p in part["points"]]:
            y = read(curve, point["roshko"])
            wanted = None if y is None else (point["strouhal"] / y - 1) * 100
            found = point["deviationPercent"]
            expect((found is None) == (wanted is None) and (found is None or abs(found - wanted) < 1e-9), f"{point}: {wanted}")
        stored = json.loads(run("show", CURVES, "--meter", "M1", "--calibration", "0", "--series", series["name"], "--json"))
        for shift in series["previous"]["shifts"]:
            earlier, now = read(stored["curve"], shift["roshko"]), read(curve, shift["roshko"])
            expect(abs(shift["percent"] - (now / earlier - 1) * 100) < 1e-9, f"{shift}")
        expect(len(series["previous"]["shifts"]) > 60, "shifts at the points of both tables")


def report_leaves_the_database_as_it_was(model):
    with open(CURVES, "rb") as file:
        before = file.read()
    for option in ("--html", "--json", "--csv", "--xlsx", "--svg"):
        expect(report(option) == report(option), f"{option} gives another report the second time")
    with open(CURVES, "rb") as file:
        expect(before == file.read(), "the database has changed")


globals()[sys.argv[3]](set_up())
