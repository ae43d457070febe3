// Budgets against whole calibrations drawn with NumPy; see tests/data/uncertainty.
// SPDX-License-Identifier: MIT
#include "solver/reference/reference_curve.h"
#include "solver/solver.h"
#include "tests/support/places.h"
#include "uncertainty/monte_carlo.h"
#include "uncertainty/pair_budget.h"
#include "uncertainty/stand_file.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <cmath>
#include <fstream>
#include <limits>
#include <memory>
#include <string>
#include <vector>

namespace pelmora::uncertainty {
namespace {

using nlohmann::json;
using Numbers = std::vector<double>;

// Of U, between the law of propagation and Monte Carlo.
constexpr double agreement = 0.05;

json readJson(const std::string& path) {
  std::ifstream file(test::sourceFolder() + "/tests/data/" + path);
  return json::parse(file);
}

const json& drawn() {
  static const json all = readJson("uncertainty/reference.json");
  return all;
}

StandUncertainty stand() {
  return readStandUncertainty(drawn().at("stand").get<std::string>(), "stand.ini");
}

// An equation that our solver has fitted.
class FittedEquation {
 public:
  FittedEquation(const json& expression, const json& x, const json& y)
      : engine_(createSolver()), model_(engine_->createModel()) {
    auto data = std::make_shared<FitData>();
    data->Names = data->Symbols = {"X", "Y"};
    data->Columns = {x.get<Numbers>(), y.get<Numbers>()};
    model_->Definition = {"equation", expression.get<std::string>()};
    model_->Settings.First = 250;
    model_->Settings.Second = 10;
    model_->attach(data);
    EXPECT_TRUE(model_->solutionFound()) << model_->failureReason();
    degrees_ = static_cast<double>(data->Columns[0].size() - model_->parameters().size());
  }
  [[nodiscard]] double at(double x) const { return model_->sampleCurve(std::array{x}).front(); }
  [[nodiscard]] CurvePlace placeAt(double roshko, double temperature) const {
    const double step = roshko * 1e-4;
    CurvePlace place;
    place.roshko = roshko;
    place.strouhal = at(roshko);
    place.slope = (at(roshko + step) - at(roshko - step)) / (2 * step);
    place.fitUncertainty = model_->standardErrorsOfCurve(std::array{roshko}).front();
    place.fitDegrees = degrees_;
    place.temperatureF = temperature;
    return place;
  }

 private:
  std::unique_ptr<FitEngine> engine_;
  std::unique_ptr<FitModel> model_;
  double degrees_ = 0;
};

TEST(numpy_agreement, of_every_kind_of_equation) {
  int places = 0;
  for (const json& c : drawn().at("rotors")) {
    const FittedEquation equation(c.at("expression"), c.at("x"), c.at("y"));
    for (const json& place : c.at("places")) {
      SCOPED_TRACE(c.at("name").get<std::string>() + " at " + place.at("roshko").dump());
      const CurvePlace at = equation.placeAt(place.at("roshko"), c.at("temperature"));
      EXPECT_NEAR(at.fitUncertainty / place.at("fit").get<double>(), 1, 1e-6);
      EXPECT_EQ(at.fitDegrees, place.at("degrees").get<double>());
      EXPECT_NEAR(curveBudget(at, stand()).expanded / place.at("u").get<double>(), 1, agreement);
      ++places;
    }
  }
  EXPECT_EQ(places, 9);
}

TEST(numpy_agreement, of_our_own_monte_carlo) {
  const json& c = drawn().at("rotors").front();
  const FittedEquation equation(c.at("expression"), c.at("x"), c.at("y"));
  for (const json& place : c.at("places")) {
    const CurvePlace at = equation.placeAt(place.at("roshko"), c.at("temperature"));
    const CurveMeasurement measured = curveMeasurement(at, stand());
    const MonteCarloResult result =
        monteCarlo(measured.model, measured.inputs, measured.correlations, {.mostTrials = 300'000});
    // Both are draws: 40,000 trials leave about 0.8 %.
    EXPECT_NEAR(result.halfWidth() / place.at("u").get<double>(), 1, 0.02);
  }
}

TEST(numpy_agreement, of_the_sum_and_the_quotient_of_correlated_rotors) {
  const json& c = drawn().at("ratio");
  const FittedEquation a(c.at("expression"), c.at("xa"), c.at("ya"));
  const FittedEquation b(c.at("expression"), c.at("xb"), c.at("yb"));
  for (const json& place : c.at("places")) {
    SCOPED_TRACE(place.at("roshko").dump());
    const double roshko = place.at("roshko");
    const Budget rotorA = curveBudget(a.placeAt(roshko, c.at("temperature")), stand());
    const Budget rotorB = curveBudget(b.placeAt(roshko, c.at("temperature")), stand());
    const double quotient = rotorB.value / rotorA.value;
    const Budget ratio = pairBudget(quotient, {&rotorA, -quotient / rotorA.value},
                                    {&rotorB, 1 / rotorA.value}, SharedBy::rotors);
    const Budget sum =
        pairBudget(rotorA.value + rotorB.value, {&rotorA, 1}, {&rotorB, 1}, SharedBy::rotors);
    EXPECT_NEAR(rotorA.expanded / place.at("a").get<double>(), 1, agreement);
    EXPECT_NEAR(ratio.expanded / place.at("quotient").get<double>(), 1, agreement);
    EXPECT_NEAR(sum.expanded / place.at("sum").get<double>(), 1, agreement);
  }
}

TEST(numpy_agreement, of_a_series_of_quotients) {
  const json& c = drawn().at("rotor_quotient");
  const FittedEquation equation(c.at("expression"), c.at("x"), c.at("y"));
  for (const json& place : c.at("places")) {
    CurvePlace at = equation.placeAt(place.at("roshko"), c.at("temperature"));
    at.kind = SeriesKind::quotientAB;
    EXPECT_NEAR(curveBudget(at, stand()).expanded / place.at("u").get<double>(), 1, agreement)
        << at.roshko;
  }
}

TEST(numpy_agreement, of_the_reference_curve) {
  const json cases = readJson("reference_curve/reference.json").at("cases");
  const auto c = std::find_if(cases.begin(), cases.end(), [](const json& each) {
    return each.at("name") == "six flows five times";
  });
  ASSERT_NE(c, cases.end());
  namespace ref = solver::reference;
  const Numbers x = c->at("x"), y = c->at("y");
  const json& grid = c->at("average");
  // The grid that the dense computation averaged over.
  ref::ReferenceOptions options;
  options.robust = false;
  options.fluidOffsets = c->at("offsets");
  options.drag = c->at("drag");
  const double lowestShare =
      *std::min_element(x.begin(), x.end()) / *std::max_element(x.begin(), x.end());
  options.lattice = {grid["lengths"][0],
                     grid["lengths"][1].get<double>() / grid["lengths"][0].get<double>(),
                     3,
                     grid["amplitudes"][0],
                     10,
                     3,
                     0,
                     grid["growths"][1].get<double>() / lowestShare,
                     2};
  options.lattice.negligible = std::numeric_limits<double>::infinity();
  options.lattice.mostHalvings = 0;
  const ref::ReferenceCurve curve = ref::fitReference({x, y}, options);
  for (const json& place : drawn().at("reference").at("places")) {
    const double roshko = place.at("roshko");
    const ref::ReferenceEstimate estimate = curve.evaluate(std::array{roshko}).front();
    CurvePlace at;
    at.roshko = roshko;
    at.strouhal = estimate.value;
    at.slope = estimate.derivative;
    at.fitUncertainty = estimate.curveSd;
    EXPECT_NEAR(curveBudget(at, stand()).expanded / place.at("u").get<double>(), 1, agreement)
        << roshko;
  }
}

TEST(numpy_agreement, of_a_table_that_is_read_linearly) {
  const json& c = drawn().at("table");
  const FittedEquation equation(c.at("expression"), c.at("x"), c.at("y"));
  CurvePlace at = equation.placeAt(c.at("roshko"), c.at("temperature"));
  at.readingErrorPercent = 100 * c.at("reading_error").get<double>();
  EXPECT_NEAR(curveBudget(at, stand()).expanded / c.at("u").get<double>(), 1, agreement);
}

}  // namespace
}  // namespace pelmora::uncertainty
