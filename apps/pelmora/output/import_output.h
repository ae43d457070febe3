// What an import has done, as tables and as JSON.
// SPDX-License-Identifier: MIT
#pragma once

#include "apps/pelmora/import_runs.h"

#include <nlohmann/json_fwd.hpp>

#include <string>

namespace pelmora::cli {

// The meter and its database; one line for each run with its raw part, and one for each derived
// series.
[[nodiscard]] std::string importText(const std::string& database, const ImportOutcome& outcome);
[[nodiscard]] nlohmann::json importJson(const ImportOutcome& outcome);

}  // namespace pelmora::cli
