// The reference curve: the smooth curve through a calibration's points that assumes no equation.
// SPDX-License-Identifier: MIT
#pragma once

#include "solver/reference/distrust.h"
#include "solver/reference/node_lattice.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace pelmora::solver::reference {

// Shape:  x, y: n values in any order; fluid, excluded: n values or none.
// Units:  x: Roshko, > 0; y: any. Points of one `fluid` number share a stand run; a value other
//         than 0 in `excluded` keeps a point out of the fit, and still reports on it.
struct ReferenceData {
  std::span<const double> x, y;
  std::span<const int> fluid = {};
  std::span<const std::uint8_t> excluded = {};
};

enum class ReferenceScale {
  automatic,  // relative where every y that counts is positive, absolute otherwise
  relative,   // noise in per cent of y, curve in ln(y): meter factors
  absolute,   // noise of one size in y: errors in per cent, quantities that change sign
};

struct ReferenceOptions {
  ReferenceScale scale = ReferenceScale::automatic;
  ReferencePriors priors = {};
  LatticeRange lattice = {};
  // Standard deviation of what sets the runs of several fluids apart, in noise standard
  // deviations; 0: the fluids share every error. Stands repeat to a few hundredths of a per cent.
  // With more than four fluids they count as one.
  double fluidOffsets = 0.25;
  // Standard deviation of the bearing drag at the lowest flow, in noise standard deviations; 0: the
  // trend is a straight line. Wide enough to take the fall of any turbine meter; a series without
  // such a fall costs it little.
  double drag = 300;
  bool robust = true;
  DistrustRule distrust = {};
  StopRequested stopRequested = {};  // ends the fit with Stopped
};

// At one x, in the unit of y. The band that holds the curve with 95.4 % probability is value
// +- 2 curveSd, and +- 2 newPointSd holds a new point there: Student's factor for few points is
// in both.
struct ReferenceEstimate {
  double value = 0;
  double derivative = 0;  // dy/dx
  double curveSd = 0;
  double newPointSd = 0;
};

enum class PointState { used, excluded, distrusted };

// A raw point beside the curve, as a share of the curve's value there on the relative scale (0.001
// is 0.1 %) and in the unit of y on the absolute one.
struct ReferencePoint {
  PointState state = PointState::used;
  double residual = 0;       // from the curve
  double leaveOneOut = 0;    // from the curve of the other points
  double leaveOneOutSd = 0;  // of leaveOneOut for a good point, Student's factor included
  [[nodiscard]] double sigmas() const { return leaveOneOut / leaveOneOutSd; }
  bool operator==(const ReferencePoint&) const = default;
};

struct ReferenceSummary {
  bool relative = true;
  std::size_t points = 0;          // used ones
  std::size_t flows = 0;           // different x among them
  double length = 0;               // decades of Roshko, geometric mean
  double amplitude = 0;            // of the departure from a straight line; unit as residuals
  double noiseHigh = 0;            // standard deviation at the largest flow; unit as residuals
  double noiseLow = 0;             // at the smallest share of a fluid's largest flow
  double effectiveParameters = 0;  // degrees of freedom that the curve takes
  double degreesOfFreedom = 0;     // of Student's distribution
  double logLikelihood = 0;        // restricted, at the most likely node
  bool operator==(const ReferenceSummary&) const = default;
};

// A value: copies its points, holds no view.
class ReferenceCurve {
 public:
  [[nodiscard]] const ReferenceSummary& summary() const { return summary_; }
  // As the data given, excluded and distrusted ones included.
  [[nodiscard]] const std::vector<ReferencePoint>& points() const { return points_; }
  // Indices of the points that the robust pass left out, rising.
  [[nodiscard]] const std::vector<std::size_t>& distrusted() const { return distrusted_; }
  // At any number of x > 0, in any order; beyond the points the straight line takes over and the
  // band widens. One call for many x is cheaper than many calls: O((points + x) nodes).
  // Errors: number 5 for an x that is not finite and positive; Stopped.
  [[nodiscard]] std::vector<ReferenceEstimate> evaluate(std::span<const double> x,
                                                        const StopRequested& stop = {}) const;

  [[nodiscard]] const std::vector<SharedNode>& nodes() const { return nodes_; }

 private:
  friend ReferenceCurve fitReference(const ReferenceData&, const ReferenceOptions&);
  Knots knots_;
  std::vector<SharedNode> nodes_;
  double offsets_ = 0;
  ReferenceSummary summary_;
  std::vector<ReferencePoint> points_;
  std::vector<std::size_t> distrusted_;
  struct OnScale {
    double z, slope, curveVariance, noiseVariance;
  };
  [[nodiscard]] std::vector<OnScale> onScale(std::span<const double> t,
                                             std::span<const double> flowFraction,
                                             const StopRequested& stop) const;
  void summarise(const LeftOut& left);
  void describePoints(const ReferenceData& data, const LeftOut& left, const StopRequested& stop);
  [[nodiscard]] double onRaw(double difference) const;
};

// Errors: number 5 (invalid argument) naming the point for lengths that differ, values that are
//         not finite, x <= 0, y <= 0 on the relative scale; and where fewer than four points or
//         three different x are used. Stopped where options.stopRequested asks for it.
[[nodiscard]] ReferenceCurve fitReference(const ReferenceData& data,
                                          const ReferenceOptions& options = {});

}  // namespace pelmora::solver::reference
