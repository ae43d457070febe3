// SPDX-License-Identifier: MIT
#include "store/meter_lookup.h"

#include "base/number_text.h"
#include "store/connection.h"
#include "store/field_value.h"
#include "store/operation_connection.h"

namespace pelmora {
namespace {

constexpr std::int32_t inMeter = 1;
constexpr std::int32_t inMasterMeterList = 2;
constexpr std::int32_t nowhere = -1;

void readAdjustedSerialNumber(const Recordset& rows, MeterInfo& record) {
  const Value& adjusted = rows.value("serialnumberadjusted");
  if (!isNull(adjusted)) record.SerialNumberAdjusted = toText(adjusted);
}

void readMeter(const Recordset& rows, const std::string& MeterSN, MeterInfo& record) {
  record.MeterID = toInt32(rows.value("id"));
  record.ReCalID = toInt16(rows.value("ReCalID"));
  record.SerialNumber = MeterSN;
}

void setSeries(MeterInfo& record, std::int32_t SeriesID, const std::string& SeriesName) {
  record.Series.resize(1);
  record.Series.front().SeriesID = SeriesID;
  record.Series.front().SeriesName = SeriesName;
}

}  // namespace

MeterInfo meterFoundNowhere() {
  MeterInfo record;
  record.Source = nowhere;
  return record;
}

MeterInfo findMeterInfo(const OperationContext& context, const std::string& MeterSN,
                        const ConnectionPtr& conn, std::int16_t ReCalID,
                        const std::string& SeriesName) {
  MeterInfo record;
  const bool found = context.trap("Error in RawData:findMeterInfo", [&] {
    const OperationConnection connection(context, conn);
    const bool latest = ReCalID < 0;
    const std::string top = latest ? " TOP 1" : "";
    const std::string recal = latest ? "" : " AND recalid=" + numberText(ReCalID);
    const bool wantsSeries = !SeriesName.empty();
    const std::string columns =
        wantsSeries
            ? " series.ID AS seriesID,meter.ID, meter.ReCalID, meter.SerialNumberAdjusted from "
              "series left join meter on series.meterid=meter.id"
            : " ID, ReCalID, SerialNumberAdjusted from meter";
    const std::string series = wantsSeries ? " AND series.name = '" + SeriesName + "'" : "";

    auto rows = connection.read("SELECT" + top + columns + " where serialnumber='" + MeterSN + "'" +
                                recal + series + " ORDER BY ReCalID DESC");
    record.Source = inMeter;
    if (rows->recordCount() > 0) {
      readAdjustedSerialNumber(*rows, record);
      if (wantsSeries) setSeries(record, toInt32(rows->value("SeriesID")), SeriesName);
    } else {
      rows->close();
      rows = connection.read("SELECT" + top +
                             " ID, ReCalID from masterMeterList where serialnumber='" + MeterSN +
                             "'" + recal + " ORDER BY ReCalID DESC");
      record.Source = inMasterMeterList;
      if (rows->recordCount() == 0) {
        record.MeterID = -1;
        record.Source = nowhere;
        return;
      }
    }
    readMeter(*rows, MeterSN, record);
  });
  if (!found) record.Source = nowhere;
  return record;
}

MeterInfo FindLastCalID(const OperationContext& context, const std::string& MeterSN,
                        const ConnectionPtr& conn) {
  MeterInfo record;
  const bool found = context.trap("Error in RawData:LastCalID", [&] {
    const OperationConnection connection(context, conn);
    auto rows = connection.read(
        "SELECT TOP 1 ID, ReCalID, SerialNumberAdjusted from meter where serialnumber='" + MeterSN +
        "' ORDER BY ReCalID DESC");
    record.Source = inMeter;
    if (rows->recordCount() > 0) {
      readAdjustedSerialNumber(*rows, record);
    } else {
      rows->close();
      rows = connection.read("SELECT TOP 1 ID, ReCalID from masterMeterList where serialnumber='" +
                             MeterSN + "' ORDER BY ReCalID DESC");
      record.Source = inMasterMeterList;
      if (rows->recordCount() == 0) {
        record.Source = nowhere;
        return;
      }
    }
    readMeter(*rows, MeterSN, record);
  });
  if (!found) record.Source = nowhere;
  return record;
}

MeterInfo getSeriesID(const OperationContext& context, const std::string& SeriesName,
                      const std::string& MeterSN, const ConnectionPtr& conn, std::int16_t ReCalID) {
  MeterInfo record;
  const bool found = context.trap("Error in Misc:getSeriesID", [&] {
    const OperationConnection connection(context, conn);
    const bool latest = ReCalID == -1;
    const std::string from =
        " series.*, meter.recalid, meter.serialnumberadjusted from series left join meter on "
        "series.meterid=meter.id where series.name = '" +
        SeriesName + "' and meter.serialnumber='" + MeterSN + "'";
    auto rows =
        connection.read(latest ? "SELECT TOP 1" + from + " ORDER BY meter.recalid DESC"
                               : "SELECT" + from + " and meter.recalid=" + numberText(ReCalID));
    if (rows->recordCount() == 0) return;
    record.Series.resize(1);
    record.MeterID = toInt32(rows->value("meterid"));
    record.ReCalID = toInt16(rows->value("reCalID"));
    readAdjustedSerialNumber(*rows, record);
    setSeries(record, toInt32(rows->value("id")), SeriesName);
    record.SerialNumber = MeterSN;
  });
  if (!found) record.Source = nowhere;
  return record;
}

}  // namespace pelmora
