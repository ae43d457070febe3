"""What the tests of the package share."""
# SPDX-License-Identifier: MIT
import os
import pathlib
import signal
import subprocess
import sys

import numpy as np
import pytest

import pelmora

SOURCE = pathlib.Path(os.environ.get("PELMORA_SOURCE", pathlib.Path(__file__).parents[3]))
DATA = SOURCE / "examples" / "data"
STAND = DATA / "stand-dual-rotor.csv"


def true_curve(roshko):
    """A turbine meter's Strouhal: a rise out of bearing drag, then nearly level."""
    return 2.5 * (1 - 4.0 / roshko - 0.02 * np.exp(-np.log10(roshko) ** 2))


def measured(count=30, low=40.0, high=6000.0, noise=2e-4, seed=1):
    """Points of true_curve with relative noise."""
    roshko = np.geomspace(low, high, count)
    return roshko, true_curve(roshko) * (1 + noise * np.random.default_rng(seed).standard_normal(count))


@pytest.fixture
def interrupted():
    """Runs a statement in a process of its own and sends it Ctrl-C, which must end it with KeyboardInterrupt."""
    def run(statement):
        script = "\n".join(["import sys, pelmora", "print('waiting', flush=True)", "try:", f"    {statement}",
                            "except KeyboardInterrupt:", "    sys.exit(77)"])
        process = subprocess.Popen([sys.executable, "-c", script], stdout=subprocess.PIPE)
        assert process.stdout.readline() == b"waiting\n"
        try:
            process.wait(1)
        except subprocess.TimeoutExpired:
            pass
        process.send_signal(signal.SIGINT)
        assert process.wait(120) == 77

    return run


@pytest.fixture
def points():
    return measured()


@pytest.fixture
def db(tmp_path):
    with pelmora.create(tmp_path / "curves.db", user="Ada") as database:
        yield database


@pytest.fixture
def series(db, points):
    return db.register("M1").add_series("K", *points)


@pytest.fixture
def calibrated(db):
    """The meter M1 with both runs of the stand, fitted."""
    return db.calibrate("M1", stand=STAND, runs=[("1001", "Mineral spirit"), ("1002", "Glycol mix")], operator="Ada")
