// Waiting for a lock while stand data is copied.
// SPDX-License-Identifier: MIT
#include "calibration/steps/stand_copy.h"

#include "base/run_time_error.h"
#include "store/lock_patience.h"

#include <pelmora/patience.h>

#include <gtest/gtest.h>

#include <vector>

namespace pelmora::calibration::steps {
namespace {

using namespace std::chrono_literals;
using Waits = std::vector<std::chrono::milliseconds>;

// Locked for the first tries; notes how long the driver would have waited in each.
class LockedDatabase : public Connection, public LockPatience {
 public:
  LockedDatabase(int tries, std::chrono::milliseconds patience)
      : patience_(patience), tries_(tries) {}
  void open() override {}
  [[nodiscard]] bool isOpen() const override { return true; }
  void close() override {}
  void execute(const std::string&) override {
    waits.push_back(patience_);
    if (--tries_ >= 0) throw Error(genericFailure, "test", "locked");
  }
  [[nodiscard]] std::unique_ptr<Recordset> openRecordset(const std::string&, CursorType,
                                                         LockType) override {
    return nullptr;
  }
  [[nodiscard]] std::chrono::milliseconds lockPatience() const override { return patience_; }
  void setLockPatience(std::chrono::milliseconds limit) override { patience_ = limit; }

  Waits waits;

 private:
  std::chrono::milliseconds patience_;
  int tries_;
};

const LockWait wait{[] { return std::string("curves.db"); }};

TEST(stand_copy, leaves_the_waiting_to_the_host_and_not_to_the_driver) {
  LockedDatabase curves(2, Patience().limit);
  Waits atPumps;
  Observer observer;
  observer.onBreath = [&] { atPumps.push_back(curves.lockPatience()); };
  removeMeasurements(curves, 7, wait, observer);
  EXPECT_EQ(curves.waits, (Waits{20ms, 20ms, 20ms}));
  // What the host does with the connection meanwhile waits as it always has.
  for (const auto patience : atPumps) EXPECT_EQ(patience, Patience().limit);
  EXPECT_EQ(curves.lockPatience(), Patience().limit);
}

TEST(stand_copy, keeps_the_patience_that_a_caller_has_asked_for) {
  for (const auto patience : {5ms, 30'000ms}) {
    LockedDatabase curves(1, patience);
    removeMeasurements(curves, 7, wait);
    EXPECT_EQ(curves.waits, (Waits{patience, patience}));
  }
}

}  // namespace
}  // namespace pelmora::calibration::steps
