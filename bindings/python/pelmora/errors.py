"""The exceptions of Pelmora.

Every one derives from :class:`Error` and from the built-in exception that code for such trouble
already catches. ``what`` is the failure, ``where`` its place (a file, a series, an argument) and
``remedy`` what to do about it; either of the latter may be empty.
"""
# SPDX-License-Identifier: MIT
from __future__ import annotations

from typing import TYPE_CHECKING, Any, Optional

if TYPE_CHECKING:
    from ._fit import Fit

__all__ = ["Error", "NotFound", "MissingFile", "Exists", "Locked", "Unusable", "Damaged", "BadData", "OutOfRange",
           "NoFit", "Changed", "Cancelled", "Unpicklable", "PelmoraWarning"]


class Error(Exception):
    """Base of all exceptions of Pelmora."""

    what: str
    where: str
    remedy: str

    def __init__(self, what: str, *, where: str = "", remedy: str = "") -> None:
        super().__init__(what)
        self.what, self.where, self.remedy = what, where, remedy

    def __str__(self) -> str:
        text = self.what.rstrip(".")
        if self.where and self.where not in text:
            text += f" ({self.where})"
        return f"{text}; {self.remedy}" if self.remedy else text

    def __reduce__(self) -> Any:
        others = {name: value for name, value in self.__dict__.items() if name not in ("what", "where", "remedy")}
        return _restored, (type(self), self.what, self.where, self.remedy), others


def _restored(kind: type[Error], what: str, where: str, remedy: str) -> Error:
    return kind(what, where=where, remedy=remedy)


class NotFound(Error, KeyError):
    """A meter, calibration, series, job, curve or history entry that does not exist."""


class MissingFile(NotFound, FileNotFoundError):
    """A database that does not exist."""


class Exists(Error, FileExistsError):
    """Something that was to be created already exists."""


class Locked(Error, TimeoutError):
    """Others kept the database locked for longer than ``wait``. Nothing was stored."""


class Unusable(Error, OSError):
    """The database or a file cannot be opened, read or written."""


class Damaged(Unusable):
    """The file of the database is damaged."""


class BadData(Error, ValueError):
    """Unusable numbers or texts in an argument, a stand's data or the database."""


class OutOfRange(Error, ValueError):
    """A number beyond the curve, or a range beyond the points."""


class NoFit(Error, RuntimeError):
    """No equation passed the tests. ``fit`` has what was tried, or is None."""

    fit: Optional[Fit] = None


class Changed(Error, RuntimeError):
    """Somebody else has changed the points since they were fitted. Nothing was stored."""


class Cancelled(Error, RuntimeError):
    """The operation was cancelled. Nothing was stored."""


class Unpicklable(Error, TypeError):
    """A database, or something in one, that was to be pickled: it cannot be used in another process."""


class PelmoraWarning(UserWarning):
    """Something to look at although the operation succeeded: points far from the others, a report that is not complete.

    ``warnings.simplefilter("error", pelmora.PelmoraWarning)`` makes it an exception.
    """
