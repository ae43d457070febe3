// The settings of stored curves as rows of their table, for those who read or write many at once.
// SPDX-License-Identifier: MIT
#pragma once

#include "store/connection.h"

#include <pelmora/curve_settings.h>

#include <cstdint>
#include <vector>

namespace pelmora {

// The settings in the current row.
[[nodiscard]] CurveSettings settingsInRow(const Recordset& rows);

// Makes the table, its columns and its indexes where they are missing.
void createSettingsTable(const ConnectionPtr& curves);

// A value for each column of the table, in their order.
[[nodiscard]] std::vector<Value> rowOfSettings(std::int32_t SeriesID,
                                               const CurveSettings& settings);

}  // namespace pelmora
