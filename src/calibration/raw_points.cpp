// Storing the raw points of a series.
// SPDX-License-Identifier: MIT
#include "calibration/exclusions.h"
#include "calibration/names.h"
#include "calibration/roshko_size.h"
#include "calibration/session.h"
#include "calibration/steps/raw_points.h"
#include "store/field_value.h"
#include "store/meter_registry.h"
#include "store/point_rows.h"
#include "store/reading.h"

#include <cmath>

namespace pelmora::calibration {
namespace {

void requirePoints(const std::string& place, int part, const PointArray& points) {
  const auto refuse = [&](const std::string& why, const std::string& remedy) {
    throw BadData({place + ": " + why, place, remedy});
  };
  if (part < 1 || part > 4) refuse("there is no raw part " + std::to_string(part), "use 1 to 4");
  if (points.empty()) refuse("there are no points to store", "give one or more");
  if (points.columns() < 2) refuse("the points have no Strouhal numbers", "give two columns");
  if (points.size() > static_cast<std::size_t>(mostPoints)) {
    refuse(std::to_string(points.size()) + " points are too many; a raw part holds at most " +
               std::to_string(mostPoints),
           "thin them out");
  }
  for (std::size_t i = 0; i < points.size(); ++i) {
    if (std::isfinite(points(i, 0)) && std::isfinite(points(i, 1))) continue;
    refuse("point " + std::to_string(i + 1) + " has a value that is not finite", "leave it out");
  }
}

}  // namespace

StoredPoints Database::storeRaw(const Meter& meter, const std::string& series, int part,
                                const PointArray& points) {
  const std::string name = cleanName("series", series);
  const std::string place = placeOf(meter, name);
  requirePoints(place, part, points);
  return session_->changing("raw", "storing points of " + place, [&] {
    Connection& connection = session_->connection();
    const auto known =
        readRows(connection, "Select ID from series where meterid = " + std::to_string(meter.id) +
                                 " and name = " + NameText::quoted(name).literal());
    StoredPoints stored;
    stored.isNewSeries = known->atEnd();
    if (!stored.isNewSeries) {
      stored.kept = session_->keep(history::rawPart(meter.id, toInt32(known->value(0)), part));
    }
    stored.seriesID = findOrAddSeriesRow(connection, NameText::quoted(name), meter.id);
    const steps::WholePart before = steps::readWholePart(connection, part, stored.seriesID);
    const steps::RawTarget target{"raw" + std::to_string(part), stored.seriesID, name};
    steps::removeRawPoints(connection, target);
    steps::insertRawPoints(connection, target, points);
    keepExclusions(*session_, name, before, stored);
    stored.farFactor = pelmora::calibration::farFactor(
        typicalRoshko(points), otherRoshkos(*session_, meter, {}, stored.seriesID, part));
    stored.farPoints = pelmora::calibration::farPoints(points);
    return stored;
  });
}

}  // namespace pelmora::calibration
