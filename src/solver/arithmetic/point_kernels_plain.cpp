// The loops over all points for processors without wide registers.
// SPDX-License-Identifier: MIT
#include "solver/arithmetic/double_double_functions.h"
#include "solver/arithmetic/point_kernels.h"

#define PELMORA_LANE_WIDTH 2

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

const PointKernels& plainPointKernels() { return table; }

}  // namespace pelmora::solver
