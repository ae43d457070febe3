"""The settings of a fit: checked here, passed on as a dictionary."""
# SPDX-License-Identifier: MIT
from __future__ import annotations

import os
from collections.abc import Iterable, Mapping
from typing import Any, Optional, Union

from . import _pelmora
from ._arguments import number, text, texts
from ._records import Record, Table
from .errors import BadData, MissingFile

#: What `equations` may be: the path of an equation file, or names with expressions.
Equations = Union[str, "os.PathLike[str]", Mapping[str, str], Iterable["tuple[str, str] | Equation"]]


class Equation(Record):
    """An equation of a catalogue."""

    name: str
    #: In x, the Roshko number; all other single letters are parameters.
    expression: str
    #: Number of parameters.
    parameters: int


def _catalogue(pairs: Iterable[tuple[str, str]]) -> Table[Equation]:
    return Table((Equation(name=name, expression=expression, parameters=_pelmora.parameter_count(expression))
                  for name, expression in pairs), Equation)


def equations(source: Optional[Equations] = None, *, choose: str = "trusted") -> Table[Equation]:
    """The equations that a fit tries, in the order of their file: the built-in ones, or those of `source`.

    source: the path of an equation file (name TAB expression on each line), a mapping of names to expressions, or
        pairs of both.
    choose: the built-in equations are those of this rule.

    Errors: BadData if there is no equation; MissingFile if there is no such file.

    >>> [equation.name for equation in pelmora.equations()]
    """
    if source is None:
        return _catalogue(_pelmora.built_in_equations(choose))
    text, place = equation_text(source)
    return _catalogue(_pelmora.read_equations(text, place))


def equation_text(source: Equations) -> tuple[str, str]:
    """The text of an equation file, and what a message calls it."""
    if isinstance(source, (str, os.PathLike)):
        path = os.fspath(source)
        try:
            with open(path, encoding="utf-8-sig", errors="replace", newline="") as file:
                return file.read(), f"file '{path}'"
        except FileNotFoundError:
            raise MissingFile(f"there is no equation file '{path}'", where="equations",
                              remedy="name a file, or pass a mapping of names to expressions") from None
    lines = []
    for name, expression in _pairs_of(source):
        if _pelmora.parameter_count(expression) is None:
            raise BadData(f"the expression {expression!r} of equation {name!r} cannot be read", where="equations",
                          remedy="use x, single letters as parameters, + - * / ^ and functions like ln(x)")
        lines.append(f"{name}\t{expression}")
    return "\n".join(lines), "the argument 'equations'"


def _pairs_of(source: Any) -> Iterable[tuple[str, str]]:
    pairs = source.items() if isinstance(source, Mapping) else source
    for pair in pairs if isinstance(pairs, Iterable) else [pairs]:
        if isinstance(pair, Equation):
            pair = (pair.name, pair.expression)
        if isinstance(pair, str) or not hasattr(pair, "__len__") or len(pair) != 2:
            raise BadData(f"{pair!r} is not an equation", where="equations",
                          remedy='pass a mapping of names to expressions, such as {"line": "a+b*x"}')
        yield text(pair[0], "the name of an equation"), text(pair[1], f"equation {pair[0]!r}")


_numbers = ("min", "max", "fit_min", "fit_max", "merge_band")
_flags = ("ratio", "inverted", "cut_overlap", "ignore_residuals")
_names = ("choose", "outside", "spacing")


def fit_settings(*, band: Any, points: Any, max_order: Any, equations: Optional[Equations],
                 only: Union[str, Iterable[str]], without: Union[str, Iterable[str]], **others: Any) -> dict[str, Any]:
    """The dictionary for the module. Errors: BadData."""
    width = number(band, "band")
    if width is None or not width > 0 or width == float("inf"):
        raise BadData(f"the band is {band!r}", where="band", remedy="pass a percentage above 0, such as 0.3")
    count = number(points, "points")
    if count is None or not 2 <= count <= 32767 or int(count) != count:
        raise BadData(f"the curve is to have {points!r} points", where="points", remedy="pass 2 to 32767, such as 40")
    order = number(max_order, "max_order")
    if order is not None and (not 1 <= order <= 1000 or int(order) != order):
        raise BadData(f"max_order is {max_order!r}", where="max_order", remedy="pass a whole number from 1")
    settings: dict[str, Any] = {"band": width, "points": int(count), "max_order": None if order is None else int(order),
                                "equations": None if equations is None else equation_text(equations),
                                "only": texts(only, "only"), "without": texts(without, "without")}
    for name in _numbers:
        settings[name] = number(others[name], name)
    for name in _flags:
        settings[name] = bool(others[name])
    for name in _names:
        settings[name] = text(others[name], name)
    return settings
