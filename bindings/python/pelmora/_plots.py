"""Plots with matplotlib, which is imported by the first of them."""
# SPDX-License-Identifier: MIT
from __future__ import annotations

from collections.abc import Callable
from typing import TYPE_CHECKING, Any

from .errors import BadData, Error, NotFound

if TYPE_CHECKING:
    import numpy as np
    import numpy.typing as npt

    from ._curve import Curve
    from ._fit import Fit

    Floats = npt.NDArray[np.float64]


def _axes(ax: Any, ordinate: str = "Strouhal") -> Any:
    if ax is None:
        try:
            from matplotlib import pyplot
        except ImportError:
            raise Error("matplotlib is not installed", where="plot()",
                        remedy="install matplotlib; a notebook shows the object itself without it") from None
        ax = pyplot.subplots(layout="constrained")[1]
    if not hasattr(ax, "has_data"):
        raise BadData(f"ax is {ax!r:.60}", where="ax", remedy="pass matplotlib Axes, or None for new ones")
    if not ax.has_data():
        ax.set_xscale("log")
        ax.set_xlabel("Roshko")
        ax.set_ylabel(ordinate)
    return ax


def _places(curve: Curve) -> Floats:
    """Every knot of the table, and places between them: straight lines are bent by the scale."""
    import numpy as np

    low, high = curve.range
    if low <= 0:
        return curve.table[:, 0]
    places: Floats = np.unique(np.concatenate([curve.table[:, 0], np.clip(np.geomspace(low, high, 400), low, high)]))
    return places


def plot_curve(curve: Curve, ax: Any, k: float, **kwargs: Any) -> Any:
    """The curve with its band."""
    ax = _axes(ax)
    x = _places(curve)
    y = curve(x)
    kwargs.setdefault("label", curve.name or "curve")
    line, = ax.plot(x, y, **kwargs)
    try:
        half = curve.eval_uncertainty(x, k)
    except NotFound:
        return ax
    ax.fill_between(x, y - half, y + half, color=line.get_color(), alpha=0.2, linewidth=0,
                    label=f"confidence, k = {k:g}")
    return ax


def plot_fit(fit: Fit, ax: Any, k: float, **kwargs: Any) -> Any:
    """Points, those that were cut, and the curve."""
    ax = _axes(ax)
    plot_curve(fit.curve, ax, k, **kwargs)
    _draw_points(fit, ax, lambda x, y: y)
    if len(fit.cut):
        ax.plot(fit.cut[:, 0], fit.cut[:, 1], "x", color="tab:red", label="cut by the merge")
    ax.legend()
    return ax


def plot_deviations(fit: Fit, ax: Any, k: float, **kwargs: Any) -> Any:
    """How far the points are off the curve, in per cent of it, and the band, which Strouhal's scale would hide."""
    import numpy as np

    ax = _axes(ax, "deviation in %")
    x, curve = _places(fit.curve), fit.curve
    half = curve.eval_uncertainty(x, k) / np.abs(curve(x)) * 100
    kwargs.setdefault("label", f"confidence, k = {k:g}")
    kwargs.setdefault("alpha", 0.2)
    ax.fill_between(x, -half, half, linewidth=0, **kwargs)
    ax.axhline(0, color="black", linewidth=0.8)
    low, high = curve.range

    def deviation(x: Floats, y: Floats) -> Floats:
        off: Floats = (y / curve(np.clip(x, low, high)) - 1) * 100
        off[(x < low * (1 - 1e-9)) | (x > high * (1 + 1e-9))] = np.nan
        return off

    _draw_points(fit, ax, deviation)
    ax.legend()
    return ax


def _draw_points(fit: Fit, ax: Any, ordinate: Callable[[Floats, Floats], Floats]) -> None:
    import numpy as np

    ax.plot(fit.merged[:, 0], ordinate(fit.merged[:, 0], fit.merged[:, 1]), "o", color="black", markersize=4, label="points")
    distrusted = [(point.roshko, point.strouhal) for point in fit.points if point.use == "distrusted"]
    if distrusted:
        x, y = np.array(distrusted).T
        ax.plot(x, ordinate(x, y), "o", color="tab:red", markersize=9, fillstyle="none", label="distrusted, not fitted")
