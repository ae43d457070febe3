// SPDX-License-Identifier: MIT
#include "calibration/steps/set_up.h"

#include "base/date_text.h"
#include "base/number_text.h"
#include "store/field_value.h"
#include "store/reading.h"
#include "store/row_text.h"

namespace pelmora::calibration::steps {
namespace {

// The id of the row with that name, adding it first where there is none.
std::int32_t findOrInsert(Connection& connection, const std::string& select,
                          const std::string& insert) {
  auto rows = readRows(connection, select);
  if (rows->recordCount() == 0) {
    connection.execute(insert);
    rows->requery();
  }
  return toInt32(rows->value("ID"));
}

std::int32_t operatorID(Connection& connection, const NameText& OperatorName) {
  const std::string name = OperatorName.literal();
  return findOrInsert(connection, "Select * from Operator where name = " + name,
                      "Insert into Operator (Name) VALUES (" + name + ")");
}

}  // namespace

std::int32_t findOrAddSetUp(Connection& connection, const SetUp& setUp, NameText& OperatorName) {
  const std::string fluid = setUp.FluidName.literal();
  auto setups = readRows(
      connection,
      "SELECT CalSetup.* FROM Fluids RIGHT JOIN CalSetup ON Fluids.ID = CalSetup.FluidID WHERE "
      "(((Fluids.Name)=" +
          fluid + ") AND ((CalSetup.MeterID)=" + numberText(setUp.MeterID) + "));");
  if (setups->recordCount() < 1) {
    const std::int32_t fluidId =
        findOrInsert(connection, "Select * from fluids where name = " + fluid,
                     "Insert into Fluids (Name) VALUES (" + fluid + ")");
    if (OperatorName.empty()) OperatorName = NameText::quoted("Unknown");
    const std::int32_t operatorId = operatorID(connection, OperatorName);
    connection.execute(
        "Insert into Calsetup (meterID,Stand,MeterPosition,OperatorID,FluidID,DateTaken) VALUES(" +
        numberText(setUp.MeterID) + "," + numberText(setUp.StandID) + "," +
        numberText(setUp.PositionID) + "," + numberText(operatorId) + "," + numberText(fluidId) +
        ",#" + todayText() + "#)");
    setups->requery();
  }
  return toInt32(setups->value("ID"));
}

void changeSetUp(Connection& connection, std::int32_t setUpID, const SetUpEntries& entries) {
  std::string changes;
  const auto set = [&](const std::string& column, const std::string& value) {
    changes += (changes.empty() ? "" : ", ") + column + " = " + value;
  };
  if (!entries.OperatorName.empty())
    set("OperatorID", numberText(operatorID(connection, entries.OperatorName)));
  if (entries.StandID >= 0) set("Stand", numberText(entries.StandID));
  if (entries.PositionID >= 0) set("MeterPosition", numberText(entries.PositionID));
  if (!entries.DateTaken.empty()) set("DateTaken", "#" + entries.DateTaken + "#");
  if (changes.empty()) return;
  connection.execute("Update CalSetup Set " + changes + " where ID = " + numberText(setUpID));
}

std::vector<std::string> setUpsOf(Connection& connection, std::int32_t MeterID) {
  auto rows = readRows(connection, "Select ID from CalSetup where meterID=" + numberText(MeterID) +
                                       " ORDER BY stand, ID ASC");
  if (rows->recordCount() == 0) return {};
  return rowsAsTexts(*rows);
}

bool jobsOf(Connection& connection, const std::string& calSetupId, std::vector<std::string>& jobs) {
  auto rows = readRows(
      connection, "Select DISTINCT JobRecordID from CalDataPoint where CalSetupID=" + calSetupId +
                      " ORDER BY JobRecordID ASC");
  if (rows->recordCount() == 0) return false;
  jobs = rowsAsTexts(*rows);
  return true;
}

}  // namespace pelmora::calibration::steps
