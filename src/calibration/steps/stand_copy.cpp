// SPDX-License-Identifier: MIT
#include "calibration/steps/stand_copy.h"

#include "base/number_text.h"
#include "base/run_time_error.h"
#include "store/lock_patience.h"

#include <pelmora/patience.h>

#include <algorithm>
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

// The driver waits for a lock before it says so, and meanwhile no message of the host is processed:
// here the copy waits in its place. Who has asked for more patience than a connection has by itself
// is taken at his word.
class BriefDriverWait {
 public:
  explicit BriefDriverWait(Connection& connection)
      : driver_(dynamic_cast<LockPatience*>(&connection)) {
    if (driver_ != nullptr && driver_->lockPatience() > Patience().limit) driver_ = nullptr;
    if (driver_ == nullptr) return;
    before_ = driver_->lockPatience();
    driver_->setLockPatience(std::min(before_, brief));
  }
  ~BriefDriverWait() {
    if (driver_ != nullptr) driver_->setLockPatience(before_);
  }
  BriefDriverWait(const BriefDriverWait&) = delete;
  BriefDriverWait& operator=(const BriefDriverWait&) = delete;

 private:
  static constexpr std::chrono::milliseconds brief{20};

  LockPatience* driver_;
  std::chrono::milliseconds before_{};
};

// Runs a step again and again while the database is locked by another user.
template <class Step>
void untilUnlocked(Connection& connection, const LockWait& wait, const Observer& observer,
                   Step&& step) {
  for (;;) {
    try {
      const BriefDriverWait brief(connection);
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
  untilUnlocked(connection, wait, observer, [&] {
    if (!connection.isOpen()) connection.open();
  });
}

void removeMeasurements(Connection& curves, std::int32_t CalSetupID, const LockWait& wait,
                        const Observer& observer) {
  untilUnlocked(curves, wait, observer, [&] {
    curves.execute("Delete * from CalDataPoint where CalDataPoint.calsetupid=" +
                   numberText(CalSetupID));
  });
  observer.breathe();
}

void copyMeasurements(Connection& stand, const StandJobs& jobs, const LockWait& wait,
                      const Observer& observer) {
  const auto copy = [&](const auto& statement, const std::string& job) {
    untilUnlocked(stand, wait, observer,
                  [&] { stand.execute(statement(jobs.CalSetupID, jobs.path(), job)); });
    observer.breathe();
  };
  copy(copyFirstJob, jobs.JobID_RawA);
  const bool secondJob =
      !jobs.JobID_RawB.empty() && jobs.JobID_RawB != "0" && jobs.JobID_RawB != jobs.JobID_RawA;
  if (secondJob) copy(copySecondJob, jobs.JobID_RawB);
}

}  // namespace pelmora::calibration::steps
