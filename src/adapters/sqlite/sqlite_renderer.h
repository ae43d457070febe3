// Statements of the dialect in SQLite's SQL.
// SPDX-License-Identifier: MIT
#pragma once

#include "adapters/sql_dialect/catalogue.h"
#include "adapters/sql_dialect/literal_parameters.h"
#include "adapters/sql_dialect/syntax_tree.h"

#include <string>
#include <string_view>

namespace pelmora::sqlite {

// `outputDatabase` is SQLite's name for the database that an INSERT ... IN 'file' writes to; all
// other tables are those of "main". With `parameters`, which collects them, literals become
// parameters where that is exact; without, every literal is written out.
//
// Errors: Error for tables and columns that are not there, and for what cannot be rendered.
[[nodiscard]] std::string renderForSqlite(const sql::Statement& statement,
                                          const sql::Catalogue& catalogue,
                                          std::string_view outputDatabase = "main",
                                          sql::LiteralParameters* parameters = nullptr);

// The columns of `select` for the row of its updatable table whose row identity is parameter 1.
[[nodiscard]] std::string renderRowForSqlite(const sql::SelectStatement& select,
                                             const sql::Catalogue& catalogue);

}  // namespace pelmora::sqlite
