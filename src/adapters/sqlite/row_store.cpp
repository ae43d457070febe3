// SPDX-License-Identifier: MIT
#include "adapters/sqlite/row_store.h"

#include "adapters/sqlite/prepared_statement.h"
#include "adapters/sqlite/sqlite_error.h"

#include <sqlite3.h>

#include <limits>
#include <variant>

namespace pelmora::sqlite {

void RowStore::appendText(std::string_view text) {
  if (text.size() > std::numeric_limits<std::uint32_t>::max())
    throw sqliteError(SQLITE_TOOBIG, nullptr);
  Cell cell;
  cell.kind = Kind::text;
  cell.length = static_cast<std::uint32_t>(text.size());
  cell.offset = texts_.size();
  texts_.append(text);
  cells_.push_back(cell);
}

void RowStore::append(const Value& value) {
  if (const auto* text = std::get_if<std::string>(&value)) return appendText(*text);
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
  for (const Value& value : values) append(value);
  ++rows_;
}

void RowStore::appendRow(sqlite3_stmt* statement) {
  for (std::size_t i = 0; i < columns_; ++i) {
    const int column = static_cast<int>(i);
    Cell cell;
    switch (sqlite3_column_type(statement, column)) {
      case SQLITE_INTEGER:
        cell.kind = Kind::integer;
        cell.integer = sqlite3_column_int64(statement, column);
        break;
      case SQLITE_FLOAT:
        cell.kind = Kind::real;
        cell.real = sqlite3_column_double(statement, column);
        break;
      case SQLITE_NULL: break;
      default: {
        const void* bytes = sqlite3_column_blob(statement, column);
        const auto size = static_cast<std::size_t>(sqlite3_column_bytes(statement, column));
        appendText({static_cast<const char*>(bytes), size});
        continue;
      }
    }
    cells_.push_back(cell);
  }
  ++rows_;
}

void RowStore::clear() {
  rows_ = 0;
  cells_.clear();
  texts_.clear();
}

void RowStore::read(std::size_t row, std::size_t column, Value& value) const {
  const Cell& cell = cells_[row * columns_ + column];
  switch (cell.kind) {
    case Kind::null: value = std::monostate(); break;
    case Kind::integer: value = cell.integer; break;
    case Kind::real: value = cell.real; break;
    case Kind::text:
      if (auto* text = std::get_if<std::string>(&value)) {
        text->assign(textOf(cell));
      } else {
        value.emplace<std::string>(textOf(cell));
      }
      break;
  }
}

void RowStore::bindRows(std::size_t row, std::size_t count, PreparedStatement& statement) const {
  const std::span<const Cell> cells(cells_.data() + row * columns_, count * columns_);
  int parameter = 0;
  for (const Cell& cell : cells) {
    ++parameter;
    switch (cell.kind) {
      case Kind::null: statement.bindNull(parameter); break;
      case Kind::integer: statement.bind(parameter, cell.integer); break;
      case Kind::real: statement.bind(parameter, cell.real); break;
      case Kind::text: statement.bind(parameter, textOf(cell)); break;
    }
  }
}

}  // namespace pelmora::sqlite
