// Importing runs of a stand and deriving the series.
// SPDX-License-Identifier: MIT
#include "base/date_text.h"
#include "base/text_case.h"
#include "calibration/exclusions.h"
#include "calibration/names.h"
#include "calibration/roshko_size.h"
#include "calibration/session.h"
#include "calibration/stand_check.h"
#include "calibration/steps/derivation.h"
#include "calibration/steps/raw_points.h"
#include "calibration/steps/set_up.h"
#include "calibration/steps/stand_rows.h"
#include "store/reading.h"

#include <algorithm>
#include <ctime>
#include <string>

namespace pelmora::calibration {
namespace {

constexpr std::size_t mostRuns = 4;  // one raw part each

std::vector<StandRun> cleanRuns(const std::vector<StandRun>& runs) {
  std::vector<StandRun> clean;
  for (StandRun run : runs) {
    run.fluid = cleanName("fluid", run.fluid);
    if (!run.operatorName.empty()) run.operatorName = cleanName("operator", run.operatorName);
    for (const StandRun& earlier : clean) {
      if (!equalNames(earlier.fluid, run.fluid)) continue;
      throw BadData({"fluid '" + run.fluid + "' appears twice", "",
                     "a calibration keeps one run of a fluid, so the second would replace the "
                     "first; give each run its own fluid name"});
    }
    clean.push_back(std::move(run));
  }
  return clean;
}

// Each fluid is one raw part of every series.
void requireRoom(const Meter& meter, const std::vector<Run>& before,
                 const std::vector<StandRun>& runs) {
  std::size_t fluids = before.size();
  for (const StandRun& run : runs) {
    const bool isKnown = std::ranges::any_of(
        before, [&](const Run& known) { return equalNames(known.fluid, run.fluid); });
    if (!isKnown) ++fluids;
  }
  if (fluids <= mostRuns) return;
  throw BadData({placeOf(meter) + " would have runs in " + std::to_string(fluids) +
                     " fluids; a calibration keeps " + std::to_string(mostRuns),
                 placeOf(meter), "import into a new calibration"});
}

// A day such as "2026-11-21" in the form of the set-ups; an empty text stays empty.
std::string storedDate(const std::string& iso) {
  if (iso.empty()) return {};
  constexpr const char* firstDay = "1900-01-01";  // the years of std::tm count from here
  if (!isDay(iso) || iso < firstDay) {
    throw BadData({"'" + iso + "' is not a date", "", "write year-month-day, such as 2026-11-21"});
  }
  std::tm parts{};
  parts.tm_year = std::stoi(iso.substr(0, 4)) - 1900;
  parts.tm_mon = std::stoi(iso.substr(5, 2)) - 1;
  parts.tm_mday = std::stoi(iso.substr(8, 2));
  return shortDateText(parts);
}

// The entries that a known run keeps although the import gives others.
std::vector<KeptEntry> keptEntries(const Run& known, const StandRun& given,
                                   const ImportOptions& options, const std::string& date) {
  std::vector<KeptEntry> entries;
  const auto add = [&](const char* what, const std::string& kept, const std::string& wanted) {
    if (!wanted.empty() && !equalNames(kept, wanted))
      entries.push_back({known.fluid, what, kept, wanted});
  };
  const auto numberOrNone = [](int number) {
    return number < 0 ? std::string() : std::to_string(number);
  };
  add("operator", known.operatorName, given.operatorName);
  add("stand", numberOrNone(known.stand), numberOrNone(options.stand));
  add("position", numberOrNone(known.position), numberOrNone(options.position));
  add("date", known.date, date);
  return entries;
}

void requireGoOn(const Meter& meter, const Observer& observer) {
  if (!observer.stop.stop_requested()) return;
  throw Cancelled({"the import into " + placeOf(meter) + " was cancelled", placeOf(meter), ""});
}

class Import {
 public:
  Import(Session& session, const Meter& meter, const Stand& stand,
         const std::vector<StandRun>& runs, const ImportOptions& options, const Observer& observer)
      : session_(session),
        meter_(meter),
        stand_(stand),
        runs_(runs),
        options_(options),
        observer_(observer) {}

  // before: the runs of the calibration.
  void copyRuns(const std::vector<Run>& before, std::vector<KeptEntry>& kept) {
    const std::string date = storedDate(options_.date);
    for (const StandRun& run : runs_) {
      requireGoOn(meter_, observer_);
      if (observer_.status) observer_.status("Copying job " + run.job);
      NameText operatorName = NameText::quoted(run.operatorName);
      const std::int32_t setUp = steps::findOrAddSetUp(
          session_.connection(),
          {meter_.id, options_.stand, options_.position, NameText::quoted(run.fluid)},
          operatorName);
      const auto known = std::ranges::find(before, setUp, &Run::id);
      if (known == before.end() || options_.update) {
        steps::changeSetUp(session_.connection(), setUp, entriesOf(run, date));
      } else {
        const auto entries = keptEntries(*known, run, options_, date);
        kept.insert(kept.end(), entries.begin(), entries.end());
      }
      requireGoOn(meter_, observer_);
      steps::copyStandRows(*stand_.connection(), session_.connection(), setUp, run.job,
                           [this] { requireGoOn(meter_, observer_); });
    }
  }

  std::vector<DerivedSeries> derive(bool withRotorB) {
    std::vector<DerivedSeries> derived;
    const std::size_t count = withRotorB ? steps::derivedSeriesNames.size() : 1;
    for (std::size_t k = 0; k < count; ++k)
      derived.push_back({steps::derivedSeriesNames[k], 0, {}});
    const auto setUps = steps::setUpsOf(session_.connection(), meter_.id);
    for (std::size_t k = 0; k < setUps.size() && k < mostRuns; ++k) {
      steps::DerivationSource source{"Raw" + std::to_string(k + 1), setUps[k], {}};
      (void)steps::jobsOf(session_.connection(), setUps[k], source.jobs);
      for (std::size_t series = 0; series < derived.size(); ++series) {
        requireGoOn(meter_, observer_);
        if (observer_.status) observer_.status("Deriving " + derived[series].name);
        steps::deriveSeries(session_.connection(), static_cast<steps::DerivedSeries>(series),
                            source, NameText::quoted(derived[series].name), meter_.id,
                            derived[series].id);
        requireGoOn(meter_, observer_);
        derived[series].points[k] =
            steps::readPoints(session_.connection(), source.table, derived[series].id).size();
      }
    }
    return derived;
  }

 private:
  [[nodiscard]] steps::SetUpEntries entriesOf(const StandRun& run, const std::string& date) const {
    return {NameText::quoted(run.operatorName), options_.stand, options_.position, date};
  }

  Session& session_;
  const Meter& meter_;
  const Stand& stand_;
  const std::vector<StandRun>& runs_;
  const ImportOptions& options_;
  const Observer& observer_;
};

}  // namespace

Imported Database::importRuns(const Meter& meter, const Stand& stand,
                              const std::vector<StandRun>& runs, const ImportOptions& options,
                              const Observer& observer) {
  const std::vector<StandRun> wanted = cleanRuns(runs);
  Imported imported;
  requireGoOn(meter, observer);
  imported.jobWithoutRotorB = checkReadings(stand, wanted, [&] { requireGoOn(meter, observer); });
  requireGoOn(meter, observer);
  return session_->changing("import", "importing into " + placeOf(meter), [&] {
    imported.isNewCalibration = options.newCalibration;
    imported.meter = options.newCalibration ? registerMeter(meter.serial, true) : meter;
    const std::vector<Run> before = this->runs(imported.meter);
    requireRoom(imported.meter, before, wanted);
    const std::size_t keptBefore = session_->kept().size();
    if (!options.newCalibration) (void)session_->keep(history::importedRuns(meter.id));
    Import import(*session_, imported.meter, stand, wanted, options, observer);
    import.copyRuns(before, imported.keptEntries);
    const ExclusionsOfRuns exclusions(*session_, imported.meter);
    imported.series = import.derive(imported.jobWithoutRotorB.empty());
    requireGoOn(meter, observer);
    imported.runs = this->runs(imported.meter);
    imported.doubts = doubtsAbout(*session_, imported, stand, wanted);
    requireGoOn(meter, observer);
    exclusions.applyAgain(imported);
    imported.kept.assign(session_->kept().begin() + static_cast<std::ptrdiff_t>(keptBefore),
                         session_->kept().end());
    return std::move(imported);
  });
}

}  // namespace pelmora::calibration
