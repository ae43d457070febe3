"""The raw points of a series, and what excluding some of them changes."""
# SPDX-License-Identifier: MIT
from __future__ import annotations

from collections.abc import Iterable
from typing import Any, Optional, Union

from ._arguments import number as as_number, texts, whole
from ._records import Record, Table
from .errors import BadData


class StandReading(Record):
    """What the stand measured at a raw point, in the stand's own units; None where it recorded no number."""

    #: The point, as `Series.points` lists it.
    part: int
    number: int
    #: Of the series' rotor; the sum of both frequencies if the series is derived from both rotors.
    frequency: Optional[float]
    #: Of the reference.
    flow: Optional[float]
    viscosity: Optional[float]
    temperature: Optional[float]
    #: From the column that the laboratory names for it: `db.set_laboratory(nominal_flow_column="V14")`.
    nominal_flow: Optional[float]


class Point(Record):
    """A raw point."""

    _nested = ("fluid", "distrusted", "cut_percent", "user", "excluded_at", "reading")

    #: 1 to 4.
    part: int
    #: From 1; it stays the same while other points are excluded.
    number: int
    #: Of the stand; empty for points that came from elsewhere.
    job: str
    fluid: str
    roshko: float
    strouhal: float
    #: From the stored curve, in per cent; None without one and beyond its ends.
    residual: Optional[float]
    #: How far it is off the smooth curve through all other points, in standard deviations of a good point.
    loo_sigma: Optional[float]
    #: Whether it contradicts the other points.
    distrusted: bool
    #: "used", "cut", "excluded", "outside range", or "distrusted": the stored curve was fitted without it.
    state: str
    #: For a cut point, how far it is off the merged points.
    cut_percent: Optional[float]
    #: Why it was excluded, by whom and when (UTC, ISO 8601); empty if it was not.
    reason: str
    user: str
    excluded_at: str
    #: What the stand measured; None for points that came from elsewhere. `Series.readings` has those of all points.
    reading: Optional[StandReading]


class ChangedPoint(Record):
    """A point that was excluded or included."""

    series: str
    part: int
    number: int
    roshko: float
    strouhal: float


class DroppedExclusion(ChangedPoint):
    """An exclusion that no longer fits the points, so that it was dropped."""

    job: str
    reason: str
    #: Why it was dropped.
    why: str

    @classmethod
    def _fields(cls) -> list[str]:
        return [*ChangedPoint._fields(), "job", "reason", "why"]


class ExclusionChange(Record):
    """What `exclude` or `include` changed."""

    #: Points that have changed sides.
    points: Table[ChangedPoint]
    #: Series that were derived from the same readings and still use (or exclude) them.
    same_readings: list[str]
    dropped: Table[DroppedExclusion]
    #: The history entries of what was replaced.
    kept: list[int]


def points_of(records: list[dict[str, Any]]) -> Table[Point]:
    """Raw points from the module's dictionaries."""
    for record in records:
        reading = record["reading"]
        record["reading"] = StandReading(**reading) if reading else None
    return Table((Point(**record) for record in records), Point)


def selection(part: Optional[int], number: Union[None, int, Iterable[int]], below: Optional[float],
              above: Optional[float], between: Optional[tuple[float, float]], also_in: Iterable[str],
              derived: bool) -> dict[str, Any]:
    """The dictionary for the module."""
    numbers = [] if number is None else list(number) if isinstance(number, Iterable) else [number]
    ranged = below is not None or above is not None or between is not None
    return {"part": None if part is None else whole(part, "part", 0, 2**31 - 1),
            "numbers": [whole(one, "number", 0, 2**31 - 1) for one in numbers],
            "below": as_number(below, "below"), "above": as_number(above, "above"), "between": _range_of(between),
            "all": part is not None and number is None and not ranged, "also_in": texts(also_in, "also_in"),
            "in_derived_series": bool(derived)}


def _range_of(between: Any) -> Optional[tuple[float, float]]:
    if between is None:
        return None
    ends = [] if isinstance(between, str) or not isinstance(between, Iterable) else list(between)
    if len(ends) != 2 or None in ends:
        raise BadData(f"between is {between!r}", where="between", remedy="pass two Roshko numbers, such as (100, 110)")
    return float(as_number(ends[0], "between") or 0), float(as_number(ends[1], "between") or 0)


def change_of(record: dict[str, Any]) -> ExclusionChange:
    """What was changed, from the module's dictionary."""
    return ExclusionChange(points=Table((ChangedPoint(**point) for point in record["points"]), ChangedPoint),
                           same_readings=record["same_readings"], dropped=dropped_of(record["dropped"]),
                           kept=record["kept"])


def dropped_of(records: list[dict[str, Any]]) -> Table[DroppedExclusion]:
    """Dropped exclusions from the module's dictionaries."""
    return Table((DroppedExclusion(**record) for record in records), DroppedExclusion)
