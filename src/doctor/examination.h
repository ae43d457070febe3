// The examination of a curve database.
// SPDX-License-Identifier: MIT
#pragma once

#include "doctor/finding.h"

#include <pelmora/database.h>

#include <vector>

namespace pelmora::doctor {

// All that the checks find, what is worst first; empty if all is well. Changes nothing.
//
// Errors: Error if the database cannot be read or lacks a given table.
[[nodiscard]] std::vector<Finding> examine(const ConnectionPtr& curves);

}  // namespace pelmora::doctor
