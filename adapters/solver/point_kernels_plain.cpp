// The loops over all points for processors without wide registers.
// SPDX-License-Identifier: MIT
#include "adapters/solver/double_double_functions.h"
#include "adapters/solver/point_kernels.h"

#define PELMORA_LANE_WIDTH 2

namespace pelmora::solver {
namespace {
#include "adapters/solver/lanes.inc.h"
#include "adapters/solver/point_kernels.inc.h"
#include "adapters/solver/moment_kernels.inc.h"
#include "adapters/solver/triangle_kernels.inc.h"

const PointKernels table{dot,         scale,   subtractMultiple, sum,       squaresAbout, range,
                         logarithms,  moments, curve,            eliminate, nest,         chebyshevPowers};
}  // namespace

const PointKernels& plainPointKernels() { return table; }

}  // namespace pelmora::solver
