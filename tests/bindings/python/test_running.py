"""The library works beside the interpreter: signals, callbacks, threads. Nothing here depends on how fast it is."""
# SPDX-License-Identifier: MIT
import os
import signal
import sqlite3
import subprocess
import sys
import textwrap
import threading
import time
import warnings

import numpy as np
import pytest

import pelmora
from conftest import measured


def locked(path):
    connection = sqlite3.connect(path, isolation_level=None, check_same_thread=False)
    connection.execute("BEGIN EXCLUSIVE")
    return connection


def failures_in_threads(count, work):
    """What went wrong when `work(number)` ran in `count` threads at once."""
    failures = []

    def guarded(number):
        try:
            work(number)
        except BaseException as failure:
            failures.append(failure)

    threads = [threading.Thread(target=guarded, args=(number,)) for number in range(count)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    return failures


def test_control_c_ends_a_wait_and_nothing_is_stored(db, interrupted):
    """Without an answer to the signal, the wait would last longer than the time limit of the test."""
    holder = locked(db.location)
    interrupted(f"pelmora.open({db.location!r}, wait=3000).register('M1')")
    holder.close()
    assert db.meters() == []


def test_control_c_ends_the_program_that_makes_a_pdf(series, tmp_path, monkeypatch):
    """Without an answer to the signal, the program would last longer than the time limit of the test."""
    started, report = tmp_path / "started", tmp_path / "m1.pdf"
    program = tmp_path / "bin" / "weasyprint"
    program.parent.mkdir()
    program.write_text(f"#!/bin/sh\ntouch {started}\nexec sleep 10000\n")
    program.chmod(0o755)
    monkeypatch.setenv("PATH", f"{program.parent}:{os.environ['PATH']}")
    report.write_text("the earlier report")

    def interrupt():
        while not started.exists():
            time.sleep(0.01)
        os.kill(os.getpid(), signal.SIGINT)

    waiting = threading.Thread(target=interrupt)
    waiting.start()
    with warnings.catch_warnings(), pytest.raises(KeyboardInterrupt):
        warnings.simplefilter("ignore", pelmora.PelmoraWarning)
        series.meter.report(report)
    waiting.join()
    assert report.read_text() == "the earlier report"
    assert sorted(path.name for path in tmp_path.glob("m1*")) == ["m1.pdf"]


@pytest.mark.parametrize("work, count", [
    (lambda curve, x: curve.inverse(curve(x)), 2000), (lambda curve, x: curve(x), 200_000),
    (lambda curve, x: curve.derivative(x), 20_000), (lambda curve, x: curve.flow(x, 1.0), 400_000), (lambda curve, x: curve.eval_uncertainty(x), 1_000_000),
    (lambda curve, x: curve.eval_uncertainty(x, kind="expanded"), 20_000)],
    ids=["inverse", "eval", "derivative", "flow", "confidence", "expanded"])
def test_signals_are_answered_while_a_curve_is_evaluated_at_many_places(points, work, count):
    """Of the signals that come meanwhile, an evaluation that waited for its end would answer one."""
    answered = []
    curve = pelmora.fit(*points).curve
    x = np.geomspace(*curve.range, count)[1:-1]
    curve.eval_uncertainty(x[:1], kind="expanded"), curve(x[:1])  # the function behind the table is made
    previous = signal.signal(signal.SIGALRM, lambda *_: answered.append(1))
    try:
        signal.setitimer(signal.ITIMER_REAL, 0.001, 0.001)
        work(curve, x)
    finally:
        signal.setitimer(signal.ITIMER_REAL, 0)
        signal.signal(signal.SIGALRM, previous)
    assert len(answered) > 5


def test_a_signal_handler_runs_while_the_library_works(db):
    """The handler frees the lock for which the library waits."""
    holder = locked(db.location)
    previous = signal.signal(signal.SIGALRM, lambda *_: holder.close())
    try:
        signal.setitimer(signal.ITIMER_REAL, 0.2)
        with pelmora.open(db.location, wait=250) as other:
            other.register("M1")
    finally:
        signal.signal(signal.SIGALRM, previous)
    assert [meter.serial for meter in db.meters()] == ["M1"]


def test_a_locked_database_is_refused_after_the_wait(db):
    holder = locked(db.location)
    with pytest.raises(pelmora.Locked) as caught:
        pelmora.open(db.location, wait=0.05).register("M1")
    assert isinstance(caught.value, TimeoutError) and caught.value.remedy
    holder.close()


def test_another_thread_runs_while_the_library_waits(db):
    """A thread that must run to free the lock would never get the interpreter otherwise."""
    holder = locked(db.location)
    threading.Timer(0.2, holder.close).start()
    with pelmora.open(db.location, wait=250) as other:
        assert other.register("M1").serial == "M1"


def test_progress_counts_to_its_end(points):
    steps = []
    pelmora.fit(*points, progress=lambda done, of: steps.append((done, of)))
    assert steps == sorted(steps) and steps[-1][0] == steps[-1][1]


def test_status_is_text(points):
    texts = []
    pelmora.fit(*points, status=texts.append)
    assert texts and all(isinstance(text, str) for text in texts)


@pytest.mark.parametrize("make", [lambda tqdm: tqdm(disable=False, file=open("/dev/null", "w")), lambda tqdm: tqdm,
                                  lambda tqdm: True])
def test_a_tqdm_bar_follows(points, make):
    tqdm = pytest.importorskip("tqdm").tqdm
    bar = make(tqdm)
    pelmora.fit(*points, progress=bar)
    if isinstance(bar, tqdm):
        assert bar.n == bar.total > 0


def test_an_exception_of_a_callback_ends_the_operation(db):
    for number in range(8):
        db.register(f"M{number}").add_series("K", *measured(seed=number))

    class Enough(Exception):
        pass

    def stop(done, of):
        raise Enough

    with pytest.raises(Enough):
        db.refit(progress=stop, jobs=1)
    assert len(db.meters()) == 8


def test_a_callback_that_uses_its_own_database_is_refused_and_does_not_hang(db):
    # So many points that the fit has not ended when the first callback comes.
    series = db.register("M9").add_series("K", *measured(20000))
    with pytest.raises(pelmora.Error, match="busy.*callback"):
        series.fit(progress=lambda done, of: db.meters())
    assert db.meters()


def test_many_points_become_records_and_signals_are_answered_meanwhile(db):
    """Of the signals that come meanwhile, a conversion that waited for its end would answer one."""
    answered = []
    series = db.register("M1").add_series("K", *measured(20_000))
    previous = signal.signal(signal.SIGALRM, lambda *_: answered.append(1))
    try:
        signal.setitimer(signal.ITIMER_REAL, 0.001, 0.001)
        assert len(series.points) == 20_000
    finally:
        signal.setitimer(signal.ITIMER_REAL, 0)
        signal.signal(signal.SIGALRM, previous)
    assert len(answered) > 5


def test_a_stop_while_a_refit_runs_keeps_what_is_stored(db):
    for number in range(60):
        db.register(f"M{number}").add_series("K", *measured(seed=number))

    def stop(done, of):
        raise KeyboardInterrupt

    with pytest.raises(KeyboardInterrupt):
        db.refit(progress=stop, jobs=1)
    fitted = [meter for meter in db.meters() if meter.series["K"].to_dict()["curve"]]
    assert len(db.refit(jobs=2).added) == 60 - len(fitted)


def test_a_forked_process_can_fit():
    """Threads do not go along: the child must not wait for one that is not there."""
    expected = pelmora.fit(*measured()).curve.table
    reading, writing = os.pipe()
    child = os.fork()
    if child == 0:
        os.write(writing, pelmora.fit(*measured()).curve.table.tobytes())
        os._exit(0)
    os.close(writing)
    with os.fdopen(reading, "rb") as pipe:
        assert pipe.read() == expected.tobytes()
    assert os.waitpid(child, 0)[1] == 0


def test_several_databases_in_several_threads(tmp_path):
    def work(number):
        with pelmora.create(tmp_path / f"{number}.db") as own:
            expected = pelmora.fit(*measured(seed=number)).curve.table
            for _ in range(5):
                series = own.register("M1").add_series("K", *measured(seed=number))
                assert np.array_equal(series.fit().curve.table, expected)

    assert failures_in_threads(6, work) == []


def test_one_database_in_several_threads_lets_one_operation_at_a_time_through(db):
    def work(number):
        series = db.register(f"M{number}").add_series("K", *measured(seed=number))
        assert len(series.fit().merged) == len(series.parts[1])

    assert failures_in_threads(8, work) == []
    assert len(db.meters()) == 8
