# SPDX-License-Identifier: MIT
import datetime
import pickle

import numpy as np
import pytest

import pelmora
from conftest import measured

def test_a_new_database_is_empty_and_can_be_opened_again(tmp_path):
    pelmora.create(tmp_path / "new.db").close()
    with pelmora.open(tmp_path / "new.db") as db:
        assert db.meters() == []
        assert db.mode == "w" and not db.closed
    assert db.closed


def test_a_database_is_not_created_twice(db):
    with pytest.raises(pelmora.Exists) as caught:
        pelmora.create(db.location)
    assert isinstance(caught.value, FileExistsError)
    assert caught.value.where == db.location and caught.value.remedy


def test_a_missing_file_is_a_missing_file_and_nothing_is_created(tmp_path):
    path = tmp_path / "none.db"
    for kind in (pelmora.NotFound, KeyError, FileNotFoundError):
        with pytest.raises(kind) as caught:
            pelmora.open(path)
    assert str(path) in str(caught.value) and "pelmora.create" in str(caught.value)
    assert not path.exists()


def test_a_file_that_is_no_database_is_refused(tmp_path):
    (tmp_path / "notes.txt").write_text("not a database, but long enough to have a header of sixteen bytes")
    with pytest.raises(pelmora.Unusable) as caught:
        pelmora.open(tmp_path / "notes.txt")
    assert isinstance(caught.value, OSError)


def test_an_unknown_mode_and_wait_are_refused(db):
    with pytest.raises(ValueError, match="mode 'a'.*'r'"):
        pelmora.open(db.location, mode="a")
    with pytest.raises(ValueError, match="wait"):
        pelmora.open(db.location, wait=float("nan"))


def test_a_closed_database_says_so(db):
    db.close()
    db.close()
    with pytest.raises(pelmora.Error, match="closed.*pelmora.open"):
        db.meters()


def test_reading_mode_refuses_changes(db, points):
    db.register("M1")
    with pelmora.open(db.location, mode="r") as reader:
        assert [meter.serial for meter in reader.meters()] == ["M1"]
        for change in (lambda: reader.register("M2"), lambda: reader.restore(1),
                       lambda: reader.meter("M1").add_series("K", *points),
                       lambda: reader.meter("M1").delete()):
            with pytest.raises(pelmora.Error, match='mode="w"'):
                change()
    assert [meter.serial for meter in db.meters()] == ["M1"]


def test_meters_are_registered_once_and_calibrations_counted(db):
    first = db.register("M1")
    assert db.register("M1") == first and first.calibration == 0
    second = db.register("M1", new_calibration=True)
    assert (second.serial, second.calibration) == ("M1", 1)
    assert db.meter("M1") == second and db.meter("M1", 0) == first
    assert [meter.calibration for meter in db.calibrations("M1")] == [0, 1]


def test_an_unknown_meter_names_near_misses(db):
    db.register("TM-1042")
    with pytest.raises(KeyError) as caught:
        db.meter("TM-1024")
    assert isinstance(caught.value, pelmora.NotFound)
    assert "TM-1024" in caught.value.what and "TM-1042" in str(caught.value)


def test_an_unknown_series_names_near_misses(calibrated):
    with pytest.raises(pelmora.NotFound, match="Rotor A"):
        calibrated.meter.series["Rotr A"]
    assert calibrated.meter.series.get("nothing") is None
    assert "Rotor A" in calibrated.meter.series and "nothing" not in calibrated.meter.series


def test_an_unknown_calibration_is_not_found(db):
    db.register("M1")
    with pytest.raises(pelmora.NotFound):
        db.meter("M1", calibration=3)


def test_a_calibration_fits_every_derived_series(calibrated):
    assert set(calibrated.fits) | set(calibrated.failed) == {"Rotor A", "Rotor B", "Rotor Sum", "Ratio"}
    assert calibrated.failed == {}
    for name, fit in calibrated.fits.items():
        assert np.array_equal(calibrated.meter.series[name].curve.table, fit.curve.table)
    ratio = calibrated.meter.series["Ratio"].curve.table[:, 1]
    assert (np.diff(ratio) <= 0).all()


def test_what_is_replaced_comes_back(series, db):
    first = series.fit(band=1).curve.table.copy()
    series.fit(band=1, points=20)
    entry = db.history()[0]
    assert (entry.command, entry.serial, entry.series, entry.user) == ("fit", "M1", "K", "Ada")
    assert series.history()[0] == entry and series.meter.history()[0] == entry
    restored = db.restore(entry)
    assert restored.entry == entry and restored.kept_as > entry.id
    assert np.array_equal(series.curve.table, first)
    with pytest.raises(pelmora.NotFound):
        db.restore(12345)


def test_a_deleted_series_comes_back(series, db):
    entry = series.delete()
    assert list(db.meter("M1").series) == []
    with pytest.raises(pelmora.NotFound):
        series.curve
    db.restore(entry)
    assert len(db.meter("M1").series["K"].parts[1]) == 30


@pytest.mark.parametrize("before, pruned", [("2020-01-01", 0), ("2999-01-01T00:00:00Z", 2),
                                            (datetime.date(2020, 1, 1), 0), (datetime.datetime(2999, 1, 1), 2)])
def test_history_is_pruned_by_its_age(series, db, before, pruned):
    for points in (40, 20, 30):
        series.fit(band=1, points=points)
    assert len(db.prune(before=before)) == pruned and len(db.history()) == 2 - pruned


def test_a_time_that_cannot_be_read_prunes_nothing(series, db):
    series.fit(band=1)
    series.fit(band=1, points=20)
    with pytest.raises(ValueError, match="'yesterday'.*2026-11-21"):
        db.prune(before="yesterday")
    assert len(db.history()) == 1


def test_pruned_history_is_gone(series, db):
    series.fit(band=1)
    series.fit(band=1, points=20)
    series.fit(band=1, points=30)
    newest = db.history()[0]
    assert newest not in db.prune(keep=1)
    assert list(db.history()) == [newest]
    assert list(db.prune()) == [newest] and len(db.history()) == 0


def test_a_refit_says_what_changed(db):
    for number in range(6):
        roshko, strouhal = measured(seed=number)
        db.register(f"M{number}").add_series("K", roshko, strouhal).fit()
    db.register("bad").add_series("K", [1.0, 2.0, 3.0], [1.0, 9.0, 1.0])
    roshko, strouhal = measured(seed=3)
    db.meter("M3").add_series("K", roshko, strouhal * 1.01)
    steps = []
    summary = db.refit(progress=lambda done, of: steps.append((done, of)), jobs=2)
    assert [result.serial for result in summary.changed] == ["M3"]
    assert summary.changed[0].shift_percent == pytest.approx(1, abs=0.01)
    assert [result.serial for result in summary.failed] == ["bad"] and summary.failed[0].reason
    assert len(summary.kept) == 5
    assert steps[-1] == (7, 7) and steps == sorted(steps)
    again = db.refit([db.meter("M3").series["K"]], dry_run=True)
    assert [result.result for result in again.results] == ["kept"]
    assert db.refit(db.meter("M3").series, dry_run=True).results == again.results


def test_a_series_of_another_database_is_not_refitted(series, db, tmp_path):
    with pelmora.create(tmp_path / "other.db") as other:
        with pytest.raises(ValueError, match="another database"):
            other.refit([series])


def test_lists_become_frames_dictionaries_and_json(calibrated, db):
    pandas = pytest.importorskip("pandas")
    frame = pelmora.to_frame(db.meters())
    assert list(frame["serial"]) == ["M1"] and list(frame["calibration"]) == [0]
    runs = calibrated.meter.runs
    assert list(pelmora.to_frame(runs)["fluid"]) == ["Mineral spirit", "Glycol mix"]
    assert runs.to_dict()[0]["fluid"] == "Mineral spirit"
    assert pandas.read_json(runs.to_json())["points"].tolist() == [24, 24]
    assert "<table>" in runs._repr_html_()
    assert list(pelmora.to_frame(db.history()).columns)[:2] == ["id", "command"]


def test_errors_keep_their_parts_when_pickled():
    error = pickle.loads(pickle.dumps(pelmora.MissingFile("what", where="where", remedy="remedy")))
    assert type(error) is pelmora.MissingFile
    assert (error.what, error.where, error.remedy) == ("what", "where", "remedy")
    assert str(error) == "what (where); remedy"


def test_every_error_derives_from_a_built_in_one():
    expected = {"NotFound": KeyError, "MissingFile": FileNotFoundError, "Exists": FileExistsError,
                "Locked": TimeoutError, "Unusable": OSError, "Damaged": OSError, "BadData": ValueError,
                "OutOfRange": ValueError, "NoFit": RuntimeError, "Changed": RuntimeError, "Cancelled": RuntimeError}
    for name, built_in in expected.items():
        kind = getattr(pelmora, name)
        assert issubclass(kind, pelmora.Error) and issubclass(kind, built_in)
        assert kind("text").what == "text" and str(kind("text")) == "text"


def test_records_do_not_change(calibrated):
    with pytest.raises(AttributeError, match="fluid"):
        calibrated.meter.runs[0].fluid = "Water"


def test_what_to_do_about_a_place_is_a_remedy(tmp_path):
    with pytest.raises(pelmora.Unusable) as caught:
        pelmora.create(tmp_path / "no" / "curves.db")
    assert caught.value.remedy == "create the folder first" and str(caught.value).endswith("; create the folder first")
