// SPDX-License-Identifier: MIT
#include "calibration/stored_fit.h"

#include "base/time_text.h"
#include "base/version.h"
#include "calibration/steps/stored_curve.h"
#include "history/fingerprint.h"
#include "history/kept_tables.h"
#include "history/row_access.h"
#include "points/point_fingerprint.h"
#include "store/curve_schema.h"
#include "store/curve_settings_rows.h"
#include "store/own_rows.h"
#include "store/reading.h"

#include <pelmora/own_tables.h>

#include <algorithm>
#include <array>
#include <iterator>
#include <memory>
#include <string_view>
#include <unordered_set>

namespace pelmora::calibration {
namespace {

CurveSettings settingsOf(const Fit& fit) {
  CurveSettings settings;
  settings.BandPercent = fit.settings.band;
  settings.Points = fit.settings.points;
  if (!fit.isWholeRange) settings.Min = fit.min, settings.Max = fit.max;
  settings.RatioCurve = fit.settings.ratio;
  settings.Inverted = fit.settings.inverted;
  settings.IgnoreResiduals = fit.settings.ignoreResiduals;
  settings.Equations = fit.settings.equations.text();
  settings.Choice = choiceKey(fit.settings.choice);
  settings.FitMin = fit.settings.fitMin;
  settings.FitMax = fit.settings.fitMax;
  settings.Only = fit.settings.only;
  settings.Without = fit.settings.without;
  settings.MaxOrder = fit.settings.maxOrder;
  settings.Spacing = spacingKey(fit.settings.spacing);
  settings.SoftwareVersion = version;
  settings.FittedAt = utcText();
  settings.MergeBandPercent = fit.settings.mergeBand;
  settings.KeepsOverlap = !fit.settings.cutsOverlap;
  settings.PointsFingerprint = fit.pointsFingerprint;
  settings.CurveFingerprint = fingerprintOf({&fit.curve, 1});
  return settings;
}

history::Ids seriesOf(const std::vector<const Fit*>& fits) {
  history::Ids ids;
  for (const Fit* fit : fits) ids.push_back(fit->seriesID);
  return ids;
}

// Behind the history's copy.
void removeCurves(Session& session, const history::Ids& series,
                  const std::vector<std::string>& tables) {
  for (const std::string& name : tables) {
    session.connection().execute("DELETE from [" + name + "]" +
                                 history::whereIn(history::keptTable(name).KeyColumn, series));
  }
}

std::unique_ptr<Recordset> newRows(Session& session, const std::string& table) {
  return openForBatch(session.connection(), "Select * from " + table + " where 1=0");
}

void addPointsOf(Session& session, const std::vector<const Fit*>& fits, const std::string& table,
                 PointArray Fit::*points) {
  const auto rows = newRows(session, table);
  constexpr std::array<std::string_view, 3> fields{"seriesID", "Roshko", "Strouhal"};
  for (const Fit* fit : fits) {
    const PointArray& list = fit->*points;
    if (list.size() < 2) continue;  // as steps::insertStoredCurve
    std::array<Value, 3> values{std::int64_t{fit->seriesID}, 0.0, 0.0};
    for (std::size_t i = 0; i < list.size(); ++i) {
      values[1] = list(i, 0);
      values[2] = list(i, 1);
      rows->addRow(fields, values);
    }
  }
  rows->updateBatch();
}

}  // namespace

std::uint64_t pointsBasis(const Session& session, const Meter& meter, std::int32_t seriesID) {
  return history::fingerprint(session.curves(), history::fittedPoints(meter.id, seriesID));
}

std::uint64_t curveBasis(const Session& session, const Meter& meter, std::int32_t seriesID) {
  return session.asking(placeOf(meter) + " cannot be read", [&] {
    return history::fingerprint(session.curves(),
                                history::fittedPointsAndCurve(meter.id, seriesID));
  });
}

HistoryEntryId storeFit(Session& session, const Fit& fit) {
  const HistoryEntryId kept = session.keep(history::fittedCurve(fit.meter.id, fit.seriesID));
  const steps::StoredSeries series{fit.seriesID, fit.series};
  steps::removeStoredCurve(session.connection(), series);
  steps::insertStoredCurve(session.connection(), series, fit.merged, fit.curve, fit.report);
  keepCurveSettings(session.curves(), fit.seriesID, settingsOf(fit));
  return kept;
}

std::vector<const Fit*> thoseWithResults(const Session& session,
                                         const std::vector<const Fit*>& fits) {
  if (fits.empty()) return {};
  const history::Ids ids = seriesOf(fits);
  std::unordered_set<std::int64_t> found;
  const auto tables = history::fittedCurve(0, 0).Tables;
  for (const std::string& name : tables) {
    if (!hasTable(session.curves(), name)) continue;
    const std::string& key = history::keptTable(name).KeyColumn;
    const auto owners =
        history::idsOf(session.curves(), "Select DISTINCT [" + key + "] from [" + name + "]" +
                                             history::whereIn(key, ids));
    found.insert(owners.begin(), owners.end());
  }
  std::vector<const Fit*> list;
  std::ranges::copy_if(fits, std::back_inserter(list),
                       [&](const Fit* fit) { return found.contains(fit->seriesID); });
  return list;
}

void storeFits(Session& session, const std::vector<const Fit*>& fits,
               const std::vector<const Fit*>& replaced) {
  if (fits.empty()) return;
  const auto tables = history::fittedCurve(0, 0).Tables;
  std::vector<history::KeptSeries> kept;
  for (const Fit* fit : replaced) kept.push_back({fit->meter.id, fit->seriesID});
  const auto entries = session.change().keepEach(kept, tables);
  for (const HistoryEntryId entry : entries) session.note(entry);
  removeCurves(session, seriesOf(fits), tables);
  addPointsOf(session, fits, "curve", &Fit::curve);
  addPointsOf(session, fits, "merge", &Fit::merged);
  const auto reports = newRows(session, "DataFitResults");
  const auto settings = newRows(session, fitSettingsTable);
  constexpr std::array<std::string_view, 2> reportFields{"seriesID", "summary"};
  const auto settingsFields = columnNames(fitSettingsTable);
  for (const Fit* fit : fits) {
    reports->addRow(reportFields, std::array<Value, 2>{std::int64_t{fit->seriesID}, fit->report});
    settings->addRow(settingsFields, rowOfSettings(fit->seriesID, settingsOf(*fit)));
  }
  reports->updateBatch();
  settings->updateBatch();
}

HistoryEntryId Database::store(const Fit& fit) {
  const std::string place = placeOf(fit.meter, fit.series);
  if (fit.seriesID == 0) {
    throw BadData({"the fit is of points that are in no database", location(),
                   "store the points as a series and fit that"});
  }
  if (!fit.accepted())
    throw NoFit({"the fit of " + place + " has no curve: " + fit.reason(), place, ""});
  return session_->changing("fit", "storing the curve of " + place, [&] {
    if (pointsBasis(*session_, fit.meter, fit.seriesID) != fit.basis) {
      throw Changed({"the points of " + place +
                         " have changed since they were fitted, or the "
                         "series was deleted",
                     location(), "fit it again"});
    }
    return storeFit(*session_, fit);
  });
}

}  // namespace pelmora::calibration
