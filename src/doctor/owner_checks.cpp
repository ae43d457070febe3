// Checks of what belongs to what.
// SPDX-License-Identifier: MIT
#include "doctor/checks.h"
#include "doctor/orphans.h"
#include "doctor/places.h"
#include "doctor/series_blocks.h"
#include "history/row_access.h"
#include "store/curve_schema.h"

#include <set>

namespace pelmora::doctor {
namespace {

using history::countOf;
using history::idsOf;
using history::read;
using history::textOf;
using history::wholeOf;

}  // namespace

void checkOrphans(const ConnectionPtr& curves, Findings& findings) {
  const auto groups = orphanGroups(curves);
  if (!groups.empty()) {
    findings.push_back({"orphaned-rows", Severity::warning, rowCount(curves, groups),
                        "Rows whose series or calibration is missing", groups.front().Owner, true,
                        ""});
  }
  std::size_t strays = static_cast<std::size_t>(
      countOf(curves,
              "CalDataPoint LEFT JOIN CalSetup ON CalDataPoint.CalSetupID=CalSetup.ID where "
              "CalSetup.ID IS NULL"));
  std::string example = strays > 0 ? "stand points" : "";
  for (const char* table : pointTables) {
    const auto rows = countOf(curves, "[" + std::string(table) + "] where seriesID IS NULL");
    if (rows > 0 && example.empty()) example = "table " + std::string(table);
    strays += static_cast<std::size_t>(rows);
  }
  if (strays == 0) return;
  findings.push_back({"stray-rows", Severity::warning, strays,
                      "Rows that belong to no set-up or name no series", example, false,
                      "nothing reads them; a database tool can remove them"});
}

void checkNames(const ConnectionPtr& curves, Findings& findings) {
  const auto series =
      read(curves,
           "Select meterid, name, COUNT(*) AS n, MIN(ID) AS first from series GROUP BY meterid, "
           "name HAVING COUNT(*)>1");
  if (!series->atEnd()) {
    findings.push_back({"duplicate-series", Severity::error,
                        static_cast<std::size_t>(series->recordCount()),
                        "Names shared by several series of one calibration",
                        seriesPlace(curves, wholeOf(series->value("first"))), false,
                        "which of them is read is not defined: delete those that are not wanted"});
  }
  const auto meters =
      read(curves,
           "Select SerialNumber, ReCalID, COUNT(*) AS n from meter GROUP BY SerialNumber, ReCalID "
           "HAVING COUNT(*)>1");
  if (meters->atEnd()) return;
  findings.push_back(
      {"duplicate-calibrations", Severity::error, static_cast<std::size_t>(meters->recordCount()),
       "Calibrations stored more than once",
       "meter '" + textOf(meters->value(0)) + "', calibration " +
           std::to_string(wholeOf(meters->value(1))),
       false, "which of them is read is not defined: delete those that are not wanted"});
}

void checkNaming(const ConnectionPtr& curves, Findings& findings) {
  const auto series = read(
      curves, "Select COUNT(*) AS n, MIN(ID) AS first from series where name IS NULL OR name=''");
  if (const std::int64_t count = wholeOf(series->value(0)); count > 0) {
    findings.push_back({"unnamed-series", Severity::error, static_cast<std::size_t>(count),
                        "Series without a name, which nobody can ask for",
                        "series " + std::to_string(wholeOf(series->value(1))), false,
                        "give them names with a database tool, or remove them there"});
  }
  // Texts stand above all numbers.
  const auto meters = read(curves,
                           "Select ID, SerialNumber from meter where ReCalID IS NULL OR "
                           "ReCalID>32767 OR ReCalID<0 ORDER BY ID");
  if (meters->atEnd()) return;
  findings.push_back(
      {"unusable-calibration-numbers", Severity::error,
       static_cast<std::size_t>(meters->recordCount()),
       "Calibrations whose number (ReCalID) is empty, a text, or not between 0 and "
       "32767",
       "meter '" + textOf(meters->value(1)) + "', ID " + std::to_string(wholeOf(meters->value(0))),
       false, "set the number in table meter with a database tool"});
}

void checkPoints(const ConnectionPtr& curves, Findings& findings) {
  std::size_t count = 0;
  std::int64_t first = 0;
  for (SeriesBlocks block(curves); block.next();) {
    std::set<std::int64_t> withPoints;
    for (const char* table : pointTables) {
      const auto ids = idsOf(curves, "Select DISTINCT seriesID from [" + std::string(table) +
                                         "] where " + block.condition());
      withPoints.insert(ids.begin(), ids.end());
    }
    for (const std::int64_t id : block.ids()) {
      if (withPoints.contains(id)) continue;
      if (count++ == 0) first = id;
    }
  }
  if (count == 0) return;
  findings.push_back({"series-without-points", Severity::warning, count,
                      "Series without any points", seriesPlace(curves, first), false,
                      "import or store points, or remove it with 'pelmora delete'"});
}

}  // namespace pelmora::doctor
