// The fields of one row.
// SPDX-License-Identifier: MIT
#pragma once

#include "adapters/access/helper/table_definition.h"

#include <optional>

namespace pelmora::access {

// A row: its number of columns, the fixed fields, the variable fields, where each of those begins,
// how many there are, and a bit for each column, which is set if the field is not null.
class RowFields {
 public:
  // `row` must outlive the object. Errors: Damage if the row cannot be one of the table.
  RowFields(const AccessTable& table, Bytes row);

  // Nothing for null. Errors: Damage.
  [[nodiscard]] std::optional<Bytes> field(const AccessColumn& column) const;
  // The bit of a column, which is the whole value of a yes/no.
  [[nodiscard]] bool bit(const AccessColumn& column) const;

 private:
  void readVariable(Bytes before);
  // Whether the row claims to be older than the column, yet holds something for it.
  [[nodiscard]] bool contradicts(const AccessColumn& column) const;
  [[nodiscard]] Bytes fixedField(const AccessColumn& column) const;
  [[nodiscard]] Bytes variableField(const AccessColumn& column, bool isNull) const;
  // Where variable field `i` begins, counted from the start of the row.
  [[nodiscard]] std::size_t variableStart(std::size_t i) const;

  Bytes row_, bits_, starts_;
  std::size_t columns_ = 0, variableCount_ = 0, fixedEnd_ = 0;
  bool hasDeletedColumns_ = false;
};

}  // namespace pelmora::access
