// The loops over all points for processors with AVX2 and FMA.
// SPDX-License-Identifier: MIT
#include "solver/arithmetic/double_double_functions.h"
#include "solver/arithmetic/point_kernels.h"

#ifdef PELMORA_HAS_WIDE_KERNELS
#include <immintrin.h>

#pragma GCC target("avx2,fma")
#define PELMORA_LANE_WIDTH 4

namespace pelmora::solver {
namespace {
#include "solver/arithmetic/lanes.inc.h"
#include "solver/arithmetic/point_kernels.inc.h"
#include "solver/arithmetic/moment_kernels.inc.h"
#include "solver/arithmetic/triangle_kernels.inc.h"

const PointKernels table{dot,   scale,      subtractMultiple, sum,   squaresAbout,
                         range, logarithms, moments,          curve, eliminate,
                         nest,  covariance, chebyshevPowers};
}  // namespace

const PointKernels& avx2PointKernels() { return table; }

}  // namespace pelmora::solver
#endif
