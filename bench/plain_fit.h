// The best of the catalogue's six equations as a plain program finds it: Eigen's pivoting QR, in
// double.
// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

namespace pelmora::bench {

struct PlainPoints {
  std::vector<double> x, y;
};

[[nodiscard]] PlainPoints sorted(const PlainPoints& points);

struct PlainFit {
  std::vector<double> parameters, errors;  // standard errors
  std::vector<double> grid;                // evenly in the logarithm of x
  std::vector<double> curve;               // there
};

// Of those whose curve, read linearly, passes all points within the band, the equation with the
// highest adjusted R2; ends the program if there is none. points: sorted. band: a share.
[[nodiscard]] PlainFit plainFit(const PlainPoints& points, double band);

}  // namespace pelmora::bench
