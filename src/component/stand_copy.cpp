// SPDX-License-Identifier: MIT
#include "component/stand_copy.h"

#include "calibration/steps/set_up.h"
#include "calibration/steps/stand_copy.h"
#include "component/operation_connection.h"

namespace pelmora {
namespace {

// After an error: a connection that this operation opened does not stay open.
void closeAgain(Connection& connection) {
  try {
    if (connection.isOpen()) connection.close();
  } catch (...) {  // the error that led here has been shown
  }
}

}  // namespace

std::int32_t setCalSetup(const OperationContext& context, std::int32_t MeterID,
                         std::int16_t StandID, std::int16_t PositionID, std::string& OperatorName,
                         const std::string& FluidName, const ConnectionPtr& conn) {
  std::int32_t setupId = 0;
  NameText operatorName = NameText::spliced(OperatorName);
  context.trap("Error in RawData:setCalSetup", [&] {
    if (!conn) throw makeError(RunTimeError::noObject);
    OperationConnection connection(context, conn);
    setupId = findOrAddSetUp(
        connection, steps::SetUp{MeterID, StandID, PositionID, NameText::spliced(FluidName)},
        operatorName);
  });
  OperatorName = operatorName.name();
  return setupId;
}

bool copyCaldb(const OperationContext& context, std::int32_t CalSetupID,
               const std::string& JobID_RawA, const std::string& JobID_RawB,
               const ConnectionPtr& conn_calDB, const ConnectionPtr& Conn_curveDB) {
  const steps::Observer observer = context.observer();
  const DatabaseLocation& location = context.shared().location;
  const steps::LockWait wait{[&location] { return location.FileName; }};
  // Looked up at every try: the host may set another location while its messages are processed.
  const auto path = [&location] { return NameText::spliced(location.FullPath); };
  bool openedStand = false;
  const bool copied = context.trap("Error in RawData:copyCaldb", [&] {
    if (!Conn_curveDB) throw makeError(RunTimeError::noObject);
    openUnlocked(*Conn_curveDB, wait, observer);
    context.pumpMessages();
    removeMeasurements(*Conn_curveDB, CalSetupID, wait, observer);
    if (!conn_calDB) throw makeError(RunTimeError::noObject);
    openedStand = !conn_calDB->isOpen();
    openUnlocked(*conn_calDB, wait, observer);
    copyMeasurements(*conn_calDB, {CalSetupID, JobID_RawA, JobID_RawB, path}, wait, observer);
    conn_calDB->close();
    context.pumpMessages();
  });
  if (!copied && openedStand) closeAgain(*conn_calDB);
  return copied;
}

}  // namespace pelmora
