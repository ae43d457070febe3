// SPDX-License-Identifier: MIT
#include "history/entries.h"

#include "store/curve_schema.h"

#include <algorithm>

namespace pelmora::history {
namespace {

std::vector<std::string> split(const std::string& names) {
  std::vector<std::string> list;
  for (std::size_t at = 0; at < names.size();) {
    const std::size_t end = std::min(names.find(',', at), names.size());
    list.push_back(names.substr(at, end - at));
    at = end + 1;
  }
  return list;
}

// An entry from before points could be left out brings its raw parts back without exclusions.
std::vector<std::string> withExcluded(std::vector<std::string> tables) {
  const auto has = [&](const char* name) {
    return std::find(tables.begin(), tables.end(), name) != tables.end();
  };
  for (std::size_t part = 0; part < rawTables.size(); ++part) {
    if (has(rawTables.at(part)) && !has(excludedTables.at(part)))
      tables.push_back(excludedTables.at(part));
  }
  return tables;
}

Entry entryOf(const Recordset& rows) {
  Entry entry;
  entry.ID = wholeOf(rows.value("ID"));
  entry.Note = {textOf(rows.value("Command")), textOf(rows.value("ChangedAt")),
                textOf(rows.value("UserName")), textOf(rows.value("Version"))};
  entry.SerialNumber = textOf(rows.value("SerialNumber"));
  entry.SeriesName = textOf(rows.value("SeriesName"));
  entry.ReCalID = static_cast<std::int32_t>(wholeOf(rows.value("ReCalID")));
  entry.Kept = {static_cast<std::int32_t>(wholeOf(rows.value("MeterID"))),
                static_cast<std::int32_t>(wholeOf(rows.value("SeriesID"))),
                withExcluded(split(textOf(rows.value("KeptTables"))))};
  return entry;
}

std::vector<Entry> readEntries(const ConnectionPtr& curves, const std::string& where) {
  std::vector<Entry> list;
  if (!hasTable(curves, historyEntryTable)) return list;
  const auto rows =
      read(curves, "Select * from " + std::string(historyEntryTable) + where + " ORDER BY ID DESC");
  for (; !rows->atEnd(); rows->moveNext()) list.push_back(entryOf(*rows));
  return list;
}

std::string literal(const std::string& text) {
  std::string quoted = "'";
  for (const char c : text) quoted += c == '\'' ? std::string("''") : std::string(1, c);
  return quoted + "'";
}

std::string conditionOf(const EntryFilter& filter) {
  std::string where = " where 1=1";
  if (!filter.SerialNumber.empty()) where += " AND SerialNumber=" + literal(filter.SerialNumber);
  if (filter.ReCalID) where += " AND ReCalID=" + std::to_string(*filter.ReCalID);
  return where;
}

// The ids that series of that name have had.
Ids seriesIds(const ConnectionPtr& curves, const std::vector<Entry>& list,
              const std::string& name) {
  Ids entryIds;
  for (const Entry& entry : list) entryIds.push_back(entry.ID);
  const std::string named = "=" + literal(name);
  Ids ids = idsOf(curves, "Select DISTINCT SeriesID from " + std::string(historyEntryTable) +
                              whereIn("ID", entryIds) + " AND SeriesName" + named);
  const Ids kept = idsOf(curves, "Select DISTINCT ID from " + historyTableOf("series") +
                                     whereIn("EntryID", entryIds) + " AND name" + named);
  ids.insert(ids.end(), kept.begin(), kept.end());
  return ids;
}

// For up to so many entries their rows are looked up; for more, all rows are counted in one pass.
constexpr std::size_t fewEntries = 50;

// Counts the kept rows of the entries, table by table. ofSeries: only rows of series with these
// ids.
void countRows(const ConnectionPtr& curves, std::vector<Entry>& list,
               const std::optional<Ids>& ofSeries) {
  Ids entryIds;
  for (const Entry& entry : list) entryIds.push_back(entry.ID);
  const std::string ofEntries = list.size() <= fewEntries ? whereIn("EntryID", entryIds) : "";
  for (const KeptTable& table : keptTables()) {
    if (!hasTable(curves, table.HistoryName) || (ofSeries && table.RowsBelongTo != Owner::series))
      continue;
    const std::string where = ofSeries ? whereIn(table.KeyColumn, *ofSeries) : ofEntries;
    std::map<std::int64_t, std::size_t> counts;
    const auto rows = read(curves, "Select EntryID, COUNT(*) AS n from [" + table.HistoryName +
                                       "]" + where + " GROUP BY EntryID");
    for (; !rows->atEnd(); rows->moveNext()) {
      counts[wholeOf(rows->value("EntryID"))] = static_cast<std::size_t>(wholeOf(rows->value("n")));
    }
    for (Entry& entry : list) {
      if (const auto found = counts.find(entry.ID); found != counts.end())
        entry.Rows[table.Name] = found->second;
    }
  }
}

}  // namespace

std::size_t Entry::rowsOf(const std::string& table) const {
  const auto found = Rows.find(table);
  return found == Rows.end() ? 0 : found->second;
}

std::vector<Entry> entries(const ConnectionPtr& curves, const EntryFilter& filter) {
  std::vector<Entry> list = readEntries(curves, conditionOf(filter));
  if (list.empty()) return list;
  if (filter.SeriesName.empty()) {
    countRows(curves, list, std::nullopt);
    return list;
  }
  const Ids ids = seriesIds(curves, list, filter.SeriesName);
  countRows(curves, list, ids);
  std::erase_if(list, [&](const Entry& entry) {
    const bool isItsOwn = std::find(ids.begin(), ids.end(), entry.Kept.SeriesID) != ids.end();
    return entry.Kept.SeriesID == 0 ? entry.Rows.empty() : !isItsOwn;
  });
  return list;
}

std::optional<Entry> findEntry(const ConnectionPtr& curves, std::int64_t entryID) {
  std::vector<Entry> list = readEntries(curves, " where ID=" + std::to_string(entryID));
  if (list.empty()) return std::nullopt;
  countRows(curves, list, std::nullopt);
  return list.front();
}

std::vector<Entry> prunable(const ConnectionPtr& curves, const Pruning& pruning) {
  std::vector<Entry> old = entries(curves);
  old.erase(old.begin(),
            old.begin() + static_cast<std::ptrdiff_t>(std::min(pruning.Keep, old.size())));
  if (pruning.Before) {
    std::erase_if(old, [&](const Entry& entry) { return entry.Note.ChangedAt >= *pruning.Before; });
  }
  return old;
}

void removeEntry(const ConnectionPtr& curves, std::int64_t entryID) {
  for (const KeptTable& table : keptTables()) {
    if (!hasTable(curves, table.HistoryName)) continue;
    curves->execute("DELETE FROM [" + table.HistoryName + "]" + conditionOfEntry(entryID));
  }
  if (!hasTable(curves, historyEntryTable)) return;
  curves->execute("DELETE FROM " + std::string(historyEntryTable) + whereIn("ID", {entryID}));
}

}  // namespace pelmora::history
