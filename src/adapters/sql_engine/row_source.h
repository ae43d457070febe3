// What a record set asks of the open database that it belongs to.
// SPDX-License-Identifier: MIT
#pragma once

#include "adapters/sql_dialect/catalogue.h"
#include "adapters/sql_engine/row_store.h"
#include "adapters/sql_engine/statement_translations.h"

#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace pelmora::sql {

// Added rows that fill the same columns.
struct RowBatch {
  std::vector<std::string> fields;   // as the caller named them
  std::vector<ColumnShape> columns;  // of the table
  RowStore rows;
};

struct SelectedRows {
  std::shared_ptr<const Translation> translation;
  std::vector<std::string> fields;
  RowStore rows{0};
};

// What a record set's own SELECT must not deliver by the time when a row is added.
struct RowInTheWay {
  const std::string& statement;
  std::size_t field;
  const Value& value;
};

class RowSource {
 public:
  virtual ~RowSource() = default;
  // Runs a SELECT to its end. Errors: Error, genericFailure if the database is locked.
  [[nodiscard]] virtual SelectedRows select(const std::string& statement) = 0;
  // The table that rows are added to. Errors: Error updateRefused if it may only be read.
  [[nodiscard]] virtual TableShape tableToChange(const std::string& name) = 0;
  // Stores all rows in one transaction. Errors: Error; nothing is then stored.
  virtual void store(const TableShape& table, std::span<const RowBatch> batches) = 0;
  // Stores a batch of one row. Delivers the row as it is stored, generated key included, in the
  // columns of the translated SELECT. Nothing, and nothing is stored, where there is a row that
  // `unless` describes; looking and adding are one step.
  [[nodiscard]] virtual std::optional<RowStore> storeAndRead(const TableShape& table,
                                                             const RowBatch& row,
                                                             const Translation& select,
                                                             const RowInTheWay* unless) = 0;
};

// Whether the record set's own SELECT delivers such a row now. Errors: those of select().
[[nodiscard]] bool isThere(RowSource& source, const RowInTheWay& row);

}  // namespace pelmora::sql
