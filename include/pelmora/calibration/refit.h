// Fitting many stored series again, each with the settings of its curve.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/calibration/fit.h>
#include <pelmora/calibration/history.h>
#include <pelmora/calibration/observer.h>
#include <pelmora/calibration/values.h>

#include <cstddef>
#include <functional>
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
  kept = 1,        // within the threshold of the previous curve
  added = 2,       // there was no previous curve
  notFitted = 3,   // no curve, or a warning if `isStrict`: the previous curve is kept
  unusable = 4,    // it has no raw points to fit
  unreadable = 5,  // some of its data cannot be read
  gone = 6         // deleted while other series were fitted
};

struct RefitResult {
  RefitTask task;
  RefitResultKind kind = RefitResultKind::unusable;
  std::string equation;           // of the new curve
  double shiftPercent = 0;        // the largest shift from the previous curve, signed
  double shiftRoshko = 0;         // where it occurs
  std::string reason;             // why there is no new curve
  bool isStored = false;          // false for a curve identical to the previous one
  bool changedMeanwhile = false;  // by another program; this is the result of a second fit
};

struct RefitOptions {
  std::size_t threads = 1;
  double changedPercent = 0.01;  // threshold of RefitResultKind::changed
  std::size_t portion = 100;     // curves stored in one transaction
  bool isDryRun = false;         // nothing is stored
  SettingsChange change{};       // to the settings kept with each curve; kept with the new one
  bool isStrict = false;         // a curve with a warning is not stored
  // Called in the caller's thread whenever a portion has been stored, with the number of curves
  // that are stored so far.
  std::function<void(std::size_t curves)> portionStored{};
};

struct RefitOutcome {
  std::vector<RefitResult> results;  // in the order of the tasks
  bool isCancelled = false;          // some tasks were not started; what was stored stays stored
  std::vector<HistoryEntryId> kept;
};

}  // namespace pelmora::calibration
