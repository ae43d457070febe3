// The function behind a stored table: the one that was fitted.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/calibration/fitted_curve.h>

#include <memory>
#include <optional>
#include <span>
#include <stop_token>
#include <string>
#include <vector>

namespace pelmora::calibration {

// The function at one Roshko number.
struct FunctionValue {
  double strouhal = 0, slope = 0, bend = 0;  // bend: the second derivative
  std::optional<double> uncertainty;         // standard, of the curve itself
  // Standard deviation of one measured point about the curve; with the same degrees of freedom.
  std::optional<double> scatter;
  double degrees = 0;  // of freedom, behind both
  // Distance of a trusted equation from the reference curve, which shows what the equation misses.
  double departure = 0;
};

class CurveFunction {
 public:
  virtual ~CurveFunction() = default;
  [[nodiscard]] virtual CurveSource source() const = 0;
  [[nodiscard]] virtual std::vector<double> values(std::span<const double> roshko) const = 0;
  [[nodiscard]] virtual std::vector<FunctionValue> at(std::span<const double> roshko) const = 0;
};

// The chosen equation, or the reference curve if a trusted fit chose that. Fits this one curve
// again.
//
// Errors: NoFit if the fit has no curve; Cancelled at a stop.
[[nodiscard]] std::shared_ptr<const CurveFunction> functionOf(const Fit& fit,
                                                              const std::stop_token& stop = {});
[[nodiscard]] std::shared_ptr<const CurveFunction> functionOf(const Curve& table);

}  // namespace pelmora::calibration
