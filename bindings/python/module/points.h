// Listing the raw points of a series, leaving some out and taking them back.
// SPDX-License-Identifier: MIT
#pragma once

#include "bindings/python/module/laboratory.h"

namespace pelmora::python {

void bindPoints(py::class_<Laboratory>& type);

}  // namespace pelmora::python
