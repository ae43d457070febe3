// The runs of a calibration as a table.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/calibration/values.h>

#include <string>
#include <vector>

namespace pelmora::cli {

// One line for each run with its raw part.
[[nodiscard]] std::string runTable(const std::vector<calibration::Run>& runs);

}  // namespace pelmora::cli
