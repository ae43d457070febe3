// One series of a refit: read and fitted, and stored where it is still what was fitted.
// SPDX-License-Identifier: MIT
#pragma once

#include "apps/pelmora/refit/refit_all.h"

#include <cstddef>
#include <cstdint>

namespace pelmora::cli {

// A result with what is to be stored.
struct RefitCurve {
  std::size_t index = 0;  // of the task
  RefitResult result;
  SeriesFit fit;            // without a curve where none came out
  bool isSame = false;      // curve, merged points and report are those that are stored
  std::uint64_t basis = 0;  // fingerprint of what was read: points, curve and settings

  [[nodiscard]] bool isToBeStored() const { return !fit.curve.empty() && !isSame; }
};

// Fits the series again with the settings of its curve and stores nothing. What is wrong with the
// series is its result's reason. The session should read of one moment.
//
// Errors: Trouble where the database cannot be used.
[[nodiscard]] RefitCurve fitTask(CurveSession& session, const RefitRequest& request,
                                 std::size_t index);

// Stores the curve through `change`, from whose begin() on nobody else can write. Where another
// program has changed the series, its curve or its settings since they were read, they are fitted
// again as they are now, and the result says so.
//
// Errors: Trouble database.
void storeTask(StoredChange& change, const RefitRequest& request, RefitCurve& curve);

}  // namespace pelmora::cli
