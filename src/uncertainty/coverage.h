// From a standard uncertainty to an expanded one.
// SPDX-License-Identifier: MIT
#pragma once

namespace pelmora::uncertainty {

// The probability of k = 2 where the uncertainty is known exactly: erf(sqrt 2), "95.45 %".
inline constexpr double twoSigmaProbability = 0.954499736103642;

// The two-sided quantile of Student's distribution. Degrees of freedom are cut to a whole number,
// at least 1, as GUM G.4.1 advises; infinite ones give the normal distribution's.
//
// Needs:  0 < probability < 1.
// Source: JCGM 100:2008, G.3, G.4.
[[nodiscard]] double coverageFactor(double probability, double degreesOfFreedom);

}  // namespace pelmora::uncertainty
