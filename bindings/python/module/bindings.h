// The parts of the module `_pelmora`. Each function adds its classes and functions.
// SPDX-License-Identifier: MIT
#pragma once

#include "bindings/python/module/conversion.h"

namespace pelmora::python {

void bindCurve(py::module_& module);         // Curve
void bindFit(py::module_& module);           // Settings, Fit, fit(), equations
void bindValues(py::module_& module);        // Meter, StoredSeries
void bindDetailFields(py::module_& module);  // detail_fields()
void bindDatabase(py::module_& module);      // Database

}  // namespace pelmora::python
