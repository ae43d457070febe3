// SPDX-License-Identifier: MIT
#include "history/entries.h"

#include "store/curve_schema.h"

#include <algorithm>
#include <cstdint>
#include <utility>

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

// What EntryReader reads.
constexpr const char* entryColumns =
    "ID, Command, ChangedAt, UserName, Version, SerialNumber, SeriesName, ReCalID, MeterID, "
    "SeriesID, KeptTables";

// Reads entries into others, whose memory is used again.
class EntryReader {
 public:
  void read(const Recordset& row, Entry& entry) {
    std::size_t column = 0;
    const auto whole = [&] { return wholeOf(row.value(column++)); };
    const auto text = [&] { return textOf(row.value(column++)); };
    entry.ID = whole();
    entry.Note.Command = text();
    entry.Note.ChangedAt = text();
    entry.Note.UserName = text();
    entry.Note.Version = text();
    entry.SerialNumber = text();
    entry.SeriesName = text();
    entry.ReCalID = static_cast<std::int32_t>(whole());
    entry.Kept.MeterID = static_cast<std::int32_t>(whole());
    entry.Kept.SeriesID = static_cast<std::int32_t>(whole());
    entry.Kept.Tables = tablesOf(text());
    entry.Rows.clear();
  }

 private:
  // Most entries keep the same tables as the one before.
  const std::vector<std::string>& tablesOf(std::string names) {
    if (names != names_) {
      tables_ = withExcluded(split(names));
      names_ = std::move(names);
    }
    return tables_;
  }

  std::string names_;
  std::vector<std::string> tables_;
};

void readEntries(const ConnectionPtr& curves, const std::string& top, const std::string& where,
                 std::vector<Entry>& list) {
  const auto rows = read(curves, "Select " + top + entryColumns + " from " + historyEntryTable +
                                     where + " ORDER BY ID DESC");
  EntryReader reader;
  std::size_t count = 0;  // some connections do not know it before
  for (; !rows->atEnd(); rows->moveNext(), ++count) {
    if (count == list.size()) list.emplace_back();
    reader.read(*rows, list[count]);
  }
  list.resize(count);
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

// The ids that series of the filter's name have had.
Ids seriesIds(const ConnectionPtr& curves, const EntryFilter& filter) {
  const std::string table = historyEntryTable, where = conditionOf(filter);
  const std::string named = "=" + literal(filter.SeriesName);
  Ids ids =
      idsOf(curves, "Select DISTINCT SeriesID from " + table + where + " AND SeriesName" + named);
  const Ids kept =
      idsOf(curves, "Select DISTINCT s.ID from " + historyTableOf("series") + " AS s INNER JOIN " +
                        table + " AS e ON s.EntryID=e.ID" + where + " AND s.name" + named);
  ids.insert(ids.end(), kept.begin(), kept.end());
  return ids;
}

// Counts the kept rows of entries, table by table. ofSeries: only rows of series with these ids.
class RowCounter {
 public:
  explicit RowCounter(ConnectionPtr curves, std::optional<Ids> ofSeries = {})
      : curves_(std::move(curves)), ofSeries_(std::move(ofSeries)) {
    for (const KeptTable& table : keptTables()) {
      const bool isOfSeries = table.RowsBelongTo == Owner::series;
      if ((!ofSeries_ || isOfSeries) && hasTable(curves_, table.HistoryName))
        tables_.push_back(&table);
    }
  }

  // list: from the newest to the oldest.
  void count(std::vector<Entry>& list) const {
    const std::string ofEntries = whereAmong(list);
    for (const KeptTable* table : tables_) {
      const std::string ofSeries = ofSeries_ ? " AND " + isIn(table->KeyColumn, *ofSeries_) : "";
      const auto rows = read(curves_, "Select EntryID, COUNT(*) AS n from [" + table->HistoryName +
                                          "]" + ofEntries + ofSeries + " GROUP BY EntryID");
      for (; !rows->atEnd(); rows->moveNext()) {
        const std::int64_t id = wholeOf(rows->value(0));
        const auto entry = std::lower_bound(
            list.begin(), list.end(), id,
            [](const Entry& known, std::int64_t wanted) { return known.ID > wanted; });
        if (entry != list.end() && entry->ID == id)
          entry->Rows[table->Name] = static_cast<std::size_t>(wholeOf(rows->value(1)));
      }
    }
  }

 private:
  // Few entries are looked up one by one; of many, the whole range is read.
  static std::string whereAmong(const std::vector<Entry>& list) {
    constexpr std::size_t few = 50;
    if (list.size() > few) {
      return " where EntryID >= " + std::to_string(list.back().ID) +
             " AND EntryID <= " + std::to_string(list.front().ID);
    }
    Ids ids;
    for (const Entry& entry : list) ids.push_back(entry.ID);
    return whereIn("EntryID", ids);
  }

  ConnectionPtr curves_;
  std::optional<Ids> ofSeries_;
  std::vector<const KeptTable*> tables_;
};

// Whether the entry, with its rows counted, has to do with one of these series.
bool concerns(const Entry& entry, const Ids& series) {
  if (entry.Kept.SeriesID == 0) return !entry.Rows.empty();
  return std::find(series.begin(), series.end(), entry.Kept.SeriesID) != series.end();
}

}  // namespace

std::size_t Entry::rowsOf(const std::string& table) const {
  const auto found = Rows.find(table);
  return found == Rows.end() ? 0 : found->second;
}

void visitEntries(const ConnectionPtr& curves, const EntryFilter& filter,
                  const EntryVisitor& visit) {
  constexpr std::size_t most = 2000;  // in memory
  if (!hasTable(curves, historyEntryTable)) return;
  std::optional<Ids> ofSeries;
  if (!filter.SeriesName.empty()) ofSeries = seriesIds(curves, filter);
  if (ofSeries && ofSeries->empty()) return;
  const RowCounter counter(curves, ofSeries);
  const std::size_t wanted = filter.Newest > 0 ? filter.Newest : SIZE_MAX;
  const std::size_t atOnce = std::min(most, wanted);
  const std::string top = "TOP " + std::to_string(atOnce) + " ";
  std::string where = conditionOf(filter);
  std::size_t visited = 0;
  std::vector<Entry> list;
  do {
    readEntries(curves, top, where, list);
    if (list.empty()) return;
    counter.count(list);
    for (const Entry& entry : list) {
      if (ofSeries && !concerns(entry, *ofSeries)) continue;
      visit(entry);
      if (++visited == wanted) return;
    }
    where = conditionOf(filter) + " AND ID < " + std::to_string(list.back().ID);
  } while (list.size() == atOnce);
}

std::vector<Entry> entries(const ConnectionPtr& curves, const EntryFilter& filter) {
  std::vector<Entry> list;
  visitEntries(curves, filter, [&](const Entry& entry) { list.push_back(entry); });
  return list;
}

std::optional<Entry> findEntry(const ConnectionPtr& curves, std::int64_t entryID) {
  if (!hasTable(curves, historyEntryTable)) return std::nullopt;
  std::vector<Entry> list;
  readEntries(curves, "", " where ID=" + std::to_string(entryID), list);
  if (list.empty()) return std::nullopt;
  RowCounter(curves).count(list);
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
