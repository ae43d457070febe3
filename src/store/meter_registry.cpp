// SPDX-License-Identifier: MIT
#include "store/meter_registry.h"

#include "base/number_text.h"
#include "store/field_value.h"
#include "store/meter_lookup.h"
#include "store/operation_connection.h"

#include <array>
#include <limits>

namespace pelmora {
namespace {

std::int16_t nextReCalID(const MeterInfo& latest) {
  if (latest.Source == -1) return 0;
  if (latest.ReCalID == std::numeric_limits<std::int16_t>::max()) {
    throw makeError(RunTimeError::overflow);
  }
  return static_cast<std::int16_t>(latest.ReCalID + 1);
}

}  // namespace

std::int32_t setMeterSN(const OperationContext& context, const std::string& MeterSerialNumber,
                        std::string& MeterSNAdjusted) {
  std::int32_t meterId = 0;
  context.trap("Error in RawData:setMeterSN", [&] {
    context.raiseStatusUpdate("Saving meter serial number " + MeterSerialNumber);
    const OperationConnection connection(context, nullptr);
    const std::int16_t ReCalID =
        nextReCalID(FindLastCalID(context, MeterSerialNumber, connection.pointer()));
    if (MeterSNAdjusted.empty()) MeterSNAdjusted = MeterSerialNumber;
    auto rows = connection.read(
        "select id, serialnumber, serialNumberAdjusted, recalid from meter where serialnumber = '" +
        MeterSerialNumber + "'");
    constexpr std::array<std::string_view, 3> fields{"serialnumber", "serialnumberadjusted",
                                                     "ReCalID"};
    const std::array<Value, 3> values{MeterSerialNumber, MeterSNAdjusted, std::int64_t{ReCalID}};
    rows->addRow(fields, values);
    meterId = toInt32(rows->value("id"));
  });
  return meterId;
}

bool DeleteSeries(const OperationContext& context, const std::string& MeterSN,
                  const std::string& Series, std::int16_t ReCalID) {
  bool deleted = false;
  context.trap("Error in RawData:series", [&] {
    const OperationConnection connection(context, nullptr);
    const MeterInfo meter = findMeterInfo(context, MeterSN, connection.pointer(), ReCalID, Series);
    if (meter.Source != 1 || meter.Series.empty()) return;
    connection->execute("DELETE Series.* from series where id=" +
                        numberText(meter.Series.front().SeriesID));
    deleted = true;
  });
  return deleted;
}

}  // namespace pelmora
