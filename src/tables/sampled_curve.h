// A curve sampled so finely that the placing of knots needs no more of it.
// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <functional>
#include <span>
#include <vector>

namespace pelmora::tables {

// y at any number of x, in their order.
using Curve = std::function<std::vector<double>(std::span<const double>)>;

struct Range {
  double low = 0, high = 0;
};

class SampledCurve {
 public:
  // samples + 1 values, evenly spaced in ln x; one call of the curve.
  //
  // Errors: BadData for a range that is not 0 < low < high, and naming x where the curve is not
  //         finite, zero, or changes its sign: there is no relative error there.
  SampledCurve(const Curve& curve, Range range, std::size_t samples);

  [[nodiscard]] std::size_t samples() const { return x_.size() - 1; }
  [[nodiscard]] std::span<const double> x() const { return x_; }
  [[nodiscard]] std::span<const double> y() const { return y_; }
  // x and y at a place between 0 and samples(), y by the cubic through four samples.
  [[nodiscard]] double xAt(double place) const;
  [[nodiscard]] double yAt(double place) const;

 private:
  Range range_;
  std::vector<double> x_, y_;
};

}  // namespace pelmora::tables
