// The calibration service: an open curve database and all operations on it.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/calibration/curve.h>
#include <pelmora/calibration/details.h>
#include <pelmora/calibration/examination.h>
#include <pelmora/calibration/failure.h>
#include <pelmora/calibration/fit.h>
#include <pelmora/calibration/fitted_curve.h>
#include <pelmora/calibration/flow.h>
#include <pelmora/calibration/history.h>
#include <pelmora/calibration/import.h>
#include <pelmora/calibration/observer.h>
#include <pelmora/calibration/points.h>
#include <pelmora/calibration/refit.h>
#include <pelmora/calibration/repeat.h>
#include <pelmora/calibration/sign_off.h>
#include <pelmora/calibration/values.h>
#include <pelmora/database.h>
#include <pelmora/export.h>
#include <pelmora/patience.h>

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace pelmora::calibration {

class Session;

enum class Mode { read = 0, write = 1 };

struct OpenOptions {
  Mode mode = Mode::write;
  Patience patience{.limit = std::chrono::seconds(30), .goesOn = {}};
  // Who works with the database, for the history. Empty: the user name of the process.
  std::string userName{};
};

// Several operations that take effect together at commit(). Without commit(), none takes effect.
//
// While a Change is open, every storing operation of its database is part of it. It holds the write
// lock the whole time, so do not wait for a user's answer in between.
class PELMORA_API Change {
 public:
  ~Change();
  Change(Change&&) noexcept;
  Change& operator=(Change&&) noexcept;
  Change(const Change&) = delete;
  Change& operator=(const Change&) = delete;

  // Errors: Locked, Unusable; then nothing is stored.
  void commit();
  // The history entries of everything replaced so far.
  [[nodiscard]] const std::vector<HistoryEntryId>& kept() const;

 private:
  friend class Database;
  explicit Change(std::shared_ptr<Session> session);
  std::shared_ptr<Session> session_;
};

// An open curve database. Use it in one thread at a time; you may move it between threads. Several
// can exist side by side, even on the same file. They share nothing behind the scenes.
//
// Every operation that stores something is one transaction: it takes effect as a whole or not at
// all. The history keeps what it replaces. Names are taken as people type them: blanks at either
// end are dropped, and any other character is allowed.
//
// Errors, besides those listed for each operation: Locked if others hold the database for longer
// than Patience::limit; Unusable if it cannot be read or written; Damaged.
//
//   cal::Database lab = cal::open("curves.db");
//   const cal::Meter meter = lab.registerMeter("M1");
//   lab.importRuns(meter, cal::Stand("stand.csv"), {{"1001", "Mineral spirit", "Ada"}});
//   const cal::Fit fit = lab.fit(meter, "Rotor A", {.band = 0.3});
//   if (fit.accepted()) lab.store(fit);
//   const double strouhal = lab.curve(meter, "Rotor A")(120.0).strouhal;
class PELMORA_API Database {
 public:
  // Errors: NotFound if there is no such file; Unusable if it is not a curve database.
  explicit Database(const std::string& location, OpenOptions options = {});
  ~Database();
  Database(Database&&) noexcept;
  Database& operator=(Database&&) noexcept;
  Database(const Database&) = delete;
  Database& operator=(const Database&) = delete;

  // As it was given, but for the password of an address.
  [[nodiscard]] const std::string& location() const;

  // Groups everything until Change::commit(). command: for the history, "fit", "import" ...
  [[nodiscard]] Change begin(const std::string& command);

  // Look-ups. `meter(serial)` is the latest calibration.
  //
  // Errors: NotFound; its remedy suggests similar names.
  [[nodiscard]] std::vector<Meter> meters() const;  // every calibration, by serial and number
  [[nodiscard]] std::vector<std::string> serials() const;  // in alphabetical order
  // Calls `visit` with every calibration, all of one moment. The memory that it needs does not grow
  // with their number. `visit` may read from the database, but not change it; what it throws ends
  // the list.
  //
  // Errors: BadData if a series has no name or a calibration no number.
  void overview(const std::function<void(const MeterOverview&)>& visit,
                OverviewOrder order = OverviewOrder::bySerial) const;
  [[nodiscard]] std::vector<Meter> calibrations(const std::string& serial) const;  // rising
  [[nodiscard]] std::optional<Meter> findMeter(const std::string& serial,
                                               int calibration = latestCalibration) const;
  [[nodiscard]] Meter meter(const std::string& serial, int calibration = latestCalibration) const;
  [[nodiscard]] std::vector<Run> runs(const Meter& meter) const;
  // Errors: BadData if a series has no name.
  [[nodiscard]] std::vector<std::string> seriesOf(const Meter& meter) const;
  // The row of a series, without a look at its points. Errors: NotFound.
  [[nodiscard]] std::int32_t seriesID(const Meter& meter, const std::string& name) const;
  // Everything of one moment, whatever other programs store meanwhile.
  //
  // Errors: NotFound; BadData if points are not numbers or there are more than 32,767.
  [[nodiscard]] StoredSeries series(const Meter& meter, const std::string& name) const;
  // Several series, in the order of `names`; all of the calibration in alphabetical order if none
  // is named.
  //
  // Errors: NotFound; BadData that names every series that cannot be read, Damaged if the first of
  //         them is on a damaged page.
  [[nodiscard]] std::vector<StoredSeries> everySeries(
      const Meter& meter, const std::vector<std::string>& names = {}) const;

  // The latest calibration of the meter; an unknown meter is registered first. With
  // `newCalibration`, always starts the next calibration.
  //
  // Errors: BadData for an empty name or one with control characters.
  Meter registerMeter(const std::string& serial, bool newCalibration = false);

  // Copies runs into the calibration and derives Rotor A and, if all runs have readings of rotor B,
  // Rotor B, Rotor Sum and Ratio. A run in a fluid that the calibration already has replaces
  // the earlier run. Excluded points that are imported again, from the same job with the same
  // values, stay excluded; Imported::dropped lists the exclusions of all others.
  //
  // Errors: NotFound for a job; BadData, with job, point and column, for a reading that is missing,
  //         is a text, is negative or divides by zero; for a fluid given twice; and for more than
  //         four fluids.
  Imported importRuns(const Meter& meter, const Stand& stand, const std::vector<StandRun>& runs,
                      const ImportOptions& options = {}, const Observer& observer = {});

  // Takes over the points of a result file (see resultPoints): removes the curve of the series and
  // adds the points to its merged points.
  //
  // Result: the history entry of the previous curve and merged points; 0 if there were none.
  // Errors: NotFound; BadData for fewer than two points.
  HistoryEntryId importResult(const Meter& meter, const std::string& series,
                              const PointArray& points);

  // Stores points as raw part `part` (1 to 4) of a series, in place of that part's old points.
  // Creates the series if needed. Exclusions stay in force if the same points are stored again,
  // with or without the excluded ones. Any other points end them.
  //
  // points: n points, Roshko and Strouhal.  Errors: BadData for an invalid part, no points, more
  // than 32,767 points, or a value that is not finite.
  StoredPoints storeRaw(const Meter& meter, const std::string& series, int part,
                        const PointArray& points);

  // Every raw point of a series, by part and number, excluded ones too.
  //
  // Errors: NotFound; BadData as for series(); Cancelled at the observer's stop.
  [[nodiscard]] std::vector<RawPoint> points(const Meter& meter, const std::string& series) const;
  [[nodiscard]] std::vector<RawPoint> points(const StoredSeries& series,
                                             const Observer& observer = {}) const;

  // Leaves points out of a series. They are removed from the raw parts, so that every program sees
  // the reduced series, and kept with the reason, the user and the time. An exclusion lasts until
  // include(): it survives a new fit and a new import of the same job. A stored curve becomes
  // outdated.
  //
  // Errors: NotFound; BadData for an empty reason, a selection without points or of a point that
  // does not exist. Points that are excluded already stay as they are.
  ExclusionChange exclude(const Meter& meter, const std::string& series,
                          const PointSelection& selection, const std::string& reason,
                          const ExclusionOptions& options = {});
  // Puts excluded points back where they were.
  //
  // Errors: as for exclude().
  ExclusionChange include(const Meter& meter, const std::string& series,
                          const PointSelection& selection, const ExclusionOptions& options = {});

  // Merges the raw parts of a series and fits them. Stores nothing.
  //
  // Errors: NotFound; as for calibration::fit().
  [[nodiscard]] Fit fit(const Meter& meter, const std::string& series,
                        const FitSettings& settings = {}, const Observer& observer = {}) const;
  [[nodiscard]] Fit fit(const StoredSeries& series, const FitSettings& settings = {},
                        const Observer& observer = {}) const;

  // Stores curve, merged points, report and settings of a fit, replacing those of the series.
  //
  // Result: the history entry of what was replaced; 0 if the series had no curve.
  // Errors: NoFit if the fit has no curve; Changed if the raw points of the series are no longer
  //         those that were fitted, or the series was deleted. Then nothing is stored.
  HistoryEntryId store(const Fit& fit);

  // The stored curve. It has bands if a new fit with the same settings reproduces the curve; the
  // bands are those of the new fit.
  //
  // Errors: NoCurve if none is stored; BadData if the stored points are not a valid curve.
  [[nodiscard]] Curve curve(const Meter& meter, const std::string& series) const;
  [[nodiscard]] Curve curve(const StoredSeries& series, const Observer& observer = {}) const;

  // The curve behind the stored table, with the uncertainty of the stand if one is stored. This is
  // the equation or the reference curve if a new fit with the same settings reproduces the table,
  // and otherwise the table itself.
  //
  // Errors: as for curve().
  [[nodiscard]] FittedCurve fittedCurve(const Meter& meter, const std::string& series) const;
  [[nodiscard]] FittedCurve fittedCurve(const StoredSeries& series,
                                        const Observer& observer = {}) const;
  // The same from a fit that has been repeated already.
  [[nodiscard]] FittedCurve fittedCurve(const StoredSeries& series, const Repeated& repeated,
                                        const Observer& observer = {}) const;

  // The uncertainty of the stand that measured a calibration, stored with the calibration. A change
  // returns the history entry of the previous statement, 0 if there was none.
  //
  // Errors: BadData for text that cannot be understood; the message names the line.
  [[nodiscard]] std::optional<StandStatement> standUncertainty(const Meter& meter) const;
  HistoryEntryId setStandUncertainty(const Meter& meter, const StandStatement& statement);
  HistoryEntryId removeStandUncertainty(const Meter& meter);

  // Fluids with viscosity laws, by name, for flows in service. setFluidLaw() replaces a stored law
  // of the same name.
  //
  // Errors: NotFound, with a remedy that suggests similar names; BadData for an invalid law.
  [[nodiscard]] std::vector<FluidLaw> fluidLaws() const;
  [[nodiscard]] FluidLaw fluidLaw(const std::string& name) const;
  void setFluidLaw(const FluidLaw& fluid);
  void removeFluidLaw(const std::string& name);

  // Whether the stored curve belongs to the stored raw points. If StoredSeries::age is unknown, the
  // fit is repeated. A curve that the new fit reproduces is current.
  //
  // Errors: Cancelled at the observer's stop.
  [[nodiscard]] CurveAge curveAge(const StoredSeries& series, const Observer& observer = {}) const;

  // Fits the series with the settings of its stored curve, or with `unkept` if they were not kept.
  // A range beyond the points is used as it is, because that of a stored curve may extend there.
  [[nodiscard]] Repeated repeat(const StoredSeries& series, const UnkeptSettings& unkept = {},
                                const Observer& observer = {}) const;

  // Repeats the fits of many series and stores every curve that has changed, in portions, each its
  // own transaction. Fits run in separate threads with separate connections; `observer` is called
  // in the caller's thread. A stop takes effect after the current portion.
  RefitOutcome refit(const std::vector<RefitTask>& tasks, const RefitOptions& options = {},
                     const Observer& observer = {});
  // Every series of every calibration. What cannot be read of their names and numbers is empty or
  // -1, and such a series is RefitResultKind::unreadable.
  [[nodiscard]] std::vector<RefitTask> allSeries() const;

  // What certificates state about the laboratory and about a calibration; see details.h. The
  // setters replace the details that they are given and remove those whose text is empty.
  // setDetails() returns the history entry of the previous details, 0 if there were none. Previous
  // details of the laboratory are not kept.
  //
  // Errors: BadData for an unknown key, for a detail of a meter given to the laboratory or vice
  //         versa, and for text that is not valid for its kind.
  [[nodiscard]] Details laboratory() const;
  void setLaboratory(const Details& changes);
  [[nodiscard]] Details details(const Meter& meter) const;
  HistoryEntryId setDetails(const Meter& meter, const Details& changes);

  // Signs a series as it was `seen`. Earlier signatures stay in the list.
  //
  // Errors: NoCurve; BadData for an empty name, one with control characters, and a curve that is
  //         older than its points; Changed if the series is no longer as it was seen.
  SignOff signOff(const StoredSeries& seen, const std::string& name,
                  const std::string& remark = {});
  // The signatures of a series, newest first. One whose fingerprint is not signedFingerprint() of
  // the series as it is now is void.
  [[nodiscard]] std::vector<SignOff> signOffs(const StoredSeries& series) const;

  // Deletes a series, or a calibration with everything that belongs to it.
  //
  // Result: in `rows`, the deleted rows by table; in `id`, the entry that brings them back.
  HistoryEntry remove(const Meter& meter, const std::string& series);
  HistoryEntry remove(const Meter& meter);
  // What these would delete; changes nothing. Deleting a removal that was shown deletes that and
  // nothing else.
  //
  // Errors: Changed if any of its rows has changed since or is gone; then nothing is deleted.
  [[nodiscard]] Removal removal(const Meter& meter, const std::string& series) const;
  [[nodiscard]] Removal removal(const Meter& meter) const;
  HistoryEntry remove(const Removal& shown);

  // Calls `visit` with everything that was replaced or deleted, newest first, all of one moment.
  // The memory that it needs does not grow with the number of entries. `visit` may read from the
  // database, but not change it; what it throws ends the list.
  void visitHistory(const HistoryFilter& filter,
                    const std::function<void(const HistoryEntry&)>& visit) const;
  // The same as a list.
  [[nodiscard]] std::vector<HistoryEntry> history(const HistoryFilter& filter = {}) const;
  // Brings back what an entry holds, with its ids. What it replaces is kept in turn.
  //
  // Errors: NotFound for the entry; NotRestorable.
  Restored restore(HistoryEntryId entry);
  // Removes entries for good and returns them.
  std::vector<HistoryEntry> prune(const HistoryPruning& pruning);
  // What that would remove; changes nothing. Pruning the entries that were shown removes no others.
  [[nodiscard]] std::vector<HistoryEntry> prunable(const HistoryPruning& pruning) const;
  void prune(const std::vector<HistoryEntry>& entries);

  // Checks the contents: orphaned rows, invalid numbers, duplicates, outdated curves, missing
  // indexes ... Findings in order of severity; empty if all is well. See damageOf() for the file.
  [[nodiscard]] std::vector<Finding> examine() const;
  // Repairs what is safe to repair: makes missing indexes and tables, removes orphaned rows. The
  // history keeps what it removes.
  Repaired repair();

  // On a session that is already open; for the service itself.
  explicit Database(std::shared_ptr<Session> session);

  // For anything that the service does not offer; the rules of Connection apply.
  [[nodiscard]] const ConnectionPtr& connection() const;

 private:
  std::shared_ptr<Session> session_;
};

// Opens a curve database.
[[nodiscard]] PELMORA_API Database open(const std::string& location, OpenOptions options = {});
// Creates a new, empty curve database and opens it. Errors: Exists; Unusable.
[[nodiscard]] PELMORA_API Database create(const std::string& location, OpenOptions options = {});

}  // namespace pelmora::calibration
