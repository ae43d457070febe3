// What an examination has found, under the names of this folder.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/calibration/examination.h>

namespace pelmora::doctor {

using calibration::Finding;
using calibration::Severity;

}  // namespace pelmora::doctor
