// The Matérn 5/2 covariance as a linear state-space model in ln Roshko.
// SPDX-License-Identifier: MIT
#pragma once

#include <array>

namespace pelmora::solver::reference {

using Vector3 = std::array<double, 3>;
using Matrix3 = std::array<Vector3, 3>;  // by rows

// A process f of variance 1 with covariance (1 + r + r^2/3) exp(-r), r = rate |t - t'|, is the
// first part of a state s = (f, f'/rate, f''/rate^2) that obeys, over a step of `distance` in t,
//
//   s(t + distance) = transition s(t) + factor w,  w standard normal,
//
// exactly. `factor` is the lower Cholesky factor of what the step adds. Dividing the derivatives
// by the rate keeps all three parts of one size.
//
// Source: Hartikainen, Särkkä: Kalman filtering and smoothing solutions to temporal Gaussian
//         process regression models, IEEE MLSP (2010).
struct MaternStep {
  Matrix3 transition;
  Matrix3 factor;
};

// Length scale l of the covariance's usual form: rate = sqrt(5) / l.
[[nodiscard]] double maternRate(double length);

// Units:  scaledDistance = rate x distance, >= 0, no unit.
// Exact to rounding for small steps too: nothing is the difference of large terms.
[[nodiscard]] MaternStep maternStep(double scaledDistance);

// The lower Cholesky factor of the state's variance where nothing has been observed.
[[nodiscard]] Matrix3 stationaryFactor();

}  // namespace pelmora::solver::reference
