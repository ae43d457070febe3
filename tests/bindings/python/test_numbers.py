"""Every mistake with numbers is answered with the place and the remedy."""
# SPDX-License-Identifier: MIT
import numpy as np
import pytest

import pelmora
from conftest import measured


def refused(*columns, **others):
    with pytest.raises(ValueError) as caught:
        pelmora.fit(*columns, **others)
    assert isinstance(caught.value, pelmora.BadData) and caught.value.remedy and caught.value.where
    return str(caught.value)


@pytest.mark.parametrize("kind", [list, tuple, np.array, lambda x: np.array(x, dtype=object),
                                  lambda x: np.repeat(x, 2)[::2]])
def test_columns_of_any_kind_are_the_same_points(points, kind):
    assert np.array_equal(pelmora.fit(*map(kind, points)).merged, np.column_stack(points))


def test_integers_and_single_precision_are_numbers():
    x = np.arange(10, 40)
    fit = pelmora.fit(x, (2 + 0.01 * np.log(x)).astype(np.float32))
    assert fit.merged.dtype == np.float64 and fit.merged[0, 0] == 10


def test_nan_is_refused_with_its_place(points):
    roshko, strouhal = points[0], points[1].copy()
    strouhal[[4, 7]] = np.nan
    assert "strouhal is NaN at position 4, and 1 more" in refused(roshko, strouhal)
    strouhal[4] = np.inf
    assert "strouhal is infinite at position 4" in refused(roshko, strouhal)


def test_nan_in_a_series_is_named_by_its_index(points):
    pandas = pytest.importorskip("pandas")
    frame = pandas.DataFrame({"ro": points[0], "st": points[1]}, index=[f"p{i}" for i in range(30)])
    frame.loc["p5", "st"] = np.nan
    message = refused(frame["ro"], frame["st"])
    assert "'p5'" in message and "dropna" in message
    pelmora.fit(*(frame.dropna()[name] for name in ("ro", "st")))


def test_a_wrong_column_is_named(points):
    pandas = pytest.importorskip("pandas")
    frame = pandas.DataFrame({"roshko": points[0], "strouhal": points[1], "note": ["ok"] * 30, "good": [True] * 30})
    assert "'ok'" in refused(frame["roshko"], frame["note"]) and "column" in refused(frame["roshko"], frame["note"])
    assert "truth values" in refused(frame["roshko"], frame["good"])
    assert "turn the texts into numbers" in refused(points[0], np.array(["1.5"] * 30))
    assert "decimal=','" in refused(points[0], ["1,5"] * 30)
    assert "dates" in refused(points[0], np.array(["2026-01-01"] * 30, dtype="datetime64[D]"))
    assert "shape (30, 4)" in refused(frame["roshko"], frame)
    assert "roshko is 1.0; pass one column" in refused(1.0, 2.0)
    assert "roshko is None" in refused(None, points[1])


def test_masked_points_are_missing(points):
    assert "roshko is NaN at position 29" in refused(np.ma.masked_greater(points[0], 5999), points[1])


def test_columns_without_a_curve_are_refused(points):
    assert "roshko is 100 at every point" in refused(np.full(30, 100.0), points[1])
    assert "strouhal is 0 at every point" in refused(points[0], np.zeros(30))


@pytest.mark.parametrize("columns, text", [
    (lambda x, y: (x, np.full(30, 1001)), "strouhal is 1001 at every point; check"),
    (lambda x, y: (x, x), "the same numbers; check"), (lambda x, y: (y, x), "changed places")])
def test_columns_that_are_probably_others_are_fitted_with_a_warning(points, columns, text):
    with pytest.warns(pelmora.PelmoraWarning, match=text) as caught:
        try:
            pelmora.fit(*columns(*points))
        except pelmora.NoFit:
            pass
    assert caught[0].filename == __file__


def test_a_part_of_one_point_is_named(points):
    with pytest.warns(pelmora.PelmoraWarning, match="part 2 has a single point"):
        pelmora.fit(*points, part=[1] * 29 + [2])


def test_a_range_beyond_the_points_says_what_to_pass(points):
    with pytest.raises(pelmora.OutOfRange, match="beyond the points, which") as caught:
        pelmora.fit(*points, min=1)
    assert 'outside="whole" or "extrapolate"' in caught.value.remedy
    assert pelmora.fit(*points, min=1, outside="whole").range == (40, 6000)


def test_columns_can_be_named_of_a_frame(points):
    pandas = pytest.importorskip("pandas")
    frame = pandas.DataFrame({"roshko": points[0], "strouhal": points[1]})
    assert np.array_equal(pelmora.fit("roshko", "strouhal", data=frame).merged, np.column_stack(points))
    with pytest.raises(pelmora.NotFound, match="no column 'strouhl'.*'strouhal'"):
        pelmora.fit("roshko", "strouhl", data=frame)
    with pytest.raises(pelmora.NotFound, match="did you mean 'roshko'"):
        pelmora.fit("ROSHKO", "strouhal", data=frame)
    assert "data=" in refused("roshko", "strouhal")


def test_different_lengths_are_refused(points):
    assert "roshko has 30 values and strouhal 29" in refused(points[0], points[1][1:])


def test_too_few_points_are_refused():
    assert "one point" in refused([1.0], [2.0])
    assert "no points" in refused([], [])


def test_columns_of_two_frames_are_refused(points):
    pandas = pytest.importorskip("pandas")
    roshko, strouhal = map(pandas.Series, points)
    assert "different indexes" in refused(roshko, strouhal[::-1])


def test_a_roshko_number_that_is_not_positive_is_no_fit():
    with pytest.raises(pelmora.NoFit, match="above 0"):
        pelmora.fit([-1.0, 10, 20, 30, 40], [2.0, 2, 2, 2, 2])


def test_the_same_mistakes_with_a_series_store_nothing(db, points):
    meter = db.register("M1")
    for columns, part in (((points[0], points[1] * np.nan), 1), ((points[0], points[1][1:]), 1),
                          (([1.0], [1.0]), 1), (points, 5), (points, 0), (points, "1")):
        with pytest.raises(ValueError):
            meter.add_series("K", *columns, part=part)
    with pytest.raises(ValueError):
        meter.add_series("", *points)
    assert list(meter.series) == []


def test_results_are_views_that_cannot_be_written(points):
    fit = pelmora.fit(*points)
    for view in (fit.merged, fit.curve.table):
        assert view.shape[1] == 2 and view.dtype == np.float64 and view.base is not None
        with pytest.raises(ValueError):
            view[0, 0] = 1
    assert fit.merged.ctypes.data == fit.merged.ctypes.data


def test_points_are_sorted_by_roshko():
    roshko, strouhal = measured()
    order = np.random.default_rng(5).permutation(30)
    assert np.array_equal(pelmora.fit(roshko[order], strouhal[order]).merged, np.column_stack([roshko, strouhal]))


@pytest.mark.parametrize("mistake", [
    lambda db, series: db.meter(1042), lambda db, series: db.register(None), lambda db, series: db.meter("M1", "0"),
    lambda db, series: db.restore("last"), lambda db, series: db.refit(jobs=0), lambda db, series: db.refit(["K"]),
    lambda db, series: db.refit(threshold="small"), lambda db, series: db.prune(keep=-1),
    lambda db, series: series.exclude(part="1", number=3, reason="air"),
    lambda db, series: series.exclude(part=1, number="3", reason="air"),
    lambda db, series: series.exclude(between=(1,), reason="air"),
    lambda db, series: series.exclude(part=1, number=3, reason=7), lambda db, series: series.fit(band="0.3"),
    lambda db, series: series.fit(min="low"), lambda db, series: series.fit(fit_min=float("nan")),
    lambda db, series: series.fit(choose=1), lambda db, series: series.fit(max_order=2.5),
    lambda db, series: series.fit(status="print"), lambda db, series: series.fit(equations=5),
    lambda db, series: series.fit(equations=["a+b*x"]), lambda db, series: series.fit(equations={"line": 5}),
    lambda db, series: series.store("fit"), lambda db, series: series.store(pelmora.fit(*measured())),
    lambda db, series: db.register("M1").add_series("L", *measured()).store(series.fit(store=False)),
    lambda db, series: series.fit().curve.eval_uncertainty(100.0, k=0),
    lambda db, series: series.fit().curve.eval_uncertainty(100.0, kind="expanded", viscosity="thin"),
    lambda db, series: series.fit().curve(100.0, reading=1), lambda db, series: series.fit().curve("100"),
    lambda db, series: series.fit().curve(None), lambda db, series: series.fit().curve.plot(ax=3),
    lambda db, series: series.fit().curve.flow(100.0, "thin"), lambda db, series: series.meter.report(5),
    lambda db, series: series.meter.set_stand_uncertainty(5), lambda db, series: pelmora.open(None),
    lambda db, series: pelmora.open(db.location, wait="long"), lambda db, series: pelmora.to_frame(5),
    lambda db, series: pelmora.fit("x", "y", data=5), lambda db, series: pelmora.equations(5),
    lambda db, series: pelmora.fit(*measured(), part=np.full(30, np.nan))])
def test_an_argument_of_the_wrong_kind_is_refused_with_what_to_pass(db, series, mistake):
    with pytest.raises(pelmora.BadData) as caught:
        mistake(db, series)
    assert caught.value.what and caught.value.where and caught.value.remedy


def test_the_argument_of_a_curve_is_called_by_its_name(points):
    curve = pelmora.fit(*points).curve
    for function, name in ((curve, "roshko"), (curve.derivative, "roshko"), (curve.inverse, "strouhal")):
        with pytest.raises(pelmora.BadData, match=f"^{name} has '100' at position 0"):
            function(["100"])
    with pytest.raises(pelmora.BadData, match="^frequency has '100'"):
        curve.flow(["100"], 1.0)
