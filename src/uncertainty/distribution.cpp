// SPDX-License-Identifier: MIT
#include "uncertainty/distribution.h"

#include <cmath>

namespace pelmora::uncertainty {

std::string_view distributionName(Distribution distribution) {
  switch (distribution) {
    case Distribution::normal: return "normal";
    case Distribution::rectangular: return "rectangular";
    case Distribution::triangular: return "triangular";
    case Distribution::uShaped: break;
  }
  return "U-shaped";
}

double halfWidthDivisor(Distribution distribution) {
  switch (distribution) {
    case Distribution::normal: return 0;
    case Distribution::rectangular: return std::sqrt(3.0);
    case Distribution::triangular: return std::sqrt(6.0);
    case Distribution::uShaped: break;
  }
  return std::sqrt(2.0);
}

}  // namespace pelmora::uncertainty
