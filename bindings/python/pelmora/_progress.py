"""What may follow an operation: a function, a tqdm bar, or True for a bar of its own."""
# SPDX-License-Identifier: MIT
from __future__ import annotations

from collections.abc import Callable
from typing import Any, Optional

from .errors import BadData

#: progress(done, of); a bar with update(); True for a tqdm bar; None.
Progress = Any


def progress_function(progress: Progress) -> Optional[Callable[[int, int], object]]:
    """progress as a function of the steps done and of all steps."""
    if progress is None or progress is False:
        return None
    if progress is True:
        progress = _own_bar()
    elif isinstance(progress, type):  # the class tqdm itself
        progress = progress()
    if hasattr(progress, "update"):
        return _Bar(progress)
    if callable(progress):
        return progress  # type: ignore[no-any-return]
    raise BadData(f"progress is {progress!r}", where="progress",
                  remedy="pass a function of (done, of), a tqdm bar, or True")


def _own_bar() -> Any:
    try:
        from tqdm.auto import tqdm
    except ImportError:
        raise BadData("progress=True needs tqdm, which is not installed", where="progress",
                      remedy="install tqdm, or pass a function of (done, of)") from None
    return tqdm()


class _Bar:
    """A bar that counts steps, such as tqdm's."""

    def __init__(self, bar: Any) -> None:
        self._bar, self._done = bar, 0

    def __call__(self, done: int, of: int) -> None:
        if getattr(self._bar, "total", of) != of:
            self._bar.total = of
        self._bar.update(done - self._done)
        self._done = done
        if done == of and hasattr(self._bar, "refresh"):
            self._bar.refresh()


def status_function(status: Any) -> Optional[Callable[[str], object]]:
    """status as it is, if it can be called."""
    if status is None or callable(status):
        return status  # type: ignore[no-any-return]
    raise BadData(f"status is {status!r}", where="status", remedy="pass a function of a text, such as print")
