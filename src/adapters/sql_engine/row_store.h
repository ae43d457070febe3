// Rows of values, kept compactly.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/types.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace pelmora::sql {

// What a cell holds; a text lives as long as the store is not changed.
using CellView = std::variant<std::monostate, std::int64_t, double, std::string_view>;

// The text memory of `value` is used again.
void assign(Value& value, const CellView& content);

// Cells of 16 bytes in rows of equal length; texts stand one behind the other in one block.
class RowStore {
 public:
  explicit RowStore(std::size_t columns) : columns_(columns) {}

  [[nodiscard]] std::size_t columns() const { return columns_; }
  [[nodiscard]] std::size_t rows() const { return rows_; }

  // Appends a row of columns() values.
  void appendRow(std::span<const Value> values);
  // Appends a row cell by cell: columns() cells, then endRow().
  void append(const CellView& cell);
  void endRow() { ++rows_; }
  void clear();

  // Writes the cell to `value`, whose text memory is used again.
  void read(std::size_t row, std::size_t column, Value& value) const {
    assign(value, cell(row, column));
  }
  [[nodiscard]] CellView cell(std::size_t row, std::size_t column) const;

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

  void appendText(std::string_view text);
  [[nodiscard]] std::string_view textOf(const Cell& cell) const {
    return std::string_view(texts_).substr(cell.offset, cell.length);
  }

  std::size_t columns_;
  std::size_t rows_ = 0;
  std::vector<Cell> cells_;
  std::string texts_;
};

}  // namespace pelmora::sql
