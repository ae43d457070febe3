// The tables of an open SQLite database.
// SPDX-License-Identifier: MIT
#pragma once

#include "adapters/sql_engine/known_tables.h"
#include "adapters/sqlite/prepared_statement.h"
#include "adapters/sqlite/statement_pool.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

struct sqlite3;

namespace pelmora::sqlite {

// An undone transaction gives its schema version to the next one that changes tables.
class SqliteCatalogue : public sql::KnownTables {
 public:
  // Names of databases: "main" or that of an attached one. remembersSchema: for hasSameSchema().
  // A look at the database.
  // Errors: Error, genericFailure if the database is locked.
  SqliteCatalogue(sqlite3* database, bool remembersSchema);

  // While it lives, the connection sees the database as it is at one moment, and locks it once for
  // everything that is read; for statements that change nothing.
  class Moment {
   public:
    // Errors: Error, genericFailure if the database is locked.
    explicit Moment(const SqliteCatalogue& catalogue);
    ~Moment();
    Moment(const Moment&) = delete;
    Moment& operator=(const Moment&) = delete;

   private:
    const SqliteCatalogue* catalogue_;  // null within another moment
  };

  // Whether all that the database says about its tables is the same as at the beginning; false if
  // that is not remembered. A look at the database.
  // Errors: Error, genericFailure if the database is locked.
  [[nodiscard]] bool hasSameSchema() const;

 private:
  // Errors: Error untrustedSchema.
  [[nodiscard]] bool hasPages(std::string_view database, std::string_view name) const;
  void requireUsable(std::string_view database, std::string_view name) const;
  [[nodiscard]] std::int64_t readVersion() const override;
  [[nodiscard]] std::optional<sql::TableShape> readTable(std::string_view database,
                                                         std::string_view name) const override;
  // Everything that the main database says about itself; empty if that is too much to keep. Within
  // a moment.
  [[nodiscard]] std::string schema() const;

  [[nodiscard]] std::vector<std::string> readingOrder(std::string_view database,
                                                      const sql::TableShape& table,
                                                      const std::vector<std::string>& key) const;
  [[nodiscard]] bool hasRowIds(std::string_view database, std::string_view table) const;

  sqlite3* database_;
  mutable StatementPool questions_;
  mutable PreparedStatement readVersion_;
  mutable std::optional<std::int64_t> versionOfMoment_;
  // At the beginning; no text if it is not remembered.
  std::string firstSchema_;
  std::int64_t firstVersion_ = -1;
};

}  // namespace pelmora::sqlite
