"""Checks of single arguments, before the compiled module takes them."""
# SPDX-License-Identifier: MIT
from __future__ import annotations

import os
from collections.abc import Iterable
from typing import Any, Optional, Union

from .errors import BadData


def text(value: Any, name: str) -> str:
    """A text. Errors: BadData, with the text that a number would be."""
    if isinstance(value, str):
        return value
    example = f", such as {str(value)!r}" if hasattr(value, "__float__") else ""
    raise BadData(f"{name} is {value!r}, which is not a text", where=name, remedy="pass a text" + example)


def texts(values: Union[str, Iterable[str]], name: str) -> list[str]:
    """Texts; a single one is taken as a list of one. Errors: BadData."""
    if isinstance(values, str):
        return [values]
    if not isinstance(values, Iterable):
        raise BadData(f"{name} is {values!r}", where=name, remedy="pass a text or a list of texts")
    return [text(value, name) for value in values]


def number(value: Any, name: str) -> Optional[float]:
    """A finite number or None. Errors: BadData."""
    if value is None:
        return None
    if isinstance(value, (bool, str, bytes)) or not hasattr(value, "__float__"):
        raise BadData(f"{name} is {value!r}, which is not a number", where=name, remedy="pass a number")
    converted = float(value)
    if converted - converted != 0:
        raise BadData(f"{name} is {converted!r}", where=name, remedy="pass a finite number, or leave it out")
    return converted


def whole(value: Any, name: str, low: int, high: int) -> int:
    """A whole number between limits. Errors: BadData."""
    if not isinstance(value, (bool, str)) and hasattr(value, "__index__") and low <= value <= high:
        return int(value)
    limits = f"from {low} to {high}" if high < 2**31 - 1 else f"from {low}"
    raise BadData(f"{name} is {value!r}", where=name, remedy="pass a whole number " + limits)


def moment(value: Any, name: str) -> Optional[str]:
    """A date or time in UTC as ISO 8601, or None. Errors: BadData."""
    if value is None:
        return None
    import datetime

    try:
        if isinstance(value, str):
            ended = value[:-1] + "+00:00" if value.endswith("Z") else value
            value = datetime.datetime.fromisoformat(ended)
        if isinstance(value, datetime.datetime):
            if value.tzinfo is not None:
                value = value.astimezone(datetime.timezone.utc)
            return value.strftime("%Y-%m-%dT%H:%M:%SZ")
        if isinstance(value, datetime.date):
            return value.isoformat()
    except ValueError:
        pass
    raise BadData(f"{name} is {value!r}, which is not a time", where=name,
                  remedy='pass a datetime, or a text such as "2026-11-21" or "2026-11-21T08:30:00Z"')


def path(value: Any, name: str) -> str:
    """A path or a location as text. Errors: BadData."""
    try:
        place = os.fspath(value)
    except TypeError:
        place = None
    if isinstance(place, str):
        return place
    raise BadData(f"{name} is {value!r}, which is not a path", where=name, remedy="pass a text or a pathlib.Path")
