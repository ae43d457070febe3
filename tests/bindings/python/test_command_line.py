"""The same numbers as the command line's, to the last digit."""
# SPDX-License-Identifier: MIT
import csv
import json
import os
import subprocess

import numpy as np
import pytest

import pelmora
from conftest import DATA, STAND, measured

PROGRAM = os.environ.get("PELMORA_PROGRAM", "")
pytestmark = pytest.mark.skipif(not PROGRAM, reason="PELMORA_PROGRAM does not name the command line")

#: Columns and conditions of the published series.
PUBLISHED = [("real-pipe-friction-1914.csv", "reynolds", "friction_coefficient"),
             ("real-vortex-shedding-strouhal.csv", "roshko", "strouhal"),
             ("real-flow-meter-error-11pt.csv", "flow_rate", "strouhal_relative")]


def run(*arguments, codes=(0,)):
    ended = subprocess.run([PROGRAM, *map(str, arguments)], capture_output=True, text=True, stdin=subprocess.DEVNULL)
    assert ended.returncode in codes, ended.stderr
    return ended.stdout


def rules():
    """The rules of choice that the command line offers, and the options that ask for them."""
    if "--choose" in run("fit", "--help"):
        return [("trusted", ["--choose", "trusted"]), ("adjusted-r2", ["--choose", "adjusted-r2"])]
    return [("adjusted-r2", [])]


def equal_fits(fit, printed):
    assert fit.chosen == printed["chosen"]
    assert fit.merged.tolist() == printed["merged"]
    assert fit.curve.table.tolist() == printed["curve"]
    assert fit.warnings == [warning["text"] for warning in printed["warnings"]]
    report = printed["report"].replace("\r\n", "\n")
    if not fit._result.series:  # a fit of points in no database has no names
        report = report.replace("Number: M\n", "Number: \n").replace("Name: S\n", "Name: \n")
    assert fit.report == report
    theirs = {equation["name"]: equation for equation in printed["equations"]}
    assert {equation.name for equation in fit.equations} == set(theirs)
    for equation in fit.equations:
        other = theirs[equation.name]
        assert (equation.expression, equation.verdict, equation.reason) == (other["expression"], other["verdict"],
                                                                           other["reason"])
        assert (equation.r2, equation.adjusted_r2, equation.aicc, equation.bic) == (other["r2"], other["adjustedR2"],
                                                                                   other["aicc"], other["bic"])
        assert (equation.worst_percent, equation.worst_roshko) == (other["worstResidualPercent"],
                                                                   other["worstResidualRoshko"])
        assert [list(parameter) for parameter in equation.parameters] == [
            [parameter["name"], parameter["value"], parameter["standardError"]] for parameter in other["parameters"]]


def jobs_by_meter():
    jobs = {}
    with open(DATA / "stand-dual-rotor-jobs.csv", newline="") as file:
        for row in csv.DictReader(file):
            jobs.setdefault(row["meter"], []).append((row["JobRecordID"], f"Fluid {row['JobRecordID']}"))
    return jobs


@pytest.mark.parametrize("meter", jobs_by_meter())
def test_a_calibration_of_each_meter(tmp_path, meter):
    jobs = jobs_by_meter()[meter][:4]
    for choose, options in rules():
        ours, theirs = tmp_path / f"ours-{choose}.db", tmp_path / f"theirs-{choose}.db"
        run("init", theirs)
        pairs = [argument for number, fluid in jobs for argument in ("--job", number, "--fluid", fluid)]
        run("import", theirs, "--stand", STAND, "--meter", "M", *pairs)
        with pelmora.create(ours) as db:
            meter = db.import_runs("M", stand=STAND, runs=jobs).meter
            shown = json.loads(run("show", theirs, "--meter", "M", "--json"))
            assert sorted(meter.series) == sorted(series["name"] for series in shown["series"])
            for name in meter.series:
                ratio = name == "Ratio"
                printed = json.loads(run("fit", theirs, "--meter", "M", "--series", name, "--json", *options,
                                         *(["--ratio"] if ratio else []), codes=(0, 6)))
                try:
                    fit = meter.series[name].fit(choose=choose, ratio=ratio)
                except pelmora.NoFit:
                    assert printed["chosen"] is None
                    continue
                equal_fits(fit, printed)
                equal_values(meter.series[name].curve, theirs, name)


def equal_values(curve, database, series):
    low, high = curve.range
    places = [low, *np.geomspace(low, high, 9)[1:-1].tolist(), high, high * 1.1]
    printed = json.loads(run("evaluate", database, *map(repr, places), "--meter", "M", "--series", series, "--json"))
    values = printed["values"]
    assert curve(places, extrapolate=True).tolist() == [value["strouhal"] for value in values]
    if values[0]["expandedUncertainty"] is not None:
        expanded = curve.eval_uncertainty(places[:-1], kind="expanded")
        assert expanded.tolist() == [value["expandedUncertainty"] for value in values[:-1]]
    for name, kind in (("confidenceHalfWidth", "confidence"), ("predictionHalfWidth", "prediction")):
        if values[0][name] is None:
            continue
        widths = curve._table.half_widths(np.array(places[:-1]), kind == "prediction")
        assert widths.tolist() == [value[name] for value in values[:-1]]


@pytest.mark.parametrize("file, x, y", PUBLISHED)
def test_a_published_series(tmp_path, file, x, y):
    with open(DATA / file, newline="") as lines:
        rows = list(csv.DictReader(lines))
    columns = [float(row[x]) for row in rows], [float(row[y]) for row in rows]
    database = tmp_path / "theirs.db"
    run("init", database)
    run("raw", database, DATA / file, "--x", x, "--y", y, "--meter", "M", "--series", "S", "--register")
    for choose, options in rules():
        printed = json.loads(run("fit", database, "--meter", "M", "--series", "S", "--band", "5", "--json", *options,
                                 codes=(0, 6)))
        try:
            fit = pelmora.fit(*columns, band=5, choose=choose)
        except pelmora.NoFit as error:
            assert printed["chosen"] is None
            assert error.fit.merged.tolist() == printed["merged"]
            continue
        equal_fits(fit, printed)


def test_a_curve_that_the_command_line_stored_reads_the_same(tmp_path):
    database, file = tmp_path / "theirs.db", tmp_path / "points.csv"
    roshko, strouhal = measured()
    file.write_text("Roshko,Strouhal\n" + "".join(f"{x!r},{y!r}\n" for x, y in zip(roshko.tolist(), strouhal.tolist())))
    run("init", database)
    run("raw", database, file, "--meter", "M", "--series", "S", "--register")
    printed = json.loads(run("fit", database, "--meter", "M", "--series", "S", "--json"))
    with pelmora.open(database, mode="r") as db:
        series = db.meter("M").series["S"]
        assert np.array_equal(series.parts[1], np.column_stack([roshko, strouhal]))
        assert series.curve.table.tolist() == printed["curve"] and series.curve.name == printed["chosen"]
        assert series.merged.tolist() == printed["merged"]
        assert {name: [value.value, value.stderr] for name, value in series.curve.params.items()} == {
            parameter["name"]: [parameter["value"], parameter["standardError"]]
            for equation in printed["equations"] if equation["verdict"] == "chosen"
            for parameter in equation["parameters"]}
        equal_values(series.curve, database, "S")
        equal_readings(series.curve, database)


def equal_readings(curve, database):
    """The table as a flow computer reads it, the inverse and the flow in service."""
    def values(*arguments):
        return json.loads(run(*arguments, "--meter", "M", "--series", "S", "--json"))

    places = np.geomspace(*curve.range, 7)[1:-1].tolist()
    for reading in ("linear", "log", "cubic"):
        read = values("evaluate", database, *map(repr, places), "--table", "--read", reading)["values"]
        assert curve(places, reading=reading).tolist() == [value["strouhal"] for value in read]
        assert curve.eval_uncertainty(places, kind="expanded", reading=reading).tolist() == [
            value["expandedUncertainty"] for value in read]
    wanted = curve(places).tolist()
    found = values("evaluate", database, *map(repr, wanted), "--inverse")["values"]
    assert curve.inverse(wanted).tolist() == [value["roshko"] for value in found]
    flow = values("flow", database, "--frequency", "150 Hz", "--viscosity", "1.2", "--temperature", "85")
    assert curve.flow(150.0, 1.2, temperature=85.0) == flow["flow"]
