// SPDX-License-Identifier: MIT
#include "base/date_text.h"
#include "base/number_text.h"
#include "component/stand_copy.h"
#include "store/field_value.h"
#include "component/operation_connection.h"
#include "store/reading.h"

namespace pelmora {
namespace {

// The id of the row that `select` finds, adding it with `insert` first where there is none.
std::int32_t findOrInsert(Connection& connection, const std::string& select,
                          const std::string& insert) {
  auto rows = readRows(connection, select);
  if (rows->recordCount() == 0) {
    connection.execute(insert);
    rows->requery();
  }
  return toInt32(rows->value("ID"));
}

}  // namespace

std::int32_t setCalSetup(const OperationContext& context, std::int32_t MeterID,
                         std::int16_t StandID, std::int16_t PositionID, std::string& OperatorName,
                         const std::string& FluidName, const ConnectionPtr& conn) {
  std::int32_t setupId = 0;
  context.trap("Error in RawData:setCalSetup", [&] {
    if (!conn) throw makeError(RunTimeError::noObject);
    OperationConnection connection(context, conn);
    auto setups = readRows(
        connection,
        "SELECT CalSetup.* FROM Fluids RIGHT JOIN CalSetup ON Fluids.ID = CalSetup.FluidID WHERE "
        "(((Fluids.Name)='" +
            FluidName + "') AND ((CalSetup.MeterID)=" + numberText(MeterID) + "));");
    if (setups->recordCount() < 1) {
      const std::int32_t fluidId =
          findOrInsert(connection, "Select * from fluids where name = '" + FluidName + "'",
                       "Insert into Fluids (Name) VALUES ('" + FluidName + "')");
      if (OperatorName.empty()) OperatorName = "Unknown";
      const std::int32_t operatorId =
          findOrInsert(connection, "Select * from Operator where name = '" + OperatorName + "'",
                       "Insert into Operator (Name) VALUES ('" + OperatorName + "')");
      connection.execute(
          "Insert into Calsetup (meterID,Stand,MeterPosition,OperatorID,FluidID,DateTaken) "
          "VALUES(" +
          numberText(MeterID) + "," + numberText(StandID) + "," + numberText(PositionID) + "," +
          numberText(operatorId) + "," + numberText(fluidId) + ",#" + todayText() + "#)");
      setups->requery();
    }
    setupId = toInt32(setups->value("ID"));
  });
  return setupId;
}

}  // namespace pelmora
