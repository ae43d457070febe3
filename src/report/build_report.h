// From what a database holds and a fit gives to the model of a report.
// SPDX-License-Identifier: MIT
#pragma once

#include "report/report_model.h"

#include <optional>
#include <string>
#include <vector>

namespace pelmora::report {

// A fit made for the report with the settings of the stored curve. It stores nothing.
struct Refit {
  FitOutcome outcome;
  PointArray curve;     // no bounds where no equation passed
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
  std::optional<PreviousSeries>
      previous;  // of the latest earlier calibration with this series' curve
};

struct ReportInput {
  calibration::Meter meter;
  std::vector<calibration::Run> runs;
  calibration::Details laboratory, details;
  std::string database, softwareVersion, createdAt;
  std::vector<SeriesInput> series;
  std::vector<calibration::HistoryEntry> history{};
};

// What is stored is shown as it is stored. Ranking, statistics, warnings and 95 % bands are of the
// refit; a remark says where the refit's curve is another one than the stored curve, which then
// gets no bands.
[[nodiscard]] Report buildReport(const ReportInput& input);

}  // namespace pelmora::report
