"""Runs of a stand, and raw points from elsewhere."""
# SPDX-License-Identifier: MIT
import csv
import warnings

import numpy as np
import pytest

import pelmora
from conftest import STAND, measured

RUNS = [("1001", "Mineral spirit"), ("1002", "Glycol mix")]


def test_runs_of_a_stand_are_imported_and_derived(db):
    imported = db.import_runs("M1", stand=STAND, runs=RUNS, operator="Ada", stand_number=3)
    assert imported.series == {"Rotor A": (24, 24, 0, 0), "Rotor B": (24, 24, 0, 0), "Rotor Sum": (24, 24, 0, 0),
                               "Ratio": (24, 24, 0, 0)}
    assert [(run.fluid, run.jobs, run.operator, run.stand_number, run.points) for run in db.meter("M1").runs] == [
        ("Mineral spirit", ["1001"], "Ada", 3, 24), ("Glycol mix", ["1002"], "Ada", 3, 24)]
    assert sorted(db.meter("M1").series) == ["Ratio", "Rotor A", "Rotor B", "Rotor Sum"]


def test_a_known_run_keeps_its_operator_unless_it_is_updated(db):
    db.import_runs("M1", stand=STAND, runs=RUNS, operator="Ada", date="2025-03-04")
    again = db.import_runs("M1", stand=STAND, runs=RUNS[:1], operator="Bob")
    assert again.kept_entries == [("Mineral spirit", "operator", "Ada", "Bob")]
    updated = db.import_runs("M1", stand=STAND, runs=RUNS[:1], operator="Bob", update=True)
    assert updated.kept_entries == []
    assert [(run.operator, "2025" in run.date) for run in updated.runs] == [("Bob", True), ("Ada", True)]


def test_an_unknown_job_is_not_found_and_nothing_is_stored(db):
    with pytest.raises(pelmora.NotFound, match="9999"):
        db.import_runs("M1", stand=STAND, runs=[("9999", "Water")])
    assert db.meters() == []


@pytest.mark.parametrize("runs, message", [
    ([], "no runs"), (["1001"], "pair of job and fluid"), ([("1001", "Water"), ("1002", "water")], "(?i)water")])
def test_runs_that_cannot_be_meant_are_refused(db, runs, message):
    with pytest.raises(ValueError, match=message):
        db.import_runs("M1", stand=STAND, runs=runs)


def written(path, separator, decimal, rows=None):
    """The stand's export as another program writes it."""
    if rows is None:
        with open(STAND, newline="") as file:
            rows = list(csv.reader(file))
    path.write_text("".join(separator.join(row).replace(".", decimal) + "\n" for row in rows))
    return path


def numbers(db):
    return {name: series.parts for name, series in db.meter("M1").series.items()}


@pytest.mark.parametrize("settings", [{}, {"separator": ";"}, {"decimal": ","}, {"separator": ";", "decimal": ","}])
def test_a_text_with_semicolons_and_decimal_commas_is_the_same_stand(db, tmp_path, settings):
    imported = db.import_runs("M1", stand=written(tmp_path / "stand.csv", ";", ","), runs=RUNS, **settings)
    assert "decimal comma" in imported.recognised and "semicolon" in imported.recognised
    with pelmora.create(tmp_path / "other.db") as other:
        assert other.import_runs("M1", stand=STAND, runs=RUNS).recognised == ""
        for name, parts in numbers(other).items():
            assert {part: array.tolist() for part, array in numbers(db)[name].items()} == {
                part: array.tolist() for part, array in parts.items()}


def test_a_text_that_can_be_read_in_two_ways_is_refused_until_the_caller_decides(db, tmp_path):
    names = ["JobRecordID", "V1", "V2", "V3", "V4", "V5", "V12"]
    rows = [["7", f"{200 + 20 * i}.125", "1.125", f"{100 + 10 * i}.125", "100.125", "1.125", "70.125"] for i in range(4)]
    stand = written(tmp_path / "stand.csv", ";", ".", [names, *rows])
    with pytest.raises(pelmora.BadData, match='state the decimal sign: decimal="." or ","'):
        db.import_runs("M1", stand=stand, runs=[("7", "Water")])
    assert db.meters() == []
    assert db.import_runs("M1", stand=stand, runs={"7": "Water"}, decimal=".").series["Rotor A"][0] == 4


def test_a_calibration_passes_on_how_the_text_is_to_be_read(db, tmp_path):
    stand = written(tmp_path / "stand.csv", ";", ",")
    assert db.calibrate("M1", stand=stand, runs=RUNS, separator=";", decimal=",").failed == {}
    with pytest.raises(pelmora.BadData, match="decimal sign"):
        db.calibrate("M1", stand=stand, runs=RUNS, decimal=".")


@pytest.mark.parametrize("settings, message", [
    ({"stand_number": 32768}, "0 to 32767"), ({"position": "2"}, "whole number"), ({"separator": "comma"}, "separator"),
    ({"separator": "1"}, "separator"), ({"decimal": ";"}, "decimal"), ({"date": "yesterday"}, "2026-11-21"),
    ({"operator": 5}, "'5'"), ({"stand": 5}, "not a path"), ({"runs": 5}, "job and fluid"), ({"serial": 7}, "'7'"),
    ({"runs": [5]}, "pair of job and fluid")])
def test_import_settings_that_cannot_be_meant_are_refused(db, settings, message):
    with pytest.raises(ValueError, match=message) as caught:
        db.import_runs(**{"serial": "M1", "stand": STAND, "runs": RUNS, **settings})
    assert isinstance(caught.value, pelmora.BadData) and caught.value.remedy
    assert db.meters() == []


def cautions(function):
    """The texts of the warnings, each of which names this file as its place."""
    with warnings.catch_warnings(record=True) as caught:
        warnings.simplefilter("always")
        function()
    assert all(one.category is pelmora.PelmoraWarning and one.filename == __file__ for one in caught)
    return [str(one.message) for one in caught]


def test_points_far_from_the_others_are_stored_with_a_warning(db):
    roshko, strouhal = measured()
    meter = db.register("M1")
    assert cautions(lambda: meter.add_series("K", roshko, strouhal)) == []
    one, = cautions(lambda: meter.add_series("far", np.r_[roshko, 6000e5], np.r_[strouhal, 2.5]))
    assert "position 30" in one and "viscosity" in one
    part, = cautions(lambda: meter.add_series("K", roshko * 1e6, strouhal, part=2))
    assert "part 2" in part and "1e+06 times" in part and "viscosity" in part
    assert len(meter.series["far"].parts[1]) == 31 and len(meter.series["K"].parts[2]) == 30


def test_a_far_point_of_a_frame_is_named_by_its_index(db):
    pandas = pytest.importorskip("pandas")
    roshko, strouhal = measured()
    frame = pandas.DataFrame({"ro": roshko, "st": strouhal}, index=[f"p{i}" for i in range(30)])
    frame.loc["p7", "ro"] *= 1e7
    text, = cautions(lambda: db.register("M1").add_series("K", "ro", "st", data=frame))
    assert "'p7'" in text


def test_other_points_end_an_exclusion_with_a_warning(series, points):
    series.exclude(part=1, number=3, reason="air in the line")
    assert cautions(lambda: series.meter.add_series("K", *points)) == []  # the same points: it stays
    text, = cautions(lambda: series.meter.add_series("K", points[0], points[1] * 1.01))
    assert "point 3 of part 1" in text and "air in the line" in text


def test_a_run_far_from_the_others_is_imported_with_a_warning(db, tmp_path):
    with open(STAND, newline="") as file:
        head, *rows = csv.reader(file)
    viscosity = head.index("V5")  # of the second run, in m2/s rather than cSt
    for row in rows:
        if row[0] == "1002":
            row[viscosity] = repr(float(row[viscosity]) * 1e-6)
    stand = written(tmp_path / "stand.csv", ",", ".", [head, *rows])
    texts = cautions(lambda: db.import_runs("M1", stand=stand, runs=RUNS))
    assert any("job 1002" in text and "viscosity" in text for text in texts)


def test_points_of_a_stand_have_its_readings(db, points):
    db.set_laboratory(nominal_flow_column="V14")
    meter = db.import_runs("M1", stand=STAND, runs=RUNS).meter
    with open(STAND, newline="") as file:
        rows = [row for row in csv.DictReader(file) if row["JobRecordID"] in ("1001", "1002")]
    series = meter.series["Rotor A"]
    assert len(series.readings) == len(series.points) == len(rows) == 48
    numbers_of = {(point.roshko, point.strouhal): point for point in series.points}
    assert len(numbers_of) == 48
    flows = sorted(float(row["V14"]) for row in rows)
    assert sorted(reading.nominal_flow for reading in series.readings) == flows
    for point, reading in zip(series.points, series.readings):
        assert point.reading == reading and (point.part, point.number) == (reading.part, reading.number)
        assert reading.frequency / reading.flow == pytest.approx(point.strouhal, rel=0.01)  # but for expansion
        assert reading.frequency / reading.viscosity == pytest.approx(point.roshko, rel=0.01)
    meter.add_series("K", *points)
    assert len(meter.series["K"].readings) == 0 and all(point.reading is None for point in meter.series["K"].points)
    frame = pytest.importorskip("pandas") and series.readings.to_frame()
    assert list(frame.columns) == ["part", "number", "frequency", "flow", "viscosity", "temperature", "nominal_flow"]
    assert len(series.to_frame().merge(frame, on=["part", "number"])) == 48
