// SPDX-License-Identifier: MIT
#include "store/meter_registry.h"

#include "base/number_text.h"
#include "base/run_time_error.h"
#include "store/field_value.h"
#include "store/meter_lookup.h"
#include "store/reading.h"

#include <array>
#include <limits>
#include <string_view>

namespace pelmora {

std::int16_t nextReCalID(const MeterInfo& latest) {
  if (latest.Source == meter_source::nowhere) return 0;
  if (latest.ReCalID == std::numeric_limits<std::int16_t>::max()) {
    throw makeError(RunTimeError::overflow);
  }
  return static_cast<std::int16_t>(latest.ReCalID + 1);
}

namespace {

// `add` gets the record set, the fields and their values.
template <class Add>
std::optional<std::int32_t> addedCalibration(Connection& connection, const NameText& MeterSN,
                                             const std::string& MeterSNAdjusted,
                                             std::int16_t ReCalID, Add&& add) {
  auto rows = readRows(
      connection,
      "select id, serialnumber, serialNumberAdjusted, recalid from meter where serialnumber = " +
          MeterSN.literal());
  constexpr std::array<std::string_view, 3> fields{"serialnumber", "serialnumberadjusted",
                                                   "ReCalID"};
  const std::array<Value, 3> values{MeterSN.name(), MeterSNAdjusted, std::int64_t{ReCalID}};
  if (!add(*rows, fields, values)) return std::nullopt;
  return toInt32(rows->value("id"));
}

}  // namespace

std::int32_t addCalibration(Connection& connection, const NameText& MeterSN,
                            const std::string& MeterSNAdjusted, std::int16_t ReCalID) {
  return *addedCalibration(connection, MeterSN, MeterSNAdjusted, ReCalID,
                           [](Recordset& rows, const auto& fields, const auto& values) {
                             rows.addRow(fields, values);
                             return true;
                           });
}

std::optional<std::int32_t> addNewCalibration(Connection& connection, const NameText& MeterSN,
                                              const std::string& MeterSNAdjusted,
                                              std::int16_t ReCalID) {
  return addedCalibration(connection, MeterSN, MeterSNAdjusted, ReCalID,
                          [](Recordset& rows, const auto& fields, const auto& values) {
                            return rows.addNewRow("recalid", fields, values);
                          });
}

std::int32_t findOrAddSeriesRow(Connection& connection, const NameText& SeriesName,
                                std::int32_t MeterID) {
  auto rows = readRows(connection, "select * from series where name = " + SeriesName.literal() +
                                       " and meterid=" + numberText(MeterID));
  if (rows->recordCount() == 0) {
    constexpr std::array<std::string_view, 2> fields{"name", "meterid"};
    const std::array<Value, 2> values{SeriesName.name(), std::int64_t{MeterID}};
    if (!rows->addNewRow("name", fields, values)) rows->requery();
  }
  return toInt32(rows->value("id"));
}

void deleteSeriesRow(Connection& connection, std::int32_t SeriesID) {
  connection.execute("DELETE Series.* from series where id=" + numberText(SeriesID));
}

}  // namespace pelmora
