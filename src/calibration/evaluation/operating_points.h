// The conditions under which the points of a curve were measured.
// SPDX-License-Identifier: MIT
#pragma once

#include "uncertainty/component_size.h"

#include <pelmora/calibration/fitted_curve.h>

#include <vector>

namespace pelmora::calibration {

// What an uncertainty that is stated in a unit refers to: the readings of the stand.
class OperatingPoints {
 public:
  explicit OperatingPoints(const CurveOrigin& origin);
  [[nodiscard]] bool empty() const { return parts_.empty(); }

  // At a place on the curve, from the nearest point of each raw part that covers it, or of the part
  // next to it. Where several do, the lowest value of each quantity counts: an uncertainty in its
  // unit is largest there. What was not read, or has no known unit, is absent.
  [[nodiscard]] uncertainty::OperatingPoint at(double roshko) const;
  // At a measured point: its own readings; at() if it is not one of the stand's.
  [[nodiscard]] uncertainty::OperatingPoint of(double roshko, double strouhal) const;

 private:
  [[nodiscard]] uncertainty::OperatingPoint operatingPoint(const StandReading& reading,
                                                           double share) const;
  std::vector<std::vector<PointReading>> parts_;  // each sorted by Roshko
  const units::Unit *frequency_, *viscosity_, *flow_;
};

// The volume per second that belongs to a unit of Strouhal: "l/s" for "pulses/l".
[[nodiscard]] std::string flowUnitOf(const std::string& strouhalUnit);

}  // namespace pelmora::calibration
