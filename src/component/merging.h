// Merging two raw parts of a series, as hosts know it.
// SPDX-License-Identifier: MIT
#pragma once

#include "calibration/steps/merge_parts.h"
#include "component/operation_context.h"

#include <pelmora/types.h>

namespace pelmora {

// mergeParts of <calibration/steps/merge_parts.h> under its trap.
//
// ArrayIsEmpty is true until the merge is complete. Errors: shown; the result has then no bounds.
steps::MergedPoints consolidateParts(const OperationContext& context, steps::MergedPoints A,
                                     steps::MergedPoints B, bool& ArrayIsEmpty, bool bInverted,
                                     bool ratioCurve);

// The same for points alone.
PointArray consolidateRaw(const OperationContext& context, PointArray A, PointArray B,
                          bool& ArrayIsEmpty, bool bInverted, bool ratioCurve);

}  // namespace pelmora
