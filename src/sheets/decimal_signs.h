// Whether numbers have a decimal point or a decimal comma.
// SPDX-License-Identifier: MIT
#pragma once

#include "sheets/field_number.h"

#include <array>
#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace pelmora::sheets {

// The sizes of numbers in one column, without their signs.
struct SizeRange {
  double smallest = 0, largest = 0;
  bool isEmpty = true;
  void add(double value);
};
struct ColumnSizes {
  SizeRange settled;  // of numbers that read the same either way, and of those with another mark
  SizeRange grouped;  // of numbers such as 1.234, read as thousands
};
// Reads a column again: `open` is the mark ('.' or ',') that may group thousands in it.
using ColumnReader = std::function<ColumnSizes(std::size_t column, char open)>;

// Collects evidence from the fields of all rows, then decides. "12,5" and "0,125" have a decimal
// comma; so have "1.234,5" and "1.234.567". "1,234" alone proves nothing: then the other numbers of
// its column decide if only one reading is of their size (within a factor of ten).
class DecimalSigns {
 public:
  void add(std::size_t line, std::size_t column, const std::string& field);

  // separator: between fields; if it is a comma, numbers without quotes have a decimal point.
  // stated: '.' or ',' if the caller knows; 0 otherwise.
  //
  // Errors: SheetError if both signs are used as decimal signs, or a number such as 1.234 may be a
  //         thousand or one.
  [[nodiscard]] NumberStyle decide(char separator, char stated, const ColumnReader& read) const;
  // What groups thousands, for messages; empty if nothing does.
  [[nodiscard]] std::string thousands(NumberStyle style) const;

 private:
  struct Place {
    std::size_t line = 0, column = 0;
    std::string text;  // empty: none was found
  };
  // What was seen of one of the two signs.
  struct Evidence {
    Place decimal;   // a number in which it can only be the decimal sign
    Place grouping;  // one in which it can only group thousands
  };
  struct Column {
    std::array<Place, 2> open;  // the first number in which '.' or ',' can be either
    bool hasUngrouped = false;  // a number of 1000 or more without grouping
  };
  static void note(Place& place, std::size_t line, std::size_t column, const std::string& text);
  // What an open number of a column means: true if the mark is decimal, false if it groups.
  [[nodiscard]] std::optional<bool> isDecimal(const Place& open, const ColumnReader& read) const;

  std::array<Evidence, 2> signs_;  // of '.' and ','
  std::vector<Column> columns_;
  std::string otherGrouping_;
};

}  // namespace pelmora::sheets
