// SPDX-License-Identifier: MIT
#include "apps/pelmora/output/import_output.h"

#include "apps/pelmora/output/run_table.h"
#include "apps/pelmora/output/point_output.h"
#include "apps/pelmora/output/text_table.h"
#include "report/json_values.h"

#include <nlohmann/json.hpp>

namespace pelmora::cli {
namespace {

using Align = TextTable::Align;

std::string derivedTable(const std::vector<calibration::DerivedSeries>& derived) {
  if (derived.empty()) return {};
  TextTable table({{"Series", Align::left},
                   {"Part 1", Align::right},
                   {"Part 2", Align::right},
                   {"Part 3", Align::right},
                   {"Part 4", Align::right}});
  for (const calibration::DerivedSeries& series : derived) {
    std::vector<std::string> row{series.name};
    for (const std::size_t points : series.points)
      row.push_back(points == 0 ? "-" : std::to_string(points));
    table.addRow(row);
  }
  return "\n" + table.text();
}

}  // namespace

std::string importText(const std::string& database, const ImportOutcome& outcome) {
  const calibration::Imported& imported = outcome.imported;
  std::string text =
      wrapped("Meter " + imported.meter.serial + ", calibration " +
                  std::to_string(imported.meter.calibration) +
                  (outcome.isNewCalibration ? " (new)" : "") + ", in " + database + ".",
              0) +
      "\n" + runTable(imported.runs) + derivedTable(imported.series);
  for (const std::string& note : outcome.notes) text += wrapped("note: " + note, 0);
  return text + exclusionText(imported.excludedAgain, imported.dropped);
}

nlohmann::json importJson(const ImportOutcome& outcome) {
  using nlohmann::json;
  json series = json::array();
  for (const calibration::DerivedSeries& derived : outcome.imported.series) {
    series.push_back(
        {{"name", derived.name}, {"seriesId", derived.id}, {"rawPoints", derived.points}});
  }
  std::vector<std::string> notes = outcome.notes;
  notes.insert(notes.end(), outcome.imported.doubts.begin(), outcome.imported.doubts.end());
  return {{"meter", report::meterJson(outcome.imported.meter)},
          {"newCalibration", outcome.isNewCalibration},
          {"setups", report::runsJson(outcome.imported.runs)},
          {"series", series},
          {"notes", notes},
          {"error", outcome.trouble ? json(errorLine(*outcome.trouble)) : json()}};
}

}  // namespace pelmora::cli
