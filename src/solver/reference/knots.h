// Raw points as the filter reads them: sorted, repeats of a flow taken together.
// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <span>
#include <vector>

namespace pelmora::solver::reference {

// Repeats of one x in one fluid. Their mean, their number and their scatter about the mean say
// all that they say about the curve.
struct Knot {
  double t;             // ln(x), less the origin
  double mean;          // of z, see Knots
  double scatter;       // sum of (z - mean)^2
  double flowFraction;  // x over the largest x of the fluid, for the growth of noise
  int fluid;            // 0, 1, ... in the order of Knots::fluids
  std::size_t first;    // its raw points are order[first] ... order[first + count - 1]
  std::size_t count;
};

struct Fluid {
  int number;  // the host's
  double smallestX, largestX;
};

// z = ln(y) on the relative scale and y / unit on the absolute one, less the straight line
// level + slope t of plain least squares: what is left is small, so that sums of squares keep
// their digits. A trend is estimated again by the model, so that the line changes no result.
struct Knots {
  bool relative = true;
  double unit = 1;
  double origin = 0;
  double level = 0, slope = 0;
  std::vector<Knot> knots;         // by rising t, then fluid
  std::vector<std::size_t> order;  // index of a raw point; in a knot by rising z
  std::vector<double> z;           // of the points of `order`
  std::vector<Fluid> fluids;       // by rising number
  // Prior standard deviation of the drag's coefficient, in noise standard deviations; 0: the trend
  // has no drag.
  double drag = 0;
};

// The trend's third column: what the viscous drag of a bearing takes from the curve, in proportion
// to 1 / x. 1 at the smallest x; its derivative is its negative.
[[nodiscard]] double dragAt(const Knots& knots, double t);

// Shape:  x, y: n values; fluid: n values or none; used: indices of the points that count.
// Needs:  x > 0; y > 0 where `relative`; all finite; at least two different x.
[[nodiscard]] Knots gatherKnots(std::span<const double> x, std::span<const double> y,
                                std::span<const int> fluid, std::span<const std::size_t> used,
                                bool relative, double drag = 0);

// z of a y at t, and back.
[[nodiscard]] double scaled(const Knots& knots, double t, double y);

}  // namespace pelmora::solver::reference
