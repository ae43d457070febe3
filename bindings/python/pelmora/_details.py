"""What certificates state besides the measured numbers: laboratory, meter, customer, conditions, units."""
# SPDX-License-Identifier: MIT
from __future__ import annotations

from collections.abc import Mapping, Sequence
from typing import TYPE_CHECKING, Any, Union

from . import _pelmora
from ._records import Record, Table
from .errors import BadData, NotFound

if TYPE_CHECKING:
    import datetime

#: A text, a list of texts, a day, or None to remove what is recorded.
Detail = Union[None, str, Sequence[str], "datetime.date"]


class DetailField(Record):
    """Something that a certificate states, by the name of its keyword argument."""

    #: Such as "certificate_number".
    name: str
    #: As certificates show it.
    label: str
    help: str
    #: "laboratory", "meter" (it applies to later calibrations too) or "calibration" (it applies to this one alone).
    of: str
    #: "text", "list" (several texts), "date" (2026-11-20), "country" (two capital letters), "measure" (a number and
    #: its unit, such as "21.5 C"), "unit" or "column" (one of the stand's values: V1 to V37).
    kind: str
    #: What a measure or unit must be of, such as "temperature"; empty for the other kinds.
    quantity: str


def detail_fields() -> Table[DetailField]:
    """What `Database.set_laboratory` and `Meter.set_details` can record, in the order of a certificate.

    >>> pelmora.detail_fields().to_frame()
    """
    return Table((DetailField(name=_name(field.pop("key")), **field) for field in _pelmora.detail_fields()),
                 DetailField)


def values_of(details: Mapping[str, str]) -> dict[str, Any]:
    """Details as they are stored, by the names of the keyword arguments; lists as lists."""
    fields = {field["key"]: field["kind"] for field in _pelmora.detail_fields()}
    return {_name(key): details[key].split("\n") if kind == "list" else details[key]
            for key, kind in fields.items() if key in details}


def changes_of(details: Mapping[str, Detail], whose: str) -> dict[str, str]:
    """Texts by key, as the module takes them; empty texts remove. whose: "laboratory", or "meter" for the others.

    Errors: NotFound for an unknown name; BadData for a value of another kind.
    """
    known = {_name(field["key"]): field for field in _pelmora.detail_fields()}
    changes = {}
    for name, value in details.items():
        field = known.get(_name(name))
        if field is None:
            raise _unknown(name, [each for each, one in known.items() if (one["of"] == "laboratory") ==
                                  (whose == "laboratory")])
        changes[str(field["key"])] = _text(name, value, field["kind"])
    if not changes:
        raise BadData("there is nothing to record", where="details",
                      remedy="pass what is to be recorded, see pelmora.detail_fields()")
    return changes


def _name(key: str) -> str:
    return key.replace("-", "_")


def _unknown(name: str, known: Sequence[str]) -> NotFound:
    from difflib import get_close_matches

    near = get_close_matches(_name(name), known, n=3)
    remedy = "did you mean " + " or ".join(near) + "?" if near else "pelmora.detail_fields() lists them all"
    return NotFound(f"there is no detail {name!r}", where="details", remedy=remedy)


def _text(name: str, value: Detail, kind: str) -> str:
    if value is None:
        return ""
    if isinstance(value, str):
        return value
    if isinstance(value, Sequence):
        if kind == "list" and all(isinstance(line, str) for line in value):
            return "\n".join(value)
    elif kind == "date" and hasattr(value, "isoformat"):
        return str(value.isoformat())[:10]
    held = "a list of texts" if kind == "list" else "a date, or a text such as \"2026-11-20\"" if kind == "date" \
        else "a number with its unit as a text, such as \"21.5 C\"" if kind == "measure" else "a text"
    raise BadData(f"{name} is {value!r}", where=name, remedy=f"pass {held}; None removes it")
