// Fits many stored series again, each with the settings of its curve.
// SPDX-License-Identifier: MIT
#pragma once

#include "apps/pelmora/curve_session.h"
#include "apps/pelmora/series_fit.h"
#include "apps/pelmora/stored_change.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace pelmora::cli {

struct RefitTask {
  MeterInfo meter;
  std::string series;
  std::optional<Trouble> trouble;  // the meter's series cannot be listed
};

// What became of one series.
struct RefitResult {
  enum class Kind {
    changed,     // by more than the threshold
    kept,        // a curve within the threshold of the one before
    added,       // there was no curve before
    notFitted,   // no equation passed: the previous curve is kept
    unusable,    // no raw points to fit
    unreadable,  // something of it cannot be read
    gone         // deleted while others were fitted
  };
  RefitTask task;
  Kind kind = Kind::unusable;
  std::string equation;           // of the new curve
  double shiftPercent = 0;        // the largest one against the curve before, with its sign
  double shiftRoshko = 0;         // where
  std::string reason;             // without a new curve: why
  bool isStored = false;          // not for a curve that is point by point what was there
  bool changedMeanwhile = false;  // by another program: all of this is of a second fit
};

struct RefitRequest {
  std::vector<RefitTask> tasks;
  std::size_t threads = 1;
  double changedPercent = 0.01;  // threshold of RefitResult::Kind::changed
};

// The series of every calibration of every meter; of one meter or of named series where given.
[[nodiscard]] std::vector<RefitTask> refitTasks(CurveSession& session, const std::string& meter,
                                                std::int16_t reCalID,
                                                const std::vector<std::string>& series);

// In the order of the tasks. Curves are stored through `change`, each only for the points that were
// fitted, in portions, each final by itself:
// where the program is killed, the series of the portions before are done and the others as they
// were.
//
// Errors: Trouble database.
[[nodiscard]] std::vector<RefitResult> refitAll(StoredChange& change, const RefitRequest& request);

}  // namespace pelmora::cli
