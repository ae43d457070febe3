// SPDX-License-Identifier: MIT
#include "component/series_derivation.h"

#include "component/operation_connection.h"

namespace pelmora {
namespace {

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
