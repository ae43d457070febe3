// The parts of the class Database of the module. Each function adds its methods.
// SPDX-License-Identifier: MIT
#pragma once

#include "bindings/python/module/laboratory.h"

namespace pelmora::python {

void bindImport(py::class_<Laboratory>& type);   // runs of a stand, raw points
void bindPoints(py::class_<Laboratory>& type);   // listing raw points, leaving some out
void bindDetails(py::class_<Laboratory>& type);  // what certificates state, and the stand
void bindSignOffs(py::class_<Laboratory>& type);
void bindReports(py::class_<Laboratory>& type);  // reports and pictures

}  // namespace pelmora::python
