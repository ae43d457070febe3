// A table of measurements in a text file, as people and their programs write it.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/error.h>
#include <pelmora/export.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace pelmora::sheets {

enum class Encoding { utf8, utf16, windows1252 };

// What the caller knows; the rest is recognised from the whole text.
struct Style {
  char separator = 0;  // between fields, such as ',', ';' or '\t'; 0: recognised
  char decimal = 0;    // '.' or ','; 0: recognised
  // Columns that the table should have, by name: the first line that names them all is the header.
  std::vector<std::string> names = {};
  // Called often while the text is read. If it returns true, reading ends with error 0x80004004.
  std::function<bool()> stopRequested = {};
};

// How the text was read. Lines count from 1.
struct Recognised {
  Encoding encoding = Encoding::utf8;
  bool hasByteOrderMark = false;
  char separator = ',';
  bool isSeparatorStated = false;  // by a line such as "sep=;"
  char decimal = '.';
  std::string thousands;         // what groups the digits of large numbers; empty: nothing
  std::size_t titleLines = 0;    // above the header
  std::size_t commentLines = 0;  // that begin with #, % or //
  std::size_t headerLine = 0;    // 0: there is no header
  std::size_t unitsLine = 0;     // 0: there is no line of units
  std::size_t emptyColumns = 0;  // at the end
  std::size_t emptyRows = 0;     // with nothing but separators
  std::vector<std::size_t> repeatedHeaders;  // the lines that they are in

  // Comma-separated UTF-8 with decimal points and at most a header above the values.
  [[nodiscard]] PELMORA_API bool isPlain() const;
  // "semicolons between fields, decimal comma, 2 title lines"; empty if the text is plain.
  [[nodiscard]] PELMORA_API std::string words() const;
};

// Text that cannot be read as a table of numbers.
class PELMORA_API SheetError : public Error {
 public:
  // The member of Style that would settle it.
  enum class Doubt { none, separator, decimal };

  // place: for example "line 3, column Flow"; may be empty.
  // number: 13 (type mismatch) if a value is wrong, 321 if the whole text is.
  SheetError(const std::string& place, const std::string& problem, const std::string& remedy,
             Doubt doubt = Doubt::none, std::int32_t number = 13);
  ~SheetError() override;

  [[nodiscard]] const std::string& place() const noexcept { return place_; }
  [[nodiscard]] const std::string& problem() const noexcept { return problem_; }
  [[nodiscard]] const std::string& remedy() const noexcept { return remedy_; }
  [[nodiscard]] Doubt doubt() const noexcept { return doubt_; }

  // The same error with the file as the start of its place.
  [[nodiscard]] SheetError inFile(const std::string& path, std::int32_t number) const;

 private:
  std::string place_, problem_, remedy_;
  Doubt doubt_;
};

struct Column {
  std::string text;  // the whole header field; empty without a header
  std::string name;  // without the unit
  std::string unit;  // "l/min" of "Flow [l/min]", or from the line of units; empty: none given
};

struct Row {
  std::size_t line = 0;
  std::vector<std::string> fields;  // one for each column, without blanks at their ends
};

// "an Excel workbook (.xlsx)" and the like if the first bytes of a file show that it is not a text
// file; otherwise empty.
[[nodiscard]] PELMORA_API std::string foreignKind(std::string_view start);

// Whether one of the first lines of a text file names this column, with any separator.
// start: the first few thousand bytes.
[[nodiscard]] PELMORA_API bool namesColumn(std::string_view start, std::string_view column);

// A text file in memory with its header already read; next() delivers the rows. Not copyable.
//
// It recognises UTF-8 with or without a byte order mark, UTF-16 and Windows-1252; commas,
// semicolons or tabs between fields; decimal points or commas; thousands grouped by a blank, an
// apostrophe or, if the text proves it, a point or comma; title and comment lines, a header, a line
// of units, repeated headers; empty columns and rows. Text that can be read in two ways is refused.
class PELMORA_API Sheet {
 public:
  // Errors: SheetError for bytes that are not text, for text that ends inside quotes, and for a
  //         separator or a decimal sign that cannot be determined.
  explicit Sheet(std::string bytes, const Style& style = {});
  Sheet(Sheet&& other) noexcept;
  Sheet& operator=(Sheet&& other) noexcept;
  ~Sheet();

  [[nodiscard]] const Recognised& recognised() const;
  [[nodiscard]] const std::vector<Column>& columns() const;
  // A column by its name, by the whole text of its header, both without regard to case, or by its
  // number from 1.
  [[nodiscard]] std::optional<std::size_t> find(std::string_view name) const;
  // "Flow", or the number where the column has no name.
  [[nodiscard]] std::string columnName(std::size_t column) const;

  // Reads the next row of values. False at the end.
  // Errors: SheetError for a row with fewer fields than columns, or with text beyond the last one.
  bool next(Row& row);

  // Nothing for a text that is not a finite number in the style of this sheet. The result is the
  // double that the same digits with a decimal point give.
  [[nodiscard]] std::optional<double> number(std::string_view field) const;
  // Errors: SheetError that names the line and the column.
  [[nodiscard]] double requireNumber(const Row& row, std::size_t column) const;
  // The same, converted from the unit of the column to this one, such as "cSt"; unchanged if the
  // column has no unit.
  // Errors: also SheetError for a unit that is unknown or of another quantity.
  [[nodiscard]] double requireNumber(const Row& row, std::size_t column,
                                     std::string_view unit) const;
  // Replaces the unit that the header gives.
  void setUnit(std::size_t column, std::string_view unit);

 private:
  class Content;
  std::unique_ptr<Content> content_;
};

}  // namespace pelmora::sheets
