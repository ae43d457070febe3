// The coverage factor of a sum of independent errors of any distribution.
// SPDX-License-Identifier: MIT
#pragma once

#include "uncertainty/distribution.h"
#include "uncertainty/input.h"

#include <optional>
#include <span>

namespace pelmora::uncertainty {

// One error: its standard uncertainty, and its distribution (Student's for a normal one with
// finitely many degrees of freedom).
struct ErrorPart {
  double uncertainty = 0;
  Distribution distribution = Distribution::normal;
  double degreesOfFreedom = knownExactly;
};

// k with P(|sum| <= k u) = probability, u being the root of the sum of squares: what Monte Carlo
// finds for a linear model, without drawing. The characteristic functions of the parts are
// multiplied and the product is inverted numerically; k is right to 0.2 %.
//
// Nothing if all parts are 0, or one that counts has fewer than three degrees of freedom.
//
// Source: JCGM 100:2008, G.1.4 (convolution as the exact way); Gil-Pelaez, Biometrika 38 (1951)
//         481-482, the inversion; Hurst, The Statistician 44 (1995), Student's function.
[[nodiscard]] std::optional<double> convolvedFactor(double probability,
                                                    std::span<const ErrorPart> parts);

}  // namespace pelmora::uncertainty
