// What a calibration report contains: one model, which every writer turns into its own format.
// SPDX-License-Identifier: MIT
#pragma once

#include "report/series_result.h"

#include <pelmora/calibration/curve.h>
#include <pelmora/calibration/details.h>
#include <pelmora/calibration/history.h>
#include <pelmora/calibration/points.h>
#include <pelmora/calibration/ranking.h>
#include <pelmora/calibration/sign_off.h>
#include <pelmora/calibration/values.h>
#include <pelmora/curve_settings.h>
#include <pelmora/fit_outcome.h>

#include <cstdint>
#include <optional>
#include <stop_token>
#include <string>
#include <vector>

namespace pelmora::report {

using calibration::CurvePoint;
using calibration::RankedEquation;
using calibration::Shift;

struct RawPart {
  int number = 0;                     // 1 to 4
  std::string fluid;                  // empty where the series was not derived from a set-up
  std::vector<MeasuredPoint> points;  // excluded ones, too
};

struct MergedPoint {
  double roshko = 0, strouhal = 0;
  std::optional<double> deviationPercent{};  // as of MeasuredPoint
};

struct Signature {
  calibration::SignOff entry;
  bool isValid = false;  // the series is as it was signed
};

// What the reader must see before anything else of a series.
struct Remark {
  std::string kind;  // a CurveWarning's, or one of ours: noCurve, notRepeated ...
  std::string text;
};

// From the same series' curve of an earlier calibration to this one.
struct PreviousCurve : calibration::Comparison {
  int calibration = 0;
  std::string date;  // of the earlier calibration's set-ups; empty if they have none
};

// The best curve for a series that has no stored one.
struct Attempt {
  std::string equation;
  bool isAccepted = false;  // the fit accepts it, but it is not stored
  std::string reason;       // why it was not accepted
  PointArray curve;
};

struct SeriesReport {
  std::string name;
  std::string roshkoTitle, valueTitle;  // of axes and columns, with the units that are recorded
  std::int32_t seriesID = 0;
  std::string rawDataHash;  // SHA-256, see raw_data_hash.h
  std::vector<RawPart> parts;
  std::vector<MergedPoint> merged;
  std::vector<CurvePoint> curve;  // as stored; empty if none is
  // Without a stored curve; the deviations of the points are then from this one.
  std::optional<Attempt> attempt;
  UncertaintyStatement uncertainty;  // of the stored curve
  // Of the used points, if it is stated for all of them.
  std::optional<UncertaintySpan> pointUncertainty;
  SeriesResult result;
  calibration::CurveAge curveAge = calibration::CurveAge::none;
  CurveSettings settings;
  bool settingsAreKept = false;  // else they are the defaults, or those of the report's options
  std::vector<RankedEquation> equations;
  std::string chosen;  // name of the chosen equation; empty if there is none
  std::vector<Remark> remarks;
  std::string storedText;  // the stored report, line breaks LF
  std::optional<PreviousCurve> previous;
  std::vector<Signature> signatures;  // the newest first
};

// Errors: Cancelled at a stop.
void requireGoOn(const std::stop_token& stop);

struct Report {
  calibration::Meter meter;
  std::vector<calibration::Run> runs;
  calibration::Details laboratory, details;  // see details.h
  std::string database;                      // file name
  std::string softwareVersion;
  std::string createdAt;                           // UTC, ISO 8601
  std::string rawDataHash;                         // of all series of this report
  std::vector<calibration::HistoryEntry> history;  // of this calibration, the newest first
  std::vector<SeriesReport> series;
  // Not of the contents: requesting a stop ends what builds or writes the report with Cancelled.
  std::stop_token stop{};

  // Called for each of many points. Errors: Cancelled.
  void requireGoOn() const;
};

}  // namespace pelmora::report
