// SPDX-License-Identifier: MIT
#include "component/stored_results.h"

#include "base/number_text.h"
#include "calibration/steps/raw_points.h"
#include "calibration/steps/stored_curve.h"
#include "component/lookups.h"
#include "component/operation_connection.h"
#include "store/meter_lookup.h"

namespace pelmora {
namespace {

using steps::CurveForm;
using steps::StoredPart;

std::string lowerCase(std::string text) {
  for (char& c : text) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return text;
}

// Curve, merged points and summary of the one series of `meter`; the last two are shared as soon as
// they are read.
void readFitted(const OperationContext& context, Connection& connection, const FittedQuery& query,
                const CurveForm& form, MeterInfo& meter) {
  SeriesInfo& series = meter.Series.front();
  readStoredCurve(connection, form, query.SeriesName, series, context.observer(),
                  [&](StoredPart part) {
                    SeriesInfo& record = context.shared().fitRecord();
                    if (part == StoredPart::merged) {
                      record.Merged = series.Merged;
                    } else {
                      record.Summary = series.Summary;
                    }
                  });
  context.shared().lastFittedSeries = meter;
}

}  // namespace

bool SetFitted(const OperationContext& context, const std::string& SeriesName,
               const std::string& MeterSerialNumber, const FittedResult& result, bool cleardb,
               std::int16_t ReCalID) {
  bool stored = false;
  context.trap("Error in RawData:SetRaw", [&] {
    OperationConnection connection(context, nullptr);
    const MeterInfo meter =
        findMeterInfo(context, MeterSerialNumber, connection.pointer(), ReCalID, SeriesName);
    if (meter.Series.empty()) return;
    const steps::Observer observer = context.observer();
    const steps::StoredSeries series{meter.Series.front().SeriesID, SeriesName};
    removeStoredCurve(connection, series, observer);
    if (!cleardb) {
      insertStoredCurve(connection, series, result.arMerged, result.arFitted, result.Details,
                        observer);
    } else if (!result.Details.empty()) {
      insertSummary(connection, series, result.Details, observer);
    }
    stored = true;
  });
  return stored;
}

bool SetLastFitted(const OperationContext& context, bool cleardb) {
  bool stored = false;
  context.trap("Error in RawData:SetLastRaw", [&] {
    // Copies: a handler may start another fit while this one is stored.
    const MeterInfo last = context.shared().lastFittedSeries;
    const SeriesInfo record = context.shared().fitRecord();
    const std::string name = last.Series.empty() ? std::string() : last.Series.front().SeriesName;
    stored = SetFitted(context, name, last.SerialNumber,
                       {record.Merged, record.Fitted, record.Summary}, cleardb, last.ReCalID);
  });
  return stored;
}

MeterInfo getFittedCurve(const OperationContext& context, const FittedQuery& query,
                         const ConnectionPtr& conn) {
  MeterInfo meter = meterFoundNowhere();
  context.trap("Error in RawData:getFittedCurve", [&] {
    OperationConnection connection(context, conn);
    meter = findMeterInfo(context, query.MeterSN, connection.pointer(), query.ReCalID,
                          query.SeriesName);
    if (meter.Series.size() != 1) return;
    const bool isRatio = lowerCase(query.SeriesName).find("ratio") != std::string::npos;
    const bool byStrouhal = query.bDarvellFormat && isRatio;
    readFitted(context, connection, query,
               {byStrouhal ? " ORDER BY Strouhal ASC" : "", query.bDarvellFormat, isRatio}, meter);
  });
  return meter;
}

MeterInfo GetAllInfo(const OperationContext& context, const FittedQuery& query,
                     const ConnectionPtr& conn) {
  MeterInfo meter = meterFoundNowhere();
  context.trap("Error in RawData:GetRaw", [&] {
    OperationConnection connection(context, conn);
    meter = findMeterInfo(context, query.MeterSN, connection.pointer(), query.ReCalID,
                          query.SeriesName);
    if (meter.Series.size() != 1) return;
    SeriesInfo& series = meter.Series.front();
    for (std::size_t part = 0; part < series.Raw.size(); ++part) {
      context.raiseStatusUpdate("Retrieving old raw data from database in series " +
                                query.SeriesName);
      series.Raw[part].Points =
          steps::readPoints(connection, "raw" + numberText(part + 1), series.SeriesID);
    }
    const bool byStrouhal = query.bDarvellFormat && lowerCase(query.SeriesName) == "ratio";
    readFitted(context, connection, query,
               {byStrouhal ? " ORDER BY Strouhal ASC" : " ORDER BY Roshko ASC",
                query.bDarvellFormat, false},
               meter);
  });
  return meter;
}

}  // namespace pelmora
