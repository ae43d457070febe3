// SPDX-License-Identifier: MIT
#include "component/import_caldb.h"

#include "base/number_text.h"
#include "component/series_derivation.h"
#include "component/stand_copy.h"
#include "component/lookups.h"
#include "component/operation_connection.h"
#include "store/meter_lookup.h"
#include "store/reading.h"
#include "store/row_text.h"

#include <array>

namespace pelmora {
namespace {

constexpr std::array<const char*, 4> seriesNames{"Rotor A", "Rotor B", "Rotor Sum", "Ratio"};
constexpr std::size_t mostSetups = 4;    // one raw table each
constexpr std::size_t mostRuns = 32767;  // that a 16-bit counter passes

bool hasRuns(const CalibrationImport& wanted) {
  const std::size_t runs = wanted.JobID_RawA.size();
  return runs > 0 && wanted.JobID_RawB.size() == runs && wanted.FluidName.size() == runs &&
         wanted.OperatorName.size() == runs;
}

MeterInfo findOrRegisterMeter(const OperationContext& context, const CalibrationImport& wanted,
                              OperationConnection& connection) {
  MeterInfo meter =
      findMeterInfo(context, wanted.MeterSN, connection.pointer(), wanted.ReCalID, "");
  if (meter.Source != -1) return meter;
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
  auto setupRows =
      readRows(connection, "Select ID from CalSetup where meterID=" + numberText(meter.MeterID) +
                               " ORDER BY stand, ID ASC");
  if (setupRows->recordCount() == 0) return;
  const std::vector<std::string> setups = rowsAsTexts(*setupRows);
  setupRows->close();

  DerivationTarget target{connection.pointer(), {}, {}, {}};
  for (std::size_t k = 0; k < setups.size() && k < mostSetups; ++k) {
    target.table = "Raw" + numberText(k + 1);
    target.calSetupId = setups[k];
    auto jobRows = readRows(
        connection, "Select DISTINCT JobRecordID from CalDataPoint where CalSetupID=" + setups[k] +
                        " ORDER BY JobRecordID ASC");
    if (jobRows->recordCount() > 0) target.jobs = rowsAsTexts(*jobRows);
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
        if (meter.Source == -1) return;
        meter.Series.resize(seriesNames.size());
        for (std::size_t i = 0; i < seriesNames.size(); ++i) {
          meter.Series[i].SeriesName = seriesNames[i];
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
