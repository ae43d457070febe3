// SPDX-License-Identifier: MIT
#include "store/meter_lookup.h"

#include "base/number_text.h"
#include "store/field_value.h"
#include "store/reading.h"

#include <string>

namespace pelmora {
namespace {

void readAdjustedSerialNumber(const Recordset& rows, MeterInfo& record) {
  const Value& adjusted = rows.value("serialnumberadjusted");
  if (!isNull(adjusted)) record.SerialNumberAdjusted = toText(adjusted);
}

void readMeter(const Recordset& rows, const NameText& MeterSN, MeterInfo& record) {
  record.MeterID = toInt32(rows.value("id"));
  record.ReCalID = toInt16(rows.value("ReCalID"));
  record.SerialNumber = MeterSN.name();
}

void setSeries(MeterInfo& record, std::int32_t SeriesID, const NameText& SeriesName) {
  record.Series.resize(1);
  record.Series.front().SeriesID = SeriesID;
  record.Series.front().SeriesName = SeriesName.name();
}

}  // namespace

MeterInfo meterFoundNowhere() {
  MeterInfo record;
  record.Source = meter_source::nowhere;
  return record;
}

void findMeterInfo(Connection& connection, const NameText& MeterSN, std::int16_t ReCalID,
                   const NameText& SeriesName, MeterInfo& into) {
  const bool latest = ReCalID < 0;
  const std::string top = latest ? " TOP 1" : "";
  const std::string recal = latest ? "" : " AND recalid=" + numberText(ReCalID);
  const bool wantsSeries = !SeriesName.empty();
  const std::string columns =
      wantsSeries ? " series.ID AS seriesID,meter.ID, meter.ReCalID, meter.SerialNumberAdjusted "
                    "from series left join meter on series.meterid=meter.id"
                  : " ID, ReCalID, SerialNumberAdjusted from meter";
  const std::string series = wantsSeries ? " AND series.name = " + SeriesName.literal() : "";

  auto rows =
      readRows(connection, "SELECT" + top + columns + " where serialnumber=" + MeterSN.literal() +
                               recal + series + " ORDER BY ReCalID DESC");
  into.Source = meter_source::meter;
  if (rows->recordCount() > 0) {
    readAdjustedSerialNumber(*rows, into);
    if (wantsSeries) setSeries(into, toInt32(rows->value("SeriesID")), SeriesName);
  } else {
    rows->close();
    rows = readRows(connection, "SELECT" + top +
                                    " ID, ReCalID from masterMeterList where serialnumber=" +
                                    MeterSN.literal() + recal + " ORDER BY ReCalID DESC");
    into.Source = meter_source::masterMeterList;
    if (rows->recordCount() == 0) {
      into.MeterID = -1;
      into.Source = meter_source::nowhere;
      return;
    }
  }
  readMeter(*rows, MeterSN, into);
}

void findLastCalID(Connection& connection, const NameText& MeterSN, MeterInfo& into) {
  auto rows = readRows(connection,
                       "SELECT TOP 1 ID, ReCalID, SerialNumberAdjusted from meter where "
                       "serialnumber=" +
                           MeterSN.literal() + " ORDER BY ReCalID DESC");
  into.Source = meter_source::meter;
  if (rows->recordCount() > 0) {
    readAdjustedSerialNumber(*rows, into);
  } else {
    rows->close();
    rows =
        readRows(connection, "SELECT TOP 1 ID, ReCalID from masterMeterList where serialnumber=" +
                                 MeterSN.literal() + " ORDER BY ReCalID DESC");
    into.Source = meter_source::masterMeterList;
    if (rows->recordCount() == 0) {
      into.Source = meter_source::nowhere;
      return;
    }
  }
  readMeter(*rows, MeterSN, into);
}

void findSeries(Connection& connection, const NameText& SeriesName, const NameText& MeterSN,
                std::int16_t ReCalID, MeterInfo& into) {
  const bool latest = ReCalID == -1;
  const std::string from =
      " series.*, meter.recalid, meter.serialnumberadjusted from series left join meter on "
      "series.meterid=meter.id where series.name = " +
      SeriesName.literal() + " and meter.serialnumber=" + MeterSN.literal();
  auto rows =
      readRows(connection, latest ? "SELECT TOP 1" + from + " ORDER BY meter.recalid DESC"
                                  : "SELECT" + from + " and meter.recalid=" + numberText(ReCalID));
  if (rows->recordCount() == 0) return;
  into.Series.resize(1);
  into.MeterID = toInt32(rows->value("meterid"));
  into.ReCalID = toInt16(rows->value("reCalID"));
  readAdjustedSerialNumber(*rows, into);
  setSeries(into, toInt32(rows->value("id")), SeriesName);
  into.SerialNumber = MeterSN.name();
}

}  // namespace pelmora
