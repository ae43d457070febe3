// SPDX-License-Identifier: MIT
#include "apps/pelmora/command_line.h"
#include "apps/pelmora/checked_fit.h"
#include "apps/pelmora/commands/commands.h"
#include "apps/pelmora/options/common_options.h"
#include "apps/pelmora/output/fit_output.h"
#include "apps/pelmora/output/text_table.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <memory>

namespace pelmora::cli {
namespace {

struct CalibrateOptions {
  DatabaseOption curves;
  ImportOptions import;
  FitTests tests;
  FitOptions fit;
  bool asJson = false, isDryRun = false;
};

bool hasPoints(const DerivedSeries& derived) {
  return std::any_of(derived.points.begin(), derived.points.end(),
                     [](std::size_t n) { return n > 1; });
}

// One fit; what keeps it from running becomes its trouble, so that the other series still get
// theirs.
SeriesFit fitted(StoredChange& change, const MeterInfo& meter, const std::string& name,
                 FitOptions options) {
  options.ratio = name == "Ratio";
  try {
    return fitSeries(change, meter, name, options);
  } catch (const Trouble& trouble) {
    if (trouble.code() == ExitCode::database) throw;  // what is half stored must not stay
    SeriesFit fit;
    fit.series = name;
    fit.options = options;
    fit.trouble = trouble;
    return fit;
  }
}

// "Curves are stored": what of the fits is in the database now, or would be.
std::string storedCurvesText(const std::vector<SeriesFit>& fits, bool isDryRun) {
  if (std::ranges::none_of(fits, &SeriesFit::isStored)) return "No curve is stored";
  return isDryRun ? "Curves to be stored" : "Curves are stored";
}

std::string calibrationText(const CurveSession& session, const ImportOutcome& import,
                            const std::vector<SeriesFit>& fits, bool isDryRun) {
  std::string text =
      importHead(session, import) + importTable(import) + "\n" + chosenTable(fits) + "\n" +
      wrapped(storedCurvesText(fits, isDryRun) + " in " + session.path() + ", meter " +
                  import.meter.SerialNumber + ", calibration " +
                  std::to_string(import.meter.ReCalID) + "; band " +
                  significantText(fits.empty() ? 0 : fits.front().options.band, 4) + " %.",
              0);
  for (const SeriesFit& fit : fits) {
    if (fit.trouble) {
      text += "\n" + fit.series + ": no curve\n" + equationTable(fit);
    } else if (!fit.outcome.Warnings.empty()) {
      text += "\n" + fit.series + "\n" + warningLines(fit);
    }
  }
  return text;
}

// One line for all series without a curve.
void requireAll(const ImportOutcome& import, const std::vector<SeriesFit>& fits) {
  if (const auto trouble = import.anyTrouble()) throw Trouble(*trouble);
  std::string names;
  const Trouble* first = nullptr;
  for (const SeriesFit& fit : fits) {
    if (!fit.trouble) continue;
    names += (names.empty() ? "'" : ", '") + fit.series + "'";
    if (first == nullptr) first = &*fit.trouble;
  }
  if (first == nullptr) return;
  const bool isOne = names.find(',') == std::string::npos;
  if (isOne) throw Trouble(*first);
  throw Trouble(first->code(), "no curve for series " + names + "; first: " + first->what(),
                first->remedy());
}

void calibrate(CalibrateOptions& options) {
  const ImportRequest request = importRequest(options.import);
  take(options.tests, options.fit);
  CurveSession session(options.curves, Access::write);
  (void)session.equationFolder();  // or the import would stay without curves
  StoredChange change(session, "calibrate", options.isDryRun);
  const ImportOutcome import = importRuns(change, request);
  std::vector<SeriesFit> fits;
  for (const DerivedSeries& derived : import.series) {
    // After an import that went wrong, series may have lost their points: nothing to fit, nothing
    // to say.
    if (import.trouble && !derived.trouble && !hasPoints(derived)) continue;
    fits.push_back(fitted(change, import.meter, derived.name, options.fit));
  }
  change.finish();
  session.progress().clear();
  if (options.asJson) {
    nlohmann::json value = importJson(import);
    value["database"] = session.path();
    value["fits"] = nlohmann::json::array();
    for (const SeriesFit& fit : fits) value["fits"].push_back(fitJson(fit));
    change.addTo(value);
    printData(jsonText(value));
  } else {
    printData(calibrationText(session, import, fits, options.isDryRun) + change.closingText());
  }
  requireAll(import, fits);
}

}  // namespace

void addCalibrateCommand(Program& program) {
  Command command = program.add("calibrate",
                                "Import runs of a stand, fit every derived series over "
                                "its merged range and store the curves. "
                                "Ratio is fitted as a rotor ratio curve.");
  const auto options = std::make_shared<CalibrateOptions>();
  addDatabase(command, options->curves);
  addImport(command, options->import);
  addFitTests(command, options->tests);
  addDryRun(command, options->isDryRun);
  addJson(command, options->asJson);
  command.onRun([options] { calibrate(*options); });
}

}  // namespace pelmora::cli
