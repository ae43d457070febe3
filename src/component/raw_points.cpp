// SPDX-License-Identifier: MIT
#include "component/raw_points.h"

#include "base/number_text.h"
#include "calibration/steps/raw_points.h"
#include "component/lookups.h"
#include "component/operation_connection.h"
#include "store/meter_lookup.h"
#include "store/point_rows.h"

#include <limits>
#include <utility>

namespace pelmora {
namespace {

std::string tableToWrite(std::int16_t dataSet) {
  if (dataSet == std::numeric_limits<std::int16_t>::max()) throw makeError(RunTimeError::overflow);
  return "raw" + numberText(dataSet + 1);
}

}  // namespace

bool SetRaw(const OperationContext& context, const std::string& SeriesName,
            const std::string& MeterSerialNumber, const PointArray& Table, std::int16_t dataSet,
            bool cleardb, std::int16_t ReCalID) {
  bool written = false;
  context.trap("Error in RawData:SetRaw", [&] {
    const std::string table = tableToWrite(dataSet);
    OperationConnection connection(context, nullptr);
    const MeterInfo meter =
        findMeterInfo(context, MeterSerialNumber, connection.pointer(), ReCalID, "");
    const steps::Observer observer = context.observer();
    const std::int32_t SeriesID =
        seriesRow(connection, NameText::spliced(SeriesName), meter.MeterID, observer);
    // The name of the last fitted series, not of this one: the shared fit record speaks here.
    const steps::RawTarget target{table, SeriesID, context.shared().fitRecord().SeriesName};
    removeRawPoints(connection, target, observer);
    if (cleardb) return;
    insertRawPoints(connection, target, Table, observer);
    written = true;
  });
  return written;
}

MeterInfo GetRaw(const OperationContext& context, const std::string& SeriesName,
                 const std::string& MeterSN, std::int16_t dataSet, const ConnectionPtr& conn,
                 std::int16_t ReCalID) {
  MeterInfo record = meterFoundNowhere();
  context.trap("Error in RawData:GetRaw", [&] {
    OperationConnection connection(context, conn);
    record = findMeterInfo(context, MeterSN, connection.pointer(), ReCalID, SeriesName);
    if (record.Source == meter_source::nowhere) return;
    context.raiseStatusUpdate("Retrieving old raw data from database in series " +
                              context.shared().fitRecord().SeriesName);
    if (record.Series.empty()) throw makeError(RunTimeError::outOfRange);
    SeriesInfo& series = record.Series.front();
    const auto rows = steps::openPoints(connection, "raw" + numberText(dataSet), series.SeriesID);
    PointArray points = pointsFromRows(*rows);
    const std::size_t slot = static_cast<std::size_t>(dataSet - 1);
    if (slot >= series.Raw.size()) throw makeError(RunTimeError::outOfRange);
    series.Raw[slot].Points = std::move(points);
  });
  return record;
}

PointArray getRSvalues(const OperationContext& context, const std::string& table,
                       std::int32_t SeriesID, const ConnectionPtr& conn) {
  PointArray points;
  context.trap("Error in misc:getRSvalues", [&] {
    OperationConnection connection(context, conn);
    context.pumpMessages();
    points = steps::readPoints(connection, table, SeriesID);
  });
  return points;
}

}  // namespace pelmora
