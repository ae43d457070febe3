// Builds the model of a report from the contents of a database and a new fit.
// SPDX-License-Identifier: MIT
#pragma once

#include "report/report_model.h"

#include <optional>
#include <stop_token>
#include <string>
#include <vector>

namespace pelmora::report {

// A fit made for the report with the settings of the stored curve. It stores nothing.
struct Refit {
  FitOutcome outcome;
  PointArray curve;     // empty if no equation passed
  std::string trouble;  // why there is no curve, in words
  std::string nearest;  // name of the equation that came nearest to passing; empty if none did
};

struct PreviousSeries {
  int calibration = 0;
  std::string date;
  PointArray curve;
};

struct SeriesInput {
  calibration::StoredSeries stored;
  std::vector<calibration::RawPoint> points;  // as Database::points lists them
  CurveSettings settings;
  bool settingsAreKept = false;
  Refit refit;
  // The curve behind the stored table, for its uncertainty; absent if there is none, with the
  // reason as a clause.
  std::optional<calibration::FittedCurve> fitted{};
  std::string fittedTrouble{};
  // Of the latest earlier calibration that has a curve of this series.
  std::optional<PreviousSeries> previous;
  std::vector<calibration::SignOff> signOffs{};  // as Database::signOffs lists them
};

struct ReportInput {
  calibration::Meter meter;
  std::vector<calibration::Run> runs;
  calibration::Details laboratory, details;
  std::string database, softwareVersion, createdAt;
  std::vector<SeriesInput> series;
  std::vector<calibration::HistoryEntry> history{};
  std::stop_token stop{};  // see Report
};

// What is stored is shown as it is stored. Ranking, statistics, warnings and 95 % bands are of the
// refit; a remark says if the refit's curve differs from the stored one, which then gets no bands.
//
// Errors: Cancelled.
[[nodiscard]] Report buildReport(const ReportInput& input);

}  // namespace pelmora::report
