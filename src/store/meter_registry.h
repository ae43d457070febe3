// Adding calibrations and series of a meter, and deleting a series.
// SPDX-License-Identifier: MIT
#pragma once

#include "store/connection.h"
#include "store/name_text.h"

#include <pelmora/types.h>

#include <cstdint>
#include <optional>
#include <string>

namespace pelmora {

// The recal number after the latest one that findLastCalID found, 0 for a new meter.
// Errors: Error 6 past 32767.
[[nodiscard]] std::int16_t nextReCalID(const MeterInfo& latest);

// Adds a calibration of a meter; returns its meter.ID.
[[nodiscard]] std::int32_t addCalibration(Connection& connection, const NameText& MeterSN,
                                          const std::string& MeterSNAdjusted, std::int16_t ReCalID);

// The same. Nothing is added or returned where another user has added the calibration of that
// number since it was looked up.
[[nodiscard]] std::optional<std::int32_t> addNewCalibration(Connection& connection,
                                                            const NameText& MeterSN,
                                                            const std::string& MeterSNAdjusted,
                                                            std::int16_t ReCalID);

// Finds the series of a meter by name, or adds it, and never a second one beside that of another
// user who adds it at the same time; returns its id.
[[nodiscard]] std::int32_t findOrAddSeriesRow(Connection& connection, const NameText& SeriesName,
                                              std::int32_t MeterID);

// Deletes the series row; its points and summary stay.
void deleteSeriesRow(Connection& connection, std::int32_t SeriesID);

}  // namespace pelmora
