// SPDX-License-Identifier: MIT
#include "adapters/sql_engine/row_store.h"

#include "base/run_time_error.h"

#include <limits>

namespace pelmora::sql {

void RowStore::appendText(std::string_view text) {
  if (text.size() > std::numeric_limits<std::uint32_t>::max())
    throw makeError(RunTimeError::overflow);
  Cell cell;
  cell.kind = Kind::text;
  cell.length = static_cast<std::uint32_t>(text.size());
  cell.offset = texts_.size();
  texts_.append(text);
  cells_.push_back(cell);
}

void RowStore::append(const CellView& value) {
  if (const auto* text = std::get_if<std::string_view>(&value)) return appendText(*text);
  Cell cell;
  if (const auto* real = std::get_if<double>(&value)) {
    cell.kind = Kind::real;
    cell.real = *real;
  } else if (const auto* integer = std::get_if<std::int64_t>(&value)) {
    cell.kind = Kind::integer;
    cell.integer = *integer;
  }
  cells_.push_back(cell);
}

void RowStore::appendRow(std::span<const Value> values) {
  cells_.resize(rows_ * columns_);  // what a failure may have left of a row
  for (const Value& value : values)
    std::visit([this](const auto& content) { append(CellView(content)); }, value);
  endRow();
}

void RowStore::clear() {
  rows_ = 0;
  cells_.clear();
  texts_.clear();
}

CellView RowStore::cell(std::size_t row, std::size_t column) const {
  const Cell& cell = cells_[row * columns_ + column];
  switch (cell.kind) {
    case Kind::integer: return cell.integer;
    case Kind::real: return cell.real;
    case Kind::text: return textOf(cell);
    case Kind::null: break;
  }
  return std::monostate();
}

void assign(Value& value, const CellView& content) {
  if (const auto* text = std::get_if<std::string_view>(&content)) {
    if (auto* known = std::get_if<std::string>(&value)) {
      known->assign(*text);
    } else {
      value.emplace<std::string>(*text);
    }
  } else if (const auto* integer = std::get_if<std::int64_t>(&content)) {
    value = *integer;
  } else if (const auto* real = std::get_if<double>(&content)) {
    value = *real;
  } else {
    value = std::monostate();
  }
}

}  // namespace pelmora::sql
