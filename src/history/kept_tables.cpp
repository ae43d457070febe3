// SPDX-License-Identifier: MIT
#include "history/kept_tables.h"

#include <pelmora/error.h>

#include <utility>

namespace pelmora::history {
namespace {

using Type = OwnColumnType;

constexpr std::int32_t invalidArgument = 5;

KeptTable table(const std::string& name, Owner owner, const std::string& key,
                std::vector<OwnColumn> columns) {
  return {name, owner, key, std::move(columns), "pelmora_history_" + name};
}

KeptTable dataPoints() {
  KeptTable points = table("CalDataPoint", Owner::setup, "CalSetupID",
                           {{"CalSetupID", Type::whole}, {"JobRecordID", Type::anything}});
  constexpr int measuredValues = 37;
  for (int i = 1; i <= measuredValues; ++i)
    points.Columns.push_back({"V" + std::to_string(i), Type::real});
  return points;
}

KeptTable fitSettings() {
  KeptTable settings = table("pelmora_fit_settings", Owner::series, "SeriesID",
                             {{"SeriesID", Type::whole},
                              {"BandPercent", Type::real},
                              {"Points", Type::whole},
                              {"MinRoshko", Type::real},
                              {"MaxRoshko", Type::real},
                              {"RatioCurve", Type::whole},
                              {"Inverted", Type::whole},
                              {"IgnoreResiduals", Type::whole},
                              {"Equations", Type::text},
                              {"SoftwareVersion", Type::text},
                              {"FittedAt", Type::text},
                              {"MergeBand", Type::real},
                              {"KeepsOverlap", Type::whole},
                              {"PointsFingerprint", Type::text},
                              {"CurveFingerprint", Type::text}});
  settings.HistoryName = "pelmora_history_fit_settings";
  settings.MayBeMissing = true;
  return settings;
}

std::vector<KeptTable> allTables() {
  std::vector<KeptTable> tables{
      table("meter", Owner::meter, "ID",
            {{"ID", Type::whole},
             {"SerialNumber", Type::text},
             {"SerialNumberAdjusted", Type::text},
             {"ReCalID", Type::whole}}),
      table("series", Owner::meter, "meterid",
            {{"ID", Type::whole}, {"name", Type::text}, {"meterid", Type::whole}}),
      table("CalSetup", Owner::meter, "MeterID",
            {{"ID", Type::whole},
             {"MeterID", Type::whole},
             {"Stand", Type::whole},
             {"MeterPosition", Type::whole},
             {"OperatorID", Type::whole},
             {"FluidID", Type::whole},
             {"DateTaken", Type::text}}),
      dataPoints()};
  for (const char* name : {"raw1", "raw2", "raw3", "raw4", "merge", "curve"}) {
    tables.push_back(
        table(name, Owner::series, "seriesID",
              {{"seriesID", Type::whole}, {"Roshko", Type::real}, {"Strouhal", Type::real}}));
  }
  tables.push_back(table("DataFitResults", Owner::series, "seriesID",
                         {{"seriesID", Type::whole}, {"summary", Type::text}}));
  tables.push_back(fitSettings());
  return tables;
}

OwnTable entries() {
  return {entryTable,
          {{"ID", Type::key},
           {"ChangedAt", Type::text},
           {"Command", Type::text},
           {"SerialNumber", Type::text},
           {"ReCalID", Type::whole},
           {"MeterID", Type::whole},
           {"SeriesID", Type::whole},
           {"SeriesName", Type::text},
           {"KeptTables", Type::text},
           {"UserName", Type::text},
           {"Version", Type::text}}};
}

// The rows of an entry come back in the order of KeptID.
OwnTable historyOf(const KeptTable& table) {
  OwnTable history{table.HistoryName, {{"KeptID", Type::key}, {"EntryID", Type::whole}}};
  history.Columns.insert(history.Columns.end(), table.Columns.begin(), table.Columns.end());
  return history;
}

}  // namespace

std::string KeptTable::columnList() const {
  std::string list;
  for (const OwnColumn& column : Columns) list += (list.empty() ? "[" : ", [") + column.Name + "]";
  return list;
}

const std::vector<KeptTable>& keptTables() {
  static const std::vector<KeptTable> tables = allTables();
  return tables;
}

const KeptTable& keptTable(std::string_view name) {
  for (const KeptTable& table : keptTables()) {
    if (table.Name == name) return table;
  }
  throw Error(invalidArgument, "pelmora:history",
              "No rows of table '" + std::string(name) + "' are kept");
}

void createHistoryTables(const ConnectionPtr& curves) {
  createTable(curves, entries());
  for (const KeptTable& table : keptTables()) {
    // An earlier version may have made it with fewer columns.
    if (table.MayBeMissing && hasTable(curves, table.Name))
      createTable(curves, {table.Name, table.Columns});
    createTable(curves, historyOf(table));
    createIndex(curves, {table.HistoryName + "_entry", table.HistoryName, {"EntryID"}});
  }
}

bool hasHistoryTables(const ConnectionPtr& curves) {
  if (!hasTable(curves, entryTable)) return false;
  for (const KeptTable& table : keptTables()) {
    if (!hasTable(curves, table.HistoryName)) return false;
  }
  return true;
}

bool isThere(const ConnectionPtr& curves, const KeptTable& table) {
  return hasTable(curves, table.HistoryName) &&
         (!table.MayBeMissing || hasTable(curves, table.Name));
}

}  // namespace pelmora::history
