// SPDX-License-Identifier: MIT
#include "base/readable_number.h"
#include "base/student_t.h"

#include <pelmora/calibration/coverage.h>
#include <pelmora/calibration/failure.h>

namespace pelmora::calibration {

double coverageFactor(double probability, double degreesOfFreedom) {
  if (!(probability > 0 && probability < 1)) {
    throw BadData({"the probability is " + significantText(probability, 6), "coverage factor",
                   "use a number between 0 and 1, such as 0.95"});
  }
  if (!(degreesOfFreedom > 0)) {
    throw BadData({"there are " + significantText(degreesOfFreedom, 6) + " degrees of freedom",
                   "coverage factor", "fit more points than the equation has parameters"});
  }
  return twoSidedStudentT(probability, degreesOfFreedom);
}

}  // namespace pelmora::calibration
