// SPDX-License-Identifier: MIT
#include "apps/pelmora/stand_import.h"

#include "apps/pelmora/input/csv_points.h"
#include "apps/pelmora/interruption.h"
#include "apps/pelmora/unreadable_series.h"
#include "history/shared_connection.h"

#include <algorithm>
#include <cctype>
#include <chrono>

namespace pelmora::cli {
namespace {

constexpr std::size_t mostSetups = 4;  // one raw part each
// The component waits for a lock as long as it lasts; a command does not.
constexpr std::chrono::seconds lockPatience{10};
constexpr std::string_view waitingText = "Waiting for database to unlock";

bool sameFluid(const std::string& a, const std::string& b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](unsigned char p, unsigned char q) {
    return std::tolower(p) == std::tolower(q);
  });
}

// Each fluid is one raw part of every series.
void requireRoom(const std::vector<CalSetupInfo>& before, const ImportRequest& request) {
  std::size_t setups = before.size();
  for (const StandRun& run : request.runs) {
    const bool isKnown = std::any_of(before.begin(), before.end(), [&](const CalSetupInfo& setup) {
      return sameFluid(setup.Fluid, run.fluid);
    });
    if (!isKnown) ++setups;
  }
  if (setups <= mostSetups) return;
  throw Trouble(ExitCode::badInput,
                "meter '" + request.meter + "' would have runs in " + std::to_string(setups) +
                    " fluids; a calibration keeps 4",
                "import into a new calibration with --new-calibration; nothing was changed");
}

// The import's statements name the file of the curves between apostrophes and are met by a
// connection that knows the name alone: any other does for a path that they cannot carry.
std::string statementPath(std::string path) {
  std::ranges::replace(path, '\'', '_');
  return path;
}

// Ends the component's waiting for a lock, and what follows an error.
class Watch {
 public:
  explicit Watch(CurveSession& session) : session_(session), before_(session.data().StatusUpdate) {
    session_.data().StatusUpdate = [this](const std::string& text) { onStatus(text); };
  }
  ~Watch() { session_.data().StatusUpdate.swap(before_); }
  Watch(const Watch&) = delete;
  Watch& operator=(const Watch&) = delete;

 private:
  using Clock = std::chrono::steady_clock;

  void onStatus(const std::string& text) {
    requireNotInterrupted();
    session_.progress().show(text);
    if (!text.starts_with(waitingText)) {
      waitingSince_.reset();
      return;
    }
    if (!waitingSince_) waitingSince_ = Clock::now();
    if (Clock::now() - *waitingSince_ < lockPatience) return;
    throw Error(0, "pelmora", "the database stays locked by another user");
  }

  CurveSession& session_;
  std::function<void(const std::string&)> before_;
  std::optional<Clock::time_point> waitingSince_;
};

struct RunLists {
  std::vector<std::string> jobsA, jobsB, fluids, operators;
};

RunLists listsOf(const std::vector<StandRun>& runs) {
  RunLists lists;
  for (const StandRun& run : runs) {
    lists.jobsA.push_back(run.jobA);
    lists.jobsB.push_back(run.jobB);
    lists.fluids.push_back(run.fluid);
    lists.operators.push_back(run.operatorName);
  }
  return lists;
}

// Of a second job that the import leaves out; the rest is as it should be. Any other error ends the
// import.
std::optional<Trouble> importTrouble(const std::vector<std::string>& errors,
                                     const ImportRequest& request) {
  if (errors.empty()) return std::nullopt;
  for (const StandRun& run : request.runs) {
    const bool secondJob = !run.jobB.empty() && run.jobB != "0" && run.jobB != run.jobA;
    if (!secondJob || errors.front().find("copyCaldb") == std::string::npos) continue;
    return Trouble(ExitCode::badInput,
                   "second job " + run.jobB + " of the run " + run.jobA + ":" + run.jobB +
                       " was not copied, because the import takes one job for each run; job " +
                       run.jobA + " was imported as rotor A",
                   "import job " + run.jobB +
                       " under a serial number of its own, where its 'Rotor A' is this "
                       "meter's rotor B");
  }
  throw Trouble(ExitCode::badInput,
                "importing into meter '" + request.meter + "': " + errors.front(),
                "nothing was changed");
}

std::vector<DerivedSeries> derivedSeries(CurveSession& session, const MeterInfo& meter) {
  std::vector<DerivedSeries> derived;
  for (const SeriesInfo& entry : meter.Series) {
    if (entry.SeriesID == 0) continue;
    DerivedSeries series{entry.SeriesName, entry.SeriesID, {}, {}};
    try {
      const MeterInfo stored = session.requireSeries(meter, entry.SeriesName);
      for (std::size_t part = 0; part < series.points.size(); ++part) {
        series.points[part] = stored.Series.front().Raw[part].Points.size();
      }
    } catch (const Trouble& trouble) {
      series.trouble = trouble;
    }
    derived.push_back(std::move(series));
  }
  return derived;
}

// The calibration that the import goes into; Source -1 where the component is to register the
// meter.
MeterInfo targetMeter(CurveSession& session, const ImportRequest& request) {
  MeterInfo meter = request.reCalID < 0 ? session.findMeter(request.meter, -1)
                                        : session.requireMeter(request.meter, request.reCalID);
  if (meter.Source == 1)
    requireRoom(request.newCalibration ? std::vector<CalSetupInfo>() : session.setups(meter),
                request);
  if (meter.Source != 1) requireRoom({}, request);
  return meter;
}

}  // namespace

ImportRequest importRequest(const ImportOptions& options) {
  return {options.meter,
          options.stand,
          standRuns(options.jobs, options.fluids, options.operators),
          options.calibration,
          options.standNumber,
          options.position,
          options.newCalibration};
}

std::optional<Trouble> ImportOutcome::anyTrouble() const {
  UnreadableSeries unreadable;
  for (const DerivedSeries& derived : series) {
    if (derived.trouble) unreadable.add("'" + derived.name + "'", *derived.trouble);
  }
  return trouble ? trouble : unreadable.trouble();
}

ImportOutcome importRuns(StoredChange& change, const ImportRequest& request) {
  CurveSession& session = change.session();
  requireNewName("--meter", request.meter);
  change.begin();
  const MeterInfo before = targetMeter(session, request);
  const ConnectionPtr stand = openStand(request.stand, session.patienceFor(request.stand));
  const RunCheck check = checkRuns(stand, request.stand, request.runs);

  ImportOutcome outcome;
  if (!check.hasRotorB) {
    outcome.notes.push_back(
        "job " + check.withoutRotorB +
        " has no readings of rotor B (V20, V21), so Rotor B, Rotor Sum and Ratio are not derived");
  }
  if (before.Source == 1 && !request.newCalibration)
    change.keep(history::importedRuns(before.MeterID));
  RawData& data = session.data();
  MessageRecorder& messages = session.messages();
  messages.forget();
  // A meter known from the list of all meters alone has no calibration to import into yet.
  const bool needsCalibration = before.Source == 2 || request.newCalibration;
  if (needsCalibration && data.setMeterSN(request.meter) == 0) {
    messages.throwIfAny(ExitCode::database, "registering meter '" + request.meter + "'",
                        "nothing was imported");
  }
  outcome.meterIsNew = before.Source != 1 || request.newCalibration;

  const RunLists lists = listsOf(request.runs);
  {
    const Watch watch(session);
    const std::int16_t reCalID = needsCalibration ? std::int16_t{-1} : request.reCalID;
    const std::string curves = statementPath(session.path());
    data.dbDirSetByString(curves);
    outcome.meter = data.importCaldb(
        request.meter, history::standConnection(stand, session.connection(), curves), lists.jobsA,
        lists.jobsB, lists.fluids, lists.operators, true, check.hasRotorB, check.hasRotorB,
        check.hasRotorB, request.standID, request.positionID, session.sharedConnection(), reCalID);
  }
  outcome.trouble = importTrouble(messages.errors(), request);
  messages.forget();
  outcome.setups = session.setups(outcome.meter);
  outcome.series = derivedSeries(session, outcome.meter);
  return outcome;
}

}  // namespace pelmora::cli
