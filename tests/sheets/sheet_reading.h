// Reads a text as a sheet, for tests.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/sheet.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <vector>

namespace pelmora::sheets {

using Numbers = std::vector<std::vector<double>>;

struct Reading {
  Recognised recognised;
  std::vector<std::string> names, units;
  Numbers rows;
  std::vector<std::size_t> lines;
};

// Every field of every row as a number.
inline Reading read(const std::string& bytes, const Style& style = {}) {
  Sheet sheet(bytes, style);
  Reading reading;
  reading.recognised = sheet.recognised();
  for (const Column& column : sheet.columns()) {
    reading.names.push_back(column.name);
    reading.units.push_back(column.unit);
  }
  Row row;
  while (sheet.next(row)) {
    reading.lines.push_back(row.line);
    reading.rows.emplace_back();
    for (std::size_t i = 0; i < row.fields.size(); ++i)
      reading.rows.back().push_back(sheet.requireNumber(row, i));
  }
  return reading;
}

inline SheetError refusal(const std::string& bytes, const Style& style = {}) {
  try {
    (void)read(bytes, style);
  } catch (const SheetError& error) {
    EXPECT_FALSE(error.remedy().empty());
    return error;
  }
  ADD_FAILURE() << "accepted: " << bytes;
  return {"", "", ""};
}

inline const Numbers twoPoints{{100.5, 2.25}, {200, 2.5}};

}  // namespace pelmora::sheets
