// The words of a fit, under the names that reports use.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/calibration/words.h>

namespace pelmora::report {

using calibration::hasSolution;
using calibration::rejection;
using calibration::verdictKey;
using calibration::verdictText;
using calibration::warningKey;

}  // namespace pelmora::report
