"""Meters and their calibrations."""
# SPDX-License-Identifier: MIT
from __future__ import annotations

import os
from collections.abc import Iterator, Mapping
from typing import TYPE_CHECKING, Any, Optional, Union

from . import _numbers, _pelmora
from ._arguments import path as path_of, text, texts
from ._cautions import caution
from ._details import Detail, changes_of, values_of
from ._history import HistoryEntry, entries_of
from ._places import Place
from ._points import dropped_of
from ._records import Record, Table, frame_of, json_text, pandas_module
from ._series import Series
from .errors import BadData, MissingFile, NotFound, Unusable

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


class SeriesByName(Place, Mapping[str, Series]):
    """The series of a calibration by name, as they are stored now."""

    def __init__(self, meter: Meter) -> None:
        self._meter = meter

    def __getitem__(self, name: str) -> Series:
        """Errors: NotFound; its remedy suggests similar names."""
        if not isinstance(name, str):
            raise NotFound(f"there is no series {name!r}", where=repr(self._meter), remedy="name one by a text")
        stored = self._meter._database.series(self._meter._key, name)
        return Series(self._meter._database, self._meter, stored.name)

    def __iter__(self) -> Iterator[str]:
        return iter(self._meter._database.series_of(self._meter._key))

    def __len__(self) -> int:
        return len(self._meter._database.series_of(self._meter._key))

    def __contains__(self, name: object) -> bool:
        return name in self._meter._database.series_of(self._meter._key)

    def to_frame(self) -> pandas.DataFrame:
        """A row for each series with the columns name, points and equation. Needs pandas."""
        rows = [{"name": one.name, "points": sum(map(len, one.parts.values())), "equation": one._stored().equation}
                for one in self.values()]
        return pandas_module().DataFrame(rows, columns=["name", "points", "equation"])

    def to_dict(self) -> dict[str, Any]:
        """Every series by its name, as `Series.to_dict` gives it."""
        return {name: series.to_dict() for name, series in self.items()}

    def to_json(self) -> str:
        """As to_dict()."""
        return json_text(self.to_dict())

    def __repr__(self) -> str:
        return repr(list(self))


class Meter(Place):
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

        Points whose Roshko numbers are far from the meter's others, mostly because of a wrong unit of the viscosity,
        are stored with a PelmoraWarning; so are points that end the exclusion of earlier ones.

        Errors: BadData (a ValueError) for NaN, different lengths, fewer than two points and another part.
        """
        roshko = _numbers.column_of(data, roshko, "roshko")
        x, y = _numbers.columns(roshko, _numbers.column_of(data, strouhal, "strouhal"))
        if part not in (1, 2, 3, 4):
            raise BadData(f"there is no raw part {part!r}", where="part", remedy="pass 1, 2, 3 or 4")
        stored = self._database.store_raw(self._key, text(name, "name"), int(part), x, y)
        _warn_of_far_points(roshko, int(part), stored)
        for dropped in dropped_of(stored["dropped"]):
            caution(f"point {dropped.number} of part {dropped.part} is no longer excluded ({dropped.reason}): "
                    f"{dropped.why}")
        return self.series[name]

    @property
    def details(self) -> dict[str, Any]:
        """What certificates state about the meter and this calibration, by the names of `pelmora.detail_fields()`:
        maker, customer, dates, conditions, units ... Lists of texts are lists. Those of the meter and the customer
        come from earlier calibrations if this one has none.
        """
        return values_of(self._database.details(self._key))

    def set_details(self, **details: Detail) -> None:
        """Records what certificates state about the meter and this calibration; what is not named stays.

        details: texts by the names of `pelmora.detail_fields()`; lists of texts for several remarks or signatories;
            None removes what is recorded. Units are labels of what is stored: nothing is converted.

        Errors: NotFound for an unknown name; BadData for a text that is not of its kind.

        >>> meter.set_details(certificate_number="2026-17", date="2026-11-20", roshko_unit="Hz/cSt",
        ...                   signatory=["A. Signer, head of laboratory"])
        """
        self._database.set_details(self._key, changes_of(details, "meter"))

    @property
    def stand_uncertainty(self) -> Optional[str]:
        """The text that states the uncertainty of the stand, kept with the calibration; None without one."""
        return self._database.stand_uncertainty(self._key)

    def set_stand_uncertainty(self, file: Union[None, str, os.PathLike[str]]) -> None:
        """Keeps the uncertainty of the stand with the calibration: from then on it is part of U.

        file: as `pelmora stand uncertainty` takes it (docs/file_formats.md); None removes what is kept.

        Errors: BadData, which names the line that is not understood; MissingFile (a FileNotFoundError); Unusable.
        """
        statement, place = "", "" if file is None else path_of(file, "file")
        if file is not None:
            statement = _text_of(place)
            if not statement.strip():
                raise BadData("the file is empty", where=place, remedy="add sections such as [flow]")
        self._database.set_stand_uncertainty(self._key, statement, place)

    def report(self, path: Union[str, os.PathLike[str]], *, series: Optional[list[str]] = None,
               sign: Optional[tuple[Union[str, os.PathLike[str]], Union[str, os.PathLike[str]]]] = None) -> str:
        """Writes the report of the calibration; the ending of the name decides its kind: .html, .pdf, .xml (a
        digital calibration certificate), .svg, .json, .csv or .xlsx. Returns the path.

        series: only these; None: all.
        sign: the files of a private key and of its X.509 certificate, in PEM form. They sign the digital certificate,
            or the one that is attached to a PDF, by the program xmlsec1.

        The digital certificate is attached to a PDF if nothing that it needs is missing. Otherwise, the PDF is written
        without it, and a PelmoraWarning lists what is missing: see `set_details` and `Database.set_laboratory`.

        Errors: BadData for another ending, for an .xml (or anything to be signed) of which details are missing, for
            stored points that cannot be read and for a key that cannot be used; Unusable if the file cannot be
            written, and if weasyprint (.pdf) or xmlsec1 (sign) is not installed; NotFound for a series.
        """
        file = path_of(path, "path")
        files = None if sign is None else _signer_of(sign)
        wanted = texts(series or (), "series")
        if files is not None and not file.lower().endswith((".xml", ".pdf")):
            raise BadData(f"'{file}' cannot be signed", where="sign", remedy="end the name in .xml or .pdf")
        try:
            notes = self._database.write_report(self._key, file, wanted, files)
        except BadData as error:
            error.remedy = _in_python(error.remedy)
            raise
        for note in notes:
            caution(f"{file}: {_in_python(note)}")
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


def _in_python(remedy: str) -> str:
    """With the functions of this package in place of the commands."""
    return remedy.replace("'pelmora meter set' and 'pelmora laboratory set'",
                          "meter.set_details(...) and db.set_laboratory(...)")


def _signer_of(sign: Any) -> tuple[str, str]:
    if isinstance(sign, str) or not hasattr(sign, "__len__") or len(sign) != 2:
        raise BadData(f"sign is {sign!r}", where="sign", remedy='pass two files, such as ("key.pem", "certificate.pem")')
    return path_of(sign[0], "sign"), path_of(sign[1], "sign")


def _text_of(file: str) -> str:
    try:
        with open(file, encoding="utf-8-sig") as lines:
            return lines.read()
    except FileNotFoundError:
        raise MissingFile(f"there is no file '{file}'", where=file, remedy="check the path") from None
    except UnicodeDecodeError:
        raise BadData("the file is not UTF-8 text", where=file, remedy="save it as UTF-8") from None
    except OSError as error:
        raise Unusable(f"the file cannot be read: {error.strerror}", where=file, remedy="check the path") from None


def _warn_of_far_points(roshko: Any, part: int, stored: dict[str, Any]) -> None:
    remedy = "; check the unit of the viscosity"
    if stored["far_factor"] != 1:
        caution(f"the Roshko numbers of part {part} are {stored['far_factor']:.2g} times those of the meter's other "
                f"points{remedy}")
    if stored["far_points"]:
        position, factor = stored["far_points"][0]
        more = len(stored["far_points"]) - 1
        caution(f"roshko at {_numbers.label(roshko, position)} is {factor:.2g} times the median of the part's other "
                f"points{f', and {more} more are as far off' if more else ''}{remedy}")
