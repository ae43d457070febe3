// The row of a series in the table `series`.
// SPDX-License-Identifier: MIT
#pragma once

#include "store/operation_connection.h"

#include <cstdint>
#include <string>

namespace pelmora {

// Finds the series of a meter by name, or adds it; returns its id.
std::int32_t findOrAddSeriesRow(const OperationConnection& connection,
                                const std::string& SeriesName, std::int32_t MeterID);

}  // namespace pelmora
