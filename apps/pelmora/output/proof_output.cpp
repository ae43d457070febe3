// SPDX-License-Identifier: MIT
#include "apps/pelmora/output/proof_output.h"

#include "apps/pelmora/output/finding_output.h"
#include "apps/pelmora/output/text_table.h"
#include "report/json_null.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <cinttypes>
#include <cstdio>
#include <string_view>

namespace pelmora::cli {
namespace {

using Align = TextTable::Align;
using calibration::ProofGap;
using calibration::ProofSheet;
using calibration::ProofTable;

// The most gaps that a terminal shows; JSON has all.
constexpr std::size_t mostGapsShown = 30;

std::string hexText(std::uint64_t number) {
  std::array<char, 17> text{};
  std::snprintf(text.data(), text.size(), "%016" PRIx64, number);
  return text.data();
}

std::string checksumText(const ProofTable& table) {
  if (table.checksumRead == table.checksumWritten) return hexText(table.checksumRead);
  return "differs";
}

std::string expectedText(const ProofTable& table) {
  return table.expected ? std::to_string(*table.expected) : "unknown";
}

// Short, so that a narrow column does not cut off what tells the tables of the history apart.
std::string shownName(const std::string& table) {
  constexpr std::string_view history = "pelmora_history_";
  return table.starts_with(history) ? "history: " + table.substr(history.size()) : table;
}

std::string copiedText(const ProofSheet& sheet) {
  if (sheet.tables.empty()) return "";
  TextTable table({{"Table", Align::left},
                   {"Expected", Align::right},
                   {"Read", Align::right},
                   {"Written", Align::right},
                   {"Empty values", Align::right},
                   {"Checksum", Align::left}});
  for (const ProofTable& proof : sheet.tables) {
    table.addRow({shownName(proof.name), expectedText(proof), std::to_string(proof.read),
                  std::to_string(proof.written), std::to_string(proof.empty), checksumText(proof)});
  }
  return table.text();
}

std::string gapText(const ProofGap& gap) {
  std::string place = gap.table.empty() ? "" : "table " + gap.table;
  if (!gap.place.empty()) place += (place.empty() ? "" : ", ") + gap.place;
  return (place.empty() ? "" : place + ": ") + gap.reason + ".";
}

std::string gapsText(const ProofSheet& sheet) {
  if (sheet.missing.empty()) return "";
  std::string text = wrapped("Missing:", 0);
  const std::size_t shown = std::min(sheet.missing.size(), mostGapsShown);
  for (std::size_t i = 0; i < shown; ++i) text += wrapped(gapText(sheet.missing[i]), 2);
  if (shown < sheet.missing.size())
    text += wrapped(
        "... and " + std::to_string(sheet.missing.size() - shown) + " more; --json lists all", 2);
  return text;
}

std::string problemsText(const ProofSheet& sheet) {
  std::string text;
  for (const calibration::Finding& finding : sheet.problems)
    text += (text.empty() ? "" : "\n") + findingLines(finding);
  return text.empty() ? "" : wrapped("Problems of the data in the file:", 0) + "\n" + text;
}

std::string othersText(const ProofSheet& sheet) {
  if (sheet.otherTables.empty()) return "";
  TextTable table({{"Table", Align::left},
                   {"Expected", Align::right},
                   {"Read", Align::right},
                   {"Checksum", Align::left}});
  for (const ProofTable& other : sheet.otherTables) {
    table.addRow(
        {other.name, expectedText(other), std::to_string(other.read), hexText(other.checksumRead)});
  }
  return wrapped("Not part of a curve database, and not copied:", 0) + "\n" + table.text();
}

}  // namespace

std::string proofText(const ProofSheet& sheet) {
  std::string text;
  for (const std::string& section :
       {copiedText(sheet), gapsText(sheet), othersText(sheet), problemsText(sheet)}) {
    if (!section.empty()) text += (text.empty() ? "" : "\n") + section;
  }
  return text;
}

nlohmann::json proofJson(const ProofSheet& sheet) {
  nlohmann::json value{{"complete", sheet.isComplete()},
                       {"tables", nlohmann::json::array()},
                       {"missing", nlohmann::json::array()},
                       {"problems", nlohmann::json::array()},
                       {"otherTables", nlohmann::json::array()}};
  for (const calibration::Finding& finding : sheet.problems)
    value["problems"].push_back(findingJson(finding));
  for (const ProofTable& table : sheet.tables) {
    value["tables"].push_back({{"table", table.name},
                               {"expected", report::orNull(table.expected)},
                               {"read", table.read},
                               {"written", table.written},
                               {"emptyValues", table.empty},
                               {"checksumRead", hexText(table.checksumRead)},
                               {"checksumWritten", hexText(table.checksumWritten)}});
  }
  for (const ProofTable& table : sheet.otherTables) {
    value["otherTables"].push_back({{"table", table.name},
                                    {"expected", report::orNull(table.expected)},
                                    {"read", table.read},
                                    {"checksumRead", hexText(table.checksumRead)}});
  }
  for (const ProofGap& gap : sheet.missing) {
    value["missing"].push_back(
        {{"table", report::orNull(gap.table)}, {"place", gap.place}, {"reason", gap.reason}});
  }
  return value;
}

}  // namespace pelmora::cli
