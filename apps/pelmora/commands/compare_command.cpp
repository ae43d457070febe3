// SPDX-License-Identifier: MIT
#include "apps/pelmora/commands/commands.h"
#include "apps/pelmora/options/common_options.h"
#include "apps/pelmora/options/strict_number.h"
#include "apps/pelmora/output/curve_note.h"
#include "apps/pelmora/output/shift_output.h"
#include "apps/pelmora/output/standard_output.h"
#include "apps/pelmora/output/text_table.h"
#include "apps/pelmora/session.h"
#include "apps/pelmora/trouble.h"
#include "report/json_values.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>
#include <memory>

namespace pelmora::cli {
namespace {

using calibration::Comparison;
using calibration::Database;
using calibration::Meter;
using calibration::Shift;
using calibration::StoredSeries;

constexpr std::size_t mostRows = 15;  // of the table for people

struct CompareRequest {
  DatabaseOption curves;
  std::string meter, series, otherPath;
  std::int16_t calibration = calibration::latestCalibration,
               earlier = calibration::latestCalibration;
  std::optional<double> tolerance;
  bool asJson = false;
};

// The calibration that was asked for; else the latest of another database, or the one before in the
// same.
Meter earlierOf(const Database& lab, const CompareRequest& request, const Meter& now) {
  if (request.earlier != calibration::latestCalibration || !request.otherPath.empty())
    return lab.meter(request.meter, request.earlier);
  const std::vector<Meter> all = lab.calibrations(request.meter);
  const auto at = std::ranges::lower_bound(all, now.calibration, {}, &Meter::calibration);
  if (at != all.begin()) return *std::prev(at);
  throw Trouble(
      ExitCode::unknownName,
      "meter '" + now.serial + "' has no calibration before " + std::to_string(now.calibration),
      "name another one with --from N, or another database with --with FILE");
}

struct Compared {
  StoredSeries earlier, now;
  Comparison shift;
  // The shift that is largest relative to its uncertainty; absent if no uncertainty is known.
  std::optional<calibration::CurveShift> clearest;
  std::vector<std::string> warnings;
};

// At most mostRows, spread evenly over the range.
std::vector<Shift> shownShifts(const Comparison& comparison) {
  const auto& all = comparison.shifts;
  const std::size_t rows = std::min(mostRows, all.size());
  std::vector<Shift> shown;
  for (std::size_t i = 0; i < rows; ++i)
    shown.push_back(all[rows == 1 ? 0 : i * (all.size() - 1) / (rows - 1)]);
  return shown;
}

void addSignificance(const calibration::FittedCurve& earlier, const calibration::FittedCurve& now,
                     Compared& result) {
  std::vector<double> places{result.shift.lowest.roshko, result.shift.highest.roshko};
  for (const Shift& shift : shownShifts(result.shift)) places.push_back(shift.roshko);
  for (const double roshko : places) {
    const auto shift = calibration::shiftOf(earlier, now, roshko);
    if (!shift) continue;
    if (!result.clearest || std::abs(shift->en) > std::abs(result.clearest->en))
      result.clearest = shift;
  }
  const auto pass = [&](const std::string& which, const calibration::FittedCurve& curve) {
    for (const std::string& warning : curve.warnings())
      result.warnings.push_back(which + ": " + warning);
  };
  pass("calibration " + std::to_string(result.earlier.meter.calibration), earlier);
  pass("calibration " + std::to_string(result.now.meter.calibration), now);
}

Compared compared(const CompareRequest& request) {
  Compared result;
  Session session(request.curves, calibration::Mode::read);
  const Database& lab = session.database();
  const Meter now = lab.meter(request.meter, request.calibration);
  result.now = lab.series(now, request.series);
  const PointArray& curve = result.now.storedCurve();
  std::optional<calibration::FittedCurve> earlier;
  const auto readEarlier = [&](const Database& other) {
    result.earlier = other.series(earlierOf(other, request, now), request.series);
    earlier = other.fittedCurve(result.earlier, session.observer());
  };
  if (request.otherPath.empty()) {
    readEarlier(lab);
  } else {
    Session other({request.otherPath, request.curves.wait}, calibration::Mode::read);
    readEarlier(other.database());
  }
  result.shift = calibration::compareCurves(result.earlier.storedCurve(), curve);
  if (!result.shift.shifts.empty()) {
    addSignificance(*earlier, lab.fittedCurve(result.now, session.observer()), result);
    session.progress().clear();
    return result;
  }
  throw Trouble(ExitCode::badInput,
                "the two curves of series '" + result.now.name + "' have no range in common",
                "fit them over ranges that overlap");
}

std::string significanceText(const Compared& result) {
  if (!result.clearest) {
    return wrapped(
        "Whether the shift is significant is not known: a fit cannot be made again, or nothing but "
        "what both calibrations share is uncertain.",
        0);
  }
  const calibration::CurveShift& shift = *result.clearest;
  return wrapped(std::string("The shift is ") + (shift.isSignificant() ? "" : "not ") +
                     "significant: at Roshko " + significantText(shift.roshko, 6) + " it is " +
                     percentText(shift.percent) +
                     " % with U = " + significantText(shift.uncertaintyPercent, 2) +
                     " % (k = " + fixedText(shift.coverageFactor, 2) +
                     "), En = " + significantText(shift.en, 2) +
                     ". U leaves out what the stand does to both alike.",
                 0);
}

std::string comparisonText(const CompareRequest& request, const Compared& result) {
  const auto& shifts = result.shift.shifts;
  std::string text =
      wrapped("Series '" + result.now.name + "', meter " + result.now.meter.serial +
                  ": from calibration " + std::to_string(result.earlier.meter.calibration) +
                  (request.otherPath.empty() ? "" : " in " + request.otherPath) +
                  " to calibration " + std::to_string(result.now.meter.calibration) + ", Roshko " +
                  significantText(shifts.front().roshko, 6) + " to " +
                  significantText(shifts.back().roshko, 6),
              0);
  TextTable summary({{"Shift"}, {"%", TextAlign::right}, {"At Roshko", TextAlign::right}});
  summary.addRow({"mean", percentText(result.shift.meanPercent), ""});
  summary.addRow({"lowest", percentText(result.shift.lowest.percent),
                  significantText(result.shift.lowest.roshko, 6)});
  summary.addRow({"highest", percentText(result.shift.highest.percent),
                  significantText(result.shift.highest.roshko, 6)});
  TextTable table({{"Roshko", TextAlign::right}, {"Shift %", TextAlign::right}});
  for (const Shift& shift : shownShifts(result.shift))
    table.addRow({significantText(shift.roshko, 6), percentText(shift.percent)});
  text += "\n" + summary.text() + "\n" + table.text() + "\n" + significanceText(result);
  for (const std::string& warning : result.warnings) text += wrapped("Warning, " + warning, 0);
  return text;
}

std::string comparisonJson(const CompareRequest& request, const Compared& result) {
  const auto shiftJson = [](const Shift& shift) {
    return nlohmann::json{{"roshko", shift.roshko}, {"percent", shift.percent}};
  };
  nlohmann::json value{
      {"database", request.curves.path},
      {"series", result.now.name},
      {"earlier", report::meterJson(result.earlier.meter)},
      {"now", report::meterJson(result.now.meter)},
      {"earlierCurveAge", calibration::curveAgeKey(result.earlier.age)},
      {"curveAge", calibration::curveAgeKey(result.now.age)},
      {"meanPercent", result.shift.meanPercent},
      {"lowest", shiftJson(result.shift.lowest)},
      {"highest", shiftJson(result.shift.highest)},
      {"significant",
       result.clearest ? nlohmann::json(result.clearest->isSignificant()) : nlohmann::json()},
      {"clearest", judgedShiftJson(result.clearest)},
      {"warnings", result.warnings},
      {"shifts", nlohmann::json::array()}};
  if (!request.otherPath.empty()) value["earlierDatabase"] = request.otherPath;
  for (const auto& shift : result.shift.shifts) value["shifts"].push_back(shiftJson(shift));
  return report::jsonText(value);
}

// One note at most, even if both curves are old.
void noteOldOne(const CompareRequest& request, const Compared& result) {
  if (result.now.age == calibration::CurveAge::outdated)
    return noteOldCurves(request.curves.path, request.calibration, {result.now});
  const std::string& earlierPath =
      request.otherPath.empty() ? request.curves.path : request.otherPath;
  noteOldCurves(earlierPath, result.earlier.meter.calibration, {result.earlier});
}

void compare(const CompareRequest& request) {
  const Compared result = compared(request);
  noteOldOne(request, result);
  printData(request.asJson ? comparisonJson(request, result) : comparisonText(request, result));
  const double largest = std::abs(result.shift.largest().percent);
  if (!request.tolerance || largest <= *request.tolerance) return;
  throw Trouble(ExitCode::outOfTolerance,
                "series '" + result.now.name + "' of meter '" + result.now.meter.serial +
                    "' has moved by up to " + significantText(largest, 4) + " %, more than " +
                    significantText(*request.tolerance, 6) + " %",
                "look at the points in 'pelmora report'");
}

}  // namespace

void addCompareCommand(Program& program) {
  Command command =
      program.add("compare", "Show how far a stored curve has moved since an earlier calibration");
  const auto request = std::make_shared<CompareRequest>();
  addDatabase(command, request->curves);
  addMeter(command, request->meter, true);
  addSeries(command, request->series, true);
  addCalibration(command, request->calibration);
  addSmallInteger(
      command, "--from", request->earlier, 0,
      "Number of the earlier calibration (default: the one before; with --with the latest)");
  addPath(command, {"--with", "FILE", "Another curve database that holds the earlier curve"},
          request->otherPath);
  command.addText(
      {"--tolerance", "PERCENT", "End with exit code 9 if the shift is larger anywhere"},
      [request](const std::string& text) {
        request->tolerance = numberOption("--tolerance", text);
        if (*request->tolerance >= 0) return;
        throw Trouble(ExitCode::usage, "--tolerance: '" + text + "' is negative",
                      "give per cent, 0 or more");
      });
  addJson(command, request->asJson);
  command.onRun([request] { compare(*request); });
}

}  // namespace pelmora::cli
