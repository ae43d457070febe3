"""What leads into an open database, and therefore cannot leave the process."""
# SPDX-License-Identifier: MIT
from __future__ import annotations

from typing import Any, NoReturn, TypeVar

from .errors import Unpicklable

P = TypeVar("P", bound="Place")


class Place:
    """A database or something in one: a copy of it is the same place."""

    def __reduce__(self) -> NoReturn:
        raise Unpicklable(f"{self!r} cannot be pickled: it works on a database that this process has opened",
                          where="pickle", remedy="send curves, fits, points or records instead, or the location, and "
                                                 "open the database with pelmora.open where it is received")

    def __copy__(self: P) -> P:
        return self

    def __deepcopy__(self: P, memo: dict[int, Any]) -> P:
        return self
