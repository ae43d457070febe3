// Fitting many stored series again, each with the settings of its curve.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/calibration/history.h>
#include <pelmora/calibration/observer.h>
#include <pelmora/calibration/values.h>

#include <cstddef>
#include <string>
#include <vector>

namespace pelmora::calibration {

// A series to fit again.
struct RefitTask {
  Meter meter;
  std::string series;
};

enum class RefitResultKind {
  changed = 0,     // by more than the threshold
  kept = 1,        // a curve within the threshold of the one before
  added = 2,       // there was no curve before
  notFitted = 3,   // no equation passed: the previous curve is kept
  unusable = 4,    // it has no raw points to fit
  unreadable = 5,  // something of it cannot be read
  gone = 6         // deleted while others were fitted
};

struct RefitResult {
  RefitTask task;
  RefitResultKind kind = RefitResultKind::unusable;
  std::string equation;           // of the new curve
  double shiftPercent = 0;        // the largest one against the curve before, with its sign
  double shiftRoshko = 0;         // where
  std::string reason;             // without a new curve: why
  bool isStored = false;          // not for a curve that is point by point what was there
  bool changedMeanwhile = false;  // by another program: all of this is of a second fit
};

struct RefitOptions {
  std::size_t threads = 1;
  double changedPercent = 0.01;  // threshold of RefitResultKind::changed
  std::size_t portion = 100;     // curves that become final together
  bool isDryRun = false;         // nothing is stored
};

struct RefitOutcome {
  std::vector<RefitResult> results;  // in the order of the tasks
  bool isCancelled = false;          // some tasks were not begun; what was stored by then stays
  std::vector<HistoryEntryId> kept;
};

}  // namespace pelmora::calibration
