// What the requests of one workbench share.
// SPDX-License-Identifier: MIT
#pragma once

#include "apps/pelmora/session.h"
#include "apps/pelmora/workbench/api/arguments.h"
#include "apps/pelmora/workbench/api/serial_list.h"
#include "apps/pelmora/workbench/api/uploads.h"
#include "base/server_address.h"

#include <string>

namespace pelmora::cli::workbench {

struct Bench {
  explicit Bench(Session& open) : session(open) {}
  [[nodiscard]] calibration::Database& lab() { return session.database(); }
  // Of the database, without a password.
  [[nodiscard]] std::string location() const { return shownLocation(session.path()); }

  Session& session;
  SerialList serials;
  Uploads uploads;
};

// A series that a request names with "meter", "calibration" (absent: the latest) and "series".
struct SeriesPlace {
  calibration::Meter meter;
  std::string series;
};

// Errors: BadData; NotFound for the meter.
[[nodiscard]] calibration::Meter meterOf(Bench& bench, const Arguments& arguments);
[[nodiscard]] SeriesPlace placeOf(Bench& bench, const Arguments& arguments);

// Tells one state of a series from every other: points, exclusions, curve, settings, signatures.
[[nodiscard]] std::string revisionOf(const calibration::Database& lab,
                                     const calibration::StoredSeries& series);
// Errors: Changed if the series is another than the request has seen (its "revision").
void requireRevision(const calibration::Database& lab, const calibration::StoredSeries& now,
                     const Arguments& arguments);

}  // namespace pelmora::cli::workbench
