"""A fit in words, for people."""
# SPDX-License-Identifier: MIT
from __future__ import annotations

from typing import TYPE_CHECKING

if TYPE_CHECKING:
    from ._fit import Fit


def _indented(title: str, lines: list[str]) -> list[str]:
    return [f"[[{title}]]", *("    " + line for line in lines)] if lines else []


def _statistics(fit: Fit) -> list[str]:
    equation = fit.equations[0]
    rows = [("points", f"{equation.observations}"), ("parameters", f"{len(equation.parameters)}"),
            ("residual standard error", f"{equation.residual_standard_error:.4g}"),
            ("worst residual", f"{equation.worst_percent:+.3g} % at Roshko {equation.worst_roshko:.6g}"),
            ("adjusted R2", f"{equation.adjusted_r2:.9f}")]
    if equation.aicc is not None:
        rows.append(("AICc", f"{equation.aicc:.2f}"))
    return [f"{name:<24} = {value}" for name, value in rows]


def _parameters(fit: Fit) -> list[str]:
    lines = []
    for name, value in fit.params.items():
        share = f" ({abs(value.stderr / value) * 100:.2g} %)" if value else ""
        lines.append(f"{name}: {float(value): .9g} +/- {value.stderr:.3g}{share}")
    return lines


def _correlations(fit: Fit) -> list[str]:
    import numpy as np

    covar, names = fit.covar, list(fit.params)
    if not len(covar):
        return []
    deviation = np.sqrt(np.diag(covar))
    with np.errstate(divide="ignore", invalid="ignore"):
        correlation = covar / np.outer(deviation, deviation)
    pairs = [(float(correlation[i, j]), f"C({names[i]}, {names[j]})")
             for i in range(len(names)) for j in range(i) if np.isfinite(correlation[i, j])]
    pairs.sort(key=lambda pair: -abs(pair[0]))
    return [f"{name} = {value:+.4f}" for value, name in pairs[:8]]


def fit_report(fit: Fit) -> str:
    """The report of Fit.fit_report()."""
    if not fit.accepted:
        tried = [f"{equation.name}: {equation.reason}" for equation in fit.equations]
        return "\n".join(_indented("No curve", [fit.reason]) + _indented("Tried", tried))
    low, high = fit.curve.range
    cut = [f"Roshko {x:.6g}, Strouhal {y:.6g}" for x, y in fit.cut]
    lines = _indented("Curve", [f"{fit.chosen}: {fit.expression}", f"Roshko {low:.6g} to {high:.6g}"])
    lines += _indented("Statistics", _statistics(fit)) + _indented("Parameters", _parameters(fit))
    lines += _indented("Correlations (the largest)", _correlations(fit))
    lines += _indented("Points left out by the merge", cut) + _indented("Warnings", fit.warnings)
    return "\n".join(lines)
