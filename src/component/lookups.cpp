// SPDX-License-Identifier: MIT
#include "component/lookups.h"

#include "component/operation_connection.h"
#include "store/meter_lists.h"
#include "store/meter_lookup.h"
#include "store/meter_registry.h"

#include <utility>

namespace pelmora {
namespace {

// Hosts' names go into statements as they are.
NameText hostsName(const std::string& name) { return NameText::spliced(name); }

// The record of a look-up under its trap; after an error its source is nowhere.
template <class Find>
MeterInfo lookedUp(const OperationContext& context, std::string_view operation,
                   const ConnectionPtr& conn, Find&& find) {
  MeterInfo record;
  const bool found = context.trap(operation, [&] {
    OperationConnection connection(context, conn);
    find(connection, record);
  });
  if (!found) record.Source = meter_source::nowhere;
  return record;
}

}  // namespace

MeterInfo findMeterInfo(const OperationContext& context, const std::string& MeterSN,
                        const ConnectionPtr& conn, std::int16_t ReCalID,
                        const std::string& SeriesName) {
  return lookedUp(context, "Error in RawData:findMeterInfo", conn,
                  [&](Connection& connection, MeterInfo& into) {
                    findMeterInfo(connection, hostsName(MeterSN), ReCalID, hostsName(SeriesName),
                                  into);
                  });
}

MeterInfo FindLastCalID(const OperationContext& context, const std::string& MeterSN,
                        const ConnectionPtr& conn) {
  return lookedUp(context, "Error in RawData:LastCalID", conn,
                  [&](Connection& connection, MeterInfo& into) {
                    findLastCalID(connection, hostsName(MeterSN), into);
                  });
}

MeterInfo getSeriesID(const OperationContext& context, const std::string& SeriesName,
                      const std::string& MeterSN, const ConnectionPtr& conn, std::int16_t ReCalID) {
  return lookedUp(
      context, "Error in Misc:getSeriesID", conn, [&](Connection& connection, MeterInfo& into) {
        findSeries(connection, hostsName(SeriesName), hostsName(MeterSN), ReCalID, into);
      });
}

ValueTable listSeries(const OperationContext& context, const std::string& MeterSN,
                      std::int16_t ReCalID) {
  ValueTable table;
  context.trap("Error in RawData:series", [&] {
    OperationConnection connection(context, nullptr);
    const MeterInfo meter = findMeterInfo(context, MeterSN, connection.pointer(), ReCalID, "");
    if (meter.Source != meter_source::meter) return;
    table = listSeries(connection, hostsName(MeterSN), meter.ReCalID);
  });
  return table;
}

std::vector<std::string> MetersAdjusted(const OperationContext& context, const std::string& MeterSN,
                                        bool& ArrayIsEmpty, std::vector<std::int16_t>& ReCalID) {
  std::vector<std::string> adjusted;
  context.trap("Error in RawData:meters", [&] {
    ArrayIsEmpty = true;
    OperationConnection connection(context, nullptr);
    ArrayIsEmpty = !listCalibrations(connection, hostsName(MeterSN), ReCalID, adjusted);
  });
  return adjusted;
}

std::vector<std::string> Meters(const OperationContext& context, bool& ArrayIsEmpty) {
  std::vector<std::string> meters;
  context.trap("Error in RawData:meters", [&] {
    ArrayIsEmpty = true;
    OperationConnection connection(context, nullptr);
    ArrayIsEmpty = !listMeters(connection, meters);
  });
  return meters;
}

std::vector<std::string> getJobID(const OperationContext& context, const std::string& MeterSN,
                                  std::int16_t ReCalID) {
  std::vector<std::string> jobs;
  context.trap("Error in RawData:getJobID", [&] {
    OperationConnection connection(context, nullptr);
    listJobs(connection, hostsName(MeterSN), ReCalID, jobs);
  });
  return jobs;
}

std::int32_t setMeterSN(const OperationContext& context, const std::string& MeterSerialNumber,
                        std::string& MeterSNAdjusted) {
  std::int32_t meterId = 0;
  context.trap("Error in RawData:setMeterSN", [&] {
    context.raiseStatusUpdate("Saving meter serial number " + MeterSerialNumber);
    OperationConnection connection(context, nullptr);
    const auto lookUp = [&] {
      return nextReCalID(FindLastCalID(context, MeterSerialNumber, connection.pointer()));
    };
    std::int16_t ReCalID = lookUp();
    if (MeterSNAdjusted.empty()) MeterSNAdjusted = MeterSerialNumber;
    const NameText MeterSN = hostsName(MeterSerialNumber);
    for (;;) {
      const auto added = addNewCalibration(connection, MeterSN, MeterSNAdjusted, ReCalID);
      if (added) {
        meterId = *added;
        return;
      }
      // Another host has added one since the look-up. Where the number stays the same it is the
      // look-up that failed; a row is added on every call.
      const std::int16_t before = std::exchange(ReCalID, lookUp());
      if (ReCalID == before) break;
    }
    meterId = addCalibration(connection, MeterSN, MeterSNAdjusted, ReCalID);
  });
  return meterId;
}

bool DeleteSeries(const OperationContext& context, const std::string& MeterSN,
                  const std::string& Series, std::int16_t ReCalID) {
  bool deleted = false;
  context.trap("Error in RawData:series", [&] {
    OperationConnection connection(context, nullptr);
    const MeterInfo meter = findMeterInfo(context, MeterSN, connection.pointer(), ReCalID, Series);
    if (meter.Source != meter_source::meter || meter.Series.empty()) return;
    deleteSeriesRow(connection, meter.Series.front().SeriesID);
    deleted = true;
  });
  return deleted;
}

}  // namespace pelmora
