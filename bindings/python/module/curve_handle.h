// A curve as Python holds it: its table, and the function behind it once that is needed.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/calibration/fitted_curve.h>

#include <functional>
#include <memory>
#include <optional>
#include <utility>

namespace pelmora::python {

// Copies share the function. The interpreter lock guards it.
class CurveHandle {
 public:
  explicit CurveHandle(calibration::FittedCurve curve)
      : table_(std::make_shared<const calibration::Curve>(curve.table())),
        made_(std::make_shared<Made>()) {
    made_->curve = std::move(curve);
  }
  // make: of a fit, whose function many callers never ask for.
  CurveHandle(calibration::Curve table, std::function<calibration::FittedCurve()> make)
      : table_(std::make_shared<const calibration::Curve>(std::move(table))),
        made_(std::make_shared<Made>()) {
    made_->make = std::move(make);
  }

  [[nodiscard]] const calibration::Curve& table() const { return *table_; }
  [[nodiscard]] const calibration::FittedCurve& function() const {
    if (!made_->curve) made_->curve = made_->make();
    return *made_->curve;
  }

 private:
  struct Made {
    std::optional<calibration::FittedCurve> curve;
    std::function<calibration::FittedCurve()> make;
  };
  std::shared_ptr<const calibration::Curve> table_;
  std::shared_ptr<Made> made_;
};

}  // namespace pelmora::python
