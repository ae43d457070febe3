// Tables for flow computers from a fitted curve.
// SPDX-License-Identifier: MIT
#include "calibration/evaluation/fitted_curve_body.h"
#include "calibration/evaluation/meter_state.h"
#include "tables/placed_table.h"

#include <pelmora/calibration/failure.h>
#include <pelmora/calibration/tables.h>

#include <algorithm>
#include <array>

namespace pelmora::calibration {
namespace {

using uncertainty::SeriesKind;

struct FormWords {
  const char *key, *x, *y;
};
constexpr std::array<FormWords, 3> formWords{{{"roshko", "Roshko", "Strouhal"},
                                              {"uvc", "f/v", "K factor"},
                                              {"linear", "frequency", "K factor"}}};

void requireForm(const FittedCurve& curve, const TableOptions& options) {
  const bool isQuotient = curve.body().kind != SeriesKind::rotor;
  if (isQuotient && options.form != TableForm::roshko) {
    throw BadData({"the y of this series is a quotient of two rotors, not a K factor", "",
                   "export the form roshko, or choose the series of a rotor"});
  }
  if (options.form == TableForm::linear && !options.viscosity) {
    throw BadData({"a table of K over frequency holds for one fluid at one temperature", "",
                   "give the viscosity, or a fluid and its temperature"});
  }
}

tables::Form formOf(const FittedCurve& curve, const TableOptions& options) {
  const tables::Form roshko{[&curve](std::span<const double> x) { return curve(x); },
                            {curve.lowestRoshko(), curve.highestRoshko()}};
  if (options.form == TableForm::roshko) return roshko;
  const tables::MeterState state = meterState(options.celsius, options.expansionPerKelvin);
  if (options.form == TableForm::uvc) return tables::universalViscosityForm(roshko, state);
  return tables::frequencyForm(roshko, *options.viscosity / curve.body().hertzPerCentistoke, state);
}

// Adds U at each knot, and the largest U at and halfway between knots. x is proportional to Roshko.
void addUncertainty(const FittedCurve& curve, double roshkoPerX, const std::vector<double>& knots,
                    FlowComputerTable& table) {
  std::vector<double> places;
  for (std::size_t i = 0; i < knots.size(); ++i) {
    places.push_back(knots[i] * roshkoPerX);
    if (i + 1 < knots.size()) places.push_back((knots[i] + knots[i + 1]) / 2 * roshkoPerX);
  }
  for (double& x : places) x = std::clamp(x, curve.lowestRoshko(), curve.highestRoshko());
  EvaluateOptions options;
  if (curve.body().measuredAt.empty()) options.viscosity = table.options.viscosity;
  const auto found = curve.body().places(places, options);
  for (std::size_t i = 0; i < found.size(); ++i) {
    if (!found[i].value.uncertainty) return;
    uncertainty::CurvePlace place = found[i].place;
    place.readingErrorPercent = table.readingErrorPercent;
    const Budget budget =
        publicBudget(uncertainty::curveBudget(place, found[i].stand), curve.body().hasStand);
    const double percent = budget.roundedPercent();
    if (i % 2 == 0) table.rows[i / 2].expandedPercent = percent;
    if (percent > table.expandedPercent.value_or(-1)) {
      table.expandedPercent = percent;
      table.coverageFactor = budget.coverageFactor;
      table.probability = budget.probability;
    }
  }
}

const units::Unit& wantedUnit(const std::string& wanted, const std::string& own) {
  return units::unitOf(wanted.empty() ? own : wanted);
}

}  // namespace

const char* tableFormKey(TableForm form) { return formWords[static_cast<std::size_t>(form)].key; }

FlowComputerTable tableFor(const FittedCurve& curve, const TableOptions& options) {
  requireForm(curve, options);
  FlowComputerTable table;
  table.options = options;
  if (options.reading == ReadAs::none) table.options.reading = ReadAs::linear;
  const FormWords& words = formWords[static_cast<std::size_t>(options.form)];
  const bool isQuotient = curve.body().kind != SeriesKind::rotor;
  const std::string ownX = options.form == TableForm::linear ? "Hz" : curve.body().roshkoUnit;
  const std::string ownY = isQuotient ? "1" : curve.body().strouhalUnit;
  const units::Unit &xFrom = units::unitOf(ownX), &yFrom = units::unitOf(ownY);
  const units::Unit& xTo = wantedUnit(options.xUnit, ownX);
  const units::Unit& yTo = wantedUnit(options.yUnit, ownY);
  (void)units::converted(1, xFrom, xTo);  // refuses a wrong unit before the work begins
  (void)units::converted(1, yFrom, yTo);
  table.xName = words.x;
  table.yName = isQuotient ? "quotient" : words.y;
  table.xUnit = std::string(xTo.symbol);
  table.yUnit = isQuotient ? "" : std::string(yTo.symbol);
  table.hasStand = curve.body().hasStand;

  const tables::Form form = formOf(curve, options);
  const tables::Reading reading = readingOf(table.options.reading);
  const tables::PlacedTable placed =
      options.evenly ? tables::evenTable(form.curve, form.range, options.points, reading)
                     : tables::placeTable(form.curve, form.range, options.points, reading);
  table.readingErrorPercent = placed.error.percent;
  table.readingErrorAt = units::converted(placed.error.at, xFrom, xTo);
  for (std::size_t i = 0; i < placed.x.size(); ++i) {
    table.rows.push_back(
        {units::converted(placed.x[i], xFrom, xTo), units::converted(placed.y[i], yFrom, yTo), {}});
  }
  addUncertainty(curve, curve.lowestRoshko() / form.range.low, placed.x, table);
  return table;
}

}  // namespace pelmora::calibration
