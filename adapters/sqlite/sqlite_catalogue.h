// The tables of an open SQLite database.
// SPDX-License-Identifier: MIT
#pragma once

#include "adapters/sql_dialect/catalogue.h"

struct sqlite3;

namespace pelmora::sqlite {

// Asks the database every time, so that tables that another user has just made are seen.
class SqliteCatalogue : public sql::Catalogue {
 public:
  explicit SqliteCatalogue(sqlite3* database) : database_(database) {}

  // `database`: "main" or the name of an attached one. Errors: Error, genericFailure where it is
  // locked.
  [[nodiscard]] std::optional<sql::TableShape> findTable(std::string_view database,
                                                         std::string_view name) const override;

 private:
  sqlite3* database_;
};

}  // namespace pelmora::sqlite
