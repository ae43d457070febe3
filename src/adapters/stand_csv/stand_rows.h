// The data points of a stand's CSV export.
// SPDX-License-Identifier: MIT
#pragma once

#include "store/curve_schema.h"

#include <pelmora/sheet.h>
#include <pelmora/types.h>

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace pelmora::stand {

// JobRecordID, then V1 to V37.
inline constexpr std::size_t columnCount = measuredValues + 1;
[[nodiscard]] std::string columnName(std::size_t column);

class StandRows {
 public:
  // Reads the header. `path` is for messages only.
  // Errors: SheetError, number 321 for a wrong header and 13 for text that is not a table.
  StandRows(std::string path, std::string bytes, const sheets::Style& style);

  // The next row in the order of columnName; an empty field and one of a column that the file does
  // not have are null. A job identity that is a whole number is an integer, any other a text.
  // Viscosities and temperatures are converted to cSt and degrees Fahrenheit. False at the end.
  // Errors: SheetError, number 13, for a row with too few or too many fields or a text in place of
  //         a number.
  bool next(std::array<Value, columnCount>& row);
  // Of the last row.
  [[nodiscard]] std::size_t line() const { return row_.line; }
  [[nodiscard]] const sheets::Recognised& recognised() const { return sheet_->recognised(); }

 private:
  void readHeader();
  [[nodiscard]] Value value(std::size_t column, std::size_t field) const;

  std::string path_;
  std::optional<sheets::Sheet> sheet_;
  sheets::Row row_;
  std::vector<std::size_t> columns_;  // of each field of a line
};

}  // namespace pelmora::stand
