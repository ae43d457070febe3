// SPDX-License-Identifier: MIT
#include "adapters/access/helper/row_fields.h"

#include <algorithm>

namespace pelmora::access {
namespace {

constexpr std::size_t head = 2;
constexpr std::size_t startSize = 2;

}  // namespace

RowFields::RowFields(const AccessTable& table, Bytes row)
    : row_(row),
      columns_(u16(row, 0)),
      hasDeletedColumns_(table.columns.size() < table.mostColumns) {
  if (columns_ == 0 || columns_ > table.mostColumns)
    throw Damage("its number of columns is damaged");
  const std::size_t bitBytes = (columns_ + 7) / 8;
  if (row.size() < head + bitBytes) throw Damage("it ends early");
  bits_ = row.last(bitBytes);
  const Bytes before = row.first(row.size() - bitBytes);
  // A row that was written before the table got its first column of variable size has none of them.
  const bool hasVariable = std::ranges::any_of(table.columns, [&](const AccessColumn& column) {
    return !column.isFixed && column.type != MDB_BOOL && column.number < columns_;
  });
  fixedEnd_ = before.size();
  if (hasVariable) readVariable(before);
}

void RowFields::readVariable(Bytes before) {
  if (before.size() < head + startSize) throw Damage("it ends early");
  variableCount_ = u16(before, before.size() - startSize);
  const std::size_t size = (variableCount_ + 1) * startSize;
  if (before.size() < head + startSize + size) throw Damage("its number of texts is damaged");
  starts_ = before.subspan(before.size() - startSize - size, size);
  std::size_t last = before.size() - startSize - size;
  for (std::size_t i = variableCount_ + 1; i-- > 0;) {
    if (variableStart(i) > last) throw Damage("the places of its texts are damaged");
    last = variableStart(i);
  }
  if (last < head) throw Damage("the places of its texts are damaged");
  fixedEnd_ = last;
}

// The last one stands first.
std::size_t RowFields::variableStart(std::size_t i) const {
  return u16(starts_, (variableCount_ - i) * startSize);
}

bool RowFields::bit(const AccessColumn& column) const {
  return column.number < columns_ && (bits_[column.number / 8] >> (column.number % 8) & 1U) != 0;
}

std::optional<Bytes> RowFields::field(const AccessColumn& column) const {
  if (column.number >= columns_) {
    if (contradicts(column)) throw Damage("its row's number of columns is damaged");
    return std::nullopt;
  }
  const bool isNull = !bit(column);
  // The bytes of a fixed field that is null may be those of an earlier value.
  if (column.isFixed) return isNull ? std::nullopt : std::optional(fixedField(column));
  const Bytes own = variableField(column, isNull);
  if (isNull && !own.empty()) throw Damage("it is marked as empty, but there is a value");
  return isNull ? std::nullopt : std::optional(own);
}

// The place of a deleted column may be in use again.
bool RowFields::contradicts(const AccessColumn& column) const {
  if (hasDeletedColumns_) return false;
  return column.isFixed ? head + column.fixedAt + column.size <= fixedEnd_
                        : column.variable < variableCount_;
}

Bytes RowFields::fixedField(const AccessColumn& column) const {
  if (head + column.fixedAt + column.size > fixedEnd_) throw Damage("it ends early");
  return part(row_, head + column.fixedAt, column.size);
}

Bytes RowFields::variableField(const AccessColumn& column, bool isNull) const {
  if (column.variable >= variableCount_) {
    if (isNull) return {};
    throw Damage("its place in the row is damaged");
  }
  const std::size_t begin = variableStart(column.variable);
  return part(row_, begin, variableStart(column.variable + 1) - begin);
}

}  // namespace pelmora::access
