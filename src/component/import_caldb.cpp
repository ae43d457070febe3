// SPDX-License-Identifier: MIT
#include "component/import_caldb.h"

#include "base/number_text.h"
#include "calibration/steps/raw_points.h"
#include "calibration/steps/set_up.h"
#include "component/lookups.h"
#include "component/operation_connection.h"
#include "component/series_derivation.h"
#include "component/stand_copy.h"
#include "store/meter_lookup.h"

namespace pelmora {
namespace {

using steps::derivedSeriesNames;

constexpr std::size_t mostSetups = steps::rawPartCount;  // one raw table each
constexpr std::size_t mostRuns = 32767;                  // that a 16-bit counter passes

bool hasRuns(const CalibrationImport& wanted) {
  const std::size_t runs = wanted.JobID_RawA.size();
  return runs > 0 && wanted.JobID_RawB.size() == runs && wanted.FluidName.size() == runs &&
         wanted.OperatorName.size() == runs;
}

MeterInfo findOrRegisterMeter(const OperationContext& context, const CalibrationImport& wanted,
                              OperationConnection& connection) {
  MeterInfo meter =
      findMeterInfo(context, wanted.MeterSN, connection.pointer(), wanted.ReCalID, "");
  if (meter.Source != meter_source::nowhere) return meter;
  std::string adjusted;
  setMeterSN(context, wanted.MeterSN, adjusted);
  connection.close();
  connection.open();
  context.pumpMessages();
  return findMeterInfo(context, wanted.MeterSN, connection.pointer(), wanted.ReCalID, "");
}

void copyRuns(const OperationContext& context, const CalibrationImport& wanted,
              const MeterInfo& meter, const ConnectionPtr& stand, const ConnectionPtr& curves) {
  if (wanted.JobID_RawA.size() > mostRuns) throw makeError(RunTimeError::overflow);
  for (std::size_t run = 0; run < wanted.JobID_RawA.size(); ++run) {
    std::string operatorName = wanted.OperatorName[run];
    const std::int32_t setup =
        setCalSetup(context, meter.MeterID, wanted.StandID, wanted.PositionID, operatorName,
                    wanted.FluidName[run], curves);
    copyCaldb(context, setup, wanted.JobID_RawA[run], wanted.JobID_RawB[run], stand, curves);
  }
}

void deriveSeries(const OperationContext& context, const CalibrationImport& wanted,
                  OperationConnection& connection, MeterInfo& meter) {
  const std::vector<std::string> setups = steps::setUpsOf(connection, meter.MeterID);
  DerivationTarget target{connection.pointer(), {}, {}, {}};
  for (std::size_t k = 0; k < setups.size() && k < mostSetups; ++k) {
    target.table = "Raw" + numberText(k + 1);
    target.calSetupId = setups[k];
    steps::jobsOf(connection, setups[k], target.jobs);
    if (wanted.Create_RotorA) SeriesViaCaldb_RotorA(context, target, meter);
    if (wanted.Create_RotorB) SeriesViaCaldb_RotorB(context, target, meter);
    if (wanted.Create_RotorAB) SeriesViaCaldb_SumAB(context, target, meter);
    if (wanted.Create_Ratio) SeriesViaCaldb_Ratio(context, target, meter);
  }
}

}  // namespace

MeterInfo importCaldb(const OperationContext& context, const CalibrationImport& wanted,
                      const ConnectionPtr& conn_calDB, const ConnectionPtr& Conn_curveDB) {
  if (!hasRuns(wanted)) return {};
  MeterInfo meter = meterFoundNowhere();
  const auto title = [](const Error& error) { return "Error " + error.source(); };
  context.trapTitled(
      "Error in modFlow:copyCalData ",
      [&] {
        OperationConnection connection(context, Conn_curveDB);
        meter = findOrRegisterMeter(context, wanted, connection);
        if (meter.Source == meter_source::nowhere) return;
        meter.Series.resize(derivedSeriesNames.size());
        for (std::size_t i = 0; i < derivedSeriesNames.size(); ++i) {
          meter.Series[i].SeriesName = derivedSeriesNames[i];
        }
        copyRuns(context, wanted, meter, conn_calDB, connection.pointer());
        if (wanted.Create_RotorA || wanted.Create_RotorB || wanted.Create_RotorAB ||
            wanted.Create_Ratio) {
          deriveSeries(context, wanted, connection, meter);
        }
      },
      title);
  return meter;
}

}  // namespace pelmora
