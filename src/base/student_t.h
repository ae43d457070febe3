// Quantiles and tails of Student's t distribution, for bands and tests of outliers.
// SPDX-License-Identifier: MIT
#pragma once

namespace pelmora {

// The t with P(|T| <= t) = probability, 0 < probability < 1, degreesOfFreedom > 0. Relative error
// below 1e-9.
//
// Source: the incomplete beta function by its continued fraction (NIST DLMF 8.17.22), the ratio of
// gamma functions by its expansion (NIST DLMF 5.11.13), inverted by bisection.
[[nodiscard]] double twoSidedStudentT(double probability, double degreesOfFreedom);

// P(|T| > t), t >= 0, degreesOfFreedom > 0; small tails keep their digits.
[[nodiscard]] double twoSidedStudentTail(double t, double degreesOfFreedom);

}  // namespace pelmora
