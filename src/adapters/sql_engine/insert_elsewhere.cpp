// SPDX-License-Identifier: MIT
#include "adapters/sql_engine/insert_elsewhere.h"

#include "adapters/sql_dialect/dialect_error.h"

#include <string_view>

namespace pelmora::sql {

SelectStatement insertedRows(const InsertStatement& insert) {
  if (const auto* select = std::get_if<SelectStatement>(&insert.source)) return *select;
  SelectStatement values;
  for (const Expression& value : std::get<std::vector<Expression>>(insert.source)) {
    SelectItem item;
    item.value = value;
    values.items.push_back(std::move(item));
  }
  return values;
}

void insertElsewhere(const InsertStatement& insert, const std::vector<std::string>& fields,
                     const RowStore& rows, Connection& target) {
  const std::vector<std::string>& names = insert.columns.empty() ? fields : insert.columns;
  if (names.size() != fields.size())
    throw statementError("Number of query values and destination fields are not the same.");
  std::string list;
  for (const std::string& name : names) list += (list.empty() ? "[" : ", [") + name + "]";
  const auto added =
      target.openRecordset("Select " + list + " from [" + insert.table + "] where 1=0",
                           CursorType::dynamic, LockType::batchOptimistic);
  const std::vector<std::string_view> columns(names.begin(), names.end());
  std::vector<Value> values(names.size());
  for (std::size_t row = 0; row < rows.rows(); ++row) {
    for (std::size_t i = 0; i < values.size(); ++i) rows.read(row, i, values[i]);
    added->addRow(columns, values);
  }
  added->updateBatch();
}

}  // namespace pelmora::sql
