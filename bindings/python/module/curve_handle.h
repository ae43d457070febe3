// A curve as Python holds it: its table, and the function behind it once that is needed.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/calibration/fitted_curve.h>

#include <functional>
#include <optional>
#include <utility>

namespace pelmora::python {

// The interpreter lock guards the function.
class CurveHandle {
 public:
  explicit CurveHandle(calibration::FittedCurve curve)
      : table_(curve.table()), function_(std::move(curve)) {}
  // make: makes the function of a fit, which many callers never need.
  CurveHandle(calibration::Curve table, std::function<calibration::FittedCurve()> make)
      : table_(std::move(table)), make_(std::move(make)) {}

  [[nodiscard]] const calibration::Curve& table() const { return table_; }
  [[nodiscard]] const calibration::FittedCurve& function() const {
    if (!function_) function_ = make_();
    return *function_;
  }

 private:
  calibration::Curve table_;
  mutable std::optional<calibration::FittedCurve> function_;
  std::function<calibration::FittedCurve()> make_;
};

}  // namespace pelmora::python
