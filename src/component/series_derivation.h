// Roshko and Strouhal series from the stand's measurements, computed inside the database.
// SPDX-License-Identifier: MIT
#pragma once

#include "component/operation_context.h"

#include <pelmora/database.h>
#include <pelmora/types.h>

#include <string>
#include <vector>

namespace pelmora {

// Where a derivation reads and writes.
struct DerivationTarget {
  ConnectionPtr connection;
  std::string table;       // "Raw1" to "Raw4"; only "Raw1" finds or adds the series row
  std::string calSetupId;  // as text
  std::vector<std::string>
      jobs;  // the set-up's jobs, ascending; more than one: rotor B ran by itself
};

// Each replaces the points of its series (entry 0, 1, 2, 3 of meter.Series) in the target's table
// and leaves the series' id in the entry. With V1..V37 the columns of a measured row, f_A = V4/V3,
// f_B = V21/V20 and c(alpha) = 1 + alpha (V12 - 70):
//
//   rotor A    Roshko f_A/V5 c(1.92E-05)             Strouhal f_A/(V2/V1) c(2.88E-05)
//   rotor B    as A with f_B; with more than one job the rotor A columns of the second job
//   sum        Roshko of A plus Roshko of B          Strouhal f_A/f_B
//   ratio      as the sum                            Strouhal f_B/f_A
//
// Sum and ratio of more than one job always end in an error with the series empty: see the source.
// Errors: shown; the import goes on with the next series.
void SeriesViaCaldb_RotorA(const OperationContext& context, const DerivationTarget& target,
                           MeterInfo& meter);
void SeriesViaCaldb_RotorB(const OperationContext& context, const DerivationTarget& target,
                           MeterInfo& meter);
void SeriesViaCaldb_SumAB(const OperationContext& context, const DerivationTarget& target,
                          MeterInfo& meter);
void SeriesViaCaldb_Ratio(const OperationContext& context, const DerivationTarget& target,
                          MeterInfo& meter);

}  // namespace pelmora
