"""Plots with matplotlib, which is imported by the first of them."""
# SPDX-License-Identifier: MIT
from __future__ import annotations

from typing import TYPE_CHECKING, Any

from .errors import Error, NotFound

if TYPE_CHECKING:
    from ._curve import Curve
    from ._fit import Fit


def _axes(ax: Any) -> Any:
    if ax is None:
        try:
            from matplotlib import pyplot
        except ImportError:
            raise Error("matplotlib is not installed", where="plot()",
                        remedy="install matplotlib; a notebook shows the object itself without it") from None
        ax = pyplot.subplots()[1]
    if not ax.has_data():
        ax.set_xscale("log")
        ax.set_xlabel("Roshko")
        ax.set_ylabel("Strouhal")
    return ax


def plot_curve(curve: Curve, ax: Any, k: float, **kwargs: Any) -> Any:
    """The curve with its band."""
    import numpy as np

    ax = _axes(ax)
    low, high = curve.range
    # Every knot of the table, and places between them: straight lines are bent by the scale.
    x = np.unique(np.concatenate([curve.table[:, 0], np.clip(np.geomspace(low, high, 400), low, high)])
                  if low > 0 else curve.table[:, 0])
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
    ax.plot(fit.merged[:, 0], fit.merged[:, 1], "o", color="black", markersize=4, label="points")
    distrusted = [(point.roshko, point.strouhal) for point in fit.points if point.use == "distrusted"]
    if distrusted:
        ax.plot(*zip(*distrusted), "o", color="tab:red", markersize=9, fillstyle="none", label="distrusted, not fitted")
    if len(fit.cut):
        ax.plot(fit.cut[:, 0], fit.cut[:, 1], "x", color="tab:red", label="cut by the merge")
    ax.legend()
    return ax
