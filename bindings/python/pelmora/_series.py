"""Series of a meter."""
# SPDX-License-Identifier: MIT
from __future__ import annotations

from collections.abc import Iterable
from typing import TYPE_CHECKING, Any, Optional, Union

from . import _pelmora
from ._arguments import text
from ._curve import Curve
from ._fit import Fit
from ._history import HistoryEntry, entries_of
from ._places import Place
from ._points import ExclusionChange, Point, StandReading, change_of, points_of, selection
from ._progress import Progress, progress_function, status_function
from ._records import Table, json_text
from ._settings import Equations, fit_settings
from ._sign_offs import SignOff
from .errors import BadData, NotFound

if TYPE_CHECKING:
    import numpy as np
    import numpy.typing as npt
    import pandas

    from ._meter import Meter

    Floats = npt.NDArray[np.float64]


class Series(Place):
    """A series of a meter's calibration, such as "Rotor A": raw points in up to four parts, and at most one curve.

    A Series is a place in the database: its properties read what is stored now.
    """

    def __init__(self, database: _pelmora.Database, meter: Meter, name: str) -> None:
        self._database, self._meter, self._name = database, meter, name

    @property
    def name(self) -> str:
        """The name."""
        return self._name

    @property
    def meter(self) -> Meter:
        """The calibration that it belongs to."""
        return self._meter

    @property
    def parts(self) -> dict[int, Floats]:
        """The raw parts that have points, by number (1 to 4), each of shape (n, 2). Read-only; no copies."""
        stored = self._stored()
        return {part: points for part in range(1, 5) if len(points := stored.raw(part))}

    @property
    def merged(self) -> Floats:
        """The merged points stored with the curve, shape (n, 2); (0, 2) without a curve."""
        return self._stored().merged

    @property
    def curve(self) -> Curve:
        """The stored curve, with its uncertainty if the same fit gives it again.

        Errors: NotFound if none is stored.
        """
        stored = self._stored()
        return Curve(self._database.curve(self._meter._key, self._name), stored.equation,
                     stale=self._database.is_outdated(stored), title=self._title())

    @property
    def report(self) -> str:
        """The report stored with the curve; empty without one."""
        return self._stored().report.replace("\r\n", "\n")

    @property
    def settings(self) -> Optional[dict[str, Any]]:
        """The settings of the stored curve's fit; None if they were not kept."""
        return self._stored().settings

    def fit(self, *, band: float = 0.3, points: int = 40, min: Optional[float] = None, max: Optional[float] = None,
            fit_min: Optional[float] = None, fit_max: Optional[float] = None, choose: str = "trusted",
            equations: Optional[Equations] = None, only: Union[str, Iterable[str]] = (),
            without: Union[str, Iterable[str]] = (), max_order: Optional[int] = None, ratio: bool = False,
            store: bool = True, inverted: bool = False, merge_band: Optional[float] = None, cut_overlap: bool = True,
            ignore_residuals: bool = False, outside: str = "refuse", spacing: str = "usual", progress: Progress = None,
            status: Any = None) -> Fit:
        """Merges the raw parts, fits them and stores the curve in place of the previous one, which the history keeps.

        store: False only fits; store(fit) stores it later. The other arguments: as for `pelmora.fit`.

        Errors: NotFound if the series is gone; NoFit if no equation passes the tests, then nothing is stored;
            Changed if the points were changed by somebody else meanwhile; OutOfRange, BadData.
        """
        settings = fit_settings(band=band, points=points, min=min, max=max, fit_min=fit_min, fit_max=fit_max,
                                choose=choose, equations=equations, only=only, without=without, max_order=max_order,
                                ratio=ratio, inverted=inverted, merge_band=merge_band, cut_overlap=cut_overlap,
                                ignore_residuals=ignore_residuals, outside=outside, spacing=spacing)
        fit = Fit(self._database.fit(self._stored(), settings, status_function(status), progress_function(progress)))
        if not fit.accepted:
            raise fit.no_fit()
        if store:
            self.store(fit)
        return fit

    @property
    def points(self) -> Table[Point]:
        """Every raw point, excluded ones too, by part and number; to_frame() for pandas."""
        return points_of(self._database.points(self._meter._key, self._name))

    @property
    def readings(self) -> Table[StandReading]:
        """What the stand measured at every point that came from one: frequency, flow, viscosity, temperature and
        nominal flow in the stand's own units. In pandas,
        ``series.points.to_frame().merge(series.readings.to_frame(), on=["part", "number"])``.
        """
        return Table((point.reading for point in self.points if point.reading), StandReading)

    def exclude(self, *, part: Optional[int] = None, number: Union[None, int, Iterable[int]] = None, reason: str,
                below: Optional[float] = None, above: Optional[float] = None,
                between: Optional[tuple[float, float]] = None, also_in: Iterable[str] = (),
                derived: bool = False) -> ExclusionChange:
        """Leaves points out: they leave the raw parts and are kept with the reason, the user and the time until
        `include` puts them back. A stored curve is then stale.

        part, number: a point as `points` lists it, or several of one part. below, above, between: Roshko, of all
            parts or of one.
        reason: in words; for those who read the report.
        also_in: names of other series from which the same points are left out. derived: from every series that was
            derived from the same readings.

        Errors: BadData for an empty reason and for points that do not exist; NotFound for a series.
        """
        wanted = selection(part, number, below, above, between, also_in, derived)
        return change_of(self._database.exclude(self._meter._key, self._name, wanted, text(reason, "reason")))

    def include(self, *, part: Optional[int] = None, number: Union[None, int, Iterable[int]] = None,
                below: Optional[float] = None, above: Optional[float] = None,
                between: Optional[tuple[float, float]] = None, also_in: Iterable[str] = (),
                derived: bool = False) -> ExclusionChange:
        """Puts excluded points back where they were. The arguments: as for `exclude`.

        Errors: as for `exclude`.
        """
        wanted = selection(part, number, below, above, between, also_in, derived)
        return change_of(self._database.include(self._meter._key, self._name, wanted))

    def store(self, fit: Fit) -> int:
        """Stores the curve of a fit of this series; returns the history entry of the previous one, 0 if none.

        Errors: NoFit; Changed if the points have changed since; BadData for a fit of another series, or of points from
            no database.
        """
        if not isinstance(fit, Fit):
            raise BadData(f"{fit!r} is not a fit", where=self._title(), remedy="pass what series.fit(store=False) returns")
        of = fit._result.meter
        if of is not None and (of.id, fit._result.series) != (self._meter._key.id, self._name):
            raise BadData(f"the fit is of {_title(fit._result.series, of)}, not of {self._title()}", where="fit",
                          remedy="store it in its own series")
        return self._database.store(fit._result)

    @property
    def fingerprint(self) -> str:
        """What a signature is put under: SHA-256 of points, exclusions, settings and curve as they are stored now."""
        return self._stored().fingerprint

    def sign_off(self, name: str, *, remark: str = "", fingerprint: str = "") -> SignOff:
        """Signs the series as it is stored now; earlier signatures stay. Reports list the signatures.

        name: of the person who signs. remark: in words.
        fingerprint: of the series as you looked at it, see `fingerprint`: one that has changed since is not signed.

        Errors: NotFound without a stored curve; BadData for an empty name and for a curve that is older than its
            points; Changed.
        """
        return SignOff(**self._database.sign_off(self._meter._key, self._name, text(name, "name"),
                                                 text(remark, "remark"), text(fingerprint, "fingerprint")))

    @property
    def signatures(self) -> Table[SignOff]:
        """The signatures, newest first. One is not `valid` if the series has changed since; if the change is undone,
        it is valid again.
        """
        return Table((SignOff(**record) for record in self._database.sign_offs(self._meter._key, self._name)), SignOff)

    def history(self) -> Table[HistoryEntry]:
        """What was replaced or deleted of this series, newest first."""
        return entries_of(self._database.history(self._meter.serial, self._name, self._meter.calibration))

    def delete(self) -> HistoryEntry:
        """Deletes the series; the entry that is returned brings it back."""
        return HistoryEntry(**self._database.remove(self._meter._key, self._name))

    def to_frame(self) -> pandas.DataFrame:
        """As `points`. Needs pandas."""
        return self.points.to_frame()

    def to_dict(self) -> dict[str, Any]:
        """Name, meter, raw parts and the stored curve."""
        try:
            curve = self.curve.to_dict()
        except NotFound:
            curve = None
        return {"serial": self._meter.serial, "calibration": self._meter.calibration, "name": self._name,
                "parts": {part: points.tolist() for part, points in self.parts.items()}, "curve": curve}

    def to_json(self) -> str:
        """As to_dict()."""
        return json_text(self.to_dict())

    def __repr__(self) -> str:
        return f"<Series {self._title()}>"

    def _repr_html_(self) -> str:
        return self._database.picture(self._meter._key, [self._name])

    def _title(self) -> str:
        return _title(self._name, self._meter._key)

    def _stored(self) -> _pelmora.StoredSeries:
        return self._database.series(self._meter._key, self._name)


def _title(name: str, meter: _pelmora.Meter) -> str:
    return f"{name!r} of meter {meter.serial!r}, calibration {meter.calibration}"
