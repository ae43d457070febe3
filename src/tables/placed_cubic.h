// Knots for cubic reading.
// SPDX-License-Identifier: MIT
#pragma once

#include "tables/sampled_curve.h"

#include <cstddef>
#include <vector>

namespace pelmora::tables {

// Places of `points` knots among the samples, both ends included. A cubic's error grows with the
// fourth power of a segment's length, so knots go where the fourth root of the error is spread
// evenly, again and again; the best placing on the way is returned.
//
// Source: de Boor: Good approximation by splines with variable knots. II, Lecture Notes in
//         Mathematics 363 (1974) 12-20, the redistribution.
[[nodiscard]] std::vector<double> placeForCubic(const SampledCurve& curve, std::size_t points);

}  // namespace pelmora::tables
