"""What changes have replaced, and what an import or a refit reports."""
# SPDX-License-Identifier: MIT
from __future__ import annotations

from typing import TYPE_CHECKING, Any

from ._records import Record, Table, json_text

if TYPE_CHECKING:
    import pandas


class HistoryEntry(Record):
    """Rows as they were before a change; `db.restore(entry)` brings them back."""

    id: int
    #: "fit", "import", "delete" ...
    command: str
    #: UTC, ISO 8601.
    changed_at: str
    user: str
    version: str
    serial: str
    calibration: int
    #: Empty for a whole calibration.
    series: str
    #: Number of rows kept, by table.
    rows: dict[str, int]


class Restored(Record):
    """What `restore` brought back."""

    entry: HistoryEntry
    #: The history entry of what the restored rows replaced; 0 if they replaced nothing.
    kept_as: int
    #: Rows before and now, by table.
    tables: dict[str, tuple[int, int]]


class RefitResult(Record):
    """How a series came out of a refit."""

    serial: str
    calibration: int
    series: str
    #: "changed", "kept", "added", "not fitted", "unusable", "unreadable" or "gone".
    result: str
    equation: str
    #: The largest shift from the previous curve in per cent, signed, and where it is.
    shift_percent: float
    shift_roshko: float
    #: Why there is no new curve.
    reason: str
    is_stored: bool
    #: Another program changed the series meanwhile; this is the result of a second fit.
    changed_meanwhile: bool


class Refit:
    """The summary of a refit."""

    _failures = ("not fitted", "unusable", "unreadable", "gone")

    def __init__(self, results: Table[RefitResult], is_cancelled: bool) -> None:
        #: Every series, in the order in which it was asked for.
        self.results = results
        #: Whether it was ended early; what was stored stays stored.
        self.is_cancelled = is_cancelled

    def _of(self, *kinds: str) -> Table[RefitResult]:
        return Table((result for result in self.results if result.result in kinds), RefitResult)

    @property
    def changed(self) -> Table[RefitResult]:
        """Series whose curve has moved by more than the threshold."""
        return self._of("changed")

    @property
    def kept(self) -> Table[RefitResult]:
        """Series whose new curve is within the threshold of the previous one."""
        return self._of("kept")

    @property
    def added(self) -> Table[RefitResult]:
        """Series that had no curve before."""
        return self._of("added")

    @property
    def failed(self) -> Table[RefitResult]:
        """Series without a new curve; `reason` says why. Their previous curve is kept."""
        return self._of(*self._failures)

    def to_frame(self) -> pandas.DataFrame:
        """A row for each series. Needs pandas."""
        return self.results.to_frame()

    def to_dict(self) -> list[dict[str, Any]]:
        """A dictionary for each series."""
        return self.results.to_dict()

    def to_json(self) -> str:
        """A JSON array of objects."""
        return json_text(self.to_dict())

    def __repr__(self) -> str:
        counts = {"changed": self.changed, "kept": self.kept, "added": self.added, "failed": self.failed}
        return f"<Refit of {len(self.results)} series: " + ", ".join(
            f"{len(results)} {name}" for name, results in counts.items() if results) + ">"

    def _repr_html_(self) -> str:
        return self.results._repr_html_()


def entries_of(records: list[dict[str, Any]]) -> Table[HistoryEntry]:
    """History entries from the module's dictionaries."""
    return Table((HistoryEntry(**record) for record in records), HistoryEntry)


def restored_of(record: dict[str, Any]) -> Restored:
    """What was restored, from the module's dictionary."""
    return Restored(entry=HistoryEntry(**record["entry"]), kept_as=record["kept_as"], tables=record["tables"])
