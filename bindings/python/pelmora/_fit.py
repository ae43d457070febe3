"""Fits."""
# SPDX-License-Identifier: MIT
from __future__ import annotations

from typing import TYPE_CHECKING, Any, Optional

from . import _pelmora
from ._curve import Curve
from ._equation import Parameter
from ._records import Record, Table, json_text
from .errors import NoFit

if TYPE_CHECKING:
    import numpy as np
    import numpy.typing as npt
    import pandas

    from ._curve import Kind, Reading

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
    ``fit_report()``. A fit can be pickled; what is read from it elsewhere is the same to the last digit.
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
        return self._result.chosen

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
        return self._equations[:]  # a list of the caller's own

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
        return Curve(self._result.curve(), self.chosen, title=self._result.series)

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

    def eval(self, x: Any, *, extrapolate: bool = False, reading: Reading = None) -> Any:
        """As Curve.eval."""
        return self.curve.eval(x, extrapolate=extrapolate, reading=reading)

    def eval_uncertainty(self, x: Any, k: float = 2, kind: Kind = "confidence", *, reading: Reading = None,
                         viscosity: Optional[float] = None) -> Any:
        """As Curve.eval_uncertainty."""
        return self.curve.eval_uncertainty(x, k, kind, reading=reading, viscosity=viscosity)

    def fit_report(self) -> str:
        """What a person wants to know of the fit: equation, statistics, parameters, what was left out, warnings."""
        from ._fit_report import fit_report

        return fit_report(self)

    def plot(self, ax: Any = None, *, k: float = 2, deviations: bool = False, **kwargs: Any) -> Any:
        """Draws the points and the curve with its confidence band of k standard uncertainties; returns the Axes.

        ax: matplotlib Axes; new ones if None.
        deviations: draws how far the points are off the curve, in per cent of it: the band is then wide enough to see.
        kwargs: for the line of the curve, or for the band of the deviations. Needs matplotlib.
        """
        from ._plots import plot_deviations, plot_fit

        return plot_deviations(self, ax, k, **kwargs) if deviations else plot_fit(self, ax, k, **kwargs)

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
        count = len(self.warnings)
        warned = f", {count} warning{'s' if count > 1 else ''}" if count else ""
        return f"<Fit{of}: {self.chosen}, {len(self.merged)} points{cut}{warned}>"

    def _repr_html_(self) -> str:
        return self._result.picture()

    def __reduce__(self) -> Any:
        return _fit_from, (self._result.to_bytes(),)

    def no_fit(self) -> NoFit:
        """The exception that says why there is no curve and what to do."""
        name, band = self._result.nearest()
        remedy = "check that the columns are Roshko and Strouhal, and the points for outliers"
        if band is not None:
            remedy += f"; {name} would pass a band of {band:g} %"
        error = NoFit(f"no equation fits: {self.reason}", where=self._result.series, remedy=remedy)
        error.fit = self
        return error


def _fit_from(pickled: bytes) -> Fit:
    return Fit(_pelmora.fit_from(pickled))
