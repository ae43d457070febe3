// Checks of tables and indexes.
// SPDX-License-Identifier: MIT
#include "doctor/checks.h"
#include "doctor/places.h"
#include "history/kept_tables.h"

namespace pelmora::doctor {

std::vector<TableIndex> neededIndexes(const ConnectionPtr& curves) {
  std::vector<TableIndex> indexes{
      {"meter_serial_number", "meter", {"SerialNumber", "ReCalID"}},
      {"master_meter_list_serial_number", "masterMeterList", {"SerialNumber", "ReCalID"}},
      {"series_meter", "series", {"meterid", "name"}},
      {"data_fit_results_series", "DataFitResults", {"seriesID"}},
      {"fluids_name", "Fluids", {"Name"}},
      {"operator_name", "Operator", {"Name"}},
      {"cal_setup_meter", "CalSetup", {"MeterID", "Stand"}},
      {"cal_data_point_setup", "CalDataPoint", {"CalSetupID", "JobRecordID"}}};
  for (const std::string table : pointTables)
    indexes.push_back({table + "_series", table, {"seriesID"}});
  for (const history::KeptTable& table : history::keptTables()) {
    if (hasTable(curves, table.HistoryName)) {
      indexes.push_back({table.HistoryName + "_entry", table.HistoryName, {"EntryID"}});
    }
    if (table.MayBeMissing && hasTable(curves, table.Name)) {
      indexes.push_back({table.Name + "_series", table.Name, {table.KeyColumn}});
    }
  }
  return indexes;
}

void checkTables(const ConnectionPtr& curves, Findings& findings) {
  if (history::hasHistoryTables(curves)) return;
  findings.push_back({"missing-history-tables", Severity::note, 1,
                      "The tables of the history are not all there; the next command that replaces "
                      "something makes them",
                      "", true, ""});
}

void checkIndexes(const ConnectionPtr& curves, Findings& findings) {
  std::size_t count = 0;
  std::string example;
  for (const TableIndex& index : neededIndexes(curves)) {
    if (hasIndex(curves, index.Table, index.Columns)) continue;
    if (count++ == 0) example = "table " + index.Table + ", column " + index.Columns.front();
  }
  if (count == 0) return;
  findings.push_back({"missing-indexes", Severity::note, count,
                      "Indexes that make looking up slow by being missing", example, true, ""});
}

}  // namespace pelmora::doctor
