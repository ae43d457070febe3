// The uncertainty of a flow against direct draws through the same formulas.
// SPDX-License-Identifier: MIT
#include "flow/flow_budget.h"

#include "uncertainty/monte_carlo.h"
#include "uncertainty/pair_budget.h"
#include "uncertainty/stand_file.h"

#include <pelmora/calibration/failure.h>

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

namespace pelmora::flow {
namespace {

using uncertainty::Budget;
using uncertainty::CurvePlace;
using uncertainty::readStandUncertainty;

constexpr double k = 1318, bendAt = 6;
double bend(double roshko) { return k * (1 - 0.9 / (roshko + bendAt)); }
double slopeAt(double roshko) { return k * 0.9 / std::pow(roshko + bendAt, 2); }

double bendB(double roshko) { return k * (0.95 - 0.4 / (roshko + bendAt)); }
double slopeBAt(double roshko) { return k * 0.4 / std::pow(roshko + bendAt, 2); }

Budget budgetOf(double roshko, double strouhal, double slope, const std::string& stand) {
  CurvePlace place;
  place.roshko = roshko;
  place.strouhal = strouhal;
  place.slope = slope;
  return uncertainty::curveBudget(place, readStandUncertainty(stand, ""));
}

Budget calibrationAt(double roshko, const std::string& stand) {
  return budgetOf(roshko, bend(roshko), slopeAt(roshko), stand);
}

const std::string stand = "[stand]\nname = S\n[reproducibility]\nstandard = 0.03 %\n";
const std::string instruments =
    "[frequency]\nstandard = 0.02 %\n[viscosity]\nstandard = 2 %\n"
    "[temperature]\nstandard = 0.5 C\nviscosity change = -2.5 %/C\n[model]\nstandard = 0.05 %\n";

TEST(flow_budget, agrees_with_monte_carlo_through_the_measurement) {
  const Service service{1.2, 95, {}};
  const double frequency = 14;  // low on the curve, where it is steep
  const MeterFlow at = volumeFlow(bend, frequency, service);
  const Budget calibration = calibrationAt(at.roshko, stand);
  const Budget budget = flowBudget(at.flow, {&calibration, at.roshko * slopeAt(at.roshko)},
                                   readStandUncertainty(instruments, ""), {}, service);

  const std::vector<uncertainty::Input> inputs{{"curve", 0, 0.0003},
                                               {"frequency", 0, 0.0002},
                                               {"viscosity", 0, 0.02},
                                               {"temperature", 0, 0.9},
                                               {"installation", 0, 0.0005}};
  const auto measured = [&](std::span<const double> e) {
    Service wrong = service;
    wrong.temperatureF += e[3];
    wrong.viscosity *= (1 + e[2]) * (1 - 0.025 / 1.8 * e[3]);
    const auto curve = [&](double roshko) { return bend(roshko) * (1 + e[0]); };
    return volumeFlow(curve, frequency * (1 + e[1]), wrong).flow * (1 + e[4]);
  };
  const auto drawn = uncertainty::monteCarlo(measured, inputs, {}, {.mostTrials = 300'000});
  EXPECT_NEAR(budget.expanded / drawn.halfWidth(), 1, 0.05);
  EXPECT_DOUBLE_EQ(budget.value, at.flow);
}

TEST(flow_budget, of_two_rotors_counts_their_common_stand_once) {
  const std::string common = "[stand]\nname = S\n[flow]\nstandard = 0.05 %\n";
  const Budget a = calibrationAt(50, common), b = calibrationAt(55, common);
  const Budget sum =
      uncertainty::pairBudget(a.value + b.value, {&a, 1}, {&b, 1}, uncertainty::SharedBy::rotors);
  const Budget budget = flowBudget(2, {&sum, 0}, {}, {}, {1.2, 70, {}});
  EXPECT_NEAR(budget.expandedPercent, 0.1, 1e-4);
}

TEST(difference_budget, agrees_with_monte_carlo_through_both_rotors) {
  const Service service{1.2, 95, {}};
  const double frequencyA = 14;
  const double flowOfA = volumeFlow(bend, frequencyA, service).flow;
  double frequencyB = frequencyA;  // in the same flow
  for (int i = 0; i < 100; ++i) frequencyB *= flowOfA / volumeFlow(bendB, frequencyB, service).flow;
  const DualFlow at = dualFlow(bend, bendB, frequencyA, frequencyB, service);
  const double roshkoA = at.rotorA.roshko, roshkoB = at.rotorB.roshko;
  const Budget a = calibrationAt(roshkoA, stand);
  const Budget b = budgetOf(roshkoB, bendB(roshkoB), slopeBAt(roshkoB), stand);
  const std::string counters =
      "[frequency]\nstandard = 0.02 %\nrotors = independent\n[viscosity]\nstandard = 2 %\n";
  const Budget budget =
      differenceBudget(at, {&a, roshkoA * slopeAt(roshkoA)}, {&b, roshkoB * slopeBAt(roshkoB)},
                       readStandUncertainty(counters, ""), {}, service);

  const std::vector<uncertainty::Input> inputs{{"curve A", 0, 0.0003},
                                               {"curve B", 0, 0.0003},
                                               {"frequency A", 0, 0.0002},
                                               {"frequency B", 0, 0.0002},
                                               {"viscosity", 0, 0.02}};
  const auto measured = [&](std::span<const double> e) {
    Service wrong = service;
    wrong.viscosity *= 1 + e[4];
    const auto curveA = [&](double roshko) { return bend(roshko) * (1 + e[0]); };
    const auto curveB = [&](double roshko) { return bendB(roshko) * (1 + e[1]); };
    return dualFlow(curveA, curveB, frequencyA * (1 + e[2]), frequencyB * (1 + e[3]), wrong)
        .differencePercent;
  };
  const auto drawn = uncertainty::monteCarlo(measured, inputs, {}, {.mostTrials = 300'000});
  EXPECT_NEAR(budget.expanded / drawn.halfWidth(), 1, 0.05);
  EXPECT_NEAR(budget.value, 0, 1e-9);
}

TEST(difference_budget, ignores_a_counter_that_both_rotors_share) {
  const Budget a = calibrationAt(50, stand);
  const DualFlow alike{{50, a.value, 1}, {50, a.value, 1}, 1, 0};
  const CalibratedStrouhal rotor{&a, 50 * slopeAt(50)};
  const auto expandedWith = [&](const uncertainty::StandUncertainty& counters) {
    return differenceBudget(alike, rotor, rotor, counters, {}, {1.2, 70, {}}).expanded;
  };
  const auto read = [](const std::string& text) { return readStandUncertainty(text, ""); };
  const double bare = expandedWith({});
  EXPECT_GT(bare, 0);
  EXPECT_NEAR(expandedWith(read("[frequency]\nstandard = 1 %\n[viscosity]\nstandard = 5 %\n")),
              bare, 1e-9);
  EXPECT_GT(expandedWith(read("[frequency]\nstandard = 1 %\nrotors = independent\n")), 2 * bare);
}

double quotient(double roshko) { return 0.97 - 0.5 / (roshko + 8); }

TEST(viscosity_of_quotient, has_the_uncertainty_that_the_quotient_leaves) {
  const double x = 30, frequencyB = 100, frequencyA = frequencyB * quotient(x);
  const double slope = 0.5 / std::pow(x + 8, 2);
  const Budget budget = budgetOf(x, quotient(x), slope,
                                 "[model]\nstandard = 0.02 %\ntype = A\ndegrees of freedom = 9\n");
  const std::string counters = "[frequency]\nstandard = 0.01 %\nrotors = independent\n";
  const uncertainty::Component found =
      viscosityOfQuotientComponent({&budget, x * slope}, readStandUncertainty(counters, ""), {});

  const std::vector<uncertainty::Input> inputs{
      {"curve", 0, 0.0002}, {"frequency A", 0, 0.0001}, {"frequency B", 0, 0.0001}};
  const auto measured = [&](std::span<const double> e) {
    const auto curve = [&](double roshko) { return quotient(roshko) * (1 + e[0]); };
    return viscosityOfQuotient(curve, {5, 2000}, frequencyA * (1 + e[1]), frequencyB * (1 + e[2]),
                               70);
  };
  const auto drawn = uncertainty::monteCarlo(measured, inputs, {}, {.mostTrials = 20'000});
  EXPECT_NEAR(found.standard.value / 100 / (drawn.standardDeviation / drawn.mean), 1, 0.05);
  EXPECT_NEAR(found.degreesOfFreedom, 9, 1e-6);
  EXPECT_THROW((void)viscosityOfQuotientComponent({&budget, 0}, {}, {}), calibration::BadData);
}

TEST(flow_budget, is_not_better_than_the_certificate) {
  const Budget raised = calibrationAt(50, "[stand]\ncmc = 0.2 %\n[flow]\nstandard = 0.03 %\n");
  const Budget budget = flowBudget(2, {&raised, 0}, {}, {}, {1.2, 70, {}});
  EXPECT_NEAR(budget.expandedPercent, 0.2, 1e-6);
}

TEST(flow_budget, refuses_a_reference_flow_in_service) {
  const Budget calibration = calibrationAt(50, stand);
  EXPECT_THROW(
      (void)flowBudget(2, {&calibration, 0}, readStandUncertainty("[flow]\nstandard = 1 %\n", ""),
                       {}, {1.2, 70, {}}),
      calibration::BadData);
}

}  // namespace
}  // namespace pelmora::flow
