// SPDX-License-Identifier: MIT
#include "history/kept_change.h"

#include "store/curve_schema.h"

#include <algorithm>
#include <array>
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

std::int64_t addEntry(const ConnectionPtr& curves, const ChangeNote& note, const Scope& scope) {
  const auto meter = read(
      curves, "Select SerialNumber, ReCalID from meter where ID=" + std::to_string(scope.MeterID));
  const auto series =
      read(curves, "Select name from series where ID=" + std::to_string(scope.SeriesID));
  const auto rows =
      curves->openRecordset("Select * from " + std::string(historyEntryTable) + " where 1=0",
                            CursorType::dynamic, LockType::optimistic);
  constexpr std::array<std::string_view, 10> fields{
      "ChangedAt", "Command",    "SerialNumber", "ReCalID",  "MeterID",
      "SeriesID",  "SeriesName", "KeptTables",   "UserName", "Version"};
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
  rows->addRow(fields, values);
  return wholeOf(rows->value("ID"));
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

}  // namespace pelmora::history
