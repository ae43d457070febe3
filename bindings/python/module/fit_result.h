// A fit as Python holds it: shared, never changed.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/calibration/fit.h>

#include <memory>
#include <utility>

namespace pelmora::python {

class FitResult {
 public:
  explicit FitResult(calibration::Fit fit)
      : fit_(std::make_shared<const calibration::Fit>(std::move(fit))) {}

  const calibration::Fit& operator*() const { return *fit_; }
  const calibration::Fit* operator->() const { return fit_.get(); }

 private:
  std::shared_ptr<const calibration::Fit> fit_;
};

}  // namespace pelmora::python
