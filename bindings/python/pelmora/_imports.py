"""Imports of a stand's runs: what is asked for, and what was stored."""
# SPDX-License-Identifier: MIT
from __future__ import annotations

from collections.abc import Iterable, Mapping
from typing import Any

from ._arguments import path, text, whole
from ._fit import Fit
from ._meter import Meter, Run
from ._points import DroppedExclusion, dropped_of
from ._records import Record, Table
from .errors import BadData


class Import(Record):
    """What an import stored."""

    meter: Meter
    is_new_calibration: bool
    #: All runs of the calibration.
    runs: Table[Run]
    #: For each derived series the number of points in raw parts 1 to 4.
    series: dict[str, tuple[int, int, int, int]]
    #: Points whose exclusion lasts, and exclusions of points that did not come again.
    excluded_again: int
    dropped: Table[DroppedExclusion]
    #: The reason why only Rotor A was derived; empty otherwise.
    job_without_rotor_b: str
    #: What runs of known fluids kept although the import gave something else: tuples of fluid, what, kept, given.
    kept_entries: list[tuple[str, str, str, str]]
    #: Readings that put a run far from the meter's other runs, as sentences.
    doubts: list[str]
    #: How a stand's text file was read, in words, such as "semicolons between fields, decimal comma"; empty for a
    #: database, and for commas and decimal points.
    recognised: str
    #: The history entries of what was replaced.
    kept: list[int]


class Calibration(Record):
    """What `Database.calibrate` did: an import and a fit of every derived series."""

    imported: Import
    #: By series.
    fits: dict[str, Fit]
    #: Series without a curve, and why.
    failed: dict[str, str]

    @property
    def meter(self) -> Meter:
        """The calibration."""
        return self.imported.meter

    def _repr_html_(self) -> str:
        return self.meter._repr_html_()


def wanted_import(serial: Any, stand: Any, runs: Any, *, operator: Any, stand_number: Any, position: Any, date: Any,
                  new_calibration: Any, update: Any, separator: Any, decimal: Any, wait: float) -> dict[str, Any]:
    """The dictionary for the module. Errors: BadData."""
    pairs = [_run_of(run, operator) for run in (runs.items() if isinstance(runs, Mapping) else _listed(runs))]
    if not pairs:
        raise BadData("there are no runs to import", where="runs",
                      remedy='pass job and fluid of each, such as [("1001", "Mineral spirit")]')
    return {"serial": text(serial, "serial"), "stand": path(stand, "stand"), "runs": pairs,
            "stand_number": _small(stand_number, "stand_number"), "position": _small(position, "position"),
            "date": "" if date is None else str(date), "new_calibration": bool(new_calibration),
            "update": bool(update), "separator": _sign(separator, "separator", _separators),
            "decimal": _sign(decimal, "decimal", ".,"), "wait": wait}


def import_of(record: dict[str, Any], meter: Meter) -> Import:
    """What was stored, from the module's dictionary."""
    record["meter"] = meter
    record["dropped"] = dropped_of(record["dropped"])
    record["runs"] = Table((Run(**run) for run in record["runs"]), Run)
    return Import(**record)


def _listed(runs: Any) -> Iterable[Any]:
    if isinstance(runs, Iterable):
        return runs
    raise BadData(f"runs is {runs!r}", where="runs",
                  remedy='pass job and fluid of each, such as [("1001", "Mineral spirit")]')


def _run_of(run: Any, operator: Any) -> tuple[str, str, str]:
    if isinstance(run, str) or not hasattr(run, "__len__") or len(run) not in (2, 3):
        raise BadData(f"the run {run!r} is not a pair of job and fluid", where="runs",
                      remedy='pass pairs, such as ("1001", "Mineral spirit")')
    job, fluid = str(run[0]), str(run[1])
    return job, fluid, str(run[2]) if len(run) == 3 else text(operator or "", "operator")


def _small(number: Any, name: str) -> int:
    return -1 if number is None else whole(number, name, 0, 32767)


#: Anything but letters, digits, quotes, and the point and signs of numbers.
_separators = ",;\t!#$%&'()*/:<=>?@[\\]^_`{|}~"


def _sign(sign: Any, name: str, allowed: str) -> str:
    if sign is None:
        return "\0"
    if not isinstance(sign, str) or len(sign) != 1 or sign not in allowed:
        raise BadData(f"{name} is {sign!r}", where=name,
                      remedy="pass one of " + ", ".join(repr(each) for each in allowed[:3]))
    return sign
