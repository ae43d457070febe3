// The hosts' look-ups, lists and registry: meters, their calibrations, series and jobs.
// SPDX-License-Identifier: MIT
#pragma once

#include "component/operation_context.h"

#include <pelmora/database.h>
#include <pelmora/types.h>

#include <cstdint>
#include <string>
#include <vector>

namespace pelmora {

// findMeterInfo of <store/meter_lookup.h>. Errors: shown; Source is then -1.
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

// Serial number and name of every series of a meter calibration; of all meters where MeterSN is
// empty and a meter without a serial number exists. Empty if there is none.
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

// Adds the next calibration of a meter: the recal number after the latest one, 0 for a new meter.
// An empty MeterSNAdjusted becomes the serial number. Returns the new meter.ID, 0 on failure.
std::int32_t setMeterSN(const OperationContext& context, const std::string& MeterSerialNumber,
                        std::string& MeterSNAdjusted);

// Deletes the series row; its points and summary stay. False if there is no such series.
bool DeleteSeries(const OperationContext& context, const std::string& MeterSN,
                  const std::string& Series, std::int16_t ReCalID);

}  // namespace pelmora
