// Adding calibrations and series of a meter, and deleting a series.
// SPDX-License-Identifier: MIT
#pragma once

#include "store/connection.h"
#include "store/name_text.h"

#include <pelmora/types.h>

#include <cstdint>
#include <string>

namespace pelmora {

// The recal number after the latest one that findLastCalID found, 0 for a new meter.
// Errors: Error 6 past 32767.
[[nodiscard]] std::int16_t nextReCalID(const MeterInfo& latest);

// Adds a calibration of a meter; returns its meter.ID.
[[nodiscard]] std::int32_t addCalibration(Connection& connection, const NameText& MeterSN,
                                          const std::string& MeterSNAdjusted, std::int16_t ReCalID);

// Finds the series of a meter by name, or adds it; returns its id.
[[nodiscard]] std::int32_t findOrAddSeriesRow(Connection& connection, const NameText& SeriesName,
                                              std::int32_t MeterID);

// Deletes the series row; its points and summary stay.
void deleteSeriesRow(Connection& connection, std::int32_t SeriesID);

}  // namespace pelmora
