// SPDX-License-Identifier: MIT
#include "calibration/steps/stand_copy.h"

#include "base/number_text.h"
#include "base/run_time_error.h"

#include <chrono>
#include <thread>

namespace pelmora::calibration::steps {
namespace {

constexpr const char* standColumns =
    "JobRecordID, V1, V2, V3, V4, V5, V6, V7, V8, V9, V10, V11, V12, V13, V14, V15, V16, V17, V18, "
    "V19, "
    "V20, V21, V22, V23, V24, V25, V26, V27, V28, V29, V30, V31, V32, V33, V34, V35, V36, V37 ";

std::string copyFirstJob(std::int32_t CalSetupID, const NameText& path, const std::string& job) {
  return std::string("INSERT INTO CalDataPoint ( CalSetupID, ") + standColumns + ") IN " +
         path.literal() + "SELECT " + numberText(CalSetupID) + " as CalSetupID, " + standColumns +
         "FROM DataPoint WHERE (((JobRecordID)=" + job + "));";
}

// Without a SELECT of its own in front of the set-up id: the engine refuses it. Hosts know that.
std::string copySecondJob(std::int32_t CalSetupID, const NameText& path, const std::string& job) {
  return "INSERT INTO CalDataPoint IN " + path.literal() + " " + numberText(CalSetupID) +
         ", (Select * from DataPoint Where ((DataPoint.JobRecordID=" + job + ")));";
}

// Between two tries: too short for a window of the host to stand still, long enough to leave the
// processor to others where a driver answers at once.
constexpr std::chrono::milliseconds breath(5);

// Runs a step again and again while the database is locked by another user.
template <class Step>
void untilUnlocked(const LockWait& wait, const Observer& observer, Step&& step) {
  for (;;) {
    try {
      step();
      return;
    } catch (const Error& error) {
      if (error.number() != genericFailure) throw;
      if (wait.mayGoOn && !wait.mayGoOn()) throw;
    }
    observer.breathe();
    observer.status("Waiting for database to unlock for copy of caldata (" + wait.fileName() + ")");
    observer.breathe();
    std::this_thread::sleep_for(breath);
  }
}

}  // namespace

void openUnlocked(Connection& connection, const LockWait& wait, const Observer& observer) {
  untilUnlocked(wait, observer, [&] {
    if (!connection.isOpen()) connection.open();
  });
}

void removeMeasurements(Connection& curves, std::int32_t CalSetupID, const LockWait& wait,
                        const Observer& observer) {
  untilUnlocked(wait, observer, [&] {
    curves.execute("Delete * from CalDataPoint where CalDataPoint.calsetupid=" +
                   numberText(CalSetupID));
  });
  observer.breathe();
}

void copyMeasurements(Connection& stand, const StandJobs& jobs, const LockWait& wait,
                      const Observer& observer) {
  const auto copy = [&](const auto& statement, const std::string& job) {
    untilUnlocked(wait, observer,
                  [&] { stand.execute(statement(jobs.CalSetupID, jobs.path(), job)); });
    observer.breathe();
  };
  copy(copyFirstJob, jobs.JobID_RawA);
  const bool secondJob =
      !jobs.JobID_RawB.empty() && jobs.JobID_RawB != "0" && jobs.JobID_RawB != jobs.JobID_RawA;
  if (secondJob) copy(copySecondJob, jobs.JobID_RawB);
}

}  // namespace pelmora::calibration::steps
