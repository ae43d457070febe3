// What the reference curve says about the points and the equations of a trusted fit.
// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace pelmora::calibration {

struct TrustReference;

enum class PointUse {
  used = 0,
  distrusted = 1,  // contradicts the other points; neither curve nor equations were fitted to it
  outside = 2      // outside FitSettings::fitMin..fitMax
};

// A merged point beside the reference curve. Residuals are in per cent of the curve; in units of
// Strouhal where Trust::isRelative is false.
struct JudgedPoint {
  int part = 0;            // 1 to 4
  std::size_t number = 0;  // from 1, in the order of the part; excluded points are counted
  double roshko = 0, strouhal = 0;
  PointUse use = PointUse::used;
  double residual = 0;       // from the curve
  double leaveOneOut = 0;    // from the curve of the other points
  double leaveOneOutSd = 0;  // of leaveOneOut for a good point
  // How many standard deviations the point is off the other points.
  [[nodiscard]] double sigmas() const {
    return leaveOneOutSd > 0 ? leaveOneOut / leaveOneOutSd : 0;
  }
};

// The reference curve at one Roshko number. value +- 2 curveSd contains the true curve, and
// +- 2 newPointSd another measurement, with a probability of 95 %.
struct ReferenceValue {
  double roshko = 0, strouhal = 0, curveSd = 0, newPointSd = 0;
};

// Whether an equation stays with the reference curve over the whole range of the table, ends
// included: within its 2-sigma band or a quarter of the test band, whichever is wider.
struct Soundness {
  bool isJudged = false;  // false for an equation that an earlier test rejected
  bool isSound = false;
  // Where it departs most, compared with what is allowed there.
  double roshko = 0, departurePercent = 0, allowedPercent = 0;
  std::string why;  // it is not sound, as one clause; empty if it is
};

// A Gaussian process over log Roshko, averaged over its length scale, noise and noise growth.
struct Trust {
  bool isRelative = true;    // noise in per cent; otherwise of one size, for series of both signs
  std::size_t points = 0;    // used ones
  std::size_t flows = 0;     // distinct ones among them
  double lengthDecades = 0;  // over which the curve changes its direction, in decades of Roshko
  double noiseHigh = 0;      // standard deviation of a point at the largest flow; as residuals
  double noiseLow = 0;       // at the smallest flow
  std::vector<JudgedPoint> judged;    // as Fit::merged
  std::vector<ReferenceValue> table;  // at the Roshko numbers of the curve's table
  std::vector<Soundness> equations;   // as FitOutcome::Equations
  // The curve itself, shared by copies of the fit. Null if only its numbers are known: whoever
  // evaluates the fit then finds the curve again from `judged`.
  std::shared_ptr<const TrustReference> reference{};
};

}  // namespace pelmora::calibration
