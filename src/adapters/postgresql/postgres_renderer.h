// Statements of the dialect in the server's SQL.
// SPDX-License-Identifier: MIT
#pragma once

#include "adapters/sql_engine/statement_translations.h"

#include <string>

namespace pelmora::postgres {

// Every literal is written out: the statement and what it needs beside it then go to the server in
// one round trip.
//
// Errors: Error for tables and columns that are not there, and for what cannot be rendered.
class PostgresWriter : public sql::StatementWriter {
 public:
  [[nodiscard]] std::string write(const sql::Statement& statement, const sql::Catalogue& tables,
                                  sql::LiteralParameters* parameters) const override;
  // The list of what an INSERT of one row delivers. The inserted row's table goes by the name that
  // `select` gives it.
  [[nodiscard]] std::string writeRow(const sql::SelectStatement& select,
                                     const sql::Catalogue& tables) const override;
};

// What keeps a key of the database's own from being given a second time, once rows have brought
// keys along. To be run after the INSERT.
[[nodiscard]] std::string countOnFrom(const std::string& table, const std::string& key);

}  // namespace pelmora::postgres
