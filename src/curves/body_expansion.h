// Thermal expansion of a meter's body, and what it does to Roshko and Strouhal numbers.
// SPDX-License-Identifier: MIT
#pragma once

namespace pelmora {

// Roshko is frequency over viscosity times the square of the bore, Strouhal frequency over flow
// times its cube. Kept without the bore, each is multiplied by 2 and 3 times the linear expansion
// since `referenceF`.
//
// Units:  linear: per degree F; temperatures in degrees F.
struct BodyExpansion {
  double linear = 9.6e-6;  // stainless steel, as the derived series assume
  double referenceF = 70;

  [[nodiscard]] constexpr double roshkoFactor(double fahrenheit) const {
    return 1 + 2 * linear * (fahrenheit - referenceF);
  }
  [[nodiscard]] constexpr double strouhalFactor(double fahrenheit) const {
    return 1 + 3 * linear * (fahrenheit - referenceF);
  }
};

}  // namespace pelmora
