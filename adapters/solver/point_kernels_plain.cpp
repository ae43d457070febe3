// The loops over all points for processors without wide registers.
// SPDX-License-Identifier: MIT
#include "adapters/solver/point_kernels.h"

#define PELMORA_LANE_WIDTH 2

namespace pelmora::solver {
namespace {
#include "adapters/solver/lanes.inc.h"
#include "adapters/solver/point_kernels.inc.h"
}  // namespace

const PointKernels& plainPointKernels() { return table; }

}  // namespace pelmora::solver
