// The settings of a fit, from the dictionary that the package passes.
// SPDX-License-Identifier: MIT
#pragma once

#include "bindings/python/module/conversion.h"

#include <pelmora/calibration/fit.h>

namespace pelmora::python {

// Keys: as the keyword arguments of pelmora.fit; all of them have to be there. `equations` is None
// or a text and what a message calls it.
//
// Errors: BadData for a rule of choice or a policy that does not exist, and for equations.
[[nodiscard]] calibration::FitSettings fitSettingsOf(const py::dict& values);

// "trusted" or "adjusted-r2". Errors: BadData.
[[nodiscard]] calibration::Choice choiceNamed(const std::string& name);

}  // namespace pelmora::python
