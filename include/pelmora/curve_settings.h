// The settings with which a stored curve was fitted, kept beside it.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/database.h>
#include <pelmora/export.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace pelmora {

// The settings of a fit. The given tables of a curve database keep only its result.
struct CurveSettings {
  double BandPercent = 0;
  std::int32_t Points = 40;        // of the predicted table
  std::optional<double> Min, Max;  // Roshko; absent: the respective end of the merged points
  bool RatioCurve = false, Inverted = false, IgnoreResiduals = false;
  // How the equation was chosen: "trusted" or "adjusted-r2"; empty in settings that were kept
  // before there was a choice, which means "adjusted-r2".
  std::string Choice;
  std::optional<double> FitMin, FitMax;    // Roshko; the points beyond were not fitted
  std::vector<std::string> Only, Without;  // names of equations
  std::optional<std::int32_t> MaxOrder;    // of polynomials
  std::optional<std::string>
      Equations;  // text of the equation file; absent: the built-in equations
  std::string SoftwareVersion;
  std::string FittedAt;                    // UTC, ISO 8601: 2026-11-21T13:40:00Z
  std::optional<double> MergeBandPercent;  // absent: the component's rule
  bool KeepsOverlap = false;               // the merge cut no point
  std::string Spacing;                     // of the table: "optimal"; "usual" or empty otherwise
  // Of the raw points that were fitted and of the curve, as hexadecimal digits; empty: not kept.
  std::string PointsFingerprint, CurveFingerprint;

  bool operator==(const CurveSettings&) const = default;
};

// The settings of the last fit of the series; nothing if they were not kept.
//
// Errors: Error if the connection cannot be used.
[[nodiscard]] PELMORA_API std::optional<CurveSettings> keptCurveSettings(
    const ConnectionPtr& curves, std::int32_t SeriesID);

// Stores the settings in the table pelmora_fit_settings in place of earlier ones of the series, and
// creates the table if needed. The component never calls this; call it when you store a curve.
//
// Errors: Error if the database cannot be written.
PELMORA_API void keepCurveSettings(const ConnectionPtr& curves, std::int32_t SeriesID,
                                   const CurveSettings& settings);

}  // namespace pelmora
