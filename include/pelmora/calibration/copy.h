// Copying curves from one curve database to another, whatever keeps them, with a proof.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/calibration/database.h>
#include <pelmora/calibration/observer.h>
#include <pelmora/calibration/proof.h>
#include <pelmora/export.h>

#include <cstddef>
#include <string>
#include <vector>

namespace pelmora::calibration {

struct CopyOptions {
  // Serial numbers: all calibrations of these meters. Empty: the whole curve database.
  std::vector<std::string> meters{};
  // Rows get new ids in the target, which may hold other curves. Otherwise every row keeps its id.
  bool newIds = false;
  // Series stored in one transaction. 0: the copy is one transaction. With portions, a copy that
  // was interrupted continues when it is started again. For a whole curve database with its ids.
  std::size_t portion = 0;
  OpenOptions open{};  // of the target
};

// Copies from the curve database at `from`, which is only read, to the one at `to`. If `to` names a
// file that does not exist, a curve database is created.
//
// A whole copy that keeps ids needs an empty curve database, and takes the history along. Other
// copies add to what the target holds: fluids, operators, meters of the master list and viscosity
// laws that it already has, by name, are not added again, and the history stays behind.
//
// Rows and values that cannot be copied are left out and listed in the result; everything else is
// copied. Tables that are not part of a curve database, such as a host's own, are not copied.
//
// Errors: NotFound for `from`, or for a meter; Exists if the target has rows in the way; BadData
//         for options that contradict each other; Unusable, Damaged, Locked; Cancelled. Nothing is
//         stored then, except the finished portions.
PELMORA_API ProofSheet copyCurves(const std::string& from, const std::string& to,
                                  const CopyOptions& options = {}, const Observer& observer = {});

}  // namespace pelmora::calibration
