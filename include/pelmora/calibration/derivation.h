// Roshko and Strouhal numbers of one measured point.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/export.h>

#include <optional>

namespace pelmora::calibration {

struct Reading {
  double frequency = 0;                    // Hz
  double flow = 0;                         // volume per second; gal/s for pulses per gallon
  double viscosity = 0;                    // cSt
  std::optional<double> temperature = {};  // degrees Fahrenheit; without it nothing is corrected
};

struct DerivedPoint {
  double roshko = 0, strouhal = 0;
};

// frequency / viscosity and frequency / flow, corrected for the thermal expansion of the rotor
// housing since 70 degrees Fahrenheit, in the same way as the series that are derived from a stand.
[[nodiscard]] PELMORA_API DerivedPoint derivedPoint(const Reading& reading);

}  // namespace pelmora::calibration
