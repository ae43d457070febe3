// The rows of a SELECT, read when it is opened.
// SPDX-License-Identifier: MIT
#pragma once

#include "adapters/sql_dialect/catalogue.h"
#include "adapters/sql_dialect/syntax_tree.h"
#include "adapters/sqlite/row_store.h"
#include "adapters/sqlite/statement_translations.h"
#include "store/connection.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace pelmora::sqlite {

class SqliteSession;

// Rows stored by updateBatch() are seen after requery(). Requery with rows still kept is Error
// 3219.
class SqliteRecordset : public Recordset {
 public:
  // Errors: Error.
  SqliteRecordset(std::shared_ptr<SqliteSession> session, std::string statement, LockType lock);

  [[nodiscard]] std::int32_t recordCount() const override;
  [[nodiscard]] std::size_t fieldCount() const override { return fields_.size(); }
  [[nodiscard]] std::size_t fieldIndex(std::string_view name) const override;
  [[nodiscard]] bool atEnd() const override { return row_ >= rows_.rows(); }
  void moveNext() override;
  [[nodiscard]] const Value& value(std::size_t field) const override;
  void addRow(std::span<const std::string_view> fields, std::span<const Value> values) override;
  void updateBatch() override;
  void requery() override;
  void close() override;

 private:
  // Kept rows that fill the same columns.
  struct Batch {
    std::vector<std::string> fields;  // as the caller named them
    std::vector<sql::ColumnShape> columns;
    RowStore rows;
  };

  void load();
  [[nodiscard]] const sql::SelectStatement& select() const;
  void requireOpen() const;
  [[nodiscard]] const sql::TableShape& outputTable();
  [[nodiscard]] Batch newBatch(std::span<const std::string_view> fields);
  [[nodiscard]] std::string insertStatement(const Batch& batch, std::size_t rows) const;
  void store(const Batch& batch);
  void storeAtOnce(const Batch& batch);

  std::shared_ptr<SqliteSession> session_;
  std::string statement_;
  LockType lock_;
  std::shared_ptr<const Translation> translation_;
  std::vector<std::string> fields_;
  RowStore rows_{0};
  std::size_t row_ = 0;
  mutable std::vector<Value> current_;
  std::optional<sql::TableShape> outputTable_;
  std::vector<Batch> kept_;
  bool isOpen_ = true;
};

}  // namespace pelmora::sqlite
