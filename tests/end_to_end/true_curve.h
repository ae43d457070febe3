// Meter M1 of the example data without noise, and how far a stored table is from it.
// SPDX-License-Identifier: MIT
#pragma once

#include "tests/end_to_end/command.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <string>
#include <vector>

namespace pelmora::test {

struct TruePoint {
  double x, y;
};
using TrueCurve = std::vector<TruePoint>;

// The curve in one fluid, "1" or "2", by rising Roshko.
inline TrueCurve trueCurveOf(const std::string& fluid, const std::string& xName,
                             const std::string& yName, bool isReciprocal = false) {
  const auto rows = rowsOf(std::string(PELMORA_DATA) + "/stand-true-curves.csv");
  std::map<std::string, std::size_t> column;
  for (std::size_t i = 0; i < rows.front().size(); ++i) column[rows.front()[i]] = i;
  TrueCurve curve;
  for (std::size_t r = 1; r < rows.size(); ++r) {
    const auto& row = rows[r];
    if (row[column["meter"]] != "M1" || row[column["static_bearing_drag"]] != "1") continue;
    if (row[column["fluid"]] != fluid) continue;
    const double y = std::stod(row[column[yName]]);
    curve.push_back({std::stod(row[column[xName]]), isReciprocal ? 1 / y : y});
  }
  std::ranges::sort(curve, {}, &TruePoint::x);
  return curve;
}

// The table as a flow computer reads it: linear between neighbours.
inline double reading(const nlohmann::json& table, double x) {
  std::size_t i = 1;
  while (i + 1 < table.size() && table[i][0].get<double>() < x) ++i;
  const double x0 = table[i - 1][0], y0 = table[i - 1][1], x1 = table[i][0], y1 = table[i][1];
  return y0 + (y1 - y0) * (x - x0) / (x1 - x0);
}

struct Deviation {
  double percent = 0;
  std::size_t points = 0;
};

inline Deviation worstDeviation(const nlohmann::json& table, const TrueCurve& truth) {
  Deviation worst;
  for (const TruePoint& point : truth) {
    if (point.x < table.front()[0].get<double>() || point.x > table.back()[0].get<double>())
      continue;
    ++worst.points;
    worst.percent = std::max(worst.percent, std::fabs(reading(table, point.x) / point.y - 1) * 100);
  }
  return worst;
}

}  // namespace pelmora::test
