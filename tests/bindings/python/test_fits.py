# SPDX-License-Identifier: MIT
import numpy as np
import pytest

import pelmora
from conftest import measured, true_curve


@pytest.mark.parametrize("choose", ["trusted", "adjusted-r2"])
def test_a_fit_finds_the_curve_behind_the_noise(points, choose):
    fit = pelmora.fit(*points, choose=choose)
    x = np.geomspace(*fit.curve.range, 300)
    assert np.abs(fit.curve(x) / true_curve(x) - 1).max() < 0.002
    assert fit.chosen == fit.equations[0].name == fit.curve.name
    assert fit.equations[0].verdict == "chosen"
    assert [equation.rank for equation in fit.equations] == list(range(1, len(fit.equations) + 1))


def test_the_same_fit_with_and_without_a_database(series, points):
    stored, free = series.fit(), pelmora.fit(*points)
    assert np.array_equal(stored.curve.table, free.curve.table)
    assert stored.equations == free.equations
    assert np.array_equal(series.curve.table, free.curve.table)


def test_a_fit_can_be_kept_from_the_database(series):
    fit = series.fit(store=False)
    with pytest.raises(pelmora.NotFound, match="no stored curve"):
        series.curve
    assert series.store(fit) == 0
    assert series.curve.name == fit.chosen


def test_a_fit_of_points_that_changed_is_not_stored(series, points):
    fit = series.fit(store=False)
    series.meter.add_series("K", points[0], points[1] * 1.001)
    with pytest.raises(pelmora.Changed, match="fit it again"):
        series.store(fit)


def test_points_without_a_smooth_curve_are_no_fit_that_says_what_to_do():
    roshko = np.geomspace(10, 1000, 20)
    strouhal = np.where(np.arange(20) % 2, 1.0, 3.0)
    with pytest.raises(pelmora.NoFit) as caught:
        pelmora.fit(roshko, strouhal, choose="adjusted-r2")
    error = caught.value
    assert isinstance(error, RuntimeError) and error.what and error.remedy
    assert not error.fit.accepted and error.fit.chosen == "" and len(error.fit.equations) > 3
    assert "No curve" in error.fit.fit_report()
    with pytest.raises(pelmora.NoFit):
        error.fit.curve


def test_nothing_is_stored_where_nothing_fits(db):
    series = db.register("M1").add_series("K", [10.0, 20, 30], [1.0, 9.0, 1.0])
    with pytest.raises(pelmora.NoFit) as caught:
        series.fit()
    assert "3 distinct flows" in str(caught.value)
    with pytest.raises(pelmora.NotFound):
        series.curve


def test_lmfit_names_are_where_its_users_look(points):
    fit = pelmora.fit(*points, choose="adjusted-r2")
    names = list(fit.params)
    assert fit.covar.shape == (len(names), len(names))
    for row, name in enumerate(names):
        parameter = fit.params[name]
        assert parameter.stderr == pytest.approx(np.sqrt(fit.covar[row, row]), rel=1e-6)
        assert parameter.value == float(parameter)
    assert np.allclose(fit.best_fit + fit.residual, fit.merged[:, 1], rtol=0, atol=1e-15)
    assert fit.eval(100.0) == fit.curve(100.0)
    assert fit.eval_uncertainty(100.0, k=3) == pytest.approx(1.5 * fit.eval_uncertainty(100.0))
    for text in ("[[Curve]]", "[[Parameters]]", "+/-", fit.chosen, fit.expression):
        assert text in fit.fit_report()


def test_parameters_are_those_of_a_straight_line():
    # y = 1 + 2 ln x with residuals +-0.01: slope, intercept and errors from the textbook's sums.
    x = np.exp(np.arange(1.0, 9.0))
    y = 1 + 2 * np.log(x) + 0.01 * np.array([1, -1] * 4)
    fit = pelmora.fit(x, y, equations={"line": "a+b*ln(x)"}, choose="adjusted-r2", band=5)
    z = np.log(x)
    b = ((z - z.mean()) * y).sum() / ((z - z.mean()) ** 2).sum()
    a = y.mean() - b * z.mean()
    s2 = ((y - a - b * z) ** 2).sum() / 6
    assert fit.params["b"] == pytest.approx(b, rel=1e-12)
    assert fit.params["a"] == pytest.approx(a, rel=1e-12)
    assert fit.params["b"].stderr == pytest.approx(np.sqrt(s2 / ((z - z.mean()) ** 2).sum()), rel=1e-9)
    # Standard error of the line at its ends, which are points of the table.
    half = np.sqrt(s2 * (1 / 8 + (z[[0, -1]] - z.mean()) ** 2 / ((z - z.mean()) ** 2).sum()))
    assert fit.curve.eval_uncertainty(x[[0, -1]], k=1) == pytest.approx(half, rel=1e-7)
    assert fit.curve.eval_uncertainty(x[[0, -1]], k=1, kind="prediction") == pytest.approx(np.hypot(half, np.sqrt(s2)),
                                                                                          rel=1e-7)


def test_parts_are_merged_and_what_contradicts_is_cut():
    # Two fluids; the last points of the first run are off by 1 %.
    first_x, first_y = measured(20, 40, 900, noise=1e-5)
    second_x, second_y = measured(20, 300, 6000, noise=1e-5, seed=2)
    first_y[-3:] *= 1.01
    x, y = np.r_[first_x, second_x], np.r_[first_y, second_y]
    fit = pelmora.fit(x, y, part=np.r_[np.ones(20, int), np.full(20, 2)])
    assert len(fit.merged) + len(fit.cut) == 40
    kept, cut = ({tuple(row) for row in points} for points in (fit.merged, fit.cut))
    assert kept | cut == set(zip(x, y)) and not kept & cut
    assert len(cut) >= 3
    assert len(pelmora.fit(x, y, part=["spirit"] * 20 + ["glycol"] * 20, cut_overlap=False, band=2).cut) == 0


def test_parts_that_do_not_match_are_refused(points):
    with pytest.raises(ValueError, match="part has 3 values for 30 points"):
        pelmora.fit(*points, part=[1, 1, 2])
    with pytest.raises(ValueError, match="at most four"):
        pelmora.fit(*points, part=np.arange(30) % 5)


def test_points_that_are_placed_optimally_read_better(series):
    def reading_error(fit):
        x = np.geomspace(*fit.curve.range, 2000).clip(*fit.curve.range)
        return np.abs(fit.curve(x, reading="linear") / fit.curve(x) - 1).max()

    usual, best = (series.fit(points=12, band=5, spacing=spacing) for spacing in ("usual", "optimal"))
    assert len(best.curve.table) == 12 and reading_error(best) < 0.7 * reading_error(usual)
    assert series.settings["spacing"] == "optimal"
    with pytest.raises(ValueError, match="'usual' or 'optimal'"):
        series.fit(spacing="even")


@pytest.mark.parametrize("settings, message", [
    ({"band": 0}, "band"), ({"band": float("nan")}, "band"), ({"points": 1}, "points"), ({"points": 40.5}, "points"),
    ({"choose": "best"}, "'trusted'"), ({"outside": "maybe"}, "'refuse'"), ({"min": 1.0}, "(?i)range"),
    ({"min": 200.0, "max": 100.0}, "(?i)range"), ({"equations": {"bad": "a+*x"}}, "cannot be read"),
    ({"equations": {}}, "(?i)equation"), ({"only": "Nothing"}, "Nothing"), ({"progress": 7}, "progress")])
def test_settings_that_cannot_be_meant_are_refused(points, settings, message):
    with pytest.raises(ValueError, match=message) as caught:
        pelmora.fit(*points, **settings)
    assert caught.value.remedy


def test_a_range_beyond_the_points_goes_by_its_rule(points):
    whole = pelmora.fit(*points, min=1.0, outside="whole")
    assert whole.range == pytest.approx((40, 6000))
    further = pelmora.fit(*points, max=7000.0, outside="extrapolate")
    assert further.curve.range[1] == pytest.approx(7000)


def test_an_outlier_is_distrusted_and_left_out(points):
    roshko, strouhal = points
    strouhal = strouhal.copy()
    strouhal[10] *= 1.02
    fit = pelmora.fit(roshko, strouhal)
    bad = [point for point in fit.points if point.use == "distrusted"]
    assert [point.number for point in bad] == [11] and abs(bad[0].loo_sigma) > 5
    assert f"{len(fit.warnings)} warning" in repr(fit)
    assert fit.warnings and np.abs(fit.curve(roshko) / true_curve(roshko) - 1).max() < 0.002


def test_an_equation_file_can_be_named(points, tmp_path):
    file = tmp_path / "equations.txt"
    file.write_text("; mine\nsquare\ta+b*ln(x)+c*ln(x)^2\ncube\ta+b*ln(x)+c*ln(x)^2+d*ln(x)^3\n")
    assert [equation.name for equation in pelmora.equations(file)] == ["square", "cube"]
    assert [equation.parameters for equation in pelmora.equations(file)] == [3, 4]
    fit = pelmora.fit(*points, equations=file, choose="adjusted-r2", band=5)
    assert {equation.name for equation in fit.equations} == {"square", "cube"}
    with pytest.raises(FileNotFoundError):
        pelmora.fit(*points, equations=tmp_path / "none.txt")


def test_the_catalogue_is_the_one_that_a_fit_tries(points):
    for choose in ("trusted", "adjusted-r2"):
        tried = {equation.name for equation in pelmora.fit(*points, choose=choose).equations} - {"Reference curve"}
        assert tried == {equation.name for equation in pelmora.equations(choose=choose)}


def test_a_fit_shows_itself(points):
    fit = pelmora.fit(*points)
    assert fit._repr_html_().startswith("<svg") or "<svg" in fit._repr_html_()
    assert fit.chosen in repr(fit)
    assert fit.to_dict()["curve"]["table"] == fit.curve.table.tolist()
    assert '"chosen"' in fit.to_json()
    frame = pytest.importorskip("pandas") and fit.to_frame()
    assert list(frame.columns) == ["roshko", "strouhal", "best_fit", "residual_percent"] and len(frame) == 30
    assert {"name", "verdict", "reason", "adjusted_r2", "aicc", "worst_percent"} <= set(fit.equations.to_frame().columns)


def test_a_fit_is_drawn_with_its_points_and_band(points):
    pytest.importorskip("matplotlib")
    ax = pelmora.fit(*points).plot()
    assert ax.get_xlabel() == "Roshko" and ax.get_ylabel() == "Strouhal" and ax.get_xscale() == "log"
    drawn = {tuple(np.asarray(line.get_xdata())) for line in ax.get_lines()}
    assert tuple(points[0]) in drawn and len(ax.collections) == 1
    other = pelmora.fit(*points).curve.plot(ax=ax, color="black")
    assert other is ax and ax.get_lines()[-1].get_color() == "black"


def test_the_deviations_of_the_points_are_drawn_beside_the_band(points):
    pytest.importorskip("matplotlib")
    fit = pelmora.fit(*points)
    ax = fit.plot(deviations=True, color="gray")
    drawn, = (line.get_ydata() for line in ax.get_lines() if line.get_label() == "points")
    assert np.allclose(drawn, (points[1] / fit.curve(points[0]) - 1) * 100, atol=1e-9)
    ax.figure.canvas.draw()
    label = ax.yaxis.label.get_window_extent()
    assert ax.figure.bbox.x0 <= label.x0 and label.x1 <= ax.figure.bbox.x1
    band, = ax.collections
    at_end = fit.curve.eval_uncertainty(40.0) / fit.curve(40.0) * 100
    ends = [y for x, y in band.get_paths()[0].vertices if x == pytest.approx(40.0)]
    assert max(ends) == pytest.approx(at_end) and min(ends) == pytest.approx(-at_end)
