// SPDX-License-Identifier: MIT
#include "history/kept_change.h"

#include "store/curve_schema.h"

#include <algorithm>
#include <array>
#include <map>
#include <string_view>
#include <utility>

namespace pelmora::history {
namespace {

bool hasRows(const ConnectionPtr& curves, const Scope& scope) {
  for (const std::string& name : scope.Tables) {
    const KeptTable& table = keptTable(name);
    if (table.MayBeMissing && !hasTable(curves, name)) continue;
    const auto rows =
        read(curves, "Select TOP 1 * from [" + name + "]" + condition(curves, scope, table));
    if (!rows->atEnd()) return true;
  }
  return false;
}

// Whether the rows of `part` are among those of `whole`.
bool covers(const Scope& whole, const Scope& part) {
  const bool isItsOwner =
      whole.MeterID == part.MeterID && (whole.SeriesID == 0 || whole.SeriesID == part.SeriesID);
  return isItsOwner &&
         std::all_of(part.Tables.begin(), part.Tables.end(), [&](const std::string& name) {
           return std::find(whole.Tables.begin(), whole.Tables.end(), name) != whole.Tables.end();
         });
}

std::string joinedNames(const std::vector<std::string>& names) {
  std::string list;
  for (const std::string& name : names) list += (list.empty() ? "" : ",") + name;
  return list;
}

constexpr std::array<std::string_view, 10> entryFields{
    "ChangedAt", "Command",    "SerialNumber", "ReCalID",  "MeterID",
    "SeriesID",  "SeriesName", "KeptTables",   "UserName", "Version"};

std::int64_t addEntry(const ConnectionPtr& curves, const ChangeNote& note, const Scope& scope) {
  const auto meter = read(
      curves, "Select SerialNumber, ReCalID from meter where ID=" + std::to_string(scope.MeterID));
  const auto series =
      read(curves, "Select name from series where ID=" + std::to_string(scope.SeriesID));
  const auto rows =
      curves->openRecordset("Select * from " + std::string(historyEntryTable) + " where 1=0",
                            CursorType::dynamic, LockType::optimistic);
  const std::array<Value, 10> values{note.ChangedAt,
                                     note.Command,
                                     meter->atEnd() ? Value() : meter->value(0),
                                     meter->atEnd() ? Value() : meter->value(1),
                                     std::int64_t{scope.MeterID},
                                     std::int64_t{scope.SeriesID},
                                     series->atEnd() ? Value() : series->value(0),
                                     joinedNames(scope.Tables),
                                     note.UserName,
                                     note.Version};
  rows->addRow(entryFields, values);
  return wholeOf(rows->value("ID"));
}

// The entries behind `last`, by series.
std::map<std::int64_t, std::int64_t> entriesAfter(const ConnectionPtr& curves, std::int64_t last) {
  std::map<std::int64_t, std::int64_t> entries;
  const auto rows = read(curves, std::string("Select ID, SeriesID from ") + historyEntryTable +
                                     " where ID>" + std::to_string(last));
  for (; !rows->atEnd(); rows->moveNext())
    entries[wholeOf(rows->value(1))] = wholeOf(rows->value(0));
  return entries;
}

// The rows of all series that have an entry behind `last`.
void copyRows(const ConnectionPtr& curves, const KeptTable& table, std::int64_t last) {
  std::string columns, selected;
  for (const OwnColumn& column : table.Columns) {
    columns += ", [" + column.Name + "]";
    selected += ", t.[" + column.Name + "]";
  }
  curves->execute("INSERT INTO [" + table.HistoryName + "] ([EntryID]" + columns +
                  ") SELECT e.ID AS EntryID" + selected + " FROM [" + table.Name +
                  "] AS t INNER JOIN " + historyEntryTable + " AS e ON e.SeriesID = t.[" +
                  table.KeyColumn + "] WHERE e.ID > " + std::to_string(last));
}

}  // namespace

KeptChange::KeptChange(const ConnectionPtr& curves, ChangeNote note)
    : curves_(curves), note_(std::move(note)), transaction_(curves) {}

std::int64_t KeptChange::keep(const Scope& scope) {
  const bool isKept = std::any_of(kept_.begin(), kept_.end(),
                                  [&](const Scope& before) { return covers(before, scope); });
  kept_.push_back(scope);
  if (isKept || !hasRows(curves_, scope)) return 0;
  if (!hasTables_) createHistoryTables(curves_);
  hasTables_ = true;
  const std::int64_t entryID = addEntry(curves_, note_, scope);
  for (const std::string& name : scope.Tables) {
    const KeptTable& table = keptTable(name);
    if (!isThere(curves_, table)) continue;
    curves_->execute("INSERT INTO [" + table.HistoryName + "] ([EntryID], " + table.columnList() +
                     ") SELECT " + std::to_string(entryID) + " AS EntryID, " + table.columnList() +
                     " FROM [" + name + "]" + condition(curves_, scope, table));
  }
  return entryID;
}

std::vector<std::int64_t> KeptChange::keepEach(const std::vector<KeptSeries>& series,
                                               const std::vector<std::string>& tables) {
  if (series.empty()) return {};
  if (!hasTables_) createHistoryTables(curves_);
  hasTables_ = true;
  const std::int64_t last =
      wholeOf(read(curves_, std::string("Select MAX(ID) from ") + historyEntryTable)->value(0));
  const auto rows =
      curves_->openRecordset(std::string("Select * from ") + historyEntryTable + " where 1=0",
                             CursorType::dynamic, LockType::batchOptimistic);
  for (const KeptSeries& one : series) {
    kept_.push_back({one.MeterID, one.SeriesID, tables});
    rows->addRow(entryFields,
                 std::array<Value, 10>{note_.ChangedAt, note_.Command, one.SerialNumber,
                                       std::int64_t{one.ReCalID}, std::int64_t{one.MeterID},
                                       std::int64_t{one.SeriesID}, one.SeriesName,
                                       joinedNames(tables), note_.UserName, note_.Version});
  }
  rows->updateBatch();
  for (const std::string& name : tables) {
    const KeptTable& table = keptTable(name);
    if (isThere(curves_, table)) copyRows(curves_, table, last);
  }
  // Nobody else writes inside the transaction.
  const auto entries = entriesAfter(curves_, last);
  std::vector<std::int64_t> ids;
  for (const KeptSeries& one : series) ids.push_back(entries.at(one.SeriesID));
  return ids;
}

}  // namespace pelmora::history
