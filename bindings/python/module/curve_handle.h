// A curve as Python holds it: its table, and the function behind it once that is needed.
// SPDX-License-Identifier: MIT
#pragma once

#include "bindings/python/module/fit_result.h"

#include <pelmora/calibration/fitted_curve.h>

#include <optional>
#include <string>

namespace pelmora::python {

// The interpreter lock guards the function.
class CurveHandle {
 public:
  // The curve of a fit. statement: of the stand that measured the points.
  //
  // Errors: NoFit if the fit has no curve.
  explicit CurveHandle(FitResult fit, std::optional<calibration::StandStatement> statement = {});
  // A stored table whose fit cannot be reproduced.
  CurveHandle(calibration::Curve table, std::string series);

  [[nodiscard]] const calibration::Curve& table() const { return table_; }
  // Made when it is first needed, in a thread of its own with the interpreter lock released.
  [[nodiscard]] const calibration::FittedCurve& function() const;

  // What the curve consists of.
  [[nodiscard]] const std::optional<FitResult>& fit() const { return fit_; }
  [[nodiscard]] const std::optional<calibration::StandStatement>& statement() const {
    return statement_;
  }
  [[nodiscard]] const std::string& series() const { return series_; }

 private:
  std::optional<FitResult> fit_;
  std::optional<calibration::StandStatement> statement_;
  std::string series_;
  calibration::Curve table_;
  mutable std::optional<calibration::FittedCurve> function_;
};

}  // namespace pelmora::python
