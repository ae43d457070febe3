// Lists of meters, their calibrations, series and jobs.
// SPDX-License-Identifier: MIT
#pragma once

#include "store/connection.h"
#include "store/name_text.h"

#include <pelmora/types.h>

#include <cstdint>
#include <string>
#include <vector>

namespace pelmora {

// Serial number and name of every series of that very calibration; of all meters where MeterSN is
// empty. Empty if there is none.
[[nodiscard]] ValueTable listSeries(Connection& connection, const NameText& MeterSN,
                                    std::int16_t ReCalID);

// The recal numbers of all calibrations of a meter, the latest first, with the adjusted serial
// numbers. False without any: both lists stay as they are then. Where it throws, they hold what was
// read.
bool listCalibrations(Connection& connection, const NameText& MeterSN,
                      std::vector<std::int16_t>& ReCalID, std::vector<std::string>& adjusted);

// All serial numbers. False where the table has no row; `meters` stays as it is then.
bool listMeters(Connection& connection, std::vector<std::string>& meters);

// The stand's job identities of a meter calibration; for the latest one (negative ReCalID) the
// first job only. Where it throws, `jobs` holds what was read.
void listJobs(Connection& connection, const NameText& MeterSN, std::int16_t ReCalID,
              std::vector<std::string>& jobs);

}  // namespace pelmora
