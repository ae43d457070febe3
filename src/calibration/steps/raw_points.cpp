// SPDX-License-Identifier: MIT
#include "calibration/steps/raw_points.h"

#include "base/number_text.h"
#include "store/meter_registry.h"
#include "store/point_rows.h"
#include "store/reading.h"

namespace pelmora::calibration::steps {
std::unique_ptr<Recordset> openPoints(Connection& connection, const std::string& table,
                                      std::int32_t SeriesID) {
  return readRows(connection, "Select roshko, strouhal from " + table +
                                  " where seriesID = " + numberText(SeriesID));
}

PointArray readPoints(Connection& connection, const std::string& table, std::int32_t SeriesID) {
  const auto rows = openPoints(connection, table, SeriesID);
  return pointsFromRows(*rows);
}

std::int32_t seriesRow(Connection& connection, const NameText& SeriesName, std::int32_t MeterID,
                       const Observer& observer) {
  observer.status("Querying series name in series " + SeriesName.name());
  return findOrAddSeriesRow(connection, SeriesName, MeterID);
}

void removeRawPoints(Connection& connection, const RawTarget& target, const Observer& observer) {
  observer.status("Removing old raw data in series " + target.SeriesName);
  connection.execute("DELETE from " + target.table +
                     " where seriesID = " + numberText(target.SeriesID));
}

void insertRawPoints(Connection& connection, const RawTarget& target, const PointArray& points,
                     const Observer& observer) {
  observer.status("Inserting new raw data in series " + target.SeriesName);
  auto rows = openForBatch(connection, "Select * from " + target.table +
                                           " where seriesID=" + numberText(target.SeriesID));
  writePoints(*rows, target.SeriesID, points);
}

}  // namespace pelmora::calibration::steps
