// A result and its expanded uncertainty as a certificate prints them.
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace pelmora::uncertainty {

// Rounding may not lower an expanded uncertainty by more than this share; then it is rounded up.
// Both examples of GUM 7.2.6 come out so: 10.47 becomes 11, 28.05 becomes 28.
inline constexpr double mostLoweredBy = 0.01;

// `uncertainty` to this many significant digits, never below `least` (a laboratory's CMC).
//
// Needs:  uncertainty > 0, finite; digits 1 or more.
[[nodiscard]] double roundedUncertainty(double uncertainty, int digits = 2, double least = 0);

// value: rounded to the last digit of the uncertainty (GUM 7.2.6), a decimal point in every locale.
struct RoundedResult {
  std::string value, uncertainty;
  int decimals = 0;  // below 0: rounded to tens, hundreds ...
};

// Errors: BadData if a number is not finite or the uncertainty is not above 0.
// Source: JCGM 100:2008, 7.2.6.
[[nodiscard]] RoundedResult roundedResult(double value, double uncertainty, int digits = 2,
                                          double least = 0);

}  // namespace pelmora::uncertainty
