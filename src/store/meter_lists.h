// Lists for the host: meters, their calibrations, series and jobs.
// SPDX-License-Identifier: MIT
#pragma once

#include "store/operation_context.h"

#include <pelmora/types.h>

#include <cstdint>
#include <string>
#include <vector>

namespace pelmora {

// Serial number and name of every series of a meter calibration; of all meters where MeterSN is
// empty and a meter without a serial number exists. Empty where there is none.
ValueTable listSeries(const OperationContext& context, const std::string& MeterSN,
                      std::int16_t ReCalID);

// The adjusted serial numbers of all calibrations of a meter, the latest first, with their recal
// numbers. Without any, both lists stay as they are and ArrayIsEmpty is true.
std::vector<std::string> MetersAdjusted(const OperationContext& context, const std::string& MeterSN,
                                        bool& ArrayIsEmpty, std::vector<std::int16_t>& ReCalID);

// All serial numbers.
std::vector<std::string> Meters(const OperationContext& context, bool& ArrayIsEmpty);

// The stand's job identities of a meter calibration; for the latest one (negative ReCalID) the
// first job only.
std::vector<std::string> getJobID(const OperationContext& context, const std::string& MeterSN,
                                  std::int16_t ReCalID);

}  // namespace pelmora
