// SPDX-License-Identifier: MIT
#include "tests/component/data_fit/fit_fixture.h"

namespace pelmora {
namespace {

using test::Journal;
using test::solutionOf;

class fit_run : public FitFixture {};

TEST_F(fit_run, raises_its_events_in_order) {
  useEquations({"A", "B"});
  engine_.solutions["B"] = solutionOf(0.9, 0.9);
  band_.statusTexts = {"Testing the band"};
  const auto fitting = makeFitting();
  fit(*fitting);
  EXPECT_EQ(journal_, (Journal{"progress: 1/2", "status: Started fitting with equation: A",
                               "fit: A", "status: Finished fitting with equation: A",
                               "progress: 2/2", "status: Started fitting with equation: B",
                               "fit: B", "status: Finished fitting with equation: B", "band test",
                               "status: Testing the band", "band test", "status: Testing the band",
                               "status: Determined bestfit equation: B"}));
}

TEST_F(fit_run, takes_the_built_in_equations_from_the_last_to_the_first) {
  const auto fitting = makeFitting();
  fit(*fitting);
  EXPECT_EQ(fitted(),
            (Journal{"TC eq6405", "Polynomial 10th Order", "Polynomial 9th Order",
                     "Polynomial 8th Order", "Polynomial 7th Order", "Polynomial 6th Order"}));
  EXPECT_EQ(test::linesOf(journal_, "progress: "),
            (Journal{"1/6", "2/6", "3/6", "4/6", "5/6", "6/6"}));
}

TEST_F(fit_run, takes_the_equations_of_a_file_in_its_order) {
  useEquations({"A", "B", "C"});
  const auto fitting = makeFitting();
  fit(*fitting);
  EXPECT_EQ(fitted(), (Journal{"A", "B", "C"}));
}

TEST_F(fit_run, hands_definition_and_settings_to_every_model) {
  useEquations({"A", "B"});
  const auto fitting = makeFitting();
  fit(*fitting);
  ASSERT_EQ(engine_.fits.size(), 2U);
  EXPECT_EQ(engine_.fits[0].definition.Expression, "f(A)");
  EXPECT_EQ(engine_.fits[1].definition.Expression, "f(B)");
  for (const test::FakeFit& one : engine_.fits) {
    EXPECT_EQ(one.settings.First, 250);
    EXPECT_EQ(one.settings.Second, 10);
    EXPECT_EQ(one.settings.ResidualTolerance, 1e-15);
    EXPECT_TRUE(one.settings.StartValues.empty());
  }
}

TEST_F(fit_run, one_data_object_serves_all_equations) {
  useEquations({"A", "B"});
  const auto fitting = makeFitting();
  fit(*fitting);
  ASSERT_EQ(engine_.fits.size(), 2U);
  EXPECT_EQ(engine_.fits[0].data, engine_.fits[1].data);
}

TEST_F(fit_run, names_and_marks_the_columns_of_the_points) {
  useEquations({"A"});
  const auto fitting = makeFitting();
  fitting->fitCurve(points_, isEmpty_, 1, 100, "Re", "K");
  const FitData& data = *engine_.fits.at(0).data;
  EXPECT_EQ(data.Names, (std::vector<std::string>{"Re", "K"}));
  EXPECT_EQ(data.Symbols, (std::vector<std::string>{"X", "Y"}));
  EXPECT_EQ(data.Columns, (std::vector<std::vector<double>>{{1, 10, 100}, {2, 4, 8}}));
}

TEST_F(fit_run, returns_the_curve_of_the_chosen_equation) {
  useEquations({"A"});
  engine_.otherwise.curve = [](double x) { return 2 * x; };
  const auto fitting = makeFitting();
  const PointArray curve = fit(*fitting);
  ASSERT_EQ(curve.size(), 3U);
  const double expected[] = {1, 10, 100};
  for (std::size_t i = 0; i < 3; ++i) {
    EXPECT_NEAR(curve(i, 0), expected[i], 1e-12);
    EXPECT_EQ(curve(i, 1), 2 * curve(i, 0));
  }
}

TEST_F(fit_run, is_empty_from_the_start_until_an_equation_is_determined) {
  useEquations({"A"});
  bool duringFit = false;
  engine_.otherwise.onAttach = [&] { duringFit = isEmpty_; };
  isEmpty_ = false;
  const auto fitting = makeFitting();
  fit(*fitting);
  EXPECT_TRUE(duringFit);
  EXPECT_FALSE(isEmpty_);
}

TEST_F(fit_run, all_equations_may_fail) {
  useEquations({"A", "B"});
  engine_.otherwise.found = false;
  const auto fitting = makeFitting();
  EXPECT_EQ(fit(*fitting), PointArray());
  EXPECT_TRUE(isEmpty_);
  EXPECT_EQ(statusTexts().back(), "All equations failed to fit the data");
  EXPECT_EQ(boxes(), Journal());
}

TEST_F(fit_run, failed_solution_leaves_its_log_and_the_run_goes_on) {
  useEquations({"A", "B"});
  engine_.solutions["A"].found = false;
  const auto fitting = makeFitting();
  fit(*fitting);
  EXPECT_EQ(test::linesOf(journal_, "log: "), Journal{folder_.file("log.txt")});
  EXPECT_EQ(fitted(), (Journal{"A", "B"}));
  EXPECT_EQ(statusTexts().back(), "Determined bestfit equation: B");
}

TEST_F(fit_run, good_solution_writes_no_log) {
  useEquations({"A"});
  const auto fitting = makeFitting();
  fit(*fitting);
  EXPECT_EQ(test::linesOf(journal_, "log: "), Journal());
}

TEST_F(fit_run, without_event_handlers_runs_as_well) {
  useEquations({"A"});
  clsDataFit fitting(platform());
  fitting.NumberOfFittedPoints = 2;
  EXPECT_EQ(fit(fitting).size(), 2U);
}

TEST_F(fit_run, second_run_starts_anew) {
  useEquations({"A", "B"});
  engine_.otherwise.found = false;
  const auto fitting = makeFitting();
  fit(*fitting);
  engine_.otherwise = solutionOf(0.5, 0.5);
  EXPECT_EQ(fit(*fitting).size(), 3U);
  EXPECT_FALSE(isEmpty_);
}

}  // namespace
}  // namespace pelmora
