// What tests at the raw points cannot see in a fitted curve.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/fit_engine.h>
#include <pelmora/fit_outcome.h>

#include <cstddef>
#include <span>
#include <vector>

namespace pelmora {

// The curve to check with the n points it was fitted to and its m predicted points.
struct CheckedCurve {
  const FitModel& model;
  const FitStatistics& statistics;
  std::size_t parameters;
  std::span<const double> rawX;
  std::span<const double> predictedX, predictedY;
  double bandPercent;
};

// Warnings in the order of CurveWarningKind, each kind by rising x; none where a raw x is not
// finite. Of a model that gives no samples only what the points alone tell: few levels,
// extrapolation.
//
// Errors: Error 9 if the model delivers samples, but not one for each x.
[[nodiscard]] std::vector<CurveWarning> checkCurve(const CheckedCurve& curve);

// Values of x that count as one: measured at the same flow.
struct Level {
  double from, to;
  std::size_t count;
};

// The distinct levels of x, rising: neighbours closer than a fifth of the mean spacing (of ln x
// where all x are positive) belong to one level. `x` is sorted.
[[nodiscard]] std::vector<Level> levelsOf(std::span<const double> x);
[[nodiscard]] std::size_t distinctLevels(std::span<const double> x);

}  // namespace pelmora
