// SPDX-License-Identifier: MIT
#include "history/restoring.h"

#include <pelmora/error.h>

#include <algorithm>

namespace pelmora::history {
namespace {

Error inTheWay(const std::string& what) { return {standsInTheWay, "pelmora:restore", what}; }

std::string named(const Entry& entry) {
  return "meter '" + entry.SerialNumber + "', calibration " + std::to_string(entry.ReCalID);
}

bool covers(const Entry& entry, const std::string& table) {
  return std::find(entry.Kept.Tables.begin(), entry.Kept.Tables.end(), table) !=
         entry.Kept.Tables.end();
}

Ids keptIds(const ConnectionPtr& curves, const Entry& entry, const KeptTable& table) {
  return idsOf(curves, "Select ID from [" + table.HistoryName + "]" + conditionOfEntry(entry.ID));
}

// The rows must find the calibration and series that they belong to.
void requireOwners(const ConnectionPtr& curves, const Entry& entry) {
  if (entry.SerialNumber.empty()) return;  // they had none when they were kept
  if (!covers(entry, "meter")) {
    const auto meter =
        read(curves, "Select SerialNumber from meter" + whereIn("ID", {entry.Kept.MeterID}));
    if (meter->atEnd()) {
      throw inTheWay(named(entry) + " has been deleted since; restore its own entry first");
    }
  }
  if (entry.Kept.SeriesID == 0 || covers(entry, "series")) return;
  const auto series =
      read(curves, "Select meterid from series" + whereIn("ID", {entry.Kept.SeriesID}));
  if (series->atEnd() || wholeOf(series->value(0)) != entry.Kept.MeterID) {
    throw inTheWay("series '" + entry.SeriesName + "' of " + named(entry) +
                   " has been deleted since; restore its own entry first");
  }
}

// After the rows of the scope have gone: no row of others may have an id that comes back.
void requireFreeIds(const ConnectionPtr& curves, const Entry& entry, const KeptTable& table) {
  if (table.Columns.front().Name != "ID") return;
  const Ids ids = keptIds(curves, entry, table);
  if (idsOf(curves, "Select ID from [" + table.Name + "]" + whereIn("ID", ids)).empty()) return;
  throw inTheWay("another row of table " + table.Name + " has the id of one that entry " +
                 std::to_string(entry.ID) + " would bring back");
}

// After the rows have come back: names tell calibrations and series apart.
void requireOwnNames(const ConnectionPtr& curves, const Entry& entry) {
  if (covers(entry, "meter")) {
    const auto twins = countOf(curves,
                               "meter AS a INNER JOIN meter AS b ON (a.SerialNumber=b.SerialNumber "
                               "AND a.ReCalID=b.ReCalID) "
                               "where a.ID=" +
                                   std::to_string(entry.Kept.MeterID));
    if (twins > 1)
      throw inTheWay(named(entry) + " exists again; delete it first, what is deleted is kept too");
  }
  if (entry.Kept.SeriesID == 0 || !covers(entry, "series")) return;
  const auto twins =
      countOf(curves,
              "series AS a INNER JOIN series AS b ON (a.name=b.name AND a.meterid=b.meterid) "
              "where a.ID=" +
                  std::to_string(entry.Kept.SeriesID));
  if (twins > 1) {
    throw inTheWay("series '" + entry.SeriesName + "' of " + named(entry) +
                   " exists again; delete it first, what is deleted is kept too");
  }
}

// Rows of the scope as it is now and, where series and set-ups come back, of those too.
std::string allOf(const ConnectionPtr& curves, const Entry& entry, const KeptTable& table) {
  std::string where = condition(curves, entry.Kept, table);
  if (entry.Kept.SeriesID != 0 || table.RowsBelongTo == Owner::meter) return where;
  const KeptTable& owner = keptTable(table.RowsBelongTo == Owner::series ? "series" : "CalSetup");
  const Ids ids = keptIds(curves, entry, owner);
  return ids.empty() ? where : where + " OR " + isIn(table.KeyColumn, ids);
}

}  // namespace

RestoreOutcome restore(const ConnectionPtr& curves, KeptChange& change, std::int64_t entryID) {
  const auto found = findEntry(curves, entryID);
  if (!found)
    throw Error(noSuchEntry, "pelmora:restore",
                "there is no history entry " + std::to_string(entryID));
  const Entry& entry = *found;
  requireOwners(curves, entry);
  createHistoryTables(curves);
  RestoreOutcome outcome{entry, change.keep(entry.Kept), {}};

  // All conditions first: removing series and set-ups would change them.
  std::vector<std::string> statements;
  for (const std::string& name : entry.Kept.Tables) {
    const KeptTable& table = keptTable(name);
    if (!isThere(curves, table)) continue;
    const std::string from = "[" + name + "]" + allOf(curves, entry, table);
    outcome.Tables.push_back(
        {name, static_cast<std::size_t>(countOf(curves, from)), entry.rowsOf(name)});
    statements.push_back("DELETE FROM " + from);
  }
  for (const std::string& statement : statements) curves->execute(statement);
  for (const auto& [name, before, now] : outcome.Tables) {
    const KeptTable& table = keptTable(name);
    requireFreeIds(curves, entry, table);
    curves->execute("INSERT INTO [" + name + "] (" + table.columnList() + ") SELECT " +
                    table.columnList() + " FROM [" + table.HistoryName + "]" +
                    conditionOfEntry(entry.ID) + " ORDER BY KeptID");
  }
  requireOwnNames(curves, entry);
  return outcome;
}

}  // namespace pelmora::history
