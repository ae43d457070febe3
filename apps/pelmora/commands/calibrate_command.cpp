// SPDX-License-Identifier: MIT
#include "apps/pelmora/checked_fit.h"
#include "apps/pelmora/commands/commands.h"
#include "apps/pelmora/failure_trouble.h"
#include "apps/pelmora/import_runs.h"
#include "apps/pelmora/input/fit_input.h"
#include "apps/pelmora/output/fit_output.h"
#include "apps/pelmora/output/import_output.h"
#include "apps/pelmora/output/point_output.h"
#include "apps/pelmora/output/text_table.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <memory>

namespace pelmora::cli {
namespace {

struct CalibrateRequest {
  DatabaseOption curves;
  ImportOptions import;
  FitTests tests;
  FitChoices choices;
  bool asJson = false, isDryRun = false;
};

// The fit of this series alone, for suggested commands to repeat.
FitCall callOf(const CalibrateRequest& request, const std::string& series) {
  FitCall call{.database = request.curves.path,
               .meter = request.import.meter,
               .series = series,
               .calibration = request.import.calibration,
               .tests = request.tests,
               .choices = request.choices};
  call.ratio = series == "Ratio";
  return call;
}

struct Calibrated {
  ImportOutcome import;
  std::vector<CheckedFit> fits;
};

// A fit that could not run: its trouble belongs to its series, so that the others still get their
// curves.
CheckedFit notRun(const calibration::Meter& meter, const calibration::DerivedSeries& derived,
                  const Trouble& trouble) {
  CheckedFit checked;
  checked.fit.meter = meter;
  checked.fit.series = derived.name;
  checked.fit.seriesID = derived.id;
  checked.fit.rawPoints = derived.points;
  checked.trouble = trouble;
  return checked;
}

CheckedFit fitted(CommandChange& change, const calibration::Meter& meter,
                  const calibration::DerivedSeries& derived, const CalibrateRequest& request) {
  const auto ownTrouble = [&](const Trouble& trouble) {
    // What is half stored must not stay.
    if (trouble.code() == ExitCode::database) throw Trouble(trouble);
    return notRun(meter, derived, trouble);
  };
  try {
    const bool isRatio = derived.name == "Ratio";
    return fitSeries(
        change, meter, derived.name,
        {fitSettings(request.tests, request.choices, isRatio), request.choices.isStrict});
  } catch (const Trouble& trouble) {
    return ownTrouble(trouble);
  } catch (const calibration::Failure& failure) {
    return ownTrouble(troubleOf(failure));
  }
}

// "Curves are stored": what of the fits is in the database now, or would be.
std::string storedCurvesText(const std::vector<CheckedFit>& fits, bool isDryRun) {
  if (std::ranges::none_of(fits, &CheckedFit::isStored)) return "No curve is stored";
  return isDryRun ? "Curves to be stored" : "Curves are stored";
}

// Empty if the merge cut nothing.
std::string cutText(const std::vector<CheckedFit>& fits) {
  std::vector<PointsOfSeries> cut;
  for (const CheckedFit& checked : fits)
    cut.push_back({checked.fit.series, checked.fit.cut.size()});
  const std::string points = pointsBySeries(cut);
  return points.empty() ? ""
                        : wrapped("The merge cut " + points + "; 'pelmora points' lists them.", 0);
}

std::string calibrationText(const CalibrateRequest& request, const Calibrated& done, double band) {
  const std::string& database = request.curves.path;
  const calibration::Meter& meter = done.import.imported.meter;
  std::string text =
      importText(database, done.import) + "\n" + chosenTable(done.fits) + "\n" +
      cutText(done.fits) +
      wrapped(storedCurvesText(done.fits, request.isDryRun) + " in " + database + ", meter " +
                  meter.serial + ", calibration " + std::to_string(meter.calibration) + "; band " +
                  significantText(band, 4) + " %.",
              0);
  for (const CheckedFit& checked : done.fits) {
    const calibration::Fit& fit = checked.fit;
    if (checked.trouble) {
      text += "\n" + fit.series + ": no curve\n" + equationTable(fit);
    } else if (!fit.outcome.Warnings.empty()) {
      text += "\n" + fit.series + "\n" + warningLines(fit);
    }
    text += stepLines(fit, stepsFor(fit, callOf(request, fit.series)));
  }
  return text;
}

nlohmann::json calibrationJson(const CalibrateRequest& request, const Calibrated& done) {
  nlohmann::json value = importJson(done.import);
  value["database"] = request.curves.path;
  value["fits"] = nlohmann::json::array();
  for (const CheckedFit& checked : done.fits)
    value["fits"].push_back(fitJson(checked, callOf(request, checked.fit.series)));
  return value;
}

// One line for all series without a curve.
void requireAll(const Calibrated& done) {
  if (done.import.trouble) throw Trouble(*done.import.trouble);
  std::string names;
  std::size_t missing = 0;
  const Trouble* first = nullptr;
  for (const CheckedFit& checked : done.fits) {
    if (!checked.trouble) continue;
    names += (missing++ == 0 ? "'" : ", '") + checked.fit.series + "'";
    if (first == nullptr) first = &*checked.trouble;
  }
  if (first == nullptr) return;
  if (missing == 1) throw Trouble(*first);
  throw Trouble(first->code(), "no curve for series " + names + "; first: " + first->what(),
                first->remedy());
}

void calibrate(const CalibrateRequest& request) {
  const ImportRequest runs = importRequest(request.import);
  // Read before anything is changed: Rotor A needs them in any case.
  const calibration::FitSettings settings = fitSettings(request.tests, request.choices, false);
  Session session(request.curves, calibration::Mode::write);
  CommandChange change(session, "calibrate", request.isDryRun);
  Calibrated done{importRuns(change, runs), {}};
  for (const calibration::DerivedSeries& derived : done.import.imported.series)
    done.fits.push_back(fitted(change, done.import.imported.meter, derived, request));
  change.finish();
  session.progress().clear();
  if (request.asJson) {
    nlohmann::json value = calibrationJson(request, done);
    change.addTo(value);
    printData(jsonText(value));
  } else {
    printData(calibrationText(request, done, settings.band) + change.closingText());
  }
  requireAll(done);
}

}  // namespace

void addCalibrateCommand(Program& program) {
  Command command = program.add("calibrate",
                                "Import runs of a stand, fit every derived series over "
                                "its merged range and store the curves. "
                                "Ratio is fitted as a rotor ratio curve.");
  const auto request = std::make_shared<CalibrateRequest>();
  addDatabase(command, request->curves);
  addImport(command, request->import);
  addFitTests(command, request->tests);
  addFitChoices(command, request->choices, usualChoice());
  addDryRun(command, request->isDryRun);
  addJson(command, request->asJson);
  command.onRun([request] { calibrate(*request); });
}

}  // namespace pelmora::cli
