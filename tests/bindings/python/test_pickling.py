"""Values leave the process as they are; what belongs to an open database says why it cannot."""
# SPDX-License-Identifier: MIT
import concurrent.futures
import copy
import multiprocessing
import pickle

import numpy as np
import pytest

import pelmora
from conftest import measured

CHOICES = ["trusted", "adjusted-r2"]


@pytest.fixture(autouse=True)
def fixed_date(monkeypatch):
    """Pictures state when they were made, to the second."""
    monkeypatch.setenv("SOURCE_DATE_EPOCH", "1795268400")


def again(value):
    return pickle.loads(pickle.dumps(value))


def equal_curves(ours, theirs):
    """Every number that a curve can give, to the last digit."""
    low, high = ours.range
    x = np.r_[low, np.geomspace(low, high, 23)[1:-1], high]
    assert theirs.to_json() == ours.to_json() and repr(theirs) == repr(ours) and theirs.source == ours.source
    for result in (lambda curve: curve.table, lambda curve: curve(x), lambda curve: curve(x, reading="cubic"),
                   lambda curve: curve([low / 2, high * 2], extrapolate=True), lambda curve: curve.derivative(x),
                   lambda curve: curve.inverse(curve(x)), lambda curve: curve.flow(x[1:-1], 1.0, temperature=80.0)):
        assert np.array_equal(result(theirs), result(ours))
    for kind in ("confidence", "prediction", "expanded"):
        assert np.array_equal(theirs.eval_uncertainty(x, kind=kind), ours.eval_uncertainty(x, kind=kind), equal_nan=True)
    assert theirs._repr_html_() == ours._repr_html_()


@pytest.mark.parametrize("choose", CHOICES)
def test_a_fit_is_the_same_behind_a_pickle(choose):
    roshko, strouhal = measured()
    strouhal[11] *= 1.01  # distrusted
    part = np.where(np.arange(30) < 15, 1, 2)
    fit = pelmora.fit(roshko, strouhal, part=part, choose=choose, band=2, fit_max=5000, equations={
        "line": "a+b*ln(x)", "square": "a+b*ln(x)+c*ln(x)^2", "drag": "a+b/x"})
    other = again(fit)
    assert other.to_json() == fit.to_json()
    for part_of in (lambda fit: fit.points.to_json(), lambda fit: fit.report, lambda fit: fit.fit_report(),
                    lambda fit: fit.range, lambda fit: repr(fit), lambda fit: fit._repr_html_()):
        assert part_of(other) == part_of(fit)
    for array in (lambda fit: fit.merged, lambda fit: fit.cut, lambda fit: fit.best_fit, lambda fit: fit.covar):
        assert np.array_equal(array(other), array(fit), equal_nan=True)
    assert {name: (value, value.stderr) for name, value in other.params.items()} == {
        name: (value, value.stderr) for name, value in fit.params.items()}
    equal_curves(fit.curve, other.curve)


@pytest.mark.parametrize("choose", CHOICES)
def test_a_curve_is_the_same_behind_a_pickle(points, choose):
    curve = pelmora.fit(*points, choose=choose).curve
    equal_curves(curve, again(curve))
    equal_curves(curve, copy.deepcopy(curve))


def test_a_stored_curve_keeps_the_uncertainty_of_its_stand(db, series, tmp_path):
    statement = tmp_path / "stand.ini"
    statement.write_text("[flow]\nexpanded = 0.04 %\nk = 2\n")
    series.fit()
    scatter = series.curve.eval_uncertainty(100.0, kind="expanded")
    series.meter.set_stand_uncertainty(statement)
    curve = series.curve
    other = again(curve)
    db.close()
    equal_curves(curve, other)
    assert other.eval_uncertainty(100.0, kind="expanded") > scatter


def test_a_curve_whose_fit_is_not_known_is_its_table_behind_a_pickle(db, series, points):
    series.fit()
    series.meter.add_series("K", points[0], points[1] * 1.01)
    curve = series.curve
    assert curve.stale and curve.source == "table"
    other = again(curve)
    assert other.stale and other.source == "table" and np.array_equal(other.table, curve.table)
    assert other(123.0) == curve(123.0)
    with pytest.raises(pelmora.NotFound, match="fit the series again"):
        other.params


def test_a_fit_from_a_pickle_is_stored_like_the_fit_itself(series):
    fit = again(series.fit(store=False))
    series.store(fit)
    assert np.array_equal(series.curve.table, fit.curve.table)


def test_records_and_tables_are_the_same_behind_a_pickle(db, series):
    series.exclude(part=1, number=3, reason="air in the line")
    series.fit()
    series.sign_off("Ada")
    for value in (series.points, series.points[2], db.history(), db.refit(jobs=1).results, pelmora.equations(),
                  series.fit().equations, series.signatures, pelmora.detail_fields()):
        assert again(value) == value
    assert again(db.refit(jobs=1)).to_dict() == db.refit(jobs=1).to_dict()


def test_an_exception_keeps_what_it_says_and_its_fit():
    with pytest.raises(pelmora.NoFit) as caught:
        pelmora.fit([10.0, 20, 30], [1.0, 9.0, 1.0])
    error = again(caught.value)
    assert (error.what, error.where, error.remedy) == (caught.value.what, caught.value.where, caught.value.remedy)
    assert error.fit.to_json() == caught.value.fit.to_json() and not error.fit.accepted


@pytest.mark.parametrize("part", [lambda db: db, lambda db: db.meter("M1"), lambda db: db.meter("M1").series,
                                  lambda db: db.meter("M1").series["K"], lambda db: db.meters()])
def test_what_belongs_to_an_open_database_says_what_to_send_instead(db, series, part):
    with pytest.raises(pelmora.Unpicklable, match="process.*pelmora.open") as caught:
        pickle.dumps(part(db))
    assert isinstance(caught.value, TypeError) and caught.value.what and caught.value.where
    copied = copy.deepcopy(series)
    assert copied is series and copied.name == "K"


@pytest.mark.parametrize("damage", [lambda pickled: pickled[:-9], lambda pickled: pickled[: len(pickled) // 2],
                                    lambda pickled: b"", lambda pickled: b"\xff" * 64,
                                    lambda pickled: pickled.replace(pelmora.__version__.encode(), b"9.9.9", 1)])
def test_bytes_that_are_not_of_this_version_are_refused(points, damage):
    fit = pelmora.fit(*points)
    for restore, whole in ((pelmora._pelmora.fit_from, fit._result.to_bytes()),
                           (pelmora._pelmora.curve_from, fit.curve._table.to_bytes())):
        with pytest.raises(pelmora.BadData, match="fit again") as caught:
            restore(damage(whole))
        assert caught.value.what and caught.value.remedy


def fitted_elsewhere(seed):
    fit = pelmora.fit(*measured(seed=seed))
    return fit, fit.curve


def test_processes_send_each_other_fits():
    with concurrent.futures.ProcessPoolExecutor(2, mp_context=multiprocessing.get_context("spawn")) as pool:
        for seed, (fit, curve) in enumerate(pool.map(fitted_elsewhere, range(3))):
            here = pelmora.fit(*measured(seed=seed))
            assert fit.to_json() == here.to_json()
            assert np.array_equal(curve.table, here.curve.table)
