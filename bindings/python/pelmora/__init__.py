"""Calibration curves of turbine flow meters: keep, derive, fit and report.

    import pelmora

    fit = pelmora.fit(frame["roshko"], frame["strouhal"])
    fit.curve(120.0), fit.curve.eval_uncertainty(120.0)

    with pelmora.open("curves.db") as db:
        db.meter("M1").series["Rotor A"].fit(band=0.3)

Roshko and Strouhal numbers have no unit. Points are float64 arrays of shape (n, 2), Roshko first and rising, unless it
is said otherwise; arrays that belong to a result are views without a copy and cannot be written. Everything tabular
has to_frame() (pandas), to_dict() and to_json().
"""
# SPDX-License-Identifier: MIT
from __future__ import annotations

from . import _pelmora, errors
from ._curve import Curve
from ._database import Database, create, open
from ._details import DetailField, detail_fields
from ._equation import Parameter
from ._fit import EquationResult, Fit, JudgedPoint
from ._fit_points import fit
from ._history import HistoryEntry, Refit, RefitResult, Restored
from ._imports import Calibration, Import
from ._meter import Meter, Run
from ._points import ChangedPoint, DroppedExclusion, ExclusionChange, Point, StandReading
from ._records import Record, Table, to_frame
from ._series import Series
from ._settings import Equation, equations
from ._sign_offs import SignOff
from .errors import (BadData, Cancelled, Changed, Damaged, Error, Exists, Locked, MissingFile, NoFit, NotFound,
                     OutOfRange, PelmoraWarning, Unpicklable, Unusable)

__version__: str = _pelmora.__version__

__all__ = [
    "BadData", "Calibration", "Cancelled", "Changed", "ChangedPoint", "Curve", "Damaged", "Database", "DetailField",
    "DroppedExclusion", "Equation", "EquationResult", "Error", "ExclusionChange", "Exists", "Fit", "HistoryEntry", "Import",
    "JudgedPoint", "Locked", "Meter", "MissingFile", "NoFit", "NotFound", "OutOfRange", "Parameter", "PelmoraWarning",
    "Point", "Record", "Refit", "RefitResult", "Restored", "Run", "Series", "SignOff", "StandReading", "Table",
    "Unpicklable", "Unusable",
    "__version__", "create", "detail_fields", "equations", "errors", "fit", "open", "to_frame",
]
