// The tables of an open SQLite database.
// SPDX-License-Identifier: MIT
#pragma once

#include "adapters/sql_engine/known_tables.h"
#include "adapters/sqlite/prepared_statement.h"

#include <cstdint>
#include <string>
#include <vector>

struct sqlite3;

namespace pelmora::sqlite {

// An undone transaction gives its schema version to the next one that changes tables.
class SqliteCatalogue : public sql::KnownTables {
 public:
  // Names of databases: "main" or that of an attached one.
  explicit SqliteCatalogue(sqlite3* database);

 private:
  // Errors: Error untrustedSchema.
  void requireUsable(std::string_view database, std::string_view name) const;
  [[nodiscard]] std::int64_t readVersion() const override;
  [[nodiscard]] std::optional<sql::TableShape> readTable(std::string_view database,
                                                         std::string_view name) const override;

  [[nodiscard]] std::vector<std::string> readingOrder(std::string_view database,
                                                      const sql::TableShape& table,
                                                      const std::vector<std::string>& key) const;
  [[nodiscard]] bool hasRowIds(std::string_view database, std::string_view table) const;

  sqlite3* database_;
  mutable PreparedStatement readVersion_;
};

}  // namespace pelmora::sqlite
