// Cells of a report's tables; what is absent or not finite is an empty cell.
// SPDX-License-Identifier: MIT
#pragma once

#include "report/report_tables.h"

#include <cmath>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace pelmora::report {

[[nodiscard]] inline Value numberCell(double value) {
  return std::isfinite(value) ? Value(value) : Value();
}
[[nodiscard]] inline Value numberCell(const std::optional<double>& value) {
  return value ? numberCell(*value) : Value();
}
[[nodiscard]] inline Value wholeCell(std::int64_t value) { return value; }
[[nodiscard]] inline Value textCell(const std::string& value) {
  return value.empty() ? Value() : Value(value);
}
inline void appendCells(std::vector<Value>& row, const std::vector<Value>& more) {
  row.insert(row.end(), more.begin(), more.end());
}

}  // namespace pelmora::report
