// The rows of a SELECT, read when it is opened.
// SPDX-License-Identifier: MIT
#pragma once

#include "adapters/sql_engine/row_source.h"
#include "store/connection.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace pelmora::sql {

// Rows stored by updateBatch() are seen after requery(). Requery with rows still kept is Error
// 3219.
class ClientRecordset : public Recordset {
 public:
  // Errors: Error.
  ClientRecordset(std::shared_ptr<RowSource> source, std::string statement, LockType lock);

  [[nodiscard]] std::int32_t recordCount() const override;
  [[nodiscard]] std::size_t fieldCount() const override { return fields_.size(); }
  [[nodiscard]] std::size_t fieldIndex(std::string_view name) const override;
  [[nodiscard]] bool atEnd() const override { return row_ >= rows_.rows(); }
  void moveNext() override;
  [[nodiscard]] const Value& value(std::size_t field) const override;
  void addRow(std::span<const std::string_view> fields, std::span<const Value> values) override;
  [[nodiscard]] bool addNewRow(std::string_view field, std::span<const std::string_view> fields,
                               std::span<const Value> values) override;
  void updateBatch() override;
  void requery() override;
  void close() override;

 private:
  void load();
  [[nodiscard]] const SelectStatement& select() const;
  void requireOpen() const;
  [[nodiscard]] const TableShape& outputTable();
  void keep(std::span<const std::string_view> fields, std::span<const Value> values);
  [[nodiscard]] RowBatch newBatch(std::span<const std::string_view> fields);
  bool storeAtOnce(const RowBatch& batch, const RowInTheWay* unless = nullptr);

  std::shared_ptr<RowSource> source_;
  std::string statement_;
  LockType lock_;
  std::shared_ptr<const Translation> translation_;
  std::vector<std::string> fields_;
  RowStore rows_{0};
  std::size_t row_ = 0;
  mutable std::vector<Value> current_;
  std::optional<TableShape> outputTable_;
  std::vector<RowBatch> kept_;
  bool isOpen_ = true;
};

}  // namespace pelmora::sql
