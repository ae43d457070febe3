// The reference curve that a trusted fit keeps, behind the opaque pointer of Trust.
// SPDX-License-Identifier: MIT
#pragma once

#include "solver/reference/reference_curve.h"

namespace pelmora::calibration {

struct TrustReference {
  solver::reference::ReferenceCurve curve;
};

}  // namespace pelmora::calibration
