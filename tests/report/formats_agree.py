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
import math
import os
import re
import subprocess
import sys
import tempfile
import xml.etree.ElementTree as ElementTree
import zipfile

from drawn_panels import MARKS, Panel, compare_panels
from expectations import expect, expect_equal, expect_rounded
from page_tables import Rows

PROGRAM, DATA = sys.argv[1], sys.argv[2]
FOLDER = tempfile.TemporaryDirectory()
CURVES = os.path.join(FOLDER.name, "curves.db")
PAGE_LIMIT = 200 * 1000
MOST_REJECTED = 5  # equations in the page's ranking, so that it stays readable
SHEET_DIGITS = 1e-15  # a workbook keeps 16 significant digits


STAND = """[stand]
name = Stand 3
cmc = 0.05 %

[flow]
expanded = 0.04 %
k = 2

[viscosity]
half-width = 0.5 %
distribution = rectangular

[reproducibility]
standard = 0.01 %
type = A
degrees of freedom = 14
"""


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
    statement = os.path.join(FOLDER.name, "stand.ini")
    with open(statement, "w", encoding="utf-8") as file:
        file.write(STAND)
    run("stand", "uncertainty", CURVES, statement, "--meter", "M1")
    return json.loads(report("--json"))


def tables_of(model):
    """The flat tables that CSV and workbook must hold, made from the JSON alone."""
    def pick(entry, names):
        return {name: entry[name] for name in names}

    meter = model["meter"]
    tables = {name: [] for name in ("calibration", "setups", "series", "points", "curve", "equations", "parameters",
                                    "warnings", "shifts", "reports", "results", "flows", "merged", "details", "history", "uncertainty", "budget", "signatures")}
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
        statement = series["uncertainty"]
        for of in ("curve", "points"):
            if statement[of]:
                tables["uncertainty"].append({"series": name, "of": of, **pick(
                    statement, ("stated", "text", "stand", "containsStand", "cmcPercent")), **statement[of]})
        for place in statement["budgets"]:
            tables["budget"] += [{"series": name, **pick(place, ("roshko", "strouhal")), **row, "label": row["label"] or None,
                                  "unit": row["unit"] or None} for row in place["budget"]]
        for equation in series["equations"]:
            tables["equations"].append({"series": name, "equation": equation["name"], "reason": equation["reason"] or None, **pick(
                equation, ("rank", "expression", "verdict", "observations", "r2", "adjustedR2", "residualStandardError",
                           "residualSumOfSquares", "aicc", "bic", "worstResidualPercent", "worstResidualRoshko"))})
            tables["parameters"] += [{"series": name, "equation": equation["name"], "parameter": parameter["name"],
                                      "value": parameter["value"], "standardError": parameter["standardError"]}
                                     for parameter in equation["parameters"]]
        tables["warnings"] += [{"series": name, **warning} for warning in series["warnings"]]
        tables["signatures"] += [{"series": name, **entry, "remark": entry["remark"] or None} for entry in series["signatures"]]
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


def expect_stated(cells, point, span, name):
    """U of the page is that of the JSON, with both digits; k stands beside it or is the same for all."""
    if point["expandedUncertainty"] is None:
        expect_equal(cells["U"], "-", f"{name}: U")
        return
    expect_equal(float(cells["U"]), point["expandedUncertainty"], f"{name}: U")
    digits = re.sub(r"[^0-9]", "", cells["U"].split("e")[0]).lstrip("0")
    expect(len(digits) == 2 or float(cells["U"]) >= 100, f"{name}: U {cells['U']} has not two digits")
    factor = cells.get("k", f"{span['lowestCoverageFactor']:.2f}")
    expect_rounded(factor, point["coverageFactor"], f"{name}: k")


def expect_budget(rows, budgets, name):
    for k, place in enumerate(budgets):
        column = [row[5 + k] for row in rows[1:]]
        expect_rounded(rows[0][5 + k].removeprefix("% at Roshko "), place["roshko"], f"{name}: place of a budget")
        labels = [row["cause"] + (": " + row["label"] if row["label"] else "") for row in place["budget"]]
        shown = {row[0]: row[5 + k] for row in rows[1:-4]}
        expect_equal({label for label, text in shown.items() if text != "-"}, set(labels), f"{name}: causes")
        for label, row in zip(labels, place["budget"]):
            expect_rounded(shown[label], 100 * abs(row["contribution"] / place["strouhal"]), f"{name}: {label}")
        expect_rounded(column[-4], 100 * place["standardUncertainty"] / place["strouhal"], f"{name}: combined")
        expect_rounded(column[-2], place["coverageFactor"], f"{name}: k of a budget")
        expect_stated_of(float(column[-1].removesuffix(" (CMC)")), place["expandedUncertaintyPercent"], f"{name}: U of a budget")


def expect_stated_of(stated, full, what):
    """Two significant digits, and at most 1 % below the full number."""
    last = 10.0 ** (math.floor(math.log10(stated * (1 + 1e-9))) - 1)
    expect(abs(stated / last - round(stated / last)) < 1e-6, f"{what}: {stated} has more than two digits")
    expect(full * 0.99 <= stated < full + last, f"{what}: {stated} is not {full}")


def uncertainty_is_that_of_evaluate(model):
    cmc = 0.05
    for series in model["series"]:
        curve = series["curve"]
        found = json.loads(run("evaluate", CURVES, "--meter", "M1", "--series", series["name"], "--table", "--json",
                               *[repr(point["roshko"]) for point in curve]))["values"]
        for point, value in zip(curve, found):
            expect_stated_of(point["expandedUncertainty"], value["expandedUncertainty"], "U")
            expect_stated_of(point["expandedUncertaintyPercent"], value["expandedUncertaintyPercent"], "U, %")
            for key in ("coverageFactor", "probability"):
                expect_equal(point[key], value[key], key)
            expect(point["expandedUncertainty"] >= cmc / 100 * point["strouhal"] * (1 - 1e-9), f"U is below the CMC at {point}")
        used = [point for point in series["rawPoints"] if point["state"] == "used"]
        expect(all(point["expandedUncertaintyPercent"] >= cmc for point in used), "U of a point is below the CMC")
        expect(all(point["expandedUncertainty"] is None for point in series["rawPoints"] if point["state"] != "used"),
               "U of a point that is not used")


def page_shows_the_numbers_of_json(model):
    page = Rows()
    page.feed(report("--html").decode())
    expect_equal(len(page.sections) - 1, len(model["series"]), "sections")
    for series, tables in zip(model["series"], page.sections[1:]):
        name = series["name"]
        curve = [(rows[0], row) for kind, rows in tables if "predicted" in kind for row in rows[1:]]
        expect_equal(len(curve), len(series["curve"]), f"{name}: predicted table")
        for (titles, row), point in zip(curve, series["curve"]):
            for text, key in zip((row[1], row[2], row[-2], row[-1]),
                                 ("roshko", "strouhal", "confidenceHalfWidth", "predictionHalfWidth")):
                expect_rounded(text, point[key], f"{name}: {key}")
            expect_stated(dict(zip(titles, row)), point, series["uncertainty"]["curve"], name)
        measured = [(rows[0], row) for kind, rows in tables if "measured" in kind for row in rows[1:] if row[0]]  # not the notes
        points = series["rawPoints"]
        expect_equal(len(measured), len(points), f"{name}: measured points")
        for (titles, row), point in zip(measured, points):
            expect_equal([row[0], row[-1]], [str(point["number"]), point["state"]], f"{name}: number and state")
            reading = point["reading"]
            wanted = [reading[key] for key in ("frequency", "flow", "temperature", "viscosity")]
            for text, value in zip(row[1:7] + [row[-2]], wanted + [point["roshko"], point["strouhal"], point["deviationPercent"]]):
                expect_rounded(text, value, f"{name}: measured point {point['number']}")
            expect_stated(dict(zip(titles, row)), point, series["uncertainty"]["points"], name)
        expect_budget(next(rows for kind, rows in tables if "budget" in kind), series["uncertainty"]["budgets"], name)
        tables = [table for table in tables if not any(kind in table[0] for kind in ("measured", "predicted", "budget"))]
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
        points = series["rawPoints"]
        kept = [point for point in points if point["state"] not in ("cut", "excluded")]
        for part in {point["part"] for point in points}:
            for key, states in MARKS.items():
                wanted = [point for point in points if point["part"] == part and point["state"] in states]
                found = sets.get(f"{key}{part}", {"x": [], "y": []})
                expect_equal(len(found["x"]), len(wanted), f"{series['name']} {key}{part}")
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
