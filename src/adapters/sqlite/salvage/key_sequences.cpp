// SPDX-License-Identifier: MIT
#include "adapters/sqlite/salvage/key_sequences.h"

#include "adapters/sqlite/database_handle.h"
#include "adapters/sqlite/prepared_statement.h"

#include <pelmora/error.h>

#include <sqlite3.h>

#include <algorithm>
#include <array>
#include <limits>
#include <string_view>

namespace pelmora::sqlite::salvage {
namespace {

struct Reference {
  const char *owner, *table, *column;
};

constexpr std::array<Reference, 14> references{{{"series", "raw1", "seriesID"},
                                                {"series", "raw2", "seriesID"},
                                                {"series", "raw3", "seriesID"},
                                                {"series", "raw4", "seriesID"},
                                                {"series", "merge", "seriesID"},
                                                {"series", "curve", "seriesID"},
                                                {"series", "DataFitResults", "seriesID"},
                                                {"meter", "series", "meterid"},
                                                {"meter", "CalSetup", "MeterID"},
                                                {"CalSetup", "CalDataPoint", "CalSetupID"},
                                                {"Fluids", "CalSetup", "FluidID"},
                                                {"Operator", "CalSetup", "OperatorID"},
                                                {"series", "pelmora_history_series", "ID"},
                                                {"meter", "pelmora_history_meter", "ID"}}};

// Ids of the component are 32 bits wide.
constexpr std::int64_t largestId = std::numeric_limits<std::int32_t>::max();

bool hasTable(const DatabaseHandle& output, std::string_view name) {
  PreparedStatement table(output.get(),
                          "SELECT 1 FROM main.sqlite_master WHERE type = 'table' AND name = ?1");
  table.bind(1, name);
  return table.step();
}

}  // namespace

void KeySequences::note(const std::string& table, std::int64_t id) {
  if (id > largestId) return;
  std::int64_t& known = largest_[table];
  known = std::max(known, id);
}

void KeySequences::read(const StoredTable& sequences, const PageFile& file, PageClaims& claims) {
  TreeWalk walk(file, claims);
  (void)walk.read(
      sequences.root, TreeKind::table,
      [this](std::int64_t, const Record& row) {
        if (row.size() != 2) return;
        const auto* name = std::get_if<std::string>(&row[0]);
        const auto* id = std::get_if<std::int64_t>(&row[1]);
        if (name != nullptr && id != nullptr) note(*name, *id);
      },
      [](PageNumber) {});
}

void KeySequences::store(const DatabaseHandle& output) {
  for (const Reference& reference : references) {
    if (!hasTable(output, reference.table)) continue;
    const std::string column = std::string("\"") + reference.column + "\"";
    PreparedStatement ids(output.get(), "SELECT MAX(" + column + ") FROM main.\"" +
                                            reference.table + "\" WHERE typeof(" + column +
                                            ") = 'integer' AND " + column +
                                            " <= " + std::to_string(largestId));
    if (ids.step()) note(reference.owner, sqlite3_column_int64(ids.get(), 0));
  }
  PreparedStatement raise(output.get(),
                          "UPDATE main.sqlite_sequence SET seq = max(seq, ?2) WHERE name = ?1");
  PreparedStatement add(output.get(),
                        "INSERT INTO main.sqlite_sequence (name, seq) SELECT ?1, ?2 WHERE EXISTS "
                        "(SELECT 1 FROM main.sqlite_master WHERE name = ?1 AND sql LIKE "
                        "'%AUTOINCREMENT%')");
  for (const auto& [table, id] : largest_) {
    for (PreparedStatement* statement : {&raise, &add}) {
      statement->bind(1, std::string_view(table));
      statement->bind(2, id);
      statement->step();
      statement->reset();
      if (statement == &raise && sqlite3_changes(output.get()) > 0) break;
    }
  }
}

}  // namespace pelmora::sqlite::salvage
