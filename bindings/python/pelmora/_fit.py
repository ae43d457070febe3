"""Fits."""
# SPDX-License-Identifier: MIT
from __future__ import annotations

from collections.abc import Iterable
from typing import TYPE_CHECKING, Any, Literal, Optional, Union

from . import _numbers, _pelmora
from ._curve import Curve, CurveEquation, Parameter
from ._progress import Progress, progress_function
from ._records import Record, Table, json_text
from ._settings import Equations, fit_settings
from .errors import BadData, NoFit

if TYPE_CHECKING:
    import numpy as np
    import numpy.typing as npt
    import pandas

    Floats = npt.NDArray[np.float64]


class EquationResult(Record):
    """How an equation of the catalogue did in a fit."""

    _nested = ("parameters", "covar")

    #: From 1, the best.
    rank: int
    name: str
    expression: str
    #: "chosen", "accepted", "bandTestFailed" ...
    verdict: str
    #: Why it was rejected; empty if it was not.
    reason: str
    r2: float
    adjusted_r2: float
    #: Akaike's criterion, corrected for small samples; None if undefined. Smaller is better.
    aicc: Optional[float]
    bic: Optional[float]
    #: The largest residual in per cent, signed, and where it occurs.
    worst_percent: float
    worst_roshko: float
    #: In units of Strouhal.
    residual_standard_error: float
    residual_sum_of_squares: float
    observations: int
    iterations: int
    #: Whether it is linear in its parameters.
    linear: bool
    #: Whether parameters were found, so that the numbers mean anything.
    has_solution: bool
    #: Name, value and standard error of each parameter.
    parameters: list[tuple[str, float, float]]
    #: Covariance of the parameters, shape (p, p).
    covar: Floats


class JudgedPoint(Record):
    """A merged point beside the reference curve of a trusted fit."""

    part: int
    #: From 1, in the order of the part.
    number: int
    roshko: float
    strouhal: float
    #: "used"; "distrusted" if it contradicts the other points and was not fitted; "outside" fit_min to fit_max.
    use: str
    #: From the reference curve, and from that of all other points, in per cent (in units of Strouhal for a series of
    #: both signs).
    residual: float
    loo_residual: float
    #: loo_residual in standard deviations of a good point.
    loo_sigma: float


class Fit:
    """A fit of raw points: what was merged, what was tried, and the curve.

    The names of lmfit work too: ``params``, ``covar``, ``best_fit``, ``residual``, ``eval``, ``eval_uncertainty``,
    ``fit_report()``.
    """

    def __init__(self, result: _pelmora.Fit) -> None:
        self._result = result
        self._equations: Optional[Table[EquationResult]] = None

    @property
    def accepted(self) -> bool:
        """Whether there is a curve."""
        return self._result.accepted

    @property
    def chosen(self) -> str:
        """The name of the chosen equation; empty if there is none."""
        return self.equations[0].name if self.accepted else ""

    @property
    def reason(self) -> str:
        """Why no equation was chosen; empty if one was."""
        return self._result.reason

    @property
    def warnings(self) -> list[str]:
        """Defects of the curve that the tests at the points cannot see, in words."""
        return [warning["text"] for warning in self._result.warnings()]

    @property
    def report(self) -> str:
        """The text that is stored with the curve."""
        return self._result.report.replace("\r\n", "\n")

    @property
    def merged(self) -> Floats:
        """The merged points that were fitted, shape (n, 2): Roshko, rising, and Strouhal. Read-only; no copy."""
        return self._result.merged

    @property
    def cut(self) -> Floats:
        """The points that the merge left out, shape (k, 2): Roshko and Strouhal."""
        return self._result.cut[:, 2:4]

    @property
    def range(self) -> tuple[float, float]:
        """The range of the curve that was asked for, in Roshko."""
        return self._result.range

    @property
    def equations(self) -> Table[EquationResult]:
        """Every equation of the catalogue, from best to worst; to_frame() for pandas."""
        if self._equations is None:
            self._equations = Table((EquationResult(**record) for record in self._result.equations()), EquationResult)
        return self._equations

    @property
    def points(self) -> Table[JudgedPoint]:
        """The merged points as the reference curve of a trusted fit sees them; empty for other fits."""
        trust = self._result.trust
        return Table((JudgedPoint(**record) for record in trust["judged"]) if trust else (), JudgedPoint)

    @property
    def curve(self) -> Curve:
        """The curve. Errors: NoFit if no equation passed the tests."""
        if not self.accepted:
            raise self.no_fit()
        record = self.equations[0].to_dict()
        return Curve(self._result.curve(), self.chosen, lambda: CurveEquation(record, self._result.coverage), title=self._result.series,
                     picture=self._repr_html_)

    @property
    def expression(self) -> str:
        """The chosen equation in x, the Roshko number."""
        return self.curve.expression

    @property
    def params(self) -> dict[str, Parameter]:
        """The parameters of the chosen equation by their letters; each is a float with ``stderr``."""
        return self.curve.params

    @property
    def covar(self) -> Floats:
        """The covariance matrix of the parameters, shape (p, p)."""
        return self.curve.covar

    @property
    def best_fit(self) -> Floats:
        """The curve at the merged points, n values; NaN beyond the curve's range."""
        import numpy as np

        curve, x = self.curve, self.merged[:, 0]
        low, high = curve.range
        inside = (x >= low * (1 - 1e-9)) & (x <= high * (1 + 1e-9))
        values = np.full(len(x), np.nan)
        values[inside] = curve(x[inside])
        return values

    @property
    def residual(self) -> Floats:
        """Merged Strouhal less the curve, n values; NaN beyond the curve's range."""
        residual: Floats = self.merged[:, 1] - self.best_fit
        return residual

    def eval(self, x: Any, *, extrapolate: bool = False) -> Any:
        """As Curve.eval."""
        return self.curve.eval(x, extrapolate=extrapolate)

    def eval_uncertainty(self, x: Any, k: float = 2,
                         kind: Literal["confidence", "prediction"] = "confidence") -> Any:
        """As Curve.eval_uncertainty."""
        return self.curve.eval_uncertainty(x, k, kind)

    def fit_report(self) -> str:
        """What a person wants to know of the fit: equation, statistics, parameters, what was left out, warnings."""
        from ._fit_report import fit_report

        return fit_report(self)

    def plot(self, ax: Any = None, *, k: float = 2, **kwargs: Any) -> Any:
        """Draws the points and the curve with its confidence band of k standard uncertainties; returns the Axes.

        ax: matplotlib Axes; new ones if None. kwargs: for the line of the curve. Needs matplotlib.
        """
        from ._plots import plot_fit

        return plot_fit(self, ax, k, **kwargs)

    def to_frame(self) -> pandas.DataFrame:
        """The merged points with the columns roshko, strouhal, best_fit and residual_percent. Needs pandas."""
        from ._records import pandas_module

        roshko, strouhal, best = self.merged[:, 0], self.merged[:, 1], self.best_fit
        return pandas_module().DataFrame({"roshko": roshko, "strouhal": strouhal, "best_fit": best,
                                          "residual_percent": (strouhal - best) / best * 100})

    def to_dict(self) -> dict[str, Any]:
        """Everything, as dictionaries, lists and numbers."""
        return {"chosen": self.chosen, "accepted": self.accepted, "reason": self.reason, "range": self.range,
                "merged": self.merged.tolist(), "cut": self.cut.tolist(), "warnings": self.warnings,
                "curve": self.curve.to_dict() if self.accepted else None, "equations": self.equations.to_dict()}

    def to_json(self) -> str:
        """As to_dict()."""
        return json_text(self.to_dict())

    def __repr__(self) -> str:
        of = f" of {self._result.series}" if self._result.series else ""
        if not self.accepted:
            return f"<Fit{of}: no curve, {self.reason}>"
        cut = f", {len(self.cut)} cut" if len(self.cut) else ""
        return f"<Fit{of}: {self.chosen}, {len(self.merged)} points{cut}>"

    def _repr_html_(self) -> str:
        return self._result.picture()

    def no_fit(self) -> NoFit:
        """The exception that says why there is no curve and what to do."""
        name, band = self._result.nearest()
        remedy = "check that the columns are Roshko and Strouhal, and the points for outliers"
        if band is not None:
            remedy += f"; {name} would pass a band of {band:g} %"
        error = NoFit(f"no equation fits: {self.reason}", where=self._result.series, remedy=remedy)
        error.fit = self
        return error


def fit(roshko: Any, strouhal: Any, *, part: Any = None, data: Any = None, band: float = 0.3, points: int = 40,
        min: Optional[float] = None, max: Optional[float] = None, fit_min: Optional[float] = None,
        fit_max: Optional[float] = None, choose: str = "trusted", equations: Optional[Equations] = None,
        only: Union[str, Iterable[str]] = (), without: Union[str, Iterable[str]] = (), max_order: Optional[int] = None,
        ratio: bool = False, inverted: bool = False, merge_band: Optional[float] = None, cut_overlap: bool = True,
        ignore_residuals: bool = False, outside: str = "refuse", progress: Progress = None,
        status: Any = None) -> Fit:
    """Fits points that are in no database.

    roshko, strouhal: n numbers each, without a unit: lists, arrays or pandas Series; with `data`, names of its
        columns.
    part: which raw part each point belongs to, n values, at most four different ones: a run in one fluid each. Parts
        are merged: where they overlap, points of one that contradict the other are cut. None: one part.
    data: a frame, or a mapping of names to columns.
    band: how far a point may lie from the curve, in per cent.
    points: of the curve's table, evenly spaced in the logarithm of Roshko; a trusted fit moves them closer together
        where the curve bends, if that is needed.
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

    Errors: BadData for columns that are no numbers, have NaN or different lengths; OutOfRange; NoFit if no equation
        passes the tests: its ``fit`` has what was tried.

    >>> fit = pelmora.fit(frame["roshko"], frame["strouhal"])
    >>> fit.curve(120.0)
    """
    x, y = _numbers.columns(_numbers.column_of(data, roshko, "roshko"), _numbers.column_of(data, strouhal, "strouhal"))
    settings = fit_settings(band=band, points=points, min=min, max=max, fit_min=fit_min, fit_max=fit_max,
                            choose=choose, equations=equations, only=only, without=without, max_order=max_order,
                            ratio=ratio, inverted=inverted, merge_band=merge_band, cut_overlap=cut_overlap,
                            ignore_residuals=ignore_residuals, outside=outside)
    parts = [(x, y)] if part is None else _parts(x, y, _numbers.column_of(data, part, "part") if isinstance(part, str)
                                                 else part)
    result = Fit(_pelmora.fit(parts, settings, status, progress_function(progress)))
    if not result.accepted:
        raise result.no_fit()
    return result


def _parts(x: Floats, y: Floats, part: Iterable[Any]) -> list[tuple[Floats, Floats]]:
    import numpy as np

    labels = np.asarray(part)
    if labels.shape != x.shape:
        raise BadData(f"part has {labels.size} values for {len(x)} points", where="part",
                      remedy="pass one value for each point")
    distinct = list(dict.fromkeys(labels.tolist()))
    if all(isinstance(label, (int, float)) for label in distinct):
        distinct.sort()
    if len(distinct) > 4:
        raise BadData(f"part has {len(distinct)} different values", where="part",
                      remedy="pass at most four: a run in one fluid each")
    return [(x[labels == label], y[labels == label]) for label in distinct]
