// Damage of the file itself, and what it still holds.
// SPDX-License-Identifier: MIT
#pragma once

#include "store/integrity.h"
#include "store/salvage.h"

#include <pelmora/patience.h>

#include <string>
#include <vector>

namespace pelmora::doctor {

// What the engine finds damaged in the database at `path`, at most some hundred places, grouped. It
// comes before all other checks: those may stumble over damage.
//
// Errors: Error if the file is missing, locked or not a database at all.
[[nodiscard]] std::vector<IntegrityProblem> damageOf(const std::string& path,
                                                     const Patience& patience = {});

}  // namespace pelmora::doctor
