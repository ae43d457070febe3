// How well a set of hyperparameters explains the points, and the points' influence under it.
// SPDX-License-Identifier: MIT
#pragma once

#include "solver/reference/hyperparameters.h"
#include "solver/reference/knots.h"
#include "solver/reference/stop.h"
#include "solver/reference/trend_regression.h"

#include <span>
#include <vector>

namespace pelmora::solver::reference {

// The transitions between neighbouring knots for one length, shared by all nodes of that length;
// the one at index k leads to knot k, index 0 is unused.
[[nodiscard]] std::vector<MaternStep> stepsBetween(const Knots& knots, double length);

// Columns of the model: data, 1, t, the drag where knots.drag > 0, and one per fluid where
// `offsets` > 0 and there are two to mostFluidOffsets of them.
[[nodiscard]] int columnsOf(const Knots& knots, double offsets);
[[nodiscard]] Columns observationAt(const Knots& knots, const Knot& knot, int columns);

// The observations at all knots, for one pass after another.
[[nodiscard]] std::vector<Columns> observationsOf(const Knots& knots, int columns);

// With n points and f = n - 2 + noiseDegrees degrees of freedom, up to a constant that does not
// depend on the hyperparameters,
//
//   ln p(y | h) + ln p(length) = -1/2 logDeterminant - f/2 ln(squares + noiseDegrees noise^2)
//                                -1/2 (ln(length / prior) / spread)^2:
//
// the restricted likelihood, the noise's variance integrated out under its prior.
struct Node {
  Hyperparameters hyperparameters;
  TrendFit trend;
  double squares = 0;  // trend.squares and the prior's
  double logWeight = 0;
};

// What the model says at a knot once all other knots have spoken, in units of the noise's
// variance: u = (M z) and M = V^-1 - V^-1 X (X'V^-1 X)^-1 X'V^-1 at the knot and between it and
// the next one. The knot left out, its mean is off by u / own, with variance 1 / own.
//
// Source: de Jong: A cross-validation filter for time series models, Biometrika 75 (1988) 594-600.
struct Influence {
  Lanes u = 0, own = 0, withNext = 0;
};

// Up to laneCount nodes of one length, which pass over the points side by side.
using NodeGroup = std::span<const Hyperparameters>;

class LikelihoodPass {
 public:
  LikelihoodPass(const Knots& knots, const ReferencePriors& priors, double offsets,
                 StopRequested stop = {});
  // steps: stepsBetween(knots, length of the group).  Errors: Stopped.
  [[nodiscard]] std::vector<Node> evaluate(NodeGroup group, const std::vector<MaternStep>& steps);
  // Of a group of nodes that evaluate() has returned, by knot; valid until the next call.
  [[nodiscard]] const std::vector<Influence>& influences(std::span<const Node> nodes,
                                                         const std::vector<MaternStep>& steps);
  [[nodiscard]] double degreesOfFreedom() const { return degreesOfFreedom_; }

 private:
  const Knots& knots_;
  ReferencePriors priors_;
  double offsets_;
  StopRequested stop_;
  int columns_;
  double degreesOfFreedom_;
  std::vector<Columns> observations_;
  std::vector<Innovation> innovations_;
  std::vector<Influence> influences_;

  // Calls take(knot, variance of its points' noise, innovation) at each knot; the innovation is
  // written to `innovations`, which has room for all or for one.
  template <class Take>
  void filter(const Lanes& amplitude, const Lanes& growth, const std::vector<MaternStep>& steps,
              std::vector<Innovation>& innovations, Take take);
};

}  // namespace pelmora::solver::reference
