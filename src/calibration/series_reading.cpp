// SPDX-License-Identifier: MIT
#include "calibration/series_reading.h"

#include "base/word_mixer.h"
#include "calibration/curve_age.h"
#include "calibration/exclusions.h"
#include "calibration/names.h"
#include "calibration/series_lookup.h"
#include "calibration/steps/fit_report.h"
#include "history/fingerprint.h"
#include "store/curve_schema.h"
#include "store/curve_settings_rows.h"
#include "store/field_value.h"
#include "store/point_rows.h"

#include <pelmora/own_tables.h>

#include <algorithm>
#include <cstddef>

namespace pelmora::calibration {
namespace {

// Passes over the tables of a fingerprint, and takes what it needs out of the rows.
class TableReader {
 public:
  TableReader(Session& session, StoredSeries& stored, const history::Scope& scope)
      : session_(session), stored_(stored), scope_(scope) {}

  void read(const std::string& table) {
    if (PointArray* points = pointsIn(table)) {
      PointRows rows;
      pass(table, [&](const Recordset& row) { rows.take(row); });
      *points = rows.points();
    } else if (table == "DataFitResults") {
      passFirst(table,
                [&](const Recordset& row) { stored_.report = toText(row.value("summary")); });
    } else if (table == fitSettingsTable) {
      passFirst(table, [&](const Recordset& row) { stored_.settings = settingsInRow(row); });
    } else {
      pass(table, {});
    }
  }
  [[nodiscard]] std::uint64_t basis() const { return mixer_.state(); }

 private:
  using Take = std::function<void(const Recordset&)>;

  PointArray* pointsIn(const std::string& table) {
    if (table == "merge") return &stored_.merged;
    if (table == "curve") return &stored_.curve;
    const auto raw = std::ranges::find(rawTables, table);
    return raw == rawTables.end() ? nullptr
                                  : &stored_.raw[static_cast<std::size_t>(raw - rawTables.begin())];
  }
  void pass(const std::string& table, const Take& take) {
    history::mixRows(mixer_, session_.curves(), scope_, table, take);
  }
  // Of several rows the first one counts.
  void passFirst(const std::string& table, const Take& take) {
    bool isFirst = true;
    pass(table, [&](const Recordset& row) {
      if (std::exchange(isFirst, false)) take(row);
    });
  }

  Session& session_;
  StoredSeries& stored_;
  const history::Scope& scope_;
  WordMixer mixer_;
};

}  // namespace

SeriesReading readStored(Session& session, const Meter& meter, const std::string& series) {
  SeriesReading reading;
  StoredSeries& stored = reading.stored;
  stored.meter = meter;
  stored.name = cleanName("series", series);
  const auto moment = session.moment();
  stored.id = requireSeries(session, meter, stored.name);
  const std::string place = placeOf(meter, stored.name);
  const history::Scope scope = history::fittedPointsAndCurve(meter.id, stored.id);
  const std::size_t pointTables = history::fittedPoints(meter.id, stored.id).Tables.size();
  TableReader reader(session, stored, scope);
  for (std::size_t i = 0; i < scope.Tables.size(); ++i) {
    const std::string& table = scope.Tables[i];
    session.asking(
        (table == fitSettingsTable ? "the fit settings of " : "") + place + " cannot be read",
        [&] { reader.read(table); });
    if (i + 1 == pointTables) stored.basis = reader.basis();
  }
  reading.basis = reader.basis();
  session.asking(place + " cannot be read", [&] { readExclusions(session, stored); });
  stored.equation = steps::equationOfReport(stored.report);
  stored.age = ageOf(stored);
  return reading;
}

}  // namespace pelmora::calibration
