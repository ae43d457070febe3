// The calibration service: an open curve database and everything that can be done with it.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/calibration/curve.h>
#include <pelmora/calibration/failure.h>
#include <pelmora/calibration/fit.h>
#include <pelmora/calibration/history.h>
#include <pelmora/calibration/import.h>
#include <pelmora/calibration/observer.h>
#include <pelmora/calibration/refit.h>
#include <pelmora/calibration/repeat.h>
#include <pelmora/calibration/values.h>
#include <pelmora/database.h>
#include <pelmora/export.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace pelmora::calibration {

class Session;

enum class Mode { read = 0, write = 1 };

struct OpenOptions {
  Mode mode = Mode::write;
  Patience patience{};
  // Who works with the database, for the history; empty: the name of the process's user.
  std::string userName{};
};

// Several operations that become final together. Ends without commit(): none of them took place.
//
// While one is open, every operation of its database that stores something is part of it. The lock
// for writing is held all the while, so no question should be asked meanwhile.
class PELMORA_API Change {
 public:
  ~Change();
  Change(Change&&) noexcept;
  Change& operator=(Change&&) noexcept;
  Change(const Change&) = delete;
  Change& operator=(const Change&) = delete;

  // Errors: Locked, Unusable; nothing is stored then.
  void commit();
  // The history's entries of what was replaced so far.
  [[nodiscard]] const std::vector<HistoryEntryId>& kept() const;

 private:
  friend class Database;
  explicit Change(std::shared_ptr<Session> session);
  std::shared_ptr<Session> session_;
};

// An open curve database. It may be used in one thread at a time and moved between threads; several
// may live side by side, on the same file too. Nothing of it is shared behind the scenes.
//
// Every operation that stores something is one transaction: it takes place as a whole or not at
// all. What it replaces is kept in the history. Names are what people typed: blanks at their ends
// are no part of them, any other character may appear in them.
//
// Errors, beside those that an operation lists: Locked where others held the database for longer
// than Patience::wait; Unusable where it cannot be read or written; Damaged.
//
//   cal::Database lab = cal::open("curves.db");
//   const cal::Meter meter = lab.registerMeter("M1");
//   lab.importRuns(meter, cal::Stand("stand.csv"), {{"1001", "Mineral spirit", "Ada"}});
//   const cal::Fit fit = lab.fit(meter, "Rotor A", {.band = 0.3});
//   if (fit.accepted()) lab.store(fit);
//   const double strouhal = lab.curve(meter, "Rotor A")(120.0).strouhal;
class PELMORA_API Database {
 public:
  // Errors: NotFound where there is no such file; Unusable where it is no curve database.
  explicit Database(const std::string& location, OpenOptions options = {});
  ~Database();
  Database(Database&&) noexcept;
  Database& operator=(Database&&) noexcept;
  Database(const Database&) = delete;
  Database& operator=(const Database&) = delete;

  [[nodiscard]] const std::string& location() const;

  // Everything until Change::commit() together. command: for the history, "fit", "import" ...
  [[nodiscard]] Change begin(const std::string& command);

  // Looking up. `meter(serial)` is the latest calibration.
  //
  // Errors: NotFound; its remedy names what is similar.
  [[nodiscard]] std::vector<Meter> meters() const;  // every calibration, by serial and number
  [[nodiscard]] std::vector<Meter> calibrations(const std::string& serial) const;  // rising
  [[nodiscard]] std::optional<Meter> findMeter(const std::string& serial,
                                               int calibration = latestCalibration) const;
  [[nodiscard]] Meter meter(const std::string& serial, int calibration = latestCalibration) const;
  [[nodiscard]] std::vector<Run> runs(const Meter& meter) const;
  [[nodiscard]] std::vector<std::string> seriesOf(const Meter& meter) const;
  // Errors: NotFound; BadData where points cannot be read as numbers or are more than 32,767.
  [[nodiscard]] StoredSeries series(const Meter& meter, const std::string& name) const;

  // The latest calibration of the meter, which is registered where it is unknown; with
  // `newCalibration` the next one in any case.
  //
  // Errors: BadData for an empty name or one with control characters.
  Meter registerMeter(const std::string& serial, bool newCalibration = false);

  // Copies runs into the calibration and derives Rotor A and, where all runs have readings of rotor
  // B, Rotor B, Rotor Sum and Ratio. A run in a fluid that the calibration has already replaces
  // that run.
  //
  // Errors: NotFound for a job; BadData, with job, point and column, for a reading that is missing,
  //         is a text or divides by zero, for a fluid that appears twice and for more than four.
  Imported importRuns(const Meter& meter, const Stand& stand, const std::vector<StandRun>& runs,
                      const ImportOptions& options = {}, const Observer& observer = {});

  // Stores points as raw part `part` (1 to 4) of a series, in place of the old ones of that part.
  // The series is made where there is none.
  //
  // points: n points, Roshko and Strouhal.  Errors: BadData for a part that is none, no points,
  // more than 32,767, or a value that is not finite.
  StoredPoints storeRaw(const Meter& meter, const std::string& series, int part,
                        const PointArray& points);

  // Merges the raw parts of a series and fits them. Stores nothing.
  //
  // Errors: NotFound; as calibration::fit().
  [[nodiscard]] Fit fit(const Meter& meter, const std::string& series,
                        const FitSettings& settings = {}, const Observer& observer = {}) const;
  [[nodiscard]] Fit fit(const StoredSeries& series, const FitSettings& settings = {},
                        const Observer& observer = {}) const;

  // Stores curve, merged points, report and settings of a fit in place of what the series has.
  //
  // Result: the entry of what was replaced; 0 where the series had no curve.
  // Errors: NoFit where the fit has no curve; Changed where the series' raw points are no longer
  //         those that were fitted, or the series was deleted; nothing is stored then.
  HistoryEntryId store(const Fit& fit);

  // The stored curve, with the bands of a fit that is made again with its settings, where that
  // gives the same curve.
  //
  // Errors: NotFound where none is stored; BadData where what is stored is no curve.
  [[nodiscard]] Curve curve(const Meter& meter, const std::string& series) const;

  // A fit of the series with the settings of its stored curve, or with `unkept` where they were not
  // kept. A range that reaches beyond the points is taken as it is, as a stored curve's may.
  [[nodiscard]] Repeated repeat(const StoredSeries& series, const UnkeptSettings& unkept = {},
                                const Observer& observer = {}) const;

  // Repeats the fit of many series and stores every curve that has changed, in portions that are
  // final each by itself. Fits run in threads of their own, with connections of their own;
  // `observer` is called in the caller's thread. A stop ends it after the portion at hand.
  RefitOutcome refit(const std::vector<RefitTask>& tasks, const RefitOptions& options = {},
                     const Observer& observer = {});
  // Every series of every calibration.
  [[nodiscard]] std::vector<RefitTask> allSeries() const;

  // Deletes a series, or a calibration with everything that belongs to it.
  //
  // Result: rows that were deleted, by table, in `rows`; the entry that brings them back in `id`.
  HistoryEntry remove(const Meter& meter, const std::string& series);
  HistoryEntry remove(const Meter& meter);

  // What was replaced or deleted, the newest first.
  [[nodiscard]] std::vector<HistoryEntry> history(const HistoryFilter& filter = {}) const;
  // Brings back what an entry has kept, with its ids; what stands there now is kept in turn.
  //
  // Errors: NotFound for the entry; Exists where something else has taken its place.
  Restored restore(HistoryEntryId entry);
  // Removes entries for good; returns them.
  std::vector<HistoryEntry> prune(const HistoryPruning& pruning);

  // Over what is open already; for the service itself.
  explicit Database(std::shared_ptr<Session> session);

  // For what the service does not offer. The connection's rules are its own.
  [[nodiscard]] const ConnectionPtr& connection() const;

 private:
  std::shared_ptr<Session> session_;
};

// Opens a curve database.
[[nodiscard]] PELMORA_API Database open(const std::string& location, OpenOptions options = {});
// Makes a new, empty one and opens it. Errors: Exists; Unusable.
[[nodiscard]] PELMORA_API Database create(const std::string& location, OpenOptions options = {});

}  // namespace pelmora::calibration
