// Finding and registering calibrations and series.
// SPDX-License-Identifier: MIT
#include "base/suggestion.h"
#include "calibration/exclusions.h"
#include "calibration/names.h"
#include "calibration/series_lookup.h"
#include "calibration/session.h"
#include "calibration/series_reading.h"
#include "store/field_value.h"
#include "store/meter_lists.h"
#include "store/meter_lookup.h"
#include "store/meter_registry.h"
#include "store/reading.h"

#include <pelmora/curve_database.h>

#include <algorithm>

namespace pelmora::calibration {
namespace {

// Every calibration, or those of one meter, by serial number and number.
std::vector<Meter> readMeters(Session& session, const std::string& where) {
  return session.asking("listing the meters of '" + session.location() + "'", [&] {
    const auto rows = readRows(session.connection(),
                               "Select ID, SerialNumber, SerialNumberAdjusted, ReCalID from meter" +
                                   where + " ORDER BY SerialNumber, ReCalID, ID");
    std::vector<Meter> meters;
    meters.reserve(static_cast<std::size_t>(rows->recordCount()));
    for (; !rows->atEnd(); rows->moveNext()) {
      Meter meter;
      meter.id = toInt32(rows->value(0));
      meter.serial = toText(rows->value(1));
      meter.adjusted = toText(rows->value(2));
      meter.calibration = isNull(rows->value(3)) ? 0 : toInt16(rows->value(3));
      meters.push_back(std::move(meter));
    }
    return meters;
  });
}

std::vector<std::string> distinctSerials(const std::vector<Meter>& meters) {
  std::vector<std::string> serials;
  for (const Meter& meter : meters) {
    if (serials.empty() || serials.back() != meter.serial) serials.push_back(meter.serial);
  }
  return serials;
}

}  // namespace

std::size_t StoredSeries::rawPoints() const {
  std::size_t count = 0;
  for (const PointArray& part : raw) count += part.size();
  return count;
}

std::size_t StoredSeries::numberOf(int part, std::size_t index) const {
  return numberInWholePart(excluded, part, index);
}

const PointArray& StoredSeries::storedCurve() const {
  if (curve.size() > 1) return curve;
  throw NoCurve({placeOf(meter, name) + " has no stored curve", placeOf(meter, name), "fit it"});
}

std::vector<Meter> Database::meters() const { return readMeters(*session_, ""); }

std::vector<Meter> Database::calibrations(const std::string& serial) const {
  const std::string name = cleanName("meter", serial);
  auto list = readMeters(*session_, " where SerialNumber = " + NameText::quoted(name).literal());
  if (list.empty()) (void)meter(name);  // throws with what is similar
  return list;
}

std::optional<Meter> Database::findMeter(const std::string& serial, int calibration) const {
  const std::string name = cleanName("meter", serial);
  return session_->asking("looking up meter '" + name + "'", [&]() -> std::optional<Meter> {
    MeterInfo found;
    findMeterInfo(session_->connection(), NameText::quoted(name),
                  static_cast<std::int16_t>(calibration), NameText::quoted(""), found);
    if (found.Source != meter_source::meter) return std::nullopt;
    return Meter{name, found.SerialNumberAdjusted, found.ReCalID, found.MeterID};
  });
}

Meter Database::meter(const std::string& serial, int calibration) const {
  if (auto found = findMeter(serial, calibration)) return *found;
  const std::string name = cleanName("meter", serial);
  if (calibration >= 0 && findMeter(name)) {
    throw NotFound({"meter '" + name + "' has no calibration " + std::to_string(calibration) +
                        " in '" + location() + "'",
                    location(), "list its calibrations"});
  }
  const auto known = distinctSerials(meters());
  throw NotFound(
      {"there is no meter '" + name + "' in '" + location() + "'", location(),
       known.empty() ? "no meter is stored yet: import one first" : suggestion(name, known)});
}

std::vector<Run> Database::runs(const Meter& meter) const {
  return session_->asking("the runs of " + placeOf(meter) + " cannot be read", [&] {
    std::vector<Run> runs;
    for (CalSetupInfo& setup : calSetups(session_->curves(), meter.id)) {
      runs.push_back({setup.ID, setup.Stand, setup.Position, std::move(setup.Operator),
                      std::move(setup.Fluid), std::move(setup.DateTaken),
                      std::move(setup.JobRecordIDs), setup.Points});
    }
    return runs;
  });
}

std::vector<std::string> Database::seriesOf(const Meter& meter) const {
  return seriesNames(*session_, meter);
}

std::int32_t Database::seriesID(const Meter& meter, const std::string& series) const {
  return requireSeries(*session_, meter, cleanName("series", series));
}

StoredSeries Database::series(const Meter& meter, const std::string& series) const {
  return readStored(*session_, meter, series).stored;
}

Meter Database::registerMeter(const std::string& serial, bool newCalibration) {
  const std::string name = cleanName("meter", serial);
  return session_->changing("register", "registering meter '" + name + "'", [&] {
    if (!newCalibration) {
      if (auto known = findMeter(name)) return *known;
    }
    MeterInfo latest;
    findLastCalID(session_->connection(), NameText::quoted(name), latest);
    const std::int16_t number = nextReCalID(latest);
    const std::int32_t id =
        addCalibration(session_->connection(), NameText::quoted(name), name, number);
    return Meter{name, name, number, id};
  });
}

}  // namespace pelmora::calibration
