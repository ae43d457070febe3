// SPDX-License-Identifier: MIT
#include "tables/sampled_curve.h"

#include "base/readable_number.h"

#include <pelmora/calibration/failure.h>

#include <algorithm>
#include <cmath>
#include <string>

namespace pelmora::tables {
namespace {

constexpr int namedDigits = 6;

void requireSample(double x, double y, double before) {
  const std::string place = "at x = " + significantText(x, namedDigits);
  if (!std::isfinite(y)) {
    throw calibration::BadData(
        {"the curve has no value " + place, "", "choose a range in which the curve is defined"});
  }
  if (y == 0 || (y < 0) != (before < 0)) {
    throw calibration::BadData({"the curve is zero " + place + ", so that it has no relative error",
                                "", "choose a range on one side of it"});
  }
}

}  // namespace

SampledCurve::SampledCurve(const Curve& curve, Range range, std::size_t samples) : range_(range) {
  if (!(range.low > 0) || !(range.high > range.low) || !std::isfinite(range.high)) {
    throw calibration::BadData(
        {"the range of a table starts above 0 and ends above its start", "", "correct the range"});
  }
  x_.resize(samples + 1);
  for (std::size_t i = 0; i <= samples; ++i) x_[i] = xAt(static_cast<double>(i));
  y_ = curve(x_);
  if (y_.size() != x_.size())
    throw calibration::BadData({"the curve gives too few values", "", "check the callable"});
  for (std::size_t i = 0; i < x_.size(); ++i) requireSample(x_[i], y_[i], y_.front());
}

double SampledCurve::xAt(double place) const {
  const double share = place / static_cast<double>(samples());
  if (share <= 0) return range_.low;
  if (share >= 1) return range_.high;
  return range_.low * std::pow(range_.high / range_.low, share);
}

double SampledCurve::yAt(double place) const {
  const auto whole = static_cast<std::ptrdiff_t>(place);
  const auto last = static_cast<std::ptrdiff_t>(samples());
  const std::ptrdiff_t first = std::clamp<std::ptrdiff_t>(whole - 1, 0, last - 3);
  const double t = place - static_cast<double>(first);  // samples at 0, 1, 2, 3
  const auto y = [&](std::ptrdiff_t k) { return y_[static_cast<std::size_t>(first + k)]; };
  return -y(0) * (t - 1) * (t - 2) * (t - 3) / 6 + y(1) * t * (t - 2) * (t - 3) / 2 -
         y(2) * t * (t - 1) * (t - 3) / 2 + y(3) * t * (t - 1) * (t - 2) / 6;
}

}  // namespace pelmora::tables
