// Copying a stand's measurements under a calibration set-up of the curve database.
// SPDX-License-Identifier: MIT
#pragma once

#include "component/operation_context.h"

#include <pelmora/database.h>

#include <cstdint>
#include <string>

namespace pelmora {

// Finds the set-up of a meter for a fluid, whatever its stand, position, operator and date. Adds
// it, and its fluid and operator rows, if there is none. Returns its id, 0 on failure.
//
// OperatorName becomes "Unknown" if it is empty and a set-up is added.
std::int32_t setCalSetup(const OperationContext& context, std::int32_t MeterID,
                         std::int16_t StandID, std::int16_t PositionID, std::string& OperatorName,
                         const std::string& FluidName, const ConnectionPtr& conn);

// Replaces the set-up's points by those of one or two jobs of the stand, by a statement that the
// stand's engine runs into the file at the shared location. Closes the stand's connection (after an
// error only where it was closed before), leaves the other open.
//
// A locked database is waited for without limit, with a status text per try.
// True when the copy ran to its end. A second job always ends in an error: its statement is not one
// that the engine accepts; the first job's points are copied by then.
bool copyCaldb(const OperationContext& context, std::int32_t CalSetupID,
               const std::string& JobID_RawA, const std::string& JobID_RawB,
               const ConnectionPtr& conn_calDB, const ConnectionPtr& Conn_curveDB);

}  // namespace pelmora
