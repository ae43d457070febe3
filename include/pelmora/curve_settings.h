// With which settings a stored curve was fitted, kept beside it.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/database.h>
#include <pelmora/export.h>

#include <cstdint>
#include <optional>
#include <string>

namespace pelmora {

// What a fit was asked for. The given tables of a curve database keep the result alone.
struct CurveSettings {
  double BandPercent = 0;
  std::int32_t Points = 40;        // of the predicted table
  std::optional<double> Min, Max;  // Roshko; absent: that end of the merged points
  bool RatioCurve = false, Inverted = false, IgnoreResiduals = false;
  std::optional<std::string>
      Equations;  // text of the equation file; absent: the built-in equations
  std::string SoftwareVersion;
  std::string FittedAt;  // UTC, ISO 8601: 2026-11-21T13:40:00Z

  bool operator==(const CurveSettings&) const = default;
};

// The settings with which the series was fitted last; nothing where they were not kept.
//
// Errors: Error where the connection cannot be used.
[[nodiscard]] PELMORA_API std::optional<CurveSettings> keptCurveSettings(
    const ConnectionPtr& curves, std::int32_t SeriesID);

// Keeps them in table pelmora_fit_settings, in place of older ones of the series. The component
// never calls this: a host does where it stores a curve. The table is made where it is missing.
//
// Errors: Error where the database cannot be written.
PELMORA_API void keepCurveSettings(const ConnectionPtr& curves, std::int32_t SeriesID,
                                   const CurveSettings& settings);

}  // namespace pelmora
