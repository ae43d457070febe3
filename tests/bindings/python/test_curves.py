# SPDX-License-Identifier: MIT
import numpy as np
import pytest

import pelmora
from conftest import measured


@pytest.fixture
def curve(points):
    return pelmora.fit(*points).curve


def test_a_curve_is_its_table_read_linearly(curve):
    x = np.geomspace(*curve.range, 1000).clip(*curve.range)
    assert np.allclose(curve(x), np.interp(x, *curve.table.T), rtol=1e-14, atol=0)
    assert np.array_equal(curve(curve.table[:, 0]), curve.table[:, 1])
    assert np.array_equal(curve(x), curve.eval(x))


def test_what_goes_in_comes_out(curve):
    assert type(curve(100.0)) is float and type(curve(100)) is float and type(curve(np.float64(100))) is float
    assert curve([100.0, 200.0]).tolist() == [curve(100.0), curve(200.0)]
    assert curve(np.full((2, 3), 100.0)).shape == (2, 3)
    assert curve([]).shape == (0,)


def test_a_series_keeps_its_index(curve):
    pandas = pytest.importorskip("pandas")
    x = pandas.Series([100.0, 200.0], index=["low", "high"], name="flow")
    for result, name in ((curve(x), "strouhal"), (curve.eval_uncertainty(x), "confidence"),
                         (curve.derivative(x), "derivative"), (curve.inverse(curve(x)), "roshko")):
        assert isinstance(result, pandas.Series) and list(result.index) == ["low", "high"] and result.name == name
    assert curve.inverse(curve(x)).tolist() == pytest.approx([100.0, 200.0])


@pytest.mark.parametrize("at", [39.0, 6001.0, float("inf"), [100.0, 10.0]])
def test_outside_the_range_is_an_error_that_names_the_range(curve, at):
    with pytest.raises(ValueError, match="40 to 6000.*extrapolate=True") as caught:
        curve(at)
    assert isinstance(caught.value, pelmora.OutOfRange)


def test_beyond_the_ends_the_outermost_line_goes_on(curve):
    (x0, y0), (x1, y1) = curve.table[-2:]
    assert curve(9000.0, extrapolate=True) == pytest.approx(y1 + (y1 - y0) / (x1 - x0) * (9000 - x1))


def test_ends_that_differ_by_rounding_are_inside(curve):
    low, high = curve.range
    assert curve(np.nextafter(low, 0)) == curve(low) and curve(np.nextafter(high, 1e9)) == curve(high)


def test_a_missing_value_is_refused_with_its_place(curve):
    with pytest.raises(ValueError, match="number 1 .*NaN.*drop"):
        curve([100.0, float("nan")])
    with pytest.raises(ValueError, match="not a number|texts"):
        curve(["100"])


def test_the_inverse_undoes_the_curve(curve):
    x = np.geomspace(50, 5000, 40)
    assert np.allclose(curve.inverse(curve(x)), x, rtol=1e-9)


def test_the_inverse_of_a_curve_that_turns_names_where():
    x = np.geomspace(10, 1000, 30)
    curve = pelmora.fit(x, 2 + 0.1 * np.log10(x / 100) ** 2).curve
    with pytest.raises(pelmora.BadData, match="turns"):
        curve.inverse(2.05)


def test_a_strouhal_that_is_not_reached_is_out_of_range(curve):
    below = curve.table[:, 1].min() * 0.99
    with pytest.raises(pelmora.OutOfRange):
        curve.inverse(below)
    assert curve(curve.inverse(below, extrapolate=True), extrapolate=True) == pytest.approx(below)


def test_the_derivative_is_the_slope_of_the_table(curve):
    x, y = curve.table.T
    middle = (x[1:] + x[:-1]) / 2
    assert np.allclose(curve.derivative(middle), np.diff(y) / np.diff(x), rtol=1e-12)
    h = 1e-4
    assert curve.derivative(100.0) == pytest.approx((curve(100 + h) - curve(100 - h)) / (2 * h), rel=1e-6)
    assert curve.derivative(x[-1]) == pytest.approx((y[-1] - y[-2]) / (x[-1] - x[-2]), rel=1e-12)


def test_uncertainties_scale_with_k_and_predictions_are_wider(curve):
    x = np.geomspace(50, 5000, 20)
    assert np.allclose(curve.eval_uncertainty(x, k=1) * 2, curve.eval_uncertainty(x))
    assert (curve.eval_uncertainty(x, kind="prediction") > curve.eval_uncertainty(x)).all()
    with pytest.raises(ValueError, match="'confidence' or 'prediction'"):
        curve.eval_uncertainty(x, kind="other")


def test_a_stored_curve_knows_what_its_fit_knew(series):
    fit, x = series.fit(), np.geomspace(50, 5000, 20)
    stored = series.curve
    assert stored.name == fit.chosen and stored.expression == fit.expression
    assert stored.params == fit.params and np.array_equal(stored.covar, fit.covar)
    assert np.array_equal(stored.eval_uncertainty(x), fit.curve.eval_uncertainty(x))
    assert not stored.stale and "K" in repr(stored)
    assert series.settings["choose"] == "trusted" and series.settings["band"] == 0.3


def test_a_curve_outlives_a_change_and_the_new_one_is_stale(series, points):
    before = series.fit().curve
    table = before.table.copy()
    series.meter.add_series("K", points[0], points[1] * 1.001)
    assert np.array_equal(before.table, table) and not before.stale
    now = series.curve
    assert now.stale and np.array_equal(now.table, table)
    with pytest.raises(pelmora.NotFound, match="fit the series again"):
        now.params
    with pytest.raises(pelmora.NotFound, match="fit the series again"):
        now.eval_uncertainty(100.0)
    series.fit()
    assert not series.curve.stale


def test_the_reference_curve_has_an_uncertainty_and_no_covariance():
    fit = pelmora.fit(*measured(), only="Reference curve")
    assert fit.chosen == "Reference curve" and fit.covar.shape == (0, 0)
    assert (fit.curve.eval_uncertainty([50.0, 500.0]) > 0).all()


def test_a_curve_becomes_a_frame_a_dictionary_and_json(curve):
    pytest.importorskip("pandas")
    assert np.array_equal(curve.to_frame()[["roshko", "strouhal"]].to_numpy(), curve.table)
    assert curve.to_dict()["range"] == curve.range and '"table"' in curve.to_json()
