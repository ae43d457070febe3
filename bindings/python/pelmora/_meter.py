"""Meters and their calibrations."""
# SPDX-License-Identifier: MIT
from __future__ import annotations

import os
from collections.abc import Iterator, Mapping
from typing import TYPE_CHECKING, Any, Optional, Union

from . import _numbers, _pelmora
from ._history import HistoryEntry, entries_of
from ._records import Record, Table, frame_of, json_text
from ._series import Series
from .errors import BadData

if TYPE_CHECKING:
    import pandas


class Run(Record):
    """A run on a stand in one fluid. A calibration has up to four; run n gives raw part n of every derived series."""

    id: int
    stand_number: int
    position: int
    operator: str
    fluid: str
    date: str
    jobs: list[str]
    points: int


class SeriesByName(Mapping[str, Series]):
    """The series of a calibration by name, as they are stored now."""

    def __init__(self, meter: Meter) -> None:
        self._meter = meter

    def __getitem__(self, name: str) -> Series:
        """Errors: NotFound; its remedy suggests similar names."""
        stored = self._meter._database.series(self._meter._key, name)
        return Series(self._meter._database, self._meter, stored.name)

    def __iter__(self) -> Iterator[str]:
        return iter(self._meter._database.series_of(self._meter._key))

    def __len__(self) -> int:
        return len(self._meter._database.series_of(self._meter._key))

    def __contains__(self, name: object) -> bool:
        return name in self._meter._database.series_of(self._meter._key)

    def __repr__(self) -> str:
        return repr(list(self))


class Meter:
    """A calibration of a meter.

    A Meter is a place in the database: its properties read what is stored now.
    """

    def __init__(self, database: _pelmora.Database, key: _pelmora.Meter) -> None:
        self._database, self._key = database, key

    @property
    def serial(self) -> str:
        """The serial number."""
        return self._key.serial

    @property
    def adjusted(self) -> str:
        """The serial number as it is stored for this calibration."""
        return self._key.adjusted

    @property
    def calibration(self) -> int:
        """The number of the calibration, from 0."""
        return self._key.calibration

    @property
    def runs(self) -> Table[Run]:
        """The runs that were imported."""
        return Table((Run(**record) for record in self._database.runs(self._key)), Run)

    @property
    def series(self) -> SeriesByName:
        """The series by name."""
        return SeriesByName(self)

    def add_series(self, name: str, roshko: Any, strouhal: Any, *, part: int = 1, data: Any = None) -> Series:
        """Stores points as a raw part of a series, in place of that part's points; makes the series if need be.

        roshko, strouhal: n numbers each, at least two, without a unit: lists, arrays or pandas Series; with `data`,
            names of its columns.
        part: 1 to 4.

        Errors: BadData (a ValueError) for NaN, different lengths, fewer than two points and another part.
        """
        x, y = _numbers.columns(_numbers.column_of(data, roshko, "roshko"),
                                _numbers.column_of(data, strouhal, "strouhal"))
        if part not in (1, 2, 3, 4):
            raise BadData(f"there is no raw part {part!r}", where="part", remedy="pass 1, 2, 3 or 4")
        self._database.store_raw(self._key, name, int(part), x, y)
        return self.series[name]

    @property
    def stand_uncertainty(self) -> Optional[str]:
        """The text that states the uncertainty of the stand, kept with the calibration; None without one."""
        return self._database.stand_uncertainty(self._key)

    def set_stand_uncertainty(self, file: Union[None, str, os.PathLike[str]]) -> None:
        """Keeps the uncertainty of the stand with the calibration: from then on it is part of U.

        file: as `pelmora stand uncertainty` takes it (docs/file_formats.md); None removes what is kept.

        Errors: BadData, which names the line that is not understood; FileNotFoundError.
        """
        text = ""
        if file is not None:
            with open(file, encoding="utf-8") as lines:
                text = lines.read()
            if not text.strip():
                raise BadData("the file is empty", where=os.fspath(file), remedy="add sections such as [flow]")
        self._database.set_stand_uncertainty(self._key, text, "" if file is None else os.fspath(file))

    def report(self, path: Union[str, os.PathLike[str]], *, series: Optional[list[str]] = None) -> str:
        """Writes the report of the calibration; the ending of the name decides its kind: .html, .pdf, .xml (a
        digital calibration certificate), .svg, .json, .csv or .xlsx. Returns the path.

        series: only these; None: all.

        Errors: BadData for another ending; Unusable if the file cannot be written; NotFound for a series.
        """
        file = os.fspath(path)
        self._database.write_report(self._key, file, list(series or []))
        return file

    def history(self) -> Table[HistoryEntry]:
        """What was replaced or deleted of this calibration, newest first."""
        return entries_of(self._database.history(self.serial, "", self.calibration))

    def delete(self) -> HistoryEntry:
        """Deletes the calibration with everything in it; the entry that is returned brings it back."""
        return HistoryEntry(**self._database.remove(self._key, None))

    def to_dict(self) -> dict[str, Any]:
        """Serial number, adjusted serial number, calibration and the names of the series."""
        return {"serial": self.serial, "adjusted": self.adjusted, "calibration": self.calibration,
                "series": list(self.series)}

    def to_json(self) -> str:
        """As to_dict()."""
        return json_text(self.to_dict())

    def to_frame(self) -> pandas.DataFrame:
        """As to_dict(), a frame of one row."""
        return frame_of([self])

    def __eq__(self, other: object) -> bool:
        return isinstance(other, Meter) and self._key.id == other._key.id and \
            self._database.location == other._database.location

    def __hash__(self) -> int:
        return hash((self._key.id, self._database.location))

    def __repr__(self) -> str:
        return f"<Meter {self.serial!r}, calibration {self.calibration}>"

    def _repr_html_(self) -> str:
        return self._database.picture(self._key, [])
