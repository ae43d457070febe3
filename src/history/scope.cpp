// SPDX-License-Identifier: MIT
#include "history/scope.h"

#include "store/curve_schema.h"

#include <algorithm>

namespace pelmora::history {
namespace {

// The tables whose rows belong to a series: its raw parts with the points left out of them, or
// what fits leave behind.
std::vector<std::string> tablesOfSeries(bool areRaw) {
  std::vector<std::string> names;
  for (const SchemaTable* table : seriesTables()) {
    const bool isRaw = std::ranges::find(rawTables, table->Name) != rawTables.end() ||
                       std::ranges::find(excludedTables, table->Name) != excludedTables.end();
    if (isRaw == areRaw) names.push_back(table->Name);
  }
  return names;
}
std::vector<std::string> rawPoints() { return tablesOfSeries(true); }
std::vector<std::string> results() { return tablesOfSeries(false); }

std::vector<std::string> joined(std::vector<std::string> names,
                                const std::vector<std::string>& more) {
  names.insert(names.end(), more.begin(), more.end());
  return names;
}

// The ids of the series or set-ups whose rows belong to the scope.
Ids owners(const ConnectionPtr& curves, const Scope& scope, Owner owner) {
  if (owner == Owner::meter) return {scope.MeterID};
  if (owner == Owner::series && scope.SeriesID != 0) return {scope.SeriesID};
  const std::string of = std::to_string(scope.MeterID);
  return owner == Owner::series ? idsOf(curves, "Select ID from series where meterid=" + of)
                                : idsOf(curves, "Select ID from CalSetup where MeterID=" + of);
}

}  // namespace

Scope rawPart(std::int32_t MeterID, std::int32_t SeriesID, int part) {
  const auto index = static_cast<std::size_t>(part - 1);
  return {MeterID, SeriesID, {rawTables.at(index), excludedTables.at(index)}};
}

Scope fittedCurve(std::int32_t MeterID, std::int32_t SeriesID) {
  return {MeterID, SeriesID, results()};
}

Scope wholeSeries(std::int32_t MeterID, std::int32_t SeriesID) {
  return {MeterID, SeriesID, joined(joined({"series"}, rawPoints()), results())};
}

Scope importedRuns(std::int32_t MeterID) {
  return {MeterID, 0,
          joined(joined({"series", "CalSetup", "CalDataPoint"}, rawPoints()), results())};
}

Scope wholeCalibration(std::int32_t MeterID) {
  return {MeterID, 0,
          joined({"meter", standUncertaintyTable, detailTable}, importedRuns(MeterID).Tables)};
}

Scope statedUncertainty(std::int32_t MeterID) { return {MeterID, 0, {standUncertaintyTable}}; }

std::string condition(const ConnectionPtr& curves, const Scope& scope, const KeptTable& table) {
  if (table.Name == "series" && scope.SeriesID != 0) return whereIn("ID", {scope.SeriesID});
  return whereIn(table.KeyColumn, owners(curves, scope, table.RowsBelongTo));
}

std::string conditionOfEntry(std::int64_t entryID) { return whereIn("EntryID", {entryID}); }

}  // namespace pelmora::history
