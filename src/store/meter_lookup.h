// Finding a meter calibration and a series of it.
// SPDX-License-Identifier: MIT
#pragma once

#include "store/connection.h"
#include "store/name_text.h"

#include <pelmora/types.h>

#include <cstdint>

namespace pelmora {

// Where a look-up found its meter: MeterInfo::Source.
namespace meter_source {
inline constexpr std::int32_t meter = 1, masterMeterList = 2, nowhere = -1;
}

// An empty record with Source -1: what an operation returns that fails before its look-up.
[[nodiscard]] MeterInfo meterFoundNowhere();

// Each fills `into`, a fresh record, as far as it gets: where it throws, what was read stays.

// The calibration `ReCalID` of a meter (negative: the latest), and its series of that name unless
// the name is empty. Looks in `meter`, then in `masterMeterList`.
//
// Result: Source 1, 2, or -1 with MeterID -1 where neither knows it. With a series name, a meter
//         without that series is looked up in `masterMeterList` too.
void findMeterInfo(Connection& connection, const NameText& MeterSN, std::int16_t ReCalID,
                   const NameText& SeriesName, MeterInfo& into);

// The latest calibration of a meter. A meter found nowhere has Source -1 and MeterID 0.
void findLastCalID(Connection& connection, const NameText& MeterSN, MeterInfo& into);

// The series of a meter calibration; here only -1 means the latest. No series entry where there is
// none. Does not look in `masterMeterList`. Source stays 0.
void findSeries(Connection& connection, const NameText& SeriesName, const NameText& MeterSN,
                std::int16_t ReCalID, MeterInfo& into);

}  // namespace pelmora
