// SPDX-License-Identifier: MIT
#include "report/plot_scale.h"

#include "base/readable_number.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace pelmora::report {
namespace {

constexpr int labelDigits = 12;  // enough for a step of nice numbers, not for its rounding

std::optional<std::pair<double, double>> finiteRange(const std::vector<double>& values) {
  std::optional<std::pair<double, double>> range;
  for (const double value : values) {
    if (!std::isfinite(value)) continue;
    if (!range) range = {value, value};
    range->first = std::min(range->first, value);
    range->second = std::max(range->second, value);
  }
  return range;
}

// 1, 2 or 5 times a power of ten, so that about `wanted` steps make the range.
double niceStep(double range, int wanted) {
  const double rough = range / wanted;
  const double power = std::pow(10.0, std::floor(std::log10(rough)));
  const double digit = rough / power;
  return power * (digit <= 1 ? 1 : digit <= 2 ? 2 : digit <= 5 ? 5 : 10);
}

std::vector<Tick> linearTicks(double low, double high, int wanted) {
  std::vector<Tick> ticks;
  const double step = niceStep(high - low, wanted);
  for (double n = std::ceil(low / step); n * step <= high; ++n) {
    const double value = n == 0 ? 0 : n * step;
    const int decimals = std::max(0, static_cast<int>(-std::floor(std::log10(step) + 1e-9)));
    ticks.push_back({value, std::fabs(value) < 1e7 ? fixedText(value, decimals)
                                                   : significantText(value, labelDigits)});
  }
  return ticks;
}

std::vector<Tick> decadeTicks(double low, double high) {
  constexpr double fewDecades = 2, manyDecades = 8;
  const double decades = std::log10(high / low);
  std::vector<Tick> ticks;
  for (double k = std::floor(std::log10(low)); k <= std::ceil(std::log10(high)); ++k) {
    for (int digit = 1; digit <= 9; ++digit) {
      const double value = digit * std::pow(10.0, k);
      if (value < low || value > high) continue;
      const bool hasLabel = digit == 1 || (decades < fewDecades && (digit == 2 || digit == 5));
      if (hasLabel || decades < manyDecades)
        ticks.push_back({value, hasLabel ? significantText(value, 6) : std::string()});
    }
  }
  return ticks;
}

}  // namespace

PlotScale PlotScale::linear(const std::vector<double>& values, double margin) {
  PlotScale scale;
  const auto range = finiteRange(values);
  if (!range) return scale;
  double width = range->second - range->first;
  if (!(width > 0)) width = range->first == 0 ? 1 : std::fabs(range->first) / 10;
  scale.low_ = range->first - margin * width;
  scale.high_ = range->second + margin * width;
  return scale;
}

PlotScale PlotScale::logarithmic(const std::vector<double>& values, double margin) {
  const auto range = finiteRange(values);
  if (!range || !(range->first > 0)) return linear(values, margin);
  PlotScale scale;
  scale.isLog_ = true;
  const double decades = std::max(std::log10(range->second / range->first), 0.1);
  scale.low_ = range->first * std::pow(10.0, -margin * decades);
  scale.high_ = range->second * std::pow(10.0, margin * decades);
  return scale;
}

double PlotScale::share(double value) const {
  if (!isLog_) return (value - low_) / (high_ - low_);
  return std::log(value / low_) / std::log(high_ / low_);
}

std::vector<Tick> PlotScale::ticks(int wanted) const {
  constexpr double halfDecade = 3.1622776601683795;
  if (isLog_ && high_ / low_ >= halfDecade) return decadeTicks(low_, high_);
  return linearTicks(low_, high_, wanted);
}

}  // namespace pelmora::report
