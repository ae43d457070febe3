// Checks of what a salvage has left incomplete.
// SPDX-License-Identifier: MIT
#include "doctor/checks.h"
#include "doctor/places.h"
#include "history/row_access.h"
#include "store/curve_schema.h"

#include <set>

namespace pelmora::doctor {

// A part that has another number of rows by now has been brought again.
void checkSalvagedParts(const ConnectionPtr& curves, Findings& findings) {
  if (!hasTable(curves, salvagedPartTable)) return;
  std::set<std::int64_t> incomplete;
  for (const auto rows = history::read(
           curves, "Select m.SeriesID, m.Part, m.RowsRead from " + std::string(salvagedPartTable) +
                       " AS m INNER JOIN series ON m.SeriesID=series.ID");
       !rows->atEnd(); rows->moveNext()) {
    const std::int64_t series = history::wholeOf(rows->value(0));
    const std::string part = history::textOf(rows->value(1));
    const std::int64_t read = history::wholeOf(rows->value(2));
    if (incomplete.contains(series) || !hasTable(curves, part)) continue;
    const auto now =
        history::countOf(curves, "[" + part + "] where seriesID=" + std::to_string(series));
    if (now == read) incomplete.insert(series);
  }
  if (incomplete.empty()) return;
  findings.push_back({"incomplete-series", Severity::error, incomplete.size(),
                      "Series that may have lost rows in a salvage",
                      seriesPlace(curves, *incomplete.begin()), false,
                      "store their points again from the stand or a copy and fit them, or remove "
                      "them with 'pelmora delete'"});
}

}  // namespace pelmora::doctor
