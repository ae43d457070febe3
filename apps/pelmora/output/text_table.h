// Tables for a terminal of 80 columns.
// SPDX-License-Identifier: MIT
#pragma once

#include "base/readable_number.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace pelmora::cli {

inline constexpr std::size_t terminalColumns = 80;

enum class TextAlign { left, right };

struct TextColumn {
  std::string title;
  TextAlign align = TextAlign::left;
};

// A table of texts: columns are as wide as their widest cell, two blanks apart, and the line ends
// without blanks. Where a row would be wider than 80 columns, the widest text column is cut with
// "...". Control characters are made harmless.
//
// Keeps no rows: measure() all of them, then write head() and a line() for each.
class TableLayout {
 public:
  explicit TableLayout(std::vector<TextColumn> columns);

  // As many cells as columns.
  void measure(const std::vector<std::string>& cells);
  // The titles, underlined; what is measured afterwards has no effect.
  [[nodiscard]] std::string head();
  [[nodiscard]] std::string line(const std::vector<std::string>& cells) const;

 private:
  std::vector<TextColumn> columns_;
  std::vector<std::size_t> widths_;
};

// The same with its rows.
class TextTable {
 public:
  using Align = TextAlign;
  using Column = TextColumn;

  explicit TextTable(std::vector<Column> columns) : layout_(std::move(columns)) {}
  void addRow(std::vector<std::string> cells);
  [[nodiscard]] std::string text() const;

 private:
  TableLayout layout_;
  std::vector<std::vector<std::string>> rows_;
};

// Columns that a UTF-8 text takes, one for each character.
[[nodiscard]] std::size_t displayWidth(std::string_view text);

// `text` broken at blanks into lines of at most 80 columns, each one indented.
[[nodiscard]] std::string wrapped(std::string_view text, std::size_t indent);

// "1 point", "2 points".
[[nodiscard]] std::string counted(std::size_t count, const std::string& thing);
[[nodiscard]] std::string counted(std::size_t count, const std::string& thing,
                                  const std::string& things);

// Numbers in tables and sentences are those of a report.
using pelmora::alignedText;
using pelmora::fixedText;
using pelmora::percentText;
using pelmora::significantText;
using pelmora::withShortNumbers;

}  // namespace pelmora::cli
