// Checks of points that were left out of a series.
// SPDX-License-Identifier: MIT
#include "doctor/checks.h"
#include "doctor/places.h"
#include "history/row_access.h"
#include "points/point_fingerprint.h"
#include "store/curve_schema.h"
#include "store/excluded_points.h"
#include "store/field_value.h"
#include "store/reading.h"

#include <string>
#include <vector>

namespace pelmora::doctor {
namespace {

PointArray pointsOfPart(Connection& curves, const char* table, std::int32_t series) {
  const auto rows = readRows(curves, "Select Roshko, Strouhal from [" + std::string(table) +
                                         "] where seriesID=" + std::to_string(series));
  PointArray points(static_cast<std::size_t>(rows->recordCount()));
  for (std::size_t i = 0; !rows->atEnd(); rows->moveNext(), ++i) {
    points(i, 0) = numberOrNan(rows->value(0));
    points(i, 1) = numberOrNan(rows->value(1));
  }
  return points;
}

bool isInForce(Connection& curves, int part, std::int32_t series) {
  const auto excluded = readExcludedPoints(curves, part, series);
  const char* table = rawTables.at(static_cast<std::size_t>(part - 1));
  const PointArray rest = pointsOfPart(curves, table, series);
  return areInForce(excluded, rest.size(), fingerprintOf({&rest, 1}));
}

}  // namespace

// Finds parts that a program which does not know exclusions has stored again.
void checkExclusions(const ConnectionPtr& curves, Findings& findings) {
  std::size_t count = 0;
  std::string example;
  for (int part = 1; part <= static_cast<int>(excludedTables.size()); ++part) {
    const std::string table = excludedTables.at(static_cast<std::size_t>(part - 1));
    if (!hasTable(curves, table)) continue;
    for (const std::int64_t series :
         history::idsOf(curves, "Select DISTINCT t.SeriesID from [" + table +
                                    "] AS t INNER JOIN series ON t.SeriesID=series.ID")) {
      if (isInForce(*curves, part, static_cast<std::int32_t>(series))) continue;
      if (count++ == 0)
        example = "raw part " + std::to_string(part) + " of " + seriesPlace(curves, series);
    }
  }
  if (count == 0) return;
  findings.push_back({"exclusions-not-in-force", Severity::warning, count,
                      "Raw parts that another program has stored again, so that the points that "
                      "were excluded are back",
                      example, false,
                      "look at them with 'pelmora points' and exclude them again with 'pelmora "
                      "exclude'"});
}

}  // namespace pelmora::doctor
