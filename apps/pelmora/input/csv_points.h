// Points from a user's text file.
// SPDX-License-Identifier: MIT
#pragma once

#include "apps/pelmora/input/derived_columns.h"

#include <pelmora/sheet.h>
#include <pelmora/types.h>

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace pelmora::cli {

// Most points of one raw part: the component counts them in 16 bits.
inline constexpr std::size_t mostPoints = 32767;

struct PointColumns {
  std::string x, y;  // header names, or numbers from 1; empty: see readCsvPoints
  std::vector<std::pair<std::string, std::string>> where;  // only rows whose column has this value
  std::optional<ColumnChoice> derived = {};  // if given, x and y are derived from these columns
  sheets::Style style = {};                  // its names stay empty: the columns above give them
};

struct CsvPoints {
  PointArray points;
  sheets::Recognised recognised;
  std::string derivation;          // how x and y were derived; empty if they were read
  std::string assumption;          // which columns were taken, if the header has other names
  std::vector<std::size_t> lines;  // of the file, one for each point
  std::string roshkoColumn;        // that of Roshko, or of the viscosity it was derived from
};

// The points of a text file, in its order. Without names, x and y are the columns Roshko and
// Strouhal, or the only two.
//
// Errors: Trouble badInput that names file, line and column: no file, no such column, a line with
//         too few or too many fields, text, NaN or infinity for a number, an x that is not
//         positive, a y of zero, no points or more than mostPoints, or a separator or decimal sign
//         that cannot be recognised.
[[nodiscard]] CsvPoints readCsvPoints(const std::string& path, const PointColumns& columns);

// "column=value". Errors: Trouble usage.
[[nodiscard]] std::pair<std::string, std::string> rowFilter(const std::string& text);

}  // namespace pelmora::cli
