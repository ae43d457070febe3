// Confidence and prediction bands, and the quantiles behind them, against another program.
// SPDX-License-Identifier: MIT
#include "curves/outcome_details.h"
#include "base/student_t.h"
#include "tests/solver/fit_helpers.h"
#include "tests/support/places.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include <fstream>

namespace pelmora::test {
namespace {

using nlohmann::json;
using Numbers = std::vector<double>;

// The other program's quantiles are good to 11 digits at one degree of freedom, its worst case.
constexpr double ofQuantile = 1e-10;

json reference() {
  std::ifstream file(test::sourceFolder() + "/tests/data/bands/reference.json");
  return json::parse(file);
}

TEST(bands, quantiles_agree_with_another_program) {
  const json all = reference();
  ASSERT_EQ(all.at("quantiles").size(), 45U);
  for (const json& entry : all.at("quantiles")) {
    const double probability = entry.at("probability"), freedom = entry.at("freedom"),
                 t = entry.at("t");
    EXPECT_NEAR(twoSidedStudentT(probability, freedom) / t, 1, ofQuantile)
        << probability << " " << freedom;
  }
}

TEST(bands, half_widths_agree_with_another_program) {
  const json all = reference();
  ASSERT_EQ(all.at("fits").size(), 3U);
  for (const json& entry : all.at("fits")) {
    const auto model =
        fitOf(entry.at("expression"), entry.at("x").get<Numbers>(), entry.at("y").get<Numbers>());
    ASSERT_TRUE(model->solutionFound()) << entry.at("name");
    FitOutcome outcome;
    outcome.Equations.resize(1);
    outcome.Chosen = 0;
    describeSolution(*model, outcome.Equations[0]);
    const auto at = entry.at("at").get<Numbers>();
    describeBands(*model, at, outcome);
    const auto curve = model->evaluate(at);
    ASSERT_EQ(outcome.ConfidenceHalfWidth.size(), at.size());
    ASSERT_EQ(outcome.PredictionHalfWidth.size(), at.size());
    for (std::size_t k = 0; k < at.size(); ++k) {
      const std::string place =
          entry.at("name").get<std::string>() + " at " + std::to_string(at[k]);
      EXPECT_NEAR(curve[k] / entry.at("curve")[k].get<double>(), 1, 1e-14) << place;
      EXPECT_NEAR(outcome.ConfidenceHalfWidth[k] / entry.at("confidence")[k].get<double>(), 1,
                  ofQuantile)
          << place;
      EXPECT_NEAR(outcome.PredictionHalfWidth[k] / entry.at("prediction")[k].get<double>(), 1,
                  ofQuantile)
          << place;
    }
  }
}

}  // namespace
}  // namespace pelmora::test
