// SPDX-License-Identifier: MIT
#include "history/kept_change.h"

#include "store/curve_schema.h"

#include <algorithm>
#include <array>
#include <map>
#include <string_view>
#include <unordered_map>
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

// What entries repeat of the meters and series that they belong to.
class Names {
 public:
  Names(const ConnectionPtr& curves, const Ids& meters, const Ids& series)
      : meters_(byId(curves, "ID, SerialNumber, ReCalID from meter", meters)),
        series_(byId(curves, "ID, name from series", series)) {}

  // Null where there is no such row.
  [[nodiscard]] Value serialNumber(std::int64_t meter) const { return field(meters_, meter, 0); }
  [[nodiscard]] Value reCalID(std::int64_t meter) const { return field(meters_, meter, 1); }
  [[nodiscard]] Value seriesName(std::int64_t series) const { return field(series_, series, 0); }

 private:
  using Rows = std::unordered_map<std::int64_t, std::vector<Value>>;

  static Rows byId(const ConnectionPtr& curves, const std::string& fields, const Ids& ids) {
    Rows known;
    for (const auto rows = read(curves, "Select " + fields + whereIn("ID", ids)); !rows->atEnd();
         rows->moveNext()) {
      std::vector<Value>& values = known[wholeOf(rows->value(0))];
      for (std::size_t i = 1; i < rows->fieldCount(); ++i) values.push_back(rows->value(i));
    }
    return known;
  }
  static Value field(const Rows& rows, std::int64_t id, std::size_t index) {
    const auto found = rows.find(id);
    return found == rows.end() ? Value() : found->second[index];
  }

  Rows meters_, series_;
};

void addEntry(Recordset& entries, const ChangeNote& note, const Scope& scope, const Names& names) {
  const std::array<Value, 10> values{note.ChangedAt,
                                     note.Command,
                                     names.serialNumber(scope.MeterID),
                                     names.reCalID(scope.MeterID),
                                     std::int64_t{scope.MeterID},
                                     std::int64_t{scope.SeriesID},
                                     names.seriesName(scope.SeriesID),
                                     joinedNames(scope.Tables),
                                     note.UserName,
                                     note.Version};
  entries.addRow(entryFields, values);
}

std::unique_ptr<Recordset> newEntries(const ConnectionPtr& curves, LockType lock) {
  return curves->openRecordset("Select * from " + std::string(historyEntryTable) + " where 1=0",
                               CursorType::dynamic, lock);
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
  const auto entry = newEntries(curves_, LockType::optimistic);
  addEntry(*entry, note_, scope, Names(curves_, {scope.MeterID}, {scope.SeriesID}));
  const std::int64_t entryID = wholeOf(entry->value("ID"));
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
  Ids meterIds, seriesIds;
  for (const KeptSeries& one : series) {
    meterIds.push_back(one.MeterID);
    seriesIds.push_back(one.SeriesID);
  }
  const Names names(curves_, meterIds, seriesIds);
  const auto rows = newEntries(curves_, LockType::batchOptimistic);
  for (const KeptSeries& one : series) {
    kept_.push_back({one.MeterID, one.SeriesID, tables});
    addEntry(*rows, note_, kept_.back(), names);
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
