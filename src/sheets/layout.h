// Where the header, the units and the values of a sheet are.
// SPDX-License-Identifier: MIT
#pragma once

#include "sheets/record_source.h"

#include <pelmora/sheet.h>

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace pelmora::sheets {

struct Layout {
  std::vector<Column> columns;
  std::vector<std::string> header, units;  // as written; empty if there is no such line
  std::size_t headerLine = 0, unitsLine = 0;
  std::size_t titleLines = 0;
  std::size_t firstLine = 1;  // of the values
};

// The header is the first line that has all of `names`. If there is none, it is a line of texts
// above numbers, with nothing above it that looks like a row of values; failing that, a comment
// right above the values.
//
// start: the first records of the text, as many as titles, header and some values take.
[[nodiscard]] Layout layoutOf(std::span<const Record> start, char separator,
                              const std::vector<std::string>& names);

}  // namespace pelmora::sheets
