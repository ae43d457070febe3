"""Numbers as callers have them - scalars, lists, arrays, pandas Series - and back in the same form."""
# SPDX-License-Identifier: MIT
from __future__ import annotations

from collections.abc import Callable
from typing import TYPE_CHECKING, Any

from ._cautions import caution
from .errors import BadData, NotFound

if TYPE_CHECKING:
    import numpy as np
    import numpy.typing as npt

    Floats = npt.NDArray[np.float64]


def is_series(values: Any) -> bool:
    """Whether the values are a pandas Series; pandas need not be there."""
    return hasattr(values, "index") and hasattr(values, "to_numpy") and not isinstance(values, (list, tuple))


def label(values: Any, position: int) -> str:
    """Where a value is, as its owner would look for it."""
    return f"index {values.index[position]!r}" if is_series(values) else f"position {position}"


def numbers(values: Any, name: str) -> Floats:
    """The values as float64 in one dimension. Errors: BadData for anything that is not a number."""
    import numpy as np

    array = np.asarray(values)
    if array.ndim != 1:
        what = f"{values!r:.60}" if array.ndim == 0 else f"an array of shape {array.shape}"
        raise BadData(f"{name} is {what}", where=name,
                      remedy='pass one column: a list, an array or a Series, such as frame["name"]')
    mask: Any = getattr(values, "mask", None) if isinstance(values, np.ma.MaskedArray) else None
    if mask is not None and array.dtype.kind in "fiu":
        present: Floats = np.where(mask, np.nan, array.astype(np.float64))
        return present
    if array.dtype.kind in "fiu":
        return np.ascontiguousarray(array, dtype=np.float64)
    if array.dtype.kind == "O":
        converted = np.empty(len(array))
        for position, value in enumerate(array.tolist()):
            converted[position] = _number(value, values, position, name)
        return converted
    if array.size == 0:
        return np.empty(0)
    held = {"S": "bytes", "b": "truth values", "M": "dates", "m": "times", "c": "complex numbers"}
    if array.dtype.kind == "U":
        _number(array[0].item(), values, 0, name)
    raise BadData(f"{name} holds {held.get(array.dtype.kind, str(array.dtype))}, not real numbers", where=name,
                  remedy="check that it is the right column")


def _number(value: Any, values: Any, position: int, name: str) -> float:
    if value is None or type(value).__name__ == "NAType":
        return float("nan")
    if isinstance(value, (bool, str)) or not hasattr(value, "__float__"):
        raise BadData(f"{name} has {value!r} at {label(values, position)}, which is not a number", where=name,
                      remedy=_remedy_for(value))
    return float(value)


def _remedy_for(value: Any) -> str:
    if not isinstance(value, str):
        return "check that it is the right column"
    try:
        float(value.replace(",", ".", 1))
    except ValueError:
        return ("check that it is the right column; pandas.to_numeric(..., errors='coerce') turns texts into numbers and "
                "the rest into NaN, dropna() drops those")
    if "," in value:
        return "its decimal sign is a comma: read the file with pandas.read_csv(..., decimal=',')"
    return "turn the texts into numbers, with pandas.to_numeric or numpy.asarray(..., dtype=float)"


def require_curve(roshko: Floats, strouhal: Floats) -> None:
    """Whether the columns can be those of one curve. Errors: BadData; a PelmoraWarning for what is unlikely."""
    if roshko.min() == roshko.max():
        raise BadData(f"roshko is {roshko[0]:g} at every point, and a curve needs several flows", where="roshko",
                      remedy="check that it is the right column")
    if not strouhal.any():
        raise BadData("strouhal is 0 at every point", where="strouhal", remedy="check that it is the right column")
    if strouhal.min() == strouhal.max():
        caution(f"strouhal is {strouhal[0]:g} at every point; check that it is the right column")
    elif (roshko == strouhal).all():
        caution("roshko and strouhal are the same numbers; check that they are the right columns")
    elif roshko.min() > 0 and strouhal.min() > 0 and \
            roshko.max() < 1.5 * roshko.min() and strouhal.max() > 10 * strouhal.min():
        caution("roshko is nearly level and strouhal is not; check that they have not changed places")


def finite(values: Any, name: str) -> Floats:
    """As numbers(), and none of them missing. Errors: BadData, with the first bad place."""
    import numpy as np

    array = numbers(values, name)
    bad = ~np.isfinite(array)
    if bad.any():
        first, count = int(bad.argmax()), int(bad.sum())
        what = "NaN" if np.isnan(array[first]) else "infinite"
        several = f", and {count - 1} more" if count > 1 else ""
        raise BadData(f"{name} is {what} at {label(values, first)}{several}", where=name,
                      remedy="leave those points out first: frame.dropna() for a frame, "
                             "x[numpy.isfinite(x)] for an array")
    return array


def columns(roshko: Any, strouhal: Any) -> tuple[Floats, Floats]:
    """Two columns of one set of points. Errors: BadData."""
    x, y = finite(roshko, "roshko"), finite(strouhal, "strouhal")
    if len(x) != len(y):
        raise BadData(f"roshko has {len(x)} values and strouhal {len(y)}", where="roshko, strouhal",
                      remedy="pass two columns of the same points")
    if is_series(roshko) and is_series(strouhal) and not roshko.index.equals(strouhal.index):
        raise BadData("roshko and strouhal have different indexes", where="roshko, strouhal",
                      remedy="take both from one frame, or pass them as arrays if their order is right")
    if len(x) < 2:
        count = "is one point" if len(x) == 1 else "are no points"
        raise BadData(f"there {count}", where="roshko, strouhal", remedy="pass at least two")
    return x, y


def column_of(data: Any, column: Any, name: str) -> Any:
    """The column of a frame or mapping that a caller has named; without data, what was passed."""
    if data is None:
        if isinstance(column, str):
            raise BadData(f"{name} is the text {column!r}", where=name,
                          remedy="pass numbers, or a frame as data= to name its columns")
        return column
    if not isinstance(column, str):
        return column
    if not hasattr(data, "__getitem__") or not hasattr(data, "__contains__") or isinstance(data, str):
        raise BadData(f"data is {data!r}", where="data", remedy="pass a frame, or a mapping of names to columns")
    if column in data:
        return data[column]
    from difflib import get_close_matches

    known = [str(key) for key in data]
    near = [key for key in known if key.lower() == column.lower()] or get_close_matches(column, known, n=3)
    remedy = "did you mean " + " or ".join(map(repr, near)) + "?" if near else "its columns are " + ", ".join(known[:8])
    raise NotFound(f"the data has no column {column!r}", where=name, remedy=remedy)


def through(values: Any, result: str, function: Callable[[Floats], Floats], argument: str = "roshko") -> Any:
    """function(array) in the form of the values: a float for a number, a Series with its index for a Series.

    result, argument: what messages and the Series call them.
    """
    import numpy as np

    if values is None:
        raise BadData(f"{argument} is None", where=argument, remedy="pass a number, a list, an array or a Series")
    if isinstance(values, (int, float)) and not isinstance(values, bool):
        return float(function(np.array([values], dtype=np.float64))[0])
    if is_series(values):
        return _series_like(values, function(numbers(values, argument)), result)
    array = np.asarray(values)
    if array.ndim == 0:
        return float(function(numbers([array.item()], argument))[0])
    if array.ndim == 1:
        return function(numbers(values, argument))
    return function(numbers(array.ravel(), argument)).reshape(array.shape)


def _series_like(values: Any, results: Floats, name: str) -> Any:
    return type(values)(results, index=values.index, name=name)
