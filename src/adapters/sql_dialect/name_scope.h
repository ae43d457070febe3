// The tables that the names of one statement may mean.
// SPDX-License-Identifier: MIT
#pragma once

#include "adapters/sql_dialect/catalogue.h"
#include "adapters/sql_dialect/syntax_tree.h"

#include <string>
#include <string_view>
#include <vector>

namespace pelmora::sql {

struct VisibleTable {
  std::string name;  // as other names of the statement refer to it
  TableShape shape;
};

struct ResolvedColumn {
  const VisibleTable* table = nullptr;
  const ColumnShape* column = nullptr;
};

class NameScope {
 public:
  NameScope() = default;
  // Errors: Error for a table that is not there or a name that two tables bear.
  NameScope(const FromClause& from, const Catalogue& catalogue, std::string_view database);
  NameScope(const TableName& table, const Catalogue& catalogue, std::string_view database);

  [[nodiscard]] const std::vector<VisibleTable>& tables() const { return tables_; }
  // Errors: Error for a name that no table or no single table has.
  [[nodiscard]] ResolvedColumn resolve(const Expression& column) const;
  [[nodiscard]] const VisibleTable& tableNamed(std::string_view name) const;
  [[nodiscard]] bool has(std::string_view column) const;

 private:
  void add(const FromClause& from, const Catalogue& catalogue, std::string_view database);
  void add(const TableName& table, const Catalogue& catalogue, std::string_view database);

  std::vector<VisibleTable> tables_;
};

[[nodiscard]] const ColumnShape* findColumn(const TableShape& table, std::string_view name);

}  // namespace pelmora::sql
