// How far a straight piece of a table can reach before it errs too much.
// SPDX-License-Identifier: MIT
#pragma once

#include "tables/sampled_curve.h"
#include "tables/table_reader.h"

#include <cstddef>
#include <functional>
#include <optional>
#include <vector>

namespace pelmora::tables {

// Straight pieces in x or ln x between points of a sampled curve. Places count samples, fractions
// between them included.
class IntervalSearch {
 public:
  // reading: linear or logarithmic. goOn: called whenever a piece is judged; may be empty. What it
  // throws ends the search.
  IntervalSearch(const SampledCurve& curve, Reading reading, std::function<void()> goOn = {});

  // The largest error of the piece, a share of the curve.
  [[nodiscard]] double errorOf(double from, double to) const;
  // Pieces from one end to the other, each as long as `error` allows; nothing if there would be
  // more than `pieces`.
  [[nodiscard]] std::optional<std::vector<double>> cover(double error, std::size_t pieces) const;
  // The largest error of any piece.
  [[nodiscard]] double largestError(const std::vector<double>& knots) const;
  [[nodiscard]] double end() const { return static_cast<double>(curve_.samples()); }
  void requireGoOn() const {
    if (goOn_) goOn_();
  }

 private:
  [[nodiscard]] double farthest(double from, double error) const;
  const SampledCurve& curve_;
  std::vector<double> place_;  // x or ln x of each sample
  bool isLinear_;
  std::function<void()> goOn_;
};

}  // namespace pelmora::tables
