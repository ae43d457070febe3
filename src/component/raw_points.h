// Raw points of a series: writing and reading them.
// SPDX-License-Identifier: MIT
#pragma once

#include "component/operation_context.h"

#include <pelmora/database.h>
#include <pelmora/types.h>

#include <cstdint>
#include <string>

namespace pelmora {

// Replaces the points of a series in the table "raw" + (dataSet + 1), making the series row where
// it is missing. With `cleardb` the old points go and no new ones come. True only when points were
// written.
bool SetRaw(const OperationContext& context, const std::string& SeriesName,
            const std::string& MeterSerialNumber, const PointArray& Table, std::int16_t dataSet,
            bool cleardb, std::int16_t ReCalID);

// Reads the table "raw" + dataSet (1 to 4) into that raw slot of the series found.
MeterInfo GetRaw(const OperationContext& context, const std::string& SeriesName,
                 const std::string& MeterSN, std::int16_t dataSet, const ConnectionPtr& conn,
                 std::int16_t ReCalID);

// All points of a series in one point table, in the order the database returns them.
PointArray getRSvalues(const OperationContext& context, const std::string& table,
                       std::int32_t SeriesID, const ConnectionPtr& conn);

}  // namespace pelmora
