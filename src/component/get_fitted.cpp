// SPDX-License-Identifier: MIT
#include "component/get_fitted.h"

#include "base/number_text.h"
#include "store/point_rows.h"
#include "store/field_value.h"
#include "component/lookups.h"
#include "component/operation_connection.h"
#include "store/meter_lookup.h"
#include "store/reading.h"

namespace pelmora {
namespace {

std::string lowerCase(std::string text) {
  for (char& c : text) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return text;
}

PointArray readPoints(Connection& connection, const std::string& statement, std::int32_t SeriesID) {
  auto rows = readRows(connection, statement + numberText(SeriesID));
  return pointsFromRows(*rows);
}

// How one of the two operations reads the curve.
struct CurveForm {
  std::string order;  // with its leading blank
  bool strouhalFirst = false;
};

bool readCurve(Connection& connection, const FittedQuery& query, const CurveForm& form,
               SeriesInfo& series) {
  auto rows = readRows(connection, "Select roshko, strouhal from curve where seriesID = " +
                                       numberText(series.SeriesID) + form.order);
  if (rows->recordCount() == 0) return false;
  if (!query.bDarvellFormat) {
    series.Fitted = pointsFromRows(*rows);
  } else if (form.strouhalFirst) {
    series.StrouhalFirst = curve40FromRowsSwapped(*rows);
  } else {
    series.RoshkoFirst = curve40FromRows(*rows);
  }
  return true;
}

// What both operations read: curve, merged points, summary.
void readFitted(const OperationContext& context, Connection& connection, const FittedQuery& query,
                const CurveForm& form, MeterInfo& meter) {
  SeriesInfo& series = meter.Series.front();
  const bool hasCurve = readCurve(connection, query, form, series);
  if (hasCurve) {
    context.raiseStatusUpdate("Obtained fitted data from database for series " + query.SeriesName);
  }
  context.raiseStatusUpdate("Retrieving old merged data from database in series " +
                            query.SeriesName);
  series.Merged = readPoints(
      connection, "Select roshko, strouhal from merge where seriesID = ", series.SeriesID);
  context.shared().fitRecord().Merged = series.Merged;
  context.raiseStatusUpdate("Retrieving old Fitted Details from database in series " +
                            query.SeriesName);
  auto rows = readRows(connection, "Select summary from datafitresults where seriesID = " +
                                       numberText(series.SeriesID));
  if (rows->recordCount() > 0) series.Summary = toText(rows->value("Summary"));
  context.shared().fitRecord().Summary = series.Summary;
  if (!hasCurve) {
    context.raiseStatusUpdate("No data for fitted curve in the database for series " +
                              query.SeriesName);
  }
  context.shared().lastFittedSeries = meter;
}

}  // namespace

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
    readFitted(context, connection, query, {byStrouhal ? " ORDER BY Strouhal ASC" : "", isRatio},
               meter);
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
      series.Raw[part].Points = readPoints(
          connection,
          "Select roshko, strouhal from raw" + numberText(part + 1) + " where seriesID = ",
          series.SeriesID);
    }
    const bool byStrouhal = query.bDarvellFormat && lowerCase(query.SeriesName) == "ratio";
    readFitted(context, connection, query,
               {byStrouhal ? " ORDER BY Strouhal ASC" : " ORDER BY Roshko ASC", false}, meter);
  });
  return meter;
}

}  // namespace pelmora
