// The drift of a meter at one Roshko number, row by row.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/calibration/drift.h>

#include <cstddef>
#include <string>
#include <vector>

namespace pelmora::report {

// What the last cell says of a significant shift, and of a value beyond the control limits.
struct DriftVerdicts {
  std::string shift, limit;
};

// The cells of calibration `i`: calibration and date, Strouhal, its U in per cent, change since the
// first one in per cent, change since the previous one with its U and En, and the verdicts. "-"
// stands for what is not known.
[[nodiscard]] std::vector<std::string> driftCells(const calibration::Drift& drift,
                                                  const calibration::DriftPlace& place,
                                                  std::size_t i, const DriftVerdicts& verdicts);

// "Control limits -0.1 % to +0.2 %, from the moving range of 7 calibrations."; empty without a
// chart.
[[nodiscard]] std::string controlLimitsText(const calibration::DriftPlace& place);

}  // namespace pelmora::report
