// Which rows of a curve database one change is about.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/export.h>

#include "history/kept_tables.h"
#include "history/row_access.h"

#include <cstdint>
#include <string>
#include <vector>

namespace pelmora::history {

// Rows of one series, or of a whole calibration, in some tables.
struct Scope {
  std::int32_t MeterID = 0;
  std::int32_t SeriesID = 0;        // 0: all series of the calibration
  std::vector<std::string> Tables;  // names as in keptTables()

  bool operator==(const Scope&) const = default;
};

// The raw points and the points left out of them. part: 1 to 4.
[[nodiscard]] PELMORA_API Scope rawPart(std::int32_t MeterID, std::int32_t SeriesID, int part);
// Curve, merged points, report and settings of the fit.
[[nodiscard]] PELMORA_API Scope fittedCurve(std::int32_t MeterID, std::int32_t SeriesID);
[[nodiscard]] PELMORA_API Scope wholeSeries(std::int32_t MeterID, std::int32_t SeriesID);
// What an import replaces, and the curves, which belong to the raw points of before: set-ups, their
// data points, series, raw points, results.
[[nodiscard]] PELMORA_API Scope importedRuns(std::int32_t MeterID);
// The same and the calibration itself.
[[nodiscard]] PELMORA_API Scope wholeCalibration(std::int32_t MeterID);
// The uncertainty of the stand.
[[nodiscard]] PELMORA_API Scope statedUncertainty(std::int32_t MeterID);

// " where ...": the rows of `table` that belong to the scope as the database is now.
[[nodiscard]] PELMORA_API std::string condition(const ConnectionPtr& curves, const Scope& scope,
                                                const KeptTable& table);

// The rows of an entry in the history's own tables.
[[nodiscard]] PELMORA_API std::string conditionOfEntry(std::int64_t entryID);

}  // namespace pelmora::history
