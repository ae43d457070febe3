// `pelmora refit --all --choose adjusted-r2 --jobs 1` as a plain program does it: kept prepared
// statements and Eigen, one connection, a hundred curves in a transaction.
//
//     refit_rival CURVES
//
// CURVES has the table of the settings; for curves that are replaced, the history's as well. Each
// series gets its curve, its merged points, its report and its settings; what it had before is
// copied into the history. Nothing is compared, and nothing is checked again before it is stored.
// SPDX-License-Identifier: MIT
#include "bench/plain_database.h"
#include "bench/plain_fit.h"
#include "bench/plain_report.h"
#include "bench/plain_statement.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace {

using namespace pelmora::bench;

constexpr std::size_t portion = 100;

struct SeriesRow {
  std::int64_t meter = 0, id = 0, calibration = 0;
  std::string serial, name;
};

std::vector<SeriesRow> allSeries(const PlainDatabase& database) {
  PlainStatement select(
      database,
      "SELECT meter.ID, series.ID, meter.ReCalID, meter.SerialNumber, series.name "
      "FROM meter JOIN series ON series.meterid = meter.ID "
      "ORDER BY meter.SerialNumber, meter.ReCalID, series.ID");
  std::vector<SeriesRow> list;
  while (select.hasRow()) {
    list.push_back(
        {select.whole(0), select.whole(1), select.whole(2), select.text(3), select.text(4)});
  }
  return list;
}

// A table of results: its rows of a series replaced.
struct Results {
  Results(const PlainDatabase& database, const std::string& name, const std::string& history,
          const std::string& columns, const std::string& parameters)
      : keep(database, "INSERT INTO " + history + " (EntryID, " + columns + ") SELECT ?2, " +
                           columns + " FROM " + name + " WHERE seriesID = ?1"),
        remove(database, "DELETE FROM " + name + " WHERE seriesID = ?"),
        insert(database, "INSERT INTO " + name + " (" + columns + ") VALUES (" + parameters + ")") {
  }
  PlainStatement keep, remove, insert;
};

class Refit {
 public:
  explicit Refit(const PlainDatabase& database) : database_(database) {
    for (const char* table : {"raw1", "raw2", "raw3", "raw4"}) {
      parts_.push_back(std::make_unique<PlainStatement>(
          database, std::string("SELECT Roshko, Strouhal FROM ") + table + " WHERE seriesID = ?"));
    }
  }

  void refit(const SeriesRow& series) {
    PlainPoints points;
    for (const auto& part : parts_) {
      part->with(series.id);
      while (part->hasRow()) {
        points.x.push_back(part->real(0));
        points.y.push_back(part->real(1));
      }
    }
    const bool isNew = !band_.with(series.id).hasRow();
    const double band = isNew ? 0.3 : band_.real(0);
    band_.with();
    points = sorted(points);
    const PlainFit fit = plainFit(points, band / 100);
    const std::string report = reportOf(series.serial, series.name, points, fit);
    if (!isNew) keep(series);
    for (std::size_t k = 0; k < fit.grid.size(); ++k)
      curve_.insert.with(series.id, fit.grid[k], fit.curve[k]).run();
    for (std::size_t i = 0; i < points.x.size(); ++i)
      merge_.insert.with(series.id, points.x[i], points.y[i]).run();
    report_.insert.with(series.id, report).run();
    settings_.insert
        .with(series.id, band, 40, 0, 0, 0, version_, now_, 0, fingerprint_, fingerprint_, choice_,
              spacing_)
        .run();
  }

 private:
  void keep(const SeriesRow& series) {
    entry_
        .with(now_, command_, series.serial, series.calibration, series.meter, series.id,
              series.name, tables_, version_)
        .run();
    const std::int64_t entry = database_.lastId();
    for (Results* results : {&curve_, &merge_, &report_, &settings_}) {
      results->keep.with(series.id, entry).run();
      results->remove.with(series.id).run();
    }
  }

  const PlainDatabase& database_;
  std::vector<std::unique_ptr<PlainStatement>> parts_;
  PlainStatement band_{database_,
                       "SELECT BandPercent FROM pelmora_fit_settings WHERE SeriesID = ?"};
  PlainStatement entry_{database_,
                        "INSERT INTO pelmora_history_entry (ChangedAt, Command, SerialNumber, "
                        "ReCalID, MeterID, SeriesID, SeriesName, KeptTables, Version) "
                        "VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?)"};
  Results curve_{database_, "curve", "pelmora_history_curve", "seriesID, Roshko, Strouhal",
                 "?, ?, ?"};
  Results merge_{database_, "merge", "pelmora_history_merge", "seriesID, Roshko, Strouhal",
                 "?, ?, ?"};
  Results report_{database_, "DataFitResults", "pelmora_history_DataFitResults",
                  "seriesID, summary", "?, ?"};
  Results settings_{database_, "pelmora_fit_settings", "pelmora_history_fit_settings",
                    "SeriesID, BandPercent, Points, RatioCurve, Inverted, IgnoreResiduals, "
                    "SoftwareVersion, FittedAt, KeepsOverlap, PointsFingerprint, "
                    "CurveFingerprint, Choice, Spacing",
                    "?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?"};
  const std::string version_ = "0.1.0", now_ = "2026-11-21T14:05:09Z", command_ = "refit",
                    fingerprint_ = "3215198857dd77a6", choice_ = "adjusted-r2", spacing_ = "usual",
                    tables_ = "merge,curve,DataFitResults,pelmora_fit_settings";
};

}  // namespace

int main(int argc, char** argv) {
  require(argc == 2, "refit_rival CURVES");
  const PlainDatabase database(argv[1]);
  Refit refit(database);
  const auto list = allSeries(database);
  for (std::size_t i = 0; i < list.size(); ++i) {
    if (i % portion == 0) database.run("BEGIN IMMEDIATE");
    refit.refit(list[i]);
    if ((i + 1) % portion == 0 || i + 1 == list.size()) database.run("COMMIT");
  }
}
