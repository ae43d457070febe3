# SPDX-License-Identifier: MIT
import numpy as np
import pytest

import pelmora

COLUMNS = ["part", "number", "job", "roshko", "strouhal", "residual", "loo_sigma", "state", "reason"]


def states(series):
    return {(point.part, point.number): point.state for point in series.points if point.state == "excluded"}


def test_points_are_listed_with_their_residuals(series, points):
    assert [(point.part, point.number) for point in series.points] == [(1, i) for i in range(1, 31)]
    assert all(point.residual is None for point in series.points)
    curve = series.fit().curve
    for point, roshko, strouhal in zip(series.points, *points):
        assert (point.roshko, point.strouhal, point.state, point.reason) == (roshko, strouhal, "used", "")
        assert point.residual == pytest.approx((strouhal / curve(roshko, reading="linear") - 1) * 100, abs=1e-9)
    frame = pytest.importorskip("pandas") and series.points.to_frame()
    assert list(frame.columns) == COLUMNS and len(frame) == 30


def test_points_of_a_stand_know_their_job_and_fluid(calibrated):
    points = calibrated.meter.series["Rotor A"].points
    assert {(point.part, point.job, point.fluid) for point in points} == {(1, "1001", "Mineral spirit"),
                                                                          (2, "1002", "Glycol mix")}


def test_an_excluded_point_is_left_out_until_it_is_included(series, points):
    before = series.fit().curve
    change = series.exclude(part=1, number=3, reason="air in the line")
    assert [(point.part, point.number, point.roshko) for point in change.points] == [(1, 3, points[0][2])]
    point = series.points[2]
    assert (point.state, point.reason, point.user) == ("excluded", "air in the line", "Ada")
    assert len(series.parts[1]) == 29 and series.curve.stale
    fit = series.fit()
    assert points[0][2] not in fit.merged[:, 0] and not series.curve.stale
    series.include(part=1, number=3)
    assert states(series) == {} and np.array_equal(series.fit().curve.table, before.table)


def test_points_are_selected_by_number_part_and_range(series):
    series.exclude(part=1, number=[1, 2], reason="warming up")
    series.exclude(below=60, reason="below the bearing's range")
    series.exclude(above=5000, reason="cavitation")
    series.exclude(between=(1000, 1200), reason="resonance")
    excluded = [point for point in series.points if point.state == "excluded"]
    assert {point.reason for point in excluded} == {"warming up", "below the bearing's range", "cavitation", "resonance"}
    assert all(point.roshko < 60 or point.roshko > 5000 or 1000 <= point.roshko <= 1200 for point in excluded)
    series.include(part=1)
    assert states(series) == {}


@pytest.mark.parametrize("selection, reason", [
    ({"part": 1, "number": 99}, "none"), ({"part": 7, "number": 1}, "none"), ({"number": 3}, "no part"),
    ({}, "nothing selected"), ({"part": 1, "number": 3}, ""), ({"part": 1, "number": 3}, "  ")])
def test_a_selection_of_no_point_and_an_empty_reason_are_refused(series, selection, reason):
    with pytest.raises(ValueError) as caught:
        series.exclude(**selection, reason=reason)
    assert isinstance(caught.value, pelmora.BadData)
    assert states(series) == {}


def test_an_exclusion_can_take_its_derived_series_along(calibrated):
    meter = calibrated.meter
    change = meter.series["Rotor A"].exclude(part=1, number=3, reason="air")
    assert "Rotor Sum" in change.same_readings and states(meter.series["Rotor Sum"]) == {}
    meter.series["Rotor A"].include(part=1, number=3)
    meter.series["Rotor A"].exclude(part=1, number=3, reason="air", derived=True)
    for name in ("Rotor A", "Rotor Sum", "Ratio"):
        assert states(meter.series[name])== {(1, 3): "excluded"}
    assert states(meter.series["Rotor B"]) == {}


def test_an_exclusion_is_in_the_history_and_comes_back(series, db):
    series.exclude(part=1, number=3, reason="air")
    db.restore(db.history()[0])
    assert states(series) == {}


def test_another_part_does_not_touch_the_first(series, points):
    series.meter.add_series("K", points[0] * 2, points[1], part=3)
    assert {part: len(array) for part, array in series.parts.items()} == {1: 30, 3: 30}
    assert np.array_equal(series.parts[1], np.column_stack(points))
