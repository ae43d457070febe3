// The table of a fit, with its points placed for the smallest reading error.
// SPDX-License-Identifier: MIT
#pragma once

#include "curves/table_size.h"

#include <pelmora/calibration/fit.h>

#include <functional>
#include <vector>

namespace pelmora::calibration {

// Roshko numbers from fit.min to fit.max, placed for linear reading of the curve.
//
// goOn: called often meanwhile; what it throws ends the search.
// Errors: BadData if the curve has no relative error.
[[nodiscard]] std::vector<double> optimalGrid(const Fit& fit, const CurveSamples& curve,
                                              const std::function<void()>& goOn);

// Puts a table in place of the chosen equation's: curve, prediction and report of the fit.
void replaceTable(Fit& fit, const std::vector<double>& roshko, const std::vector<double>& strouhal);

}  // namespace pelmora::calibration
