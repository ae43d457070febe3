// Where values stand along an axis, and where its ticks are.
// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

namespace pelmora::report {

struct Tick {
  double value = 0;
  std::string label;  // empty for a small tick
};

// Linear, or logarithmic where every value is positive.
class PlotScale {
 public:
  // Covers all finite values with a margin at both ends, given as a share of the whole.
  static PlotScale linear(const std::vector<double>& values, double margin);
  static PlotScale logarithmic(const std::vector<double>& values, double margin);

  [[nodiscard]] double low() const { return low_; }
  [[nodiscard]] double high() const { return high_; }
  [[nodiscard]] bool isLog() const { return isLog_; }
  // 0 at low(), 1 at high(). Errors: none; NaN if a logarithm has none.
  [[nodiscard]] double share(double value) const;
  // Rising. Logarithmic: a label at each decade, at 1, 2 and 5 of it where there are less than two
  // decades, small ticks at the other digits; less than half a decade is ticked like a linear axis.
  [[nodiscard]] std::vector<Tick> ticks(int wanted) const;

 private:
  double low_ = 0, high_ = 1;
  bool isLog_ = false;
};

}  // namespace pelmora::report
