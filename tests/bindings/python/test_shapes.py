"""What kind of value each result is, for those who pass it on."""
# SPDX-License-Identifier: MIT
import json

import numpy as np
import pytest

import pelmora


def test_tables_are_lists(calibrated, db):
    meter = calibrated.meter
    series = meter.series["Rotor A"]
    for table in (db.meters(), meter.runs, series.points, series.readings, calibrated.fits["Rotor A"].equations,
                  db.history(), pelmora.equations(), pelmora.detail_fields()):
        assert isinstance(table, list)
    assert isinstance(meter.runs[:1], pelmora.Table) and meter.runs[:1].to_dict() == meter.runs.to_dict()[:1]


def test_a_list_that_was_changed_changes_nothing_else(points):
    fit = pelmora.fit(*points)
    chosen = fit.chosen
    fit.equations.clear()
    assert fit.chosen == chosen and fit.equations[0].name == chosen


def test_columns_of_numbers_are_numbers_without_a_curve(series):
    frame = pytest.importorskip("pandas") and series.points.to_frame()
    assert frame["residual"].dtype == np.float64 and frame["residual"].isna().all()
    assert frame["loo_sigma"].dtype == np.float64 and frame["part"].dtype == np.int64
    empty = pelmora.fit(*(column[:8] for column in series.parts[1].T), choose="adjusted-r2").points.to_frame()
    assert len(empty) == 0 and empty["residual"].dtype == np.float64


def test_everything_becomes_a_frame_a_dictionary_and_json(calibrated, db, points):
    pandas = pytest.importorskip("pandas")
    meter, fit = calibrated.meter, pelmora.fit(*points)
    series = meter.series["Rotor A"]
    change = series.exclude(part=1, number=3, reason="air in the line")
    for value in (db, meter, meter.series, meter.runs, meter.runs[0], series, series.points, series.readings, change,
                  calibrated, calibrated.imported, fit, fit.curve, fit.equations, fit.equations[0], db.history(),
                  db.restore(db.history()[0]), db.refit(jobs=1), pelmora.equations()):
        frame = value.to_frame()
        assert isinstance(frame, pandas.DataFrame) and len(frame) > 0, value
        assert isinstance(value.to_dict(), (dict, list)) and json.loads(value.to_json()), value
    assert db.to_frame().equals(pelmora.to_frame(db.meters()))
    assert list(meter.series.to_frame()["name"]) == list(meter.series)
    assert list(meter.series.to_frame()["points"]) == [48] * 4


def test_what_a_notebook_shows_of_a_calibration_is_its_plot(calibrated):
    for value in (calibrated, calibrated.meter, calibrated.meter.series["Ratio"], calibrated.fits["Ratio"],
                  calibrated.fits["Ratio"].curve):
        assert "<svg" in value._repr_html_()
    for value in (calibrated.imported, calibrated.imported.runs, calibrated.imported.runs[0]):
        assert "<table" in value._repr_html_()
