// SPDX-License-Identifier: MIT
#include "adapters/sql_engine/row_source.h"

#include "base/text_case.h"

namespace pelmora::sql {

bool isThere(RowSource& source, const RowInTheWay& row) {
  const SelectedRows now = source.select(row.statement);
  Value value;
  for (std::size_t i = 0; i < now.rows.rows(); ++i) {
    now.rows.read(i, row.field, value);
    const auto *there = std::get_if<std::string>(&value),
               *wanted = std::get_if<std::string>(&row.value);
    const bool areTexts = there != nullptr && wanted != nullptr;
    if (areTexts ? equalNames(*there, *wanted) : value == row.value) return true;
  }
  return false;
}

}  // namespace pelmora::sql
