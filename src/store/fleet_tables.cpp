// SPDX-License-Identifier: MIT
#include "store/fleet_tables.h"

namespace pelmora {
namespace {

using enum OwnColumnType;
using enum ReadingOrder;

// Behind the job's own columns, the change to the settings of each curve; null: as it was fitted.
SchemaTable fleetJobs() {
  return {fleetJobTable,
          {{"ID", key},
           {"State", whole},
           {"StartedAt", text},
           {"EndedAt", text},
           {"BeganAt", whole},
           {"UserName", text},
           {"Version", text},
           {"ChangedPercent", real},
           {"Strict", whole},
           {"Choice", text},
           {"FitMinRoshko", real},
           {"FitMaxRoshko", real},
           {"OnlyEquations", text},
           {"WithoutEquations", text},
           {"MaxOrder", whole},
           {"MergeBand", real},
           {"CutsOverlap", whole},
           {"Spacing", text}},
          {},
          {},
          byKey};
}

// The series with ids above AfterID, up to LastID. Times are seconds since 1970, by the engine's
// clock.
SchemaTable fleetRanges() {
  return {fleetRangeTable,
          {{"ID", key},
           {"JobID", whole},
           {"AfterID", whole},
           {"LastID", whole},
           {"Series", whole},
           {"State", whole},
           {"Token", whole},
           {"Worker", text},
           {"LeaseEnds", whole},
           {"DoneAt", whole},
           {"Stored", whole},
           {"Changed", whole},
           {"Failed", whole}},
          {{std::string(fleetRangeTable) + "_job", {"JobID", "State", "ID"}}},
          {},
          byKey};
}

SchemaTable fleetResults() {
  const std::string name = fleetResultTable;
  return {name,
          {{"JobID", whole},
           {"SeriesID", whole},
           {"Kind", whole},
           {"Equation", text},
           {"ShiftPercent", real},
           {"ShiftRoshko", real},
           {"Stored", whole},
           {"ChangedMeanwhile", whole},
           {"Reason", text}},
          {{name + "_series", {"JobID", "SeriesID"}, true}, {name + "_kind", {"JobID", "Kind"}}},
          {},
          asStored};
}

}  // namespace

std::vector<SchemaTable> fleetTables() { return {fleetJobs(), fleetRanges(), fleetResults()}; }

}  // namespace pelmora
