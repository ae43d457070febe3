// Checks of tables and indexes.
// SPDX-License-Identifier: MIT
#include "doctor/checks.h"
#include "history/kept_tables.h"
#include "store/curve_schema.h"

#include <utility>

namespace pelmora::doctor {

std::vector<TableIndex> neededIndexes(const ConnectionPtr& curves) {
  std::vector<TableIndex> indexes;
  for (const auto* tables : {&curveTables(), &ownTables()}) {
    for (const SchemaTable& table : *tables) {
      if (tables == &ownTables() && !hasTable(curves, table.Name)) continue;
      for (TableIndex& index : table.designIndexes()) indexes.push_back(std::move(index));
    }
  }
  return indexes;
}

void checkTables(const ConnectionPtr& curves, Findings& findings) {
  if (history::hasHistoryTables(curves)) return;
  findings.push_back({"missing-history-tables", Severity::note, 1,
                      "Some tables of the history are missing; the next command that replaces "
                      "something creates them",
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
                      "Missing indexes, which slow down look-ups", example, true, ""});
}

}  // namespace pelmora::doctor
