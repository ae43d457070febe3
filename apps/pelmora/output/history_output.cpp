// SPDX-License-Identifier: MIT
#include "apps/pelmora/output/history_output.h"

#include <nlohmann/json.hpp>

#include <array>

namespace pelmora::cli {
namespace {

using Align = TextTable::Align;
using calibration::HistoryEntry;

struct TableWords {
  const char *table, *name, *key;
};

constexpr std::array<TableWords, 18> words{
    {{"meter", "calibration", "calibrations"},
     {"series", "series", "series"},
     {"CalSetup", "set-ups", "setups"},
     {"CalDataPoint", "stand points", "standPoints"},
     {"raw1", "raw part 1", "raw1"},
     {"raw2", "raw part 2", "raw2"},
     {"raw3", "raw part 3", "raw3"},
     {"raw4", "raw part 4", "raw4"},
     {"merge", "merged points", "merged"},
     {"curve", "curve points", "curve"},
     {"DataFitResults", "report", "reports"},
     {"pelmora_fit_settings", "fit settings", "fitSettings"},
     {"pelmora_excluded1", "excluded of part 1", "excluded1"},
     {"pelmora_excluded2", "excluded of part 2", "excluded2"},
     {"pelmora_excluded3", "excluded of part 3", "excluded3"},
     {"pelmora_excluded4", "excluded of part 4", "excluded4"},
     {"pelmora_stand_uncertainty", "stand uncertainty", "standUncertainty"},
     {"pelmora_detail", "details", "details"}}};

const TableWords* wordsOf(const std::string& table) {
  for (const TableWords& entry : words) {
    if (entry.table == table) return &entry;
  }
  return nullptr;
}

std::string rowsName(const std::string& table) {
  const TableWords* found = wordsOf(table);
  return found == nullptr ? table : found->name;
}

std::string rowsKey(const std::string& table) {
  const TableWords* found = wordsOf(table);
  return found == nullptr ? table : found->key;
}

std::string countText(std::size_t count) { return count == 0 ? "-" : std::to_string(count); }

// "2026-11-21T14:05:09Z" as "2026-11-21 14:05"
std::string minuteText(std::string time) {
  constexpr std::size_t toMinutes = 16;
  if (const auto at = time.find('T'); at != std::string::npos) time[at] = ' ';
  return time.substr(0, toMinutes);
}

}  // namespace

std::vector<NamedCount> namedCounts(const RowCounts& rows) {
  std::vector<NamedCount> list;
  for (const TableWords& entry : words) {
    if (const auto found = rows.find(entry.table); found != rows.end())
      list.push_back({entry.name, found->second});
  }
  for (const auto& [table, count] : rows) {
    if (wordsOf(table) == nullptr) list.push_back({table, count});
  }
  return list;
}

nlohmann::json countsJson(const RowCounts& rows) {
  nlohmann::json counts = nlohmann::json::object();
  for (const auto& [table, count] : rows) counts[rowsKey(table)] = count;
  return counts;
}

std::string placeText(const std::string& serial, int calibration, const std::string& series) {
  const std::string meter = "meter " + serial + ", calibration " + std::to_string(calibration);
  return series.empty() ? meter : "series '" + series + "' of " + meter;
}

std::vector<TextColumn> entryColumns() {
  return {{"#", Align::right},      {"Changed (UTC)", Align::right},
          {"Command", Align::left}, {"Meter", Align::left},
          {"Cal", Align::right},    {"Series", Align::left},
          {"Raw", Align::right},    {"Out", Align::right},
          {"Merged", Align::right}, {"Curve", Align::right},
          {"User", Align::left}};
}

std::vector<std::string> entryCells(const HistoryEntry& entry) {
  std::size_t raw = 0, excluded = 0, merged = 0, curve = 0;
  for (const auto& [table, count] : entry.rows) {
    if (table.starts_with("raw")) raw += count;
    if (table.starts_with("pelmora_excluded")) excluded += count;
    if (table == "merge") merged = count;
    if (table == "curve") curve = count;
  }
  return {std::to_string(entry.id),
          minuteText(entry.changedAt),
          entry.command,
          entry.serial,
          std::to_string(entry.calibration),
          entry.series.empty() ? "(all)" : entry.series,
          countText(raw),
          countText(excluded),
          countText(merged),
          countText(curve),
          entry.userName.empty() ? "-" : entry.userName};
}

std::string entriesTable(const std::vector<HistoryEntry>& entries) {
  TextTable table(entryColumns());
  for (const HistoryEntry& entry : entries) table.addRow(entryCells(entry));
  return table.text();
}

nlohmann::json entryJson(const HistoryEntry& entry) {
  return {{"entry", entry.id},
          {"changedAt", entry.changedAt},
          {"command", entry.command},
          {"meter", entry.serial},
          {"calibration", entry.calibration},
          {"series", entry.series.empty() ? nlohmann::json() : nlohmann::json(entry.series)},
          {"user", entry.userName},
          {"softwareVersion", entry.version},
          {"rows", countsJson(entry.rows)}};
}

nlohmann::json entriesJson(const std::vector<HistoryEntry>& entries) {
  nlohmann::json list = nlohmann::json::array();
  for (const HistoryEntry& entry : entries) list.push_back(entryJson(entry));
  return list;
}

std::string restoredTable(const calibration::Restored& restored) {
  const HistoryEntry& entry = restored.entry;
  std::string text = wrapped("Entry " + std::to_string(entry.id) + ": " +
                                 placeText(entry.serial, entry.calibration, entry.series) +
                                 ", as before '" + entry.command + "' of " + entry.changedAt,
                             0);
  TextTable table({{"Rows", Align::left}, {"Replaced", Align::right}, {"Restored", Align::right}});
  for (const auto& [name, before, now] : restored.tables) {
    if (before + now > 0) table.addRow({rowsName(name), countText(before), countText(now)});
  }
  return text + "\n" + table.text();
}

nlohmann::json restoredJson(const calibration::Restored& restored) {
  nlohmann::json rows = nlohmann::json::object();
  for (const auto& [name, before, now] : restored.tables)
    rows[rowsKey(name)] = {{"replaced", before}, {"restored", now}};
  nlohmann::json value = entryJson(restored.entry);
  value["rows"] = rows;
  return value;
}

}  // namespace pelmora::cli
