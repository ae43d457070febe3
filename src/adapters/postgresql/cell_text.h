// Values as the server's texts, and back.
//
// A column that keeps each value as it is, number or text, holds JSON there: a number with a
// decimal point or an exponent is a real one, a number of digits alone is whole.
// SPDX-License-Identifier: MIT
#pragma once

#include "adapters/sql_dialect/catalogue.h"
#include "adapters/sql_engine/row_store.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace pelmora::postgres {

// Numbers by which the server knows its own types.
namespace type_id {
inline constexpr std::uint32_t boolean = 16, int8 = 20, int2 = 21, int4 = 23, text = 25,
                               float4 = 700, float8 = 701, character = 1042, varchar = 1043,
                               numeric = 1700, jsonb = 3802;
}

// Reads the cells of one delivered column.
class CellReader {
 public:
  explicit CellReader(std::uint32_t type) : type_(type) {}
  void append(std::string_view text, sql::RowStore& rows) const;

 private:
  std::uint32_t type_;
};

// Null where the cell is. The text that the server reads as the column's value.
//
// Errors: Error 13 for a number that is not whole in a column of whole numbers, and for a text that
//         the server cannot hold: one with a zero character, or one that is not UTF-8.
struct CellText {
  bool isNull = false;
  std::string text;
};
[[nodiscard]] CellText cellText(const sql::CellView& cell, const sql::ColumnShape& column);

// As a field of a line of COPY.
void appendCopyField(const CellText& cell, std::string& line);
// As a literal of a statement: 'text' or NULL.
[[nodiscard]] std::string literalOf(const CellText& cell);

}  // namespace pelmora::postgres
