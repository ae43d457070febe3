// SPDX-License-Identifier: MIT
#include "units/unit.h"

#include <pelmora/calibration/conversion.h>
#include <pelmora/calibration/failure.h>

namespace pelmora::calibration {

double conversionFactor(const std::string& from, const std::string& to) {
  const units::Unit &a = units::unitOf(from), &b = units::unitOf(to);
  if (a.offset != 0 || b.offset != 0)
    throw BadData(
        {"'" + from + "' and '" + to + "' have different zeros", "", "convert the value"});
  return units::converted(1, a, b);
}

double measureIn(const std::string& text, const std::string& unit) {
  const units::Measure measure = units::readMeasure(text);
  return units::converted(measure.value, *measure.unit, units::unitOf(unit));
}

}  // namespace pelmora::calibration
