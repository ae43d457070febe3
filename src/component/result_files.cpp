// SPDX-License-Identifier: MIT
#include "component/result_files.h"

#include "calibration/steps/result_file.h"
#include "calibration/steps/stored_curve.h"
#include "component/lookups.h"
#include "component/operation_connection.h"
#include "ui/message_box.h"

#include <utility>

namespace pelmora {

PointArray readTCresults(const OperationContext& context, const std::string& sResultPath,
                         bool& ArrayIsEmpty) {
  PointArray points;
  ArrayIsEmpty = true;
  context.trap("Error in RawData:readTCresults", [&] {
    const steps::Observer observer = context.observer();
    std::string text;
    if (!steps::takeResultFile(sResultPath, text, observer)) {
      standardMessageBox("File not found", box_style::information, "");
      return;
    }
    steps::parseResultFile(std::move(text), points, observer);
  });
  ArrayIsEmpty = points.empty();
  return points;
}

PointArray ImportCurvedData(const OperationContext& context, const std::string& sFilepath,
                            const std::string& SeriesName, const std::string& MeterSN,
                            bool& ArrayIsEmpty, std::int16_t ReCalID) {
  PointArray imported;
  context.trap("Error in RawData:ImportCurvedData", [&] {
    ArrayIsEmpty = true;
    OperationConnection connection(context, nullptr);
    const MeterInfo meter =
        findMeterInfo(context, MeterSN, connection.pointer(), ReCalID, SeriesName);
    if (meter.Series.empty()) return;
    context.shared().fitRecord().Fitted = readTCresults(context, sFilepath, ArrayIsEmpty);
    imported = context.shared().fitRecord().Fitted;
    if (imported.size() == 1) return;
    storeImportedPoints(connection, steps::StoredSeries{meter.Series.front().SeriesID, SeriesName},
                        imported, context.observer());
  });
  return imported;
}

}  // namespace pelmora
