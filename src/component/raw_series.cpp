// SPDX-License-Identifier: MIT
#include "component/raw_series.h"

#include "base/number_text.h"
#include "store/point_rows.h"
#include "store/meter_registry.h"
#include "store/field_value.h"
#include "component/lookups.h"
#include "component/operation_connection.h"
#include "store/meter_lookup.h"
#include "store/reading.h"

#include <limits>

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
    context.raiseStatusUpdate("Querying series name in series " + SeriesName);
    const std::int32_t SeriesID =
        findOrAddSeriesRow(connection, NameText::spliced(SeriesName), meter.MeterID);
    // The name of the last fitted series, not of this one: the shared fit record speaks here.
    const std::string sharedName = context.shared().fitRecord().SeriesName;
    context.raiseStatusUpdate("Removing old raw data in series " + sharedName);
    connection.execute("DELETE from " + table + " where seriesID = " + numberText(SeriesID));
    if (cleardb) return;
    context.raiseStatusUpdate("Inserting new raw data in series " + sharedName);
    auto rows = openForBatch(connection,
                             "Select * from " + table + " where seriesID=" + numberText(SeriesID));
    writePoints(*rows, SeriesID, Table);
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
    const std::string table = "raw" + numberText(dataSet);
    if (record.Source == -1) return;
    context.raiseStatusUpdate("Retrieving old raw data from database in series " +
                              context.shared().fitRecord().SeriesName);
    if (record.Series.empty()) throw makeError(RunTimeError::outOfRange);
    SeriesInfo& series = record.Series.front();
    auto rows = readRows(connection, "Select roshko, strouhal from " + table +
                                         " where seriesID = " + numberText(series.SeriesID));
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
    const std::string statement =
        "Select roshko, strouhal from " + table + " where seriesID = " + numberText(SeriesID);
    context.pumpMessages();
    auto rows = readRows(connection, statement);
    points = pointsFromRows(*rows);
  });
  return points;
}

}  // namespace pelmora
