// A predicted table read as a flow computer reads it: linearly between neighbouring points.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/export.h>
#include <pelmora/types.h>

#include <array>
#include <optional>
#include <vector>

namespace pelmora::calibration {

class PELMORA_API TableReading {
 public:
  // Rows with a value that is not finite are left out.
  explicit TableReading(const PointArray& table);

  [[nodiscard]] bool empty() const { return points_.empty(); }
  // Needs a table that is not empty.
  [[nodiscard]] double lowest() const { return points_.front()[0]; }
  [[nodiscard]] double highest() const { return points_.back()[0]; }
  // Roshko of every row, rising.
  [[nodiscard]] std::vector<double> nodes() const;

  // Nothing beyond the ends; an x beyond an end by no more than rounding is at that end.
  [[nodiscard]] std::optional<double> at(double x) const;
  // 100 (y - at(x)) / |at(x)|; nothing beyond the ends and where the curve is zero.
  [[nodiscard]] std::optional<double> deviationPercent(double x, double y) const;

 private:
  std::vector<std::array<double, 2>> points_;  // by Roshko
};

}  // namespace pelmora::calibration
