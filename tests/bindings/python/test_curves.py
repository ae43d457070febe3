# SPDX-License-Identifier: MIT
import numpy as np
import pytest

import pelmora
from conftest import measured, true_curve


@pytest.fixture
def curve(points):
    return pelmora.fit(*points).curve


def test_a_curve_is_its_equation_and_can_be_read_from_its_table(curve):
    x = np.geomspace(*curve.range, 1000).clip(*curve.range)
    assert curve.source == "equation"
    assert np.allclose(curve(x), true_curve(x), rtol=1e-3, atol=0)
    assert np.allclose(curve(curve.table[:, 0]), curve.table[:, 1], rtol=1e-13, atol=0)
    assert np.array_equal(curve(x), curve.eval(x))
    assert np.allclose(curve(x, reading="linear"), np.interp(x, *curve.table.T), rtol=1e-14, atol=0)
    assert np.array_equal(curve(x, reading="linear"), curve.eval(x, reading="linear"))
    log = np.interp(np.log(x), np.log(curve.table[:, 0]), curve.table[:, 1])
    assert np.allclose(curve(x, reading="log"), log, rtol=1e-12, atol=0)
    with pytest.raises(ValueError, match="'linear', 'log' or 'cubic'"):
        curve(x, reading="square")


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


def test_the_derivative_is_the_slope_of_the_curve(curve):
    x = np.geomspace(50, 5000, 9)
    h = 1e-4 * x
    assert np.allclose(curve.derivative(x), (curve(x + h) - curve(x - h)) / (2 * h), rtol=1e-4)
    (x0, y0), (x1, y1) = curve.table[-2:]
    assert curve.derivative(x1 * 2, extrapolate=True) == pytest.approx((y1 - y0) / (x1 - x0), rel=1e-12)


def test_uncertainties_scale_with_k_and_predictions_are_wider(curve):
    x = np.geomspace(50, 5000, 20)
    assert np.allclose(curve.eval_uncertainty(x, k=1) * 2, curve.eval_uncertainty(x))
    assert (curve.eval_uncertainty(x, kind="prediction") > curve.eval_uncertainty(x)).all()
    with pytest.raises(ValueError, match="'confidence', 'prediction' or 'expanded'"):
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


def test_the_expanded_uncertainty_contains_the_stand(series, tmp_path):
    fit, x = series.fit(), np.geomspace(50, 5000, 7)
    bare = series.curve.eval_uncertainty(x, kind="expanded")
    assert np.array_equal(bare, fit.curve.eval_uncertainty(x, kind="expanded")) and (bare > 0).all()
    stand = tmp_path / "stand.ini"
    stand.write_text("[stand]\nname = Stand 3\n[flow]\nstandard = 0.05 %\n")
    series.meter.set_stand_uncertainty(stand)
    assert "Stand 3" in series.meter.stand_uncertainty
    curve = series.curve
    assert np.allclose(curve.eval_uncertainty(x, kind="expanded"), np.hypot(bare, 2 * 0.0005 * curve(x)), rtol=1e-3)
    assert np.allclose(curve.eval_uncertainty(x, k=1, kind="expanded") * 2, curve.eval_uncertainty(x, kind="expanded"))
    assert (curve.eval_uncertainty(x, kind="expanded", reading="linear") >=
            curve.eval_uncertainty(x, kind="expanded")).all()
    stand.write_text("[flow]\nstandard = much\n")
    with pytest.raises(ValueError, match="line 2"):
        series.meter.set_stand_uncertainty(stand)
    series.meter.set_stand_uncertainty(None)
    assert series.meter.stand_uncertainty is None
    assert np.array_equal(series.curve.eval_uncertainty(x, kind="expanded"), bare)


def test_the_flow_is_the_frequency_over_the_strouhal_number(curve):
    frequency = np.array([120.0, 400.0, 2000.0])
    assert np.allclose(curve.flow(frequency, 1.2), frequency / curve(frequency / 1.2), rtol=1e-12)
    warm = curve.flow(400.0, 1.2, temperature=170)
    assert warm == pytest.approx(400 * 1.00288 / curve(400 / 1.2 * 1.00192), rel=1e-12)
    assert np.array_equal(curve.flow(frequency, [1.2, 1.3, 1.4])[1:], curve.flow(frequency[1:], [1.3, 1.4]))
    with pytest.raises(pelmora.OutOfRange, match="reading 1"):
        curve.flow([400.0, 4e6], 1.2)
    with pytest.raises(ValueError, match="viscosity has 2 values for 3"):
        curve.flow(frequency, [1.2, 1.3])
    pandas = pytest.importorskip("pandas")
    series = pandas.Series(frequency, index=["a", "b", "c"])
    assert list(curve.flow(series, 1.2).index) == ["a", "b", "c"]
