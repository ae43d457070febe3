// The loops over all points for processors with AVX-512.
// SPDX-License-Identifier: MIT
#include "solver/arithmetic/double_double_functions.h"
#include "solver/arithmetic/point_kernels.h"

#ifdef PELMORA_HAS_WIDE_KERNELS
#include <immintrin.h>

#pragma GCC target("avx2,fma,avx512f,avx512dq,avx512vl")
#define PELMORA_LANE_WIDTH 8

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

const PointKernels& avx512PointKernels() { return table; }

}  // namespace pelmora::solver
#endif
