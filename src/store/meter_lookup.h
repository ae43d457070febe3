// Finding a meter calibration and a series of it.
// SPDX-License-Identifier: MIT
#pragma once

#include "store/operation_context.h"

#include <pelmora/database.h>
#include <pelmora/types.h>

#include <cstdint>
#include <string>

namespace pelmora {

// An empty record with Source -1: what an operation returns that fails before its look-up.
[[nodiscard]] MeterInfo meterFoundNowhere();

// The calibration `ReCalID` of a meter (negative: the latest), and its series of that name where
// one is given. Looks in `meter`, then in `masterMeterList`.
//
// Result: Source 1, 2, or -1 with MeterID -1 where neither knows it. With a series name, a meter
//         without that series is looked up in `masterMeterList` too.
// Errors: shown; Source is then -1.
MeterInfo findMeterInfo(const OperationContext& context, const std::string& MeterSN,
                        const ConnectionPtr& conn, std::int16_t ReCalID,
                        const std::string& SeriesName);

// The latest calibration of a meter. A meter found nowhere has Source -1 and MeterID 0.
MeterInfo FindLastCalID(const OperationContext& context, const std::string& MeterSN,
                        const ConnectionPtr& conn);

// The series of a meter calibration; here only -1 means the latest. No series entry where there is
// none. Does not look in `masterMeterList`. Source is 0, after an error -1.
MeterInfo getSeriesID(const OperationContext& context, const std::string& SeriesName,
                      const std::string& MeterSN, const ConnectionPtr& conn, std::int16_t ReCalID);

}  // namespace pelmora
