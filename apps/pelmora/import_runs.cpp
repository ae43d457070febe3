// SPDX-License-Identifier: MIT
#include "apps/pelmora/import_runs.h"

#include "apps/pelmora/failure_trouble.h"
#include "apps/pelmora/input/sheet_input.h"
#include "apps/pelmora/options/names.h"

namespace pelmora::cli {
namespace {

std::vector<calibration::StandRun> standRuns(const std::vector<ListedRun>& listed) {
  std::vector<calibration::StandRun> runs;
  for (const ListedRun& entry : listed) runs.push_back(entry.run);
  return runs;
}

// The calibration that the import goes into, or that the next one follows.
calibration::Meter targetMeter(calibration::Database& lab, const ImportOptions& options) {
  return options.calibration < 0 ? lab.registerMeter(options.meter)
                                 : lab.meter(options.meter, options.calibration);
}

std::optional<Trouble> secondJobTrouble(const std::vector<ListedRun>& runs) {
  for (const ListedRun& entry : runs) {
    const std::string &first = entry.run.job, &second = entry.secondJob;
    if (second.empty() || second == first) continue;
    return Trouble(ExitCode::badInput,
                   "second job " + second + " of the run " + first + ":" + second +
                       " was not copied, because the import takes one job for each run; job " +
                       first + " was imported as rotor A",
                   "import job " + second +
                       " under a serial number of its own, where its 'Rotor A' is this "
                       "meter's rotor B");
  }
  return std::nullopt;
}

}  // namespace

ImportRequest importRequest(const ImportOptions& options) {
  requireNewName("--meter", options.meter);
  return {options, listedRuns(options.jobs, options.fluids, options.operators)};
}

ImportOutcome importRuns(CommandChange& change, const ImportRequest& request) {
  const ImportOptions& options = request.options;
  Session& session = change.session();
  calibration::Database& lab = session.database();
  const calibration::Stand stand = session.openStand(options.stand, options.style);
  if (stand.recognised()) sayRecognised(options.stand, *stand.recognised());
  for (const ListedRun& entry : request.runs) {
    if (!entry.secondJob.empty()) stand.requireJob(entry.secondJob);
  }
  change.begin();
  const bool isKnown = lab.findMeter(options.meter).has_value();
  const calibration::Meter meter = targetMeter(lab, options);
  calibration::ImportOptions settings;
  // The first calibration of an unknown meter is new anyway.
  settings.newCalibration = options.newCalibration && isKnown;
  settings.stand = options.standNumber;
  settings.position = options.position;
  settings.date = options.date;
  settings.update = options.update;
  ImportOutcome outcome;
  try {
    outcome.imported =
        lab.importRuns(meter, stand, standRuns(request.runs), settings, session.observer());
  } catch (const calibration::BadData& failure) {
    const Trouble why = troubleOf(failure);
    throw Trouble(why.code(), why.what(),
                  why.remedy() + (why.remedy().empty() ? "" : "; ") + "nothing was imported");
  }
  outcome.isNewCalibration = options.newCalibration || !isKnown;
  if (const std::string& job = outcome.imported.jobWithoutRotorB; !job.empty()) {
    outcome.notes.push_back(
        "job " + job +
        " has no readings of rotor B (V20, V21), so Rotor B, Rotor Sum and Ratio are not derived");
  }
  for (const calibration::KeptEntry& entry : outcome.imported.keptEntries) {
    outcome.notes.push_back("the run in " + entry.fluid + " keeps its " + entry.what + " " +
                            entry.kept + "; " + entry.given + " was given: --update replaces it");
  }
  for (const std::string& doubt : outcome.imported.doubts) printNote(doubt);
  outcome.trouble = secondJobTrouble(request.runs);
  return outcome;
}

}  // namespace pelmora::cli
