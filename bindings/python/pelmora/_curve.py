"""Curves."""
# SPDX-License-Identifier: MIT
from __future__ import annotations

from collections.abc import Sequence
from typing import TYPE_CHECKING, Any, Literal, Optional, Union, overload

from . import _numbers, _pelmora
from ._arguments import number, text
from ._equation import CurveEquation, Parameter
from ._records import json_text, pandas_module
from .errors import BadData, NotFound

if TYPE_CHECKING:
    import numpy as np
    import numpy.typing as npt
    import pandas

    Floats = npt.NDArray[np.float64]
    Kind = Literal["confidence", "prediction", "expanded"]
    Reading = Optional[Literal["linear", "log", "cubic"]]
    Many = Union[Floats, Sequence[float]]


class Curve:
    """A calibration curve: Strouhal as a function of Roshko (both without a unit).

    ``curve(x)`` is the value of the equation itself, or of the reference curve; with ``reading="linear"`` it is read
    from the table, as a flow computer does. It takes a number, a list, an array of any shape or a pandas Series, and
    returns the same form; a Series keeps its index.

    Curves come from ``fit.curve`` and ``series.curve``; they do not change when the database does. They can be pickled.
    """

    def __init__(self, table: _pelmora.Curve, name: str, *, stale: bool = False, title: str = "") -> None:
        self._table, self._name, self._title, self._stale = table, name, title, stale
        self._equation: Optional[CurveEquation] = None

    @property
    def name(self) -> str:
        """The name of its equation; empty if it is not known."""
        return self._name

    @property
    def range(self) -> tuple[float, float]:
        """The lowest and the highest Roshko number of the table."""
        return self._table.range

    @property
    def table(self) -> Floats:
        """The table, shape (n, 2): Roshko, rising, and Strouhal. Read-only; no copy."""
        return self._table.table

    @property
    def source(self) -> str:
        """Where its values come from: "equation", "reference curve" or "table".

        A stored curve that a new fit does not give again is read linearly from its table, and its uncertainty is not
        known.
        """
        return self._table.source

    @property
    def stale(self) -> bool:
        """Whether the points of the series have changed since this curve was fitted and stored."""
        return self._stale

    @property
    def expression(self) -> str:
        """The equation in x, the Roshko number. Errors: as for `params`."""
        return self._require_equation().expression

    @property
    def params(self) -> dict[str, Parameter]:
        """The parameters by their letters; each is a float with ``stderr``.

        A database keeps the table of a curve, not its parameters: for a stored curve they are those of the same fit
        made again.

        Errors: NotFound if the curve has no equation, or a new fit does not give the stored curve again.
        """
        return dict(self._require_equation().params)

    @property
    def covar(self) -> Floats:
        """The covariance matrix of the parameters, shape (p, p), in their order; (0, 0) if it is not known.

        Errors: as for `params`.
        """
        return self._require_equation().covar

    @overload
    def __call__(self, x: float, *, extrapolate: bool = False, reading: Reading = None) -> float: ...

    @overload
    def __call__(self, x: Many, *, extrapolate: bool = False, reading: Reading = None) -> Floats: ...

    @overload
    def __call__(self, x: Any, *, extrapolate: bool = False, reading: Reading = None) -> Any: ...

    def __call__(self, x: Any, *, extrapolate: bool = False, reading: Reading = None) -> Any:
        return self.eval(x, extrapolate=extrapolate, reading=reading)

    @overload
    def eval(self, x: float, *, extrapolate: bool = False, reading: Reading = None) -> float: ...

    @overload
    def eval(self, x: Many, *, extrapolate: bool = False, reading: Reading = None) -> Floats: ...

    @overload
    def eval(self, x: Any, *, extrapolate: bool = False, reading: Reading = None) -> Any: ...

    def eval(self, x: Any, *, extrapolate: bool = False, reading: Reading = None) -> Any:
        """Strouhal at the Roshko numbers x.

        extrapolate: beyond the range, continue the straight line through the two outermost points of the table.
        reading: None for the curve itself; "linear", "log" (linear in ln Roshko) or "cubic" reads the table.

        Errors: OutOfRange (a ValueError) outside `range` unless extrapolate; BadData for NaN and another reading.
        """
        read = _reading(reading)
        return _numbers.through(x, "strouhal", lambda places: self._table.strouhal(places, bool(extrapolate), read))

    @overload
    def eval_uncertainty(self, x: float, k: float = 2, kind: Kind = "confidence", *,
                         reading: Reading = None, viscosity: Optional[float] = None) -> float: ...

    @overload
    def eval_uncertainty(self, x: Many, k: float = 2, kind: Kind = "confidence", *,
                         reading: Reading = None, viscosity: Optional[float] = None) -> Floats: ...

    @overload
    def eval_uncertainty(self, x: Any, k: float = 2, kind: Kind = "confidence", *,
                         reading: Reading = None, viscosity: Optional[float] = None) -> Any: ...

    def eval_uncertainty(self, x: Any, k: float = 2, kind: str = "confidence", *,
                         reading: Reading = None, viscosity: Optional[float] = None) -> Any:
        """Half-widths of a band around the curve at the Roshko numbers x, in units of Strouhal.

        kind: "confidence" and "prediction" are k standard uncertainties from the scatter of the points alone: of the
            curve, or of one more measurement. In a trusted fit the distance between the curve and the reference curve
            is part of it. "expanded" is U as `pelmora evaluate` states it, times k / 2. It covers the curve and, if
            the uncertainty of a stand is stored with the calibration, everything that the stand states.
        reading: for "expanded", how the value is read from the table; the reading error is then part of U.
        viscosity: for "expanded", in cSt; needed if the stand's uncertainty is stated in units rather than per cent.

        Errors: BadData for another kind; NotFound if it is not known for this curve; as for `eval`.
        """
        if kind not in ("confidence", "prediction", "expanded"):
            raise BadData(f"there is no band of kind {kind!r}", where="kind",
                          remedy="use 'confidence', 'prediction' or 'expanded'")
        factor = number(k, "k") or 0.0
        if factor <= 0:
            raise BadData(f"k is {k!r}", where="k", remedy="pass the number of standard uncertainties, such as 2")
        read, viscous = _reading(reading), number(viscosity, "viscosity")
        if not self._table.has_bands:
            raise NotFound("the uncertainty of this curve is not known", where=self._title,
                           remedy="fit the series again")
        if kind == "expanded":
            return _numbers.through(x, kind,
                                    lambda places: self._table.expanded(places, read, viscous) * (factor / 2))
        scale = factor / self._require_equation().coverage

        def half_widths(places: Floats) -> Floats:
            return self._table.half_widths(places, kind == "prediction") * scale

        return _numbers.through(x, kind, half_widths)

    def flow(self, frequency: Any, viscosity: Any, temperature: Any = None) -> Any:
        """The volume flow at which a rotor in service has this frequency, in the same form as `frequency`.

        frequency: in Hz.
        viscosity: kinematic, in cSt: one number, or one for each frequency.
        temperature: in degrees F, for the thermal expansion of a body of stainless steel: one number, or one for each
            frequency; 70 if None.

        Returns volumes per second in the calibration's unit: gallons per second for pulses per gallon.

        Errors: BadData for values that are not above 0, different lengths and a series that is a quotient of rotors;
            OutOfRange beyond the curve.
        """
        import numpy as np

        def flows(values: Floats) -> Floats:
            def beside(more: Any, name: str) -> Floats:
                array = _numbers.numbers(np.atleast_1d(more) if np.ndim(more) == 0 else np.ravel(more), name)
                if np.ndim(more) and array.size != values.size:
                    raise BadData(f"{name} has {array.size} values for {values.size} frequencies", where=name,
                                  remedy="pass one number, or one for each frequency")
                return np.ascontiguousarray(np.broadcast_to(array, values.shape))

            return self._table.flow(values, beside(viscosity, "viscosity"),
                                    beside(70.0 if temperature is None else temperature, "temperature"))

        return _numbers.through(frequency, "flow", flows, "frequency")

    @overload
    def inverse(self, y: float, *, extrapolate: bool = False) -> float: ...

    @overload
    def inverse(self, y: Many, *, extrapolate: bool = False) -> Floats: ...

    @overload
    def inverse(self, y: Any, *, extrapolate: bool = False) -> Any: ...

    def inverse(self, y: Any, *, extrapolate: bool = False) -> Any:
        """Roshko at the Strouhal numbers y.

        Errors: BadData if the curve turns, so that there is no single answer, and for NaN; OutOfRange for a Strouhal
        number that the table does not reach, unless extrapolate.
        """
        return _numbers.through(y, "roshko", lambda values: self._table.roshko(values, bool(extrapolate)), "strouhal")

    @overload
    def derivative(self, x: float, *, extrapolate: bool = False) -> float: ...

    @overload
    def derivative(self, x: Many, *, extrapolate: bool = False) -> Floats: ...

    @overload
    def derivative(self, x: Any, *, extrapolate: bool = False) -> Any: ...

    def derivative(self, x: Any, *, extrapolate: bool = False) -> Any:
        """d Strouhal / d Roshko at the Roshko numbers x.

        Errors: as for `eval`.
        """
        return _numbers.through(x, "derivative", lambda places: self._table.slope(places, bool(extrapolate)))

    def to_frame(self) -> pandas.DataFrame:
        """The table with the columns roshko and strouhal. Needs pandas."""
        return pandas_module().DataFrame(self.table, columns=["roshko", "strouhal"])

    def to_dict(self) -> dict[str, Any]:
        """Name, range and table; with the expression and the parameters if they are known."""
        values: dict[str, Any] = {"name": self.name, "range": self.range, "stale": self.stale,
                                  "table": self.table.tolist(), "expression": None, "params": None}
        try:
            equation = self._require_equation()
        except NotFound:
            return values
        values["expression"] = equation.expression
        values["params"] = {name: {"value": value.value, "stderr": value.stderr}
                            for name, value in equation.params.items()}
        return values

    def to_json(self) -> str:
        """As to_dict()."""
        return json_text(self.to_dict())

    def plot(self, ax: Any = None, *, k: float = 2, **kwargs: Any) -> Any:
        """Draws the curve with its confidence band of k standard uncertainties; returns the Axes.

        ax: matplotlib Axes; new ones if None. kwargs: for the line. Needs matplotlib.
        """
        from ._plots import plot_curve

        return plot_curve(self, ax, k, **kwargs)

    def __repr__(self) -> str:
        low, high = self.range
        of = f" of {self._title}" if self._title else ""
        stale = ", stale" if self.stale else ""
        return f"<Curve{of}: {self.name or 'equation unknown'}, Roshko {low:.6g} to {high:.6g}{stale}>"

    def _repr_html_(self) -> Optional[str]:
        return self._table.picture()

    def __reduce__(self) -> Any:
        return _curve_from, (self._table.to_bytes(), self._name, self._stale, self._title)

    def _require_equation(self) -> CurveEquation:
        if self._equation is not None:
            return self._equation
        found = self._table.equation
        if found is None:
            raise NotFound("the equation of this curve is not known: it is not kept with the curve, and a new fit "
                           "with its settings gives another curve", where=self._title, remedy="fit the series again")
        self._equation = CurveEquation(*found)
        return self._equation


def _curve_from(pickled: bytes, name: str, stale: bool, title: str) -> Curve:
    return Curve(_pelmora.curve_from(pickled), name, stale=stale, title=title)


def _reading(reading: Any) -> str:
    return "" if reading is None else text(reading, "reading")
