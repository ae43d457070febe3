// SPDX-License-Identifier: MIT
#include "store/meter_lists.h"

#include "base/number_text.h"
#include "store/field_value.h"
#include "store/reading.h"
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

ValueTable listSeries(Connection& connection, const NameText& MeterSN, std::int16_t ReCalID) {
  std::string statement =
      "Select distinct serialnumber, name from meter left join series on "
      "meter.id=series.meterid ";
  if (!MeterSN.empty()) {
    statement +=
        " where serialnumber = " + MeterSN.literal() + " and recalid =" + numberText(ReCalID);
  }
  auto rows = readRows(connection, statement);
  if (rows->recordCount() == 0) return {};
  const bool meterWithoutSeries = rows->recordCount() == 1 && isNull(rows->value(1));
  return meterWithoutSeries ? ValueTable() : allRows(*rows);
}

bool listCalibrations(Connection& connection, const NameText& MeterSN,
                      std::vector<std::int16_t>& ReCalID, std::vector<std::string>& adjusted) {
  auto rows =
      readRows(connection, "Select SerialNumberAdjusted, recalid from meter where SerialNumber = " +
                               MeterSN.literal() + " order by recalid desc");
  const auto count = static_cast<std::size_t>(rows->recordCount());
  if (count == 0) return false;
  ReCalID.assign(count, 0);
  adjusted.assign(count, {});
  for (std::size_t i = 0; i < count; ++i, rows->moveNext()) {
    ReCalID[i] = toInt16(rows->value("recalid"));
    adjusted[i] = toText(rows->value("serialnumberadjusted"));
  }
  return true;
}

bool listMeters(Connection& connection, std::vector<std::string>& meters) {
  auto rows = readRows(connection, "Select distinct serialnumber from meter");
  if (rows->recordCount() == 0) return false;
  meters = rowsAsTexts(*rows);
  return true;
}

void listJobs(Connection& connection, const NameText& MeterSN, std::int16_t ReCalID,
              std::vector<std::string>& jobs) {
  const bool latest = ReCalID < 0;
  auto rows = readRows(
      connection,
      std::string("SELECT") + (latest ? " TOP 1" : "") +
          " CalDatapoint.JobRecordID FROM (Meter LEFT JOIN CalSetup ON Meter.ID = "
          "CalSetup.MeterID) LEFT JOIN CalDatapoint ON CalSetup.ID = CalDatapoint.CalSetupID "
          "WHERE Meter.SerialNumber=" +
          MeterSN.literal() + " " + (latest ? "" : " AND recalid=" + numberText(ReCalID)) +
          " ORDER BY ReCalID DESC");
  jobs.assign(static_cast<std::size_t>(rows->recordCount()), {});
  for (std::string& job : jobs) {
    job = toText(rows->value("JobRecordID"));
    rows->moveNext();
  }
}

}  // namespace pelmora
