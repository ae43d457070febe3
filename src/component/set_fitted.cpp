// SPDX-License-Identifier: MIT
#include "component/set_fitted.h"

#include "base/number_text.h"
#include "store/point_rows.h"
#include "component/lookups.h"
#include "component/operation_connection.h"
#include "store/reading.h"

#include <array>

namespace pelmora {
namespace {

// The series being stored.
struct Target {
  const OperationContext& context;
  Connection& connection;
  const std::string& SeriesName;
  std::int32_t SeriesID;
};

void removeOld(const Target& target, const std::string& text, const std::string& statement) {
  target.context.raiseStatusUpdate(text + target.SeriesName);
  target.connection.execute(statement + numberText(target.SeriesID));
}

void insertPoints(const Target& target, const std::string& text, const std::string& statement,
                  const PointArray& points) {
  // From two points on; asked by size, so that too many end in an overflow and not in silence.
  if (points.size() < 2) return;
  target.context.raiseStatusUpdate(text + target.SeriesName);
  auto rows = openForBatch(target.connection, statement + numberText(target.SeriesID));
  writePoints(*rows, target.SeriesID, points);
}

void insertSummary(const Target& target, const std::string& details) {
  target.context.raiseStatusUpdate("Inserting new DataFitResult summary into database in series " +
                                   target.SeriesName);
  auto rows = target.connection.openRecordset(
      "Select * from DataFitResults where seriesID = " + numberText(target.SeriesID),
      CursorType::dynamic, LockType::optimistic);
  constexpr std::array<std::string_view, 2> fields{"seriesID", "summary"};
  const std::array<Value, 2> values{std::int64_t{target.SeriesID}, details};
  rows->addRow(fields, values);
}

}  // namespace

bool SetFitted(const OperationContext& context, const std::string& SeriesName,
               const std::string& MeterSerialNumber, const FittedResult& result, bool cleardb,
               std::int16_t ReCalID) {
  bool stored = false;
  context.trap("Error in RawData:SetRaw", [&] {
    OperationConnection connection(context, nullptr);
    const MeterInfo meter =
        findMeterInfo(context, MeterSerialNumber, connection.pointer(), ReCalID, SeriesName);
    if (meter.Series.empty()) return;
    const Target target{context, connection, SeriesName, meter.Series.front().SeriesID};
    removeOld(target, "Removing old fitted data from database in series ",
              "DELETE from curve where seriesID = ");
    removeOld(target, "Removing old DataFitResult summary from database in series ",
              "DELETE from DataFitResults where seriesID = ");
    removeOld(target, "Removing old merged data from database in series ",
              "DELETE from merge where seriesid = ");
    if (cleardb) {
      if (!result.Details.empty()) insertSummary(target, result.Details);
    } else {
      insertPoints(target, "Inserting new fitted data into database in series ",
                   "Select * from curve where seriesID = ", result.arFitted);
      insertSummary(target, result.Details);
      insertPoints(target, "Inserting new merged data into database in series ",
                   "Select * from merge where seriesid = ", result.arMerged);
    }
    stored = true;
  });
  return stored;
}

bool SetLastFitted(const OperationContext& context, bool cleardb) {
  bool stored = false;
  context.trap("Error in RawData:SetLastRaw", [&] {
    // Copies: a handler may start another fit while this one is stored.
    const MeterInfo last = context.shared().lastFittedSeries;
    const SeriesInfo record = context.shared().fitRecord();
    const std::string name = last.Series.empty() ? std::string() : last.Series.front().SeriesName;
    stored = SetFitted(context, name, last.SerialNumber,
                       {record.Merged, record.Fitted, record.Summary}, cleardb, last.ReCalID);
  });
  return stored;
}

}  // namespace pelmora
