// SPDX-License-Identifier: MIT
#include "store/point_rows.h"

#include "base/run_time_error.h"
#include "store/field_value.h"

#include <array>
#include <cmath>
#include <limits>
#include <string_view>

namespace pelmora {
namespace {

float toSingle(double value) {
  constexpr double most = std::numeric_limits<float>::max();
  if (std::isfinite(value) && std::abs(value) > most) throw makeError(RunTimeError::overflow);
  return static_cast<float>(value);
}

void readCurve40(Recordset& rows, std::array<float, 40>& roshko, std::array<float, 40>& strouhal) {
  if (rows.atEnd()) return;
  const std::size_t roshkoField = rows.fieldIndex("roshko");
  const std::size_t strouhalField = rows.fieldIndex("strouhal");
  for (std::size_t k = 0; k < roshko.size() && !rows.atEnd(); ++k, rows.moveNext()) {
    roshko[k] = toSingle(toDouble(rows.value(roshkoField)));
    strouhal[k] = toSingle(toDouble(rows.value(strouhalField)));
  }
}

}  // namespace

void PointRows::take(const Recordset& rows) {
  if (row_ == 0) {
    const std::int32_t count = rows.recordCount();
    if (count > mostPoints) throw makeError(RunTimeError::overflow);
    points_ = PointArray(static_cast<std::size_t>(count));
    roshkoField_ = rows.fieldIndex("roshko");
    strouhalField_ = rows.fieldIndex("strouhal");
  }
  points_(row_, 0) = toDouble(rows.value(roshkoField_));
  points_(row_, 1) = toDouble(rows.value(strouhalField_));
  ++row_;
}

PointArray pointsFromRows(Recordset& rows) {
  PointRows points;
  for (; !rows.atEnd(); rows.moveNext()) points.take(rows);
  return points.points();
}

FixedCurve40 curve40FromRows(Recordset& rows) {
  FixedCurve40 curve;
  readCurve40(rows, curve.first, curve.second);
  return curve;
}

FixedCurve40 curve40FromRowsSwapped(Recordset& rows) {
  FixedCurve40 curve;
  readCurve40(rows, curve.second, curve.first);
  return curve;
}

void writePoints(Recordset& rows, std::int32_t SeriesID, const PointArray& points) {
  const bool hasBounds = points.columns() > 0 || !points.empty();
  if (hasBounds && points.columns() < 2) throw makeError(RunTimeError::outOfRange);
  if (points.size() > static_cast<std::size_t>(mostPoints)) throw makeError(RunTimeError::overflow);
  constexpr std::array<std::string_view, 3> fields{"seriesID", "Roshko", "Strouhal"};
  std::array<Value, 3> values{static_cast<double>(SeriesID), 0.0, 0.0};
  for (std::size_t i = 0; i < points.size(); ++i) {
    values[1] = points(i, 0);
    values[2] = points(i, 1);
    rows.addRow(fields, values);
  }
  rows.updateBatch();
}

}  // namespace pelmora
