// What a fitting object tells about the equation it chose.
// SPDX-License-Identifier: MIT
#include "tests/component/data_fit/fit_fixture.h"

#include <pelmora/error.h>

namespace pelmora {
namespace {

using test::solutionOf;

class chosen_equation : public FitFixture {};

TEST_F(chosen_equation, definition_model_and_data_are_those_of_the_last_ranked) {
  useEquations({"A", "B"});
  engine_.solutions["A"] = solutionOf(0.8, 0.9);
  engine_.solutions["B"] = solutionOf(0.8, 0.7);
  const auto fitting = makeFitting();
  fit(*fitting);
  ASSERT_NE(fitting->dfxModelDefinition(), nullptr);
  EXPECT_EQ(fitting->dfxModelDefinition()->Name, "A");
  EXPECT_EQ(fitting->dfxModelDefinition()->Expression, "f(A)");
  ASSERT_NE(fitting->dfxModel(), nullptr);
  EXPECT_EQ(fitting->dfxModel()->statistics().AdjustedRSquared, 0.9);
  ASSERT_NE(fitting->DataResult(), nullptr);
  EXPECT_EQ(fitting->DataResult()->Names, (std::vector<std::string>{"Roshko", "Strouhal"}));
  EXPECT_EQ(fitting->DataResult()->Columns[0].size(), 3U);
  EXPECT_NE(fitting->ResultDetails().find("Description: A\r\n"), std::string::npos);
  EXPECT_EQ(fitting->ResultDetails().find("Description: B\r\n"), std::string::npos);
}

TEST_F(chosen_equation, curve_cannot_be_read_as_a_number) {
  useEquations({"A"});
  const auto fitting = makeFitting();
  fit(*fitting);
  try {
    (void)fitting->ResultArray();
    FAIL() << "a number";
  } catch (const Error& error) {
    EXPECT_EQ(error.number(), 13);
  }
}

TEST_F(chosen_equation, nothing_is_told_where_none_was_chosen) {
  useEquations({"A"});
  engine_.otherwise.found = false;
  const auto fitting = makeFitting();
  fit(*fitting);
  EXPECT_EQ(fitting->ranking(), std::vector<std::int16_t>{-1});
  EXPECT_EQ(fitting->dfxModelDefinition(), nullptr);
  EXPECT_EQ(fitting->dfxModel(), nullptr);
  EXPECT_EQ(fitting->DataResult(), nullptr);
  EXPECT_EQ(fitting->ResultArray(), 0.0);
}

TEST_F(chosen_equation, without_one_the_details_are_those_of_all_equations) {
  useEquations({"A", "B"});
  engine_.otherwise.found = false;
  const auto fitting = makeFitting();
  fit(*fitting);
  const std::string one = "Solution failed.\r\nSee " + folder_.path().string() + "\\log.txt\r\n" +
                          "\r\n" + std::string(32, '=') + "\r\n";
  EXPECT_EQ(fitting->ResultDetails(), one + one);
}

TEST_F(chosen_equation, object_that_never_fitted_has_nothing_to_tell) {
  const auto fitting = makeFitting();
  EXPECT_EQ(fitting->dfxModelDefinition(), nullptr);
  EXPECT_EQ(fitting->dfxModel(), nullptr);
  EXPECT_EQ(fitting->DataResult(), nullptr);
  EXPECT_EQ(fitting->ResultArray(), 0.0);
  EXPECT_EQ(fitting->outcome().Chosen, std::nullopt);
}

TEST_F(chosen_equation, empty_catalogue_has_no_details) {
  writeFile("equations.txt", ";nothing");
  const auto fitting = makeFitting();
  EXPECT_EQ(fit(*fitting), PointArray());
  EXPECT_TRUE(isEmpty_);
  EXPECT_EQ(fitting->ResultDetails(), "");
  EXPECT_EQ(journal_, test::Journal{"status: All equations failed to fit the data"});
}

TEST_F(chosen_equation, details_are_empty_after_the_error_box) {
  useEquations({"A", "B"});
  engine_.solutions["B"].onAttach = [] { throw Error(7, "engine", "lost"); };
  const auto fitting = makeFitting();
  fit(*fitting);
  EXPECT_EQ(fitting->ResultDetails(), "");
  EXPECT_EQ(fitting->dfxModel(), nullptr);
}

TEST_F(chosen_equation, models_die_before_the_engine_that_made_them) {
  useEquations({"A", "B"});
  auto fitting = makeFitting();
  fit(*fitting);
  EXPECT_EQ(engine_.modelsAlive, 2);
  EXPECT_EQ(engine_.enginesAlive, 1);
  fitting.reset();
  EXPECT_EQ(engine_.modelsAlive, 0);
  EXPECT_EQ(engine_.enginesAlive, 0);
}

}  // namespace
}  // namespace pelmora
