"""Fits of points that are in no database."""
# SPDX-License-Identifier: MIT
from __future__ import annotations

from collections.abc import Iterable
from typing import TYPE_CHECKING, Any, Optional, Union

from . import _numbers, _pelmora
from ._cautions import caution
from ._fit import Fit
from ._progress import Progress, progress_function, status_function
from ._settings import Equations, fit_settings
from .errors import BadData

if TYPE_CHECKING:
    import numpy as np
    import numpy.typing as npt

    Floats = npt.NDArray[np.float64]


def fit(roshko: Any, strouhal: Any, *, part: Any = None, data: Any = None, band: float = 0.3, points: int = 40,
        min: Optional[float] = None, max: Optional[float] = None, fit_min: Optional[float] = None,
        fit_max: Optional[float] = None, choose: str = "trusted", equations: Optional[Equations] = None,
        only: Union[str, Iterable[str]] = (), without: Union[str, Iterable[str]] = (), max_order: Optional[int] = None,
        ratio: bool = False, inverted: bool = False, merge_band: Optional[float] = None, cut_overlap: bool = True,
        ignore_residuals: bool = False, outside: str = "refuse", spacing: str = "usual", progress: Progress = None,
        status: Any = None) -> Fit:
    """Fits points that are in no database.

    roshko, strouhal: n numbers each, without a unit: lists, arrays or pandas Series; with `data`, names of its
        columns.
    part: which raw part each point belongs to, n values, at most four different ones: a run in one fluid each. Parts
        are merged: where they overlap, points of one that contradict the other are cut. None: one part.
    data: a frame, or a mapping of names to columns.
    band: how far a point may lie from the curve, in per cent.
    points: how many points the curve's table has.
    spacing: where they lie. "usual": evenly in the logarithm of Roshko, closer together where a trusted curve bends.
        "optimal": where linear reading between them has the smallest error.
    min, max: the range of the table, in Roshko; they crop the table, not the points. None: the end of the points.
    fit_min, fit_max: points beyond are not fitted.
    choose: "trusted": the simplest equation that stays with a smooth reference curve over the whole range, or that
        reference curve itself; "adjusted-r2": of the equations that pass at the points, the one with the highest
        adjusted R2.
    equations: what to try instead of the built-in equations, see `pelmora.equations`.
    only, without: names of equations: only these, or all but these. max_order: the highest order of polynomials.
    ratio: a rotor ratio; its curve must fall with Roshko.
    inverted, merge_band, cut_overlap: how parts are merged: from the other end; how far trailing points may be off
        the other part, in per cent; False keeps every point.
    ignore_residuals: skip the residual test.
    outside: what to do if min or max are beyond the points: "refuse", "whole" (the range of the points) or
        "extrapolate".
    progress: a function of (done, of), a tqdm bar, or True. status: a function of a text.

    Columns that look like a mistake, such as a Strouhal number that never changes, are fitted with a PelmoraWarning.

    Errors: BadData for columns that are not numbers, have NaN or different lengths, and for a single Roshko number;
        OutOfRange; NoFit if no equation passes the tests: its ``fit`` has what was tried.

    >>> fit = pelmora.fit(frame["roshko"], frame["strouhal"])
    >>> fit.curve(120.0)
    """
    x, y = _numbers.columns(_numbers.column_of(data, roshko, "roshko"), _numbers.column_of(data, strouhal, "strouhal"))
    _numbers.require_curve(x, y)
    settings = fit_settings(band=band, points=points, min=min, max=max, fit_min=fit_min, fit_max=fit_max,
                            choose=choose, equations=equations, only=only, without=without, max_order=max_order,
                            ratio=ratio, inverted=inverted, merge_band=merge_band, cut_overlap=cut_overlap,
                            ignore_residuals=ignore_residuals, outside=outside, spacing=spacing)
    parts = [(x, y)] if part is None else _parts(x, y, _numbers.column_of(data, part, "part") if isinstance(part, str)
                                                 else part)
    result = Fit(_pelmora.fit(parts, settings, status_function(status), progress_function(progress)))
    if not result.accepted:
        raise result.no_fit()
    return result


def _parts(x: Floats, y: Floats, part: Iterable[Any]) -> list[tuple[Floats, Floats]]:
    import numpy as np

    labels = np.asarray(part)
    if labels.dtype.kind == "f" and np.isnan(labels).any():
        place = _numbers.label(part, int(np.isnan(labels).argmax()))
        raise BadData(f"part is NaN at {place}", where="part", remedy="leave those points out first: frame.dropna()")
    if labels.shape != x.shape:
        what = f"is {part!r:.60}" if labels.ndim == 0 else f"has {labels.size} values for {len(x)} points"
        raise BadData(f"part {what}", where="part",
                      remedy="pass one value for each point")
    distinct = list(dict.fromkeys(labels.tolist()))
    if all(isinstance(label, (int, float)) for label in distinct):
        distinct.sort()
    if len(distinct) > 4:
        raise BadData(f"part has {len(distinct)} different values", where="part",
                      remedy="pass at most four: a run in one fluid each")
    for label in distinct:
        if (labels == label).sum() == 1:
            caution(f"part {label!r} has a single point, which is not fitted; leave the point out, or put it into "
                    "another part")
    return [(x[labels == label], y[labels == label]) for label in distinct]
