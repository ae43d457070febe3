// A fit whose curve is stored for the points that were fitted, and for no others.
// SPDX-License-Identifier: MIT
#pragma once

#include "apps/pelmora/command_change.h"
#include "apps/pelmora/trouble.h"

#include <functional>
#include <optional>
#include <string>

namespace pelmora::cli {

struct CheckedFit {
  calibration::Fit fit;
  bool isStored = false;
  bool changedMeanwhile = false;   // by another program during a first fit; this is the second
  std::optional<Trouble> trouble;  // no curve: why, and what would help
};

struct FitWish {
  calibration::FitSettings settings;
  bool isStrict = false;  // a curve with a warning counts as trouble and is not stored
};

// Shows the text, which says how the range and the points disagree, and returns the answer.
using RangeQuestion = std::function<calibration::RangePolicy(const std::string& text)>;

// Fits the series and stores its curve in place of the old one, which the history keeps. If no
// curve results, the old one stays. Nothing is final before change.finish().
//
// The fit holds nobody up, unless `change` has begun. If another program has changed the points
// when the lock is taken, the series of that name is fitted again as it is now, and
// `changedMeanwhile` says so. Nobody is asked about a range then: others would wait for the answer.
//
// ask: for settings that refuse a range beyond the points; empty: nobody is asked.
// Errors: Trouble and Failure, of the second fit too; nothing is stored then.
[[nodiscard]] CheckedFit fitSeries(CommandChange& change, const calibration::Meter& meter,
                                   const std::string& series, const FitWish& wish,
                                   const RangeQuestion& ask = {});

}  // namespace pelmora::cli
