// SPDX-License-Identifier: MIT
#include "calibration/steps/stored_curve.h"

#include "base/number_text.h"
#include "calibration/steps/raw_points.h"
#include "store/field_value.h"
#include "store/point_rows.h"
#include "store/reading.h"

#include <array>
#include <string_view>

namespace pelmora::calibration::steps {
namespace {

void insertPoints(Connection& connection, const StoredSeries& series, const std::string& text,
                  const std::string& statement, const PointArray& points,
                  const Observer& observer) {
  // From two points on; asked by size, so that too many end in an overflow and not in silence.
  if (points.size() < 2) return;
  observer.status(text + series.SeriesName);
  auto rows = openForBatch(connection, statement + numberText(series.SeriesID));
  writePoints(*rows, series.SeriesID, points);
}

bool readCurve(Connection& connection, const CurveForm& form, SeriesInfo& series) {
  auto rows = readRows(connection, "Select roshko, strouhal from curve where seriesID = " +
                                       numberText(series.SeriesID) + form.order);
  if (rows->recordCount() == 0) return false;
  if (!form.compact) {
    series.Fitted = pointsFromRows(*rows);
  } else if (form.strouhalFirst) {
    series.StrouhalFirst = curve40FromRowsSwapped(*rows);
  } else {
    series.RoshkoFirst = curve40FromRows(*rows);
  }
  return true;
}

}  // namespace

void removeStoredCurve(Connection& connection, const StoredSeries& series,
                       const Observer& observer) {
  const auto remove = [&](const char* text, const char* statement) {
    observer.status(text + series.SeriesName);
    connection.execute(statement + numberText(series.SeriesID));
  };
  remove("Removing old fitted data from database in series ",
         "DELETE from curve where seriesID = ");
  remove("Removing old DataFitResult summary from database in series ",
         "DELETE from DataFitResults where seriesID = ");
  remove("Removing old merged data from database in series ",
         "DELETE from merge where seriesid = ");
}

void insertSummary(Connection& connection, const StoredSeries& series, const std::string& details,
                   const Observer& observer) {
  observer.status("Inserting new DataFitResult summary into database in series " +
                  series.SeriesName);
  auto rows = connection.openRecordset(
      "Select * from DataFitResults where seriesID = " + numberText(series.SeriesID),
      CursorType::dynamic, LockType::optimistic);
  constexpr std::array<std::string_view, 2> fields{"seriesID", "summary"};
  const std::array<Value, 2> values{std::int64_t{series.SeriesID}, details};
  rows->addRow(fields, values);
}

void insertStoredCurve(Connection& connection, const StoredSeries& series, const PointArray& merged,
                       const PointArray& fitted, const std::string& details,
                       const Observer& observer) {
  insertPoints(connection, series, "Inserting new fitted data into database in series ",
               "Select * from curve where seriesID = ", fitted, observer);
  insertSummary(connection, series, details, observer);
  insertPoints(connection, series, "Inserting new merged data into database in series ",
               "Select * from merge where seriesid = ", merged, observer);
}

void storeImportedPoints(Connection& connection, const StoredSeries& series,
                         const PointArray& points, const Observer& observer) {
  const std::string key = numberText(series.SeriesID);
  observer.status("Removing old fitted data from databasse for series " + series.SeriesName);
  connection.execute("DELETE from curve where seriesID = " + key);
  observer.status("Inserting new fitted data into database for series " + series.SeriesName);
  auto rows = openForBatch(connection, "Select * from merge where seriesID = " + key);
  writePoints(*rows, series.SeriesID, points);
}

void readStoredCurve(Connection& connection, const CurveForm& form, const std::string& SeriesName,
                     SeriesInfo& into, const Observer& observer,
                     const std::function<void(StoredPart)>& wasRead) {
  const bool hasCurve = readCurve(connection, form, into);
  if (hasCurve) {
    observer.status("Obtained fitted data from database for series " + SeriesName);
  }
  observer.status("Retrieving old merged data from database in series " + SeriesName);
  into.Merged = readPoints(connection, "merge", into.SeriesID);
  if (wasRead) wasRead(StoredPart::merged);
  observer.status("Retrieving old Fitted Details from database in series " + SeriesName);
  auto rows = readRows(connection, "Select summary from datafitresults where seriesID = " +
                                       numberText(into.SeriesID));
  if (rows->recordCount() > 0) into.Summary = toText(rows->value("Summary"));
  if (wasRead) wasRead(StoredPart::summary);
  if (!hasCurve) {
    observer.status("No data for fitted curve in the database for series " + SeriesName);
  }
}

}  // namespace pelmora::calibration::steps
