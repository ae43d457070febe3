// SPDX-License-Identifier: MIT
#include "apps/pelmora/output/history_output.h"

#include "apps/pelmora/output/text_table.h"

#include <nlohmann/json.hpp>

#include <array>

namespace pelmora::cli {
namespace {

using Align = TextTable::Align;
using history::Entry;

struct TableWords {
  const char *table, *name, *key;
};

constexpr std::array<TableWords, 16> words{
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
     {"pelmora_excluded4", "excluded of part 4", "excluded4"}}};

const TableWords* wordsOf(const std::string& table) {
  for (const TableWords& entry : words) {
    if (entry.table == table) return &entry;
  }
  return nullptr;
}

std::string countText(std::size_t count) { return count == 0 ? "-" : std::to_string(count); }

// "2026-11-21T14:05:09Z" as "2026-11-21 14:05"
std::string minuteText(std::string time) {
  constexpr std::size_t toMinutes = 16;
  if (const auto at = time.find('T'); at != std::string::npos) time[at] = ' ';
  return time.substr(0, toMinutes);
}

}  // namespace

std::string rowsName(const std::string& table) {
  const TableWords* found = wordsOf(table);
  return found == nullptr ? table : found->name;
}

std::string rowsKey(const std::string& table) {
  const TableWords* found = wordsOf(table);
  return found == nullptr ? table : found->key;
}

std::string placeText(const std::string& serialNumber, int reCalID, const std::string& seriesName) {
  const std::string calibration =
      "meter " + serialNumber + ", calibration " + std::to_string(reCalID);
  return seriesName.empty() ? calibration : "series '" + seriesName + "' of " + calibration;
}

std::string entriesTable(const std::vector<Entry>& entries) {
  TextTable table({{"#", Align::right},
                   {"Changed (UTC)", Align::right},
                   {"Command", Align::left},
                   {"Meter", Align::left},
                   {"Cal", Align::right},
                   {"Series", Align::left},
                   {"Raw", Align::right},
                   {"Merged", Align::right},
                   {"Curve", Align::right},
                   {"User", Align::left}});
  for (const Entry& entry : entries) {
    std::size_t raw = 0;
    for (const char* part : {"raw1", "raw2", "raw3", "raw4"}) raw += entry.rowsOf(part);
    table.addRow({std::to_string(entry.ID), minuteText(entry.Note.ChangedAt), entry.Note.Command,
                  entry.SerialNumber, std::to_string(entry.ReCalID),
                  entry.SeriesName.empty() ? "(all)" : entry.SeriesName, countText(raw),
                  countText(entry.rowsOf("merge")), countText(entry.rowsOf("curve")),
                  entry.Note.UserName.empty() ? "-" : entry.Note.UserName});
  }
  return table.text();
}

nlohmann::json entryJson(const Entry& entry) {
  nlohmann::json rows = nlohmann::json::object();
  for (const auto& [table, count] : entry.Rows) rows[rowsKey(table)] = count;
  return {
      {"entry", entry.ID},
      {"changedAt", entry.Note.ChangedAt},
      {"command", entry.Note.Command},
      {"meter", entry.SerialNumber},
      {"calibration", entry.ReCalID},
      {"series", entry.SeriesName.empty() ? nlohmann::json() : nlohmann::json(entry.SeriesName)},
      {"user", entry.Note.UserName},
      {"softwareVersion", entry.Note.Version},
      {"rows", rows}};
}

std::string restoredTable(const history::RestoreOutcome& outcome) {
  const Entry& entry = outcome.Restored;
  std::string text =
      wrapped("Entry " + std::to_string(entry.ID) + ": " +
                  placeText(entry.SerialNumber, entry.ReCalID, entry.SeriesName) + ", as before '" +
                  entry.Note.Command + "' of " + entry.Note.ChangedAt,
              0);
  TextTable table({{"Rows", Align::left}, {"Replaced", Align::right}, {"Restored", Align::right}});
  for (const auto& [name, before, now] : outcome.Tables) {
    if (before + now > 0) table.addRow({rowsName(name), countText(before), countText(now)});
  }
  return text + "\n" + table.text();
}

nlohmann::json restoredJson(const history::RestoreOutcome& outcome) {
  nlohmann::json rows = nlohmann::json::object();
  for (const auto& [name, before, now] : outcome.Tables)
    rows[rowsKey(name)] = {{"replaced", before}, {"restored", now}};
  nlohmann::json value = entryJson(outcome.Restored);
  value["rows"] = rows;
  return value;
}

}  // namespace pelmora::cli
