// Each point, and each pair of neighbours, against the curve of all others.
// SPDX-License-Identifier: MIT
#pragma once

#include "solver/reference/node_lattice.h"

#include <vector>

namespace pelmora::solver::reference {

// A point against the curve of the others, hyperparameters averaged anew without it.
struct LeftOutPoint {
  double error = 0;     // z less its prediction
  double residual = 0;  // z less the curve that it takes part in
  double scale = 0;     // of the error, a Student variate of f - 1 degrees of freedom
  double tail = 1;      // probability of an error as large or larger where the point is good
  double leverage = 0;  // its share of one degree of freedom of the curve
};

// Two points that may support each other: neighbours in Knots::order, and equally placed ones of
// neighbouring knots.
struct LeftOutPair {
  std::size_t first = 0, second = 0;  // places in Knots::order
  double tail = 1;
};

struct LeftOut {
  std::vector<LeftOutPoint> points;  // as Knots::order
  std::vector<LeftOutPair> pairs;
  double degreesOfFreedom = 0;  // f, of the node's Student distribution with all points
};

// What a deletion does to squares and determinants follows from the influences alone: with S the
// points left out and e = M_SS^-1 u_S,
//
//   squares less u_S' e,   logDeterminant + ln|M_SS|,   f less the points of S.
//
// Cost: O(points) for each node.  Errors: Stopped.
[[nodiscard]] LeftOut leaveOut(const Knots& knots, const ReferencePriors& priors, double offsets,
                               const std::vector<SharedNode>& nodes, bool withPairs,
                               const StopRequested& stop = {});

}  // namespace pelmora::solver::reference
