// The loops over all points for processors with AVX2 and FMA.
// SPDX-License-Identifier: MIT
#include "adapters/solver/double_double_functions.h"
#include "adapters/solver/point_kernels.h"

#if defined(__x86_64__) && defined(__GNUC__) && !defined(_WIN32)
#include <immintrin.h>

#pragma GCC target("avx2,fma")
#define PELMORA_LANE_WIDTH 4

namespace pelmora::solver {
namespace {
#include "adapters/solver/lanes.inc.h"
#include "adapters/solver/point_kernels.inc.h"
#include "adapters/solver/moment_kernels.inc.h"
#include "adapters/solver/triangle_kernels.inc.h"

const PointKernels table{dot,         scale,   subtractMultiple, sum,       squaresAbout, range,
                         logarithms,  moments, curve,            eliminate, nest,         chebyshevPowers};
}  // namespace

const PointKernels& avx2PointKernels() { return table; }

}  // namespace pelmora::solver
#endif
