# SPDX-License-Identifier: MIT
import gc
import os
import pathlib
import pickle
import sys

import numpy as np
import pytest

import pelmora
from conftest import measured


def resident():
    """Resident memory in bytes."""
    return int(pathlib.Path("/proc/self/statm").read_text().split()[1]) * os.sysconf("SC_PAGE_SIZE")


#: Of a fit that was kept, in bytes: its tables, the curves of all equations and the report.
FIT = 20e3


@pytest.mark.parametrize("choose, count", [("adjusted-r2", 1000), ("trusted", 300)])
def test_fits_in_a_loop_leave_no_memory_behind(choose, count):
    """Ten thousand of each, measured once, left nothing either."""
    roshko, strouhal = measured(60)

    def fits(count):
        for _ in range(count):
            fit = pelmora.fit(roshko, strouhal, choose=choose)
            fit.curve(100.0), fit.merged, fit.curve.table, fit.equations
        gc.collect()

    fits(count // 5)
    before = resident()
    fits(count)
    assert resident() - before < count * FIT / 2


def test_pickled_fits_leave_no_memory_behind():
    fit = pelmora.fit(*measured(60))

    def pickles(count):
        for _ in range(count):
            pickle.loads(pickle.dumps((fit, fit.curve)))
        gc.collect()

    pickles(400)
    before = resident()
    pickles(2000)
    assert resident() - before < 2000 * FIT / 4


def test_failed_fits_and_errors_leave_no_memory_behind():
    def failures(count):
        for _ in range(count):
            for columns in (([1.0, 2, 3], [1.0, 9, 1]), ([1.0, 2], [1.0, float("nan")])):
                try:
                    pelmora.fit(*columns)
                except pelmora.Error:
                    pass
        gc.collect()

    failures(400)
    before = resident()
    failures(2000)
    assert resident() - before < 2000 * FIT / 4


def test_databases_that_were_opened_leave_nothing_behind(db):
    def openings(count):
        for _ in range(count):
            with pelmora.open(db.location) as other:
                other.register("M1")
        gc.collect()

    openings(50)
    descriptors, before = len(os.listdir("/proc/self/fd")), resident()
    openings(500)
    assert len(os.listdir("/proc/self/fd")) == descriptors and len(os.listdir("/proc/self/task")) < 20
    assert resident() - before < 10e6


def test_arrays_outlive_what_they_came_from(db):
    roshko, strouhal = measured(4000)
    fit = pelmora.fit(roshko, strouhal)
    views = [fit.merged, fit.curve.table, db.register("M1").add_series("K", roshko, strouhal).parts[1]]
    copies = [view.copy() for view in views]
    del fit
    db.close()
    gc.collect()
    other = [np.full(len(view) * 2, 7.0) for view in views for _ in range(50)]  # where they would have been
    assert all(np.array_equal(view, copy) for view, copy in zip(views, copies)) and other


def test_references_are_given_back():
    roshko, strouhal = measured()
    calls = []

    def progress(done, of):
        calls.append(done)

    counted = [roshko, strouhal, progress]
    before = [sys.getrefcount(value) for value in counted]
    for _ in range(30):
        pelmora.fit(roshko, strouhal, progress=progress)
    gc.collect()
    assert [sys.getrefcount(value) for value in counted] == before


def test_a_view_holds_its_owner_and_gives_it_back():
    fit = pelmora.fit(*measured())
    result = fit._result
    before = sys.getrefcount(result)
    views = [fit.merged for _ in range(10)]
    held = sys.getrefcount(result)
    del views
    after = sys.getrefcount(result)
    assert (held, after) == (before + 10, before)
