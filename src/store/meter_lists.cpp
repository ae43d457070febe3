// SPDX-License-Identifier: MIT
#include "store/meter_lists.h"

#include "base/number_text.h"
#include "store/field_value.h"
#include "store/meter_lookup.h"
#include "store/operation_connection.h"
#include "store/row_text.h"

namespace pelmora {
namespace {

ValueTable allRows(Recordset& rows) {
  ValueTable table(rows.fieldCount(), static_cast<std::size_t>(rows.recordCount()));
  for (std::size_t row = 0; !rows.atEnd(); ++row, rows.moveNext()) {
    for (std::size_t column = 0; column < table.columns(); ++column) {
      table(column, row) = rows.value(column);
    }
  }
  return table;
}

}  // namespace

ValueTable listSeries(const OperationContext& context, const std::string& MeterSN,
                      std::int16_t ReCalID) {
  ValueTable table;
  context.trap("Error in RawData:series", [&] {
    const OperationConnection connection(context, nullptr);
    const MeterInfo meter = findMeterInfo(context, MeterSN, connection.pointer(), ReCalID, "");
    if (meter.Source != 1) return;
    std::string statement =
        "Select distinct serialnumber, name from meter left join series on "
        "meter.id=series.meterid ";
    if (!MeterSN.empty()) {
      statement +=
          " where serialnumber = '" + MeterSN + "' and recalid =" + numberText(meter.ReCalID);
    }
    auto rows = connection.read(statement);
    if (rows->recordCount() == 0) return;
    const bool meterWithoutSeries = rows->recordCount() == 1 && isNull(rows->value(1));
    if (!meterWithoutSeries) table = allRows(*rows);
  });
  return table;
}

std::vector<std::string> MetersAdjusted(const OperationContext& context, const std::string& MeterSN,
                                        bool& ArrayIsEmpty, std::vector<std::int16_t>& ReCalID) {
  std::vector<std::string> adjusted;
  context.trap("Error in RawData:meters", [&] {
    ArrayIsEmpty = true;
    const OperationConnection connection(context, nullptr);
    auto rows =
        connection.read("Select SerialNumberAdjusted, recalid from meter where SerialNumber = '" +
                        MeterSN + "' order by recalid desc");
    const auto count = static_cast<std::size_t>(rows->recordCount());
    if (count == 0) return;
    ReCalID.assign(count, 0);
    adjusted.assign(count, {});
    for (std::size_t i = 0; i < count; ++i, rows->moveNext()) {
      ReCalID[i] = toInt16(rows->value("recalid"));
      adjusted[i] = toText(rows->value("serialnumberadjusted"));
    }
    ArrayIsEmpty = false;
  });
  return adjusted;
}

std::vector<std::string> Meters(const OperationContext& context, bool& ArrayIsEmpty) {
  std::vector<std::string> meters;
  context.trap("Error in RawData:meters", [&] {
    ArrayIsEmpty = true;
    const OperationConnection connection(context, nullptr);
    auto rows = connection.read("Select distinct serialnumber from meter");
    if (rows->recordCount() == 0) return;
    meters = rowsAsTexts(*rows);
    ArrayIsEmpty = false;
  });
  return meters;
}

std::vector<std::string> getJobID(const OperationContext& context, const std::string& MeterSN,
                                  std::int16_t ReCalID) {
  std::vector<std::string> jobs;
  context.trap("Error in RawData:getJobID", [&] {
    const OperationConnection connection(context, nullptr);
    const bool latest = ReCalID < 0;
    auto rows = connection.read(
        std::string("SELECT") + (latest ? " TOP 1" : "") +
        " CalDatapoint.JobRecordID FROM (Meter LEFT JOIN CalSetup ON Meter.ID = CalSetup.MeterID) "
        "LEFT "
        "JOIN CalDatapoint ON CalSetup.ID = CalDatapoint.CalSetupID WHERE Meter.SerialNumber='" +
        MeterSN + "' " + (latest ? "" : " AND recalid=" + numberText(ReCalID)) +
        " ORDER BY ReCalID DESC");
    jobs.assign(static_cast<std::size_t>(rows->recordCount()), {});
    for (std::string& job : jobs) {
      job = toText(rows->value("JobRecordID"));
      rows->moveNext();
    }
  });
  return jobs;
}

}  // namespace pelmora
