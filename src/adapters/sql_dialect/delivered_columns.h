// What a SELECT delivers and an INSERT fills, with the names looked up: for the renderers of all
// engines.
// SPDX-License-Identifier: MIT
#pragma once

#include "adapters/sql_dialect/name_scope.h"
#include "adapters/sql_dialect/syntax_tree.h"

#include <string>
#include <vector>

namespace pelmora::sql {

struct OutputColumn {
  Expression value;
  std::string name;
};

// The delivered columns, with * written out. Errors: Error for names that are not there, and for a
// column that is neither grouped by nor part of an aggregate.
[[nodiscard]] std::vector<OutputColumn> outputColumns(const SelectStatement& select,
                                                      const NameScope& scope);

// The columns that an INSERT fills, as its table spells them. Errors: Error for unknown or doubled
// columns, and for another number of values.
[[nodiscard]] std::vector<std::string> insertColumns(const InsertStatement& insert,
                                                     const TableShape& table,
                                                     const std::vector<OutputColumn>& selected);

// A column that rows are read by.
struct ReadingTerm {
  Expression value;
  bool isHidden = false;  // not among the columns of its table
};

// What the rows are read by behind their own ORDER BY, so that no order is left to an engine.
[[nodiscard]] std::vector<ReadingTerm> readingTerms(const SelectStatement& select,
                                                    const std::vector<OutputColumn>& columns,
                                                    const NameScope& scope);

// The one table whose rows a SELECT delivers as they are, if it is such a SELECT.
[[nodiscard]] const TableName* updatableTable(const SelectStatement& select);

}  // namespace pelmora::sql
