// Lists that meters share: fluids, operators, the master list, viscosity laws, the laboratory.
// SPDX-License-Identifier: MIT
#pragma once

#include "calibration/copying/new_ids.h"
#include "store/connection.h"
#include "store/curve_schema.h"

#include <pelmora/calibration/proof.h>

#include <functional>
#include <string>
#include <vector>

namespace pelmora::calibration {

// A row as it is chosen: its id, 0 for a table without ids, and its name.
using ChoosesRow = std::function<bool(std::int64_t id, const std::string& name)>;

// Adds the chosen rows whose names the target does not have yet. Names compare without regard to
// case. `ids` gets the ids of all of them, new and old. A row of the target with the same name and
// another content stays and is listed.
[[nodiscard]] ProofTable copyNamedRows(Connection& from, Connection& to, const SchemaTable& table,
                                       const std::string& nameColumn, const ChoosesRow& isChosen,
                                       NewIds& ids, std::vector<ProofGap>& gaps);

}  // namespace pelmora::calibration
