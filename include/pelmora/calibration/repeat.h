// Fitting a stored series again in the way its curve was fitted.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/calibration/fit.h>
#include <pelmora/calibration/values.h>

#include <cstdint>
#include <optional>
#include <string>

namespace pelmora::calibration {

// Settings for curves that were stored without settings. Absent: taken from the stored report and
// curve, else the defaults of a fit.
struct UnkeptSettings {
  std::optional<double> band{};
  std::optional<std::int16_t> points{};
  std::optional<EquationList> equations{};
  std::optional<EquationList> ratioEquations{};  // of rotor ratios; absent: `equations`
};

// A fit with the settings of the stored curve. Nothing of it is stored.
struct Repeated {
  CurveSettings settings;
  bool settingsAreKept = false;  // if not, from UnkeptSettings or from the stored report and curve
  Fit fit;                       // without a curve if none resulted
  std::string trouble;           // why there is no curve, as one clause
  // How far the new table is from the stored one, in per cent; absent if one is missing or their
  // Roshko numbers differ.
  std::optional<double> distancePercent;
  // Fits of the same points on two machines differ in their last digits. A curve that differs by
  // more than a ten-thousandth of a per cent came from other points, settings or software.
  [[nodiscard]] bool isStoredCurve() const { return distancePercent && *distancePercent <= 1e-4; }
};

}  // namespace pelmora::calibration
