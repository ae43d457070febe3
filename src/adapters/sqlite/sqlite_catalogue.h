// The tables of an open SQLite database.
// SPDX-License-Identifier: MIT
#pragma once

#include "adapters/sql_dialect/catalogue.h"
#include "adapters/sqlite/prepared_statement.h"

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <vector>

struct sqlite3;

namespace pelmora::sqlite {

// Keeps what it has read of "main" until the database's schema changes, so that tables that another
// user has just made are seen.
class SqliteCatalogue : public sql::Catalogue {
 public:
  explicit SqliteCatalogue(sqlite3* database);

  // `database`: "main" or the name of an attached one.
  // Errors: Error, genericFailure if the database is locked.
  [[nodiscard]] std::optional<sql::TableShape> findTable(std::string_view database,
                                                         std::string_view name) const override;

  // Of "main": another one after each change of its tables, of whomever. A look at the file.
  // Errors: Error, genericFailure if the database is locked.
  [[nodiscard]] std::int64_t schemaVersion() const;
  // As findTable, of the version that was told last.
  [[nodiscard]] std::optional<sql::TableShape> findAsTold(std::string_view database,
                                                          std::string_view name) const;
  // Forgets what it has read. Needed where a transaction that may have changed tables was undone:
  // the number of its schema version is then given to another schema.
  void forget() const;

 private:
  // Errors: Error untrustedSchema.
  void requireUsable(std::string_view database, std::string_view name) const;
  [[nodiscard]] std::optional<sql::TableShape> readTable(std::string_view database,
                                                         std::string_view name) const;

  [[nodiscard]] std::vector<std::string> readingOrder(std::string_view database,
                                                      const sql::TableShape& table,
                                                      const std::vector<std::string>& key) const;
  [[nodiscard]] bool hasRowIds(std::string_view database, std::string_view table) const;

  sqlite3* database_;
  mutable PreparedStatement readVersion_;
  mutable std::int64_t knownVersion_ = -1;
  mutable std::map<std::string, sql::TableShape, std::less<>> known_;  // by the name as asked for
};

}  // namespace pelmora::sqlite
