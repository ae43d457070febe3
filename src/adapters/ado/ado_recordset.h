// The rows of a statement, through ADO.
// SPDX-License-Identifier: MIT
#pragma once

#include "adapters/ado/late_bound.h"
#include "store/connection.h"

#include <memory>
#include <string>
#include <vector>

namespace pelmora::ado {

// A batch update is ADO's own: rows that it refuses are an error, and those before them may be
// stored.
class AdoRecordset : public Recordset {
 public:
  // Errors: Error as ADO reports it.
  AdoRecordset(const LateBound& connection, const std::string& statement, CursorType cursor,
               LockType lock);
  ~AdoRecordset() override;
  AdoRecordset(const AdoRecordset&) = delete;
  AdoRecordset& operator=(const AdoRecordset&) = delete;

  [[nodiscard]] std::int32_t recordCount() const override;
  [[nodiscard]] std::size_t fieldCount() const override { return fields_.size(); }
  [[nodiscard]] std::size_t fieldIndex(std::string_view name) const override;
  [[nodiscard]] bool atEnd() const override;
  void moveNext() override;
  [[nodiscard]] const Value& value(std::size_t field) const override;
  void addRow(std::span<const std::string_view> fields, std::span<const Value> values) override;
  void updateBatch() override;
  void requery() override;
  void close() override;

 private:
  struct Field {
    std::string name;
    LateBound object;  // shows the current row
    Value current;     // as last read
  };

  void readFields();

  mutable LateBound recordset_;
  mutable std::vector<Field> fields_;
  bool isOpen_ = false;
};

}  // namespace pelmora::ado
