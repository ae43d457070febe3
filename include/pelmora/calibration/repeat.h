// Fitting a stored series again as its curve was fitted.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/calibration/fit.h>
#include <pelmora/calibration/values.h>

#include <cstdint>
#include <optional>
#include <string>

namespace pelmora::calibration {

// Settings for curves that were stored without theirs. Absent: what the stored report and curve
// tell, else the defaults of a fit.
struct UnkeptSettings {
  std::optional<double> band{};
  std::optional<std::int16_t> points{};
  std::optional<EquationList> equations{};
};

// A fit with the settings of the stored curve. Nothing of it is stored.
struct Repeated {
  CurveSettings settings;
  bool settingsAreKept =
      false;            // else they are those of UnkeptSettings, or taken from what is stored
  Fit fit;              // without a curve where none came out
  std::string trouble;  // why there is no curve, one clause
  // How far the new table is from the stored one, in per cent; absent where either is missing or
  // they have other Roshko numbers.
  std::optional<double> distancePercent;
  // Two fits of the same points on two machines differ in their last digits; a curve that differs
  // by more than a ten-thousandth of a per cent came from other points, settings or software.
  [[nodiscard]] bool isStoredCurve() const { return distancePercent && *distancePercent <= 1e-4; }
};

}  // namespace pelmora::calibration
