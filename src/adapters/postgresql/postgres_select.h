// The SELECT of the dialect in the server's SQL, alone or as the source of rows to insert.
// SPDX-License-Identifier: MIT
#pragma once

#include "adapters/postgresql/postgres_expression.h"
#include "adapters/sql_dialect/delivered_columns.h"
#include "adapters/sql_dialect/name_scope.h"
#include "adapters/sql_dialect/syntax_tree.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace pelmora::postgres {

// The engine's name for the database that its tables are in.
inline constexpr std::string_view mainDatabase = "main";

[[nodiscard]] sql::NameScope scopeOf(const sql::SelectStatement& select,
                                     const sql::Catalogue& catalogue);
// For what the SELECT delivers. `scope` must outlive it.
[[nodiscard]] PostgresExpression expressionOf(const sql::SelectStatement& select,
                                              const sql::NameScope& scope);

// A table with the name that the statement gives it.
[[nodiscard]] std::string tableSource(const sql::TableName& table, const sql::NameScope& scope);
[[nodiscard]] std::string whereClause(const std::optional<sql::Expression>& where,
                                      const PostgresExpression& expression);

// The SELECT. `values`: what it delivers, already written, one for each of `columns`.
[[nodiscard]] std::string renderedSelect(const sql::SelectStatement& select,
                                         const std::vector<sql::OutputColumn>& columns,
                                         const std::vector<std::string>& values,
                                         const PostgresExpression& expression);

}  // namespace pelmora::postgres
