// Registering a meter calibration and deleting a series.
// SPDX-License-Identifier: MIT
#pragma once

#include "store/operation_context.h"

#include <cstdint>
#include <string>

namespace pelmora {

// Adds the next calibration of a meter: the recal number after the latest one, 0 for a new meter.
// An empty MeterSNAdjusted becomes the serial number. Returns the new meter.ID, 0 on failure.
std::int32_t setMeterSN(const OperationContext& context, const std::string& MeterSerialNumber,
                        std::string& MeterSNAdjusted);

// Deletes the series row; its points and summary stay. False where there is no such series.
bool DeleteSeries(const OperationContext& context, const std::string& MeterSN,
                  const std::string& Series, std::int16_t ReCalID);

}  // namespace pelmora
