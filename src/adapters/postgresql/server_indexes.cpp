// SPDX-License-Identifier: MIT
#include "adapters/postgresql/server_indexes.h"

#include "adapters/postgresql/postgres_session.h"
#include "adapters/postgresql/statement_names.h"
#include "base/text_case.h"

#include <map>
#include <vector>

namespace pelmora::postgres {

namespace {

// The columns of each whole index in their order; of texts, those whose small letters are indexed.
std::string indexedColumns(std::string_view table) {
  return "SELECT i.indexrelid::bigint, coalesce(a.attname::text, "
         "(SELECT b.attname::text FROM pg_attribute b WHERE b.attrelid = i.indrelid "
         "AND pg_get_indexdef(i.indexrelid, k.place::integer, true) = 'pelmora_small(' || "
         "quote_ident(b.attname) || ')')) "
         "FROM pg_index i CROSS JOIN LATERAL unnest(i.indkey::smallint[]) WITH ORDINALITY AS "
         "k(number, place) LEFT JOIN pg_attribute a ON a.attrelid = i.indrelid AND a.attnum = "
         "k.number WHERE i.indpred IS NULL AND i.indrelid = " +
         quotedText(quotedName(table)) + "::regclass ORDER BY i.indexrelid, k.place";
}

bool startsWith(const std::vector<std::string>& index, std::span<const std::string> columns) {
  if (index.size() < columns.size()) return false;
  for (std::size_t i = 0; i < columns.size(); ++i) {
    if (!equalNames(index[i], columns[i])) return false;
  }
  return true;
}

}  // namespace

bool hasIndexOn(PostgresSession& session, std::string_view table,
                std::span<const std::string> columns) {
  const ServerRows rows = session.read(indexedColumns(table));
  std::map<std::int64_t, std::vector<std::string>> indexes;
  Value index;
  Value column;
  for (std::size_t row = 0; row < rows.rows.rows(); ++row) {
    rows.rows.read(row, 0, index);
    rows.rows.read(row, 1, column);
    const auto* name = std::get_if<std::string>(&column);
    indexes[std::get<std::int64_t>(index)].push_back(name == nullptr ? "" : *name);
  }
  for (const auto& [id, indexed] : indexes) {
    if (startsWith(indexed, columns)) return true;
  }
  return false;
}

}  // namespace pelmora::postgres
