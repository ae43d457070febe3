// Kept rows and their entries as tables and as JSON.
// SPDX-License-Identifier: MIT
#pragma once

#include "history/deleting.h"
#include "history/entries.h"
#include "history/restoring.h"

#include <nlohmann/json_fwd.hpp>

#include <string>
#include <vector>

namespace pelmora::cli {

// What the rows of a given table are: "raw part 1", "curve points" ...
[[nodiscard]] std::string rowsName(const std::string& table);
// The same in JSON, where names are never changed: "raw1", "curve" ...
[[nodiscard]] std::string rowsKey(const std::string& table);

[[nodiscard]] std::string entriesTable(const std::vector<history::Entry>& entries);
[[nodiscard]] nlohmann::json entryJson(const history::Entry& entry);

// "series 'Rotor A' of meter M1, calibration 0", "meter M1, calibration 0"
[[nodiscard]] std::string placeText(const std::string& serialNumber, int reCalID,
                                    const std::string& seriesName);

[[nodiscard]] std::string restoredTable(const history::RestoreOutcome& outcome);
[[nodiscard]] nlohmann::json restoredJson(const history::RestoreOutcome& outcome);

}  // namespace pelmora::cli
