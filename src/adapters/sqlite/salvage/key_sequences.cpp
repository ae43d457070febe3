// SPDX-License-Identifier: MIT
#include "adapters/sqlite/salvage/key_sequences.h"

#include "adapters/sqlite/sqlite_expression.h"
#include "adapters/sqlite/database_handle.h"
#include "adapters/sqlite/prepared_statement.h"
#include "store/curve_schema.h"

#include <pelmora/error.h>

#include <sqlite3.h>

#include <algorithm>
#include <limits>
#include <string_view>

namespace pelmora::sqlite::salvage {
namespace {

// Ids of the component are 32 bits wide.
constexpr std::int64_t largestId = std::numeric_limits<std::int32_t>::max();

bool hasTable(const DatabaseHandle& output, std::string_view name) {
  PreparedStatement table(output.get(),
                          "SELECT 1 FROM main.sqlite_master WHERE type = 'table' AND name = ?1");
  table.bind(1, name);
  return table.step();
}

std::int64_t largestNamed(const DatabaseHandle& output, const std::string& table,
                          const std::string& column) {
  const std::string name = quotedName(column);
  PreparedStatement ids(output.get(), "SELECT MAX(" + name + ") FROM main." + quotedName(table) +
                                          " WHERE typeof(" + name + ") = 'integer' AND " + name +
                                          " <= " + std::to_string(largestId));
  return ids.step() ? sqlite3_column_int64(ids.get(), 0) : 0;
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
  for (const auto* tables : {&curveTables(), &ownTables()}) {
    for (const SchemaTable& table : *tables) {
      if (!hasTable(output, table.Name)) continue;
      for (const RowReference& reference : table.References)
        note(reference.Table, largestNamed(output, table.Name, reference.Column));
    }
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
