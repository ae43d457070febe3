// The reference curve over the range of a table, as the judge of equations.
// SPDX-License-Identifier: MIT
#pragma once

#include "solver/reference/reference_curve.h"

#include <pelmora/calibration/trust.h>
#include <pelmora/fit_engine.h>

#include <span>
#include <vector>

namespace pelmora::calibration {

class ReferenceJudge {
 public:
  // table: at least two Roshko numbers > 0, strictly rising.  Errors: Stopped.
  ReferenceJudge(const solver::reference::ReferenceCurve& curve, std::span<const double> table,
                 double bandPercent, const solver::reference::StopRequested& stop = {});

  // At the Roshko numbers of the table.
  [[nodiscard]] const std::vector<solver::reference::ReferenceEstimate>& table() const {
    return table_;
  }
  // The reference curve anywhere within the table, by Hermite interpolation.
  [[nodiscard]] std::vector<double> values(std::span<const double> x) const;

  [[nodiscard]] Soundness judge(const FitModel& model, std::size_t flows) const;

  // For each row of the table, the largest distance between the table read linearly and the
  // reference curve up to the neighbouring rows; in units of y.
  [[nodiscard]] std::vector<double> distances(std::span<const double> tableY) const;

  // A range in which the 2-sigma band of the reference curve is wider than the test band, by enough
  // to be worth a warning.
  struct WideRange {
    double from, to;  // Roshko
    double widest;    // Roshko
    double percent;   // half-width of the band there
  };
  [[nodiscard]] std::vector<WideRange> wideRanges() const;

 private:
  struct Place {
    double x, value, halfWidth;
    std::size_t row;  // of the table at or before x
  };
  double bandPercent_;
  std::vector<double> tableX_;
  std::vector<solver::reference::ReferenceEstimate> table_;
  // Where the reference curve was evaluated, and places between.
  std::vector<double> coarseX_;
  std::vector<solver::reference::ReferenceEstimate> coarse_;
  std::vector<Place> places_;
  std::vector<double> placesX_;

  [[nodiscard]] double valueIn(std::size_t interval, double share) const;
  [[nodiscard]] double allowedAt(const Place& place) const;
};

}  // namespace pelmora::calibration
