// How far a curve has moved since an earlier calibration.
// SPDX-License-Identifier: MIT
#pragma once

#include "report/report_model.h"

namespace pelmora::report {

// 100 (now - earlier) / |earlier| over the range that both tables cover; see Comparison. `reCalID`
// and `date` are left to the caller.
[[nodiscard]] Comparison compareCurves(const PointArray& earlier, const PointArray& now);

}  // namespace pelmora::report
