// Rows of values, kept compactly.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/types.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

struct sqlite3_stmt;

namespace pelmora::sqlite {

class PreparedStatement;

// Cells of 16 bytes in rows of equal length; texts stand one behind the other in one block.
class RowStore {
 public:
  explicit RowStore(std::size_t columns) : columns_(columns) {}

  [[nodiscard]] std::size_t columns() const { return columns_; }
  [[nodiscard]] std::size_t rows() const { return rows_; }

  // Appends a row of columns() values.
  void appendRow(std::span<const Value> values);
  // Appends the current row of `statement`, which has columns() columns.
  void appendRow(sqlite3_stmt* statement);
  void clear();

  // Writes the cell to `value`, whose text memory is used again.
  void read(std::size_t row, std::size_t column, Value& value) const;
  // Binds the cells of `count` rows from `row` on to parameters 1 to count * columns().
  void bindRows(std::size_t row, std::size_t count, PreparedStatement& statement) const;

 private:
  enum class Kind : std::uint32_t { null, integer, real, text };
  struct Cell {
    Kind kind = Kind::null;
    std::uint32_t length = 0;  // of a text
    union {
      std::int64_t integer = 0;
      double real;
      std::size_t offset;
    };
  };

  void append(const Value& value);
  void appendText(std::string_view text);
  [[nodiscard]] std::string_view textOf(const Cell& cell) const {
    return std::string_view(texts_).substr(cell.offset, cell.length);
  }

  std::size_t columns_;
  std::size_t rows_ = 0;
  std::vector<Cell> cells_;
  std::string texts_;
};

}  // namespace pelmora::sqlite
