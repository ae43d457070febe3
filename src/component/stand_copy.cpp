// SPDX-License-Identifier: MIT
#include "component/stand_copy.h"

#include "base/number_text.h"
#include "store/connection.h"

#include <chrono>
#include <thread>

namespace pelmora {
namespace {

constexpr const char* standColumns =
    "JobRecordID, V1, V2, V3, V4, V5, V6, V7, V8, V9, V10, V11, V12, V13, V14, V15, V16, V17, V18, "
    "V19, "
    "V20, V21, V22, V23, V24, V25, V26, V27, V28, V29, V30, V31, V32, V33, V34, V35, V36, V37 ";

std::string copyFirstJob(std::int32_t CalSetupID, const std::string& path, const std::string& job) {
  return std::string("INSERT INTO CalDataPoint ( CalSetupID, ") + standColumns + ") IN '" + path +
         "'SELECT " + numberText(CalSetupID) + " as CalSetupID, " + standColumns +
         "FROM DataPoint WHERE (((JobRecordID)=" + job + "));";
}

// Without a SELECT of its own in front of the set-up id: the engine refuses it. Hosts know that.
std::string copySecondJob(std::int32_t CalSetupID, const std::string& path,
                          const std::string& job) {
  return "INSERT INTO CalDataPoint IN '" + path + "' " + numberText(CalSetupID) +
         ", (Select * from DataPoint Where ((DataPoint.JobRecordID=" + job + ")));";
}

// Between two tries: too short for a window of the host to stand still, long enough to leave the
// processor to others where a driver answers at once.
constexpr std::chrono::milliseconds breath(5);

// Runs a step again and again while the database is locked by another user.
template <class Step>
void untilUnlocked(const OperationContext& context, Step&& step) {
  for (;;) {
    try {
      step();
      return;
    } catch (const Error& error) {
      if (error.number() != genericFailure) throw;
    }
    context.pumpMessages();
    context.raiseStatusUpdate("Waiting for database to unlock for copy of caldata (" +
                              context.shared().location.FileName + ")");
    context.pumpMessages();
    std::this_thread::sleep_for(breath);
  }
}

void openIfClosed(const OperationContext& context, Connection& connection) {
  untilUnlocked(context, [&] {
    if (!connection.isOpen()) connection.open();
  });
}

// After an error: a connection that this operation opened does not stay open.
void closeAgain(Connection& connection) {
  try {
    if (connection.isOpen()) connection.close();
  } catch (...) {  // the error that led here has been shown
  }
}

}  // namespace

bool copyCaldb(const OperationContext& context, std::int32_t CalSetupID,
               const std::string& JobID_RawA, const std::string& JobID_RawB,
               const ConnectionPtr& conn_calDB, const ConnectionPtr& Conn_curveDB) {
  bool openedStand = false;
  const bool copied = context.trap("Error in RawData:copyCaldb", [&] {
    const bool secondJob = !JobID_RawB.empty() && JobID_RawB != "0" && JobID_RawB != JobID_RawA;
    if (!Conn_curveDB) throw makeError(RunTimeError::noObject);
    openIfClosed(context, *Conn_curveDB);
    context.pumpMessages();
    untilUnlocked(context, [&] {
      Conn_curveDB->execute("Delete * from CalDataPoint where CalDataPoint.calsetupid=" +
                            numberText(CalSetupID));
    });
    context.pumpMessages();
    if (!conn_calDB) throw makeError(RunTimeError::noObject);
    openedStand = !conn_calDB->isOpen();
    openIfClosed(context, *conn_calDB);
    // Looked up at every try: the host may set another location while its messages are processed.
    const std::string& path = context.shared().location.FullPath;
    untilUnlocked(context,
                  [&] { conn_calDB->execute(copyFirstJob(CalSetupID, path, JobID_RawA)); });
    context.pumpMessages();
    if (secondJob) {
      untilUnlocked(context,
                    [&] { conn_calDB->execute(copySecondJob(CalSetupID, path, JobID_RawB)); });
      context.pumpMessages();
    }
    conn_calDB->close();
    context.pumpMessages();
  });
  if (!copied && openedStand) closeAgain(*conn_calDB);
  return copied;
}

}  // namespace pelmora
