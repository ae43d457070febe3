// SPDX-License-Identifier: MIT
#include "uncertainty/coverage.h"

#include "base/student_t.h"

#include <algorithm>
#include <cmath>

namespace pelmora::uncertainty {
namespace {

// Beyond this Student's quantile is the normal one to nine digits.
constexpr double asGoodAsInfinite = 1e9;

double normalFactor(double probability) {
  double low = 0, high = 40;
  for (int i = 0; i < 100; ++i) {
    const double middle = (low + high) / 2;
    (std::erfc(middle / std::sqrt(2.0)) > 1 - probability ? low : high) = middle;
  }
  return (low + high) / 2;
}

}  // namespace

double coverageFactor(double probability, double degreesOfFreedom) {
  if (!(degreesOfFreedom < asGoodAsInfinite)) return normalFactor(probability);
  return twoSidedStudentT(probability, std::max(1.0, std::floor(degreesOfFreedom)));
}

}  // namespace pelmora::uncertainty
