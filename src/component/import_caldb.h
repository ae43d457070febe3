// The import of a meter's calibration runs from a stand, up to its derived raw series.
// SPDX-License-Identifier: MIT
#pragma once

#include "component/operation_context.h"

#include <pelmora/database.h>
#include <pelmora/types.h>

#include <cstdint>
#include <string>
#include <vector>

namespace pelmora {

// The runs, element i of each list for run i, and what to derive from them.
struct CalibrationImport {
  std::string MeterSN;
  std::vector<std::string> JobID_RawA, JobID_RawB, FluidName, OperatorName;
  bool Create_RotorA = false, Create_RotorB = false, Create_RotorAB = false, Create_Ratio = false;
  std::int16_t StandID = -1, PositionID = -1, ReCalID = -1;
};

// Registers an unknown meter, copies each run's points and derives the wanted series from the
// meter's first four set-ups into Raw1 to Raw4. Nothing happens where the lists differ in length or
// are empty.
//
// Result: the meter with four series entries; SeriesID of those that were derived.
MeterInfo importCaldb(const OperationContext& context, const CalibrationImport& wanted,
                      const ConnectionPtr& conn_calDB, const ConnectionPtr& Conn_curveDB);

}  // namespace pelmora
