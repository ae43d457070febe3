// SPDX-License-Identifier: MIT
#include "rawdata/point_rows_writer.h"

#include "base/run_time_error.h"
#include "points/point_rows.h"

#include <array>

namespace pelmora {

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
