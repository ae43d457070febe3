"""Records and tables of records, and their ways into pandas, dictionaries and JSON."""
# SPDX-License-Identifier: MIT
from __future__ import annotations

from collections.abc import Iterable, Sequence
from typing import TYPE_CHECKING, Any, SupportsIndex, TypeVar, overload

from .errors import BadData, Error

if TYPE_CHECKING:
    import pandas


def plain(value: Any) -> Any:
    """The value with nothing but dictionaries, lists, texts, numbers and None; NaN becomes None."""
    if isinstance(value, float):
        return float(value) if value == value and abs(value) != float("inf") else None
    if isinstance(value, dict):
        return {str(key): plain(item) for key, item in value.items()}
    if isinstance(value, (list, tuple)):
        return [plain(item) for item in value]
    if hasattr(value, "to_dict"):
        return plain(value.to_dict())
    if hasattr(value, "tolist"):
        return plain(value.tolist())
    return value


def json_text(value: Any) -> str:
    """JSON of the value; numbers with all their digits."""
    import json

    return json.dumps(plain(value), ensure_ascii=False, allow_nan=False)


def pandas_module() -> Any:
    """The module pandas."""
    try:
        import pandas
    except ImportError:
        raise Error("pandas is not installed", where="to_frame()",
                    remedy="install pandas, or use to_dict()") from None
    return pandas


class Record:
    """A value with named fields, which do not change."""

    #: Fields that a row of a table leaves out, because they are tables themselves.
    _nested: tuple[str, ...] = ()

    def __init__(self, **values: Any) -> None:
        self.__dict__.update(values)

    def __setattr__(self, name: str, value: object) -> None:
        raise AttributeError(f"{type(self).__name__}.{name} cannot be set: it is what was read or computed")

    def __eq__(self, other: object) -> bool:
        return type(self) is type(other) and self.to_json() == other.to_json()  # type: ignore[attr-defined]

    def __hash__(self) -> int:
        return hash(self.to_json())

    def __repr__(self) -> str:
        shown = (f"{name}={getattr(self, name)!r}" for name in self._fields() if name not in self._nested)
        return f"{type(self).__name__}({', '.join(shown)})"

    @classmethod
    def _fields(cls) -> list[str]:
        return [name for name in cls.__annotations__ if not name.startswith("_")]

    @classmethod
    def _is_number(cls, name: str) -> bool:
        kinds = (base.__dict__.get("__annotations__", {}).get(name) for base in cls.__mro__)
        return any(kind in ("float", "Optional[float]") for kind in kinds)

    def to_dict(self) -> dict[str, Any]:
        """The fields by name."""
        return {name: getattr(self, name) for name in self._fields()}

    def to_json(self) -> str:
        """The fields as a JSON object."""
        return json_text(self.to_dict())

    def to_frame(self) -> pandas.DataFrame:
        """The fields as a frame of one row."""
        return Table([self], type(self)).to_frame()

    def _repr_html_(self) -> str:
        return html_table([row_of(self)])


def row_of(item: Any) -> dict[str, Any]:
    """The fields of an object for a row of a frame."""
    row: dict[str, Any] = item.to_dict()
    return {name: value for name, value in row.items() if name not in getattr(item, "_nested", ())}


def frame_of(items: Iterable[Any], columns: Sequence[str] = ()) -> Any:
    """A frame with a row for each object."""
    rows = [row_of(item) for item in items]
    return pandas_module().DataFrame(rows, columns=None if rows else list(columns))


R = TypeVar("R", bound=Record)


class Table(list[R]):
    """Records in a fixed order: a list that turns into a frame, a list of dictionaries or JSON."""

    def __init__(self, records: Iterable[R], kind: type[R]) -> None:
        super().__init__(records)
        self._kind = kind

    @overload
    def __getitem__(self, index: SupportsIndex) -> R: ...

    @overload
    def __getitem__(self, index: slice) -> Table[R]: ...

    def __getitem__(self, index: SupportsIndex | slice) -> R | Table[R]:
        if isinstance(index, slice):
            return Table(super().__getitem__(index), self._kind)
        return super().__getitem__(index)

    def __repr__(self) -> str:
        if not self:
            return "[]"
        return "[" + ",\n ".join(map(repr, self)) + "]"

    def _repr_html_(self) -> str:
        return html_table([row_of(record) for record in self])

    def to_frame(self) -> pandas.DataFrame:
        """A row for each record. Needs pandas."""
        columns = [name for name in self._kind._fields() if name not in self._kind._nested]
        frame = frame_of(self, columns)
        numbers = {name: "float64" for name in columns if self._kind._is_number(name)}
        return frame.astype(numbers)  # a column of nothing but None, too

    def to_dict(self) -> list[dict[str, Any]]:
        """A dictionary for each record."""
        return [record.to_dict() for record in self]

    def to_json(self) -> str:
        """A JSON array of objects."""
        return json_text(self.to_dict())


def to_frame(items: Iterable[Any]) -> pandas.DataFrame:
    """A pandas frame with a row for each object: meters, runs, history entries, equations ...

    Errors: Error if pandas is not installed.
    """
    to_own_frame = getattr(items, "to_frame", None)
    if to_own_frame is None and not isinstance(items, Iterable):
        raise BadData(f"{items!r} has no rows", where="to_frame()", remedy="pass a list, such as db.meters()")
    return to_own_frame() if to_own_frame is not None else frame_of(items)


def html_table(rows: Sequence[dict[str, Any]]) -> str:
    """The rows as an HTML table, as a notebook shows it."""
    from html import escape

    def cell(value: Any) -> str:
        text = "" if value is None else f"{value:.6g}" if isinstance(value, float) else str(value)
        return f"<td>{escape(text)}</td>"

    if not rows:
        return "<p>nothing</p>"
    head = "".join(f"<th>{escape(name)}</th>" for name in rows[0])
    body = "".join("<tr>" + "".join(map(cell, row.values())) + "</tr>" for row in rows)
    return f"<table><thead><tr>{head}</tr></thead><tbody>{body}</tbody></table>"
