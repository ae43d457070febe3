// Points that a user brings as a CSV file.
// SPDX-License-Identifier: MIT
#pragma once

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
};

// The points of a comma-separated file, in its order. The first line is a header unless it holds
// numbers. Without names, x and y are the columns Roshko and Strouhal, or the only two.
//
// Errors: Trouble badInput that names file, line and column: no file, no such column, a line with
// too
//         few or too many fields, a text, NaN or infinity for a number, a y of zero, no points or
//         more than mostPoints.
[[nodiscard]] PointArray readCsvPoints(const std::string& path, const PointColumns& columns);

// "column=value". Errors: Trouble usage.
[[nodiscard]] std::pair<std::string, std::string> rowFilter(const std::string& text);

}  // namespace pelmora::cli
