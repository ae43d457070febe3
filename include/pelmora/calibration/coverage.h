// Coverage factors: how many standard uncertainties a band is wide.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/export.h>

namespace pelmora::calibration {

// The t with P(|T| <= t) = probability for Student's T: the factor between a standard uncertainty
// with these degrees of freedom and the half-width of its band. The 95 % bands of a fitted equation
// have a half-width of coverageFactor(0.95, observations - parameters) standard uncertainties.
//
// Errors: BadData unless 0 < probability < 1 and degreesOfFreedom > 0.
[[nodiscard]] PELMORA_API double coverageFactor(double probability, double degreesOfFreedom);

}  // namespace pelmora::calibration
