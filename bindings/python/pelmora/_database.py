"""Curve databases."""
# SPDX-License-Identifier: MIT
from __future__ import annotations

import os
from collections.abc import Iterable, Mapping, Sequence
from typing import TYPE_CHECKING, Any, Optional, Union

from . import _pelmora
from ._arguments import moment, number, path, text, whole
from ._cautions import caution
from ._details import Detail, changes_of, values_of
from ._fit import Fit
from ._history import HistoryEntry, Refit, RefitResult, Restored, entries_of, restored_of
from ._imports import Calibration, Import, import_of, wanted_import
from ._meter import Meter
from ._places import Place
from ._progress import Progress, progress_function, status_function
from ._records import Table, json_text, to_frame
from ._series import Series
from .errors import BadData, MissingFile, NoFit, NotFound

if TYPE_CHECKING:
    import datetime
    from types import TracebackType

    import pandas

    Path = Union[str, os.PathLike[str]]


class Database(Place):
    """An open curve database; `pelmora.open` and `pelmora.create` give one. A context manager that closes it.

    Several can be open at once, on the same file too. One that is used from several threads lets one operation at a
    time through; the interpreter lock is free while the library works, and Ctrl-C ends the operation: what it would
    have stored is then not stored.

    Errors, besides those listed for each operation: Locked if others hold the database for longer than `wait`;
    Unusable if it cannot be read or written; Damaged.
    """

    def __init__(self, database: _pelmora.Database, mode: str, wait: float) -> None:
        self._database, self._mode, self._wait = database, mode, wait

    @property
    def location(self) -> str:
        """The location as it was given, except the password of an address."""
        return self._database.location

    @property
    def mode(self) -> str:
        """ "r" or "w". """
        return self._mode

    @property
    def closed(self) -> bool:
        """Whether it is closed."""
        return not self._database.is_open

    def close(self) -> None:
        """Closes it; closing twice does no harm."""
        self._database.close()

    def __enter__(self) -> Database:
        return self

    def __exit__(self, kind: Optional[type[BaseException]], error: Optional[BaseException],
                 trace: Optional[TracebackType]) -> None:
        self.close()

    def meters(self) -> list[Meter]:
        """Every calibration of every meter, by serial number and number of the calibration."""
        return [Meter(self._database, key) for key in self._database.meters()]

    def calibrations(self, serial: str) -> list[Meter]:
        """The calibrations of a meter, oldest first."""
        return [Meter(self._database, key) for key in self._database.calibrations(text(serial, "serial"))]

    def meter(self, serial: str, calibration: Optional[int] = None) -> Meter:
        """A calibration of a meter; the latest if no number is given.

        Errors: NotFound (a KeyError); its remedy suggests similar names.
        """
        number = -1 if calibration is None else whole(calibration, "calibration", 0, 2**31 - 1)
        return Meter(self._database, self._database.meter(text(serial, "serial"), number))

    def register(self, serial: str, new_calibration: bool = False) -> Meter:
        """The latest calibration of a meter, which is registered if it is unknown; with new_calibration, its next one.

        Errors: BadData for an empty name or one with control characters.
        """
        return Meter(self._database, self._database.register(text(serial, "serial"), bool(new_calibration)))

    def import_runs(self, serial: str, *, stand: Path, runs: Iterable[Sequence[str]], operator: str = "",
                    stand_number: Optional[int] = None, date: Optional[str] = None, new_calibration: bool = False,
                    position: Optional[int] = None, update: bool = False, separator: Optional[str] = None,
                    decimal: Optional[str] = None, status: Any = None) -> Import:
        """Copies runs of a stand into the latest calibration of a meter, which is registered if it is unknown, and
        derives Rotor A and, if all runs have readings of rotor B, Rotor B, Rotor Sum and Ratio.

        stand: the stand's database, or its export as text with the columns JobRecordID, V1 to V37.
        runs: job and fluid of each, at most four: [("1001", "Mineral spirit"), ("1002", "Glycol mix")]. A run in a
            fluid that the calibration already has replaces the earlier one.
        operator: who ran them. stand_number, position: numbers that are stored with the runs.
        date: of the runs, such as "2026-11-21"; None: today.
        update: also give operator, stand_number, position and date to runs in fluids that the calibration already has.
            Otherwise such runs keep their own, and `kept_entries` of the result lists them.
        separator, decimal: of a text file, such as ";" and ","; None: recognised from the file.

        A run far from the meter's other runs is imported with a PelmoraWarning for each of the `doubts`.

        Errors: NotFound for the stand or a job; BadData, with job, point and column, for readings that are missing,
            are texts or divide by zero, for a fluid given twice and for more than four fluids, and for a text file
            that can be read in two ways.
        """
        wanted = wanted_import(serial, stand, runs, operator=operator, stand_number=stand_number, position=position,
                               date=date, new_calibration=new_calibration, update=update, separator=separator,
                               decimal=decimal, wait=self._wait)
        record = self._database.import_runs(wanted, status_function(status))
        for doubt in record["doubts"]:
            caution(doubt)
        return import_of(record, Meter(self._database, record["meter"]))

    def calibrate(self, serial: str, *, stand: Path, runs: Iterable[Sequence[str]], operator: str = "",
                  stand_number: Optional[int] = None, date: Optional[str] = None, new_calibration: bool = False,
                  position: Optional[int] = None, update: bool = False, separator: Optional[str] = None,
                  decimal: Optional[str] = None, progress: Progress = None, **fit: Any) -> Calibration:
        """import_runs, then a fit of every derived series, the ratio as a ratio.

        fit: keyword arguments of `Series.fit`, such as band=0.2.

        A series that no equation fits is listed in `failed`; the others are stored.
        """
        imported = self.import_runs(serial, stand=stand, runs=runs, operator=operator, stand_number=stand_number,
                                    date=date, new_calibration=new_calibration, position=position, update=update,
                                    separator=separator, decimal=decimal)
        fits: dict[str, Fit] = {}
        failed: dict[str, str] = {}
        for name in imported.series:
            settings: dict[str, Any] = {"ratio": name == "Ratio", "progress": progress, **fit}
            try:
                fits[name] = imported.meter.series[name].fit(**settings)
            except NoFit as error:
                failed[name] = str(error)
        return Calibration(imported=imported, fits=fits, failed=failed)

    @property
    def laboratory(self) -> dict[str, Any]:
        """What every certificate states about the laboratory, by the names of `pelmora.detail_fields()`."""
        return values_of(self._database.laboratory())

    def set_laboratory(self, **details: Detail) -> None:
        """Records what every certificate states about the laboratory; what is not named stays.

        details: texts by the names of `pelmora.detail_fields()`; None removes what is recorded.

        Errors: NotFound for an unknown name; BadData for a text that is not of its kind.

        >>> db.set_laboratory(name="Flow laboratory", city="Town", country="US")
        """
        self._database.set_laboratory(changes_of(details, "laboratory"))

    def history(self, serial: str = "", *, series: str = "") -> Table[HistoryEntry]:
        """Everything that was replaced or deleted, newest first; of one meter or series if they are given."""
        return entries_of(self._database.history(serial, series, None))

    def restore(self, entry: Union[int, HistoryEntry]) -> Restored:
        """Brings back what a history entry holds; what it replaces is kept in turn.

        Errors: NotFound for the entry; Exists if something else has taken its place.
        """
        number = entry.id if isinstance(entry, HistoryEntry) else whole(entry, "entry", 0, 2**63 - 1)
        return restored_of(self._database.restore(number))

    def prune(self, *, before: Union[None, str, datetime.date] = None, keep: int = 0) -> Table[HistoryEntry]:
        """Removes history entries for good and returns them.

        before: only entries older than this: a datetime, or ISO 8601 in UTC such as "2026-11-21".
        keep: this many of the newest always stay.
        """
        return entries_of(self._database.prune(moment(before, "before"), whole(keep, "keep", 0, 2**31)))

    def refit(self, series: Optional[Iterable[Series]] = None, *, progress: Progress = None,
              jobs: Optional[int] = None, threshold: float = 0.01, dry_run: bool = False) -> Refit:
        """Fits series again, each with the settings of its stored curve, and stores every curve that has changed.

        series: None for every series of every calibration.
        jobs: number of threads; None: one for each core. threshold: shift from which a curve counts as changed, in
            per cent. dry_run: stores nothing.
        progress: a function of (done, of), a tqdm bar, or True.
        """
        tasks = [] if series is None else [self._task_of(one) for one in _every(series)]
        threads = (os.cpu_count() or 1) if jobs is None else whole(jobs, "jobs", 1, 1024)
        changed = number(threshold, "threshold") or 0.0
        results, is_cancelled, _ = self._database.refit(tasks, series is None, threads, changed, bool(dry_run),
                                                        progress_function(progress))
        return Refit(Table((RefitResult(**record) for record in results), RefitResult), is_cancelled)

    def _task_of(self, series: Any) -> tuple[_pelmora.Meter, str]:
        if not isinstance(series, Series):
            raise BadData(f"{series!r} is not a series", where="series",
                          remedy="pass series, such as meter.series.values()")
        if series._database.location != self.location:
            raise BadData(f"{series!r} is in another database, {series._database.location}", where="series",
                          remedy="refit it there")
        return series.meter._key, series.name

    def to_frame(self) -> pandas.DataFrame:
        """A row for each calibration, as `pelmora.to_frame(db.meters())`. Needs pandas."""
        return to_frame(self.meters())

    def to_dict(self) -> dict[str, Any]:
        """The location and every calibration."""
        return {"location": self.location, "meters": [meter.to_dict() for meter in self.meters()]}

    def to_json(self) -> str:
        """As to_dict()."""
        return json_text(self.to_dict())

    def __repr__(self) -> str:
        return f"<Database {self.location!r}, {'closed' if self.closed else 'mode ' + repr(self._mode)}>"


def _every(series: Any) -> Iterable[Any]:
    if isinstance(series, Mapping):
        return series.values()
    return series if isinstance(series, Iterable) else [series]


def _opened(location: Path, mode: str, wait: float, user: str, create: bool) -> Database:
    if mode not in ("r", "w"):
        raise BadData(f"there is no mode {mode!r}", where="mode", remedy="pass 'r' to read or 'w' to change things")
    if isinstance(wait, str) or not 0 <= wait < 1e9:
        raise BadData(f"the wait is {wait!r} seconds", where="wait", remedy="pass 0 or more, such as 30")
    place = path(location, "location")
    return Database(_pelmora.Database(place, mode == "w", float(wait), text(user, "user"), create), mode, wait)


def open(location: Path, mode: str = "w", *, wait: float = 30, user: str = "") -> Database:
    """Opens a curve database.

    location: the path of a file. mode: "r" to read, "w" to change things too.
    wait: how long to wait while other programs have locked it, in seconds.
    user: who works with it, for the history; the user of the process by default.

    Errors: MissingFile (a NotFound, KeyError and FileNotFoundError); Unusable if it is not a curve database; Locked.

    >>> with pelmora.open("curves.db") as db:
    ...     db.meter("M1").series["Rotor A"].curve(120.0)
    """
    try:
        return _opened(location, mode, wait, user, False)
    except NotFound as error:
        raise MissingFile(error.what, where=error.where,
                          remedy=error.remedy and "check the path, or make a new one with pelmora.create") from None


def create(location: Path, *, wait: float = 30, user: str = "") -> Database:
    """Creates a new, empty curve database and opens it.

    Errors: Exists (a FileExistsError) if there is one; Unusable.
    """
    return _opened(location, "w", wait, user, True)
