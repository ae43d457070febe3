// What a calibration report contains: one model, which every writer turns into its own format.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/calibration/curve.h>
#include <pelmora/calibration/points.h>
#include <pelmora/calibration/ranking.h>
#include <pelmora/curve_database.h>
#include <pelmora/fit_outcome.h>
#include <pelmora/curve_settings.h>
#include <pelmora/types.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace pelmora::report {

using calibration::CurvePoint;
using calibration::RankedEquation;
using calibration::Shift;

// A measured point. Per cent figures are of the curve, positive above it.
struct MeasuredPoint {
  double roshko = 0, strouhal = 0;
  bool isCut = false;  // a raw point that the merge left out
  // From the stored curve read as a table, linearly between its points, as the band test reads it;
  // absent beyond the curve's ends.
  std::optional<double> deviationPercent;
};

struct RawPart {
  int number = 0;     // 1 to 4
  std::string fluid;  // empty where the series was not derived from a set-up
  std::vector<MeasuredPoint> points;
};

// What the reader must see before anything else of a series.
struct Remark {
  std::string kind;  // a CurveWarning's, or one of ours: noCurve, notRepeated ...
  std::string text;
};

// From the same series' curve of an earlier calibration to this one.
struct PreviousCurve : calibration::Comparison {
  std::int16_t reCalID = 0;
  std::string date;  // of the earlier calibration's set-ups; empty if they have none
};

struct SeriesReport {
  std::string name;
  std::int32_t seriesID = 0;
  std::string rawDataHash;  // SHA-256, see raw_data_hash.h
  std::vector<RawPart> parts;
  std::vector<MeasuredPoint> merged;
  std::vector<CurvePoint> curve;  // as stored; empty if none is
  calibration::CurveAge curveAge = calibration::CurveAge::none;
  // Every raw point with its state, excluded ones too, by part and number.
  std::vector<calibration::RawPoint> points;
  CurveSettings settings;
  bool settingsAreKept = false;  // else they are the defaults, or those of the report's options
  std::vector<RankedEquation> equations;
  std::string chosen;  // name of the chosen equation; empty if there is none
  std::vector<Remark> remarks;
  std::string storedText;  // the stored report, line breaks LF
  std::optional<PreviousCurve> previous;
};

struct Report {
  MeterInfo meter;
  std::vector<CalSetupInfo> setups;
  std::string database;  // file name
  std::string softwareVersion;
  std::string createdAt;    // UTC, ISO 8601
  std::string rawDataHash;  // of all series of this report
  std::vector<SeriesReport> series;
};

}  // namespace pelmora::report
