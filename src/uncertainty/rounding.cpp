// SPDX-License-Identifier: MIT
#include "uncertainty/rounding.h"

#include "base/readable_number.h"
#include "uncertainty/refusal.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace pelmora::uncertainty {
namespace {

int exponentOf(double value) { return static_cast<int>(std::floor(std::log10(value))); }

// A multiple of 10^-decimals. Dividing by a power of ten keeps 0.011 what a reader types.
double scaled(double whole, int decimals) {
  const double power = std::pow(10.0, std::abs(decimals));
  return decimals > 0 ? whole / power : whole * power;
}

double inUnitsOf(double value, int decimals) {
  const double power = std::pow(10.0, std::abs(decimals));
  return decimals > 0 ? value * power : value / power;
}

// Products like 0.0345 x 1000 may end a hair above the whole number that they stand for.
constexpr double hair = 1e-9;

}  // namespace

double roundedUncertainty(double uncertainty, int digits, double least) {
  const double wanted = std::max(uncertainty, least);
  const int decimals = digits - 1 - exponentOf(wanted);
  const double exact = inUnitsOf(wanted, decimals);
  double whole = std::round(exact);
  const bool isTooLow =
      whole < exact * (1 - mostLoweredBy) || whole < inUnitsOf(least, decimals) * (1 - hair);
  if (isTooLow) whole = std::ceil(exact - exact * hair);
  return scaled(whole, decimals);
}

RoundedResult roundedResult(double value, double uncertainty, int digits, double least) {
  if (!std::isfinite(value) || !std::isfinite(uncertainty) || !(std::max(uncertainty, least) > 0)) {
    refuse("a result needs a finite value and an uncertainty above 0",
           "check the budget that it comes from");
  }
  const double shown = roundedUncertainty(uncertainty, digits, least);
  // 0.0996 becomes 0.10: the digits are those of the rounded number.
  RoundedResult result;
  result.decimals = digits - 1 - exponentOf(shown * (1 + hair));
  const int after = std::max(0, result.decimals);
  const double rounded = scaled(std::round(inUnitsOf(value, result.decimals)), result.decimals);
  result.value = fixedText(rounded == 0 ? 0.0 : rounded, after);
  result.uncertainty = fixedText(shown, after);
  return result;
}

}  // namespace pelmora::uncertainty
