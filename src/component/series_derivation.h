// The derived series of an import, each under the trap that carries its name.
// SPDX-License-Identifier: MIT
#pragma once

#include "calibration/steps/derivation.h"
#include "component/operation_context.h"

#include <pelmora/database.h>
#include <pelmora/types.h>

#include <string>
#include <vector>

namespace pelmora {

// Where a derivation reads and writes: see steps::DerivationSource.
struct DerivationTarget {
  ConnectionPtr connection;
  std::string table;
  std::string calSetupId;
  std::vector<std::string> jobs;
};

// Each derives its series (entry 0, 1, 2, 3 of meter.Series) and leaves the series' id in the
// entry. Errors: shown; the import goes on with the next series.
void SeriesViaCaldb_RotorA(const OperationContext& context, const DerivationTarget& target,
                           MeterInfo& meter);
void SeriesViaCaldb_RotorB(const OperationContext& context, const DerivationTarget& target,
                           MeterInfo& meter);
void SeriesViaCaldb_SumAB(const OperationContext& context, const DerivationTarget& target,
                          MeterInfo& meter);
void SeriesViaCaldb_Ratio(const OperationContext& context, const DerivationTarget& target,
                          MeterInfo& meter);

}  // namespace pelmora
