// Kept rows and their entries as tables and as JSON.
// SPDX-License-Identifier: MIT
#pragma once

#include "apps/pelmora/output/text_table.h"

#include <pelmora/calibration/history.h>

#include <nlohmann/json_fwd.hpp>

#include <cstddef>
#include <map>
#include <string>
#include <vector>

namespace pelmora::cli {

// Rows by table, of a removal or an entry.
using RowCounts = std::map<std::string, std::size_t>;

struct NamedCount {
  std::string name;  // for people: "raw part 1", "curve points" ...
  std::size_t rows = 0;
};
// In the order in which a reader expects them.
[[nodiscard]] std::vector<NamedCount> namedCounts(const RowCounts& rows);
// In JSON, where names are never changed: "raw1", "curve" ...
[[nodiscard]] nlohmann::json countsJson(const RowCounts& rows);

// A table of entries, and an entry as its row.
[[nodiscard]] std::vector<TextColumn> entryColumns();
[[nodiscard]] std::vector<std::string> entryCells(const calibration::HistoryEntry& entry);
[[nodiscard]] std::string entriesTable(const std::vector<calibration::HistoryEntry>& entries);
[[nodiscard]] nlohmann::json entryJson(const calibration::HistoryEntry& entry);
[[nodiscard]] nlohmann::json entriesJson(const std::vector<calibration::HistoryEntry>& entries);

// "series 'Rotor A' of meter M1, calibration 0", "meter M1, calibration 0"
[[nodiscard]] std::string placeText(const std::string& serial, int calibration,
                                    const std::string& series);

[[nodiscard]] std::string restoredTable(const calibration::Restored& restored);
[[nodiscard]] nlohmann::json restoredJson(const calibration::Restored& restored);

}  // namespace pelmora::cli
