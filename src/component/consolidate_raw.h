// Merging two raw parts of a series.
// SPDX-License-Identifier: MIT
#pragma once

#include "component/operation_context.h"

#include <pelmora/types.h>

#include <string>

namespace pelmora {

// Merges the points so far (A) with the next raw part (B): of the part that reaches further, the
// trailing points that disagree with the other part are cut; both are then joined and sorted by
// Roshko. With `bInverted` the comparison runs on negated Roshko values, with `ratioCurve` points
// at which Roshko rises with Strouhal are dropped.
//
// Both parts are sorted by Roshko and hold points. ArrayIsEmpty is true until the merge is
// complete. Errors: shown; the result has then no bounds.
PointArray consolidateRaw(const OperationContext& context, PointArray A, PointArray B,
                          bool& ArrayIsEmpty, bool bInverted, bool ratioCurve);

}  // namespace pelmora
