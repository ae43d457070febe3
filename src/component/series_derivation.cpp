// SPDX-License-Identifier: MIT
#include "component/series_derivation.h"

#include "base/text_case.h"
#include "calibration/steps/whole_part.h"
#include "component/operation_connection.h"
#include "store/curve_schema.h"

#include <algorithm>

namespace pelmora {
namespace {

// Points that somebody left out with a reason stay out when the same job comes again with the same
// values. If any of them differs, all are back, and their records stay as they are for the service.
void leaveOutAgain(Connection& curves, const DerivationTarget& target, std::int32_t SeriesID) {
  const auto table = std::ranges::find_if(
      rawTables, [&](const char* name) { return equalNames(name, target.table); });
  if (table == rawTables.end() || !hasExcludedPoints(curves)) return;
  const int part = static_cast<int>(table - rawTables.begin()) + 1;
  steps::WholePart whole = steps::readWholePart(curves, part, SeriesID);
  if (whole.Adrift.empty()) return;
  const bool areSame = std::ranges::all_of(whole.Adrift, [&](const ExcludedRow& row) {
    const bool isOfJob =
        row.Job.empty() || std::ranges::find(target.jobs, row.Job) != target.jobs.end();
    return isOfJob && steps::holds(whole, row);
  });
  if (!areSame) return;
  for (ExcludedRow& row : whole.Adrift)
    whole.Points[static_cast<std::size_t>(row.Number - 1)].Exclusion = std::move(row);
  whole.Adrift.clear();
  steps::writeWholePart(curves, SeriesID, whole);
}

void derive(const OperationContext& context, const std::string& name, steps::DerivedSeries which,
            const DerivationTarget& target, MeterInfo& meter) {
  context.trap("Error in RawData:SeriesViaCaldb_" + name, [&] {
    if (!target.connection) throw makeError(RunTimeError::noObject);
    const auto entry = static_cast<std::size_t>(which);
    if (meter.Series.size() <= entry) throw makeError(RunTimeError::outOfRange);
    OperationConnection connection(context, target.connection);
    SeriesInfo& series = meter.Series[entry];
    deriveSeries(connection, which, {target.table, target.calSetupId, target.jobs},
                 NameText::spliced(series.SeriesName), meter.MeterID, series.SeriesID);
    leaveOutAgain(*connection.pointer(), target, series.SeriesID);
  });
}

}  // namespace

void SeriesViaCaldb_RotorA(const OperationContext& context, const DerivationTarget& target,
                           MeterInfo& meter) {
  derive(context, "RotorA", steps::DerivedSeries::rotorA, target, meter);
}

void SeriesViaCaldb_RotorB(const OperationContext& context, const DerivationTarget& target,
                           MeterInfo& meter) {
  derive(context, "RotorB", steps::DerivedSeries::rotorB, target, meter);
}

void SeriesViaCaldb_SumAB(const OperationContext& context, const DerivationTarget& target,
                          MeterInfo& meter) {
  derive(context, "SumAB", steps::DerivedSeries::rotorSum, target, meter);
}

void SeriesViaCaldb_Ratio(const OperationContext& context, const DerivationTarget& target,
                          MeterInfo& meter) {
  derive(context, "Ratio", steps::DerivedSeries::ratio, target, meter);
}

}  // namespace pelmora
