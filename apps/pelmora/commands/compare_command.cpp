// SPDX-License-Identifier: MIT
#include "apps/pelmora/command_line.h"
#include "apps/pelmora/commands/commands.h"
#include "apps/pelmora/options/common_options.h"
#include "apps/pelmora/curve_session.h"
#include "apps/pelmora/options/strict_number.h"
#include "apps/pelmora/output/text_table.h"
#include "apps/pelmora/trouble.h"
#include "report/json_values.h"

#include <pelmora/calibration/curve.h>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>
#include <memory>

namespace pelmora::cli {
namespace {

using Align = TextTable::Align;

constexpr std::size_t mostRows = 15;  // of the table for people

struct CompareOptions {
  DatabaseOption curves;
  std::string meter, series, otherPath;
  std::int16_t reCalID = -1, earlierID = -1;
  std::optional<double> tolerance;
  bool asJson = false;
};

struct StoredCurve {
  MeterInfo meter;
  PointArray points;
};

StoredCurve curveOf(CurveSession& session, const MeterInfo& meter, const std::string& series) {
  StoredCurve curve{meter, session.requireSeries(meter, series).Series.front().Fitted};
  if (curve.points.size() > 1) return curve;
  throw Trouble(ExitCode::badInput,
                "series '" + series + "' of meter '" + meter.SerialNumber + "', calibration " +
                    std::to_string(meter.ReCalID) + ", has no stored curve in '" + session.path() +
                    "'",
                "fit it with 'pelmora fit'");
}

// The calibration that was asked for; else the latest of another database, or the one before in the
// same.
MeterInfo earlierOf(CurveSession& session, const CompareOptions& options, const MeterInfo& now) {
  if (options.earlierID >= 0 || !options.otherPath.empty()) {
    return session.requireMeter(options.meter, options.earlierID);
  }
  const std::vector<std::int16_t> numbers = session.calibrations(options.meter);
  const auto at = std::ranges::lower_bound(numbers, now.ReCalID);
  if (at != numbers.begin()) return session.requireMeter(options.meter, *std::prev(at));
  throw Trouble(
      ExitCode::unknownName,
      "meter '" + options.meter + "' has no calibration before " + std::to_string(now.ReCalID),
      "name another one with --from N, or another database with --with FILE");
}

struct Compared {
  StoredCurve earlier, now;
  calibration::Comparison shift;
};

Compared compared(const CompareOptions& options) {
  Compared result;
  CurveSession session(options.curves, Access::read);
  const MeterInfo now = session.requireMeter(options.meter, options.reCalID);
  result.now = curveOf(session, now, options.series);
  if (options.otherPath.empty()) {
    result.earlier = curveOf(session, earlierOf(session, options, now), options.series);
  } else {
    CurveSession other({options.otherPath, options.curves.wait}, Access::read);
    result.earlier = curveOf(other, earlierOf(other, options, now), options.series);
  }
  result.shift = calibration::compareCurves(result.earlier.points, result.now.points);
  if (!result.shift.shifts.empty()) return result;
  throw Trouble(ExitCode::badInput,
                "the two curves of series '" + options.series + "' have no range in common",
                "fit them over ranges that overlap");
}

double largestPercent(const calibration::Comparison& shift) {
  return std::max(std::abs(shift.lowest.percent), std::abs(shift.highest.percent));
}

std::string comparisonText(const CompareOptions& options, const Compared& result) {
  const auto& shifts = result.shift.shifts;
  std::string text =
      wrapped("Series '" + options.series + "', meter " + options.meter + ": from calibration " +
                  std::to_string(result.earlier.meter.ReCalID) +
                  (options.otherPath.empty() ? "" : " in " + options.otherPath) +
                  " to calibration " + std::to_string(result.now.meter.ReCalID) + ", Roshko " +
                  significantText(shifts.front().roshko, 6) + " to " +
                  significantText(shifts.back().roshko, 6),
              0);
  TextTable summary({{"Shift"}, {"%", Align::right}, {"At Roshko", Align::right}});
  summary.addRow({"mean", percentText(result.shift.meanPercent), ""});
  summary.addRow({"lowest", percentText(result.shift.lowest.percent),
                  significantText(result.shift.lowest.roshko, 6)});
  summary.addRow({"highest", percentText(result.shift.highest.percent),
                  significantText(result.shift.highest.roshko, 6)});
  TextTable table({{"Roshko", Align::right}, {"Shift %", Align::right}});
  const std::size_t rows = std::min(mostRows, shifts.size());
  for (std::size_t i = 0; i < rows; ++i) {
    const auto& shift = shifts[rows == 1 ? 0 : i * (shifts.size() - 1) / (rows - 1)];
    table.addRow({significantText(shift.roshko, 6), percentText(shift.percent)});
  }
  return text + "\n" + summary.text() + "\n" + table.text();
}

std::string comparisonJson(const CompareOptions& options, const Compared& result) {
  const auto shiftJson = [](const calibration::Shift& shift) {
    return nlohmann::json{{"roshko", shift.roshko}, {"percent", shift.percent}};
  };
  nlohmann::json value{{"database", options.curves.path},
                       {"series", options.series},
                       {"earlier", report::meterJson(result.earlier.meter)},
                       {"now", report::meterJson(result.now.meter)},
                       {"meanPercent", result.shift.meanPercent},
                       {"lowest", shiftJson(result.shift.lowest)},
                       {"highest", shiftJson(result.shift.highest)},
                       {"shifts", nlohmann::json::array()}};
  if (!options.otherPath.empty()) value["earlierDatabase"] = options.otherPath;
  for (const auto& shift : result.shift.shifts) value["shifts"].push_back(shiftJson(shift));
  return report::jsonText(value);
}

void compare(const CompareOptions& options) {
  const Compared result = compared(options);
  printData(options.asJson ? comparisonJson(options, result) : comparisonText(options, result));
  const double largest = largestPercent(result.shift);
  if (!options.tolerance || largest <= *options.tolerance) return;
  throw Trouble(ExitCode::outOfTolerance,
                "series '" + options.series + "' of meter '" + options.meter +
                    "' has moved by up to " + significantText(largest, 4) + " %, more than " +
                    significantText(*options.tolerance, 6) + " %",
                "look at the points in 'pelmora report'");
}

}  // namespace

void addCompareCommand(Program& program) {
  Command command =
      program.add("compare", "Show how far a stored curve has moved since an earlier calibration");
  const auto options = std::make_shared<CompareOptions>();
  addDatabase(command, options->curves);
  addMeter(command, options->meter, true);
  addSeries(command, options->series, true);
  addCalibration(command, options->reCalID);
  addSmallInteger(
      command, "--from", options->earlierID, 0,
      "Number of the earlier calibration (default: the one before; with --with the latest)");
  addPath(command, {"--with", "FILE", "Another curve database that holds the earlier curve"},
          options->otherPath);
  command.addText(
      {"--tolerance", "PERCENT", "End with exit code 9 if the shift is larger anywhere"},
      [options](const std::string& text) {
        options->tolerance = numberOption("--tolerance", text);
        if (*options->tolerance >= 0) return;
        throw Trouble(ExitCode::usage, "--tolerance: '" + text + "' is negative",
                      "give per cent, 0 or more");
      });
  addJson(command, options->asJson);
  command.onRun([options] { compare(*options); });
}

}  // namespace pelmora::cli
