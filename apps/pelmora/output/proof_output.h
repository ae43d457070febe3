// The proof sheet of a copied database, for people and as JSON.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/calibration/import_access.h>

#include <nlohmann/json_fwd.hpp>

#include <string>

namespace pelmora::cli {

[[nodiscard]] std::string proofText(const calibration::ProofSheet& sheet);
[[nodiscard]] nlohmann::json proofJson(const calibration::ProofSheet& sheet);

}  // namespace pelmora::cli
