// Points that the outside program TableCurve has fitted.
// SPDX-License-Identifier: MIT
#include "calibration/names.h"
#include "calibration/session.h"
#include "calibration/steps/result_file.h"
#include "calibration/steps/stored_curve.h"

#include <pelmora/calibration/import.h>

namespace pelmora::calibration {
namespace {

void requireTwoPoints(const std::string& place, const PointArray& points) {
  if (points.size() > 1) return;
  throw BadData({place + " holds " + (points.empty() ? "no point" : "1 point"), place,
                 "at least two are needed"});
}

}  // namespace

PointArray resultPoints(const std::string& text, const std::string& place) {
  constexpr std::size_t headerLines = 3;
  PointArray points;
  try {
    steps::parseResultFile(text, points);
  } catch (const Error& error) {
    throw BadData({place + " cannot be read as a TableCurve result, line " +
                       std::to_string(headerLines + points.size() + 1) + ": " + error.what(),
                   place,
                   "expected are three header lines and then lines of two numbers with blanks "
                   "between them, each line ended by CR LF"},
                  error.number());
  }
  requireTwoPoints(place, points);
  return points;
}

HistoryEntryId Database::importResult(const Meter& meter, const std::string& series,
                                      const PointArray& points) {
  const std::string name = cleanName("series", series);
  requireTwoPoints("the result for " + placeOf(meter, name), points);
  return session_->changing("import-curve", "importing the curve of " + placeOf(meter, name), [&] {
    const std::int32_t id = seriesID(meter, name);
    const HistoryEntryId kept = session_->keep(history::fittedCurve(meter.id, id));
    steps::storeImportedPoints(session_->connection(), {id, name}, points);
    return kept;
  });
}

}  // namespace pelmora::calibration
