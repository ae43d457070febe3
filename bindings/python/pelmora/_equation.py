"""Equations of curves."""
# SPDX-License-Identifier: MIT
from __future__ import annotations

from collections.abc import Mapping
from typing import TYPE_CHECKING, Any

if TYPE_CHECKING:
    import numpy as np
    import numpy.typing as npt

    Floats = npt.NDArray[np.float64]


class Parameter(float):
    """The value of a parameter, a float, with its standard error."""

    name: str
    stderr: float

    def __new__(cls, name: str, value: float, stderr: float) -> Parameter:
        parameter = super().__new__(cls, value)
        parameter.name, parameter.stderr = name, stderr
        return parameter

    def __getnewargs__(self) -> tuple[str, float, float]:  # type: ignore[override]
        return self.name, float(self), self.stderr

    @property
    def value(self) -> float:
        """The value alone."""
        return float(self)

    def __repr__(self) -> str:
        return f"{float(self):.9g} +/- {self.stderr:.3g}"


class CurveEquation:
    """The equation of a curve and what is known of its parameters."""

    def __init__(self, record: Mapping[str, Any], coverage: float) -> None:
        self.name: str = record["name"]
        self.expression: str = record["expression"]
        self.params: dict[str, Parameter] = {name: Parameter(name, value, error)
                                             for name, value, error in record["parameters"]}
        self.covar: Floats = record["covar"]
        # How many standard uncertainties the half-widths of the table are.
        self.coverage = coverage
